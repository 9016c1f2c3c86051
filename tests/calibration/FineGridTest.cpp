// The chart's fine grid: interpolation between bins, mode, median and
// classes per fine column, and the interval text of a section.
#include <gtest/gtest.h>

#include "CalibSupport.h"
#include "calibration/FineGrid.h"

using namespace varnoth;
using namespace varnoth::test;

TEST(FineGrid, InterpolatesBetweenBinsAndLeavesEmptyRowsZero) {
  CalibState c;
  CalibSettings st;
  c.CalibMatrix(6, 100, 120) = 0.4f;
  c.CalibMatrix(6, 100, 121) = -0.2f;  // the median mark does not count
  c.CalibMatrix(6, 101, 120) = 0.2f;
  c.CalibMatrix(6, 101, 121) = 0.6f;
  FineGrid fine;
  fine.FineProb(200, 150) = 7;  // a row whose bins are all empty is cleared
  PrepareChart(c, st, fine);
  EXPECT_EQ(fine.FineProb(200, 240), 0.4f);
  EXPECT_FLOAT_EQ(fine.FineProb(200, 241), 0.3f);
  EXPECT_FLOAT_EQ(fine.FineProb(201, 240), 0.3f);
  EXPECT_FLOAT_EQ(fine.FineProb(201, 241), 0.35f);
  EXPECT_EQ(fine.FineProb(200, 242), 0.2f);
  EXPECT_EQ(fine.FineProb(200, 150), 0.0f);
  EXPECT_EQ(fine.FineMode(202), 242);
  EXPECT_EQ(fine.FineMode(300), -9999);
  EXPECT_EQ(fine.FineMedian(300), -9999);
}

TEST(FineGrid, ValueRounding) {
  EXPECT_EQ(FormatValue(3.14159), "3.14");
  EXPECT_EQ(FormatValue(3.145), "3.15");
  EXPECT_EQ(FormatValue(123.45), "123.5");
  EXPECT_EQ(FormatValue(1234.5), "1235");
  EXPECT_EQ(FormatValue(-2.346), "-2.35");
  EXPECT_EQ(SectionColumn(0), 50);
  EXPECT_EQ(SectionColumn(100), 450);
  EXPECT_EQ(SectionColumn(37), 198);
}

TEST(FineGrid, EmptySectionReadsOutOfRange) {
  CalibState c;
  CalibSettings st;
  FineGrid fine;
  PrepareChart(c, st, fine);
  const SectionIntervals s = DrawIntervals(fine, st, 250, 0, 10);
  EXPECT_EQ(s.Average, "Out of range");
  EXPECT_EQ(s.Mode, "Out of range");
  EXPECT_TRUE(s.Intervals[0].empty());
  EXPECT_TRUE(s.Intervals[1].empty());
  EXPECT_EQ(s.Coefficient[0], "68.2 %");
  EXPECT_EQ(s.Coefficient[1], "95.4 %");
}

TEST(FineGrid, RegionReachingTheTopIsOpen) {
  FineGrid fine;
  CalibSettings st;
  for (long qf = 300; qf <= 500; ++qf) fine.FineClass(250, qf) = qf < 350 ? 1.0f : 2.0f;
  fine.FineMode(250) = 420;
  fine.FineMedian(250) = 380;
  const SectionIntervals s = DrawIntervals(fine, st, 250, 0, 10);
  ASSERT_EQ(s.Intervals[0].size(), 1u);
  EXPECT_EQ(s.Intervals[0][0].first, FormatValue(10.0 * 300 / 400));
  EXPECT_EQ(s.Intervals[0][0].second, "?");
  ASSERT_EQ(s.Intervals[1].size(), 1u);
  EXPECT_EQ(s.Intervals[1][0].first, "6.25");
  EXPECT_EQ(s.Intervals[1][0].second, "?");
  EXPECT_EQ(s.Average, "8.25");
  EXPECT_EQ(s.Mode, "Out of range");  // beyond 399, as the chart tests it
}

TEST(FineGrid, AtMostElevenIntervalsPerClass) {
  FineGrid fine;
  CalibSettings st;
  for (long qf = 50; qf <= 450; ++qf) fine.FineClass(100, qf) = (qf / 5) % 2 == 0 ? 2.0f : 0.0f;
  const SectionIntervals s = DrawIntervals(fine, st, 100, 0, 400);
  EXPECT_EQ(s.Intervals[0].size(), 11u);
  EXPECT_EQ(s.Intervals[1].size(), 11u);
  EXPECT_EQ(s.Intervals[0][0].first, "?");  // inside from the lower edge
  EXPECT_EQ(s.Intervals[0][0].second, "5");
  EXPECT_EQ(s.Intervals[0][1].first, "10");
}

TEST(FineGrid, ClassesFollowTheLevelsOfTheFineColumn) {
  CalibState c;
  SetTestRange(c, "0", "10");
  CalibSettings st;
  const long sites = SetPairs(c, NoisyPairs(400, 31));
  RunGenerated(c, st, sites);
  FineGrid fine;
  PrepareChart(c, st, fine);
  int checked = 0;
  for (long pf = 50; pf <= 450; ++pf) {
    if (fine.FineMode(pf) == -9999) continue;
    ++checked;
    for (long qf = 0; qf <= 500; ++qf) {
      const float v = fine.FineProb(pf, qf);
      float expected =
          static_cast<float>((v > fine.FineLevel(pf, 1)) + (v > fine.FineLevel(pf, 2)));
      if (qf >= 1 && qf == fine.FineMode(pf)) expected = 3;
      ASSERT_EQ(fine.FineClass(pf, qf), expected) << pf << "," << qf;
    }
    EXPECT_GT(fine.FineLevel(pf, 1), fine.FineLevel(pf, 2));
  }
  EXPECT_GT(checked, 300);
}
