#!/usr/bin/env bash
# Installs what is missing and builds: scripts/build.sh [PRESET [CMAKE_OPTION...]], release by
# default. Programs are then in build/PRESET/bin.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}

scripts/install.sh
cmake --preset "$preset" "${@:2}"
cmake --build --preset "$preset"
