#include <gtest/gtest.h>

#include <cmath>

#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "support/Tables.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

TEST(PreTreatment, LogEnhanceCutsBelowOnePercent) {
  EXPECT_EQ(LogEnhance(0), 0);
  EXPECT_EQ(LogEnhance(0.005), 0);  // ln(0.5) is negative
  EXPECT_EQ(LogEnhance(0.01), 0);
  EXPECT_EQ(LogEnhance(1), 1);
  EXPECT_EQ(LogEnhance(0.1), 0.5);
  EXPECT_EQ(LogEnhance(-0.3), 0);
  EXPECT_EQ(LogEnhance(-1e-300), 0);
}

// ln(100 x) / ln(10) / 2, not log10(100 x) / 2: the two differ in the last
// bit for most inputs, and the files carry every bit.
TEST(PreTreatment, LogEnhanceDividesNaturalLogarithms) {
  EXPECT_EQ(LogEnhance(10), 1.4999999999999998);
  EXPECT_NE(LogEnhance(10), std::log10(1000.0) / 2);
  EXPECT_EQ(LogEnhance(0.5), 0.84948500216800926);
  EXPECT_EQ(LogEnhance(2), 1.1505149978319904);
  for (double x : {0.37, 0.02, 0.999, 3.5})
    EXPECT_EQ(LogEnhance(x), std::log(100 * x) / std::log(10.0) / 2) << x;
}

TEST(PreTreatment, SquareRootOfANegativeValueIsTheInvalidArgumentFailure) {
  PreTreatmentSettings root;
  root.Enhance = true;
  try {
    EnhanceValue(-0.25, root);
    FAIL() << "no failure";
  } catch (const RuntimeFailure& f) {
    EXPECT_EQ(f.kind(), FailureKind::InvalidCall);
    EXPECT_NE(std::string(f.what()).find("square root of a negative number"), std::string::npos);
  }
  EXPECT_EQ(EnhanceValue(-0.0, root), 0);
}

TEST(PreTreatment, EnhanceValueFollowsTheControls) {
  PreTreatmentSettings off;
  EXPECT_EQ(EnhanceValue(0.25, off), 0.25);
  PreTreatmentSettings root;
  root.Enhance = true;
  EXPECT_EQ(EnhanceValue(0.25, root), 0.5);
  EXPECT_EQ(EnhanceValue(0, root), 0);  // square root keeps 0 at 0
  PreTreatmentSettings log;
  log.Enhance = true;
  log.SquareRoot = false;
  EXPECT_EQ(EnhanceValue(0, log), 0);
  // Raw values under "Don't convert" are taken as fractions.
  EXPECT_EQ(EnhanceValue(12, log), std::log(1200.0) / std::log(10.0) / 2);
}

namespace {
struct Road : ::testing::Test {
  TempDir dir;
  FakeDialogs dialogs;
  NoProgress progress;
  Session s;
  std::string reference = "Site,A,B,C\nP,10,30,60\nQ,0,0,0\nR,25,25,50\nS,5,90,5\n";
  std::string fossil = "Depth,A,B,C\n0,2,2,4\n10,1,0,3\n20,0,0,0\n";
  void Run(const PreTreatmentSettings& p) {
    ASSERT_TRUE(ImportReference(s, dir.Write("r.csv", reference), dialogs, progress).Ok);
    ApplyPreTreatment(s, p, progress);
    ASSERT_TRUE(ImportFossil(s, dir.Write("f.csv", fossil), dialogs, progress).Ok);
  }
};
}  // namespace

TEST_F(Road, ConversionGivesFractionsAndRowSums) {
  Run(PreTreatmentSettings{});
  EXPECT_EQ(s.RefProportion(1, 0), 100);
  EXPECT_DOUBLE_EQ(s.RefProportion(1, 2), 0.3);
  EXPECT_EQ(s.RefProportion(2, 1), 0);  // a zero sum gives zero fractions
  EXPECT_EQ(s.FossilProportion(1, 0), 8);
  EXPECT_EQ(s.FossilProportion(1, 3), 0.5);
  // Without enhancement the reference keeps its own units and the fossil
  // goes onto a percent scale.
  EXPECT_EQ(s.RefData(1, 2), 30);
  EXPECT_EQ(s.FossilData(1, 3), 50);
  EXPECT_EQ(s.FossilData(3, 1), 0);
  EXPECT_FALSE(s.EnhanceUsed);
}

TEST_F(Road, DontConvertMultipliesTheFossilByHundred) {
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  Run(p);
  EXPECT_EQ(s.RefProportion(1, 2), 30);
  EXPECT_EQ(s.RefProportion(1, 0), 0);
  EXPECT_EQ(s.FossilData(1, 3), 400);
}

TEST_F(Road, EnhancementTreatsBothTablesAlike) {
  PreTreatmentSettings p;
  p.Enhance = true;
  Run(p);
  EXPECT_TRUE(s.EnhanceUsed);
  EXPECT_DOUBLE_EQ(s.RefData(1, 3), std::sqrt(0.6));
  EXPECT_DOUBLE_EQ(s.FossilData(1, 3), std::sqrt(0.5));
  PreTreatmentSettings log;
  log.Enhance = true;
  log.SquareRoot = false;
  Session other;
  std::swap(s, other);
  Run(log);
  EXPECT_EQ(s.RefData(1, 1), std::log(10.0) / std::log(10.0) / 2);
  EXPECT_EQ(s.FossilData(2, 2), 0);
}

TEST_F(Road, CorrelationChoiceIsKeptForTheSession) {
  PreTreatmentSettings p;
  p.Correlation = true;
  Run(p);
  EXPECT_TRUE(s.UseCorrelation);
  EXPECT_TRUE(s.PreTreatment.Correlation);
  EXPECT_EQ(s.EofMatrix(2, 2), 1);
}

// A negative cell kept by "Don't convert" has no square root: the event ends
// in the failure before any EOF is computed from a NaN.
TEST_F(Road, SquareRootOfANegativeCellStopsBeforeTheAnalysis) {
  reference = "Site,A,B,C\nP,10,30,60\nQ,0,-4,0\nR,25,25,50\nS,5,90,5\n";
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  p.Enhance = true;
  ASSERT_TRUE(ImportReference(s, dir.Write("r.csv", reference), dialogs, progress).Ok);
  try {
    ApplyPreTreatment(s, p, progress);
    FAIL() << "no failure";
  } catch (const RuntimeFailure& f) {
    EXPECT_EQ(f.kind(), FailureKind::InvalidCall);
  }
  EXPECT_FALSE(s.EofDone);
}

// The logarithm cuts a negative cell to 0 instead.
TEST_F(Road, LogOfANegativeCellIsCutToZero) {
  reference = "Site,A,B,C\nP,10,30,60\nQ,1,-4,2\nR,25,25,50\nS,5,90,5\n";
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  p.Enhance = true;
  p.SquareRoot = false;
  ASSERT_TRUE(ImportReference(s, dir.Write("r.csv", reference), dialogs, progress).Ok);
  ApplyPreTreatment(s, p, progress);
  EXPECT_EQ(s.RefData(2, 2), 0);
  EXPECT_TRUE(s.EofDone);
}
