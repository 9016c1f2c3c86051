#include "interpolation/Accuracy.h"

#include <cmath>

#include "state/Format.h"
#include "state/RecordFile.h"

namespace varnoth {

namespace {

bool BothValues(const InterpolationState& st, long i, long k) {
  return st.InterpRefEstimate(i, k) != kMissing && st.InterpRefClimate(i, k) != kMissing;
}

void Correlate(Session& s, ScatterPairs& out, double sx, double sy) {
  InterpolationState& st = s.Interp;
  const long n = static_cast<long>(out.Points.size());
  st.InterpPairCount = ToCount(static_cast<long long>(n));
  out.PairCountSet = true;
  // Two values near the largest double overflow the plain sums already.
  if (!std::isfinite(sx) || !std::isfinite(sy)) ThrowOverflow();
  out.MeanEstimate = Div(sx, static_cast<double>(n));
  out.MeanObserved = Div(sy, static_cast<double>(n));
  out.Counted = true;

  double sxx = 0, syy = 0, sxy = 0;
  for (const ScatterPoint& p : out.Points) {
    const double dx = p.Estimate - out.MeanEstimate, dy = p.Observed - out.MeanObserved;
    sxx += dx * dx;
    syy += dy * dy;
    sxy += dx * dy;
  }
  // Values near the largest double overflow the sums: the overflow failure,
  // never a NaN shown as the coefficient.
  const double product = syy * sxx;
  if (!std::isfinite(sxy) || !std::isfinite(product)) ThrowOverflow();
  const double d = std::pow(product, 0.5);
  if (d == 0) return;
  out.Correlation = Round(sxy / d * 10000) / 10000;
  out.CorrelationText = FormatGeneral(*out.Correlation);

  // Every station with an estimate takes the estimate row of its running
  // number, while both values land at its own index: the pairs stay packed
  // only as long as no earlier station lacks a neighbour.
  const long nr = st.InterpRefCount, c = st.InterpColumnCount;
  st.InterpPairEstimates.ReDim(nr, c);
  st.InterpPairObserved.ReDim(nr, c);
  long m = 0;
  for (long i = 1; i <= nr; ++i) {
    if (st.InterpRefEstimate(i, 1) == kMissing || st.InterpRefClimate(i, 1) == kMissing) continue;
    ++m;
    for (long k = 1; k <= c; ++k) {
      st.InterpPairEstimates(i, k) = ToSingle(st.InterpRefEstimate(m, k));
      st.InterpPairObserved(i, k) = ToSingle(st.InterpRefClimate(i, k));
    }
  }
  out.Packed = true;
}

}  // namespace

AxisRange AutoScale(const Session& s) {
  const InterpolationState& st = s.Interp;
  const long k = st.InterpCurrentParam;
  float mn = 9999, mx = -9999;
  for (long i = 1; i <= st.InterpRefCount; ++i) {
    const double e = st.InterpRefEstimate(i, k);
    if (e == kMissing) continue;
    if (e < mn) mn = ToSingle(e);
    if (e > mx) mx = ToSingle(e);
  }
  double e = 0;
  if (mx != 0) {
    const double square = static_cast<double>(mx) * mx;
    e = Round(std::log10(std::pow(square, 0.5)) - 0.5);
  }
  const double u = std::pow(10.0, e) / 2;
  AxisRange r;
  r.Min = ToSingle(Round(mn / u - 0.5) * u);
  r.Max = ToSingle(Round(mx / u + 0.5) * u);
  return r;
}

ScatterPairs ScatterPairsPL(Session& s) {
  ScatterPairs out;
  try {
    const InterpolationState& st = s.Interp;
    const long k = st.InterpCurrentParam;
    double sx = 0, sy = 0;
    for (long i = 1; i <= st.InterpRefCount; ++i) {
      if (!BothValues(st, i, k)) continue;
      const double e = st.InterpRefEstimate(i, k), o = st.InterpRefClimate(i, k);
      sx += e;
      sy += o;
      out.Points.push_back({static_cast<Count>(i), e, o});
    }
    Correlate(s, out, sx, sy);
  } catch (const RuntimeFailure& e) {
    // The figure's routine stops quietly where it failed.
    out.Failure = e.kind();
  }
  return out;
}

Count StationUnderPointer(const Session& s, double x, double y, double scaleWidth) {
  const InterpolationState& st = s.Interp;
  const long k = st.InterpCurrentParam;
  const double tol = std::fabs(scaleWidth) / 80;
  Count found = 0;
  for (long i = 1; i <= st.InterpRefCount; ++i) {
    const double e = st.InterpRefEstimate(i, k), o = st.InterpRefClimate(i, k);
    if (e > x - tol && e < x + tol && o > y - tol && o < y + tol) found = static_cast<Count>(i);
  }
  return found;
}

std::string ScatterToolTip(const Session& s, Count station) {
  const InterpolationState& st = s.Interp;
  const long k = st.InterpCurrentParam;
  return st.InterpRefNames(station) + ", " + st.InterpParamNames(k) + "=" +
         FormatGeneral(st.InterpRefClimate(station, k));
}

bool SaveInterpMatrix(const Session& s, const std::optional<std::string>& path,
                      Progress& progress) {
  const InterpolationState& st = s.Interp;
  const long k = st.InterpCurrentParam;
  return SaveRecordFile(path, progress, st.InterpRefCount, [&](RecordWriter& w) {
    const std::string& name = st.InterpParamNames(k);
    w.Text(name + " (Estimated)").Text(name + " (Observed)").End();
    for (long i = 1; i <= st.InterpRefCount; ++i) {
      progress.Step(i);
      if (!BothValues(st, i, k)) continue;
      w.Number(st.InterpRefEstimate(i, k)).Number(st.InterpRefClimate(i, k)).End();
    }
  });
}

bool SaveTestFile(const Session& s, const std::optional<std::string>& path, Progress& progress) {
  const InterpolationState& st = s.Interp;
  const long c = st.InterpColumnCount;
  return SaveRecordFile(path, progress, st.InterpRefCount, [&](RecordWriter& w) {
    w.Text("Test");
    for (long k = 1; k <= c; ++k) w.Text(st.InterpParamNames(k));
    w.End();
    for (long i = 1; i <= st.InterpRefCount; ++i) {
      progress.Step(i);
      w.Text(st.InterpRefNames(i));
      w.Single(st.InterpRefLon(i)).Single(st.InterpRefLat(i)).Single(st.InterpRefAlt(i));
      w.Number(st.InterpRefClimate(i, 4)).Number(st.InterpRefClimate(i, 5));
      for (long k = 6; k <= c; ++k) w.Number(st.InterpRefEstimate(i, k));
      w.End();
    }
  });
}

}  // namespace varnoth
