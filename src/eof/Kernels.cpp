#include "eof/Kernels.h"

#include "state/Clones.h"

namespace varnoth::kernels {

VARNOTH_CLONES void AddScaled(double* __restrict y, const double* __restrict x, double a,
                              std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) y[i] += a * x[i];
}

VARNOTH_CLONES void SubtractScaled(double* __restrict y, const double* __restrict x, double a,
                                   std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) y[i] = y[i] - x[i] * a;
}

}  // namespace varnoth::kernels

namespace varnoth::kernels {

// Four doubles as one value: a 256-bit register with AVX2, two 128-bit
// ones otherwise.
typedef double Quad __attribute__((vector_size(32)));

namespace {
template <bool Carry>
inline __attribute__((always_inline)) void Products4x8(const double* a, std::size_t aStepK,
                                                       std::size_t aStepI, const double* b,
                                                       std::size_t bStepK, long count,
                                                       double* out) {
  Quad acc[4][2] = {};
  if (Carry)
    for (int ii = 0; ii < 4; ++ii) {
      __builtin_memcpy(&acc[ii][0], out + ii * 8, sizeof(Quad));
      __builtin_memcpy(&acc[ii][1], out + ii * 8 + 4, sizeof(Quad));
    }
  for (long k = 0; k < count; ++k) {
    const double* bk = b + static_cast<std::size_t>(k) * bStepK;
    const double* ak = a + static_cast<std::size_t>(k) * aStepK;
    Quad b0, b1;
    __builtin_memcpy(&b0, bk, sizeof b0);
    __builtin_memcpy(&b1, bk + 4, sizeof b1);
    for (int ii = 0; ii < 4; ++ii) {
      const double v = ak[static_cast<std::size_t>(ii) * aStepI];
      const Quad x = {v, v, v, v};
      acc[ii][0] += x * b0;
      acc[ii][1] += x * b1;
    }
  }
  for (int ii = 0; ii < 4; ++ii) {
    __builtin_memcpy(out + ii * 8, &acc[ii][0], sizeof(Quad));
    __builtin_memcpy(out + ii * 8 + 4, &acc[ii][1], sizeof(Quad));
  }
}
}  // namespace

VARNOTH_CLONES void SumProducts4x8(const double* a, std::size_t aStepK, std::size_t aStepI,
                                   const double* b, std::size_t bStepK, long count, double* out) {
  Products4x8<false>(a, aStepK, aStepI, b, bStepK, count, out);
}

VARNOTH_CLONES void AddProducts4x8(const double* a, std::size_t aStepK, std::size_t aStepI,
                                   const double* b, std::size_t bStepK, long count, double* out) {
  Products4x8<true>(a, aStepK, aStepI, b, bStepK, count, out);
}

}  // namespace varnoth::kernels

namespace varnoth::kernels {

namespace {
// Sums of 4 Q neighbouring r, from r on, in registers.
template <int Q>
inline __attribute__((always_inline)) void SumColumnBlock(double* w, const double* a,
                                                          std::size_t stride, const double* v,
                                                          std::size_t n, std::size_t r) {
  Quad acc[Q] = {};
  for (std::size_t k = 0; k < n; ++k) {
    const double* row = a + k * stride + r;
    const Quad x = {v[k], v[k], v[k], v[k]};
    for (int q = 0; q < Q; ++q) {
      Quad y;
      __builtin_memcpy(&y, row + 4 * q, sizeof y);
      acc[q] += x * y;
    }
  }
  for (int q = 0; q < Q; ++q) __builtin_memcpy(w + r + 4 * q, &acc[q], sizeof(Quad));
}
}  // namespace

VARNOTH_CLONES void SumColumns(double* w, const double* a, std::size_t stride, const double* v,
                               std::size_t n, std::size_t first, std::size_t last) {
  std::size_t r = first;
  // 32 sums at a time keep both adders busy past the latency of an add.
  for (; r + 32 <= last; r += 32) SumColumnBlock<8>(w, a, stride, v, n, r);
  for (; r + 16 <= last; r += 16) SumColumnBlock<4>(w, a, stride, v, n, r);
  for (; r < last; ++r) {
    double sum = 0;
    for (std::size_t k = 0; k < n; ++k) sum += v[k] * a[k * stride + r];
    w[r] = sum;
  }
}

}  // namespace varnoth::kernels
