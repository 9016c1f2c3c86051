#pragma once
// What every figure for a paper shares: the type sizes and line widths,
// round tick values, tick labels, and axes with their ticks, labels and
// title laid out so that no two texts meet.
#include <QString>
#include <vector>

#include "presentation/publication/Page.h"

namespace varnoth::pub {

struct FigureStyle {
  double TextPt = 7;     // tick labels, names, notes
  double TitlePt = 8;    // axis titles
  double AxisPt = 0.5;   // axis lines and ticks
  double DataPt = 0.75;  // curves
  double TickMm = 1.0;
  double LabelGapMm = 0.7;  // from the tick's end to its label
  double TitleGapMm = 1.2;  // from the labels to the title
  double MarginMm = 1.5;    // white border round the page
};
// The style for a page width: both widths print the same type size, the
// narrow one with less room between the parts.
FigureStyle StyleFor(double widthMm);

// Data values onto page millimetres, linearly: D0 lands on P0, D1 on P1.
struct LinearScale {
  double D0 = 0, D1 = 1, P0 = 0, P1 = 1;
  double operator()(double v) const {
    return D1 == D0 ? P0 : P0 + (v - D0) * (P1 - P0) / (D1 - D0);
  }
};

// Round values for the ticks of the range lo..hi: steps of 1, 2 or 5 times
// a power of ten, about `wanted` of them; values within the range only.
struct Ticks {
  std::vector<double> Values;
  double Step = 1;
  int Decimals = 0;  // as many as the step needs
};
Ticks NiceTicks(double lo, double hi, int wanted);
// The range widened outward to whole steps of its ticks.
void NiceRange(double& lo, double& hi, int wanted);
// A tick value as printed: the step's decimals and a true minus sign.
QString TickLabel(double v, int decimals);
// A number as printed in a figure's text, with a true minus sign.
QString FigureNumber(double v, int decimals);

enum class Side { Left, Right, Top, Bottom };

struct Axis {
  Side Where = Side::Bottom;
  LinearScale Scale;  // data onto the page coordinate along the axis
  std::vector<double> TickValues;
  std::vector<QString> TickTexts;  // the labels; empty: printed from the values
  int Decimals = 0;
  QString Title;
  bool Line = true;           // the axis line itself
  bool Labels = true;         // tick labels
  double TitleOffsetMm = -1;  // from the axis line; below 0: after the labels
  double LabelSpaceMm = 0.3;  // the least room between a label and other text
};
// An axis over ticks of a range.
Axis MakeAxis(Side where, const LinearScale& scale, const Ticks& ticks, const QString& title);

// How far the ticks, labels and title reach out from the axis line.
double AxisDepth(const Page& page, const Axis& axis, const FigureStyle& style);
// Draws the axis with its line at `at` (x of a vertical axis, y of a
// horizontal one) from P0 to P1, ticks and labels outward. A label that
// would touch a text already on the page is left out, so the others can
// be read. Returns how far the axis reaches out.
double DrawAxis(Page& page, const Axis& axis, double at, const FigureStyle& style);

// Whether the box keeps `gapMm` clear of every text on the page.
bool FreeOfText(const Page& page, const QRectF& box, double gapMm = 0.3);

}  // namespace varnoth::pub
