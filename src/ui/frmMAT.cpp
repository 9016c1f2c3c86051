#include "ui/frmMAT.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <algorithm>
#include <climits>
#include <tuple>

#include "reconstruction/ClimateImport.h"
#include "ui/Controls.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/ToolTips.h"
#include "ui/WindowPlacement.h"
#include "ui/frmCalib.h"
#include "ui/frmDiagram.h"

namespace varnoth {

namespace {

// Twips of the window's rules, at 15 twips per pixel.
constexpr int Pixels(int twips) { return (twips + 7) / 15; }
constexpr int kMinHeight = Pixels(4500);
constexpr int kPictureShorter = Pixels(2415);  // Picture1 and Picture3 against the window
constexpr int kTextAbove = Pixels(1470);       // Text1 and Text2 above the bottom
constexpr int kBelowText = Pixels(180);        // Combo1 and Slider7 under Text1
constexpr int kProgressAbove = Pixels(600);    // the error model's progress bar
constexpr int kPictureTwips = 2055;            // a picture's width at Slider7 = 10

// The designed layout, in pixels: two columns of settings, the box of the
// selected sample, then the pictures from left to right.
constexpr int kColumnA = 6, kColumnB = 214, kColumnWidth = 200;
constexpr int kFrame5Left = 420, kFrame5Width = 140, kFrame5Height = 104;
constexpr int kPictureTop = 8, kGap = 8;
constexpr int kPicture99 = 16;  // how much the sample box widens with the panels

}  // namespace

frmMAT::frmMAT(Session& session, ColourSettings& colours, Dialogs& dialogs, Progress& mainProgress,
               QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      s_(session),
      colours_(colours),
      ownDialogs_(dialogs, this),
      dialogs_(ownDialogs_),
      mainProgress_(mainProgress) {
  setObjectName("frmMAT");
  setWindowTitle("Reconstruction");
  setAttribute(Qt::WA_QuitOnClose, false);
  BuildControls();
  BuildMenus();
  ConnectEvents();
  ExplainControls(this);
  BuildStatusLine();
  ConnectLuvane();
  pictureWidth_ = Pixels(kPictureTwips);
  frame5Width_ = kFrame5Width;
  resize(kFrame5Left + kFrame5Width + kGap + pictureWidth_ + 2 * kGap, 620);
}

void frmMAT::BuildControls() {
  auto* c = new QWidget(this);
  c->setObjectName("central");
  setCentralWidget(c);

  Frame1 = Named(new QGroupBox(" Define chord distance by:", c), "Frame1");
  Frame1->setGeometry(kColumnA, 4, kColumnWidth, 112);
  Option1[0] = Named(new QRadioButton("Taxa proportions", Frame1), "Option1_0");
  Option1[1] = Named(new QRadioButton("EOF values", Frame1), "Option1_1");
  Option1[0]->setGeometry(8, 20, 180, 20);
  Option1[1]->setGeometry(8, 42, 180, 20);
  Combo2 = Named(new QComboBox(Frame1), "Combo2");
  Combo2->setGeometry(8, 70, 60, 26);
  Combo2->setToolTip("Number of EOFs");
  Command7 = Named(new QPushButton("Axis settings", Frame1), "Command7");
  Command7->setGeometry(74, 70, 116, 26);

  Frame2 = Named(new QGroupBox(" Options", c), "Frame2");
  Frame2->setGeometry(kColumnA, 120, kColumnWidth, 196);
  Check1 = Named(new QCheckBox("Inversed weighting", Frame2), "Check1");
  Check1->setGeometry(8, 20, 180, 20);
  Frame3 = Named(new QGroupBox(QString(), Frame2), "Frame3");
  Frame3->setGeometry(20, 40, 172, 54);
  Option3[0] = Named(new QRadioButton("Squared distance", Frame3), "Option3_0");
  Option3[1] = Named(new QRadioButton("Distance", Frame3), "Option3_1");
  Option3[0]->setGeometry(6, 6, 160, 20);
  Option3[1]->setGeometry(6, 28, 160, 20);
  Check2 = Named(new QCheckBox("Enhancing minor taxa", Frame2), "Check2");
  Check2->setGeometry(8, 100, 180, 20);
  Frame4 = Named(new QGroupBox(QString(), Frame2), "Frame4");
  Frame4->setGeometry(20, 122, 172, 54);
  Option2[0] = Named(new QRadioButton("Square root", Frame4), "Option2_0");
  Option2[1] = Named(new QRadioButton("Log", Frame4), "Option2_1");
  Option2[0]->setGeometry(6, 6, 160, 20);
  Option2[1]->setGeometry(6, 28, 160, 20);

  Command1 = Named(new QPushButton("Use pre-interpolated...", c), "Command1");
  Command1->setToolTip("Use pre-interpolated climate file (Varnoth 1.5)");
  Command1->setGeometry(kColumnA, 322, kColumnWidth, 28);
  Command8 = Named(new QPushButton("Launch Luvane 1.1", c), "Command8");
  Command8->setGeometry(kColumnA, 354, kColumnWidth, 28);

  Label1 = Named(new QLabel("No. of analogues", c), "Label1");
  Label1->setGeometry(kColumnB, 6, kColumnWidth, 18);
  Label3[0] = Named(new QLabel("Min.", c), "Label3_0");
  Label3[1] = Named(new QLabel("Max.", c), "Label3_1");
  Label3[0]->setGeometry(kColumnB, 26, 34, 24);
  Label3[1]->setGeometry(kColumnB, 54, 34, 24);
  Slider3 = Slider(c, "Slider3", 0, 20, 0);
  Slider1 = Slider(c, "Slider1", 0, 20, 8);
  Slider3->setGeometry(kColumnB + 36, 26, kColumnWidth - 36, 26);
  Slider1->setGeometry(kColumnB + 36, 54, kColumnWidth - 36, 26);
  Label2 = Named(new QLabel("Threshold", c), "Label2");
  Label2->setGeometry(kColumnB, 84, kColumnWidth, 18);
  Slider2 = Slider(c, "Slider2", 0, 200, 20);
  Slider2->setGeometry(kColumnB, 102, kColumnWidth, 26);
  Label6 = Named(new QLabel("Smoothing", c), "Label6");
  Label6->setGeometry(kColumnB, 132, kColumnWidth, 18);
  Slider6 = Slider(c, "Slider6", 1, 10, 3);
  Slider6->setGeometry(kColumnB, 150, kColumnWidth, 26);

  Command3 = Named(new QPushButton("Generate error model", c), "Command3");
  Command3->setGeometry(kColumnB, 186, kColumnWidth, 28);
  Command6 = Named(new QPushButton("Ostrel 3.0", c), "Command6");
  Command6->setGeometry(kColumnB, 218, kColumnWidth, 28);
  Command4 = Named(new QPushButton("Tamsek 2.5", c), "Command4");
  Command4->setGeometry(kColumnB, 250, kColumnWidth, 28);
  Command2 = Named(new QPushButton("Calib", c), "Command2");
  Command5 = Named(new QPushButton("Hist", c), "Command5");
  Command2->setGeometry(kColumnB, 282, kColumnWidth / 2 - 2, 26);
  Command5->setGeometry(kColumnB + kColumnWidth / 2 + 2, 282, kColumnWidth / 2 - 2, 26);

  Frame6 = Named(new QGroupBox(QString(), c), "Frame6");
  Frame6->setGeometry(kColumnB, 312, kColumnWidth, 104);
  Option4[0] = Named(new QRadioButton("Probability", Frame6), "Option4_0");
  Option4[1] = Named(new QRadioButton("Confidence", Frame6), "Option4_1");
  Option4[0]->setGeometry(6, 6, 94, 20);
  Option4[1]->setGeometry(100, 6, 94, 20);
  Check4[0] = Named(new QCheckBox("Show Mode", Frame6), "Check4_0");
  Check4[1] = Named(new QCheckBox("Show Average", Frame6), "Check4_1");
  Check4[0]->setGeometry(6, 28, 90, 20);
  Check4[1]->setGeometry(94, 28, 104, 20);
  Label5 = Named(new QLabel("Z-enhancement", Frame6), "Label5");
  Label5->setGeometry(6, 50, 188, 18);
  Slider5 = Slider(Frame6, "Slider5", 0, 200, 100);
  Slider5->setPageStep(5);
  Slider5->setGeometry(6, 70, 188, 26);

  Frame5 = Named(new QGroupBox(QString(), c), "Frame5");
  Check3 = Named(new QCheckBox(QString(), Frame5), "Check3");
  Check3->setChecked(true);  // the selected sample shows, as in the diagram
  Check3->setGeometry(6, 4, 128, 20);
  Combo3 = Named(new QComboBox(Frame5), "Combo3");
  // It lists the samples with data, but shows the selected one's label
  // even when that sample is empty.
  Combo3->setEditable(true);
  Combo3->lineEdit()->setReadOnly(true);
  Combo3->setGeometry(6, 26, 76, 26);
  Combo3->setToolTip("Selected sample");
  UpDown1 = Named(new SampleUpDown(Frame5), "UpDown1");
  UpDown1->setGeometry(86, 26, 48, 26);
  UpDown1->setRange(1, 1);
  UpDown1->setKeyboardTracking(false);
  Label4 = Named(new QLabel(QString(), Frame5), "Label4");
  Label4->setGeometry(6, 56, 128, 18);

  Picture1 = Picture(c, "Picture1");
  Picture2 = Picture(c, "Picture2");
  Picture3 = Picture(c, "Picture3");
  Picture4 = Picture(c, "Picture4");
  Picture1->setMouseTracking(true);
  Picture1->installEventFilter(this);
  Picture3->setMouseTracking(true);
  Picture3->installEventFilter(this);
  Picture0 = Named(new QWidget(c), "Picture0");
  Picture99 = Named(new QWidget(c), "Picture99");
  Picture99->setFixedWidth(kPicture99);

  Text1 = Named(new QLineEdit(c), "Text1");
  Text2 = Named(new QLineEdit(c), "Text2");
  Text2->setAlignment(Qt::AlignRight);
  Combo1 = Named(new QComboBox(c), "Combo1");
  Combo1->setToolTip("Climate parameter");
  Check5 = Named(new QCheckBox("Show conventional error bars", c), "Check5");
  Slider7 = Slider(c, "Slider7", 0, 10, 10);
  Slider7->setToolTip("Size of the pictures");
  Label7 = Named(new QLabel(QString(), c), "Label7");
  Label7->setWordWrap(true);
  Label7->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  ProgressBar1 = Named(new QProgressBar(c), "ProgressBar1");
  ProgressBar1->setTextVisible(false);
  progress_.SetBar(ProgressBar1);
}

void frmMAT::BuildMenus() {
  mnuFile = menuBar()->addMenu("File(&F)");
  mnuFile->setObjectName("mnuFile");
  mnuSaveMother = mnuFile->addMenu("&Save");
  mnuSaveMother->setObjectName("mnuSaveMother");
  mnuSaveCurve = mnuSaveMother->addMenu("This Parameter Only");
  mnuSaveCurve->setObjectName("mnuSaveCurve");
  mnuSaveCurveEntry = mnuSaveCurve->menuAction();
  mnuSaveCurveVOnly = Entry(this, "mnuSaveCurveVOnly", "Value Only");
  mnuSaveCurveVandE = Entry(this, "mnuSaveCurveVandE", "Value and Conventional Error");
  mnuSaveCurve->addActions({mnuSaveCurveVOnly, mnuSaveCurveVandE});
  mnuSaveCurveAll = mnuSaveMother->addMenu("All Parameters");
  mnuSaveCurveAll->setObjectName("mnuSaveCurveAll");
  mnuSaveCurveAllEntry = mnuSaveCurveAll->menuAction();
  mnuSaveCurveAllVOnly = Entry(this, "mnuSaveCurveAllVOnly", "Value Only");
  mnuSaveCurveAllVandE = Entry(this, "mnuSaveCurveAllVandE", "Value and Conventional Error");
  mnuSaveCurveAll->addActions({mnuSaveCurveAllVOnly, mnuSaveCurveAllVandE});
  mnuSaveDistAna2 = Entry(this, "mnuSaveDistAna2", "Analogue Details");
  mnuSaveScatter = Entry(this, "mnuSaveScatter", "Scatter Diagram");
  mnuSaveOstrel = Entry(this, "mnuSaveOstrel", "Ostrel Matrix");
  mnuSaveTamsek = Entry(this, "mnuSaveTamsek", "Tamsek Matrix");
  mnuSaveMother->addActions({mnuSaveDistAna2, mnuSaveScatter, mnuSaveOstrel, mnuSaveTamsek});

  mnuEdit = menuBar()->addMenu("Edit(&E)");
  mnuEdit->setObjectName("mnuEdit");
  mnuColor = Entry(this, "mnuColor", "Colour Settings");
  mnuEdit->addAction(mnuColor);

  auto popup = [this](const QString& name) { return Named(new QMenu(name, this), name); };
  mnuRB1 = popup("mnuRB1");
  mnuCopy1 = Entry(this, "mnuCopy1", "&Copy");
  mnuRB1->addAction(mnuCopy1);
  mnuSaveCurve2 = Named(mnuRB1->addMenu("&Save This Parameter Only"), "mnuSaveCurve2");
  mnuSaveCurve2Entry = mnuSaveCurve2->menuAction();
  mnuSaveCurve2VOnly = Entry(this, "mnuSaveCurve2VOnly", "Value Only");
  mnuSaveCurve2VandE = Entry(this, "mnuSaveCurve2VandE", "Value and Conventional Error");
  mnuSaveCurve2->addActions({mnuSaveCurve2VOnly, mnuSaveCurve2VandE});
  mnuSaveCurveAll2 = Named(mnuRB1->addMenu("Save &All Parameters"), "mnuSaveCurveAll2");
  mnuSaveCurveAll2Entry = mnuSaveCurveAll2->menuAction();
  mnuSaveCurveAll2VOnly = Entry(this, "mnuSaveCurveAll2VOnly", "Value Only");
  mnuSaveCurveAll2VandE = Entry(this, "mnuSaveCurveAll2VandE", "Value and Conventional Error");
  mnuSaveCurveAll2->addActions({mnuSaveCurveAll2VOnly, mnuSaveCurveAll2VandE});
  mnuSaveDistAna = Entry(this, "mnuSaveDistAna", "Save Analogue &Details");
  mnuRB1->addAction(mnuSaveDistAna);

  mnuRB2 = popup("mnuRB2");
  mnuCopy2 = Entry(this, "mnuCopy2", "&Copy");
  mnuSaveScatter2 = Entry(this, "mnuSaveScatter2", "&Save");
  mnuRB2->addActions({mnuCopy2, mnuSaveScatter2});
  mnuRB3 = popup("mnuRB3");
  mnuCopy3 = Entry(this, "mnuCopy3", "&Copy");
  mnuSaveTamsek2 = Entry(this, "mnuSaveTamsek2", "&Save Matrix");
  mnuRB3->addActions({mnuCopy3, mnuSaveTamsek2});
  mnuRB4 = popup("mnuRB4");
  mnuCopy4 = Entry(this, "mnuCopy4", "&Copy");
  mnuSaveOstrel2 = Entry(this, "mnuSaveOstrel2", "&Save Matrix");
  mnuRB4->addActions({mnuCopy4, mnuSaveOstrel2});

  // The figures as files for papers, from their menus and from Edit.
  std::vector<PictureChoice> pictures;
  const std::tuple<QMenu*, QAction*, PictureBox**, const char*, const char*> figures[] = {
      {mnuRB1, mnuCopy1, &Picture1, "1", "Reconstruction Curve"},
      {mnuRB2, mnuCopy2, &Picture2, "2", "Estimated-Observed Scatter"},
      {mnuRB3, mnuCopy3, &Picture3, "3", "Tamsek Matrix"},
      {mnuRB4, mnuCopy4, &Picture4, "4", "Ostrel Matrix"}};
  for (const auto& [menu, copy, box, n, caption] : figures) {
    SurfaceOf of = [box]() -> const Surface& { return (*box)->surface(); };
    AddSavePictureEntry(menu, QString("mnuSavePicture") + n, dialogs_, boundary_, of, copy);
    pictures.push_back({QString("mnuEditPicture") + n, caption, of, copy});
  }
  AddSavePictureMenu(mnuEdit, dialogs_, boundary_, pictures);
  AddPublicationEntries();
}

void frmMAT::Open() {
  boundary_.Run([this] {
    if (!loaded_) Load();
    show();
    raise();
    activateWindow();
    PlacePanels();
    Activate();
  });
}

void frmMAT::Load() {
  loaded_ = true;
  // 1. The lists and the basis.
  Combo2->clear();
  for (long e = 1; e <= s_.RefTaxaCount; ++e) Combo2->addItem(QString::number(e));
  const Count shownAxis =
      s_.EnvelopeAxes.Allocated() && s_.EnvelopeAxes.Size() > 1 ? s_.EnvelopeAxes(1) : Count{1};
  Combo2->setCurrentIndex(std::max(0, Combo2->findText(QString::number(shownAxis))));
  FillLabels();
  Option1[0]->setChecked(true);
  Option1[1]->setChecked(false);
  taxaBased_ = true;
  Option1[1]->setEnabled(true);
  panelsOpen_ = false;
  frame5Width_ = kFrame5Width;

  // 2. Nothing to save or copy yet; no enhancement of the search.
  for (QAction* a : SaveAndCopyEntries()) a->setEnabled(false);
  {
    const QSignalBlocker quiet(Check2);
    Check2->setChecked(false);
  }
  Option2[0]->setChecked(true);
  Option3[0]->setChecked(true);
  for (QRadioButton* o : Option2) o->setEnabled(false);
  // A window loaded again starts from its designed settings, as the first
  // time; the selection line follows the diagram's by its own event.
  {
    const QSignalBlocker q1(Slider1), q3(Slider3), q5(Slider5), q6(Slider6), c1(Check1), c5(Check5);
    Slider1->setValue(8);
    Slider3->setValue(0);
    Slider5->setValue(100);
    Slider6->setValue(3);
    Check1->setChecked(false);
    Check5->setChecked(false);
  }
  Check3->setChecked(true);
  zEnhancement_ = 1;
  Command2->setText("Calib");
  Command5->setText("Hist");

  // 3. What needs climate data, an error model or a calibration.
  for (QWidget* w : std::initializer_list<QWidget*>{
           Check3,  Command3, Command4, Command6,   Command7,   Text1,      Text2,      Combo1,
           Combo2,  Combo3,   UpDown1,  Option1[0], Option1[1], Option3[0], Option3[1], Slider1,
           Slider3, Slider2,  Check1,   Check2,     Label1,     Label2})
    w->setEnabled(false);
  for (QWidget* w :
       std::initializer_list<QWidget*>{Frame6, Command4, Command6, ProgressBar1, Picture2,
                                       Picture99, Picture0, Picture3, Picture4, Slider7, Label7})
    w->setVisible(false);
  Option1[1]->setEnabled(true);
  Option4[0]->setChecked(true);
  Check4[0]->setChecked(true);
  Check4[1]->setChecked(true);
  {
    const QSignalBlocker quiet(Slider7);
    Slider7->setValue(10);
  }
  pictureWidth_ = Pixels(kPictureTwips);

  // 4. The threshold slider's range.
  {
    const QSignalBlocker quiet(Slider2);
    Slider2->setMaximum(200);
    Slider2->setValue(20);
  }

  // 5. The caption at load is spelled as it always was.
  Label1->setText(QString("No. of analogs: %1-%2").arg(Slider3->value()).arg(Slider1->value()));

  // 6. The threshold, empty limits and the curve's vertical scale.
  DefineThreshold();
  SetLimitTexts(QString(), QString());
  PlacePanels();
  SyncSurfaces();
  SetCurveScale(s_, Picture1->surface());
  Picture1->surface().SetBackColour(Qt::white);
  Picture1->update();

  // 7. Nothing shown yet.
  s_.ReconstructionOpen = false;
  s_.ErrorModelReady = false;
  calibReady_ = histReady_ = scaleEdited_ = noAnalogues_ = false;
  ShowSamplePosition();
  Label6->setText(QString("Smoothing level: %1").arg(Slider6->value()));

  // Picture0 and Picture99 carry the fixed widths by which the panels widen
  // the window and the sample box.
  Picture0->setFixedWidth(kPicture99 + 2 * (pictureWidth_ + kGap) + kGap);
}

void frmMAT::FillLabels() {
  Combo3->clear();
  for (long i = 1; i <= s_.FossilSampleCount; ++i)
    if (!s_.FossilEmptySample(i)) Combo3->addItem(QString::fromStdString(s_.FossilLabels(i)));
  const QSignalBlocker quiet(UpDown1);
  UpDown1->setRange(1, std::max<int>(1, s_.FossilSampleCount));
  UpDown1->setValue(std::max<int>(1, s_.SampleCursor));
}

void frmMAT::Activate() {
  if (activating_ || !loaded_) return;
  activating_ = true;
  struct Done {
    bool& flag;
    ~Done() { flag = false; }
  } done{activating_};
  // 1. Matrix colours changed elsewhere are redrawn.
  if (colours_.PaletteChanged && calibReady_) {
    DrawResponseMatrices();
    colours_.PaletteChanged = false;
  }
  // 2. Climate delivered by the interpolation tool fills the list.
  if (s_.ClimateLoaded) {
    const QSignalBlocker quiet(Combo1);
    Combo1->clear();
    for (long q = 1; q <= s_.ClimateParamCount; ++q)
      Combo1->addItem(QString::fromStdString(s_.ClimateParamNames(q)));
    if (s_.CurrentParameter >= 1 && s_.CurrentParameter <= s_.ClimateParamCount)
      Combo1->setCurrentIndex(s_.CurrentParameter - 1);
  }
  // 3. ... and is reconstructed at once.
  if (s_.ClimateLoaded && !s_.ReconstructionOpen) {
    // Climate read elsewhere (the correlation window, the interpolation
    // tool) makes the settings usable as a file read here would.
    EnableSettings();
    Command1->setEnabled(false);
    RunReconstruction();
  }
  // 4, 5.
  s_.EstObsImported = false;
  if (s_.EnhanceUsed) {
    Check2->setEnabled(false);
    for (QRadioButton* o : Option2) o->setEnabled(false);
  }
}

void frmMAT::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && isVisible())
    boundary_.Run([this] { Activate(); });
}

void frmMAT::SetPanelsOpen(bool open) {
  if (open == panelsOpen_) return;
  panelsOpen_ = open;
  const int sign = open ? 1 : -1;
  frame5Width_ += sign * Picture99->width();
  if (open) {
    panelsExtra_ = 0;
    ResizeOwn(width() + Picture0->width());
  } else {
    // Narrower by what the panels took, a user's own resizing kept.
    const int extra = panelsExtra_;
    panelsExtra_ = 0;
    ResizeOwn(width() - extra);
  }
  PlacePanels();
}

void frmMAT::ResizeOwn(int newWidth) {
  // The window's own widening keeps what the panels show: only a resize by
  // the user runs the chain that empties them.
  if (panelsOpen_) panelsExtra_ += newWidth - width();
  ownSize_ = QSize(newWidth, height());
  resizingOwn_ = true;
  resize(ownSize_);
  resizingOwn_ = false;
}

int frmMAT::PanelsRight() const {
  int right = 0;
  for (QWidget* p : std::initializer_list<QWidget*>{Picture1, Picture2, Picture3, Picture4})
    if (!p->isHidden()) right = std::max(right, p->geometry().right());
  return right;
}

bool frmMAT::FitPanels() {
  PlacePanels();
  // The frame's borders, which the screen must hold as well.
  const QRect frame = frameGeometry(), client = geometry();
  const int borders = frame.width() - client.width();
  const QRect screen = AvailableArea(this);
  const int room = screen.isEmpty() ? INT_MAX : screen.width() - borders;
  // Pictures wider than the screen allows shrink, Slider7 showing their size.
  auto needed = [this] { return PanelsRight() + 1 + kGap; };
  bool shrunk = false;
  while (needed() > room && pictureWidth_ > 8) {
    pictureWidth_ -= 1;
    shrunk = true;
    PlacePanels();
  }
  if (shrunk) {
    const QSignalBlocker quiet(Slider7);
    Slider7->setValue(std::max(1, pictureWidth_ * 15 * 10 / kPictureTwips));
  }
  const int target = std::min(std::max(width(), needed()), room);
  if (target != width()) ResizeOwn(target);
  if (!screen.isEmpty()) {
    const QRect wanted(frameGeometry().topLeft(), frameGeometry().size());
    const QRect onScreen = OntoScreen(wanted, screen);
    if (onScreen.topLeft() != wanted.topLeft()) move(onScreen.topLeft());
  }
  PlacePanels();
  SyncSurfaces();
  return shrunk;
}

void frmMAT::PlacePanels() {
  QWidget* c = centralWidget();
  const int top = c->y();  // the window's rules count from its own top
  const int h = height();
  const int pictureHeight = std::max(1, h - kPictureShorter);
  const int x1 = kFrame5Left + frame5Width_ + kGap;
  const int w = pictureWidth_;
  Picture1->setGeometry(x1, kPictureTop, w, pictureHeight);
  // The scatter and the calibration matrix share their horizontal axis:
  // one column, the matrix under the scatter's label while the pictures'
  // height holds both, else a column of its own after the histogram.
  constexpr int kLabelGap = 4;
  // The label is sized for its longest caption, whatever it says now.
  const int labelHeight = std::max(
      18, Label7->fontMetrics()
              .boundingRect(QRect(0, 0, w, 1000), Qt::TextWordWrap, "R1 = -0.0000 / R2 = -0.0000")
              .height());
  int x = x1 + w + kGap;
  const int under = kPictureTop + w + kLabelGap + labelHeight + kLabelGap;
  const bool stacked = under + w <= kPictureTop + pictureHeight;
  const int column2 = x;
  Picture2->setGeometry(x, kPictureTop, w, w);
  Label7->setGeometry(x, kPictureTop + w + kLabelGap, w, labelHeight);
  if (!Picture2->isHidden() || (stacked && !Picture4->isHidden())) x += w + kGap;
  Picture3->setGeometry(x, kPictureTop, w, pictureHeight);
  if (!Picture3->isHidden()) x += w + kGap;
  if (stacked)
    Picture4->setGeometry(column2, Picture2->isHidden() ? kPictureTop : under, w, w);
  else
    Picture4->setGeometry(x, kPictureTop, w, w);

  const int textTop = h - kTextAbove - top;
  Text1->setGeometry(x1, textTop, 64, 24);
  Text2->setGeometry(x1 + std::max(w, 130) - 64, textTop, 64, 24);
  Combo1->setGeometry(x1, textTop + 24 + kBelowText, std::max(w, 130), 26);
  // The size slider takes what the window leaves of its width beside Combo1.
  const int slider7Left = x1 + std::max(w, 130) + kGap;
  Slider7->setGeometry(slider7Left, textTop + 24 + kBelowText,
                       std::clamp(width() - slider7Left - kGap, 60, 120), 26);
  Check5->setGeometry(kColumnB, textTop, kColumnWidth, 24);
  ProgressBar1->setGeometry(x1, h - kProgressAbove - top, std::max(w, 200), 14);
  Frame5->resize(frame5Width_, kFrame5Height);
  Frame5->move(kFrame5Left, Frame5->y());
}

void frmMAT::SyncSurfaces() {
  // Pictures placed while hidden take their size only now.
  for (PictureBox* p : {Picture1, Picture2, Picture3, Picture4})
    if (p->surface().Width() != p->width() || p->surface().Height() != p->height()) {
      Surface& s = p->surface();
      const double l = s.ScaleLeft(), t = s.ScaleTop(), wd = s.ScaleWidth(), ht = s.ScaleHeight();
      s.Resize(p->width(), p->height());
      s.SetScale(l, t, wd, ht);
    }
}

void frmMAT::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (height() < kMinHeight) {
    // The window is put back to its least height at the width it had.
    const int w = event->oldSize().width() > 0 ? event->oldSize().width() : width();
    resize(w, kMinHeight);
    return;
  }
  PlacePanels();
  if (!loaded_) return;
  if (resizingOwn_ || event->size() == ownSize_) {
    ownSize_ = QSize();
    SyncSurfaces();
    return;
  }
  boundary_.Run([this] {
    SyncSurfaces();
    HistResize();
  });
}

// Every save and copy entry of the menus and pop-ups, which start disabled
// and are disabled again when the window closes.
std::vector<QAction*> frmMAT::SaveAndCopyEntries() const {
  return {mnuSaveCurveEntry,
          mnuSaveCurveVOnly,
          mnuSaveCurveVandE,
          mnuSaveCurveAllEntry,
          mnuSaveCurveAllVOnly,
          mnuSaveCurveAllVandE,
          mnuSaveDistAna2,
          mnuSaveScatter,
          mnuSaveOstrel,
          mnuSaveTamsek,
          mnuCopy1,
          mnuSaveCurve2Entry,
          mnuSaveCurve2VOnly,
          mnuSaveCurve2VandE,
          mnuSaveCurveAll2Entry,
          mnuSaveCurveAll2VOnly,
          mnuSaveCurveAll2VandE,
          mnuSaveDistAna,
          mnuCopy2,
          mnuSaveScatter2,
          mnuCopy3,
          mnuSaveTamsek2,
          mnuCopy4,
          mnuSaveOstrel2};
}

void frmMAT::closeEvent(QCloseEvent* event) {
  s_.ReconstructionOpen = false;
  s_.ErrorModelReady = false;
  calibReady_ = histReady_ = false;
  for (QAction* a : SaveAndCopyEntries()) a->setEnabled(false);
  if (calibWindow_) calibWindow_->close();
  // The next opening loads the window afresh.
  if (panelsOpen_) SetPanelsOpen(false);
  loaded_ = false;
  dragging_ = sizing_ = false;
  emit Unloaded();
  event->accept();
}

void frmMAT::BuildStatusLine() {
  StatusNext = NextStepLine(this, [this] { return NextStep(); });
}

QString frmMAT::NextStep() const {
  const QString parameter = Combo1->currentText();
  if (!s_.ClimateLoaded)
    return "Load climate at the reference sites: Use pre-interpolated... (a CSV file) or Launch "
           "Luvane 1.1 (from station tables)";
  if (!s_.ReconstructionOpen) return "Climate loaded: the reconstruction runs";
  if (!s_.ErrorModelReady)
    return "Curve of " + parameter +
           " down the core. Next: Generate error model (leave-one-out on the reference sites)";
  if (!calibReady_)
    return "Error model of " + parameter +
           " ready. Next: Ostrel 3.0 calibrates it into probabilities (Start, then Return)";
  if (!histReady_)
    return "Calibration matrix of " + parameter +
           " here. Next: Tamsek 2.5 applies it to the curve down the core";
  return "Probability of " + parameter +
         " down the core shown. Save it: File > Save > Tamsek Matrix";
}

}  // namespace varnoth
