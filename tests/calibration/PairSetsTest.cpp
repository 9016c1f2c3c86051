// Pair sets: the session's leave-one-out pairs, pair files of any content,
// the range and the fitted line with its residual deviation.
#include <gtest/gtest.h>

#include <cmath>

#include "CalibSupport.h"
#include "state/Format.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

std::string PairFile(const std::vector<std::string>& rows) {
  std::string out = "Vest,Vobs\r\n";
  for (const auto& r : rows) out += r + "\r\n";
  return out;
}

}  // namespace

TEST(PairFile, HeaderOnlyGivesNoPairsAndNoLine) {
  TempDir dir;
  CalibState c;
  c.FitSlope[1] = 0.5f;
  c.FitCorrelation[1] = 0.25f;
  ASSERT_TRUE(ImportPairFile(c, 1, dir.Write("p.csv", "Vest,Vobs\r\n")));
  EXPECT_EQ(c.Labels.Label12[1], "0");
  EXPECT_EQ(c.Labels.Label13[1], "");
  EXPECT_EQ(c.Labels.Label17, "");
  EXPECT_EQ(c.PairLabels[1], "Vest");
  EXPECT_EQ(c.PairLabels[3], "Vobs");
  EXPECT_EQ(c.FitSlope[1], 0.5f);  // no fit ran
}

TEST(PairFile, BlankXIsMissingButItsZeroEntersMaxAndMin) {
  TempDir dir;
  CalibState c;
  ASSERT_TRUE(ImportPairFile(c, 0, dir.Write("p.csv", PairFile({"5,6", ",7", "8,9"}))));
  EXPECT_EQ(c.PairData(0, 2, 1), -9999.0f);
  EXPECT_EQ(c.PairData(0, 2, 2), 7.0f);
  EXPECT_EQ(c.Labels.Label12[0], "2");
  EXPECT_EQ(c.PairMin[0], "0");  // the blank's zero, below every value read
  EXPECT_EQ(c.PairMax[0], "9");
}

TEST(PairFile, OneValidPairHasNoFit) {
  TempDir dir;
  CalibState c;
  c.FitSlope[0] = 3;
  ASSERT_TRUE(ImportPairFile(c, 0, dir.Write("p.csv", PairFile({"1,2", ",4"}))));
  EXPECT_EQ(c.Labels.Label12[0], "1");
  EXPECT_EQ(c.Labels.Label13[0], "");
  EXPECT_EQ(c.FitSlope[0], 3.0f);
}

TEST(PairFile, AllXEqualKeepsThePreviousLine) {
  TempDir dir;
  CalibState c;
  ASSERT_TRUE(ImportPairFile(c, 1, dir.Write("a.csv", PairFile({"1,3", "2,5", "3,7"}))));
  EXPECT_FLOAT_EQ(c.FitSlope[1], 2.0f);
  EXPECT_FLOAT_EQ(c.FitIntercept[1], 1.0f);
  ASSERT_TRUE(ImportPairFile(c, 1, dir.Write("b.csv", PairFile({"4,1", "4,2", "4,9"}))));
  EXPECT_EQ(c.Labels.Label12[1], "3");
  EXPECT_FLOAT_EQ(c.FitSlope[1], 2.0f);
  EXPECT_FLOAT_EQ(c.FitIntercept[1], 1.0f);
}

TEST(PairFile, FitLineResidualDeviationAndCaptions) {
  TempDir dir;
  CalibState c;
  // y = 2x + 1 with residuals +1, -1, +1, -1.
  ASSERT_TRUE(ImportPairFile(c, 1, dir.Write("p.csv", PairFile({"0,2", "1,2", "2,6", "3,6"}))));
  // Least squares: slope 1.6 and intercept 1.6; residuals 0.4, -1.2, 1.2, -0.4.
  EXPECT_FLOAT_EQ(c.FitSlope[1], 1.6f);
  EXPECT_FLOAT_EQ(c.FitIntercept[1], 1.6f);
  // Divided by the rows, not by the rows less two: sqrt(3.2 / 4).
  EXPECT_NEAR(c.FitStdDev[1], std::sqrt(3.2 / 4), 1e-6);
  EXPECT_EQ(c.Labels.Label17, "y = 1.6 x + 1.6");
  EXPECT_EQ(c.Labels.Label19, RoundedText(c.FitStdDev[1], 5));
  EXPECT_EQ(c.Labels.Label13[1], RoundedText(c.FitCorrelation[1], 4));
  EXPECT_NEAR(c.FitCorrelation[1], 16 / std::sqrt(5.0 * 64), 1e-6);
}

TEST(PairFile, DeviationIsRoundedBySize) {
  EXPECT_EQ(DeviationText(1.234567), "1.23457");
  EXPECT_EQ(DeviationText(12.345678), "12.3457");
  EXPECT_EQ(DeviationText(123.45678), "123.457");
  EXPECT_EQ(DeviationText(1234.5678), "1234.57");
  EXPECT_EQ(DeviationText(12345.678), "12345.7");
}

TEST(PairFile, BadInputEndsQuietlyKeepingTheRowsRead) {
  TempDir dir;
  struct Case {
    std::string name, content;
    bool completes;
  };
  std::string longFile = "x,y\n";
  for (int i = 1; i <= 10001; ++i) longFile += std::to_string(i) + "," + std::to_string(i) + "\n";
  std::string binary;
  for (int i = 0; i < 4096; ++i) binary += static_cast<char>((i * 131 + 7) & 0xFF);
  const std::vector<Case> cases = {
      {"garbage", "foo,bar\nabc,def\n12abc,x9\n", true},
      {"blanks", "\n\n ,  \n,\n", true},
      {"one column", "x\n1\n2\n3\n4\n", false},
      {"long", longFile, false},
      {"binary", binary, false},
      {"huge number", "x,y\n1e400,1\n", false},
  };
  for (const Case& k : cases) {
    CalibState c;
    c.Labels.Label12[0] = "before";
    const bool completed = ImportPairFile(c, 0, dir.Write("p.csv", k.content));
    if (k.name != "binary") {
      EXPECT_EQ(completed, k.completes) << k.name;
    }
    // Whatever it reads, it ends; an unfinished import leaves the labels.
    if (!completed) {
      EXPECT_EQ(c.Labels.Label12[0], "before") << k.name;
    }
  }
  // The long file keeps its first 10000 rows.
  CalibState c;
  EXPECT_FALSE(ImportPairFile(c, 0, dir.Write("long.csv", longFile)));
  EXPECT_EQ(c.PairData(0, 10000, 1), 10000.0f);
  EXPECT_EQ(c.PairCount, 10000);
  EXPECT_FALSE(ImportPairFile(c, 0, dir.Path("missing.csv")));
}

TEST(Range, EqualEndsShowTheMessageAndKeepTheOldRange) {
  CalibState c;
  SetTestRange(c, "0", "10");
  FakeDialogs dialogs;
  c.Text1 = "5";
  c.Text2 = "5.0";
  SetRange(c, dialogs);
  ASSERT_EQ(dialogs.Messages.size(), 1u);
  EXPECT_EQ(dialogs.Messages[0], "Please set valid range.");
  EXPECT_EQ(dialogs.Titles[0], "Error");
  EXPECT_EQ(c.Text1, "0");
  EXPECT_EQ(c.Text2, "10");
  EXPECT_EQ(c.GridLow, -1.25f);
  EXPECT_DOUBLE_EQ(c.MatrixStepSize, 0.05);
  EXPECT_EQ(c.RangeWidth, 10.0f);
}

TEST(Range, EmptyBoxTakesTheLastValidStrings) {
  CalibState c;
  SetTestRange(c, "2", "4");
  FakeDialogs dialogs;
  c.Text1 = "";
  c.Text2 = "9";
  SetRange(c, dialogs);
  EXPECT_TRUE(dialogs.Messages.empty());
  EXPECT_EQ(c.Text1, "2");
  EXPECT_EQ(c.Text2, "4");
}

TEST(Range, FallingAxisHasANegativeStep) {
  CalibState c;
  SetTestRange(c, "30", "10");
  EXPECT_DOUBLE_EQ(c.MatrixStepSize, -0.1);
  EXPECT_EQ(c.GridLow, 32.5f);
  EXPECT_EQ(c.GridHigh, 7.5f);
  EXPECT_EQ(c.RangeWidth, 20.0f);
  EXPECT_DOUBLE_EQ(GridValue(c, 25), 30.0);
  EXPECT_NEAR(GridValue(c, 225), 10.0, 1e-12);
}

TEST(TransferData, TakesTheLeaveOneOutPairsOfTheCurrentParameter) {
  Session s;
  s.RefSiteCount = 4;
  s.ClimateParamCount = 2;
  s.ClimateParamNames.ReDim(2);
  s.ClimateParamNames(2) = "Temp";
  s.ReconRefValue.ReDim(4, 2);
  s.ClimateData.ReDim(4, 2);
  const double recon[] = {1.5, -9999, 3.25, 4};
  const double climate[] = {1, 2, -9999, 5};
  for (long i = 1; i <= 4; ++i) {
    s.ReconRefValue(i, 2) = recon[i - 1];
    s.ClimateData(i, 2) = climate[i - 1];
  }
  s.CurrentParameter = 2;
  CalibState c;
  TransferData(c, s, "chosen.csv");
  EXPECT_EQ(c.PairLabels[0], "(Reconstructed)Temp");
  EXPECT_EQ(c.PairLabels[2], "(Estimated)Temp");
  EXPECT_EQ(c.Labels.Label12[0], "2");
  EXPECT_EQ(c.Labels.Label21[0], "chosen.csv");
  EXPECT_EQ(c.PairData(0, 1, 1), 1.5f);
  EXPECT_EQ(c.PairData(0, 2, 1), -9999.0f);
  EXPECT_EQ(c.PairData(0, 3, 2), -9999.0f);
  EXPECT_EQ(c.PairMin[0], "0");  // the empty texts' zeros
  EXPECT_EQ(c.PairMax[0], "5");
  // The fit reads rows 1 to Label12 only: here rows 1 and 2, of which one
  // is complete, so the line stays as it was.
  EXPECT_EQ(c.FitSlope[0], 0.0f);
  EXPECT_EQ(c.Labels.Label13[0], "0");
  s.ReconRefValue(2, 2) = 2.5;
  CalibState d;
  TransferData(d, s, "");
  EXPECT_EQ(d.Labels.Label12[0], "3");
  // Rows 1..3: (1.5, 1), (2.5, 2) and x = 3.25 alone, whose x still enters
  // Sxx (0.25 + 0.25 + 1.5625) around the mean of the complete rows.
  EXPECT_FLOAT_EQ(d.FitSlope[0], static_cast<float>(0.5 / 2.0625));
  EXPECT_FLOAT_EQ(d.FitIntercept[0], static_cast<float>(1.5 - 2 * (0.5 / 2.0625)));
  EXPECT_EQ(d.Labels.Label13[0], "0.4924");  // 0.5 / sqrt(2.0625 * 0.5)
}

TEST(TransferData, TakesTheInterpolationToolsPairsByColumnName) {
  Session s;
  s.RefSiteCount = 0;
  s.ClimateParamCount = 1;
  s.ClimateParamNames.ReDim(1);
  s.ClimateParamNames(1) = "Rain";
  s.ReconRefValue.ReDim(0, 1);
  s.ClimateData.ReDim(0, 1);
  s.CurrentParameter = 1;
  InterpolatedPairs tool;
  tool.InterpColumnCount = 6;
  tool.InterpRefCount = 3;
  tool.ParameterShown = "Rain";
  tool.InterpParamNames = [](long c) {
    return c == 5 ? std::string("Rain") : "P" + std::to_string(c);
  };
  tool.InterpRefEstimate = [](long s, long c) { return 10.0 * c + s; };
  tool.InterpRefClimate = [](long s, long c) { return 100.0 * c + 2 * s; };
  tool.AccuracyCount = 3;
  CalibState c;
  TransferData(c, s, "", &tool);
  EXPECT_EQ(c.Labels.Label12[1], "3");
  for (long r = 1; r <= 3; ++r) {
    EXPECT_EQ(c.PairData(1, r, 1), static_cast<float>(50 + r));
    EXPECT_EQ(c.PairData(1, r, 2), static_cast<float>(500 + 2 * r));
  }
  // Its line follows at once: y = 2x + 400.
  EXPECT_FLOAT_EQ(c.FitSlope[1], 2.0f);
  EXPECT_FLOAT_EQ(c.FitIntercept[1], 400.0f);
  EXPECT_EQ(c.Labels.Label17, "y = 2 x + 400");
}

TEST(GeneratedModel, LabelsShowTheModelAndComeBackAfterwards) {
  CalibState c;
  SetTestRange(c, "0", "10");
  c.Labels.Label12[1] = "57";
  c.Labels.Label13[1] = "0.9";
  c.Labels.Label15[0] = "(Estimated)T";
  c.Labels.Label21[1] = "vv.csv";
  CalibSettings st;
  st.Slider4 = 4;
  NoProgress progress;
  UseGeneratedModel(c, st, progress);
  EXPECT_EQ(c.Labels.Label12[1], "");
  EXPECT_EQ(c.Labels.Label13[1], "");
  EXPECT_EQ(c.Labels.Label14[1], "(Estimated)T");
  EXPECT_EQ(c.Labels.Label15[1], "Error model");
  EXPECT_EQ(c.Labels.Label21[1], "Generated error model");
  EXPECT_FLOAT_EQ(c.FitStdDev[1], 0.4f);
  EXPECT_TRUE(c.PictDrawn[3]);
  ResetModel(c);
  EXPECT_EQ(c.Labels.Label12[1], "57");
  EXPECT_EQ(c.Labels.Label15[1], "");
  EXPECT_EQ(c.Labels.Label17, "");
  EXPECT_EQ(c.Labels.Label21[1], "");
}

TEST(PairFile, RowsStoredCountIncompleteRowsAndStartAgainAtEachFile) {
  TempDir dir;
  CalibState c;
  ASSERT_TRUE(ImportPairFile(c, 1, dir.Write("p.csv", PairFile({"5,6", ",7", "8,9", "10,"}))));
  EXPECT_EQ(c.PairRows[1], 4);  // the scatter reads this far
  EXPECT_EQ(c.Labels.Label12[1], "2");
  ASSERT_TRUE(ImportPairFile(c, 1, dir.Write("q.csv", "Vest,Vobs\r\n")));
  EXPECT_EQ(c.PairRows[1], 0);
  EXPECT_EQ(c.PairRows[0], 0);
}
