#include "presentation/CalibFigure.h"

#include <cmath>
#include <cstdlib>

namespace varnoth {

namespace {

constexpr long kShown = kShownLast - kShownFirst + 1;  // 201 cells a side

QImage WhiteImage(int w, int h) {
  QImage image(std::max(1, w), std::max(1, h), QImage::Format_RGB32);
  image.fill(Qt::white);
  return image;
}

QRgb RampRgb(ColourSettings& colours, double v) {
  const auto rgb = EvaluatePalette(colours, v);
  return qRgb(rgb[0], rgb[1], rgb[2]);
}

bool ShownCell(long p, long q) {
  return p >= kShownFirst && p <= kShownLast && q >= kShownFirst && q <= kShownLast;
}

double CanvasX(double p) { return (p - kShownFirst) * kCalibCanvas / kMatrixSteps; }
double CanvasY(double q) { return (1 - (q - kShownFirst) / kMatrixSteps) * kCalibCanvas; }

QColor LineColour(bool greyMode, bool mode) {
  if (greyMode) return Qt::black;
  return mode ? QColor(255, 0, 0) : QColor(0, 0, 255);
}

// The ridge test: the probability only rises on the way from one mode to
// the other, so that both lie on one ridge and are joined.
template <typename Prob>
bool OneRidge(long m0, long m1, long c, Prob prob) {
  if (std::abs(m1 - m0) <= 1) return true;
  double a = 0, b = 0;
  if (m1 - m0 > 1)
    for (long y = m0; y <= m1 - 1; ++y) {
      const double d = std::fabs(prob(c + 1, y + 1)) - std::fabs(prob(c + 1, y));
      a += d;
      b += std::fabs(d);
    }
  if (m0 - m1 > 1)
    for (long y = m1; y <= m0 - 1; ++y) {
      const double d = std::fabs(prob(c, y + 1)) - std::fabs(prob(c, y));
      a += d;
      b += std::fabs(d);
    }
  return a == b;
}

// Joins the per-column values of a curve; -9999 is a gap.
template <typename Index, typename Pos, typename Ridge>
void DrawColumnCurve(long first, long last, Index index, Pos pos, Ridge ridge, const QColor& colour,
                     Surface& pic) {
  for (long c = first; c < last; ++c) {
    const long m0 = index(c), m1 = index(c + 1);
    const bool v0 = m0 != kMissing, v1 = m1 != kMissing;
    if (v0 && v1) {
      const QPointF a = pos(c, m0), b = pos(c + 1, m1);
      if (ridge(m0, m1, c)) {
        pic.Line(a.x(), a.y(), b.x(), b.y(), colour);
      } else {
        pic.Point(a.x(), a.y(), colour);
        pic.Point(b.x(), b.y(), colour);
      }
    } else if (v0) {
      const QPointF a = pos(c, m0);
      pic.Point(a.x(), a.y(), colour);
    } else if (v1) {
      const QPointF b = pos(c + 1, m1);
      pic.Point(b.x(), b.y(), colour);
    }
  }
}

}  // namespace

QColor RegionColour(bool greyMode, int cls) {
  if (cls >= 2) return greyMode ? QColor(200, 200, 200) : QColor(200, 255, 200);
  return greyMode ? QColor(100, 100, 100) : QColor(50, 127, 50);
}

bool RainbowColour(ColourSettings& colours, double z, double value, QRgb& rgb) {
  const double v = z * std::fabs(value);
  if (!(v > colours.PaletteWhite / 1.25)) return false;
  rgb = RampRgb(colours, v);
  return true;
}

CalibImages::CalibImages(ColourSettings& colours, std::function<double()> z)
    : colours_(colours), z_(std::move(z)) {
  for (QImage& i : images_) i = WhiteImage(kShown, kShown);
}

void CalibImages::Clear(int pic) {
  Image(pic).fill(Qt::white);
  Dirty[static_cast<std::size_t>(pic)] = true;
}

void CalibImages::Rainbow(float value, float p, float q, int pic) {
  if (p < kShownFirst || p > kShownLast || q < kShownFirst || q > kShownLast) return;
  QRgb rgb;
  if (!RainbowColour(colours_, z_(), value, rgb)) return;
  const QPoint at = CellPixel(static_cast<long>(p), static_cast<long>(q));
  QImage& image = Image(pic);
  reinterpret_cast<QRgb*>(image.scanLine(at.y()))[at.x()] = rgb;
  Dirty[static_cast<std::size_t>(pic)] = true;
}

void CalibImages::Region(int p, int q, int cls) {
  if (!ShownCell(p, q) || cls < 1) return;
  const QPoint at = CellPixel(p, q);
  reinterpret_cast<QRgb*>(Image(5).scanLine(at.y()))[at.x()] =
      RegionColour(colours_.GreyMode, cls).rgb();
  Dirty[5] = true;
}

void CalibImages::Susono(float value, int p, int q, bool inside) {
  if (!ShownCell(p, q)) return;
  const QPoint at = CellPixel(p, q);
  const QRgb rgb = inside ? RampRgb(colours_, value * z_()) : qRgb(255, 255, 255);
  Dirty[4] = true;
  reinterpret_cast<QRgb*>(Image(4).scanLine(at.y()))[at.x()] = rgb;
}

void RepaintCalibFigures(const CalibState& c, const CalibSettings& st, CalibImages& images,
                         const std::array<bool, 9>& drawn, bool greyMode) {
  const float range = c.RangeWidth / 20.0f;
  const float factors[] = {range, range,
                           static_cast<float>(2.5 / static_cast<double>(st.Slider3) * 0.75) * range,
                           1.25f * 200 / 10, 0.75f * 200 / 10};
  const int slotOf[] = {1, 2, 4, 5, 6};
  for (int pic = 0; pic < 5; ++pic) {
    if (!drawn[static_cast<std::size_t>(pic + 3)]) continue;
    images.Clear(pic);
    for (long p = kShownFirst; p <= kShownLast; ++p)
      for (long q = kShownFirst; q <= kShownLast; ++q)
        images.Rainbow(c.CalibMatrix(slotOf[pic], p, q) * factors[pic], static_cast<float>(p),
                       static_cast<float>(q), pic);
  }
  if (drawn[8]) {
    images.Clear(5);
    for (long p = kShownFirst; p <= kShownLast; ++p)
      for (long q = kShownFirst; q <= kShownLast; ++q) {
        const int cls = static_cast<int>(std::fabs(c.CalibMatrix(7, p, q)));
        if (cls >= 1) images.Region(static_cast<int>(p), static_cast<int>(q), cls);
      }
    FitSusono(c, greyMode, &images);
  }
}

void ShowMatrixImage(const QImage& image, Surface& pic) {
  pic.SetScale(0, 0, kCalibCanvas, kCalibCanvas);
  pic.SetBackColour(Qt::white);
  pic.DrawImage(0, 0, kCalibCanvas, kCalibCanvas, image);
}

void DrawPairScatter(const CalibState& c, int k, long rows, double t1, double t2,
                     const QColor& point, bool line, Surface& pic) {
  pic.SetScale(0, 0, kCalibCanvas, kCalibCanvas);
  pic.SetBackColour(Qt::white);
  if (t1 == t2) return;
  const double scale = kCalibCanvas / (t2 - t1);
  rows = std::min(rows, kPairRowLimit);
  pic.SetDrawWidth(2);  // a dot that a single site still shows
  for (long s = 1; s <= rows; ++s) {
    const double x = c.PairData(k, s, 1), y = c.PairData(k, s, 2);
    if (x == kMissing || y == kMissing) continue;
    pic.Point((x - t1) * scale, kCalibCanvas - (y - t1) * scale, point);
  }
  pic.SetDrawWidth(1);
  if (line) {
    const double a = c.FitSlope[1], b = c.FitIntercept[1];
    const double y1 = a * t1 + b, y2 = a * t2 + b;
    pic.Line(0, kCalibCanvas - (y1 - t1) * scale, kCalibCanvas, kCalibCanvas - (y2 - t1) * scale,
             QColor(255, 0, 0));
  }
}

void CalibShowMode(const CalibState& c, bool greyMode, Surface& pic) {
  DrawColumnCurve(
      kShownFirst, kShownLast, [&](long p) { return static_cast<long>(c.ModeIndex(p)); },
      [](long p, long q) { return QPointF(CanvasX(p), CanvasY(q)); },
      [&](long m0, long m1, long col) {
        return OneRidge(m0, m1, col, [&](long p, long q) { return c.CalibMatrix(6, p, q); });
      },
      LineColour(greyMode, true), pic);
}

void CalibShowAve(const CalibState& c, bool greyMode, Surface& pic) {
  DrawColumnCurve(
      kShownFirst, kShownLast, [&](long p) { return static_cast<long>(c.MedianIndex(p)); },
      [](long p, long q) { return QPointF(CanvasX(p), CanvasY(q)); },
      [](long, long, long) { return true; }, LineColour(greyMode, false), pic);
}

QImage ResponseMatrixImage(const CalibState& c, bool confidence, ColourSettings& colours,
                           double z) {
  QImage image = WhiteImage(kShown, kShown);
  for (long p = kShownFirst; p <= kShownLast; ++p)
    for (long q = kShownFirst; q <= kShownLast; ++q) {
      const QPoint at = CellPixel(p, q);
      QRgb* row = reinterpret_cast<QRgb*>(image.scanLine(at.y()));
      if (confidence) {
        const float cls = std::fabs(c.CalibMatrix(8, p, q));
        if (cls >= 1) row[at.x()] = RegionColour(colours.GreyMode, cls >= 2 ? 2 : 1).rgb();
      } else if (c.CalibMatrix(7, p, q) != 0) {
        row[at.x()] =
            RampRgb(colours, std::fabs(c.CalibMatrix(6, p, q)) * 1.25 * (200.0 / 10.0) * z);
      }
    }
  return image;
}

HistImage::HistImage(ColourSettings& colours, double z, bool confidence, long bins, long rows)
    : Image(WhiteImage(static_cast<int>(bins + 1), static_cast<int>(rows + 1))),
      colours_(colours),
      z_(z),
      confidence_(confidence) {}

void HistImage::Cell(float value, long bin, long row) {
  if (bin < 0 || bin >= Image.width() || row < 0 || row >= Image.height()) return;
  const double m = std::fabs(value);
  QRgb* line = reinterpret_cast<QRgb*>(Image.scanLine(static_cast<int>(row)));
  if (confidence_) {
    if (m >= 1) line[bin] = RegionColour(colours_.GreyMode, m >= 2 ? 2 : 1).rgb();
  } else if (m >= 1) {
    const double f = (m - std::floor(m)) * kMatrixSteps / 10;
    line[bin] = RampRgb(colours_, f * 1.25 * z_);
  }
}

void DrawCalibLines(const CalibState& c, bool mode, Surface& picture4) {
  const QColor colour = mode ? QColor(255, 0, 0) : QColor(0, 0, 255);
  auto index = [&](long p) { return static_cast<long>(mode ? c.ModeIndex(p) : c.MedianIndex(p)); };
  // The mode stands between cells: refined by the neighbours' weights.
  auto pos = [&](long p, long q) {
    double y = q;
    if (mode && q > 0 && q < kGridLast) {
      const double lo = std::fabs(c.CalibMatrix(8, p, q - 1)),
                   hi = std::fabs(c.CalibMatrix(8, p, q + 1));
      const double fl = lo - std::floor(lo), fh = hi - std::floor(hi);
      if (fl + fh > 0) y += 0.5 * (fh - fl) / (fl + fh);
    }
    return QPointF(p, y);
  };
  DrawColumnCurve(
      kShownFirst, kShownLast, index, pos, [](long, long, long) { return true; }, colour, picture4);
}

void DrawHistLines(const HistState& h, bool mode, double low, double high, double top,
                   double bottom, Surface& picture3) {
  const QColor colour = mode ? QColor(255, 0, 0) : QColor(0, 0, 255);
  const long rows = h.HistColumns;
  if (rows < 1) return;
  auto index = [&](long r) {
    return static_cast<long>(mode ? h.HistModeLine(r) : h.HistAverageLine(r));
  };
  auto pos = [&](long r, long b) {
    return QPointF(low + (high - low) * b / kMatrixSteps,
                   top + (bottom - top) * static_cast<double>(r) / rows);
  };
  DrawColumnCurve(
      0, rows, index, pos, [](long, long, long) { return true; }, colour, picture3);
}

QImage ChartImage(const FineGrid& fine, bool confidence, long slider2, ColourSettings& colours,
                  Progress* progress) {
  QImage image = WhiteImage(401, 401);
  if (progress) progress->Start(250);
  for (long pf = 50; pf <= 450; ++pf) {
    if (progress) progress->Step((pf - 50) * 250 / 400);
    for (long qf = 50; qf <= 450; ++qf) {
      QRgb* row = reinterpret_cast<QRgb*>(image.scanLine(static_cast<int>(450 - qf)));
      const double cls = std::fabs(fine.FineClass(pf, qf));
      if (confidence) {
        if (cls >= 1.5)
          row[pf - 50] = RegionColour(colours.GreyMode, 2).rgb();
        else if (cls >= 0.5)
          row[pf - 50] = RegionColour(colours.GreyMode, 1).rgb();
      } else if (cls >= 1) {
        const double v = fine.FineProb(pf, qf) * (slider2 / 100.0) * 1.25 * (200.0 / 10.0);
        row[pf - 50] = RampRgb(colours, v);
      }
    }
  }
  return image;
}

void DrawSectionProfile(const FineGrid& fine, long pc, long slider2, bool greyMode, Surface& pic) {
  pic.SetScale(0, 0, 100, 400);
  pic.SetBackColour(Qt::white);
  const QColor colour = greyMode ? QColor(Qt::black) : QColor(0, 0, 255);
  for (long qf = 50; qf <= 450; ++qf) {
    const double v = fine.FineProb(pc, qf) * 1.25 * static_cast<double>(slider2) * (200.0 / 10.0);
    // Points at every i up to v fill the row from the left edge.
    const double reach = std::min(100.0, std::floor(v));
    if (reach < 0) continue;
    const double y = 450 - qf;
    if (reach == 0)
      pic.Point(0, y, colour);
    else
      pic.Line(0, y, reach, y, colour);
  }
}

void ChartShowMode(const FineGrid& fine, bool greyMode, Surface& pic) {
  DrawColumnCurve(
      50, 450, [&](long pf) { return static_cast<long>(fine.FineMode(pf)); },
      [](long pf, long qf) { return QPointF(pf - 50, 450 - qf); },
      [&](long m0, long m1, long col) {
        return OneRidge(m0, m1, col, [&](long pf, long qf) { return fine.FineProb(pf, qf); });
      },
      LineColour(greyMode, true), pic);
}

void ChartShowAve(const FineGrid& fine, bool greyMode, Surface& pic) {
  DrawColumnCurve(
      50, 450, [&](long pf) { return static_cast<long>(fine.FineMedian(pf)); },
      [](long pf, long qf) { return QPointF(pf - 50, 450 - qf); },
      [](long, long, long) { return true; }, LineColour(greyMode, false), pic);
}

}  // namespace varnoth
