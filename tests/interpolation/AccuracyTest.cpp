// The accuracy check: the axis range, the pairs and their correlation, the
// packed pair arrays, the tool tip, and the two files.
#include <gtest/gtest.h>

#include <cmath>

#include "interpolation/Accuracy.h"
#include "interpolation/InterpSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

// Stations whose leave-one-out estimates of column 6 are given: column 1
// of an estimate row is 0 with a neighbour and -9999 without, as a run
// leaves it.
struct AccuracyFixture : InterpFixture {
  void Given(const std::vector<double>& estimates, const std::vector<double>& observed) {
    InterpolationState& st = s.Interp;
    const long nr = static_cast<long>(estimates.size());
    st.InterpRefCount = static_cast<Count>(nr);
    st.InterpColumnCount = 7;
    st.InterpParamNames.ReDim(7);
    const char* names[] = {"", "Lon", "Lat", "Alt", "TL", "PL", "MTCO", "Prec"};
    for (long k = 0; k <= 7; ++k) st.InterpParamNames(k) = names[k];
    st.InterpRefNames.ReDim(nr);
    st.InterpRefLon.ReDim(nr);
    st.InterpRefLat.ReDim(nr);
    st.InterpRefAlt.ReDim(nr);
    st.InterpRefClimate.ReDim(nr, 7);
    st.InterpRefEstimate.ReDim(nr, 7);
    for (long i = 1; i <= nr; ++i) {
      st.InterpRefNames(i) = "St" + std::to_string(i);
      st.InterpRefLon(i) = static_cast<float>(i);
      st.InterpRefLat(i) = 40.5f + static_cast<float>(i);
      st.InterpRefAlt(i) = 100.f * static_cast<float>(i);
      const double e = estimates[static_cast<std::size_t>(i - 1)];
      for (long k = 1; k <= 7; ++k) {
        st.InterpRefClimate(i, k) = 10.0 * i + k;
        st.InterpRefEstimate(i, k) = e == kMissing ? kMissing : k <= 5 ? 0 : 100.0 * i + k;
      }
      st.InterpRefClimate(i, 6) = observed[static_cast<std::size_t>(i - 1)];
      st.InterpRefEstimate(i, 6) = e;
    }
    st.InterpCurrentParam = 6;
  }
};

}  // namespace

TEST_F(AccuracyFixture, AutoScaleRoundsToHalfPowersOfTenFromTheEstimates) {
  // The observed 50 falls outside the range: only estimates count.
  Given({-12.3, 28.1, 3, kMissing}, {0, 0, 50, 0});
  const AxisRange r = AutoScale(s);
  EXPECT_EQ(r.Min, -15);
  EXPECT_EQ(r.Max, 30);
}

TEST_F(AccuracyFixture, AutoScaleOfEqualEstimatesGivesEqualBounds) {
  Given({10, 10, 10}, {10, 10, 10});
  const AxisRange r = AutoScale(s);
  EXPECT_EQ(r.Min, 10);
  EXPECT_EQ(r.Max, 10);
  Given({0.37, 0.42}, {0, 0});
  const AxisRange small = AutoScale(s);
  EXPECT_FLOAT_EQ(small.Min, 0.35f);
  EXPECT_FLOAT_EQ(small.Max, 0.45f);
}

TEST_F(AccuracyFixture, TheCorrelationIsRoundedToFourDecimals) {
  Given({1, 2, 3}, {1, 2, 4});
  ScatterPairs p = ScatterPairsPL(s);
  ASSERT_TRUE(p.Correlation);
  // sxy 3, sxx 2, syy 42/9: r = 3 / sqrt(84/9) = 0.98198...
  EXPECT_EQ(p.CorrelationText, "0.982");
  EXPECT_EQ(*p.Correlation, 0.982);
  EXPECT_EQ(s.Interp.InterpPairCount, 3);
  EXPECT_DOUBLE_EQ(p.MeanEstimate, 2);
  EXPECT_DOUBLE_EQ(p.MeanObserved, 7.0 / 3);

  Given({1, 2, 3, 4}, {4, 3.5, 1, 0.2});
  p = ScatterPairsPL(s);
  ASSERT_TRUE(p.Correlation);
  const double mx = 2.5, my = (4 + 3.5 + 1 + 0.2) / 4;
  double sxy = 0, sxx = 0, syy = 0;
  const double xs[] = {1, 2, 3, 4}, ys[] = {4, 3.5, 1, 0.2};
  for (int i = 0; i < 4; ++i) {
    sxy += (xs[i] - mx) * (ys[i] - my);
    sxx += (xs[i] - mx) * (xs[i] - mx);
    syy += (ys[i] - my) * (ys[i] - my);
  }
  const double r = sxy / std::sqrt(sxx * syy);
  EXPECT_LT(r, -0.9);
  EXPECT_NEAR(*p.Correlation, r, 0.00005);
  EXPECT_EQ(p.CorrelationText, FormatGeneral(std::nearbyint(r * 10000) / 10000));
}

TEST_F(AccuracyFixture, AllPairsEqualLeaveTheCoefficientAsItWas) {
  Given({10, 10, 10}, {10, 10, 10});
  ScatterPairs p = ScatterPairsPL(s);
  EXPECT_TRUE(p.Counted);
  EXPECT_FALSE(p.Correlation);
  EXPECT_EQ(p.CorrelationText, "");
  EXPECT_FALSE(p.Packed);
  EXPECT_EQ(p.Points.size(), 3u);
}

TEST_F(AccuracyFixture, AColumnWithoutPairsStopsBeforeTheCoefficient) {
  Given({kMissing, kMissing}, {1, 2});
  s.Interp.InterpPairCount = 7;
  ScatterPairs p = ScatterPairsPL(s);
  EXPECT_TRUE(p.Points.empty());
  EXPECT_TRUE(p.PairCountSet);  // the count of 0 is shown
  EXPECT_FALSE(p.Counted);
  EXPECT_FALSE(p.Correlation);
  EXPECT_FALSE(p.Packed);
  EXPECT_EQ(s.Interp.InterpPairCount, 0);
}

TEST_F(AccuracyFixture, AStationWithoutNeighbourStaysOutOfTheScatterAndTheSave) {
  Given({5, kMissing, 7, 8}, {5.5, 6, 6.5, 9});
  s.Interp.InterpRefClimate(4, 6) = kMissing;  // no observed value either
  ScatterPairs p = ScatterPairsPL(s);
  ASSERT_EQ(p.Points.size(), 2u);
  EXPECT_EQ(p.Points[0].Station, 1);
  EXPECT_EQ(p.Points[1].Station, 3);
  EXPECT_EQ(p.Points[1].Estimate, 7);
  EXPECT_EQ(p.Points[1].Observed, 6.5);
  EXPECT_EQ(s.Interp.InterpPairCount, 2);

  ASSERT_TRUE(SaveInterpMatrix(s, dir.Path("m.csv"), progress));
  EXPECT_EQ(ReadFile(dir.Path("m.csv")),
            "\"MTCO (Estimated)\",\"MTCO (Observed)\"\r\n"
            "5,5.5\r\n"
            "7,6.5\r\n");
  EXPECT_FALSE(SaveInterpMatrix(s, std::nullopt, progress));
}

TEST_F(AccuracyFixture, PackedPairsReadEstimatesAtTheRunningNumber) {
  // Station 2 lacks a neighbour: station 3 is the second with an estimate
  // and takes estimate row 2, written at its own index 3.
  Given({5, kMissing, 7, 8}, {5.5, 6, 6.5, 9});
  ScatterPairs p = ScatterPairsPL(s);
  ASSERT_TRUE(p.Packed);
  const InterpolationState& st = s.Interp;
  EXPECT_EQ(st.InterpPairEstimates.Upper0(), 4);
  EXPECT_EQ(st.InterpPairEstimates.Upper1(), 7);
  EXPECT_EQ(st.InterpPairEstimates(1, 6), 5.f);
  EXPECT_EQ(st.InterpPairEstimates(2, 6), 0.f);
  EXPECT_EQ(st.InterpPairEstimates(3, 6), static_cast<float>(kMissing));  // row 2's
  EXPECT_EQ(st.InterpPairEstimates(4, 6), 7.f);                           // row 3's
  EXPECT_EQ(st.InterpPairEstimates(4, 7), 307.f);
  EXPECT_EQ(st.InterpPairObserved(3, 6), 6.5f);
  EXPECT_EQ(st.InterpPairObserved(4, 7), 47.f);
  EXPECT_EQ(st.InterpPairObserved(2, 7), 0.f);
}

TEST_F(AccuracyFixture, OfTwoStationsWithinTheToleranceTheLaterGivesTheToolTip) {
  Given({5, 5.05, 9}, {6, 6.02, 1});
  // Scale width 8: tolerance 0.1 about the pointer.
  EXPECT_EQ(StationUnderPointer(s, 5.02, 6.01, -8), 2);
  EXPECT_EQ(ScatterToolTip(s, 2), "St2, MTCO=6.02");
  EXPECT_EQ(StationUnderPointer(s, 4.94, 6.01, 8), 1);  // 5.05 lies beyond 4.94 + 0.1
  EXPECT_EQ(StationUnderPointer(s, 7, 3, 8), 0);
}

TEST_F(AccuracyFixture, TheTestFileHoldsTheWholeLeaveOneOutTable) {
  Given({5, kMissing}, {5.5, 6});
  s.Interp.InterpRefClimate(1, 4) = 0.55;
  s.Interp.InterpRefClimate(1, 5) = 2;
  ASSERT_TRUE(SaveTestFile(s, dir.Path("t.csv"), progress));
  EXPECT_EQ(ReadFile(dir.Path("t.csv")),
            "\"Test\",\"Lon\",\"Lat\",\"Alt\",\"TL\",\"PL\",\"MTCO\",\"Prec\"\r\n"
            "\"St1\",1,41.5,100,0.55,2,5,107\r\n"
            "\"St2\",2,42.5,200,24,25,-9999,-9999\r\n");
}

TEST_F(InterpFixture, TheAccuracyOfARunPairsEachStationWithItsNeighbours) {
  Sites({"S1", "S2"});
  ASSERT_TRUE(Stations(StationCsv({"Sun"}, {{"A", 0, 0, 0, 0, 0, {10}},
                                            {"B", 1, 0, 0, 0, 0, {20}},
                                            {"C", 0, 1, 0, 0, 0, {30}},
                                            {"Lone", 40, 40, 0, 0, 0, {99}}}))
                  .Ok);
  ASSERT_TRUE(
      Targets(StationCsv({}, {{"S1", 0.5, 0.5, 0, 0, 0, {}}, {"S2", 9, 9, 0, 0, 0, {}}}, "Site"))
          .Ok);
  DoInterpolation(s, InterpMode::Interpolation, "-2", "3", progress);
  ScatterPairs p = ScatterPairsPL(s);
  ASSERT_EQ(p.Points.size(), 3u);  // Lone has no neighbour
  // A: B at 1 and C at 1; B: A at 1, C at 1.41; C: A at 1, B at 1.41.
  EXPECT_DOUBLE_EQ(p.Points[0].Estimate, 25);
  EXPECT_DOUBLE_EQ(p.Points[1].Estimate, (10 + 30 * 0.5) / 1.5);
  EXPECT_DOUBLE_EQ(p.Points[2].Estimate, (10 + 20 * 0.5) / 1.5);
  EXPECT_EQ(s.Interp.InterpRefEstimate(4, 1), kMissing);
  EXPECT_EQ(s.Interp.InterpRefEstimate(3, 1), 0);
  EXPECT_TRUE(p.Packed);
}

// An observed value near the largest double overflows the sums of squares:
// the routine ends there as on any failure, so no NaN becomes the shown
// coefficient, and the overflow is told to a caller that reports it.
TEST_F(AccuracyFixture, AHugeStationValueEndsInOverflowNotANaNCoefficient) {
  for (const double huge : {1e308, -1e308}) {
    Given({1, 2, 3, 4}, {4, 3.5, huge, 0.2});
    ScatterPairs p = ScatterPairsPL(s);
    EXPECT_TRUE(p.Counted);
    EXPECT_FALSE(p.Correlation) << *p.Correlation;
    EXPECT_EQ(p.CorrelationText, "");
    EXPECT_FALSE(p.Packed);
    ASSERT_TRUE(p.Failure);
    EXPECT_EQ(*p.Failure, FailureKind::Overflow);
  }
  Given({1, 2, 3}, {1, 2, 4});
  EXPECT_FALSE(ScatterPairsPL(s).Failure);
}

// Two observed values near the largest double overflow the plain sums: the
// count stands, but no mean is formed and the overflow is told.
TEST_F(AccuracyFixture, SumsThatOverflowLeaveTheCountButNoMeans) {
  Given({1, 2, 3, 4}, {1e308, 3.5, 1e308, 0.2});
  ScatterPairs p = ScatterPairsPL(s);
  EXPECT_TRUE(p.PairCountSet);
  EXPECT_EQ(s.Interp.InterpPairCount, 4);
  EXPECT_FALSE(p.Counted);
  EXPECT_FALSE(p.Correlation);
  ASSERT_TRUE(p.Failure);
  EXPECT_EQ(*p.Failure, FailureKind::Overflow);
}
