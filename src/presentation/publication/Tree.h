#pragma once
// The CONISS result as a tree for drawing: which neighbouring clusters each
// join brought together, the samples each holds and the levels of both
// halves, so that arms start where their half was joined.
#include <vector>

#include "state/Session.h"

namespace varnoth::pub {

struct ConissJoin {
  double LeftPosition = 0, RightPosition = 0;  // on the tree's depth scale, 10 to 10 N
  double Height = 0, LeftHeight = 0, RightHeight = 0;
  long LeftFirst = 0, LeftLast = 0, RightFirst = 0, RightLast = 0;  // samples
};
using ConissTree = std::vector<ConissJoin>;

// The joins 1..N - 1 of the last CONISS run, found again in order: each
// join is the neighbouring pair whose positions it recorded.
ConissTree ReplayConiss(const Session& s);
// The tree cut into `zones` zones at its highest joins: for each boundary
// the last sample above it, from the top down.
std::vector<long> ZoneBoundaries(const ConissTree& tree, int zones);

}  // namespace varnoth::pub
