// Huge but finite cells overflow to infinity or NaN somewhere on the way;
// each step that makes such a number raises the overflow failure there, so
// nothing non-finite reaches a file or a figure.
#include <gtest/gtest.h>

#include <cmath>

#include "diagram/Coniss.h"
#include "eof/PreTreatment.h"
#include "reconstruction/AnalogueSearch.h"
#include "state/Finite.h"
#include "state/Import.h"
#include "support/Checks.h"
#include "support/Tables.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

struct NonFinite : ::testing::Test {
  TempDir dir;
  FakeDialogs dialogs;
  NoProgress progress;
  Session s;
  void Reference(const std::function<double(int, int)>& value) {
    ASSERT_TRUE(
        ImportReference(s, dir.Write("r.csv", MakeTable(5, 8, true, value)), dialogs, progress).Ok);
  }
};

}  // namespace

TEST(Finite, AnArrayWithAnInfinityOrANaNIsTheOverflowFailure) {
  Array2<double> a(2, 2);
  EXPECT_NO_THROW(RequireFinite(a));
  a(2, 1) = INFINITY;
  EXPECT_EQ(KindOf([&] { RequireFinite(a); }), FailureKind::Overflow);
  a(2, 1) = NAN;
  EXPECT_EQ(KindOf([&] { RequireFinite(a); }), FailureKind::Overflow);
  Array1<float> b(3);
  b(0) = -INFINITY;  // the spare index counts too
  EXPECT_EQ(KindOf([&] { RequireFinite(b); }), FailureKind::Overflow);
}

TEST_F(NonFinite, RowSumsOfHugeCellsOverflowInThePercentageStep) {
  // 1e308 + 1e308 is infinite: the row sum and so the proportions.
  Reference([](int i, int j) { return j <= 2 ? 1e308 : Varied(i, j); });
  EXPECT_EQ(KindOf([&] { ApplyPreTreatment(s, PreTreatmentSettings{}, progress); }),
            FailureKind::Overflow);
  EXPECT_TRUE(std::isinf(s.RefProportion(1, 0)));
  EXPECT_FALSE(s.EofDone);
  EXPECT_FALSE(s.EofMatrix.Allocated());
}

TEST_F(NonFinite, HugeCellsOverflowInTheMatrixWithoutConversion) {
  Reference([](int i, int j) { return j == 1 ? 1e200 * i : Varied(i, j); });
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  EXPECT_EQ(KindOf([&] { ApplyPreTreatment(s, p, progress); }), FailureKind::Overflow);
  EXPECT_FALSE(s.EofDone);
  // The proportions were finite: the failure came at the matrix.
  EXPECT_TRUE(std::isfinite(s.RefProportion(8, 1)));
}

TEST_F(NonFinite, SquaresOfEnhancedHugeCellsOverflowInTheMatrix) {
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  p.Enhance = true;
  p.SquareRoot = true;
  Reference([](int i, int j) { return j == 1 ? 1.7e308 * (i % 2 ? 1 : 0.5) : Varied(i, j); });
  // The values themselves are finite; the matrix of their squares is not.
  EXPECT_EQ(KindOf([&] { ApplyPreTreatment(s, p, progress); }), FailureKind::Overflow);
}

TEST_F(NonFinite, HugeFossilCellsFailTheImportAndLeaveTheReference) {
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  Reference(Varied);
  ApplyPreTreatment(s, p, progress);
  ASSERT_TRUE(s.EofDone);
  const Session before = s;
  // Without conversion the fossil is put on a percent scale: 1e307 * 100
  // is infinite.
  const ImportResult r = ImportFossil(
      s,
      dir.Write("f.csv",
                MakeTable(5, 4, false,
                          [](int i, int j) { return i == 2 && j == 3 ? 1e307 : Varied(i, j); })),
      dialogs, progress);
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(s.FossilTaxaCount, 0);
  EXPECT_FALSE(s.ProjectionDone);
  EXPECT_NE(r.Problem.find("(Overflow)"), std::string::npos) << r.Problem;
  EXPECT_TRUE(s.RefData == before.RefData && s.EigenVectors == before.EigenVectors &&
              s.RefScores == before.RefScores);
  // The window's fossil failure path shows no message of its own.
  EXPECT_TRUE(dialogs.Messages.empty());
}

TEST_F(NonFinite, ProjectionOfAStandardisedInfinityFails) {
  PreTreatmentSettings p;
  p.ConvertToPercent = false;
  // Deviations far below 1: a finite fossil value divided by one is not.
  Reference([](int i, int j) { return Varied(i, j) / 100; });
  ApplyPreTreatment(s, p, progress);
  ASSERT_TRUE(s.EofDone);
  ASSERT_LT(s.ColumnStd(0, 1), 1);
  const ImportResult r = ImportFossil(
      s,
      dir.Write("f.csv", MakeTable(5, 4, false,
                                   [](int i, int j) {
                                     return i == 1 && j == 1 ? 1.7e306 : Varied(i, j) / 100;
                                   })),
      dialogs, progress);
  EXPECT_FALSE(r.Ok);
  EXPECT_FALSE(s.ProjectionDone);
  // The percent scale still held it; the standardised value did not.
  EXPECT_TRUE(std::isfinite(s.FossilData(1, 1)));
  EXPECT_TRUE(std::isinf(s.FossilStandardised(1, 1)));
}

TEST_F(NonFinite, EstimatesFromHugeClimateValuesOverflow) {
  Reference(Varied);
  ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
  ASSERT_TRUE(
      ImportFossil(s, dir.Write("f.csv", MakeTable(5, 4, false, Varied)), dialogs, progress).Ok);
  s.ClimateParamCount = 1;
  s.ClimateParamNames.ReDim(1);
  s.ClimateData.ReDim(8, 1);
  for (long i = 1; i <= 8; ++i) s.ClimateData(i, 1) = 1.5e308;
  s.ClimateLoaded = true;
  AnalogueSettings st;
  st.AnalogueThreshold = 100;
  st.MaxAnalogues = 4;
  EXPECT_EQ(KindOf([&] { RunReconstruction(s, st, progress); }), FailureKind::Overflow);
  EXPECT_EQ(KindOf([&] { GenerateErrorModel(s, st, progress); }), FailureKind::Overflow);
}
