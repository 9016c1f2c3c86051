#!/usr/bin/env bash
# The road of one analysis as a user meets it: the program on a real X
# display (Xvfb, 1280 x 1024) with a window manager (openbox), driven by
# xdotool through the keyboard and by clicks on named controls, with a
# picture of the whole screen after each step.
#   scripts/shots-x11.sh [build folder] [output folder]
set -euo pipefail
BUILD=${1:-build}
OUT=${2:-shots-x11}
ROOT=$(cd "$(dirname "$0")/.." && pwd)
EXAMPLES="$ROOT/data/examples"

# What the road needs beyond the build, installed only when missing.
"$ROOT/scripts/install-deps.sh" xvfb openbox xdotool

mkdir -p "$OUT"
rm -f "$OUT"/*.png
# A display number of its own, so that other runs are left alone.
NUMBER=${VARNOTH_DISPLAY:-$((90 + $$ % 100))}
export DISPLAY=":$NUMBER"
export QT_QPA_PLATFORM=xcb
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
}
trap cleanup EXIT

Xvfb "$DISPLAY" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done 2>/dev/null || sleep 2
openbox >/dev/null 2>&1 &
pids+=($!)
sleep 1

step=0
shot() {
  step=$((step + 1))
  sleep 0.8
  "$BUILD/varnoth-shots" --grab "$OUT/$(printf '%02d' $step)-$1.png" >/dev/null
  echo "$OUT/$(printf '%02d' $step)-$1.png"
}
key() {
  xdotool key --clearmodifiers "$@"
  sleep 0.5
}
type_path() {
  sleep 1
  xdotool type --delay 5 "$1"
  key Return
}

# Where the main window's controls stand, by name.
probe=$("$BUILD/varnoth-shots" --probe)
click() {
  local x y
  read -r x y < <(awk -v n="$1" '$1 == n { print $2, $3 }' <<<"$probe")
  xdotool windowactivate --sync "$main" 2>/dev/null || true
  xdotool mousemove --window "$main" "$x" "$y" click 1
  sleep 0.7
}

"$BUILD/varnoth" >/dev/null 2>&1 &
app=$!
pids+=($app)
main=$(xdotool search --sync --onlyvisible --name '^Varnoth' | head -1)
shot start

# Ctrl+O imports the reference table; the pre-treatment dialog follows.
xdotool windowactivate --sync "$main"
key ctrl+o
shot open-dialog
type_path "$EXAMPLES/reference.csv"
shot pretreatment
key Return
shot eofs
key ctrl+o
type_path "$EXAMPLES/fossil.csv"
shot projected
click Command11
shot envelope
# The tightest envelope: the test runs again and the status line follows.
click Slider1
key Home
shot envelope-tight
click Command3
shot control-panel
panel=$(xdotool search --onlyvisible --name '^Control panel$' | head -1 || true)
[ -n "$panel" ] && xdotool windowclose "$panel" 2>/dev/null || true
click Command14
shot diagram
diagram=$(xdotool search --onlyvisible --name '^Diagram$' | head -1)
xdotool windowactivate --sync "$diagram"
key alt+t c
shot diagram-coniss
key alt+t c
# Squeezed by the user: the diagram keeps its smallest usable size.
xdotool windowsize --sync "$diagram" 200 300 2>/dev/null || xdotool windowsize "$diagram" 200 300
shot diagram-smallest
xdotool windowsize "$diagram" 1000 720
# The reconstruction window and the calibration tool, by the places of
# their controls.
probe_mat=$("$BUILD/varnoth-shots" --probe frmMAT)
probe_calib=$("$BUILD/varnoth-shots" --probe frmCalib)
click_in() {  # window, probe, control
  local x y
  read -r x y < <(awk -v n="$3" '$1 == n { print $2, $3 }' <<<"$2")
  xdotool windowactivate --sync "$1" 2>/dev/null || true
  xdotool mousemove --window "$1" "$x" "$y" click 1
  sleep 0.7
}
click Command8
mat=$(xdotool search --sync --onlyvisible --name '^Reconstruction$' | head -1)
shot reconstruction
click_in "$mat" "$probe_mat" Command1
type_path "$EXAMPLES/climate.csv"
shot reconstruction-curve
click_in "$mat" "$probe_mat" Command3
sleep 1
shot reconstruction-error-model
# The generated error model, "Start", then "Return": the window widens to
# show the calibrated matrix with the curve and the scatter.
click_in "$mat" "$probe_mat" Command6
calib=$(xdotool search --sync --onlyvisible --name '^Ostrel 3.0$' | head -1)
# Tall enough that "Start" and "Return" stand above the status line.
xdotool windowsize --sync "$calib" 1224 640 2>/dev/null || xdotool windowsize "$calib" 1224 640
sleep 0.5
click_in "$calib" "$probe_calib" Check4
click_in "$calib" "$probe_calib" Command3
sleep 2
shot calibration
click_in "$calib" "$probe_calib" Command10
xdotool windowactivate --sync "$mat" 2>/dev/null || true
shot reconstruction-returned
click_in "$mat" "$probe_mat" Command4
sleep 2
shot reconstruction-matrices
# Ctrl+Q in the main window ends the program.
xdotool windowactivate --sync "$main"
key ctrl+q
for _ in $(seq 30); do kill -0 "$app" 2>/dev/null || break; sleep 0.2; done
if kill -0 "$app" 2>/dev/null; then echo "the program did not end on Ctrl+Q" >&2; exit 1; fi
echo "the road ended with Ctrl+Q"
