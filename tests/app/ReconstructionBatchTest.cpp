// The reconstruction step of the batch runner: its files are byte for byte
// what the engine's save operations write after the same road, its options
// map onto the window's controls, and bad climate files end with the
// program's own messages and no curve files.
#include <gtest/gtest.h>

#include <filesystem>

#include "BatchProgram.h"
#include "eof/PreTreatment.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ClimateImport.h"
#include "reconstruction/Curves.h"
#include "reconstruction/ReconstructionFiles.h"
#include "state/Import.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

BatchResult RunProgram(std::vector<std::string> args, const TempDir& work) {
  return RunBatchProgram(std::move(args), work.Path(""));
}

std::string Ex(const std::string& name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }
std::string Climate(const std::string& name) { return TestData("reconstruction/climate/" + name); }

std::vector<std::string> Road(const TempDir& work, std::vector<std::string> more) {
  std::vector<std::string> args = {"--reference", Ex("reference.csv"), "--fossil", Ex("fossil.csv"),
                                   "--out",       work.Path("out")};
  args.insert(args.end(), more.begin(), more.end());
  return args;
}

// The same road through the engine, writing with its save operations.
struct EngineRoad {
  Session s;
  FakeDialogs dialogs;
  NoProgress progress;
  explicit EngineRoad(const PreTreatmentSettings& p = {}) {
    EXPECT_TRUE(ImportReference(s, Ex("reference.csv"), dialogs, progress).Ok);
    ApplyPreTreatment(s, p, progress);
    EXPECT_TRUE(ImportFossil(s, Ex("fossil.csv"), dialogs, progress).Ok);
    EXPECT_TRUE(Inport_climate_data(s, Ex("climate.csv"), dialogs).Ok);
  }
  void Compare(const TempDir& work, const AnalogueSettings& st, const std::string& parameter,
               bool errorModel) {
    RunReconstruction(s, st, progress);
    SetCurrentParameter(s, parameter);
    auto same = [&](const std::string& name,
                    bool (*save)(const Session&, const std::optional<std::string>&, Progress&)) {
      ASSERT_TRUE(save(s, work.Path("engine-" + name), progress));
      EXPECT_EQ(ReadFile(work.Path("out/" + name)), ReadFile(work.Path("engine-" + name))) << name;
    };
    same("curve-all.csv", SaveCurveAll);
    same("curve-all-with-error.csv", SaveCurveAllwithE);
    same("curve.csv", SaveCurve);
    same("curve-with-error.csv", SaveCurveWithE);
    ASSERT_TRUE(SaveDistAna(s, work.Path("engine-details.csv"), progress));
    EXPECT_EQ(ReadFile(work.Path("out/analogue-details.csv")),
              ReadFile(work.Path("engine-details.csv")));
    EXPECT_EQ(fs::exists(work.Path("out/scatter-SumSST.csv")), errorModel);
    if (!errorModel) return;
    GenerateErrorModel(s, st, progress);
    for (Count p = 1; p <= s.ClimateParamCount; ++p) {
      s.CurrentParameter = p;
      const std::string name = "scatter-" + s.ClimateParamNames(p) + ".csv";
      same(name, SaveScatter);
    }
  }
};

}  // namespace

TEST(ReconstructionBatch, DefaultsAreTheWindowsAndFilesEqualTheEngine) {
  TempDir work;
  BatchResult r = RunProgram(Road(work, {"--climate", Ex("climate.csv"), "--error-model"}), work);
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_TRUE(r.Err.empty());
  EngineRoad engine;
  AnalogueSettings st;  // taxa, no enhancement, no weighting, 0-8, 0.2
  engine.Compare(work, st, "SumSST", true);
  // The first parameter is the one of curve.csv.
  EXPECT_EQ(ReadFile(work.Path("out/curve.csv")).substr(0, 18), "\"Depth\",\"SumSST\"\r\n");
}

TEST(ReconstructionBatch, OptionsMapOntoTheSettings) {
  TempDir work;
  BatchResult r = RunProgram(Road(work, {"--climate", Ex("climate.csv"), "--analogue-enhance",
                                         "log", "--weighting", "distance", "--min", "3", "--max",
                                         "5", "--threshold", "0.35", "--parameter", "WinSST"}),
                             work);
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EngineRoad engine;
  AnalogueSettings st;
  st.Enhance = AnalogueEnhance::Log;
  st.InverseWeighting = true;
  st.WeightBy = AnalogueWeightBy::Distance;
  st.MinAnalogues = 3;
  st.MaxAnalogues = 5;
  DefineThreshold(st, 35);
  engine.Compare(work, st, "WinSST", false);
}

TEST(ReconstructionBatch, WeightByAloneSteersTheErrorModelOnly) {
  TempDir work;
  BatchResult r = RunProgram(Road(work, {"--climate", Ex("climate.csv"), "--weight-by", "distance",
                                         "--analogue-enhance", "sqrt", "--error-model"}),
                             work);
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EngineRoad engine;
  AnalogueSettings st;
  st.Enhance = AnalogueEnhance::SquareRoot;
  st.WeightBy = AnalogueWeightBy::Distance;
  DefineThreshold(st, 20);
  engine.Compare(work, st, "SumSST", true);
  // The curve is that of the default weighting; the error model is not.
  AnalogueSettings squared = st;
  squared.WeightBy = AnalogueWeightBy::SquaredDistance;
  RunReconstruction(engine.s, squared, engine.progress);
  ASSERT_TRUE(SaveCurveAll(engine.s, work.Path("squared-curve.csv"), engine.progress));
  EXPECT_EQ(ReadFile(work.Path("squared-curve.csv")), ReadFile(work.Path("out/curve-all.csv")));
  GenerateErrorModel(engine.s, squared, engine.progress);
  engine.s.CurrentParameter = 1;
  ASSERT_TRUE(SaveScatter(engine.s, work.Path("squared.csv"), engine.progress));
  EXPECT_NE(ReadFile(work.Path("squared.csv")), ReadFile(work.Path("out/scatter-SumSST.csv")));
}

TEST(ReconstructionBatch, EofBasisTakesThePreTreatmentsEnhancement) {
  TempDir work;
  BatchResult r = RunProgram(Road(work, {"--enhance", "sqrt", "--climate", Ex("climate.csv"),
                                         "--basis", "eof", "--threshold", "0.05"}),
                             work);
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  PreTreatmentSettings p;
  p.Enhance = true;
  EngineRoad engine(p);
  AnalogueSettings st;
  st.Basis = AnalogueBasis::EofValues;
  st.Enhance = AnalogueEnhance::SquareRoot;  // the threshold becomes 0.05^0.5
  DefineThreshold(st, 5);
  engine.Compare(work, st, "SumSST", false);
  // Without the enhancement the threshold would be 0.05, and the curve other.
  AnalogueSettings plain = st;
  plain.Enhance = AnalogueEnhance::None;
  DefineThreshold(plain, 5);
  RunReconstruction(engine.s, plain, engine.progress);
  ASSERT_TRUE(SaveCurveAll(engine.s, work.Path("plain.csv"), engine.progress));
  EXPECT_NE(ReadFile(work.Path("plain.csv")), ReadFile(work.Path("out/curve-all.csv")));
}

TEST(ReconstructionBatch, MaximumOfZeroIsRaisedToOne) {
  TempDir work;
  BatchResult r = RunProgram(Road(work, {"--climate", Ex("climate.csv"), "--max", "0"}), work);
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EngineRoad engine;
  AnalogueSettings st;
  st.MaxAnalogues = 1;
  engine.Compare(work, st, "SumSST", false);
}

TEST(ReconstructionBatch, BadClimateFilesShowTheMessagesAndWriteNoCurve) {
  struct Case {
    std::string file, err;
    bool acceptNames = false;
  };
  const std::vector<Case> cases = {
      {Climate("short.csv"),
       "Error: Site number inconsistent.\n"
       "Error: 60 sites where the reference table has 61 in " +
           Climate("short.csv") + "\n"},
      {Climate("blank.csv"),
       "Error: Blanc cell detected.\n"
       "Error: An empty cell in " +
           Climate("blank.csv") + ", row 10, column 4\n"},
      {Climate("renamed.csv"),
       "Error: Name inconsistent.  [X14-61] = [V14-61]? (answered No; see --accept-names)\n"
       "Error: The site names [X14-61] and [V14-61] were not accepted as the same in " +
           Climate("renamed.csv") + ", row 2, column 1\n"},
      {Climate("missing.csv"),
       "Error: Cannot read the climate file " + Climate("missing.csv") + " (File not found).\n"},
  };
  for (const Case& c : cases) {
    TempDir work;
    BatchResult r = RunProgram(Road(work, {"--climate", c.file}), work);
    EXPECT_EQ(r.ExitCode, 1) << c.file;
    EXPECT_EQ(r.Err, c.err);
    EXPECT_FALSE(fs::exists(work.Path("out/curve-all.csv"))) << c.file;
  }
  TempDir work;
  BatchResult garbage = RunProgram(Road(work, {"--climate", Climate("garbage.csv")}), work);
  EXPECT_EQ(garbage.ExitCode, 1);
  EXPECT_EQ(garbage.Err.substr(0, 7), "Error: ");
  EXPECT_FALSE(fs::exists(work.Path("out/curve-all.csv")));
}

TEST(ReconstructionBatch, AcceptedNamesRun) {
  TempDir work;
  BatchResult r =
      RunProgram(Road(work, {"--climate", Climate("renamed.csv"), "--accept-names"}), work);
  EXPECT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_TRUE(fs::exists(work.Path("out/curve-all.csv")));
}

TEST(ReconstructionBatch, NoAnalogueAtAllIsReported) {
  TempDir work;
  BatchResult r =
      RunProgram(Road(work, {"--climate", Ex("climate.csv"), "--threshold", "0"}), work);
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: No analogues through the whole sequence. Change threshold.\n");
  EXPECT_FALSE(fs::exists(work.Path("out/curve.csv")));
}

TEST(ReconstructionBatch, UnknownParameterStops) {
  TempDir work;
  BatchResult r =
      RunProgram(Road(work, {"--climate", Ex("climate.csv"), "--parameter", "Rain"}), work);
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: No climate parameter is named Rain.\n");
}

TEST(ReconstructionBatch, WrongOptionValuesAreUsageErrors) {
  const std::vector<std::vector<std::string>> wrong = {
      {"--climate", "c.csv", "--threshold", "0.005"},
      {"--climate", "c.csv", "--threshold", "2.01"},
      {"--climate", "c.csv", "--threshold", "x"},
      {"--climate", "c.csv", "--min", "9", "--max", "8"},
      {"--climate", "c.csv", "--max", "21"},
      {"--climate", "c.csv", "--min", "-1"},
      {"--climate", "c.csv", "--basis", "pollen"},
      {"--climate", "c.csv", "--basis", "eof", "--analogue-enhance", "sqrt"},
      {"--climate", "c.csv", "--enhance", "log", "--analogue-enhance", "log"},
      {"--climate", "c.csv", "--weighting", "squared", "--weight-by", "distance"},
      {"--min", "3"},
  };
  for (const auto& args : wrong) {
    TempDir work;
    BatchResult r = RunProgram(Road(work, args), work);
    EXPECT_EQ(r.ExitCode, 2) << args[args.size() - 1];
    EXPECT_NE(r.Err.find("usage: varnoth-batch"), std::string::npos);
  }
  TempDir work;
  BatchResult r = RunProgram({"--reference", Ex("reference.csv"), "--climate", Ex("climate.csv"),
                              "--out", work.Path("out")},
                             work);
  EXPECT_EQ(r.ExitCode, 2);
}
