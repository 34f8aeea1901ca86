#!/usr/bin/env bash
# The window program's pace beside the batch runner's, under a virtual X
# server:
#   1. marvanesse runs a copy of examples/cylinder2d with latts cut (default
#      12000 steps) and reports its steps per second and presented frames;
#   2. marvanesse-batch runs the same copy: steps per second, and the ratio;
#   3. marvanesse runs a 2D cavity of 257 x 257 and of 513 x 513 nodes, one
#      pixel a cell, and reports the frames it presented per second.
# The window program prints a "run pace:" line when a run ends (steps,
# seconds, process CPU, frames presented); the batch runner's last progress
# line gives its steps per second. Every figure carries the load average at
# its start: wall-time figures on a busy machine say little.
#
#   bench/windowRun.sh [BUILD_DIR=build/release] [CYLINDER_STEPS=12000] [CAVITY_SECONDS=25]
#
# Work folders, logs and a screenshot of each run (NAME-run.xwd, three
# seconds in) stay in BUILD_DIR/window-run/.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
build=${1:-build/release}
steps=${2:-12000}
cavitySeconds=${3:-25}
exe="$root/$build/app/marvanesse"
batch="$root/$build/app/marvanesse-batch"
out="$root/$build/window-run"
for x in "$exe" "$batch"; do [ -x "$x" ] || { echo "windowRun: $x is not built"; exit 1; }; done
command -v xvfb-run > /dev/null && command -v xdotool > /dev/null || { echo "windowRun: needs xvfb-run and xdotool"; exit 1; }
rm -rf "$out"
mkdir -p "$out/work"

load() { cut -d' ' -f1-3 /proc/loadavg; }

# A copy of an example with some parameters replaced: copyCase NAME FROM KEY=VALUE...
copyCase() {
  local name=$1 from=$2
  shift 2
  cp -r "examples/$from" "$out/$name"
  rm -rf "$out/$name/dump"/* "$out/$name/figs"/*
  mkdir -p "$out/$name/dump" "$out/$name/figs"
  local kv
  for kv in "$@"; do
    sed -i -E "s/^([0-9]+:${kv%%=*} +)[^ ]+/\1${kv#*=}/" "$out/$name/input/param.txt"
  done
}

copyCase cylinder cylinder2d "latts=$steps"
# The cavity at one pixel a cell; latts high: the script ends the run after
# CAVITY_SECONDS with Esc and Q, and the program reports the run's pace.
copyCase cavity257 cavity2d nx=257 ny=257 domx=257 latts=1000000 nfig=0 nfile=0
copyCase cavity513 cavity2d nx=513 ny=513 domx=513 latts=1000000 nfig=0 nfile=0

echo "== machine: $(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //')"

# The batch runner on the same cylinder copy (a fresh copy, no dumps).
cp -r "$out/cylinder" "$out/cylinder-batch"
echo "== marvanesse-batch, cylinder2d, latts $steps (load $(load))"
TIMEFORMAT='%R %U %S'
{ time "$batch" "$out/cylinder-batch" > "$out/batch.log" 2>&1; } 2> "$out/batch.time"
batchRate=$(tail -1 "$out/batch.log" | sed -nE 's/.* ([0-9.]+) steps\/s.*/\1/p')
read -r wall user sys < "$out/batch.time"
echo "batch: $batchRate steps/s (from its last progress line); wall $wall s, CPU user $user s + system $sys s"

export out exe
# The windows' runs. Each: the start screen's load row, the path typed into
# the program's file chooser, then Enter through confirmation, parameters,
# bitmap stage and placement; the run goes until its end (cylinder) or
# until the script quits it (cavities).
xvfb-run -a -s "-screen 0 1600x1200x24" bash -c '
set -euo pipefail
click() { xdotool mousemove "$1" "$2"; sleep 0.3; xdotool mousedown 1; sleep 0.2; xdotool mouseup 1; sleep 0.6; }
key() { xdotool keydown "$1"; sleep 0.2; xdotool keyup "$1"; sleep 0.6; }
window() { xdotool search --sync --name "Marvanesse" | head -1; }
at() { eval "$(xdotool getwindowgeometry --shell "$(window)")"; echo $((X + $1)) $((Y + $2 + 24)); }
load() { cut -d" " -f1-3 /proc/loadavg; }

# runCase NAME SECONDS: SECONDS 0 waits for the run to end by itself.
runCase() {
  local name=$1 seconds=$2
  cd "$out/work"
  "$exe" > "$out/$name.log" 2>&1 &
  local pid=$!
  sleep 4
  click $(at 80 194)
  sleep 1
  xdotool type --delay 40 "$out/$name"
  key Return
  sleep 1
  key Return
  sleep 1.5
  key Return
  sleep 2
  key Return
  sleep 2
  echo "== marvanesse in a window, $name (load $(load))"
  key Return
  sleep 3
  xwd -id "$(window)" -silent > "$out/$name-run.xwd" 2>/dev/null || true
  if [ "$seconds" = 0 ]; then
    for _ in $(seq 1 1200); do grep -q "run pace:" "$out/$name.log" && break; sleep 1; done
  else
    sleep $((seconds > 3 ? seconds - 3 : 0))
    key Escape
    sleep 0.5
    key q
    for _ in $(seq 1 60); do grep -q "run pace:" "$out/$name.log" && break; sleep 1; done
  fi
  grep "run pace:" "$out/$name.log" || { echo "windowRun: no run pace from $name"; cat "$out/$name.log"; }
  xdotool windowclose "$(window)" 2>/dev/null || kill "$pid"
  sleep 1
  kill "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
}

runCase cylinder 0
runCase cavity257 '"$cavitySeconds"'
runCase cavity513 '"$cavitySeconds"'
'

windowRate=$(sed -nE 's/.*run pace: [0-9]+ steps in [0-9.]+ s, ([0-9.]+) steps\/s.*/\1/p' "$out/cylinder.log" | tail -1)
if [ -n "$windowRate" ] && [ -n "$batchRate" ]; then
  awk -v w="$windowRate" -v b="$batchRate" 'BEGIN { printf "cylinder2d: window %.1f steps/s, batch %.1f steps/s, window/batch %.2f\n", w, b, w / b }'
fi
echo "== load at the end: $(load); logs in $out"
