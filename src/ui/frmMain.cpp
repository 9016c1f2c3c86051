#include "ui/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSlider>
#include <QVBoxLayout>
#include <cmath>
#include <numbers>

#include "ui/Controls.h"
#include "ui/PictureBox.h"
#include "ui/ToolTips.h"
#include "ui/WindowPlacement.h"
#include "ui/frmAbout1.h"
#include "ui/frmColor.h"
#include "ui/frmControl.h"
#include "ui/frmCorrelVar.h"
#include "ui/frmDiagram.h"
#include "ui/frmECC.h"
#include "ui/frmMAT.h"
#include "ui/frmTest.h"

namespace varnoth {

namespace {

constexpr int kPictureSide = 300;

QPushButton* Button(QWidget* parent, const QString& name, const QString& caption) {
  auto* b = new QPushButton(caption, parent);
  b->setObjectName(name);
  return b;
}

QGroupBox* Frame(QWidget* parent, const QString& name, const QString& caption) {
  auto* f = new QGroupBox(caption, parent);
  f->setObjectName(name);
  return f;
}

}  // namespace

frmMain::frmMain(Session& session, ColourSettings& colours, Dialogs& dialogs, QWidget* parent)
    : QMainWindow(parent), s_(session), colours_(colours), dialogs_(dialogs) {
  setObjectName("frmMain");
  setWindowTitle("Varnoth");
  endProgram_ = [] { QCoreApplication::quit(); };
  dialogs_.SetOwner(this);  // dialogs of the other windows stand over those
  BuildControls();
  BuildMenus();
  BuildPopups();
  StartValues();
  ConnectEvents();
  BuildStatusLine();
  BuildShortcuts();
  ExplainControls(this);
  // Figures of a readable size where the screen allows, and room to the
  // right of the window for the panels and tools it opens.
  QSize size(840, 720);
  if (const QScreen* screen = QGuiApplication::primaryScreen())
    size = size.boundedTo(screen->availableSize());
  resize(size.expandedTo(minimumSizeHint()));
}

frmMain::~frmMain() {
  // The windows without a parent go with the main window.
  delete mat_.data();
  delete correlVar_.data();
  delete color_.data();
  delete control_.data();
  delete ecc_.data();  // it holds on to the diagram
  delete diagram_.data();
}

QWidget* frmMain::BuildListFrame(QGroupBox*& frame, const QString& name, const QString& caption,
                                 std::array<QRadioButton*, 3>& options, QButtonGroup*& group,
                                 QComboBox*& combo, std::array<QPushButton*, 2>& stepping,
                                 const QString& comboName, const QString& steppingName) {
  frame = Frame(this, name, caption);
  auto* grid = new QGridLayout(frame);
  grid->setVerticalSpacing(2);
  group = new QButtonGroup(frame);
  const char* captions[3] = {"Show all", "Sequential", "Hide"};
  const QString optionName = name == "Frame3"   ? "Option2"
                             : name == "Frame4" ? "Option3"
                                                : "Option5";
  for (int i = 0; i < 3; ++i) {
    options[static_cast<std::size_t>(i)] = new QRadioButton(captions[i], frame);
    options[static_cast<std::size_t>(i)]->setObjectName(optionName + "_" + QString::number(i));
    group->addButton(options[static_cast<std::size_t>(i)], i);
    grid->addWidget(options[static_cast<std::size_t>(i)], 0, i);
  }
  combo = new QComboBox(frame);
  combo->setObjectName(comboName);
  combo->setMinimumContentsLength(10);
  combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  grid->addWidget(combo, 1, 0, 1, 3);
  auto* row = new QHBoxLayout;
  stepping[0] = Button(frame, steppingName + "_0", "Prev.");
  stepping[1] = Button(frame, steppingName + "_1", "Next");
  row->addWidget(stepping[0]);
  row->addWidget(stepping[1]);
  grid->addLayout(row, 2, 0, 1, 3);
  return frame;
}

QWidget* frmMain::BuildDisplayFrame() {
  Frame5 = Frame(this, "Frame5", " Display mode");
  auto* grid = new QGridLayout(Frame5);
  grid->setVerticalSpacing(3);
  group4_ = new QButtonGroup(Frame5);
  Option4[0] = new QRadioButton("2-D", Frame5);
  Option4[0]->setObjectName("Option4_0");
  Option4[1] = new QRadioButton("3-D", Frame5);
  Option4[1]->setObjectName("Option4_1");
  group4_->addButton(Option4[0], 0);
  group4_->addButton(Option4[1], 1);
  grid->addWidget(Option4[0], 0, 0);
  grid->addWidget(Option4[1], 0, 1);

  Check1 = new QCheckBox("Stereo", Frame5);
  Check1->setObjectName("Check1");
  Check4 = new QCheckBox("Tick / Label", Frame5);
  Check4->setObjectName("Check4");
  Check2 = new QCheckBox("Pause", Frame5);
  Check2->setObjectName("Check2");
  Check3 = new QCheckBox("Reverse", Frame5);
  Check3->setObjectName("Check3");
  grid->addWidget(Check1, 1, 0);
  grid->addWidget(Check4, 1, 1);
  grid->addWidget(Check2, 2, 0);
  grid->addWidget(Check3, 2, 1);

  Label[0] = Caption(Frame5, "Label_0", "Rotate");
  Slider2[1] = Slider(Frame5, "Slider2_1", -180, 180, 0);
  Slider2[1]->setTickInterval(45);
  Label[1] = Caption(Frame5, "Label_1", "Tilt");
  Slider2[2] = Slider(Frame5, "Slider2_2", 0, 90, 15);
  Slider2[2]->setTickInterval(15);
  Label3 = Caption(Frame5, "Label3", "Velocity");
  Slider3 = Slider(Frame5, "Slider3", 0, 100, 40);
  grid->addWidget(Label[0], 3, 0);
  grid->addWidget(Slider2[1], 3, 1);
  grid->addWidget(Label[1], 4, 0);
  grid->addWidget(Slider2[2], 4, 1);
  grid->addWidget(Label3, 5, 0);
  grid->addWidget(Slider3, 5, 1);

  group6_ = new QButtonGroup(Frame5);
  Option6[0] = new QRadioButton("Automatic change", Frame5);
  Option6[0]->setObjectName("Option6_0");
  Option6[1] = new QRadioButton("Manual change", Frame5);
  Option6[1]->setObjectName("Option6_1");
  group6_->addButton(Option6[0], 0);
  group6_->addButton(Option6[1], 1);
  grid->addWidget(Option6[0], 6, 0, 1, 2);
  grid->addWidget(Option6[1], 7, 0, 1, 2);
  Label7 = Caption(Frame5, "Label7", "Interval (sec.)");
  Slider5 = Slider(Frame5, "Slider5", 1, 15, 5);
  grid->addWidget(Label7, 8, 0);
  grid->addWidget(Slider5, 8, 1);
  auto* row = new QHBoxLayout;
  Command4[0] = Button(Frame5, "Command4_0", "Prev.");
  Command4[1] = Button(Frame5, "Command4_1", "Next");
  row->addWidget(Command4[0]);
  row->addWidget(Command4[1]);
  grid->addLayout(row, 9, 0, 1, 2);
  return Frame5;
}

void frmMain::BuildControls() {
  auto* central = new QWidget(this);
  central->setObjectName("central");
  setCentralWidget(central);
  auto* outer = new QVBoxLayout(central);
  outer->setContentsMargins(6, 6, 6, 4);
  auto* columns = new QHBoxLayout;
  outer->addLayout(columns, 1);

  // The figures: Fig1 above Fig2, each with its stereo partner beside it.
  auto* figures = new QGridLayout;
  figures->setSpacing(4);
  for (int i = 0; i < 2; ++i) {
    picture1_[static_cast<std::size_t>(i)] = new PictureBox(
        QString("Picture1_%1").arg(i), QSize(kPictureSide, kPictureSide), true, central);
    picture2_[static_cast<std::size_t>(i)] = new PictureBox(
        QString("Picture2_%1").arg(i), QSize(kPictureSide, kPictureSide), true, central);
    figures->addWidget(picture1_[static_cast<std::size_t>(i)], 0, i);
    figures->addWidget(picture2_[static_cast<std::size_t>(i)], 1, i);
  }
  picture3_ = new PictureBox("Picture3", QSize(2 * kPictureSide, 20), false, central);
  picture3_->setMinimumSize(kPictureSide, 20);
  picture3_->setMaximumSize(QWIDGETSIZE_MAX, 20);
  picture3_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  figures->addWidget(picture3_, 2, 0, 1, 2);
  auto* labels = new QHBoxLayout;
  // Written by the sites figure once there is one.
  Label8 = Caption(central, "Label8", QString());
  Label9 = Caption(central, "Label9", QString());
  labels->addWidget(Label8);
  labels->addSpacing(20);
  labels->addWidget(Label9);
  labels->addStretch(1);
  figures->addLayout(labels, 3, 0, 1, 2);
  figures->setRowStretch(0, 1);
  figures->setRowStretch(1, 1);
  columns->addLayout(figures, 1);

  // First panel: the EOF analysis and the display mode.
  auto* panelA = new QVBoxLayout;
  Frame7 = Frame(central, "Frame7", " EOF analysis");
  {
    auto* grid = new QGridLayout(Frame7);
    Command5 = Button(Frame7, "Command5", "Import reference data");
    Command6 = Button(Frame7, "Command6", "Import fossil data");
    Command3 = Button(Frame7, "Command3", "Axis settings");
    Label6 = Caption(Frame7, "Label6", "MoreAxis: No");
    LabelRange = Caption(Frame7, "LabelRange", "Range");
    Slider4 = Slider(Frame7, "Slider4", 0, 8, 2);
    Slider4->setTickInterval(1);
    grid->addWidget(Command5, 0, 0, 1, 2);
    grid->addWidget(Command6, 1, 0, 1, 2);
    grid->addWidget(Command3, 2, 0);
    grid->addWidget(Label6, 2, 1);
    grid->addWidget(LabelRange, 3, 0);
    grid->addWidget(Slider4, 3, 1);
  }
  panelA->addWidget(Frame7);
  panelA->addWidget(BuildDisplayFrame());
  panelA->addStretch(1);
  columns->addLayout(panelA);

  // Second panel: the three lists, the envelope and the tools.
  auto* panelB = new QVBoxLayout;
  panelB->addWidget(BuildListFrame(Frame3, "Frame3", " Taxa", Option2, group2_, Combo3, Command1,
                                   "Combo3", "Command1"));
  panelB->addWidget(BuildListFrame(Frame4, "Frame4", " Reference sites", Option3, group3_, Combo4,
                                   Command2, "Combo4", "Command2"));
  panelB->addWidget(BuildListFrame(Frame6, "Frame6", " Fossil data", Option5, group5_, Combo1,
                                   Command13, "Combo1", "Command13"));
  Frame2 = Frame(central, "Frame2", " Envelope analysis");
  {
    auto* grid = new QGridLayout(Frame2);
    Command11 = Button(Frame2, "Command11", "Envelop");
    Label4 = Caption(Frame2, "Label4", "0.1");
    Label4->setAlignment(Qt::AlignCenter);
    Label1 = Caption(Frame2, "Label1", "Tight");
    Label2 = Caption(Frame2, "Label2", "Loose");
    Slider1 = Slider(Frame2, "Slider1", 0, 10, 1);
    Slider1->setTickInterval(1);
    grid->addWidget(Command11, 0, 0, 1, 3);
    grid->addWidget(Label4, 1, 1);
    grid->addWidget(Label1, 2, 0);
    grid->addWidget(Slider1, 2, 1);
    grid->addWidget(Label2, 2, 2);
  }
  panelB->addWidget(Frame2);
  auto* tools = new QGridLayout;
  Command14 = Button(central, "Command14", "Diagram");
  Command8 = Button(central, "Command8", "Reconstruction");
  Command9 = Button(central, "Command9", "Test");
  Command7 = Button(central, "Command7", "Quit");
  tools->addWidget(Command14, 0, 0);
  tools->addWidget(Command8, 0, 1);
  tools->addWidget(Command9, 1, 0);
  tools->addWidget(Command7, 1, 1);
  panelB->addLayout(tools);
  panelB->addStretch(1);
  columns->addLayout(panelB);

  ProgressBar1 = new QProgressBar(central);
  ProgressBar1->setObjectName("ProgressBar1");
  ProgressBar1->setTextVisible(false);
  ProgressBar1->setFixedHeight(14);
  outer->addWidget(ProgressBar1);
  progressBar1_ = ProgressBar1;
  progress_.SetBar(ProgressBar1);
}

void frmMain::BuildMenus() {
  QMenu* file = menuBar()->addMenu("File(&F)");
  file->setObjectName("mnuFile");
  QMenu* save = file->addMenu("&Save");
  save->setObjectName("mnuSave");
  mnuSaveL = Entry(this, "mnuSaveL", "&Loading");
  mnuSaveS = Entry(this, "mnuSaveS", "Score (&Reference)");
  mnuSaveF = Entry(this, "mnuSaveF", "Score (&Fossil)");
  save->addAction(mnuSaveL);
  save->addAction(mnuSaveS);
  save->addAction(mnuSaveF);
  mnuOpenExample = Entry(this, "mnuOpenExample", "Open &Example Data");
  file->addAction(mnuOpenExample);
  mnuQuit = Entry(this, "mnuQuit", "&Quit");
  file->addAction(mnuQuit);

  QMenu* edit = menuBar()->addMenu("Edit(&E)");
  edit->setObjectName("mnuEdit");
  mnuControl = Entry(this, "mnuControl", "&Axis Settings");
  edit->addAction(mnuControl);

  QMenu* colour = menuBar()->addMenu("&Colour Settings");
  colour->setObjectName("mnuColorSettings");
  mnuColor = Entry(this, "mnuColor", "&Colour");
  mnuGrey = Entry(this, "mnuGrey", "&Grey");
  mnuColor->setCheckable(true);
  mnuGrey->setCheckable(true);
  colour->addAction(mnuColor);
  colour->addAction(mnuGrey);

  QMenu* about = menuBar()->addMenu("About Varnoth(&A)");
  about->setObjectName("mnuAboutVarnoth");
  mnuAbout = Entry(this, "mnuAbout", "&About Varnoth 2.3");
  about->addAction(mnuAbout);
}

void frmMain::BuildPopups() {
  auto popup = [this](const QString& name, const QString& title) {
    auto* m = new QMenu(title, this);
    m->setObjectName(name);
    return m;
  };
  mnuFig1L = popup("mnuFig1L", "Fig1(0)");
  mnuCopy1L = Entry(this, "mnuCopy1L", "&Copy");
  mnuSaveL2 = Entry(this, "mnuSaveL2", "&Save Matrix");
  mnuFig1L->addAction(mnuCopy1L);
  mnuFig1L->addAction(mnuSaveL2);
  mnuFig1R = popup("mnuFig1R", "Fig1(1)");
  mnuCopy1R = Entry(this, "mnuCopy1R", "&Copy");
  mnuFig1R->addAction(mnuCopy1R);
  mnuFig2L = popup("mnuFig2L", "Fig2(0)");
  mnuCopy2L = Entry(this, "mnuCopy2L", "&Copy");
  mnuSaveS2 = Entry(this, "mnuSaveS2", "Save Matrix (&Reference)");
  mnuSaveF2 = Entry(this, "mnuSaveF2", "Save Matrix (&Fossil)");
  mnuFig2L->addAction(mnuCopy2L);
  mnuFig2L->addAction(mnuSaveS2);
  mnuFig2L->addAction(mnuSaveF2);
  mnuFig2R = popup("mnuFig2R", "Fig2(1)");
  mnuCopy2R = Entry(this, "mnuCopy2R", "Copy");
  mnuFig2R->addAction(mnuCopy2R);
  AddPictureFiles();
}

void frmMain::StartValues() {
  // 1. Correlation by default; colour mode; small figure text.
  s_.UseCorrelation = true;
  ApplyColourPreset();

  // 2. No progress to show.
  ProgressBar1->setVisible(false);
  ProgressBar1->setMinimum(0);
  ProgressBar1->setValue(0);
  BusyPointer::Restore();

  // 3. Everything that needs data is off; "Empty" leaves only the imports,
  // the test form and quit usable.
  for (QWidget* w : std::initializer_list<QWidget*>{
           Command11, Command14, Command3,   Command8,   Picture3(), Slider1,    Slider3,
           Slider4,   Slider5,   Slider2[1], Slider2[2], Label[0],   Label[1],   Label1,
           Label2,    Label3,    Label4,     LabelRange, Label7,     Option4[0], Option4[1]})
    w->setEnabled(false);
  for (auto* arrays : {&Command1, &Command2, &Command4, &Command13})
    for (QPushButton* b : *arrays) b->setEnabled(false);
  for (auto* arrays : {&Option2, &Option3, &Option5})
    for (QRadioButton* o : *arrays) o->setEnabled(false);
  for (QRadioButton* o : Option6) o->setEnabled(false);
  for (QAction* a : {mnuControl, mnuCopy1L, mnuCopy1R, mnuCopy2L, mnuCopy2R, mnuSaveL, mnuSaveS,
                     mnuSaveF, mnuSaveL2, mnuSaveS2, mnuSaveF2})
    a->setEnabled(false);
  Option2[0]->setChecked(true);
  Option3[0]->setChecked(true);
  Option5[0]->setChecked(true);
  Option6[1]->setChecked(true);

  // 4. Slider start values.
  Slider1->setValue(1);
  Slider4->setValue(2);
  Slider5->setValue(5);
  s_.ScatterZoom = 4;
  Label4->setText("0.1");

  // 5. Flat view, two envelope axes.
  Option4[0]->setChecked(true);
  s_.EnvelopeAxisCount = 2;

  // 6. Empty lists; the checks off except "Tick / Label", which is ticked.
  for (QComboBox* c : {Combo1, Combo3, Combo4}) {
    c->clear();
    c->setEnabled(false);
  }
  for (QCheckBox* c : {Check1, Check2, Check3, Check4}) c->setEnabled(false);
  Check4->setChecked(true);

  // 7. No base yet; both timers off.
  s_.ReferenceIsBase = s_.FossilIsBase = false;
  timer1_.setInterval(10);
  timer2_.setInterval(Slider5->value() * 1000);
  timer1_.stop();
  timer2_.stop();

  // 8. Tilt, counts, turning speed, tolerance, stage flags.
  s_.RotationAngles.A1 = 0;
  s_.RotationAngles.A2 = 15 * std::numbers::pi / 180;
  s_.RefSiteCount = s_.FossilSampleCount = 0;
  s_.RotationStep = 0.01f;
  Slider3->setValue(40);
  s_.EnvelopeTolerance = ToSingle(Slider1->value() / 10.0);
  s_.EofDone = s_.ProjectionDone = s_.EnvelopeDone = false;
  s_.DiagramOpen = s_.ReconstructionOpen = false;

  // 9. Axes 1, 2, 3; cursors at the first item.
  s_.EnvelopeAxes.ReDim(3);
  s_.DisplayAxes.ReDim(3);
  for (Count i = 1; i <= 3; ++i) s_.EnvelopeAxes(i) = s_.DisplayAxes(i) = i;
  s_.TaxonCursor = s_.SiteCursor = s_.SampleCursor = 1;
  s_.MoreAxis = false;
  RefreshMoreAxisLabel();

  ImportButtonsFromSession();
  SetStereo(false);
  for (PictureBox* p : {picture1_[0], picture1_[1], picture2_[0], picture2_[1], picture3_})
    p->surface().SetBackColour(Qt::white);
}

void frmMain::ConnectEvents() {
  connect(Command5, &QPushButton::clicked, this, &frmMain::ImportReference);
  connect(Command6, &QPushButton::clicked, this, &frmMain::ImportFossil);
  connect(Command7, &QPushButton::clicked, this, &frmMain::QuitProgram);
  connect(mnuQuit, &QAction::triggered, this, &frmMain::QuitProgram);
  connect(mnuOpenExample, &QAction::triggered, this, &frmMain::OpenExampleData);
  connect(Command9, &QPushButton::clicked, this, [this] {
    frmTest* t = TestForm();
    if (NeverPlaced(t)) PlaceCentredOn(t, this);
    t->show();
    t->raise();
  });
  connect(mnuAbout, &QAction::triggered, this, [this] {
    frmAbout1* a = AboutWindow();
    if (NeverPlaced(a)) PlaceCentredOn(a, this);
    a->show();
    a->raise();
  });
  connect(mnuColor, &QAction::triggered, this,
          [this] { boundary_.Run([this] { ApplyColourPreset(); }); });
  connect(mnuGrey, &QAction::triggered, this,
          [this] { boundary_.Run([this] { ApplyGreyPreset(); }); });
  connect(mnuSaveL, &QAction::triggered, this, [this] { SaveWith(&SaveLoading); });
  connect(mnuSaveL2, &QAction::triggered, this, [this] { SaveWith(&SaveLoading); });
  connect(mnuSaveS, &QAction::triggered, this, [this] { SaveWith(&sSaveScore); });
  connect(mnuSaveS2, &QAction::triggered, this, [this] { SaveWith(&sSaveScore); });
  connect(mnuSaveF, &QAction::triggered, this, [this] { SaveWith(&fSaveScore); });
  connect(mnuSaveF2, &QAction::triggered, this, [this] { SaveWith(&fSaveScore); });
  connect(mnuCopy1L, &QAction::triggered, this,
          [this] { Picture1(0)->surface().CopyToClipboard(); });
  connect(mnuCopy1R, &QAction::triggered, this,
          [this] { Picture1(1)->surface().CopyToClipboard(); });
  connect(mnuCopy2L, &QAction::triggered, this,
          [this] { Picture2(0)->surface().CopyToClipboard(); });
  connect(mnuCopy2R, &QAction::triggered, this,
          [this] { Picture2(1)->surface().CopyToClipboard(); });
  connect(picture1_[0], &PictureBox::RightPressed, this,
          [this](const QPoint& at) { ShowPopup(mnuFig1L, at); });
  connect(picture1_[1], &PictureBox::RightPressed, this,
          [this](const QPoint& at) { ShowPopup(mnuFig1R, at); });
  connect(picture2_[0], &PictureBox::RightPressed, this,
          [this](const QPoint& at) { ShowPopup(mnuFig2L, at); });
  connect(picture2_[1], &PictureBox::RightPressed, this,
          [this](const QPoint& at) { ShowPopup(mnuFig2R, at); });
  for (PictureBox* p : {picture1_[0], picture1_[1], picture2_[0], picture2_[1], picture3_})
    connect(p, &PictureBox::Resized, this, &frmMain::ScheduleRedraw);

  // Display controls.
  connect(Slider4, &QSlider::valueChanged, this,
          [this] { boundary_.Run([this] { ChangeRange(); }); });
  connect(Slider2[1], &QSlider::valueChanged, this, [this] { ChangeAngle(1); });
  connect(Slider2[2], &QSlider::valueChanged, this, [this] { ChangeAngle(2); });
  connect(Slider3, &QSlider::valueChanged, this, &frmMain::ChangeVelocity);
  connect(Slider1, &QSlider::valueChanged, this, &frmMain::ChangeTolerance);
  connect(Command11, &QPushButton::clicked, this, &frmMain::EnvelopClick);
  ConnectAxisEvents();
  ConnectDiagramEvents();
  ConnectMATEvents();
  connect(Check1, &QCheckBox::toggled, this, [this](bool on) {
    boundary_.Run([this, on] {
      SetStereo(on);
      RedrawAll();
    });
  });
  connect(Check4, &QCheckBox::toggled, this, [this] { boundary_.Run([this] { RedrawAll(); }); });
  connect(group4_, &QButtonGroup::idClicked, this,
          [this](int id) { boundary_.Run([this, id] { ChooseDimension(id == 1); }); });
  connect(group2_, &QButtonGroup::idClicked, this, [this] { NameOptionChosen(0); });
  connect(group3_, &QButtonGroup::idClicked, this, [this] { NameOptionChosen(1); });
  connect(group5_, &QButtonGroup::idClicked, this, [this] { NameOptionChosen(2); });
  connect(Command1[0], &QPushButton::clicked, this, [this] { StepCursor(0, -1); });
  connect(Command1[1], &QPushButton::clicked, this, [this] { StepCursor(0, 1); });
  connect(Command2[0], &QPushButton::clicked, this, [this] { StepCursor(1, -1); });
  connect(Command2[1], &QPushButton::clicked, this, [this] { StepCursor(1, 1); });
  connect(Command13[0], &QPushButton::clicked, this, [this] { StepCursor(2, -1); });
  connect(Command13[1], &QPushButton::clicked, this, [this] { StepCursor(2, 1); });
  connect(Combo3, &QComboBox::activated, this, [this] { ChooseByName(0); });
  connect(Combo4, &QComboBox::activated, this, [this] { ChooseByName(1); });
  connect(Combo1, &QComboBox::activated, this, [this] { ChooseByName(2); });
  connect(&timer1_, &QTimer::timeout, this, &frmMain::TurnStep);
  // Lifting the pause in 3-D sets the view turning again.
  connect(Check2, &QCheckBox::toggled, this, [this](bool paused) {
    if (!paused && Option4[1]->isChecked()) timer1_.start();
  });
}

void frmMain::AddWindow(WindowOrder order, QWidget* window) {
  windows_[order].push_back(QPointer<QWidget>(window));
}

frmCorrelVar* frmMain::CorrelVar() {
  if (!correlVar_) {
    correlVar_ = new frmCorrelVar(*this);
    AddWindow(WindowOrder::CorrelVar, correlVar_);
  }
  return correlVar_;
}

frmColor* frmMain::ColorWindow() {
  if (!color_) {
    color_ = new frmColor(*this);
    AddWindow(WindowOrder::Color, color_);
  }
  return color_;
}

frmAbout1* frmMain::AboutWindow() {
  if (!about_) {
    about_ = new frmAbout1(this);
    AddWindow(WindowOrder::About, about_);
  }
  return about_;
}

frmTest* frmMain::TestForm() {
  if (!test_) {
    test_ = new frmTest(*this);
    AddWindow(WindowOrder::TestForm, test_);
  }
  return test_;
}

void frmMain::QuitProgram() {
  if (quitting_) return;
  quitting_ = true;
  timer1_.stop();
  timer2_.stop();
  for (auto& [order, list] : windows_)
    for (QPointer<QWidget>& w : list)
      if (w) w->close();
  close();
  if (endProgram_) endProgram_();
}

void frmMain::closeEvent(QCloseEvent* event) {
  // Closing the main window by its frame ends the program like "Quit".
  if (!quitting_) {
    QuitProgram();
  }
  event->accept();
}

void frmMain::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) RefreshMoreAxisLabel();
  QMainWindow::changeEvent(event);
}

void frmMain::RefreshMoreAxisLabel() {
  Label6->setText(s_.MoreAxis ? "MoreAxis: Yes" : "MoreAxis: No");
}

}  // namespace varnoth
