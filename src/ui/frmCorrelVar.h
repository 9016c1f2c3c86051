#pragma once
// The pre-treatment dialog, shown once after the first table is read. Its
// choices stay readable after it is hidden: the second import treats its
// own table the same way. A modal dialog over the main window: Return
// confirms, Escape does what closing it by its frame does.
#include <QDialog>
#include <array>

#include "eof/PreTreatmentSettings.h"

class QCheckBox;
class QGroupBox;
class QPushButton;
class QRadioButton;

namespace varnoth {

class frmMain;

class frmCorrelVar : public QDialog {
  Q_OBJECT
 public:
  explicit frmCorrelVar(frmMain& main);

  PreTreatmentSettings Settings() const;
  // The confirm button: treats the base data and runs the analysis.
  void ApplyPreTreatment();
  // Shows the dialog centred on the main window, which it holds.
  void Open();
  // Escape: as a close by the frame.
  void reject() override;

  QGroupBox *Frame1 = nullptr, *Frame2 = nullptr, *Frame3 = nullptr;
  std::array<QRadioButton*, 2> Option2{}, Option3{}, Option1{};
  QCheckBox* Check1 = nullptr;
  QPushButton* Command1 = nullptr;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void EnhanceToggled(bool on);

  frmMain& main_;
  bool confirming_ = false;
};

}  // namespace varnoth
