#!/usr/bin/env bash
# Installs what is missing of the packages that the given lists name: scripts/install.sh [LIST...],
# scripts/packages.txt by default. Does nothing, and asks for no rights, when nothing is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
lists=("$@")
[ ${#lists[@]} -gt 0 ] || lists=(scripts/packages.txt)

# What is installed, and what that provides: another package may stand for one of the list.
installed=" $(dpkg-query -W -f='${db:Status-Abbrev} ${Package} ${Provides}\n' |
  sed -n 's/^ii *//p' | tr ',\n' '  ') "

isInstalled() {
  [[ $installed == *" $1 "* ]]
}

missing=()
while read -r package; do
  isInstalled "$package" || missing+=("$package")
done < <(sed 's/#.*//' "${lists[@]}" | awk 'NF')
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing ${missing[*]}" >&2
asRoot=()
[ "$(id -u)" = 0 ] || asRoot=(sudo)
"${asRoot[@]}" apt-get update -qq
"${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
