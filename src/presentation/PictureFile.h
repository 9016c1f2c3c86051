#pragma once
// A figure as a file for papers: drawn again from the surface's operations
// onto a PNG image at 1, 2 or 4 times the screen size, an SVG drawing or a
// PDF page, so that lines and text stay sharp at any size.
#include <QPoint>
#include <string>
#include <vector>

#include "presentation/Surface.h"

namespace varnoth {

enum class PictureFormat { Png, Svg, Pdf };

// The format a file name asks for by its extension (PNG when unknown).
PictureFormat PictureFormatOf(const std::string& path);
// "png", "svg" or "pdf".
const char* PictureExtension(PictureFormat format);

// Writes the figure; `scale` enlarges a PNG (vector files keep the screen
// size as their natural size). A file that cannot be written is a
// FileNotFound failure naming it.
void SavePicture(const Surface& surface, const std::string& path, PictureFormat format,
                 int scale = 1);

// A figure made of several surfaces side by side (a table with its heads):
// each drawn at its place, on the first one's background colour.
struct PlacedSurface {
  const Surface* Picture = nullptr;
  QPoint At;
};
void SavePicture(const std::vector<PlacedSurface>& parts, const std::string& path,
                 PictureFormat format, int scale = 1);

}  // namespace varnoth
