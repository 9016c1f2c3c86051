#include <gtest/gtest.h>

#include <cmath>

#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/Curves.h"
#include "reconstruction/ReconSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

struct ErrorModelFixture : ::testing::Test {
  Session s;
  NoProgress progress;
  AnalogueSettings st;

  void Sites(const std::vector<double>& a) {
    Rows ref, clim;
    for (std::size_t i = 0; i < a.size(); ++i) {
      ref.push_back({a[i], 1 - a[i]});
      clim.push_back({10.0 * (i + 1), 1.0 + static_cast<double>(i % 2)});
    }
    SetReference(s, ref);
    SetClimate(s, clim, {"P1", "P2"});
  }
};

}  // namespace

TEST_F(ErrorModelFixture, ASiteIsNeverItsOwnAnalogue) {
  // With one analogue each, the estimate is the climate of the nearest
  // other site: never the site's own value.
  Sites({0.1, 0.3, 0.35, 0.7, 0.72, 0.9});
  st.MinAnalogues = st.MaxAnalogues = 1;
  GenerateErrorModel(s, st, progress);
  const double expected[] = {20, 30, 20, 50, 40, 50};
  for (long t = 1; t <= 6; ++t) {
    EXPECT_EQ(s.ReconRefValue(t, 1), expected[t - 1]) << t;
    EXPECT_NE(s.ReconRefValue(t, 1), s.ClimateData(t, 1));
    EXPECT_EQ(s.ReconRefValue(t, 0), 1);
  }
}

TEST_F(ErrorModelFixture, SitesWithIdenticalSpectraAreNotAnaloguesOfEachOther) {
  Sites({0.2, 0.5, 0.2, 0.9});
  st.MinAnalogues = st.MaxAnalogues = 1;
  GenerateErrorModel(s, st, progress);
  EXPECT_EQ(s.ReconRefValue(1, 1), 20);  // not site 3 (30), at distance 0
  EXPECT_EQ(s.ReconRefValue(3, 1), 20);  // not site 1 (10)
}

TEST_F(ErrorModelFixture, LowThresholdLeavesSitesMissingAndTheSampleTooSmall) {
  Sites({0.1, 0.5, 0.9});
  st.MinAnalogues = 0;
  DefineThreshold(st, 1);  // 0.01: every squared distance here is 0.32 or more
  GenerateErrorModel(s, st, progress);
  for (long t = 1; t <= 3; ++t) {
    EXPECT_EQ(s.ReconRefValue(t, 1), kMissing);
    EXPECT_EQ(s.ReconRefValue(t, 0), 0);
  }
  EXPECT_FALSE(EstObsCorrelation(s, 1).has_value());
  EXPECT_EQ(CorrelationCaption(EstObsCorrelation(s, 1)), "Sample too small");
}

TEST_F(ErrorModelFixture, DistanceOptionTestsTheRootOfTheDistance) {
  // Under "Distance" the error model tests the root of the distance: for
  // distances below 1 that is larger, so fewer ranks pass.
  Sites({0.1, 0.17, 0.3});
  // Distances: 1-2: 2*0.07^2 = 0.0098; 1-3: 2*0.2^2 = 0.08; 2-3: 2*0.13^2 = 0.0338.
  st.MaxAnalogues = 2;
  st.MinAnalogues = 0;
  DefineThreshold(st, 10);
  st.WeightBy = AnalogueWeightBy::SquaredDistance;
  GenerateErrorModel(s, st, progress);
  EXPECT_EQ(s.ReconRefValue(1, 0), 2);       // 0.0098 and 0.08 are below 0.1
  st.WeightBy = AnalogueWeightBy::Distance;  // with "Inversed weighting" off
  GenerateErrorModel(s, st, progress);
  EXPECT_EQ(s.ReconRefValue(1, 0), 1);  // root 0.283 of 0.08 is not below 0.1
  EXPECT_EQ(s.ReconRefValue(1, 1), 20);
  // The fossil search keeps the plain test under the same setting.
  SetFossil(s, {{0.1, 0.9}, {0.11, 0.89}});
  RunReconstruction(s, st, progress);
  EXPECT_EQ(s.AnalogueCount(1), 2);
}

TEST_F(ErrorModelFixture, DistanceOptionWidensTheSetForDistancesAboveOne) {
  // Above 1 the root is smaller, so more ranks pass: site 1 lies at 1.44
  // and 1.69 from the others, with a threshold of 1.3.
  Rows ref = {{0, 0}, {1.2, 0}, {0, 1.3}};
  SetReference(s, ref);
  SetClimate(s, {{1, 0}, {2, 0}, {3, 0}}, {"A", "B"});
  st.MaxAnalogues = 2;
  DefineThreshold(st, 130);
  st.WeightBy = AnalogueWeightBy::SquaredDistance;
  GenerateErrorModel(s, st, progress);
  EXPECT_EQ(s.ReconRefValue(1, 0), 0);  // 1.44 and 1.69 are above 1.3
  st.WeightBy = AnalogueWeightBy::Distance;
  GenerateErrorModel(s, st, progress);
  EXPECT_EQ(s.ReconRefValue(1, 0), 1);  // root 1.2 < 1.3; root 1.3 is not below
  EXPECT_EQ(s.ReconRefValue(1, 1), 2);
}

TEST_F(ErrorModelFixture, DistanceOptionNarrowsTheSetForDistancesBelowOne) {
  // Below 1 the root is larger: site 1 lies at 0.04 and 0.09 from the
  // others, roots 0.2 and 0.3, with a threshold of 0.1.
  Rows ref = {{0, 0}, {0.2, 0}, {0, 0.3}};
  SetReference(s, ref);
  SetClimate(s, {{1, 0}, {2, 0}, {3, 0}}, {"A", "B"});
  st.MaxAnalogues = 2;
  DefineThreshold(st, 10);
  st.WeightBy = AnalogueWeightBy::SquaredDistance;
  GenerateErrorModel(s, st, progress);
  EXPECT_EQ(s.ReconRefValue(1, 0), 2);  // 0.04 and 0.09 are below 0.1
  EXPECT_EQ(s.ReconRefValue(1, 1), 2.5);
  st.WeightBy = AnalogueWeightBy::Distance;
  GenerateErrorModel(s, st, progress);
  EXPECT_EQ(s.ReconRefValue(1, 0), 0);  // roots 0.2 and 0.3 are not
  EXPECT_EQ(s.ReconRefValue(1, 1), -9999);
}

TEST_F(ErrorModelFixture, ANewModelKeepsNothingOfTheLast) {
  Sites({0.1, 0.2, 0.4, 0.45, 0.8});
  st.MinAnalogues = st.MaxAnalogues = 3;
  GenerateErrorModel(s, st, progress);
  Array2<double> three = s.ReconRefValue;
  st.MinAnalogues = st.MaxAnalogues = 1;
  GenerateErrorModel(s, st, progress);
  Session fresh = s;
  fresh.ReconRefValue.Erase();
  GenerateErrorModel(fresh, st, progress);
  EXPECT_EQ(s.ReconRefValue, fresh.ReconRefValue);
  EXPECT_NE(s.ReconRefValue, three);
}

TEST_F(ErrorModelFixture, CorrelationOfTheScatterSkipsMissingPairs) {
  Sites({0.1, 0.2, 0.4, 0.45, 0.8});
  s.ReconRefValue.ReDim(5, 2);
  const double x[] = {1, 2, kMissing, 4, 6}, y[] = {2, 4, 5, kMissing, 11};
  for (long i = 1; i <= 5; ++i) {
    s.ReconRefValue(i, 1) = x[i - 1];
    s.ClimateData(i, 1) = y[i - 1];
  }
  // Pairs (1,2), (2,4), (6,11).
  const double mx = 3, my = 17.0 / 3;
  double sxy = 0, sxx = 0, syy = 0;
  for (auto [a, b] : {std::pair{1.0, 2.0}, {2.0, 4.0}, {6.0, 11.0}}) {
    sxy += (a - mx) * (b - my);
    sxx += (a - mx) * (a - mx);
    syy += (b - my) * (b - my);
  }
  auto r = EstObsCorrelation(s, 1);
  ASSERT_TRUE(r.has_value());
  EXPECT_DOUBLE_EQ(*r, sxy / std::sqrt(sxx * syy));
  EXPECT_EQ(CorrelationCaption(r),
            "R = " + std::to_string(std::round(*r * 10000) / 10000).substr(0, 6));
}
