// The matrix chain: counts, models, products, smoothing, normalisations,
// medians, modes and confidence regions, with the tie rules and the
// thresholds of the tool's sliders.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "CalibSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

constexpr long N = 251;

struct RecordingPainter : CalibPainter {
  int Clears = 0, Rainbows = 0;
  std::vector<std::array<int, 3>> Regions;
  void Clear(int) override { ++Clears; }
  void Rainbow(float, float, float, int) override { ++Rainbows; }
  void Region(int p, int q, int cls) override { Regions.push_back({p, q, cls}); }
  void Susono(float, int, int, bool) override {}
};

float& M(CalibState& c, int s, long p, long q) { return c.CalibMatrix(s, p, q); }

CalibState Ranged() {
  CalibState c;
  SetTestRange(c, "0", "10");
  return c;
}

bool ColumnEmpty(const CalibState& c, int slot, long p) {
  for (long q = 0; q < N; ++q)
    if (c.CalibMatrix(slot, p, q) != 0) return false;
  return true;
}

}  // namespace

TEST(MatrixChain, NoPairInsideTheGridLeavesEverythingEmpty) {
  CalibState c = Ranged();
  const long sites = SetPairs(c, {{50, 50}, {-9999, 3}, {4, -9999}, {-20, 5}, {12, 12}});
  CalibSettings st;
  st.Check4 = true;
  NoProgress progress;
  UseGeneratedModel(c, st, progress);
  RecordingPainter painter;
  ChainContext ctx;
  ctx.RefSiteCount = sites;
  ctx.Painter = &painter;
  StartChain(c, st, ctx);
  for (long p = 0; p < N; ++p) {
    EXPECT_TRUE(ColumnEmpty(c, 0, p));
    EXPECT_TRUE(ColumnEmpty(c, 6, p));
    EXPECT_EQ(c.ModeIndex(p), -9999) << p;
    EXPECT_EQ(c.MedianIndex(p), -9999) << p;
  }
  EXPECT_TRUE(painter.Regions.empty());  // Fig.8 stays white
  EXPECT_TRUE(c.PictDrawn[8]);
}

TEST(MatrixChain, CountsRoundHalfToEvenAndDropMissingPairs) {
  CalibState c = Ranged();  // bin 0 is -1.25, step 0.05
  // x = 0.025 lies half way between bins 25 and 26: the even one, 26.
  const long sites = SetPairs(c, {{0.025f, 0}, {0, 0}, {-9999, 0}, {10, 10}});
  CountPairs(c, sites);
  EXPECT_EQ(M(c, 0, 25, 25) + M(c, 0, 26, 25), 2.0f);
  EXPECT_EQ(M(c, 0, 225, 225), 1.0f);
  float total = 0;
  for (long p = 0; p < N; ++p)
    for (long q = 0; q < N; ++q) total += M(c, 0, p, q);
  EXPECT_EQ(total, 3.0f);
  // The loop runs to the number of sites given, not to the pairs read.
  CountPairs(c, 2);
  EXPECT_EQ(M(c, 0, 225, 225), 0.0f);
}

TEST(MatrixChain, SmoothingAtOneHalvesTheProduct) {
  CalibState c = Ranged();
  const auto pairs = NoisyPairs(300, 5);
  const long sites = SetPairs(c, pairs);
  CalibSettings st;
  st.Slider3 = 1;
  RunGenerated(c, st, sites);
  for (long i = 0; i < N; ++i)
    for (long j = 0; j < N; ++j) {
      EXPECT_EQ(M(c, 3, i, j), i == j ? 0.5f : 0.0f);
      ASSERT_EQ(M(c, 4, i, j), 0.5f * M(c, 2, i, j)) << i << "," << j;
    }
}

TEST(MatrixChain, ThresholdsAtZeroKeepEveryColumnWithMass) {
  CalibState c = Ranged();
  const long sites = SetPairs(c, NoisyPairs(40, 9));
  CalibSettings st;
  st.Slider5 = st.Slider6 = 0;
  RunGenerated(c, st, sites);
  int kept = 0;
  for (long p = 0; p < N; ++p) {
    const bool mass = !ColumnEmpty(c, 4, p);
    EXPECT_EQ(mass, !ColumnEmpty(c, 6, p)) << p;
    kept += mass;
  }
  EXPECT_GT(kept, 100);
}

TEST(MatrixChain, ThresholdsAtTenEmptyColumnsOfThinData) {
  CalibState thin = Ranged(), zero = Ranged();
  const auto pairs = NoisyPairs(12, 11);
  const long sites = SetPairs(thin, pairs);
  SetPairs(zero, pairs);
  CalibSettings st;
  st.Slider5 = st.Slider6 = 10;
  RunGenerated(thin, st, sites);
  st.Slider5 = st.Slider6 = 0;
  RunGenerated(zero, st, sites);
  int vanished = 0;
  for (long p = 0; p < N; ++p) {
    if (!ColumnEmpty(thin, 6, p)) continue;
    EXPECT_EQ(thin.ModeIndex(p), -9999);
    EXPECT_EQ(thin.MedianIndex(p), -9999);
    vanished += !ColumnEmpty(zero, 6, p);
  }
  EXPECT_GT(vanished, 0);
}

TEST(MatrixChain, VerticalThresholdKeepsABinFromOneTimesTheUnitWithItsMargin) {
  CalibState c = Ranged();
  CalibSettings st;
  st.Slider5 = 1;
  // Units from the representative row and column 25 of slots 1 and 3.
  for (long i = 0; i < N; ++i) {
    M(c, 3, i, 25) = 0.25f;  // A = 62.75
    M(c, 1, 25, i) = i == 25 ? 2.0f : 0.5f;
  }
  const double unit = 0.25 * 251 * 2.0;
  const float below = static_cast<float>(unit * 1.05 * 0.999);
  const float above = static_cast<float>(unit * 1.05 * 1.001);
  M(c, 4, 40, 30) = below;
  M(c, 4, 40, 31) = above;
  M(c, 4, 41, 31) = above;  // the bin sums both columns
  NormalizeH(c, st);
  EXPECT_DOUBLE_EQ(std::stod(c.HorizontalUnit), unit);
  EXPECT_NEAR(std::stod(c.VerticalUnit), 250 * 0.5 + 2.0, 1e-9);
  EXPECT_EQ(M(c, 5, 40, 30), 0.0f);
  EXPECT_EQ(M(c, 5, 40, 31), above / (above + above));
  st.Check5 = true;
  NormalizeH(c, st);
  EXPECT_EQ(M(c, 5, 40, 30), below);  // skipped: a plain copy
}

TEST(MatrixChain, CoefficientAtThousandCoversEveryNonEmptyColumn) {
  CalibState c = Ranged();
  const long sites = SetPairs(c, NoisyPairs(300, 3));
  CalibSettings st;
  st.Slider1 = 1000;
  RunGenerated(c, st, sites);
  int columns = 0;
  for (long p = 0; p < N; ++p) {
    if (ColumnEmpty(c, 6, p)) continue;
    ++columns;
    for (long q = 0; q < N; ++q) ASSERT_GE(std::fabs(M(c, 7, p, q)), 1.0f) << p << "," << q;
  }
  EXPECT_GT(columns, 0);
}

TEST(MatrixChain, CoefficientAtZeroHoldsOnlyTheTopCells) {
  CalibState c = Ranged();
  const long sites = SetPairs(c, NoisyPairs(300, 4));
  CalibSettings st;
  st.Slider1 = 0;
  RunGenerated(c, st, sites);
  int columns = 0;
  for (long p = 0; p < N; ++p) {
    if (ColumnEmpty(c, 6, p)) continue;
    ++columns;
    float peak = 0;
    for (long q = 0; q < N; ++q) peak = std::max(peak, std::fabs(M(c, 6, p, q)));
    // Every halving raised the level: it ends a 1024th below the peak.
    EXPECT_FLOAT_EQ(c.ConfidenceLevel(p, 1), peak * (1023.0f / 1024.0f));
    for (long q = 0; q < N; ++q)
      if (std::fabs(M(c, 6, p, q)) > c.ConfidenceLevel(p, 1)) {
        EXPECT_GE(std::fabs(M(c, 6, p, q)), peak * (1023.0f / 1024.0f));
      }
  }
  EXPECT_GT(columns, 0);
}

TEST(MatrixChain, ModeAndMedianInBinZeroAreNotMarked) {
  CalibState c = Ranged();
  CalibSettings st;
  st.Slider5 = st.Slider6 = 0;
  M(c, 4, 60, 0) = M(c, 5, 60, 0) = 0.9f;
  M(c, 4, 60, 1) = M(c, 5, 60, 1) = 0.1f;
  NormalizeV(c, st);
  EXPECT_EQ(c.MedianIndex(60), 0);
  EXPECT_GT(M(c, 6, 60, 0), 0.0f);  // the median of bin 0 keeps its sign
  BuildConfidence(c, st);
  EXPECT_EQ(c.ModeIndex(60), 0);
  EXPECT_NE(M(c, 7, 60, 0), 3.0f);
  EXPECT_GT(M(c, 7, 60, 0), 0.0f);
}

TEST(MatrixChain, MedianAndModeInOneCellGiveMinusThree) {
  CalibState c = Ranged();
  CalibSettings st;
  st.Slider5 = st.Slider6 = 0;
  const float v[] = {0.2f, 0.6f, 0.2f};
  for (long q = 99; q <= 101; ++q) M(c, 4, 70, q) = M(c, 5, 70, q) = v[q - 99];
  NormalizeV(c, st);
  EXPECT_EQ(c.MedianIndex(70), 100);
  EXPECT_LT(M(c, 6, 70, 100), 0.0f);
  BuildConfidence(c, st);
  EXPECT_EQ(c.ModeIndex(70), 100);
  EXPECT_EQ(M(c, 7, 70, 100), -3.0f);
  EXPECT_EQ(c.MedianIndex(70), 100);
}

TEST(MatrixChain, ModeTieGoesToTheLowestBin) {
  CalibState c = Ranged();
  CalibSettings st;
  M(c, 6, 80, 90) = M(c, 6, 80, 120) = 0.5f;
  BuildConfidence(c, st);
  EXPECT_EQ(c.ModeIndex(80), 90);
  EXPECT_EQ(M(c, 7, 80, 90), 3.0f);
  EXPECT_EQ(M(c, 7, 80, 120), 2.0f);
}

TEST(MatrixChain, ProductMatchesThePlainTripleLoopBitForBit) {
  CalibState c;
  std::mt19937 rng(17);
  std::uniform_real_distribution<float> value(-3.0f, 3.0f);
  std::uniform_int_distribution<int> zero(0, 3);
  for (int s : {0, 1})
    for (long i = 0; i < N; ++i)
      for (long j = 0; j < N; ++j) M(c, s, i, j) = zero(rng) == 0 ? 0.0f : value(rng);
  NoProgress progress;
  MultipleMatrix(c, 1, 0, 2, 1, 1.0f, progress);
  for (long i = 0; i < N; ++i)
    for (long j = 0; j < N; ++j) {
      float sum = 0;
      for (long k = 0; k < N; ++k) sum += M(c, 0, i, k) * M(c, 1, k, j);
      ASSERT_EQ(std::memcmp(&sum, &M(c, 2, i, j), sizeof sum), 0) << i << "," << j;
    }
}

TEST(MatrixChain, ConfidenceClassesMatchABruteForceHighestDensityRegion) {
  CalibState c;
  CalibSettings st;
  std::mt19937 rng(23);
  std::uniform_real_distribution<float> value(0.0f, 1.0f);
  std::uniform_int_distribution<int> shape(0, 2);
  for (long p = 0; p < N; ++p)
    for (long q = 0; q < N; ++q) {
      const int kind = shape(rng);
      // Plateaus and gaps make ties and empty stretches.
      M(c, 6, p, q) = kind == 0 ? 0.0f : kind == 1 ? std::round(value(rng) * 8) / 8 : value(rng);
    }
  for (long p = 0; p < N; ++p) c.MedianIndex(p) = 0;
  BuildConfidence(c, st);
  long compared = 0;
  for (long p = 0; p < N; ++p) {
    std::vector<float> v(N);
    for (long q = 0; q < N; ++q) v[q] = M(c, 6, p, q);
    std::vector<float> sorted = v;
    std::sort(sorted.begin(), sorted.end(), std::greater<float>());
    double total = 0;
    for (float x : v) total += x;
    const float peak = sorted[0];
    // The level of a coefficient: the smallest value whose inclusion brings
    // the mass above it.
    auto boundary = [&](double coefficient) {
      double run = 0;
      for (float x : sorted) {
        run += x;
        if (run / total > coefficient) return x;
      }
      return 0.0f;
    };
    const float b1 = boundary(0.682), b2 = boundary(0.954);
    const float margin = peak / 1024 * 1.0001f;
    for (long q = 0; q < N; ++q) {
      if (q == c.ModeIndex(p)) continue;
      if (std::fabs(v[q] - b1) <= margin || std::fabs(v[q] - b2) <= margin) continue;
      const float expected = static_cast<float>((v[q] > b1) + (v[q] > b2));
      ASSERT_EQ(M(c, 7, p, q), expected) << p << "," << q;
      ++compared;
    }
  }
  EXPECT_GT(compared, N * N / 2);
}

TEST(MatrixChain, GeneratedModelAtOnePercentIsTwoStepsWide) {
  CalibState c = Ranged();
  CalibSettings st;
  st.Slider4 = 1;
  NoProgress progress;
  GenerateModel(c, st, progress);
  EXPECT_FLOAT_EQ(c.FitStdDev[1], 0.1f);
  EXPECT_EQ(c.Labels.Label17, "y = x");
  EXPECT_EQ(c.Labels.Label19, "0.1");
  const double peak = 1 / (std::sqrt(6.2831853071796) * 0.1);
  EXPECT_NEAR(M(c, 1, 100, 100), peak, peak * 1e-6);
  EXPECT_NEAR(M(c, 1, 100, 102), peak * std::exp(-0.5), peak * 1e-5);
  EXPECT_TRUE(c.PictDrawn[3]);
}

TEST(MatrixChain, GeneratedModelWithAFallingRangeUsesThePositiveWidth) {
  CalibState c;
  SetTestRange(c, "10", "0");
  CalibSettings st;
  NoProgress progress;
  GenerateModel(c, st, progress);
  EXPECT_FLOAT_EQ(c.FitStdDev[1], 0.5f);
  for (long i = 0; i < N; i += 25) {
    long best = 0;
    for (long j = 0; j < N; ++j)
      if (M(c, 1, i, j) > M(c, 1, i, best)) best = j;
    EXPECT_EQ(best, i);
    EXPECT_TRUE(std::isfinite(M(c, 1, i, best)));
  }
}

TEST(MatrixChain, FittedModelWithNoDeviationIsTheNumericFailure) {
  CalibState c = Ranged();
  c.FitSlope[1] = 1;
  c.FitStdDev[1] = 0;
  EXPECT_THROW(GaussianModel(c), RuntimeFailure);
}

TEST(MatrixChain, FittedModelFollowsTheLine) {
  CalibState c = Ranged();
  c.FitSlope[1] = 0.5f;
  c.FitIntercept[1] = 2.5f;
  c.FitStdDev[1] = 0.5f;
  GaussianModel(c);
  // At Vest = value(125) = 5 the density peaks at 0.5 * 5 + 2.5 = 5, bin 125;
  // at value(25) = 0 it peaks at 2.5, bin 75.
  auto best = [&](long i) {
    long b = 0;
    for (long j = 0; j < N; ++j)
      if (M(c, 1, i, j) > M(c, 1, i, b)) b = j;
    return b;
  };
  EXPECT_EQ(best(125), 125);
  EXPECT_EQ(best(25), 75);
}

TEST(MatrixChain, SliderTailsEqualAFreshChain) {
  const auto pairs = NoisyPairs(250, 8);
  CalibSettings st;
  CalibState moved = Ranged();
  const long sites = SetPairs(moved, pairs);
  RunGenerated(moved, st, sites);
  ChainContext ctx;
  ctx.RefSiteCount = sites;
  struct Change {
    ChainChange What;
    void (*Set)(CalibSettings&);
  };
  const Change changes[] = {
      {ChainChange::Smoothing, [](CalibSettings& s) { s.Slider3 = 4; }},
      {ChainChange::VerticalThreshold, [](CalibSettings& s) { s.Slider5 = 5; }},
      {ChainChange::HorizontalThreshold, [](CalibSettings& s) { s.Slider6 = 3; }},
      {ChainChange::Skip, [](CalibSettings& s) { s.Check5 = true; }},
      {ChainChange::Coefficient, [](CalibSettings& s) { s.Slider1 = 500; }},
  };
  for (const Change& change : changes) {
    change.Set(st);
    ASSERT_TRUE(RerunAfter(moved, st, change.What, ctx));
    EXPECT_FALSE(moved.ReturnEnabled);
    CalibState fresh = Ranged();
    SetPairs(fresh, pairs);
    RunGenerated(fresh, st, sites);
    for (int slot = 4; slot <= 7; ++slot)
      for (long p = 0; p < N; ++p)
        for (long q = 0; q < N; ++q)
          ASSERT_EQ(M(moved, slot, p, q), M(fresh, slot, p, q)) << slot << "," << p << "," << q;
  }
  // "Start" once more only enables "Return".
  CalibState before = moved;
  StartChain(moved, st, ctx);
  EXPECT_TRUE(moved.ReturnEnabled);
  EXPECT_TRUE(moved.CalibMatrix == before.CalibMatrix);
}

TEST(MatrixChain, TailsWaitForTheirFigure) {
  CalibState c = Ranged();
  CalibSettings st;
  ChainContext ctx;
  M(c, 6, 10, 10) = 1;
  EXPECT_FALSE(RerunAfter(c, st, ChainChange::Smoothing, ctx));
  EXPECT_FALSE(RerunAfter(c, st, ChainChange::Coefficient, ctx));
  EXPECT_EQ(M(c, 7, 10, 10), 0.0f);
}

TEST(MatrixChain, ReturnAddsClassesAndProbabilities) {
  CalibState c = Ranged();
  const long sites = SetPairs(c, NoisyPairs(200, 2));
  CalibSettings st;
  RunGenerated(c, st, sites);
  ReturnData(c);
  EXPECT_TRUE(c.CalibReady);
  for (long p = 0; p < N; ++p)
    for (long q = 0; q < N; ++q) ASSERT_EQ(M(c, 8, p, q), M(c, 7, p, q) + M(c, 6, p, q));
  c.Labels.Label13 = {"0.9", "0.8"};
  EXPECT_EQ(ReturnCaption(c), "R1 = 0.9 / R2 = 0.8");
}

TEST(MatrixChain, ABlankFigureCatchesUpFromItsStep) {
  CalibState c = Ranged();
  const long sites = SetPairs(c, NoisyPairs(200, 14));
  CalibSettings st;
  RunGenerated(c, st, sites);
  ChainContext ctx;
  ctx.RefSiteCount = sites;
  EXPECT_FALSE(CatchUp(c, st, 2, ctx));  // Fig.5 is drawn
  EXPECT_FALSE(CatchUp(c, st, 4, ctx));  // Fig.7 opens the chart instead
  ResetFrom(c, 6);
  for (long p = 0; p < N; ++p) M(c, 7, p, 100) = 9;
  EXPECT_TRUE(CatchUp(c, st, 3, ctx));
  EXPECT_TRUE(c.PictDrawn[8]);
  EXPECT_NE(M(c, 7, 125, 100), 9.0f);
  EXPECT_FALSE(c.ReturnEnabled);
}

TEST(MatrixChain, ReturnPaintsRegionsOrTheProbabilityInsideThem) {
  struct Counting : MatrixPainter {
    int Clears = 0, Regions = 0, Inner = 0, Probabilities = 0;
    void Clear() override { ++Clears; }
    void Region(int, int, int cls) override {
      ++Regions;
      Inner += cls == 2;
    }
    void Probability(float, int, int) override { ++Probabilities; }
  };
  CalibState c = Ranged();
  M(c, 7, 100, 100) = 3;
  M(c, 6, 100, 100) = 0.5f;
  M(c, 7, 100, 101) = -1;
  M(c, 7, 10, 10) = 2;  // in the margin: not shown
  Counting confidence, probability;
  ReturnData(c, true, &confidence);
  ReturnData(c, false, &probability);
  EXPECT_EQ(confidence.Clears, 1);
  EXPECT_EQ(confidence.Regions, 2);
  EXPECT_EQ(confidence.Inner, 1);
  EXPECT_EQ(confidence.Probabilities, 0);
  EXPECT_EQ(probability.Probabilities, 2);
  EXPECT_EQ(probability.Regions, 0);
}
