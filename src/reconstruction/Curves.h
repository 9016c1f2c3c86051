#pragma once
// What the reconstruction curve and the estimated-observed scatter compute
// before they draw: round axis limits, the parameter shown, the moving
// average of the curve and the correlation of the scatter.
#include <optional>
#include <string>
#include <string_view>

#include "state/Session.h"

namespace varnoth {

// Axis limits rounded outward to 5, 50, 500 or 1000 (5000 below zero),
// chosen by the larger magnitude of the two ends; 0 stays 0.
double RoundScaleUp(float v, float other);
double RoundScaleDown(float v, float other);

struct ScaleLimits {
  bool NoAnalogues = false;  // no sample of the parameter has an estimate
  double Low = 0, High = 0;  // Text1 and Text2
};
// The limits of parameter p after a run: RoundScaleDown(ReconMin, ReconMax)
// and RoundScaleUp(ReconMax, ReconMin).
ScaleLimits CurveLimits(const Session& s, long p);

// The three lines the empty curve shows when no sample has an analogue.
inline constexpr const char* kNoAnalogueLines[3] = {" No analogues through", " the whole sequence.",
                                                    " Change threshold."};

// CurrentParameter becomes the parameter of that name; an unknown name
// leaves it as it was. Returns the parameter now current.
Count SetCurrentParameter(Session& s, std::string_view name);

// The moving average of `level` consecutive samples of parameter p, standing
// for the first of them, into SmoothedPosition and SmoothedValue (created
// anew, points 1..N - level + 1). Positions are the mean sample number with
// text labels, else the mean depth. A window with a missing estimate or an
// empty sample gives exactly -9999.
void SmoothCurve(Session& s, long p, long level);

// The correlation of the leave-one-out estimates with the climate data of
// parameter p over the sites where neither is missing; nothing when its
// denominator is 0.
std::optional<double> EstObsCorrelation(const Session& s, long p);
// "R = " and the correlation rounded to 4 decimals, or "Sample too small".
std::string CorrelationCaption(const std::optional<double>& r);

}  // namespace varnoth
