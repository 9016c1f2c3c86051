// The calibration files of the batch runner on the ik data, compared field
// by field with the files of a second, independent implementation of the
// same calibration (tests/data/calibration/ik, one folder per run). Text
// fields must be equal; single-precision numbers (probabilities, classes,
// bins, axes) agree to a relative 2.5e-7, doubles to 1e-12. The clock and
// the file paths are not compared.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "BatchProgram.h"
#include "support/TestSupport.h"

using namespace varnoth::test;

namespace {

struct Field {
  bool Quoted = false;
  std::string Text;
};

// One quoted record per line: text in double quotes, numbers bare.
std::vector<Field> Record(const std::string& line) {
  std::vector<Field> out;
  std::size_t i = 0;
  while (i <= line.size()) {
    Field f;
    if (i < line.size() && line[i] == '"') {
      const std::size_t end = line.find('"', i + 1);
      f.Quoted = true;
      f.Text = line.substr(i + 1, end - i - 1);
      i = end + 1;
    } else {
      const std::size_t end = std::min(line.find(',', i), line.size());
      f.Text = line.substr(i, end - i);
      i = end;
    }
    out.push_back(f);
    if (i >= line.size()) break;
    ++i;  // the comma
  }
  return out;
}

const std::set<std::string> kUncompared = {
    "Date/Time: ",         "Reference data file: ", "Fossil data file: ",
    "Climate data file: ", "Original file1: ",      "Original file2: "};

// `doubleFirstField`: the first field of the matrix rows is a double (the
// depths of the histogram file); every other number there is a single.
void CompareFiles(const std::string& actualText, const std::string& expectedText,
                  bool doubleFirstField, const std::string& what) {
  const auto actual = Lines(actualText), expected = Lines(expectedText);
  ASSERT_EQ(actual.size(), expected.size()) << what;
  int differences = 0;
  bool matrix = false;  // from the axis record on
  for (std::size_t n = 0; n < expected.size(); ++n) {
    const auto a = Record(actual[n]), e = Record(expected[n]);
    if (!e.empty() && e[0].Quoted && kUncompared.count(e[0].Text)) continue;
    if (!e.empty() && e[0].Quoted && e[0].Text.empty()) matrix = true;
    ASSERT_EQ(a.size(), e.size()) << what << " line " << n + 1 << ": " << actual[n];
    for (std::size_t k = 0; k < e.size(); ++k) {
      const std::string where =
          what + " line " + std::to_string(n + 1) + " field " + std::to_string(k + 1);
      ASSERT_EQ(a[k].Quoted, e[k].Quoted) << where;
      if (e[k].Quoted) {
        EXPECT_EQ(a[k].Text, e[k].Text) << where;
        continue;
      }
      const double x = std::stod(a[k].Text), y = std::stod(e[k].Text);
      const bool single = matrix && !(doubleFirstField && k == 0);
      const double tolerance = single ? 2.5e-7 : 1e-12;
      if (std::fabs(x - y) > tolerance * std::max(std::fabs(x), std::fabs(y))) {
        ADD_FAILURE() << where << ": " << a[k].Text << " against " << e[k].Text;
        if (++differences >= 10) return;
      }
    }
  }
}

std::string Expected(const std::string& run, const std::string& file) {
  return ReadFile(TestData("calibration/ik/" + run + "/" + file));
}

std::vector<std::string> IkRun(std::vector<std::string> more) {
  std::vector<std::string> args = {
      "--reference", Example("reference.csv"), "--fossil",    Example("fossil.csv"),
      "--climate",   Example("climate.csv"),   "--timestamp", "2000-01-01 00:00:00"};
  args.insert(args.end(), more.begin(), more.end());
  return args;
}

}  // namespace

TEST(CalibrationExpected, TheRecordReaderKeepsQuotedAndBareFieldsApart) {
  const auto r = Record("\"X: \",\"Alternative: \",\"\",1.5E-07,-3.25");
  ASSERT_EQ(r.size(), 5u);
  EXPECT_TRUE(r[0].Quoted);
  EXPECT_EQ(r[1].Text, "Alternative: ");
  EXPECT_TRUE(r[2].Quoted);
  EXPECT_EQ(r[2].Text, "");
  EXPECT_FALSE(r[3].Quoted);
  EXPECT_EQ(r[4].Text, "-3.25");
}

TEST(CalibrationExpected, GeneratedModelOfTheSquareRootAnaloguesWithEightAnalogues) {
  BatchRun run(
      IkRun({"--analogue-enhance", "sqrt", "--min", "8", "--max", "8", "--calibrate", "SumSST"}));
  ASSERT_EQ(run.Code(), 0) << run.Errors();
  CompareFiles(run.File("common-output.csv"), Expected("calib-generated", "common-output.csv"),
               false, "common-output");
}

TEST(CalibrationExpected, AWideRangeWithoutThresholdsAndCoefficientsAtFiftyAndHundred) {
  BatchRun run(IkRun({"--calibrate", "WinSST", "--t1", "-5", "--t2", "30", "--smoothing", "5",
                      "--vertical-threshold", "0", "--horizontal-threshold", "0", "--coefficient1",
                      "500", "--coefficient2", "1000"}));
  ASSERT_EQ(run.Code(), 0) << run.Errors();
  CompareFiles(run.File("common-output.csv"), Expected("calib-range", "common-output.csv"), false,
               "common-output");
}

TEST(CalibrationExpected, TheMatrixHandedBackAndAppliedDownTheCore) {
  BatchRun run(IkRun({"--analogue-enhance", "sqrt", "--calibrate", "SumSST"}));
  ASSERT_EQ(run.Code(), 0) << run.Errors();
  CompareFiles(run.File("common-output.csv"), Expected("calib-hist", "common-output.csv"), false,
               "common-output");
  CompareFiles(run.File("ostrel.csv"), Expected("calib-hist", "ostrel.csv"), false, "ostrel");
  CompareFiles(run.File("tamsek.csv"), Expected("calib-hist", "tamsek.csv"), true, "tamsek");
}

TEST(CalibrationExpected, AFittedModelFromAVestVobsFile) {
  BatchRun run(IkRun({"--analogue-enhance", "sqrt", "--calibrate", "SumSST", "--vest-vobs",
                      TestData("calibration/ik/vest-vobs.csv")}));
  ASSERT_EQ(run.Code(), 0) << run.Errors();
  CompareFiles(run.File("common-output.csv"), Expected("calib-fitted", "common-output.csv"), false,
               "common-output");
}
