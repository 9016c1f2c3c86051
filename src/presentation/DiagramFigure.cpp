#include "presentation/DiagramFigure.h"

#include <algorithm>
#include <cmath>

#include "diagram/Coniss.h"
#include "presentation/FigureServices.h"
#include "state/Format.h"

namespace varnoth {

namespace {

const QColor kBlack(0, 0, 0);
const QColor kWhite(255, 255, 255);

QColor CurveColour(const DiagramSettings& set) { return set.Colours.DiagramCurveColour.ToQColor(); }
QColor MarkColour(const DiagramSettings& set) { return set.Colours.SmoothCurveColour.ToQColor(); }

// One taxon's column: bars, curve, zero line, dots and ticks as its style
// asks, in that order.
void DrawColumn(const Session& s, const DiagramSettings& set, const StyleParts& parts,
                const Array1<double>& y, const std::vector<Bar>& closing,
                const std::vector<long>& segments, long t, Surface& pic) {
  const TaxaColumns& cols = set.Columns;
  const long n = s.FossilSampleCount;
  const double off = ColumnOffset(cols, t, set.Scroll);
  const double scale = cols.DiagramHScale;
  const double x0 = off * scale;
  const QColor curve = CurveColour(set), mark = MarkColour(set);
  auto x = [&](long i) { return (s.FossilProportion(i, t) * 100 + off) * scale; };
  auto bar = [&](long i, const QColor& colour) { pic.Line(x0, y(i), x(i), y(i), colour); };

  if (parts.Bars)
    for (long i = 1; i <= n; ++i) bar(i, s.SampleIsOut(i) ? mark : curve);
  if (parts.ClosingBars)
    for (const Bar& b : closing) bar(b.Sample, b.MarkColour ? mark : curve);
  if (parts.Curve)
    for (long i : segments) pic.Line(x(i - 1), y(i - 1), x(i), y(i), curve);
  if (parts.ZeroLine) pic.Line(x0, 10, x0, 10.0 * n, kBlack);
  if (parts.Dots) {
    // A white dot with a one-pixel outline, laid as a disc in the curve
    // colour and a white one a pixel smaller: thousands of dots a step.
    const double r = 1.5, inner = r - std::abs(pic.ScaleWidth() / pic.Width());
    pic.SetFillStyle(FillStyle::Solid);
    for (long i = 1; i <= n; ++i) {
      if (!HasDot(s.FossilProportion(i, t))) continue;
      pic.SetFillColour(curve);
      pic.Circle(x(i), y(i), r, curve);
      pic.SetFillColour(kWhite);
      pic.Circle(x(i), y(i), inner, kWhite);
    }
    pic.SetFillStyle(FillStyle::Transparent);
  }
  if (parts.Ticks) {
    std::vector<double> xs = ColumnTickValues(cols, t);
    for (double& v : xs) v = (v + off) * scale;
    DrawEdgeTicks(pic, xs, kBlack);
  }
}

void DrawMarkerLine(const Session& s, const DiagramSettings& set, Surface& pic) {
  pic.Clear();
  if (!set.MarkerShown) return;
  const double y = SamplePosition(s, s.SampleCursor);
  pic.Line(pic.ScaleLeft(), y, pic.ScaleLeft() + pic.ScaleWidth(), y,
           set.Colours.CursorColour.ToQColor());
}

}  // namespace

void SetDiagramScale(const Session& s, Surface& picture1) {
  picture1.SetScale(0, static_cast<double>(s.DiagramGapA), kDiagramScaleWidth,
                    static_cast<double>(s.DiagramGapB));
}

void DrawDiagram(const Session& s, const DiagramSettings& set, Surface& pic, Progress* progress) {
  SetDiagramScale(s, pic);
  pic.SetBackColour(kWhite);
  const long n = s.FossilSampleCount, taxa = s.FossilTaxaCount;
  s.FossilProportion.Require(n, taxa);
  s.FossilEmptySample.Require(n);
  s.SampleIsOut.Require(n);
  set.Columns.DiagramColumnStart.Require(taxa + 1);
  const Array1<double> y = SamplePositions(s);
  const StyleParts parts = PartsOf(set.Style);
  const std::vector<Bar> closing =
      parts.ClosingBars ? ClosingBars(s.FossilEmptySample, s.SampleIsOut, n) : std::vector<Bar>{};
  const std::vector<long> segments =
      parts.Curve ? CurveSegments(s.FossilEmptySample, n) : std::vector<long>{};
  if (progress) progress->Start(taxa);
  for (long t = 1; t <= taxa; ++t) {
    if (progress) progress->Step(t);
    // Hundreds of taxa and a redraw at every scroll step: only what shows.
    if (!ColumnInView(set.Columns, t, set.Scroll, pic.ScaleWidth())) continue;
    DrawColumn(s, set, parts, y, closing, segments, t, pic);
  }
  pic.StoreBackground();
  DrawDiagramMarker(s, set, pic);
  if (progress) progress->Finish();
}

long DrawEofCurve(const Session& s, const DiagramSettings& set, const Surface& picture1,
                  Surface& pic) {
  if (set.ConissShown) {
    DrawConiss(s, set, picture1, pic);
    return 0;
  }
  const double zoom = s.ScatterZoom;
  const long n = s.FossilSampleCount;
  const long eof = set.ShownEof;
  pic.SetBackColour(kWhite);
  pic.SetScale(-zoom, picture1.ScaleTop(), 2 * zoom, picture1.ScaleHeight());
  pic.Line(0, 10, 0, 10.0 * n, kBlack);
  DrawEdgeTicks(pic, EofAxisTicks(zoom), kBlack);
  const Array1<double> y = SamplePositions(s);
  long count = 0;
  for (long i = 1; i <= n; ++i) {
    if (s.FossilEmptySample(i) || !s.SampleIsOut(i)) continue;
    pic.Line(0, y(i), s.FossilScores(i, eof), y(i), MarkColour(set));
    ++count;
  }
  const QColor curve = set.Colours.CurveColour.ToQColor();
  for (long i : CurveSegments(s.FossilEmptySample, n))
    pic.Line(s.FossilScores(i - 1, eof), y(i - 1), s.FossilScores(i, eof), y(i), curve);
  pic.StoreBackground();
  DrawEofMarker(s, set, pic);
  return count;
}

void DrawConiss(const Session& s, const DiagramSettings& set, const Surface& picture1,
                Surface& pic) {
  pic.SetBackColour(kWhite);
  const double width = ConissScaleWidth(s);
  pic.SetScale(0, picture1.ScaleTop(), width, picture1.ScaleHeight());
  const long last = s.FossilSampleCount - 1;
  const double stem = (static_cast<double>(s.ConissLeft(last)) + s.ConissRight(last)) / 2;
  pic.Line(0, stem, width, stem, kBlack);
  // Each join is a bracket open towards the samples; the white box cuts
  // back the arms that older, higher joins drew across its stretch.
  for (long j = last; j >= 1; --j) {
    const double l = s.ConissLeft(j), r = s.ConissRight(j), h = s.ConissHeight(j);
    pic.FilledBox(0, l, h, r, kWhite);
    pic.Line(0, l, h, l, kBlack);
    pic.Line(h, l, h, r, kBlack);
    pic.Line(0, r, h, r, kBlack);
  }
  DrawEdgeTicks(pic, ConissTicks(s), kBlack);
  pic.StoreBackground();
  DrawEofMarker(s, set, pic);
}

double TaxonNameY(const Surface& picture4) {
  // The panel counts in twips from its top; names stand on a line a
  // fifteenth of its height, less 8, above the lower edge and read upwards.
  const double h = picture4.ScaleHeight();
  return h - Round(h * 0.0667 - 8);
}

double TaxonNameX(const DiagramSettings& set, long t) {
  return ZeroLineX(set.Columns, t, set.Scroll) * 0.99;
}

void DrawTaxaNames(const Session& s, const DiagramSettings& set, Surface& pic) {
  pic.SetScale(0, 0, kDiagramScaleWidth, pic.Height() * 15.0);
  pic.SetBackColour(kWhite);
  const long taxa = s.FossilTaxaCount;
  const std::vector<bool> italic = TaxonNameItalic(s.FossilTaxaNames, taxa);
  const double y = TaxonNameY(pic);
  for (long t = 1; t <= taxa; ++t) {
    if (!ColumnInView(set.Columns, t, set.Scroll)) continue;
    pic.PrintRotated(TaxonNameX(set, t), y, QString::fromStdString(s.FossilTaxaNames(t)), kBlack,
                     italic[static_cast<std::size_t>(t)]);
  }
  pic.StoreBackground();
}

std::vector<long> DrawSampleLabels(const Session& s, const Surface& picture1, Surface& pic) {
  pic.SetScale(0, picture1.ScaleTop(), pic.Width(), picture1.ScaleHeight());
  pic.SetBackColour(kWhite);
  pic.SetFontSize(7);
  const long n = s.FossilSampleCount;
  const Array1<double> y = SamplePositions(s);
  const double right = pic.Width() - 1.0, pixel = std::abs(pic.ScaleHeight() / pic.Height());
  std::vector<long> labelled;
  double clear = pic.ScaleTop();  // the first height not taken by a label
  for (long i = 1; i <= n; ++i) {
    pic.Line(right - 4, y(i), right + 1, y(i), kBlack);
    const QString text = QString::fromStdString(s.FossilLabels(i));
    const double h = pic.TextHeight(text), top = y(i) - h / 2;
    if (top < clear || top + h > pic.ScaleTop() + pic.ScaleHeight()) continue;
    pic.Print(right - 6 - pic.TextWidth(text), top, text, kBlack);
    clear = top + h + 2 * pixel;
    labelled.push_back(i);
  }
  pic.StoreBackground();
  return labelled;
}

void DrawDiagramMarker(const Session& s, const DiagramSettings& set, Surface& picture1) {
  DrawMarkerLine(s, set, picture1);
}

void DrawEofMarker(const Session& s, const DiagramSettings& set, Surface& picture2) {
  DrawMarkerLine(s, set, picture2);
}

DiagramHit HitDiagram(const Session& s, const DiagramSettings& set, double x, double y) {
  DiagramHit hit;
  const long n = s.FossilSampleCount, taxa = s.FossilTaxaCount;
  const TaxaColumns& cols = set.Columns;
  if (n < 1 || taxa < 1 || cols.DiagramHScale <= 0 ||
      static_cast<long>(cols.DiagramColumnStart.Size()) < taxa + 2)
    return hit;
  const double percent = x / cols.DiagramHScale + static_cast<double>(set.Scroll);
  for (long t = 1; t <= taxa; ++t)
    if (percent >= cols.DiagramColumnStart(t) && percent < cols.DiagramColumnStart(t + 1)) {
      hit.Taxon = t;
      break;
    }
  double best = 0;
  for (long i = 1; i <= n; ++i) {
    const double d = std::abs(SamplePosition(s, i) - y);
    if (hit.Sample == 0 || d < best) {
      hit.Sample = i;
      best = d;
    }
  }
  return hit;
}

QString ZoomLabel(double zoom, int which) {
  if (which == 1) return QString();
  return QString::fromStdString(FormatGeneral(which == 0 ? -zoom : zoom));
}

}  // namespace varnoth
