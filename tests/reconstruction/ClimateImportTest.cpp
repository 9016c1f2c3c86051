#include <gtest/gtest.h>

#include <cmath>

#include "reconstruction/ClimateImport.h"
#include "reconstruction/ReconSupport.h"
#include "state/CellReader.h"
#include "state/Format.h"
#include "state/RecordWriter.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

struct ClimateFixture : ::testing::Test {
  TempDir dir;
  FakeDialogs dialogs;
  Session s;

  void Sites(int n, int taxa = 4, const std::string& prefix = "S") {
    s.RefSiteCount = static_cast<Count>(n);
    s.RefTaxaCount = static_cast<Count>(taxa);
    s.RefSiteNames.ReDim(n);
    for (int i = 1; i <= n; ++i) s.RefSiteNames(i) = prefix + std::to_string(i);
  }
  ClimateImportResult Read(const std::string& content) {
    return Inport_climate_data(s, dir.Write("climate.csv", content), dialogs);
  }
};

}  // namespace

TEST_F(ClimateFixture, TextSiteNames) {
  Sites(3);
  auto r = Read("Site,T,P\r\nS1,12.5,800\r\nS2,-3,1200\r\nS3,0,-9999\r\n");
  ASSERT_TRUE(r.Ok);
  EXPECT_FALSE(r.Failure);
  EXPECT_TRUE(s.ClimateLoaded);
  EXPECT_TRUE(s.ClimateSiteNamesAreText);
  EXPECT_EQ(s.ClimateParamCount, 2);
  EXPECT_EQ(s.ClimateParamNames.Upper(), 2);
  EXPECT_EQ(s.ClimateParamNames(0), "Site");
  EXPECT_EQ(s.ClimateParamNames(2), "P");
  EXPECT_EQ(s.ClimateSiteNames(3), "S3");
  EXPECT_EQ(s.ClimateData.Upper0(), 3);
  EXPECT_EQ(s.ClimateData(1, 1), 12.5);
  EXPECT_EQ(s.ClimateData(2, 2), 1200);
  EXPECT_EQ(s.ClimateData(3, 2), kMissing);
  EXPECT_EQ(s.ClimateData(0, 1), 0);
  EXPECT_EQ(s.ClimateData(2, 0), 0);
  EXPECT_EQ(s.ClimateFileName, dir.Path("climate.csv"));
  EXPECT_EQ(s.ClimateNameMismatch(0), "0");
  EXPECT_TRUE(dialogs.Messages.empty());
  EXPECT_TRUE(dialogs.Questions.empty());
}

TEST_F(ClimateFixture, NumericSiteNamesGiveTheSameParameterCount) {
  s.RefSiteCount = 3;
  s.RefTaxaCount = 4;
  s.RefSiteNames.ReDim(3);
  s.RefSiteNames(1) = "101";
  s.RefSiteNames(2) = "102";
  s.RefSiteNames(3) = "103";
  auto r = Read("No,T,P\n101,12.5,800\n0102,-3,1200\n103.0,0,7\n");
  ASSERT_TRUE(r.Ok);
  EXPECT_FALSE(s.ClimateSiteNamesAreText);
  EXPECT_EQ(s.ClimateParamCount, 2);
  // Names from row 2 on are normalised numbers.
  EXPECT_EQ(s.ClimateSiteNames(2), "102");
  EXPECT_EQ(s.ClimateSiteNames(3), "103");
  EXPECT_EQ(s.ClimateData(1, 2), 800);
  EXPECT_EQ(s.ClimateData(3, 2), 7);
}

TEST_F(ClimateFixture, OneParameterIsDetected) {
  Sites(3);
  ASSERT_TRUE(Read("Site,T\nS1,4\nS2,5\nS3,6\n").Ok);
  EXPECT_EQ(s.ClimateParamCount, 1);
  EXPECT_EQ(s.ClimateData(3, 1), 6);
  Session numeric;
  numeric.RefSiteCount = 3;
  numeric.RefSiteNames.ReDim(3);
  for (int i = 1; i <= 3; ++i) numeric.RefSiteNames(i) = std::to_string(i);
  auto r = Inport_climate_data(numeric, dir.Write("n.csv", "No,T\n1,4\n2,5\n3,6\n"), dialogs);
  ASSERT_TRUE(r.Ok);
  EXPECT_EQ(numeric.ClimateParamCount, 1);
  EXPECT_EQ(numeric.ClimateData(2, 1), 5);
}

TEST_F(ClimateFixture, TrailingZeroInTheFirstValueMisleadsTheDetection) {
  Sites(3);
  auto r = Read("Site,T,P\nS1,12.50,800\nS2,-3,1200\nS3,0,7\n");
  // The scan passes 12.50 and stops at 800: n = 6, and cell 2n - 4 is
  // "1200", a number, so the names count as numbers and m = n - 2 = 4.
  EXPECT_EQ(s.ClimateParamCount, 4);
  EXPECT_FALSE(s.ClimateSiteNamesAreText);
  // Row 1 is "800" with S2, -3, 1200 and S3 (0); row 2 is "0" with 7, and
  // the file ends inside that row.
  EXPECT_FALSE(r.Ok);
  ASSERT_TRUE(r.Failure.has_value());
  EXPECT_EQ(*r.Failure, FailureKind::InputPastEnd);
  EXPECT_FALSE(s.ClimateLoaded);
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(ClimateFixture, EachDifferingNameAsksAndValuesStayInFileOrder) {
  Sites(3);
  dialogs.QuestionAnswers = {true, true};
  auto r = Read("Site,T\nS2,20\nS1,10\nS3,30\n");
  ASSERT_TRUE(r.Ok);
  ASSERT_EQ(dialogs.Questions.size(), 2u);
  EXPECT_EQ(dialogs.Questions[0], "Name inconsistent.  [S2] = [S1]?");
  EXPECT_EQ(dialogs.Questions[1], "Name inconsistent.  [S1] = [S2]?");
  EXPECT_EQ(dialogs.Titles[0], "Error");
  EXPECT_EQ(s.ClimateNameMismatch(0), "2");
  EXPECT_EQ(s.ClimateNameMismatch(1), "[S2]/[S1]");
  EXPECT_EQ(s.ClimateNameMismatch(2), "[S1]/[S2]");
  EXPECT_EQ(s.ClimateData(1, 1), 20);
  EXPECT_EQ(s.ClimateData(2, 1), 10);
}

TEST_F(ClimateFixture, NoToANameQuestionEndsTheImport) {
  Sites(3);
  dialogs.QuestionAnswers = {false};
  auto r = Read("Site,T\nS1,10\nX,20\nS3,30\n");
  EXPECT_FALSE(r.Ok);
  EXPECT_FALSE(r.Failure);
  EXPECT_FALSE(s.ClimateLoaded);
  EXPECT_EQ(dialogs.Questions.size(), 1u);
}

TEST_F(ClimateFixture, MoreAcceptedDifferencesThanTaxaOverrunTheList) {
  Sites(4, 2, "R");
  dialogs.QuestionAnswers = {true, true, true, true};
  auto r = Read("Site,T\nS1,1\nS2,2\nS3,3\nS4,4\n");
  EXPECT_FALSE(r.Ok);
  ASSERT_TRUE(r.Failure);
  EXPECT_EQ(*r.Failure, FailureKind::SubscriptOutOfRange);
  EXPECT_EQ(dialogs.Questions.size(), 3u);  // the third "Yes" runs off the list
  EXPECT_FALSE(s.ClimateLoaded);
}

TEST_F(ClimateFixture, BlankCellFromRowThreeStopsTheRead) {
  Sites(4);
  auto r = Read("Site,T,P\nS1,1,2\nS2,3,4\nS3,,6\nS4,7,8\n");
  EXPECT_FALSE(r.Ok);
  EXPECT_FALSE(r.Failure);
  ASSERT_EQ(dialogs.Messages.size(), 1u);
  EXPECT_EQ(dialogs.Messages[0], "Blanc cell detected.");
  EXPECT_EQ(dialogs.Titles[0], "Error");
  EXPECT_FALSE(s.ClimateLoaded);
  EXPECT_FALSE(s.ClimateData.Allocated());
}

TEST_F(ClimateFixture, BlankCellInRowsOneAndTwoReadsAsZero) {
  Sites(3);
  ASSERT_TRUE(Read("Site,T,P\nS1,1,2\nS2,,4\nS3,5,6\n").Ok);
  EXPECT_EQ(s.ClimateData(2, 1), 0);
  Session other;
  other.RefSiteCount = 3;
  other.RefSiteNames = s.RefSiteNames;
  ASSERT_TRUE(
      Inport_climate_data(other, dir.Write("b.csv", "Site,T,P\nS1,1,\nS2,3,4\nS3,5,6\n"), dialogs)
          .Ok);
  EXPECT_EQ(other.ClimateData(1, 2), 0);
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(ClimateFixture, MoreRowsThanSitesFailAfterTheExtraRow) {
  Sites(2);
  auto r = Read("Site,T\nS1,1\nS2,2\nS3,3\nS4,4\n");
  EXPECT_FALSE(r.Ok);
  ASSERT_EQ(dialogs.Messages.size(), 1u);
  EXPECT_EQ(dialogs.Messages[0], "Site number inconsistent.");
  EXPECT_FALSE(s.ClimateLoaded);
  EXPECT_EQ(s.ClimateSiteNames.Upper(), 3);  // stopped after row 3
}

TEST_F(ClimateFixture, FewerRowsThanSitesFailAtTheEnd) {
  Sites(5);
  auto r = Read("Site,T\nS1,1\nS2,2\nS3,3\n");
  EXPECT_FALSE(r.Ok);
  ASSERT_EQ(dialogs.Messages.size(), 1u);
  EXPECT_EQ(dialogs.Messages[0], "Site number inconsistent.");
  EXPECT_FALSE(s.ClimateLoaded);
  // The count read stays, without effect.
  EXPECT_EQ(s.ClimateParamCount, 1);
}

TEST_F(ClimateFixture, CancelAndUnreadableFilesChangeNothing) {
  Sites(2);
  auto r = Inport_climate_data(s, std::nullopt, dialogs);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(*r.Failure, FailureKind::Cancelled);
  r = Inport_climate_data(s, dir.Path("missing.csv"), dialogs);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(*r.Failure, FailureKind::FileNotFound);
  EXPECT_FALSE(s.ClimateLoaded);
  EXPECT_EQ(s.ClimateParamCount, 0);
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(ClimateFixture, GarbageAndShortFilesFailWithoutLoading) {
  Sites(2);
  for (const char* content : {"", "just words", "a,b,c\nd,e,f\n", "Site,T\nS1"}) {
    Session fresh = s;
    auto r = Inport_climate_data(fresh, dir.Write("g.csv", content), dialogs);
    EXPECT_FALSE(r.Ok) << content;
    EXPECT_FALSE(fresh.ClimateLoaded) << content;
    EXPECT_FALSE(fresh.ClimateData.Allocated()) << content;
  }
}

TEST_F(ClimateFixture, ASecondImportReadsNothing) {
  Sites(2);
  ASSERT_TRUE(Read("Site,T\nS1,1\nS2,2\n").Ok);
  auto r = Inport_climate_data(s, dir.Write("other.csv", "Site,X\nS1,7\nS2,8\n"), dialogs);
  EXPECT_TRUE(r.Ok);
  EXPECT_TRUE(r.AlreadyLoaded);
  EXPECT_EQ(s.ClimateParamNames(1), "T");
  EXPECT_EQ(s.ClimateData(2, 1), 2);
}

TEST_F(ClimateFixture, FileWrittenByTheRecordWriterReadsBackIdentically) {
  const int sites = 6, params = 3;
  Sites(sites);
  Array2<double> values(sites, params);
  const double samples[] = {0.1, -2.5, 1e-7, 123456.789, -9999, 0, 1.0 / 3, 2e20, 17};
  RecordWriter w;
  w.Text("Site");
  for (int q = 1; q <= params; ++q) w.Text("P" + std::to_string(q));
  w.End();
  for (int i = 1; i <= sites; ++i) {
    w.Text("S" + std::to_string(i));
    for (int q = 1; q <= params; ++q) {
      values(i, q) = samples[(i * params + q) % 9] * (i % 2 ? 1 : -1);
      w.Number(values(i, q));
    }
    w.End();
  }
  w.Save(dir.Path("written.csv"));
  ASSERT_TRUE(Inport_climate_data(s, dir.Path("written.csv"), dialogs).Ok);
  EXPECT_EQ(s.ClimateParamCount, params);
  for (int i = 1; i <= sites; ++i)
    for (int q = 1; q <= params; ++q)
      EXPECT_EQ(FormatGeneral(s.ClimateData(i, q)), FormatGeneral(values(i, q))) << i << q;
}

TEST_F(ClimateFixture, ExampleClimateFile) {
  Sites(61);
  // The example's names are those of the example reference table.
  CellReader ref = CellReader::FromFile(Example("reference.csv"));
  for (int c = 0; c < 23; ++c) ref.Next();
  for (int i = 1; i <= 61; ++i) {
    s.RefSiteNames(i) = std::string(ref.Next());
    for (int c = 0; c < 22; ++c) ref.Next();
  }
  ASSERT_TRUE(Inport_climate_data(s, Example("climate.csv"), dialogs).Ok);
  EXPECT_EQ(s.ClimateParamCount, 3);
  EXPECT_EQ(s.ClimateParamNames(1), "SumSST");
  EXPECT_EQ(s.ClimateData(1, 3), 33.7);
  EXPECT_TRUE(dialogs.Questions.empty());
}

TEST_F(ClimateFixture, EstimatedObservedPairs) {
  auto r = ImportEstObs(s, dir.Write("pairs.csv", "Est,Obs\n1,2\n2,4.5\n3,5.5\n"), dialogs);
  ASSERT_TRUE(r.Ok);
  EXPECT_TRUE(s.EstObsImported);
  EXPECT_EQ(s.EstObsCount, 3);
  EXPECT_EQ(s.EstObsEstimated(2), 2.0f);
  EXPECT_EQ(s.EstObsObserved(3), 5.5f);
  // mx 2, my 4: Sxy = 3.5, Sxx = 2, Syy = 6.5.
  EXPECT_DOUBLE_EQ(r.Slope, 1.75);
  EXPECT_DOUBLE_EQ(r.Intercept, 0.5);
  EXPECT_DOUBLE_EQ(r.Correlation, 3.5 / std::sqrt(13.0));
}

TEST_F(ClimateFixture, EstimatedObservedEmptyCellAndZeroVariance) {
  auto r = ImportEstObs(s, dir.Write("p1.csv", "Est,Obs\n1,2\n,4\n"), dialogs);
  EXPECT_FALSE(r.Ok);
  r = ImportEstObs(s, dir.Write("p2.csv", "Est,Obs\n1,2\n1,4\n"), dialogs);
  EXPECT_FALSE(r.Ok);
  ASSERT_EQ(dialogs.Messages.size(), 2u);
  EXPECT_EQ(dialogs.Messages[0], "Empty cell.");
  EXPECT_EQ(dialogs.Messages[1], "Empty cell.");
  EXPECT_FALSE(s.EstObsImported);
}
