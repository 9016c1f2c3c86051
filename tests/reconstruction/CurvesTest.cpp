#include <gtest/gtest.h>

#include "reconstruction/Curves.h"
#include "reconstruction/ReconSupport.h"

using namespace varnoth;
using namespace varnoth::test;

// The rounding table, row by row: below 100, 1000, 10000 and beyond, for
// both signs and both directions.
TEST(RoundScale, StepBelowHundred) {
  EXPECT_EQ(RoundScaleUp(12.3f, 3), 15);      // (Int(12.3/5)+1)*5
  EXPECT_EQ(RoundScaleUp(15, 3), 20);         // a multiple still steps up
  EXPECT_EQ(RoundScaleUp(-12.3f, -40), -10);  // Fix(-2.46)*5
  EXPECT_EQ(RoundScaleDown(12.3f, 40), 10);   // Int(2.46)*5
  EXPECT_EQ(RoundScaleDown(-12.3f, 3), -15);  // (Fix(-2.46)-1)*5
  EXPECT_EQ(RoundScaleDown(-15, 3), -20);
}

TEST(RoundScale, StepBelowThousand) {
  EXPECT_EQ(RoundScaleUp(123, 0), 150);
  EXPECT_EQ(RoundScaleUp(-123, 0), -100);
  EXPECT_EQ(RoundScaleDown(123, 0), 100);
  EXPECT_EQ(RoundScaleDown(-123, 0), -150);
}

TEST(RoundScale, StepBelowTenThousand) {
  EXPECT_EQ(RoundScaleUp(1234, 0), 1500);
  EXPECT_EQ(RoundScaleUp(-1234, 0), -1000);
  EXPECT_EQ(RoundScaleDown(1234, 0), 1000);
  EXPECT_EQ(RoundScaleDown(-1234, 0), -1500);
}

TEST(RoundScale, BeyondTenThousandStepsDifferBySign) {
  EXPECT_EQ(RoundScaleUp(12345, 0), 13000);  // 1000 for positive values
  EXPECT_EQ(RoundScaleDown(12345, 0), 12000);
  EXPECT_EQ(RoundScaleUp(-12345, 0), -10000);  // 5000 for negative ones
  EXPECT_EQ(RoundScaleDown(-12345, 0), -15000);
}

TEST(RoundScale, TheLargerEndChoosesTheStep) {
  EXPECT_EQ(RoundScaleUp(12, 500), 50);  // m = 500: step 50
  EXPECT_EQ(RoundScaleDown(12, 500), 0);
  EXPECT_EQ(RoundScaleDown(-3, 2000), -500);
  EXPECT_EQ(RoundScaleUp(99.9f, 99.9f), 100);
  EXPECT_EQ(RoundScaleUp(100, 0), 150);  // 100 is no longer below 100
}

TEST(RoundScale, EqualValuesStillGiveTwoLimitsExceptZero) {
  EXPECT_EQ(RoundScaleDown(7, 7), 5);
  EXPECT_EQ(RoundScaleUp(7, 7), 10);
  EXPECT_EQ(RoundScaleDown(-7, -7), -10);
  EXPECT_EQ(RoundScaleUp(-7, -7), -5);
  EXPECT_EQ(RoundScaleDown(0, 0), 0);
  EXPECT_EQ(RoundScaleUp(0, 0), 0);
  EXPECT_EQ(RoundScaleUp(0, 300), 0);
}

namespace {

struct SmoothFixture : ::testing::Test {
  Session s;
  void Curve(const std::vector<double>& values, bool text = false,
             const std::vector<std::string>& depths = {}) {
    Rows fos(values.size(), std::vector<double>{0.5, 0.5});
    SetFossil(s, fos, text);
    if (!depths.empty())
      for (long k = 1; k <= s.FossilSampleCount; ++k) s.FossilLabels(k) = depths[k - 1];
    s.ReconValue.ReDim(s.FossilSampleCount, 1);
    for (long k = 1; k <= s.FossilSampleCount; ++k) s.ReconValue(k, 1) = values[k - 1];
  }
};

}  // namespace

TEST_F(SmoothFixture, MovingAverageStandsForTheFirstSample) {
  Curve({1, 2, 4, 8, 16}, false, {"0", "10", "25", "30", "50"});
  SmoothCurve(s, 1, 3);
  EXPECT_EQ(s.SmoothedValue.Upper(), 5);
  EXPECT_EQ(s.SmoothedValue(1), static_cast<float>(7.0 / 3));
  EXPECT_EQ(s.SmoothedValue(3), static_cast<float>(28.0 / 3));
  EXPECT_EQ(s.SmoothedPosition(1), static_cast<float>(35.0 / 3));
  EXPECT_EQ(s.SmoothedPosition(3), static_cast<float>(105.0 / 3));
  EXPECT_EQ(s.SmoothedValue(4), 0);  // beyond N - L + 1: no point
}

TEST_F(SmoothFixture, TextLabelsAverageTheSampleNumbers) {
  Curve({1, 2, 3, 4}, true);
  SmoothCurve(s, 1, 2);
  EXPECT_EQ(s.SmoothedPosition(1), 1.5f);
  EXPECT_EQ(s.SmoothedPosition(3), 3.5f);
}

TEST_F(SmoothFixture, OneMissingEstimateMakesAGapOfLPoints) {
  Curve({1, 2, 3, kMissing, 5, 6, 7, 8});
  SmoothCurve(s, 1, 3);
  // Points 2, 3 and 4 include sample 4.
  EXPECT_EQ(s.SmoothedValue(1), 2.0f);
  for (long i = 2; i <= 4; ++i) EXPECT_EQ(s.SmoothedValue(i), -9999.0f) << i;
  EXPECT_EQ(s.SmoothedValue(5), 6.0f);
}

TEST_F(SmoothFixture, EmptySampleCountsAsMissing) {
  Curve({1, 2, 3, 4});
  s.FossilEmptySample(2) = 1;
  SmoothCurve(s, 1, 2);
  EXPECT_EQ(s.SmoothedValue(1), -9999.0f);
  EXPECT_EQ(s.SmoothedValue(2), -9999.0f);
  EXPECT_EQ(s.SmoothedValue(3), 3.5f);
}

TEST_F(SmoothFixture, LevelAboveTheSampleCountGivesNoPoint) {
  Curve({1, 2, 3});
  SmoothCurve(s, 1, 5);
  EXPECT_EQ(s.SmoothedValue.Upper(), 3);
  for (long i = 0; i <= 3; ++i) {
    EXPECT_EQ(s.SmoothedValue(i), 0);
    EXPECT_EQ(s.SmoothedPosition(i), 0);
  }
}

TEST_F(SmoothFixture, LevelOneIsTheCurveItself) {
  Curve({1.25, kMissing, 3.5});
  SmoothCurve(s, 1, 1);
  EXPECT_EQ(s.SmoothedValue(1), 1.25f);
  EXPECT_EQ(s.SmoothedValue(2), -9999.0f);
  EXPECT_EQ(s.SmoothedPosition(3), 20.0f);
}

TEST(CurrentParameter, FollowsTheNameOrStays) {
  Session s;
  SetClimate(s, {{1, 2, 3}}, {"T", "P", "S"});
  s.CurrentParameter = 1;
  EXPECT_EQ(SetCurrentParameter(s, "S"), 3);
  EXPECT_EQ(SetCurrentParameter(s, "nothing"), 3);
  EXPECT_EQ(SetCurrentParameter(s, "Site"), 3);  // the corner cell is no parameter
}

TEST(CurveLimits, FromTheRangeOfTheEstimates) {
  Session s;
  s.ReconMin.ReDim(2);
  s.ReconMax.ReDim(2);
  s.ReconMin(1) = 3.2f;
  s.ReconMax(1) = 27.9f;
  s.ReconMin(2) = 9999.0f;
  s.ReconMax(2) = -9999.0f;
  ScaleLimits l = CurveLimits(s, 1);
  EXPECT_FALSE(l.NoAnalogues);
  EXPECT_EQ(l.Low, 0);
  EXPECT_EQ(l.High, 30);
  EXPECT_TRUE(CurveLimits(s, 2).NoAnalogues);
  EXPECT_STREQ(kNoAnalogueLines[0], " No analogues through");
}
