#!/usr/bin/env node
// Turns a TopoJSON land outline (Natural Earth 1:110m as the npm package
// world-atlas@2 ships it, land-110m.json) into data/coastline.csv: one
// straight segment per line, "x1,y1,x2,y2" in decimal degrees with two
// decimals. Segments that round to a point are dropped, and so are the
// seams of the date line and the pole.
//
//   npm pack world-atlas@2 && tar xzf world-atlas-2.*.tgz
//   node scripts/coastline-from-topojson.js package/land-110m.json > data/coastline.csv
"use strict";
const fs = require("fs");

const topo = JSON.parse(fs.readFileSync(process.argv[2], "utf8"));
const t = topo.transform;
const out = [];
const fmt = (v) => {
  const s = (Math.round(v * 100) / 100).toFixed(2);
  return s === "-0.00" ? "0.00" : s;
};
for (const arc of topo.arcs) {
  // Quantised arcs are delta-encoded from the first position.
  let x = 0, y = 0;
  const pts = arc.map(([dx, dy]) => {
    if (t) {
      x += dx;
      y += dy;
      return [x * t.scale[0] + t.translate[0], y * t.scale[1] + t.translate[1]];
    }
    return [dx, dy];
  });
  for (let i = 1; i < pts.length; i++) {
    const a = pts[i - 1].map(fmt), b = pts[i].map(fmt);
    if (a[0] === b[0] && a[1] === b[1]) continue;
    // The outline is cut at the date line and closed along the map's edge:
    // jumps across the date line, runs along it and along the South Pole's
    // line are no coast.
    const [x1, y1, x2, y2] = [a[0], a[1], b[0], b[1]].map(Number);
    if (Math.abs(x2 - x1) > 180) continue;
    if (Math.abs(x1) === 180 && x1 === x2) continue;
    if (y1 <= -89.99 && y2 <= -89.99) continue;
    out.push(`${a[0]},${a[1]},${b[0]},${b[1]}`);
  }
}
process.stdout.write(out.join("\n") + "\n");
