#pragma once
// The number rules every routine shares: 16-bit counts that overflow into the
// run-time failure, Round half to even, Int as floor, Fix as truncation, and
// rounding to single precision at the points where results are singles.
#include <cmath>
#include <cstdint>

#include "state/Failure.h"

namespace varnoth {

using Count = std::int16_t;

constexpr double kMissing = -9999.0;

// A whole number into a 16-bit count, or the overflow failure.
inline Count ToCount(long long v) {
  if (v < INT16_MIN || v > INT16_MAX) ThrowOverflow();
  return static_cast<Count>(v);
}
// A double stored in a 16-bit variable: rounds half to even first.
inline Count ToCount(double v) {
  if (!(v >= -32768.5 && v <= 32767.5)) ThrowOverflow();
  double r = std::nearbyint(v);
  if (r < INT16_MIN || r > INT16_MAX) ThrowOverflow();
  return static_cast<Count>(r);
}
// count + 1 with the overflow check.
inline Count Increment(Count c) { return ToCount(static_cast<long long>(c) + 1); }

inline double Round(double v) { return std::nearbyint(v); }
inline double Int(double v) { return std::floor(v); }
inline double Fix(double v) { return std::trunc(v); }

// A double stored in a 32-bit integer variable.
inline std::int32_t ToLong(double v) {
  if (!(v >= -2147483648.5 && v <= 2147483647.5)) ThrowOverflow();
  double r = std::nearbyint(v);
  if (r < INT32_MIN || r > INT32_MAX) ThrowOverflow();
  return static_cast<std::int32_t>(r);
}

// The value as a single would hold it; a finite double too large for a single
// is the overflow failure, as the assignment to a single variable would be.
inline float ToSingle(double v) {
  if (std::isfinite(v) && std::fabs(v) > 3.4028234663852886e38) ThrowOverflow();
  return static_cast<float>(v);
}
inline double Single(double v) { return static_cast<double>(ToSingle(v)); }

}  // namespace varnoth

namespace varnoth {

// A plain division of the numeric routines, which have no failure path of
// their own: x / 0 is the division failure and 0 / 0 the overflow failure.
inline double Div(double a, double b) {
  if (b == 0) {
    if (a == 0 || std::isnan(a)) ThrowOverflow();
    throw RuntimeFailure(FailureKind::DivisionByZero);
  }
  return a / b;
}

}  // namespace varnoth

namespace varnoth {

// x ^ 0.5 through the general power function, which has no real root of a
// negative number: that is the invalid-argument failure, so no NaN is ever
// computed from it.
inline double PowerHalf(double x) {
  if (x < 0) throw RuntimeFailure(FailureKind::InvalidCall, "square root of a negative number");
  return std::pow(x, 0.5);
}

}  // namespace varnoth
