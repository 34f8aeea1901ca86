#!/usr/bin/env bash
# Runs every fuzz target of build/fuzz for a bounded time on a copy of its
# seed folder (tests/fuzz/seeds/TARGET), so that the seeds in the tree stay
# as they are. Usage: scripts/run-fuzz.sh [SECONDS_PER_TARGET]
# A crash leaves its input in build/fuzz/findings/ and fails the script.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-20}
bin=build/fuzz/tests/fuzz
findings=build/fuzz/findings
mkdir -p "$findings"
status=0
for seeds in tests/fuzz/seeds/*/; do
  target=$(basename "$seeds")
  corpus=$(mktemp -d)
  cp -r "$seeds". "$corpus"/
  echo "-- $target: ${seconds} s"
  if ! ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    "$bin/$target" -max_total_time="$seconds" -rss_limit_mb=2048 -max_len=65536 -print_final_stats=0 \
    -artifact_prefix="$findings/$target-" "$corpus" 2> "$findings/$target.log"; then
    echo "   $target failed; its log: $findings/$target.log"
    tail -n 30 "$findings/$target.log"
    status=1
  else
    grep -E "^Done [0-9]+ runs" "$findings/$target.log" | tail -n 1 || true
  fi
  rm -rf "$corpus"
done
exit $status
