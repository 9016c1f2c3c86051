#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "support/Tables.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

struct ImportFixture : ::testing::Test {
  TempDir dir;
  FakeDialogs dialogs;
  NoProgress progress;
  Session s;

  ImportResult Ref(const std::string& content) {
    return ImportReference(s, dir.Write("ref.csv", content), dialogs, progress);
  }
  ImportResult Fossil(const std::string& content) {
    return ImportFossil(s, dir.Write("fossil.csv", content), dialogs, progress);
  }
  void Analyse(PreTreatmentSettings p = {}) { ApplyPreTreatment(s, p, progress); }
};

}  // namespace

TEST_F(ImportFixture, ReferenceWithTextLabels) {
  auto r = Ref(MakeTable(4, 5, true, Varied));
  ASSERT_TRUE(r.Ok);
  EXPECT_TRUE(r.IsBase);
  EXPECT_TRUE(s.ReferenceIsBase);
  EXPECT_FALSE(s.FossilIsBase);
  EXPECT_EQ(s.RefTaxaCount, 4);
  EXPECT_EQ(s.TaxaCount, 4);
  EXPECT_EQ(s.EigenOrder, 4);
  EXPECT_EQ(s.RefSiteCount, 5);
  EXPECT_EQ(s.BaseRowCount, 5);
  EXPECT_TRUE(s.RefLabelsAreText);
  EXPECT_EQ(s.RefTaxaNames(0), "Site");
  EXPECT_EQ(s.RefTaxaNames(4), "T4");
  EXPECT_EQ(s.RefSiteNames(5), "S5");
  EXPECT_EQ(s.RefSiteNames.Upper(), 5);
  for (int i = 1; i <= 5; ++i)
    for (int j = 1; j <= 4; ++j) EXPECT_EQ(s.RefData(i, j), Varied(i, j));
  EXPECT_EQ(s.RefFileName, dir.Path("ref.csv"));
  EXPECT_EQ(s.SiteIsExtreme.Upper(), 5);
  EXPECT_EQ(s.RefScores.Upper0(), 5);
  EXPECT_EQ(s.RefScores.Upper1(), 4);
  EXPECT_EQ(s.EnvelopeAxes.Upper(), 4);
  EXPECT_EQ(s.EnvelopeAxes(3), 3);
  EXPECT_FALSE(s.ReferenceImportOpen);
  EXPECT_TRUE(s.FossilImportOpen);
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(ImportFixture, NumberLabelsAreNormalisedExceptOnRowOne) {
  std::string t = "Depth,A,B,C\n5,1,2,3\n010,4,5,6\n020.0,7,8,9\n";
  ASSERT_TRUE(Fossil(t).Ok);
  EXPECT_FALSE(s.FossilLabelsAreText);
  EXPECT_EQ(s.FossilTaxaCount, 3);
  EXPECT_EQ(s.FossilSampleCount, 3);
  EXPECT_EQ(s.FossilLabels(1), "5");
  EXPECT_EQ(s.FossilLabels(2), "10");
  EXPECT_EQ(s.FossilLabels(3), "20");
  EXPECT_EQ(s.FossilData(3, 3), 9);
}

TEST_F(ImportFixture, SiteLabelsThatAreNumbersAreNormalisedFromRowTwo) {
  // Number labels: the row-1 label keeps its text, later ones are printed
  // from their value, so 010 becomes 10 and 0012.50 becomes 12.5.
  ASSERT_TRUE(Fossil("Depth,A,B,C\n5,1,2,3\n010,4,5,6\n0012.50,7,8,9\n007,1,1,1\n").Ok);
  EXPECT_FALSE(s.FossilLabelsAreText);
  ASSERT_EQ(s.FossilSampleCount, 4);
  EXPECT_EQ(s.FossilLabels(1), "5");
  EXPECT_EQ(s.FossilLabels(2), "10");
  EXPECT_EQ(s.FossilLabels(3), "12.5");
  EXPECT_EQ(s.FossilLabels(4), "7");
}

TEST_F(ImportFixture, TextSiteLabelsThatLookLikeNumbersKeepTheirText) {
  // The second row's label decides the kind: 007 is no number cell, so the
  // labels are text and every one stands as written.
  ASSERT_TRUE(Ref("Site,A,B,C\nX,1,2,3\n007,4,5,6\n12.50,7,8,9\n").Ok);
  EXPECT_TRUE(s.RefLabelsAreText);
  EXPECT_EQ(s.RefSiteNames(1), "X");
  EXPECT_EQ(s.RefSiteNames(2), "007");
  EXPECT_EQ(s.RefSiteNames(3), "12.50");
}

TEST_F(ImportFixture, TrailingZeroInFirstValueShiftsTheTable) {
  // 0.50 is not a number cell: the scan passes it and stops at the next one;
  // the cell read as the second row's label is then a value, so the labels
  // count as numbers and N comes out 5 instead of 3. No error is certain.
  std::string t = "Site,A,B,C\nX,0.50,2,3\nY,4,5,6\nZ,7,8,9\n";
  Ref(t);
  EXPECT_EQ(s.TaxaCount, 5);
  EXPECT_FALSE(s.RefLabelsAreText);
}

TEST_F(ImportFixture, NumericTaxonNameEndsTheHeaderEarly) {
  std::string t = "Site,A,1,C\nX,1,2,3\nY,4,5,6\nZ,7,8,9\n";
  ASSERT_TRUE(Ref(t).Ok);
  // The scan stops at "1": k = 3 cells, and cell 2k - 4 is that same "1",
  // so the labels count as numbers and N = k - 2 = 1. The rest of the file
  // then reads as pairs of a label and one value.
  EXPECT_EQ(s.TaxaCount, 1);
  EXPECT_EQ(s.RefTaxaCount, 1);
  EXPECT_EQ(s.RefTaxaNames(1), "A");
  EXPECT_FALSE(s.RefLabelsAreText);
  ASSERT_EQ(s.RefSiteCount, 7);
  const char* labels[] = {"1", "0", "2", "0", "5", "0", "8"};
  const double values[] = {0, 1, 3, 4, 6, 7, 9};  // "C" reads as 0
  for (int i = 1; i <= 7; ++i) {
    EXPECT_EQ(s.RefSiteNames(i), labels[i - 1]) << i;
    EXPECT_EQ(s.RefData(i, 1), values[i - 1]) << i;
  }
}

TEST_F(ImportFixture, HeaderCapacityWithTextLabels) {
  ASSERT_TRUE(Ref(MakeTable(499, 3, true, Varied)).Ok);
  EXPECT_EQ(s.RefTaxaCount, 499);
  Session other;
  FakeDialogs d2;
  auto r =
      ImportReference(other, dir.Write("r500.csv", MakeTable(500, 3, true, Varied)), d2, progress);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(other.RefTaxaCount, 0);
  ASSERT_EQ(d2.Messages.size(), 1u);
  EXPECT_EQ(d2.Messages[0], kFormatErrorMessage);
}

TEST_F(ImportFixture, HeaderCapacityWithNumberLabels) {
  ASSERT_TRUE(Fossil(MakeTable(500, 3, false, Varied)).Ok);
  EXPECT_EQ(s.FossilTaxaCount, 500);
  Session other;
  FakeDialogs d2;
  auto r =
      ImportFossil(other, dir.Write("f501.csv", MakeTable(501, 3, false, Varied)), d2, progress);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(other.FossilTaxaCount, 0);
  EXPECT_TRUE(d2.Messages.empty());  // the fossil import shows no format message
}

TEST_F(ImportFixture, RowCapacity) {
  ASSERT_TRUE(Ref(MakeTable(3, 9999, true, Varied)).Ok);
  EXPECT_EQ(s.RefSiteCount, 9999);
  Session other;
  FakeDialogs d2;
  auto r =
      ImportReference(other, dir.Write("big.csv", MakeTable(3, 10000, true, Varied)), d2, progress);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(other.RefTaxaCount, 0);
  EXPECT_EQ(other.RefSiteCount, 9999);  // the row count reached stays
  EXPECT_TRUE(other.ReferenceImportOpen);
  EXPECT_FALSE(other.ReferenceIsBase);
}

TEST_F(ImportFixture, EmptyValueInRowTwoReadsAsZero) {
  std::string t = "Site,A,B,C\nX,1,2,3\nY,4,,6\nZ,7,8,9\n";
  ASSERT_TRUE(Ref(t).Ok);
  EXPECT_EQ(s.RefData(2, 2), 0);
}

TEST_F(ImportFixture, EmptyValueInRowOneFailsTheStrictParse) {
  std::string t = "Site,A,B,C\nX,1,,3\nY,4,5,6\nZ,7,8,9\n";
  auto r = Ref(t);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(dialogs.Messages, std::vector<std::string>{kFormatErrorMessage});
}

TEST_F(ImportFixture, EmptyValueInRowThreeIsABlankCell) {
  std::string t = "Site,A,B,C\nX,1,2,3\nY,4,5,6\nZ,7,,9\nW,1,1,1\n";
  auto r = Ref(t);
  EXPECT_FALSE(r.Ok);
  // The reference import shows two messages, the fossil import one.
  EXPECT_EQ(dialogs.Messages,
            (std::vector<std::string>{"Blanc cell detected.", kFormatErrorMessage}));
  EXPECT_EQ(dialogs.Titles[0], "Error");
  EXPECT_EQ(s.RefTaxaCount, 0);
  EXPECT_EQ(s.RefSiteCount, 3);
  Session other;
  FakeDialogs d2;
  ImportFossil(other, dir.Write("f.csv", "Depth,A,B,C\n0,1,2,3\n10,4,5,6\n20,7,,9\n"), d2,
               progress);
  EXPECT_EQ(d2.Messages, std::vector<std::string>{"Blanc cell detected."});
  EXPECT_EQ(other.FossilTaxaCount, 0);
}

TEST_F(ImportFixture, CancelTakesTheFailurePath) {
  auto r = ImportReference(s, std::nullopt, dialogs, progress);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(dialogs.Messages, std::vector<std::string>{kFormatErrorMessage});
  EXPECT_FALSE(s.ReferenceIsBase);
  EXPECT_TRUE(s.ReferenceImportOpen);
  auto f = ImportFossil(s, std::nullopt, dialogs, progress);
  EXPECT_FALSE(f.Ok);
  EXPECT_EQ(dialogs.Messages.size(), 1u);
}

TEST_F(ImportFixture, EmptyAndMissingFiles) {
  EXPECT_FALSE(Ref("").Ok);
  EXPECT_FALSE(ImportReference(s, dir.Path("none.csv"), dialogs, progress).Ok);
  EXPECT_FALSE(Ref("Site,A,B\n").Ok);
  EXPECT_EQ(s.RefTaxaCount, 0);
}

TEST_F(ImportFixture, AllEmptyFossilSamplesFail) {
  auto r = Fossil(MakeTable(3, 4, false, [](int, int) { return 0.0; }));
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(s.FossilTaxaCount, 0);
  EXPECT_EQ(s.FossilSampleCount, 4);
}

TEST_F(ImportFixture, EmptySamplesAreMarkedAndSkippedByTheCursor) {
  auto r = Fossil(MakeTable(3, 4, false, [](int i, int j) { return i <= 2 ? 0.0 : i + j; }));
  ASSERT_TRUE(r.Ok);
  EXPECT_TRUE(s.FossilEmptySample(1));
  EXPECT_TRUE(s.FossilEmptySample(2));
  EXPECT_FALSE(s.FossilEmptySample(3));
  EXPECT_EQ(s.SampleCursor, 3);
  EXPECT_EQ(s.DiagramGapA, 9);
  EXPECT_EQ(s.DiagramGapB, 2 + 30);
}

TEST_F(ImportFixture, BothOrdersAndTheNameQuestion) {
  ASSERT_TRUE(Ref(MakeTable(3, 5, true, Varied)).Ok);
  Analyse();
  ASSERT_TRUE(s.EofDone);
  EXPECT_FALSE(s.ReferenceImportOpen);
  EXPECT_TRUE(s.FossilImportOpen);
  std::string fossil = "Depth,T1,X2,Y3\n0,1,2,3\n10,4,5,6\n20,7,8,9\n";
  dialogs.QuestionAnswers = {true, true};
  auto r = Fossil(fossil);
  ASSERT_TRUE(r.Ok);
  EXPECT_TRUE(r.Projected);
  EXPECT_EQ(dialogs.Questions, (std::vector<std::string>{"Name inconsistent.  [X2] = [T2]?",
                                                         "Name inconsistent.  [Y3] = [T3]?"}));
  EXPECT_EQ(s.TaxaMismatch(0), "2");
  EXPECT_EQ(s.TaxaMismatch(1), "[X2]/[T2]");
  EXPECT_EQ(s.TaxaMismatch(2), "[Y3]/[T3]");
  EXPECT_TRUE(s.ProjectionDone);
  EXPECT_FALSE(s.FossilImportOpen);
}

TEST_F(ImportFixture, RefusedNameFailsAndKeepsTheBase) {
  ASSERT_TRUE(Ref(MakeTable(3, 5, true, Varied)).Ok);
  Analyse();
  dialogs.QuestionAnswers = {false};
  auto r = Fossil("Depth,T1,X2,T3\n0,1,2,3\n10,4,5,6\n20,7,8,9\n");
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(s.FossilTaxaCount, 0);
  EXPECT_TRUE(s.ReferenceIsBase);  // the other button was off: flags stay
  EXPECT_TRUE(s.FossilImportOpen);
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(ImportFixture, DifferentTaxaCountsAreInconsistent) {
  ASSERT_TRUE(Ref(MakeTable(3, 5, true, Varied)).Ok);
  Analyse();
  auto r = Fossil(MakeTable(4, 3, false, Varied));
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(dialogs.Messages, std::vector<std::string>{"Parameter number inconsistent."});
  EXPECT_EQ(s.FossilTaxaCount, 0);
  EXPECT_EQ(s.TaxaCount, 4);  // the column count of the latest import, as read
}

TEST_F(ImportFixture, ReferenceAfterAFossilBaseRunsOffTheArray) {
  ASSERT_TRUE(Fossil(MakeTable(3, 6, false, Varied)).Ok);
  EXPECT_TRUE(s.FossilIsBase);
  Analyse();  // covariance: the fossil table alone can be analysed
  ASSERT_TRUE(s.EofDone);
  EXPECT_TRUE(s.ReferenceImportOpen);
  auto r = Ref(MakeTable(3, 5, true, Varied));
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(dialogs.Messages, std::vector<std::string>{kFormatErrorMessage});
  EXPECT_EQ(s.RefTaxaCount, 0);
  EXPECT_TRUE(s.FossilIsBase);
}

TEST_F(ImportFixture, FossilBaseWithCorrelationStopsTheAnalysis) {
  ASSERT_TRUE(Fossil(MakeTable(3, 6, false, Varied)).Ok);
  PreTreatmentSettings p;
  p.Correlation = true;
  EXPECT_THROW(Analyse(p), RuntimeFailure);
  EXPECT_FALSE(s.EofDone);
}

TEST_F(ImportFixture, FailedFirstImportClearsTheBaseFlag) {
  EXPECT_FALSE(Ref("Site,A,B,C\nX,1,,3\nY,4,5,6\n").Ok);
  EXPECT_FALSE(s.ReferenceIsBase);
  ASSERT_TRUE(Fossil(MakeTable(3, 4, false, Varied)).Ok);
  EXPECT_TRUE(s.FossilIsBase);
}

TEST_F(ImportFixture, RowSplitOverLinesReadsTheSame) {
  ASSERT_TRUE(Ref("Site,A,B,C\nX,1,2,3\nY,4\n5,6\nZ,7,8,9").Ok);
  EXPECT_EQ(s.RefSiteCount, 3);
  EXPECT_EQ(s.RefData(2, 3), 6);
  EXPECT_EQ(s.RefData(3, 3), 9);
}

TEST_F(ImportFixture, TruncatedLastRowFails) {
  EXPECT_FALSE(Ref("Site,A,B,C\nX,1,2,3\nY,4,5,6\nZ,7,8").Ok);
  EXPECT_EQ(s.RefTaxaCount, 0);
}

TEST_F(ImportFixture, TableWrittenByTheNumberPrinterReadsBackIdentically) {
  std::string t = MakeTable(6, 20, true, [](int i, int j) { return (i * 31 + j * 17) % 23 / 7.0; });
  ASSERT_TRUE(Ref(t).Ok);
  for (int i = 1; i <= 20; ++i)
    for (int j = 1; j <= 6; ++j)
      EXPECT_EQ(FormatGeneral(s.RefData(i, j)), FormatGeneral((i * 31 + j * 17) % 23 / 7.0));
}

TEST_F(ImportFixture, ExampleDataSetReads) {
  ASSERT_TRUE(ImportReference(s, Example("reference.csv"), dialogs, progress).Ok);
  EXPECT_EQ(s.RefSiteCount, 61);
  EXPECT_EQ(s.RefTaxaCount, 22);
  EXPECT_EQ(s.RefSiteNames(1), "V14-61");
  Analyse();
  ASSERT_TRUE(ImportFossil(s, Example("fossil.csv"), dialogs, progress).Ok);
  EXPECT_EQ(s.FossilSampleCount, 110);
  EXPECT_EQ(s.FossilLabels(2), "10");
  EXPECT_TRUE(s.ProjectionDone);
  EXPECT_TRUE(dialogs.Questions.empty());
}

namespace {

// A value with at most two decimals, in its shortest text.
double LargeValue(int i, int j) { return ((i * 31 + j * 7) % 1000) / 4.0; }
std::string LargeText(double v) {
  long quarters = std::lround(v * 4);
  static const char* tail[] = {"", ".25", ".5", ".75"};
  return std::to_string(quarters / 4) + tail[quarters % 4];
}

// Over a megabyte of cells, so that the second half is read ahead. `split`
// puts each row's last value on a line of its own; `label` names row i.
std::string LargeTable(int taxa, int rows, bool split,
                       const std::function<std::string(int)>& label) {
  std::string t = "Site";
  for (int j = 1; j <= taxa; ++j) t += ",T" + std::to_string(j);
  t += "\r\n";
  for (int i = 1; i <= rows; ++i) {
    t += label(i);
    for (int j = 1; j <= taxa; ++j)
      t += (split && j == taxa ? "\r\n" : ",") + LargeText(LargeValue(i, j));
    t += "\r\n";
  }
  return t;
}

}  // namespace

TEST_F(ImportFixture, LargeTableReadsEveryRowInPlace) {
  std::string t = LargeTable(60, 4000, false, [](int i) { return "S" + std::to_string(i); });
  ASSERT_GT(t.size(), 1200000u);
  ASSERT_TRUE(Ref(t).Ok);
  ASSERT_EQ(s.RefSiteCount, 4000);
  for (int i = 1; i <= 4000; ++i) {
    ASSERT_EQ(s.RefSiteNames(i), "S" + std::to_string(i)) << i;
    for (int j = 1; j <= 60; ++j) ASSERT_EQ(s.RefData(i, j), LargeValue(i, j)) << i << "," << j;
  }
}

TEST_F(ImportFixture, LargeTableWithNumberLabelsNormalisesTheSecondHalfToo) {
  std::string t = LargeTable(60, 4000, false, [](int i) {
    return (i > 2 && i % 2 == 0 ? "0" : "") + std::to_string(10 * i);
  });
  ASSERT_TRUE(Ref(t).Ok);
  EXPECT_FALSE(s.RefLabelsAreText);
  EXPECT_EQ(s.RefSiteNames(4), "40");
  EXPECT_EQ(s.RefSiteNames(3998), "39980");
  EXPECT_EQ(s.RefSiteNames(3999), "39990");
  EXPECT_EQ(s.RefData(3998, 60), LargeValue(3998, 60));
}

TEST_F(ImportFixture, LargeTableWithRowsAcrossLinesReadsTheSame) {
  std::string t = LargeTable(60, 4000, true, [](int i) { return "S" + std::to_string(i); });
  ASSERT_TRUE(Ref(t).Ok);
  ASSERT_EQ(s.RefSiteCount, 4000);
  for (int i = 1; i <= 4000; i += 7)
    for (int j = 1; j <= 60; ++j) ASSERT_EQ(s.RefData(i, j), LargeValue(i, j)) << i << "," << j;
  EXPECT_EQ(s.RefSiteNames(4000), "S4000");
}

TEST_F(ImportFixture, LargeTableWithABlankCellLateFailsAtThatRow) {
  std::string t = LargeTable(60, 4000, false, [](int i) { return "S" + std::to_string(i); });
  std::size_t row = t.find("\r\nS3500,");
  ASSERT_NE(row, std::string::npos);
  std::size_t cell = t.find(',', row + 8);  // after the first value of row 3500
  t.erase(row + 8, cell - row - 8);         // which is now empty
  auto r = Ref(t);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(dialogs.Messages,
            (std::vector<std::string>{"Blanc cell detected.", kFormatErrorMessage}));
  EXPECT_EQ(s.RefSiteCount, 3500);
  EXPECT_EQ(s.RefTaxaCount, 0);
}

TEST_F(ImportFixture, LargeTableBeyondTheRowCapacityFails) {
  std::string t = LargeTable(30, 10000, false, [](int i) { return "S" + std::to_string(i); });
  ASSERT_GT(t.size(), 1100000u);
  EXPECT_FALSE(Ref(t).Ok);
  EXPECT_EQ(s.RefSiteCount, 9999);
  EXPECT_EQ(s.RefTaxaCount, 0);
}

TEST_F(ImportFixture, LargeTableBeyondTheRowCapacityNamesTheRowWhereReadingStopped) {
  // The second half is read ahead; the failure still names row 10,001 of the
  // file (the header is row 1), as the same table read in order does.
  std::string t = LargeTable(30, 10000, false, [](int i) { return "S" + std::to_string(i); });
  auto ahead = Ref(t);
  EXPECT_FALSE(ahead.Ok);
  EXPECT_NE(ahead.Problem.find("More than 9999 rows"), std::string::npos) << ahead.Problem;
  EXPECT_NE(ahead.Problem.find(", row 10001, column 1"), std::string::npos) << ahead.Problem;
  std::string cr;  // CR-only line ends: no line start to read ahead from
  for (char c : t)
    if (c != '\n') cr += c;
  Session fresh;
  auto inOrder = ImportReference(fresh, dir.Write("ref.csv", cr), dialogs, progress);
  EXPECT_EQ(ahead.Problem, inOrder.Problem);
}
