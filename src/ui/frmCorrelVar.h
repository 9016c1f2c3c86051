#pragma once
// The pre-treatment dialog, shown once after the first table is read. Its
// choices stay readable after it is hidden: the second import treats its
// own table the same way.
#include <QWidget>
#include <array>

#include "eof/PreTreatmentSettings.h"

class QCheckBox;
class QGroupBox;
class QPushButton;
class QRadioButton;

namespace varnoth {

class frmMain;

class frmCorrelVar : public QWidget {
  Q_OBJECT
 public:
  explicit frmCorrelVar(frmMain& main);

  PreTreatmentSettings Settings() const;
  // The confirm button: treats the base data and runs the analysis.
  void ApplyPreTreatment();

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
