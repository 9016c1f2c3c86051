#pragma once
// The choices of the analogue search, read by the reconstruction window from
// its controls (or by the batch runner from its options), so that the search
// runs without any window.
#include "state/Numeric.h"

namespace varnoth {

enum class AnalogueBasis {
  TaxaProportions,  // "Taxa proportions"
  EofValues,        // "EOF values"
};

enum class AnalogueEnhance {
  None,        // "Enhancing minor taxa" not ticked
  SquareRoot,  // "Square root"
  Log,         // "Log"
};

enum class AnalogueWeightBy {
  SquaredDistance,  // "Squared distance"
  Distance,         // "Distance"
};

struct AnalogueSettings {
  AnalogueBasis Basis = AnalogueBasis::TaxaProportions;
  AnalogueEnhance Enhance = AnalogueEnhance::None;
  bool InverseWeighting = false;  // "Inversed weighting"
  AnalogueWeightBy WeightBy = AnalogueWeightBy::SquaredDistance;
  Count MaxAnalogues = 8;  // 1..20
  Count MinAnalogues = 0;  // 0..20, never above MaxAnalogues
  // Compared with the stored dissimilarity as it stands; set by DefineThreshold.
  double AnalogueThreshold = 0.2;
};

// Sets AnalogueThreshold from the threshold slider (0..200, hundredths):
// t = value / 100, then its square root or LogEnhance when the enhancement
// is chosen, so that the threshold is in the units of the enhanced data.
// Returns the raw t, which the threshold caption shows first.
double DefineThreshold(AnalogueSettings& settings, long sliderValue);

}  // namespace varnoth
