#include "presentation/Surface.h"

#include <QClipboard>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace varnoth {

namespace {
// Figures are laid out for a screen of 96 dots per inch.
constexpr double kDotsPerInch = 96.0;
constexpr int kDotsPerMeter = 3780;

QFont FigureFont(double points, bool bold = false) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(std::max(1, static_cast<int>(std::lround(points * kDotsPerInch / 72.0))));
  font.setBold(bold);
  return font;
}

// The font of the turned taxon names: 12 pixels high, 5 wide on average.
QFont NameFont(bool italic) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(12);
  font.setWeight(QFont::Normal);
  font.setItalic(italic);
  QFontMetricsF m(font);
  const double average = m.averageCharWidth();
  if (average > 0) font.setStretch(std::clamp(static_cast<int>(500.0 / average), 1, 4000));
  return font;
}

// A mark set on the raster is centred on the pixel that holds its centre.
QPointF PixelCentre(QPointF p) { return QPointF(std::floor(p.x()) + 0.5, std::floor(p.y()) + 0.5); }
}  // namespace

Surface::Surface(int width, int height) {
  SetFontSize(fontPoints_);
  Resize(width, height);
}

Surface::~Surface() { EndPainting(); }

void Surface::Resize(int width, int height) {
  EndPainting();
  image_ = QImage(std::max(1, width), std::max(1, height), QImage::Format_RGB32);
  image_.setDotsPerMeterX(kDotsPerMeter);
  image_.setDotsPerMeterY(kDotsPerMeter);
  image_.fill(back_);
  background_ = QImage();
  Wiped();
}

void Surface::Wiped() {
  ops_.clear();
  backgroundOps_ = 0;
  Operation fill{Operation::Fill, {}, {}, 0, back_, back_};
  ops_.push_back(fill);
}

void Surface::SetScale(double left, double top, double width, double height) {
  left_ = left;
  top_ = top;
  width_ = width == 0 ? 1 : width;
  height_ = height == 0 ? 1 : height;
}

QPointF Surface::ToPixel(double x, double y) const {
  return QPointF((x - left_) * image_.width() / width_, (y - top_) * image_.height() / height_);
}

QPointF Surface::ToUser(QPointF p) const {
  return QPointF(left_ + p.x() * width_ / image_.width(), top_ + p.y() * height_ / image_.height());
}

QPainter& Surface::Painter() {
  if (!painter_) {
    painter_ = std::make_unique<QPainter>(&image_);
    painter_->setRenderHint(QPainter::Antialiasing, antialias_);
    painter_->setFont(FigureFont(fontPoints_, bold_));
  }
  return *painter_;
}

void Surface::EndPainting() const {
  if (painter_) {
    painter_->end();
    painter_.reset();
  }
}

void Surface::SetBackColour(const QColor& colour) {
  EndPainting();
  back_ = colour;
  background_ = QImage();
  image_.fill(back_);
  Wiped();
}

void Surface::SetFontBold(bool bold) {
  if (bold == bold_) return;
  bold_ = bold;
  if (painter_) painter_->setFont(FigureFont(fontPoints_, bold_));
  // The laid-out texts keep the weight they were laid out with.
  staticText_.clear();
}

void Surface::SetFontSize(double points) {
  fontPoints_ = points;
  QFont font = FigureFont(points, bold_);
  ascent_ = QFontMetricsF(font).ascent();
  if (painter_ && painter_->font() != font) painter_->setFont(font);
  if (points != staticPoints_) {
    staticText_.clear();
    staticPoints_ = points;
  }
}

void Surface::Line(double x1, double y1, double x2, double y2, const QColor& colour) {
  QPainter& p = Painter();
  if (p.pen().color() != colour || p.pen().width() != drawWidth_ ||
      p.pen().style() != Qt::SolidLine)
    p.setPen(QPen(colour, drawWidth_));
  p.drawLine(ToPixel(x1, y1), ToPixel(x2, y2));
  ops_.push_back({Operation::Line, ToPixel(x1, y1), ToPixel(x2, y2), 0, colour, {}, drawWidth_});
}

void Surface::Lines(const std::array<float, 4>* lines, std::size_t count, const QColor& colour) {
  QPainter& p = Painter();
  if (p.pen().color() != colour || p.pen().width() != drawWidth_ ||
      p.pen().style() != Qt::SolidLine)
    p.setPen(QPen(colour, drawWidth_));
  const double sx = image_.width() / width_, sy = image_.height() / height_;
  const double w = image_.width(), h = image_.height();
  auto pixels = std::make_shared<std::vector<QLineF>>();
  pixels->reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto& g = lines[i];
    const double x1 = (g[0] - left_) * sx, y1 = (g[1] - top_) * sy;
    const double x2 = (g[2] - left_) * sx, y2 = (g[3] - top_) * sy;
    if ((x1 < -1 && x2 < -1) || (x1 > w + 1 && x2 > w + 1) || (y1 < -1 && y2 < -1) ||
        (y1 > h + 1 && y2 > h + 1))
      continue;
    pixels->emplace_back(x1, y1, x2, y2);
  }
  p.drawLines(pixels->data(), static_cast<int>(pixels->size()));
  Operation op{Operation::Lines, {}, {}, 0, colour, {}, drawWidth_};
  op.Segments = std::move(pixels);
  ops_.push_back(std::move(op));
}

void Surface::Ring(double x, double y, double r, const QColor& colour) {
  const int radius = static_cast<int>(std::lround(std::abs(r * image_.width() / width_)));
  if (radius != ringRadius_) {
    // The midpoint circle, one pixel wide, worked out once per radius.
    ringRadius_ = radius;
    ringOffsets_.clear();
    int dx = radius, dy = 0, error = 1 - radius;
    while (dx >= dy) {
      for (const QPoint& p : {QPoint(dx, dy), QPoint(dy, dx), QPoint(-dy, dx), QPoint(-dx, dy),
                              QPoint(-dx, -dy), QPoint(-dy, -dx), QPoint(dy, -dx), QPoint(dx, -dy)})
        if (std::find(ringOffsets_.begin(), ringOffsets_.end(), p) == ringOffsets_.end())
          ringOffsets_.push_back(p);
      ++dy;
      if (error < 0) {
        error += 2 * dy + 1;
      } else {
        --dx;
        error += 2 * (dy - dx) + 1;
      }
    }
  }
  Painter();  // keeps the order with what QPainter drew before
  const QPointF centre = ToPixel(x, y);
  // A mark far off the picture (a missing value) is not drawn at all.
  if (!(std::abs(centre.x()) < 1e8 && std::abs(centre.y()) < 1e8)) return;
  const int cx = static_cast<int>(std::floor(centre.x()));
  const int cy = static_cast<int>(std::floor(centre.y()));
  const int w = image_.width(), h = image_.height();
  if (cx + radius < 0 || cx - radius >= w || cy + radius < 0 || cy - radius >= h) return;
  ops_.push_back(
      {Operation::Ellipse, PixelCentre(centre), {}, static_cast<double>(radius), colour, {}});
  uchar* bits = image_.bits();
  const qsizetype stride = image_.bytesPerLine();
  const QRgb value = colour.rgb() | 0xff000000u;
  for (const QPoint& o : ringOffsets_) {
    const int px = cx + o.x(), py = cy + o.y();
    if (px >= 0 && py >= 0 && px < w && py < h)
      reinterpret_cast<QRgb*>(bits + py * stride)[px] = value;
  }
}

void Surface::Point(double x, double y, const QColor& colour) {
  QPainter& p = Painter();
  const QPointF at = ToPixel(x, y);
  const int left = static_cast<int>(std::floor(at.x())) - (drawWidth_ - 1) / 2;
  const int top = static_cast<int>(std::floor(at.y())) - (drawWidth_ - 1) / 2;
  p.fillRect(QRect(left, top, drawWidth_, drawWidth_), colour);
  ops_.push_back({Operation::FilledRect,
                  QPointF(left, top),
                  QPointF(left + drawWidth_, top + drawWidth_),
                  0,
                  {},
                  colour});
}

void Surface::Box(double x1, double y1, double x2, double y2, const QColor& colour) {
  QPainter& p = Painter();
  p.setPen(QPen(colour, 1));
  p.setBrush(Qt::NoBrush);
  const QRectF r = QRectF(ToPixel(x1, y1), ToPixel(x2, y2)).normalized();
  p.drawRect(r);
  ops_.push_back({Operation::Outline, r.topLeft(), r.bottomRight(), 0, colour, {}});
}

void Surface::FilledBox(double x1, double y1, double x2, double y2, const QColor& colour) {
  QPainter& p = Painter();
  QRectF r = QRectF(ToPixel(x1, y1), ToPixel(x2, y2)).normalized();
  p.fillRect(r, colour);
  // A box over the whole picture hides all drawn since the stored
  // background: a figure that wipes itself so keeps no growing list.
  if (r.contains(QRectF(0, 0, image_.width(), image_.height())) && colour.alpha() == 255) {
    const std::size_t keep = background_.isNull() ? 0 : backgroundOps_;
    ops_.erase(ops_.begin() + static_cast<std::ptrdiff_t>(keep), ops_.end());
  }
  ops_.push_back({Operation::FilledRect, r.topLeft(), r.bottomRight(), 0, {}, colour});
}

void Surface::DrawImage(double x1, double y1, double x2, double y2, const QImage& image) {
  QPainter& p = Painter();
  const QRectF r = QRectF(ToPixel(x1, y1), ToPixel(x2, y2)).normalized();
  p.setRenderHint(QPainter::SmoothPixmapTransform, false);
  p.drawImage(r, image);
  ops_.push_back({Operation::Image, r.topLeft(), r.bottomRight(), 0, QColor(), QColor()});
  ops_.back().Picture = image;
}

void Surface::Circle(double x, double y, double r, const QColor& colour) {
  const double pr = std::abs(r * image_.width() / width_);
  // Small solid marks are the bulk of a scatter: fill their spans directly.
  if (fillStyle_ == FillStyle::Solid && !antialias_ && pr <= 12 && fill_ == colour) {
    Painter();  // keeps the order with what QPainter drew before
    FillDisc(ToPixel(x, y), pr, colour.rgb());
    return;
  }
  QPainter& p = Painter();
  p.setPen(QPen(colour, 1));
  if (fillStyle_ == FillStyle::Solid)
    p.setBrush(fill_);
  else
    p.setBrush(Qt::NoBrush);
  p.drawEllipse(ToPixel(x, y), pr, pr);
  ops_.push_back({Operation::Ellipse,
                  ToPixel(x, y),
                  {},
                  pr,
                  colour,
                  fillStyle_ == FillStyle::Solid ? fill_ : QColor()});
}

void Surface::FillDisc(QPointF centre, double radius, QRgb rgb) {
  // The mark is centred on the pixel that holds its centre; the spans of a
  // radius are worked out once and reused.
  if (radius != discRadius_) {
    discRadius_ = radius;
    discSpans_.clear();
    // A little of the outline's width, so that a small mark stays round.
    const double reach = radius + 0.2;
    const int rows = static_cast<int>(std::floor(reach));
    for (int dy = 0; dy <= rows; ++dy)
      discSpans_.push_back(static_cast<int>(std::floor(std::sqrt(reach * reach - dy * dy))));
  }
  const int cx = static_cast<int>(std::floor(centre.x()));
  const int cy = static_cast<int>(std::floor(centre.y()));
  const int w = image_.width(), h = image_.height();
  const int rows = static_cast<int>(discSpans_.size()) - 1;
  if (cx + rows < 0 || cx - rows >= w || cy + rows < 0 || cy - rows >= h) return;
  ops_.push_back(
      {Operation::Ellipse, PixelCentre(centre), {}, radius + 0.2, QColor(rgb), QColor(rgb)});
  uchar* bits = image_.bits();
  const qsizetype stride = image_.bytesPerLine();
  const QRgb value = rgb | 0xff000000u;
  for (int dy = -rows; dy <= rows; ++dy) {
    const int y = cy + dy;
    if (y < 0 || y >= h) continue;
    const int half = discSpans_[static_cast<std::size_t>(std::abs(dy))];
    const int x0 = std::max(0, cx - half), x1 = std::min(w - 1, cx + half);
    if (x0 > x1) continue;
    QRgb* line = reinterpret_cast<QRgb*>(bits + y * stride);
    std::fill(line + x0, line + x1 + 1, value);
  }
}

void Surface::Print(double x, double y, const QString& text) { Print(x, y, text, fore_); }

void Surface::Print(double x, double y, const QString& text, const QColor& colour) {
  QPainter& p = Painter();
  if (p.pen().color() != colour) p.setPen(colour);
  // Names come back at every turn of the view: keep their laid-out text.
  if (staticText_.size() > 50000) staticText_.clear();
  auto found = staticText_.find(text);
  if (found == staticText_.end()) {
    QStaticText laid(text);
    laid.setTextFormat(Qt::PlainText);
    laid.setPerformanceHint(QStaticText::AggressiveCaching);
    found = staticText_.insert(text, laid);
  }
  p.drawStaticText(ToPixel(x, y), *found);
  Operation op{Operation::Text, ToPixel(x, y), {}, 0, colour, {}};
  op.Words = text;
  op.Points = fontPoints_;
  op.Bold = bold_;
  ops_.push_back(std::move(op));
}

void Surface::PrintRotated(double x, double y, const QString& text, const QColor& colour,
                           bool italic) {
  QPainter& p = Painter();
  p.save();
  const QFont font = NameFont(italic);
  p.setFont(font);
  p.setPen(colour);
  p.translate(ToPixel(x, y));
  p.rotate(-90);
  p.drawText(QPointF(0, QFontMetricsF(font).ascent()), text);
  p.restore();
  Operation op{Operation::RotatedText, ToPixel(x, y), {}, 0, colour, {}};
  op.Words = text;
  op.Italic = italic;
  ops_.push_back(std::move(op));
}

double Surface::TextWidth(const QString& text) const {
  QFontMetricsF m(FigureFont(fontPoints_, bold_));
  return std::abs(m.horizontalAdvance(text) * width_ / image_.width());
}

double Surface::TextHeight(const QString&) const {
  QFontMetricsF m(FigureFont(fontPoints_));
  return std::abs(m.height() * height_ / image_.height());
}

void Surface::Clear() {
  EndPainting();
  if (!background_.isNull() && background_.size() == image_.size()) {
    image_ = background_.copy();
    ops_.erase(ops_.begin() + static_cast<std::ptrdiff_t>(backgroundOps_), ops_.end());
  } else {
    image_.fill(back_);
    Wiped();
  }
}

void Surface::StoreBackground() {
  EndPainting();
  background_ = image_.copy();
  backgroundOps_ = ops_.size();
}

void Surface::CopyToClipboard() const {
  QClipboard* clipboard = QGuiApplication::clipboard();
  if (!clipboard) return;
  clipboard->clear();
  clipboard->setImage(Image());
}

const QImage& Surface::Image() const {
  EndPainting();
  return image_;
}

QColor Surface::PixelAtUser(double x, double y) const {
  QPointF p = ToPixel(x, y);
  int px = std::clamp(static_cast<int>(std::floor(p.x())), 0, image_.width() - 1);
  int py = std::clamp(static_cast<int>(std::floor(p.y())), 0, image_.height() - 1);
  return Image().pixelColor(px, py);
}

void Surface::Replay(QPainter& p) const {
  p.save();
  for (const Operation& op : ops_) {
    switch (op.What) {
      case Operation::Fill:
        p.fillRect(QRectF(0, 0, image_.width(), image_.height()), op.Brush);
        break;
      case Operation::Line:
        p.setPen(QPen(op.Pen, op.Width));
        p.drawLine(op.A, op.B);
        break;
      case Operation::Lines:
        p.setPen(QPen(op.Pen, op.Width));
        // One element per line in a vector file, as drawn one by one.
        for (const QLineF& line : *op.Segments) p.drawLine(line);
        break;
      case Operation::Outline:
        p.setPen(QPen(op.Pen, 1));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(op.A, op.B));
        break;
      case Operation::FilledRect:
        p.fillRect(QRectF(op.A, op.B), op.Brush);
        break;
      case Operation::Ellipse:
        p.setPen(QPen(op.Pen, 1));
        if (op.Brush.isValid())
          p.setBrush(op.Brush);
        else
          p.setBrush(Qt::NoBrush);
        p.drawEllipse(op.A, op.Radius, op.Radius);
        break;
      case Operation::Text: {
        const QFont font = FigureFont(op.Points, op.Bold);
        p.setFont(font);
        p.setPen(op.Pen);
        p.drawText(op.A + QPointF(0, QFontMetricsF(font).ascent()), op.Words);
        break;
      }
      case Operation::RotatedText: {
        // The condensing as a scale along the text rather than a font
        // stretch, which vector files do not all keep.
        QFont font = NameFont(op.Italic);
        const double condense = font.stretch() > 0 ? font.stretch() / 100.0 : 1.0;
        font.setStretch(QFont::Unstretched);
        p.save();
        p.setFont(font);
        p.setPen(op.Pen);
        p.translate(op.A);
        p.rotate(-90);
        p.scale(condense, 1);
        p.drawText(QPointF(0, QFontMetricsF(font).ascent()), op.Words);
        p.restore();
        break;
      }
      case Operation::Image:
        // Cells stay sharp squares at any size.
        p.save();
        p.setRenderHint(QPainter::SmoothPixmapTransform, false);
        p.drawImage(QRectF(op.A, op.B), op.Picture);
        p.restore();
        break;
    }
  }
  p.restore();
}

}  // namespace varnoth
