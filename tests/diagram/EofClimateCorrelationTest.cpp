// The table of EOF-climate correlations: every entry against a textbook
// Pearson coefficient worked out here, constant columns, the missing value
// taken as a value, and the vertical range of a parameter's scatter.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "diagram/EofClimateCorrelation.h"
#include "support/Checks.h"

using namespace varnoth;
using varnoth::test::Pearson;

namespace {

// Sites with random scores on `eofs` EOFs and random climate on `params`
// parameters, on different scales.
Session Sites(long sites, long eofs, long params, unsigned seed) {
  Session s;
  s.RefSiteCount = static_cast<Count>(sites);
  s.RefTaxaCount = static_cast<Count>(eofs);
  s.ClimateParamCount = static_cast<Count>(params);
  s.RefScores.ReDim(sites, eofs);
  s.ClimateData.ReDim(sites, params);
  std::mt19937 rng(seed);
  std::normal_distribution<double> z(0.0, 1.0);
  for (long i = 1; i <= sites; ++i) {
    for (long e = 1; e <= eofs; ++e) s.RefScores(i, e) = z(rng);
    // Parameters lean on the first EOFs, so that there is something to find.
    for (long p = 1; p <= params; ++p)
      s.ClimateData(i, p) = 10.0 * p + 3.0 * s.RefScores(i, (p - 1) % eofs + 1) + z(rng);
  }
  return s;
}

std::vector<double> Column(const Array2<double>& a, long rows, long c) {
  std::vector<double> v;
  for (long i = 1; i <= rows; ++i) v.push_back(a(i, c));
  return v;
}

class CountingProgress final : public Progress {
 public:
  void Start(long maximum) override {
    Maximum = maximum;
    ++Starts;
  }
  void Step(long value) override { Values.push_back(value); }
  void Finish() override { ++Finishes; }
  long Maximum = -1;
  int Starts = 0, Finishes = 0;
  std::vector<long> Values;
};

}  // namespace

TEST(EofClimateCorrelation, MatrixAgreesWithATextbookPearson) {
  // Sizes that fill no block exactly.
  const Session s = Sites(53, 19, 6, 7);
  NoProgress none;
  const Array2<float> m = EccCorrelationMatrix(s, none);
  ASSERT_EQ(m.Upper0(), 19);
  ASSERT_EQ(m.Upper1(), 6);
  for (long e = 1; e <= 19; ++e)
    for (long p = 1; p <= 6; ++p)
      EXPECT_NEAR(m(e, p), Pearson(Column(s.RefScores, 53, e), Column(s.ClimateData, 53, p)), 1e-6)
          << "EOF " << e << ", parameter " << p;
  // The leaning pairs come out strong, so the comparison is not all zeros.
  EXPECT_GT(m(1, 1), 0.8f);
  EXPECT_GT(m(2, 2), 0.8f);
}

TEST(EofClimateCorrelation, EveryEntryIsThePairRoutineToTheBit) {
  const Session s = Sites(101, 23, 7, 11);
  NoProgress none;
  const Array2<float> m = EccCorrelationMatrix(s, none);
  for (long e = 1; e <= 23; ++e)
    for (long p = 1; p <= 7; ++p)
      EXPECT_EQ(m(e, p), static_cast<float>(EccCorrelation(s, e, p)))
          << "EOF " << e << ", parameter " << p;
}

TEST(EofClimateCorrelation, RowAndColumnZeroStayZero) {
  const Session s = Sites(20, 9, 5, 3);
  NoProgress none;
  const Array2<float> m = EccCorrelationMatrix(s, none);
  for (long e = 0; e <= 9; ++e) EXPECT_EQ(m(e, 0), 0.0f);
  for (long p = 0; p <= 5; ++p) EXPECT_EQ(m(0, p), 0.0f);
}

TEST(EofClimateCorrelation, AConstantParameterGivesZero) {
  Session s = Sites(30, 10, 3, 5);
  for (long i = 1; i <= 30; ++i) s.ClimateData(i, 2) = 17.5;
  NoProgress none;
  const Array2<float> m = EccCorrelationMatrix(s, none);
  for (long e = 1; e <= 10; ++e) {
    EXPECT_EQ(m(e, 2), 0.0f);
    EXPECT_NE(m(e, 1), 0.0f);
  }
  EXPECT_EQ(EccCorrelation(s, 4, 2), 0.0);
}

TEST(EofClimateCorrelation, AConstantEofGivesZero) {
  Session s = Sites(30, 10, 3, 5);
  for (long i = 1; i <= 30; ++i) s.RefScores(i, 7) = 0;
  NoProgress none;
  const Array2<float> m = EccCorrelationMatrix(s, none);
  for (long p = 1; p <= 3; ++p) EXPECT_EQ(m(7, p), 0.0f);
}

TEST(EofClimateCorrelation, TheMissingValueCountsAsAValue) {
  Session s = Sites(40, 5, 2, 9);
  s.ClimateData(12, 1) = -9999;
  NoProgress none;
  const Array2<float> m = EccCorrelationMatrix(s, none);
  const std::vector<double> x = Column(s.RefScores, 40, 1), y = Column(s.ClimateData, 40, 1);
  EXPECT_NEAR(m(1, 1), Pearson(x, y), 1e-6);
  // Leaving the site out would give a very different, strong coefficient.
  std::vector<double> x2 = x, y2 = y;
  x2.erase(x2.begin() + 11);
  y2.erase(y2.begin() + 11);
  EXPECT_GT(Pearson(x2, y2), 0.8);
  EXPECT_GT(std::fabs(m(1, 1) - Pearson(x2, y2)), 0.3);
}

TEST(EofClimateCorrelation, ProgressCountsTheEofs) {
  const Session s = Sites(25, 19, 2, 1);
  CountingProgress progress;
  EccCorrelationMatrix(s, progress);
  EXPECT_EQ(progress.Starts, 1);
  EXPECT_EQ(progress.Maximum, 19);
  ASSERT_FALSE(progress.Values.empty());
  EXPECT_EQ(progress.Values.back(), 19);
  for (std::size_t k = 1; k < progress.Values.size(); ++k)
    EXPECT_GT(progress.Values[k], progress.Values[k - 1]);
  EXPECT_EQ(progress.Finishes, 1);
}

TEST(EofClimateCorrelation, ScoresShorterThanTheEofCountAreTheSubscriptFailure) {
  Session s = Sites(10, 4, 2, 1);
  s.RefTaxaCount = 5;
  NoProgress none;
  try {
    EccCorrelationMatrix(s, none);
    FAIL() << "no failure";
  } catch (const RuntimeFailure& f) {
    EXPECT_EQ(f.kind(), FailureKind::SubscriptOutOfRange);
  }
}

TEST(EofClimateCorrelation, RangeRoundsOutwardsAndLeavesTheMissingValueOut) {
  Session s = Sites(6, 2, 2, 1);
  const double values[] = {12.5, -9999, 3.25, 27.1, 8, 19};
  for (long i = 1; i <= 6; ++i) s.ClimateData(i, 2) = values[i - 1];
  const EccRange r = EccClimateRange(s, 2);
  EXPECT_EQ(r.Minimum, 3.25f);
  EXPECT_EQ(r.Maximum, 27.1f);
  EXPECT_EQ(r.Top, 30.0);    // (Int(27.1 / 5) + 1) * 5
  EXPECT_EQ(r.Bottom, 0.0);  // Int(3.25 / 5) * 5
  // So the mark of the missing value stands below the axis.
  EXPECT_LT(-9999.0, r.Bottom);
}

TEST(EofClimateCorrelation, RangeOfNegativeValuesTakesTheWiderStep) {
  Session s = Sites(3, 2, 1, 1);
  const double values[] = {-2, -120, -40};
  for (long i = 1; i <= 3; ++i) s.ClimateData(i, 1) = values[i - 1];
  const EccRange r = EccClimateRange(s, 1);
  EXPECT_EQ(r.Top, 0.0);        // Fix(-2 / 50) * 50
  EXPECT_EQ(r.Bottom, -150.0);  // (Fix(-120 / 50) - 1) * 50
}

TEST(EofClimateCorrelation, TextIsRoundedToTwoDecimals) {
  EXPECT_EQ(EccText(0.4349), "0.43");
  EXPECT_EQ(EccText(-0.5), "-0.5");
  EXPECT_EQ(EccText(0.0), "0");
  EXPECT_EQ(EccText(-0.001), "0");
  EXPECT_EQ(EccText(0.125), "0.12");  // half to even
  EXPECT_EQ(EccText(1.0), "1");
  EXPECT_EQ(EccText(27.456), "27.46");
}

// Climate values near the largest double overflow the sums of squares; the
// table then ends in the overflow failure instead of holding NaN.
TEST(EofClimateCorrelation, HugeClimateValuesEndInOverflow) {
  for (const double huge : {1e308, -1e308}) {
    Session s = Sites(12, 5, 3, 11);
    s.ClimateData(4, 2) = huge;
    NoProgress progress;
    try {
      const Array2<float> r = EccCorrelationMatrix(s, progress);
      ADD_FAILURE() << "no failure; entry (1, 2) is " << r(1, 2);
    } catch (const RuntimeFailure& e) {
      EXPECT_EQ(e.kind(), FailureKind::Overflow);
    }
    try {
      const double r = EccCorrelation(s, 1, 2);
      ADD_FAILURE() << "no failure; the coefficient is " << r;
    } catch (const RuntimeFailure& e) {
      EXPECT_EQ(e.kind(), FailureKind::Overflow);
    }
  }
}

// Every value just below the overflow of the squares still gives a number.
TEST(EofClimateCorrelation, LargeButSafeClimateValuesGiveFiniteCoefficients) {
  Session s = Sites(12, 5, 3, 11);
  for (long i = 1; i <= 12; ++i) s.ClimateData(i, 3) = (i % 2 ? 1e150 : -1e150) * i;
  NoProgress progress;
  const Array2<float> r = EccCorrelationMatrix(s, progress);
  for (long e = 1; e <= 5; ++e) EXPECT_TRUE(std::isfinite(r(e, 3)));
}
