// The whole calibration chain on three pairs, against numbers worked out
// independently of this code: tests/calibration/worked_chain.py follows the
// steps one by one in Python (doubles as Python floats, every single-
// precision cell and product rounded with struct.pack('f')), on the pairs
// (2, 2), (4.8, 4.5), (5.2, 5.5), range 0..10, generated model at 5 %,
// smoothing 10, both thresholds 0, coefficients 68.2 and 95.4. Its output
// for column 121 (Vrec 4.8) is pasted below.
#include <gtest/gtest.h>

#include <cmath>

#include "CalibSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

void ExpectSingle(float actual, double expected, const char* what) {
  EXPECT_LE(std::fabs(actual - expected), 2.5e-7 * std::fabs(expected)) << what << " " << actual;
}

}  // namespace

TEST(WorkedChain, ThreePairsGiveTheIndependentlyWorkedColumn) {
  CalibState c;
  SetTestRange(c, "0", "10");
  const long sites = SetPairs(c, {{2.0f, 2.0f}, {4.8f, 4.5f}, {5.2f, 5.5f}});
  CalibSettings st;
  st.Slider5 = 0;
  st.Slider6 = 0;
  RunGenerated(c, st, sites);
  const long p = 121;
  EXPECT_EQ(c.ModeIndex(p), 102);
  EXPECT_EQ(c.MedianIndex(p), 122);
  ExpectSingle(c.ConfidenceLevel(p, 1), 0.003360344562679529, "level 1");
  ExpectSingle(c.ConfidenceLevel(p, 2), 0.003328187856823206, "level 2");
  ExpectSingle(c.CalibMatrix(6, p, 94), 0.014633556827902794, "M6(121, 94)");
  ExpectSingle(c.CalibMatrix(6, p, 102), 0.016464080661535263, "M6(121, 102)");
  ExpectSingle(c.CalibMatrix(6, p, 122), -0.011920781806111336, "M6(121, 122)");
  ExpectSingle(c.CalibMatrix(6, p, 110), 0.016005028039216995, "M6(121, 110)");
  ExpectSingle(c.CalibMatrix(6, p, 150), 0.0034164665266871452, "M6(121, 150)");
  EXPECT_EQ(c.CalibMatrix(7, p, 94), 2.0f);
  EXPECT_EQ(c.CalibMatrix(7, p, 102), 3.0f);
  EXPECT_EQ(c.CalibMatrix(7, p, 122), -2.0f);
  EXPECT_EQ(c.CalibMatrix(7, p, 150), 2.0f);
  ReturnData(c);
  ExpectSingle(c.CalibMatrix(8, p, 102), 3.0164639949798584, "M8(121, 102)");
  ExpectSingle(c.CalibMatrix(8, p, 122), -2.011920690536499, "M8(121, 122)");
}
