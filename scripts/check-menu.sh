#!/usr/bin/env bash
# The window program's menu bar under a virtual X server, driven by xdotool
# as a user would: File opens on a click, hovering moves to Help, Esc closes,
# Alt+F and X (File, Exit) end the program with status 0; a click on File
# and one on Exit does the same. Screenshots land in the build folder.
# Usage (inside xvfb-run): scripts/check-menu.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: check-menu.sh BUILD_DIR}" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

start() {
  "$build/app/marvanesse" &
  pid=$!
  wid=$(xdotool search --sync --pid "$pid" | head -1)
  sleep 1.5
  eval "$(xdotool getwindowgeometry --shell "$wid")"
}

ended() {  # waits up to 5 s for the program to end with status 0
  for _ in $(seq 50); do
    if ! kill -0 "$pid" 2>/dev/null; then
      wait "$pid"
      return $?
    fi
    sleep 0.1
  done
  kill "$pid"
  return 1
}

start
xdotool mousemove $((X + 25)) $((Y + 12)) click 1
sleep 0.4
xwd -root -silent > "$build/menu-file.xwd"
xdotool mousemove $((X + 90)) $((Y + 12))
sleep 0.4
xwd -root -silent > "$build/menu-help.xwd"
xdotool key Escape
sleep 0.3
kill -0 "$pid" || { echo "check-menu: the program ended before Exit"; exit 1; }
xdotool key alt+f
sleep 0.3
xdotool key x
ended || { echo "check-menu: Alt+F, X did not end the program"; exit 1; }

start
xdotool mousemove $((X + 25)) $((Y + 12)) click 1
sleep 0.4
xdotool mousemove $((X + 40)) $((Y + 95)) click 1
ended || { echo "check-menu: File, Exit by the mouse did not end the program"; exit 1; }
echo "check-menu: the menu opens, moves, closes and exits"
