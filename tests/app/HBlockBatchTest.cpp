// The h-block error models and the performance table in a batch run, on
// five hand-made sites one degree apart on the equator whose spectra lie
// ever further apart along the line (the first taxon 0, 8, 20, 36, 56
// percent, the second the rest of 80, two more constant), and on the
// example set.
#include <gtest/gtest.h>

#include <filesystem>

#include "BatchProgram.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth::test;

namespace {

struct Line {
  TempDir work;
  std::string reference, fossil, climate, sites;
  Line() {
    reference = work.Write("reference.csv",
                           "Site,A,B,C,D\nS1,0,80,10,10\nS2,8,72,10,10\nS3,20,60,10,10\n"
                           "S4,36,44,10,10\nS5,56,24,10,10\n");
    fossil =
        work.Write("fossil.csv", "Depth,A,B,C,D\n0,40,40,10,10\n10,16,64,10,10\n20,30,50,10,10\n");
    climate = work.Write("climate.csv", "Site,T\nS1,10\nS2,20\nS3,30\nS4,40\nS5,50\n");
    sites = work.Write("sites.csv",
                       "Site,Lon,Lat,Alt,TL,PL\nS1,0,0,0,0,0\nS2,1,0,0,0,0\nS3,2,0,0,0,0\n"
                       "S4,3,0,0,0,0\nS5,4,0,0,0,0\n");
  }
  BatchResult Run(std::vector<std::string> more, const std::string& out = "out") {
    std::vector<std::string> args = {"--reference", reference, "--fossil",     fossil,  "--climate",
                                     climate,       "--out",   work.Path(out), "--min", "1",
                                     "--max",       "1",       "--error-model"};
    args.insert(args.end(), more.begin(), more.end());
    return RunBatchProgram(args, work.Path(""));
  }
  std::string File(const std::string& name) const { return ReadFile(work.Path("out/" + name)); }
};

std::string Scatter(const std::vector<std::string>& estimates) {
  std::string text = "\"T(Reconstructed)\",\"T(Estimated)\"\r\n";
  for (std::size_t i = 0; i < estimates.size(); ++i)
    text += estimates[i] + "," + std::to_string(10 * (i + 1)) + "\r\n";
  return text;
}

}  // namespace

TEST(HBlockBatch, SitesOnALineWithTheirPerformance) {
  Line line;
  const BatchResult r = line.Run({"--sites", line.sites, "--h-block", "0,150,30000"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  // Leave-one-out takes each site's neighbour on the line; within 150 km
  // the neighbours are out and the next but one stands in; 30000 km leaves
  // nothing.
  EXPECT_EQ(line.File("scatter-T.csv"), Scatter({"20", "10", "20", "30", "40"}));
  EXPECT_EQ(line.File("scatter-T-h0.csv"), line.File("scatter-T.csv"));
  EXPECT_EQ(line.File("scatter-T-h150.csv"), Scatter({"30", "40", "10", "20", "30"}));
  EXPECT_EQ(line.File("scatter-T-h30000.csv"),
            Scatter({"\"-9999\"", "\"-9999\"", "\"-9999\"", "\"-9999\"", "\"-9999\""}));
  // Leave-one-out: residuals 10, -10, -10, -10, -10: RMSEP 10, mean bias
  // -6; deviations 4 -14 -4 6 16 and -20 -10 0 10 20 give Sxy 600, Sxx 520,
  // Syy 1000 and R2 0.36 / 0.52; observations 10..50 in intervals of 4:
  // 10 in the first (10), 20 in the third, 30 the sixth, 40 the eighth, 50
  // the tenth (-10 each): the maximum bias is 10, the lowest of the
  // largest. h = 150: residuals 20, 20, -20, -20, -20, RMSEP 20, mean bias
  // -4, Sxy -200, R2 0.04 / 0.52, maximum bias 20.
  EXPECT_EQ(line.File("performance.csv"),
            "\"Parameter\",\"h (km)\",\"Sites\",\"RMSEP\",\"R2\",\"Mean bias\",\"Maximum bias\","
            "\"Observed minimum\",\"Observed maximum\"\r\n"
            "\"T\",0,5,10,0.692307692307692,-6,10,10,50\r\n"
            "\"T\",150,5,20,0.0769230769230769,-4,20,10,50\r\n"
            "\"T\",30000,0,-9999,-9999,-9999,-9999,-9999,-9999\r\n");
}

TEST(HBlockBatch, HZeroIsLeaveOneOutOnTheExampleSet) {
  TempDir work;
  // The 61 sites of the example set, half a degree apart along a meridian.
  std::string sites = "Site,Lon,Lat,Alt,TL,PL\n";
  const auto lines = Lines(ReadFile(Example("climate.csv")));
  for (std::size_t i = 1; i < lines.size(); ++i)
    sites += lines[i].substr(0, lines[i].find(',')) + ",-30," + std::to_string(i / 2) +
             (i % 2 ? ".5" : "") + ",0,0,0\n";
  const std::string path = work.Write("sites.csv", sites);
  const BatchResult r = RunBatchProgram(
      {"--reference", Example("reference.csv"), "--fossil", Example("fossil.csv"), "--climate",
       Example("climate.csv"), "--weighting", "distance", "--min", "2", "--threshold", "0.35",
       "--error-model", "--sites", path, "--h-block", "0,200", "--out", work.Path("out")},
      work.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  for (const char* p : {"SumSST", "WinSST", "Salinity"}) {
    const std::string plain = ReadFile(work.Path(std::string("out/scatter-") + p + ".csv"));
    EXPECT_EQ(ReadFile(work.Path(std::string("out/scatter-") + p + "-h0.csv")), plain) << p;
    EXPECT_NE(ReadFile(work.Path(std::string("out/scatter-") + p + "-h200.csv")), plain) << p;
  }
  EXPECT_EQ(Lines(ReadFile(work.Path("out/performance.csv"))).size(), 7u);
}

TEST(HBlockBatch, TheSitesFileIsCheckedAgainstTheReference) {
  Line line;
  // A name that differs: the question, answered No without --accept-names.
  const std::string renamed = line.work.Write(
      "renamed.csv",
      "Site,Lon,Lat,Alt,TL,PL\nS1,0,0,0,0,0\nS2,1,0,0,0,0\nX3,2,0,0,0,0\nS4,3,0,0,0,0\n"
      "S5,4,0,0,0,0\n");
  BatchResult r = line.Run({"--sites", renamed, "--h-block", "150"});
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("Name inconsistent.  [X3] = [S3]?"), std::string::npos) << r.Err;
  EXPECT_FALSE(fs::exists(line.work.Path("out/scatter-T-h150.csv")));
  r = line.Run({"--sites", renamed, "--h-block", "150", "--accept-names"});
  EXPECT_EQ(r.ExitCode, 0) << r.Err;
  // Too few rows.
  const std::string short_ = line.work.Write(
      "short.csv", "Site,Lon,Lat,Alt,TL,PL\nS1,0,0,0,0,0\nS2,1,0,0,0,0\nS3,2,0,0,0,0\n");
  r = line.Run({"--sites", short_, "--h-block", "150"});
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("3 target sites where the reference table has 5"), std::string::npos)
      << r.Err;
  // A latitude off the globe.
  const std::string off = line.work.Write(
      "off.csv",
      "Site,Lon,Lat,Alt,TL,PL\nS1,0,0,0,0,0\nS2,1,0,0,0,0\nS3,2,95,0,0,0\nS4,3,0,0,0,0\n"
      "S5,4,0,0,0,0\n");
  r = line.Run({"--sites", off, "--h-block", "150"});
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("site S3"), std::string::npos) << r.Err;
}

TEST(HBlockBatch, OptionsAreChecked) {
  Line line;
  for (const auto& [args, text] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"--h-block", "150"}, "--h-block needs --sites"},
           {{"--sites", line.sites}, "--sites is read for --h-block only"},
           {{"--sites", line.sites, "--h-block", "-5"}, "--h-block takes distances in km"},
           {{"--sites", line.sites, "--h-block", "100,"}, "--h-block takes distances in km"},
           {{"--sites", line.sites, "--h-block", "100,100"}, "--h-block names 100 km twice"}}) {
    const BatchResult r = line.Run(args);
    EXPECT_EQ(r.ExitCode, 2) << text;
    EXPECT_NE(r.Err.find(text), std::string::npos) << r.Err;
  }
}

TEST(HBlockBatch, ManyCoresWriteTheErrorModelsOnceAtTheTop) {
  Line line;
  const std::string list = line.work.Write("cores.txt", line.fossil + "\n" + line.fossil + "\n");
  BatchResult r =
      RunBatchProgram({"--reference", line.reference, "--climate", line.climate, "--cores", list,
                       "--min", "1", "--max", "1", "--error-model", "--sites", line.sites,
                       "--h-block", "150", "--out", line.work.Path("cores")},
                      line.work.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  r = line.Run({"--sites", line.sites, "--h-block", "150"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  for (const char* f : {"scatter-T.csv", "scatter-T-h150.csv", "performance.csv"}) {
    EXPECT_EQ(ReadFile(line.work.Path(std::string("cores/") + f)), line.File(f)) << f;
    EXPECT_FALSE(fs::exists(line.work.Path(std::string("cores/fossil/") + f))) << f;
  }
}
