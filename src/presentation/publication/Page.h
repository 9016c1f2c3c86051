#pragma once
// The page of a figure for a paper: a drawing at a stated physical size, in
// millimetres from the top-left corner, with line widths and text sizes in
// points. It keeps what was drawn as a list, so that the same figure
// becomes an SVG drawing, a PDF page or a PNG image at print resolution,
// and so that a layout can ask where its texts stand before it places more.
#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <string>
#include <vector>

class QPainter;

namespace varnoth::pub {

inline constexpr double kMmPerPoint = 25.4 / 72.0;
// The widths journals print: one column and the full page.
inline constexpr double kSingleColumnMm = 85.0;
inline constexpr double kDoubleColumnMm = 175.0;
// The one sans font of every figure, with the names a reader's machine may
// have instead.
inline constexpr const char* kFontFamily = "DejaVu Sans";
inline constexpr const char* kSvgFontFamily = "DejaVu Sans, Arial, Helvetica, sans-serif";

enum class HAlign { Left, Centre, Right };
// Top and Bottom are the text's box (capital height over the base line,
// descenders under it); Middle centres the capitals on the point.
enum class VAlign { Top, Middle, Baseline, Bottom };

struct TextStyle {
  double Points = 7;
  HAlign H = HAlign::Left;
  VAlign V = VAlign::Baseline;
  bool Italic = false;
  bool Bold = false;
  bool Upwards = false;  // turned a quarter to the left, reading from the bottom up
};

enum class MarkerShape { Circle, Square, Triangle, Diamond, Cross };

class Page {
 public:
  Page(double widthMm, double heightMm);

  double Width() const { return width_; }
  double Height() const { return height_; }
  // The page grows or shrinks at the bottom (a layout that knows its
  // height only at the end).
  void SetHeight(double heightMm) { height_ = heightMm; }

  void Line(double x1, double y1, double x2, double y2, const QColor& colour, double widthPt = 0.5,
            bool dashed = false);
  void Polyline(const std::vector<QPointF>& points, const QColor& colour, double widthPt = 0.5,
                bool dashed = false);
  void Polygon(const std::vector<QPointF>& points, const QColor& fill);
  // Outline in `stroke` (none when invalid), filled with `fill` (none when
  // invalid).
  void Rect(const QRectF& r, const QColor& stroke, const QColor& fill = QColor(),
            double widthPt = 0.5);
  // A mark of `sizeMm` across, centred on (x, y).
  void Marker(double x, double y, MarkerShape shape, double sizeMm, const QColor& stroke,
              const QColor& fill = QColor(), double widthPt = 0.4);
  // Text at (x, y) aligned as the style says; returns its box.
  QRectF Text(double x, double y, const QString& text, const TextStyle& style,
              const QColor& colour = Qt::black);
  // The box the text would take, without drawing it.
  static QRectF TextBox(double x, double y, const QString& text, const TextStyle& style);
  static double TextWidth(const QString& text, double points, bool italic = false,
                          bool bold = false);
  // Capital height and descent of the font at that size, in millimetres.
  static double CapHeight(double points);
  static double Descent(double points);
  // An image stretched over the rectangle, its pixels kept sharp: a matrix
  // cell by cell.
  void Image(const QRectF& r, const QImage& image);

  // The boxes of all texts drawn, and the bounds of everything drawn.
  const std::vector<QRectF>& TextBoxes() const { return textBoxes_; }
  QRectF InkBounds() const;

  // The drawing painted at `pixelsPerMm` onto a device whose origin is the
  // page's top-left corner.
  void Paint(QPainter& painter, double pixelsPerMm) const;
  // The drawing as an SVG document of the page's size in millimetres, with
  // the texts as text.
  std::string Svg() const;

 private:
  struct Item {
    enum Kind { Line, Polyline, Polygon, Rect, Ellipse, Text, Image } What;
    std::vector<QPointF> Points;
    QRectF Box;
    QColor Stroke, Fill;
    double WidthPt = 0.5;
    bool Dashed = false;
    QString Words;
    TextStyle Style;
    QPointF Anchor;  // the text's base line start, before turning
    QImage Picture;
  };
  std::vector<Item> items_;
  std::vector<QRectF> textBoxes_;
  double width_, height_;
};

enum class PageFormat { Svg, Pdf, Png };
// The format a file name asks for by its extension (SVG when unknown).
PageFormat PageFormatOf(const std::string& path);
const char* PageExtension(PageFormat format);
// Writes the page; a PNG is drawn at 600 dots per inch. A file that cannot
// be written is a FileNotFound failure naming it.
void SavePage(const Page& page, const std::string& path, PageFormat format);
// The PNG image of the page at the given resolution.
QImage PageImage(const Page& page, double dotsPerInch);

}  // namespace varnoth::pub
