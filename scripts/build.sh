#!/usr/bin/env bash
# Installs what is missing and builds: scripts/build.sh [PRESET [OPTION...]], release by default.
# Options -D... go to the configuration, others, such as --target NAME, to the build. Programs are
# then in build/PRESET/bin.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}

configuration=()
build=()
for option in "${@:2}"; do
  case $option in
    -D*) configuration+=("$option") ;;
    *) build+=("$option") ;;
  esac
done

lists=(scripts/packages.txt)
[ "$preset" != asan ] || lists+=(fuzz/packages.txt)
scripts/install.sh "${lists[@]}"
cmake --preset "$preset" "${configuration[@]}"
cmake --build --preset "$preset" "${build[@]}"
