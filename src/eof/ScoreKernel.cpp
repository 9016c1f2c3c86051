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
  const std::size_t zStride = Z.Cols(), eStride = E.Cols(), rStride = raw.Cols();
  // A block of rows shares each eigenvector row while it is in cache; every
  // cell still sums over j in index order.
  constexpr long kBlock = 8;
  ParallelRows(1, rows, 2 * kBlock, [&](long first, long last) {
    std::vector<double> zc(static_cast<std::size_t>(kBlock * (n + 1)));
    std::vector<double> acc(static_cast<std::size_t>(kBlock * (n + 1)));
    for (long i0 = first; i0 <= last; i0 += kBlock) {
      const long b = std::min(kBlock, last - i0 + 1);
      for (long k = 0; k < b; ++k) {
        const double* z = Z.Data() + static_cast<std::size_t>(i0 + k) * zStride;
        double* c = zc.data() + k * (n + 1);
        for (long j = 1; j <= n; ++j) c[j] = z[j] - centre[j];
      }
      std::fill(acc.begin(), acc.end(), 0.0);
      for (long j = 1; j <= n; ++j) {
        const double* e = E.Data() + static_cast<std::size_t>(j) * eStride;
        for (long k = 0; k < b; ++k)
          kernels::AddScaled(acc.data() + k * (n + 1) + 1, e + 1, zc[k * (n + 1) + j],
                             static_cast<std::size_t>(n));
      }
      for (long k = 0; k < b; ++k) {
        double* out = raw.Data() + static_cast<std::size_t>(i0 + k) * rStride;
        const double* a = acc.data() + k * (n + 1);
        for (long c = 1; c <= n; ++c) out[c] = a[c];
      }
    }
  });
}

}  // namespace varnoth
