#!/usr/bin/env bash
# Tries the Debian packages in a clean Debian 12 of their own: scripts/test-packages.sh [FOLDER [ROOT]].
# Installs them, runs the program, the example embedder and a Python script, removes and purges them.
# FOLDER has the packages (build/release/packages by default); ROOT is made anew from the mirror that
# DEBIAN_MIRROR names. Needs the rights of root.
set -euo pipefail
cd "$(dirname "$0")/.."
packages=$(realpath "${1:-build/release/packages}")
root=$(realpath -m "${2:-build/clean-root}")
mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}
cache=$PWD/build/clean-root-cache  # what was downloaded before

inRoot() {
  chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive QT_QPA_PLATFORM=offscreen "$@"
}

makeRoot() {
  rm -rf "$root"
  mkdir -p "$cache"
  debootstrap --variant=minbase --cache-dir="$cache" bookworm "$root" "$mirror" > build/clean-root.txt || {
    tail -n 20 build/clean-root.txt >&2
    exit 1
  }
  cp /etc/resolv.conf "$root/etc/resolv.conf"
  if [ -d /etc/apt/apt.conf.d ]; then  # how this machine reaches the mirror
    { grep -rhiE '^Acquire.*(Proxy|Check-)' /etc/apt/apt.conf.d || true; } > "$root/etc/apt/apt.conf.d/80proxy"
  fi
  echo "deb $mirror bookworm main" > "$root/etc/apt/sources.list"
  inRoot apt-get update -qq
  cp -n "$cache"/*.deb "$root/var/cache/apt/archives/" || true
}

installPackages() {
  mkdir -p "$root/tmp/packages"
  cp "$packages"/*.deb "$root/tmp/packages/"
  inRoot sh -c 'apt-get install -y -qq --no-install-recommends -o APT::Keep-Downloaded-Packages=true \
    /tmp/packages/*.deb python3-pandas g++ cmake make' > build/clean-install.txt
  cp -n "$root"/var/cache/apt/archives/*.deb "$cache/"
  rm -f "$root"/var/cache/apt/archives/*.deb
}

tryProgram() {
  inRoot sh -ec '
    cd /tmp
    grouptracker simulate --seed 3 --people 16 --seconds 30 --rate 5 --output scene --quiet
    grouptracker run scene/scene.jsonl --calibration scene/calibration.yml --rate 5 --persons tracks.csv \
      --output groups.jsonl --diagnostics none --mobile-dump none
    grouptracker evaluate groups.jsonl --truth scene/truth.jsonl | head -n 5
    grouptracker run tracks.csv --parameters /usr/share/grouptracker/parameters/video.txt --rate 5 \
      --output again.jsonl --video film.mp4 --top-view --diagnostics none --quiet --mobile-dump none
    test -s film.mp4
    test -e /usr/share/man/man1/grouptracker-run.1.gz
    grouptracker run --config /etc/grouptracker/example.toml --print-config | grep -q "^publish="
    bash -c "source /usr/share/bash-completion/completions/grouptracker; complete -p grouptracker"'
}

tryExample() {
  inRoot sh -ec '
    cmake -S /usr/share/doc/libgrouptracker-dev/examples/embed -B /tmp/embed > /tmp/embed.txt
    cmake --build /tmp/embed >> /tmp/embed.txt
    tail -n +2 /tmp/tracks.csv | cut -d, -f1,3-5 | tr , " " | /tmp/embed/embed 5 > /tmp/embedded.txt
    tail -n 2 /tmp/embedded.txt
    test -s /tmp/embedded.txt'
}

tryPython() {
  inRoot python3 - <<'PYTHON'
import grouptracker
import pandas

tracks = pandas.read_csv("/tmp/tracks.csv").rename(columns={"person": "id"})[["frame", "id", "x", "y"]]
found = grouptracker.track(tracks, rate=5)
steps = grouptracker.track_steps(tracks, rate=5)
scores = grouptracker.evaluate(steps, "/tmp/scene/truth.jsonl")
print(found.dropna().tail(2))
assert scores["windowedMitre"]["f1"] > 0.8, scores
PYTHON
}

# Everything that the packages brought and that no other package has, directories that are not empty left out.
leftOf() {
  local path
  while read -r path; do
    if { [ -e "$root$path" ] || [ -L "$root$path" ]; } && [ -z "$(ls -A "$root$path/" 2> /dev/null)" ] &&
      ! inRoot dpkg --search "$path" > /dev/null 2>&1; then
      echo "$path"
    fi
  done
}

removeAll() {
  local names
  mapfile -t names < <(for file in "$packages"/*.deb; do dpkg-deb --field "$file" Package; done)
  inRoot dpkg --listfiles "${names[@]}" | sort -u > build/clean-files.txt
  mkdir -p "$root/var/lib/private/grouptracker/hall"  # as services have them
  ln -s private/grouptracker "$root/var/lib/grouptracker"
  cp "$root/etc/grouptracker/example.toml" "$root/etc/grouptracker/hall.toml"
  inRoot dpkg --remove "${names[@]}" > build/clean-remove.txt
  inRoot dpkg --purge "${names[@]}" >> build/clean-remove.txt 2>&1
  local left
  left=$(find "$root/usr" "$root/etc" "$root/var/lib" \( -iname '*grouptracker*' -o -name 'lib[mk]ox.so*' -o -name 'libkel.so*' \) \
    -not -path '*/dpkg/*' -not -path '*/apt/*')
  left+=$(leftOf < build/clean-files.txt)
  [ -z "$left" ] || { echo "left behind: $left" >&2; return 1; }
}

makeRoot
echo "== Installing"
installPackages
echo "== Program"
tryProgram
echo "== Example in C++"
tryExample
echo "== Python"
tryPython
echo "== Removing"
removeAll
rm -rf "$root"
echo "The packages work in a clean Debian 12, and nothing of them is left, after $SECONDS s"
