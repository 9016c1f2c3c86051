// The calibration step of the batch runner: its defaults are the windows',
// its options reach the sliders, and bad ranges, pair files and options end
// with messages. Its files against independent values: CalibrationExpected.
#include <gtest/gtest.h>

#include <filesystem>

#include "BatchProgram.h"
#include "calibration/CalibrationFiles.h"
#include "calibration/HistMatrix.h"
#include "calibration/MatrixChain.h"
#include "calibration/PairSets.h"
#include "eof/PreTreatment.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ClimateImport.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"
#include "state/Import.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

std::string Ex(const std::string& name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }

std::vector<std::string> Road(const TempDir& work, std::vector<std::string> more) {
  std::vector<std::string> args = {"--reference",    Ex("reference.csv"),   "--fossil",
                                   Ex("fossil.csv"), "--climate",           Ex("climate.csv"),
                                   "--timestamp",    "2026-11-23 14:00:00", "--out",
                                   work.Path("out")};
  args.insert(args.end(), more.begin(), more.end());
  return args;
}

BatchResult Calibrate(const TempDir& work, std::vector<std::string> more) {
  return RunBatchProgram(Road(work, std::move(more)), work.Path(""));
}

}  // namespace

TEST(CalibrationBatch, DefaultsAreTheWindows) {
  TempDir work;
  BatchResult r = Calibrate(work, {"--calibrate", "WinSST"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_TRUE(r.Err.empty()) << r.Err;
  // --calibrate brings the error model with it.
  EXPECT_TRUE(fs::exists(work.Path("out/scatter-WinSST.csv")));
  const auto lines = Lines(ReadFile(work.Path("out/common-output.csv")));
  EXPECT_EQ(lines[7], "\"X: \",\"Alternative: \",\"Model\"");
  EXPECT_EQ(lines[8], "\"Y: \",\"Std. Dev. (% of range): \",5");
  EXPECT_EQ(lines[10], "\"Smoothing level (% of range): \",10");
  EXPECT_EQ(lines[11], "\"Vertical threshold (samples):\",2");
  EXPECT_EQ(lines[12], "\"Horizontal threshold (samples):\",1");
  // The range is the curve's rounded axis (the files themselves are
  // checked against an independent implementation elsewhere).
  EXPECT_EQ(lines[15].substr(0, 3), "\"\",");
  const auto tamsek = Lines(ReadFile(work.Path("out/tamsek.csv")));
  EXPECT_EQ(tamsek[15], "\"Vertical resolution: \",494");
  EXPECT_EQ(tamsek[16], "\"Smoothed levels\",3");
  EXPECT_EQ(tamsek.size(), 19u + 495u);
}

TEST(CalibrationBatch, OptionsMapOntoTheSliders) {
  TempDir work;
  BatchResult r = Calibrate(work, {"--calibrate",
                                   "SumSST",
                                   "--t1",
                                   "20",
                                   "--t2",
                                   "32",
                                   "--model-sd",
                                   "3",
                                   "--smoothing",
                                   "4",
                                   "--vertical-threshold",
                                   "0",
                                   "--horizontal-threshold",
                                   "5",
                                   "--coefficient1",
                                   "500",
                                   "--coefficient2",
                                   "1000",
                                   "--skip",
                                   "--hist-rows",
                                   "60",
                                   "--curve-smoothing",
                                   "1"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  const auto lines = Lines(ReadFile(work.Path("out/common-output.csv")));
  EXPECT_EQ(lines[7], "\"X: \",\"Alternative: \",\"Model\"");
  EXPECT_EQ(lines[8], "\"Y: \",\"Std. Dev. (% of range): \",3");
  EXPECT_EQ(lines[10], "\"Smoothing level (% of range): \",4");
  EXPECT_EQ(lines[11], "\"Vertical threshold (samples):\",0");
  EXPECT_EQ(lines[12], "\"Horizontal threshold (samples):\",5");
  EXPECT_EQ(lines[13], "\"Confidence coefficient1 (%):\",50");
  EXPECT_EQ(lines[14], "\"Confidence coefficient2 (%):\",100");
  EXPECT_EQ(lines[15].substr(0, 8), "\"\",20,20");
  const auto tamsek = Lines(ReadFile(work.Path("out/tamsek.csv")));
  EXPECT_EQ(tamsek[15], "\"Vertical resolution: \",60");
  EXPECT_EQ(tamsek[16], "\"Smoothed levels\",1");
  EXPECT_EQ(tamsek.size(), 19u + 61u);
}

TEST(CalibrationBatch, EqualEndsOfTheRangeStopWithTheMessage) {
  TempDir work;
  BatchResult r = Calibrate(work, {"--calibrate", "SumSST", "--t1", "5", "--t2", "5"});
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("Error: Please set valid range."), std::string::npos) << r.Err;
  EXPECT_FALSE(fs::exists(work.Path("out/common-output.csv")));
}

TEST(CalibrationBatch, AFallingRangeWritesAFallingAxis) {
  TempDir work;
  BatchResult r = Calibrate(work, {"--calibrate", "SumSST", "--t1", "32", "--t2", "20"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  const auto lines = Lines(ReadFile(work.Path("out/common-output.csv")));
  EXPECT_EQ(lines[15].substr(0, 8), "\"\",32,31");
  EXPECT_EQ(lines[15].substr(lines[15].size() - 3), ",20");
}

TEST(CalibrationBatch, AVestVobsFileGivesTheFittedModel) {
  TempDir work;
  std::string pairs = "Vest,Vobs\r\n";
  for (int i = 0; i < 40; ++i)
    pairs += FormatGeneral(20 + i * 0.3) + "," + FormatGeneral(20 + i * 0.3 + (i % 3 - 1) * 0.4) +
             "\r\n";
  const std::string file = work.Write("vv.csv", pairs);
  BatchResult r = Calibrate(work, {"--calibrate", "SumSST", "--vest-vobs", file});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  const auto lines = Lines(ReadFile(work.Path("out/common-output.csv")));
  EXPECT_EQ(lines[6], "\"Original file2: \",\"" + file + "\"");
  EXPECT_EQ(lines[7], "\"X: \",\"Vest\"");
  EXPECT_EQ(lines[8], "\"Y: \",\"Vobs\"");
}

TEST(CalibrationBatch, BadPairFilesStopWithAMessage) {
  TempDir work;
  BatchResult r = Calibrate(work, {"--calibrate", "SumSST", "--vest-vobs", work.Path("none.csv")});
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("Cannot read the pair file"), std::string::npos) << r.Err;
  const std::string one = work.Write("one.csv", "x,y\r\n1,2\r\n,3\r\n");
  r = Calibrate(work, {"--calibrate", "SumSST", "--vest-vobs", one});
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("fewer than two complete pairs"), std::string::npos) << r.Err;
}

TEST(CalibrationBatch, WrongOptionsAreUsageErrors) {
  TempDir work;
  const std::vector<std::vector<std::string>> wrong = {
      {"--calibrate", "SumSST", "--smoothing", "0"},
      {"--calibrate", "SumSST", "--smoothing", "21"},
      {"--calibrate", "SumSST", "--coefficient1", "1001"},
      {"--calibrate", "SumSST", "--vertical-threshold", "-1"},
      {"--calibrate", "SumSST", "--model-sd", "3", "--vest-vobs", "x.csv"},
      {"--calibrate", "SumSST", "--t1", "abc"},
      {"--calibrate", "SumSST", "--hist-rows", "0"},
      {"--t1", "3"},
  };
  for (const auto& args : wrong) {
    BatchResult r = Calibrate(work, args);
    EXPECT_EQ(r.ExitCode, 2) << args[args.size() - 1] << r.Err;
  }
  BatchResult r = RunBatchProgram({"--reference", Ex("reference.csv"), "--fossil", Ex("fossil.csv"),
                                   "--calibrate", "SumSST", "--out", work.Path("o2")},
                                  work.Path(""));
  EXPECT_EQ(r.ExitCode, 2);
  r = Calibrate(work, {"--calibrate", "Rain"});
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("No climate parameter is named Rain."), std::string::npos) << r.Err;
}
