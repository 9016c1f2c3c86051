// Where a window's failure path shows no message (a fossil import that
// fails, a climate file that cannot be read), the batch runner still says
// what failed, in which file and where, and exits 1.
#include <gtest/gtest.h>

#include <filesystem>

#include "BatchProgram.h"
#include "support/Tables.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

std::string Ex(const std::string& name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }

std::string Utf16(const std::string& text) {
  std::string out = "\xFF\xFE";
  for (char c : text) {
    out += c;
    out += '\0';
  }
  return out;
}

std::string Binary() {
  std::string out;
  for (int i = 0; i < 3000; ++i) out += static_cast<char>((i * 7919 + 13) % 251);
  return out;
}

struct Failed {
  int Code;
  std::string Err;
  bool Wrote;
};

Failed Fossil(const std::string& content) {
  TempDir work;
  const std::string file = work.Write("core.csv", content);
  BatchResult r = RunBatchProgram(
      {"--reference", Ex("reference.csv"), "--fossil", file, "--out", work.Path("out")},
      work.Path(""));
  return {r.ExitCode, r.Err, fs::exists(work.Path("out/score-fossil.csv"))};
}

Failed ClimateFile(const std::string& content) {
  TempDir work;
  const std::string file = work.Write("climate.csv", content);
  BatchResult r = RunBatchProgram({"--reference", Ex("reference.csv"), "--fossil", Ex("fossil.csv"),
                                   "--climate", file, "--out", work.Path("out")},
                                  work.Path(""));
  return {r.ExitCode, r.Err, fs::exists(work.Path("out/curve.csv"))};
}

// The file name as the message gives it, after "in ".
bool NamesFile(const std::string& err, const std::string& file) {
  return err.find(" in ") != std::string::npos && err.find("/" + file) != std::string::npos;
}

}  // namespace

TEST(FailureMessages, EmptyFossilTable) {
  Failed f = Fossil("");
  EXPECT_EQ(f.Code, 1);
  EXPECT_NE(f.Err.find("Error: No number cell was found after the taxon names (Input past end "
                       "of file) in "),
            std::string::npos)
      << f.Err;
  EXPECT_TRUE(NamesFile(f.Err, "core.csv")) << f.Err;
  EXPECT_NE(f.Err.find("The file is empty."), std::string::npos) << f.Err;
  EXPECT_FALSE(f.Wrote);
}

TEST(FailureMessages, BinaryFossilTable) {
  Failed f = Fossil(Binary());
  EXPECT_EQ(f.Code, 1);
  EXPECT_EQ(f.Err.rfind("Error: ", 0), 0u) << f.Err;
  EXPECT_TRUE(NamesFile(f.Err, "core.csv")) << f.Err;
  EXPECT_NE(f.Err.find("The file is not text."), std::string::npos) << f.Err;
}

TEST(FailureMessages, Utf16FossilTable) {
  Failed f = Fossil(Utf16(ReadFile(Ex("fossil.csv"))));
  EXPECT_EQ(f.Code, 1);
  EXPECT_TRUE(NamesFile(f.Err, "core.csv")) << f.Err;
  EXPECT_NE(f.Err.find("UTF-16"), std::string::npos) << f.Err;
}

TEST(FailureMessages, FossilTableOfEmptySamples) {
  const std::string header = Lines(ReadFile(Ex("fossil.csv"))).at(0);
  const long taxa = std::count(header.begin(), header.end(), ',');
  // Rows of zeros, not blanks: every sample read, every one empty.
  std::string table = header + "\r\n";
  for (int i = 0; i < 4; ++i) {
    table += std::to_string(10 * i);
    for (long j = 0; j < taxa; ++j) table += ",0";
    table += "\r\n";
  }
  Failed f = Fossil(table);
  EXPECT_EQ(f.Code, 1);
  EXPECT_NE(f.Err.find("Error: Every sample is empty"), std::string::npos) << f.Err;
  EXPECT_TRUE(NamesFile(f.Err, "core.csv")) << f.Err;
}

TEST(FailureMessages, FossilRowThatEndsEarlyGivesRowAndColumn) {
  // The third sample lacks its last two values: the file ends inside it.
  std::string table = MakeTable(4, 3, false, Varied);
  table = table.substr(0, table.rfind(',', table.rfind(',') - 1)) + "\r\n";
  TempDir work;
  const std::string file = work.Write("reference.csv", MakeTable(4, 6, true, Varied));
  const std::string core = work.Write("core.csv", table);
  BatchResult r = RunBatchProgram(
      {"--reference", file, "--fossil", core, "--out", work.Path("out")}, work.Path(""));
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: The file ends inside a row (Input past end of file) in " + core +
                       ", row 4, column 4\n");
}

TEST(FailureMessages, TextInTheFirstRowGivesRowAndColumn) {
  TempDir work;
  const std::string file = work.Write("reference.csv", "Site,A,B,C\r\nS1,1,x,3\r\nS2,4,5,6\r\n");
  BatchResult r = RunBatchProgram({"--reference", file, "--out", work.Path("out")}, work.Path(""));
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("Error: A value is not a number (Type mismatch) in " + file +
                       ", row 2, column 3\n"),
            std::string::npos)
      << r.Err;
}

TEST(FailureMessages, EmptyClimateFile) {
  Failed f = ClimateFile("");
  EXPECT_EQ(f.Code, 1);
  EXPECT_NE(f.Err.find("Error: No number cell was found after the parameter names"),
            std::string::npos)
      << f.Err;
  EXPECT_TRUE(NamesFile(f.Err, "climate.csv")) << f.Err;
  EXPECT_EQ(f.Err.find("Error: Input past end of file\n"), std::string::npos) << f.Err;
  EXPECT_FALSE(f.Wrote);
}

TEST(FailureMessages, BinaryClimateFile) {
  Failed f = ClimateFile(Binary());
  EXPECT_EQ(f.Code, 1);
  EXPECT_TRUE(NamesFile(f.Err, "climate.csv")) << f.Err;
  EXPECT_NE(f.Err.find("The file is not text."), std::string::npos) << f.Err;
}

TEST(FailureMessages, Utf16ClimateFile) {
  Failed f = ClimateFile(Utf16(ReadFile(Ex("climate.csv"))));
  EXPECT_EQ(f.Code, 1);
  EXPECT_TRUE(NamesFile(f.Err, "climate.csv")) << f.Err;
  EXPECT_NE(f.Err.find("UTF-16"), std::string::npos) << f.Err;
  EXPECT_EQ(f.Err.find("Error: Subscript out of range\n"), std::string::npos) << f.Err;
}
