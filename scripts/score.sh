#!/usr/bin/env bash
# Finds the groups of all annotated sequences in a folder with the built-in setting and prints tables
# of how good they are: scripts/score.sh DATA [PRESET] [SEQUENCE=RATE]... A sequence is a folder with
# obsmat.txt and groups.txt, or truth.jsonl for a truth per frame. Trajectories do not tell how many frame
# numbers pass in a second: SEQUENCE=RATE does, where the program's own guess is wrong. The last table says
# what carries over.
set -euo pipefail
usage="usage: scripts/score.sh DATA [PRESET] [SEQUENCE=RATE]..."
data=${1:?$usage}
shift
preset=release
declare -A rates
for argument in "$@"; do
  case $argument in
    *=*) rates[${argument%%=*}]=${argument#*=} ;;
    *) preset=$argument ;;
  esac
done
program=$(dirname "$0")/../build/$preset/bin/grouptracker
[ -x "$program" ] || { echo "$program is not built; $usage" >&2; exit 2; }
for name in "${!rates[@]}"; do
  [ -d "$data/$name" ] || { echo "$data holds no $name, whose rate is given" >&2; exit 2; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

truthOf() {
  if [ -e "$data/$1/truth.jsonl" ]; then echo "$data/$1/truth.jsonl"; else echo "$data/$1/groups.txt"; fi
}

sequences=()
for folder in "$data"/*/; do
  name=$(basename "$folder")
  if [ -e "$folder/obsmat.txt" ] && [ -e "$(truthOf "$name")" ]; then sequences+=("$name"); fi
done
[ ${#sequences[@]} -gt 0 ] || { echo "$data holds no annotated sequence" >&2; exit 2; }

for name in "${sequences[@]}"; do
  rate=()
  if [ -n "${rates[$name]:-}" ]; then rate=(--rate "${rates[$name]}"); fi
  "$program" run "$data/$name" "${rate[@]}" --quiet --diagnostics none \
    --mobile-dump none --output "$work/$name.groups.jsonl" --actors "$work/$name.actors.jsonl"
  for source in groups actors; do
    "$program" evaluate "$work/$name.$source.jsonl" --truth "$(truthOf "$name")" --baselines \
      --input "$data/$name" --output "$work/$name.$source.json" > "$work/table.txt"
  done
done

python3 - "$work" "${sequences[@]}" <<'END'
import json
import sys

work, names = sys.argv[1], sys.argv[2:]

columns = [
    ("windowed F1", lambda s: s["windowedMitre"]["f1"]),
    ("crude rule", lambda s: s["baselines"]["crudeRule"]["f1"]),
    ("T = 2/3 F1", lambda s: s["correctGroups 2/3"]["f1"]),
    ("pairs F1", lambda s: s["pairs"]["f1"]),
    ("IDF1", lambda s: s["identity"]["f1"]),
    ("changes per group", lambda s: s["identityChangesPerGroup"]),
    ("joins back", lambda s: s["joinsBackShare"]),
    ("false groups", lambda s: s["falseShare"]),
]
print("| sequence | of | annotated frames | " + " | ".join(name for name, _ in columns) + " |")
print("| --- " * (len(columns) + 3) + "|")
for name in names:
    for source, words in (("groups", "the groups"), ("actors", "the process")):
        scores = json.load(open(f"{work}/{name}.{source}.json"))
        print(f"| {name} | {words} | {scores['annotatedSteps']} | "
              + " | ".join(f"{value(scores):.3f}" for _, value in columns) + " |")
END

for seed in 1 2 3 4; do
  "$program" simulate --seed "$seed" --people 40 --seconds 120 --rate 5 --merges 2 --splits 2 \
    --noise 0.02 --quiet --output "$work/scene$seed"
  "$program" run "$work/scene$seed/scene.jsonl" --calibration "$work/scene$seed/calibration.yml" \
    --rate 5 --quiet --diagnostics none --mobile-dump none --output "$work/scene$seed.jsonl"
  "$program" evaluate "$work/scene$seed.jsonl" --truth "$work/scene$seed/truth.jsonl" \
    --output "$work/scene$seed.json" > "$work/table.txt"
done

python3 - "$work" <<'END'
import json
import sys

scores = [json.load(open(f"{sys.argv[1]}/scene{seed}.json")) for seed in (1, 2, 3, 4)]
print("\n| simulated | F1 within 2 s | delay, s |\n| --- | --- | --- |")
for events, delay in (("merges", "mergeDelay"), ("splits", "splitDelay")):
    f1 = sum(one[events]["f1"] for one in scores) / len(scores)
    late = sum(one[delay] for one in scores) / len(scores)
    print(f"| {events} | {f1:.3f} | {late:.1f} |")
END

echo
pairs=()
for name in "${sequences[@]}"; do
  pairs+=("$data/$name:$(truthOf "$name")${rates[$name]:+:${rates[$name]}}")
done
"$program" learn "${pairs[@]}" --output "$work/model.json" --quiet
