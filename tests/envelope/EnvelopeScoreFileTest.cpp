// The fossil score file carries each sample's envelope state: "?" before
// the test, "In"/"Out" after it, and "In" for all after a reset.
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "envelope/Envelope.h"
#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "state/ScoreFiles.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

Session Projected() {
  Session s;
  FakeDialogs dialogs;
  NoProgress none;
  EXPECT_TRUE(ImportReference(s, TestData("envelope/reference.csv"), dialogs, none).Ok);
  ApplyPreTreatment(s, PreTreatmentSettings{}, none);
  EXPECT_TRUE(ImportFossil(s, TestData("envelope/fossil.csv"), dialogs, none).Ok);
  EXPECT_TRUE(s.ProjectionDone);
  return s;
}

// The state field of each sample line, in order.
std::vector<std::string> States(const Session& s, const TempDir& dir) {
  NoProgress none;
  fSaveScore(s, dir.Path("f.csv"), FileStamp{"2026-11-22", "12:00:00"}, none);
  std::istringstream in(ReadFile(dir.Path("f.csv")));
  std::vector<std::string> states;
  std::string line;
  bool data = false;
  while (std::getline(in, line)) {
    if (line.rfind("\"Depth\",\"Envelope\"", 0) == 0) {
      data = true;
      continue;
    }
    if (!data) continue;
    auto a = line.find(',');
    auto b = line.find(',', a + 1);
    states.push_back(line.substr(a + 1, b - a - 1));
  }
  return states;
}

std::string ToleranceLine(const TempDir& dir) {
  std::istringstream in(ReadFile(dir.Path("f.csv")));
  std::string line;
  while (std::getline(in, line))
    if (line.find("Tightness of envelope") != std::string::npos) return line;
  return {};
}

}  // namespace

TEST(EnvelopeScoreFile, QuestionMarksBeforeTheTestInOutAfterInAfterAReset) {
  Session s = Projected();
  TempDir dir;
  s.EnvelopeTolerance = EnvelopeToleranceFor(3);  // the slider moved before any run
  EXPECT_EQ(States(s, dir), std::vector<std::string>(5, "\"?\""));
  EXPECT_NE(ToleranceLine(dir).find(",0.3"), std::string::npos) << ToleranceLine(dir);

  NoProgress none;
  RunEnvelope(s, 0, none);
  std::vector<std::string> after = States(s, dir);
  ASSERT_EQ(after.size(), 5u);
  EXPECT_EQ(after[1], "\"In\"");   // the same composition as a reference site
  EXPECT_EQ(after[2], "\"Out\"");  // a composition no site comes near
  for (const auto& st : after) EXPECT_TRUE(st == "\"In\"" || st == "\"Out\"") << st;
  EXPECT_NE(ToleranceLine(dir).find(",0\r"), std::string::npos) << ToleranceLine(dir);

  ResetEnvelope(s);
  EXPECT_EQ(States(s, dir), std::vector<std::string>(5, "\"In\""));
}

TEST(EnvelopeScoreFile, ExampleCoreHasBothStatesAtTheTightestSetting) {
  Session s;
  FakeDialogs dialogs;
  NoProgress none;
  ASSERT_TRUE(ImportReference(s, Example("reference.csv"), dialogs, none).Ok);
  ApplyPreTreatment(s, PreTreatmentSettings{}, none);
  dialogs.QuestionAnswers.assign(50, true);
  ASSERT_TRUE(ImportFossil(s, Example("fossil.csv"), dialogs, none).Ok);
  RunEnvelope(s, 0, none);
  int out = 0, extreme = 0;
  for (long i = 1; i <= s.FossilSampleCount; ++i) out += s.SampleIsOut(i);
  for (long i = 1; i <= s.RefSiteCount; ++i) extreme += s.SiteIsExtreme(i);
  EXPECT_GT(extreme, 2);
  EXPECT_LT(extreme, s.RefSiteCount);
  EXPECT_GT(out, 0);
  EXPECT_LT(out, s.FossilSampleCount);
  // The loosest setting lets fewer samples out than the tightest.
  RunEnvelope(s, 10, none);
  int outLoose = 0;
  for (long i = 1; i <= s.FossilSampleCount; ++i) outLoose += s.SampleIsOut(i);
  EXPECT_LT(outLoose, out);
}
