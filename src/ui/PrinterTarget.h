#pragma once
// A printer (or a PDF file through the print dialog) as the target of the
// printed pages: one painter for the whole job, pages turned on request.
#include <QPainter>
#include <QPrinter>

#include "presentation/CalibPrint.h"

namespace varnoth {

class PrinterTarget final : public PrintTarget {
 public:
  explicit PrinterTarget(QPrinter& printer) : printer_(printer), painter_(&printer) {}
  QPainter& Painter() override { return painter_; }
  void NewPage() override { printer_.newPage(); }
  // The painter's origin is the corner of the printable area.
  QRect PageRect() const override {
    return QRect(QPoint(0, 0), printer_.pageLayout().paintRectPixels(printer_.resolution()).size());
  }

 private:
  QPrinter& printer_;
  QPainter painter_;
};

}  // namespace varnoth
