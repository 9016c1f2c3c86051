// The EOF plane for a paper: the sites and the core's samples by their
// scores, and the taxa by their loadings, in two panels at equal scales.
#include <algorithm>
#include <cmath>

#include "presentation/publication/Axis.h"
#include "presentation/publication/Figures.h"

namespace varnoth::pub {

namespace {

const QColor kBlack(Qt::black);
const QColor kSite(150, 150, 150);
const QColor kExtreme(70, 70, 70);
const QColor kGuide(150, 150, 150);

QString EofTitle(const Session& s, Count e) {
  const double share = s.Contribution.Allocated() ? s.Contribution(e) : 0;
  return QStringLiteral("EOF-%1 (%2 %)").arg(e).arg(FigureNumber(share, 1));
}

// A square panel of equal scales, centred on the origin, with its frame,
// zero lines and axes; returns the two scales.
std::pair<LinearScale, LinearScale> Panel(Page& page, const QRectF& r, double most, Count a,
                                          Count b, const Session& s, const FigureStyle& st) {
  double lo = -most, hi = most;
  NiceRange(lo, hi, 4);
  const Ticks ticks = NiceTicks(lo, hi, 4);
  const double pad = (hi - lo) * 0.03;
  const LinearScale xs{lo - pad, hi + pad, r.left(), r.right()};
  const LinearScale ys{lo - pad, hi + pad, r.bottom(), r.top()};
  page.Line(xs(0), r.top(), xs(0), r.bottom(), kGuide, st.AxisPt * 0.8, true);
  page.Line(r.left(), ys(0), r.right(), ys(0), kGuide, st.AxisPt * 0.8, true);
  page.Rect(r, kBlack, QColor(), st.AxisPt);
  Axis x = MakeAxis(Side::Bottom, xs, ticks, EofTitle(s, a));
  Axis y = MakeAxis(Side::Left, ys, ticks, EofTitle(s, b));
  x.Line = y.Line = false;
  DrawAxis(page, x, r.bottom(), st);
  DrawAxis(page, y, r.left(), st);
  return {xs, ys};
}

struct LegendEntry {
  MarkerShape Shape;
  QColor Stroke, Fill;
  QString Words;
};

}  // namespace

Page EofScatterFigure(const Session& s, Count a, Count b, double widthMm) {
  const FigureStyle st = StyleFor(widthMm);
  const bool sideBySide = widthMm >= 120;
  Page page(widthMm, 10);
  const Ticks probe = NiceTicks(-1, 1, 4);
  Axis probeAxis = MakeAxis(Side::Left, {}, probe, QStringLiteral("EOF-1 (10.0 %)"));
  probeAxis.TickTexts = {QString(QChar(0x2212)) + "0.00"};
  const double leftRoom = AxisDepth(page, probeAxis, st);
  const double bottomRoom = AxisDepth(page, MakeAxis(Side::Bottom, {}, probe, "EOF"), st);
  const double usable = widthMm - 2 * st.MarginMm - 2.0;
  const double gap = 5.0;
  const double side = sideBySide ? (usable - 2 * leftRoom - gap) / 2 : usable - leftRoom;
  const double legendRow = Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt) + 1.2;

  const bool samples = (s.ProjectionDone || s.FossilIsBase) && s.FossilScores.Allocated();
  const bool sites = s.RefScores.Allocated() && s.RefSiteCount > 0;
  auto empty = [&](long i) { return s.FossilEmptySample.Allocated() && s.FossilEmptySample(i); };
  const bool outMarks = samples && s.SampleIsOut.Allocated() &&
                        s.SampleIsOut.Size() > static_cast<std::size_t>(s.FossilSampleCount);
  const bool extremes = sites && s.EnvelopeDone && s.SiteIsExtreme.Allocated() &&
                        s.SiteIsExtreme.Size() > static_cast<std::size_t>(s.RefSiteCount);

  // The legend over the panels.
  std::vector<LegendEntry> keys;
  if (sites)
    keys.push_back({MarkerShape::Circle, QColor(), kSite, QStringLiteral("Reference sites")});
  if (extremes)
    keys.push_back({MarkerShape::Diamond, QColor(), kExtreme, QStringLiteral("Envelope sites")});
  if (samples)
    keys.push_back({MarkerShape::Square, kBlack, Qt::white, QStringLiteral("Fossil samples")});
  bool anyOut = false;
  if (outMarks)
    for (long i = 1; i <= s.FossilSampleCount; ++i)
      if (!empty(i) && s.SampleIsOut(i)) anyOut = true;
  if (anyOut)
    keys.push_back({MarkerShape::Triangle, QColor(), kBlack, QStringLiteral("Outside envelope")});
  keys.push_back({MarkerShape::Circle, QColor(), kBlack, QStringLiteral("Taxa")});
  double kx = st.MarginMm + leftRoom, ky = st.MarginMm + Page::CapHeight(st.TextPt);
  for (const LegendEntry& k : keys) {
    const double w = 3.5 + Page::TextWidth(k.Words, st.TextPt);
    if (kx + w > widthMm - st.MarginMm) {
      kx = st.MarginMm + leftRoom;
      ky += legendRow;
    }
    page.Marker(kx + 1.0, ky, k.Shape, 1.4, k.Stroke, k.Fill, 0.4);
    TextStyle ts;
    ts.Points = st.TextPt;
    ts.V = VAlign::Middle;
    kx = page.Text(kx + 2.5, ky, k.Words, ts).right() + 3.5;
  }
  const double top = ky + legendRow + 1.0;

  const QRectF scores(st.MarginMm + leftRoom, top, side, side);
  const QRectF loadings =
      sideBySide ? QRectF(scores.right() + gap + leftRoom, top, side, side)
                 : QRectF(scores.left(), scores.bottom() + bottomRoom + 4.0, side, side);

  // Scores: sites under samples, the core's path as a thin line.
  double most = 1e-9;
  if (sites)
    for (long i = 1; i <= s.RefSiteCount; ++i)
      most = std::max({most, std::fabs(s.RefScores(i, a)), std::fabs(s.RefScores(i, b))});
  if (samples)
    for (long i = 1; i <= s.FossilSampleCount; ++i)
      if (!empty(i))
        most = std::max({most, std::fabs(s.FossilScores(i, a)), std::fabs(s.FossilScores(i, b))});
  const auto [sx, sy] = Panel(page, scores, most, a, b, s, st);
  if (sites)
    for (long i = 1; i <= s.RefSiteCount; ++i) {
      const bool hull = extremes && s.SiteIsExtreme(i);
      page.Marker(sx(s.RefScores(i, a)), sy(s.RefScores(i, b)),
                  hull ? MarkerShape::Diamond : MarkerShape::Circle, hull ? 1.5 : 1.1, QColor(),
                  hull ? kExtreme : kSite);
    }
  if (samples) {
    std::vector<QPointF> path;
    for (long i = 1; i <= s.FossilSampleCount; ++i) {
      if (empty(i)) {
        page.Polyline(path, QColor(90, 90, 90), 0.3);
        path.clear();
        continue;
      }
      path.emplace_back(sx(s.FossilScores(i, a)), sy(s.FossilScores(i, b)));
    }
    page.Polyline(path, QColor(90, 90, 90), 0.3);
    for (long i = 1; i <= s.FossilSampleCount; ++i) {
      if (empty(i)) continue;
      const bool out = outMarks && s.SampleIsOut(i);
      page.Marker(sx(s.FossilScores(i, a)), sy(s.FossilScores(i, b)),
                  out ? MarkerShape::Triangle : MarkerShape::Square, out ? 1.6 : 1.1,
                  out ? QColor() : kBlack, out ? kBlack : QColor(Qt::white), 0.35);
    }
  }

  // Loadings: every taxon a dot; names where they have room, the
  // farthest from the centre first, nudged round their dot or left out.
  double far = 1e-9;
  for (long t = 1; t <= s.TaxaCount; ++t)
    far = std::max({far, std::fabs(s.Loadings(t, a)), std::fabs(s.Loadings(t, b))});
  const auto [lx, ly] = Panel(page, loadings, far, a, b, s, st);
  std::vector<long> order;
  for (long t = 1; t <= s.TaxaCount; ++t) {
    order.push_back(t);
    page.Marker(lx(s.Loadings(t, a)), ly(s.Loadings(t, b)), MarkerShape::Circle, 0.9, QColor(),
                kBlack);
  }
  std::stable_sort(order.begin(), order.end(), [&](long p, long q) {
    return std::hypot(s.Loadings(p, a), s.Loadings(p, b)) >
           std::hypot(s.Loadings(q, a), s.Loadings(q, b));
  });
  const Array1<std::string>& names =
      s.ReferenceIsBase || !s.FossilIsBase ? s.RefTaxaNames : s.FossilTaxaNames;
  const QRectF inner = loadings.adjusted(0.4, 0.4, -0.4, -0.4);
  for (long t : order) {
    const double x = lx(s.Loadings(t, a)), y = ly(s.Loadings(t, b));
    const QString name = QString::fromStdString(names(t));
    TextStyle ts;
    ts.Points = st.TextPt;
    struct Try {
      double Dx, Dy;
      HAlign H;
      VAlign V;
    };
    const Try tries[] = {
        {0.9, 0, HAlign::Left, VAlign::Middle},      {-0.9, 0, HAlign::Right, VAlign::Middle},
        {0, -0.8, HAlign::Centre, VAlign::Bottom},   {0, 0.8, HAlign::Centre, VAlign::Top},
        {0.7, -0.7, HAlign::Left, VAlign::Bottom},   {0.7, 0.7, HAlign::Left, VAlign::Top},
        {-0.7, -0.7, HAlign::Right, VAlign::Bottom}, {-0.7, 0.7, HAlign::Right, VAlign::Top}};
    for (const Try& at : tries) {
      ts.H = at.H;
      ts.V = at.V;
      const QRectF box = Page::TextBox(x + at.Dx, y + at.Dy, name, ts);
      if (inner.contains(box) && FreeOfText(page, box, 0.2)) {
        page.Text(x + at.Dx, y + at.Dy, name, ts);
        break;
      }
    }
  }
  page.SetHeight(loadings.bottom() + bottomRoom + st.MarginMm);
  return page;
}

}  // namespace varnoth::pub
