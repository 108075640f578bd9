#!/usr/bin/env bash
# Builds the page of the HTML report, host/report/assets/report.html, from host/report/web. Needs
# npm; the result is kept in the repository, so that building the program needs none.
# With --check it only tells whether the page in the repository is up to date.
set -euo pipefail
cd "$(dirname "$0")/../host/report"
before=$(sha256sum assets/report.html 2>/dev/null || true)
(cd web && npm ci --ignore-scripts --no-audit --no-fund --silent && npm run --silent build)
if [ "${1:-}" = --check ] && [ "$before" != "$(sha256sum assets/report.html)" ]; then
  echo "host/report/assets/report.html was not up to date with host/report/web" >&2
  exit 1
fi
