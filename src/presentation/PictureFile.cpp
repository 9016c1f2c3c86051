#include "presentation/PictureFile.h"

#include <QFile>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QString>
#include <QSvgGenerator>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>

#include "state/Failure.h"

namespace varnoth {

namespace {
// The screen the figures are laid out for.
constexpr double kDotsPerInch = 96.0;

[[noreturn]] void CannotWrite(const std::string& path) {
  throw RuntimeFailure(FailureKind::FileNotFound, path);
}

// What a picture file is drawn from: its size in screen pixels, the colour
// under everything, and the drawing in those pixels.
struct Figure {
  QSize Size;
  QColor Back;
  std::function<void(QPainter&)> Paint;
};

void SavePng(const Figure& f, const QString& name, const std::string& path, int scale) {
  QImage image(f.Size.width() * scale, f.Size.height() * scale, QImage::Format_RGB32);
  image.setDotsPerMeterX(static_cast<int>(std::lround(kDotsPerInch * scale / 0.0254)));
  image.setDotsPerMeterY(static_cast<int>(std::lround(kDotsPerInch * scale / 0.0254)));
  image.fill(f.Back);
  {
    QPainter p(&image);
    // At the screen size the picture is the screen's, mark for mark; larger
    // ones are smoothed.
    p.setRenderHint(QPainter::Antialiasing, scale > 1);
    p.setRenderHint(QPainter::TextAntialiasing, true);
    p.scale(scale, scale);
    f.Paint(p);
  }
  if (!image.save(name, "PNG")) CannotWrite(path);
}

void SaveSvg(const Figure& f, const QString& name, const std::string& path) {
  {
    // The generator does not say whether it could write: try the file first.
    QFile probe(name);
    if (!probe.open(QIODevice::WriteOnly)) CannotWrite(path);
  }
  QSvgGenerator svg;
  svg.setFileName(name);
  svg.setSize(f.Size);
  svg.setViewBox(QRect(QPoint(0, 0), f.Size));
  svg.setResolution(static_cast<int>(kDotsPerInch));
  svg.setTitle(QStringLiteral("Varnoth figure"));
  QPainter p;
  if (!p.begin(&svg)) CannotWrite(path);
  p.setRenderHint(QPainter::Antialiasing, true);
  p.fillRect(QRect(QPoint(0, 0), f.Size), f.Back);
  f.Paint(p);
  if (!p.end()) CannotWrite(path);
}

void SavePdf(const Figure& f, const QString& name, const std::string& path) {
  {
    QFile probe(name);
    if (!probe.open(QIODevice::WriteOnly)) CannotWrite(path);
  }
  QPdfWriter pdf(name);
  pdf.setCreator(QStringLiteral("Varnoth"));
  pdf.setTitle(QStringLiteral("Varnoth figure"));
  // One page the size of the figure on the screen, without margins.
  const QSizeF points(f.Size.width() * 72.0 / kDotsPerInch, f.Size.height() * 72.0 / kDotsPerInch);
  pdf.setPageLayout(QPageLayout(QPageSize(points, QPageSize::Point), QPageLayout::Portrait,
                                QMarginsF(0, 0, 0, 0)));
  // Fine device units; the drawing keeps its screen pixels through a scale.
  pdf.setResolution(static_cast<int>(kDotsPerInch) * 12);
  QPainter p;
  if (!p.begin(&pdf)) CannotWrite(path);
  p.setRenderHint(QPainter::Antialiasing, true);
  p.scale(12, 12);
  p.fillRect(QRect(QPoint(0, 0), f.Size), f.Back);
  f.Paint(p);
  if (!p.end()) CannotWrite(path);
}

void Save(const Figure& f, const std::string& path, PictureFormat format, int scale) {
  const QString name = QString::fromStdString(path);
  switch (format) {
    case PictureFormat::Png:
      SavePng(f, name, path, std::clamp(scale, 1, 8));
      return;
    case PictureFormat::Svg:
      SaveSvg(f, name, path);
      return;
    case PictureFormat::Pdf:
      SavePdf(f, name, path);
      return;
  }
}
}  // namespace

PictureFormat PictureFormatOf(const std::string& path) {
  const auto dot = path.find_last_of('.');
  std::string ext = dot == std::string::npos ? std::string() : path.substr(dot + 1);
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (ext == "svg") return PictureFormat::Svg;
  if (ext == "pdf") return PictureFormat::Pdf;
  return PictureFormat::Png;
}

const char* PictureExtension(PictureFormat format) {
  switch (format) {
    case PictureFormat::Svg:
      return "svg";
    case PictureFormat::Pdf:
      return "pdf";
    case PictureFormat::Png:
      break;
  }
  return "png";
}

void SavePicture(const Surface& surface, const std::string& path, PictureFormat format, int scale) {
  Save({QSize(surface.Width(), surface.Height()), surface.BackColour(),
        [&surface](QPainter& p) { surface.Replay(p); }},
       path, format, scale);
}

void SavePicture(const std::vector<PlacedSurface>& parts, const std::string& path,
                 PictureFormat format, int scale) {
  QRect bounds;
  for (const PlacedSurface& part : parts)
    bounds |= QRect(part.At, QSize(part.Picture->Width(), part.Picture->Height()));
  const QColor back = parts.empty() ? QColor(Qt::white) : parts.front().Picture->BackColour();
  Save({bounds.size().expandedTo(QSize(1, 1)), back,
        [&](QPainter& p) {
          for (const PlacedSurface& part : parts) {
            p.save();
            p.translate(part.At - bounds.topLeft());
            p.setClipRect(QRect(0, 0, part.Picture->Width(), part.Picture->Height()));
            part.Picture->Replay(p);
            p.restore();
          }
        }},
       path, format, scale);
}

}  // namespace varnoth
