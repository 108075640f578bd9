#!/usr/bin/env bash
# Makes the pictures of the documentation, docs/images/film.png, report.png and window.png, from what
# scripts/demo.sh left: scripts/make-pictures.sh [DEMO [FRAME [GROUP]]]. Needs chromium (the
# variable CHROMIUM may name another place than /usr/bin/chromium), and for the window a screen that
# nobody sees, Xvfb, and import of ImageMagick.
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

# The run of the demo with pictures: runWith OPTION...
runWith() {
  build/release/bin/grouptracker run "$demo/scene/scene.jsonl" \
    --parameters samples/parameters/video.txt --calibration "$demo/scene/calibration.yml" \
    --rate 10 --output "$work/groups.jsonl" --diagnostics none --mobile-dump none --quiet \
    --top-view "$@"
}

# The last picture that a window shows of the run up to a frame: photographWindow FRAME PICTURE
photographWindow() {
  local screen=:97 shot=$work/shot.png
  # A window takes nine tenths of the screen.
  Xvfb "$screen" -screen 0 1400x600x24 > "$work/screen.txt" 2>&1 &
  local server=$!
  sleep 2
  DISPLAY=$screen QT_QPA_PLATFORM=xcb runWith --frames ":$1" --show --video-rate 240 &
  local run=$!
  while kill -0 "$run" 2> "$work/gone.txt"; do
    DISPLAY=$screen import -silent -window root -crop 1260x540+0+0 "$work/next.png" && mv "$work/next.png" "$shot"
    sleep 0.1
  done
  kill "$server"
  mv "$shot" "$2"
}

runWith --video "$work/film"
cat > "$work/film.html" <<END
<body style="margin: 0"><img src="film/$(printf %06d "$frame").png" style="display: block; width: 100%">
END
photograph "$work/film.html" 1260,540 docs/images/film.png
photograph "$demo/pairs/report.html#frame=$frame&group=$group" 1200,860 docs/images/report.png
photographWindow "$frame" docs/images/window.png
ls -l docs/images
