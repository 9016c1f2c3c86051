#include "calibration/FineGrid.h"

#include <cmath>

#include "calibration/MatrixChain.h"
#include "state/Format.h"

namespace varnoth {

namespace {
constexpr long kFineLast = 500;
constexpr long kFineFirstShown = 50, kFineLastShown = 450;
}  // namespace

FineGrid::FineGrid() {
  FineProb.ReDim(kFineLast + 1, kFineLast);
  FineClass.ReDim(kFineLast + 1, kFineLast);
  FineMode.ReDim(kFineLast);
  FineMedian.ReDim(kFineLast);
  FineLevel.ReDim(kFineLast, 2);
}

void PrepareChart(const CalibState& c, const CalibSettings& st, FineGrid& fine) {
  auto m6 = [&](long p, long q) { return std::fabs(c.CalibMatrix(6, p, q)); };
  Array2<float>& prob = fine.FineProb;
  for (long q = 0; q <= kGridLast - 1; ++q) {
    // Sums are doubles; the cells they decide are singles.
    double s = 0;
    for (long p = 0; p <= kGridLast; ++p) s += m6(p, q);
    for (long p = kShownFirst; p <= kShownLast; ++p) {
      if (s == 0) {
        prob(2 * p, 2 * q) = prob(2 * p, 2 * q + 1) = 0;
        prob(2 * p + 1, 2 * q) = prob(2 * p + 1, 2 * q + 1) = 0;
        if (q > 0) prob(2 * p, 2 * q - 1) = prob(2 * p + 1, 2 * q - 1) = 0;
        continue;
      }
      const double a = m6(p, q), b = m6(p, q + 1), cc = m6(p + 1, q), d = m6(p + 1, q + 1);
      prob(2 * p, 2 * q) = ToSingle(a);
      prob(2 * p, 2 * q + 1) = ToSingle((b + a) / 2);
      if (b + a != 0 && cc + a != 0) {
        prob(2 * p + 1, 2 * q) = ToSingle((cc + a) / 2);
        prob(2 * p + 1, 2 * q + 1) = ToSingle((a + b + cc + d) / 4);
      } else {
        prob(2 * p + 1, 2 * q) = prob(2 * p + 1, 2 * q + 1) = 0;
      }
    }
  }
  for (long p = kShownFirst; p <= kShownLast; ++p) {
    const double a = m6(p, kGridLast), b = m6(p + 1, kGridLast);
    prob(2 * p, kFineLast) = ToSingle(a);
    prob(2 * p + 1, kFineLast) = a != 0 && b != 0 ? ToSingle((a + b) / 2) : 0.0f;
  }

  std::vector<float> peaks(kFineLast + 1, 0.0f);
  std::vector<double> totals(kFineLast + 1, 0.0);
  for (long pf = kFineFirstShown; pf <= kFineLastShown; ++pf) {
    float peak = 0;
    double total = 0;
    for (long qf = 0; qf <= kFineLast; ++qf) {
      fine.FineClass(pf, qf) = 0;
      if (prob(pf, qf) > peak) {
        peak = prob(pf, qf);
        fine.FineMode(pf) = static_cast<Count>(qf);
      }
      total += prob(pf, qf);
      if (total == 0) fine.FineMode(pf) = static_cast<Count>(kMissing);
    }
    peaks[pf] = peak;
    totals[pf] = total;
  }
  for (long pf = 0; pf <= kFineLast; ++pf) {
    double total = 0;
    for (long qf = 0; qf <= kFineLast; ++qf) total += prob(pf, qf);
    if (!(total > 0)) {
      fine.FineMedian(pf) = static_cast<Count>(kMissing);
      continue;
    }
    const double half = total / 2;
    double run = 0;
    for (long qf = 0; qf <= kFineLast; ++qf) {
      run += prob(pf, qf);
      if (run > half) {
        fine.FineMedian(pf) = static_cast<Count>(qf);
        run = 0;
      }
    }
  }
  const double coefficient1 = static_cast<double>(st.Slider1) / 1000;
  const double coefficient2 = static_cast<double>(st.Slider2) / 1000;
  const bool whole = st.Slider1 == 1000 || st.Slider2 == 1000;
  for (long pf = kFineFirstShown; pf <= kFineLastShown; ++pf) {
    const double total = totals[pf];
    if (!(total > 0)) continue;
    const auto [level1, level2] = ConfidenceLevels(prob.Row(pf, kFineLast), kFineLast + 1,
                                                   peaks[pf], total, coefficient1, coefficient2);
    fine.FineLevel(pf, 1) = level1;
    fine.FineLevel(pf, 2) = level2;
    for (long qf = 0; qf <= kFineLast; ++qf) {
      float& cls = fine.FineClass(pf, qf);
      if (prob(pf, qf) > level1) cls += 1;
      if (prob(pf, qf) > level2) cls += 1;
      if (qf >= 1 && qf == fine.FineMode(pf)) cls = 3;
      if (whole && cls == 0) cls = 1;
    }
  }
}

std::string FormatValue(double v) {
  if (v < 10) return FormatGeneral(Int(v * 100 + 0.5) / 100);
  if (v < 1000) return FormatGeneral(Int(v * 10 + 0.5) / 10);
  return FormatGeneral(Int(v + 0.5));
}

long SectionColumn(long slider1) {
  return kFineFirstShown + static_cast<long>(Round(static_cast<double>(slider1) * 400 / 100));
}

SectionIntervals DrawIntervals(const FineGrid& fine, const CalibSettings& st, long pc, double t1,
                               double t2) {
  SectionIntervals out;
  auto value = [&](long qf) {
    return FormatValue(t1 + (t2 - t1) * static_cast<double>(qf - kFineFirstShown) / 400);
  };
  out.Coefficient[0] = FormatGeneral(static_cast<double>(st.Slider1) / 10) + " %";
  out.Coefficient[1] = FormatGeneral(static_cast<double>(st.Slider2) / 10) + " %";
  for (int n = 0; n < 2; ++n) {
    const float threshold = n == 0 ? 2.0f : 1.0f;
    auto& list = out.Intervals[n];
    bool inside = false;
    std::string start;
    for (long qf = kFineFirstShown; qf <= kFineLastShown && list.size() < 11; ++qf) {
      const bool in = std::fabs(fine.FineClass(pc, qf)) >= threshold;
      if (in && !inside) {
        // Already inside at the lower edge: the region began below it.
        start = qf == kFineFirstShown ? "?" : value(qf);
        inside = true;
      } else if (!in && inside) {
        list.emplace_back(start, value(qf));
        inside = false;
      }
    }
    if (inside && list.size() < 11) list.emplace_back(start, "?");
  }
  auto shown = [&](Count index) {
    return index >= 1 && index <= 399 ? value(index) : std::string("Out of range");
  };
  out.Average = shown(fine.FineMedian(pc));
  out.Mode = shown(fine.FineMode(pc));
  return out;
}

}  // namespace varnoth
