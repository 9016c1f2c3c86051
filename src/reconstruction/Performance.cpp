#include "reconstruction/Performance.h"

#include <algorithm>
#include <cmath>

#include "state/Numeric.h"

namespace varnoth {

PerformanceFigures ComputePerformance(const std::vector<double>& estimate,
                                      const std::vector<double>& observed) {
  PerformanceFigures f;
  std::vector<double> e, o;
  for (std::size_t i = 0; i < std::min(estimate.size(), observed.size()); ++i) {
    if (estimate[i] == kMissing || observed[i] == kMissing) continue;
    e.push_back(estimate[i]);
    o.push_back(observed[i]);
  }
  const long n = static_cast<long>(e.size());
  f.Sites = n;
  if (n == 0) return f;
  double sum2 = 0, bias = 0, me = 0, mo = 0;
  for (long i = 0; i < n; ++i) {
    const double r = e[i] - o[i];
    sum2 += r * r;
    bias += r;
    me += e[i];
    mo += o[i];
  }
  f.Rmsep = std::sqrt(sum2 / n);
  f.MeanBias = bias / n;
  me /= n;
  mo /= n;
  double sxy = 0, sxx = 0, syy = 0;
  for (long i = 0; i < n; ++i) {
    sxy += (e[i] - me) * (o[i] - mo);
    sxx += (e[i] - me) * (e[i] - me);
    syy += (o[i] - mo) * (o[i] - mo);
  }
  if (n >= 2 && sxx > 0 && syy > 0) f.RSquared = (sxy * sxy) / (sxx * syy);

  f.ObservedMin = *std::min_element(o.begin(), o.end());
  f.ObservedMax = *std::max_element(o.begin(), o.end());
  const double range = f.ObservedMax - f.ObservedMin;
  double sums[kBiasIntervals] = {}, counts[kBiasIntervals] = {};
  for (long i = 0; i < n; ++i) {
    int k = 0;
    if (range > 0)
      k = std::clamp(static_cast<int>(std::floor(kBiasIntervals * (o[i] - f.ObservedMin) / range)),
                     0, kBiasIntervals - 1);
    sums[k] += e[i] - o[i];
    counts[k] += 1;
  }
  bool any = false;
  for (int k = 0; k < kBiasIntervals; ++k) {
    if (counts[k] == 0) continue;
    const double mean = sums[k] / counts[k];
    if (!any || std::fabs(mean) > std::fabs(f.MaxBias)) f.MaxBias = mean;
    any = true;
  }
  return f;
}

}  // namespace varnoth
