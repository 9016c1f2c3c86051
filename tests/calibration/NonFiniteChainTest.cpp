// Sums in single precision overflow to infinity without a failure of their
// own: each step of the chain checks the slot it filled and raises the
// overflow failure there.
#include <gtest/gtest.h>

#include <cmath>

#include "calibration/CalibSupport.h"
#include "support/Checks.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {}  // namespace

TEST(NonFiniteChain, AProductOfHugeCellsOverflows) {
  CalibState c;
  NoProgress progress;
  // Every cell of M_1 near the largest single: each sum of 251 of them is
  // infinite in single precision.
  for (long i = 0; i <= kGridLast; ++i)
    for (long j = 0; j <= kGridLast; ++j) {
      c.CalibMatrix(1, i, j) = 3e38f;
      c.CalibMatrix(0, i, j) = 1.0f;
    }
  EXPECT_EQ(KindOf([&] { MultipleMatrix(c, 1, 0, 2, 1, 1.0f, progress); }), FailureKind::Overflow);
  EXPECT_TRUE(std::isinf(c.CalibMatrix(2, 0, 0)));
}

TEST(NonFiniteChain, AProductOfOrdinaryCellsIsFinite) {
  CalibState c;
  NoProgress progress;
  for (long i = 0; i <= kGridLast; ++i)
    for (long j = 0; j <= kGridLast; ++j) {
      c.CalibMatrix(1, i, j) = 1e30f;
      c.CalibMatrix(0, i, j) = i == j ? 1.0f : 0.0f;
    }
  MultipleMatrix(c, 1, 0, 2, 1, 1.0f, progress);
  EXPECT_EQ(c.CalibMatrix(2, 5, 7), 1e30f);
}
