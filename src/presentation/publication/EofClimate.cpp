// The table of EOF-climate correlations for a paper: a heat map, one row
// per EOF and one column per climate parameter, blue for negative and red
// for positive coefficients, each cell with its value printed.
#include <algorithm>
#include <cmath>

#include "diagram/EofClimateCorrelation.h"
#include "presentation/publication/Axis.h"
#include "presentation/publication/Figures.h"

namespace varnoth::pub {

namespace {

const QColor kBlack(Qt::black);

// Blue through white to red over -1..1.
QColor Diverging(double r) {
  static const QColor blue(33, 102, 172), white(247, 247, 247), red(178, 24, 43);
  r = std::clamp(r, -1.0, 1.0);
  const QColor& end = r < 0 ? blue : red;
  const double t = std::fabs(r);
  return QColor::fromRgbF(white.redF() + (end.redF() - white.redF()) * t,
                          white.greenF() + (end.greenF() - white.greenF()) * t,
                          white.blueF() + (end.blueF() - white.blueF()) * t);
}

}  // namespace

Page EofClimateFigure(const Session& s, const Array2<float>& ecc, long eofs, double widthMm) {
  const long params = s.ClimateParamCount;
  eofs = std::min<long>(eofs, s.RefTaxaCount);
  if (params < 1 || eofs < 1) return Page(widthMm, 0);
  const FigureStyle st = StyleFor(widthMm);
  Page page(widthMm, 10);

  double rowHeads = 0, columnHeads = 0;
  for (long e = 1; e <= eofs; ++e)
    rowHeads = std::max(rowHeads, Page::TextWidth(QStringLiteral("EOF-%1").arg(e), st.TextPt));
  for (long p = 1; p <= params; ++p)
    columnHeads = std::max(
        columnHeads, Page::TextWidth(QString::fromStdString(s.ClimateParamNames(p)), st.TextPt));
  const double line = Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt);
  const double cellHeight = line + 1.6;
  const double valueWidth = Page::TextWidth(QString(QChar(0x2212)) + "0.00", st.TextPt) + 1.6;
  const double barRoom = 3.0 + 2.0 + 1.5 +
                         Page::TextWidth(QString(QChar(0x2212)) + "0.5", st.TextPt) +
                         st.TitleGapMm + line;
  const double room = widthMm - 2 * st.MarginMm - rowHeads - 1.2 - barRoom;
  // Names that do not fit across their column stand turned upwards.
  const double wide = std::max(valueWidth, room / params);
  const double cellWidth = std::min(wide, std::max(valueWidth, 22.0));
  const bool turned = columnHeads > cellWidth - 0.8;
  const double headHeight = turned ? columnHeads : line;
  const double top = st.MarginMm + headHeight + 1.2;
  const double width = cellWidth * params;
  // A table narrower than the page stands in its middle.
  const double left = st.MarginMm + rowHeads + 1.2 + std::max(0.0, (room - width) / 2);

  TextStyle head;
  head.Points = st.TextPt;
  head.H = turned ? HAlign::Left : HAlign::Centre;
  head.V = turned ? VAlign::Middle : VAlign::Bottom;
  head.Upwards = turned;
  for (long p = 1; p <= params; ++p)
    page.Text(left + (p - 0.5) * cellWidth, top - 1.2,
              QString::fromStdString(s.ClimateParamNames(p)), head);
  TextStyle rowHead;
  rowHead.Points = st.TextPt;
  rowHead.H = HAlign::Right;
  rowHead.V = VAlign::Middle;
  TextStyle value = rowHead;
  value.H = HAlign::Centre;
  for (long e = 1; e <= eofs; ++e) {
    const double y = top + (e - 1) * cellHeight;
    page.Text(left - 1.2, y + cellHeight / 2, QStringLiteral("EOF-%1").arg(e), rowHead);
    for (long p = 1; p <= params; ++p) {
      const double r = ecc(e, p);
      const QRectF cell(left + (p - 1) * cellWidth, y, cellWidth, cellHeight);
      page.Rect(cell, Qt::white, Diverging(r), 0.5);
      // The value as the window's table shows it, in white on dark cells.
      const QString text = QString::fromStdString(EccText(r)).replace('-', QChar(0x2212));
      page.Text(cell.center().x(), cell.center().y(), text, value,
                std::fabs(r) > 0.6 ? QColor(Qt::white) : kBlack);
    }
  }
  const double bottom = top + eofs * cellHeight;

  // The colour bar of the coefficient.
  const QRectF bar(left + width + 3.0, top, 2.0, std::min(bottom - top, 40.0));
  QImage ramp(1, 256, QImage::Format_RGB32);
  for (int i = 0; i < 256; ++i) ramp.setPixel(0, 255 - i, Diverging(i / 127.5 - 1).rgb());
  page.Image(bar, ramp);
  page.Rect(bar, kBlack, QColor(), st.AxisPt * 0.8);
  Axis b = MakeAxis(Side::Right, {-1, 1, bar.bottom(), bar.top()}, NiceTicks(-1, 1, 4),
                    QStringLiteral("R"));
  b.Line = false;
  DrawAxis(page, b, bar.right(), st);
  page.SetHeight(std::max(bottom, bar.bottom() + 2.0) + st.MarginMm);
  return page;
}

}  // namespace varnoth::pub
