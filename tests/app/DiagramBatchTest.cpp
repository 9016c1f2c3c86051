// varnoth-batch with the diagram's results: CONISS joins and all EOF curves.
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
  return std::string(VARNOTH_TEST_DATA) + "/diagram/" + name;
}

std::string Tables(const std::string& fossil) {
  return "--reference \"" + Data("reference.csv") + "\" --fossil \"" + Data(fossil) + "\"";
}

}  // namespace

TEST(DiagramBatch, ConissWritesOneRecordPerJoin) {
  // Core of four samples at depths 0, 10, 20, 30 (positions 10 to 40):
  // (0, 1), (.25, .75), (.75, .25), (1, 0). The outer pairs tie at 0.125
  // and the first joins first; the clusters (.125, .875) and (.875, .125)
  // join at 0.5625 * 2 plus both levels.
  BatchRun r(Tables("core.csv") + " --coniss");
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  EXPECT_EQ(r.File("coniss.csv"),
            "\"Join\",\"Left\",\"Right\",\"Height\"\r\n"
            "1,10,20,0.125\r\n"
            "2,30,40,0.125\r\n"
            "3,15,35,1.375\r\n");
  EXPECT_FALSE(r.Has("eof-all.csv"));
}

TEST(DiagramBatch, EqualFirstAndLastDepthsStopTheRunWithTheFailure) {
  BatchRun r(Tables("equal-depths.csv") + " --coniss");
  EXPECT_EQ(r.Code(), 1);
  EXPECT_NE(r.Errors().find("Error: Division by zero"), std::string::npos) << r.Errors();
  EXPECT_FALSE(r.Has("coniss.csv"));
}

TEST(DiagramBatch, AllEofCurvesMatchTheFossilScores) {
  BatchRun r(Tables("core.csv") + " --save-all-eof");
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  std::vector<std::string> all = Lines(r.File("eof-all.csv"));
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ(all[0], "\"Depth\",\"EOF-1\",\"EOF-2\",\"EOF - 3\"");
  // Each sample line is the score file's line without the envelope state.
  std::vector<std::string> scores = Lines(r.File("score-fossil.csv"));
  for (std::size_t i = 1; i < all.size(); ++i) {
    std::string score = scores[scores.size() - all.size() + i];
    std::string withoutState =
        score.substr(0, score.find(',')) + score.substr(score.find(',', score.find(',') + 1));
    EXPECT_EQ(all[i], withoutState);
  }
  EXPECT_FALSE(r.Has("coniss.csv"));
}

TEST(DiagramBatch, BothTogetherAndTheirNeeds) {
  BatchRun r(Tables("core.csv") + " --coniss --save-all-eof");
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  EXPECT_TRUE(r.Has("coniss.csv"));
  EXPECT_TRUE(r.Has("eof-all.csv"));
  BatchRun noFossil("--reference \"" + Data("reference.csv") + "\" --coniss");
  EXPECT_EQ(noFossil.Code(), 2);
  EXPECT_NE(noFossil.Errors().find("--fossil"), std::string::npos);
}
