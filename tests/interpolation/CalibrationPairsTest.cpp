// The interpolation tool's pairs as the calibration tool takes them: by the
// parameter's column name, with the accuracy count, and the packed pairs
// copied at the column that the parameter lookup leaves.
#include <gtest/gtest.h>

#include "InterpSupport.h"
#include "interpolation/Accuracy.h"
#include "interpolation/CalibrationPairs.h"

namespace varnoth::test {
namespace {

struct CalibrationPairsTest : InterpFixture {
  void SetUp() override {
    std::vector<StationRow> stations;
    for (int j = 0; j < 6; ++j)
      stations.push_back({"S" + std::to_string(j + 1),
                          10.0 + j * 0.5,
                          45.0 + (j % 2) * 0.5,
                          0,
                          -0.5,
                          30,
                          {5.0 + j, 20.0 - j, 700.0 + 10 * j}});
    Load({"TJan", "TJul", "PAnn"}, stations,
         {{"A", 10.2, 45.2, 0, -0.6, 25, {}}, {"B", 11.2, 45.3, 100, -0.6, 25, {}}});
    DoInterpolation(s, InterpMode::Interpolation, "-2", "3", progress);
    s.Interp.InterpCurrentParam = 6;
    ScatterPairsPL(s);
  }
};

TEST_F(CalibrationPairsTest, TransferTakesTheColumnOfTheParameterShown) {
  CalibState c;
  // Pair set 0 reads the reconstruction's leave-one-out values.
  s.CurrentParameter = 2;
  s.ReconRefValue.ReDim(s.RefSiteCount, s.ClimateParamCount);
  const InterpolatedPairs p = InterpolatedPairsFor(s, "TJul");
  EXPECT_EQ(p.AccuracyCount, s.Interp.InterpPairCount);
  EXPECT_EQ(p.AccuracyCount, 6);
  TransferData(c, s, "", &p);
  for (long r = 1; r <= 6; ++r) {
    EXPECT_EQ(c.PairData(1, r, 1), static_cast<float>(s.Interp.InterpRefEstimate(r, 7)));
    EXPECT_EQ(c.PairData(1, r, 2), static_cast<float>(s.Interp.InterpRefClimate(r, 7)));
  }
  EXPECT_EQ(c.Labels.Label12[1], "6");
}

TEST_F(CalibrationPairsTest, CopiedPairsComeFromTheColumnLeftByTheLookup) {
  CalibState c;
  s.Interp.InterpCurrentParam = 1;  // as the parameter lookup leaves it
  CopyAccuracyPairs(c, s);
  for (long r = 1; r <= 6; ++r) {
    EXPECT_EQ(c.PairData(1, r, 1), s.Interp.InterpPairEstimates(r, 1));
    EXPECT_EQ(c.PairData(1, r, 2), s.Interp.InterpPairObserved(r, 1));
  }
  // Column 1 of the estimates is 0 for a station with neighbours.
  EXPECT_EQ(c.PairData(1, 1, 1), 0.0f);
  s.Interp.InterpCurrentParam = 6;
  CopyAccuracyPairs(c, s);
  EXPECT_EQ(c.PairData(1, 3, 2), static_cast<float>(s.Interp.InterpRefClimate(3, 6)));
}

}  // namespace
}  // namespace varnoth::test
