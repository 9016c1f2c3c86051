// The fast number text against the routine it replaced, kept beside the tests
// as it stood: every byte of every number must be the same.
#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "state/Format.h"
#include "state/Parallel.h"
#include "state/RecordWriter.h"
#include "support/ReferenceNumberText.h"

using namespace varnoth;

namespace {

std::uint64_t Mix(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15ULL;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
  return x ^ (x >> 31);
}

double Unit(std::uint64_t r) { return static_cast<double>(r >> 11) * 0x1p-53; }

// A decimal of `digits` significant digits and a 5 after them, at a random
// decade: the values where rounding to `digits` digits turns.
double Boundary(std::uint64_t r, int digits, int lowDecade, int highDecade) {
  std::uint64_t top = 1;
  for (int k = 0; k < digits; ++k) top *= 10;
  const std::uint64_t d = top / 10 + r % (top - top / 10);
  const int decade = lowDecade + static_cast<int>((r >> 40) % (highDecade - lowDecade + 1));
  char text[64];
  std::snprintf(text, sizeof text, "%llu5E%d", static_cast<unsigned long long>(d), decade);
  return std::strtod(text, nullptr);
}

double Near(double v, std::uint64_t r) {
  switch ((r >> 20) % 3) {
    case 0:
      return v;
    case 1:
      return std::nextafter(v, 0.0);
    default:
      return std::nextafter(v, HUGE_VAL);
  }
}

double SomeDouble(std::uint64_t i) {
  const std::uint64_t r = Mix(i);
  const double sign = (r >> 63) ? -1 : 1;
  switch (i % 12) {
    case 0:
      return std::bit_cast<double>(r);  // every exponent, NaN and Inf too
    case 1:                             // scores and loadings
      return sign * Unit(r) * std::pow(10.0, static_cast<int>(r % 9) - 5);
    case 2:
      return sign * Unit(r) * std::pow(10.0, static_cast<int>(r % 617) - 308);
    case 3:
      return std::bit_cast<double>(r & 0x800FFFFFFFFFFFFFULL);  // subnormal
    case 4:  // near the largest and the smallest normal
      return sign * ((r & 1) ? DBL_MAX / (1 + Unit(r) * 1e-3) : DBL_MIN * (1 + Unit(r) * 4));
    case 5:  // integers, small and up to 2^53 and past it
      return sign * static_cast<double>(r >> (11 + (r % 50)));
    case 6:
      return sign * Near(Boundary(r, 15, -320, 290), r);
    case 7:
      return sign * Near(Boundary(r, 14, -300, 300), r);
    case 8:  // exact ties at the fifteenth digit, and halves of them
      return sign * (static_cast<double>(100000000000000ULL + r % 900000000000000ULL) + 0.5) *
             std::ldexp(1.0, -static_cast<int>((r >> 50) % 8));
    case 9:  // powers of ten and their neighbours
      return sign * Near(std::pow(10.0, static_cast<int>(r % 600) - 300), r);
    case 10:
      return (r & 1) ? -0.0 : 0.0;
    default:  // the same values rounded to single and back, as contributions are
      return sign * static_cast<double>(static_cast<float>(Unit(r) * 100));
  }
}

float SomeSingle(std::uint64_t i) {
  const std::uint64_t r = Mix(i ^ 0x5555555555555555ULL);
  const float sign = (r >> 63) ? -1 : 1;
  switch (i % 10) {
    case 0:
      return std::bit_cast<float>(static_cast<std::uint32_t>(r));
    case 1:
      return sign * static_cast<float>(Unit(r) * 100);
    case 2:
      return sign * static_cast<float>(Unit(r) * std::pow(10.0, static_cast<int>(r % 85) - 45));
    case 3:
      return std::bit_cast<float>(static_cast<std::uint32_t>(r) & 0x807FFFFFu);  // subnormal
    case 4:
      return sign * ((r & 1) ? FLT_MAX / static_cast<float>(1 + Unit(r) * 1e-3)
                             : FLT_MIN * static_cast<float>(1 + Unit(r) * 4));
    case 5:
      return sign * static_cast<float>(r >> (40 + r % 24));
    case 6: {
      const float b = static_cast<float>(Boundary(r, 7, -45, 31));
      return sign * ((r & 2) ? b : std::nextafter(b, (r & 4) ? 0.0f : HUGE_VALF));
    }
    case 7:  // exact ties at the seventh digit
      return sign * static_cast<float>((1000000 + r % 9000000) + 0.5);
    case 8:
      return (r & 1) ? -0.0f : 0.0f;
    default:
      return sign * static_cast<float>(std::pow(10.0, static_cast<int>(r % 76) - 38));
  }
}

std::vector<double> EdgeDoubles() {
  std::vector<double> v = {0.0,
                           -0.0,
                           1,
                           -1,
                           0.5,
                           0.1,
                           1e15,
                           1e15 - 1,
                           1e15 + 1,
                           999999999999999.4,
                           999999999999999.5,
                           999999999999999.6,
                           99999999999999.95,
                           0.0001,
                           0.00009999999999999999,
                           0.000099999999999999995,
                           1e-5,
                           9007199254740992.0,
                           9007199254740993.0,
                           1000000000000002.5,
                           1000000000000005.0,
                           1000000000000015.0,
                           100000000000000.25,
                           DBL_MIN,
                           DBL_MAX,
                           DBL_TRUE_MIN,
                           std::nextafter(DBL_MIN, 0.0),
                           std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN(),
                           -9999,
                           9999};
  for (int e = -324; e <= 308; ++e) {
    const double p = std::pow(10.0, e);
    v.push_back(p);
    v.push_back(std::nextafter(p, 0.0));
    v.push_back(std::nextafter(p, HUGE_VAL));
  }
  for (int e = -1074; e <= 1023; ++e) v.push_back(std::ldexp(1.0, e));
  return v;
}

std::vector<float> EdgeSingles() {
  std::vector<float> v = {0.0f,       -0.0f,        1,         0.1f,       1e7f,  9999999.0f,
                          9999999.5f, 10000005,     10000015,  0.0001f,    1e-5f, FLT_MIN,
                          FLT_MAX,    FLT_TRUE_MIN, HUGE_VALF, -HUGE_VALF, -9999, 1.0f / 3.0f};
  for (int e = -45; e <= 38; ++e) {
    const float p = static_cast<float>(std::pow(10.0, e));
    v.push_back(p);
    v.push_back(std::nextafter(p, 0.0f));
    v.push_back(std::nextafter(p, HUGE_VALF));
  }
  for (int e = -149; e <= 127; ++e) v.push_back(std::ldexp(1.0f, e));
  return v;
}

std::string Hex(double v) {
  char text[64];
  std::snprintf(text, sizeof text, "%a", v);
  return text;
}

}  // namespace

TEST(NumberText, EdgeValuesAreWrittenAsBefore) {
  char mine[kNumberTextMax], theirs[kNumberTextMax];
  for (double d : EdgeDoubles()) {
    EXPECT_EQ(std::string(mine, WriteGeneral(mine, d)),
              std::string(theirs, reference::WriteGeneral(theirs, d)))
        << Hex(d);
    EXPECT_EQ(std::string(mine, WriteGeneral(mine, -d)),
              std::string(theirs, reference::WriteGeneral(theirs, -d)))
        << Hex(-d);
  }
  for (float f : EdgeSingles()) {
    EXPECT_EQ(std::string(mine, WriteSingle(mine, f)),
              std::string(theirs, reference::WriteSingle(theirs, f)))
        << Hex(f);
    EXPECT_EQ(std::string(mine, WriteSingle(mine, -f)),
              std::string(theirs, reference::WriteSingle(theirs, -f)))
        << Hex(-f);
  }
}

TEST(NumberText, EightMillionValuesAreWrittenAsBefore) {
  const long count = 4000000;  // of each precision
  std::atomic<long> wrong{0};
  std::mutex first;
  std::string example;
  ParallelRows(0, count - 1, 100000, [&](long a, long b) {
    char mine[kNumberTextMax], theirs[kNumberTextMax];
    for (long i = a; i <= b; ++i) {
      const double d = SomeDouble(static_cast<std::uint64_t>(i));
      const float f = SomeSingle(static_cast<std::uint64_t>(i));
      const std::string_view md(mine, static_cast<std::size_t>(WriteGeneral(mine, d) - mine));
      const std::string_view td(
          theirs, static_cast<std::size_t>(reference::WriteGeneral(theirs, d) - theirs));
      const bool okDouble = md == td;
      const std::string_view mf(mine, static_cast<std::size_t>(WriteSingle(mine, f) - mine));
      const std::string_view tf(
          theirs, static_cast<std::size_t>(reference::WriteSingle(theirs, f) - theirs));
      const bool okSingle = mf == tf;
      if ((!okDouble || !okSingle) && wrong++ == 0) {
        std::lock_guard lock(first);
        example = okDouble ? Hex(f) + " single: " + std::string(mf) + " / " + std::string(tf)
                           : Hex(d) + ": " + std::string(md) + " / " + std::string(td);
      }
    }
  });
  EXPECT_EQ(wrong.load(), 0) << "first: " << example;
}

TEST(RecordWriter, AMovedFromWriterIsEmptyAndWritesAgain) {
  RecordWriter a;
  a.Text("x").Number(0.5).End();
  RecordWriter b(std::move(a));
  EXPECT_EQ(b.Content(), "\"x\",0.5\r\n");
  EXPECT_EQ(a.Content(), "");  // NOLINT(bugprone-use-after-move): the state it is left in
  a.Number(2).Single(0.25f).Integer(-3).End();
  EXPECT_EQ(a.Content(), "2,0.25,-3\r\n");
  RecordWriter c;
  c = b;
  EXPECT_EQ(c.Content(), b.Content());
  c = std::move(a);
  EXPECT_EQ(c.Content(), "2,0.25,-3\r\n");
}

// A writer past 2 MB takes a buffer that an earlier large writer may have
// given back with its text still in it: what it holds is only what it wrote,
// through growing, copying and moving.
TEST(RecordWriter, ALargeWriterHoldsOnlyItsOwnTextWhenItsBufferIsReused) {
  auto write = [](RecordWriter& w, std::string& expected, long rows, int seed) {
    for (long i = 0; i < rows; ++i) {
      const std::string name = "Site " + std::to_string(i * seed);
      w.Text(name);
      expected += "\"" + name + "\"";
      for (int c = 0; c < 40; ++c) {
        const long long v = (i * 7919 + c * 104729LL) % 1000003 * seed;
        w.Integer(v);
        expected += "," + std::to_string(v);
      }
      w.End();
      expected += "\r\n";
    }
  };
  for (int round = 1; round <= 3; ++round) {
    RecordWriter grown;  // grows through several large buffers
    std::string expected;
    write(grown, expected, 12000 * round, round);
    ASSERT_GT(expected.size(), std::size_t{2} << 20);
    EXPECT_TRUE(grown.Content() == expected) << "round " << round;
    RecordWriter reserved;  // one large buffer, filled part of the way
    reserved.Reserve(expected.size() * 2);
    std::string again;
    write(reserved, again, 12000 * round, round + 10);
    EXPECT_TRUE(reserved.Content() == again) << "round " << round;
    RecordWriter copy(reserved);
    EXPECT_TRUE(copy.Content() == again);
    RecordWriter moved(std::move(grown));
    EXPECT_TRUE(moved.Content() == expected);
  }
}
