#!/usr/bin/env bash
# Tests the HTML report in a headless Chromium: scripts/test-report.sh REPORT. Needs npm and
# chromium (the variable CHROMIUM may name another place than /usr/bin/chromium).
set -euo pipefail
REPORT=$(realpath "$1")
export REPORT
cd "$(dirname "$0")/../host/report/web"
npm ci --ignore-scripts --no-audit --no-fund --silent
npm test --silent
