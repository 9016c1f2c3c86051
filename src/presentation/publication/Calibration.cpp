// The calibration for a paper: the probability of each observed value given
// the reconstructed one, the confidence regions of the two coefficients,
// the mode and median lines over both, and the section at one
// reconstructed value with its regions shaded.
#include <algorithm>
#include <cmath>

#include "presentation/publication/Axis.h"
#include "presentation/publication/Figures.h"

namespace varnoth::pub {

namespace {

constexpr long kFirst = 50, kLast = 450;  // the fine grid's shown columns and rows
const QColor kBlack(Qt::black);
const QColor kMode(213, 94, 0);
const QColor kInner(33, 113, 181), kOuter(158, 202, 225);

// White through blue to near black: a ramp that prints in grey too.
QColor Ramp(double f) {
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

double Peak(const FineGrid& fine) {
  double most = 0;
  for (long p = kFirst; p <= kLast; ++p)
    for (long q = kFirst; q <= kLast; ++q)
      most = std::max(most, std::fabs(double(fine.FineProb(p, q))));
  return most;
}

// The mode or median of every column as a line, broken where a column is
// empty or its value leaves the shown range.
void ColumnLine(Page& page, const Array1<Count>& index, const LinearScale& xs,
                const LinearScale& ys, double t1, double step, const QColor& colour, bool dashed) {
  std::vector<QPointF> run;
  for (long p = kFirst; p <= kLast; ++p) {
    const long q = index(p);
    if (q == kMissing || q < kFirst || q > kLast) {
      page.Polyline(run, colour, 0.8, dashed);
      run.clear();
      continue;
    }
    run.emplace_back(xs(t1 + (p - kFirst) * step), ys(t1 + (q - kFirst) * step));
  }
  page.Polyline(run, colour, 0.8, dashed);
}

QString Percent(long tenths) { return FigureNumber(tenths / 10.0, 1) + QStringLiteral(" %"); }

}  // namespace

long DefaultSectionColumn(const FineGrid& fine) {
  std::vector<long> filled;
  for (long p = kFirst; p <= kLast; ++p)
    for (long q = kFirst; q <= kLast; ++q)
      if (fine.FineProb(p, q) != 0) {
        filled.push_back(p);
        break;
      }
  return filled.empty() ? (kFirst + kLast) / 2 : filled[filled.size() / 2];
}

QString CalibrationParameter(const CalibState& c) {
  QString name = QString::fromStdString(c.PairLabels[0]).trimmed();
  const QString from = QStringLiteral("(Reconstructed)");
  if (name.startsWith(from)) name = name.mid(from.size()).trimmed();
  return name;
}

Page CalibrationFigure(const CalibrationInput& in, double widthMm) {
  const FigureStyle st = StyleFor(widthMm);
  const FineGrid& fine = in.Fine;
  const double t1 = in.T1, t2 = in.T2;
  const double step = (t2 - t1) / (kLast - kFirst);
  const bool wide = widthMm >= 120;
  const QString suffix = in.Parameter.isEmpty() ? QString() : QStringLiteral(" ") + in.Parameter;
  const QString xTitle = QStringLiteral("Reconstructed") + suffix;
  const QString yTitle = QStringLiteral("Observed") + suffix;
  const Ticks ticks = NiceTicks(std::min(t1, t2), std::max(t1, t2), wide ? 5 : 4);
  Page page(widthMm, 10);

  Axis probe = MakeAxis(Side::Left, {}, ticks, yTitle);
  const double leftRoom = AxisDepth(page, probe, st);
  const double bottomRoom = AxisDepth(page, MakeAxis(Side::Bottom, {}, ticks, xTitle), st);
  const double peak = Peak(fine);
  const Ticks barTicks = NiceTicks(0, peak > 0 ? peak : 1, 4);
  Axis barProbe = MakeAxis(Side::Right, {}, barTicks, QStringLiteral("Probability"));
  const double barRoom = 2.5 + AxisDepth(page, barProbe, st);
  const double legendRow = Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt) + 1.2;
  const double top = st.MarginMm + legendRow + 1.0;
  const double gap = wide ? 4.0 : 3.0;
  const double usable = widthMm - 2 * st.MarginMm - 1.0;
  // Wide: the two matrices and the section in a row. Narrow: the two
  // matrices side by side, the section under them.
  const double side = wide ? (usable - 3 * leftRoom - barRoom - 2 * gap) / 3
                           : (usable - 2 * leftRoom - barRoom - gap) / 2;
  const QRectF prob(st.MarginMm + leftRoom, top, side, side);
  const QRectF conf(prob.right() + barRoom + gap + leftRoom, top, side, side);
  const long pc = std::clamp(in.SectionColumn, kFirst, kLast);
  double sectionPeak = 0;
  for (long q = kFirst; q <= kLast; ++q)
    sectionPeak = std::max(sectionPeak, std::fabs(double(fine.FineProb(pc, q))));
  double slo = 0, shi = sectionPeak > 0 ? sectionPeak : 1;
  NiceRange(slo, shi, 4);
  // The section's probabilities need their own room on the left.
  const Ticks sectionTicks = NiceTicks(0, shi, 4);
  const double sectionRoom =
      AxisDepth(page, MakeAxis(Side::Left, {}, sectionTicks, QStringLiteral("Probability")), st);
  const QRectF section =
      wide ? QRectF(conf.right() + gap + sectionRoom, top, side + leftRoom - sectionRoom, side)
           : QRectF(st.MarginMm + sectionRoom, prob.bottom() + bottomRoom + 5.0,
                    usable - sectionRoom, side * 0.8);
  const LinearScale px{t1, t2, prob.left(), prob.right()}, py{t1, t2, prob.bottom(), prob.top()};
  const LinearScale cx{t1, t2, conf.left(), conf.right()}, cy{t1, t2, conf.bottom(), conf.top()};

  // The two matrices as images, a pixel per fine cell.
  QImage probability(kLast - kFirst + 1, kLast - kFirst + 1, QImage::Format_RGB32);
  QImage regions(probability.size(), QImage::Format_RGB32);
  for (long p = kFirst; p <= kLast; ++p)
    for (long q = kFirst; q <= kLast; ++q) {
      const int x = static_cast<int>(p - kFirst), y = static_cast<int>(kLast - q);
      const double v = std::fabs(double(fine.FineProb(p, q)));
      probability.setPixel(x, y, Ramp(peak > 0 ? v / peak : 0).rgb());
      const long cls = std::lround(std::fabs(double(fine.FineClass(p, q))));
      regions.setPixel(x, y, (cls >= 2 ? kInner : cls == 1 ? kOuter : QColor(Qt::white)).rgb());
    }
  page.Image(prob, probability);
  page.Image(conf, regions);
  for (const auto& [r, xs, ys] : {std::tuple{prob, px, py}, std::tuple{conf, cx, cy}}) {
    ColumnLine(page, fine.FineMedian, xs, ys, t1, step, kBlack, true);
    ColumnLine(page, fine.FineMode, xs, ys, t1, step, kMode, false);
    page.Rect(r, kBlack, QColor(), st.AxisPt);
    Axis x = MakeAxis(Side::Bottom, xs, ticks, xTitle);
    Axis y = MakeAxis(Side::Left, ys, ticks, yTitle);
    x.Line = y.Line = false;
    DrawAxis(page, x, r.bottom(), st);
    DrawAxis(page, y, r.left(), st);
  }
  // The colour bar of the probability.
  const QRectF bar(prob.right() + 1.2, prob.top(), 2.0, prob.height());
  QImage ramp(1, 256, QImage::Format_RGB32);
  for (int i = 0; i < 256; ++i) ramp.setPixel(0, 255 - i, Ramp(i / 255.0).rgb());
  page.Image(bar, ramp);
  page.Rect(bar, kBlack, QColor(), st.AxisPt * 0.8);
  Axis b = MakeAxis(Side::Right, {0, peak > 0 ? peak : 1, bar.bottom(), bar.top()}, barTicks,
                    QStringLiteral("Probability"));
  b.Line = false;
  DrawAxis(page, b, bar.right(), st);

  // The section: the probability over the observed values at one
  // reconstructed value, its regions shaded under the curve.
  const LinearScale sx{t1, t2, section.left(), section.right()};
  const LinearScale sy{0, shi, section.bottom(), section.top()};
  // Each stretch of one region under the curve as one shape, so that no
  // seams show between cells.
  auto regionOf = [&](long q) { return std::lround(std::fabs(double(fine.FineClass(pc, q)))); };
  for (long q = kFirst; q < kLast;) {
    const long cls = std::min(2L, regionOf(q));
    long end = q + 1;
    while (end < kLast && std::min(2L, regionOf(end)) == cls) ++end;
    if (cls >= 1) {
      std::vector<QPointF> shape{{sx(t1 + (q - kFirst) * step), sy(0)}};
      for (long k = q; k <= end; ++k)
        shape.emplace_back(sx(t1 + (k - kFirst) * step),
                           sy(std::fabs(double(fine.FineProb(pc, k)))));
      shape.emplace_back(sx(t1 + (end - kFirst) * step), sy(0));
      page.Polygon(shape, cls >= 2 ? kInner : kOuter);
    }
    q = end;
  }
  std::vector<QPointF> curve;
  for (long q = kFirst; q <= kLast; ++q)
    curve.emplace_back(sx(t1 + (q - kFirst) * step), sy(std::fabs(double(fine.FineProb(pc, q)))));
  page.Polyline(curve, kBlack, st.DataPt);
  page.Rect(section, kBlack, QColor(), st.AxisPt);
  const double at = t1 + (pc - kFirst) * step;
  Axis sxAxis = MakeAxis(Side::Bottom, sx, ticks, yTitle);
  Axis syAxis = MakeAxis(Side::Left, sy, sectionTicks, QStringLiteral("Probability"));
  sxAxis.Line = syAxis.Line = false;
  const double sectionDepth = DrawAxis(page, sxAxis, section.bottom(), st);
  DrawAxis(page, syAxis, section.left(), st);
  // Which reconstructed value the section is of, over its panel.
  TextStyle head;
  head.Points = st.TextPt;
  head.V = VAlign::Bottom;
  const QString what =
      QStringLiteral("Section at reconstructed ") + FigureNumber(at, ticks.Decimals + 1);
  if (FreeOfText(page, Page::TextBox(section.left(), section.top() - 0.8, what, head))) {
    page.Text(section.left(), section.top() - 0.8, what, head);
  } else {
    head.V = VAlign::Top;
    head.H = HAlign::Right;
    page.Text(section.right() - 1.0, section.top() + 1.0, what, head);
  }
  // Where the section lies, on both matrices.
  for (const auto& [r, xs] : {std::pair{prob, px}, std::pair{conf, cx}})
    page.Line(xs(at), r.top(), xs(at), r.bottom(), QColor(120, 120, 120), 0.5, true);

  // The legend over the panels.
  struct Entry {
    bool Line, Dashed;
    QColor Colour;
    QString Words;
  };
  const Entry entries[] = {{true, false, kMode, QStringLiteral("Mode")},
                           {true, true, kBlack, QStringLiteral("Median")},
                           {false, false, kInner, Percent(in.Coefficient1)},
                           {false, false, kOuter, Percent(in.Coefficient2)}};
  double x = prob.left();
  const double y = st.MarginMm + Page::CapHeight(st.TextPt);
  TextStyle ts;
  ts.Points = st.TextPt;
  ts.V = VAlign::Middle;
  for (const Entry& e : entries) {
    if (e.Line)
      page.Line(x, y, x + 4.0, y, e.Colour, 0.8, e.Dashed);
    else
      page.Rect(QRectF(x, y - 1.0, 4.0, 2.0), QColor(), e.Colour);
    x = page.Text(x + 5.0, y, e.Words, ts).right() + 3.0;
  }
  page.SetHeight(section.bottom() + std::max(bottomRoom, sectionDepth) + st.MarginMm);
  return page;
}

}  // namespace varnoth::pub
