// The interpolation step of the batch runner: its files are byte for byte
// what the engine writes after the same imports and run, the options map
// onto the tool's controls, the reconstruction runs on the interpolated
// climate when no climate file is given, and bad files end with the
// program's own messages.
#include <gtest/gtest.h>

#include <filesystem>

#include "BatchProgram.h"
#include "eof/PreTreatment.h"
#include "interpolation/Accuracy.h"
#include "interpolation/Interpolation.h"
#include "interpolation/StationImport.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/Curves.h"
#include "reconstruction/ReconstructionFiles.h"
#include "state/Import.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

std::string Ex(const std::string& name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }
std::string Data(const std::string& name) { return TestData("interpolation/" + name); }

BatchResult Batch(const TempDir& work, std::vector<std::string> more, bool fossil = false) {
  std::vector<std::string> args = {"--reference", Ex("reference.csv"), "--out", work.Path("out")};
  if (fossil) args.insert(args.end(), {"--fossil", Ex("fossil.csv")});
  args.insert(args.end(), more.begin(), more.end());
  return RunBatchProgram(std::move(args), work.Path(""));
}

// The same imports and run through the engine.
struct EngineInterpolation {
  Session s;
  FakeDialogs dialogs;
  NoProgress progress;
  EngineInterpolation(const InterpolationSettings& st, bool fossil) {
    EXPECT_TRUE(ImportReference(s, Ex("reference.csv"), dialogs, progress).Ok);
    ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
    if (fossil) {
      EXPECT_TRUE(ImportFossil(s, Ex("fossil.csv"), dialogs, progress).Ok);
    }
    EXPECT_TRUE(ImportData(s, kStationFile, Data("stations.csv"), dialogs).Ok);
    EXPECT_TRUE(ImportData(s, kTargetFile, Data("targets.csv"), dialogs).Ok);
    DoInterpolation(s, st, progress);
  }
  void CompareFiles(const TempDir& work) {
    auto same = [&](const std::string& name, auto save) {
      ASSERT_TRUE(save(s, work.Path("engine-" + name), progress)) << name;
      EXPECT_EQ(ReadFile(work.Path("out/" + name)), ReadFile(work.Path("engine-" + name))) << name;
    };
    same("climate.csv", SaveInterpolatedClimate);
    same("stations-loo.csv", SaveTestFile);
    for (Count k = 6; k <= s.Interp.InterpColumnCount; ++k) {
      s.Interp.InterpCurrentParam = k;
      ScatterPairsPL(s);
      same("accuracy-" + s.Interp.InterpParamNames(k) + ".csv", SaveInterpMatrix);
    }
  }
};

}  // namespace

TEST(InterpolationBatch, DefaultsAreTheToolsAndFilesEqualTheEngine) {
  TempDir work;
  BatchResult r =
      Batch(work, {"--stations", Data("stations.csv"), "--targets", Data("targets.csv")});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_TRUE(r.Err.empty());
  EngineInterpolation engine(InterpolationSettings{}, false);
  engine.CompareFiles(work);
  for (const char* name : {"TSummer", "TWinter", "Prec"})
    EXPECT_TRUE(fs::exists(work.Path(std::string("out/accuracy-") + name + ".csv"))) << name;
  // No fossil table: no reconstruction.
  EXPECT_FALSE(fs::exists(work.Path("out/curve-all.csv")));
  EXPECT_EQ(Lines(ReadFile(work.Path("out/climate.csv"))).size(), 62u);
}

TEST(InterpolationBatch, OptionsMapOntoTheControls) {
  TempDir work;
  BatchResult r = Batch(work, {"--stations", Data("stations.csv"), "--targets", Data("targets.csv"),
                               "--interp-mode", "nearest", "--exponent", "-1", "--radius", "4.5"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  InterpolationSettings st;
  st.Mode = InterpMode::MinimumDistance;
  st.Exponent = "-1";
  st.Radius = "4.5";
  EngineInterpolation engine(st, false);
  engine.CompareFiles(work);
  // The defaults give another climate.
  InterpolationSettings defaults;
  DoInterpolation(engine.s, defaults, engine.progress);
  ASSERT_TRUE(SaveInterpolatedClimate(engine.s, work.Path("default-climate.csv"), engine.progress));
  EXPECT_NE(ReadFile(work.Path("default-climate.csv")), ReadFile(work.Path("out/climate.csv")));
}

TEST(InterpolationBatch, TheReconstructionRunsOnTheInterpolatedClimate) {
  TempDir work;
  BatchResult r = Batch(work,
                        {"--stations", Data("stations.csv"), "--targets", Data("targets.csv"),
                         "--error-model", "--parameter", "TWinter"},
                        true);
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EngineInterpolation engine(InterpolationSettings{}, true);
  engine.CompareFiles(work);
  Session& s = engine.s;
  s.SiteInfoLoaded = true;  // "Return to Varnoth"
  AnalogueSettings st;
  RunReconstruction(s, st, engine.progress);
  ASSERT_EQ(SetCurrentParameter(s, "TWinter"), 2);
  auto same = [&](const std::string& name, bool written) {
    ASSERT_TRUE(written) << name;
    EXPECT_EQ(ReadFile(work.Path("out/" + name)), ReadFile(work.Path("engine-" + name))) << name;
  };
  same("curve-all.csv", SaveCurveAll(s, work.Path("engine-curve-all.csv"), engine.progress));
  same("curve.csv", SaveCurve(s, work.Path("engine-curve.csv"), engine.progress));
  // The analogue details carry the sites' positions from the target file.
  const SiteInfo sites{s.Interp.SiteMapNames, s.Interp.SiteLongitude, s.Interp.SiteLatitude,
                       s.Interp.SiteAltitude};
  same("analogue-details.csv",
       SaveDistAna(s, work.Path("engine-analogue-details.csv"), engine.progress, &sites));
  EXPECT_NE(ReadFile(work.Path("out/analogue-details.csv")).find("\"Longitude\""),
            std::string::npos);
  GenerateErrorModel(s, st, engine.progress);
  s.CurrentParameter = 3;
  same("scatter-Prec.csv", SaveScatter(s, work.Path("engine-scatter-Prec.csv"), engine.progress));
}

TEST(InterpolationBatch, AClimateFileKeepsTheReconstructionAndTheInterpolationStillRuns) {
  TempDir withFile, fileOnly;
  BatchResult both = Batch(withFile,
                           {"--climate", Ex("climate.csv"), "--stations", Data("stations.csv"),
                            "--targets", Data("targets.csv")},
                           true);
  ASSERT_EQ(both.ExitCode, 0) << both.Err;
  BatchResult alone = Batch(fileOnly, {"--climate", Ex("climate.csv")}, true);
  ASSERT_EQ(alone.ExitCode, 0) << alone.Err;
  EXPECT_EQ(ReadFile(withFile.Path("out/curve-all.csv")),
            ReadFile(fileOnly.Path("out/curve-all.csv")));
  EXPECT_EQ(ReadFile(withFile.Path("out/analogue-details.csv")),
            ReadFile(fileOnly.Path("out/analogue-details.csv")));
  EXPECT_TRUE(fs::exists(withFile.Path("out/climate.csv")));
  EXPECT_TRUE(fs::exists(withFile.Path("out/accuracy-Prec.csv")));
}

TEST(InterpolationBatch, OptionsWithoutTheirPartnersAreUsageErrors) {
  const std::vector<std::vector<std::string>> cases = {
      {"--targets", Data("targets.csv")},
      {"--stations", Data("stations.csv")},
      {"--radius", "2"},
      {"--stations", Data("stations.csv"), "--targets", Data("targets.csv"), "--interp-mode",
       "kriging"},
  };
  for (const auto& c : cases) {
    TempDir work;
    BatchResult r = Batch(work, c);
    EXPECT_EQ(r.ExitCode, 2) << c[0];
    EXPECT_EQ(r.Err.substr(0, 15), "varnoth-batch: ") << r.Err;
  }
}

TEST(InterpolationBatch, BadFilesShowTheMessagesAndWriteNoClimate) {
  TempDir inputs;
  const std::string stations = ReadFile(Data("stations.csv"));
  const std::string targets = ReadFile(Data("targets.csv"));
  // Five columns only: cut every station row after its precipitation rate.
  std::string five;
  for (const std::string& line : Lines(stations)) {
    std::size_t cut = 0;
    for (int commas = 0; commas < 6 && cut != std::string::npos; ++commas)
      cut = line.find(',', cut + (commas ? 1 : 0));
    five += line.substr(0, cut) + "\r\n";
  }
  const std::string shortTargets = targets.substr(0, targets.rfind("\r\n", targets.size() - 3) + 2);
  std::string renamed = targets;
  renamed.replace(renamed.find("V14-61"), 6, "X14-61");
  struct Case {
    std::vector<std::string> args;
    std::string err;
  };
  const std::vector<Case> cases = {
      {{"--stations", inputs.Write("five.csv", five), "--targets", Data("targets.csv")},
       "Error: File does not contain climate data.\n"
       "Error: No climate column after the five of the positions and lapse rates in " +
           inputs.Path("five.csv") + "\n"},
      {{"--stations", Data("stations.csv"), "--targets", inputs.Write("short.csv", shortTargets)},
       "Error: Number of surface pollen sites inconsistent.\n"
       "Error: 60 target sites where the reference table has 61 in " +
           inputs.Path("short.csv") + "\n"},
      {{"--stations", Data("stations.csv"), "--targets", inputs.Write("renamed.csv", renamed)},
       "Error: Name inconsistent.  [X14-61] = [V14-61]? (answered No; see --accept-names)\n"
       "Error: The site names [X14-61] and [V14-61] were not accepted as the same in " +
           inputs.Path("renamed.csv") + ", row 2, column 1\n"},
      {{"--stations", inputs.Path("none.csv"), "--targets", Data("targets.csv")},
       "Error: Cannot read the station file " + inputs.Path("none.csv") + " (File not found).\n"},
      {{"--stations", inputs.Write("binary.csv", std::string("\x01\xff\x00,7", 5)), "--targets",
        Data("targets.csv")},
       "Error: Subscript out of range in " + inputs.Path("binary.csv") +
           ". The file is not text.\n"},
      {{"--stations", Data("stations.csv"), "--targets",
        inputs.Write("cut.csv", targets.substr(0, 200))},
       "Error: The file ends inside a row (Input past end of file) in " + inputs.Path("cut.csv") +
           ", row 8, column 2\n"},
  };
  for (const Case& c : cases) {
    TempDir work;
    BatchResult r = Batch(work, c.args, true);
    EXPECT_EQ(r.ExitCode, 1) << c.err;
    EXPECT_EQ(r.Err, c.err);
    EXPECT_FALSE(fs::exists(work.Path("out/climate.csv"))) << c.err;
    EXPECT_FALSE(fs::exists(work.Path("out/curve-all.csv"))) << c.err;
  }
  TempDir work;
  BatchResult accepted = Batch(work,
                               {"--stations", Data("stations.csv"), "--targets",
                                inputs.Path("renamed.csv"), "--accept-names"},
                               true);
  EXPECT_EQ(accepted.ExitCode, 0) << accepted.Err;
  EXPECT_TRUE(fs::exists(work.Path("out/climate.csv")));
}
