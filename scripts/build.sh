#!/usr/bin/env bash
# Installs what is missing and builds: scripts/build.sh [PRESET], release by default.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}

packages=(g++ cmake ninja-build qtbase5-dev libopencv-dev libfmt-dev libcli11-dev
  nlohmann-json3-dev libsimdjson-dev libeigen3-dev libgtest-dev libgmock-dev libbenchmark-dev)
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing ${missing[*]}" >&2
  sudo=$([ "$(id -u)" = 0 ] || echo sudo)
  $sudo apt-get update -qq
  $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

cmake --preset "$preset"
cmake --build --preset "$preset"
