#include "ui/frmCalib.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QStatusBar>

#include "calibration/PairSets.h"
#include "state/Format.h"
#include "ui/Controls.h"
#include "ui/PictureBox.h"
#include "ui/ToolTips.h"
#include "ui/WindowPlacement.h"
#include "ui/frmCC1.h"
#include "ui/frmCC2.h"
#include "ui/frmMAT.h"
#include "ui/frmOutPut2.h"
#include "ui/frmPrintSetup.h"

namespace varnoth {

namespace {

// The designed layout, in pixels: the settings on the left, then the
// eight figures in two rows in the order of the data flow.
constexpr int kPanelWidth = 272;
constexpr int kFigure = 200, kFigureGap = 34, kFiguresLeft = kPanelWidth + 16;
constexpr int kRowTop[2] = {26, 26 + kFigure + 66};

QSlider* MakeSlider(QWidget* parent, const QString& name, Qt::Orientation o, int minimum,
                    int maximum, int value, int page) {
  auto* s = Named(new QSlider(o, parent), name);
  s->setRange(minimum, maximum);
  s->setValue(value);
  s->setSingleStep(1);
  s->setPageStep(page);
  s->setTickPosition(o == Qt::Horizontal ? QSlider::TicksBelow : QSlider::TicksRight);
  s->setTickInterval(std::max(1, (maximum - minimum) / 10));
  return s;
}

QLabel* MakeLabel(QWidget* parent, const QString& name, const QString& text, int x, int y, int w,
                  int h = 18) {
  auto* l = Named(new QLabel(text, parent), name);
  l->setGeometry(x, y, w, h);
  return l;
}

// Figure f (0..7) and its place: Fig.1 and Fig.2 are the scatters.
QRect FigureRect(int f) {
  return QRect(kFiguresLeft + (f % 4) * (kFigure + kFigureGap), kRowTop[f / 4], kFigure, kFigure);
}

}  // namespace

frmCalib::frmCalib(Session& session, CalibState& calib, frmMAT& mat, ColourSettings& colours,
                   Dialogs& dialogs, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      s_(session),
      c_(calib),
      mat_(mat),
      colours_(colours),
      ownDialogs_(dialogs, this),
      dialogs_(ownDialogs_),
      images_(colours, [this] { return ZEnhancement(); }) {
  setObjectName("frmCalib");
  setWindowTitle("Ostrel 3.0");
  setAttribute(Qt::WA_QuitOnClose, false);
  BuildControls();
  BuildMenus();
  ConnectEvents();
  StatusNext = NextStepLine(this, [this] { return NextStep(); });
  progress_.SetBar(ProgressBar1);
  connect(qApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow* now) {
    if (now && now != windowHandle()) lastOther_ = now;
  });
  // The controls stand at fixed places: the client area holds them all, and
  // the window adds its menu and status bars to that.
  ExplainControls(this);
  centralWidget()->setMinimumSize(ContentsSize());
  resize(minimumSizeHint());
}

QRect frmCalib::SettingsArea() const {
  return QRect(centralWidget()->mapTo(this, QPoint(0, 0)),
               QSize(kPanelWidth, centralWidget()->height()));
}

QSize frmCalib::ContentsSize() const {
  QRect all;
  for (const QWidget* c : centralWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
    all |= c->geometry();
  return QSize(all.right() + 8, all.bottom() + 8);
}

frmCalib::~frmCalib() = default;

double frmCalib::ZEnhancement() const { return mat_.ZEnhancement(); }
void frmCalib::SetZEnhancement(double z) { mat_.SetZEnhancement(z); }

void frmCalib::BuildControls() {
  auto* w = new QWidget(this);
  w->setObjectName("central");
  setCentralWidget(w);
  const int x = 8, cw = kPanelWidth - 8;

  Command1[0] = Named(new QPushButton("Import Vrec-Vest file", w), "Command1_0");
  Command1[0]->setGeometry(x, 6, cw, 26);
  Label8 = MakeLabel(w, "Label8", "N1 =", x, 36, 36);
  Label12[0] = MakeLabel(w, "Label12_0", QString(), x + 38, 36, 70);
  Label9 = MakeLabel(w, "Label9", "R1 =", x + 120, 36, 36);
  Label13[0] = MakeLabel(w, "Label13_0", QString(), x + 158, 36, 100);
  Label21[0] = MakeLabel(w, "Label21_0", QString(), x, 56, cw);

  Command1[1] = Named(new QPushButton("Import Vest-Vobs file", w), "Command1_1");
  Command1[1]->setGeometry(x, 80, cw, 26);
  Label10 = MakeLabel(w, "Label10", "N2 =", x, 110, 36);
  Label12[1] = MakeLabel(w, "Label12_1", QString(), x + 38, 110, 70);
  Label11 = MakeLabel(w, "Label11", "R2 =", x + 120, 110, 36);
  Label13[1] = MakeLabel(w, "Label13_1", QString(), x + 158, 110, 100);
  Label21[1] = MakeLabel(w, "Label21_1", QString(), x, 130, cw);
  Label16 = MakeLabel(w, "Label16", "Fitting line:", x, 152, 80);
  Label17 = MakeLabel(w, "Label17", QString(), x + 82, 152, cw - 82);
  Label18 = MakeLabel(w, "Label18", "Std.Dev. =", x, 172, 80);
  Label19 = MakeLabel(w, "Label19", QString(), x + 82, 172, cw - 82);
  Check1 = Named(new QCheckBox("Show fitting line", w), "Check1");
  Check1->setGeometry(x, 194, 130, 20);
  Check4 = Named(new QCheckBox("Generate model", w), "Check4");
  Check4->setGeometry(x + 134, 194, 130, 20);
  Slider4 = MakeSlider(w, "Slider4", Qt::Vertical, 1, 20, 5, 1);
  Slider4->setInvertedAppearance(true);
  Slider4->setGeometry(x + 134, 216, 26, 70);
  MakeLabel(w, "Label25", "Std.Dev.:", x + 164, 218, 100);
  Label22 = MakeLabel(w, "Label22", "Std.Dev.: ", x + 164, 238, 100, 36);
  Label22->setWordWrap(true);

  MakeLabel(w, "Label26", "Min", x, 222, 40);
  MakeLabel(w, "Label27", "Max", x + 66, 222, 40);
  Text1 = Named(new QLineEdit(w), "Text1");
  Text1->setGeometry(x, 240, 60, 24);
  Text2 = Named(new QLineEdit(w), "Text2");
  Text2->setGeometry(x + 66, 240, 60, 24);

  MakeLabel(w, "Label28", "Smoothing level:", x, 294, 110);
  Slider3 = MakeSlider(w, "Slider3", Qt::Horizontal, 1, 20, 10, 1);
  Slider3->setGeometry(x + 110, 292, 120, 24);
  Label7 = MakeLabel(w, "Label7", "10", x + 234, 294, 30);
  MakeLabel(w, "Label29", "(Basal width: % of range)", x, 314, cw);

  MakeLabel(w, "Label30", "Confidence coefficients (%)", x, 338, cw);
  Slider1 = MakeSlider(w, "Slider1", Qt::Horizontal, 0, 1000, 682, 50);
  Slider1->setGeometry(x, 356, 200, 24);
  Label4[0] = MakeLabel(w, "Label4_0", "68.2", x + 206, 358, 56);
  Slider2 = MakeSlider(w, "Slider2", Qt::Horizontal, 0, 1000, 954, 50);
  Slider2->setGeometry(x, 382, 200, 24);
  Label4[1] = MakeLabel(w, "Label4_1", "95.4", x + 206, 384, 56);
  for (QLabel* l : Label4) {
    l->setToolTip("Double click to type a coefficient");
    l->installEventFilter(this);
  }

  Slider5 = MakeSlider(w, "Slider5", Qt::Vertical, 0, 10, 2, 1);
  Slider5->setInvertedAppearance(true);
  Slider5->setGeometry(x, 412, 26, 80);
  Label23 = MakeLabel(w, "Label23", "Threshold: 2 sample(s)", x + 30, 440, 120, 36);
  Label23->setWordWrap(true);
  Slider6 = MakeSlider(w, "Slider6", Qt::Horizontal, 0, 10, 1, 1);
  Slider6->setGeometry(x + 134, 414, 128, 24);
  Label24 = MakeLabel(w, "Label24", "Threshold: 1 sample(s)", x + 134, 440, 128);
  Check5 = Named(new QCheckBox("Skip", w), "Check5");
  Check5->setGeometry(x + 134, 462, 120, 20);

  Check2 = Named(new QCheckBox("Show mode", w), "Check2");
  Check2->setGeometry(x, 498, 120, 20);
  Check6 = Named(new QCheckBox("Show ave.", w), "Check6");
  Check6->setGeometry(x + 134, 498, 120, 20);

  Command3 = Named(new QPushButton("Start", w), "Command3");
  Command3->setGeometry(x, 524, 84, 28);
  Command10 = Named(new QPushButton("Return", w), "Command10");
  Command10->setGeometry(x + 90, 524, 84, 28);
  Command2 = Named(new QPushButton("Close", w), "Command2");
  Command2->setGeometry(x + 180, 524, 84, 28);

  ProgressBar1 = Named(new QProgressBar(w), "ProgressBar1");
  ProgressBar1->setRange(0, 250);
  ProgressBar1->setGeometry(kFiguresLeft, kRowTop[1] + kFigure + 28, 4 * kFigure, 14);
  ProgressBar1->setTextVisible(false);
  ProgressBar1->setVisible(false);

  static const char* kFigNames[] = {"Fig.1", "Fig.2", "Fig.3", "Fig.4",
                                    "Fig.5", "Fig.6", "Fig.7", "Fig.8"};
  for (int f = 0; f < 8; ++f) {
    const QString name = f < 2 ? QString("Picture1_%1").arg(f) : QString("Picture2_%1").arg(f - 2);
    auto* p = new PictureBox(name, QSize(kFigure, kFigure), false, w);
    p->setObjectName(name);
    p->setGeometry(FigureRect(f));
    p->setMouseTracking(true);
    p->installEventFilter(this);
    p->surface().Resize(kFigure, kFigure);
    p->surface().SetScale(0, 0, kCalibCanvas, kCalibCanvas);
    if (f < 2)
      Picture1[static_cast<std::size_t>(f)] = p;
    else
      Picture2[static_cast<std::size_t>(f - 2)] = p;
    const QRect r = FigureRect(f);
    MakeLabel(w, QString("Caption%1").arg(f + 1), kFigNames[f], r.x(), r.y() - 18, 60);
    Label1[static_cast<std::size_t>(f)] =
        MakeLabel(w, QString("Label1_%1").arg(f), QString(), r.x(), r.bottom() + 2, 80);
    Label2[static_cast<std::size_t>(f)] =
        MakeLabel(w, QString("Label2_%1").arg(f), QString(), r.right() - 79, r.bottom() + 2, 80);
    Label2[static_cast<std::size_t>(f)]->setAlignment(Qt::AlignRight);
    if (f < 2) {
      // The names of the pair set's columns: x under, y over the scatter.
      Label14[static_cast<std::size_t>(f)] =
          MakeLabel(w, QString("Label14_%1").arg(f), QString(), r.x(), r.bottom() + 20, kFigure);
      Label14[static_cast<std::size_t>(f)]->setAlignment(Qt::AlignHCenter);
      Label15[static_cast<std::size_t>(f)] = MakeLabel(w, QString("Label15_%1").arg(f), QString(),
                                                       r.x() + 44, r.y() - 18, kFigure - 44);
    }
  }
  // The value axes of Fig.1 to Fig.6 also stand on their left side.
  for (int i = 8; i < 14; ++i) {
    const QRect r = FigureRect(i - 8);
    Label1[static_cast<std::size_t>(i)] =
        MakeLabel(w, QString("Label1_%1").arg(i), QString(), r.x() - kFigureGap + 2,
                  r.bottom() - 16, kFigureGap - 4);
    Label2[static_cast<std::size_t>(i)] = MakeLabel(w, QString("Label2_%1").arg(i), QString(),
                                                    r.x() - kFigureGap + 2, r.y(), kFigureGap - 4);
  }
  // The scale factors beside Fig.3 to Fig.6.
  static const char* kFactors[] = {"1", "1", "0.75", "1.25"};
  for (int i = 0; i < 4; ++i) {
    const QRect r = FigureRect(i + 2);
    Label5[static_cast<std::size_t>(i)] =
        MakeLabel(w, QString("Label5_%1").arg(i), kFactors[i], r.right() - 40, r.y() - 18, 40);
    Label5[static_cast<std::size_t>(i)]->setAlignment(Qt::AlignRight);
  }
  StatusLabel = new QLabel("X: / Y: ");
  StatusLabel->setObjectName("StatusLabel");
  statusBar()->addPermanentWidget(StatusLabel);
  StatusLabel->setMinimumWidth(300);
}

void frmCalib::BuildMenus() {
  File = menuBar()->addMenu("File(&F)");
  File->setObjectName("File");
  SaveMatrix = File->addMenu("&Save Matrix");
  SaveMatrix->setObjectName("SaveMatrix");
  mnuCommonOutput = Entry(this, "mnuCommonOutput", "Ostrel common output format");
  SaveMatrix->addAction(mnuCommonOutput);
  Ostrel20output = SaveMatrix->addMenu("Ostrel 2.0 output format");
  Ostrel20output->setObjectName("Ostrel20output");
  ProbabilityDistribution = Entry(this, "ProbabilityDistribution", "Probability Distribution");
  ConfidenceRegions = Entry(this, "ConfidenceRegions", "Confidence Regions");
  Ostrel20output->addActions({ProbabilityDistribution, ConfidenceRegions});
  PrintOptionsEntry = Entry(this, "PrintOptions", "Print Options");
  PrintAllEntry = Entry(this, "PrintAll", "&Print");
  Quit = Entry(this, "Quit", "&Quit");
  File->addActions({PrintOptionsEntry, PrintAllEntry});
  File->addSeparator();
  File->addAction(Quit);

  Edit = menuBar()->addMenu("Edit(&E)");
  Edit->setObjectName("Edit");
  ColourSetting = Entry(this, "ColourSetting", "Colour Settings");
  Edit->addAction(ColourSetting);
  Copy = Edit->addMenu("&Copy");
  Copy->setObjectName("Copy");
  for (int f = 1; f <= 8; ++f) {
    CopyFig[static_cast<std::size_t>(f)] =
        Entry(this, QString("CopyFig%1").arg(f), QString("Fig.&%1").arg(f));
    Copy->addAction(CopyFig[static_cast<std::size_t>(f)]);
  }
  About = menuBar()->addMenu("About(&A)");
  About->setObjectName("About");
  mnuAbout = Entry(this, "mnuAbout", "&About Ostrel 3.0");
  About->addAction(mnuAbout);

  for (int f = 1; f <= 8; ++f) {
    auto* m = new QMenu(this);
    m->setObjectName(QString("Fig%1").arg(f));
    Fig[static_cast<std::size_t>(f)] = m;
    CopyN[static_cast<std::size_t>(f)] = Entry(this, QString("Copy%1").arg(f), "Copy");
    m->addAction(CopyN[static_cast<std::size_t>(f)]);
  }
  SaveMartixProb = Entry(this, "SaveMartixProb", "Save Matrix");
  DetailProb = Entry(this, "DetailProb", "Detail");
  Fig[7]->addActions({SaveMartixProb, DetailProb});
  SaveMatrixConfi = Entry(this, "SaveMatrixConfi", "Save Matrix");
  DetailConfi = Entry(this, "DetailConfi", "Detail");
  Fig[8]->addActions({SaveMatrixConfi, DetailConfi});
}

void frmCalib::Open() {
  if (!loaded_) {
    Load();
  } else if (Text1->text() != mat_.Text1->text() || Text2->text() != mat_.Text2->text()) {
    // The range boxes take the reconstruction window's limits at each opening.
    {
      const QSignalBlocker q1(Text1), q2(Text2);
      Text1->setText(mat_.Text1->text());
      Text2->setText(mat_.Text2->text());
    }
    boundary_.Run([this] {
      SetRange();
      chRangeRedraw();
    });
  }
  if (NeverPlaced(this)) PlaceBeside(this, &mat_);
  show();
  raise();
  activateWindow();
  boundary_.Run([this] { Activate(); });
}

void frmCalib::Load() {
  loaded_ = true;
  const QSignalBlocker q1(Slider1), q2(Slider2), q3(Slider3), q4(Slider4), q5(Slider5), q6(Slider6);
  Slider1->setValue(682);
  Slider2->setValue(954);
  Label4[0]->setText("68.2");
  Label4[1]->setText("95.4");
  Slider3->setValue(10);
  Label7->setText("10");
  Slider4->setValue(5);
  Slider4->setEnabled(false);
  Slider5->setValue(2);
  Slider6->setValue(1);
  Label23->setText("Threshold: 2 sample(s)");
  Label24->setText("Threshold: 1 sample(s)");
  for (QCheckBox* b : {Check1, Check2, Check4, Check5, Check6}) {
    const QSignalBlocker quiet(b);
    b->setChecked(false);
  }
  // Loaded afresh: no pair file and no model of an earlier opening.
  c_.PairRows[1] = 0;
  c_.Labels = PairLabelsShown{};
  c_.StoredLabel12.clear();
  c_.ReturnEnabled = c_.CalibReady = false;
  Command1[1]->setEnabled(true);
  for (int i : {1, 2}) {
    Label1[static_cast<std::size_t>(i)]->setEnabled(true);
    Label2[static_cast<std::size_t>(i)]->setEnabled(true);
  }
  Check2->setEnabled(false);
  Check6->setEnabled(false);
  Command3->setEnabled(false);
  Command10->setEnabled(false);
  Label22->setVisible(false);
  for (QAction* a : {mnuCommonOutput, ProbabilityDistribution, ConfidenceRegions})
    a->setEnabled(false);
  // The range comes from the reconstruction window's boxes.
  Text1->setText(mat_.Text1->text());
  Text2->setText(mat_.Text2->text());
  c_.Text1 = Text1->text().toStdString();
  c_.Text2 = Text2->text().toStdString();
  c_.LastText1 = c_.Text1;
  c_.LastText2 = c_.Text2;
  c_.PictDrawn = {};
  c_.CalibToolOpen = true;
  colours_.PaletteChanged = false;
  print_ = PrintOptions{};
  for (int f = 0; f < 8; ++f)
    ClearFigure(f < 2 ? Picture1[static_cast<std::size_t>(f)]
                      : Picture2[static_cast<std::size_t>(f - 2)]);
  boundary_.Run([this] {
    SetRange();
    TransferData();
  });
  EnableMenus();
}

void frmCalib::Activate() {
  if (check3_ || colours_.PaletteChanged) {
    ResetColour();
    colours_.PaletteChanged = false;
    check3_ = false;
  }
  // Coming back from the tool's own chart or dialogs keeps them: the chart
  // is read beside the figures. From elsewhere they are closed.
  if (!ComingFromOwnWindow()) UnloadSecondary();
  c_.CalibToolOpen = true;
  // Pairs are taken only from an error model of the present settings.
  if (!c_.PictDrawn[1] && s_.ErrorModelReady) TransferData();
  if (c_.PictDrawn[1] && (c_.PictDrawn[2] || Check4->isChecked()) && !c_.PictDrawn[8])
    Command3->setEnabled(true);
}

QString frmCalib::NextStep() const {
  if (!c_.PictDrawn[1])
    return "Fig.1 needs pairs of reconstructed and estimated values: Import Vrec-Vest file, or "
           "open the tool after Generate error model";
  if (!c_.PictDrawn[2] && !Check4->isChecked())
    return "Next, the error model: Import Vest-Vobs file, or tick Generate model";
  if (!c_.PictDrawn[8]) return "Next: Start runs the calibration (Fig.4 to Fig.8)";
  return "Calibrated. Click Fig.7 or Fig.8 for the chart; Return hands the matrix to the "
         "reconstruction";
}

bool frmCalib::ComingFromOwnWindow() const {
  if (!lastOther_) return false;
  for (QWidget* w : std::initializer_list<QWidget*>{chart_.get(), cc1_.get(), cc2_.get()})
    if (w && w->windowHandle() == lastOther_) return true;
  return false;
}

void frmCalib::UnloadSecondary() {
  for (QWidget* w : std::initializer_list<QWidget*>{chart_.get(), cc1_.get(), cc2_.get()})
    if (w) w->close();
  if (QWidget* about = findChild<QWidget*>("frmAbout", Qt::FindDirectChildrenOnly)) about->close();
}

void frmCalib::ShowLabels() {
  const PairLabelsShown& l = c_.Labels;
  for (int k = 0; k < 2; ++k) {
    const auto i = static_cast<std::size_t>(k);
    Label12[i]->setText(QString::fromStdString(l.Label12[i]));
    Label13[i]->setText(QString::fromStdString(l.Label13[i]));
    Label14[i]->setText(QString::fromStdString(l.Label14[i]));
    Label15[i]->setText(QString::fromStdString(l.Label15[i]));
    Label21[i]->setText(QString::fromStdString(l.Label21[i]));
  }
  Label17->setText(QString::fromStdString(l.Label17));
  Label19->setText(QString::fromStdString(l.Label19));
}

void frmCalib::EnableMenus() {
  const bool p7 = c_.PictDrawn[7], p8 = c_.PictDrawn[8];
  ProbabilityDistribution->setEnabled(p7);
  SaveMartixProb->setEnabled(p7);
  DetailProb->setEnabled(p7);
  ConfidenceRegions->setEnabled(p8);
  mnuCommonOutput->setEnabled(p8);
  SaveMatrixConfi->setEnabled(p8);
  DetailConfi->setEnabled(p8);
  for (int f = 1; f <= 8; ++f) {
    const bool drawn = c_.PictDrawn[static_cast<std::size_t>(f)];
    CopyFig[static_cast<std::size_t>(f)]->setEnabled(drawn);
    CopyN[static_cast<std::size_t>(f)]->setEnabled(drawn);
  }
}

void frmCalib::closeEvent(QCloseEvent* event) {
  UnloadSecondary();
  c_.CalibToolOpen = false;
  // Closing unloads the tool: the next opening loads it and takes the
  // pairs of the parameter shown then.
  loaded_ = false;
  event->accept();
}

void frmCalib::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() != QEvent::ActivationChange || !loaded_ || !isVisible()) return;
  if (isActiveWindow())
    boundary_.Run([this] { Activate(); });
  else
    boundary_.Run([this] { Deactivated(); });
}

void frmCalib::Deactivated() {
  const double t1 = LenientParse(Text1->text().toStdString()),
               t2 = LenientParse(Text2->text().toStdString());
  if (t1 != LenientParse(c_.LastText1) || t2 != LenientParse(c_.LastText2)) {
    // A generated model is made again for the new range.
    if (c_.PictDrawn[1])
      chRangeRedraw();
    else
      ResetRange();
  }
  SetRange();
}

bool frmCalib::eventFilter(QObject* watched, QEvent* event) {
  for (QLabel* l : Label4)
    if (watched == l && event->type() == QEvent::MouseButtonDblClick) {
      const bool first = l == Label4[0];
      boundary_.Run([this, first] {
        if (first) {
          cc1_ = std::make_unique<frmCC1>(*this);
          cc1_->Open();
        } else {
          cc2_ = std::make_unique<frmCC2>(*this);
          cc2_->Open();
        }
      });
      return true;
    }
  if (event->type() == QEvent::MouseMove)
    if (auto* p = qobject_cast<PictureBox*>(watched)) {
      auto* e = static_cast<QMouseEvent*>(event);
      Hover(p, p->surface().ToUser(e->position() - QPointF(p->Origin())));
    }
  if (event->type() == QEvent::KeyPress && (watched == Text1 || watched == Text2)) {
    auto* e = static_cast<QKeyEvent*>(event);
    if (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) {
      (watched == Text1 ? Text2 : Text1)->setFocus();
      return true;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

void frmCalib::Hover(PictureBox* p, const QPointF& at) {
  int f = -1;
  for (int i = 0; i < 2; ++i)
    if (Picture1[static_cast<std::size_t>(i)] == p) f = i + 1;
  for (int i = 0; i < 6; ++i)
    if (Picture2[static_cast<std::size_t>(i)] == p) f = i + 3;
  if (f < 0 || !c_.PictDrawn[static_cast<std::size_t>(f)]) {
    StatusLabel->setText("X: / Y: ");
    return;
  }
  const double t1 = LenientParse(c_.LastText1), t2 = LenientParse(c_.LastText2);
  const double x = t1 + (t2 - t1) * at.x() / kCalibCanvas;
  const double y = t1 + (t2 - t1) * (kCalibCanvas - at.y()) / kCalibCanvas;
  QString text = QString::fromStdString("X: " + RoundedText(x, 2) + " / Y: " + RoundedText(y, 2));
  if (f <= 2) {
    const auto k = static_cast<std::size_t>(f - 1);
    text = QString::fromStdString(c_.Labels.Label14[k] + " X: " + RoundedText(x, 2) + " / " +
                                  c_.Labels.Label15[k] + " Y: " + RoundedText(y, 2));
  }
  StatusLabel->setText(text);
}

}  // namespace varnoth
