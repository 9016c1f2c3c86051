// The calibration matrix applied down the core, for a paper: the
// probability of each value at each depth as shades under the
// reconstruction curve, depth down the page as in the other core figures.
#include <algorithm>
#include <cmath>

#include "presentation/publication/Axis.h"
#include "presentation/publication/Figures.h"
#include "state/Format.h"

namespace varnoth::pub {

namespace {

constexpr long kBins = 200;
const QColor kBlack(Qt::black);

QColor Shade(double f) {
  static const QColor stops[] = {QColor(255, 255, 255), QColor(198, 219, 239),
                                 QColor(107, 174, 214), QColor(33, 113, 181), QColor(8, 48, 107)};
  f = std::clamp(f, 0.0, 1.0) * 4;
  const int i = std::min(3, static_cast<int>(f));
  const double t = f - i;
  const QColor a = stops[i], b = stops[i + 1];
  return QColor::fromRgbF(a.redF() + (b.redF() - a.redF()) * t,
                          a.greenF() + (b.greenF() - a.greenF()) * t,
                          a.blueF() + (b.blueF() - a.blueF()) * t);
}

// The probability a cell of the matrix down the core holds: the part after
// its class.
double Probability(float v) {
  const double a = std::fabs(static_cast<double>(v));
  return a - std::floor(a);
}

}  // namespace

Page ResponseMatrixFigure(const Session& s, const HistState& h, long p, double t1, double t2,
                          double widthMm) {
  const FigureStyle st = StyleFor(widthMm);
  const long n = s.FossilSampleCount;
  const long rows = h.HistColumns;
  if (!h.HistReady || rows < 1 || n < 2 || t1 == t2) return Page(widthMm, 0);
  const bool narrow = widthMm < 120;
  const bool text = s.FossilLabelsAreText;
  const double d1 = text ? 1 : LenientParse(s.FossilLabels(1));
  const double dn = text ? static_cast<double>(n) : LenientParse(s.FossilLabels(n));
  if (d1 == dn) return Page(widthMm, 0);

  double peak = 0;
  for (long r = 0; r <= rows; ++r)
    for (long b = 0; b <= kBins; ++b) peak = std::max(peak, Probability(h.HistMatrix(1, b, r)));
  const Ticks barTicks = NiceTicks(0, peak > 0 ? peak : 1, 4);

  Axis depthAxis;
  depthAxis.Where = Side::Left;
  depthAxis.Title = text ? QStringLiteral("Sample") : FossilCornerCell(s);
  if (depthAxis.Title.isEmpty()) depthAxis.Title = QStringLiteral("Depth");
  if (text) {
    for (long k = 1; k <= n; k += std::max<long>(1, n / 12)) {
      depthAxis.TickValues.push_back(static_cast<double>(k));
      depthAxis.TickTexts.push_back(QString::fromStdString(s.FossilLabels(k)));
    }
  } else {
    const Ticks t = NiceTicks(std::min(d1, dn), std::max(d1, dn), narrow ? 8 : 10);
    depthAxis.TickValues = t.Values;
    depthAxis.Decimals = t.Decimals;
  }
  Page page(widthMm, 10);
  const double top = st.MarginMm + 1.5;
  const double height = narrow ? 95 : 105;
  const double left = st.MarginMm + AxisDepth(page, depthAxis, st) + 1.0;
  Axis barAxis = MakeAxis(Side::Right, {}, barTicks, QStringLiteral("Probability"));
  const double right = widthMm - st.MarginMm - 2.5 - AxisDepth(page, barAxis, st) - 1.0;
  const QRectF panel(left, top, right - left, height);
  depthAxis.Scale = {d1, dn, panel.top(), panel.bottom()};
  const LinearScale xs{t1, t2, panel.left(), panel.right()};

  // A pixel per value bin and depth row, the first row at the top.
  QImage image(static_cast<int>(kBins + 1), static_cast<int>(rows + 1), QImage::Format_RGB32);
  for (long r = 0; r <= rows; ++r)
    for (long b = 0; b <= kBins; ++b)
      image.setPixel(static_cast<int>(b), static_cast<int>(r),
                     Shade(peak > 0 ? Probability(h.HistMatrix(1, b, r)) / peak : 0).rgb());
  page.Image(panel, image);

  // The curve over it, with a white edge so that it reads on dark cells.
  std::vector<std::vector<QPointF>> runs(1);
  for (long k = 1; k <= n; ++k) {
    const double v = s.ReconValue(k, p);
    const bool empty = s.FossilEmptySample.Allocated() && s.FossilEmptySample(k);
    if (v == kMissing || empty || v < std::min(t1, t2) || v > std::max(t1, t2)) {
      if (!runs.back().empty()) runs.emplace_back();
      continue;
    }
    const double d = text ? static_cast<double>(k) : LenientParse(s.FossilLabels(k));
    runs.back().emplace_back(xs(v), depthAxis.Scale(d));
  }
  for (const auto& run : runs) page.Polyline(run, Qt::white, 1.6);
  for (const auto& run : runs) page.Polyline(run, kBlack, 0.6);
  page.Rect(panel, kBlack, QColor(), st.AxisPt);

  DrawAxis(page, depthAxis, panel.left(), st);
  Axis values =
      MakeAxis(Side::Bottom, xs, NiceTicks(std::min(t1, t2), std::max(t1, t2), narrow ? 5 : 8),
               QString::fromStdString(s.ClimateParamNames(p)));
  values.Line = false;
  const double below = DrawAxis(page, values, panel.bottom(), st);

  const QRectF bar(panel.right() + 1.5, panel.top() + panel.height() * 0.25, 2.0,
                   panel.height() * 0.5);
  QImage ramp(1, 256, QImage::Format_RGB32);
  for (int i = 0; i < 256; ++i) ramp.setPixel(0, 255 - i, Shade(i / 255.0).rgb());
  page.Image(bar, ramp);
  page.Rect(bar, kBlack, QColor(), st.AxisPt * 0.8);
  barAxis.Scale = {0, peak > 0 ? peak : 1, bar.bottom(), bar.top()};
  barAxis.Line = false;
  DrawAxis(page, barAxis, bar.right(), st);
  page.SetHeight(panel.bottom() + below + st.MarginMm);
  return page;
}

}  // namespace varnoth::pub
