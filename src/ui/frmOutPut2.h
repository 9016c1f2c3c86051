#pragma once
// "Calibration chart": the calibration at double resolution, a section at
// a chosen Vrec value with its probability profile, the confidence
// intervals of the section as text, and the mode and average curves.
#include <QMainWindow>
#include <QStringList>
#include <array>

#include "calibration/FineGrid.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"

class QAction;
class QCheckBox;
class QLabel;
class QMenu;
class QProgressBar;
class QRadioButton;
class QSlider;

namespace varnoth {

class PictureBox;
class frmCalib;

class frmOutPut2 : public QMainWindow {
  Q_OBJECT
 public:
  explicit frmOutPut2(frmCalib &calib);

  // Shows the chart of the fine grid as prepared for Fig.7 (index 4,
  // probability) or Fig.8 (index 5, confidence).
  void Open(const FineGrid &fine, int index);

  void DrawChart();
  void DrawPicture2();
  void DrawSectionMark();
  void DrawIntervals();
  void WipeInterval();
  void DrawLegend();
  void Overlays();
  void SaveMatrix();
  void PrintChart();
  // The section slider let go: the section and everything on it again.
  void SectionReleased();

  const FineGrid &Fine() const { return fine_; }
  long SectionColumn() const;
  QStringList IntervalLines() const { return intervals_; }

  PictureBox *Picture1 = nullptr, *Picture2 = nullptr, *Picture3 = nullptr;
  QSlider *Slider1 = nullptr, *Slider2 = nullptr;
  std::array<QRadioButton *, 2> Option1{};
  QCheckBox *Check1 = nullptr, *Check2 = nullptr, *Check4 = nullptr;
  std::array<QLabel *, 2> Label1{}, Label2{};
  QLabel *Label3 = nullptr, *Label4 = nullptr, *Label5 = nullptr, *Text = nullptr;
  QProgressBar *ProgressBar1 = nullptr;
  QMenu *File = nullptr, *Fig1 = nullptr, *Fig2 = nullptr;
  QAction *SaveMatrixEntry = nullptr, *Print = nullptr, *Copy1 = nullptr, *Copy2 = nullptr;

 private:
  void SectionLabels();
  frmCalib &calib_;
  OwnedDialogs dialogs_;  // dialogs stand over the chart
  BarProgress progress_{nullptr};
  ErrorBoundary boundary_;
  FineGrid fine_;
  QStringList intervals_;
  int markX_ = -1;
};

}  // namespace varnoth
