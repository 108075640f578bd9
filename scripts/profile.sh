#!/usr/bin/env bash
# Draws where a whole run spends its processor time: scripts/profile.sh [PEOPLE [OPTION ...]]. Builds program and
# plugin with symbols and frame pointers in build/profile, or takes PROGRAM from the environment; runs them on a
# simulated scene of PEOPLE (50) at 25 frames a second with OPTIONs of run (by default without diagnostics and dump).
# Leaves a flame graph in build/profile/run.svg and prints what the largest parts are. Needs linux-perf and
# libdevel-nytprof-perl, and a system that lets users profile (kernel.perf_event_paranoid at most 1, or root).
set -euo pipefail
cd "$(dirname "$0")/.."
people=${1:-50}
options=("${@:2}")
[ $# -gt 1 ] || options=(--diagnostics none --mobile-dump none)
flames=/usr/share/perl5/Devel/NYTProf/flamegraph.pl
if ! command -v perf > /dev/null || [ ! -r "$flames" ]; then
  echo "linux-perf or libdevel-nytprof-perl is missing" >&2
  exit 2
fi
build=build/profile
mkdir -p "$build"
if [ -z "${PROGRAM:-}" ]; then
  cmake --preset release -B "$build" -DCMAKE_CXX_FLAGS="-g1 -fno-omit-frame-pointer" \
    -DGROUPTRACKER_BENCHMARKS=OFF > "$build/configure.txt"
  cmake --build "$build" --target grouptracker GroupTrackerProcessGroupTrackerPlugin
  PROGRAM=$build/bin/grouptracker
fi

scene=$build/scene-$people
[ -f "$scene/truth.jsonl" ] || "$PROGRAM" simulate --people "$people" --seconds 120 --rate 25 --seed 1 --output "$scene" --quiet
perf record --quiet --event cpu-clock --freq 1999 --call-graph fp --output "$build/perf.data" -- \
  "$PROGRAM" run "$scene/scene.jsonl" --output "$build/groups.jsonl" --quiet "${options[@]}" > "$build/printed.txt"

# A line for each stack, outermost first, with how often it was seen.
perf script --input "$build/perf.data" --fields ip,sym 2> "$build/perf.txt" | awk '
  function close_stack() { if (stack != "") count[stack]++; stack = "" }
  NF == 0 { close_stack(); next }
  {
    $1 = ""; name = substr($0, 2)
    gsub(/\(anonymous namespace\)::/, "", name); sub(/\(.*/, "", name); sub(/^\[unknown\]$/, "?", name)
    gsub(/grouptracker::|[; ]/, "", name)
    stack = stack == "" ? name : name ";" stack
  }
  END { close_stack(); for (each in count) print each, count[each] }' > "$build/stacks.txt"
perl "$flames" --title "A run with $people people" --countname samples --minwidth 3 --hash \
  --nametype "" "$build/stacks.txt" > "$build/run.svg"

echo "share of the processor time spent below a function (the first 25 of at least 2 %):"
awk '{
    n = split($1, names, ";"); total += $2
    delete seen
    for (i = 1; i <= n; i++) if (!(names[i] in seen)) { seen[names[i]]; below[names[i]] += $2 }
  }
  END { for (name in below) if (below[name] >= 0.02 * total) printf "%5.1f %%  %s\n", 100 * below[name] / total, name }' \
  "$build/stacks.txt" | sort -rn | head -n 25
echo "flame graph: $build/run.svg"
