#pragma once
// Reading figures drawn into images: whether a colour stands near a point
// given in the figure's own units, and how much of an area is inked.
#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <algorithm>
#include <cmath>

#include "presentation/Surface.h"

namespace varnoth::uitest {

inline bool IsWhite(const QColor& c) {
  return c.red() == 255 && c.green() == 255 && c.blue() == 255;
}

// Whether a pixel of `colour` stands within `px` pixels of the user point.
inline bool Near(const Surface& s, double x, double y, const QColor& colour, int px = 1) {
  const QPointF p = s.ToPixel(x, y);
  const QImage& img = s.Image();
  for (int dy = -px; dy <= px; ++dy)
    for (int dx = -px; dx <= px; ++dx) {
      const int ix = int(std::floor(p.x())) + dx, iy = int(std::floor(p.y())) + dy;
      if (ix >= 0 && iy >= 0 && ix < img.width() && iy < img.height() &&
          img.pixelColor(ix, iy) == colour)
        return true;
    }
  return false;
}

// The number of pixels that are not white in a rectangle given in user units.
inline int Inked(const Surface& s, double x1, double y1, double x2, double y2) {
  QRectF r = QRectF(s.ToPixel(x1, y1), s.ToPixel(x2, y2)).normalized();
  const QImage& img = s.Image();
  int n = 0;
  for (int y = std::max(0, int(r.top())); y <= std::min(img.height() - 1, int(r.bottom())); ++y)
    for (int x = std::max(0, int(r.left())); x <= std::min(img.width() - 1, int(r.right())); ++x)
      if (!IsWhite(img.pixelColor(x, y))) ++n;
  return n;
}

}  // namespace varnoth::uitest
