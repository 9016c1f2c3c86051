#pragma once
// "Print options": dot size, frame thickness, zoom in percent, font size
// and title of the calibration tool's printed pages. Every change is
// stored at once; Cancel puts back what the dialog found.
#include <QWidget>
#include <array>

#include "ui/frmCalib.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace varnoth {

class frmPrintSetup : public QWidget {
  Q_OBJECT
 public:
  explicit frmPrintSetup(frmCalib& calib);
  void Open();

  QLineEdit *Text1 = nullptr, *Text2 = nullptr, *Text3 = nullptr, *Text4 = nullptr,
            *Text5 = nullptr;
  QPushButton *Command1 = nullptr, *Command2 = nullptr;

 private:
  void Store();
  frmCalib& calib_;
  PrintOptions kept_;
};

}  // namespace varnoth
