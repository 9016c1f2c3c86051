#pragma once
// The power iteration as it stood before, kept so that the benchmark can
// time the engine's against it in the same run.
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth::test {

// Every component of the left block of EigenWork into EigenVectors, and
// the deflated matrix back into EigenWork, without the sort.
void PowerIterationsAsBefore(Session& s, Progress& progress);

}  // namespace varnoth::test
