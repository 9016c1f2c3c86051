#!/usr/bin/env bash
# Builds the Debian package from a build folder, lists it, unpacks it into a
# scratch root and runs the unpacked varnoth-batch on the example data that
# the package carries.
set -euo pipefail
build="$1"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

(cd "$build" && cpack -G DEB -B "$work/pkg" >/dev/null)
deb="$(ls "$work"/pkg/*.deb)"
dpkg-deb -c "$deb" > "$work/contents"
cat "$work/contents"
for f in ./usr/bin/varnoth-batch ./usr/share/varnoth/examples/reference.csv \
         ./usr/share/varnoth/examples/fossil.csv ./usr/share/varnoth/examples/climate.csv \
         ./usr/share/varnoth/examples/stations.csv ./usr/share/varnoth/examples/targets.csv \
         ./usr/share/applications/varnoth.desktop ./usr/share/icons/hicolor/scalable/apps/varnoth.svg; do
  grep -q " $f\$" "$work/contents" || { echo "missing in the package: $f"; exit 1; }
done
depends="$(dpkg-deb -f "$deb" Depends)"
echo "Depends: $depends"
for d in fonts-dejavu-core qt6-qpa-plugins; do
  [[ "$depends" == *"$d"* ]] || { echo "missing dependency: $d"; exit 1; }
done
if grep -q " ./usr/bin/varnoth\$" "$work/contents"; then
  # varnoth-batch hands the runs with figures to the program that draws them.
  grep -q " ./usr/bin/varnoth-batch-figures\$" "$work/contents" ||
    { echo "missing in the package: ./usr/bin/varnoth-batch-figures"; exit 1; }
  [[ "$depends" == *libqt6widgets6* ]] || { echo "missing dependency: libqt6widgets6"; exit 1; }
  # Figures are saved as SVG drawings by both programs.
  [[ "$depends" == *libqt6svg6* ]] || { echo "missing dependency: libqt6svg6"; exit 1; }
fi

mkdir "$work/root" "$work/run"
dpkg -x "$deb" "$work/root"
# With no arguments the unpacked program finds the examples beside its bin/.
(cd "$work/run" && "$work/root/usr/bin/varnoth-batch" >/dev/null)
for f in loading.csv score-reference.csv score-fossil.csv coniss.csv curve-all.csv scatter-SumSST.csv; do
  [ -s "$work/run/varnoth-out/$f" ] || { echo "not written: $f"; exit 1; }
done
grep -q "share/varnoth/examples/reference.csv" "$work/run/varnoth-out/loading.csv" ||
  { echo "the run did not read the packaged examples"; exit 1; }
# The example set's figures, drawn offscreen by the unpacked programs.
if grep -q " ./usr/bin/varnoth\$" "$work/contents"; then
  (cd "$work/run" && "$work/root/usr/bin/varnoth-batch" --figures figs --figure-format pdf >/dev/null 2>&1)
  for f in scatter-sites diagram diagram-taxa-names reconstruction-SumSST est-obs-SumSST; do
    head -c 5 "$work/run/figs/$f.pdf" | grep -q "%PDF-" || { echo "no figure: $f.pdf"; exit 1; }
  done
fi
echo "package ok"
