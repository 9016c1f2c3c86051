#include "support/LiteralEof.h"

#include <cmath>

#include "eof/Eigen.h"

namespace varnoth::test {

void RunEofAnalysisLiteral(Session& s) {
  NoProgress progress;
  const long n = s.TaxaCount, m = s.BaseRowCount;
  s.EigenWork.ReDim(n, 2 * n);
  s.EigenVectors.ReDim(n + 1, n);
  s.EofMatrix.ReDim(n, n);
  s.Loadings.ReDim(n, n);
  s.StatWork.ReDim(2, n);
  s.ColumnMean.ReDim(4, n);
  s.ColumnStd.ReDim(4, n);
  Array2<double> Z(m, n);
  for (long i = 1; i <= n; ++i) {
    s.EigenWork(i, i) = 1;
    s.EigenWork(i, n + i) = 1;
    s.EigenVectors(i, i) = 1;
  }
  const Array2<double>& X = s.ReferenceIsBase ? s.RefData : s.FossilData;
  for (int pass = 1; pass <= 3; ++pass) {
    for (long i = 1; i <= n; ++i) {
      for (long j = i; j <= n; ++j) {
        if (s.UseCorrelation) {
          if (i == j)
            s.EofMatrix(i, j) = 1;
          else
            CorrelatePair(s, i, j);
        } else {
          CovariancePair(s, i, j);
        }
        s.EofMatrix(j, i) = s.EofMatrix(i, j);
      }
    }
    for (long i = 1; i <= n; ++i)
      for (long j = 1; j <= n; ++j) s.EigenWork(i, j) = s.EofMatrix(i, j);
    PowerEigen(s, pass, progress);

    for (long c = 1; c <= n; ++c) {
      for (long i = 1; i <= n; ++i)
        s.Loadings(i, c) = s.EigenVectors(i, c) * std::sqrt(s.EigenVectors(n + 1, c));
      double sum = 0;
      for (long i = 1; i <= n; ++i) sum += s.Loadings(i, c);
      double mean = sum / n, sq = 0;
      for (long i = 1; i <= n; ++i) sq += (s.Loadings(i, c) - mean) * (s.Loadings(i, c) - mean);
      double dev = std::sqrt(sq / n);
      for (long i = 1; i <= n; ++i)
        s.Loadings(i, c) = dev == 0 ? 0 : (s.Loadings(i, c) - mean) / dev;
    }

    s.Contribution.ReDim(n);
    s.CumContribution.ReDim(n);
    for (long c = 1; c <= n; ++c) {
      s.Contribution(c) = static_cast<float>(s.EigenVectors(n + 1, c) * 100 / n);
      s.CumContribution(c) = s.CumContribution(c - 1) + s.Contribution(c);
    }
    for (long c = 1; c <= n; ++c) {
      float total = s.CumContribution(n);
      s.Contribution(c) = s.Contribution(c) * 100.0f / total;
      s.CumContribution(c) = s.CumContribution(c) * 100.0f / total;
    }

    for (long j = 1; j <= n; ++j) {
      double sum = 0;
      for (long i = 1; i <= m; ++i) sum += X(i, j);
      s.ColumnMean(0, j) = sum / m;
      double sq = 0;
      for (long i = 1; i <= m; ++i) sq += (X(i, j) - s.ColumnMean(0, j)) * (X(i, j) - s.ColumnMean(0, j));
      s.ColumnStd(0, j) = std::sqrt(sq / m);
    }
    for (long j = 1; j <= n; ++j) {
      double sum = 0;
      for (long i = 1; i <= m; ++i) {
        Z(i, j) = s.ColumnStd(0, j) == 0 ? 0 : (X(i, j) - s.ColumnMean(0, j)) / s.ColumnStd(0, j);
        sum += Z(i, j);
      }
      s.ColumnMean(1, j) = sum / m;
    }
    Array2<double>& raw = s.ReferenceIsBase ? s.RefScoreRaw : s.FossilScoreRaw;
    Array2<double>& scores = s.ReferenceIsBase ? s.RefScores : s.FossilScores;
    for (long c = 1; c <= n; ++c) {
      for (long i = 1; i <= m; ++i) {
        double sum = 0;
        for (long j = 1; j <= n; ++j) sum += (Z(i, j) - s.ColumnMean(1, j)) * s.EigenVectors(j, c);
        raw(i, c) = sum;
      }
      double sum = 0;
      for (long i = 1; i <= m; ++i) sum += raw(i, c);
      s.ColumnMean(2, c) = sum / m;
      double sq = 0;
      for (long i = 1; i <= m; ++i) sq += (raw(i, c) - s.ColumnMean(2, c)) * (raw(i, c) - s.ColumnMean(2, c));
      s.ColumnStd(2, c) = std::sqrt(sq / m);
      for (long i = 1; i <= m; ++i)
        scores(i, c) = s.ColumnStd(2, c) == 0 ? 0 : (raw(i, c) - s.ColumnMean(2, c)) / s.ColumnStd(2, c);
    }
  }
  for (long a = 1; a <= 3; ++a) (void)s.DisplayAxes(a);
  s.EofDone = n > 2;
}

}  // namespace varnoth::test
