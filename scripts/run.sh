#!/usr/bin/env bash
# `make run`: the desktop program on a display; without one, the whole road
# of an analysis of the example data by the batch runner, with its figures.
#   scripts/run.sh [build folder]
set -euo pipefail
BUILD=${1:-build}
ROOT=$(cd "$(dirname "$0")/.." && pwd)
EXAMPLES="$ROOT/data/examples"

if [ -x "$BUILD/varnoth" ] && { [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ] ||
  [ -n "${QT_QPA_PLATFORM:-}" ]; }; then
  exec "$BUILD/varnoth"
fi

OUT=${VARNOTH_OUT:-varnoth-out}
if [ -x "$BUILD/varnoth" ]; then
  echo "No display (DISPLAY and WAYLAND_DISPLAY are unset): the example data go through the"
  echo "whole analysis without windows instead."
fi
figures=()
# The figures need the desktop program's drawing, built with it.
if [ -x "$BUILD/varnoth" ]; then figures=(--figures "$OUT/figures" --figure-format svg); fi
"$BUILD/varnoth-batch" \
  --reference "$EXAMPLES/reference.csv" --fossil "$EXAMPLES/fossil.csv" \
  --envelope 0.1 --coniss --save-all-eof \
  --climate "$EXAMPLES/climate.csv" --error-model --calibrate SumSST \
  "${figures[@]}" --out "$OUT"
echo "EOFs, envelope, CONISS, reconstruction with its error model and the calibration of"
echo "SumSST on the example data; written in $(cd "$OUT" && pwd):"
(cd "$OUT" && find . -type f | sed 's|^\./|  |' | sort)
