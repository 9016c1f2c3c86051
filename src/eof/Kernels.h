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
// y[i] = x[i] / d
void Divide(double* y, const double* x, double d, std::size_t n);

}  // namespace varnoth::kernels

namespace varnoth::kernels {

// A 4 x 8 block of sums held in registers: for ii < 4 and jj < 8,
//   out[ii * 8 + jj] = sum over k = 0..count-1, in that order, of
//                      a[k * aStepK + ii * aStepI] * b[k * bStepK + jj].
// The caller pads its arrays so that every such element exists.
void SumProducts4x8(const double* a, std::size_t aStepK, std::size_t aStepI, const double* b,
                    std::size_t bStepK, long count, double* out);
// The same sums carried on from the 32 values in `out`: summing rows in
// pieces this way gives the same numbers as one call over all of them.
void AddProducts4x8(const double* a, std::size_t aStepK, std::size_t aStepI, const double* b,
                    std::size_t bStepK, long count, double* out);

}  // namespace varnoth::kernels

namespace varnoth::kernels {

// A panel holds 4 `quads` rows of a matrix (quads 1 to kPanelQuads), column
// after column: panel[k * 4 * quads + i] is row i of the panel in column k.
constexpr std::size_t kPanelQuads = 8, kPanelRows = 4 * kPanelQuads;

// w[i] = sum over k = 0..n-1, in that order, of v[k] * panel[k * 4 * quads + i],
// for i < 4 * quads.
void SumPanel(double* w, const double* panel, std::size_t quads, const double* v, std::size_t n);
// First panel[k * 4 * quads + i] = panel[k * 4 * quads + i] - x[i] * a[k] for
// every k and i, then the sums of SumPanel on the new panel.
void DeflateAndSumPanel(double* w, double* panel, std::size_t quads, const double* x,
                        const double* a, const double* v, std::size_t n);

}  // namespace varnoth::kernels
