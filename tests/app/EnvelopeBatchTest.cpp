// varnoth-batch with the envelope test: In/Out in the fossil score file and
// the extreme reference sites.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "BatchProgram.h"

namespace {

using varnoth::test::Lines;

using varnoth::test::BatchRun;

namespace fs = std::filesystem;

std::string Data(const std::string& name) {
  return std::string(VARNOTH_TEST_DATA) + "/envelope/" + name;
}

const std::string kTables =
    "--reference \"" + Data("reference.csv") + "\" --fossil \"" + Data("fossil.csv") + "\"";

// The state field of each sample line of the fossil score file.
std::vector<std::string> States(const std::string& scoreFile) {
  std::vector<std::string> states;
  bool data = false;
  for (const std::string& line : Lines(scoreFile)) {
    if (line.rfind("\"Depth\",\"Envelope\"", 0) == 0) {
      data = true;
      continue;
    }
    if (!data) continue;
    auto a = line.find(',');
    states.push_back(line.substr(a + 1, line.find(',', a + 1) - a - 1));
  }
  return states;
}

std::string Line(const std::string& text, const std::string& start) {
  for (const std::string& line : Lines(text))
    if (line.rfind(start, 0) == 0) return line;
  return {};
}

// The tolerance field: with no accepted name pair the tightness follows on
// the name line, so it is looked for anywhere in a line.
std::string Tightness(const std::string& text) {
  const std::string field = "\"Tightness of envelope: \",";
  for (const std::string& line : Lines(text)) {
    auto at = line.find(field);
    if (at != std::string::npos) return line.substr(at + field.size());
  }
  return "(none)";
}

}  // namespace

TEST(EnvelopeBatch, WithoutTheEnvelopeEveryStateIsAQuestionMark) {
  BatchRun r(kTables);
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  EXPECT_EQ(States(r.File("score-fossil.csv")), std::vector<std::string>(5, "\"?\""));
  EXPECT_FALSE(r.Has("extreme-sites.csv"));
}

TEST(EnvelopeBatch, TheTightestEnvelopeMarksTheOddSampleOut) {
  BatchRun r(kTables + " --envelope 0");
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  std::vector<std::string> states = States(r.File("score-fossil.csv"));
  ASSERT_EQ(states.size(), 5u);
  EXPECT_EQ(states[1], "\"In\"");   // the composition of site S3
  EXPECT_EQ(states[2], "\"Out\"");  // 80 % of a taxon no site has above 3 %
  EXPECT_EQ(Tightness(r.File("score-fossil.csv")), "0");
}

TEST(EnvelopeBatch, ExtremeSitesHaveOneRowPerReferenceSite) {
  BatchRun r(kTables + " --envelope 0.3");
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  std::vector<std::string> rows = Lines(r.File("extreme-sites.csv"));
  ASSERT_EQ(rows.size(), 10u);
  int yes = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::string name = "\"S" + std::to_string(i + 1) + "\",";
    ASSERT_EQ(rows[i].rfind(name, 0), 0u) << rows[i];
    std::string answer = rows[i].substr(name.size());
    EXPECT_TRUE(answer == "\"Yes\"" || answer == "\"No\"") << rows[i];
    yes += answer == "\"Yes\"";
  }
  // A cloud in two dimensions has at least three corners, and here some
  // sites lie inside.
  EXPECT_GE(yes, 3);
  EXPECT_LT(yes, 10);
  EXPECT_EQ(Tightness(r.File("score-fossil.csv")), "0.3");
}

TEST(EnvelopeBatch, EveryRunRepeatsTheFirstEnvelopeOfASession) {
  BatchRun a(kTables + " --envelope 0 --timestamp \"2026-01-01 00:00:00\"");
  BatchRun b(kTables + " --envelope 0 --timestamp \"2026-01-01 00:00:00\"");
  ASSERT_EQ(a.Code(), 0);
  ASSERT_EQ(b.Code(), 0);
  EXPECT_EQ(a.File("score-fossil.csv"), b.File("score-fossil.csv"));
  EXPECT_EQ(a.File("extreme-sites.csv"), b.File("extreme-sites.csv"));
}

TEST(EnvelopeBatch, AxesChooseTheEofsAndMoreThanThreeUseTheMoreAxisWay) {
  BatchRun three(kTables + " --envelope 0 --envelope-axes 1,3,2");
  ASSERT_EQ(three.Code(), 0) << three.Errors();
  EXPECT_EQ(Line(three.File("score-fossil.csv"), "\"Depth\",\"Envelope\""),
            "\"Depth\",\"Envelope\",\"Yes\",\"Yes\",\"Yes\",\"No\"");
  BatchRun four(kTables + " --envelope 0 --envelope-axes 1,2,3,4");
  ASSERT_EQ(four.Code(), 0) << four.Errors();
  EXPECT_EQ(Line(four.File("score-fossil.csv"), "\"Depth\",\"Envelope\""),
            "\"Depth\",\"Envelope\",\"Yes\",\"Yes\",\"Yes\",\"Yes\"");
  EXPECT_EQ(States(four.File("score-fossil.csv"))[2], "\"Out\"");
  EXPECT_EQ(States(four.File("score-fossil.csv"))[1], "\"In\"");
  // The axes alone run the envelope at the start tolerance, 0.1.
  BatchRun axesOnly(kTables + " --envelope-axes 2,4");
  ASSERT_EQ(axesOnly.Code(), 0) << axesOnly.Errors();
  EXPECT_TRUE(axesOnly.Has("extreme-sites.csv"));
  EXPECT_EQ(Tightness(axesOnly.File("score-fossil.csv")), "0.1");
  EXPECT_EQ(Line(axesOnly.File("score-fossil.csv"), "\"Depth\",\"Envelope\""),
            "\"Depth\",\"Envelope\",\"No\",\"Yes\",\"No\",\"Yes\"");
}

TEST(EnvelopeBatch, WrongValuesAreUsageErrors) {
  for (const char* bad : {"--envelope 0.55", "--envelope 1.1", "--envelope -0.1", "--envelope x",
                          "--envelope-axes 1", "--envelope-axes 1,1", "--envelope-axes 1,x",
                          "--envelope-axes 0,2", "--envelope-axes 1,2,"}) {
    BatchRun r(kTables + " " + bad);
    EXPECT_EQ(r.Code(), 2) << bad;
    EXPECT_NE(r.Errors().find("--envelope"), std::string::npos) << bad << ": " << r.Errors();
  }
  BatchRun beyond(kTables + " --envelope 0 --envelope-axes 1,5");
  EXPECT_EQ(beyond.Code(), 2);
  EXPECT_NE(beyond.Errors().find("EOF 5"), std::string::npos) << beyond.Errors();
  BatchRun noFossil("--reference \"" + Data("reference.csv") + "\" --envelope 0.2");
  EXPECT_EQ(noFossil.Code(), 2);
}
