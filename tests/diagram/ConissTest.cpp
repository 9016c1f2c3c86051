#include <gtest/gtest.h>

#include <cmath>

#include "diagram/Coniss.h"
#include "diagram/DiagramSupport.h"
#include "envelope/Uniform.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

using Rows = std::vector<std::vector<double>>;

Session RunConiss(const Rows& rows, const std::vector<std::string>& labels, bool text) {
  Session s = Core(rows, labels, text);
  NoProgress none;
  DoConiss(s, none);
  return s;
}

Session RunText(const Rows& rows) {
  return RunConiss(rows, TextLabels(static_cast<long>(rows.size())), true);
}

class JoinProgress : public Progress {
 public:
  long Max = -1;
  std::vector<long> Steps;
  int Finishes = 0;
  void Start(long m) override { Max = m; }
  void Step(long v) override { Steps.push_back(v); }
  void Finish() override { ++Finishes; }
};

}  // namespace

TEST(Coniss, EqualPairsJoinTheFirstPairFirst) {
  // d(A, B) = d(B, C) = 0.0625 exactly.
  Session s = RunText({{0.25, 0}, {0.5, 0}, {0.75, 0}});
  EXPECT_EQ(s.ConissLeft(1), 10.0f);
  EXPECT_EQ(s.ConissRight(1), 20.0f);
  EXPECT_EQ(s.ConissHeight(1), 0.0625f);
}

TEST(Coniss, PairsEqualAsSinglesTieEvenWhenTheDoublesDiffer) {
  // d(A, B) = 0.25 + 2^-28 and d(B, C) = 0.25: the second is smaller in
  // double precision, but both round to the single 0.25, and the first wins.
  const double tiny = std::ldexp(1.0, -14);
  Session s = RunText({{0, tiny}, {0.5, 0}, {1.0, 0}});
  EXPECT_GT(s.ConissHeight(1), 0.0f);
  EXPECT_EQ(s.ConissLeft(1), 10.0f);
  EXPECT_EQ(s.ConissRight(1), 20.0f);
  // Slightly more apart and the second pair is closer also as singles.
  Session t = RunText({{0, 0.01}, {0.5, 0}, {1.0, 0}});
  EXPECT_EQ(t.ConissLeft(1), 20.0f);
  EXPECT_EQ(t.ConissRight(1), 30.0f);
}

TEST(Coniss, MergingTakesThePlainMeanOfBothHalves) {
  // A and B join first; the pair then joins C, and C counts half, the pair
  // half, not a third.
  Session s = RunText({{0.0}, {0.25}, {1.0}});
  EXPECT_EQ(s.ConissHeight(1), 0.0625f);  // (0.25 - 0)^2
  EXPECT_EQ(s.ConissLeft(2), 15.0f);      // the pair stands between A and B
  EXPECT_EQ(s.ConissRight(2), 30.0f);
  EXPECT_EQ(s.ConissHeight(2), 0.765625f + 0.0625f);  // (1 - 0.125)^2 plus the pair's level
  EXPECT_EQ(s.ConissData(1, 1), 0.5625f);             // (0.125 + 1) / 2, not 0.4166
}

TEST(Coniss, LevelsAddTheLevelsOfBothHalvesAndOnlyGrow) {
  // Two pairs first (both at 0.0625, the first pair first), then the two
  // clusters: their squared distance plus both levels.
  Session s = RunText({{0.0}, {0.25}, {0.75}, {1.0}});
  EXPECT_EQ(s.ConissLeft(1), 10.0f);
  EXPECT_EQ(s.ConissRight(1), 20.0f);
  EXPECT_EQ(s.ConissHeight(1), 0.0625f);
  EXPECT_EQ(s.ConissLeft(2), 30.0f);
  EXPECT_EQ(s.ConissRight(2), 40.0f);
  EXPECT_EQ(s.ConissHeight(2), 0.0625f);
  EXPECT_EQ(s.ConissLeft(3), 15.0f);
  EXPECT_EQ(s.ConissRight(3), 35.0f);
  EXPECT_EQ(s.ConissHeight(3), 0.5625f + 0.0625f + 0.0625f);

  // On a longer core every join is at least as high as the joins it holds.
  std::uint64_t state = 7;
  Rows rows(60, std::vector<double>(6));
  for (auto& r : rows)
    for (auto& v : r) v = NextUniform(state) * 0.3;
  Session t = RunText(rows);
  // A cluster made by join j stands at the middle of its halves; a later
  // join with a half there holds it and stands at least as high.
  int held = 0;
  for (long s = 2; s <= 59; ++s)
    for (long j = 1; j < s; ++j) {
      float middle =
          static_cast<float>((static_cast<double>(t.ConissLeft(j)) + t.ConissRight(j)) / 2);
      if (t.ConissLeft(s) == middle || t.ConissRight(s) == middle) {
        ++held;
        EXPECT_GE(t.ConissHeight(s), t.ConissHeight(j)) << s << " holds " << j;
      }
    }
  EXPECT_GE(held, 58);  // every join but the first ones of single samples
  // The last join holds everything: its level is the largest.
  for (long j = 1; j <= 58; ++j) EXPECT_GE(t.ConissHeight(59), t.ConissHeight(j));
}

TEST(Coniss, PositionsFollowTheLabels) {
  // Text labels: 10, 20, 30.
  Session a = RunText({{0.1}, {0.1001}, {0.9}});
  EXPECT_EQ(a.ConissLeft(1), 10.0f);
  EXPECT_EQ(a.ConissRight(1), 20.0f);
  EXPECT_EQ(a.ConissRight(2), 30.0f);
  // Depths 0, 1, 3 with N = 3: 10, (3 - 1 + 1 * 3) * 10 / 3 = 16.67, 30.
  Session b = RunConiss({{0.1}, {0.1001}, {0.9}}, {"0", "1", "3"}, false);
  EXPECT_EQ(b.ConissLeft(1), 10.0f);
  EXPECT_EQ(b.ConissRight(1), static_cast<float>(50.0 / 3));
  EXPECT_NEAR(b.ConissRight(1), 16.67, 0.005);
  EXPECT_EQ(b.ConissRight(2), 30.0f);
  EXPECT_EQ(b.ConissLeft(2), static_cast<float>((10 + 50.0 / 3) / 2));
}

TEST(Coniss, TheAxisLeavesTenPercentSpareAndTicksGoOnToOneHundredTwentyPercent) {
  Session s = RunText({{0.0}, {0.25}, {1.0}});
  const double last = s.ConissHeight(2);  // 0.828125
  EXPECT_DOUBLE_EQ(ConissScaleWidth(s), static_cast<float>(last * 1.1));
  // Below one unit of level: one tick, beyond the edge.
  EXPECT_EQ(ConissTicks(s), (std::vector<double>{1}));
  // Proportions as large as percentages: levels in the thousands.
  Session t = RunText({{0.0, 0}, {30, 0}, {30, 40}});
  const double top = t.ConissHeight(2);
  std::vector<double> ticks = ConissTicks(t);
  EXPECT_EQ(ticks.front(), 1);
  EXPECT_LT(ticks.back(), top * 1.2);
  EXPECT_GE(ticks.back() + 1, top * 1.2);
  EXPECT_GT(ticks.back(), ConissScaleWidth(t));  // past the right edge
}

TEST(Coniss, ProgressCountsTheJoins) {
  Session s = Core({{0.1}, {0.2}, {0.4}, {0.8}}, TextLabels(4), true);
  JoinProgress p;
  DoConiss(s, p);
  EXPECT_EQ(p.Max, 4);
  EXPECT_EQ(p.Steps, (std::vector<long>{1, 2, 3}));
  EXPECT_EQ(p.Finishes, 1);
}

TEST(Coniss, OneSampleHasNoJoinAndNoWidth) {
  Session s = RunText({{0.3, 0.7}});
  EXPECT_EQ(s.ConissHeight.Upper(), 1);
  try {
    ConissScaleWidth(s);
    FAIL() << "a tree of one sample has a width";
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::InvalidCall);
  }
}

TEST(Coniss, IdenticalSamplesJoinAtLevelZeroAndHaveNoWidth) {
  Session s = RunText({{0.3, 0.7}, {0.3, 0.7}, {0.3, 0.7}});
  EXPECT_EQ(s.ConissHeight(2), 0.0f);
  EXPECT_THROW(ConissScaleWidth(s), RuntimeFailure);
}

TEST(Coniss, EqualFirstAndLastDepthsFail) {
  Session s = Core({{0.1}, {0.2}, {0.3}}, {"5", "6", "5"}, false);
  NoProgress none;
  try {
    DoConiss(s, none);
    FAIL() << "no failure";
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::DivisionByZero);
    EXPECT_STREQ(e.what(), "Division by zero");
  }
}

TEST(Coniss, ALabelThatIsNoNumberFails) {
  Session s = Core({{0.1}, {0.2}, {0.3}}, {"5", "x6", "7"}, false);
  NoProgress none;
  try {
    DoConiss(s, none);
    FAIL();
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::TypeMismatch);
  }
}

TEST(Coniss, NoPairBelow9999IsTheSubscriptFailure) {
  // Distances of 10000 and more: no pair is picked.
  Session s = Core({{0.0}, {100.0}, {0.0}}, TextLabels(3), true);
  NoProgress none;
  try {
    DoConiss(s, none);
    FAIL();
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::SubscriptOutOfRange);
  }
}

TEST(Coniss, KeepingDistancesUpToDateGivesTheFullComputationsResult) {
  // Proportions on a coarse grid, so that many pairs tie.
  std::uint64_t state = 2026;
  for (int round = 0; round < 4; ++round) {
    const long n = 150 + 17 * round, m = 3 + 5 * round;
    Rows rows(static_cast<std::size_t>(n), std::vector<double>(static_cast<std::size_t>(m)));
    for (auto& r : rows)
      for (auto& v : r) v = std::floor(NextUniform(state) * (3 + round)) / 8;
    std::vector<std::string> depths;
    for (long i = 0; i < n; ++i) depths.push_back(std::to_string(i * i % 7 + 3 * i));
    Session a = Core(rows, depths, round % 2 == 0);
    Session b = a;
    NoProgress none;
    DoConiss(a, none);
    DoConissFull(b, none);
    EXPECT_TRUE(a.ConissLeft == b.ConissLeft) << round;
    EXPECT_TRUE(a.ConissRight == b.ConissRight) << round;
    EXPECT_TRUE(a.ConissHeight == b.ConissHeight) << round;
    EXPECT_TRUE(a.ConissDist == b.ConissDist) << round;
    EXPECT_TRUE(a.ConissSum == b.ConissSum) << round;
    EXPECT_TRUE(a.ConissPos == b.ConissPos) << round;
    EXPECT_TRUE(a.ConissData == b.ConissData) << round;
  }
}

TEST(Coniss, ResultArraysAreSizedToTheCoreAndJoinsCoverIt) {
  Session s = RunText({{0.1, 0.2}, {0.5, 0.1}, {0.4, 0.4}, {0.9, 0.0}, {0.2, 0.2}});
  EXPECT_EQ(s.ConissLeft.Upper(), 5);
  EXPECT_EQ(s.ConissData.Upper0(), 5);
  EXPECT_EQ(s.ConissData.Upper1(), 2);
  // The last join spans the whole core: its halves lie within 10..50.
  EXPECT_GE(s.ConissLeft(4), 10.0f);
  EXPECT_LE(s.ConissRight(4), 50.0f);
  EXPECT_LT(s.ConissLeft(4), s.ConissRight(4));
}
