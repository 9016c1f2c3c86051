#include "diagram/EofClimateCorrelation.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "eof/Kernels.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"

namespace varnoth {

namespace {

// The coefficient from the three sums; d = 0 (a constant EOF or parameter)
// gives 0 rather than a division by zero. Sums that overflowed (values near
// the largest double) are the overflow failure: the table never shows NaN,
// nor a 0 that only an infinite deviation made.
double Coefficient(double sxy, double sxx, double syy) {
  const double product = syy * sxx;
  if (!std::isfinite(sxy) || !std::isfinite(product)) ThrowOverflow();
  const double d = std::pow(product, 0.5);
  return d == 0 ? 0.0 : sxy / d;
}

constexpr long kEofBlock = 8;    // EOFs summed side by side
constexpr long kParamBlock = 4;  // parameters summed side by side

long RoundUp(long n, long block) { return (n + block - 1) / block * block; }

}  // namespace

double EccCorrelation(const Session& s, long e, long p) {
  const long n = s.RefSiteCount;
  double sumX = 0, sumY = 0;
  for (long i = 1; i <= n; ++i) {
    sumX += s.RefScores(i, e);
    sumY += s.ClimateData(i, p);
  }
  const double mx = Div(sumX, n), my = Div(sumY, n);
  double sxy = 0, sxx = 0, syy = 0;
  for (long i = 1; i <= n; ++i) {
    const double dy = s.ClimateData(i, p) - my, dx = s.RefScores(i, e) - mx;
    sxy += dy * dx;
    sxx += dx * dx;
    syy += dy * dy;
  }
  return Coefficient(sxy, sxx, syy);
}

Array2<float> EccCorrelationMatrix(const Session& s, Progress& progress) {
  const long n = s.RefSiteCount, eofs = s.RefTaxaCount, params = s.ClimateParamCount;
  Array2<float> r(eofs, params);
  if (eofs < 1 || params < 1) return r;
  s.RefScores.Require(n, eofs);
  s.ClimateData.Require(n, params);
  progress.Start(eofs);

  // Deviations from the means, laid out block by block so that the sums of
  // one block read consecutive memory: EOF block b holds sites 0..n-1 by 8
  // EOFs, parameter block q sites 0..n-1 by 4 parameters. Padding is 0.
  const long eofWidth = RoundUp(eofs, kEofBlock), paramWidth = RoundUp(params, kParamBlock);
  const std::size_t rows = static_cast<std::size_t>(n);
  std::vector<double> dx(rows * static_cast<std::size_t>(eofWidth), 0.0);
  std::vector<double> dy(rows * static_cast<std::size_t>(paramWidth), 0.0);
  auto at = [rows](std::vector<double>& v, long column, long block, long i) -> double& {
    const std::size_t b = static_cast<std::size_t>((column - 1) / block);
    const std::size_t k = static_cast<std::size_t>((column - 1) % block);
    return v[(b * rows + static_cast<std::size_t>(i - 1)) * static_cast<std::size_t>(block) + k];
  };

  std::vector<double> mx(static_cast<std::size_t>(eofs) + 1, 0.0);
  std::vector<double> my(static_cast<std::size_t>(params) + 1, 0.0);
  for (long i = 1; i <= n; ++i) {
    const double* x = s.RefScores.Row(i, eofs);
    const double* y = s.ClimateData.Row(i, params);
    for (long e = 1; e <= eofs; ++e) mx[e] += x[e];
    for (long p = 1; p <= params; ++p) my[p] += y[p];
  }
  for (long e = 1; e <= eofs; ++e) mx[e] = Div(mx[e], n);
  for (long p = 1; p <= params; ++p) my[p] = Div(my[p], n);

  std::vector<double> sxx(static_cast<std::size_t>(eofs) + 1, 0.0);
  std::vector<double> syy(static_cast<std::size_t>(params) + 1, 0.0);
  for (long i = 1; i <= n; ++i) {
    const double* x = s.RefScores.Row(i, eofs);
    const double* y = s.ClimateData.Row(i, params);
    for (long e = 1; e <= eofs; ++e) {
      const double d = x[e] - mx[e];
      at(dx, e, kEofBlock, i) = d;
      sxx[e] += d * d;
    }
    for (long p = 1; p <= params; ++p) {
      const double d = y[p] - my[p];
      at(dy, p, kParamBlock, i) = d;
      syy[p] += d * d;
    }
  }

  // Each block of 4 parameters by 8 EOFs sums (climate - my) * (score - mx)
  // over the sites in order.
  double sums[kParamBlock * kEofBlock];
  for (long eb = 0; eb < eofWidth / kEofBlock; ++eb) {
    const double* b = dx.data() + static_cast<std::size_t>(eb) * rows * kEofBlock;
    for (long pb = 0; pb < paramWidth / kParamBlock; ++pb) {
      const double* a = dy.data() + static_cast<std::size_t>(pb) * rows * kParamBlock;
      kernels::SumProducts4x8(a, kParamBlock, 1, b, kEofBlock, n, sums);
      for (long ii = 0; ii < kParamBlock; ++ii) {
        const long p = pb * kParamBlock + ii + 1;
        if (p > params) break;
        for (long jj = 0; jj < kEofBlock; ++jj) {
          const long e = eb * kEofBlock + jj + 1;
          if (e > eofs) break;
          r(e, p) = ToSingle(Coefficient(sums[ii * kEofBlock + jj], sxx[e], syy[p]));
        }
      }
    }
    progress.Step(std::min(eofs, (eb + 1) * kEofBlock));
  }
  progress.Finish();
  return r;
}

EccRange EccClimateRange(const Session& s, long p) {
  EccRange r;
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    const double v = s.ClimateData(i, p);
    // A missing value would stretch the axis to -9999: its mark is left
    // to fall outside instead.
    if (v == kMissing) continue;
    if (v > r.Maximum) r.Maximum = ToSingle(v);
    if (v < r.Minimum) r.Minimum = ToSingle(v);
  }
  r.Top = RoundScaleUp(r.Maximum, r.Minimum);
  r.Bottom = RoundScaleDown(r.Minimum, r.Maximum);
  return r;
}

std::string EccText(double v) { return FormatGeneral(std::nearbyint(v * 100) / 100 + 0.0); }

}  // namespace varnoth
