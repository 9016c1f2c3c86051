#include "eof/Projection.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "eof/ScoreKernel.h"
#include "state/Finite.h"
#include "state/Parallel.h"

namespace varnoth {

void DoProjection(Session& s, Progress& progress) {
  const long f = s.FossilSampleCount, n = s.FossilTaxaCount;
  progress.Start(n);
  s.FossilStandardised.ReDim(f, n);
  s.FossilData.Require(f, n);
  s.ColumnMean.Require(2, n);
  s.ColumnStd.Require(2, n);
  Array2<double>& Z = s.FossilStandardised;
  ParallelRows(1, f, 64, [&](long i0, long i1) {
    for (long i = i0; i <= i1; ++i) {
      const double* x = s.FossilData.Row(i, n);
      double* z = Z.Row(i, n);
      for (long j = 1; j <= n; ++j) {
        double sd = s.ColumnStd(0, j);
        z[j] = sd == 0 ? 0 : (x[j] - s.ColumnMean(0, j)) / sd;
      }
    }
  });
  // The fossil's own taxon means: a scratch value only.
  ForColumnGroups(n, [&](long j0, long j1) {
    double sum[kColumnGroup] = {};
    for (long i = 1; i <= f; ++i) {
      const double* z = Z.Row(i, n);
      for (long j = j0; j <= j1; ++j) sum[j - j0] += z[j];
    }
    for (long j = j0; j <= j1; ++j) s.StatWork(0, j) = Div(sum[j - j0], f);
  });
  s.FossilScoreRaw.ReDim(f, n);
  // The reference centre is subtracted, not the fossil's own, so that a
  // sample's distance from the modern centre stays in its score.
  std::vector<double> centre(static_cast<std::size_t>(n + 1));
  for (long j = 1; j <= n; ++j) centre[j] = s.ColumnMean(1, j);
  ProjectRows(Z, f, n, centre, s.EigenVectors, s.FossilScoreRaw);
  progress.Step(n);
  // Own statistics of the fossil scores, used below as the zero test alone.
  const Array2<double>& raw = s.FossilScoreRaw;
  ForColumnGroups(n, [&](long c0, long c1) {
    double sum[kColumnGroup] = {}, squares[kColumnGroup] = {}, mean[kColumnGroup];
    for (long i = 1; i <= f; ++i) {
      const double* r = raw.Row(i, n);
      for (long c = c0; c <= c1; ++c) sum[c - c0] += r[c];
    }
    for (long c = c0; c <= c1; ++c) mean[c - c0] = Div(sum[c - c0], f);
    for (long i = 1; i <= f; ++i) {
      const double* r = raw.Row(i, n);
      for (long c = c0; c <= c1; ++c) {
        double d = r[c] - mean[c - c0];
        squares[c - c0] += d * d;
      }
    }
    for (long c = c0; c <= c1; ++c) {
      double variance = Div(squares[c - c0], f);
      s.StatWork(0, c) = mean[c - c0];
      s.StatWork(1, c) = variance;
      s.StatWork(2, c) = std::sqrt(variance);
    }
  });
  s.FossilScores.Require(f, n);
  ParallelRows(1, f, 64, [&](long i0, long i1) {
    for (long i = i0; i <= i1; ++i) {
      const double* r = raw.Row(i, n);
      double* out = s.FossilScores.Row(i, n);
      for (long c = 1; c <= n; ++c)
        out[c] = s.StatWork(2, c) == 0 ? 0 : Div(r[c] - s.ColumnMean(2, c), s.ColumnStd(2, c));
    }
  });
  RequireFinite(s.FossilStandardised);
  RequireFinite(s.FossilScoreRaw);
  RequireFinite(s.FossilScores);
  if (f >= 3) s.ProjectionDone = true;
  progress.Finish();
}

}  // namespace varnoth
