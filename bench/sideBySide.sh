#!/bin/bash
# All the figures of the speed table in docs/performance.md, in one run: the
# pressure sweep (both row kernels, 1 and 2 threads, three repetitions), the
# cavity to t = 20 s on 1 and 2 threads (three runs each, in turn), and icoFoam on the
# same case where OpenFOAM is installed. Every line carries the load average
# at its start.
#
# Usage: bench/sideBySide.sh [build folder=build/release] [runs=3]
set -u

build=${1:-build/release}
runs=${2:-3}
here=$(cd "$(dirname "$0")" && pwd)

echo "== machine: $(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //'), load average $(cut -d' ' -f1-3 /proc/loadavg)"
echo "== pressure sweep"
"$build/bench/pressureSweepBench" --benchmark_repetitions="$runs" --benchmark_filter='Triad|Barrier|Sweep' 2>&1 |
  grep -E '^(BM_|Benchmark)'
# One and two threads in turn, so that a host whose pace drifts during the
# run slows both alike.
echo "== cavity, 1 and 2 threads in turn"
for run in $(seq "$runs"); do
  for threads in 1 2; do
    "$build/bench/cavityRunBench" "$threads" 1 | sed "s/^cavity run 1:/cavity run $run:/"
  done
done
echo "== icoFoam"
if command -v icoFoam >/dev/null 2>&1 || [ -f /usr/share/openfoam/etc/bashrc ]; then
  "$here/openfoamCavity.sh" /tmp/marv-openfoam-cavity "$runs"
else
  echo "OpenFOAM not installed: no icoFoam figures"
fi
