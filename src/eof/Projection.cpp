#include "eof/Projection.h"

#include <cmath>
#include <vector>

#include "eof/ScoreKernel.h"
#include "state/Finite.h"

namespace varnoth {

void DoProjection(Session& s, Progress& progress) {
  const long f = s.FossilSampleCount, n = s.FossilTaxaCount;
  progress.Start(n);
  s.FossilStandardised.ReDim(f, n);
  s.FossilData.Require(f, n);
  s.ColumnMean.Require(2, n);
  s.ColumnStd.Require(2, n);
  for (long i = 1; i <= f; ++i)
    for (long j = 1; j <= n; ++j) {
      double sd = s.ColumnStd(0, j);
      s.FossilStandardised(i, j) = sd == 0 ? 0 : (s.FossilData(i, j) - s.ColumnMean(0, j)) / sd;
    }
  // The fossil's own taxon means: a scratch value only.
  for (long j = 1; j <= n; ++j) {
    double sum = 0;
    for (long i = 1; i <= f; ++i) sum += s.FossilStandardised(i, j);
    s.StatWork(0, j) = Div(sum, f);
  }
  s.FossilScoreRaw.ReDim(f, n);
  // The reference centre is subtracted, not the fossil's own, so that a
  // sample's distance from the modern centre stays in its score.
  std::vector<double> centre(static_cast<std::size_t>(n + 1));
  for (long j = 1; j <= n; ++j) centre[j] = s.ColumnMean(1, j);
  ProjectRows(s.FossilStandardised, f, n, centre, s.EigenVectors, s.FossilScoreRaw);
  progress.Step(n);
  // Own statistics of the fossil scores, used below as the zero test alone.
  for (long c = 1; c <= n; ++c) {
    double sum = 0;
    for (long i = 1; i <= f; ++i) sum += s.FossilScoreRaw(i, c);
    double mean = Div(sum, f);
    double squares = 0;
    for (long i = 1; i <= f; ++i) {
      double d = s.FossilScoreRaw(i, c) - mean;
      squares += d * d;
    }
    double variance = Div(squares, f);
    s.StatWork(0, c) = mean;
    s.StatWork(1, c) = variance;
    s.StatWork(2, c) = std::sqrt(variance);
  }
  s.FossilScores.Require(f, n);
  for (long i = 1; i <= f; ++i)
    for (long c = 1; c <= n; ++c)
      s.FossilScores(i, c) = s.StatWork(2, c) == 0
                                 ? 0
                                 : Div(s.FossilScoreRaw(i, c) - s.ColumnMean(2, c), s.ColumnStd(2, c));
  RequireFinite(s.FossilStandardised);
  RequireFinite(s.FossilScoreRaw);
  RequireFinite(s.FossilScores);
  if (f >= 3) s.ProjectionDone = true;
  progress.Finish();
}

}  // namespace varnoth
