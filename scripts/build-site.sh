#!/usr/bin/env bash
# Makes the site of the documentation in build/site: scripts/build-site.sh [PRESET], release by default. The
# reference of commands comes out of the program, that of the Python module out of its docstrings.
# Any warning of mkdocs ends it.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/${1:-release}
pages=build/site-pages

rm -rf "$pages" build/site
mkdir -p "$pages"
cp -r docs/. "$pages"
python3 scripts/make-manual.py "$build/bin/grouptracker" "$build/manual"
cp "$build/manual/commands.md" "$pages"
PYTHONPATH=$build/python /usr/bin/python3 scripts/make-python-reference.py > "$pages/python-reference.md"
/usr/bin/python3 scripts/make-how-pictures.py "$build" "$pages/images"
# What lies outside of the pages is shown as it stands.
sed -i 's|\](\.\./\([^)]*\))|](files/\1)|g' "$pages"/*.md
{ grep -oh '](files/[^)]*)' "$pages"/*.md || true; } | sed 's|](files/\(.*\))|\1|' | sort -u | while read -r file; do
  mkdir -p "$pages/files/$(dirname "$file")"
  cp "$file" "$pages/files/$file"
done
cp "$pages/start.md" "$pages/index.md"
mkdocs --quiet build --strict
echo "$(find build/site -name '*.html' | wc -l) pages in build/site"
