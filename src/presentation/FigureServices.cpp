#include "presentation/FigureServices.h"

#include <cmath>

#include "state/Numeric.h"

namespace varnoth {

void DrawEdgeTicks(Surface& s, const std::vector<double>& xs, const QColor& colour) {
  const double top = s.ScaleTop();
  const double h = s.ScaleHeight();
  for (double x : xs) {
    s.Line(x, top, x, top + h * 8 / 1000, colour);
    s.Line(x, top + h, x, top + h * 988 / 1000, colour);
  }
}

double RoundLowerOut(double lower, double unit) { return Round(lower / unit - 0.5) * unit; }

double RoundUpperOut(double upper, double unit) { return Round(upper / unit + 0.5) * unit; }

double AccuracyScatterUnit(double upper) {
  return std::pow(10.0, Round(std::log10(std::abs(upper)) - 0.5)) / 2;
}

}  // namespace varnoth
