// The sums of the calibration chain are doubles and only its cells are
// singles. Each case here is built so that a sum accumulated in single
// precision decides otherwise: a long tail of cells too small to move a
// single sum of order one, but large enough together to move a double one.
//
// The expected numbers were worked out by a short script independent of
// this code (Python, its float for the doubles and struct.pack('f') to round
// to single), following the steps of each operation one by one.
#include <gtest/gtest.h>

#include <cmath>

#include "CalibSupport.h"
#include "state/Format.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

constexpr long N = 251;

CalibState Ranged() {
  CalibState c;
  SetTestRange(c, "0", "10");
  return c;
}

// One cell of 1 and 250 cells of 2^-25: in single each addition of the tail
// to a sum of about 1 is lost (half an ulp of 1 is 2^-24), in double the sum
// is 1 + 250 * 2^-25 = 1.0000074505806.
constexpr float kTail = 1.0f / 33554432.0f;  // 2^-25
constexpr double kDoubleSum = 1.000007450580597;

float SingleSumOfTheColumn() {
  float s = 1.0f;
  for (int k = 0; k < 250; ++k) s += kTail;
  return s;
}

}  // namespace

TEST(DoubleSums, AVobsBinKeptByTheDoubleSumThatASingleSumWouldDrop) {
  CalibState c = Ranged();
  // The units: the kernel column 25 holds a single 1, so A = 1, and the
  // error-model row 25 peaks at P; the threshold at one sample is then
  // t = P * 1.05 = 1.0000040084 (P = single(1.000004 / 1.05)
  // = 0.952384769916534), between the single sum 1 and the double sum.
  c.CalibMatrix(3, 25, 25) = 1.0f;
  const float peak = static_cast<float>(1.000004 / 1.05);
  c.CalibMatrix(1, 25, 40) = peak;
  const long q = 100;
  c.CalibMatrix(4, 0, q) = 1.0f;
  for (long p = 1; p < N; ++p) c.CalibMatrix(4, p, q) = kTail;
  CalibSettings st;
  st.Slider5 = 1;
  NormalizeH(c, st);
  const double t = LenientParse(c.HorizontalUnit) * 1.05;
  EXPECT_NEAR(t, 1.0000040084123607, 1e-13);
  // The premise: a single sum of the column is below the threshold.
  ASSERT_LT(static_cast<double>(SingleSumOfTheColumn()), t);
  ASSERT_GE(kDoubleSum, t);
  // The bin stays, its cells divided by the double sum.
  EXPECT_EQ(c.CalibMatrix(5, 0, q), static_cast<float>(1.0 / kDoubleSum));
  EXPECT_EQ(c.CalibMatrix(5, 7, q), static_cast<float>(kTail / kDoubleSum));
  EXPECT_NE(c.CalibMatrix(5, 0, q), 1.0f);  // not divided by a single sum of 1
}

TEST(DoubleSums, AVrecColumnKeptByTheDoubleSumThatASingleSumWouldDrop) {
  CalibState c = Ranged();
  // VerticalUnit = the sum of error-model row 25, here one cell; with the
  // horizontal threshold at 1 sample t = unit * 1.05, as above.
  const float unit = static_cast<float>(1.000004 / 1.05);
  c.CalibMatrix(1, 25, 40) = unit;
  c.CalibMatrix(3, 25, 25) = 1.0f;
  const long p = 120;
  c.CalibMatrix(4, p, 0) = 1.0f;
  for (long q = 1; q < N; ++q) c.CalibMatrix(4, p, q) = kTail;
  CalibSettings st;
  st.Slider5 = 0;
  st.Slider6 = 1;
  NormalizeH(c, st);
  NormalizeV(c, st);
  ASSERT_LT(static_cast<double>(SingleSumOfTheColumn()), LenientParse(c.VerticalUnit) * 1.05);
  // The column stays. Each Vobs bin holds this column alone, so slot 5 is
  // 1 in all 251 bins and every probability is single(1 / 251).
  EXPECT_EQ(c.CalibMatrix(6, p, 0), static_cast<float>(1.0 / 251));
  EXPECT_EQ(std::fabs(c.CalibMatrix(6, p, 200)), static_cast<float>(1.0 / 251));
}

TEST(DoubleSums, TheMedianCrossingFollowsTheDoubleRunningSum) {
  CalibState c = Ranged();
  // Column p of slot 5: 1 at q = 1 and at q = 250, 2^-30 in the 248 bins
  // between. After the division by S5 = 2 + 248 * 2^-30 the two ends hold
  // single(1 / S5), just below 0.5, and the tail cells are lost in a single
  // running sum. Worked out: in double the half (0.5 as a single) is
  // crossed at q = 130; in single not before q = 250.
  const long p = 60;
  const float tiny = 1.0f / 1073741824.0f;  // 2^-30
  c.CalibMatrix(5, p, 1) = 1.0f;
  c.CalibMatrix(5, p, 250) = 1.0f;
  for (long q = 2; q <= 249; ++q) c.CalibMatrix(5, p, q) = tiny;
  CalibSettings st;
  st.Slider6 = 0;  // no threshold, so slot 4 plays no part
  c.VerticalUnit = "1";
  NormalizeV(c, st);
  EXPECT_EQ(c.MedianIndex(p), 130);
  EXPECT_LT(c.CalibMatrix(6, p, 130), 0.0f);  // the median's mark
  EXPECT_GT(c.CalibMatrix(6, p, 250), 0.0f);
}
