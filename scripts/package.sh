#!/usr/bin/env bash
# Makes the Debian packages in build/PRESET/packages: scripts/package.sh [PRESET], release by default. Builds
# first; what lintian finds is told and ends it. That the first version closes no bug of Debian's list is no
# fault of packages that are not in Debian.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}
build=build/$preset
packages=$PWD/$build/packages

scripts/install.sh scripts/packages.txt packaging/packages.txt
scripts/build.sh "$preset" --target grouptracker --target GroupTrackerProcessGroupTrackerPlugin \
  --target grouptracker_images --target grouptracker_video --target grouptracker_library \
  --target python_module --target manual
rm -rf "$packages"
(cd "$build" && cpack -G DEB -B "$packages" > cpack.txt) || { cat "$build/cpack.txt"; exit 1; }
rm -rf "$packages/_CPack_Packages"
for package in "$packages"/*.deb; do
  echo "$(basename "$package"), $(du -h "$package" | cut -f 1)"
done
asRoot=()
[ "$(id -u)" != 0 ] || asRoot=(--allow-root)
lintian "${asRoot[@]}" --fail-on error,warning --tag-display-limit 0 \
  --suppress-tags initial-upload-closes-no-bugs "$packages"/*.deb
echo "lintian finds nothing"
