#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

#include "eof/Eigen.h"
#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "support/LiteralEof.h"
#include "support/Tables.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

// A session holding the given reference table, imported, not yet analysed.
Session Imported(const std::string& table, TempDir& dir, bool referenceBase = true) {
  Session s;
  FakeDialogs dialogs;
  NoProgress progress;
  std::string path = dir.Write("table.csv", table);
  ImportResult r = referenceBase ? ImportReference(s, path, dialogs, progress)
                                 : ImportFossil(s, path, dialogs, progress);
  EXPECT_TRUE(r.Ok);
  return s;
}

// The pre-treatment of the dialog without running the analysis.
void Treat(Session& s, const PreTreatmentSettings& p) {
  s.PreTreatment = p;
  s.UseCorrelation = p.Correlation;
  s.RefProportion.ReDim(s.RefSiteCount, s.RefTaxaCount);
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    double sum = 0;
    for (long j = 1; j <= s.RefTaxaCount; ++j) sum += s.RefData(i, j);
    for (long j = 1; j <= s.RefTaxaCount; ++j) {
      s.RefProportion(i, j) =
          p.ConvertToPercent ? (sum == 0 ? 0 : s.RefData(i, j) / sum) : s.RefData(i, j);
      if (p.Enhance) s.RefData(i, j) = EnhanceValue(s.RefProportion(i, j), p);
    }
  }
}

void ExpectSameResults(const Session& a, const Session& b) {
  EXPECT_TRUE(a.EofMatrix == b.EofMatrix);
  EXPECT_TRUE(a.EigenWork == b.EigenWork);
  EXPECT_TRUE(a.EigenVectors == b.EigenVectors);
  EXPECT_TRUE(a.Loadings == b.Loadings);
  EXPECT_TRUE(a.Contribution == b.Contribution);
  EXPECT_TRUE(a.CumContribution == b.CumContribution);
  EXPECT_TRUE(a.ColumnMean == b.ColumnMean);
  EXPECT_TRUE(a.ColumnStd == b.ColumnStd);
  EXPECT_TRUE(a.RefScoreRaw == b.RefScoreRaw);
  EXPECT_TRUE(a.RefScores == b.RefScores);
  EXPECT_TRUE(a.FossilScoreRaw == b.FossilScoreRaw);
  EXPECT_TRUE(a.FossilScores == b.FossilScores);
  EXPECT_EQ(a.EofDone, b.EofDone);
}

void CompareWithLiteral(const std::string& table, const PreTreatmentSettings& p,
                        bool referenceBase = true) {
  TempDir dir;
  Session fast = Imported(table, dir, referenceBase);
  Treat(fast, p);
  Session literal = fast;
  NoProgress progress;
  RunEofAnalysis(fast, progress);
  RunEofAnalysisLiteral(literal);
  ExpectSameResults(fast, literal);
}

// Cyclic Jacobi rotations: an eigen-decomposition that shares nothing with
// the power iteration.
std::vector<double> JacobiEigenvalues(std::vector<std::vector<double>> a) {
  const std::size_t n = a.size();
  for (int sweep = 0; sweep < 100; ++sweep) {
    double off = 0;
    for (std::size_t p = 0; p < n; ++p)
      for (std::size_t q = p + 1; q < n; ++q) off += a[p][q] * a[p][q];
    if (off < 1e-30) break;
    for (std::size_t p = 0; p < n; ++p)
      for (std::size_t q = p + 1; q < n; ++q) {
        if (std::abs(a[p][q]) < 1e-300) continue;
        double theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
        double t = (theta >= 0 ? 1 : -1) / (std::abs(theta) + std::sqrt(theta * theta + 1));
        double c = 1 / std::sqrt(t * t + 1), s = t * c;
        for (std::size_t k = 0; k < n; ++k) {
          double akp = a[k][p], akq = a[k][q];
          a[k][p] = c * akp - s * akq;
          a[k][q] = s * akp + c * akq;
        }
        for (std::size_t k = 0; k < n; ++k) {
          double apk = a[p][k], aqk = a[q][k];
          a[p][k] = c * apk - s * aqk;
          a[q][k] = s * apk + c * aqk;
        }
      }
  }
  std::vector<double> values(n);
  for (std::size_t i = 0; i < n; ++i) values[i] = a[i][i];
  std::sort(values.rbegin(), values.rend());
  return values;
}

}  // namespace

TEST(Eigen, FastAnalysisEqualsThreeLiteralPassesOnTheExample) {
  std::string table = ReadFile(Example("reference.csv"));
  PreTreatmentSettings covariance;
  CompareWithLiteral(table, covariance);
  PreTreatmentSettings correlation;
  correlation.Correlation = true;
  CompareWithLiteral(table, correlation);
  PreTreatmentSettings root;
  root.Enhance = true;
  CompareWithLiteral(table, root);
  PreTreatmentSettings log;
  log.Enhance = true;
  log.SquareRoot = false;
  log.Correlation = true;
  CompareWithLiteral(table, log);
}

TEST(Eigen, FastAnalysisEqualsLiteralOnVariedTables) {
  PreTreatmentSettings p;
  for (int taxa : {3, 5, 12, 40}) {
    std::string t = MakeTable(taxa, 37, true, [&](int i, int j) {
      return static_cast<double>((i * i * 31 + j * 17 + i * j * 5) % (11 + j % 5));
    });
    CompareWithLiteral(t, p);
    p.Correlation = !p.Correlation;
    CompareWithLiteral(t, p);
  }
}

// Wide enough that the power iteration shares its rows among the cores.
TEST(Eigen, FastAnalysisEqualsLiteralOnAWideTable) {
  std::string t = MakeTable(150, 160, true, [](int i, int j) {
    return static_cast<double>((i * 37 + j * 11 + (i * j) % 7) % 29) / 4;
  });
  PreTreatmentSettings p;
  CompareWithLiteral(t, p);
}

// The power iteration holds the matrix in panels of 32 rows, the last one
// only as high as the rows left (rounded up to 4): every height of that
// last panel, and two tables wide enough for the panels to be shared.
TEST(Eigen, FastAnalysisEqualsLiteralForEveryHeightOfTheLastPanel) {
  for (int taxa : {33, 38, 43, 45, 50, 55, 58, 64, 129, 141}) {
    std::string t = MakeTable(taxa, 40, true, [](int i, int j) {
      return static_cast<double>((i * 41 + j * 13 + (i * j) % 17) % 37) / 5;
    });
    SCOPED_TRACE(taxa);
    CompareWithLiteral(t, PreTreatmentSettings{});
  }
}

// More rows than the matrix sums take in one slice, and taxa that do not
// fill the last panel of 8 columns.
TEST(Eigen, FastAnalysisEqualsLiteralOnManyRows) {
  std::string t = MakeTable(21, 700, true, [](int i, int j) {
    return static_cast<double>((i * 13 + j * 7 + (i * j) % 11) % 23) / 3;
  });
  PreTreatmentSettings p;
  CompareWithLiteral(t, p);
  p.Correlation = true;
  CompareWithLiteral(t, p);
}

// Threads that keep both cores busy take the power iteration's helper away
// at random moments; the numbers must not depend on who did which part.
TEST(Eigen, FastAnalysisEqualsLiteralWhileTheCoresAreBusy) {
  BusyThreads busy(3);
  std::string t = MakeTable(170, 90, true, [](int i, int j) {
    return static_cast<double>((i * 29 + j * 3 + (i * j) % 13) % 31) / 7;
  });
  CompareWithLiteral(t, PreTreatmentSettings{});
}

TEST(Eigen, FastAnalysisEqualsLiteralWithAFossilBase) {
  std::string t = MakeTable(6, 15, false, Varied);
  CompareWithLiteral(t, PreTreatmentSettings{});
}

// Eight rows on orthogonal +-1 patterns with strengths falling by a factor
// of three or more, turned by a Householder reflection: a covariance matrix
// with well separated eigenvalues 100, 9, 1, 0.09, 0.01, 0.0009.
std::string WellConditionedTable() {
  const double strength[] = {10, 3, 1, 0.3, 0.1, 0.03};
  const double w[] = {1, 2, 3, 4, 5, 6};
  double ww = 0;
  for (double x : w) ww += x * x;
  auto V = [&](int k, int t) { return (k == t ? 1.0 : 0.0) - 2 * w[k] * w[t] / ww; };
  auto H = [](int r, int k) { return __builtin_popcount(r & k) % 2 ? -1.0 : 1.0; };
  return MakeTable(6, 8, true, [&](int i, int t) {
    double x = 0;
    for (int k = 0; k < 6; ++k) x += H(i - 1, k + 1) * strength[k] * V(k, t - 1);
    return x;
  });
}

TEST(Eigen, LeadingEigenvaluesAgreeWithJacobi) {
  TempDir dir;
  Session s = Imported(WellConditionedTable(), dir);
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  NoProgress progress;
  ApplyPreTreatment(s, p, progress);
  const long n = s.TaxaCount;
  std::vector<std::vector<double>> a(static_cast<std::size_t>(n), std::vector<double>(n));
  for (long i = 1; i <= n; ++i)
    for (long j = 1; j <= n; ++j) a[i - 1][j - 1] = s.EofMatrix(i, j);
  std::vector<double> expected = JacobiEigenvalues(a);
  EXPECT_NEAR(expected[0], 100, 1e-9);
  EXPECT_NEAR(expected[1], 9, 1e-9);
  for (long c = 1; c <= 4; ++c)
    EXPECT_NEAR(s.EigenVectors(n + 1, c), expected[c - 1], 1e-6 * expected[c - 1]) << c;
  // Each leading eigenvector satisfies A v = lambda v, whatever its sign.
  for (long c = 1; c <= 3; ++c)
    for (long r = 1; r <= n; ++r) {
      double av = 0;
      for (long k = 1; k <= n; ++k) av += s.EofMatrix(r, k) * s.EigenVectors(k, c);
      EXPECT_NEAR(av, s.EigenVectors(n + 1, c) * s.EigenVectors(r, c), 1e-6) << c;
    }
  EXPECT_FLOAT_EQ(s.CumContribution(n), 100.0f);
  EXPECT_EQ(s.CumContribution(0), 0.0f);
  EXPECT_NEAR(s.Contribution(1), 100.0 * 100 / (100 + 9 + 1 + 0.09 + 0.01 + 0.0009), 1e-3);
}

TEST(Eigen, CovarianceCellsDivideByTheRowCount) {
  TempDir dir;
  Session s = Imported("Site,A,B,C\nX,1,2,0\nY,3,2,1\nZ,5,8,0\n", dir);
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  NoProgress progress;
  ApplyPreTreatment(s, p, progress);
  // Column A: mean 3, deviations -2, 0, 2; B: mean 4, deviations -2, -2, 4.
  EXPECT_DOUBLE_EQ(s.EofMatrix(1, 1), 8.0 / 3);
  EXPECT_DOUBLE_EQ(s.EofMatrix(1, 2), 12.0 / 3);
  EXPECT_DOUBLE_EQ(s.EofMatrix(2, 1), 12.0 / 3);
  EXPECT_DOUBLE_EQ(s.ColumnMean(0, 2), 4);
  EXPECT_DOUBLE_EQ(s.ColumnStd(0, 1), std::sqrt(8.0 / 3));
}

TEST(Eigen, DescendingAfterDeflationMeansNoSwapAndColumnZeroStaysZero) {
  // Uncorrelated columns with falling variance: the start vector is the
  // first eigenvector, later components deflate to zero.
  TempDir dir;
  Session s = Imported("Site,A,B,C\nP,3,2,1\nQ,-3,2,-1\nR,3,-2,-1\nS,-3,-2,1\n", dir);
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  NoProgress progress;
  ApplyPreTreatment(s, p, progress);
  const long n = 3;
  EXPECT_DOUBLE_EQ(s.EigenVectors(n + 1, 1), 9);
  EXPECT_EQ(s.EigenVectors(1, 1), 1);
  for (long r = 0; r <= n + 1; ++r) EXPECT_EQ(s.EigenVectors(r, 0), 0) << r;
}

TEST(Eigen, EqualEigenvaluesAreNotSeparated) {
  // Covariance diag(4, 4, 1): the fixed start vector finds e1, and the
  // deflated matrix maps it to zero, so the other EOFs come out as zero.
  TempDir dir;
  Session s = Imported("Site,A,B,C\nP,2,2,1\nQ,-2,2,-1\nR,2,-2,-1\nS,-2,-2,1\n", dir);
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  NoProgress progress;
  ApplyPreTreatment(s, p, progress);
  EXPECT_DOUBLE_EQ(s.EigenVectors(4, 1), 4);
  EXPECT_EQ(s.EigenVectors(1, 1), 1);
  EXPECT_EQ(s.EigenVectors(2, 1), 0);
  EXPECT_EQ(s.EigenVectors(4, 2), 0);
  EXPECT_EQ(s.EigenVectors(4, 3), 0);
  for (long r = 1; r <= 3; ++r) EXPECT_EQ(s.EigenVectors(r, 2), 0);
}

TEST(Eigen, SortPushesColumnZeroOnePlaceOff) {
  Array2<double> e(4, 3);
  // Eigenvalues (row n + 1 = 4) of columns 1..3: 1, 3, 2; column 0 is zero.
  double values[] = {0, 1, 3, 2};
  for (long c = 0; c <= 3; ++c) {
    e(4, c) = values[c];
    e(1, c) = c;  // a tag to follow the columns
  }
  SortComponents(e, 3);
  EXPECT_EQ(e(4, 0), 3);
  EXPECT_EQ(e(4, 1), 2);
  EXPECT_EQ(e(4, 2), 1);
  EXPECT_EQ(e(4, 3), 0);
  EXPECT_EQ(e(1, 3), 0);  // the zero column ends last
  // The next pass: fresh columns 1..3, column 0 keeps the largest.
  for (long c = 1; c <= 3; ++c) {
    e(4, c) = values[c];
    e(1, c) = c;
  }
  SortComponents(e, 3);
  EXPECT_EQ(e(4, 0), 3);
  EXPECT_EQ(e(4, 1), 3);
  EXPECT_EQ(e(1, 1), 2);
  EXPECT_EQ(e(4, 2), 2);
  EXPECT_EQ(e(4, 3), 1);
}

TEST(Eigen, ConstantTaxonHasZeroDeviation) {
  TempDir dir;
  Session s = Imported("Site,A,B,C,D\nP,1,5,2,7\nQ,4,5,1,2\nR,2,5,6,3\nS,8,5,3,1\n", dir);
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  p.Correlation = true;
  NoProgress progress;
  ApplyPreTreatment(s, p, progress);
  EXPECT_EQ(s.ColumnStd(0, 2), 0);
  EXPECT_EQ(s.EofMatrix(2, 2), 1);
  for (long j : {1, 3, 4}) {
    EXPECT_EQ(s.EofMatrix(2, j), 0);
    EXPECT_EQ(s.EofMatrix(j, 2), 0);
  }
  EXPECT_EQ(s.ColumnMean(1, 2), 0);
}

TEST(Eigen, FewerThanThreeTaxaStopAfterThePasses) {
  TempDir dir;
  Session s = Imported("Site,A,B\nP,1,5\nQ,4,2\nR,2,6\n", dir);
  NoProgress progress;
  try {
    ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
    FAIL();
  } catch (const RuntimeFailure& f) {
    EXPECT_EQ(f.kind(), FailureKind::SubscriptOutOfRange);
  }
  EXPECT_FALSE(s.EofDone);
  Session three = Imported("Site,A,B,C\nP,1,5,2\nQ,4,2,2\nR,2,6,1\n", dir);
  ApplyPreTreatment(three, PreTreatmentSettings{}, progress);
  EXPECT_TRUE(three.EofDone);
}

TEST(Eigen, AnalysisOpensTheOtherImport) {
  TempDir dir;
  Session s = Imported(MakeTable(4, 6, true, Varied), dir);
  NoProgress progress;
  ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
  EXPECT_FALSE(s.ReferenceImportOpen);
  EXPECT_TRUE(s.FossilImportOpen);
  EXPECT_GE(s.AnalysisTime, 0);
}
