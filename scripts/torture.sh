#!/usr/bin/env bash
# Attacks the program for some minutes: scripts/torture.sh [MINUTES] [PROGRAM]. Two minutes and a build
# with the address and undefined-behaviour sanitizers by default. What goes wrong is said, and its files
# stay in build/torture. A full disk is mounted for it, with the rights of root; hosts in threads need
# `library_tests` beside the program.
set -euo pipefail
cd "$(dirname "$0")/.."
program=${2:-build/asan/bin/grouptracker}

if [ $# -lt 2 ]; then
  scripts/build.sh asan
fi
exec python3 scripts/torture.py --minutes "${1:-2}" --program "$program" --keep build/torture
