#pragma once
// The one drawing surface of every figure: a raster image with a user scale
// (a negative height lets y grow upwards), a stored background that clear
// returns to, and the few operations the figures are built from.
#include <QColor>
#include <QHash>
#include <QImage>
#include <QLineF>
#include <QPointF>
#include <QStaticText>
#include <QString>
#include <array>
#include <memory>
#include <vector>

class QPainter;

namespace varnoth {

enum class FillStyle { Solid, Transparent };

class Surface {
 public:
  explicit Surface(int width = 1, int height = 1);
  ~Surface();
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  // A new pixel size drops the drawing and the stored background.
  void Resize(int width, int height);
  int Width() const { return image_.width(); }
  int Height() const { return image_.height(); }

  void SetScale(double left, double top, double width, double height);
  double ScaleLeft() const { return left_; }
  double ScaleTop() const { return top_; }
  double ScaleWidth() const { return width_; }
  double ScaleHeight() const { return height_; }
  QPointF ToPixel(double x, double y) const;
  QPointF ToUser(QPointF pixel) const;

  // Setting the background colour wipes the surface to it and forgets any
  // stored background.
  void SetBackColour(const QColor& colour);
  QColor BackColour() const { return back_; }
  void SetForeColour(const QColor& colour) { fore_ = colour; }
  QColor ForeColour() const { return fore_; }
  void SetFillStyle(FillStyle style) { fillStyle_ = style; }
  void SetFillColour(const QColor& colour) { fill_ = colour; }
  void SetFontSize(double points);
  double FontSize() const { return fontPoints_; }
  void SetFontBold(bool bold);
  bool FontBold() const { return bold_; }
  void SetAntialiasing(bool on) { antialias_ = on; }
  // The pen width of lines and points, in pixels; 1 unless a figure asks.
  void SetDrawWidth(int pixels) { drawWidth_ = pixels < 1 ? 1 : pixels; }
  int DrawWidth() const { return drawWidth_; }

  void Line(double x1, double y1, double x2, double y2, const QColor& colour);
  // Many straight lines of one colour, each (x1, y1, x2, y2) in user units,
  // at the cost of one: a line wholly off the picture is left out.
  void Lines(const std::array<float, 4>* lines, std::size_t count, const QColor& colour);
  void Box(double x1, double y1, double x2, double y2, const QColor& colour);
  void FilledBox(double x1, double y1, double x2, double y2, const QColor& colour);
  // An image stretched over the user rectangle, its pixels kept sharp: a
  // matrix figure painted cell by cell into an image of its own.
  void DrawImage(double x1, double y1, double x2, double y2, const QImage& image);
  // A hollow circle of radius r in horizontal user units, one pixel wide,
  // set directly on the raster: thousands of small marks a redraw.
  void Ring(double x, double y, double r, const QColor& colour);
  // One point, as wide as the pen.
  void Point(double x, double y, const QColor& colour);
  // The radius is in horizontal user units; filled with the fill colour
  // when the fill style is solid.
  void Circle(double x, double y, double r, const QColor& colour);
  // Text whose top-left corner stands at (x, y), in the fore colour unless
  // one is given.
  void Print(double x, double y, const QString& text);
  void Print(double x, double y, const QString& text, const QColor& colour);
  // Text turned a quarter to the left, reading upwards: the taxon names of
  // the diagram. Font height 12, width 5, weight 400 in pixels.
  void PrintRotated(double x, double y, const QString& text, const QColor& colour,
                    bool italic = false);
  double TextWidth(const QString& text) const;   // in user units
  double TextHeight(const QString& text) const;  // in user units (positive)

  void Clear();            // back to the stored background, or the background colour
  void StoreBackground();  // what is visible becomes what clear returns to
  bool HasStoredBackground() const { return !background_.isNull(); }

  // Clears the clipboard and puts the image on it as a bitmap.
  void CopyToClipboard() const;

  // The image as drawn so far.
  const QImage& Image() const;

  // Everything drawn since the surface was last wiped, background and
  // marks over it, painted again in pixel units of this surface: what a
  // picture file at any size or in vector form is made from. The painter's
  // transform maps those units to the device.
  void Replay(QPainter& painter) const;
  std::size_t OperationCount() const { return ops_.size(); }
  QColor PixelAt(int px, int py) const { return Image().pixelColor(px, py); }
  QColor PixelAtUser(double x, double y) const;

 private:
  QPainter& Painter();
  void EndPainting() const;
  void FillDisc(QPointF centre, double radius, QRgb rgb);
  void Wiped();

  // One drawing operation as the raster got it, kept so that the same
  // figure can be painted onto any device.
  struct Operation {
    enum Kind { Fill, Line, Lines, Outline, FilledRect, Ellipse, Text, RotatedText, Image };
    Operation(Kind what, QPointF a, QPointF b, double radius, QColor pen, QColor brush,
              int width = 1)
        : What(what), A(a), B(b), Radius(radius), Pen(pen), Brush(brush), Width(width) {}
    Kind What;
    QPointF A, B;
    double Radius = 0;
    QColor Pen, Brush;  // an invalid brush is no fill
    int Width = 1;
    QString Words;
    double Points = 0;
    bool Bold = false, Italic = false;
    QImage Picture;  // an image stretched over A..B, pixel for pixel
    std::shared_ptr<const std::vector<QLineF>> Segments;  // Lines, in pixels
  };
  std::vector<Operation> ops_;
  std::size_t backgroundOps_ = 0;  // how many of ops_ the stored background holds

  QImage image_;
  QImage background_;
  mutable std::unique_ptr<QPainter> painter_;
  double left_ = 0, top_ = 0, width_ = 1, height_ = 1;
  QColor back_ = Qt::white, fore_ = Qt::black, fill_ = Qt::black;
  FillStyle fillStyle_ = FillStyle::Transparent;
  double fontPoints_ = 8;
  bool bold_ = false;
  double ascent_ = 0;
  QHash<QString, QStaticText> staticText_;  // laid-out names, per font size
  double staticPoints_ = 0;
  double discRadius_ = -1;
  std::vector<int> discSpans_;  // half-width of a mark per row from its centre
  int ringRadius_ = -1;
  std::vector<QPoint> ringOffsets_;  // the pixels of a ring around its centre
  bool antialias_ = false;           // crisp marks, as on a plain raster
  int drawWidth_ = 1;
};

}  // namespace varnoth
