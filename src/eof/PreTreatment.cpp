#include "eof/PreTreatment.h"

#include <algorithm>
#include <cmath>

#include "eof/Eigen.h"
#include "state/Failure.h"
#include "state/Finite.h"
#include "state/Parallel.h"

namespace varnoth {

double LogEnhance(double x) {
  // A negative fraction has no logarithm; it is cut like a value below 1 %.
  if (x <= 0) return 0;
  // Natural logarithms divided, not log10: the two differ in the last bit.
  const double v = std::log(100 * x) / std::log(10.0) / 2;
  return v < 0 ? 0 : v;
}

double EnhanceValue(double x, const PreTreatmentSettings& settings) {
  if (!settings.Enhance) return x;
  return settings.SquareRoot ? PowerHalf(x) : LogEnhance(x);
}

// Row sums into column 0 and fractions of them, or a plain copy.
static void PercentageRows(const Array2<double>& data, Array2<double>& proportion, long first,
                           long last, long taxa, bool convert) {
  for (long i = first; i <= last; ++i) {
    if (!convert) {
      for (long j = 1; j <= taxa; ++j) proportion(i, j) = data(i, j);
      continue;
    }
    double sum = 0;
    for (long j = 1; j <= taxa; ++j) sum += data(i, j);
    proportion(i, 0) = sum;
    for (long j = 1; j <= taxa; ++j) proportion(i, j) = sum == 0 ? 0 : data(i, j) / sum;
  }
}

static void PercentageStep(const Array2<double>& data, Array2<double>& proportion, long rows,
                           long taxa, bool convert) {
  // Rows are independent; where an array is too small the rows go in order,
  // so the subscript failure comes at the same cell.
  bool fits = rows >= 1 && taxa >= 0;
  try {
    if (fits) {
      data.Require(rows, taxa);
      proportion.Require(rows, taxa);
    }
  } catch (const RuntimeFailure&) {
    fits = false;
  }
  if (!fits) {
    PercentageRows(data, proportion, 1, rows, taxa, convert);
  } else {
    constexpr long kSlice = 256;
    ParallelTasks((rows + kSlice - 1) / kSlice, [&](long t) {
      PercentageRows(data, proportion, 1 + t * kSlice, std::min(rows, (t + 1) * kSlice), taxa,
                     convert);
    });
  }
  // Row sums of huge values overflow here, before anything is analysed.
  RequireFinite(proportion);
}

void ApplyPreTreatment(Session& s, const PreTreatmentSettings& settings, Progress& progress) {
  s.PreTreatment = settings;
  s.UseCorrelation = settings.Correlation;
  s.RefProportion.ReDim(s.RefSiteCount, s.RefTaxaCount);
  PercentageStep(s.RefData, s.RefProportion, s.RefSiteCount, s.RefTaxaCount,
                 settings.ConvertToPercent);
  if (!settings.Enhance) {
    s.EnhanceUsed = false;
  } else {
    s.EnhanceUsed = true;
    // With a fossil base the ranges are those of the still empty reference,
    // so nothing changes here.
    Array2<double>& target = s.ReferenceIsBase ? s.RefData : s.FossilData;
    const Array2<double>& from = s.ReferenceIsBase ? s.RefProportion : s.FossilProportion;
    for (long i = 1; i <= s.RefSiteCount; ++i)
      for (long j = 1; j <= s.RefTaxaCount; ++j) target(i, j) = EnhanceValue(from(i, j), settings);
    RequireFinite(target);
  }
  RunEofAnalysis(s, progress);
}

void FossilPercentageStep(Session& s) {
  PercentageStep(s.FossilData, s.FossilProportion, s.FossilSampleCount, s.FossilTaxaCount,
                 s.PreTreatment.ConvertToPercent);
}

// Without enhancement the second table is put on a percent scale; with it,
// both tables go through the same transform.
static void EnhancementStep(Array2<double>& data, const Array2<double>& proportion, long rows,
                            long taxa, const PreTreatmentSettings& settings) {
  for (long i = 1; i <= rows; ++i)
    for (long j = 1; j <= taxa; ++j)
      data(i, j) =
          settings.Enhance ? EnhanceValue(proportion(i, j), settings) : proportion(i, j) * 100;
  RequireFinite(data);
}

void FossilEnhancementStep(Session& s) {
  EnhancementStep(s.FossilData, s.FossilProportion, s.FossilSampleCount, s.FossilTaxaCount,
                  s.PreTreatment);
}

void ReferenceEnhancementStep(Session& s) {
  // The ranges follow the fossil without enhancement and the reference with
  // it; either way RefProportion was sized for no reference rows, so the
  // first access runs off it.
  long rows = s.PreTreatment.Enhance ? s.RefSiteCount : s.FossilSampleCount;
  long taxa = s.PreTreatment.Enhance ? s.RefTaxaCount : s.FossilTaxaCount;
  EnhancementStep(s.RefData, s.RefProportion, rows, taxa, s.PreTreatment);
}

}  // namespace varnoth
