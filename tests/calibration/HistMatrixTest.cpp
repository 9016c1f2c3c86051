// The calibration matrix applied down the core: the raster of the curve and
// its product with slot 8.
#include <gtest/gtest.h>

#include "CalibSupport.h"
#include "calibration/HistMatrix.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

Session Core(const std::vector<double>& values) {
  Session s;
  const long n = static_cast<long>(values.size());
  s.FossilSampleCount = static_cast<Count>(n);
  s.FossilLabels.ReDim(n);
  s.FossilEmptySample.ReDim(n);
  s.ReconValue.ReDim(n, 1);
  for (long k = 1; k <= n; ++k) {
    s.FossilLabels(k) = std::to_string(10 * (k - 1));
    s.ReconValue(k, 1) = values[k - 1];
  }
  s.CurrentParameter = 1;
  return s;
}

CalibState Ready() {
  CalibState c;
  SetTestRange(c, "0", "10");
  return c;
}

long CellsSet(const HistState& h) {
  long n = 0;
  for (long b = 0; b <= 200; ++b)
    for (long r = 0; r <= h.HistColumns; ++r) n += h.HistMatrix(0, b, r) != 0;
  return n;
}

}  // namespace

TEST(HistMatrix, RasterFollowsTheCurveRowByRow) {
  Session s = Core({1, 2, 3, 4, 5});
  CalibState c = Ready();
  HistState h;
  NoProgress progress;
  BuildHistMatrix(h, s, c, 0, 10, 1, 40, progress);
  EXPECT_TRUE(h.HistReady);
  // One depth unit per row, 0.05 per bin: value 1 + m / 10 at row m.
  for (long m = 0; m < 10; ++m) EXPECT_EQ(h.HistMatrix(0, 20 + 2 * m, m), 1.0f) << m;
  EXPECT_EQ(h.HistMatrix(0, 100, 40), 1.0f);  // the last point
  EXPECT_EQ(CellsSet(h), 41);
}

TEST(HistMatrix, ACurveEntirelyMissingLeavesEverythingEmpty) {
  Session s = Core({-9999, -9999, -9999});
  CalibState c = Ready();
  for (long p = 0; p <= 250; ++p)
    for (long q = 0; q <= 250; ++q) c.CalibMatrix(8, p, q) = -2.5f;
  HistState h;
  NoProgress progress;
  BuildHistMatrix(h, s, c, 0, 10, 1, 20, progress);
  EXPECT_EQ(CellsSet(h), 0);
  for (long r = 0; r <= 20; ++r) {
    EXPECT_EQ(h.HistModeLine(r), -9999);
    EXPECT_EQ(h.HistAverageLine(r), -9999);
    for (long b = 0; b <= 200; ++b) ASSERT_EQ(h.HistMatrix(1, b, r), 0.0f);
  }
}

TEST(HistMatrix, ValuesOutsideTheRangeSetNoCell) {
  Session s = Core({-4, 14, 15});
  CalibState c = Ready();
  HistState h;
  NoProgress progress;
  BuildHistMatrix(h, s, c, 0, 10, 1, 20, progress);
  // Only the stretch of the first segment that crosses 0..10 is set.
  for (long r = 0; r <= 20; ++r)
    for (long b = 0; b <= 200; ++b)
      if (h.HistMatrix(0, b, r) != 0) {
        EXPECT_LT(r, 10);
        const double value = -4 + 18.0 * r / 10;
        EXPECT_NEAR(b * 0.05, value, 0.03);
      }
  EXPECT_GT(CellsSet(h), 0);
  EXPECT_LT(CellsSet(h), 10);
}

TEST(HistMatrix, MissingEndSetsOnlyTheValidEnd) {
  Session s = Core({2, -9999, 4});
  CalibState c = Ready();
  HistState h;
  NoProgress progress;
  BuildHistMatrix(h, s, c, 0, 10, 1, 20, progress);
  EXPECT_EQ(h.HistMatrix(0, 40, 0), 1.0f);
  EXPECT_EQ(h.HistMatrix(0, 80, 20), 1.0f);
  EXPECT_EQ(CellsSet(h), 2);
}

TEST(HistMatrix, SmoothedCurveLeavesTheLastPositionsWithoutCells) {
  Session s = Core({1, 2, 3, 4, 5, 6});
  CalibState c = Ready();
  HistState h;
  NoProgress progress;
  // The moving average of 3 stands for the first of its samples: points
  // 1..4, at mean depths 10, 20, 30, 40 of a core from 0 to 50.
  s.SmoothedPosition.ReDim(6);
  s.SmoothedValue.ReDim(6);
  for (long i = 1; i <= 4; ++i) {
    s.SmoothedPosition(i) = static_cast<float>(10 * i);
    s.SmoothedValue(i) = static_cast<float>(i + 1);
  }
  BuildHistMatrix(h, s, c, 0, 10, 3, 50, progress);
  for (long r = 41; r <= 50; ++r)
    for (long b = 0; b <= 200; ++b) ASSERT_EQ(h.HistMatrix(0, b, r), 0.0f) << r;
  EXPECT_EQ(h.HistMatrix(0, 100, 40), 1.0f);
  EXPECT_EQ(h.HistMatrix(0, 40, 10), 1.0f);
  for (long r = 0; r < 10; ++r)
    for (long b = 0; b <= 200; ++b) ASSERT_EQ(h.HistMatrix(0, b, r), 0.0f) << r;
}

TEST(HistMatrix, EachRowTakesTheCalibratedColumnOfItsBin) {
  Session s = Core({1, 2, 3, 4, 5});
  CalibState c = Ready();
  CalibSettings st;
  const long sites = SetPairs(c, NoisyPairs(400, 21));
  RunGenerated(c, st, sites);
  ReturnData(c);
  HistState h;
  NoProgress progress;
  BuildHistMatrix(h, s, c, 0, 10, 1, 40, progress);
  for (long m = 0; m < 10; ++m) {
    const long bin = 20 + 2 * m;
    bool median = false, mode = false;
    for (long b = 0; b <= 200; ++b) {
      const float cell = c.CalibMatrix(8, bin + 25, b + 25);
      ASSERT_EQ(h.HistMatrix(1, b, m), cell) << m << "," << b;
      median |= cell < 0;
      mode |= std::fabs(cell) >= 3;
    }
    if (median) {
      EXPECT_LT(c.CalibMatrix(8, bin + 25, h.HistAverageLine(m) + 25), 0.0f);
    }
    if (mode) {
      EXPECT_GE(std::fabs(c.CalibMatrix(8, bin + 25, h.HistModeLine(m) + 25)), 3.0f);
    }
  }
  EXPECT_NE(h.HistAverageLine(5), -9999);
  EXPECT_NE(h.HistModeLine(5), -9999);
}
