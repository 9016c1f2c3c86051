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

# Where the controls of the windows in view stand, by window and name: the
# program writes them to $MAP while it runs (VARNOTH_CONTROL_MAP).
MAP=$(mktemp)
export VARNOTH_CONTROL_MAP="$MAP"
at() {
  local x y
  for _ in $(seq 40); do
    read -r x y < <(awk -v w="$1" -v n="$2" '$1 == w && $2 == n { print $3, $4; exit }' "$MAP" 2>/dev/null) || true
    [ -n "${x:-}" ] && { echo "$x $y"; return 0; }
    sleep 0.25
  done
  echo "no control $2 in a window $1 in view" >&2
  return 1
}
# As a user does: the window to the front by its title bar, then the control.
click() {
  local x y w h
  read -r x y w h < <(awk -v w="$1" '$1 == w && $2 == "window" { print $3, $4, $5, $6; exit }' "$MAP")
  xdotool mousemove "$((x + w / 2))" "$((y + 8))" click 1
  sleep 0.3
  read -r x y < <(at "$1" "$2")
  xdotool mousemove "$x" "$y" click 1
  sleep 0.7
}
program() {
  "$BUILD/varnoth" >/dev/null 2>&1 &
  app=$!
  pids+=($app)
  main=$(xdotool search --sync --onlyvisible --name '^Varnoth' | head -1)
}
quit() {
  # Ctrl+Q in the main window ends the program.
  xdotool windowactivate --sync "$main"
  key ctrl+q
  for _ in $(seq 30); do kill -0 "$app" 2>/dev/null || break; sleep 0.2; done
  if kill -0 "$app" 2>/dev/null; then echo "the program did not end on Ctrl+Q" >&2; exit 1; fi
}
example_data() {
  # File > Open Example Data: the reference table, its pre-treatment, then
  # the fossil table.
  xdotool windowactivate --sync "$main"
  key alt+f
  key e
}

program
shot start
example_data
shot pretreatment
key Return
shot projected
click frmMain Command11
shot envelope
# The tightest envelope: the test runs again and the status line follows.
click frmMain Slider1
key Home
shot envelope-tight
click frmMain Command3
shot control-panel
panel=$(xdotool search --onlyvisible --name '^Control panel$' | head -1 || true)
[ -n "$panel" ] && xdotool windowclose "$panel" 2>/dev/null || true
click frmMain Command14
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
# Stereo pictures widen the main window only as far as the screen allows.
click frmMain Check1
shot stereo
click frmMain Check1

# The reconstruction with the example climate, its error model, the
# calibration and the matrix down the core.
click frmMain Command8
shot reconstruction
click frmMAT Command1
shot climate-dialog
type_path "$EXAMPLES/climate.csv"
shot reconstruction-curve
click frmMAT Command3
shot error-model
click frmMAT Command6
shot calibration
# The error model generated rather than read from a Vest-Vobs file.
click frmCalib Check4
click frmCalib Command3
shot calibration-started
click frmCalib Picture2_4
shot calibration-chart
# Back in the calibration window: the chart stays beside it.
click frmCalib Picture1_0
shot calibration-chart-stays
click frmCalib Command10
shot calibration-returned
click frmMAT Command4
shot matrix-down-the-core
quit

# The interpolation tool on the made-up station and target tables.
program
example_data
key Return
click frmMain Command8
click frmMAT Command8
shot interpolation
click frmLuvane Command0
shot stations-dialog
type_path "$EXAMPLES/stations.csv"
shot stations
click frmLuvane Command2
type_path "$EXAMPLES/targets.csv"
shot targets
click frmLuvane Command3
shot accuracy
click frmLuvane Command1
shot returned-to-varnoth
quit
rm -f "$MAP"
echo "the road ended with Ctrl+Q"
