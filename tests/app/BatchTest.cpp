// The batch runner as a program: one folder per case under tests/data/batch
// with `args` (one argument a line; {examples}, {data} and {out} are filled
// in), `exit` (expected code, 0 when missing), `stderr` (the exact error
// output) or `stderr-begins` (its first line), and `expected/` (the files
// the run must write, byte for byte, and no others).
// VARNOTH_REGENERATE=1 rewrites `expected/` from the current program.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "BatchProgram.h"
#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "state/ScoreFiles.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

std::string Replace(std::string s, const std::string& from, const std::string& to) {
  for (std::size_t at = s.find(from); at != std::string::npos; at = s.find(from, at + to.size()))
    s.replace(at, from.size(), to);
  return s;
}

std::vector<std::string> Cases() {
  std::vector<std::string> names;
  for (auto& e : fs::directory_iterator(TestData("batch")))
    if (e.is_directory()) names.push_back(e.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

class BatchCase : public ::testing::TestWithParam<std::string> {};

}  // namespace

TEST_P(BatchCase, WritesTheExpectedFiles) {
  const std::string caseDir = TestData("batch/" + GetParam());
  TempDir work;
  const std::string out = work.Path("out");
  std::vector<std::string> args;
  std::istringstream lines(ReadFile(caseDir + "/args"));
  for (std::string line; std::getline(lines, line);) {
    line = Replace(line, "{examples}", VARNOTH_EXAMPLES);
    line = Replace(line, "{data}", caseDir);
    args.push_back(Replace(line, "{out}", out));
  }
  BatchResult r = RunBatchProgram(args, work.Path(""));
  int expectedExit = fs::exists(caseDir + "/exit") ? std::stoi(ReadFile(caseDir + "/exit")) : 0;
  EXPECT_EQ(r.ExitCode, expectedExit) << r.Err;
  if (fs::exists(caseDir + "/stderr")) {
    const std::string err = Replace(ReadFile(caseDir + "/stderr"), "{examples}", VARNOTH_EXAMPLES);
    EXPECT_EQ(r.Err, Replace(err, "{data}", caseDir));
  }
  if (fs::exists(caseDir + "/stderr-begins")) {
    std::string first = ReadFile(caseDir + "/stderr-begins");
    EXPECT_EQ(r.Err.substr(0, first.size()), first);
    EXPECT_NE(r.Err.find("usage: varnoth-batch"), std::string::npos);
  }
  if (expectedExit != 0) {
    EXPECT_FALSE(r.Err.empty());
    return;
  }
  EXPECT_TRUE(r.Err.empty()) << r.Err;
  const std::string expected = caseDir + "/expected";
  if (std::getenv("VARNOTH_REGENERATE")) {
    fs::remove_all(expected);
    fs::create_directories(expected);
    for (auto& e : fs::directory_iterator(out)) {
      std::string text = Replace(
          Replace(ReadFile(e.path().string()), VARNOTH_EXAMPLES, "{examples}"), caseDir, "{data}");
      std::ofstream(expected + "/" + e.path().filename().string(), std::ios::binary) << text;
    }
    return;
  }
  std::set<std::string> written, wanted;
  for (auto& e : fs::directory_iterator(out)) written.insert(e.path().filename().string());
  for (auto& e : fs::directory_iterator(expected)) wanted.insert(e.path().filename().string());
  EXPECT_EQ(written, wanted);
  for (const std::string& name : wanted) {
    std::string want =
        Replace(Replace(ReadFile(expected + "/" + name), "{examples}", VARNOTH_EXAMPLES), "{data}",
                caseDir);
    EXPECT_EQ(ReadFile(out + "/" + name), want) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, BatchCase, ::testing::ValuesIn(Cases()), [](const auto& info) {
  std::string n = info.param;
  for (char& c : n)
    if (!isalnum(static_cast<unsigned char>(c))) c = '_';
  return n;
});

// The files are byte for byte what the program's own save operations write
// after the same road.
TEST(Batch, FilesEqualTheEngineWriters) {
  TempDir work;
  const std::string ref = std::string(VARNOTH_EXAMPLES) + "/reference.csv";
  const std::string fos = std::string(VARNOTH_EXAMPLES) + "/fossil.csv";
  BatchResult r = RunBatchProgram({"--reference", ref, "--fossil", fos, "--matrix", "correlation",
                                   "--timestamp", "2026-05-06 07:08:09", "--out", work.Path("out")},
                                  work.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  Session s;
  FakeDialogs dialogs;
  NoProgress progress;
  ASSERT_TRUE(ImportReference(s, ref, dialogs, progress).Ok);
  PreTreatmentSettings p;
  p.Correlation = true;
  ApplyPreTreatment(s, p, progress);
  ASSERT_TRUE(ImportFossil(s, fos, dialogs, progress).Ok);
  FileStamp stamp{"2026-05-06", "07:08:09"};
  SaveLoading(s, work.Path("l.csv"), stamp, progress);
  sSaveScore(s, work.Path("s.csv"), stamp, progress);
  fSaveScore(s, work.Path("f.csv"), stamp, progress);
  EXPECT_EQ(ReadFile(work.Path("out/loading.csv")), ReadFile(work.Path("l.csv")));
  EXPECT_EQ(ReadFile(work.Path("out/score-reference.csv")), ReadFile(work.Path("s.csv")));
  EXPECT_EQ(ReadFile(work.Path("out/score-fossil.csv")), ReadFile(work.Path("f.csv")));
}

TEST(Batch, NoArgumentsRunsTheExampleSet) {
  TempDir work;
  BatchResult r = RunBatchProgram({}, work.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_NE(r.Out.find("varnoth-out"), std::string::npos);
  for (const char* f :
       {"loading.csv", "score-reference.csv", "score-fossil.csv", "extreme-sites.csv", "coniss.csv",
        "eof-all.csv", "curve-all.csv", "scatter-SumSST.csv"})
    EXPECT_TRUE(fs::exists(work.Path(std::string("varnoth-out/") + f))) << f;
}

TEST(Batch, HelpPrintsUsage) {
  TempDir work;
  BatchResult r = RunBatchProgram({"--help"}, work.Path(""));
  EXPECT_EQ(r.ExitCode, 0);
  EXPECT_NE(r.Out.find("--reference FILE"), std::string::npos);
}
