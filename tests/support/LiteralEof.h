#pragma once
// The EOF analysis exactly as written: three full passes of matrix, power
// iteration and sort, each cell by CorrelatePair or CovariancePair. Slow;
// the tests and benchmarks hold the engine's fast analysis against it.
#include "state/Session.h"

namespace varnoth::test {

void RunEofAnalysisLiteral(Session& s);

}  // namespace varnoth::test
