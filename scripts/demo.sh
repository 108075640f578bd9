#!/usr/bin/env bash
# Shows the main job: installs what is missing, builds, simulates a square with people alone and in
# groups, tracks the groups by pairs and by clusters, draws a film and a report of the first, and says
# where to look: scripts/demo.sh [FOLDER], build/demo by default (no blanks in its name).
set -euo pipefail
cd "$(dirname "$0")/.."
demo=${1:-build/demo}
program=build/release/bin/grouptracker
rate=10  # frames per second

scripts/build.sh release --target grouptracker --target GroupTrackerProcessGroupTrackerPlugin

# The parameters of a mode, with the output images turned on.
writeParameters() {
  sed -e "s|^\(imagesFolder:\s*\).*|\1$demo/scene/images/|" \
    -e "s|^\(outputFolder:\s*\).*|\1$demo/$1/|" \
    -e 's|^\(saveOutput:\s*\).*|\11|' -e 's|^\(openCVOutput:\s*\).*|\11|' \
    "samples/parameters/$2" > "$demo/$1.txt"
}

rm -rf "$demo"
mkdir -p "$demo/pairs" "$demo/clusters"
echo "Simulating a square with people alone and in groups"
"$program" simulate --seed 5 --people 30 --groups 2,3,2,4,3 --frames 250 --rate "$rate" \
  --noise 0.02 --missed 0.01 --images --output "$demo/scene"

for mode in pairs:video.txt clusters:clustering.txt; do
  name=${mode%%:*}
  writeParameters "$name" "${mode##*:}"
  pictures=()
  if [ "$name" = pairs ]; then
    pictures=(--video "$demo/pairs/film.mp4" --top-view --video-rate "$rate")
  fi
  echo "Tracking groups by $name"
  "$program" run "$demo/scene/scene.jsonl" --parameters "$demo/$name.txt" \
    --calibration "$demo/scene/calibration.yml" \
    --rate "$rate" --output "$demo/$name/groups.jsonl" --events "$demo/$name/events.jsonl" \
    --actors "$demo/$name/actors.jsonl" \
    --diagnostics "$demo/$name/diagnostics.txt" --mobile-dump none \
    "${pictures[@]}"
  "$program" evaluate "$demo/$name/groups.jsonl" --truth "$demo/scene/truth.jsonl" \
    > "$demo/$name/scores.txt"
done

# A report of the run by pairs: makeReport FILE PAGE [OPTION ...]
makeReport() {
  "$program" report "$demo/scene/scene.jsonl" "$demo/pairs/$1" --output "$demo/pairs/$2" \
    --calibration "$demo/scene/calibration.yml" --truth "$demo/scene/truth.jsonl" \
    --rate "$rate" "${@:3}"
}

echo "Making the reports"
makeReport groups.jsonl report.html
makeReport actors.jsonl tracker.html --diagnostics "$demo/pairs/diagnostics.txt"

cat <<END

Look at
  $demo/pairs/report.html        everything in one page, for a browser: player, timeline, table
  $demo/pairs/tracker.html       the same of what the tracker itself puts out, with its reasons
  $demo/pairs/film.mp4           the groups on the images, and the ground from above beside them
  $demo/pairs/*.png              annotated images, groups found by pairs
  $demo/clusters/*.png           the same, groups found by clusters
  $demo/pairs/groups.jsonl       the groups of every frame, one line each
  $demo/pairs/events.jsonl       when groups were created, joined, left, merged, split and ended
  $demo/pairs/scores.txt         how good that is, measured against $demo/scene/truth.jsonl
  $demo/pairs/diagnostics.txt    what the tracker says about its decisions

On the images each person is in a box with the number of the observation; boxes of one colour are one
group, labelled with the group's number, with a black box around them; the frame number stands in the
upper right corner.
END
