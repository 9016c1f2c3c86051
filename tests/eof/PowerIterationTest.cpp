// The power iteration against the plain loop, bit for bit, on matrices
// that take its shortcuts off their usual road: cells that are not finite,
// cells that overflow on the way, and zeros of either sign.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "eof/Eigen.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

// The iteration as the analysis defines it, one multiply and one add at a
// time, leaving the components unsorted.
void PlainIterations(Session& s) {
  const long n = s.EigenOrder;
  Array2<double>& A = s.EigenWork;
  Array2<double>& E = s.EigenVectors;
  std::vector<double> w(static_cast<std::size_t>(n) + 1);
  for (long c = 1; c <= n; ++c) {
    for (long r = 1; r <= n; ++r) E(r, c) = r == 1 ? 1 : 0;
    double norm = 0;
    for (int it = 0; it < 20; ++it) {
      for (long r = 1; r <= n; ++r) {
        double sum = 0;
        for (long k = 1; k <= n; ++k) sum += E(k, c) * A(r, k);
        w[r] = sum;
      }
      double sq = 0;
      for (long r = 1; r <= n; ++r) sq += w[r] * w[r];
      norm = std::sqrt(sq);
      E(n + 1, c) = norm;
      for (long r = 1; r <= n; ++r) E(r, c) = norm == 0 ? 0 : w[r] / norm;
    }
    for (long r = 1; r <= n; ++r)
      for (long k = 1; k <= n; ++k) A(r, k) = A(r, k) - E(r, c) * norm * E(k, c);
  }
}

// A symmetric matrix of order n with cells of about `scale`.
Session Matrix(long n, double scale, unsigned seed) {
  Session s;
  s.EigenOrder = n;
  s.EigenWork.ReDim(n, 2 * n);
  s.EigenVectors.ReDim(n + 1, n);
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> d(-1, 1);
  for (long i = 1; i <= n; ++i)
    for (long j = i; j <= n; ++j) s.EigenWork(i, j) = s.EigenWork(j, i) = d(rng) * scale;
  for (long i = 1; i <= n; ++i) s.EigenWork(i, i) += 4 * scale;
  return s;
}

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Runs both and compares every cell of both arrays bit for bit.
void ExpectSameAsPlain(Session fast) {
  Session plain = fast;
  NoProgress progress;
  PowerIterations(fast, progress);
  PlainIterations(plain);
  const long n = fast.EigenOrder;
  long differing = 0;
  for (long r = 1; r <= n + 1; ++r)
    for (long c = 1; c <= n; ++c)
      if (!SameBits(fast.EigenVectors(r, c), plain.EigenVectors(r, c)) && differing++ == 0)
        ADD_FAILURE() << "vector cell (" << r << ", " << c << "): " << fast.EigenVectors(r, c)
                      << " against " << plain.EigenVectors(r, c);
  for (long r = 1; r <= n; ++r)
    for (long k = 1; k <= n; ++k)
      if (!SameBits(fast.EigenWork(r, k), plain.EigenWork(r, k)) && differing++ == 0)
        ADD_FAILURE() << "matrix cell (" << r << ", " << k << "): " << fast.EigenWork(r, k)
                      << " against " << plain.EigenWork(r, k);
  EXPECT_EQ(differing, 0);
}

// One order small enough for one thread, one that the two cores share.
const long kOrders[] = {21, 141};

}  // namespace

TEST(PowerIteration, FiniteMatrixGivesThePlainLoopsBits) {
  for (long n : kOrders) {
    SCOPED_TRACE(n);
    ExpectSameAsPlain(Matrix(n, 1, 1));
  }
}

// The first product of each component is taken from column 0; an infinity
// anywhere else in a row makes that row's sum NaN, as in the plain loop.
TEST(PowerIteration, InfinityOutsideTheFirstColumnGivesThePlainLoopsBits) {
  for (long n : kOrders) {
    SCOPED_TRACE(n);
    Session s = Matrix(n, 1, 2);
    s.EigenWork(5, n - 2) = s.EigenWork(n - 2, 5) = kInf;
    ExpectSameAsPlain(s);
  }
}

TEST(PowerIteration, NaNOutsideTheFirstColumnGivesThePlainLoopsBits) {
  for (long n : kOrders) {
    SCOPED_TRACE(n);
    Session s = Matrix(n, 1, 3);
    s.EigenWork(n, 3) = std::numeric_limits<double>::quiet_NaN();
    ExpectSameAsPlain(s);
  }
}

// Which NaN comes out depends on the order in which the infinity and the
// NaN meet: the first product must be the plain loop's, not the one from
// column 0, for the sign of every later NaN to agree.
TEST(PowerIteration, InfinityAndNaNTogetherGiveThePlainLoopsBits) {
  for (long n : kOrders) {
    SCOPED_TRACE(n);
    Session s = Matrix(n, 1, 9);
    s.EigenWork(2, n - 1) = s.EigenWork(n - 1, 2) = kInf;
    s.EigenWork(n - 3, 4) = std::numeric_limits<double>::quiet_NaN();
    ExpectSameAsPlain(s);
  }
}

TEST(PowerIteration, InfinityInTheFirstColumnGivesThePlainLoopsBits) {
  for (long n : kOrders) {
    SCOPED_TRACE(n);
    Session s = Matrix(n, 1, 4);
    s.EigenWork(n / 2, 1) = -kInf;
    ExpectSameAsPlain(s);
  }
}

// Finite cells whose products overflow during the iteration, and whose
// deflation overflows after it.
TEST(PowerIteration, CellsThatOverflowOnTheWayGiveThePlainLoopsBits) {
  for (long n : kOrders) {
    SCOPED_TRACE(n);
    ExpectSameAsPlain(Matrix(n, 1e306, 5));
  }
}

// A matrix finite at first whose later components are deflated into
// infinities: only a later component leaves the shortcut.
TEST(PowerIteration, DeflationIntoInfinityGivesThePlainLoopsBits) {
  for (long n : kOrders) {
    SCOPED_TRACE(n);
    Session s = Matrix(n, 1, 6);
    s.EigenWork(2, 2) = 1.5e154;
    s.EigenWork(3, 3) = -1.4e154;
    ExpectSameAsPlain(s);
  }
}

// A first column of negative zeros, and a matrix of zeros of either sign
// whose every product has norm 0 and leaves a vector of zeros.
TEST(PowerIteration, ZerosOfEitherSignGiveThePlainLoopsBits) {
  for (long n : kOrders) {
    SCOPED_TRACE(n);
    Session negative = Matrix(n, 1, 7);
    for (long r = 1; r <= n; ++r) negative.EigenWork(r, 1) = negative.EigenWork(1, r) = -0.0;
    ExpectSameAsPlain(negative);
    Session zero = Matrix(n, 0, 8);
    for (long r = 1; r <= n; ++r) zero.EigenWork(r, r) = r % 2 ? -0.0 : 0.0;
    ExpectSameAsPlain(zero);
  }
}

// Threads that keep both cores busy take the helper away at any moment:
// it drops out at one product and joins again at another.
TEST(PowerIteration, HelperTakenAwayAtRandomGivesThePlainLoopsBits) {
  BusyThreads busy(3);
  for (unsigned seed = 10; seed < 13; ++seed) ExpectSameAsPlain(Matrix(160, 1, seed));
}
