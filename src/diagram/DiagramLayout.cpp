#include "diagram/DiagramLayout.h"

#include <cmath>

#include "state/Format.h"

namespace varnoth {

namespace {

double Label(const Session& s, long i) { return StrictParse(s.FossilLabels(i)); }

bool EndsUpright(const std::string& name) {
  if (name.size() < 2) return false;
  std::string end = name.substr(name.size() - 2);
  return end == "ae" || end == "AE";
}

}  // namespace

double SamplePosition(const Session& s, long i) {
  if (s.FossilLabelsAreText) return 10.0 * i;
  const long n = s.FossilSampleCount;
  const double first = Label(s, 1), last = Label(s, n), here = Label(s, i);
  // Equal first and last depths divide by zero, also for the first sample,
  // whose numerator is 0 as well.
  if (last == first) throw RuntimeFailure(FailureKind::DivisionByZero);
  return Div((last - here + (here - first) * n) * 10, last - first);
}

Array1<double> SamplePositions(const Session& s) {
  Array1<double> y(s.FossilSampleCount);
  for (long i = 1; i <= s.FossilSampleCount; ++i) y(i) = SamplePosition(s, i);
  return y;
}

TaxaColumns LayoutTaxaColumns(const Array2<double>& proportion, long samples, long taxa,
                              int hScaleSlider, double scaleWidth) {
  TaxaColumns c;
  c.DiagramHScale = ToSingle(hScaleSlider / 10.0);
  c.DiagramColumnGap = ToCount(Div(10, c.DiagramHScale));
  c.DiagramColumnStart.ReDim(taxa + 1);
  c.DiagramColumnStart(1) = 5;
  for (long t = 2; t <= taxa + 1; ++t) {
    double widest = 0;
    for (long i = 1; i <= samples; ++i) widest = std::max(widest, proportion(i, t - 1) * 100);
    c.DiagramLastWidth = ToSingle(widest);
    c.DiagramColumnStart(t) =
        ToSingle(ToSingle(c.DiagramLastWidth + c.DiagramColumnStart(t - 1)) + c.DiagramColumnGap);
  }
  // The visibility test and the maximum are not the same expression; the
  // bar shows a little early or late near the edge, which does no harm.
  const double lastStart = c.DiagramColumnStart(taxa);
  const double spare = c.DiagramLastWidth + 2.0 * c.DiagramColumnGap;
  c.ScrollVisible = lastStart - scaleWidth + spare > 0;
  c.ScrollMax = ToLong(lastStart - scaleWidth / c.DiagramHScale + spare);
  c.ScrollLargeChange = ToLong(scaleWidth / c.DiagramHScale);
  c.ScrollSmallChange = 10;
  return c;
}

double ColumnOffset(const TaxaColumns& c, long t, long scroll) {
  return c.DiagramColumnStart(t) - static_cast<double>(scroll);
}

double ZeroLineX(const TaxaColumns& c, long t, long scroll) {
  return ColumnOffset(c, t, scroll) * c.DiagramHScale;
}

double ValueX(const TaxaColumns& c, long t, long scroll, double proportion) {
  return (proportion * 100 + ColumnOffset(c, t, scroll)) * c.DiagramHScale;
}

bool ColumnInView(const TaxaColumns& c, long t, long scroll, double scaleWidth) {
  return (c.DiagramColumnStart(t + 1) - static_cast<double>(scroll)) * c.DiagramHScale >= 0 &&
         ColumnOffset(c, t, scroll) * c.DiagramHScale < scaleWidth;
}

std::vector<double> ColumnTickValues(const TaxaColumns& c, long t) {
  const double extent = static_cast<double>(c.DiagramColumnStart(t + 1)) - c.DiagramColumnStart(t);
  std::vector<double> ticks;
  double v = 0;
  do {
    ticks.push_back(v);
    v += 10;
  } while (extent > v + 5);
  return ticks;
}

StyleParts PartsOf(DiagramStyle style) {
  StyleParts p;
  switch (style) {
    case DiagramStyle::Bar:
      p.Bars = true;
      break;
    case DiagramStyle::Area:
      p.ClosingBars = p.Curve = true;
      break;
    case DiagramStyle::Dot:
      p.Dots = true;
      break;
    case DiagramStyle::Curve:
      p.Bars = p.Curve = true;
      break;
    case DiagramStyle::DotCurve:
      p.Curve = p.Dots = true;
      break;
  }
  return p;
}

std::vector<Bar> ClosingBars(const Array1<Flag>& empty, const Array1<Flag>& marked, long n) {
  std::vector<Bar> bars;
  auto colourBar = [&](long i) { bars.push_back({i, marked(i) != 0}); };
  for (long i = 2; i <= n; ++i)
    if (empty(i)) colourBar(i - 1);
  if (empty(1)) colourBar(2);
  // The first and the last sample; a core of one sample has one end only.
  colourBar(1);
  if (n > 1) colourBar(n);
  for (long i = 1; i <= n; ++i)
    if (marked(i)) bars.push_back({i, true});
  return bars;
}

std::vector<long> CurveSegments(const Array1<Flag>& empty, long n) {
  std::vector<long> segments;
  for (long i = 2; i <= n; ++i)
    if (!empty(i) && !empty(i - 1)) segments.push_back(i);
  return segments;
}

double ScatterZoomFor(int slider2) { return std::pow(2.0, slider2); }

Count EofTickFor(double zoom) {
  if (zoom == 1) return 2;
  if (zoom == 2) return 1;
  return ToCount(zoom < 32 ? zoom / 4 : zoom / 8);
}

std::vector<double> EofAxisTicks(double zoom) {
  const Count step = EofTickFor(zoom);
  if (step <= 0) throw RuntimeFailure(FailureKind::InvalidCall, "tick step 0");
  std::vector<double> ticks;
  for (double v = Round(-zoom); v <= Round(zoom); v += step) ticks.push_back(v);
  return ticks;
}

long OutCount(const Session& s) {
  long count = 0;
  for (long i = 1; i <= s.FossilSampleCount; ++i)
    if (!s.FossilEmptySample(i) && s.SampleIsOut(i)) ++count;
  return count;
}

std::string OutCountText(long count) { return "Out count:  " + std::to_string(count); }

std::vector<bool> TaxonNameItalic(const Array1<std::string>& names, long taxa) {
  bool any = false;
  for (long t = 1; t <= taxa; ++t) any = any || EndsUpright(names(t));
  std::vector<bool> italic(static_cast<std::size_t>(taxa) + 1, false);
  if (any)
    for (long t = 1; t <= taxa; ++t) italic[static_cast<std::size_t>(t)] = !EndsUpright(names(t));
  return italic;
}

Count StepSample(Count cursor, int step, Count n) {
  long next = static_cast<long>(cursor) + step;
  if (next > n) next = 1;
  if (next < 1) next = n;
  return static_cast<Count>(next);
}

}  // namespace varnoth
