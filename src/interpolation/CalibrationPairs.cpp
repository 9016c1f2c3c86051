#include "interpolation/CalibrationPairs.h"

namespace varnoth {

InterpolatedPairs InterpolatedPairsFor(const Session& s, const std::string& parameterShown) {
  const InterpolationState& in = s.Interp;
  InterpolatedPairs p;
  p.InterpColumnCount = in.InterpColumnCount;
  p.InterpRefCount = in.InterpRefCount;
  p.InterpParamNames = [&in](long c) { return in.InterpParamNames(c); };
  p.InterpRefEstimate = [&in](long r, long c) { return in.InterpRefEstimate(r, c); };
  p.InterpRefClimate = [&in](long r, long c) { return in.InterpRefClimate(r, c); };
  p.ParameterShown = parameterShown;
  p.AccuracyCount = in.InterpPairCount;
  return p;
}

void CopyAccuracyPairs(CalibState& c, const Session& s) {
  const InterpolationState& in = s.Interp;
  const long k = in.InterpCurrentParam;
  for (long r = 1; r <= in.InterpPairCount; ++r) {
    c.PairData(1, r, 1) = in.InterpPairEstimates(r, k);
    c.PairData(1, r, 2) = in.InterpPairObserved(r, k);
  }
}

}  // namespace varnoth
