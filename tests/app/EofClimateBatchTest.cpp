// varnoth-batch with the EOF-climate correlations: the table against a
// Pearson coefficient worked out here from the written reference scores and
// the climate file.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "BatchProgram.h"
#include "support/Checks.h"

namespace {

using varnoth::test::BatchRun;
using varnoth::test::Example;
using varnoth::test::Lines;
using varnoth::test::Pearson;
using varnoth::test::ReadFile;

std::vector<std::string> Cells(const std::string& line) {
  std::vector<std::string> out;
  std::stringstream in(line);
  std::string cell;
  while (std::getline(in, cell, ',')) {
    if (cell.size() >= 2 && cell.front() == '"') cell = cell.substr(1, cell.size() - 2);
    out.push_back(cell);
  }
  return out;
}

const std::string kTables = "--reference \"" + Example("reference.csv") + "\" --fossil \"" +
                            Example("fossil.csv") + "\" --climate \"" + Example("climate.csv") +
                            "\"";

}  // namespace

TEST(EofClimateBatch, TableIsPearsonsCoefficientOfScoresAndClimate) {
  BatchRun r(kTables + " --eof-climate");
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  const std::vector<std::string> table = Lines(r.File("eof-climate.csv"));
  ASSERT_EQ(table.size(), 23u);  // the header and 22 EOFs
  EXPECT_EQ(table[0], "\"EOF\",\"SumSST\",\"WinSST\",\"Salinity\"");

  // The sites' lines close the reference score file.
  const std::vector<std::string> scores = Lines(r.File("score-reference.csv"));
  const std::vector<std::string> climate = Lines(ReadFile(Example("climate.csv")));
  const std::size_t sites = climate.size() - 1;
  ASSERT_EQ(sites, 61u);
  std::vector<std::vector<double>> eof(23), param(4);
  for (std::size_t i = 0; i < sites; ++i) {
    const std::vector<std::string> s = Cells(scores[scores.size() - sites + i]);
    const std::vector<std::string> c = Cells(climate[i + 1]);
    ASSERT_EQ(s[0], c[0]);
    for (int e = 1; e <= 22; ++e) eof[e].push_back(std::stod(s[e]));
    for (int p = 1; p <= 3; ++p) param[p].push_back(std::stod(c[p]));
  }
  for (int e = 1; e <= 22; ++e) {
    const std::vector<std::string> row = Cells(table[e]);
    ASSERT_EQ(row.size(), 4u);
    EXPECT_EQ(row[0], "EOF-" + std::to_string(e));
    for (int p = 1; p <= 3; ++p)
      EXPECT_NEAR(std::stod(row[p]), Pearson(eof[e], param[p]), 2e-6)
          << "EOF " << e << ", parameter " << p;
  }
}

TEST(EofClimateBatch, TheTableNeedsTheClimateFile) {
  BatchRun r("--reference \"" + Example("reference.csv") + "\" --eof-climate");
  EXPECT_EQ(r.Code(), 2);
  EXPECT_NE(r.Errors().find("--eof-climate needs --climate"), std::string::npos);
}

TEST(EofClimateBatch, AShortClimateFileStopsWithTheReadersMessage) {
  // The climate file without its last site.
  const std::vector<std::string> climate = Lines(ReadFile(Example("climate.csv")));
  std::string text;
  for (std::size_t i = 0; i + 1 < climate.size(); ++i) text += climate[i] + "\r\n";
  varnoth::test::TempDir dir;
  const std::string path = dir.Write("short.csv", text);
  BatchRun r("--reference \"" + Example("reference.csv") + "\" --fossil \"" +
             Example("fossil.csv") + "\" --climate \"" + path + "\" --eof-climate");
  EXPECT_EQ(r.Code(), 1);
  EXPECT_NE(r.Errors().find("Site number inconsistent."), std::string::npos);
  EXPECT_FALSE(r.Has("eof-climate.csv"));
}
