// The station and target readers: width and label detection from the first
// cells, strict and lenient rows, the messages, the limits, the lapse rates
// by column name, the map bounds, and that a refused file leaves what was
// loaded before.
#include <gtest/gtest.h>

#include "interpolation/InterpSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

const std::vector<std::string> kTwoParams = {"Temp", "Prec"};

std::vector<StationRow> ThreeStations() {
  return {{"A", 10, 45, 100, 0.5, 2, {12, 800}},
          {"B", 11.5, 46, 300, 0.6, 3, {9.5, 950}},
          {"C", 12, 47.25, 1200, 0.55, 4, {4, 1400}}};
}

std::vector<StationRow> TargetRows(const std::vector<std::string>& names) {
  std::vector<StationRow> rows;
  double lon = 10.2;
  for (const auto& n : names) rows.push_back({n, lon += 0.3, 45.5, 250, 0.6, 2.5, {}});
  return rows;
}

// Everything a refused import must leave as it was.
void ExpectSameStations(const InterpolationState& a, const InterpolationState& b) {
  EXPECT_EQ(a.InterpColumnCount, b.InterpColumnCount);
  EXPECT_EQ(a.InterpRefCount, b.InterpRefCount);
  EXPECT_EQ(a.InterpRefNames, b.InterpRefNames);
  EXPECT_EQ(a.InterpParamNames, b.InterpParamNames);
  EXPECT_EQ(a.InterpRefLon, b.InterpRefLon);
  EXPECT_EQ(a.InterpRefClimate, b.InterpRefClimate);
  EXPECT_EQ(a.InterpRefLapse, b.InterpRefLapse);
  EXPECT_EQ(a.InterpNonNegative, b.InterpNonNegative);
  EXPECT_EQ(a.InterpRefLoaded, b.InterpRefLoaded);
  EXPECT_EQ(a.MinLon, b.MinLon);
  EXPECT_EQ(a.MaxLat, b.MaxLat);
}

}  // namespace

TEST_F(InterpFixture, StationTableIsReadWithTextLabels) {
  auto r = Stations(StationCsv(kTwoParams, ThreeStations()));
  ASSERT_TRUE(r.Ok);
  const InterpolationState& st = s.Interp;
  EXPECT_EQ(st.InterpColumnCount, 7);
  EXPECT_EQ(st.InterpRefCount, 3);
  EXPECT_EQ(s.ClimateParamCount, 7);  // the full width, until a run sets C - 5
  EXPECT_EQ(st.InterpParamNames(0), "");
  EXPECT_EQ(st.InterpParamNames(1), "Lon");
  EXPECT_EQ(st.InterpParamNames(7), "Prec");
  EXPECT_EQ(st.InterpRefNames(2), "B");
  EXPECT_EQ(st.InterpRefLon(2), 11.5f);
  EXPECT_EQ(st.InterpRefLat(3), 47.25f);
  EXPECT_EQ(st.InterpRefAlt(3), 1200.f);
  EXPECT_EQ(st.InterpRefClimate(2, 6), 9.5);
  EXPECT_EQ(st.InterpRefClimate(3, 7), 1400);
  EXPECT_EQ(st.InterpRefClimate(1, 4), 0.5);
  EXPECT_EQ(st.InterpRefLapse(2, 4), 0.6);
  EXPECT_EQ(st.InterpRefLapse(2, 5), 3);
  EXPECT_EQ(st.InterpRefLapse(2, 6), 0.6);  // Temp: the temperature rate
  EXPECT_EQ(st.InterpRefLapse(2, 7), 3);    // Prec: the precipitation rate
  EXPECT_EQ(st.InterpRefLapse(2, 1), 0);
  EXPECT_FALSE(st.InterpNonNegative(6));
  EXPECT_TRUE(st.InterpNonNegative(7));
  EXPECT_TRUE(st.InterpRefLoaded);
  EXPECT_FALSE(st.InterpTargetLoaded);
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(InterpFixture, FiveDataColumnsAreRefusedForStationsAndNormalForTargets) {
  std::vector<StationRow> positionsOnly = ThreeStations();
  for (auto& r : positionsOnly) r.Values.clear();
  auto five = Stations(StationCsv({}, positionsOnly));
  EXPECT_FALSE(five.Ok);
  EXPECT_TRUE(five.MessageShown);
  ASSERT_EQ(dialogs.Messages.size(), 1u);
  EXPECT_EQ(dialogs.Messages[0], "File does not contain climate data.");
  EXPECT_EQ(dialogs.Titles[0], "Error");
  EXPECT_FALSE(s.Interp.InterpRefLoaded);

  Sites({"S1", "S2"});
  ASSERT_TRUE(Stations(StationCsv(kTwoParams, ThreeStations())).Ok);
  auto targets = Targets(StationCsv({}, TargetRows({"S1", "S2"}), "Site"));
  ASSERT_TRUE(targets.Ok);
  EXPECT_EQ(dialogs.Messages.size(), 1u);
  EXPECT_TRUE(s.Interp.InterpTargetLoaded);
  EXPECT_EQ(s.Interp.InterpTargetCount, 2);
  EXPECT_EQ(s.Interp.SiteMapNames(2), "S2");
  EXPECT_EQ(s.Interp.SiteLongitude(1), 10.5f);
  EXPECT_EQ(s.Interp.SiteAltitude(2), 250.f);
}

TEST_F(InterpFixture, AHeaderCellThatIsANumberSpoilsTheStructure) {
  ASSERT_TRUE(Stations(StationCsv(kTwoParams, ThreeStations())).Ok);
  const InterpolationState before = s.Interp;
  auto r = Stations(StationCsv(kTwoParams, ThreeStations(), "1"), "spoilt.csv");
  EXPECT_FALSE(r.Ok);
  EXPECT_FALSE(r.MessageShown);
  EXPECT_EQ(r.Failure, FailureKind::SubscriptOutOfRange);
  EXPECT_TRUE(dialogs.Messages.empty());
  ExpectSameStations(s.Interp, before);
}

TEST_F(InterpFixture, NumericLabelsAreNormalisedFromRowTwoOn) {
  auto r = Stations(
      "No,Lon,Lat,Alt,TL,PL,Temp\r\n"
      "5,1,2,3,0.5,1,10\r\n"
      "007,1,2,3,0.5,1,11\r\n"
      "010,1,2,3,0.5,1,12\r\n");
  ASSERT_TRUE(r.Ok);
  EXPECT_EQ(s.Interp.InterpColumnCount, 6);
  EXPECT_EQ(s.Interp.InterpRefNames(1), "5");
  EXPECT_EQ(s.Interp.InterpRefNames(2), "7");
  EXPECT_EQ(s.Interp.InterpRefNames(3), "10");
  EXPECT_EQ(s.Interp.InterpRefClimate(3, 6), 12);

  // Row 1 as written, the others normalised: a site named "007" differs.
  Sites({"1", "007", "8"});
  dialogs.QuestionAnswers = {true};
  auto t = Targets(
      "No,Lon,Lat,Alt,TL,PL\r\n"
      "1,1,2,3,0.5,1\r\n"
      "007,1,2,3,0.5,1\r\n"
      "8,1,2,3,0.5,1\r\n");
  ASSERT_TRUE(t.Ok);
  ASSERT_EQ(dialogs.Questions.size(), 1u);
  EXPECT_EQ(dialogs.Questions[0], "Name inconsistent.  [7] = [007]?");
  EXPECT_EQ(s.Interp.SiteMapNames(2), "7");
}

TEST_F(InterpFixture, AnEmptyCellReadsAsZeroInRowTwoAndStopsTheImportInRowThree) {
  auto row2 = Stations(
      "Station,Lon,Lat,Alt,TL,PL,Temp\r\n"
      "A,1,2,3,0.5,1,10\r\n"
      "B,1,2,3,0.5,,11\r\n"
      "C,1,2,3,0.5,1,12\r\n");
  ASSERT_TRUE(row2.Ok);
  EXPECT_EQ(s.Interp.InterpRefClimate(2, 5), 0);
  EXPECT_EQ(s.Interp.InterpRefClimate(2, 6), 11);
  EXPECT_TRUE(dialogs.Messages.empty());

  const InterpolationState before = s.Interp;
  auto row3 = Stations(
      "Station,Lon,Lat,Alt,TL,PL,Temp\r\n"
      "A,1,2,3,0.5,1,10\r\n"
      "B,1,2,3,0.5,1,11\r\n"
      "C,1,2,3,0.5,,12\r\n",
      "row3.csv");
  EXPECT_FALSE(row3.Ok);
  EXPECT_TRUE(row3.MessageShown);
  ASSERT_EQ(dialogs.Messages.size(), 1u);
  EXPECT_EQ(dialogs.Messages[0], "Blanc cell detected.");
  ExpectSameStations(s.Interp, before);
}

TEST_F(InterpFixture, ATrailingZeroAtTheDetectionCellMakesNumericLabelsText) {
  // Numeric labels, seven data columns: the cell 2c - 4 is row 1's Temp.
  // Six rows, so that the narrower reading still ends at a row's end.
  const std::string tail =
      ",1000\r\n"
      "2,1,2,3,0.5,1,11,900\r\n"
      "3,1,2,3,0.5,1,12,800\r\n"
      "4,1,2,3,0.5,1,13,700\r\n"
      "5,1,2,3,0.5,1,14,600\r\n"
      "6,1,2,3,0.5,1,15,500\r\n";
  const std::string head = "No,Lon,Lat,Alt,TL,PL,Temp,Prec\r\n1,1,2,3,0.5,1,";
  ASSERT_TRUE(Stations(head + "1.5" + tail).Ok);
  EXPECT_EQ(s.Interp.InterpColumnCount, 7);
  EXPECT_EQ(s.Interp.InterpRefNames(1), "1");

  auto r = Stations(head + "1.50" + tail, "trailing.csv");
  ASSERT_TRUE(r.Ok);
  // Read as text labels one column narrower: the last header cell is now
  // the first label.
  EXPECT_EQ(s.Interp.InterpColumnCount, 6);
  EXPECT_EQ(s.Interp.InterpRefNames(1), "Prec");
  EXPECT_EQ(s.Interp.InterpParamNames(6), "Temp");
  EXPECT_EQ(s.Interp.InterpRefClimate(1, 1), 1);  // the label "1" as longitude
}

TEST(ColumnLapseKind, NamesByTheirFirstAndLastLetters) {
  for (const char* t : {"T-Jan", "MTCO", "(T)Mean", "(t)x", "January(T)", "Tmax", "x(t)"})
    EXPECT_EQ(ColumnLapseKind(t), LapseKind::Temperature) << t;
  for (const char* p :
       {"P-Jan", "MPA", "(P)Sum", "(p)x", "Annual(P)", "x(p)", "Pressure", "T(P)", "MP(t)"})
    EXPECT_EQ(ColumnLapseKind(p), LapseKind::Precipitation) << p;
  for (const char* n : {"tmean", "mtco", "Sun", "t(x)", "p", "", "(T", "x(T)y"})
    EXPECT_EQ(ColumnLapseKind(n), LapseKind::None) << n;
}

TEST_F(InterpFixture, LapseRatesFollowTheColumnNamesInBothFiles) {
  const std::vector<std::string> names = {"T-Jan", "MTCO", "(T)Mean",  "(t)x",    "January(T)",
                                          "tmean", "T(P)", "Pressure", "(t)Pmax", "(p)Sum"};
  StationRow a{"A", 1, 2, 500, 0.5, 7, std::vector<double>(names.size(), 1.0)};
  Sites({"S", "S2"});
  ASSERT_TRUE(Stations(StationCsv(names, {a, a})).Ok);
  ASSERT_TRUE(
      Targets(StationCsv({}, {{"S", 1, 2, 0, 0.25, 9, {}}, {"S2", 1, 2, 0, 0, 0, {}}}, "Site")).Ok);
  const InterpolationState& st = s.Interp;
  const double expectRef[] = {0.5, 0.5, 0.5, 0.5, 0.5, 0, 7, 7, 0.5, 7};
  const double expectTgt[] = {0.25, 0.25, 0.25, 0.25, 0.25, 0, 9, 9, 0.25, 9};
  for (long k = 6; k <= 15; ++k) {
    EXPECT_EQ(st.InterpRefLapse(1, k), expectRef[k - 6]) << names[k - 6];
    EXPECT_EQ(st.InterpTargetLapse(1, k), expectTgt[k - 6]) << names[k - 6];
    EXPECT_EQ(st.InterpNonNegative(k) != 0, expectRef[k - 6] == 7) << names[k - 6];
  }
  EXPECT_EQ(st.InterpTargetLapse(1, 4), 0.25);
  EXPECT_EQ(st.InterpTargetLapse(1, 5), 9);
  EXPECT_EQ(st.InterpTargetLapse.Upper1(), 15);
}

TEST(RoundBoundsOutward, OddMultiplesOfFiveMoveOutAndEvenOnesStay) {
  InterpolationState st;
  st.MinLat = 15;
  st.MinLon = 10;
  st.MaxLat = 15;
  st.MaxLon = 10;
  RoundBoundsOutward(st);
  EXPECT_EQ(st.MinLat, 10);
  EXPECT_EQ(st.MinLon, 10);
  EXPECT_EQ(st.MaxLat, 20);
  EXPECT_EQ(st.MaxLon, 10);
  st.MinLat = -12.3f;
  st.MinLon = 7.4f;
  st.MaxLat = 47.5f;
  st.MaxLon = -0.1f;
  RoundBoundsOutward(st);
  EXPECT_EQ(st.MinLat, -15);
  EXPECT_EQ(st.MinLon, 5);
  EXPECT_EQ(st.MaxLat, 50);
  EXPECT_EQ(st.MaxLon, 0);
}

TEST_F(InterpFixture, MapBoundsCoverTheStationsInStepsOfFive) {
  ASSERT_TRUE(Stations(StationCsv(kTwoParams, ThreeStations())).Ok);
  EXPECT_EQ(s.Interp.MinLon, 10);  // 10 stays
  EXPECT_EQ(s.Interp.MaxLon, 15);  // 12 goes up
  EXPECT_EQ(s.Interp.MinLat, 40);  // 45 moves out
  EXPECT_EQ(s.Interp.MaxLat, 50);  // 47.25 goes up
}

TEST_F(InterpFixture, ATargetFileOfAnotherSiteCountIsRefusedButSetsTheCount) {
  Sites({"S1", "S2", "S3"});
  ASSERT_TRUE(Stations(StationCsv(kTwoParams, ThreeStations())).Ok);
  auto r = Targets(StationCsv({}, TargetRows({"S1", "S2"}), "Site"));
  EXPECT_FALSE(r.Ok);
  EXPECT_TRUE(r.MessageShown);
  ASSERT_EQ(dialogs.Messages.size(), 1u);
  EXPECT_EQ(dialogs.Messages[0], "Number of surface pollen sites inconsistent.");
  EXPECT_EQ(s.Interp.InterpTargetCount, 2);
  EXPECT_FALSE(s.Interp.InterpTargetLoaded);
  EXPECT_FALSE(s.Interp.SiteLongitude.Allocated());
}

TEST_F(InterpFixture, EachDifferingNameAsksAndANoEndsTheImport) {
  Sites({"S1", "S2", "S3"});
  ASSERT_TRUE(Stations(StationCsv(kTwoParams, ThreeStations())).Ok);
  dialogs.QuestionAnswers = {true, false};
  auto no = Targets(StationCsv({}, TargetRows({"X1", "S2", "X3"}), "Site"));
  EXPECT_FALSE(no.Ok);
  EXPECT_TRUE(no.MessageShown);
  ASSERT_EQ(dialogs.Questions.size(), 2u);
  EXPECT_EQ(dialogs.Questions[0], "Name inconsistent.  [X1] = [S1]?");
  EXPECT_EQ(dialogs.Questions[1], "Name inconsistent.  [X3] = [S3]?");
  EXPECT_FALSE(s.Interp.InterpTargetLoaded);
  EXPECT_FALSE(s.Interp.SiteMapNames.Allocated());

  dialogs.QuestionAnswers = {true, true};
  auto yes = Targets(StationCsv({}, TargetRows({"X1", "S2", "X3"}), "Site"), "yes.csv");
  ASSERT_TRUE(yes.Ok);
  EXPECT_EQ(dialogs.Questions.size(), 4u);
  EXPECT_EQ(s.Interp.SiteMapNames(1), "X1");
  EXPECT_TRUE(s.Interp.InterpTargetLoaded);
}

TEST_F(InterpFixture, ACancelledDialogOrAMissingFileEndsQuietly) {
  auto cancelled = ImportData(s, kStationFile, std::nullopt, dialogs);
  EXPECT_FALSE(cancelled.Ok);
  EXPECT_EQ(cancelled.Failure, FailureKind::Cancelled);
  auto missing = ImportData(s, kStationFile, dir.Path("none.csv"), dialogs);
  EXPECT_EQ(missing.Failure, FailureKind::FileNotFound);
  EXPECT_TRUE(dialogs.Messages.empty());
  EXPECT_FALSE(s.Interp.InterpRefLoaded);
}

TEST_F(InterpFixture, ATextInTheFirstRowIsAConversionFailure) {
  auto r = Stations(
      "Station,Lon,Lat,Alt,TL,PL,Temp\r\n"
      "A,1,2,x,0.5,1,10\r\n"
      "B,1,2,3,0.5,1,11\r\n");
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(r.Failure, FailureKind::TypeMismatch);
  // The same text in row 2 reads as 0.
  ASSERT_TRUE(Stations("Station,Lon,Lat,Alt,TL,PL,Temp\r\n"
                       "A,1,2,3,0.5,1,10\r\n"
                       "B,1,2,x,0.5,1,11\r\n",
                       "row2.csv")
                  .Ok);
  EXPECT_EQ(s.Interp.InterpRefAlt(2), 0.f);
}

namespace {

std::string Rows(long count, long columns, bool numericLabels) {
  std::string out = "Station";
  for (long k = 1; k <= columns; ++k) out += ",C" + std::to_string(k);
  out += "\r\n";
  for (long i = 1; i <= count; ++i) {
    out += numericLabels ? std::to_string(i) : "R" + std::to_string(i);
    for (long k = 1; k <= columns; ++k) out += "," + std::to_string((i + k) % 90);
    out += "\r\n";
  }
  return out;
}

}  // namespace

TEST_F(InterpFixture, AtMost9999Rows) {
  ASSERT_TRUE(Stations(Rows(9999, 6, false)).Ok);
  EXPECT_EQ(s.Interp.InterpRefCount, 9999);
  const InterpolationState before = s.Interp;
  auto r = Stations(Rows(10000, 6, false), "big.csv");
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(r.Failure, FailureKind::SubscriptOutOfRange);
  ExpectSameStations(s.Interp, before);
}

TEST_F(InterpFixture, AtMost499ColumnsWithTextLabelsAnd500WithNumericOnes) {
  EXPECT_TRUE(Stations(Rows(3, 499, false)).Ok);
  EXPECT_EQ(s.Interp.InterpColumnCount, 499);
  EXPECT_FALSE(Stations(Rows(3, 500, false), "t500.csv").Ok);
  EXPECT_TRUE(Stations(Rows(3, 500, true), "n500.csv").Ok);
  EXPECT_EQ(s.Interp.InterpColumnCount, 500);
  auto wide = Stations(Rows(3, 501, true), "n501.csv");
  EXPECT_FALSE(wide.Ok);
  EXPECT_EQ(wide.Failure, FailureKind::SubscriptOutOfRange);
  EXPECT_EQ(s.Interp.InterpColumnCount, 500);
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(InterpFixture, GarbageAndBinaryFilesEndQuietly) {
  ASSERT_TRUE(Stations(StationCsv(kTwoParams, ThreeStations())).Ok);
  const InterpolationState before = s.Interp;
  std::string binary;
  for (int i = 0; i < 4096; ++i) binary += static_cast<char>((i * 7919) & 0xFF);
  const std::string inputs[] = {"",
                                "\r\n\r\n",
                                ",,,,,,,,\r\n,,,,,,\r\n",
                                "just words, no numbers\r\nat all\r\n",
                                binary,
                                std::string(3000, ','),
                                "Station,Lon\r\nA,1\r\nB,2\r\n",
                                "Station,Lon,Lat,Alt,TL,PL,T\r\nA,1,2\r\n"};
  int i = 0;
  for (const std::string& input : inputs) {
    auto r = Stations(input, "g" + std::to_string(i++) + ".csv");
    EXPECT_FALSE(r.Ok) << i;
    ExpectSameStations(s.Interp, before);
  }
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(InterpFixture, TargetsNeedTheStationTableAndTheirFiveColumns) {
  Sites({"S1", "S2"});
  // No station table: no columns for the rates.
  auto first = Targets(StationCsv({}, TargetRows({"S1", "S2"}), "Site"));
  EXPECT_FALSE(first.Ok);
  EXPECT_EQ(first.Failure, FailureKind::SubscriptOutOfRange);
  ASSERT_TRUE(Stations(StationCsv(kTwoParams, ThreeStations())).Ok);
}

TEST_F(InterpFixture, NarrowTargetsReadTheMissingColumnsAsZero) {
  Sites({"S1", "S2"});
  ASSERT_TRUE(Stations(StationCsv(kTwoParams, ThreeStations())).Ok);
  // Nothing tests a target table's width: the lapse rates it lacks are 0,
  // and so is the altitude of a table of positions alone.
  auto narrow = Targets("Site,Lon,Lat,Alt\r\nS1,1,2,3\r\nS2,4,5,6\r\n", "narrow.csv");
  ASSERT_TRUE(narrow.Ok);
  const InterpolationState& in = s.Interp;
  EXPECT_TRUE(in.InterpTargetLoaded);
  EXPECT_EQ(in.InterpTargetCount, 2);
  EXPECT_EQ(in.SiteLongitude(2), 4.0f);
  EXPECT_EQ(in.SiteAltitude(2), 6.0f);
  for (long i = 1; i <= 2; ++i)
    for (long k = 4; k <= in.InterpColumnCount; ++k) EXPECT_EQ(in.InterpTargetLapse(i, k), 0.0);
  auto two = Targets("Site,Lon,Lat\r\nS1,7,8\r\nS2,9,10\r\n", "two.csv");
  ASSERT_TRUE(two.Ok);
  EXPECT_EQ(in.SiteLatitude(2), 10.0f);
  EXPECT_EQ(in.SiteAltitude(1), 0.0f);
}
