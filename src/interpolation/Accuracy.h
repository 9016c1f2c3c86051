#pragma once
// The accuracy of the interpolation: each station's leave-one-out estimate
// against its observed value, for the column InterpCurrentParam; the axis
// range, the pairs with their correlation, and the two files.
#include <optional>
#include <string>
#include <vector>

#include "state/Dialogs.h"
#include "state/Failure.h"
#include "state/Session.h"

namespace varnoth {

struct AxisRange {
  float Min = 0, Max = 0;
};

// Both axes from the estimates alone (observed values outside fall off the
// figure), widened outwards to steps of half a power of ten.
AxisRange AutoScale(const Session& s);

struct ScatterPoint {
  Count Station = 0;
  double Estimate = 0, Observed = 0;
};

struct ScatterPairs {
  std::vector<ScatterPoint> Points;  // stations with both values, in order
  bool PairCountSet = false;         // InterpPairCount holds the count, also a count of 0
  bool Counted = false;              // the count and the means could be formed
  double MeanEstimate = 0, MeanObserved = 0;
  // The coefficient rounded to 4 decimals, and its label text; nothing when
  // the run ended first, and the label then keeps what it showed.
  std::optional<double> Correlation;
  std::string CorrelationText;
  bool Packed = false;  // InterpPairEstimates and InterpPairObserved are filled
  // The failure that ended the work early (sums that overflowed, a column
  // without pairs), for a caller that reports it; the figure shows none.
  std::optional<FailureKind> Failure;
};

// What the scatter shows: the pairs of the column, their count in
// InterpPairCount, the correlation, and the packed pairs of all columns.
// Any failure ends the work where it stands, with no message: a column
// without pairs keeps the old coefficient, and so does one whose values do
// not vary. The packed arrays have a row for every station.
ScatterPairs ScatterPairsPL(Session& s);

// The station under the pointer at (x, y) of the scatter: estimate and
// observed value strictly within |scaleWidth| / 80; the last one found, or 0.
Count StationUnderPointer(const Session& s, double x, double y, double scaleWidth);
// Its tool tip: name, ", ", the parameter's name, "=", the observed value.
std::string ScatterToolTip(const Session& s, Count station);

// "Save matrix": the estimated and observed values of the column shown,
// for the stations that have both.
bool SaveInterpMatrix(const Session& s, const std::optional<std::string>& path, Progress& progress);
// The whole leave-one-out table: per station its name, position, rates and
// the estimates of columns 6..C, under a header that starts with "Test".
bool SaveTestFile(const Session& s, const std::optional<std::string>& path, Progress& progress);

}  // namespace varnoth
