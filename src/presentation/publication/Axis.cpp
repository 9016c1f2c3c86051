#include "presentation/publication/Axis.h"

#include <algorithm>
#include <cmath>

namespace varnoth::pub {

FigureStyle StyleFor(double widthMm) {
  FigureStyle s;
  if (widthMm < 120) {
    s.TickMm = 0.8;
    s.LabelGapMm = 0.5;
    s.TitleGapMm = 0.9;
    s.MarginMm = 1.0;
  }
  return s;
}

Ticks NiceTicks(double lo, double hi, int wanted) {
  Ticks t;
  if (!(hi > lo) || !std::isfinite(lo) || !std::isfinite(hi)) {
    t.Values = {lo};
    return t;
  }
  wanted = std::max(wanted, 2);
  const double raw = (hi - lo) / wanted;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  double step = power;
  for (double m : {1.0, 2.0, 2.5, 5.0, 10.0}) {
    step = m * power;
    if (step >= raw) break;
  }
  t.Step = step;
  const double eps = step * 1e-9;
  for (double v = std::ceil((lo - eps) / step) * step; v <= hi + eps; v += step)
    t.Values.push_back(std::fabs(v) < eps ? 0.0 : v);
  const double decimals = -std::floor(std::log10(step) + 1e-9);
  t.Decimals = std::clamp(static_cast<int>(decimals), 0, 6);
  // 2.5 times a power of ten needs one decimal more than its power.
  if (std::fabs(step / power - 2.5) < 1e-9 && step < 10) ++t.Decimals;
  return t;
}

void NiceRange(double& lo, double& hi, int wanted) {
  if (!(hi > lo)) {
    const double pad = lo == 0 ? 1 : std::fabs(lo) * 0.1;
    lo -= pad;
    hi += pad;
  }
  const Ticks t = NiceTicks(lo, hi, wanted);
  lo = std::floor(lo / t.Step + 1e-9) * t.Step;
  hi = std::ceil(hi / t.Step - 1e-9) * t.Step;
}

QString FigureNumber(double v, int decimals) {
  QString s = QString::number(std::fabs(v), 'f', decimals);
  const bool zero = s.toDouble() == 0;
  if (v < 0 && !zero) s.prepend(QChar(0x2212));
  return s;
}

QString TickLabel(double v, int decimals) { return FigureNumber(v, decimals); }

Axis MakeAxis(Side where, const LinearScale& scale, const Ticks& ticks, const QString& title) {
  Axis a;
  a.Where = where;
  a.Scale = scale;
  a.TickValues = ticks.Values;
  a.Decimals = ticks.Decimals;
  a.Title = title;
  return a;
}

namespace {

bool Vertical(Side s) { return s == Side::Left || s == Side::Right; }

QString TextOf(const Axis& a, std::size_t i) {
  return i < a.TickTexts.size() ? a.TickTexts[i] : TickLabel(a.TickValues[i], a.Decimals);
}

// The room the tick labels take across the axis.
double LabelDepth(const Axis& a, const FigureStyle& st) {
  if (!a.Labels || a.TickValues.empty()) return 0;
  if (!Vertical(a.Where)) return Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt);
  double widest = 0;
  for (std::size_t i = 0; i < a.TickValues.size(); ++i)
    widest = std::max(widest, Page::TextWidth(TextOf(a, i), st.TextPt));
  return widest;
}

}  // namespace

bool FreeOfText(const Page& page, const QRectF& box, double gapMm) {
  const QRectF grown = box.adjusted(-gapMm, -gapMm, gapMm, gapMm);
  for (const QRectF& r : page.TextBoxes())
    if (grown.intersects(r)) return false;
  return true;
}

double AxisDepth(const Page&, const Axis& a, const FigureStyle& st) {
  double depth = st.TickMm;
  const double labels = LabelDepth(a, st);
  if (labels > 0) depth += st.LabelGapMm + labels;
  if (!a.Title.isEmpty()) {
    const double titleAt = a.TitleOffsetMm >= 0 ? a.TitleOffsetMm : depth + st.TitleGapMm;
    depth = titleAt + Page::CapHeight(st.TitlePt) + Page::Descent(st.TitlePt);
  }
  return depth;
}

double DrawAxis(Page& page, const Axis& a, double at, const FigureStyle& st) {
  const bool vertical = Vertical(a.Where);
  // Outward: left and top go towards smaller page coordinates.
  const double out = (a.Where == Side::Left || a.Where == Side::Top) ? -1 : 1;
  const double p0 = a.Scale.P0, p1 = a.Scale.P1;
  const QColor black(Qt::black);
  if (a.Line) {
    if (vertical)
      page.Line(at, p0, at, p1, black, st.AxisPt);
    else
      page.Line(p0, at, p1, at, black, st.AxisPt);
  }
  const double lo = std::min(p0, p1) - 1e-6, hi = std::max(p0, p1) + 1e-6;
  const double tickEnd = at + out * st.TickMm;
  const double labelAt = tickEnd + out * st.LabelGapMm;
  for (std::size_t i = 0; i < a.TickValues.size(); ++i) {
    const double p = a.Scale(a.TickValues[i]);
    if (p < lo || p > hi) continue;
    if (vertical)
      page.Line(at, p, tickEnd, p, black, st.AxisPt);
    else
      page.Line(p, at, p, tickEnd, black, st.AxisPt);
    if (!a.Labels) continue;
    TextStyle ts;
    ts.Points = st.TextPt;
    double x = p, y = labelAt;
    if (vertical) {
      x = labelAt;
      y = p;
      ts.H = out < 0 ? HAlign::Right : HAlign::Left;
      ts.V = VAlign::Middle;
    } else {
      ts.H = HAlign::Centre;
      ts.V = out < 0 ? VAlign::Bottom : VAlign::Top;
    }
    const QString text = TextOf(a, i);
    if (text.isEmpty()) continue;
    if (FreeOfText(page, Page::TextBox(x, y, text, ts), a.LabelSpaceMm)) page.Text(x, y, text, ts);
  }
  const double depth = AxisDepth(page, a, st);
  if (!a.Title.isEmpty()) {
    const double titleAt =
        a.TitleOffsetMm >= 0
            ? at + out * a.TitleOffsetMm
            : at + out * (depth - Page::CapHeight(st.TitlePt) - Page::Descent(st.TitlePt));
    TextStyle ts;
    ts.Points = st.TitlePt;
    ts.H = HAlign::Centre;
    const double mid = (p0 + p1) / 2;
    ts.Upwards = vertical;
    ts.V = out < 0 ? VAlign::Bottom : VAlign::Top;
    // A title that would run into a neighbour's steps outward a line.
    const double line = Page::CapHeight(st.TitlePt) + Page::Descent(st.TitlePt) + 0.4;
    double shift = 0;
    for (int tries = 0; tries < 3; ++tries) {
      double x = vertical ? titleAt + out * shift : mid;
      const double y = vertical ? mid : titleAt + out * shift;
      if (!vertical) {
        // Kept on the page: a narrow panel's title may be wider than it.
        const QRectF box = Page::TextBox(x, y, a.Title, ts);
        x += std::max(0.0, st.MarginMm - box.left()) -
             std::max(0.0, box.right() - (page.Width() - st.MarginMm));
      }
      if (FreeOfText(page, Page::TextBox(x, y, a.Title, ts)) || tries == 2) {
        page.Text(x, y, a.Title, ts);
        break;
      }
      shift += line;
    }
    return depth + shift;
  }
  return depth;
}

}  // namespace varnoth::pub
