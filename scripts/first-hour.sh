#!/usr/bin/env bash
# Does what somebody does who tries the program for the first time, on made tracks and on the public
# sequences of a folder, and prints what is seen: scripts/first-hour.sh [DATA [PRESET]]. DATA (or the
# variable GROUPTRACKER_DATA) has a folder for each sequence, with obsmat.txt or XML boxes; without
# it only made tracks are tried. Ends with status 1 when something is not as a newcomer expects it.
set -euo pipefail
cd "$(dirname "$0")/.."
data=${1:-${GROUPTRACKER_DATA:-}}
[ -z "$data" ] || data=$(realpath -m "$data")
program=$PWD/build/${2:-release}/bin/grouptracker
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CACHE_HOME=$work/cache
cd "$work"
failures=0

failed() {
  echo "  NOT AS EXPECTED: $*"
  failures=$((failures + 1))
}

# Runs the program, shows the command and what it said, at most so many lines, and compares its exit
# status: try LINES STATUS ARGUMENT...
try() {
  local lines=$1 expected=$2 status=0
  shift 2
  echo "\$ grouptracker ${*//$data\//DATA/}"
  "$program" "$@" > out.txt 2> err.txt || status=$?
  awk -v lines="$lines" 'FNR <= lines && n++ < lines { print "  " substr($0, 1, 160) }' err.txt out.txt
  [ "$status" = "$expected" ] || failed "it ends with $status, not $expected: $(tail -n 1 err.txt)"
}

# The same on a terminal, where there is one to be had.
tryOnTerminal() {
  echo "\$ grouptracker ${*//$data\//DATA/}    (on a terminal)"
  if ! command -v script > /dev/null; then
    "$program" "$@" --diagnostics none --mobile-dump none 2>&1 | tail -n 1 | sed 's/^/  /'
    return
  fi
  script -qec "$(printf '%q ' "$program" "$@")" /dev/null < /dev/null > out.txt || failed "it fails"
  tr -d '\r' < out.txt | sed 's/.*\x1b\[K//' | tail -n 1 | sed 's/^/  /'
  [ "$(wc -l < out.txt)" -lt 20 ] || failed "$(wc -l < out.txt) lines on the terminal"
}

expectFiles() {
  local found
  found=$(find . -maxdepth 1 -type f ! -name out.txt ! -name err.txt ! -name found.txt -printf '%f\n' | sort | tr '\n' ' ')
  [ "$found" = "$* " ] || failed "the working folder holds $found"
}

expectText() {
  grep -q -- "$1" "$2" || failed "$2 lacks \"$1\""
}

# A number of the scores is at least so high: expectScore KEY LEAST
expectScore() {
  local score
  score=$(python3 -c "import json; print(json.load(open('scores.json'))$1['f1'])")
  printf '  F1 %.3f\n' "$score"
  python3 -c "import sys; sys.exit(not $score >= $2)" || failed "F1 $score is below $2"
}

# Trajectories do not tell how many frame numbers pass in a second.
rateOf() {
  case $1 in
    seq_eth | cocktail_first) echo 15 ;;
    pets*) echo 7 ;;
    *) echo 25 ;;
  esac
}

firstWords() {
  echo "== The first words"
  try 3 0 --help
  for format in CSV SQLite obsmat MOTChallenge XML laboratory; do
    sed -n 1,45p out.txt | grep "$format" > found.txt || failed "the first screen of the help lacks $format"
  done
  try 2 2 rnu tracks.csv
  expectText "did you mean run" err.txt
  try 2 2 run
}

madeTracks() {
  echo "== Tracks as people have them, made here"
  try 2 0 simulate --seed 3 --people 16 --seconds 30 --rate 10 --output made --quiet
  try 2 0 run made/scene.jsonl --calibration made/calibration.yml --rate 10 --persons tracks.csv --quiet \
    --diagnostics none --mobile-dump none
  head -n 2 tracks.csv | sed 's/^/  /'
  tryOnTerminal run tracks.csv
  expectFiles tracks.csv tracks.groups.jsonl
  try 2 0 check tracks.csv
  try 2 0 evaluate tracks.groups.jsonl --truth made/truth.jsonl --output scores.json
  expectScore "['windowedMitre']" 0.8

  awk -F, 'NR == 1 { print "t;ped;x;y" } NR > 1 { print $1 ";" $3 ";" $4 * 100 ";" $5 * 100 }' tracks.csv > cm.csv
  try 4 1 check cm.csv --columns frame=t,id=ped --rate 10
  expectText "centimetres (--unit cm)" out.txt
  tryOnTerminal run cm.csv --columns frame=t,id=ped --rate 10 --unit cm
  try 2 0 evaluate cm.groups.jsonl --truth made/truth.jsonl --output scores.json
  expectScore "['windowedMitre']" 0.8
}

results() {
  echo "== What can be made of it"
  try 2 0 run tracks.csv --output - --quiet --mobile-dump none
  cmp -s out.txt tracks.groups.jsonl || failed "standard output holds other groups"
  try 3 0 events tracks.groups.jsonl --input tracks.csv --persons persons.csv --mot groups.txt \
    --sqlite run.sqlite --graph tree.dot
  cut -d, -f1,3-5 tracks.csv > before.txt
  cut -d, -f1,3-5 persons.csv | cmp -s - before.txt || failed "persons.csv has other places"
  try 2 0 report tracks.csv tracks.groups.jsonl --output report.html
  try 2 0 run tracks.csv --frames :80 --video film.mp4 --top-view --quiet --diagnostics none --mobile-dump none
  [ -s film.mp4 ] || failed "no film"
  local pair
  pair=$(sed -n '/"members"/{s/.*"members": \[\([0-9]*\), \([0-9]*\).*/\1 \2/p;q}' tracks.groups.jsonl)
  # shellcheck disable=SC2086
  try 3 0 explain tracks.csv --persons $pair
}

mistakes() {
  echo "== Slips"
  cp tracks.groups.jsonl yesterday
  try 2 0 run tracks.csv --print-parameters --set useClustering=1
  cp out.txt parameters.txt
  sed 's/^useClustering: .*/useClustering: yes/' parameters.txt > wrong.txt
  try 2 1 run tracks.csv --parameters wrong.txt
  [ ! -s out.txt ] || failed "standard output is not empty"
  try 2 2 run tracks.csv --set coherenceTreshold=3
  try 2 2 run tracks.csv --calibration tracks.csv
  try 2 2 run tracks.csv --ouptut groups.jsonl
  try 2 2 run no-tracks.csv
  try 2 4 run tracks.csv --output tracks.csv
  printf 'frame,id,x,y\n1,1,here,2\n' > broken.csv
  try 2 2 run broken.csv --output tracks.groups.jsonl
  cmp -s yesterday tracks.groups.jsonl || failed "the groups of yesterday are gone"
  try 2 0 run tracks.csv --parameters parameters.txt --quiet --diagnostics none --mobile-dump none
  cmp -s yesterday tracks.groups.jsonl || failed "the groups depend on the parameters"
}

sequence() {
  local folder=$1 name truth input
  name=$(basename "$folder")
  input=$(find "$folder" -maxdepth 1 -name '*-S*L?.xml' | head -n 1)
  [ -n "$input" ] || input=$folder
  [ "$input" != "$folder" ] || [ -e "$folder/obsmat.txt" ] || return 0
  local reading=(--rate "$(rateOf "$name")")
  [ ! -e "$folder/calibration_derived.yml" ] || reading+=(--calibration "$folder/calibration_derived.yml")
  rm -f ./*.groups.jsonl
  tryOnTerminal run "$input" "${reading[@]}"
  local groups=(*.groups.jsonl)
  [ -s "${groups[0]}" ] || failed "no groups file"
  try 2 0 report "$input" "${groups[0]}" --output report.html "${reading[@]}"
  [ "$(wc -c < report.html)" -lt 8000000 ] || failed "the report is larger than 8 MB"
  truth=$folder/groups.txt
  [ ! -e "$folder/truth.jsonl" ] || truth=$folder/truth.jsonl
  [ -e "$truth" ] || return 0
  try 0 0 evaluate "${groups[0]}" --truth "$truth" --output scores.json
  expectScore "['windowedMitre']" 0.5
}

firstWords
madeTracks
results
mistakes
if [ -d "$data" ]; then
  echo "== Public sequences"
  for folder in "$data"/*/; do
    sequence "${folder%/}"
  done
else
  echo "== No public sequences: name their folder to try them, too"
fi
echo "Not as expected: $failures, after $SECONDS s"
[ "$failures" = 0 ]
