#include "envelope/Animation.h"

#include <cmath>

#include "state/Failure.h"
#include "state/Numeric.h"

namespace varnoth {

float RotationStepFor(int velocity) { return ToSingle(velocity / 4000.0); }

int AxisChangeIntervalMs(int seconds) { return seconds * 1000; }

int RotateSliderFor(double a1) { return static_cast<int>(Int(a1 * 180 / kTurnPi)); }

double AngleForSlider(int degrees) { return degrees * kTurnPi / 180; }

std::optional<int> TurnTick(Session& s, const TurnSettings& t) {
  if (!t.ThreeD || t.Pause) return std::nullopt;
  const double before = s.RotationAngles.A1;
  double a1 = before;
  a1 += t.Reverse ? -static_cast<double>(s.RotationStep) : static_cast<double>(s.RotationStep);
  // Pi itself stays; only an angle beyond it jumps to the other side.
  if (a1 > kTurnPi)
    a1 = -kTurnPi;
  else if (a1 < -kTurnPi)
    a1 = kTurnPi;
  s.RotationAngles.A1 = a1;
  // A whole-degree angle read back through the floor can land one degree
  // low; a view that did not move keeps its slider.
  if (a1 == before) return std::nullopt;
  return RotateSliderFor(a1);
}

void TurnTickWithSlider(Session& s, const TurnSettings& t, int& slider) {
  const std::optional<int> value = TurnTick(s, t);
  if (!value || *value == slider) return;
  slider = *value;
  s.RotationAngles.A1 = AngleForSlider(slider);
}

namespace {
// The ring's entries 0 to EnvelopeAxisCount, checked once.
Count* Ring(Session& s) {
  const Count n = s.EnvelopeAxisCount;
  if (n < 1) ThrowSubscript();
  s.DisplayAxes.Require(n);
  return s.DisplayAxes.Data();
}
}  // namespace

void AxisRingPrev(Session& s) {
  Count* d = Ring(s);
  const Count n = s.EnvelopeAxisCount;
  for (Count i = 0; i <= n - 1; ++i) d[i] = d[i + 1];
  d[n] = d[0];
}

void AxisRingNext(Session& s) {
  Count* d = Ring(s);
  const Count n = s.EnvelopeAxisCount;
  d[0] = d[n];
  for (Count i = n; i >= 1; --i) d[i] = d[i - 1];
}

AxisChangeControls AxisChangeMode(bool automatic) {
  AxisChangeControls c;
  c.Timer2On = automatic;
  c.IntervalEnabled = automatic;
  c.StepButtonsEnabled = !automatic;
  return c;
}

Count ListCount(const Session& s, ListKind list) {
  switch (list) {
    case ListKind::Taxa:
      return s.TaxaCount;
    case ListKind::Sites:
      return s.RefSiteCount;
    case ListKind::Samples:
      return s.FossilSampleCount;
  }
  return 0;
}

const Array1<std::string>& ListNames(const Session& s, ListKind list) {
  switch (list) {
    case ListKind::Taxa:
      // The taxa list shows the names of the table read first.
      return s.FossilIsBase ? s.FossilTaxaNames : s.RefTaxaNames;
    case ListKind::Sites:
      return s.RefSiteNames;
    case ListKind::Samples:
      break;
  }
  return s.FossilLabels;
}

Count& ListCursor(Session& s, ListKind list) {
  switch (list) {
    case ListKind::Taxa:
      return s.TaxonCursor;
    case ListKind::Sites:
      return s.SiteCursor;
    case ListKind::Samples:
      break;
  }
  return s.SampleCursor;
}

Count StepCursor(Session& s, ListKind list, int direction) {
  Count& cursor = ListCursor(s, list);
  const long count = ListCount(s, list);
  long next = static_cast<long>(cursor) + (direction < 0 ? -1 : 1);
  if (next < 1) next = count;
  if (next > count) next = 1;
  cursor = ToCount(static_cast<long long>(next));
  return cursor;
}

bool MoveRedDot(Session& s, ListKind list, const std::string& name) {
  const Array1<std::string>& names = ListNames(s, list);
  const long count = ListCount(s, list);
  long found = 0;
  for (long i = 1; i <= count; ++i)
    if (names(i) == name) found = i;
  if (found == 0) return false;
  ListCursor(s, list) = ToCount(static_cast<long long>(found));
  return true;
}

DimensionEffect ChooseDimension(Session& s, bool threeD, bool paused) {
  DimensionEffect e;
  const Count visible = threeD ? 3 : 2;
  e.Timer1On = threeD && !paused;
  e.ZAxisShown = threeD;
  s.VisibleAxisCount = visible;
  // MoreAxis needs at least one axis beyond those on screen.
  if (s.MoreAxis && s.EnvelopeAxisCount < visible + 1) {
    s.MoreAxis = false;
    e.StopTimer2 = true;
  }
  if (!s.MoreAxis) s.EnvelopeAxisCount = visible;
  e.WithDisplayAxes = s.MoreAxis;
  e.RerunEnvelope = s.EnvelopeDone && !s.MoreAxis;
  return e;
}

}  // namespace varnoth
