// The calibration result files: the common output read back as plain CSV,
// its head in both forms, and the reconstruction window's Ostrel and
// Tamsek matrices.
#include <gtest/gtest.h>

#include <cmath>

#include "CalibSupport.h"
#include "calibration/CalibrationFiles.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

// A plain CSV reader: fields split at commas, surrounding quotes removed.
std::vector<std::vector<std::string>> ReadCsv(const std::string& path) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& line : Lines(ReadFile(path))) {
    std::vector<std::string> fields;
    std::string field;
    bool quoted = false;
    for (char ch : line) {
      if (ch == '"') {
        quoted = !quoted;
      } else if (ch == ',' && !quoted) {
        fields.push_back(field);
        field.clear();
      } else {
        field += ch;
      }
    }
    fields.push_back(field);
    rows.push_back(fields);
  }
  return rows;
}

CalibState Calibrated(const std::string& t1, const std::string& t2, CalibSettings& st) {
  CalibState c;
  SetTestRange(c, t1, t2);
  const double a = std::stod(t1), b = std::stod(t2);
  auto pairs = NoisyPairs(400, 12);
  for (auto& [x, y] : pairs) {  // onto the range a..b
    x = static_cast<float>(a + (b - a) * x / 10);
    y = static_cast<float>(a + (b - a) * y / 10);
  }
  const long sites = SetPairs(c, pairs);
  c.Labels.Label21[0] = "pairs.csv";
  c.Labels.Label14[0] = "(Reconstructed)T";
  c.Labels.Label15[0] = "(Estimated)T";
  RunGenerated(c, st, sites);
  return c;
}

}  // namespace

TEST(CommonOutput, EveryCellGivesBackClassProbabilityAndMedian) {
  TempDir dir;
  CalibSettings st;
  CalibState c = Calibrated("0", "10", st);
  NoProgress progress;
  ASSERT_TRUE(SaveConfidence(c, st, dir.Path("out.csv"), progress));
  const auto rows = ReadCsv(dir.Path("out.csv"));
  ASSERT_EQ(rows.size(), 217u);
  ASSERT_EQ(rows[15].size(), 202u);
  EXPECT_EQ(rows[15][0], "");
  EXPECT_EQ(rows[15][1], "0");
  EXPECT_EQ(rows[15][201], "10");
  int medians = 0, classes[4] = {0, 0, 0, 0};
  for (long j = 0; j <= 200; ++j) {
    const auto& row = rows[16 + j];
    ASSERT_EQ(row.size(), 202u);
    EXPECT_EQ(std::stod(row[0]), std::stod(rows[15][1 + j]));
    for (long i = 0; i <= 200; ++i) {
      const double v = std::stod(row[1 + i]);
      const double magnitude = std::fabs(v);
      const int cls = static_cast<int>(std::floor(magnitude));
      const double probability = magnitude - cls;
      const float m6 = c.CalibMatrix(6, i + 25, j + 25), m7 = c.CalibMatrix(7, i + 25, j + 25);
      ASSERT_EQ(cls, static_cast<int>(std::fabs(m7))) << i << "," << j;
      ASSERT_NEAR(probability, std::fabs(m6), 1e-5) << i << "," << j;
      ASSERT_EQ(v < 0, m6 < 0) << i << "," << j;
      medians += v < 0;
      ++classes[cls];
    }
  }
  EXPECT_GT(medians, 100);
  for (int k = 0; k < 4; ++k) EXPECT_GT(classes[k], 0) << k;
}

TEST(CommonOutput, HeadOfAGeneratedModel) {
  TempDir dir;
  CalibSettings st;
  st.Slider3 = 7;
  CalibState c = Calibrated("0", "10", st);
  NoProgress progress;
  ASSERT_TRUE(SaveProbability(c, st, dir.Path("p.csv"), progress));
  const auto lines = Lines(ReadFile(dir.Path("p.csv")));
  const std::vector<std::string> head = {
      "\"Ostrel common output format\"",
      "\"Head note length (lines): \",\"15\"",
      "\"Version: \",\"2.5.0\"",
      "\"Original file1: \",\"pairs.csv\"",
      "\"X: \",\"(Reconstructed)T\"",
      "\"Y: \",\"(Estimated)T\"",
      "\"Original file2: \",\"N/A\"",
      "\"X: \",\"Alternative: \",\"Model\"",
      "\"Y: \",\"Std. Dev. (% of range): \",5",
      "\"Resolution (steps): \",200",
      "\"Smoothing level (% of range): \",7",
      "\"Vertical threshold (samples):\",2",
      "\"Horizontal threshold (samples):\",1",
      "\"Confidence coefficient1 (%):\",68.2",
      "\"Confidence coefficient2 (%):\",95.4",
  };
  for (std::size_t k = 0; k < head.size(); ++k) EXPECT_EQ(lines[k], head[k]) << k;
  // CR LF after every record.
  EXPECT_NE(ReadFile(dir.Path("p.csv")).find("\"Version: \",\"2.5.0\"\r\n"), std::string::npos);
}

TEST(CommonOutput, CoefficientsAreTheNumbersOfTheReadoutsNotTheSliders) {
  TempDir dir;
  CalibSettings st;
  CalibState c = Calibrated("0", "10", st);
  // A coefficient typed into its dialog: the slider can only hold 682.
  st.Label4 = {"68.25", "99.9"};
  NoProgress progress;
  ASSERT_TRUE(SaveConfidence(c, st, dir.Path("k.csv"), progress));
  const auto lines = Lines(ReadFile(dir.Path("k.csv")));
  EXPECT_EQ(lines[13], "\"Confidence coefficient1 (%):\",68.25");
  EXPECT_EQ(lines[14], "\"Confidence coefficient2 (%):\",99.9");
}

TEST(CommonOutput, HeadOfAFittedModelNamesTheFile) {
  TempDir dir;
  CalibState c;
  SetTestRange(c, "0", "10");
  c.Labels.Label21[1] = "vest-vobs.csv";
  c.Labels.Label14[1] = "Vest";
  c.Labels.Label15[1] = "Vobs";
  CalibSettings st;
  NoProgress progress;
  ASSERT_TRUE(SaveConfidence(c, st, dir.Path("c.csv"), progress));
  const auto lines = Lines(ReadFile(dir.Path("c.csv")));
  EXPECT_EQ(lines[6], "\"Original file2: \",\"vest-vobs.csv\"");
  EXPECT_EQ(lines[7], "\"X: \",\"Vest\"");
  EXPECT_EQ(lines[8], "\"Y: \",\"Vobs\"");
}

TEST(CommonOutput, ProbabilityAndConfidenceWriteTheSameBytes) {
  TempDir dir;
  CalibSettings st;
  CalibState c = Calibrated("-2", "31", st);
  NoProgress progress;
  ASSERT_TRUE(SaveProbability(c, st, dir.Path("a.csv"), progress));
  ASSERT_TRUE(SaveConfidence(c, st, dir.Path("b.csv"), progress));
  EXPECT_EQ(ReadFile(dir.Path("a.csv")), ReadFile(dir.Path("b.csv")));
  EXPECT_FALSE(SaveConfidence(c, st, std::nullopt, progress));
  EXPECT_FALSE(SaveConfidence(c, st, dir.Path("no/such/folder/x.csv"), progress));
}

TEST(CommonOutput, AxisEndsAtT2ExactlyAndFallsWithAFallingRange) {
  const Array1<float> up = CommonOutputAxis(0.1, 0.7);
  EXPECT_EQ(up(0), 0.1f);
  EXPECT_EQ(up(200), 0.7f);
  EXPECT_EQ(up(100), static_cast<float>(0.1 + 0.6 / 200 * 100));
  const Array1<float> down = CommonOutputAxis(30, 10);
  for (long k = 1; k <= 200; ++k) EXPECT_LT(down(k), down(k - 1));
  EXPECT_EQ(down(200), 10.0f);
  TempDir dir;
  CalibSettings st;
  CalibState c = Calibrated("30", "10", st);
  NoProgress progress;
  ASSERT_TRUE(SaveConfidence(c, st, dir.Path("f.csv"), progress));
  const auto rows = ReadCsv(dir.Path("f.csv"));
  EXPECT_EQ(rows[15][1], "30");
  EXPECT_EQ(rows[15][201], "10");
  EXPECT_GT(std::stod(rows[16][0]), std::stod(rows[216][0]));
}

TEST(CommonOutput, EmptyColumnsWriteZeroAndAMedianOfClassOneReadsMinusOnePointSomething) {
  TempDir dir;
  CalibState c;
  SetTestRange(c, "0", "10");
  CalibSettings st;
  c.CalibMatrix(7, 100, 120) = -1;
  c.CalibMatrix(6, 100, 120) = -0.02f;
  c.CalibMatrix(7, 100, 121) = -3;
  c.CalibMatrix(6, 100, 121) = -0.05f;
  NoProgress progress;
  ASSERT_TRUE(SaveConfidence(c, st, dir.Path("m.csv"), progress));
  const auto rows = ReadCsv(dir.Path("m.csv"));
  EXPECT_EQ(rows[16 + 95][1 + 75], "-1.02");
  EXPECT_EQ(rows[16 + 96][1 + 75], "-3.05");
  for (long j = 0; j <= 200; ++j)
    for (long i = 0; i <= 200; ++i)
      if (i != 75) {
        ASSERT_EQ(rows[16 + j][1 + i], "0") << i << "," << j;
      }
}

namespace {

Session FileSession(bool textLabels) {
  Session s;
  s.RefFileName = "ref.csv";
  s.FossilFileName = "fos.csv";
  s.ClimateFileName = "clim.csv";
  s.ClimateParamCount = 1;
  s.ClimateParamNames.ReDim(1);
  s.ClimateParamNames(1) = "Temp";
  s.CurrentParameter = 1;
  s.FossilSampleCount = 4;
  s.FossilLabelsAreText = textLabels;
  s.FossilLabels.ReDim(4);
  const char* labels[] = {"12.5", "20", "31", "40.25"};
  for (long k = 1; k <= 4; ++k)
    s.FossilLabels(k) = textLabels ? "L" + std::to_string(k) : labels[k - 1];
  return s;
}

}  // namespace

TEST(OstrelFile, HeadBinsRoundedToFourPlacesAndTheProbabilityMatrix) {
  TempDir dir;
  Session s = FileSession(false);
  CalibState c;
  SetTestRange(c, "0", "0.3333333");
  c.CalibMatrix(6, 26, 25) = -0.25f;
  CalibSettings st;
  AnalogueChoices choices;
  choices.Settings.MinAnalogues = 2;
  choices.Settings.MaxAnalogues = 9;
  choices.Settings.InverseWeighting = true;
  choices.Settings.WeightBy = AnalogueWeightBy::Distance;
  choices.Settings.Enhance = AnalogueEnhance::Log;
  choices.ThresholdSlider = 35;
  NoProgress progress;
  ASSERT_TRUE(
      SaveOstrel(s, c, st, choices, 0, {"2026-11-23", "14:05:00"}, dir.Path("o.csv"), progress));
  const auto lines = Lines(ReadFile(dir.Path("o.csv")));
  ASSERT_EQ(lines.size(), 16u + 201u);
  const std::vector<std::string> head = {
      "\"Varnoth 2.0 output file (Ostrel Light)\"",
      "\"Date/Time: \",\"2026-11-23 (14:05:00)\"",
      "\"Reference data file: \",\"ref.csv\"",
      "\"Climate data file: \",\"clim.csv\"",
      "\"Similarity index: \",\"Taxa-based\"",
      "\"No. of analogues: \",\"2-9\"",
      "\"Threshold: \",0.35",
      "\"Inversed weighting: \",\"Distance\"",
      "\"Enhancing minor taxa: \",\"Log\"",
      "\"Resolution (steps): \",200",
      "\"X-smoothing (%): \",10",
      "\"Y-smoothing (%): \",5",
      "\"Confidence coefficient1 (%): \",\"68.2\"",
      "\"Confidence coefficient2 (%): \",\"95.4\"",
      "\"Parameter\",\"Temp\"",
  };
  for (std::size_t k = 0; k < head.size(); ++k) EXPECT_EQ(lines[k], head[k]) << k;
  const auto rows = ReadCsv(dir.Path("o.csv"));
  // Steps of 0.0016666665 rounded to 4 places.
  EXPECT_EQ(rows[15][1], "0");
  EXPECT_EQ(rows[15][2], "0.0017");
  EXPECT_EQ(rows[15][4], "0.005");
  EXPECT_EQ(rows[15][201], "0.3333");
  EXPECT_EQ(rows[16][0], "0");
  EXPECT_EQ(rows[16][2], "-0.25");  // x = 26, y = 25
  EXPECT_EQ(rows[16][1], "0");
}

TEST(TamsekFile, DepthsFromTheLabelsOrSampleNumbers) {
  TempDir dir;
  CalibState c;
  SetTestRange(c, "0", "10");
  CalibSettings st;
  HistState h;
  h.HistColumns = 3;
  h.HistMatrix.ReDim(1, 200, 3);
  h.HistMatrix(1, 7, 2) = -2.125f;
  NoProgress progress;
  Session numeric = FileSession(false);
  ASSERT_TRUE(SaveTamsek(numeric, c, st, {}, h, 3, 0, {"d", "t"}, dir.Path("n.csv"), progress));
  auto lines = Lines(ReadFile(dir.Path("n.csv")));
  ASSERT_EQ(lines.size(), 19u + 4u);
  EXPECT_EQ(lines[0], "\"Varnoth 2.0 output file\"");
  EXPECT_EQ(lines[3], "\"Fossil data file: \",\"fos.csv\"");
  EXPECT_EQ(lines[10], "\"Horizontal resolution: \",200");
  EXPECT_EQ(lines[15], "\"Vertical resolution: \",3");
  EXPECT_EQ(lines[16], "\"Smoothed levels\",3");
  EXPECT_EQ(lines[17], "\"Parameter\",\"Temp\"");
  auto rows = ReadCsv(dir.Path("n.csv"));
  // From 12.5 to 40.25 in three rows, rounded to 4 places.
  EXPECT_EQ(rows[19][0], "12.5");
  EXPECT_EQ(rows[20][0], "21.75");
  EXPECT_EQ(rows[21][0], "31");
  EXPECT_EQ(rows[22][0], "40.25");
  EXPECT_EQ(rows[21][1 + 7], "-2.125");
  Session text = FileSession(true);
  ASSERT_TRUE(SaveTamsek(text, c, st, {}, h, 1, 0, {"d", "t"}, dir.Path("t.csv"), progress));
  rows = ReadCsv(dir.Path("t.csv"));
  EXPECT_EQ(rows[19][0], "1");
  EXPECT_EQ(rows[20][0], "2");
  EXPECT_EQ(rows[22][0], "4");
  EXPECT_EQ(Lines(ReadFile(dir.Path("t.csv")))[16], "\"Smoothed levels\",1");
}
