#include "eof/ScoreKernel.h"

#include <algorithm>

#include "eof/Kernels.h"
#include "state/Parallel.h"

namespace varnoth {

void ProjectRows(const Array2<double>& Z, long rows, long n, const std::vector<double>& centre,
                 const Array2<double>& E, Array2<double>& raw) {
  Z.Require(rows, n);
  const std::size_t zStride = Z.Cols();
  ScoreRows(
      rows, n,
      [&](long i, double* c) {
        const double* z = Z.Data() + static_cast<std::size_t>(i) * zStride;
        for (long j = 1; j <= n; ++j) c[j - 1] = z[j] - centre[j];
      },
      E, raw);
}

void ScoreRows(long rows, long n, const std::function<void(long, double*)>& centred,
               const Array2<double>& E, Array2<double>& raw) {
  E.Require(n, n);
  raw.Require(rows, n);
  const std::size_t rStride = raw.Cols();
  // The eigenvectors in panels of 8 columns, row j of panel p at
  // Ep[(p * n + j - 1) * 8]: a panel (n x 8) stays in the first-level cache
  // while a slice of rows is scored against it.
  const long panels = (n + 7) / 8;
  const std::size_t un = static_cast<std::size_t>(n);
  std::vector<double> Ep(static_cast<std::size_t>(panels) * un * 8, 0.0);
  for (long j = 1; j <= n; ++j)
    for (long c = 1; c <= n; ++c)
      Ep[(static_cast<std::size_t>((c - 1) / 8) * un + static_cast<std::size_t>(j - 1)) * 8 +
         static_cast<std::size_t>((c - 1) % 8)] = E(j, c);
  constexpr long kSlice = 64;  // rows a task centres and scores
  const long tasks = (rows + kSlice - 1) / kSlice;
  ParallelTasks(tasks, [&](long t) {
    const long first = 1 + t * kSlice, last = std::min(rows, first + kSlice - 1);
    const long count = last - first + 1, blocks = (count + 3) / 4;
    // The centred rows, padded with zero rows to whole blocks of 4.
    std::vector<double> zc(static_cast<std::size_t>(blocks * 4) * un, 0.0);
    for (long k = 0; k < count; ++k)
      centred(first + k, zc.data() + static_cast<std::size_t>(k) * un);
    double out[32];
    for (long p = 0; p < panels; ++p) {
      const double* panel = Ep.data() + static_cast<std::size_t>(p) * un * 8;
      const long c0 = 1 + 8 * p;
      for (long b = 0; b < blocks; ++b) {
        kernels::SumProducts4x8(zc.data() + static_cast<std::size_t>(4 * b) * un, 1, un, panel, 8,
                                n, out);
        for (long k = 0; k < 4 && 4 * b + k < count; ++k) {
          double* dst = raw.Data() + static_cast<std::size_t>(first + 4 * b + k) * rStride;
          for (long cc = 0; cc < 8 && c0 + cc <= n; ++cc) dst[c0 + cc] = out[k * 8 + cc];
        }
      }
    }
  });
}

}  // namespace varnoth
