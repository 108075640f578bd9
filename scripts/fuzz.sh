#!/usr/bin/env bash
# Fuzzes every reader of input files: scripts/fuzz.sh [SECONDS], 5 for each by default. New inputs
# that reach new code are kept in build/fuzz/corpus; what ends a reader stays in build/fuzz/found.
set -euo pipefail
cd "$(dirname "$0")/.."
export seconds=${1:-5}

# One reader, from its seeds and from what was found before; tells what the fuzzer says if it fails.
fuzzReader() {
  local reader=$1
  local corpus=build/fuzz/corpus/$reader
  mkdir -p "$corpus"
  build/asan/bin/fuzz_readers "$reader" -max_total_time="$seconds" -max_len=4096 -timeout=60 \
    -rss_limit_mb=2048 -verbosity=0 -print_funcs=0 \
    -artifact_prefix="build/fuzz/found/$reader-" "$corpus" "fuzz/corpus/$reader" \
    > "build/fuzz/$reader.txt" 2>&1 || {
    cat "build/fuzz/$reader.txt"
    return 1
  }
  echo "$reader: $(find "$corpus" -type f | wc -l) inputs beside the seeds"
}
export -f fuzzReader

scripts/build.sh asan --target fuzz_readers
mkdir -p build/fuzz/found
find fuzz/corpus -mindepth 1 -maxdepth 1 -printf '%f\n' | sort |
  xargs -P "$(nproc)" -I READER bash -c 'set -euo pipefail; fuzzReader READER'
