#pragma once
// The interpolation exactly as written: full distance arrays of every row
// against every station, each square and root through the power function,
// the stations summed in file order. Slow and large; the tests and the
// benchmark hold the engine's row-by-row run against it.
#include "interpolation/Interpolation.h"

namespace varnoth::test {

struct LiteralInterpolation {
  Array2<double> Target, Station;  // estimates of the targets and of the stations
  Array1<Count> Nearest;           // the last stage's nearest stations
};

LiteralInterpolation RunInterpolationLiteral(const InterpolationState& st, InterpMode mode,
                                             double p, double radius);

}  // namespace varnoth::test
