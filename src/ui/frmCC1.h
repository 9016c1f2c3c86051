#pragma once
// "New confidence coefficient (%)": a box for one of the tool's two
// coefficients. The text goes back to the readout on unload, which moves
// the slider; nothing checks it.
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace varnoth {

class frmCalib;

class CoefficientDialog : public QWidget {
  Q_OBJECT
 public:
  CoefficientDialog(frmCalib& calib, int index, const QString& name, const QString& caption);
  void Open();

  QLabel* Label1 = nullptr;
  QLineEdit* Text1 = nullptr;
  QPushButton* Command1 = nullptr;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  frmCalib& calib_;
  int index_;
  bool unloaded_ = false;
};

class frmCC1 : public CoefficientDialog {
  Q_OBJECT
 public:
  explicit frmCC1(frmCalib& calib);
};

}  // namespace varnoth
