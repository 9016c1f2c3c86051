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

VARNOTH_CLONES void Divide(double* __restrict y, const double* __restrict x, double d,
                           std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) y[i] = x[i] / d;
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
// The sums of a panel of 4 Q rows, optionally after its deflation, in Q
// registers of four: eight of them keep both adders busy past the latency
// of an add.
template <int Q, bool Deflate>
inline __attribute__((always_inline)) void Panel(double* w, double* panel, const double* x,
                                                 const double* a, const double* v, std::size_t n) {
  Quad acc[Q] = {}, xs[Q] = {};
  if (Deflate)
    for (int q = 0; q < Q; ++q) __builtin_memcpy(&xs[q], x + 4 * q, sizeof(Quad));
  for (std::size_t k = 0; k < n; ++k) {
    double* row = panel + k * 4 * Q;
    const Quad vk = {v[k], v[k], v[k], v[k]};
    Quad ak = {};
    if (Deflate) ak = Quad{a[k], a[k], a[k], a[k]};
#pragma GCC unroll 8
    for (int q = 0; q < Q; ++q) {
      Quad y;
      __builtin_memcpy(&y, row + 4 * q, sizeof y);
      if (Deflate) {
        y = y - xs[q] * ak;
        __builtin_memcpy(row + 4 * q, &y, sizeof y);
      }
      acc[q] += vk * y;
    }
  }
  for (int q = 0; q < Q; ++q) __builtin_memcpy(w + 4 * q, &acc[q], sizeof(Quad));
}

template <bool Deflate>
inline __attribute__((always_inline)) void AnyPanel(double* w, double* panel, std::size_t quads,
                                                    const double* x, const double* a,
                                                    const double* v, std::size_t n) {
  switch (quads) {
    case 1:
      return Panel<1, Deflate>(w, panel, x, a, v, n);
    case 2:
      return Panel<2, Deflate>(w, panel, x, a, v, n);
    case 3:
      return Panel<3, Deflate>(w, panel, x, a, v, n);
    case 4:
      return Panel<4, Deflate>(w, panel, x, a, v, n);
    case 5:
      return Panel<5, Deflate>(w, panel, x, a, v, n);
    case 6:
      return Panel<6, Deflate>(w, panel, x, a, v, n);
    case 7:
      return Panel<7, Deflate>(w, panel, x, a, v, n);
    default:
      return Panel<8, Deflate>(w, panel, x, a, v, n);
  }
}
}  // namespace

VARNOTH_CLONES void SumPanel(double* w, const double* panel, std::size_t quads, const double* v,
                             std::size_t n) {
  AnyPanel<false>(w, const_cast<double*>(panel), quads, nullptr, nullptr, v, n);
}

VARNOTH_CLONES void DeflateAndSumPanel(double* w, double* panel, std::size_t quads, const double* x,
                                       const double* a, const double* v, std::size_t n) {
  AnyPanel<true>(w, panel, quads, x, a, v, n);
}

}  // namespace varnoth::kernels
