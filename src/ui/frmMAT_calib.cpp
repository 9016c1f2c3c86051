// The reconstruction window's side of the calibration: the tool opened on
// the error model, the calibration matrix it hands back (Picture4), the
// matrix applied down the core (Picture3), their mode and average lines,
// and the two matrix files.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

#include "calibration/CalibrationFiles.h"
#include "presentation/CalibFigure.h"
#include "presentation/ReconstructionFigure.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"
#include "ui/PictureBox.h"
#include "ui/frmCalib.h"
#include "ui/frmMAT.h"

namespace varnoth {

frmMAT::~frmMAT() = default;

void frmMAT::OpenCalibration() {
  boundary_.Run([this] {
    if (!calib_) calib_ = std::make_unique<CalibState>();
    if (!calibWindow_) {
      calibWindow_ = std::make_unique<frmCalib>(s_, *calib_, *this, colours_, dialogs_, this);
      calibWindow_->OpenColourSettings = [this] { emit ColourSettingsRequested(); };
    }
    SetCurrentParameter(s_, Combo1->currentText().toStdString());
    calibWindow_->Open();
  });
}

void frmMAT::ReceiveCalibration() {
  calib_->CalibReady = true;
  calibReady_ = true;
  Picture4->setVisible(true);
  // The window widens to show the matrix beside the other pictures; pictures
  // shrunk to the screen are drawn again at their new size.
  if (FitPanels() && s_.ReconstructionOpen) DrawReconstructionCurve();
  DrawResponseMatrices();
  Command4->setEnabled(true);
  for (QAction* a : {mnuSaveOstrel, mnuSaveOstrel2, mnuCopy4}) a->setEnabled(true);
  // The next step (Tamsek) is here: this window comes to the front.
  raise();
  activateWindow();
}

void frmMAT::CalibrationCleared() {
  const bool had = calibReady_ || histReady_;
  calibReady_ = false;
  if (calib_) calib_->CalibReady = false;
  for (QAction* a : {mnuSaveOstrel, mnuSaveOstrel2, mnuCopy4}) a->setEnabled(false);
  Picture4->surface().SetBackColour(palette().color(QPalette::Window));
  Picture4->update();
  Command4->setEnabled(false);
  if (histReady_) {
    histReady_ = false;
    hist_.HistReady = false;
    for (QAction* a : {mnuSaveTamsek, mnuSaveTamsek2, mnuCopy3}) a->setEnabled(false);
  }
  if (had && s_.ReconstructionOpen) DrawReconstructionCurve();
}

CalibSettings frmMAT::CalibSettingsShown() const {
  return calibWindow_ ? calibWindow_->Settings() : CalibSettings{};
}

void frmMAT::BuildHistMatrix() {
  boundary_.Run([this] {
    if (!calib_ || !calibReady_) return;
    Picture3->setVisible(true);
    FitPanels();
    const Count p = SetCurrentParameter(s_, Combo1->currentText().toStdString());
    const long level = Slider6->value();
    if (level > 1) SmoothCurve(s_, p, level);
    const Count rows = HistColumnsFor(Picture3->width() * 15L, Picture3->height() * 15L);
    ProgressBar1->raise();
    HistImage image(colours_, zEnhancement_, Option4[1]->isChecked(), kMatrixSteps, rows);
    varnoth::BuildHistMatrix(hist_, s_, *calib_, LenientParse(Text1->text().toStdString()),
                             LenientParse(Text2->text().toStdString()), level, rows, progress_,
                             &image);
    progress_.Finish();
    if (!hist_.HistReady) return;
    histReady_ = true;
    for (QAction* a : {mnuSaveTamsek, mnuSaveTamsek2, mnuCopy3}) a->setEnabled(true);
    Command4->setEnabled(false);
    DrawReconstructionCurve();
    ShowSamplePosition();
  });
}

void frmMAT::DrawHistPicture() {
  if (!histReady_) return;
  const long rows = hist_.HistColumns;
  HistImage image(colours_, zEnhancement_, Option4[1]->isChecked(), kMatrixSteps, rows);
  for (long row = 0; row <= rows; ++row)
    for (long b = 0; b <= kMatrixSteps; ++b) image.Cell(hist_.HistMatrix(1, b, row), b, row);
  const CurveSettings set = CurveSet();
  const long n = s_.FossilSampleCount;
  const double top = n >= 1 ? CurvePosition(s_, 1) : 0, bottom = n >= 1 ? CurvePosition(s_, n) : 1;
  const double halfBin = (set.High - set.Low) / kMatrixSteps / 2;
  const double halfRow = rows > 0 ? (bottom - top) / rows / 2 : 0;
  Surface& p3 = Picture3->surface();
  p3.SetBackColour(Qt::white);
  p3.DrawImage(set.Low - halfBin, top - halfRow, set.High + halfBin, bottom + halfRow, image.Image);
  for (int k = 0; k < 2; ++k)
    if (Check4[static_cast<std::size_t>(k)]->isChecked())
      DrawHistLines(hist_, k == 0, set.Low, set.High, top, bottom, p3);
  p3.StoreBackground();
}

void frmMAT::DrawMatrixLines() {
  Surface& p4 = Picture4->surface();
  for (int k = 0; k < 2; ++k)
    if (Check4[static_cast<std::size_t>(k)]->isChecked()) DrawCalibLines(*calib_, k == 0, p4);
}

bool frmMAT::MatrixShown() const { return calibReady_ && calib_ && !Picture4->isHidden(); }

CurveSettings frmMAT::ScatterSet() const {
  CurveSettings set = CurveSet();
  if (MatrixShown()) set.SelectionShown = true;
  return set;
}

void frmMAT::DrawMatrixMarker() {
  if (!MatrixShown() || !Picture4->surface().HasStoredBackground()) return;
  varnoth::DrawMatrixMarker(s_, s_.CurrentParameter, CurveSet(), kMatrixSteps, Picture4->surface());
  Picture4->update();
}

void frmMAT::DrawResponseMatrices() {
  if (!calib_ || !calibReady_) return;
  SyncSurfaces();
  Surface& p4 = Picture4->surface();
  p4.SetScale(25, 225, 200, -200);
  p4.SetBackColour(Qt::white);
  p4.DrawImage(24.5, 225.5, 225.5, 24.5,
               ResponseMatrixImage(*calib_, Option4[1]->isChecked(), colours_, zEnhancement_));
  DrawMatrixLines();
  p4.StoreBackground();
  DrawMatrixMarker();
  Picture4->update();
  if (histReady_) DrawReconstructionCurve();
}

void frmMAT::SaveOstrel() {
  boundary_.Run([this] {
    if (!calib_) return;
    const std::optional<std::string> path = dialogs_.SaveFileName(
        kDataFileFilter, "Save the calibration matrix of " + ShownParameter());
    AnalogueChoices choices{Settings(), Slider2->value()};
    // The bins of the axis the matrix was built on.
    varnoth::SaveOstrel(s_, *calib_, CalibSettingsShown(), choices, LenientParse(calib_->LastText1),
                        CurrentStamp(), path, mainProgress_);
  });
}

void frmMAT::SaveTamsek() {
  boundary_.Run([this] {
    if (!calib_) return;
    const std::optional<std::string> path =
        dialogs_.SaveFileName(kDataFileFilter, "Save the histogram matrix of " + ShownParameter());
    AnalogueChoices choices{Settings(), Slider2->value()};
    varnoth::SaveTamsek(s_, *calib_, CalibSettingsShown(), choices, hist_, Slider6->value(),
                        LenientParse(Text1->text().toStdString()), CurrentStamp(), path,
                        mainProgress_);
  });
}

}  // namespace varnoth
