#include "presentation/publication/Page.h"

#include <QBuffer>
#include <QFile>
#include <QFont>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>
#include <algorithm>
#include <cctype>
#include <cmath>

#include "state/Failure.h"

namespace varnoth::pub {

namespace {

// Text is measured at a large size and scaled, so that small type keeps
// the widths of its outlines rather than of a rounded pixel size.
constexpr int kMeasurePixels = 1000;

QFont PageFont(int pixels, bool italic, bool bold) {
  QFont font(QString::fromLatin1(kFontFamily));
  font.setPixelSize(std::max(1, pixels));
  font.setItalic(italic);
  font.setBold(bold);
  font.setKerning(true);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

const QFontMetricsF& Metrics(bool italic, bool bold) {
  static const QFontMetricsF plain(PageFont(kMeasurePixels, false, false));
  static const QFontMetricsF slanted(PageFont(kMeasurePixels, true, false));
  static const QFontMetricsF heavy(PageFont(kMeasurePixels, false, true));
  static const QFontMetricsF both(PageFont(kMeasurePixels, true, true));
  return bold ? (italic ? both : heavy) : (italic ? slanted : plain);
}

double EmMm(double points) { return points * kMmPerPoint; }

// The text's base line start and its direction: where it is drawn from.
struct Placement {
  QPointF Start;  // base line start, in page millimetres
  QRectF Box;
};

Placement Place(double x, double y, const QString& text, const TextStyle& st) {
  const double w = Page::TextWidth(text, st.Points, st.Italic, st.Bold);
  const double cap = Page::CapHeight(st.Points), desc = Page::Descent(st.Points);
  // Along the text: how far back from the given point the text starts.
  const double back = st.H == HAlign::Left ? 0 : st.H == HAlign::Centre ? w / 2 : w;
  // Across the text: how far the base line lies from the point, towards
  // the text's foot.
  const double across = st.V == VAlign::Top        ? cap
                        : st.V == VAlign::Middle   ? cap / 2
                        : st.V == VAlign::Baseline ? 0
                                                   : -desc;
  if (!st.Upwards) {
    const QPointF start(x - back, y + across);
    return {start, QRectF(start.x(), start.y() - cap, w, cap + desc)};
  }
  const QPointF start(x + across, y + back);
  return {start, QRectF(start.x() - cap, start.y() - w, cap + desc, w)};
}

QString Num(double v) {
  if (std::fabs(v) < 5e-4) return QStringLiteral("0");
  QString s = QString::number(v, 'f', 3);
  while (s.endsWith('0')) s.chop(1);
  if (s.endsWith('.')) s.chop(1);
  return s;
}

QString Colour(const QColor& c) { return c.name(QColor::HexRgb); }

QString Escaped(const QString& text) { return text.toHtmlEscaped(); }

QString StrokeAttributes(const QColor& colour, double widthPt, bool dashed) {
  QString a = QStringLiteral(" stroke=\"%1\" stroke-width=\"%2\"")
                  .arg(Colour(colour), Num(widthPt * kMmPerPoint));
  if (colour.alpha() < 255) a += QStringLiteral(" stroke-opacity=\"%1\"").arg(Num(colour.alphaF()));
  if (dashed)
    a += QStringLiteral(" stroke-dasharray=\"%1 %2\"")
             .arg(Num(widthPt * kMmPerPoint * 6), Num(widthPt * kMmPerPoint * 4));
  return a;
}

QString FillAttribute(const QColor& fill) {
  if (!fill.isValid()) return QStringLiteral(" fill=\"none\"");
  QString a = QStringLiteral(" fill=\"%1\"").arg(Colour(fill));
  if (fill.alpha() < 255) a += QStringLiteral(" fill-opacity=\"%1\"").arg(Num(fill.alphaF()));
  return a;
}

QString PointList(const std::vector<QPointF>& points) {
  QString out;
  for (const QPointF& p : points) {
    if (!out.isEmpty()) out += ' ';
    out += Num(p.x()) + ',' + Num(p.y());
  }
  return out;
}

QPen PenOf(const QColor& colour, double widthPt, bool dashed, double ppm) {
  QPen pen(colour, std::max(0.5, widthPt * kMmPerPoint * ppm));
  pen.setCapStyle(Qt::FlatCap);
  pen.setJoinStyle(Qt::RoundJoin);
  if (dashed) pen.setDashPattern({6, 4});
  return pen;
}

std::vector<QPointF> MarkerOutline(double x, double y, MarkerShape shape, double size) {
  const double h = size / 2;
  switch (shape) {
    case MarkerShape::Square:
      return {{x - h, y - h}, {x + h, y - h}, {x + h, y + h}, {x - h, y + h}};
    case MarkerShape::Triangle:
      return {{x, y - h * 1.15}, {x + h * 1.1, y + h * 0.85}, {x - h * 1.1, y + h * 0.85}};
    case MarkerShape::Diamond:
      return {{x, y - h * 1.25}, {x + h, y}, {x, y + h * 1.25}, {x - h, y}};
    default:
      return {};
  }
}

}  // namespace

Page::Page(double widthMm, double heightMm) : width_(widthMm), height_(heightMm) {}

double Page::TextWidth(const QString& text, double points, bool italic, bool bold) {
  return Metrics(italic, bold).horizontalAdvance(text) / kMeasurePixels * EmMm(points);
}

double Page::CapHeight(double points) {
  return Metrics(false, false).capHeight() / kMeasurePixels * EmMm(points);
}

double Page::Descent(double points) {
  return Metrics(false, false).descent() / kMeasurePixels * EmMm(points);
}

void Page::Line(double x1, double y1, double x2, double y2, const QColor& colour, double widthPt,
                bool dashed) {
  Item it{Item::Line, {{x1, y1}, {x2, y2}}, {}, colour, {}, widthPt, dashed, {}, {}, {}, {}};
  items_.push_back(std::move(it));
}

void Page::Polyline(const std::vector<QPointF>& points, const QColor& colour, double widthPt,
                    bool dashed) {
  if (points.size() < 2) return;
  items_.push_back({Item::Polyline, points, {}, colour, {}, widthPt, dashed, {}, {}, {}, {}});
}

void Page::Polygon(const std::vector<QPointF>& points, const QColor& fill) {
  if (points.size() < 3) return;
  items_.push_back({Item::Polygon, points, {}, {}, fill, 0, false, {}, {}, {}, {}});
}

void Page::Rect(const QRectF& r, const QColor& stroke, const QColor& fill, double widthPt) {
  items_.push_back({Item::Rect, {}, r.normalized(), stroke, fill, widthPt, false, {}, {}, {}, {}});
}

void Page::Marker(double x, double y, MarkerShape shape, double sizeMm, const QColor& stroke,
                  const QColor& fill, double widthPt) {
  const double h = sizeMm / 2;
  if (shape == MarkerShape::Circle) {
    items_.push_back({Item::Ellipse,
                      {},
                      QRectF(x - h, y - h, sizeMm, sizeMm),
                      stroke,
                      fill,
                      widthPt,
                      false,
                      {},
                      {},
                      {},
                      {}});
  } else if (shape == MarkerShape::Cross) {
    Line(x - h, y - h, x + h, y + h, stroke, widthPt);
    Line(x - h, y + h, x + h, y - h, stroke, widthPt);
  } else {
    std::vector<QPointF> outline = MarkerOutline(x, y, shape, sizeMm);
    outline.push_back(outline.front());
    if (fill.isValid()) Polygon(outline, fill);
    if (stroke.isValid()) Polyline(outline, stroke, widthPt);
  }
}

QRectF Page::TextBox(double x, double y, const QString& text, const TextStyle& style) {
  return Place(x, y, text, style).Box;
}

QRectF Page::Text(double x, double y, const QString& text, const TextStyle& style,
                  const QColor& colour) {
  const Placement at = Place(x, y, text, style);
  Item it{Item::Text, {}, at.Box, colour, {}, 0, false, text, style, at.Start, {}};
  items_.push_back(std::move(it));
  textBoxes_.push_back(at.Box);
  return at.Box;
}

void Page::Image(const QRectF& r, const QImage& image) {
  items_.push_back({Item::Image, {}, r, {}, {}, 0, false, {}, {}, {}, image});
}

QRectF Page::InkBounds() const {
  QRectF all;
  for (const Item& it : items_) {
    QRectF r;
    const double half = it.WidthPt * kMmPerPoint / 2;
    switch (it.What) {
      case Item::Line:
      case Item::Polyline:
      case Item::Polygon: {
        double l = it.Points[0].x(), t = it.Points[0].y(), rr = l, b = t;
        for (const QPointF& p : it.Points) {
          l = std::min(l, p.x());
          rr = std::max(rr, p.x());
          t = std::min(t, p.y());
          b = std::max(b, p.y());
        }
        r = QRectF(QPointF(l, t), QPointF(rr, b));
        if (it.What != Item::Polygon) r.adjust(-half, -half, half, half);
        break;
      }
      case Item::Rect:
      case Item::Ellipse:
        r = it.Stroke.isValid() ? it.Box.adjusted(-half, -half, half, half) : it.Box;
        break;
      case Item::Text:
      case Item::Image:
        r = it.Box;
        break;
    }
    // A line along an edge has no area but still counts.
    all = all.isNull() ? r : all.united(r.isEmpty() ? r.adjusted(0, 0, 1e-9, 1e-9) : r);
  }
  return all;
}

void Page::Paint(QPainter& p, double ppm) const {
  p.save();
  p.setRenderHint(QPainter::Antialiasing, true);
  p.setRenderHint(QPainter::TextAntialiasing, true);
  p.setRenderHint(QPainter::SmoothPixmapTransform, false);
  auto at = [ppm](QPointF q) { return QPointF(q.x() * ppm, q.y() * ppm); };
  auto box = [ppm](const QRectF& r) {
    return QRectF(r.x() * ppm, r.y() * ppm, r.width() * ppm, r.height() * ppm);
  };
  for (const Item& it : items_) {
    switch (it.What) {
      case Item::Line:
        p.setPen(PenOf(it.Stroke, it.WidthPt, it.Dashed, ppm));
        p.drawLine(at(it.Points[0]), at(it.Points[1]));
        break;
      case Item::Polyline: {
        QPolygonF poly;
        for (const QPointF& q : it.Points) poly << at(q);
        p.setPen(PenOf(it.Stroke, it.WidthPt, it.Dashed, ppm));
        p.setBrush(Qt::NoBrush);
        p.drawPolyline(poly);
        break;
      }
      case Item::Polygon: {
        QPolygonF poly;
        for (const QPointF& q : it.Points) poly << at(q);
        p.setPen(Qt::NoPen);
        p.setBrush(it.Fill);
        p.drawPolygon(poly);
        break;
      }
      case Item::Rect:
      case Item::Ellipse:
        p.setPen(it.Stroke.isValid() ? PenOf(it.Stroke, it.WidthPt, false, ppm) : QPen(Qt::NoPen));
        p.setBrush(it.Fill.isValid() ? QBrush(it.Fill) : QBrush(Qt::NoBrush));
        if (it.What == Item::Rect)
          p.drawRect(box(it.Box));
        else
          p.drawEllipse(box(it.Box));
        break;
      case Item::Text: {
        p.setPen(it.Stroke);
        p.setFont(PageFont(static_cast<int>(std::lround(EmMm(it.Style.Points) * ppm * 8)),
                           it.Style.Italic, it.Style.Bold));
        p.save();
        p.translate(at(it.Anchor));
        if (it.Style.Upwards) p.rotate(-90);
        // Drawn eight times as large and scaled down: a whole pixel size at
        // every resolution.
        p.scale(0.125, 0.125);
        p.drawText(QPointF(0, 0), it.Words);
        p.restore();
        break;
      }
      case Item::Image:
        p.drawImage(box(it.Box), it.Picture);
        break;
    }
  }
  p.restore();
}

std::string Page::Svg() const {
  QString out;
  out += QStringLiteral(
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
             "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"%1mm\" "
             "height=\"%2mm\" viewBox=\"0 0 %1 %2\" font-family=\"%3\">\n")
             .arg(Num(width_), Num(height_), QString::fromLatin1(kSvgFontFamily));
  out += QStringLiteral("<rect x=\"0\" y=\"0\" width=\"%1\" height=\"%2\" fill=\"#ffffff\"/>\n")
             .arg(Num(width_), Num(height_));
  for (const Item& it : items_) {
    switch (it.What) {
      case Item::Line:
        out += QStringLiteral("<line x1=\"%1\" y1=\"%2\" x2=\"%3\" y2=\"%4\"%5/>\n")
                   .arg(Num(it.Points[0].x()), Num(it.Points[0].y()), Num(it.Points[1].x()),
                        Num(it.Points[1].y()), StrokeAttributes(it.Stroke, it.WidthPt, it.Dashed));
        break;
      case Item::Polyline:
        out +=
            QStringLiteral("<polyline points=\"%1\" fill=\"none\"%2 stroke-linejoin=\"round\"/>\n")
                .arg(PointList(it.Points), StrokeAttributes(it.Stroke, it.WidthPt, it.Dashed));
        break;
      case Item::Polygon:
        out += QStringLiteral("<polygon points=\"%1\"%2/>\n")
                   .arg(PointList(it.Points), FillAttribute(it.Fill));
        break;
      case Item::Rect:
        out += QStringLiteral("<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\"%5%6/>\n")
                   .arg(Num(it.Box.x()), Num(it.Box.y()), Num(it.Box.width()), Num(it.Box.height()),
                        FillAttribute(it.Fill),
                        it.Stroke.isValid() ? StrokeAttributes(it.Stroke, it.WidthPt, false)
                                            : QString());
        break;
      case Item::Ellipse:
        out += QStringLiteral("<circle cx=\"%1\" cy=\"%2\" r=\"%3\"%4%5/>\n")
                   .arg(Num(it.Box.center().x()), Num(it.Box.center().y()), Num(it.Box.width() / 2),
                        FillAttribute(it.Fill),
                        it.Stroke.isValid() ? StrokeAttributes(it.Stroke, it.WidthPt, false)
                                            : QString());
        break;
      case Item::Text: {
        // Anchored where the layout measured it, so that a reader's
        // substitute font stays centred or flush where it should.
        const double w = TextWidth(it.Words, it.Style.Points, it.Style.Italic, it.Style.Bold);
        const double shift = it.Style.H == HAlign::Left     ? 0
                             : it.Style.H == HAlign::Centre ? w / 2
                                                            : w;
        const QString anchor = it.Style.H == HAlign::Left     ? QStringLiteral("start")
                               : it.Style.H == HAlign::Centre ? QStringLiteral("middle")
                                                              : QStringLiteral("end");
        const double x = it.Style.Upwards ? it.Anchor.x() : it.Anchor.x() + shift;
        const double y = it.Style.Upwards ? it.Anchor.y() - shift : it.Anchor.y();
        QString attributes = QStringLiteral(" font-size=\"%1\"").arg(Num(EmMm(it.Style.Points)));
        if (anchor != QStringLiteral("start"))
          attributes += QStringLiteral(" text-anchor=\"%1\"").arg(anchor);
        if (it.Style.Italic) attributes += QStringLiteral(" font-style=\"italic\"");
        if (it.Style.Bold) attributes += QStringLiteral(" font-weight=\"bold\"");
        if (it.Stroke != QColor(Qt::black))
          attributes += QStringLiteral(" fill=\"%1\"").arg(Colour(it.Stroke));
        if (it.Style.Upwards)
          attributes += QStringLiteral(" transform=\"rotate(-90 %1 %2)\"").arg(Num(x), Num(y));
        out += QStringLiteral("<text x=\"%1\" y=\"%2\"%3>%4</text>\n")
                   .arg(Num(x), Num(y), attributes, Escaped(it.Words));
        break;
      }
      case Item::Image: {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        it.Picture.save(&buffer, "PNG");
        out += QStringLiteral(
                   "<image x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" "
                   "preserveAspectRatio=\"none\" style=\"image-rendering:pixelated\" "
                   "href=\"data:image/png;base64,%5\"/>\n")
                   .arg(Num(it.Box.x()), Num(it.Box.y()), Num(it.Box.width()), Num(it.Box.height()),
                        QString::fromLatin1(png.toBase64()));
        break;
      }
    }
  }
  out += QStringLiteral("</svg>\n");
  return out.toStdString();
}

PageFormat PageFormatOf(const std::string& path) {
  const auto dot = path.find_last_of('.');
  std::string ext = dot == std::string::npos ? std::string() : path.substr(dot + 1);
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (ext == "pdf") return PageFormat::Pdf;
  if (ext == "png") return PageFormat::Png;
  return PageFormat::Svg;
}

const char* PageExtension(PageFormat format) {
  switch (format) {
    case PageFormat::Pdf:
      return "pdf";
    case PageFormat::Png:
      return "png";
    case PageFormat::Svg:
      break;
  }
  return "svg";
}

QImage PageImage(const Page& page, double dotsPerInch) {
  const double ppm = dotsPerInch / 25.4;
  QImage image(static_cast<int>(std::ceil(page.Width() * ppm)),
               static_cast<int>(std::ceil(page.Height() * ppm)), QImage::Format_RGB32);
  const int dpm = static_cast<int>(std::lround(dotsPerInch / 0.0254));
  image.setDotsPerMeterX(dpm);
  image.setDotsPerMeterY(dpm);
  image.fill(Qt::white);
  QPainter p(&image);
  page.Paint(p, ppm);
  return image;
}

void SavePage(const Page& page, const std::string& path, PageFormat format) {
  const QString name = QString::fromStdString(path);
  auto cannot = [&path] { throw RuntimeFailure(FailureKind::FileNotFound, path); };
  switch (format) {
    case PageFormat::Svg: {
      QFile file(name);
      if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) cannot();
      const std::string svg = page.Svg();
      if (file.write(svg.data(), static_cast<qint64>(svg.size())) !=
          static_cast<qint64>(svg.size()))
        cannot();
      return;
    }
    case PageFormat::Png:
      if (!PageImage(page, 600).save(name, "PNG")) cannot();
      return;
    case PageFormat::Pdf: {
      {
        QFile probe(name);
        if (!probe.open(QIODevice::WriteOnly)) cannot();
      }
      QPdfWriter pdf(name);
      pdf.setCreator(QStringLiteral("Varnoth"));
      pdf.setTitle(QStringLiteral("Varnoth figure"));
      pdf.setPageLayout(
          QPageLayout(QPageSize(QSizeF(page.Width(), page.Height()), QPageSize::Millimeter),
                      QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
      pdf.setResolution(1200);
      QPainter p;
      if (!p.begin(&pdf)) cannot();
      page.Paint(p, 1200 / 25.4);
      if (!p.end()) cannot();
      return;
    }
  }
}

}  // namespace varnoth::pub
