// Mutated copies of a station file and a target file: each import either
// loads whole or leaves what was loaded before (the target count aside);
// a loaded pair always goes through the interpolation. Never a crash.
#include <gtest/gtest.h>

#include "interpolation/Accuracy.h"
#include "interpolation/InterpSupport.h"
#include "support/Mutation.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

std::vector<StationRow> SomeRows(int count, int values, const std::string& prefix) {
  std::vector<StationRow> rows;
  for (int i = 1; i <= count; ++i) {
    StationRow r{prefix + std::to_string(i),
                 5 + i * 0.37,
                 45 + (i % 7) * 0.41,
                 100.0 * (i % 9),
                 0.5 + (i % 3) * 0.05,
                 1.0 + i % 4,
                 {}};
    for (int k = 0; k < values; ++k) r.Values.push_back((i * 13 + k * 7) % 40 - 10);
    rows.push_back(r);
  }
  return rows;
}

bool SameStations(const InterpolationState& a, const InterpolationState& b) {
  return a.InterpColumnCount == b.InterpColumnCount && a.InterpRefCount == b.InterpRefCount &&
         a.InterpRefNames == b.InterpRefNames && a.InterpParamNames == b.InterpParamNames &&
         a.InterpRefClimate == b.InterpRefClimate && a.InterpRefLapse == b.InterpRefLapse &&
         a.InterpRefLon == b.InterpRefLon && a.InterpRefAlt == b.InterpRefAlt;
}

bool SameTargets(const InterpolationState& a, const InterpolationState& b) {
  return a.SiteMapNames == b.SiteMapNames && a.SiteLongitude == b.SiteLongitude &&
         a.SiteAltitude == b.SiteAltitude && a.InterpTargetLapse == b.InterpTargetLapse &&
         a.InterpTargetLoaded == b.InterpTargetLoaded;
}

}  // namespace

TEST_F(InterpFixture, MutatedStationAndTargetFilesLoadWholeOrNotAtAll) {
  const std::vector<StationRow> targets = SomeRows(12, 0, "S");
  std::vector<std::string> names;
  for (const auto& t : targets) names.push_back(t.Name);
  Sites(names);
  const std::string stationText = StationCsv({"MTCO", "Prec", "Sun"}, SomeRows(30, 3, "R"));
  const std::string targetText = StationCsv({}, targets, "Site");
  ASSERT_TRUE(Stations(stationText).Ok);
  ASSERT_TRUE(Targets(targetText).Ok);
  const Session loaded = s;

  Xorshift rng{2026};
  int stationsLoaded = 0, stationsRefused = 0, targetsLoaded = 0, targetsRefused = 0;
  for (int round = 0; round < 300; ++round) {
    s = loaded;
    dialogs.QuestionAnswers = std::deque<bool>(20, round % 2 == 0);
    const bool station = round % 3 != 2;
    const std::string file = "m" + std::to_string(round) + ".csv";
    const InterpolationState before = s.Interp;
    InterpImportResult r =
        station ? Stations(Mutate(stationText, rng), file) : Targets(Mutate(targetText, rng), file);
    if (r.Ok) {
      ++(station ? stationsLoaded : targetsLoaded);
      EXPECT_EQ(r.Failure, std::nullopt);
    } else {
      ++(station ? stationsRefused : targetsRefused);
      EXPECT_TRUE(SameStations(s.Interp, before)) << round;
      EXPECT_TRUE(SameTargets(s.Interp, before)) << round;
      if (station) {
        EXPECT_EQ(s.Interp.InterpTargetCount, before.InterpTargetCount) << round;
      }
      continue;
    }
    // What loaded is whole and runs.
    EXPECT_EQ(s.Interp.InterpRefClimate.Upper0(), s.Interp.InterpRefCount);
    EXPECT_EQ(s.Interp.InterpRefClimate.Upper1(), s.Interp.InterpColumnCount);
    for (InterpMode mode : {InterpMode::Interpolation, InterpMode::MinimumDistance}) {
      try {
        DoInterpolation(s, mode, "-2", "3", progress);
        EXPECT_TRUE(s.ClimateLoaded);
        EXPECT_EQ(s.ClimateData.Upper0(), s.RefSiteCount);
        AutoScale(s);
        ScatterPairsPL(s);
      } catch (const RuntimeFailure&) {
        // A station table narrower than the target's columns, or a row
        // with no station away from it, ends in the run-time failure.
      }
    }
  }
  EXPECT_GT(stationsLoaded, 10);
  EXPECT_GT(stationsRefused, 10);
  EXPECT_GT(targetsLoaded, 5);
  EXPECT_GT(targetsRefused, 5);
}
