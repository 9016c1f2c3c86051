// Station values that are finite but huge overflow in the weighted sums:
// the interpolation ends in the overflow failure and hands nothing on to
// the reconstruction.
#include <gtest/gtest.h>

#include "interpolation/InterpSupport.h"
#include "support/Checks.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

StationRow At(const std::string& name, double lon, double lat, std::vector<double> values = {}) {
  return {name, lon, lat, 0, 0, 0, std::move(values)};
}

}  // namespace

TEST_F(InterpFixture, HugeStationValuesOverflowInTheWeightedSum) {
  Load({"Temp"}, {At("A", 1, 0, {1.5e308}), At("B", 0, 1, {1.5e308}), At("C", 9, 9, {1})},
       {At("S", 0, 0), At("Z", 100, -80)});
  EXPECT_EQ(KindOf([&] { DoInterpolation(s, InterpMode::Interpolation, "-1", "3", progress); }),
            FailureKind::Overflow);
  EXPECT_FALSE(s.ClimateLoaded);
  EXPECT_FALSE(s.ClimateData.Allocated());
}

TEST_F(InterpFixture, OneHugeStationValueIsFiniteAndHandedOn) {
  // The nearest station alone: the value itself, no sum.
  Load({"Temp"}, {At("A", 1, 0, {1.5e308}), At("B", 0, 2, {1.5e308}), At("C", 9, 9, {1})},
       {At("S", 0, 0), At("Z", 100, -80)});
  DoInterpolation(s, InterpMode::MinimumDistance, "-1", "3", progress);
  EXPECT_TRUE(s.ClimateLoaded);
  EXPECT_EQ(s.ClimateData(1, 1), 1.5e308);
}
