#include "ui/frmPrintSetup.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "state/Format.h"
#include "ui/WindowPlacement.h"

namespace varnoth {

namespace {

float Number(const QLineEdit* t) {
  // No range check; a text that is no number counts as 0.
  return static_cast<float>(LenientParse(t->text().toStdString()));
}

QString Text(double v) { return QString::fromStdString(FormatGeneral(v)); }

}  // namespace

frmPrintSetup::frmPrintSetup(frmCalib& calib) : QWidget(&calib, Qt::Dialog), calib_(calib) {
  setObjectName("frmPrintSetup");
  setWindowTitle("Print options");
  const char* captions[] = {
      "Dot Size:", "Picture Frame Thickness:", "Zoom (%):", "Font Size:", "Title:"};
  std::array<QLineEdit**, 5> boxes = {&Text1, &Text2, &Text3, &Text4, &Text5};
  for (int i = 0; i < 5; ++i) {
    auto* l = new QLabel(captions[i], this);
    l->setObjectName(QString("Label%1").arg(i + 1));
    l->setGeometry(12, 12 + i * 30, 170, 22);
    auto* t = new QLineEdit(this);
    t->setObjectName(QString("Text%1").arg(i + 1));
    t->setGeometry(186, 10 + i * 30, i == 4 ? 220 : 80, 24);
    *boxes[static_cast<std::size_t>(i)] = t;
  }
  Command1 = new QPushButton("OK", this);
  Command1->setObjectName("Command1");
  Command1->setGeometry(226, 164, 84, 28);
  Command2 = new QPushButton("Cancel", this);
  Command2->setObjectName("Command2");
  Command2->setGeometry(318, 164, 84, 28);
  resize(416, 202);
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
  connect(Command2, &QPushButton::clicked, this, [this] {
    calib_.Print() = kept_;
    close();
  });
}

void frmPrintSetup::Open() {
  kept_ = calib_.Print();
  const PrintOptions& o = kept_;
  for (QLineEdit* t : {Text1, Text2, Text3, Text4, Text5}) t->disconnect(this);
  Text1->setText(Text(o.PrintDotSize));
  Text2->setText(Text(o.PrintFrameWidth));
  Text3->setText(Text(static_cast<double>(o.PrintZoom) * 100));
  Text4->setText(Text(o.PrintFontSize));
  Text5->setText(QString::fromStdString(o.PrintTitle));
  for (QLineEdit* t : {Text1, Text2, Text3, Text4, Text5})
    connect(t, &QLineEdit::textChanged, this, &frmPrintSetup::Store);
  PlaceCentredOn(this, &calib_);
  show();
}

void frmPrintSetup::Store() {
  PrintOptions& o = calib_.Print();
  o.PrintDotSize = Number(Text1);
  o.PrintFrameWidth = Number(Text2);
  o.PrintZoom = Number(Text3) / 100;
  o.PrintFontSize = Number(Text4);
  o.PrintTitle = Text5->text().toStdString();
  // The tool rebuilds its figures at its next activation.
  calib_.SetCheck3(true);
}

}  // namespace varnoth
