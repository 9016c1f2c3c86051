#pragma once
// Small independent computations and checks that several test files share.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "state/Failure.h"

namespace varnoth::test {

// Pearson's r as a textbook writes it: n sxy - sx sy over the roots, in
// extended precision; 0 when either side is constant.
inline double Pearson(const std::vector<double>& x, const std::vector<double>& y) {
  long double n = x.size(), sx = 0, sy = 0, sxx = 0, syy = 0, sxy = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    sx += x[i];
    sy += y[i];
    sxx += static_cast<long double>(x[i]) * x[i];
    syy += static_cast<long double>(y[i]) * y[i];
    sxy += static_cast<long double>(x[i]) * y[i];
  }
  const long double d = std::sqrt((n * sxx - sx * sx) * (n * syy - sy * sy));
  return d == 0 ? 0.0 : static_cast<double>((n * sxy - sx * sy) / d);
}

// The kind of run-time failure a step ends in; a test failure when it ends
// in none.
inline FailureKind KindOf(const std::function<void()>& step) {
  try {
    step();
  } catch (const RuntimeFailure& e) {
    return e.kind();
  }
  ADD_FAILURE() << "no failure";
  return FailureKind::InvalidCall;
}

}  // namespace varnoth::test
