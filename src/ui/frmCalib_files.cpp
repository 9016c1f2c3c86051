// The calibration tool's output: the common output file (the probability
// and the confidence entries write the same file), the chart it opens, and
// its printed pages.
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QSlider>

#include "calibration/CalibrationFiles.h"
#include "calibration/FineGrid.h"
#include "presentation/CalibPrint.h"
#include "state/Format.h"
#include "ui/PrinterTarget.h"
#include "ui/frmCalib.h"
#include "ui/frmOutPut2.h"

namespace varnoth {

void frmCalib::SaveProbability() {
  boundary_.Run([this] {
    const std::optional<std::string> path =
        dialogs_.SaveFileName(kDataFileFilter, "Save the probability matrix");
    varnoth::SaveProbability(c_, Settings(), path, progress_);
  });
}

void frmCalib::SaveConfidence() { SaveConfidenceOver(dialogs_); }

void frmCalib::SaveConfidenceOver(Dialogs& dialogs) {
  boundary_.Run([this, &dialogs] {
    const std::optional<std::string> path =
        dialogs.SaveFileName(kDataFileFilter, "Save the confidence regions");
    varnoth::SaveConfidence(c_, Settings(), path, progress_);
  });
}

void frmCalib::PrepareChart(int index) {
  if (!c_.PictDrawn[static_cast<std::size_t>(index + 3)]) return;
  FineGrid fine;
  varnoth::PrepareChart(c_, Settings(), fine);
  if (!chart_) chart_ = std::make_unique<frmOutPut2>(*this);
  chart_->Open(fine, index);
}

void frmCalib::CoefficientTyped(int index) {
  boundary_.Run([this, index] {
    QSlider* s = index == 0 ? Slider1 : Slider2;
    const double v =
        LenientParse(Label4[static_cast<std::size_t>(index)]->text().toStdString()) * 10;
    // The slider takes no value beyond its range.
    if (v < s->minimum() || v > s->maximum())
      throw RuntimeFailure(FailureKind::InvalidCall, "slider value");
    // The thumb moves without writing its tenths over the typed number.
    const int before = s->value();
    {
      const QSignalBlocker quiet(s);
      s->setValue(static_cast<int>(Round(v)));
    }
    if (s->value() != before) Rerun(ChainChange::Coefficient);
  });
}

int frmCalib::PrintTo(PrintTarget& target) {
  CalibPrintText text;
  text.N1 = Label12[0]->text();
  text.N2 = Label12[1]->text();
  text.R1 = Label13[0]->text();
  text.R2 = Label13[1]->text();
  text.FittingLine = Label17->text();
  text.StdDev = Label19->text();
  for (int k = 0; k < 2; ++k) {
    const auto i = static_cast<std::size_t>(k);
    text.File[i] = QString::fromStdString(c_.Labels.Label21[i]);
    text.X[i] = QString::fromStdString(c_.Labels.Label14[i]);
    text.Y[i] = QString::fromStdString(c_.Labels.Label15[i]);
  }
  text.T1 = QString::fromStdString(c_.LastText1);
  text.T2 = QString::fromStdString(c_.LastText2);
  text.Smoothing = Label7->text();
  text.Coefficient1 = Label4[0]->text();
  text.Coefficient2 = Label4[1]->text();
  text.ZEnhancement = QString::fromStdString(FormatGeneral(Round(ZEnhancement() * 100)));
  PrintSettings ps{print_.PrintDotSize, print_.PrintFrameWidth, print_.PrintZoom,
                   print_.PrintFontSize, QString::fromStdString(print_.PrintTitle)};
  return PrintCalibration(target, c_, Settings(), c_.PictDrawn, text, colours_, ZEnhancement(),
                          colours_.CurveColour.ToQColor(), ps);
}

std::unique_ptr<QPrinter> frmCalib::AskPrinter(QWidget* owner) {
  if (ChoosePrinter) return ChoosePrinter(owner);
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  QPrintDialog dialog(printer.get(), owner);
  if (dialog.exec() != QDialog::Accepted) printer.reset();
  return printer;
}

void frmCalib::PrintAll() {
  boundary_.Run([this] {
    std::unique_ptr<QPrinter> printer = AskPrinter(this);
    if (!printer) return;
    BusyPointer::Set();
    PrinterTarget target(*printer);
    PrintTo(target);
    BusyPointer::Restore();
  });
}

}  // namespace varnoth
