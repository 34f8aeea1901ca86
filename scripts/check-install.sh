#!/usr/bin/env bash
# Installs a built tree into a temporary prefix and runs the installed
# marvanesse-batch on a copy of an installed example, from a working directory
# that holds none of the program's files: the programs must find everything
# of their own relative to themselves.
# Usage: scripts/check-install.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: check-install.sh BUILD_DIR}" && pwd)
prefix=$(mktemp -d)
work=$(mktemp -d)
elsewhere=$(mktemp -d)
trap 'rm -rf "$prefix" "$work" "$elsewhere"' EXIT

cmake --install "$build" --prefix "$prefix" >/dev/null
share="$prefix/share/marvanesse"
for f in bin/marvanesse bin/marvanesse-batch share/applications/marvanesse.desktop \
         share/icons/hicolor/64x64/apps/marvanesse.png share/marvanesse/picture444.png \
         share/marvanesse/help/param_en.html share/marvanesse/help/param.html share/marvanesse/help/help.css \
         share/marvanesse/examples/cavity2d/input/param.txt; do
  [ -e "$prefix/$f" ] || { echo "check-install: $f was not installed"; exit 1; }
done
if ls "$share"/examples/*/dump/0* >/dev/null 2>&1; then
  echo "check-install: results of earlier runs were installed with the examples"; exit 1
fi
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$prefix/share/applications/marvanesse.desktop"
fi

cp -r "$share/examples/cavity2d" "$work/"
chmod -R u+w "$work"
cd "$elsewhere"
"$prefix/bin/marvanesse-batch" --quiet "$work/cavity2d"
[ -f "$work/cavity2d/dump/00000000/info.txt" ] || { echo "check-install: the run wrote no dump"; exit 1; }
[ -z "$(ls -A "$elsewhere")" ] || { echo "check-install: the run wrote into the working directory"; exit 1; }
echo "check-install: installed programs run from $elsewhere"
