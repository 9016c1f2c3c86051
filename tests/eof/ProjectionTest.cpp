#include <gtest/gtest.h>

#include <cmath>

#include "eof/PreTreatment.h"
#include "eof/Projection.h"
#include "state/Import.h"
#include "support/Tables.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {
struct Projection : ::testing::Test {
  TempDir dir;
  FakeDialogs dialogs;
  NoProgress progress;
  Session s;
  void Base(const std::string& reference, PreTreatmentSettings p = {}) {
    ASSERT_TRUE(ImportReference(s, dir.Write("r.csv", reference), dialogs, progress).Ok);
    ApplyPreTreatment(s, p, progress);
    ASSERT_TRUE(s.EofDone);
  }
};
}  // namespace

TEST_F(Projection, ScoresUseTheReferenceStatistics) {
  Base(MakeTable(4, 9, true, Varied));
  ASSERT_TRUE(ImportFossil(s, dir.Write("f.csv", MakeTable(4, 5, false, Varied)), dialogs, progress).Ok);
  const long n = 4;
  for (long i = 1; i <= 5; ++i) {
    for (long c = 1; c <= n; ++c) {
      double raw = 0;
      for (long j = 1; j <= n; ++j) {
        double z = (s.FossilData(i, j) - s.ColumnMean(0, j)) / s.ColumnStd(0, j);
        EXPECT_DOUBLE_EQ(s.FossilStandardised(i, j), z);
        raw += (z - s.ColumnMean(1, j)) * s.EigenVectors(j, c);
      }
      EXPECT_DOUBLE_EQ(s.FossilScoreRaw(i, c), raw);
      EXPECT_NEAR(s.FossilScores(i, c), (raw - s.ColumnMean(2, c)) / s.ColumnStd(2, c), 1e-12);
    }
  }
  EXPECT_TRUE(s.ProjectionDone);
}

TEST_F(Projection, ASiteProjectedOntoItselfGetsItsOwnScore) {
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  std::string ref = MakeTable(4, 9, true, Varied);
  Base(ref, p);
  // The fossil goes on a percent scale without enhancement: write the
  // reference rows divided by 100 so that they come back as they are.
  ASSERT_TRUE(ImportFossil(s,
                           dir.Write("f.csv", MakeTable(4, 3, false,
                                                        [](int i, int j) { return Varied(i, j) / 100; })),
                           dialogs, progress)
                  .Ok);
  for (long c = 1; c <= 4; ++c)
    for (long i = 1; i <= 3; ++i) EXPECT_NEAR(s.FossilScores(i, c), s.RefScores(i, c), 1e-9);
}

TEST_F(Projection, ConstantReferenceTaxonGivesZero) {
  Base("Site,A,B,C,D\nP,1,5,2,7\nQ,4,5,1,2\nR,2,5,6,3\nS,8,5,3,1\n");
  ASSERT_TRUE(ImportFossil(s, dir.Write("f.csv", "Depth,A,B,C,D\n0,1,80,2,3\n10,2,1,2,3\n20,5,9,1,1\n"),
                           dialogs, progress)
                  .Ok);
  for (long i = 1; i <= 3; ++i) EXPECT_EQ(s.FossilStandardised(i, 2), 0);
}

TEST_F(Projection, FewerThanThreeSamplesAreProjectedNotDrawn) {
  Base(MakeTable(3, 6, true, Varied));
  ASSERT_TRUE(ImportFossil(s, dir.Write("f.csv", "Depth,T1,T2,T3\n0,1,2,3\n10,3,1,1\n"), dialogs,
                           progress)
                  .Ok);
  EXPECT_FALSE(s.ProjectionDone);
  EXPECT_NE(s.FossilScoreRaw(1, 1), 0);
}

TEST_F(Projection, EmptySampleIsScoredLikeAnyOther) {
  Base(MakeTable(3, 6, true, Varied));
  ASSERT_TRUE(ImportFossil(s, dir.Write("f.csv", "Depth,T1,T2,T3\n0,0,0,0\n10,3,1,1\n20,1,1,5\n"),
                           dialogs, progress)
                  .Ok);
  EXPECT_TRUE(s.FossilEmptySample(1));
  EXPECT_EQ(s.SampleCursor, 2);
  double raw = 0;
  for (long j = 1; j <= 3; ++j)
    raw += ((0 - s.ColumnMean(0, j)) / s.ColumnStd(0, j) - s.ColumnMean(1, j)) * s.EigenVectors(j, 1);
  EXPECT_DOUBLE_EQ(s.FossilScoreRaw(1, 1), raw);
  EXPECT_NE(s.FossilScores(1, 1), 0);
}
