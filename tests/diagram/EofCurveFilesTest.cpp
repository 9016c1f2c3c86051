#include <gtest/gtest.h>

#include "diagram/DiagramSupport.h"
#include "diagram/EofCurveFiles.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

Session Scored() {
  Session s = Core({{0.5, 0.3, 0.2}, {0, 0, 0}, {0.1, 0.1, 0.8}}, {"0", "12.5", "30"}, false);
  s.FossilScores.ReDim(3, 3);
  double v = 0.25;
  for (long i = 1; i <= 3; ++i)
    for (long k = 1; k <= 3; ++k) s.FossilScores(i, k) = (v += 1.5) * (k == 2 ? -1 : 1);
  return s;
}

}  // namespace

TEST(EofCurveFiles, ShownEofHasADepthColumnAndOneScoreColumn) {
  Session s = Scored();
  TempDir dir;
  NoProgress none;
  SaveEOF(s, 2, dir.Path("eof.csv"), none);
  EXPECT_EQ(ReadFile(dir.Path("eof.csv")),
            "\"Depth\",\"EOF-2\"\r\n"
            "\"0\",-3.25\r\n"
            "\"12.5\"\r\n"
            "\"30\",-12.25\r\n");
}

TEST(EofCurveFiles, AllEofsSpellTheLastHeadingApart) {
  Session s = Scored();
  TempDir dir;
  NoProgress none;
  SaveAllEOF(s, dir.Path("all.csv"), none);
  EXPECT_EQ(ReadFile(dir.Path("all.csv")),
            "\"Depth\",\"EOF-1\",\"EOF-2\",\"EOF - 3\"\r\n"
            "\"0\",1.75,-3.25,4.75\r\n"
            "\"12.5\"\r\n"
            "\"30\",10.75,-12.25,13.75\r\n");
}

TEST(EofCurveFiles, AnExistingFileIsReplaced) {
  Session s = Scored();
  TempDir dir;
  std::string path = dir.Write("eof.csv", "old content that is longer than the new one ......");
  NoProgress none;
  SaveEOF(s, 1, path, none);
  EXPECT_EQ(ReadFile(path).rfind("\"Depth\",\"EOF-1\"\r\n", 0), 0u);
  EXPECT_EQ(ReadFile(path).find("old"), std::string::npos);
}
