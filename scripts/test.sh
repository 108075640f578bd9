#!/usr/bin/env bash
# Installs what is missing, builds and runs all tests: scripts/test.sh [PRESET [OPTION...]],
# release by default.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}

scripts/build.sh "$preset" "${@:2}"
ctest --preset "$preset" -j "$(nproc)"
