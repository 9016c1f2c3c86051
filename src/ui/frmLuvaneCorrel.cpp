#include "ui/frmLuvaneCorrel.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <cmath>

#include "interpolation/Accuracy.h"
#include "state/Format.h"
#include "ui/Controls.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/ToolTips.h"
#include "ui/WindowPlacement.h"
#include "ui/frmCalib.h"
#include "ui/frmMAT.h"

namespace varnoth {

namespace {

const QColor kBlue{0, 0, 255};

}  // namespace

// The list's line edit loses the focus while the window goes away, when
// its children outlive the window's own part: it must not call back then.
frmLuvaneCorrel::~frmLuvaneCorrel() { Combo1->lineEdit()->disconnect(this); }

frmLuvaneCorrel::frmLuvaneCorrel(Session& session, Dialogs& dialogs, frmMAT& mat, QWidget* owner)
    : QMainWindow(owner, Qt::Window), s_(session), dialogs_(dialogs, this), mat_(mat) {
  setObjectName("frmLuvaneCorrel");
  setWindowTitle("Accuracy (Est-Obs)");
  setAttribute(Qt::WA_QuitOnClose, false);
  auto* c = new QWidget(this);
  setCentralWidget(c);
  Combo1 = Named(new QComboBox(c), "Combo1");
  Combo1->setEditable(true);
  // A typed name chooses a column; it never becomes one of the list.
  Combo1->setInsertPolicy(QComboBox::NoInsert);
  Combo1->setGeometry(8, 8, 200, 26);
  Label3 = Named(new QLabel("0.8888", c), "Label3");
  Label3->setGeometry(220, 8, 100, 26);
  Label2 = Named(new QLabel("Estimated (horizontal) / Observed (vertical)", c), "Label2");
  Label2->setGeometry(8, 340, 320, 20);
  Picture3 = new PictureBox("Picture3", QSize(280, 280), false, c);
  Picture3->move(48, 40);
  Picture3->setMouseTracking(true);
  Picture3->installEventFilter(this);
  for (int i = 0; i < 2; ++i) {
    Text1[i] = Named(new QLineEdit(c), QString("Text1_%1").arg(i));
    Label1[i] = Named(new QLabel(c), QString("Label1_%1").arg(i));
  }
  // Text1 stands under the horizontal axis, Label1 beside the vertical one.
  Text1[0]->setGeometry(48, 322, 60, 20);
  Text1[1]->setGeometry(268, 322, 60, 20);
  Label1[1]->setGeometry(4, 40, 42, 18);
  Label1[0]->setGeometry(4, 302, 42, 18);
  resize(340, 390);
  ExplainControls(this);

  RightButton = new QMenu("RightButton", this);
  RightButton->setObjectName("RightButton");
  mnuSave = RightButton->addAction("Save matrix");
  mnuSave->setObjectName("mnuSave");
  mnuCopyScatter = RightButton->addAction("Copy");
  mnuCopyScatter->setObjectName("mnuCopyScatter");

  connect(Combo1, &QComboBox::textActivated, this, &frmLuvaneCorrel::ChooseParameter);
  // A name typed and left counts as chosen.
  connect(Combo1->lineEdit(), &QLineEdit::editingFinished, this,
          [this] { ChooseParameter(Combo1->currentText()); });
  for (QLineEdit* t : Text1)
    connect(t, &QLineEdit::textChanged, this, [this] {
      boundary_.Run([this] {
        DrawScatterPL();
        Label1[0]->setText(Text1[0]->text());
        Label1[1]->setText(Text1[1]->text());
      });
    });
  connect(Picture3, &PictureBox::RightPressed, this,
          [this](const QPoint& at) { RightButton->popup(at); });
  connect(mnuSave, &QAction::triggered, this, [this] { SaveMatrix(); });
  connect(mnuCopyScatter, &QAction::triggered, this,
          [this] { Picture3->surface().CopyToClipboard(); });
  AddSavePictureEntry(
      RightButton, "mnuSavePictureScatter", dialogs_, boundary_,
      [this]() -> const Surface& { return Picture3->surface(); }, mnuCopyScatter);
}

void frmLuvaneCorrel::Open() {
  InterpolationState& in = s_.Interp;
  in.InterpCorrelOpen = true;
  {
    const QSignalBlocker quiet(Combo1);
    Combo1->clear();
    for (long k = 6; k <= in.InterpColumnCount; ++k)
      Combo1->addItem(QString::fromStdString(in.InterpParamNames(k)));
    Combo1->setCurrentIndex(0);
  }
  in.InterpCurrentParam = 6;
  Label3->setText(QString());
  if (NeverPlaced(this) && parentWidget()) PlaceBeside(this, parentWidget());
  show();
  raise();
  AutoScale();
  DrawScatterPL();
}

void frmLuvaneCorrel::AutoScale() {
  const AxisRange r = varnoth::AutoScale(s_);
  const QString mn = QString::fromStdString(FormatGeneral(r.Min));
  const QString mx = QString::fromStdString(FormatGeneral(r.Max));
  {
    const QSignalBlocker q0(Text1[0]), q1(Text1[1]);
    Text1[0]->setText(mn);
    Text1[1]->setText(mx);
  }
  Label1[0]->setText(mn);
  Label1[1]->setText(mx);
}

void frmLuvaneCorrel::DrawScatterPL() {
  Surface& pic = Picture3->surface();
  pic.SetBackColour(Qt::white);
  const double a = Text1[0]->text().toDouble(), b = Text1[1]->text().toDouble();
  if (a != b) {
    pic.SetScale(a, b, b - a, a - b);
  } else {
    // A flat column: a range of the value's own power of ten around it.
    const double e = a == 0 ? 0 : std::nearbyint(std::log10(std::abs(a)) + 0.5);
    const double r = std::pow(10.0, e);
    pic.SetScale(a - r / 2, a + r / 2, r, -r);
  }
  pic.StoreBackground();
  // The engine ends where the pairs run out, without a message.
  ScatterPairs pairs;
  try {
    pairs = ScatterPairsPL(s_);
  } catch (const std::exception&) {
  }
  pic.SetFillStyle(FillStyle::Solid);
  pic.SetFillColour(kBlue);
  const double radius = std::abs(pic.ScaleWidth()) / 100;
  for (const ScatterPoint& p : pairs.Points) pic.Circle(p.Estimate, p.Observed, radius, kBlue);
  pic.StoreBackground();
  // The count goes beside "N1 =" of the calibration tool, before the means
  // that a count of 0 cannot form.
  if (pairs.PairCountSet && mat_.Calib()) {
    const std::string n = std::to_string(pairs.Points.size());
    mat_.Calib()->Labels.Label12[1] = n;
    if (mat_.CalibWindow()) mat_.CalibWindow()->Label12[1]->setText(QString::fromStdString(n));
  }
  if (pairs.Correlation) Label3->setText(QString::fromStdString(pairs.CorrelationText));
  Picture3->update();
}

void frmLuvaneCorrel::ShowColumnNamed(const QString& name) {
  InterpolationState& in = s_.Interp;
  for (long k = 6; k <= in.InterpColumnCount; ++k)
    if (QString::fromStdString(in.InterpParamNames(k)) == name)
      in.InterpCurrentParam = static_cast<Count>(k);
  AutoScale();
  DrawScatterPL();
}

void frmLuvaneCorrel::ChooseParameter(const QString& name) {
  boundary_.Run([this, name] {
    ShowColumnNamed(name);
    const QSignalBlocker quiet(mat_.Combo1);
    const int at = mat_.Combo1->findText(name, Qt::MatchExactly);
    if (at >= 0) mat_.Combo1->setCurrentIndex(at);
  });
}

void frmLuvaneCorrel::FollowParameter(const QString& name) {
  boundary_.Run([this, name] {
    {
      const QSignalBlocker quiet(Combo1);
      const int at = Combo1->findText(name, Qt::MatchExactly);
      if (at >= 0) Combo1->setCurrentIndex(at);
    }
    // The reconstruction's lookup has pointed the pairs at the first
    // column: the list's own name decides what is drawn and saved.
    ShowColumnNamed(Combo1->currentText());
  });
}

void frmLuvaneCorrel::MoveOnScatter(double x, double y) {
  boundary_.Run([this, x, y] {
    const Count station = StationUnderPointer(s_, x, y, Picture3->surface().ScaleWidth());
    if (station > 0) Picture3->setToolTip(QString::fromStdString(ScatterToolTip(s_, station)));
  });
}

void frmLuvaneCorrel::SaveMatrix() {
  boundary_.Run([this] {
    const std::optional<std::string> path = dialogs_.SaveFileName(
        kDataFileFilter, "Save the estimated and observed climate of the stations");
    if (!path) return;  // a cancel ends the save quietly
    BarProgress progress(nullptr);
    SaveInterpMatrix(s_, path, progress);
  });
}

bool frmLuvaneCorrel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == Picture3 && event->type() == QEvent::MouseMove) {
    const auto* m = static_cast<QMouseEvent*>(event);
    const QPointF u = Picture3->surface().ToUser(m->position() - QPointF(Picture3->Origin()));
    MoveOnScatter(u.x(), u.y());
  }
  return QMainWindow::eventFilter(watched, event);
}

void frmLuvaneCorrel::closeEvent(QCloseEvent* event) {
  s_.Interp.InterpCorrelOpen = false;
  event->accept();
}

}  // namespace varnoth
