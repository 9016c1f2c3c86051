#include "ui/frmCorrelVar.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

#include "ui/QtDialogs.h"
#include "ui/ToolTips.h"
#include "ui/WindowPlacement.h"
#include "ui/frmMain.h"

namespace varnoth {

namespace {
QRadioButton* Option(QWidget* parent, QButtonGroup* group, const QString& name,
                     const QString& caption) {
  auto* o = new QRadioButton(caption, parent);
  o->setObjectName(name);
  group->addButton(o);
  parent->layout()->addWidget(o);
  return o;
}
}  // namespace

frmCorrelVar::frmCorrelVar(frmMain& main) : QDialog(nullptr), main_(main) {
  setObjectName("frmCorrelVar");
  setWindowTitle("Data pre-treatment for PCA");
  setAttribute(Qt::WA_QuitOnClose, false);
  // The main window is disabled while the dialog is up, so the dialog is
  // not its child (it would be disabled with it), but it stays over it.
  setModal(true);
  auto* layout = new QVBoxLayout(this);

  Frame1 = new QGroupBox(" Percentage conversion", this);
  Frame1->setObjectName("Frame1");
  new QVBoxLayout(Frame1);
  auto* g2 = new QButtonGroup(this);
  Option2[0] = Option(Frame1, g2, "Option2_0", "Convert to % values");
  Option2[1] = Option(Frame1, g2, "Option2_1", "Don't convert");
  Option2[0]->setChecked(true);
  layout->addWidget(Frame1);

  Frame2 = new QGroupBox(" Enhancement", this);
  Frame2->setObjectName("Frame2");
  new QVBoxLayout(Frame2);
  Check1 = new QCheckBox("Enhance minor taxa", Frame2);
  Check1->setObjectName("Check1");
  Frame2->layout()->addWidget(Check1);
  auto* g3 = new QButtonGroup(this);
  Option3[0] = Option(Frame2, g3, "Option3_0", "Square root");
  Option3[1] = Option(Frame2, g3, "Option3_1", "Log");
  Option3[0]->setChecked(true);
  Option3[0]->setEnabled(false);
  Option3[1]->setEnabled(false);
  layout->addWidget(Frame2);

  Frame3 = new QGroupBox(" Select matrix type for PCA", this);
  Frame3->setObjectName("Frame3");
  new QVBoxLayout(Frame3);
  auto* g1 = new QButtonGroup(this);
  Option1[0] = Option(Frame3, g1, "Option1_0", "Correlation");
  Option1[1] = Option(Frame3, g1, "Option1_1", "Variance / Covariance");
  Option1[1]->setChecked(true);
  layout->addWidget(Frame3);

  Command1 = new QPushButton("OK", this);
  Command1->setObjectName("Command1");
  Command1->setDefault(true);
  layout->addWidget(Command1);

  connect(Check1, &QCheckBox::toggled, this, &frmCorrelVar::EnhanceToggled);
  for (QButtonGroup* g : {g1, g2, g3})
    connect(g, &QButtonGroup::buttonClicked, this, [this] { Command1->setFocus(); });
  connect(Command1, &QPushButton::clicked, this, &frmCorrelVar::ApplyPreTreatment);
  ExplainControls(this);
}

void frmCorrelVar::EnhanceToggled(bool on) {
  Option3[0]->setEnabled(on);
  Option3[1]->setEnabled(on);
  Option3[0]->setChecked(true);
}

PreTreatmentSettings frmCorrelVar::Settings() const {
  PreTreatmentSettings s;
  s.ConvertToPercent = Option2[0]->isChecked();
  s.Enhance = Check1->isChecked();
  s.SquareRoot = Option3[0]->isChecked();
  s.Correlation = Option1[0]->isChecked();
  return s;
}

void frmCorrelVar::ApplyPreTreatment() {
  confirming_ = true;
  main_.ConfirmPreTreatment(Settings());
  confirming_ = false;
}

void frmCorrelVar::Open() {
  // The whole caption must fit in the title bar, beside the frame's
  // buttons.
  QSize size = isVisible() || testAttribute(Qt::WA_Resized)
                   ? this->size()
                   : sizeHint().expandedTo(minimumSizeHint());
  size.setWidth(std::max(size.width(), fontMetrics().horizontalAdvance(windowTitle()) + 160));
  resize(size);
  PlaceCentredOn(this, &main_);
  winId();
  if (QWindow* own = windowHandle()) own->setTransientParent(main_.windowHandle());
  show();
  raise();
  activateWindow();
  Command1->setFocus();
}

// Esc keeps the dialog: it is the only way on after a reference import,
// and a key pressed by habit must not end the session.
void frmCorrelVar::reject() {}

void frmCorrelVar::closeEvent(QCloseEvent* event) {
  // While the dialog is up the main window is held, so its own frame is the
  // only way out: closing it ends the program, once the user has said so.
  if (confirming_ || main_.Quitting() || !isVisible()) {
    event->accept();
    return;
  }
  OwnedDialogs over(main_.dialogs(), this);
  if (!over.Question("The EOF analysis needs the pre-treatment: choose it and click OK to go "
                     "on.\n\nQuit Varnoth now?",
                     "Varnoth")) {
    event->ignore();
    return;
  }
  event->accept();
  main_.QuitProgram();
}

}  // namespace varnoth
