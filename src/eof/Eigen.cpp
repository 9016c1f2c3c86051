#include "eof/Eigen.h"

#include <chrono>
#include <cmath>
#include <vector>

#include "eof/Kernels.h"
#include "eof/ScoreKernel.h"
#include "state/Finite.h"
#include "state/Parallel.h"

namespace varnoth {

namespace {

double SecondsOfDay() {
  using namespace std::chrono;
  auto now = system_clock::now().time_since_epoch();
  return static_cast<double>(duration_cast<microseconds>(now).count() % 86400000000LL) / 1e6;
}

// Mean and population deviation of `count` values given by `value(k)`,
// k = 1..count, summed in index order.
template <typename F>
void MeanAndDeviation(long count, F value, double& mean, double& deviation) {
  double sum = 0;
  for (long k = 1; k <= count; ++k) sum += value(k);
  mean = Div(sum, count);
  double squares = 0;
  for (long k = 1; k <= count; ++k) {
    double d = value(k) - mean;
    squares += d * d;
  }
  deviation = std::sqrt(Div(squares, count));
}

// Work on slices of 256 rows, spread over the cores.
template <typename Body>
void ForRowSlices(long rows, Body body) {
  constexpr long kSlice = 256;
  ParallelTasks((rows + kSlice - 1) / kSlice,
                [&](long t) { body(1 + t * kSlice, std::min(rows, (t + 1) * kSlice)); });
}

// Mean and population deviation of columns 1..n over rows 1..rows, walking
// the rows so that memory is read in order; each column still sums its rows
// in index order.
void ColumnStatistics(const Array2<double>& A, long rows, long n, std::vector<double>& mean,
                      std::vector<double>& deviation) {
  A.Require(rows, n);
  mean.assign(static_cast<std::size_t>(n + 1), 0.0);
  deviation.assign(static_cast<std::size_t>(n + 1), 0.0);
  std::vector<double> sum(static_cast<std::size_t>(n + 1), 0.0), squares(sum);
  ForColumnGroups(n, [&](long j0, long j1) {
    for (long r = 1; r <= rows; ++r) {
      const double* a = A.Row(r, n);
      for (long j = j0; j <= j1; ++j) sum[j] += a[j];
    }
    for (long j = j0; j <= j1; ++j) mean[j] = Div(sum[j], rows);
    for (long r = 1; r <= rows; ++r) {
      const double* a = A.Row(r, n);
      for (long j = j0; j <= j1; ++j) {
        double d = a[j] - mean[j];
        squares[j] += d * d;
      }
    }
    for (long j = j0; j <= j1; ++j) deviation[j] = std::sqrt(Div(squares[j], rows));
  });
}

// The sort of PowerEigen: j walks up while neighbours are in order; a swap
// sends it back to column 0, which then takes part too. `less(a, b)` tells
// whether column a's eigenvalue is smaller than column b's.
template <typename Less, typename Swap>
void SortProcedure(long n, Less less, Swap swap) {
  long j = 1;
  do {
    if (less(j, j + 1)) {
      swap(j, j + 1);
      j = 0;
    } else {
      ++j;
    }
  } while (j != n);
}

// Columns sums of rows 1..rows, each in row order, for columns 1..cols.
std::vector<double> ColumnSums(const Array2<double>& X, long rows, long cols) {
  std::vector<double> sums(static_cast<std::size_t>(cols + 1), 0.0);
  ForColumnGroups(cols, [&](long j0, long j1) {
    for (long r = 1; r <= rows; ++r) {
      const double* x = X.Row(r, cols);
      for (long j = j0; j <= j1; ++j) sums[j] += x[j];
    }
  });
  return sums;
}

// The upper triangle (j >= i) of D'D with each cell summed in row order.
// D is held in panels of 8 columns, each panel row after row (panel p,
// row r at D[(p * rows + r) * 8]), so that a block of 4 by 8 cells reads
// memory in order. The rows go in slices small enough to stay in the
// core's cache while all blocks of a task take their turn; each block
// carries its sums from one slice to the next, which keeps the order.
void CrossProducts(const Storage<double>& D, long rows, long n, std::vector<double>& S) {
  const long panels = (n + 7) / 8;
  constexpr long kSlice = 256, kPanelsPerTask = 1;
  const long tasks = (panels + kPanelsPerTask - 1) / kPanelsPerTask;
  // Task t takes the row blocks of panels t, t + 1, ...: the first tasks
  // have the most blocks and are handed out first.
  ParallelTasks(tasks, [&](long t) {
    const long p0 = t * kPanelsPerTask, p1 = std::min(panels, p0 + kPanelsPerTask);
    // Sums of the blocks (row block of panel p, half h) x (panel q >= p).
    std::vector<double> acc(static_cast<std::size_t>((p1 - p0) * 2 * panels * 32), 0.0);
    auto block = [&](long p, long h, long q) {
      return acc.data() + static_cast<std::size_t>((((p - p0) * 2 + h) * panels + q) * 32);
    };
    for (long r0 = 0; r0 < rows; r0 += kSlice) {
      const long count = std::min(kSlice, rows - r0);
      for (long p = p0; p < p1; ++p)
        for (long h = 0; h < 2; ++h) {
          const double* a = D.data() + static_cast<std::size_t>((p * rows + r0) * 8 + 4 * h);
          for (long q = p; q < panels; ++q) {
            const double* b = D.data() + static_cast<std::size_t>((q * rows + r0) * 8);
            kernels::AddProducts4x8(a, 8, 1, b, 8, count, block(p, h, q));
          }
        }
    }
    for (long p = p0; p < p1; ++p)
      for (long h = 0; h < 2; ++h)
        for (long q = p; q < panels; ++q) {
          const double* out = block(p, h, q);
          for (long ii = 0; ii < 4; ++ii)
            for (long jj = 0; jj < 8; ++jj) {
              long i = 1 + 8 * p + 4 * h + ii, j = 1 + 8 * q + jj;
              if (i <= n && j <= n && j >= i)
                S[static_cast<std::size_t>(i * (n + 1) + j)] = out[ii * 8 + jj];
            }
        }
  });
}

}  // namespace

// Every cell as CorrelatePair or CovariancePair gives it.
void BuildEofMatrix(Session& s, const Array2<double>& X) {
  const long n = s.TaxaCount, m = s.BaseRowCount;
  if (s.UseCorrelation) {
    for (long i = 1; i <= n; ++i) s.EofMatrix(i, i) = 1;
    if (n < 2) return;
    // CorrelatePair copies the columns into an array sized by the reference
    // rows and divides the sums by that count.
    if (m > s.RefSiteCount) ThrowSubscript();
  }
  const double divisor = s.UseCorrelation ? s.RefSiteCount : m;
  X.Require(m, n);
  std::vector<double> mean = ColumnSums(X, m, n);
  for (long j = 1; j <= n; ++j) mean[j] = Div(mean[j], divisor);
  const long stride = n + 1;
  const long panels = (n + 7) / 8;
  // The centred columns in panels of 8 (zeros past column n), in storage
  // that comes zeroed.
  Storage<double> D(static_cast<std::size_t>(panels * m * 8));
  ForRowSlices(m, [&](long r0, long r1) {
    for (long r = r0; r <= r1; ++r) {
      const double* x = X.Row(r, n);
      for (long j = 1; j <= n; ++j)
        D[static_cast<std::size_t>((((j - 1) / 8) * m + r - 1) * 8 + (j - 1) % 8)] = x[j] - mean[j];
    }
  });
  std::vector<double> S(static_cast<std::size_t>(stride * stride), 0.0);
  CrossProducts(D, m, n, S);
  auto cell = [&](long i, long j) { return S[static_cast<std::size_t>(i * stride + j)]; };
  for (long i = 1; i <= n; ++i) {
    for (long j = i; j <= n; ++j) {
      if (s.UseCorrelation) {
        if (i == j) continue;
        double d = std::sqrt(cell(j, j) * cell(i, i));
        if (d != 0) s.EofMatrix(i, j) = cell(i, j) / d;
      } else if (m >= 2) {
        s.EofMatrix(i, j) = cell(i, j) / m;
      }
      s.EofMatrix(j, i) = s.EofMatrix(i, j);
    }
  }
}

// Power iteration for all components with the matrix in panels of rows, so
// that A v runs as column updates vectorised across a panel's rows while
// each w(r) keeps its sum over k in index order, and a panel is read from
// memory in one stream. Panels are shared between two threads; the norm is
// summed by the caller, in row order, starting on its own panels while the
// helper finishes. The deflation by one component is done in the same pass
// over a panel as the first product of the next.
namespace {

// The three passes' sorts on the computed columns: column 0 carries over
// from one pass to the next, columns 1..n start afresh each time.
void SortThreePasses(Session& s) {
  const long n = s.EigenOrder;
  const long rows = n + 1;
  Array2<double>& E = s.EigenVectors;
  E.Require(rows, n);
  // Source 0 is the content of column 0, sources 1..n the computed columns.
  std::vector<std::vector<double>> source(static_cast<std::size_t>(n + 1),
                                          std::vector<double>(static_cast<std::size_t>(rows + 1)));
  for (long c = 0; c <= n; ++c)
    for (long r = 0; r <= rows; ++r) source[c][r] = E(r, c);
  std::vector<long> place(static_cast<std::size_t>(n + 1));
  for (int pass = 1; pass <= 3; ++pass) {
    for (long c = 0; c <= n; ++c) place[c] = c;
    SortProcedure(
        n,
        [&](long a, long b) {
          if (b > n) ThrowSubscript();
          return source[place[a]][rows] < source[place[b]][rows];
        },
        [&](long a, long b) { std::swap(place[a], place[b]); });
    if (pass < 3) {
      std::vector<double> zero = source[place[0]];
      source[0] = zero;
    }
  }
  // Rows 1..n+1 move with their columns; row 0 stays.
  for (long c = 0; c <= n; ++c)
    for (long r = 1; r <= rows; ++r) E(r, c) = source[place[c]][r];
}

}  // namespace

const Array2<double>& BaseTable(const Session& s) {
  return s.ReferenceIsBase ? s.RefData : s.FossilData;
}

void CorrelatePair(Session& s, long i, long j) {
  const Array2<double>& X = BaseTable(s);
  const long m = s.BaseRowCount;
  Array1<double> x(s.RefSiteCount), y(s.RefSiteCount);
  for (long r = 1; r <= m; ++r) {
    x(r) = X(r, i);
    y(r) = X(r, j);
  }
  double sx = 0, sy = 0;
  for (long r = 1; r <= m; ++r) {
    sx += x(r);
    sy += y(r);
  }
  const double mx = Div(sx, s.RefSiteCount), my = Div(sy, s.RefSiteCount);
  double sxy = 0, sxx = 0, syy = 0;
  for (long r = 1; r <= m; ++r) {
    sxy += (x(r) - mx) * (y(r) - my);
    sxx += (x(r) - mx) * (x(r) - mx);
    syy += (y(r) - my) * (y(r) - my);
  }
  double d = std::sqrt(syy * sxx);
  if (d != 0)
    s.EofMatrix(i, j) = sxy / d;
  else if (i == j)
    s.EofMatrix(i, j) = 1;
}

void CovariancePair(Session& s, long i, long j) {
  const Array2<double>& X = BaseTable(s);
  const long m = s.BaseRowCount;
  double sx = 0, sy = 0;
  for (long r = 1; r <= m; ++r) {
    sx += X(r, i);
    sy += X(r, j);
  }
  const double mx = Div(sx, m), my = Div(sy, m);
  double sxy = 0;
  for (long r = 1; r <= m; ++r) sxy += (X(r, i) - mx) * (X(r, j) - my);
  if (m >= 2) s.EofMatrix(i, j) = sxy / m;
}

void SortComponents(Array2<double>& E, long n) {
  SortProcedure(
      n, [&](long a, long b) { return E(n + 1, a) < E(n + 1, b); },
      [&](long a, long b) {
        for (long r = 1; r <= n + 1; ++r) std::swap(E(r, a), E(r, b));
      });
}

void PowerEigen(Session& s, int pass, Progress& progress) {
  const long n = s.EigenOrder;
  Array2<double>& A = s.EigenWork;
  Array2<double>& E = s.EigenVectors;
  Array1<double> w(n);
  for (long c = 1; c <= n; ++c) {
    progress.Step(static_cast<long>(pass - 1) * s.TaxaCount + c);
    E(1, c) = 1;
    for (long r = 2; r <= n; ++r) E(r, c) = 0;
    double norm = 0;
    for (int it = 0; it < 20; ++it) {
      for (long r = 1; r <= n; ++r) {
        double sum = 0;
        for (long k = 1; k <= n; ++k) sum += E(k, c) * A(r, k);
        w(r) = sum;
      }
      double sq = 0;
      for (long r = 1; r <= n; ++r) sq += w(r) * w(r);
      norm = std::sqrt(sq);
      E(n + 1, c) = norm;
      for (long r = 1; r <= n; ++r) E(r, c) = norm == 0 ? 0 : w(r) / norm;
    }
    for (long r = 1; r <= n; ++r)
      for (long k = 1; k <= n; ++k) A(r, k) = A(r, k) - E(r, c) * norm * E(k, c);
  }
  SortComponents(E, n);
}

void ComputeLoadings(Session& s) {
  const long n = s.TaxaCount;
  for (long c = 1; c <= n; ++c) {
    double root = std::sqrt(s.EigenVectors(n + 1, c));
    for (long i = 1; i <= n; ++i) s.Loadings(i, c) = s.EigenVectors(i, c) * root;
    double mean, deviation;
    MeanAndDeviation(
        n, [&](long i) { return s.Loadings(i, c); }, mean, deviation);
    for (long i = 1; i <= n; ++i)
      s.Loadings(i, c) = deviation == 0 ? 0 : (s.Loadings(i, c) - mean) / deviation;
  }
}

void ComputeContributions(Session& s) {
  const long n = s.TaxaCount;
  s.Contribution.ReDim(n);
  s.CumContribution.ReDim(n);
  s.CumContribution(0) = 0;
  for (long c = 1; c <= n; ++c) {
    s.Contribution(c) = ToSingle(s.EigenVectors(n + 1, c) * 100 / n);
    s.CumContribution(c) = ToSingle(static_cast<double>(s.CumContribution(c - 1)) +
                                    static_cast<double>(s.Contribution(c)));
  }
  for (long c = 1; c <= n; ++c) {
    // The total is read afresh each time, so at c = n it is still the old one.
    float total = s.CumContribution(n);
    float hundred = 100.0f;
    s.Contribution(c) = ToSingle(Div(ToSingle(s.Contribution(c) * hundred), total));
    s.CumContribution(c) = ToSingle(Div(ToSingle(s.CumContribution(c) * hundred), total));
  }
}

void ComputeBaseScores(Session& s, const Array2<double>& X) {
  const long n = s.TaxaCount, m = s.BaseRowCount;
  X.Require(m, n);
  // Data statistics per taxon.
  std::vector<double> mean, dev;
  ColumnStatistics(X, m, n, mean, dev);
  for (long j = 1; j <= n; ++j) {
    s.ColumnMean(0, j) = mean[j];
    s.ColumnStd(0, j) = dev[j];
  }
  // The standardised table is never held: each value is worked out where it
  // is needed, the same way each time, so the bits are those of a held table.
  auto standardised = [&](const double* x, long j) {
    return dev[j] == 0 ? 0 : (x[j] - mean[j]) / dev[j];
  };
  std::vector<double> zsum(static_cast<std::size_t>(n + 1), 0.0);
  ForColumnGroups(n, [&](long j0, long j1) {
    for (long r = 1; r <= m; ++r) {
      const double* x = X.Row(r, n);
      for (long j = j0; j <= j1; ++j) zsum[j] += standardised(x, j);
    }
  });
  for (long j = 1; j <= n; ++j) s.ColumnMean(1, j) = Div(zsum[j], m);

  Array2<double>& raw = s.ReferenceIsBase ? s.RefScoreRaw : s.FossilScoreRaw;
  Array2<double>& scores = s.ReferenceIsBase ? s.RefScores : s.FossilScores;
  std::vector<double> centre(static_cast<std::size_t>(n + 1));
  for (long j = 1; j <= n; ++j) centre[j] = s.ColumnMean(1, j);
  ScoreRows(
      m, n,
      [&](long r, double* c) {
        const double* x = X.Row(r, n);
        for (long j = 1; j <= n; ++j) c[j - 1] = standardised(x, j) - centre[j];
      },
      s.EigenVectors, raw);
  scores.Require(m, n);
  std::vector<double> mu, sd;
  ColumnStatistics(raw, m, n, mu, sd);
  for (long c = 1; c <= n; ++c) {
    s.ColumnMean(2, c) = mu[c];
    s.ColumnStd(2, c) = sd[c];
  }
  ForRowSlices(m, [&](long r0, long r1) {
    for (long r = r0; r <= r1; ++r) {
      const double* in = raw.Row(r, n);
      double* out = scores.Row(r, n);
      for (long c = 1; c <= n; ++c) out[c] = sd[c] == 0 ? 0 : (in[c] - mu[c]) / sd[c];
    }
  });
}

void RunEofAnalysis(Session& s, Progress& progress) {
  const long n = s.TaxaCount;
  const long m = s.BaseRowCount;
  progress.Start(3L * n);
  s.EigenWork.ReDim(n, 2 * n);
  s.EigenVectors.ReDim(n + 1, n);
  s.EofMatrix.ReDim(n, n);
  s.Loadings.ReDim(n, n);
  s.StatWork.ReDim(2, n);
  s.ColumnMean.ReDim(4, n);
  s.ColumnStd.ReDim(4, n);
  for (long i = 1; i <= n; ++i) {
    s.EigenWork(i, i) = 1;
    s.EigenWork(i, n + i) = 1;
    s.EigenVectors(i, i) = 1;
  }
  (void)m;
  s.AnalysisTime = SecondsOfDay();
  auto started = std::chrono::steady_clock::now();

  // The three passes start from the same input and differ only in how the
  // sort treats column 0; the matrix and the iterations are done once.
  const Array2<double>& X = BaseTable(s);
  BuildEofMatrix(s, X);
  RequireFinite(s.EofMatrix);
  for (long i = 1; i <= n; ++i)
    for (long j = 1; j <= n; ++j) s.EigenWork(i, j) = s.EofMatrix(i, j);
  PowerIterations(s, progress);
  SortThreePasses(s);
  progress.Step(3L * n);
  ComputeLoadings(s);
  ComputeContributions(s);
  ComputeBaseScores(s, X);
  // A matrix of huge but finite cells can still overflow in the iteration.
  RequireFinite(s.EigenVectors);
  RequireFinite(s.Loadings);
  RequireFinite(s.Contribution);
  RequireFinite(s.CumContribution);
  RequireFinite(s.ColumnMean);
  RequireFinite(s.ColumnStd);
  RequireFinite(s.ReferenceIsBase ? s.RefScoreRaw : s.FossilScoreRaw);
  RequireFinite(s.ReferenceIsBase ? s.RefScores : s.FossilScores);

  // The scatter is drawn with display axes 1 to 3, which a table of fewer
  // than 3 taxa cannot hold.
  for (long a = 1; a <= 3; ++a) (void)s.DisplayAxes(a);
  s.EofDone = n > 2;
  s.ReferenceImportOpen = !s.ReferenceIsBase;
  s.FossilImportOpen = s.ReferenceIsBase;
  s.AnalysisTime =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count() * 1e6;
  progress.Finish();
}

}  // namespace varnoth
