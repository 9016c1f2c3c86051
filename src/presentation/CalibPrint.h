#pragma once
// Printed pages of the calibration tool and of its chart. The page is laid
// out on a logical sheet 1000 units wide (A4 proportions); a target gives
// the painter and turns the page, so that the same routine prints to a
// printer, a PDF file or an image.
#include <QImage>
#include <QPainter>
#include <QString>
#include <QStringList>
#include <array>
#include <functional>

#include "calibration/CalibState.h"
#include "calibration/FineGrid.h"
#include "presentation/Colours.h"

namespace varnoth {

inline constexpr double kSheetWidth = 1000, kSheetHeight = 1414;

struct PrintSettings {
  float DotSize = 6;
  float FrameWidth = 3;
  float Zoom = 1.0f;
  float FontSize = 10;
  QString Title;
};

// Where pages go: the painter is mapped onto the sheet by the routine.
class PrintTarget {
 public:
  virtual ~PrintTarget() = default;
  virtual QPainter& Painter() = 0;
  virtual void NewPage() = 0;
  // The printable area in device units.
  virtual QRect PageRect() const = 0;
};

// Prints onto an image per page: for looking and for checks.
class ImagePrintTarget final : public PrintTarget {
 public:
  explicit ImagePrintTarget(int width = 1000);
  ~ImagePrintTarget() override;
  QPainter& Painter() override;
  void NewPage() override;
  QRect PageRect() const override;
  void End();
  std::vector<QImage> Pages;

 private:
  int width_;
  std::unique_ptr<QPainter> painter_;
};

// What the tool's page prints besides the matrices.
struct CalibPrintText {
  QString N1, N2, R1, R2, FittingLine, StdDev;
  std::array<QString, 2> File, X, Y;  // pair sets 0 and 1
  QString T1, T2;
  QString Smoothing, Coefficient1, Coefficient2, ZEnhancement;
};

// Title, text block, Fig.1 to Fig.8 as far as drawn, the settings.
// Returns the number of pages.
int PrintCalibration(PrintTarget& target, const CalibState& c, const CalibSettings& st,
                     const std::array<bool, 9>& drawn, const CalibPrintText& text,
                     ColourSettings& colours, double z, const QColor& point,
                     const PrintSettings& print);

// The chart: main figure, section and the interval text.
int PrintChart(PrintTarget& target, const QImage& mainFigure, const QImage& section,
               const QStringList& intervalText, const QString& xName, const QString& yName,
               const QString& t1, const QString& t2, const PrintSettings& print);

}  // namespace varnoth
