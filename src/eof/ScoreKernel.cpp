#include "eof/ScoreKernel.h"

#include <algorithm>

#include "eof/Kernels.h"
#include "state/Parallel.h"

namespace varnoth {

void ProjectRows(const Array2<double>& Z, long rows, long n, const std::vector<double>& centre,
                 const Array2<double>& E, Array2<double>& raw) {
  Z.Require(rows, n);
  E.Require(n, n);
  raw.Require(rows, n);
  const std::size_t zStride = Z.Cols(), rStride = raw.Cols();
  // The eigenvectors padded to whole blocks of 8 columns; blocks of 4 rows
  // by 8 columns are summed in registers, each cell over j in index order.
  const std::size_t padded = static_cast<std::size_t>((n + 8) / 8 * 8 + 8);
  std::vector<double> Ep(static_cast<std::size_t>(n + 1) * padded, 0.0);
  for (long j = 1; j <= n; ++j)
    for (long c = 1; c <= n; ++c) Ep[static_cast<std::size_t>(j) * padded + c] = E(j, c);
  const std::size_t width = static_cast<std::size_t>(n + 1);
  ParallelRows(1, rows, 8, [&](long first, long last) {
    std::vector<double> zc(4 * width, 0.0);
    double out[32];
    for (long i0 = first; i0 <= last; i0 += 4) {
      const long b = std::min(4L, last - i0 + 1);
      std::fill(zc.begin(), zc.end(), 0.0);
      for (long k = 0; k < b; ++k) {
        const double* z = Z.Data() + static_cast<std::size_t>(i0 + k) * zStride;
        double* c = zc.data() + static_cast<std::size_t>(k) * width;
        for (long j = 1; j <= n; ++j) c[j] = z[j] - centre[j];
      }
      for (long c0 = 1; c0 <= n; c0 += 8) {
        kernels::SumProducts4x8(zc.data() + 1, 1, width, Ep.data() + padded + c0, padded, n, out);
        for (long k = 0; k < b; ++k) {
          double* dst = raw.Data() + static_cast<std::size_t>(i0 + k) * rStride;
          for (long cc = 0; cc < 8 && c0 + cc <= n; ++cc) dst[c0 + cc] = out[k * 8 + cc];
        }
      }
    }
  });
}

}  // namespace varnoth
