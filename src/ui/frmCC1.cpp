#include "ui/frmCC1.h"

#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

#include "state/Format.h"
#include "ui/WindowPlacement.h"
#include "ui/frmCalib.h"

namespace varnoth {

CoefficientDialog::CoefficientDialog(frmCalib& calib, int index, const QString& name,
                                     const QString& caption)
    : QWidget(&calib, Qt::Dialog), calib_(calib), index_(index) {
  setObjectName(name);
  setWindowTitle("New confidence coefficient (%)");
  Label1 = new QLabel(caption, this);
  Label1->setObjectName("Label1");
  Label1->setGeometry(12, 12, 240, 20);
  Text1 = new QLineEdit(this);
  Text1->setObjectName("Text1");
  Text1->setGeometry(12, 36, 120, 24);
  Command1 = new QPushButton("OK", this);
  Command1->setObjectName("Command1");
  Command1->setGeometry(140, 34, 80, 28);
  resize(264, 76);
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
  connect(Text1, &QLineEdit::returnPressed, this, &QWidget::close);
}

void CoefficientDialog::Open() {
  Text1->setText(calib_.Label4[static_cast<std::size_t>(index_)]->text());
  PlaceCentredOn(this, &calib_);
  show();
  Text1->setFocus();
  Text1->selectAll();
}

void CoefficientDialog::closeEvent(QCloseEvent* event) {
  event->accept();
  if (unloaded_) return;
  unloaded_ = true;
  // The readout takes the number in its plain form and moves the slider;
  // a value beyond 100 does not fit the slider and the assignment fails.
  const double v = LenientParse(Text1->text().toStdString());
  calib_.Label4[static_cast<std::size_t>(index_)]->setText(
      QString::fromStdString(FormatGeneral(v)));
  calib_.CoefficientTyped(index_);
}

frmCC1::frmCC1(frmCalib& calib)
    : CoefficientDialog(calib, 0, "frmCC1", "Coefficient 1 (default = 68.2)") {}

}  // namespace varnoth
