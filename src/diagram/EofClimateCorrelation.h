#pragma once
// How each EOF of the reference sites goes with each climate parameter: the
// Pearson coefficient over all sites, with the missing value -9999 taken as
// it stands, and the vertical range of one parameter for its scatter.
#include "state/Array.h"
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// The coefficient of EOF e (RefScores column) and parameter p (ClimateData
// column) over sites 1..RefSiteCount, one pair at a time: the means, then
// the sums of products of deviations in site order. A constant EOF or a
// constant parameter gives 0.
double EccCorrelation(const Session& s, long e, long p);

// All coefficients, e = 1..RefTaxaCount by p = 1..ClimateParamCount, as
// singles; row 0 and column 0 stay 0. Every sum runs in site order as in
// EccCorrelation, so each entry is the same number, but many EOFs are summed
// side by side. The progress counts the EOFs.
Array2<float> EccCorrelationMatrix(const Session& s, Progress& progress);

// The vertical range of parameter p's scatter: the extremes over the
// reference sites, leaving out missing values, kept as singles from the
// start values 9999 and -9999, and rounded outwards.
struct EccRange {
  float Minimum = 9999.0f, Maximum = -9999.0f;
  double Top = 0, Bottom = 0;  // RoundScaleUp(max, min), RoundScaleDown(min, max)
};
EccRange EccClimateRange(const Session& s, long p);

// A number rounded to 2 decimals, half to even, as the table and the bound
// boxes show it ("0.43", "-0.5", "0").
std::string EccText(double v);

}  // namespace varnoth
