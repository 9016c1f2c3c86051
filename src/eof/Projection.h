#pragma once
// Placing the second table in the EOF space of the base table.
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// Standardises the fossil table with the reference statistics and scores it
// on the reference eigenvectors. Sets ProjectionDone when there are at least
// 3 samples (fewer are projected but not drawn).
void DoProjection(Session& s, Progress& progress);

}  // namespace varnoth
