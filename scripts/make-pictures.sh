#!/usr/bin/env bash
# Makes the pictures of the README, docs/images/film.png and docs/images/report.png, from what
# scripts/demo.sh left: scripts/make-pictures.sh [DEMO [FRAME [GROUP]]]. Needs chromium (the
# variable CHROMIUM may name another place than /usr/bin/chromium).
set -euo pipefail
cd "$(dirname "$0")/.."
demo=$(realpath "${1:-build/demo}")
frame=${2:-168}
group=${3:-2}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A picture of a page: photograph PAGE WIDTH,HEIGHT PICTURE
photograph() {
  "${CHROMIUM:-/usr/bin/chromium}" --headless --no-sandbox --disable-gpu --hide-scrollbars \
    --user-data-dir="$work/profile" --virtual-time-budget=10000 --window-size="$2" \
    --screenshot="$PWD/$3" "file://$1" 2> "$work/chromium.txt" || { cat "$work/chromium.txt" >&2; exit 1; }
}

build/release/bin/grouptracker run "$demo/scene/scene.jsonl" \
  --parameters samples/parameters/video.txt --calibration "$demo/scene/calibration.yml" \
  --rate 10 --output "$work/groups.jsonl" --diagnostics none --mobile-dump none --quiet \
  --video "$work/film" --top-view
cat > "$work/film.html" <<END
<body style="margin: 0"><img src="film/$(printf %06d "$frame").png" style="display: block; width: 100%">
END
photograph "$work/film.html" 1260,540 docs/images/film.png
photograph "$demo/pairs/report.html#frame=$frame&group=$group" 1200,860 docs/images/report.png
ls -l docs/images
