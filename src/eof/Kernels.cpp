#include "eof/Kernels.h"

namespace varnoth::kernels {

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
#define VARNOTH_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VARNOTH_CLONES
#endif

VARNOTH_CLONES void AddScaled(double* __restrict y, const double* __restrict x, double a,
                              std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) y[i] += a * x[i];
}

VARNOTH_CLONES void SubtractScaled(double* __restrict y, const double* __restrict x, double a,
                                   std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) y[i] = y[i] - x[i] * a;
}

}  // namespace varnoth::kernels
