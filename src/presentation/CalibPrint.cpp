#include "presentation/CalibPrint.h"

#include <cmath>

#include "presentation/CalibFigure.h"

namespace varnoth {

namespace {

constexpr double kMargin = 60;
constexpr double kFigureSide = 380;  // at zoom 1
constexpr int kCellPixels = 4;       // image pixels per matrix cell on paper

void MapSheet(PrintTarget& target) {
  QPainter& p = target.Painter();
  const QRect page = target.PageRect();
  p.setViewport(page);
  // Keep the sheet's proportions on any paper.
  const double scale = std::min(page.width() / kSheetWidth, page.height() / kSheetHeight);
  p.setViewport(page.x(), page.y(), static_cast<int>(kSheetWidth * scale),
                static_cast<int>(kSheetHeight * scale));
  p.setWindow(0, 0, static_cast<int>(kSheetWidth), static_cast<int>(kSheetHeight));
}

void UseFont(QPainter& p, const PrintSettings& print) {
  QFont f("Arial");
  f.setPixelSize(std::max(1, static_cast<int>(std::lround(print.FontSize * 1.6))));
  p.setFont(f);
  p.setPen(Qt::black);
}

double LineHeight(QPainter& p) { return p.fontMetrics().height(); }

// A flowing layout: text lines and figures down the sheet, two figures a
// row, a new page when the next one does not fit.
class Flow {
 public:
  Flow(PrintTarget& target, const PrintSettings& print) : t_(target), print_(print) {
    MapSheet(t_);
    UseFont(t_.Painter(), print_);
  }
  QPainter& P() { return t_.Painter(); }
  void Line(const QString& text) {
    EndRow();
    const double h = LineHeight(P());
    Need(h);
    P().drawText(QPointF(kMargin, y_ + h * 0.8), text);
    y_ += h;
  }
  void Gap(double h) {
    EndRow();
    y_ += h;
  }
  // The next figure's rectangle with `captionLines` text lines above and
  // one line of axis values below.
  QRectF Figure(int captionLines) {
    const double side = kFigureSide * print_.Zoom;
    const double h = LineHeight(P());
    const double height = captionLines * h + side + h + 16;
    if (column_ == 0 || x_ + side > kSheetWidth - kMargin) {
      EndRow();
      Need(height);
      x_ = kMargin;
    }
    rowHeight_ = std::max(rowHeight_, height);
    const QRectF r(x_, y_ + captionLines * h, side, side);
    x_ += side + 60;
    ++column_;
    return r;
  }
  void EndRow() {
    if (column_ > 0) y_ += rowHeight_;
    column_ = 0;
    rowHeight_ = 0;
  }
  int Pages() const { return pages_; }

 private:
  void Need(double h) {
    if (y_ + h <= kSheetHeight - kMargin || y_ == kMargin) return;
    t_.NewPage();
    ++pages_;
    MapSheet(t_);
    UseFont(P(), print_);
    y_ = kMargin;
  }
  PrintTarget& t_;
  const PrintSettings& print_;
  double y_ = kMargin, x_ = kMargin, rowHeight_ = 0;
  int column_ = 0;
  int pages_ = 1;
};

void Frame(QPainter& p, const QRectF& r, const PrintSettings& print) {
  QPen pen(Qt::black);
  pen.setWidthF(std::max(0.1, static_cast<double>(print.FrameWidth) * 0.5));
  p.setPen(pen);
  p.setBrush(Qt::NoBrush);
  p.drawRect(r);
  p.setPen(Qt::black);
}

void AxisValues(QPainter& p, const QRectF& r, const QString& t1, const QString& t2) {
  const double h = LineHeight(p);
  p.drawText(QPointF(r.left(), r.bottom() + h), t1);
  const double w = p.fontMetrics().horizontalAdvance(t2);
  p.drawText(QPointF(r.right() - w, r.bottom() + h), t2);
}

// The matrix figure with every cell a square: the dot size scales the
// square against the cell's pitch, so that 6 tiles the figure.
QImage PrintedMatrix(const QImage& cells, const PrintSettings& print) {
  const int n = cells.width();
  QImage out(n * kCellPixels, n * kCellPixels, QImage::Format_RGB32);
  out.fill(Qt::white);
  const int side = std::clamp(
      static_cast<int>(std::lround(kCellPixels * static_cast<double>(print.DotSize) / 6.0)), 1,
      3 * kCellPixels);
  QPainter p(&out);
  for (int y = 0; y < cells.height(); ++y) {
    const QRgb* row = reinterpret_cast<const QRgb*>(cells.constScanLine(y));
    for (int x = 0; x < n; ++x)
      if (row[x] != qRgb(255, 255, 255))
        p.fillRect(x * kCellPixels, y * kCellPixels, side, side, QColor(row[x]));
  }
  return out;
}

}  // namespace

ImagePrintTarget::ImagePrintTarget(int width)
    : width_(width), painter_(std::make_unique<QPainter>()) {
  NewPage();
}
ImagePrintTarget::~ImagePrintTarget() { End(); }

// One painter for all pages, as on a printer: callers may hold it.
QPainter& ImagePrintTarget::Painter() { return *painter_; }

void ImagePrintTarget::NewPage() {
  End();
  QImage page(width_, static_cast<int>(width_ * kSheetHeight / kSheetWidth), QImage::Format_RGB32);
  page.fill(Qt::white);
  Pages.push_back(page);
  painter_->begin(&Pages.back());
}

QRect ImagePrintTarget::PageRect() const { return Pages.back().rect(); }

void ImagePrintTarget::End() {
  if (painter_->isActive()) painter_->end();
}

int PrintCalibration(PrintTarget& target, const CalibState& c, const CalibSettings& st,
                     const std::array<bool, 9>& drawn, const CalibPrintText& text,
                     ColourSettings& colours, double z, const QColor& point,
                     const PrintSettings& print) {
  Flow flow(target, print);
  QPainter& p = flow.P();
  if (!print.Title.isEmpty()) {
    QFont f = p.font();
    f.setBold(true);
    f.setPixelSize(f.pixelSize() * 3 / 2);
    p.setFont(f);
    flow.Line(print.Title);
    UseFont(p, print);
    flow.Gap(8);
  }
  flow.Line("N1 = " + text.N1 + "    R1 = " + text.R1);
  flow.Line("N2 = " + text.N2 + "    R2 = " + text.R2);
  flow.Line("Fitting line:  " + text.FittingLine);
  flow.Line("Std. Dev. = " + text.StdDev);
  flow.Gap(12);

  const double t1 = text.T1.toDouble(), t2 = text.T2.toDouble();
  for (int k = 0; k < 2; ++k) {
    if (!drawn[static_cast<std::size_t>(k + 1)]) continue;
    const QRectF r = flow.Figure(3);
    const double h = LineHeight(p);
    p.drawText(QPointF(r.left(), r.top() - 2.2 * h), QString("Figure %1").arg(k + 1));
    p.drawText(QPointF(r.left(), r.top() - 1.2 * h), "File: " + text.File[k]);
    p.drawText(QPointF(r.left(), r.top() - 0.2 * h), "X: " + text.X[k] + "  Y: " + text.Y[k]);
    Frame(p, r, print);
    if (t1 != t2) {
      const double side = std::max(0.5, static_cast<double>(print.DotSize) * 0.5);
      const long rows = std::min(c.PairRows[static_cast<std::size_t>(k)], kPairRowLimit);
      for (long s = 1; s <= rows; ++s) {
        const double x = c.PairData(k, s, 1), y = c.PairData(k, s, 2);
        if (x == kMissing || y == kMissing) continue;
        const double px = r.left() + (x - t1) / (t2 - t1) * r.width();
        const double py = r.bottom() - (y - t1) / (t2 - t1) * r.height();
        if (!r.contains(px, py)) continue;
        p.fillRect(QRectF(px - side / 2, py - side / 2, side, side), point);
      }
    }
    AxisValues(p, r, text.T1, text.T2);
  }

  // Fig.3 to Fig.8 painted again from their slots for paper.
  CalibImages images(colours, [z] { return z; });
  RepaintCalibFigures(c, st, images, drawn, colours.GreyMode);
  for (int pic = 0; pic < 6; ++pic) {
    if (!drawn[static_cast<std::size_t>(pic + 3)]) continue;
    const QRectF r = flow.Figure(1);
    p.drawText(QPointF(r.left(), r.top() - 0.2 * LineHeight(p)), QString("Figure %1").arg(pic + 3));
    p.drawImage(r, PrintedMatrix(images.Image(pic), print));
    Frame(p, r, print);
    AxisValues(p, r, text.T1, text.T2);
  }
  flow.Gap(12);
  flow.Line("Smoothing level:  " + text.Smoothing + " %");
  flow.Line("Confidence coefficient 1:  " + text.Coefficient1 + " %");
  flow.Line("Confidence coefficient 2:  " + text.Coefficient2 + " %");
  flow.Line("Z-axis enhancement:  " + text.ZEnhancement + " %");
  return flow.Pages();
}

int PrintChart(PrintTarget& target, const QImage& mainFigure, const QImage& section,
               const QStringList& intervalText, const QString& xName, const QString& yName,
               const QString& t1, const QString& t2, const PrintSettings& print) {
  Flow flow(target, print);
  QPainter& p = flow.P();
  if (!print.Title.isEmpty()) flow.Line(print.Title);
  flow.Line("X:  (" + xName + ")");
  flow.Line("Y:  (" + yName + ")");
  flow.Gap(8);
  const QRectF r = flow.Figure(0);
  p.drawImage(r, mainFigure);
  Frame(p, r, print);
  AxisValues(p, r, t1, t2);
  const QRectF s = flow.Figure(0);
  const QRectF sectionRect(s.left(), s.top(), s.width() * 0.3, s.height());
  p.drawImage(sectionRect, section);
  Frame(p, sectionRect, print);
  const double h = LineHeight(p);
  double y = s.top() + h;
  for (const QString& line : intervalText) {
    p.drawText(QPointF(sectionRect.right() + 20, y), line);
    y += h;
  }
  flow.EndRow();
  return flow.Pages();
}

}  // namespace varnoth
