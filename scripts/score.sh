#!/usr/bin/env bash
# Runs all annotated sequences with the sample parameters and prints a table of their scores:
# scripts/score.sh DATA [PRESET], where DATA holds seq_eth, seq_hotel and zara01.
set -euo pipefail
data=${1:?usage: scripts/score.sh DATA [PRESET]}
program=$(dirname "$0")/../build/${2:-release}/bin/grouptracker
parameters=$(dirname "$0")/../samples/parameters
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One number of a report: score FILE NAME [PART]
number() {
  python3 -c 'import json, sys
value = json.load(open(sys.argv[1]))
for key in sys.argv[2:]:
    value = value[key]
print(f"{value:.3f}" if isinstance(value, float) else value)' "$@"
}

columns=("windowedMitre precision" "windowedMitre recall" "windowedMitre f1" "wholeMitre f1"
  "correctGroups 1:f1" "correctGroups 2/3:f1" "correctGroups 1/2:f1" "pairs f1" "adjustedRand")
echo "| mode | sequence | windowed P | R | F1 | whole F1 | T = 1 | T = 2/3 | T = 1/2 | pairs F1 | Rand | alone F1 | rule F1 |"
echo "| --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- |"
for mode in walking clustering; do
  for sequence in seq_eth seq_hotel zara01; do
    "$program" run "$data/$sequence" --parameters "$parameters/$mode.txt" --quiet \
      --diagnostics none --mobile-dump none --output "$work/groups.jsonl"
    "$program" evaluate "$work/groups.jsonl" --truth "$data/$sequence/groups.txt" --baselines \
      --output "$work/report.json" > "$work/table.txt"
    row="| $mode | $sequence"
    for column in "${columns[@]}"; do
      if [[ $column == *:* ]]; then
        row+=" | $(number "$work/report.json" "${column%:*}" "${column#*:}")"
      else
        # shellcheck disable=SC2086 # two words are two keys
        row+=" | $(number "$work/report.json" $column)"
      fi
    done
    row+=" | $(number "$work/report.json" baselines alone f1)"
    row+=" | $(number "$work/report.json" baselines crudeRule f1) |"
    echo "$row"
  done
done
