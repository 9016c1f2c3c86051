// Mutated copies of the example climate file after the example road: each
// either loads, with a climate table of the reference's sites, or leaves the
// session without climate; a loaded one always goes through the search and
// the error model. Never a crash.
#include <gtest/gtest.h>

#include "eof/PreTreatment.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ClimateImport.h"
#include "state/Import.h"
#include "support/Mutation.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

TEST(ClimateMutation, MutatedClimateFilesLoadWholeOrNotAtAll) {
  TempDir dir;
  Session base;
  FakeDialogs quiet;
  NoProgress progress;
  ASSERT_TRUE(ImportReference(base, Example("reference.csv"), quiet, progress).Ok);
  ApplyPreTreatment(base, PreTreatmentSettings{}, progress);
  ASSERT_TRUE(ImportFossil(base, Example("fossil.csv"), quiet, progress).Ok);
  const std::string climate = ReadFile(Example("climate.csv"));
  Xorshift rng{2026};
  int loaded = 0, refused = 0;
  for (int round = 0; round < 200; ++round) {
    Session s = base;
    FakeDialogs dialogs;
    dialogs.QuestionAnswers = std::deque<bool>(70, round % 2 == 0);
    ClimateImportResult r =
        Inport_climate_data(s, dir.Write("c.csv", Mutate(climate, rng)), dialogs);
    EXPECT_EQ(r.Ok, s.ClimateLoaded);
    if (!r.Ok) {
      ++refused;
      EXPECT_FALSE(s.ClimateData.Allocated());
      continue;
    }
    ++loaded;
    EXPECT_EQ(s.ClimateData.Upper0(), s.RefSiteCount);
    EXPECT_EQ(s.ClimateData.Upper1(), s.ClimateParamCount);
    EXPECT_EQ(s.ClimateSiteNames.Upper(), s.RefSiteCount);
    AnalogueSettings st;
    try {
      RunReconstruction(s, st, progress);
      GenerateErrorModel(s, st, progress);
      EXPECT_EQ(s.ReconValue.Upper1(), s.ClimateParamCount);
    } catch (const RuntimeFailure&) {
      // A table without parameters, or values beyond a double's sums, end
      // in the run-time failure as the window would report it.
    }
  }
  EXPECT_GT(loaded, 10);
  EXPECT_GT(refused, 10);
}
