#include "presentation/Scatter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "state/Format.h"
#include "state/Numeric.h"

namespace varnoth {

namespace {

constexpr double kPi = 3.1415926535898;
const QColor kWhite(255, 255, 255);
const double kSinTurn = std::sin(9.4247779607694 / 180);
const double kCosTurn = std::cos(9.4247779607694 / 180);

QString Text(const std::string& s) { return QString::fromStdString(s); }
QString Number(double v) { return QString::fromStdString(FormatGeneral(v)); }

// The turn of the 3-D view with its sines taken once per drawing.
class Projector {
 public:
  Projector(const RotationPair& angles, bool threeD)
      : threeD_(threeD),
        sA1_(std::sin(angles.A1)),
        cA1_(std::cos(angles.A1)),
        sA2_(std::sin(angles.A2)),
        cA2_(std::cos(angles.A2)) {}
  ScreenPoint operator()(double x, double y, double z) const {
    if (!threeD_) return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    // A0 stays 0: sin 0 = 0, cos 0 = 1.
    const double r0 = -y;
    const double r1 = x;
    const double r2 = z;
    const double sx = sA1_ * r0 - cA1_ * r2;
    const double t = sA1_ * r2 + cA1_ * r0;
    const double sy = sA2_ * r1 - cA2_ * t;
    const double depth = sA2_ * t + cA2_ * r1;
    return {static_cast<float>(sx), static_cast<float>(sy), static_cast<float>(depth)};
  }

 private:
  bool threeD_;
  double sA1_, cA1_, sA2_, cA2_;
};

// Places model points on one picture of a figure: the partner picture
// replaces every X by the stereo partner's.
class Placer {
 public:
  Placer(const Session& s, const ScatterView& view, bool partner)
      : project_(s.RotationAngles, view.ThreeD), partner_(partner) {}
  ScreenPoint operator()(double x, double y, double z) const { return Side(project_(x, y, z)); }
  // The partner's X is the turn of (x0, depth) by 3 degrees; written with
  // the sine and cosine of the turn it needs no arc tangent per point, and
  // x0 = 0 keeps the quarter turn of the angle form.
  ScreenPoint Side(ScreenPoint p) const {
    if (!partner_) return p;
    const double x0 = p.X, d = p.Depth;
    p.X = static_cast<float>(x0 == 0 ? -std::abs(d) * kSinTurn : x0 * kCosTurn - d * kSinTurn);
    return p;
  }

 private:
  Projector project_;
  bool partner_;
};

// Scale, white background, axes with their EOF labels, and the ticks with
// the number labels of the axis ends when they are asked for.
void DrawFrame(Surface& sf, const ScatterView& view, const Placer& place, double R,
               const QColor& colour, Count a, Count b, Count c) {
  sf.SetScale(-1.2 * R, 1.2 * R, 2.4 * R, -2.4 * R);
  sf.Clear();
  sf.SetBackColour(kWhite);
  sf.SetForeColour(colour);
  sf.SetFontSize(view.FontSize);

  const int axes = view.ThreeD ? 3 : 2;
  const Count numbers[3] = {a, b, c};
  auto unit = [R](int k, double t) {
    double v[3] = {0, 0, 0};
    v[k] = t;
    (void)R;
    return std::array<double, 3>{v[0], v[1], v[2]};
  };
  auto at = [&](const std::array<double, 3>& v) { return place(v[0], v[1], v[2]); };

  for (int k = 0; k < axes; ++k) {
    ScreenPoint end = at(unit(k, R));
    ScreenPoint neg = at(unit(k, -R));
    sf.Line(neg.X, neg.Y, end.X, end.Y, colour);
  }
  if (view.ThreeD) {
    const double dx[3] = {-0.14, -0.32, -0.14};
    const double dy[3] = {-0.05, 0.05, -0.05};
    for (int k = 0; k < 3; ++k) {
      ScreenPoint end = at(unit(k, R));
      sf.Print(end.X + dx[k] * R, end.Y + dy[k] * R, "EOF-" + QString::number(numbers[k]));
    }
  } else {
    ScreenPoint xEnd = at(unit(0, R));
    ScreenPoint yEnd = at(unit(1, R));
    sf.Print(xEnd.X - 0.14 * R, -0.05 * R, "EOF-" + QString::number(a));
    sf.Print(yEnd.X - 0.32 * R, R + 0.05 * R, "EOF-" + QString::number(b));
  }

  if (!view.TicksAndLabels) return;
  const Count step = TickStep(R);
  const long limit = static_cast<long>(Int(R));
  if (step > 0) {
    const long first = -(limit / step) * step;
    for (long t = first; t <= limit; t += step) {
      for (int k = 0; k < axes; ++k) {
        // Each tick stands across its axis, along the first axis or, on the
        // first axis, along the second.
        std::array<double, 3> from = unit(k, static_cast<double>(t));
        std::array<double, 3> to = from;
        to[k == 0 ? 1 : 0] = 0.033 * R;
        ScreenPoint p = at(from), q = at(to);
        sf.Line(p.X, p.Y, q.X, q.Y, colour);
      }
    }
  }
  const double dx[3] = {-0.06, 0.06, -0.06};
  const double dy[3] = {0.17, 0.05, 0.17};
  for (int k = 0; k < axes; ++k) {
    for (double sign : {1.0, -1.0}) {
      ScreenPoint end = at(unit(k, sign * R));
      sf.Print(end.X + dx[k] * R, end.Y + dy[k] * R, Number(sign * R));
    }
  }
}

// Screen points of the rows 1 to n of a score or loading table on EOFs a, b, c.
std::vector<ScreenPoint> ProjectRows(const Session& s, const ScatterView& view,
                                     const Array2<double>& table, long n, Count a, Count b,
                                     Count c) {
  std::vector<ScreenPoint> pts(static_cast<std::size_t>(n + 1));
  if (n < 1) return pts;
  const long last = std::max({static_cast<long>(a), static_cast<long>(b), static_cast<long>(c)});
  if (a < 0 || b < 0 || c < 0) ThrowSubscript();
  table.Require(n, last);
  const Projector project(s.RotationAngles, view.ThreeD);
  for (long i = 1; i <= n; ++i) {
    const double* row = table.Row(i, last);
    pts[static_cast<std::size_t>(i)] = project(row[a], row[b], row[c]);
  }
  return pts;
}

template <typename Name>
void DrawNames(Surface& sf, const Placer& place, const std::vector<ScreenPoint>& pts, long n,
               NameDisplay mode, Count cursor, double R, const QColor& cursorColour, Name name) {
  if (mode == NameDisplay::ShowAll) {
    for (long i = 1; i <= n; ++i) {
      ScreenPoint p = place.Side(pts[static_cast<std::size_t>(i)]);
      sf.Print(p.X + 0.06 * R, p.Y + 0.06 * R, name(i));
    }
  } else if (mode == NameDisplay::Sequential) {
    if (cursor < 1 || cursor > n) ThrowSubscript();
    ScreenPoint p = place.Side(pts[static_cast<std::size_t>(cursor)]);
    sf.Print(p.X + 0.06 * R, p.Y + 0.06 * R, name(cursor));
    sf.SetFillStyle(FillStyle::Solid);
    sf.SetFillColour(cursorColour);
    sf.Circle(p.X, p.Y, 0.02 * R, cursorColour);
  }
}

template <typename Body>
void ForEachPicture(const ScatterView& view, FigureSurfaces fig, Body body) {
  if (fig.Main) body(*fig.Main, false);
  if (view.Stereo && fig.Partner) body(*fig.Partner, true);
}

}  // namespace

double TaxaRange(const Session& s) { return s.UseCorrelation ? 1.0 : s.ScatterZoom; }

double SitesRange(const Session& s) { return s.ScatterZoom; }

Count TickStep(double range) {
  if (range == 1) return 2;
  if (range == 2) return 1;
  if (range < 32) return ToCount(Int(range / 4));
  return ToCount(Int(range / 8));
}

ScreenPoint ProjectPoint(const RotationPair& angles, double x, double y, double z, bool threeD) {
  return Projector(angles, threeD)(x, y, z);
}

double StereoPartnerX(double x0, double depth) {
  double theta;
  if (x0 == 0)
    theta = kPi / 2;
  else {
    theta = std::atan(depth / x0);
    if (x0 < 0) theta += kPi;
  }
  return std::cos(theta + 9.4247779607694 / 180) * std::sqrt(x0 * x0 + depth * depth);
}

void DrawTaxa(const Session& s, const ColourSettings& colours, const ScatterView& view, Count a,
              Count b, Count c, FigureSurfaces fig) {
  const long n = s.TaxaCount;
  const double R = TaxaRange(s);
  const QColor first = colours.Slot(1).ToQColor();
  const QColor third = colours.Slot(3).ToQColor();
  const auto pts = ProjectRows(s, view, s.Loadings, n, a, b, c);
  const Array1<std::string>& names = s.ReferenceIsBase ? s.RefTaxaNames : s.FossilTaxaNames;
  if (n >= 1 && view.TaxaNames != NameDisplay::Hide) (void)names(n);
  ForEachPicture(view, fig, [&](Surface& sf, bool partner) {
    Placer place(s, view, partner);
    DrawFrame(sf, view, place, R, first, a, b, c);
    sf.SetFillStyle(FillStyle::Solid);
    sf.SetFillColour(first);
    const double radius = 0.07 * R / 4;
    for (long i = 1; i <= n; ++i) {
      ScreenPoint p = place.Side(pts[static_cast<std::size_t>(i)]);
      sf.Circle(p.X, p.Y, radius, first);
    }
    DrawNames(sf, place, pts, n, view.TaxaNames, s.TaxonCursor, R, third,
              [&](long i) { return Text(names(i)); });
  });
}

void DrawSites(const Session& s, const ColourSettings& colours, const ScatterView& view, Count a,
               Count b, Count c, FigureSurfaces fig) {
  // A failed import leaves its row count; its zeroed taxa count marks the
  // table as absent, and absent sites are not drawn.
  const long n = s.RefTaxaCount > 0 ? s.RefSiteCount : 0;
  const double R = SitesRange(s);
  const QColor first = colours.Slot(1).ToQColor();
  const QColor second = colours.Slot(2).ToQColor();
  const QColor third = colours.Slot(3).ToQColor();
  const auto pts = ProjectRows(s, view, s.RefScores, n, a, b, c);
  if (n >= 1) {
    s.SiteIsExtreme.Require(n);
    if (view.SiteNames != NameDisplay::Hide) (void)s.RefSiteNames(n);
  }
  const Flag* extreme = n >= 1 ? s.SiteIsExtreme.Data() : nullptr;
  ForEachPicture(view, fig, [&](Surface& sf, bool partner) {
    Placer place(s, view, partner);
    DrawFrame(sf, view, place, R, second, a, b, c);
    sf.SetFillStyle(FillStyle::Solid);
    const double radius = 0.07 * R / 4;
    for (long i = 1; i <= n; ++i) {
      ScreenPoint p = place.Side(pts[static_cast<std::size_t>(i)]);
      const QColor& mark = extreme[i] ? first : second;
      sf.SetFillColour(mark);
      sf.Circle(p.X, p.Y, radius, mark);
    }
    DrawNames(sf, place, pts, n, view.SiteNames, s.SiteCursor, R, third,
              [&](long i) { return Text(s.RefSiteNames(i)); });
  });
}

void DrawFossil(const Session& s, const ColourSettings& colours, const ScatterView& view, Count a,
                Count b, Count c, FigureSurfaces fig) {
  const long n = s.FossilSampleCount;
  const double R = SitesRange(s);
  const QColor third = colours.Slot(3).ToQColor();
  const QColor fourth = colours.Slot(4).ToQColor();
  const auto pts = ProjectRows(s, view, s.FossilScores, n, a, b, c);
  if (n >= 1) {
    s.FossilEmptySample.Require(n);
    s.SampleIsOut.Require(n);
    if (view.SampleNames != NameDisplay::Hide) (void)s.FossilLabels(n);
  }
  const Flag* empty = n >= 1 ? s.FossilEmptySample.Data() : nullptr;
  const Flag* out = n >= 1 ? s.SampleIsOut.Data() : nullptr;
  ForEachPicture(view, fig, [&](Surface& sf, bool partner) {
    Placer place(s, view, partner);
    sf.SetScale(-1.2 * R, 1.2 * R, 2.4 * R, -2.4 * R);
    sf.SetFontSize(view.FontSize);
    for (long i = 2; i <= n; ++i) {
      if (empty[i] || empty[i - 1]) continue;
      ScreenPoint p = place.Side(pts[static_cast<std::size_t>(i - 1)]);
      ScreenPoint q = place.Side(pts[static_cast<std::size_t>(i)]);
      sf.Line(p.X, p.Y, q.X, q.Y, fourth);
    }
    sf.SetFillStyle(FillStyle::Transparent);
    for (long i = 1; i <= n; ++i) {
      if (empty[i] || !out[i]) continue;
      ScreenPoint p = place.Side(pts[static_cast<std::size_t>(i)]);
      sf.Circle(p.X, p.Y, 0.02 * R, third);
    }
    if (view.SampleNames == NameDisplay::ShowAll) {
      for (long i = 1; i <= n; ++i) {
        if (empty[i]) continue;
        ScreenPoint p = place.Side(pts[static_cast<std::size_t>(i)]);
        sf.Print(p.X + 0.06 * R, p.Y + 0.06 * R, Text(s.FossilLabels(i)), fourth);
      }
    } else if (view.SampleNames == NameDisplay::Sequential) {
      const Count k = s.SampleCursor;
      if (k < 1 || k > n) ThrowSubscript();
      // An empty sample is a stop that shows nothing.
      if (!empty[k]) {
        ScreenPoint p = place.Side(pts[static_cast<std::size_t>(k)]);
        sf.Print(p.X + 0.06 * R, p.Y + 0.06 * R, Text(s.FossilLabels(k)), fourth);
        sf.SetFillStyle(FillStyle::Solid);
        sf.SetFillColour(third);
        sf.Circle(p.X, p.Y, 0.02 * R, third);
      }
    }
  });
}

QString AxesLineText(const Session& s) {
  QString line = "No. of Axes: " + QString::number(s.EnvelopeAxisCount);
  if (!s.MoreAxis) return line + " (all visible)";
  if (s.EnvelopeAxisCount - s.VisibleAxisCount == 1) return line + " (including invisible one)";
  return line + " (including invisible ones)";
}

QColor AxesLineColour(const Session& s, const ColourSettings& colours) {
  return s.MoreAxis ? colours.Slot(3).ToQColor() : QColor(0, 0, 0);
}

void DrawAxesLine(const Session& s, const ColourSettings& colours, Surface& surface) {
  surface.SetScale(0, 0, surface.Width(), surface.Height());
  surface.SetBackColour(surface.BackColour());
  const double h = surface.TextHeight("N");
  surface.Print(4, (surface.Height() - h) / 2, AxesLineText(s), AxesLineColour(s, colours));
}

QString TempLabelText(const Session& s) {
  return "Temp: " + QString::number(s.DisplayAxes(1)) + ", " + QString::number(s.DisplayAxes(2)) +
         ", " + QString::number(s.DisplayAxes(3));
}

QString AxisLabelText(const Session& s) {
  return "Axis: " + QString::number(s.EnvelopeAxes(1)) + ", " + QString::number(s.EnvelopeAxes(2)) +
         ", " + QString::number(s.EnvelopeAxes(3));
}

}  // namespace varnoth
