#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "eof/PreTreatment.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/Curves.h"
#include "reconstruction/ReconSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

struct SearchFixture : ::testing::Test {
  Session s;
  NoProgress progress;
  AnalogueSettings st;

  // Sites on a line: site i has (a_i, 1 - a_i); climate 10 i, 100 + i.
  void LineSites(const std::vector<double>& a) {
    Rows ref, clim;
    for (std::size_t i = 0; i < a.size(); ++i) {
      ref.push_back({a[i], 1 - a[i]});
      clim.push_back({10.0 * (i + 1), 100.0 + (i + 1)});
    }
    SetReference(s, ref);
    SetClimate(s, clim, {"P1", "P2"});
  }
  void Run() { RunReconstruction(s, st, progress); }
};

double SqDist(const std::vector<double>& a, const std::vector<double>& b) {
  double d = 0;
  for (std::size_t k = 0; k < a.size(); ++k) d += (a[k] - b[k]) * (a[k] - b[k]);
  return d;
}

}  // namespace

TEST_F(SearchFixture, ThresholdFollowsTheEnhancement) {
  st.Enhance = AnalogueEnhance::None;
  EXPECT_DOUBLE_EQ(DefineThreshold(st, 20), 0.2);
  EXPECT_EQ(st.AnalogueThreshold, 0.2);
  st.Enhance = AnalogueEnhance::SquareRoot;
  EXPECT_EQ(DefineThreshold(st, 20), 0.2);  // the raw value, for the caption
  EXPECT_EQ(st.AnalogueThreshold, std::pow(0.2, 0.5));
  EXPECT_NEAR(st.AnalogueThreshold, 0.447, 0.001);
  st.Enhance = AnalogueEnhance::Log;
  DefineThreshold(st, 200);
  EXPECT_EQ(st.AnalogueThreshold, LogEnhance(2.0));
  // Natural logarithms divided, to the last bit.
  EXPECT_EQ(st.AnalogueThreshold, 1.1505149978319904);
  DefineThreshold(st, 1);  // 0.01 maps to 0
  EXPECT_EQ(st.AnalogueThreshold, 0.0);
}

TEST_F(SearchFixture, ZeroThresholdWithoutMinimumLeavesEverySampleMissing) {
  LineSites({0.1, 0.2, 0.3, 0.4});
  SetFossil(s, {{0.15, 0.85}, {0.35, 0.65}});
  DefineThreshold(st, 0);
  st.MinAnalogues = 0;
  Run();
  for (long j = 1; j <= 2; ++j) {
    EXPECT_EQ(s.ReconValue(j, 1), kMissing);
    EXPECT_EQ(s.ReconValue(j, 2), kMissing);
    EXPECT_EQ(s.ReconValue(j, 0), 0);
    EXPECT_EQ(s.AnalogueCount(j), 0);
    // No analogue: the start values of the range remain.
    EXPECT_EQ(s.ReconLow(j, 1), 999999);
    EXPECT_EQ(s.ReconHigh(j, 1), -999999);
  }
  EXPECT_EQ(s.ReconMin(1), 9999.0f);
  EXPECT_EQ(s.ReconMax(1), -9999.0f);
  EXPECT_TRUE(CurveLimits(s, 1).NoAnalogues);
  EXPECT_EQ(s.LastAnalogueCount, 0);
}

TEST_F(SearchFixture, FixedCountIgnoresTheThreshold) {
  LineSites({0.1, 0.2, 0.3, 0.4, 0.5, 0.6});
  SetFossil(s, {{0.15, 0.85}, {0.9, 0.1}});
  st.MinAnalogues = st.MaxAnalogues = 3;
  DefineThreshold(st, 0);
  Run();
  Array2<double> atZero = s.ReconValue;
  DefineThreshold(st, 200);
  Run();
  EXPECT_EQ(s.ReconValue, atZero);
  EXPECT_EQ(s.AnalogueCount(1), 3);
  EXPECT_EQ(s.AnalogueCount(2), 3);
}

TEST_F(SearchFixture, IdenticalSiteIsNoAnalogueOfTheSample) {
  LineSites({0.1, 0.3, 0.6, 0.35});
  SetFossil(s, {{0.3, 0.7}});
  st.MaxAnalogues = 2;
  DefineThreshold(st, 200);
  Run();
  EXPECT_EQ(s.AnalogueSite(1, 1), 4);  // 0.35 is next to 0.3
  EXPECT_EQ(s.AnalogueSite(1, 2), 1);
  EXPECT_NE(s.AnalogueSite(1, 1), 2);
  EXPECT_NE(s.AnalogueSite(1, 2), 2);
  EXPECT_EQ(s.AnalogueDistance(1, 1), static_cast<float>(SqDist({0.35, 0.65}, {0.3, 0.7})));
}

TEST_F(SearchFixture, EqualDistancesRankByTheSiteNumber) {
  // Sites 2 and 4 share a composition; sites 1 and 3 lie at the same
  // distance on either side of the sample.
  LineSites({0.25, 0.5, 0.75, 0.5});
  SetFossil(s, {{0.5, 0.5}});
  st.MaxAnalogues = 3;
  DefineThreshold(st, 200);
  Run();
  // Sites 2 and 4 are the sample itself: never analogues.
  EXPECT_EQ(s.AnalogueSite(1, 1), 1);
  EXPECT_EQ(s.AnalogueSite(1, 2), 3);
  EXPECT_EQ(s.AnalogueDistance(1, 1), s.AnalogueDistance(1, 2));
  EXPECT_EQ(s.AnalogueSite(1, 3), 0);
  EXPECT_EQ(s.AnalogueDistance(1, 3), 9999.0f);
}

TEST_F(SearchFixture, MinimumAboveTheCandidatesTakesSiteZero) {
  LineSites({0.1, 0.2});
  SetFossil(s, {{0.4, 0.6}});
  s.ClimateData(1, 1) = 5;
  s.ClimateData(2, 1) = 7;
  st.MaxAnalogues = st.MinAnalogues = 3;
  DefineThreshold(st, 200);
  for (int weighting = 0; weighting < 3; ++weighting) {
    st.InverseWeighting = weighting > 0;
    st.WeightBy = weighting == 2 ? AnalogueWeightBy::Distance : AnalogueWeightBy::SquaredDistance;
    Run();
    ASSERT_EQ(s.AnalogueSite(1, 3), 0);
    ASSERT_EQ(s.AnalogueDistance(1, 3), 9999.0f);
    const double d1 = s.AnalogueDistance(1, 1), d2 = s.AnalogueDistance(1, 2);
    auto w = [&](double d) {
      if (weighting == 0) return 1.0;
      return weighting == 1 ? 1 / d : 1 / std::pow(d, 0.5);
    };
    const double expected = (w(d1) * 7 + w(d2) * 5 + w(9999.0) * 0) / (w(d1) + w(d2) + w(9999.0));
    EXPECT_EQ(s.ReconValue(1, 1), expected) << weighting;
    EXPECT_EQ(s.AnalogueCount(1), 3);
    EXPECT_EQ(s.ReconLow(1, 1), 0);  // row 0 of the climate is all zero
    EXPECT_EQ(s.ReconHigh(1, 1), 7);
  }
}

TEST_F(SearchFixture, MissingValueBeyondTheFirstParameterPullsTheEstimate) {
  Rows ref = {{0.1, 0.9}, {0.2, 0.8}, {0.3, 0.7}, {0.9, 0.1}};
  SetReference(s, ref);
  SetClimate(s, {{1, 2, 3}, {1, 2, kMissing}, {1, 2, 5}, {1, 2, 6}}, {"A", "B", "C"});
  SetFossil(s, {{0.2, 0.79}});
  st.MinAnalogues = st.MaxAnalogues = 3;
  Run();
  EXPECT_NE(s.ReconValue(1, 3), kMissing);
  EXPECT_EQ(s.ReconValue(1, 3), (kMissing + 3 + 5) / 3);
  EXPECT_EQ(s.ReconLow(1, 3), kMissing);
  EXPECT_EQ(s.ReconMin(3), static_cast<float>((kMissing + 3 + 5) / 3));
}

TEST_F(SearchFixture, SiteMissingTheFirstParameterIsNeverChosen) {
  LineSites({0.1, 0.2, 0.3, 0.4});
  s.ClimateData(2, 1) = kMissing;
  SetFossil(s, {{0.21, 0.79}});
  st.MinAnalogues = st.MaxAnalogues = 3;
  Run();
  for (long r = 1; r <= 3; ++r) EXPECT_NE(s.AnalogueSite(1, r), 2);
  EXPECT_EQ(s.AnalogueSite(1, 1), 3);
}

TEST_F(SearchFixture, SquareRootThresholdIsComparedInSquaredUnits) {
  // Squared chord distances of 0.16 and 0.25 against 0.2^0.5 = 0.447: both
  // pass, while the raw 0.2 would let one only.
  Rows ref = {{0.0, 1.0}, {0.0, 0.0}, {1.0, 1.0}};
  SetReference(s, ref);
  SetClimate(s, {{1, 0}, {2, 0}, {3, 0}}, {"A", "B"});
  SetFossil(s, {{0.16, 1.0}});  // sqrt: (0.4, 1)
  st.Enhance = AnalogueEnhance::SquareRoot;
  st.MaxAnalogues = 3;
  DefineThreshold(st, 20);
  Run();
  EXPECT_FLOAT_EQ(s.AnalogueDistance(1, 1), 0.16f);
  EXPECT_FLOAT_EQ(s.AnalogueDistance(1, 2), 0.36f);
  EXPECT_EQ(s.AnalogueCount(1), 2);
  AnalogueSettings raw = st;
  raw.AnalogueThreshold = 0.2;
  RunReconstruction(s, raw, progress);
  EXPECT_EQ(s.AnalogueCount(1), 1);
}

TEST_F(SearchFixture, EightNearestBySquaredChordMatchBruteForce) {
  std::mt19937 rng(7);
  const int sites = 120, taxa = 12, samples = 15;
  std::uniform_real_distribution<double> u(0, 1);
  Rows ref(sites, std::vector<double>(taxa)), fos(samples, std::vector<double>(taxa));
  Rows clim(sites, std::vector<double>(2));
  for (auto& r : ref)
    for (auto& v : r) v = u(rng) < 0.5 ? 0 : u(rng);
  for (auto& r : fos)
    for (auto& v : r) v = u(rng) < 0.5 ? 0 : u(rng);
  for (auto& r : clim)
    for (auto& v : r) v = std::round(u(rng) * 300) / 10;
  SetReference(s, ref);
  SetFossil(s, fos);
  SetClimate(s, clim, {"A", "B"});
  st.Enhance = AnalogueEnhance::SquareRoot;
  st.MinAnalogues = st.MaxAnalogues = 8;
  DefineThreshold(st, 20);
  for (bool weighted : {false, true}) {
    st.InverseWeighting = weighted;
    Run();
    for (int j = 0; j < samples; ++j) {
      std::vector<std::pair<double, int>> d;
      for (int i = 0; i < sites; ++i) {
        double sum = 0;
        for (int k = 0; k < taxa; ++k) {
          double a = std::sqrt(ref[i][k]) - std::sqrt(fos[j][k]);
          sum += a * a;
        }
        d.push_back({sum, i});
      }
      std::sort(d.begin(), d.end());
      for (int p = 0; p < 2; ++p) {
        double num = 0, den = 0;
        for (int r = 0; r < 8; ++r) {
          double w = weighted ? 1.0 / static_cast<float>(d[r].first) : 1.0;
          num += w * clim[d[r].second][p];
          den += w;
        }
        EXPECT_NEAR(s.ReconValue(j + 1, p + 1), num / den, 1e-9) << j << " " << p;
      }
      EXPECT_EQ(s.AnalogueCount(j + 1), 8);
    }
  }
}

TEST_F(SearchFixture, EofBasisWeightsEachAxisByItsContribution) {
  SetReference(s, {{0.5, 0.5, 0}, {0.2, 0.3, 0.5}, {0.1, 0.1, 0.8}});
  SetFossil(s, {{0.3, 0.3, 0.4}});
  SetClimate(s, {{1, 1}, {2, 2}, {3, 3}}, {"A", "B"});
  s.RefScores.ReDim(3, 3);
  s.FossilScores.ReDim(1, 3);
  s.Contribution.ReDim(3);
  s.Contribution(1) = 60.5f;
  s.Contribution(2) = 30.25f;
  s.Contribution(3) = 9.25f;
  const double ref[3][3] = {{1.5, -0.5, 2}, {0.25, 1.75, -1}, {-2, 0.5, 0.125}};
  for (int i = 0; i < 3; ++i)
    for (int e = 0; e < 3; ++e) s.RefScores(i + 1, e + 1) = ref[i][e];
  s.FossilScores(1, 1) = 0.5;
  s.FossilScores(1, 2) = 0.75;
  s.FossilScores(1, 3) = -0.25;
  s.EnvelopeAxes.ReDim(3);
  s.EnvelopeAxes(1) = 3;
  s.EnvelopeAxes(2) = 1;
  s.EnvelopeAxisCount = 2;
  st.Basis = AnalogueBasis::EofValues;
  st.Enhance = AnalogueEnhance::SquareRoot;  // ignored on this basis
  st.MaxAnalogues = 3;
  DefineThreshold(st, 200);
  Run();
  std::vector<std::pair<float, int>> expected;
  for (int i = 0; i < 3; ++i) {
    double d = 0;
    for (int e : {3, 1}) {
      double t = (ref[i][e - 1] - s.FossilScores(1, e)) * s.Contribution(e) / 100;
      d += t * t;
    }
    expected.push_back({static_cast<float>(d), i + 1});
  }
  std::sort(expected.begin(), expected.end());
  for (int r = 0; r < 3; ++r) {
    EXPECT_EQ(s.AnalogueDistance(1, r + 1), expected[r].first);
    EXPECT_EQ(s.AnalogueSite(1, r + 1), expected[r].second);
  }
}

TEST_F(SearchFixture, LogEnhancementComparesTransformedProportions) {
  SetReference(s, {{0.5, 0.005}, {0.05, 0.9}});
  SetFossil(s, {{0.4, 0.2}});
  SetClimate(s, {{1, 1}, {2, 2}}, {"A", "B"});
  st.Enhance = AnalogueEnhance::Log;
  st.MaxAnalogues = 2;
  DefineThreshold(st, 200);
  Run();
  auto d = [](double a1, double a2, double b1, double b2) {
    double x = LogEnhance(a1) - LogEnhance(b1), y = LogEnhance(a2) - LogEnhance(b2);
    return static_cast<float>(x * x + y * y);
  };
  const float d1 = d(0.5, 0.005, 0.4, 0.2), d2 = d(0.05, 0.9, 0.4, 0.2);
  EXPECT_EQ(s.AnalogueDistance(1, 1), std::min(d1, d2));
  EXPECT_EQ(s.AnalogueDistance(1, 2), std::max(d1, d2));
}

// A negative proportion under "Square root" is the invalid-argument failure,
// not a site that silently never qualifies.
TEST_F(SearchFixture, SquareRootOfANegativeProportionFails) {
  SetReference(s, {{0.5, 0.5}, {-0.1, 1.1}});
  SetFossil(s, {{0.4, 0.6}});
  SetClimate(s, {{1, 1}, {2, 2}}, {"A", "B"});
  st.Enhance = AnalogueEnhance::SquareRoot;
  st.MaxAnalogues = 2;
  DefineThreshold(st, 200);
  try {
    Run();
    FAIL() << "no failure";
  } catch (const RuntimeFailure& f) {
    EXPECT_EQ(f.kind(), FailureKind::InvalidCall);
  }
  // The same sites compare under "Log", which cuts the negative value to 0.
  st.Enhance = AnalogueEnhance::Log;
  DefineThreshold(st, 200);
  Run();
  EXPECT_EQ(s.AnalogueSite(1, 1), 1);
}

TEST_F(SearchFixture, CountsAndRangesAfterARun) {
  LineSites({0.1, 0.2, 0.3, 0.4, 0.5});
  SetFossil(s, {{0.12, 0.88}, {0.45, 0.55}});
  st.MaxAnalogues = 3;
  DefineThreshold(st, 5);  // 0.05: squared distances up to 0.05 pass
  Run();
  // Sample 1: distances 0.0008, 0.0128, 0.0648, ... -> two pass.
  EXPECT_EQ(s.AnalogueCount(1), 2);
  EXPECT_EQ(s.ReconValue(1, 0), 2);
  EXPECT_DOUBLE_EQ(s.ReconValue(1, 1), 15);
  EXPECT_EQ(s.ReconLow(1, 1), 10);
  EXPECT_EQ(s.ReconHigh(1, 1), 20);
  EXPECT_EQ(s.AnalogueCount(2), 3);
  EXPECT_EQ(s.LastAnalogueCount, 3);
  EXPECT_EQ(s.ReconMin(1), 15.0f);
  EXPECT_EQ(s.ReconMax(1), static_cast<float>(s.ReconValue(2, 1)));
}

TEST_F(SearchFixture, CountOutsideTheListsIsTheSubscriptFailure) {
  LineSites({0.1, 0.2});
  SetFossil(s, {{0.4, 0.6}});
  st.MaxAnalogues = 0;
  try {
    Run();
    FAIL();
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::SubscriptOutOfRange);
  }
  st.MaxAnalogues = 2;
  st.MinAnalogues = 3;  // the distance list ends at rank 2
  try {
    Run();
    FAIL();
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::SubscriptOutOfRange);
  }
}

TEST_F(SearchFixture, ProgressRunsOverTheSamplesAndEnds) {
  struct Recorder : Progress {
    long max = -1, last = -1;
    bool finished = false;
    void Start(long m) override { max = m; }
    void Step(long v) override { last = std::max(last, v); }
    void Finish() override { finished = true; }
  } rec;
  LineSites({0.1, 0.2, 0.3});
  SetFossil(s, {{0.1, 0.9}, {0.2, 0.8}, {0.5, 0.5}});
  RunReconstruction(s, st, rec);
  EXPECT_EQ(rec.max, 3);
  EXPECT_EQ(rec.last, 3);
  EXPECT_TRUE(rec.finished);
}

TEST_F(SearchFixture, NoComparedColumnsMeansEveryDistanceIsZero) {
  // With no axis in the envelope every dissimilarity is 0, and a distance
  // of 0 is never an analogue.
  LineSites({0.1, 0.2, 0.3});
  SetFossil(s, {{0.1, 0.9}, {0.5, 0.5}});
  s.RefScores.ReDim(3, 2);
  s.FossilScores.ReDim(2, 2);
  s.Contribution.ReDim(2);
  s.EnvelopeAxisCount = 0;
  st.Basis = AnalogueBasis::EofValues;
  st.MaxAnalogues = 2;
  Run();
  EXPECT_EQ(s.AnalogueCount(1), 0);
  EXPECT_EQ(s.AnalogueSite(2, 1), 0);
  EXPECT_EQ(s.AnalogueDistance(2, 1), 9999.0f);
  GenerateErrorModel(s, st, progress);
  EXPECT_EQ(s.ReconRefValue(2, 1), kMissing);
}
