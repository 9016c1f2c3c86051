#include "interpolation/Interpolation.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "state/Finite.h"
#include "state/Format.h"
#include "state/Parallel.h"
#include "state/RecordFile.h"

namespace varnoth {

namespace {

// A squared distance above this factor times R^2 is surely beyond R: the
// root is computed, as the power function gives it, only near the limit.
constexpr double kSquareMargin = 1 + 1e-9;
constexpr double kStartMinimum = 9999;

// The stations as the rows read them: positions in double, and each
// climate value already brought to sea level with the station's own rate.
struct StationTable {
  long Count = 0, Columns = 0, Width = 0;  // Width: columns 6..C
  std::vector<double> X, Y;
  std::vector<double> SeaLevel;  // (station - 1) * Width + (k - 6)
  const Array2<double>* Climate = nullptr;
  const Array1<float>* Altitude = nullptr;
};

StationTable Stations(const InterpolationState& st) {
  StationTable t;
  t.Count = st.InterpRefCount;
  t.Columns = st.InterpColumnCount;
  t.Width = std::max(0L, t.Columns - 5);
  st.InterpRefLon.Require(t.Count);
  st.InterpRefLat.Require(t.Count);
  st.InterpRefAlt.Require(t.Count);
  st.InterpRefClimate.Require(t.Count, t.Columns);
  st.InterpRefLapse.Require(t.Count, t.Columns);
  t.X.resize(static_cast<std::size_t>(t.Count));
  t.Y.resize(static_cast<std::size_t>(t.Count));
  t.SeaLevel.resize(static_cast<std::size_t>(t.Count * t.Width));
  for (long j = 1; j <= t.Count; ++j) {
    t.X[static_cast<std::size_t>(j - 1)] = st.InterpRefLon(j);
    t.Y[static_cast<std::size_t>(j - 1)] = st.InterpRefLat(j);
    const double alt = st.InterpRefAlt(j);
    const double* v = st.InterpRefClimate.Row(j, t.Columns);
    const double* lapse = st.InterpRefLapse.Row(j, t.Columns);
    double* sea = t.SeaLevel.data() + (j - 1) * t.Width;
    for (long k = 6; k <= t.Columns; ++k) sea[k - 6] = v[k] - alt * lapse[k] / 100;
  }
  t.Climate = &st.InterpRefClimate;
  t.Altitude = &st.InterpRefAlt;
  return t;
}

// Where one row stands and the rates that raise a value to its altitude.
struct RowPlace {
  double X, Y, Altitude;
  const double* Lapse;  // columns 0..C
};

// Stations by cells at least R wide, each cell's stations in file order:
// a row then looks only at the cells its radius touches. Used when the
// radius is small against the stations' extent.
struct CellGrid {
  bool Used = false;
  double MinX = 0, MinY = 0, Cell = 1;
  long NX = 0, NY = 0;
  std::vector<int> Start;  // per cell, CSR offsets into Items
  std::vector<int> Items;  // 0-based station indices

  long CellOf(double v, double min, long n) const {
    const double c = std::floor((v - min) / Cell);
    return c < 0 ? -1 : c >= static_cast<double>(n) ? n : static_cast<long>(c);
  }
};

constexpr long kGridSide = 1024;

struct Extent {
  double MinX = 0, MinY = 0, Width = 0, Height = 0;
};

Extent ExtentOf(const StationTable& t) {
  Extent e;
  if (t.Count == 0) return e;
  const auto [minX, maxX] = std::minmax_element(t.X.begin(), t.X.end());
  const auto [minY, maxY] = std::minmax_element(t.Y.begin(), t.Y.end());
  e.MinX = *minX;
  e.MinY = *minY;
  e.Width = *maxX - *minX;
  e.Height = *maxY - *minY;
  return e;
}

CellGrid BuildGrid(const StationTable& t, const Extent& e, double cell) {
  CellGrid g;
  g.Cell = std::max({cell, e.Width / kGridSide, e.Height / kGridSide});
  g.MinX = e.MinX;
  g.MinY = e.MinY;
  g.NX = static_cast<long>(e.Width / g.Cell) + 1;
  g.NY = static_cast<long>(e.Height / g.Cell) + 1;
  std::vector<long> cellOf(static_cast<std::size_t>(t.Count));
  g.Start.assign(static_cast<std::size_t>(g.NX * g.NY + 1), 0);
  for (long j = 0; j < t.Count; ++j) {
    const long cx = std::min(g.NX - 1, std::max(0L, g.CellOf(t.X[j], g.MinX, g.NX)));
    const long cy = std::min(g.NY - 1, std::max(0L, g.CellOf(t.Y[j], g.MinY, g.NY)));
    cellOf[j] = cy * g.NX + cx;
    ++g.Start[static_cast<std::size_t>(cellOf[j] + 1)];
  }
  for (std::size_t c = 1; c < g.Start.size(); ++c) g.Start[c] += g.Start[c - 1];
  g.Items.resize(static_cast<std::size_t>(t.Count));
  std::vector<int> fill(g.Start.begin(), g.Start.end() - 1);
  for (long j = 0; j < t.Count; ++j) g.Items[fill[cellOf[j]]++] = static_cast<int>(j);
  g.Used = true;
  return g;
}

// Cells of the radius, when it is small against the stations' extent; a
// radius near the extent gains nothing over the plain scan.
CellGrid RadiusGrid(const StationTable& t, double radius) {
  if (t.Count < 64 || !(radius > 0) || !std::isfinite(radius)) return {};
  const Extent e = ExtentOf(t);
  if (!(e.Width >= 4 * radius && e.Height >= 4 * radius)) return {};
  return BuildGrid(t, e, radius);
}

// Cells of about two stations each, for the nearest-station search: at most
// about Nr / 2 cells, so that even a row far from every station, which
// walks all rings, costs no more than a plain scan.
CellGrid NearestGrid(const StationTable& t) {
  if (t.Count < 64) return {};
  const Extent e = ExtentOf(t);
  if (!(e.Width > 0 && e.Height > 0)) return {};
  return BuildGrid(t, e, std::sqrt(e.Width * e.Height * 2 / static_cast<double>(t.Count)));
}

struct Work {
  std::vector<double> Sum, Raise;
  std::vector<std::pair<int, double>> Reach;  // station and distance
};

// The stations that take part for a row: within R and not at distance 0,
// with their distances, in file order.
void StationsInReach(const StationTable& t, const CellGrid& g, const RowPlace& row, double radius,
                     Work& work) {
  work.Reach.clear();
  const double bound = radius >= 0 ? radius * radius * kSquareMargin : -1;
  const double* xs = t.X.data();
  const double* ys = t.Y.data();
  auto consider = [&](long j) {
    const double dx = row.X - xs[j], dy = row.Y - ys[j];
    const double square = dx * dx + dy * dy;
    if (square > bound || square == 0) return;
    const double d = std::pow(square, 0.5);
    if (radius >= d) work.Reach.emplace_back(static_cast<int>(j), d);
  };
  if (!g.Used) {
    for (long j = 0; j < t.Count; ++j) consider(j);
    return;
  }
  const double reach = radius * kSquareMargin;
  const long x0 = std::max(0L, g.CellOf(row.X - reach, g.MinX, g.NX));
  const long x1 = std::min(g.NX - 1, g.CellOf(row.X + reach, g.MinX, g.NX));
  const long y0 = std::max(0L, g.CellOf(row.Y - reach, g.MinY, g.NY));
  const long y1 = std::min(g.NY - 1, g.CellOf(row.Y + reach, g.MinY, g.NY));
  for (long cy = y0; cy <= y1; ++cy)
    for (long cx = x0; cx <= x1; ++cx) {
      const long c = cy * g.NX + cx;
      for (int q = g.Start[c]; q < g.Start[c + 1]; ++q) consider(g.Items[q]);
    }
  std::sort(work.Reach.begin(), work.Reach.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
}

// Inverse-distance weighting of the stations within R, in file order.
void WeightedRow(const StationTable& t, const CellGrid& g, const RowPlace& row, double radius,
                 double power, const Array1<std::uint8_t>& nonNegative, double* out, Work& work) {
  const long width = t.Width;
  work.Sum.assign(static_cast<std::size_t>(width), 0.0);
  work.Raise.resize(static_cast<std::size_t>(width));
  for (long q = 0; q < width; ++q) work.Raise[q] = row.Altitude * row.Lapse[q + 6] / 100;
  double* sum = work.Sum.data();
  const double* raise = work.Raise.data();
  StationsInReach(t, g, row, radius, work);
  double weights = 0;
  for (const auto& [j, d] : work.Reach) {
    const double w = std::pow(d, power);
    weights += w;
    const double* sea = t.SeaLevel.data() + static_cast<long>(j) * width;
    for (long q = 0; q < width; ++q) sum[q] += w * (sea[q] + raise[q]);
  }
  for (long k = 1; k <= t.Columns; ++k) {
    double e = k >= 6 ? sum[k - 6] : 0.0;
    e = weights == 0 ? kMissing : e / weights;
    if (nonNegative(k) && e < 0 && e != kMissing) e = 0;
    out[k] = e;
  }
}

// The nearest station at non-zero distance, the first of equals; its value
// is raised by the row's own rate over the whole altitude difference.
Count NearestRow(const StationTable& t, const CellGrid& g, const RowPlace& row, double radius,
                 double* out) {
  const double* xs = t.X.data();
  const double* ys = t.Y.data();
  double minimum = kStartMinimum;
  double bound = kStartMinimum * kStartMinimum * kSquareMargin;
  long nearest = -9999;
  // Of equal distances the earliest station wins, whatever the order of
  // the visit.
  auto consider = [&](long j) {
    const double dx = row.X - xs[j], dy = row.Y - ys[j];
    const double square = dx * dx + dy * dy;
    if (square > bound || square == 0) return;
    const double d = std::pow(square, 0.5);
    if (minimum > d || (minimum == d && j + 1 < nearest)) {
      if (minimum > d) bound = square * kSquareMargin;
      minimum = d;
      nearest = j + 1;
    }
  };
  if (!g.Used) {
    for (long j = 0; j < t.Count; ++j) consider(j);
  } else {
    // Rings of cells around the row's cell; stations beyond ring r lie at
    // least (r - 1) cells away, allowing for the rounding of the cells.
    const long cx = std::min(g.NX - 1, std::max(0L, g.CellOf(row.X, g.MinX, g.NX)));
    const long cy = std::min(g.NY - 1, std::max(0L, g.CellOf(row.Y, g.MinY, g.NY)));
    const long last = std::max(g.NX, g.NY);
    auto visit = [&](long ix, long iy) {
      if (ix < 0 || ix >= g.NX || iy < 0 || iy >= g.NY) return;
      const long c = iy * g.NX + ix;
      for (int q = g.Start[c]; q < g.Start[c + 1]; ++q) consider(g.Items[q]);
    };
    for (long r = 0; r <= last; ++r) {
      if (r == 0) {
        visit(cx, cy);
      } else {
        for (long ix = cx - r; ix <= cx + r; ++ix) {
          visit(ix, cy - r);
          visit(ix, cy + r);
        }
        for (long iy = cy - r + 1; iy <= cy + r - 1; ++iy) {
          visit(cx - r, iy);
          visit(cx + r, iy);
        }
      }
      if (static_cast<double>(r - 1) * g.Cell > minimum * kSquareMargin) break;
    }
  }
  for (long k = 6; k <= t.Columns; ++k) {
    if (radius < minimum) {
      out[k] = kMissing;
      continue;
    }
    // No station at all away from the row: the index -9999 is out of range.
    const double v = (*t.Climate)(nearest, k);
    out[k] = v + (row.Altitude - (*t.Altitude)(nearest)) * row.Lapse[k] / 100;
  }
  return static_cast<Count>(nearest);
}

// One stage over rows 1..rows, on all cores, reporting after each block.
template <typename RowFn>
void RunStage(long rows, long offset, Progress& progress, long block, RowFn rowFn) {
  for (long first = 1; first <= rows; first += block) {
    const long last = std::min(rows, first + block - 1);
    ParallelRows(first, last, 8, [&](long b, long e) {
      Work work;
      for (long i = b; i <= e; ++i) rowFn(i, work);
    });
    progress.Step(offset + last);
  }
}

}  // namespace

void DoInterpolation(Session& s, InterpMode mode, std::string_view exponent,
                     std::string_view radiusText, Progress& progress) {
  InterpolationState& st = s.Interp;
  const double power = ToCount(LenientParse(exponent));
  const double radius = LenientParse(radiusText);
  const long nr = st.InterpRefCount, nt = st.InterpTargetCount, c = st.InterpColumnCount;
  const long total = ToCount(static_cast<long long>(nr) + nt);
  progress.Start(total);
  try {
    const StationTable t = Stations(st);
    st.SiteLongitude.Require(nt);
    st.SiteLatitude.Require(nt);
    st.SiteAltitude.Require(nt);
    st.InterpTargetLapse.Require(nt, c);
    st.InterpNonNegative.Require(c);
    const long block = std::max(64L, total / 50);
    const bool nearest = mode == InterpMode::MinimumDistance;
    const CellGrid grid = nearest ? NearestGrid(t) : RadiusGrid(t, radius);

    // Targets first, then the stations as their own targets.
    for (int stage = 0; stage < 2; ++stage) {
      const bool targets = stage == 0;
      const long rows = targets ? nt : nr;
      Array2<double>& estimate = targets ? st.InterpTargetEstimate : st.InterpRefEstimate;
      estimate.ReDim(rows, c);
      if (nearest) st.InterpNearest.ReDim(rows);
      const Array1<float>& xs = targets ? st.SiteLongitude : st.InterpRefLon;
      const Array1<float>& ys = targets ? st.SiteLatitude : st.InterpRefLat;
      const Array1<float>& alts = targets ? st.SiteAltitude : st.InterpRefAlt;
      const Array2<double>& lapse = targets ? st.InterpTargetLapse : st.InterpRefLapse;
      RunStage(rows, targets ? 0 : nt, progress, block, [&](long i, Work& work) {
        const RowPlace row{xs(i), ys(i), alts(i), lapse.Row(i, c)};
        double* out = estimate.Row(i, c);
        if (nearest)
          st.InterpNearest(i) = NearestRow(t, grid, row, radius, out);
        else
          WeightedRow(t, grid, row, radius, power, st.InterpNonNegative, out, work);
      });
    }

    // Huge station values or lapse rates overflow in the weighted sums.
    RequireFinite(st.InterpTargetEstimate);
    RequireFinite(st.InterpRefEstimate);

    // The target estimates become the climate at the reference sites.
    const Count m = ToCount(static_cast<long long>(c) - 5);
    s.ClimateParamCount = m;
    s.ClimateSiteNames.ReDimPreserve(s.RefSiteCount);
    s.ClimateParamNames.ReDimPreserve(m);
    s.ClimateData.ReDim(s.RefSiteCount, m);
    for (long i = 1; i <= nt; ++i)
      for (long k = 1; k <= m; ++k) s.ClimateData(i, k) = st.InterpTargetEstimate(i, k + 5);
    for (long k = 1; k <= m; ++k) s.ClimateParamNames(k) = st.InterpParamNames(k + 5);
    s.ClimateLoaded = true;
  } catch (...) {
    progress.Finish();
    throw;
  }
  progress.Finish();
}

bool SaveInterpolatedClimate(const Session& s, const std::optional<std::string>& path,
                             Progress& progress) {
  const long m = s.ClimateParamCount;
  return SaveRecordFile(path, progress, s.RefSiteCount, [&](RecordWriter& w) {
    w.Text("Site");
    for (long k = 1; k <= m; ++k) w.Text(s.ClimateParamNames(k));
    w.End();
    for (long i = 1; i <= s.RefSiteCount; ++i) {
      progress.Step(i);
      w.Text(s.RefSiteNames(i));
      for (long k = 1; k <= m; ++k) w.Number(s.ClimateData(i, k));
      w.End();
    }
  });
}

}  // namespace varnoth
