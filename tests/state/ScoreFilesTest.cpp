#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

#include "envelope/Envelope.h"
#include "eof/PreTreatment.h"
#include "state/Format.h"
#include "state/Import.h"
#include "state/ScoreFiles.h"
#include "support/Tables.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

struct ScoreFiles : ::testing::Test {
  TempDir dir;
  FakeDialogs dialogs;
  NoProgress progress;
  Session s;
  FileStamp stamp{"2026-01-02", "03:04:05"};

  void Road(const std::string& fossilHeader, std::deque<bool> answers) {
    ASSERT_TRUE(
        ImportReference(s, dir.Write("ref.csv", MakeTable(3, 5, true, Varied)), dialogs, progress)
            .Ok);
    ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
    dialogs.QuestionAnswers = std::move(answers);
    std::string fossil = fossilHeader + "\n0,1,2,3\n10,4,5,6\n20,7,8,9\n";
    ASSERT_TRUE(ImportFossil(s, dir.Write("fossil.csv", fossil), dialogs, progress).Ok);
  }
  std::vector<std::string> Fossil() {
    fSaveScore(s, dir.Path("f.csv"), stamp, progress);
    return Lines(ReadFile(dir.Path("f.csv")));
  }
};

}  // namespace

TEST_F(ScoreFiles, LoadingFile) {
  Road("Depth,T1,T2,T3", {});
  SaveLoading(s, dir.Path("l.csv"), stamp, progress);
  auto lines = Lines(ReadFile(dir.Path("l.csv")));
  ASSERT_EQ(lines.size(), 10u);
  EXPECT_EQ(lines[0], "\"Varnoth 1.0 output file (component loading)\"");
  EXPECT_EQ(lines[1], "\"Date/Time: \",\"2026-01-02 (03:04:05)\"");
  EXPECT_EQ(lines[2], "\"Reference data file: \",\"" + dir.Path("ref.csv") + "\"");
  EXPECT_EQ(lines[3], "\"No. of reference taxa: \",3");
  EXPECT_EQ(lines[4], "\"No. of reference sites: \",5");
  EXPECT_EQ(lines[5], "\"EOF No.:\",1,2,3");
  EXPECT_EQ(lines[6], "\"Contribution:\"," + FormatSingle(s.Contribution(1)) + "," +
                          FormatSingle(s.Contribution(2)) + "," + FormatSingle(s.Contribution(3)));
  EXPECT_EQ(lines[9], "\"T3\"," + FormatGeneral(s.Loadings(3, 1)) + "," +
                          FormatGeneral(s.Loadings(3, 2)) + "," + FormatGeneral(s.Loadings(3, 3)));
  EXPECT_EQ(ReadFile(dir.Path("l.csv")).substr(ReadFile(dir.Path("l.csv")).size() - 2), "\r\n");
}

TEST_F(ScoreFiles, ReferenceScoreFile) {
  Road("Depth,T1,T2,T3", {});
  sSaveScore(s, dir.Path("s.csv"), stamp, progress);
  auto lines = Lines(ReadFile(dir.Path("s.csv")));
  ASSERT_EQ(lines.size(), 15u);
  EXPECT_EQ(lines[0], "\"Varnoth 1.0 output file (component score for reference dataset)\"");
  EXPECT_EQ(lines[3], "\"Data pre-treatment: \",\"Proportion\"");
  EXPECT_EQ(lines[4], "\"Enhancing minor taxa: \",\"N/A\"");
  EXPECT_EQ(lines[5], "\"Type of matrix: \",\"Variance/Covariance\"");
  EXPECT_EQ(lines[6], "\"No. of reference taxa: \",3");
  EXPECT_EQ(lines[7], "\"No. of reference sites: \",5");
  EXPECT_EQ(lines[8], "\"EOF No.:\",1,2,3");
  EXPECT_EQ(lines[10], "\"S1\"," + FormatGeneral(s.RefScores(1, 1)) + "," +
                           FormatGeneral(s.RefScores(1, 2)) + "," +
                           FormatGeneral(s.RefScores(1, 3)));
}

TEST_F(ScoreFiles, FossilFileBeforeTheEnvelope) {
  Road("Depth,T1,T2,T3", {});
  s.EnvelopeTolerance = 0.7f;  // what Slider1 last gave
  auto lines = Fossil();
  ASSERT_EQ(lines.size(), 18u);
  EXPECT_EQ(lines[0], "\"Varnoth 1.0 output file (component score for fossil dataset)\"");
  EXPECT_EQ(lines[3], "\"Fossil data file: \",\"" + dir.Path("fossil.csv") + "\"");
  EXPECT_EQ(lines[9], "\"No. of fossil taxa: \",3");
  EXPECT_EQ(lines[10], "\"No. of fossil samples: \",3");
  // No accepted pair: line 12 stays open and line 13 follows on it.
  EXPECT_EQ(lines[11], "\"Taxa name inconsistency: \",\"Tightness of envelope: \",0.7");
  EXPECT_EQ(lines[12], "\"\",\"EOF No.:\",1,2,3");
  EXPECT_EQ(lines[13].rfind("\"\",\"Contribution:\",", 0), 0u);
  EXPECT_EQ(lines[14], "\"Depth\",\"Envelope\",\"Yes\",\"Yes\",\"No\"");
  for (int i = 15; i < 18; ++i) EXPECT_NE(lines[i].find(",\"?\","), std::string::npos) << i;
  EXPECT_EQ(lines[15].rfind("\"0\",\"?\"," + FormatGeneral(s.FossilScores(1, 1)), 0), 0u);
}

TEST_F(ScoreFiles, OneAcceptedPairIsLeftOut) {
  Road("Depth,T1,X2,T3", {true});
  EXPECT_EQ(s.TaxaMismatch(0), "1");
  auto lines = Fossil();
  EXPECT_EQ(lines[11], "\"Taxa name inconsistency: \",\"Tightness of envelope: \",0.1");
  EXPECT_EQ(lines.size(), 18u);
}

TEST_F(ScoreFiles, TwoAcceptedPairsAreWritten) {
  Road("Depth,Y1,X2,T3", {true, true});
  auto lines = Fossil();
  EXPECT_EQ(lines[11], "\"Taxa name inconsistency: \",\"[Y1]/[T1]\",\"[X2]/[T2]\"");
  EXPECT_EQ(lines[12], "\"Tightness of envelope: \",0.1");
  EXPECT_EQ(lines.size(), 19u);
}

TEST_F(ScoreFiles, StatesAfterTheEnvelopeAndAfterAReset) {
  // Percentages on both sides: samples 0 and 10 stand among the reference
  // sites, sample 20 holds a single taxon, far outside them all.
  const std::string reference =
      "Site,T1,T2,T3\nS1,20,30,50\nS2,40,40,20\nS3,30,20,50\nS4,50,25,25\nS5,25,50,25\n"
      "S6,33,33,34\n";
  ASSERT_TRUE(ImportReference(s, dir.Write("ref.csv", reference), dialogs, progress).Ok);
  ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
  const std::string fossil = "Depth,T1,T2,T3\n0,33,33,34\n10,34,33,33\n20,0,0,100\n";
  ASSERT_TRUE(ImportFossil(s, dir.Write("fossil.csv", fossil), dialogs, progress).Ok);
  RunEnvelope(s, 1, progress);
  ASSERT_TRUE(s.EnvelopeDone);
  ASSERT_EQ(s.SampleIsOut(3), 1);
  auto lines = Fossil();
  int out = 0;
  for (int i = 1; i <= 3; ++i) {
    const std::string state = s.SampleIsOut(i) ? ",\"Out\"," : ",\"In\",";
    EXPECT_NE(lines[14 + i].find(state), std::string::npos) << lines[14 + i];
    out += s.SampleIsOut(i) ? 1 : 0;
  }
  EXPECT_LT(out, 3);  // the mixed samples are not all out
  // "Reset envelope" clears the marks: every state reads "In".
  ResetEnvelope(s);
  lines = Fossil();
  for (int i = 15; i < 18; ++i) EXPECT_NE(lines[i].find(",\"In\","), std::string::npos) << lines[i];
}

TEST_F(ScoreFiles, EnvelopeAxesMarkTheColumns) {
  Road("Depth,T1,T2,T3", {});
  s.EnvelopeAxisCount = 3;
  s.EnvelopeAxes(1) = 3;
  s.EnvelopeAxes(2) = 1;
  s.EnvelopeAxes(3) = 1;
  auto lines = Fossil();
  EXPECT_EQ(lines[14], "\"Depth\",\"Envelope\",\"Yes\",\"No\",\"Yes\"");
}

TEST_F(ScoreFiles, FossilBaseWritesNotApplicable) {
  ASSERT_TRUE(
      ImportFossil(s, dir.Write("f.csv", MakeTable(3, 5, false, Varied)), dialogs, progress).Ok);
  PreTreatmentSettings p;
  p.Enhance = true;
  p.SquareRoot = false;
  p.ConvertToPercent = false;
  ApplyPreTreatment(s, p, progress);
  auto lines = Fossil();
  EXPECT_EQ(lines[4], "\"Data pre-treatment: \",\"Raw data\"");
  EXPECT_EQ(lines[5], "\"Enhancing minor taxa: \",\"Log\"");
  EXPECT_EQ(lines[7], "\"No. of reference taxa: \",\"N/A\"");
  EXPECT_EQ(lines[8], "\"No. of reference sites: \",\"N/A\"");
  EXPECT_EQ(lines[11], "\"Taxa name inconsistency: \",\"N/A\"");
  SaveLoading(s, dir.Path("l.csv"), stamp, progress);
  auto loading = Lines(ReadFile(dir.Path("l.csv")));
  EXPECT_EQ(loading[3], "\"No. of fossil taxa: \",3");
  EXPECT_EQ(loading[4], "\"No. of depth: \",5");
}

TEST_F(ScoreFiles, UnwritableFileIsAFailure) {
  Road("Depth,T1,T2,T3", {});
  EXPECT_THROW(SaveLoading(s, dir.Path("no/such/dir.csv"), stamp, progress), RuntimeFailure);
}

// More rows than one slice of the writer: every row in its place, each
// number as printf gives it.
TEST_F(ScoreFiles, ManyRowsStayInOrder) {
  const int taxa = 4, sites = 1100, samples = 700;
  ASSERT_TRUE(ImportReference(s, dir.Write("ref.csv", MakeTable(taxa, sites, true, Varied)),
                              dialogs, progress)
                  .Ok);
  ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
  ASSERT_TRUE(ImportFossil(
                  s,
                  dir.Write("fossil.csv", MakeTable(taxa, samples, false,
                                                    [](int i, int j) { return Varied(i + 3, j); })),
                  dialogs, progress)
                  .Ok);
  auto printed = [](double v) {
    if (v == 0) return std::string("0");
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.15G", v);
    return std::string(buf);
  };
  sSaveScore(s, dir.Path("r.csv"), stamp, progress);
  auto lines = Lines(ReadFile(dir.Path("r.csv")));
  ASSERT_EQ(lines.size(), 10u + sites);
  for (int i = 1; i <= sites; ++i) {
    std::string row = "\"" + s.RefSiteNames(i) + "\"";
    for (int c = 1; c <= taxa; ++c) row += "," + printed(s.RefScores(i, c));
    ASSERT_EQ(lines[9 + i], row) << i;
  }
  auto fossil = Fossil();
  ASSERT_EQ(fossil.size(), 15u + samples);
  for (int i = 1; i <= samples; ++i) {
    std::string row = "\"" + s.FossilLabels(i) + "\",\"?\"";
    for (int c = 1; c <= taxa; ++c) row += "," + printed(s.FossilScores(i, c));
    ASSERT_EQ(fossil[14 + i], row) << i;
  }
}
