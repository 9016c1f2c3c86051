// The parallel, vectorised search against the plain loops, on data rich in
// ties, copies and missing climate, over every combination of settings.
#include <gtest/gtest.h>

#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ReconSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

Session MakeTieRich(unsigned seed, int sites, int taxa, int samples) {
  std::mt19937 rng(seed);
  Session s;
  Rows ref = GridRows(rng, sites, taxa, 3);
  Rows fos = GridRows(rng, samples, taxa, 3);
  // Copies: a fossil sample equal to a site, two sites equal to each other.
  fos[0] = ref[5];
  ref[9] = ref[3];
  Rows clim(sites, std::vector<double>(3));
  std::uniform_int_distribution<int> c(0, 40);
  for (int i = 0; i < sites; ++i)
    for (int p = 0; p < 3; ++p) clim[i][p] = c(rng) / 2.0 - 5;
  clim[7][0] = kMissing;
  clim[11][0] = kMissing;
  clim[13][2] = kMissing;
  SetReference(s, ref);
  SetFossil(s, fos);
  SetClimate(s, clim, {"A", "B", "C"});
  // EOF scores for the other basis: coarse values too.
  s.RefScores.ReDim(sites, taxa);
  s.FossilScores.ReDim(samples, taxa);
  s.Contribution.ReDim(taxa);
  for (int i = 1; i <= sites; ++i)
    for (int e = 1; e <= taxa; ++e) s.RefScores(i, e) = (c(rng) - 20) / 4.0;
  for (int j = 1; j <= samples; ++j)
    for (int e = 1; e <= taxa; ++e) s.FossilScores(j, e) = (c(rng) - 20) / 4.0;
  for (int e = 1; e <= taxa; ++e) s.Contribution(e) = 40.0f / static_cast<float>(e);
  s.EnvelopeAxes.ReDim(taxa);
  for (int e = 1; e <= taxa; ++e) s.EnvelopeAxes(e) = static_cast<Count>(taxa + 1 - e);
  s.EnvelopeAxisCount = 3;
  return s;
}

struct Combo {
  AnalogueBasis basis;
  AnalogueEnhance enhance;
  bool inverse;
  AnalogueWeightBy by;
  Count min, max;
  long slider;
};

std::vector<Combo> Combos() {
  std::vector<Combo> all;
  for (auto basis : {AnalogueBasis::TaxaProportions, AnalogueBasis::EofValues})
    for (auto enhance : {AnalogueEnhance::None, AnalogueEnhance::SquareRoot, AnalogueEnhance::Log})
      for (int w = 0; w < 4; ++w)
        for (auto [mn, mx] : {std::pair<Count, Count>{0, 8}, {3, 5}, {20, 20}, {1, 1}})
          all.push_back({basis, enhance, w >= 2,
                         w % 2 ? AnalogueWeightBy::Distance : AnalogueWeightBy::SquaredDistance, mn,
                         mx, mx == 20 ? 3L : 15L});
  return all;
}

AnalogueSettings SettingsOf(const Combo& c) {
  AnalogueSettings st;
  st.Basis = c.basis;
  st.Enhance = c.enhance;
  st.InverseWeighting = c.inverse;
  st.WeightBy = c.by;
  st.MinAnalogues = c.min;
  st.MaxAnalogues = c.max;
  DefineThreshold(st, c.slider);
  return st;
}

}  // namespace

TEST(SearchEquivalence, ReconstructionMatchesThePlainLoopsExactly) {
  // Sizes that leave partial panels and blocks, and enough samples for two
  // threads.
  Session fast = MakeTieRich(3, 61, 7, 45);
  Session literal = fast;
  NoProgress progress;
  for (const Combo& c : Combos()) {
    const AnalogueSettings st = SettingsOf(c);
    RunReconstruction(fast, st, progress);
    RunReconstructionLiteral(literal, st, progress);
    SCOPED_TRACE(::testing::Message() << int(c.basis) << int(c.enhance) << c.inverse << int(c.by)
                                      << " " << c.min << "-" << c.max);
    ASSERT_EQ(fast.AnalogueDistance, literal.AnalogueDistance);
    for (long j = 1; j <= fast.FossilSampleCount; ++j)
      for (long r = 1; r <= kMaxRanks; ++r)
        ASSERT_EQ(fast.AnalogueSite(j, r), literal.AnalogueSite(j, r)) << j << " " << r;
    ASSERT_EQ(fast.ReconValue, literal.ReconValue);
    ASSERT_EQ(fast.ReconLow, literal.ReconLow);
    ASSERT_EQ(fast.ReconHigh, literal.ReconHigh);
    ASSERT_EQ(fast.AnalogueCount, literal.AnalogueCount);
    ASSERT_EQ(fast.ReconMin, literal.ReconMin);
    ASSERT_EQ(fast.ReconMax, literal.ReconMax);
    ASSERT_EQ(fast.LastAnalogueCount, literal.LastAnalogueCount);
  }
}

TEST(SearchEquivalence, ErrorModelMatchesThePlainLoopsExactly) {
  Session fast = MakeTieRich(5, 83, 6, 4);
  Session literal = fast;
  NoProgress progress;
  for (const Combo& c : Combos()) {
    const AnalogueSettings st = SettingsOf(c);
    GenerateErrorModel(fast, st, progress);
    GenerateErrorModelLiteral(literal, st, progress);
    SCOPED_TRACE(::testing::Message() << int(c.basis) << int(c.enhance) << c.inverse << int(c.by)
                                      << " " << c.min << "-" << c.max);
    ASSERT_EQ(fast.ReconRefValue, literal.ReconRefValue);
  }
}

TEST(SearchEquivalence, ErrorModelOverManyBlocksMatchesThePlainLoops) {
  // Several blocks of sites shared out between threads, a partial last
  // block, and sites without climate scattered through them.
  Session fast = MakeTieRich(11, 333, 5, 4);
  for (long i = 17; i <= 333; i += 23) fast.ClimateData(i, 1) = kMissing;
  Session literal = fast;
  NoProgress progress;
  for (const Combo& c : Combos()) {
    if (c.enhance == AnalogueEnhance::Log || c.by == AnalogueWeightBy::Distance) continue;
    const AnalogueSettings st = SettingsOf(c);
    GenerateErrorModel(fast, st, progress);
    GenerateErrorModelLiteral(literal, st, progress);
    SCOPED_TRACE(::testing::Message()
                 << int(c.basis) << int(c.enhance) << c.inverse << " " << c.min << "-" << c.max);
    ASSERT_EQ(fast.ReconRefValue, literal.ReconRefValue);
  }
}

TEST(SearchEquivalence, ManyTaxaStopHopelessTilesExactly) {
  // Enough taxa for the search to stop tiles part way. The first taxa carry
  // most of each distance, so that many partial sums come close to the
  // bound before the rest decides; coarse values make distances tie.
  std::mt19937 rng(21);
  std::uniform_int_distribution<int> cell(0, 3);
  auto rows = [&](int n) {
    Rows out(n, std::vector<double>(90));
    for (auto& r : out)
      for (int k = 0; k < 90; ++k) r[k] = cell(rng) / 3.0 * (k < 40 ? 1.0 : 0.125);
    return out;
  };
  Session fast;
  SetReference(fast, rows(400));
  SetFossil(fast, rows(60));
  Rows clim(400, std::vector<double>{0, 0});
  for (int i = 0; i < 400; ++i) clim[i] = {i * 0.5, 100.0 - i};
  SetClimate(fast, clim, {"A", "B"});
  Session literal = fast;
  NoProgress progress;
  for (Count max : {1, 8, 20}) {
    for (auto enhance : {AnalogueEnhance::None, AnalogueEnhance::SquareRoot}) {
      AnalogueSettings st;
      st.MaxAnalogues = st.MinAnalogues = max;
      st.Enhance = enhance;
      RunReconstruction(fast, st, progress);
      RunReconstructionLiteral(literal, st, progress);
      ASSERT_EQ(fast.AnalogueDistance, literal.AnalogueDistance) << max;
      for (long j = 1; j <= fast.FossilSampleCount; ++j)
        for (long r = 1; r <= max; ++r)
          ASSERT_EQ(fast.AnalogueSite(j, r), literal.AnalogueSite(j, r)) << j << " " << r;
      ASSERT_EQ(fast.ReconValue, literal.ReconValue);
      GenerateErrorModel(fast, st, progress);
      GenerateErrorModelLiteral(literal, st, progress);
      ASSERT_EQ(fast.ReconRefValue, literal.ReconRefValue) << max;
    }
  }
}

TEST(SearchEquivalence, HugeValuesTakeThePlainLoopsAndOverflowAsThey) {
  // Proportions this large give distances beyond a single: the rounding to
  // single is the overflow failure, in both ways of running.
  Session s = MakeTieRich(9, 20, 4, 5);
  s.RefProportion(3, 2) = 1e30;
  NoProgress progress;
  AnalogueSettings st;
  for (int literal = 0; literal < 2; ++literal) {
    try {
      if (literal)
        RunReconstructionLiteral(s, st, progress);
      else
        RunReconstruction(s, st, progress);
      FAIL();
    } catch (const RuntimeFailure& e) {
      EXPECT_EQ(e.kind(), FailureKind::Overflow);
    }
  }
}
