#pragma once
// CONISS as this program has it: constrained clustering of the core's
// samples, neighbours only, the closest pair first, until one cluster is
// left. A joined cluster is the plain mean of its two halves, however many
// samples each holds, and the level of a join is the squared distance plus
// the levels of both halves, so levels only grow along the tree.
#include <vector>

#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// Fills ConissData, ConissPos, ConissDist, ConissSum and the result
// ConissLeft, ConissRight, ConissHeight (joins 1..N - 1) from the fossil
// proportions of taxa 1..TaxaCount. Progress counts the joins. Pairs are
// compared as singles, and of equal ones the first wins; when every pair is
// at 9999 or above no pair is found, which is the subscript failure.
void DoConiss(Session& s, Progress& progress);

// The same result computing every distance anew at every join and closing
// the gap row by row: the yardstick for DoConiss, which keeps the distances
// up to date instead and moves the rows in one block.
void DoConissFull(Session& s, Progress& progress);

// Width of the tree's surface: the last level and 10 % to spare. A tree
// without joins, or with all joins at level 0, has no width: the scaling
// failure.
double ConissScaleWidth(const Session& s);
// The level ticks 1, 2, 3, ... below 120 % of the last level, at least one.
std::vector<double> ConissTicks(const Session& s);

}  // namespace varnoth
