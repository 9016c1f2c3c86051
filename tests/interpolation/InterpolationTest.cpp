// The interpolation in both modes: which stations take part, the altitude
// correction, the missing rows, the failures, the handing over to the
// reconstruction, and equality in value with a plain loop over full
// distance arrays on random stations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "interpolation/InterpSupport.h"
#include "reconstruction/ClimateImport.h"
#include "support/LiteralInterpolation.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

constexpr auto kWeighted = InterpMode::Interpolation;
constexpr auto kNearest = InterpMode::MinimumDistance;

StationRow At(const std::string& name, double lon, double lat, double alt, double t, double p,
              std::vector<double> values = {}) {
  return {name, lon, lat, alt, t, p, std::move(values)};
}

// A second target out of every station's reach: a file needs two rows.
StationRow Away() { return At("Z", 100, -80, 0, 0, 0); }

}  // namespace

TEST_F(InterpFixture, ATargetOnAStationIsEstimatedWithoutItInBothModes) {
  Load({"Temp"},
       {At("On", 5, 5, 0, 0, 0, {100}), At("Near", 6, 5, 0, 0, 0, {10}),
        At("Far", 5, 7, 0, 0, 0, {20})},
       {At("S", 5, 5, 0, 0, 0), Away()});
  DoInterpolation(s, kWeighted, "-1", "3", progress);
  // Weights 1/1 and 1/2: (10 + 20 / 2) / 1.5, without the station at 100.
  EXPECT_DOUBLE_EQ(s.Interp.InterpTargetEstimate(1, 6), (10 + 20 * 0.5) / 1.5);
  DoInterpolation(s, kNearest, "-1", "3", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), 10);
}

TEST_F(InterpFixture, OfTwoStationsAtEqualDistanceTheEarlierWins) {
  Load({"Temp"},
       {At("Far", 0, 3, 0, 0, 0, {1}), At("East", 1, 0, 0, 0, 0, {2}),
        At("North", 0, 1, 0, 0, 0, {3}), At("West", -1, 0, 0, 0, 0, {4})},
       {At("S", 0, 0, 0, 0, 0), Away()});
  DoInterpolation(s, kNearest, "-2", "3", progress);
  // East, North and West all at 1: East comes first.
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), 2);
  // The last stage's nearest stations are the stations' own.
  EXPECT_EQ(s.Interp.InterpNearest.Upper(), 4);
  EXPECT_EQ(s.Interp.InterpNearest(1), 3);  // Far: North at 2
  EXPECT_EQ(s.Interp.InterpNearest(3), 2);  // North: East and West at 1.41, East first
  EXPECT_EQ(s.Interp.InterpNearest(4), 3);  // West: North at 1.41 before East at 2
  EXPECT_EQ(s.Interp.InterpRefEstimate(3, 6), 2);
}

TEST_F(InterpFixture, AStationExactlyAtTheRadiusTakesPart) {
  Load({"Temp"}, {At("In", 3, 0, 0, 0, 0, {30}), At("Out", 0, 3.0001, 0, 0, 0, {90})},
       {At("S", 0, 0, 0, 0, 0), Away()});
  DoInterpolation(s, kWeighted, "-2", "3", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), 30);
  DoInterpolation(s, kNearest, "-2", "3", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), 30);
  DoInterpolation(s, kWeighted, "-2", "2.9999", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), -9999);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 1), -9999);
}

TEST_F(InterpFixture, ANegativePrecipitationBecomesZeroOnlyInInterpolationMode) {
  // A steep precipitation rate takes the value below zero at the target's
  // altitude; the temperature column has no such floor.
  Load({"Prec", "Temp"},
       {At("A", 0, 1, 0, 0.5, 10, {50, 5}), At("B", 1, 0, 0, 0.5, 10, {60, 6}),
        At("Lone", 50, 50, 0, 0.5, 10, {70, 7})},
       {At("S", 0, 0, -1000, 0.5, 10), At("Empty", 30, -30, 0, 0, 0)});
  DoInterpolation(s, kWeighted, "-2", "3", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), 0);  // 55 - 100, floored
  EXPECT_DOUBLE_EQ(s.Interp.InterpTargetEstimate(1, 7), 5.5 - 5);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(2, 6), -9999);  // no station in reach
  EXPECT_EQ(s.Interp.InterpTargetEstimate(2, 7), -9999);
  EXPECT_EQ(s.Interp.InterpRefEstimate(3, 6), -9999);  // Lone has no neighbour
  DoInterpolation(s, kNearest, "-2", "3", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), 50 - 100);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(2, 6), -9999);
}

TEST_F(InterpFixture, TheLapseExampleOfHalfAndSixTenthsPerHundredMetres) {
  Load({"Temp"}, {At("High", 1, 0, 1000, 0.5, 0, {10}), At("Other", 60, 60, 0, 0, 0, {0})},
       {At("Low", 0, 0, 0, 0.6, 0), Away()});
  DoInterpolation(s, kWeighted, "-2", "3", progress);
  // Down to sea level with the station's rate; the target at 0 m adds none.
  EXPECT_DOUBLE_EQ(s.Interp.InterpTargetEstimate(1, 6), 10 - 1000 * 0.5 / 100);
  DoInterpolation(s, kNearest, "-2", "3", progress);
  // The target's rate carries the whole difference here.
  EXPECT_DOUBLE_EQ(s.Interp.InterpTargetEstimate(1, 6), 10 + (0 - 1000) * 0.6 / 100);
}

TEST_F(InterpFixture, AColumnOfNeitherKindIsAPlainWeightedMean) {
  Load({"Sun"}, {At("A", 1, 0, 2000, 0.5, 3, {10}), At("B", 0, 2, 0, 0.9, 8, {40})},
       {At("S", 0, 0, 500, 0.7, 4), Away()});
  EXPECT_EQ(s.Interp.InterpRefLapse(1, 6), 0);
  EXPECT_EQ(s.Interp.InterpTargetLapse(1, 6), 0);
  DoInterpolation(s, kWeighted, "-2", "3", progress);
  EXPECT_DOUBLE_EQ(s.Interp.InterpTargetEstimate(1, 6), (10 * 1.0 + 40 * 0.25) / 1.25);
  // Columns 1 to 5 come out 0.
  for (long k = 1; k <= 5; ++k) EXPECT_EQ(s.Interp.InterpTargetEstimate(1, k), 0);
}

TEST_F(InterpFixture, TheExponentPlaysNoPartInMinimumDistanceMode) {
  Load({"Temp"}, {At("A", 1, 0, 0, 0, 0, {10}), At("B", 0, 2, 0, 0, 0, {40})},
       {At("S", 0, 0, 0, 0, 0), Away()});
  DoInterpolation(s, kNearest, "-2", "3", progress);
  const Array2<double> first = s.Interp.InterpTargetEstimate;
  const Array2<double> firstStations = s.Interp.InterpRefEstimate;
  DoInterpolation(s, kNearest, "7", "3", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate, first);
  EXPECT_EQ(s.Interp.InterpRefEstimate, firstStations);
  // It does in the other mode.
  DoInterpolation(s, kWeighted, "-2", "3", progress);
  const double squared = s.Interp.InterpTargetEstimate(1, 6);
  DoInterpolation(s, kWeighted, "-1", "3", progress);
  EXPECT_NE(s.Interp.InterpTargetEstimate(1, 6), squared);
}

TEST_F(InterpFixture, TextsWithoutNumbersReadAsZero) {
  Load({"Temp"}, {At("A", 1, 0, 0, 0, 0, {10}), At("B", 0, 2, 0, 0, 0, {40})},
       {At("S", 0, 0, 0, 0, 0), Away()});
  // No exponent: every station in reach weighs 1.
  DoInterpolation(s, kWeighted, "none", "3", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), 25);
  // No radius: nothing is in reach.
  DoInterpolation(s, kWeighted, "-2", "far", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), -9999);
  DoInterpolation(s, kNearest, "-2", "far", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), -9999);
  EXPECT_EQ(s.Interp.InterpRefEstimate(2, 6), -9999);
  // A positive exponent weighs the far station more.
  DoInterpolation(s, kWeighted, "1", "3", progress);
  EXPECT_DOUBLE_EQ(s.Interp.InterpTargetEstimate(1, 6), (10 * 1 + 40 * 2) / 3.0);
}

TEST_F(InterpFixture, AHugeRadiusWithoutAStationAwayFromTheRowIsTheSubscriptFailure) {
  // Every station and every target on one spot.
  Load({"Temp"}, {At("A", 0, 0, 0, 0, 0, {10}), At("A2", 0, 0, 0, 0, 0, {20})},
       {At("S", 0, 0, 0, 0, 0), At("S2", 0, 0, 0, 0, 0)});
  try {
    DoInterpolation(s, kNearest, "-2", "9999", progress);
    FAIL() << "no failure";
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::SubscriptOutOfRange);
  }
  EXPECT_FALSE(s.ClimateLoaded);
  // Below 9999 the row is simply missing.
  DoInterpolation(s, kNearest, "-2", "9998", progress);
  EXPECT_EQ(s.Interp.InterpTargetEstimate(1, 6), -9999);
  EXPECT_EQ(s.Interp.InterpNearest(1), -9999);
}

TEST_F(InterpFixture, AnExponentBeyondSixteenBitsIsTheOverflowFailure) {
  Load({"Temp"}, {At("A", 1, 0, 0, 0, 0, {10}), At("B", 0, 2, 0, 0, 0, {40})},
       {At("S", 0, 0, 0, 0, 0), Away()});
  try {
    DoInterpolation(s, kWeighted, "40000", "3", progress);
    FAIL() << "no failure";
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::Overflow);
  }
  // Rounded half to even into the 16-bit exponent: -2.5 weighs as -2.
  Load({"Temp"}, {At("A", 1, 0, 0, 0, 0, {10}), At("B", 0, 2, 0, 0, 0, {40})},
       {At("S", 0, 0, 0, 0, 0), Away()});
  DoInterpolation(s, kWeighted, "-2.5", "3", progress);
  EXPECT_DOUBLE_EQ(s.Interp.InterpTargetEstimate(1, 6), (10 * 1.0 + 40 * 0.25) / 1.25);
}

TEST_F(InterpFixture, TheTargetEstimatesBecomeTheClimateOfTheSites) {
  Load({"Temp", "Prec"}, {At("A", 1, 0, 0, 0.5, 2, {10, 500}), At("B", 0, 2, 0, 0.5, 2, {40, 900})},
       {At("S1", 0, 0, 0, 0, 0), At("S2", 80, 80, 0, 0, 0)});
  s.ClimateParamNames.ReDim(1);
  s.ClimateParamNames(0) = "Corner";
  DoInterpolation(s, kWeighted, "-2", "3", progress);
  EXPECT_TRUE(s.ClimateLoaded);
  EXPECT_EQ(s.ClimateParamCount, 2);
  EXPECT_EQ(s.ClimateParamNames.Upper(), 2);
  EXPECT_EQ(s.ClimateParamNames(0), "Corner");  // kept
  EXPECT_EQ(s.ClimateParamNames(1), "Temp");
  EXPECT_EQ(s.ClimateParamNames(2), "Prec");
  EXPECT_EQ(s.ClimateSiteNames.Upper(), 2);
  ASSERT_EQ(s.ClimateData.Upper0(), 2);
  ASSERT_EQ(s.ClimateData.Upper1(), 2);
  EXPECT_EQ(s.ClimateData(1, 1), s.Interp.InterpTargetEstimate(1, 6));
  EXPECT_EQ(s.ClimateData(1, 2), s.Interp.InterpTargetEstimate(1, 7));
  EXPECT_EQ(s.ClimateData(2, 1), -9999);
  EXPECT_EQ(s.ClimateData(0, 1), 0);
}

TEST_F(InterpFixture, TheClimateFileReadsBackAsTheSameClimate) {
  Load({"Temp", "Prec"},
       {At("A", 1, 0, 130, 0.55, 2.1, {10.3, 500}), At("B", 0, 2, 20, 0.61, 2.7, {4.7, 903.3}),
        At("C", 2, 2, 750, 0.48, 3.3, {-1.9, 1200.1})},
       {At("S1", 0.3, 0.7, 333, 0.6, 2), At("S2", 80, 80, 0, 0, 0), At("S3", 1.1, 1.3, 5, 0.6, 2)});
  DoInterpolation(s, kWeighted, "-2", "3", progress);
  ASSERT_TRUE(SaveInterpolatedClimate(s, dir.Path("climate.csv"), progress));
  const std::vector<std::string> lines = Lines(ReadFile(dir.Path("climate.csv")));
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0], "\"Site\",\"Temp\",\"Prec\"");
  EXPECT_EQ(lines[2], "\"S2\",-9999,-9999");

  Session back;
  back.RefSiteCount = s.RefSiteCount;
  back.RefSiteNames = s.RefSiteNames;
  back.RefTaxaCount = 4;
  auto r = Inport_climate_data(back, dir.Path("climate.csv"), dialogs);
  ASSERT_TRUE(r.Ok);
  EXPECT_TRUE(dialogs.Questions.empty());
  EXPECT_EQ(back.ClimateParamCount, s.ClimateParamCount);
  EXPECT_EQ(back.ClimateParamNames(1), "Temp");
  EXPECT_EQ(back.ClimateParamNames(2), "Prec");
  ASSERT_EQ(back.ClimateData.Upper0(), 3);
  for (long i = 1; i <= 3; ++i)
    for (long k = 1; k <= 2; ++k)
      // Written in 15 significant digits: equal as that text reads back.
      EXPECT_EQ(back.ClimateData(i, k), LenientParse(FormatGeneral(s.ClimateData(i, k))))
          << i << "," << k;
  EXPECT_NE(back.ClimateData(1, 1), -9999);
}

namespace {

// Random stations over a region, with names that select both rates, and
// as many targets as reference sites.
void RandomTables(InterpFixture& f, unsigned seed, int stations, int targets) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> lon(-10, 30), lat(35, 60), alt(0, 2500), rate(0.3, 0.8),
      prate(0, 15), value(-20, 1500);
  auto grid = [&](double v) { return std::round(v * 100) / 100; };  // two decimals, some equal
  std::vector<StationRow> st, tg;
  for (int j = 1; j <= stations; ++j) {
    StationRow r{"R" + std::to_string(j),
                 grid(lon(rng)),
                 grid(lat(rng)),
                 std::round(alt(rng)),
                 grid(rate(rng)),
                 grid(prate(rng)),
                 {}};
    for (int k = 0; k < 3; ++k) r.Values.push_back(grid(value(rng)));
    st.push_back(r);
  }
  // A few stations on the same spot, and targets on stations.
  st[5].Lon = st[4].Lon;
  st[5].Lat = st[4].Lat;
  for (int i = 1; i <= targets; ++i) {
    StationRow r{"T" + std::to_string(i),
                 grid(lon(rng)),
                 grid(lat(rng)),
                 std::round(alt(rng)),
                 grid(rate(rng)),
                 grid(prate(rng)),
                 {}};
    if (i % 17 == 0) {
      r.Lon = st[static_cast<std::size_t>(i) % st.size()].Lon;
      r.Lat = st[static_cast<std::size_t>(i) % st.size()].Lat;
    }
    tg.push_back(r);
  }
  f.Load({"MTCO", "Prec", "Sun"}, st, tg);
}

void ExpectSameValues(const Array2<double>& a, const Array2<double>& b) {
  ASSERT_EQ(a.Upper0(), b.Upper0());
  ASSERT_EQ(a.Upper1(), b.Upper1());
  long differing = 0;
  for (long i = 0; i <= a.Upper0(); ++i)
    for (long k = 0; k <= a.Upper1(); ++k)
      if (!(a(i, k) == b(i, k))) ++differing;
  EXPECT_EQ(differing, 0);
}

}  // namespace

TEST_F(InterpFixture, BothModesEqualThePlainLoopInValue) {
  RandomTables(*this, 11, 700, 900);
  struct Case {
    InterpMode mode;
    const char* p;
    const char* r;
  };
  for (const Case& c :
       {Case{kWeighted, "-2", "3"}, Case{kWeighted, "-1", "1.5"}, Case{kWeighted, "2", "0.7"},
        Case{kWeighted, "-2", "100"}, Case{kNearest, "-2", "3"}, Case{kNearest, "-2", "0.4"}}) {
    DoInterpolation(s, c.mode, c.p, c.r, progress);
    const LiteralInterpolation plain =
        RunInterpolationLiteral(s.Interp, c.mode, StrictParse(c.p), StrictParse(c.r));
    ExpectSameValues(s.Interp.InterpTargetEstimate, plain.Target);
    ExpectSameValues(s.Interp.InterpRefEstimate, plain.Station);
    if (c.mode == kNearest) {
      EXPECT_EQ(s.Interp.InterpNearest, plain.Nearest);
    }
  }
  // Some rows had no station in reach, and some had several.
  DoInterpolation(s, kWeighted, "-2", "0.7", progress);
  long missing = 0;
  for (long i = 1; i <= s.Interp.InterpTargetCount; ++i)
    missing += s.Interp.InterpTargetEstimate(i, 6) == -9999;
  EXPECT_GT(missing, 0);
  EXPECT_LT(missing, s.Interp.InterpTargetCount);
}

namespace {

class CountingProgress : public Progress {
 public:
  long Maximum = -1, Last = -1, Steps = 0, Finished = 0;
  bool Rising = true;
  void Start(long maximum) override { Maximum = maximum; }
  void Step(long value) override {
    if (value < Last) Rising = false;
    Last = value;
    ++Steps;
  }
  void Finish() override { ++Finished; }
};

}  // namespace

TEST_F(InterpFixture, ProgressRunsOverTargetsThenStations) {
  RandomTables(*this, 5, 300, 200);
  CountingProgress p;
  DoInterpolation(s, kWeighted, "-2", "3", p);
  EXPECT_EQ(p.Maximum, 500);
  EXPECT_EQ(p.Last, 500);
  EXPECT_TRUE(p.Rising);
  EXPECT_GE(p.Steps, 2);
  EXPECT_EQ(p.Finished, 1);
}

TEST_F(InterpFixture, TiesOnALatticeGoToTheEarliestStationAsInThePlainLoop) {
  // Stations on a 12 x 9 lattice in a shuffled file order; targets between
  // four of them, on them, and outside the lattice, where many stations
  // stand at equal distances.
  std::vector<StationRow> stations;
  std::mt19937 rng(7);
  for (int x = 0; x < 12; ++x)
    for (int y = 0; y < 9; ++y)
      stations.push_back(At("L" + std::to_string(x) + "_" + std::to_string(y), x, y, 10.0 * x, 0.5,
                            2, {x + 0.1 * y, 100.0 + y, -1.0 * x}));
  std::shuffle(stations.begin(), stations.end(), rng);
  std::vector<StationRow> targets;
  for (int i = 0; i < 40; ++i) {
    const double x = (i % 10) * 1.5 - 1.5, y = (i / 10) * 2.5 - 0.5;
    targets.push_back(At("T" + std::to_string(i), x, y, 5.0 * i, 0.6, 1));
  }
  // Far from every station: the nearest lies beyond many empty cells.
  targets.push_back(At("Far1", 200, 3, 0, 0.6, 1));
  targets.push_back(At("Far2", -150, -80, 0, 0.6, 1));
  targets.push_back(At("Far3", 5.5, 60, 0, 0.6, 1));
  Load({"Temp", "Prec", "Sun"}, stations, targets);
  for (InterpMode mode : {kNearest, kWeighted}) {
    for (const char* r : {"1", "1.5", "4", "9999"}) {
      DoInterpolation(s, mode, "-2", r, progress);
      const LiteralInterpolation plain =
          RunInterpolationLiteral(s.Interp, mode, -2, StrictParse(r));
      ExpectSameValues(s.Interp.InterpTargetEstimate, plain.Target);
      ExpectSameValues(s.Interp.InterpRefEstimate, plain.Station);
      if (mode == kNearest) {
        EXPECT_EQ(s.Interp.InterpNearest, plain.Nearest);
      }
    }
  }
}
