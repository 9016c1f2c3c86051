#pragma once
// A result array that holds an infinity or a NaN has overflowed somewhere in
// the operation that filled it. Each operation checks its results once at
// its end, so the event ends in the overflow failure instead of writing
// "NaN" into files and figures; the hot loops stay as they are.
#include <cmath>
#include <cstddef>

#include "state/Array.h"
#include "state/Failure.h"

namespace varnoth {

template <typename T>
void RequireFinite(const T* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    if (!std::isfinite(values[i])) ThrowOverflow();
}

template <typename T>
void RequireFinite(const Array1<T>& a) {
  RequireFinite(a.Data(), a.Size());
}

template <typename T>
void RequireFinite(const Array2<T>& a) {
  RequireFinite(a.Data(), a.Rows() * a.Cols());
}

inline void RequireFinite(double v) {
  if (!std::isfinite(v)) ThrowOverflow();
}

}  // namespace varnoth
