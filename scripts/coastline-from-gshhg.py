#!/usr/bin/env python3
"""Writes data/coastline.csv from GSHHG "low" (levels 1 and 2: the shores of
the land and of the large lakes), as Debian's gmt-gshhg-low ships it, read
through GMT's own coast tool:

    apt-get install gmt gmt-gshhg-low
    python3 scripts/coastline-from-gshhg.py > data/coastline.csv

One straight segment per line, "x1,y1,x2,y2" in decimal degrees (longitude,
latitude) with two decimals. Polygons smaller than MIN_AREA km2 are left out
and each shore line is thinned (Douglas-Peucker, TOLERANCE degrees), so that
the world holds some ten thousand segments: enough for the Great Lakes and
for the magnifier's few degrees, few enough for a quick redraw. Segments
that round to a point are dropped.
"""
import subprocess
import sys
import tempfile

MIN_AREA = 1500  # km2: the smallest island or lake kept
TOLERANCE = 0.2  # degrees: how far a thinned line may stray


def shore_lines():
    """The shore lines of GMT's binned GSHHG, as lists of (lon, lat)."""
    # GMT leaves a history file where it runs: a folder of its own.
    with tempfile.TemporaryDirectory() as folder:
        out = subprocess.run(
            ["gmt", "coast", "-Rd", "-Dl", f"-A{MIN_AREA}/1/2", "-W1/0.25p", "-W2/0.25p", "-M"],
            check=True, capture_output=True, text=True, cwd=folder).stdout
    lines, current = [], []
    for row in out.splitlines():
        if row.startswith(">"):
            if len(current) > 1:
                lines.append(current)
            current = []
            continue
        x, y = row.split()[:2]
        current.append((float(x), float(y)))
    if len(current) > 1:
        lines.append(current)
    return lines


def joined(pieces):
    """GMT cuts each shore at the edges of its bins: the pieces are joined
    again where one ends at the point where another starts, so that the
    thinning sees whole shores."""
    key = lambda p: (round(p[0], 6), round(p[1], 6))
    starting = {}
    for i, piece in enumerate(pieces):
        starting.setdefault(key(piece[0]), []).append(i)
    ending = {}
    for i, piece in enumerate(pieces):
        ending.setdefault(key(piece[-1]), []).append(i)
    used = [False] * len(pieces)

    def unused(candidates):
        return next((j for j in candidates if not used[j]), None)

    lines = []
    for i in range(len(pieces)):
        if used[i]:
            continue
        # Back to the first piece of the shore (or round a closed one).
        head, seen = i, {i}
        while True:
            j = unused(ending.get(key(pieces[head][0]), []))
            if j is None or j in seen:
                break
            seen.add(j)
            head = j
        line, at = [], head
        while at is not None:
            used[at] = True
            line.extend(pieces[at] if not line else pieces[at][1:])
            at = unused(starting.get(key(pieces[at][-1]), []))
        lines.append(line)
    return lines


def thin(points, tolerance):
    """Douglas-Peucker: the points that keep the line within `tolerance`."""
    keep = [False] * len(points)
    keep[0] = keep[-1] = True
    stack = [(0, len(points) - 1)]
    while stack:
        a, b = stack.pop()
        (x1, y1), (x2, y2) = points[a], points[b]
        dx, dy = x2 - x1, y2 - y1
        length2 = dx * dx + dy * dy
        far, at = -1.0, -1
        for i in range(a + 1, b):
            px, py = points[i]
            if length2 == 0:
                d2 = (px - x1) ** 2 + (py - y1) ** 2
            else:
                t = max(0.0, min(1.0, ((px - x1) * dx + (py - y1) * dy) / length2))
                d2 = (px - x1 - t * dx) ** 2 + (py - y1 - t * dy) ** 2
            if d2 > far:
                far, at = d2, i
        if at >= 0 and far > tolerance * tolerance:
            keep[at] = True
            stack.append((a, at))
            stack.append((at, b))
    return [p for p, k in zip(points, keep) if k]


def text(v):
    s = f"{round(v, 2):.2f}"
    return "0.00" if s == "-0.00" else s


def main():
    count = 0
    out = []
    for line in joined(shore_lines()):
        pts = [(text(x), text(y)) for x, y in thin(line, TOLERANCE)]
        for (x1, y1), (x2, y2) in zip(pts, pts[1:]):
            if (x1, y1) == (x2, y2):
                continue
            # The map's edges are no shore: jumps across the date line and
            # runs along it.
            if abs(float(x2) - float(x1)) > 180:
                continue
            if abs(float(x1)) == 180 and x1 == x2:
                continue
            out.append(f"{x1},{y1},{x2},{y2}")
            count += 1
    sys.stdout.write("\n".join(out) + "\n")
    print(f"{count} segments", file=sys.stderr)


if __name__ == "__main__":
    main()
