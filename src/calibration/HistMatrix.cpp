#include "calibration/HistMatrix.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "state/Format.h"

namespace varnoth {

void BuildHistMatrix(HistState& h, Session& s, const CalibState& c, double t1, double t2,
                     long curveSmoothing, Count histColumns, Progress& progress,
                     HistPainter* painter) {
  h.HistReady = false;
  h.HistColumns = histColumns;
  const long rows = histColumns;
  h.HistMatrix.ReDim(1, kMatrixSteps, rows);
  h.HistModeLine.ReDim(rows);
  h.HistAverageLine.ReDim(rows);
  h.HistModeLine.Fill(static_cast<Count>(kMissing));
  h.HistAverageLine.Fill(static_cast<Count>(kMissing));

  const long n = s.FossilSampleCount, p = s.CurrentParameter, l = curveSmoothing;
  if (l == 1) {
    s.SmoothedPosition.ReDim(n);
    s.SmoothedValue.ReDim(n);
    for (long k = 1; k <= n; ++k) {
      s.SmoothedPosition(k) =
          s.FossilLabelsAreText ? static_cast<float>(k) : ToSingle(LenientParse(s.FossilLabels(k)));
      s.SmoothedValue(k) = ToSingle(s.ReconValue(k, p));
    }
  }
  double step, base;
  if (s.FossilLabelsAreText) {
    step = Div(static_cast<double>(n - 1), static_cast<double>(rows));
    base = 1;
  } else {
    const double d1 = LenientParse(s.FossilLabels(1)), dn = LenientParse(s.FossilLabels(n));
    step = Div(dn - d1, static_cast<double>(rows));
    base = d1;
  }
  const double v = (t2 - t1) / static_cast<double>(kMatrixSteps);
  const float missing = static_cast<float>(kMissing);

  // Rounded in double, so that a value far off the grid is only out of range.
  auto rowOf = [&](long t) { return Round(Div(s.SmoothedPosition(t) - base, step)); };
  auto binOf = [&](double value) { return Round(Div(value - t1, v)); };
  auto set = [&](double bin, double row) {
    if (bin >= 0 && bin <= kMatrixSteps && row >= 0 && row <= rows)
      h.HistMatrix(0, static_cast<long>(bin), static_cast<long>(row)) = 1;
  };
  for (long t = 1; t <= n - l; ++t) {
    const double r0 = rowOf(t), r1 = rowOf(t + 1);
    const double span = r1 - r0;
    const float a = s.SmoothedValue(t), b = s.SmoothedValue(t + 1);
    const bool validA = a != missing, validB = b != missing;
    if (validA && validB) {
      // Only the steps that land on a row of the matrix are walked.
      const double first = std::max(0.0, -r0), lastStep = std::min(span - 1, rows - r0);
      if (span > 0)
        for (double m = first; m <= lastStep; ++m)
          set(binOf(static_cast<double>(a) + (static_cast<double>(b) - a) * m / span), r0 + m);
    } else if (validA) {
      set(binOf(a), r0);
    } else if (validB) {
      set(binOf(b), r1);
    }
  }
  const long last = n - l + 1;
  if (last >= 1 && s.SmoothedValue(last) != missing) set(binOf(s.SmoothedValue(last)), rowOf(last));

  // Each row has few raster cells: only those enter the sum, which leaves
  // every other term a zero that does not change it.
  c.CalibMatrix(8, kMatrixSteps + 25, kMatrixSteps + 25);
  std::vector<float> acc(kMatrixSteps + 1);
  progress.Start(rows);
  for (long row = rows; row >= 0; --row) {
    std::fill(acc.begin(), acc.end(), 0.0f);
    for (long q = 0; q <= kMatrixSteps; ++q) {
      const float f = h.HistMatrix(0, q, row);
      if (f == 0) continue;
      const float* m8 = &c.CalibMatrix(8, q + 25, 25);
      for (long b = 0; b <= kMatrixSteps; ++b) acc[b] += f * m8[b];
    }
    for (long b = 0; b <= kMatrixSteps; ++b) {
      const float sum = acc[b];
      h.HistMatrix(1, b, row) = sum;
      if (sum < 0) h.HistAverageLine(row) = static_cast<Count>(b);
      if (std::fabs(sum) >= 3) h.HistModeLine(row) = static_cast<Count>(b);
      if (painter) painter->Cell(sum, b, row);
    }
    progress.Step(rows - row);
  }
  progress.Finish();
  h.HistReady = true;
}

}  // namespace varnoth
