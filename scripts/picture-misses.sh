#!/usr/bin/env bash
# Draws what keeps the groups from better scores, as docs/evaluation.md tells it: for each case the ground
# at its frame, and beside it what explain says of two of the people. Nothing of the sequences is kept in
# the project: pictures go to a folder of the build, and cases whose sequence DATA lacks are passed over.
# scripts/picture-misses.sh DATA [FOLDER [PRESET]]
set -euo pipefail
data=${1:?usage: scripts/picture-misses.sh DATA [FOLDER [PRESET]]}
folder=${2:-build/misses}
program=$(dirname "$0")/../build/${3:-release}/bin/grouptracker
[ -x "$program" ] || { echo "$program is not built" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$folder"

# A case: SEQUENCE RATE FIRST LAST PERSON PERSON WHAT. The picture is that of the last frame.
draw() {
  local sequence=$1 rate=$2 first=$3 last=$4 a=$5 b=$6 name=$1-$7
  [ -d "$data/$sequence" ] || { echo "$data holds no $sequence"; return; }
  if [ ! -e "$work/$sequence.jsonl" ]; then
    "$program" run "$data/$sequence" --rate "$rate" --output "$work/$sequence.jsonl" --diagnostics none \
      --mobile-dump none --quiet
  fi
  awk -F'[:,]' -v first="$first" -v last="$last" '$2 >= first && $2 <= last' "$work/$sequence.jsonl" \
    > "$work/$name.jsonl"
  "$program" events "$work/$name.jsonl" --input "$data/$sequence" --rate "$rate" \
    --frames "$first:$last" --top-view --video "$work/$name" --output "$work/events.jsonl"
  local pictures=("$work/$name"/*.png)
  cp "${pictures[-1]}" "$folder/$name.png"
  "$program" explain "$data/$sequence" --rate "$rate" --persons "$a" "$b" > "$folder/$name.txt"
  echo "$folder/$name.png $folder/$name.txt"
}

draw students03_first 25 361 511 28 412 walk-up-to-three-who-stand
draw students03_first 25 1461 1611 58 412 walk-on-with-three
draw students03_first 25 2091 2201 111 64 walk-beside-three
draw seq_eth 15 8397 8523 182 183 side-by-side-and-not-annotated
draw seq_hotel 25 16121 16451 369 371 strangers-who-wait
draw seq_hotel 25 10071 10241 223 224 strangers-who-walk-alike
