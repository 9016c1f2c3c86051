#!/usr/bin/env bash
# Runs every fuzz target of a fuzz build for SECONDS seconds each, starting
# from its seed corpus in tests/fuzz/corpus/<target>; new inputs collect in
# <build>/corpus/<target>. A crash, a sanitizer report or a broken invariant
# is a finding: its input is kept as <build>/finding-<target>-*.
#   scripts/run-fuzz.sh [BUILD_DIR] [SECONDS]
set -euo pipefail
build=${1:-build-fuzz}
seconds=${2:-60}
root=$(cd "$(dirname "$0")/.." && pwd)
status=0
shopt -s nullglob
targets=("$build"/tests/fuzz/fuzz_*)
if [ ${#targets[@]} -eq 0 ]; then
  echo "no fuzz targets in $build/tests/fuzz" >&2
  exit 1
fi
for exe in "${targets[@]}"; do
  [ -x "$exe" ] && [ -f "$exe" ] || continue
  name=$(basename "$exe")
  target=${name#fuzz_}
  seeds="$root/tests/fuzz/corpus/$target"
  work="$build/corpus/$target"
  log="$build/$name.log"
  mkdir -p "$work"
  if "$exe" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=65536 \
      -print_final_stats=1 -artifact_prefix="$build/finding-$target-" "$work" "$seeds" \
      > "$log" 2>&1; then
    runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo 0)
    echo "$name: $runs inputs in $seconds s ($((runs / seconds)) a second), nothing found"
  else
    echo "$name: FOUND SOMETHING, see $log"
    tail -40 "$log"
    status=1
  fi
done
exit $status
