#include "support/LiteralEof.h"

#include <cmath>

#include "state/Numeric.h"

namespace varnoth::test {

namespace {

// The cells, the power iteration and the sort as plain loops of their own,
// so that a fault in the engine's versions shows in the comparison.

const Array2<double>& Base(const Session& s) {
  return s.ReferenceIsBase ? s.RefData : s.FossilData;
}

void CorrelatePairLiteral(Session& s, long i, long j) {
  const Array2<double>& X = Base(s);
  const long m = s.BaseRowCount;
  // The local columns are sized by the reference's rows.
  Array1<double> x(s.RefSiteCount), y(s.RefSiteCount);
  for (long r = 1; r <= m; ++r) {
    x(r) = X(r, i);
    y(r) = X(r, j);
  }
  double mx = 0, my = 0;
  for (long r = 1; r <= m; ++r) mx = mx + x(r);
  for (long r = 1; r <= m; ++r) my = my + y(r);
  mx = Div(mx, s.RefSiteCount);
  my = Div(my, s.RefSiteCount);
  double sxy = 0, sxx = 0, syy = 0;
  for (long r = 1; r <= m; ++r) {
    sxy = sxy + (x(r) - mx) * (y(r) - my);
    sxx = sxx + (x(r) - mx) * (x(r) - mx);
    syy = syy + (y(r) - my) * (y(r) - my);
  }
  const double d = std::sqrt(syy * sxx);
  if (d != 0) {
    s.EofMatrix(i, j) = sxy / d;
  } else if (i == j) {
    s.EofMatrix(i, j) = 1;
  }
}

void CovariancePairLiteral(Session& s, long i, long j) {
  const Array2<double>& X = Base(s);
  const long m = s.BaseRowCount;
  double mx = 0, my = 0;
  for (long r = 1; r <= m; ++r) mx = mx + X(r, i);
  for (long r = 1; r <= m; ++r) my = my + X(r, j);
  mx = Div(mx, m);
  my = Div(my, m);
  double sxy = 0;
  for (long r = 1; r <= m; ++r) sxy = sxy + (X(r, i) - mx) * (X(r, j) - my);
  if (m >= 2) s.EofMatrix(i, j) = sxy / m;
}

void PowerEigenLiteral(Session& s) {
  const long n = s.EigenOrder;
  Array2<double>& A = s.EigenWork;
  Array2<double>& E = s.EigenVectors;
  Array1<double> w(n);
  for (long c = 1; c <= n; ++c) {
    E(1, c) = 1;
    for (long r = 2; r <= n; ++r) E(r, c) = 0;
    double norm = 0;
    for (int iteration = 1; iteration <= 20; ++iteration) {
      for (long r = 1; r <= n; ++r) {
        w(r) = 0;
        for (long k = 1; k <= n; ++k) w(r) = w(r) + E(k, c) * A(r, k);
      }
      double squares = 0;
      for (long r = 1; r <= n; ++r) squares = squares + w(r) * w(r);
      norm = std::sqrt(squares);
      E(n + 1, c) = norm;
      for (long r = 1; r <= n; ++r) E(r, c) = norm == 0 ? 0 : w(r) / norm;
    }
    for (long r = 1; r <= n; ++r)
      for (long k = 1; k <= n; ++k) A(r, k) = A(r, k) - E(r, c) * norm * E(k, c);
  }
  // Descending by eigenvalue; a swap restarts the scan at column 0, which
  // takes part in the comparison.
  long j = 1;
  do {
    if (E(n + 1, j) < E(n + 1, j + 1)) {
      for (long r = 1; r <= n + 1; ++r) {
        const double keep = E(r, j);
        E(r, j) = E(r, j + 1);
        E(r, j + 1) = keep;
      }
      j = 0;
    } else {
      j = j + 1;
    }
  } while (j != n);
}

}  // namespace

void RunEofAnalysisLiteral(Session& s) {
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
            CorrelatePairLiteral(s, i, j);
        } else {
          CovariancePairLiteral(s, i, j);
        }
        s.EofMatrix(j, i) = s.EofMatrix(i, j);
      }
    }
    for (long i = 1; i <= n; ++i)
      for (long j = 1; j <= n; ++j) s.EigenWork(i, j) = s.EofMatrix(i, j);
    PowerEigenLiteral(s);

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
      for (long i = 1; i <= m; ++i)
        sq += (X(i, j) - s.ColumnMean(0, j)) * (X(i, j) - s.ColumnMean(0, j));
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
      for (long i = 1; i <= m; ++i)
        sq += (raw(i, c) - s.ColumnMean(2, c)) * (raw(i, c) - s.ColumnMean(2, c));
      s.ColumnStd(2, c) = std::sqrt(sq / m);
      for (long i = 1; i <= m; ++i)
        scores(i, c) =
            s.ColumnStd(2, c) == 0 ? 0 : (raw(i, c) - s.ColumnMean(2, c)) / s.ColumnStd(2, c);
    }
  }
  for (long a = 1; a <= 3; ++a) (void)s.DisplayAxes(a);
  s.EofDone = n > 2;
}

}  // namespace varnoth::test
