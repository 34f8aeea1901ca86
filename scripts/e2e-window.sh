#!/usr/bin/env bash
# A person's whole session in the real window, under a virtual X server:
# marvanesse starts, a copy of examples/cavity2d is opened through the start
# screen's load row and the program's own file chooser (a path typed into
# it), the parameter editor and the bitmap stage are accepted, the run
# draws, a few shortcuts are pressed, the run is quit and the window closed.
# Screenshots must show a picture (not one flat colour) and the run must
# have written its dumps and images. A second pass opens the same project
# in Analysis mode.
#
#   scripts/e2e-window.sh [BUILD_DIR]     (default build/release)
#
# Screenshots and the program's output stay in BUILD_DIR/e2e-window/.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
build=${1:-build/release}
exe="$root/$build/app/marvanesse"
out="$root/$build/e2e-window"
[ -x "$exe" ] || { echo "e2e-window: $exe is not built"; exit 1; }
rm -rf "$out"
mkdir -p "$out/work"
cp -r examples/cavity2d "$out/cavity"
rm -rf "$out/cavity/dump"/* "$out/cavity/figs"/*
# A long run: the script ends it with Esc and Q while it draws.
sed -i -e 's/^\([0-9]*:latts \+\)[0-9]\+/\1100000/' -e 's/^\([0-9]*:nfile \+\)[0-9]\+/\12/' \
  -e 's/^\([0-9]*:nfig \+\)[0-9]\+/\12/' "$out/cavity/input/param.txt"

export out exe
xvfb-run -a -s "-screen 0 1280x800x24" bash -c '
set -euo pipefail
shot() { xwd -root -silent > "$out/$1.xwd"; }
# Clicks and keys last a moment, as a person makes them, so that every
# frame loop sees the button or key down.
click() { xdotool mousemove "$1" "$2"; sleep 0.3; xdotool mousedown 1; sleep 0.2; xdotool mouseup 1; sleep 0.6; }
key() { xdotool keydown "$1"; sleep 0.2; xdotool keyup "$1"; sleep 0.6; }
# Window-relative places: the window is found by its title.
window() { xdotool search --sync --name "Marvanesse" | head -1; }
# The menu bar stands above the screens: 24 pixels.
at() { eval "$(xdotool getwindowgeometry --shell "$(window)")"; echo $((X + $1)) $((Y + $2 + 24)); }

cd "$out/work"
for pass in simulation analysis; do
  "$exe" > "$out/$pass.log" 2>&1 &
  pid=$!
  sleep 4
  shot "$pass-1-start"
  # The load row (text 17) or the analysis text (19) beside it: the rows
  # start at listLeft = marginLeft + 8 textGap, the third row at
  # listTop + 3 textHeight + 2 textGap, for the default text size 20.
  if [ "$pass" = simulation ]; then click $(at 80 194); else click $(at 620 194); fi
  sleep 1
  shot "$pass-2-chooser"
  xdotool type --delay 40 "$out/cavity"
  key Return
  sleep 1
  shot "$pass-3-confirm"
  key Return
  sleep 1.5
  shot "$pass-4-editor"
  key Return
  sleep 2
  shot "$pass-5-bitmap"
  key Return
  sleep 2
  shot "$pass-6-placement"
  key Return
  sleep 8
  shot "$pass-7-run"
  xwd -id "$(window)" -silent > "$out/$pass-7-window.xwd"
  # Shortcuts of the run: quantities, vectors, help on and off.
  for k in 2 v v 5 h h; do key "$k"; done
  sleep 1
  shot "$pass-8-shortcuts"
  # Esc asks whether to end the run; Q ends it.
  key Escape
  sleep 0.5
  key q
  sleep 2
  shot "$pass-9-back"
  kill -0 "$pid" 2>/dev/null || { echo "e2e-window: marvanesse ended during the $pass pass"; cat "$out/$pass.log"; exit 1; }
  xdotool windowclose "$(window)" 2>/dev/null || kill "$pid"
  sleep 1
  kill "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
done
'

# The pictures: each screen must be more than one flat colour.
for f in "$out"/*.xwd; do
  python3 scripts/xwd-to-png.py "$f" "${f%.xwd}.png" --min-colours 16 > /dev/null
done
# The run's picture is the cavity's contour, not any busy screen: the window
# took the run's size (narrower than the start screen's 1080 pixels), the
# middle of the domain is mostly slow blue, the lid rows hold the fast red,
# and one row below the domain holds the colour bar's many hues.
for pass in simulation analysis; do
  python3 - "$out/$pass-7-window.xwd" <<'PY'
import importlib.util, sys
loader = importlib.util.spec_from_file_location("xwd", "scripts/xwd-to-png.py")
xwd = importlib.util.module_from_spec(loader)
loader.loader.exec_module(xwd)
width, height, rows = xwd.read_xwd(sys.argv[1])
name = sys.argv[1].rsplit("/", 1)[-1]

def pixel(x, y):
    return rows[y][3 * x:3 * x + 3]

def blue(c):
    return c[2] > 150 and c[2] > c[0] + 80 and c[2] > c[1] + 20

def red(c):
    return c[0] > 180 and c[1] < 90 and c[2] < 90

band = range(width * 3 // 10, width * 7 // 10, 3)
middle = [pixel(x, y) for y in range(height * 2 // 5, height * 7 // 10, 3) for x in band]
blue_share = sum(blue(c) for c in middle) / len(middle)
lid = any(red(pixel(x, y)) for y in range(height // 20, height // 5) for x in band)
hues = 0
for y in range(height * 3 // 4, height):
    seen = {bytes(pixel(x, y)) for x in range(0, width, 2)}
    hues = max(hues, sum(1 for c in seen if max(c) - min(c) > 120))
print("e2e-window: %s: %dx%d, %.0f%% blue in the middle, lid %s, %d hues in the colour bar row"
      % (name, width, height, 100 * blue_share, "red" if lid else "missing", hues))
ok = width < 1000 and blue_share > 0.5 and lid and hues >= 9
sys.exit(0 if ok else 1)
PY
done
# The run wrote its step-0 dump and image, and more.
ls "$out/cavity/dump/00000000/info.txt" "$out/cavity/dump/00000002/info.txt" "$out/cavity/figs/00000000.jpg" \
  "$out/cavity/figs/00000002.jpg" > /dev/null
[ -s "$out/cavity/input/param.txt" ]
grep -q "absProjPath" "$out/work/.history"
grep -q "cavity" "$out/work/.history"
echo "e2e-window: both passes done; screenshots in $out"
