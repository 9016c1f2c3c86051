#pragma once
// The performance table of an error model: how well the cross-validated
// estimates of the reference sites match their observed climate.
#include <vector>

namespace varnoth {

// Residual = estimate - observation (positive: the model overestimates).
// Pairs in which either value is -9999 are left out. Undefined figures
// (no pair; R2 with fewer than two pairs or no spread) are -9999.
struct PerformanceFigures {
  long Sites = 0;           // pairs with both values
  double Rmsep = -9999;     // root of the mean squared residual
  double RSquared = -9999;  // squared Pearson correlation of estimate and observation
  double MeanBias = -9999;  // mean residual
  // The observed range cut into ten intervals of equal width (the last one
  // closed at the maximum); of the intervals holding a pair, the mean
  // residual of largest size, its sign kept (the lower interval on a tie).
  double MaxBias = -9999;
  double ObservedMin = -9999, ObservedMax = -9999;
};

PerformanceFigures ComputePerformance(const std::vector<double>& estimate,
                                      const std::vector<double>& observed);

inline constexpr int kBiasIntervals = 10;

}  // namespace varnoth
