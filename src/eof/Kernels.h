#pragma once
// The inner loops of the EOF analysis, built for the widest vector unit the
// processor has. Each element is one multiply and one add in the order
// written, so every width gives the same results.
#include <cstddef>

namespace varnoth::kernels {

// y[i] += a * x[i]
void AddScaled(double* y, const double* x, double a, std::size_t n);
// y[i] = y[i] - x[i] * a
void SubtractScaled(double* y, const double* x, double a, std::size_t n);

}  // namespace varnoth::kernels
