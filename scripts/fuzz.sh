#!/usr/bin/env bash
# Fuzzes every reader of input files: scripts/fuzz.sh [SECONDS], 5 for each by default. New inputs
# that reach new code are kept in build/fuzz/corpus; what ends a reader stays in build/fuzz/found.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-5}

scripts/install.sh scripts/packages.txt fuzz/packages.txt
cmake --preset fuzz
cmake --build --preset fuzz
mkdir -p build/fuzz/found
for seeds in fuzz/corpus/*/; do
  reader=$(basename "$seeds")
  corpus=build/fuzz/corpus/$reader
  mkdir -p "$corpus"
  echo "== $reader" >&2
  "build/fuzz/bin/fuzz_$reader" -max_total_time="$seconds" -max_len=4096 -timeout=60 \
    -rss_limit_mb=2048 -verbosity=0 -print_funcs=0 \
    -artifact_prefix="build/fuzz/found/$reader-" "$corpus" "$seeds"
done
