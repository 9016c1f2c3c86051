// h-block cross-validation: the grid finds exactly the pairs within h that a
// distance per pair finds, the search with sites kept apart agrees with the
// plain loops, empty lists give the leave-one-out model value for value,
// and hand-made sites on a line show what the exclusion changes.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/HBlock.h"
#include "reconstruction/Performance.h"
#include "reconstruction/ReconSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

// Every pair measured: the yardstick of the grid.
SiteNeighbours ByEveryPair(const std::vector<double>& lon, const std::vector<double>& lat,
                           double h) {
  SiteNeighbours out;
  const long n = static_cast<long>(lon.size());
  out.Start.assign(n + 1, 0);
  for (long i = 0; i < n; ++i) {
    for (long j = 0; j < n; ++j)
      if (j != i && h > 0 && GreatCircleKm(lon[i], lat[i], lon[j], lat[j]) <= h)
        out.Rows.push_back(static_cast<int>(j));
    out.Start[i + 1] = static_cast<long>(out.Rows.size());
  }
  return out;
}

AnalogueSettings Fixed(Count count) {
  AnalogueSettings st;
  st.MinAnalogues = st.MaxAnalogues = count;
  DefineThreshold(st, 20);
  return st;
}

// Five sites one degree apart on the equator (111.2 km), whose spectra lie
// ever further apart: 0, 0.1, 0.25, 0.45, 0.7 of the first taxon. Climate
// 10, 20, ..., 50.
Session LineSession() {
  Session s;
  Rows ref;
  for (double p : {0.0, 0.1, 0.25, 0.45, 0.7}) ref.push_back({p, 1 - p});
  SetReference(s, ref);
  SetClimate(s, {{10}, {20}, {30}, {40}, {50}}, {"T"});
  return s;
}
const std::vector<double> kLineLon = {0, 1, 2, 3, 4}, kLineLat = {0, 0, 0, 0, 0};

}  // namespace

TEST(HBlock, GreatCircleOnTheSphereOf6371Km) {
  // A quarter of a meridian, and one degree of the equator.
  EXPECT_NEAR(GreatCircleKm(0, 0, 0, 90), 6371 * M_PI / 2, 1e-6);
  EXPECT_NEAR(GreatCircleKm(0, 0, 1, 0), 6371 * M_PI / 180, 1e-9);
  EXPECT_NEAR(GreatCircleKm(179.5, 10, -179.5, 10), GreatCircleKm(0, 10, 1, 10), 1e-9);
}

// A longitude is taken modulo 360 exactly, however large: 1e30 as a single
// rounds it is 1000000015047466219876688855040, which is 120 more than a
// multiple of 360, and both measures put such a site at 120 degrees east.
TEST(HBlock, HugeLongitudesStandForOnePlaceInBothMeasures) {
  const double huge = static_cast<double>(1e30f), place = 120;
  EXPECT_NEAR(GreatCircleKm(huge, 10, place, 10), 0, 1e-9);
  EXPECT_NEAR(GreatCircleKm(-huge, 10, -place, 10), 0, 1e-9);
  EXPECT_NEAR(GreatCircleKm(720 + 1.5, 0, 1.5 - 1080, 0), 0, 1e-9);
  EXPECT_NEAR(GreatCircleKm(huge, 0, 0, 0), 6371 * M_PI * 120 / 180, 1e-6);
  const std::vector<double> lon = {0, huge, place + 0.5, 180 + 1e-13, -180, 1e17, -1e17 - 180},
                            lat = {0, 0, 0, 0, 0, 0, 0};
  for (double h : {1.0, 100.0, 7473.55, 12000.0}) {
    const SiteNeighbours grid = SitesWithin(lon, lat, h), every = ByEveryPair(lon, lat, h);
    EXPECT_EQ(grid.Start, every.Start) << h;
    EXPECT_EQ(grid.Rows, every.Rows) << h;
  }
}

TEST(HBlock, TheGridFindsThePairsThatEveryPairFinds) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> lon(-180, 180), lat(-90, 90), near(-3, 3);
  std::vector<double> x, y;
  for (int i = 0; i < 400; ++i) {
    x.push_back(lon(rng));
    y.push_back(lat(rng));
  }
  // Crowds across the date line, at the poles, and sites on one spot.
  for (int i = 0; i < 60; ++i) {
    x.push_back(180 + near(rng));
    y.push_back(near(rng) * 5);
    x.push_back(lon(rng));
    y.push_back(88 + near(rng) / 1.5);
    x.push_back(lon(rng));
    y.push_back(-90 + std::fabs(near(rng)));
  }
  x.push_back(10);
  y.push_back(45);
  x.push_back(370);
  y.push_back(45);
  for (double h : {0.5, 50.0, 333.0, 2000.0, 9000.0, 19000.0}) {
    const SiteNeighbours grid = SitesWithin(x, y, h), pairs = ByEveryPair(x, y, h);
    EXPECT_FALSE(grid.All);
    EXPECT_EQ(grid.Start, pairs.Start) << h;
    EXPECT_EQ(grid.Rows, pairs.Rows) << h;
  }
  // Half the circumference and more: every pair.
  EXPECT_TRUE(SitesWithin(x, y, 20100).All);
  const SiteNeighbours none = SitesWithin(x, y, 0);
  EXPECT_FALSE(none.All);
  EXPECT_EQ(none.Pairs(), 0);
}

TEST(HBlock, SitesOnALineKeepTheirNeighboursApart) {
  const SiteNeighbours h150 = SitesWithin(kLineLon, kLineLat, 150);
  EXPECT_EQ(h150.Start, (std::vector<long>{0, 1, 3, 5, 7, 8}));
  EXPECT_EQ(h150.Rows, (std::vector<int>{1, 0, 2, 1, 3, 2, 4, 3}));
  const SiteNeighbours h250 = SitesWithin(kLineLon, kLineLat, 250);
  EXPECT_EQ(h250.Rows, (std::vector<int>{1, 2, 0, 2, 3, 0, 1, 3, 4, 1, 2, 4, 2, 3}));
}

TEST(HBlock, OnALineTheNextButOneSiteStandsInForTheNeighbour) {
  Session s = LineSession();
  NoProgress progress;
  const AnalogueSettings st = Fixed(1);
  GenerateErrorModel(s, st, progress);
  // Leave-one-out: each site's analogue is its spectral neighbour on the
  // line, 1 -> 2, 2 -> 1, 3 -> 2, 4 -> 3, 5 -> 4.
  const std::vector<double> loo = {20, 10, 20, 30, 40};
  for (long i = 1; i <= 5; ++i) EXPECT_EQ(s.ReconRefValue(i, 1), loo[i - 1]) << i;
  // Within 150 km of each site stand its neighbours on the line: the
  // analogues become 1 -> 3, 2 -> 4, 3 -> 1, 4 -> 2, 5 -> 3.
  const SiteNeighbours near = SitesWithin(kLineLon, kLineLat, 150);
  for (bool literal : {false, true}) {
    Array2<double> out;
    GenerateErrorModelExcluding(s, st, near.View(), out, progress, literal);
    const std::vector<double> hblock = {30, 40, 10, 20, 30};
    for (long i = 1; i <= 5; ++i) {
      EXPECT_EQ(out(i, 1), hblock[i - 1]) << i << (literal ? " literal" : "");
      EXPECT_EQ(out(i, 0), 1);
    }
  }
  // The session's own error model stays as it was.
  for (long i = 1; i <= 5; ++i) EXPECT_EQ(s.ReconRefValue(i, 1), loo[i - 1]);
}

TEST(HBlock, AnHLargerThanTheRegionLeavesEveryEstimateMissing) {
  Session s = LineSession();
  NoProgress progress;
  for (double h : {1000.0, 30000.0}) {
    const SiteNeighbours near = SitesWithin(kLineLon, kLineLat, h);
    for (Count count : {1, 3}) {
      for (bool literal : {false, true}) {
        Array2<double> out;
        GenerateErrorModelExcluding(s, Fixed(count), near.View(), out, progress, literal);
        for (long i = 1; i <= 5; ++i) {
          EXPECT_EQ(out(i, 1), kMissing) << h << " " << count;
          EXPECT_EQ(out(i, 0), 0);
        }
      }
    }
  }
}

TEST(HBlock, EmptyListsGiveTheLeaveOneOutModel) {
  std::mt19937 rng(3);
  Session s;
  SetReference(s, GridRows(rng, 150, 6, 3));
  Rows clim(150, std::vector<double>(2));
  std::uniform_int_distribution<int> c(0, 40);
  for (auto& r : clim)
    for (auto& v : r) v = c(rng) / 2.0;
  clim[4][0] = kMissing;
  SetClimate(s, clim, {"A", "B"});
  NoProgress progress;
  const SiteNeighbours none =
      SitesWithin(std::vector<double>(150, 0), std::vector<double>(150, 0), 0);
  for (Count mx : {1, 5, 20})
    for (Count mn : {0, 1, 20}) {
      if (mn > mx) continue;
      AnalogueSettings st;
      st.MaxAnalogues = mx;
      st.MinAnalogues = mn;
      st.InverseWeighting = mx == 5;
      DefineThreshold(st, 10);
      GenerateErrorModel(s, st, progress);
      Array2<double> out;
      GenerateErrorModelExcluding(s, st, none.View(), out, progress);
      ASSERT_EQ(out.Rows(), s.ReconRefValue.Rows());
      for (long i = 0; i <= 150; ++i)
        for (long p = 0; p <= 2; ++p) EXPECT_EQ(out(i, p), s.ReconRefValue(i, p)) << i << "," << p;
    }
}

TEST(HBlock, TheFastSearchKeepsSitesApartAsThePlainLoopsDo) {
  std::mt19937 rng(11);
  Session s;
  SetReference(s, GridRows(rng, 300, 5, 3));
  Rows clim(300, std::vector<double>(1));
  for (long i = 0; i < 300; ++i) clim[i][0] = static_cast<double>(i % 17);
  SetClimate(s, clim, {"A"});
  std::uniform_real_distribution<double> lon(-20, 20), lat(30, 60);
  std::vector<double> x, y;
  for (int i = 0; i < 300; ++i) {
    x.push_back(lon(rng));
    y.push_back(lat(rng));
  }
  NoProgress progress;
  for (double h : {100.0, 600.0, 2500.0}) {
    const SiteNeighbours near = SitesWithin(x, y, h);
    for (Count mx : {1, 4, 20}) {
      AnalogueSettings st;
      st.MaxAnalogues = mx;
      st.MinAnalogues = mx == 4 ? 2 : 0;
      DefineThreshold(st, 30);
      Array2<double> fast, plain;
      GenerateErrorModelExcluding(s, st, near.View(), fast, progress, false);
      GenerateErrorModelExcluding(s, st, near.View(), plain, progress, true);
      for (long i = 1; i <= 300; ++i)
        for (long p = 0; p <= 1; ++p) ASSERT_EQ(fast(i, p), plain(i, p)) << h << " " << i;
    }
  }
}

// Three pairs worked out by hand: observations 0, 5, 10 and estimates 1, 5,
// 8, so the residuals are 1, 0, -2. RMSEP = sqrt(5 / 3); mean bias -1/3.
// Deviations of the estimates from their mean 14/3: -11/3, 1/3, 10/3; of
// the observations from 5: -5, 0, 5. Sxy = 35, Sxx = 222/9, Syy = 50, so
// R2 = 35^2 / (222/9 * 50) = 11025 / 11100. The range 0..10 in ten
// intervals of 1: 0 falls in the first (mean residual 1), 5 in the sixth
// (0), 10 in the tenth (-2): the maximum bias is -2.
TEST(Performance, ThreePairsWorkedOutByHand) {
  const PerformanceFigures f = ComputePerformance({1, 5, kMissing, 8, 3}, {0, 5, 7, 10, kMissing});
  EXPECT_EQ(f.Sites, 3);
  EXPECT_NEAR(f.Rmsep, std::sqrt(5.0 / 3), 1e-14);
  EXPECT_NEAR(f.MeanBias, -1.0 / 3, 1e-14);
  EXPECT_NEAR(f.RSquared, 11025.0 / 11100, 1e-14);
  EXPECT_EQ(f.MaxBias, -2);
  EXPECT_EQ(f.ObservedMin, 0);
  EXPECT_EQ(f.ObservedMax, 10);
}

// Observations 0, 0.5, 4, 9.5 and 10 with residuals 3, -1, 1, -1, -2: the
// first interval [0, 1) holds 0 and 0.5 (mean 1), the fifth holds 4 (1),
// the tenth holds 9.5 and the maximum 10 (mean -1.5). The largest in size
// is -1.5; between equal sizes the lower interval is taken.
TEST(Performance, MaximumBiasOverTenIntervals) {
  PerformanceFigures f = ComputePerformance({3, -0.5, 5, 8.5, 8}, {0, 0.5, 4, 9.5, 10});
  EXPECT_EQ(f.MaxBias, -1.5);
  f = ComputePerformance({1, 4, 9}, {0, 5, 10});  // residuals 1, -1, -1
  EXPECT_EQ(f.MaxBias, 1);
  // No spread in the observations: one interval, the mean bias.
  f = ComputePerformance({1, 2, 6}, {3, 3, 3});
  EXPECT_EQ(f.MaxBias, 0);
  EXPECT_EQ(f.RSquared, kMissing);
  // No pair at all.
  f = ComputePerformance({kMissing}, {1});
  EXPECT_EQ(f.Sites, 0);
  EXPECT_EQ(f.Rmsep, kMissing);
  EXPECT_EQ(f.MaxBias, kMissing);
}
