#pragma once
// The figures of the calibration tool and of the reconstruction window's
// matrices: every matrix figure is painted into an image of its own, one
// pixel per cell, and stretched over its picture at once, so that a chain
// step paints 40 401 cells without a drawing call per cell.
#include <QColor>
#include <QImage>
#include <array>
#include <functional>

#include "calibration/FineGrid.h"
#include "calibration/HistMatrix.h"
#include "calibration/MatrixChain.h"
#include "calibration/PairSets.h"
#include "presentation/Colours.h"
#include "presentation/Surface.h"

namespace varnoth {

// The logical canvas of the tool's figures, on both axes.
inline constexpr double kCalibCanvas = 1875;

// First (inner) and second (outer) region colour.
QColor RegionColour(bool greyMode, int cls);

// The rainbow colour of a cell: the ramp at z * |value|. Below the ramp's
// white floor (divided by 1.25) the cell is not painted: false.
bool RainbowColour(ColourSettings& colours, double z, double value, QRgb& rgb);

// Cell (p, q) of the shown bins 25..225 in a 201 x 201 image, q upwards.
inline QPoint CellPixel(long p, long q) {
  return QPoint(static_cast<int>(p - kShownFirst), static_cast<int>(kShownLast - q));
}

// The six matrix figures of the chain, Picture2(0) to Picture2(5).
class CalibImages final : public CalibPainter {
 public:
  // z: the Z-axis enhancement at the time of painting.
  CalibImages(ColourSettings& colours, std::function<double()> z);
  QImage& Image(int pic) { return images_[static_cast<std::size_t>(pic)]; }
  const QImage& Image(int pic) const { return images_[static_cast<std::size_t>(pic)]; }
  // Pictures painted since the window last showed them.
  std::array<bool, 6> Dirty{};

  void Clear(int pic) override;
  void Rainbow(float value, float p, float q, int pic) override;
  void Region(int p, int q, int cls) override;
  void Susono(float value, int p, int q, bool inside) override;

 private:
  ColourSettings& colours_;
  std::function<double()> z_;
  std::array<QImage, 6> images_;
};

// Repaints Fig.3 to Fig.7 from their slots and Fig.8 from the classes, as
// after a change of the colours. drawn: the drawn flags 1..8.
void RepaintCalibFigures(const CalibState& c, const CalibSettings& st, CalibImages& images,
                         const std::array<bool, 9>& drawn, bool greyMode);

// A matrix image over a picture scaled 0..1875.
void ShowMatrixImage(const QImage& image, Surface& pic);

// The scatter of pair set k on the 0..1875 canvas of the range t1..t2,
// rows 1..rows, with the fitted line of pair set 1 when `line`.
void DrawPairScatter(const CalibState& c, int k, long rows, double t1, double t2,
                     const QColor& point, bool line, Surface& pic);

// The mode and median curves of the chain on Fig.8, coarse grid; modes
// joined where they lie on one ridge.
void CalibShowMode(const CalibState& c, bool greyMode, Surface& pic);
void CalibShowAve(const CalibState& c, bool greyMode, Surface& pic);

// The reconstruction window's calibration matrix (Picture4), the shown
// bins as a 201 x 201 image: regions under "Confidence", the probability
// where a region lies under "Probability".
QImage ResponseMatrixImage(const CalibState& c, bool confidence, ColourSettings& colours, double z);
// The histogram matrix down the core, a cell per value bin and depth row.
class HistImage final : public HistPainter {
 public:
  HistImage(ColourSettings& colours, double z, bool confidence, long bins, long rows);
  void Cell(float value, long bin, long row) override;
  QImage Image;

 private:
  ColourSettings& colours_;
  double z_;
  bool confidence_;
};
// Mode (red) and average (blue) lines on Picture4 (scale 25..225) and on
// the histogram picture (bins 0..200 over low..high, rows over the depth
// positions top..bottom).
void DrawCalibLines(const CalibState& c, bool mode, Surface& picture4);
void DrawHistLines(const HistState& h, bool mode, double low, double high, double top,
                   double bottom, Surface& picture3);

// The calibration chart at double resolution: the main figure as a 401 x
// 401 image, its section profile, its mode and average curves.
// `progress` counts the fine columns on 0..250.
QImage ChartImage(const FineGrid& fine, bool confidence, long slider2, ColourSettings& colours,
                  Progress* progress = nullptr);
void DrawSectionProfile(const FineGrid& fine, long pc, long slider2, bool greyMode, Surface& pic);
void ChartShowMode(const FineGrid& fine, bool greyMode, Surface& pic);
void ChartShowAve(const FineGrid& fine, bool greyMode, Surface& pic);

}  // namespace varnoth
