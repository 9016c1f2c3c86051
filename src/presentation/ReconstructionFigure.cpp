#include "presentation/ReconstructionFigure.h"

#include <cmath>

#include "diagram/DiagramLayout.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"

namespace varnoth {

namespace {

const QColor kWhite(255, 255, 255);

bool Missing(double v) { return v == kMissing; }

// y of a smoothed point: its mean sample number, or its mean depth placed
// as a depth is.
double SmoothedY(const Session& s, double position) {
  if (s.FossilLabelsAreText) return 10 * position;
  const long n = s.FossilSampleCount;
  const double first = LenientParse(s.FossilLabels(1)), last = LenientParse(s.FossilLabels(n));
  return Div(((position - first) * n + (last - position)) * 10, last - first);
}

void DrawSmoothing(Session& s, long p, long level, const QColor& colour, Surface& pic) {
  SmoothCurve(s, p, level);
  const long points = s.FossilSampleCount - level + 1;
  if (points < 1) return;
  Array1<double> y(points);
  for (long i = 1; i <= points; ++i) y(i) = SmoothedY(s, s.SmoothedPosition(i));
  pic.SetDrawWidth(2);
  for (long i = 2; i <= points; ++i) {
    const float a = s.SmoothedValue(i - 1), b = s.SmoothedValue(i);
    if (!Missing(a) && !Missing(b)) pic.Line(a, y(i - 1), b, y(i), colour);
  }
  for (long i = 2; i <= points - 1; ++i)
    if (!Missing(s.SmoothedValue(i)) && Missing(s.SmoothedValue(i - 1)) &&
        Missing(s.SmoothedValue(i + 1)))
      pic.Point(s.SmoothedValue(i), y(i), colour);
  pic.SetDrawWidth(1);
}

}  // namespace

void SetCurveScale(const Session& s, Surface& picture1) {
  const long n = s.FossilSampleCount;
  const bool emptyEnds = n >= 1 && s.FossilEmptySample(1) && s.FossilEmptySample(n);
  const double top = emptyEnds ? 10.0 : static_cast<double>(s.DiagramGapA);
  const double height = emptyEnds ? (n - 1) * 10.0 : static_cast<double>(s.DiagramGapB);
  picture1.SetScale(picture1.ScaleLeft(), top, picture1.ScaleWidth(), height);
}

double CurvePosition(const Session& s, long k) { return SamplePosition(s, k); }

bool DrawReconstructionCurve(Session& s, long p, const CurveSettings& set, Surface& pic) {
  if (set.Low == set.High) return false;
  const long n = s.FossilSampleCount;
  SetCurveScale(s, pic);
  pic.SetScale(set.Low, pic.ScaleTop(), set.High - set.Low, pic.ScaleHeight());
  pic.SetBackColour(kWhite);
  s.ReconValue.Require(n, p);
  s.FossilEmptySample.Require(n);
  const Array1<double> y = SamplePositions(s);

  // Samples outside the envelope cross the whole picture.
  if (s.SampleIsOut.Allocated() && s.SampleIsOut.Size() > static_cast<std::size_t>(n)) {
    const QColor mark = set.Colours.SmoothCurveColour.ToQColor();
    for (long k = 1; k <= n; ++k)
      if (s.SampleIsOut(k)) pic.Line(set.Low, y(k), set.High, y(k), mark);
  }
  if (set.ErrorBars)
    for (long k = 1; k <= n; ++k)
      if (!Missing(s.ReconValue(k, p)) && !s.FossilEmptySample(k))
        pic.Line(s.ReconLow(k, p), y(k), s.ReconHigh(k, p), y(k), kErrorBarGrey);

  const QColor curve = set.Colours.CurveColour.ToQColor();
  for (long k = 2; k <= n; ++k) {
    if (s.FossilEmptySample(k - 1) || s.FossilEmptySample(k)) continue;
    const double a = s.ReconValue(k - 1, p), b = s.ReconValue(k, p);
    if (!Missing(a) && !Missing(b)) pic.Line(a, y(k - 1), b, y(k), curve);
  }
  // A lone estimate between two gaps would not show as a line.
  for (long k = 2; k <= n - 1; ++k)
    if (!Missing(s.ReconValue(k, p)) && Missing(s.ReconValue(k - 1, p)) &&
        Missing(s.ReconValue(k + 1, p)))
      pic.Point(s.ReconValue(k, p), y(k), curve);

  if (set.Smoothing > 1)
    DrawSmoothing(s, p, set.Smoothing, set.Colours.SmoothCurveColour.ToQColor(), pic);
  pic.StoreBackground();
  DrawCurveMarker(s, set, pic);
  return true;
}

void DrawCurveMarker(const Session& s, const CurveSettings& set, Surface& picture1,
                     Surface* picture3) {
  picture1.Clear();
  if (picture3) picture3->Clear();
  if (!set.SelectionShown) return;
  const long k = s.SampleCursor;
  if (k < 1 || k > s.FossilSampleCount) return;
  const double y = CurvePosition(s, k);
  const QColor cursor = set.Colours.CursorColour.ToQColor();
  picture1.Line(picture1.ScaleLeft(), y, picture1.ScaleLeft() + picture1.ScaleWidth(), y, cursor);
  if (picture3)
    picture3->Line(picture3->ScaleLeft(), y, picture3->ScaleLeft() + picture3->ScaleWidth(), y,
                   cursor);
}

void DrawNoAnalogues(Surface& pic) {
  pic.SetBackColour(kWhite);
  const double line = pic.TextHeight("X");
  const double sign = pic.ScaleHeight() < 0 ? -1 : 1;
  for (int i = 0; i < 3; ++i)
    pic.Print(pic.ScaleLeft(), pic.ScaleTop() + sign * line * i, kNoAnalogueLines[i]);
  pic.StoreBackground();
}

bool DrawEstObsScatter(const Session& s, long p, const CurveSettings& set, Surface& pic) {
  if (set.Low == set.High) return false;
  pic.SetScale(set.Low, set.High, set.High - set.Low, set.Low - set.High);
  pic.SetBackColour(kWhite);
  const double r = std::fabs(pic.ScaleWidth()) / 67;
  const QColor curve = set.Colours.CurveColour.ToQColor();
  for (long i = 1; i <= s.RefSiteCount; ++i)
    pic.Ring(s.ReconRefValue(i, p), s.ClimateData(i, p), r, curve);
  pic.StoreBackground();
  DrawScatterMarker(s, p, set, pic);
  return true;
}

void DrawScatterMarker(const Session& s, long p, const CurveSettings& set, Surface& pic) {
  pic.Clear();
  const long k = s.SampleCursor;
  if (!set.SelectionShown || k < 1 || k > s.FossilSampleCount || s.FossilEmptySample(k)) return;
  const double x = s.ReconValue(k, p);
  pic.Line(x, set.Low, x, set.High, set.Colours.CursorColour.ToQColor());
}

void DrawMatrixMarker(const Session& s, long p, const CurveSettings& set, long steps,
                      Surface& pic) {
  pic.Clear();
  const long k = s.SampleCursor;
  if (k < 1 || k > s.FossilSampleCount || set.Low == set.High || steps < 1) return;
  const double v = s.ReconValue(k, p);
  if (v == kMissing) return;
  const double x = 25 + (v - set.Low) / (set.High - set.Low) * static_cast<double>(steps);
  pic.Line(x, 25, x, 25 + static_cast<double>(steps), set.Colours.CursorColour.ToQColor());
}

double SampleBoxOffset(double y, double scaleTop, double scaleHeight, double heightTwips) {
  return (y - scaleTop) * (heightTwips - 60) / scaleHeight - 90 - 300;
}

bool NearSelectionLine(const Session& s, const Surface& picture1, double y) {
  const long k = s.SampleCursor;
  if (k < 1 || k > s.FossilSampleCount) return false;
  const double d = y - CurvePosition(s, k);
  return d * d <= std::fabs(picture1.ScaleHeight()) * 10 / 50;
}

long NearestSample(const Session& s, double y) {
  long best = 0;
  double bestDistance = 0;
  for (long k = 1; k <= s.FossilSampleCount; ++k) {
    const double d = std::fabs(CurvePosition(s, k) - y);
    if (best == 0 || d < bestDistance) {
      best = k;
      bestDistance = d;
    }
  }
  return best;
}

}  // namespace varnoth
