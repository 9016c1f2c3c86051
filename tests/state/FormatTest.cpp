#include <gtest/gtest.h>

#include <random>

#include "state/Failure.h"
#include "state/Format.h"

using namespace varnoth;

TEST(Format, GeneralFormIsShortest) {
  EXPECT_EQ(FormatGeneral(12), "12");
  EXPECT_EQ(FormatGeneral(0.5), "0.5");
  EXPECT_EQ(FormatGeneral(-0.25), "-0.25");
  EXPECT_EQ(FormatGeneral(0.0), "0");
  EXPECT_EQ(FormatGeneral(-0.0), "0");
  EXPECT_EQ(FormatGeneral(1e20), "1E+20");
  EXPECT_EQ(FormatGeneral(1.5e-5), "1.5E-05");
  EXPECT_EQ(FormatGeneral(0.0001), "0.0001");
  EXPECT_EQ(FormatGeneral(0.1 + 0.2), "0.3");
  EXPECT_EQ(FormatGeneral(123456789012345.0), "123456789012345");
  EXPECT_EQ(FormatGeneral(1234567890123456.0), "1.23456789012346E+15");
}

TEST(Format, SingleFormHasSevenDigits) {
  EXPECT_EQ(FormatSingle(0.1f), "0.1");
  EXPECT_EQ(FormatSingle(33.33333f), "33.33333");
  EXPECT_EQ(FormatSingle(100.0f), "100");
  EXPECT_EQ(FormatSingle(1.0f / 3.0f), "0.3333333");
}

TEST(Format, NumberCellIsTheRoundTrip) {
  for (const char* yes : {"12", "0", "0.5", "-3", "1E+20", "98.97"}) EXPECT_TRUE(IsNumberCell(yes)) << yes;
  for (const char* no : {"0.50", "12.0", ".5", "1e3", "V14-61", "", " 12", "+1", "007", "-0"})
    EXPECT_FALSE(IsNumberCell(no)) << no;
}

TEST(Format, LenientParseTakesTheLongestLeadingNumber) {
  EXPECT_EQ(LenientParse("12abc"), 12);
  EXPECT_EQ(LenientParse("abc"), 0);
  EXPECT_EQ(LenientParse(""), 0);
  EXPECT_EQ(LenientParse("  -1.5e2x"), -150);
  EXPECT_EQ(LenientParse("1e"), 1);
  EXPECT_EQ(LenientParse(".5"), 0.5);
  EXPECT_EQ(LenientParse("007"), 7);
  EXPECT_EQ(LenientParse("+4"), 4);
  EXPECT_EQ(LenientParse("1e-400"), 0);
  EXPECT_THROW(LenientParse("1e400"), RuntimeFailure);
}

TEST(Format, StrictParseNeedsTheWholeCell) {
  EXPECT_EQ(StrictParse("12"), 12);
  EXPECT_EQ(StrictParse(" 0.5 "), 0.5);
  EXPECT_EQ(StrictParse("-2E+3"), -2000);
  for (const char* bad : {"", " ", "12a", "a12", "1.2.3", "--1"}) {
    try {
      StrictParse(bad);
      ADD_FAILURE() << bad;
    } catch (const RuntimeFailure& f) {
      EXPECT_EQ(f.kind(), FailureKind::TypeMismatch);
    }
  }
}

// What the writer prints, the readers take back exactly.
TEST(Format, PrintedNumbersReadBackExactlyToFifteenDigits) {
  std::mt19937_64 rng(7);
  std::uniform_real_distribution<double> d(-1e6, 1e6);
  for (int i = 0; i < 2000; ++i) {
    double v = d(rng);
    std::string text = FormatGeneral(v);
    EXPECT_TRUE(IsNumberCell(text)) << text;
    EXPECT_EQ(FormatGeneral(LenientParse(text)), text);
    EXPECT_NEAR(LenientParse(text), v, std::abs(v) * 1e-14);
  }
}

// The short-decimal path must give exactly what the general conversion gives.
TEST(Format, ShortDecimalsConvertExactly) {
  std::mt19937_64 rng(11);
  for (int i = 0; i < 200000; ++i) {
    int frac = static_cast<int>(rng() % 12);
    std::uint64_t m = rng() % 1000000000000000ULL;
    std::string digits = std::to_string(m);
    if (frac > 0) {
      if (static_cast<int>(digits.size()) <= frac) digits.insert(0, frac - digits.size() + 1, '0');
      digits.insert(digits.size() - frac, ".");
    }
    EXPECT_EQ(LenientParse(digits), std::strtod(digits.c_str(), nullptr)) << digits;
    EXPECT_EQ(LenientParse("-" + digits), -std::strtod(digits.c_str(), nullptr)) << digits;
  }
  EXPECT_EQ(LenientParse("0.1"), 0.1);
  EXPECT_EQ(LenientParse("98.97"), 98.97);
  EXPECT_EQ(LenientParse("1234567890123456789"), 1234567890123456789.0);
  EXPECT_EQ(LenientParse("0.00000000000000000000000001"), 1e-26);
}
