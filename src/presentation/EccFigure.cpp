#include "presentation/EccFigure.h"

#include <algorithm>
#include <cmath>

#include "diagram/EofClimateCorrelation.h"

namespace varnoth {

namespace {

const QColor kRed(255, 0, 0), kBlack(0, 0, 0), kWhite(255, 255, 255), kHeadLine(128, 128, 128);

void Wipe(Surface& s) {
  s.SetBackColour(kWhite);
  s.SetFontBold(false);
}

}  // namespace

EccFit EccCellsThatFit(double widthTwips, double heightTwips) {
  EccFit f;
  f.Rows = std::max(0L, static_cast<long>(Int((heightTwips - kEccTopGap) / kEccCellHeight)));
  f.Columns = std::max(0L, static_cast<long>(Int(widthTwips / kEccCellWidth)));
  return f;
}

EccCell EccCellAt(const EccTableView& view, double x, double y) {
  EccCell c;
  c.Column = view.ColumnScroll + static_cast<long>(Int((x + kEccColumnReach) / kEccCellWidth));
  c.Row = view.RowScroll + static_cast<long>(Int((y - kEccTopGap) / kEccCellHeight));
  return c;
}

double EccColumnCentre(long k) {
  // The middle of the reach [1050 k - 200, 1050 k + 850).
  return kEccCellWidth * static_cast<double>(k) + (kEccCellWidth / 2 - kEccColumnReach);
}

double EccRowTop(long r) { return kEccTopGap + kEccCellHeight * static_cast<double>(r); }

void DrawEccTable(const Array2<float>& matrix, const EccTableView& view, Surface& table) {
  Wipe(table);
  const double width = table.ScaleWidth(), height = table.ScaleHeight();
  for (long r = 0; EccRowTop(r) < height; ++r) {
    const long e = view.RowScroll + r;
    if (e > view.Eofs) break;
    // The last column in view may stand partly beyond the edge.
    for (long k = 0; EccColumnCentre(k) - kEccColumnReach < width; ++k) {
      const long p = view.ColumnScroll + k;
      if (p > view.Params) break;
      const QString text = QString::fromStdString(EccText(matrix(e, p)));
      const bool bold = e == view.HoverRow && p == view.HoverColumn;
      const bool selected = e == view.SelectedEof && p == view.SelectedClimate;
      table.SetFontBold(bold);
      const double w = table.TextWidth(text);
      table.Print(EccColumnCentre(k) - w / 2, EccRowTop(r), text, selected ? kRed : kBlack);
    }
  }
  table.SetFontBold(false);
}

void DrawEccRowHeads(const EccTableView& view, Surface& heads) {
  Wipe(heads);
  const double height = heads.ScaleHeight(), width = heads.ScaleWidth();
  for (long r = 0; EccRowTop(r) < height; ++r) {
    const long e = view.RowScroll + r;
    if (e > view.Eofs) break;
    const QString text = "EOF-" + QString::number(e);
    heads.Print(width - heads.TextWidth(text) - 90, EccRowTop(r), text, kBlack);
  }
}

void DrawEccColumnHeads(const std::vector<QString>& names, const EccTableView& view, Surface& upper,
                        Surface& lower) {
  Wipe(upper);
  Wipe(lower);
  const double width = upper.ScaleWidth();
  for (long k = 0; EccColumnCentre(k) - kEccColumnReach < width; ++k) {
    const long p = view.ColumnScroll + k;
    if (p > view.Params || p >= static_cast<long>(names.size())) break;
    Surface& strip = k % 2 == 0 ? upper : lower;
    const QString& name = names[static_cast<std::size_t>(p)];
    const double w = strip.TextWidth(name), h = strip.TextHeight(name);
    const double centre = EccColumnCentre(k);
    const double left = centre - w / 2 - 45, right = centre + w / 2 + 45;
    const double top = (strip.ScaleHeight() - h) / 2 - 15, bottom = top + h + 30;
    strip.FilledBox(left, top, right, bottom, kWhite);
    strip.Box(left, top, right, bottom, kHeadLine);
    strip.Print(centre - w / 2, top + 15, name, kBlack);
  }
}

void DrawEccScatter(const Session& s, const ColourSettings& colours, long eof, long climate,
                    double zoom, Surface& picture) {
  picture.SetScale(-zoom, picture.ScaleTop(), 2 * zoom, picture.ScaleHeight());
  picture.SetBackColour(kWhite);
  const double top = picture.ScaleTop(), bottom = top + picture.ScaleHeight();
  const long sample = s.SampleCursor;
  if (sample >= 1 && sample <= s.FossilSampleCount && !s.FossilEmptySample(sample)) {
    const double x = s.FossilScores(sample, eof);
    picture.Line(x, top, x, bottom, colours.CursorColour.ToQColor());
  }
  const QColor mark = colours.CurveColour.ToQColor();
  picture.SetFillStyle(FillStyle::Solid);
  picture.SetFillColour(mark);
  const double radius = std::fabs(picture.ScaleWidth()) / 67;
  for (long i = 1; i <= s.RefSiteCount; ++i)
    picture.Circle(s.RefScores(i, eof), s.ClimateData(i, climate), radius, mark);
}

}  // namespace varnoth
