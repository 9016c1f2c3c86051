// The interpolation map for a paper: a graticule with degree labels, the
// coastline clipped to the frame, the stations and the sites by shape, and
// a legend. Longitude is shortened by the cosine of the middle latitude, so
// that shapes keep their proportions there.
#include <algorithm>
#include <cmath>

#include "presentation/publication/Axis.h"
#include "presentation/publication/Figures.h"

namespace varnoth::pub {

namespace {

const QColor kBlack(Qt::black);
const QColor kCoast(90, 90, 90);
const QColor kGraticule(205, 205, 205);
const QColor kSiteFill(213, 94, 0);

// The part of a segment inside the box, by Liang and Barsky; false when
// none is.
bool Clip(double& x1, double& y1, double& x2, double& y2, double l, double r, double b, double t) {
  double a0 = 0, a1 = 1;
  const double dx = x2 - x1, dy = y2 - y1;
  const double p[] = {-dx, dx, -dy, dy}, q[] = {x1 - l, r - x1, y1 - b, t - y1};
  for (int i = 0; i < 4; ++i) {
    if (p[i] == 0) {
      if (q[i] < 0) return false;
      continue;
    }
    const double u = q[i] / p[i];
    if (p[i] < 0)
      a0 = std::max(a0, u);
    else
      a1 = std::min(a1, u);
    if (a0 > a1) return false;
  }
  const double nx1 = x1 + a0 * dx, ny1 = y1 + a0 * dy;
  x2 = x1 + a1 * dx;
  y2 = y1 + a1 * dy;
  x1 = nx1;
  y1 = ny1;
  return true;
}

QString Degrees(double v, bool longitude) {
  const QString number = QString::number(std::fabs(v), 'g', 6) + QChar(0x00B0);
  if (std::fabs(v) < 1e-9 || (longitude && std::fabs(std::fabs(v) - 180) < 1e-9)) return number;
  return number + (longitude ? (v < 0 ? "W" : "E") : (v < 0 ? "S" : "N"));
}

// Round degree steps, about `wanted` of them.
Ticks DegreeTicks(double lo, double hi, int wanted) {
  double step = 1;
  for (double s : {1.0, 2.0, 5.0, 10.0, 15.0, 20.0, 30.0, 45.0, 60.0, 90.0}) {
    step = s;
    if ((hi - lo) / s <= wanted) break;
  }
  Ticks t;
  t.Step = step;
  for (double v = std::ceil(lo / step - 1e-9) * step; v <= hi + 1e-9; v += step)
    t.Values.push_back(v);
  return t;
}

}  // namespace

Page MapFigure(const Session& s, const Coastline& coast, double widthMm) {
  const InterpolationState& in = s.Interp;
  const double lon0 = in.MinLon, lon1 = in.MaxLon, lat0 = in.MinLat, lat1 = in.MaxLat;
  if (!in.InterpRefLoaded || !(lon1 > lon0) || !(lat1 > lat0)) return Page(widthMm, 0);
  const FigureStyle st = StyleFor(widthMm);
  const bool narrow = widthMm < 120;
  const double shorten = std::max(0.2, std::cos((lat0 + lat1) / 2 * M_PI / 180));

  const Ticks lons = DegreeTicks(lon0, lon1, narrow ? 5 : 8);
  const Ticks lats = DegreeTicks(lat0, lat1, narrow ? 6 : 8);
  Axis left, bottom;
  left.Where = Side::Left;
  bottom.Where = Side::Bottom;
  for (double v : lats.Values) {
    left.TickValues.push_back(v);
    left.TickTexts.push_back(Degrees(v, false));
  }
  for (double v : lons.Values) {
    bottom.TickValues.push_back(v);
    bottom.TickTexts.push_back(Degrees(v, true));
  }
  left.Line = bottom.Line = false;
  Page page(widthMm, 10);
  const double leftRoom = AxisDepth(page, left, st);
  const double legendRow = Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt) + 1.2;
  const double top = st.MarginMm + legendRow + 1.0;
  const double room = widthMm - 2 * st.MarginMm - leftRoom - 3.0;
  double width = room;
  double height = width * (lat1 - lat0) / ((lon1 - lon0) * shorten);
  const double tallest = narrow ? 105 : 150;
  if (height > tallest) {
    width *= tallest / height;
    height = tallest;
  }
  // A map held back by its height stands in the middle.
  const QRectF frame(st.MarginMm + leftRoom + (room - width) / 2, top, width, height);
  const LinearScale xs{lon0, lon1, frame.left(), frame.right()};
  const LinearScale ys{lat0, lat1, frame.bottom(), frame.top()};
  left.Scale = ys;
  bottom.Scale = xs;

  for (double v : lons.Values)
    page.Line(xs(v), frame.top(), xs(v), frame.bottom(), kGraticule, 0.3);
  for (double v : lats.Values)
    page.Line(frame.left(), ys(v), frame.right(), ys(v), kGraticule, 0.3);
  for (const auto& seg : coast.Segments) {
    double x1 = seg[0], y1 = seg[1], x2 = seg[2], y2 = seg[3];
    if (Clip(x1, y1, x2, y2, lon0, lon1, lat0, lat1))
      page.Line(xs(x1), ys(y1), xs(x2), ys(y2), kCoast, 0.4);
  }
  const double mark = narrow ? 1.1 : 1.4;
  for (long i = 1; i <= in.InterpRefCount; ++i)
    page.Marker(xs(in.InterpRefLon(i)), ys(in.InterpRefLat(i)), MarkerShape::Triangle, mark, kBlack,
                QColor(), 0.35);
  const bool targets = in.InterpTargetLoaded && in.InterpTargetCount > 0;
  bool anyWithout = false;
  if (targets)
    for (long i = 1; i <= in.InterpTargetCount; ++i) {
      const bool without = s.ClimateLoaded && s.ClimateData.Allocated() && i <= s.RefSiteCount &&
                           s.ClimateData(i, 1) == kMissing;
      anyWithout = anyWithout || without;
      page.Marker(xs(in.SiteLongitude(i)), ys(in.SiteLatitude(i)), MarkerShape::Circle, mark,
                  kBlack, without ? QColor(Qt::white) : kSiteFill, 0.35);
    }
  page.Rect(frame, kBlack, QColor(), st.AxisPt);
  DrawAxis(page, left, frame.left(), st);
  const double below = DrawAxis(page, bottom, frame.bottom(), st);

  // The legend over the frame.
  struct Entry {
    MarkerShape Shape;
    QColor Fill;
    QString Words;
  };
  std::vector<Entry> entries{
      {MarkerShape::Triangle, QColor(), QStringLiteral("Stations (%1)").arg(in.InterpRefCount)}};
  if (targets)
    entries.push_back(
        {MarkerShape::Circle, kSiteFill, QStringLiteral("Sites (%1)").arg(in.InterpTargetCount)});
  if (anyWithout)
    entries.push_back({MarkerShape::Circle, Qt::white, QStringLiteral("Sites without data")});
  double x = frame.left();
  const double y = st.MarginMm + Page::CapHeight(st.TextPt);
  TextStyle ts;
  ts.Points = st.TextPt;
  ts.V = VAlign::Middle;
  for (const Entry& e : entries) {
    page.Marker(x + 1.0, y, e.Shape, mark, kBlack, e.Fill, 0.35);
    x = page.Text(x + 2.6, y, e.Words, ts).right() + 3.5;
  }
  page.SetHeight(frame.bottom() + below + st.MarginMm);
  return page;
}

}  // namespace varnoth::pub
