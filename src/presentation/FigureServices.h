#pragma once
// Habits that all figures share: short ticks on both horizontal edges and
// axis bounds rounded outwards to a unit.
#include <QColor>
#include <vector>

#include "presentation/Surface.h"

namespace varnoth {

// A short tick, with no figure, at each x on the top and the bottom edge.
void DrawEdgeTicks(Surface& s, const std::vector<double>& xs, const QColor& colour);

// Bounds moved out to a multiple of `unit`, rounding half to even: a bound
// on an odd multiple moves out by one unit, one on an even multiple stays.
double RoundLowerOut(double lower, double unit);
double RoundUpperOut(double upper, double unit);

// The unit of the accuracy scatter: 10 ^ Round(log10(|upper|) - 0.5) / 2.
double AccuracyScatterUnit(double upper);

}  // namespace varnoth
