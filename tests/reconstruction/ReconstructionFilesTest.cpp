#include <gtest/gtest.h>

#include <filesystem>

#include "reconstruction/ReconSupport.h"
#include "reconstruction/ReconstructionFiles.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

// Four samples: one with two analogues, one with none, one empty, one with
// three; two parameters; three reference sites.
struct FilesFixture : ::testing::Test {
  TempDir dir;
  NoProgress progress;
  Session s;
  Array1<std::string> mapNames{3};
  Array1<float> lon{3}, lat{3}, alt{3};

  void SetUp() override {
    SetFossil(s, Rows(4, std::vector<double>{0.5, 0.5}));
    s.FossilEmptySample(3) = 1;
    SetReference(s, Rows(3, std::vector<double>{0.5, 0.5}));
    SetClimate(s, {{10, 0}, {20, 0}, {kMissing, 0}}, {"T", "P"});
    s.ClimateSiteNames(1) = "Alpha";
    s.ClimateSiteNames(2) = "Beta";
    s.ClimateSiteNames(3) = "Gamma";
    s.CurrentParameter = 1;
    s.ReconValue.ReDim(4, 2);
    s.ReconLow.ReDim(4, 2);
    s.ReconHigh.ReDim(4, 2);
    s.AnalogueCount.ReDim(4);
    s.AnalogueSite.ReDim(4, 20);
    s.AnalogueDistance.ReDim(4, 3);
    Sample(1, 2, {12.5, 800.25}, {10, 700}, {15, 900.5}, {1, 2}, {0.01f, 0.12345678f});
    Sample(2, 0, {kMissing, kMissing}, {999999, 999999}, {-999999, -999999}, {}, {});
    Sample(3, 1, {1, 2}, {1, 2}, {1, 2}, {1}, {0.5f});
    Sample(4, 3, {0.1, 1e-5}, {-1, 0}, {2, 0.0001}, {3, 1, 2}, {0.5f, 0.75f, 1e-8f});
    s.LastAnalogueCount = 3;
    s.ReconRefValue.ReDim(3, 2);
    s.ReconRefValue(1, 1) = 11.5;
    s.ReconRefValue(2, 1) = kMissing;
    s.ReconRefValue(3, 1) = -0.25;
    const char* names[] = {"Map A", "Map B", "Map C"};
    const float lons[] = {-10.5f, 20, 0}, lats[] = {45, -33.25f, 1.5f}, alts[] = {100, 2500, -5};
    for (int i = 1; i <= 3; ++i) {
      mapNames(i) = names[i - 1];
      lon(i) = lons[i - 1];
      lat(i) = lats[i - 1];
      alt(i) = alts[i - 1];
    }
  }
  void Sample(long k, Count n, std::vector<double> v, std::vector<double> lo,
              std::vector<double> hi, std::vector<Count> sites, std::vector<float> d) {
    s.ReconValue(k, 0) = n;
    s.AnalogueCount(k) = n;
    for (long p = 1; p <= 2; ++p) {
      s.ReconValue(k, p) = v[p - 1];
      s.ReconLow(k, p) = lo[p - 1];
      s.ReconHigh(k, p) = hi[p - 1];
    }
    for (std::size_t r = 0; r < sites.size(); ++r) {
      s.AnalogueSite(k, static_cast<long>(r) + 1) = sites[r];
      s.AnalogueDistance(k, static_cast<long>(r) + 1) = d[r];
    }
  }
  std::string Expected(const std::string& name) {
    return ReadFile(TestData("reconstruction/files/" + name));
  }
  std::string Out(const std::string& name) { return dir.Path(name); }
};

}  // namespace

TEST_F(FilesFixture, CurveOfTheShownParameter) {
  ASSERT_TRUE(SaveCurve(s, Out("a.csv"), progress));
  EXPECT_EQ(ReadFile(Out("a.csv")), Expected("curve.csv"));
}

TEST_F(FilesFixture, CurveWithError) {
  ASSERT_TRUE(SaveCurveWithE(s, Out("a.csv"), progress));
  EXPECT_EQ(ReadFile(Out("a.csv")), Expected("curve-with-error.csv"));
}

TEST_F(FilesFixture, AllParameters) {
  ASSERT_TRUE(SaveCurveAll(s, Out("a.csv"), progress));
  EXPECT_EQ(ReadFile(Out("a.csv")), Expected("curve-all.csv"));
}

TEST_F(FilesFixture, AllParametersWithErrorLeaveTheSampleWithoutAnaloguesEmpty) {
  ASSERT_TRUE(SaveCurveAllwithE(s, Out("a.csv"), progress));
  EXPECT_EQ(ReadFile(Out("a.csv")), Expected("curve-all-with-error.csv"));
}

TEST_F(FilesFixture, AnalogueDetailsWithoutSiteInformation) {
  ASSERT_TRUE(SaveDistAna(s, Out("a.csv"), progress));
  EXPECT_EQ(ReadFile(Out("a.csv")), Expected("analogue-details.csv"));
}

TEST_F(FilesFixture, AnalogueDetailsWithSiteInformation) {
  SiteInfo info{mapNames, lon, lat, alt};
  ASSERT_TRUE(SaveDistAna(s, Out("a.csv"), progress, &info));
  EXPECT_EQ(ReadFile(Out("a.csv")), Expected("analogue-details-sites.csv"));
}

TEST_F(FilesFixture, AnalogueDetailsHeaderFollowsTheLastCount) {
  s.LastAnalogueCount = 1;
  ASSERT_TRUE(SaveDistAna(s, Out("a.csv"), progress));
  std::string text = ReadFile(Out("a.csv"));
  EXPECT_EQ(text.substr(0, text.find("\r\n")), "\"Depth\",\"Parameter\",\"Analogue-1\"");
  // Rows stay as long as their own analogues.
  EXPECT_NE(text.find("\"30\",\"Analogue site name\",\"Gamma\",\"Alpha\",\"Beta\""),
            std::string::npos);
}

TEST_F(FilesFixture, ScatterWritesTheMissingEstimateAsText) {
  ASSERT_TRUE(SaveScatter(s, Out("a.csv"), progress));
  EXPECT_EQ(ReadFile(Out("a.csv")), Expected("scatter.csv"));
}

TEST_F(FilesFixture, TextDepthLabelsStandAsText) {
  s.FossilLabels(1) = "Top";
  s.FossilLabels(4) = "Base, lower";
  ASSERT_TRUE(SaveCurve(s, Out("a.csv"), progress));
  std::string text = ReadFile(Out("a.csv"));
  EXPECT_NE(text.find("\"Top\",12.5\r\n"), std::string::npos);
  EXPECT_NE(text.find("\"Base, lower\",0.1\r\n"), std::string::npos);
}

TEST_F(FilesFixture, CancelAndUnwritablePathsWriteNothing) {
  struct Recorder : Progress {
    long max = -1;
    int finished = 0;
    void Start(long m) override { max = m; }
    void Step(long) override {}
    void Finish() override { ++finished; }
  } rec;
  EXPECT_FALSE(SaveCurve(s, std::nullopt, rec));
  EXPECT_EQ(rec.max, -1);
  EXPECT_FALSE(SaveCurveAll(s, dir.Path("no/such/folder/a.csv"), rec));
  EXPECT_EQ(rec.max, 4);
  EXPECT_EQ(rec.finished, 1);
  EXPECT_FALSE(std::filesystem::exists(dir.Path("no/such/folder/a.csv")));
  EXPECT_TRUE(SaveScatter(s, Out("b.csv"), rec));
  EXPECT_EQ(rec.max, 3);  // the scatter runs over the sites
  EXPECT_EQ(rec.finished, 2);
}
