// The leave-one-out estimates of one parameter against the observed values
// for a paper: equal scales both ways over the whole observed range, the
// 1:1 line, R and RMSEP in the corner; at two columns' width the
// residuals beside it.
#include <algorithm>
#include <cmath>

#include "presentation/publication/Axis.h"
#include "presentation/publication/Figures.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"

namespace varnoth::pub {

namespace {

const QColor kBlack(Qt::black);
const QColor kGuide(120, 120, 120);

struct Pair {
  double Observed, Estimated;
};

std::vector<Pair> Pairs(const Session& s, long p) {
  std::vector<Pair> out;
  if (!s.ErrorModelReady || !s.ReconRefValue.Allocated() || !s.ClimateData.Allocated()) return out;
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    const double o = s.ClimateData(i, p), e = s.ReconRefValue(i, p);
    if (o != kMissing && e != kMissing) out.push_back({o, e});
  }
  return out;
}

}  // namespace

std::optional<double> Rmsep(const Session& s, long p) {
  const std::vector<Pair> pairs = Pairs(s, p);
  if (pairs.empty()) return std::nullopt;
  double sum = 0;
  for (const Pair& q : pairs) sum += (q.Estimated - q.Observed) * (q.Estimated - q.Observed);
  return std::sqrt(sum / static_cast<double>(pairs.size()));
}

Page EstObsFigure(const Session& s, long p, double widthMm) {
  const FigureStyle st = StyleFor(widthMm);
  const std::vector<Pair> pairs = Pairs(s, p);
  if (pairs.empty()) return Page(widthMm, 0);
  const bool two = widthMm >= 120;
  const QString name = QString::fromStdString(s.ClimateParamNames(p));

  double lo = pairs[0].Observed, hi = lo;
  for (const Pair& q : pairs) {
    lo = std::min({lo, q.Observed, q.Estimated});
    hi = std::max({hi, q.Observed, q.Estimated});
  }
  NiceRange(lo, hi, 6);
  const Ticks ticks = NiceTicks(lo, hi, 6);
  // A little room round the round limits, so that no mark sits on the frame.
  const double pad = (hi - lo) * 0.03;
  lo -= pad;
  hi += pad;

  Page page(widthMm, 10);
  Axis left = MakeAxis(Side::Left, {}, ticks, QStringLiteral("Estimated ") + name);
  const double leftRoom = AxisDepth(page, left, st);
  Axis bottom = MakeAxis(Side::Bottom, {}, ticks, QStringLiteral("Observed ") + name);
  const double bottomRoom = AxisDepth(page, bottom, st);
  const double gap = 6.0;
  // Square panels that fill the width.
  const double usable = widthMm - 2 * st.MarginMm - 3.0;
  const double side = two ? (usable - 2 * leftRoom - gap) / 2 : usable - leftRoom;
  const double top = st.MarginMm + 1.5;
  const double x0 = st.MarginMm + leftRoom;
  const LinearScale xs{lo, hi, x0, x0 + side}, ys{lo, hi, top + side, top};

  page.Line(xs(lo), ys(lo), xs(hi), ys(hi), kGuide, st.AxisPt, true);
  for (const Pair& q : pairs)
    page.Marker(xs(q.Observed), ys(q.Estimated), MarkerShape::Circle, 1.3, kBlack, QColor(), 0.4);
  page.Rect(QRectF(QPointF(x0, top), QPointF(x0 + side, top + side)), kBlack, QColor(), st.AxisPt);
  left.Scale = ys;
  bottom.Scale = xs;
  left.Line = bottom.Line = false;
  DrawAxis(page, left, x0, st);
  DrawAxis(page, bottom, top + side, st);

  // R and RMSEP in the upper left corner, where the 1:1 line leaves room.
  TextStyle corner;
  corner.Points = st.TextPt;
  corner.V = VAlign::Top;
  const std::optional<double> r = EstObsCorrelation(s, p);
  const std::optional<double> e = Rmsep(s, p);
  const double line = Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt) + 0.8;
  double y = top + 1.5;
  page.Text(
      x0 + 1.5, y,
      r ? QStringLiteral("R = ") + FigureNumber(*r, 3) : QStringLiteral("R: sample too small"),
      corner);
  y += line;
  if (e) page.Text(x0 + 1.5, y, QStringLiteral("RMSEP = ") + FigureNumber(*e, 2), corner);
  y += line;
  page.Text(x0 + 1.5, y, QStringLiteral("n = %1").arg(pairs.size()), corner);

  if (two) {
    // The residuals against the observed values.
    double most = 0;
    for (const Pair& q : pairs) most = std::max(most, std::fabs(q.Estimated - q.Observed));
    double rlo = -most, rhi = most;
    NiceRange(rlo, rhi, 6);
    const Ticks residualTicks = NiceTicks(rlo, rhi, 6);
    const double residualPad = (rhi - rlo) * 0.03;
    rlo -= residualPad;
    rhi += residualPad;
    const double rx0 = x0 + side + gap + leftRoom;
    const LinearScale rx{lo, hi, rx0, rx0 + side}, ry{rlo, rhi, top + side, top};
    page.Line(rx0, ry(0), rx0 + side, ry(0), kGuide, st.AxisPt, true);
    for (const Pair& q : pairs)
      page.Marker(rx(q.Observed), ry(q.Estimated - q.Observed), MarkerShape::Circle, 1.3, kBlack,
                  QColor(), 0.4);
    page.Rect(QRectF(QPointF(rx0, top), QPointF(rx0 + side, top + side)), kBlack, QColor(),
              st.AxisPt);
    Axis rl = MakeAxis(Side::Left, ry, residualTicks,
                       QStringLiteral("Estimated ") + QChar(0x2212) + QStringLiteral(" observed"));
    Axis rb = MakeAxis(Side::Bottom, rx, ticks, QStringLiteral("Observed ") + name);
    rl.Line = rb.Line = false;
    DrawAxis(page, rl, rx0, st);
    DrawAxis(page, rb, top + side, st);
  }
  page.SetHeight(top + side + bottomRoom + st.MarginMm + 0.5);
  return page;
}

}  // namespace varnoth::pub
