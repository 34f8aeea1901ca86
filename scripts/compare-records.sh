#!/bin/bash
# Compares the force and heat-loss records that two marvanesse-batch binaries
# write for short serial runs of the cylinder, thermo cavity and sphere
# examples with every colour flagged for recording. Serial, because the
# parallel solver's sums may differ in the last digits from run to run.
#   scripts/compare-records.sh OLD_BINARY NEW_BINARY
set -e
here=$(cd "$(dirname "$0")/.." && pwd)
records() {  # binary, output folder
  mkdir -p "$2"
  for e in cylinder2d thermo2d sphere3d; do
    d=$(mktemp -d /tmp/records.XXXXXX)
    cp -r "$here/examples/$e/input" "$d/input"
    mkdir -p "$d/dump" "$d/figs"
    sed -i -E "s/^([0-9]+:latts) +[^ ]+/\1 30/; s/^([0-9]+:nfile) +[^ ]+/\1 0/; s/^([0-9]+:nfig) +[^ ]+/\1 0/;
               s/^([0-9]+:parallel) +[^ ]+/\1 0/" "$d/input/param.txt"
    [ $e = cylinder2d ] && sed -i -E "s/^([0-9]+:nx) +[^ ]+/\1 121/; s/^([0-9]+:ny) +[^ ]+/\1 31/" "$d/input/param.txt"
    sed -i -E "s/^(forceRecInterval|heatLossRecInterval) +.*/\1 5/; s/^(showForce|showHeatLoss) +.*/\1 1/;
               s/^(numRecForce|numRecHeatLoss) +.*/\1 8/" "$d/input/viz.txt"
    python3 - "$d/dump" <<'PY'
import sys
names = ["Black", "Blue", "Red", "Green", "Yellow", "Cyan", "STL", "Non-Preset"]
head = "%12s %12s " % ("ts", "time(s)") + "".join("%12s_flag " % n for n in names)
data = "%12d %12.5e " % (0, 0.0) + "".join("%17d " % 1 for n in names)
force = head + "".join("%12s_Fx(N) %12s_Fy(N) %12s_Fz(N) " % (n, n, n) for n in names) + "\n"
force += data + "".join("%18.5e " % 0.0 for n in range(24)) + "\n"
heat = head + "".join("%12s_heatLoss(W/m^2) " % n for n in names) + "\n"
heat += data + "".join("%18.5e " % 0.0 for n in range(8)) + "\n"
open(sys.argv[1] + "/force.txt", "w").write(force)
open(sys.argv[1] + "/heatLoss.txt", "w").write(heat)
PY
    "$1" --quiet "$d" > /dev/null
    cp "$d/dump/force.txt" "$2/$e-force.txt"
    cp "$d/dump/heatLoss.txt" "$2/$e-heatLoss.txt"
    rm -rf "$d"
  done
}
out=$(mktemp -d /tmp/compare-records.XXXXXX)
records "$1" "$out/old"
records "$2" "$out/new"
diff -r "$out/old" "$out/new" && echo "records identical ($(ls "$out/new" | wc -l) files, $(cat "$out/new"/*force.txt | wc -l) force lines)"
rm -rf "$out"
