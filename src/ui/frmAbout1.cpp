#include "ui/frmAbout1.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace varnoth {

frmAbout1::frmAbout1(QWidget* owner) : QWidget(owner, Qt::Dialog) {
  setObjectName("frmAbout1");
  setWindowTitle(QString("About ") + kProductName);
  setAttribute(Qt::WA_QuitOnClose, false);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(24, 18, 24, 14);
  Label1 = new QLabel(kProductName, this);
  Label1->setObjectName("Label1");
  QFont big = Label1->font();
  big.setPointSizeF(big.pointSizeF() * 1.8);
  big.setBold(true);
  Label1->setFont(big);
  Label1->setAlignment(Qt::AlignCenter);
  Label2 = new QLabel(QString("Version ") + kProductVersion +
                          "\nEOF analysis and palaeoclimate reconstruction\nfrom pollen data",
                      this);
  Label2->setObjectName("Label2");
  Label2->setAlignment(Qt::AlignCenter);
  Command1 = new QPushButton("OK", this);
  Command1->setObjectName("Command1");
  Command1->setDefault(true);
  layout->addWidget(Label1);
  layout->addWidget(Label2);
  layout->addSpacing(8);
  layout->addWidget(Command1, 0, Qt::AlignCenter);
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
}

}  // namespace varnoth
