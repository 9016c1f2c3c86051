#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cmath>
#include <cstdio>
#include <mutex>
#include <random>
#include <string_view>
#include <vector>

#include "state/Failure.h"
#include "state/Format.h"
#include "state/Parallel.h"

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
  for (const char* yes : {"12", "0", "0.5", "-3", "1E+20", "98.97"})
    EXPECT_TRUE(IsNumberCell(yes)) << yes;
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

namespace {

// The C library's text with the program's own words for the special values.
std::string_view Reference(char* buf, double v, int digits) {
  if (std::isnan(v)) return "NaN";
  if (std::isinf(v)) return v > 0 ? "Inf" : "-Inf";
  if (v == 0) return "0";
  return {buf, static_cast<std::size_t>(std::snprintf(buf, 64, "%.*G", digits, v))};
}

std::uint64_t Mix(std::uint64_t x) {  // splitmix64: value i depends on i alone
  x += 0x9E3779B97F4A7C15ULL;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
  return x ^ (x >> 31);
}

double Unit(std::uint64_t r) { return static_cast<double>(r >> 11) * 0x1p-53; }

// A value that lies exactly halfway between two neighbours of `digits`
// significant digits: an integer part and a fraction k / 2^j whose last
// decimal is a 5, digits + 1 digits in all.
double Halfway(std::uint64_t r, int digits) {
  int j = static_cast<int>(r % 4);  // fraction digits
  std::uint64_t low = 1, span = 9;
  for (int k = 1; k < digits - j; ++k) low *= 10;  // integer with digits - j digits
  span = low * 9;
  std::uint64_t whole = low + (r >> 8) % span;
  if (j == 0) return static_cast<double>(whole / 10 * 10 + 5);
  double fraction = static_cast<double>(2 * ((r >> 3) % (1u << (j - 1))) + 1) / (1u << j);
  return static_cast<double>(whole) + fraction;
}

double PowerOfTenNear(std::uint64_t r, int lowest, int highest) {
  static const std::vector<double> powers = [] {
    std::vector<double> p;  // 1e-323 .. 1e308, each correctly rounded
    for (int k = -323; k <= 308; ++k)
      p.push_back(std::strtod(("1e" + std::to_string(k)).c_str(), nullptr));
    return p;
  }();
  int k = lowest + static_cast<int>(r % static_cast<std::uint64_t>(highest - lowest + 1));
  double p = powers[static_cast<std::size_t>(k + 323)];
  switch ((r >> 16) % 3) {
    case 0:
      return p;
    case 1:
      return std::nextafter(p, 0.0);
    default:
      return std::nextafter(p, HUGE_VAL);
  }
}

double SomeDouble(std::uint64_t i) {
  std::uint64_t r = Mix(i);
  double sign = (r >> 63) ? -1 : 1;
  switch (i % 8) {
    case 0:
      return std::bit_cast<double>(r);  // every exponent, NaN and Inf too
    case 1:
      return sign * Unit(r) * 1e6;
    case 2:
      return sign * Unit(r) * std::pow(10.0, static_cast<int>(r % 41) - 20);
    case 3:
      return std::bit_cast<double>(r & 0x800FFFFFFFFFFFFFULL);  // subnormal
    case 4:
      return sign * PowerOfTenNear(r, -323, 308);
    case 5:
      return sign * Halfway(r, 15);
    case 6:
      return sign * std::nextafter(Halfway(r, 15), (r & 2) ? 0.0 : HUGE_VAL);
    default:
      return (r & 1) ? -0.0 : sign * Unit(r);
  }
}

float SomeSingle(std::uint64_t i) {
  std::uint64_t r = Mix(i ^ 0x5555555555555555ULL);
  float sign = (r >> 63) ? -1 : 1;
  switch (i % 8) {
    case 0:
      return std::bit_cast<float>(static_cast<std::uint32_t>(r));
    case 1:
      return sign * static_cast<float>(Unit(r) * 100);
    case 2:
      return sign * static_cast<float>(Unit(r) * std::pow(10.0, static_cast<int>(r % 21) - 10));
    case 3:
      return std::bit_cast<float>(static_cast<std::uint32_t>(r) & 0x807FFFFFu);
    case 4:
      return sign * static_cast<float>(PowerOfTenNear(r, -45, 38));
    case 5:
      return sign * static_cast<float>(Halfway(r, 7));
    case 6:
      return sign * std::nextafter(static_cast<float>(Halfway(r, 7)), (r & 2) ? 0.0f : HUGE_VALF);
    default:
      return (r & 1) ? -0.0f : sign * static_cast<float>(Unit(r));
  }
}

}  // namespace

TEST(Format, FastTextIsTheCLibrarysOnTenMillionValues) {
  const long count = 5000000;  // of each precision
  std::atomic<long> wrong{0};
  std::mutex first;
  std::string example;
  ParallelRows(0, count - 1, 100000, [&](long a, long b) {
    char buf[kNumberTextMax], expected[64];
    for (long i = a; i <= b; ++i) {
      double d = SomeDouble(static_cast<std::uint64_t>(i));
      float f = SomeSingle(static_cast<std::uint64_t>(i));
      std::string_view gd(buf, static_cast<std::size_t>(WriteGeneral(buf, d) - buf));
      bool okDouble = gd == Reference(expected, d, 15);
      std::string_view gf(buf, static_cast<std::size_t>(WriteSingle(buf, f) - buf));
      bool okSingle = gf == Reference(expected, f, 7);
      if (!okDouble || !okSingle) {
        if (wrong++ == 0) {
          std::lock_guard lock(first);
          char hex[64];
          std::snprintf(hex, sizeof hex, "%a / %a", d, static_cast<double>(f));
          example = hex;
        }
      }
    }
  });
  EXPECT_EQ(wrong.load(), 0) << "first: " << example;
}

TEST(Format, HalfwayCasesRoundToEven) {
  EXPECT_EQ(FormatGeneral(1000000000000002.5), "1E+15");
  EXPECT_EQ(FormatGeneral(1000000000000005.0), "1E+15");
  EXPECT_EQ(FormatGeneral(1000000000000015.0), "1.00000000000002E+15");
  EXPECT_EQ(FormatGeneral(100000000000000.25), "100000000000000");
  EXPECT_EQ(FormatSingle(10000005.0f), "1E+07");
  EXPECT_EQ(FormatSingle(10000015.0f), "1.000002E+07");
  EXPECT_EQ(FormatSingle(0.5f), "0.5");
}

TEST(Format, ExtremesKeepTheirExponents) {
  EXPECT_EQ(FormatGeneral(5e-324), "4.94065645841247E-324");
  EXPECT_EQ(FormatGeneral(-2.2250738585072014e-308), "-2.2250738585072E-308");
  EXPECT_EQ(FormatGeneral(1.7976931348623157e308), "1.79769313486232E+308");
  EXPECT_EQ(FormatGeneral(999999999999999.9), "1E+15");
  EXPECT_EQ(FormatGeneral(0.000099999999999999995), "0.0001");
  EXPECT_EQ(FormatGeneral(1e-5), "1E-05");
  EXPECT_EQ(FormatGeneral(1e100), "1E+100");
  EXPECT_EQ(FormatSingle(1e-45f), "1.401298E-45");
  EXPECT_EQ(FormatSingle(-0.0f), "0");
  EXPECT_EQ(FormatSingle(3.4028235e38f), "3.402823E+38");
}

TEST(Format, SpecialValuesHaveWords) {
  char buf[kNumberTextMax];
  EXPECT_EQ(std::string(buf, WriteGeneral(buf, std::nan(""))), "NaN");
  EXPECT_EQ(std::string(buf, WriteGeneral(buf, -HUGE_VAL)), "-Inf");
  EXPECT_EQ(std::string(buf, WriteSingle(buf, HUGE_VALF)), "Inf");
  EXPECT_EQ(std::string(buf, WriteGeneral(buf, -0.0)), "0");
}
