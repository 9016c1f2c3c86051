// The reconstruction of one climate parameter for a paper: depth down the
// page as in the pollen diagram, so that both can stand side by side.
#include <algorithm>
#include <cmath>

#include "diagram/DiagramLayout.h"
#include "presentation/publication/Axis.h"
#include "presentation/publication/CoreDepthAxis.h"
#include "presentation/publication/Figures.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"

namespace varnoth::pub {

namespace {

const QColor kBlack(Qt::black);
const QColor kBand(205, 205, 205);
const QColor kAverage(213, 94, 0);  // orange-red, told from black also by colour-blind readers

bool Missing(double v) { return v == kMissing; }

// One legend entry: a sample of the mark, then its words.
struct Key {
  enum Kind { Line, Band, Dot, Ring, Thick } What;
  QString Words;
};

double DrawKey(Page& page, double x, double y, const Key& k, const FigureStyle& st) {
  const double swatch = 5.0, mid = y;
  switch (k.What) {
    case Key::Line:
      page.Line(x, mid, x + swatch, mid, kBlack, st.DataPt);
      page.Marker(x + swatch / 2, mid, MarkerShape::Circle, 0.9, QColor(), kBlack);
      break;
    case Key::Band:
      page.Rect(QRectF(x, mid - 1.0, swatch, 2.0), QColor(), kBand);
      break;
    case Key::Thick:
      page.Line(x, mid, x + swatch, mid, kAverage, 1.25);
      break;
    case Key::Ring:
      page.Marker(x + swatch / 2, mid, MarkerShape::Circle, 1.5, kBlack, Qt::white, 0.5);
      break;
    case Key::Dot:
      page.Marker(x + swatch / 2, mid, MarkerShape::Circle, 0.9, QColor(), kBlack);
      break;
  }
  TextStyle ts;
  ts.Points = st.TextPt;
  ts.V = VAlign::Middle;
  const QRectF box = page.Text(x + swatch + 1.0, mid, k.Words, ts);
  return box.right() + 3.0;
}

}  // namespace

CurveOptions DefaultCurveOptions(const Session& s, double widthMm) {
  CurveOptions o;
  o.WidthMm = widthMm;
  o.DepthTitle = s.FossilLabelsAreText ? QStringLiteral("Sample") : FossilCornerCell(s);
  return o;
}

Page ReconstructionFigure(Session& s, long p, const CurveOptions& o) {
  const long n = s.FossilSampleCount;
  const FigureStyle st = StyleFor(o.WidthMm);
  const double W = o.WidthMm;
  const bool narrow = W < 120;
  auto has = [&](long k) {
    return !(s.FossilEmptySample.Allocated() && s.FossilEmptySample(k)) &&
           !Missing(s.ReconValue(k, p));
  };
  double lo = 0, hi = 0;
  bool any = false;
  for (long k = 1; k <= n; ++k) {
    if (!has(k)) continue;
    const double a =
        o.ErrorBand ? std::min(s.ReconLow(k, p), s.ReconValue(k, p)) : s.ReconValue(k, p);
    const double b =
        o.ErrorBand ? std::max(s.ReconHigh(k, p), s.ReconValue(k, p)) : s.ReconValue(k, p);
    lo = any ? std::min(lo, a) : a;
    hi = any ? std::max(hi, b) : b;
    any = true;
  }
  if (!any) return Page(W, 0);
  NiceRange(lo, hi, narrow ? 5 : 8);

  const bool text = s.FossilLabelsAreText;
  const double d1 = text ? 1 : LenientParse(s.FossilLabels(1));
  const double dn = text ? static_cast<double>(n) : LenientParse(s.FossilLabels(n));
  auto depthOf = [&](long k) {
    return text ? static_cast<double>(k) : LenientParse(s.FossilLabels(k));
  };

  const bool marks =
      s.SampleIsOut.Allocated() && s.SampleIsOut.Size() > static_cast<std::size_t>(n);
  bool anyOut = false;
  for (long k = 1; k <= n; ++k)
    if (has(k) && marks && s.SampleIsOut(k)) anyOut = true;
  const bool smooth = o.Smoothing > 1 && n - o.Smoothing + 1 >= 2;
  // The legend over the plot, in as many rows as the width needs.
  std::vector<Key> keys{{Key::Line, QStringLiteral("Estimate")}};
  if (o.ErrorBand) keys.push_back({Key::Band, QStringLiteral("Analogue range")});
  if (smooth) keys.push_back({Key::Thick, QStringLiteral("Moving average (%1)").arg(o.Smoothing)});
  if (anyOut) keys.push_back({Key::Ring, QStringLiteral("Outside envelope")});
  const double rowHeight = Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt) + 1.5;
  const double legendY = st.MarginMm + Page::CapHeight(st.TextPt);
  std::vector<QPointF> keyAt;
  {
    double x = st.MarginMm + 2.0, y = legendY;
    for (const Key& k : keys) {
      const double width = 6.0 + Page::TextWidth(k.Words, st.TextPt);
      if (x + width > W - st.MarginMm && x > st.MarginMm + 2.0) {
        x = st.MarginMm + 2.0;
        y += rowHeight;
      }
      keyAt.emplace_back(x, y);
      x += width + 3.0;
    }
  }
  const double plotTop = keyAt.back().y() + Page::CapHeight(st.TextPt) + 3.0;
  const double plotHeight = narrow ? 95 : 105;
  const double plotBottom = plotTop + plotHeight;
  const LinearScale depth{d1, dn == d1 ? d1 + 1 : dn, plotTop, plotBottom};
  auto yOf = [&](long k) { return depth(depthOf(k)); };

  const Axis depthAxis = CoreDepthAxis(s, o.DepthTitle, depth, plotHeight, narrow, st);
  Page page(W, plotBottom + 20);
  const double plotLeft = st.MarginMm + AxisDepth(page, depthAxis, st) + 1.0;
  const double right = W - st.MarginMm - 2.0;
  const double countWidth = o.AnalogueCount ? W * (narrow ? 0.16 : 0.10) : 0;
  const double plotRight = o.AnalogueCount ? right - countWidth - (narrow ? 2.5 : 4.0) : right;
  const LinearScale xs{lo, hi, plotLeft, plotRight};

  // Runs of samples with an estimate: band, then line and points.
  std::vector<std::pair<long, long>> runs;
  for (long k = 1; k <= n; ++k) {
    if (!has(k)) continue;
    if (!runs.empty() && runs.back().second == k - 1)
      runs.back().second = k;
    else
      runs.emplace_back(k, k);
  }
  if (o.ErrorBand)
    for (const auto& [a, b] : runs) {
      std::vector<QPointF> band;
      for (long k = a; k <= b; ++k) band.emplace_back(xs(s.ReconLow(k, p)), yOf(k));
      for (long k = b; k >= a; --k) band.emplace_back(xs(s.ReconHigh(k, p)), yOf(k));
      if (a == b) {
        page.Line(xs(s.ReconLow(a, p)), yOf(a), xs(s.ReconHigh(a, p)), yOf(a), kBand, 2.0);
      } else {
        page.Polygon(band, kBand);
      }
    }
  for (const auto& [a, b] : runs) {
    std::vector<QPointF> line;
    for (long k = a; k <= b; ++k) line.emplace_back(xs(s.ReconValue(k, p)), yOf(k));
    page.Polyline(line, kBlack, st.DataPt * 0.8);
  }
  for (long k = 1; k <= n; ++k) {
    if (!has(k)) continue;
    if (marks && s.SampleIsOut(k)) {
      page.Marker(xs(s.ReconValue(k, p)), yOf(k), MarkerShape::Circle, narrow ? 1.3 : 1.6, kBlack,
                  Qt::white, 0.5);
    } else {
      page.Marker(xs(s.ReconValue(k, p)), yOf(k), MarkerShape::Circle, narrow ? 0.7 : 0.9, QColor(),
                  kBlack);
    }
  }
  // The moving average, standing where its window's mean sample stands.
  if (smooth) {
    SmoothCurve(s, p, o.Smoothing);
    const long points = n - o.Smoothing + 1;
    std::vector<QPointF> run;
    auto flush = [&] {
      page.Polyline(run, kAverage, 1.25);
      run.clear();
    };
    for (long i = 1; i <= points; ++i) {
      const double v = s.SmoothedValue(i);
      if (Missing(v)) {
        flush();
        continue;
      }
      const double pos = s.SmoothedPosition(i);
      run.emplace_back(xs(v), depth(pos));
    }
    flush();
  }

  // The frame's left and bottom, value axis with the parameter's name.
  const QString name = QString::fromStdString(s.ClimateParamNames(p));
  DrawAxis(page, depthAxis, plotLeft - 1.0, st);
  Axis values = MakeAxis(Side::Bottom, xs, NiceTicks(lo, hi, narrow ? 5 : 8), name);
  double bottom = plotBottom + DrawAxis(page, values, plotBottom, st);

  if (o.AnalogueCount && s.AnalogueCount.Allocated()) {
    const double left = right - countWidth;
    double most = 1;
    for (long k = 1; k <= n; ++k)
      if (has(k)) most = std::max(most, static_cast<double>(s.AnalogueCount(k)));
    double clo = 0, chi = most;
    NiceRange(clo, chi, 2);
    const LinearScale cs{0, chi, left, right};
    for (long k = 1; k <= n; ++k)
      if (has(k)) page.Line(left, yOf(k), cs(s.AnalogueCount(k)), yOf(k), QColor(90, 90, 90), 0.6);
    page.Line(left, plotTop, left, plotBottom, kBlack, st.AxisPt);
    Axis a = MakeAxis(Side::Bottom, cs, NiceTicks(0, chi, 2), QStringLiteral("Analogues"));
    bottom = std::max(bottom, plotBottom + DrawAxis(page, a, plotBottom, st));
  }

  for (std::size_t i = 0; i < keys.size(); ++i)
    DrawKey(page, keyAt[i].x(), keyAt[i].y(), keys[i], st);
  page.SetHeight(bottom + st.MarginMm);
  return page;
}

}  // namespace varnoth::pub
