#pragma once
// What the calibration tool takes from the interpolation tool once the
// climate came from it: the Vest-Vobs pairs of a parameter by its column
// name, with the count of the accuracy check, and the packed accuracy pairs
// that a change of parameter in the reconstruction window copies over.
#include <string>

#include "calibration/PairSets.h"
#include "state/Session.h"

namespace varnoth {

// The stations' leave-one-out estimates and observed values, for the
// column whose name is `parameterShown` (the reconstruction window's
// list), and InterpPairCount as the count shown beside "N1 =".
InterpolatedPairs InterpolatedPairsFor(const Session& s, const std::string& parameterShown);

// Pair set 1 from the packed accuracy pairs: rows 1 to InterpPairCount, at
// the column InterpCurrentParam (which the parameter lookup has set to 1).
void CopyAccuracyPairs(CalibState& c, const Session& s);

}  // namespace varnoth
