#include <gtest/gtest.h>

#include "state/Array.h"
#include "state/Numeric.h"

using namespace varnoth;

static FailureKind KindOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const RuntimeFailure& e) {
    return e.kind();
  }
  ADD_FAILURE() << "no failure";
  return FailureKind::InvalidCall;
}

TEST(Array, UnsizedArrayHasNoIndex) {
  Array1<int> a;
  Array2<double> b;
  EXPECT_EQ(KindOf([&] { a(0); }), FailureKind::SubscriptOutOfRange);
  EXPECT_EQ(KindOf([&] { b(0, 0); }), FailureKind::SubscriptOutOfRange);
  EXPECT_EQ(KindOf([&] { (void)a.Upper(); }), FailureKind::SubscriptOutOfRange);
}

TEST(Array, BoundsAreInclusiveFromZero) {
  Array2<double> a(2, 3);
  a(0, 0) = 1;
  a(2, 3) = 5;
  EXPECT_EQ(a(2, 3), 5);
  EXPECT_EQ(KindOf([&] { a(3, 0); }), FailureKind::SubscriptOutOfRange);
  EXPECT_EQ(KindOf([&] { a(0, 4); }), FailureKind::SubscriptOutOfRange);
  EXPECT_EQ(KindOf([&] { a(-1, 0); }), FailureKind::SubscriptOutOfRange);
  EXPECT_EQ(a.Upper0(), 2);
  EXPECT_EQ(a.Upper1(), 3);
}

TEST(Array, PreserveKeepsTheOverlap) {
  Array2<int> a(2, 2);
  for (int i = 0; i <= 2; ++i)
    for (int j = 0; j <= 2; ++j) a(i, j) = 10 * i + j;
  a.ReDimPreserve(3, 1);
  EXPECT_EQ(a(2, 1), 21);
  EXPECT_EQ(a(3, 1), 0);
  EXPECT_EQ(KindOf([&] { a(0, 2); }), FailureKind::SubscriptOutOfRange);
  Array1<int> b(3);
  b(3) = 4;
  b.ReDimPreserve(5);
  EXPECT_EQ(b(3), 4);
  b.ReDim(5);
  EXPECT_EQ(b(3), 0);
  EXPECT_EQ(KindOf([&] { b.ReDim(-1); }), FailureKind::SubscriptOutOfRange);
}

TEST(Array, ThreeDimensions) {
  Array3<float> a(1, 2, 3);
  a(1, 2, 3) = 2.5f;
  EXPECT_EQ(a(1, 2, 3), 2.5f);
  EXPECT_EQ(KindOf([&] { a(1, 3, 0); }), FailureKind::SubscriptOutOfRange);
}

TEST(Numeric, CountsOverflow) {
  EXPECT_EQ(ToCount(32767LL), 32767);
  EXPECT_EQ(KindOf([] { ToCount(32768LL); }), FailureKind::Overflow);
  EXPECT_EQ(KindOf([] { Increment(32767); }), FailureKind::Overflow);
  EXPECT_EQ(ToCount(2.5), 2);  // half to even
  EXPECT_EQ(ToCount(3.5), 4);
  EXPECT_EQ(KindOf([] { ToCount(1e9); }), FailureKind::Overflow);
}

TEST(Numeric, RoundIntFix) {
  EXPECT_EQ(Round(0.5), 0);
  EXPECT_EQ(Round(1.5), 2);
  EXPECT_EQ(Round(-2.5), -2);
  EXPECT_EQ(Int(-1.5), -2);
  EXPECT_EQ(Fix(-1.5), -1);
  EXPECT_EQ(Single(0.1), static_cast<double>(0.1f));
  EXPECT_EQ(KindOf([] { ToSingle(1e300); }), FailureKind::Overflow);
  EXPECT_EQ(KindOf([] { Div(1, 0); }), FailureKind::DivisionByZero);
  EXPECT_EQ(KindOf([] { Div(0, 0); }), FailureKind::Overflow);
}
