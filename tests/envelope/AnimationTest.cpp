#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "envelope/Animation.h"
#include "state/Failure.h"

using namespace varnoth;

namespace {

constexpr TurnSettings kTurning{true, false, false};

// A session with `n` EOFs on the ring of DisplayAxes, holding 1 to n.
Session RingOf(Count n) {
  Session s;
  s.DisplayAxes.ReDim(n);
  for (Count k = 1; k <= n; ++k) s.DisplayAxes(k) = k;
  s.EnvelopeAxisCount = n;
  return s;
}

std::vector<Count> Ring(const Session& s) {
  std::vector<Count> r;
  for (Count k = 1; k <= s.EnvelopeAxisCount; ++k) r.push_back(s.DisplayAxes(k));
  return r;
}

// Names for the three lists; the samples at 2 and 4 are empty.
Session Lists() {
  Session s;
  s.ReferenceIsBase = true;
  s.TaxaCount = s.RefTaxaCount = 3;
  s.RefTaxaNames.ReDim(3);
  s.RefTaxaNames(1) = "Abies";
  s.RefTaxaNames(2) = "Betula";
  s.RefTaxaNames(3) = "Abies";
  s.RefSiteCount = 4;
  s.RefSiteNames.ReDim(4);
  for (long i = 1; i <= 4; ++i) s.RefSiteNames(i) = "Site " + std::to_string(i);
  s.FossilSampleCount = 5;
  s.FossilLabels.ReDim(5);
  s.FossilEmptySample.ReDim(5);
  for (long i = 1; i <= 5; ++i) s.FossilLabels(i) = std::to_string(i * 10);
  s.FossilEmptySample(2) = s.FossilEmptySample(4) = 1;
  return s;
}

}  // namespace

TEST(AnimationTurn, VelocitySliderSetsTheStepInSinglePrecision) {
  EXPECT_EQ(RotationStepFor(40), 0.01f);
  EXPECT_EQ(RotationStepFor(0), 0.0f);
  EXPECT_EQ(RotationStepFor(100), 0.025f);
  EXPECT_EQ(RotationStepFor(1), static_cast<float>(1 / 4000.0));
  EXPECT_EQ(AxisChangeIntervalMs(5), 5000);
  EXPECT_EQ(AxisChangeIntervalMs(15), 15000);
}

TEST(AnimationTurn, TickAddsTheStepOrTakesItWithReverse) {
  Session s;
  s.RotationStep = 0.01f;
  s.RotationAngles.A1 = 0.5;
  ASSERT_TRUE(TurnTick(s, kTurning).has_value());
  EXPECT_DOUBLE_EQ(s.RotationAngles.A1, 0.5 + static_cast<double>(0.01f));
  TurnTick(s, {true, false, true});
  TurnTick(s, {true, false, true});
  EXPECT_DOUBLE_EQ(s.RotationAngles.A1, 0.5 - static_cast<double>(0.01f));
  EXPECT_DOUBLE_EQ(s.RotationAngles.A2, 15.0 * 3.14159265358979 / 180);  // the tilt stays
}

TEST(AnimationTurn, SliderTakesTheFloorOfTheAngleInDegrees) {
  EXPECT_EQ(RotateSliderFor(0.0), 0);
  EXPECT_EQ(RotateSliderFor(0.01), 0);    // 0.57 degrees
  EXPECT_EQ(RotateSliderFor(-0.01), -1);  // floor, not truncation
  EXPECT_EQ(RotateSliderFor(kTurnPi), 180);
  EXPECT_EQ(RotateSliderFor(-kTurnPi), -180);
  EXPECT_DOUBLE_EQ(AngleForSlider(90), kTurnPi / 2);
}

TEST(AnimationTurn, FlatViewAndPauseLeaveTheAngle) {
  Session s;
  s.RotationAngles.A1 = 1;
  EXPECT_FALSE(TurnTick(s, {false, false, false}).has_value());
  EXPECT_FALSE(TurnTick(s, {true, true, false}).has_value());
  EXPECT_FALSE(TurnTick(s, {true, true, true}).has_value());
  EXPECT_EQ(s.RotationAngles.A1, 1);
}

TEST(AnimationTurn, AngleWrapsOnlyBeyondPiNeverAtPi) {
  Session s;
  s.RotationStep = 0.01f;
  const double step = static_cast<double>(s.RotationStep);
  // An angle one step short of pi that lands on pi exactly.
  double start = kTurnPi - step;
  while (start + step > kTurnPi) start = std::nextafter(start, 0.0);
  while (start + step < kTurnPi) start = std::nextafter(start, 4.0);
  ASSERT_EQ(start + step, kTurnPi);
  s.RotationAngles.A1 = start;
  TurnTick(s, kTurning);
  EXPECT_EQ(s.RotationAngles.A1, kTurnPi);  // at pi: no wrap
  TurnTick(s, kTurning);
  EXPECT_EQ(s.RotationAngles.A1, -kTurnPi);  // beyond pi: the other side

  // The same the other way round.
  s.RotationAngles.A1 = -start;
  TurnTick(s, {true, false, true});
  EXPECT_EQ(s.RotationAngles.A1, -kTurnPi);
  TurnTick(s, {true, false, true});
  EXPECT_EQ(s.RotationAngles.A1, kTurnPi);

  // The smallest step beyond pi wraps too.
  s.RotationAngles.A1 = std::nextafter(kTurnPi, 4.0);
  s.RotationStep = 0;
  TurnTick(s, kTurning);
  EXPECT_EQ(s.RotationAngles.A1, -kTurnPi);
}

TEST(AnimationTurn, VelocityZeroTicksButTheViewStandsStill) {
  Session s;
  s.RotationStep = RotationStepFor(0);
  // Whole degrees read back through the floor may land one low; the view
  // must not creep because of that.
  for (int degrees : {-180, -90, -1, 0, 1, 37, 147, 169, 180}) {
    s.RotationAngles.A1 = AngleForSlider(degrees);
    int slider = degrees;
    for (int tick = 0; tick < 50; ++tick) TurnTickWithSlider(s, kTurning, slider);
    EXPECT_EQ(slider, degrees);
    EXPECT_EQ(s.RotationAngles.A1, AngleForSlider(degrees));
  }
}

TEST(AnimationTurn, TimerTicksTurnTheViewThroughTheSlider) {
  // At the start velocity of 40 a tick adds 0.01 radian, about 0.57 of a
  // degree. The slider keeps whole degrees, and each change of its value
  // puts the angle back on its whole degree: forwards the angle passes
  // the next degree every second tick.
  Session s;
  s.RotationStep = RotationStepFor(40);
  s.RotationAngles.A1 = 0;
  int slider = 0;
  TurnTickWithSlider(s, kTurning, slider);
  EXPECT_EQ(slider, 0);
  EXPECT_DOUBLE_EQ(s.RotationAngles.A1, static_cast<double>(0.01f));
  TurnTickWithSlider(s, kTurning, slider);
  EXPECT_EQ(slider, 1);
  EXPECT_DOUBLE_EQ(s.RotationAngles.A1, AngleForSlider(1));
  for (int tick = 2; tick < 100; ++tick) TurnTickWithSlider(s, kTurning, slider);
  EXPECT_EQ(slider, 50);
  EXPECT_DOUBLE_EQ(s.RotationAngles.A1, AngleForSlider(50));

  // Backwards, the floor takes the angle below its whole degree at once:
  // one degree per tick.
  for (int tick = 0; tick < 30; ++tick) TurnTickWithSlider(s, {true, false, true}, slider);
  EXPECT_EQ(slider, 20);
  EXPECT_DOUBLE_EQ(s.RotationAngles.A1, AngleForSlider(20));

  // Paused, nothing moves.
  for (int tick = 0; tick < 30; ++tick) TurnTickWithSlider(s, {true, true, false}, slider);
  EXPECT_EQ(slider, 20);
  EXPECT_DOUBLE_EQ(s.RotationAngles.A1, AngleForSlider(20));
}

TEST(AnimationTurn, TurningGoesRoundThroughTheWrap) {
  Session s;
  s.RotationStep = RotationStepFor(100);  // 0.025 radian, 1.43 degrees
  s.RotationAngles.A1 = AngleForSlider(178);
  int slider = 178;
  TurnTickWithSlider(s, kTurning, slider);
  EXPECT_EQ(slider, 179);
  TurnTickWithSlider(s, kTurning, slider);
  EXPECT_EQ(slider, -180);  // beyond pi: the far side
  EXPECT_DOUBLE_EQ(s.RotationAngles.A1, -kTurnPi);
  TurnTickWithSlider(s, kTurning, slider);
  EXPECT_EQ(slider, -179);
  for (int tick = 0; tick < 2000; ++tick) {
    TurnTickWithSlider(s, kTurning, slider);
    ASSERT_GE(slider, -180);
    ASSERT_LE(slider, 180);
    ASSERT_LE(std::fabs(s.RotationAngles.A1), kTurnPi);
  }
}

TEST(AnimationRing, PrevMovesEveryEntryTowardsTheStart) {
  Session s = RingOf(5);
  AxisRingPrev(s);
  EXPECT_EQ(Ring(s), (std::vector<Count>{2, 3, 4, 5, 1}));
  AxisRingPrev(s);
  EXPECT_EQ(Ring(s), (std::vector<Count>{3, 4, 5, 1, 2}));
}

TEST(AnimationRing, NextMovesThemTheOtherWay) {
  Session s = RingOf(5);
  AxisRingNext(s);
  EXPECT_EQ(Ring(s), (std::vector<Count>{5, 1, 2, 3, 4}));
  AxisRingPrev(s);
  EXPECT_EQ(Ring(s), (std::vector<Count>{1, 2, 3, 4, 5}));
}

TEST(AnimationRing, AFullTurnOfTheRingComesBack) {
  Session s = RingOf(7);
  for (int i = 0; i < 7; ++i) AxisRingPrev(s);
  EXPECT_EQ(Ring(s), (std::vector<Count>{1, 2, 3, 4, 5, 6, 7}));
  for (int i = 0; i < 3; ++i) AxisRingNext(s);
  EXPECT_EQ(Ring(s), (std::vector<Count>{5, 6, 7, 1, 2, 3, 4}));
}

TEST(AnimationRing, OnlyTheEnvelopesAxesTurn) {
  // Two axes in the flat view: they swap, the third stays where it is.
  Session s = RingOf(4);
  s.EnvelopeAxisCount = 2;
  AxisRingPrev(s);
  EXPECT_EQ(s.DisplayAxes(1), 2);
  EXPECT_EQ(s.DisplayAxes(2), 1);
  EXPECT_EQ(s.DisplayAxes(3), 3);
  EXPECT_EQ(s.DisplayAxes(4), 4);
  AxisRingNext(s);
  EXPECT_EQ(s.DisplayAxes(1), 1);
  EXPECT_EQ(s.DisplayAxes(2), 2);
}

TEST(AnimationRing, MoreAxisBringsTheInvisibleOnesOnScreen) {
  // Ring 4, 7, 9, 12 with three on screen: the first tick shows 7, 9, 12.
  Session s = RingOf(4);
  s.MoreAxis = true;
  const Count eofs[] = {4, 7, 9, 12};
  for (Count k = 1; k <= 4; ++k) s.DisplayAxes(k) = eofs[k - 1];
  AxisRingPrev(s);
  EXPECT_EQ(s.DisplayAxes(1), 7);
  EXPECT_EQ(s.DisplayAxes(2), 9);
  EXPECT_EQ(s.DisplayAxes(3), 12);
  EXPECT_EQ(s.DisplayAxes(4), 4);
}

TEST(AnimationRing, ARingLongerThanItsArrayIsTheSubscriptFailure) {
  Session s = RingOf(3);
  s.EnvelopeAxisCount = 4;
  EXPECT_THROW(AxisRingPrev(s), RuntimeFailure);
  EXPECT_THROW(AxisRingNext(s), RuntimeFailure);
}

TEST(AnimationRing, AutomaticAndManualChangeSwapTheControls) {
  const AxisChangeControls a = AxisChangeMode(true);
  EXPECT_TRUE(a.Timer2On);
  EXPECT_TRUE(a.IntervalEnabled);
  EXPECT_FALSE(a.StepButtonsEnabled);
  const AxisChangeControls m = AxisChangeMode(false);
  EXPECT_FALSE(m.Timer2On);
  EXPECT_FALSE(m.IntervalEnabled);
  EXPECT_TRUE(m.StepButtonsEnabled);
}

TEST(AnimationStepping, NextAtTheLastSampleWrapsToTheFirst) {
  Session s = Lists();
  s.SampleCursor = 5;
  EXPECT_EQ(StepCursor(s, ListKind::Samples, 1), 1);
  EXPECT_EQ(s.SampleCursor, 1);
}

TEST(AnimationStepping, PrevAtTheFirstWrapsToTheCount) {
  Session s = Lists();
  EXPECT_EQ(StepCursor(s, ListKind::Samples, -1), 5);
  EXPECT_EQ(StepCursor(s, ListKind::Sites, -1), 4);
  EXPECT_EQ(StepCursor(s, ListKind::Taxa, -1), 3);
  EXPECT_EQ(StepCursor(s, ListKind::Taxa, 1), 1);
  EXPECT_EQ(StepCursor(s, ListKind::Sites, 1), 1);
}

TEST(AnimationStepping, EmptySamplesAreStopsLikeAnyOther) {
  Session s = Lists();
  std::vector<Count> seen;
  for (int i = 0; i < 6; ++i) seen.push_back(StepCursor(s, ListKind::Samples, 1));
  EXPECT_EQ(seen, (std::vector<Count>{2, 3, 4, 5, 1, 2}));
  seen.clear();
  for (int i = 0; i < 3; ++i) seen.push_back(StepCursor(s, ListKind::Samples, -1));
  EXPECT_EQ(seen, (std::vector<Count>{1, 5, 4}));
}

TEST(AnimationStepping, EachListHasItsOwnCursor) {
  Session s = Lists();
  StepCursor(s, ListKind::Sites, 1);
  StepCursor(s, ListKind::Sites, 1);
  EXPECT_EQ(s.SiteCursor, 3);
  EXPECT_EQ(s.TaxonCursor, 1);
  EXPECT_EQ(s.SampleCursor, 1);
}

TEST(AnimationStepping, NamesOfTheLists) {
  Session s = Lists();
  EXPECT_EQ(ListNames(s, ListKind::Taxa)(2), "Betula");
  EXPECT_EQ(ListNames(s, ListKind::Sites)(4), "Site 4");
  EXPECT_EQ(ListNames(s, ListKind::Samples)(3), "30");
  // With the fossil table read first, its names head the taxa list.
  s.ReferenceIsBase = false;
  s.FossilIsBase = true;
  s.FossilTaxaNames.ReDim(3);
  s.FossilTaxaNames(2) = "Betula pendula";
  EXPECT_EQ(ListNames(s, ListKind::Taxa)(2), "Betula pendula");
}

TEST(AnimationRedDot, TheLastMatchingNameStands) {
  Session s = Lists();
  s.TaxonCursor = 2;
  EXPECT_TRUE(MoveRedDot(s, ListKind::Taxa, "Abies"));
  EXPECT_EQ(s.TaxonCursor, 3);
}

TEST(AnimationRedDot, ANameNotFoundLeavesTheCursor) {
  Session s = Lists();
  s.SiteCursor = 2;
  EXPECT_FALSE(MoveRedDot(s, ListKind::Sites, "site 3"));  // exact comparison
  EXPECT_EQ(s.SiteCursor, 2);
  EXPECT_TRUE(MoveRedDot(s, ListKind::Sites, "Site 3"));
  EXPECT_EQ(s.SiteCursor, 3);
  EXPECT_TRUE(MoveRedDot(s, ListKind::Samples, "40"));
  EXPECT_EQ(s.SampleCursor, 4);
}

TEST(AnimationDimension, FlatViewStopsTurningAndUsesTwoAxes) {
  Session s;
  s.EnvelopeAxisCount = 3;
  const DimensionEffect e = ChooseDimension(s, false, false);
  EXPECT_FALSE(e.Timer1On);
  EXPECT_FALSE(e.ZAxisShown);
  EXPECT_FALSE(e.StopTimer2);
  EXPECT_FALSE(e.WithDisplayAxes);
  EXPECT_EQ(s.EnvelopeAxisCount, 2);
  EXPECT_EQ(s.VisibleAxisCount, 2);
}

TEST(AnimationDimension, TurningViewTurnsUnlessPaused) {
  Session s;
  DimensionEffect e = ChooseDimension(s, true, false);
  EXPECT_TRUE(e.Timer1On);
  EXPECT_TRUE(e.ZAxisShown);
  EXPECT_EQ(s.EnvelopeAxisCount, 3);
  EXPECT_EQ(s.VisibleAxisCount, 3);
  e = ChooseDimension(s, true, true);
  EXPECT_FALSE(e.Timer1On);
  EXPECT_TRUE(e.ZAxisShown);
}

TEST(AnimationDimension, MoreAxisStaysWhileAnAxisIsLeftInvisible) {
  Session s;
  s.DisplayAxes.ReDim(5);
  s.MoreAxis = true;
  s.EnvelopeAxisCount = 4;
  DimensionEffect e = ChooseDimension(s, true, false);
  EXPECT_TRUE(s.MoreAxis);
  EXPECT_EQ(s.EnvelopeAxisCount, 4);
  EXPECT_TRUE(e.WithDisplayAxes);
  EXPECT_FALSE(e.StopTimer2);
  s.EnvelopeAxisCount = 3;
  e = ChooseDimension(s, false, false);
  EXPECT_TRUE(s.MoreAxis);
  EXPECT_EQ(s.EnvelopeAxisCount, 3);
  EXPECT_TRUE(e.WithDisplayAxes);
}

TEST(AnimationDimension, MoreAxisEndsWhenEveryAxisWouldBeOnScreen) {
  // Three axes in the turning view: none left invisible.
  Session s;
  s.MoreAxis = true;
  s.EnvelopeAxisCount = 3;
  DimensionEffect e = ChooseDimension(s, true, false);
  EXPECT_FALSE(s.MoreAxis);
  EXPECT_TRUE(e.StopTimer2);
  EXPECT_FALSE(e.WithDisplayAxes);
  EXPECT_EQ(s.EnvelopeAxisCount, 3);

  // Two axes in the flat view.
  s.MoreAxis = true;
  s.EnvelopeAxisCount = 2;
  e = ChooseDimension(s, false, false);
  EXPECT_FALSE(s.MoreAxis);
  EXPECT_TRUE(e.StopTimer2);
  EXPECT_EQ(s.EnvelopeAxisCount, 2);

  // Two axes chosen in the flat view, then the turning view: the envelope
  // takes the three on screen.
  s.MoreAxis = true;
  s.EnvelopeAxisCount = 2;
  e = ChooseDimension(s, true, false);
  EXPECT_FALSE(s.MoreAxis);
  EXPECT_EQ(s.EnvelopeAxisCount, 3);
}

TEST(AnimationDimension, EnvelopeRunsAgainWhenItsAxesChanged) {
  Session s;
  EXPECT_FALSE(ChooseDimension(s, true, false).RerunEnvelope);  // no envelope yet
  s.EnvelopeDone = true;
  EXPECT_TRUE(ChooseDimension(s, false, false).RerunEnvelope);
  EXPECT_TRUE(ChooseDimension(s, true, false).RerunEnvelope);
  // With MoreAxis in force the envelope's axes are the list's: no re-run.
  s.DisplayAxes.ReDim(5);
  s.MoreAxis = true;
  s.EnvelopeAxisCount = 5;
  EXPECT_FALSE(ChooseDimension(s, true, false).RerunEnvelope);
  EXPECT_FALSE(ChooseDimension(s, false, false).RerunEnvelope);
}
