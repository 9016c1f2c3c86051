#include "ui/frmDiagram.h"

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QSlider>
#include <QStatusBar>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "presentation/publication/Figures.h"
#include "ui/Controls.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/PublicationExport.h"
#include "ui/ToolTips.h"

namespace varnoth {

namespace {

// The designed layout, in pixels: Slider1 and the depth scale left of the
// diagram, the names above it, the EOF panel to its right, the controls
// below.
constexpr int kDepthWidth = 48;
constexpr int kLeft = 32 + kDepthWidth;  // Slider1's strip and the depth scale
constexpr int kNames = 110;              // Picture4's height
constexpr int kTop = kNames + 6;         // Picture1's top
constexpr int kEofWidth = 220;           // Picture2's width
constexpr int kRight = kEofWidth + 14;
constexpr int kBottom = 54;
// Twips of the resize rules, at 15 twips per pixel.
constexpr int Pixels(int twips) { return (twips + 7) / 15; }
constexpr int kMinHeight = Pixels(6000), kMinWidth = Pixels(4000), kTooSmall = Pixels(500);
constexpr int kSmallHeight = Pixels(5000), kSmallWidth = Pixels(3500);
// The row of controls under the diagram ends at Slider3's shortest width.
constexpr int kControlsRow = 6 + 414 + 60 + 6;

}  // namespace

void SampleUpDown::stepBy(int steps) {
  setValue(StepSample(static_cast<Count>(value()), steps, static_cast<Count>(maximum())));
}

frmDiagram::frmDiagram(Session& session, ColourSettings& colours, Dialogs& dialogs,
                       Progress& progress, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      s_(session),
      colours_(colours),
      ownDialogs_(dialogs, this),
      dialogs_(ownDialogs_),
      progress_(progress) {
  setObjectName("frmDiagram");
  setWindowTitle("Diagram");
  setAttribute(Qt::WA_QuitOnClose, false);
  BuildControls();
  BuildMenus();
  ConnectEvents();
  ExplainControls(this);
  resize(1000, 720);
}

void frmDiagram::BuildControls() {
  auto* central = new QWidget(this);
  central->setObjectName("central");
  setCentralWidget(central);

  Picture1 = Picture(central, "Picture1");
  Picture2 = Picture(central, "Picture2");
  Picture4 = Picture(central, "Picture4");
  DepthScale = Picture(central, "DepthScale");
  Picture1->setMouseTracking(true);
  Picture1->installEventFilter(this);

  Slider1 = new QSlider(Qt::Vertical, central);
  Slider1->setObjectName("Slider1");
  Slider1->setInvertedAppearance(true);  // the first sample at the top, as in the diagram
  Slider1->setInvertedControls(true);
  Slider1->setRange(1, 1);
  Slider1->setToolTip("Selected sample");

  Label2 = Caption(central, "Label2", " EOF No.");
  Combo1 = new QComboBox(central);
  Combo1->setObjectName("Combo1");
  Label4 = Caption(central, "Label4", "Out count:  0");
  for (int i = 0; i < 3; ++i) {
    Label3[static_cast<std::size_t>(i)] = Caption(central, QString("Label3_%1").arg(i), QString());
  }
  Label3[0]->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  Label3[1]->setAlignment(Qt::AlignCenter);
  Label3[2]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  Slider2 = new QSlider(Qt::Horizontal, central);
  Slider2->setObjectName("Slider2");
  Slider2->setRange(0, 8);
  Slider2->setPageStep(1);
  Slider2->setTickPosition(QSlider::TicksBelow);
  Slider2->setTickInterval(1);
  Slider2->setToolTip("EOF axis half width");

  HScroll1 = new QScrollBar(Qt::Horizontal, central);
  HScroll1->setObjectName("HScroll1");
  HScroll1->setRange(0, 0);
  HScroll1->setVisible(false);

  Combo2 = new QComboBox(central);
  Combo2->setObjectName("Combo2");
  Combo2->setMinimumContentsLength(8);
  Combo2->setToolTip("Selected sample");
  UpDown1 = new SampleUpDown(central);
  UpDown1->setObjectName("UpDown1");
  UpDown1->setRange(1, 1);
  UpDown1->setKeyboardTracking(false);
  Check1 = new QCheckBox("Selection line", central);
  Check1->setObjectName("Check1");
  Check1->setChecked(true);
  CaptionSlider3 = Caption(central, "CaptionSlider3", "Horizontal scale");
  Slider3 = new QSlider(Qt::Horizontal, central);
  Slider3->setObjectName("Slider3");
  Slider3->setRange(1, 50);
  Slider3->setValue(10);
  Slider3->setPageStep(5);
  Slider3->setToolTip("Horizontal exaggeration");

  StatusBar1 = new QStatusBar(this);
  StatusBar1->setObjectName("StatusBar1");
  setStatusBar(StatusBar1);
}

void frmDiagram::BuildMenus() {
  mnuDrawMode = menuBar()->addMenu("Curve Style(&S)");
  mnuDrawMode->setObjectName("mnuDrawMode");
  styles_ = new QActionGroup(this);
  styles_->setExclusive(true);
  mnuBar = Entry(this, "mnuBar", "&Bar");
  mnuArea = Entry(this, "mnuArea", "&Curve");
  mnuDot = Entry(this, "mnuDot", "&Dot (>0.5%)");
  mnuCurve = Entry(this, "mnuCurve", "Bar and curve");
  mnuDotCurve = Entry(this, "mnuDotCurve", "Dot and curve");
  for (QAction* a : {mnuBar, mnuArea, mnuDot, mnuCurve, mnuDotCurve}) {
    a->setCheckable(true);
    styles_->addAction(a);
    mnuDrawMode->addAction(a);
  }
  mnuBar->setChecked(true);

  nmuTools = menuBar()->addMenu("Tools(&T)");
  nmuTools->setObjectName("nmuTools");
  nmuConiss = Entry(this, "nmuConiss", "&CONISS");
  nmuConiss->setCheckable(true);
  mnuECC = Entry(this, "mnuECC", "&EOF-Climate correlation");
  nmuTools->addAction(nmuConiss);
  nmuTools->addAction(mnuECC);

  auto popup = [this](const QString& name) {
    auto* m = new QMenu(name, this);
    m->setObjectName(name);
    return m;
  };
  RB1 = popup("RB1");
  RB1->setTitle("RightButton1");
  mnuCopyDiagram = Entry(this, "mnuCopyDiagram", "&Copy");
  RB1->addAction(mnuCopyDiagram);
  RB2 = popup("RB2");
  RB2->setTitle("RightButton2");
  mnuCopyEOF = Entry(this, "mnuCopyEOF", "&Copy");
  mnuSaveEOF = Entry(this, "mnuSaveEOF", "&Save This EOF Only");
  mnuSaveAllEOF = Entry(this, "mnuSaveAllEOF", "Save &All EOF");
  RB2->addAction(mnuCopyEOF);
  RB2->addAction(mnuSaveEOF);
  RB2->addAction(mnuSaveAllEOF);
  RB3 = popup("RB3");
  RB3->setTitle("RightButton3");
  mnuCopyTaxaName = Entry(this, "mnuCopyTaxaName", "&Copy");
  RB3->addAction(mnuCopyTaxaName);

  // The figures as files for papers, from their menus and from Edit.
  const std::vector<PictureChoice> pictures = {
      {"mnuSavePictureDiagram", "Diagram",
       [this]() -> const Surface& { return Picture1->surface(); }},
      {"mnuSavePictureEOF", "EOF Curve",
       [this]() -> const Surface& { return Picture2->surface(); }},
      {"mnuSavePictureTaxaName", "Taxa Names",
       [this]() -> const Surface& { return Picture4->surface(); }}};
  QMenu* popups[] = {RB1, RB2, RB3};
  for (std::size_t i = 0; i < pictures.size(); ++i)
    AddSavePictureEntry(popups[i], pictures[i].ObjectName, dialogs_, boundary_, pictures[i].Of);
  QMenu* edit = menuBar()->addMenu("Edit(&E)");
  edit->setObjectName("mnuEdit");
  std::vector<PictureChoice> editEntries = pictures;
  for (PictureChoice& c : editEntries) c.ObjectName.replace("mnuSavePicture", "mnuEditPicture");
  AddSavePictureMenu(edit, dialogs_, boundary_, editEntries);
  // The whole diagram drawn again for a paper, from every figure's menu.
  const DrawPublication pollen = [this](const PublicationChoice& c) {
    pub::PollenOptions o = pub::DefaultPollenOptions(s_, c.WidthMm);
    o.ShownEof = settings_.ShownEof;
    o.Zones = c.Zones;
    o.MinMaxPercent = c.MinMaxPercent;
    o.Exaggerate = c.Exaggerate;
    return pub::PollenDiagramFigure(s_, o);
  };
  const auto tree = [this] { return pub::HasConissTree(s_); };
  for (QMenu* menu : {RB1, RB2, RB3, edit})
    AddPublicationEntry(
        menu, menu == edit ? QString("mnuEditPublication") : "mnuPublication" + menu->objectName(),
        dialogs_, boundary_, this, PublicationKind::PollenDiagram, tree, pollen);
}

void frmDiagram::ConnectEvents() {
  const std::pair<QAction*, DiagramStyle> styles[] = {{mnuBar, DiagramStyle::Bar},
                                                      {mnuArea, DiagramStyle::Area},
                                                      {mnuDot, DiagramStyle::Dot},
                                                      {mnuCurve, DiagramStyle::Curve},
                                                      {mnuDotCurve, DiagramStyle::DotCurve}};
  for (const auto& [action, style] : styles)
    connect(action, &QAction::triggered, this, [this, style] {
      settings_.Style = style;
      boundary_.Run([this] { DrawDiagram(); });
    });
  connect(nmuConiss, &QAction::triggered, this, &frmDiagram::ToggleConiss);
  connect(mnuECC, &QAction::triggered, this, &frmDiagram::EccRequested);

  connect(mnuCopyDiagram, &QAction::triggered, this,
          [this] { Picture1->surface().CopyToClipboard(); });
  connect(mnuCopyEOF, &QAction::triggered, this, [this] { Picture2->surface().CopyToClipboard(); });
  connect(mnuCopyTaxaName, &QAction::triggered, this,
          [this] { Picture4->surface().CopyToClipboard(); });
  connect(mnuSaveEOF, &QAction::triggered, this, &frmDiagram::SaveEOF);
  connect(mnuSaveAllEOF, &QAction::triggered, this, &frmDiagram::SaveAllEOF);
  connect(Picture1, &PictureBox::RightPressed, this, [this](const QPoint& at) { RB1->popup(at); });
  connect(Picture2, &PictureBox::RightPressed, this, [this](const QPoint& at) { RB2->popup(at); });
  connect(Picture4, &PictureBox::RightPressed, this, [this](const QPoint& at) { RB3->popup(at); });
  connect(Picture1, &PictureBox::Resized, this, &frmDiagram::ScheduleRedraw);

  connect(Slider1, &QSlider::valueChanged, this, &frmDiagram::SelectSample);
  connect(Slider1, &QSlider::sliderPressed, this, [this] { SetSizing(true); });
  connect(Slider1, &QSlider::sliderReleased, this, [this] { SetSizing(false); });
  connect(UpDown1, &QSpinBox::valueChanged, this, [this](int v) { Slider1->setValue(v); });
  connect(Combo2, &QComboBox::activated, this, &frmDiagram::ChooseLabel);
  connect(Check1, &QCheckBox::toggled, this, [this](bool on) {
    emit SelectionLineToggled(on);
    boundary_.Run([this] {
      DrawDiagramMarker();
      DrawEofMarker();
    });
  });
  connect(Slider2, &QSlider::valueChanged, this, &frmDiagram::ZoomMoved);
  connect(Combo1, &QComboBox::activated, this, [this] {
    boundary_.Run([this] { DrawEofCurve(); });
    emit EofChosen();
  });
  connect(Slider3, &QSlider::valueChanged, this, [this] {
    boundary_.Run([this] {
      LayoutTaxaColumns();
      DrawDiagram();
      DrawTaxaNames();
    });
  });
  connect(HScroll1, &QScrollBar::valueChanged, this, [this] {
    boundary_.Run([this] {
      DrawDiagram();
      DrawTaxaNames();
    });
  });
}

QSize frmDiagram::Margins() const {
  const QWidget* central = centralWidget();
  return QSize(kLeft + kRight, kTop + kBottom + (height() - central->height()));
}

frmDiagram::FrameRules frmDiagram::ApplyFrameRules(QSize window, QSize margins) {
  FrameRules r;
  int w = std::max(window.width(), kMinWidth);
  int h = std::max(window.height(), kMinHeight);
  bool justShown = false;
  // The fixed panels around the diagram take their own room: the restored
  // size gives the diagram itself the small size, not the window.
  if (h - margins.height() < kTooSmall) {
    ++r.Messages;
    justShown = true;
    h = margins.height() + kSmallHeight;
  }
  if (w - margins.width() < kTooSmall) {
    if (!justShown) ++r.Messages;
    w = margins.width() + kSmallWidth;
  }
  r.Size = QSize(w, h);
  return r;
}

QSize frmDiagram::SmallestWindow(QSize margins) {
  return QSize(std::max({kMinWidth, margins.width() + kTooSmall, kControlsRow}),
               std::max(kMinHeight, margins.height() + kTooSmall));
}

void frmDiagram::KeepUsableSize() {
  // The menu and status bars have their heights only once laid out.
  const QSize smallest = SmallestWindow(Margins());
  if (minimumSize() != smallest) setMinimumSize(smallest);
}

void frmDiagram::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  KeepUsableSize();
}

void frmDiagram::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (isVisible() && size() != corrected_) {
    const FrameRules rules = ApplyFrameRules(size(), Margins());
    for (int i = 0; i < rules.Messages; ++i) dialogs_.Message("Frame too small", "Error");
    if (rules.Size != size()) {
      // The corrected size comes back as a resize of its own: take it as it is.
      corrected_ = rules.Size;
      resize(rules.Size);
    }
    KeepUsableSize();
  } else {
    corrected_ = QSize();
  }
  PlacePanels();
}

void frmDiagram::PlacePanels() {
  const QWidget* central = centralWidget();
  const int w = central->width(), h = central->height();
  const int pw = std::max(1, w - kLeft - kRight), ph = std::max(1, h - kTop - kBottom);
  const QRect p1(kLeft, kTop, pw, ph);
  Picture1->setGeometry(p1);
  Picture4->setGeometry(kLeft, 4, pw, kNames);
  Slider1->setGeometry(6, kTop - 6, 22, ph + 12);
  DepthScale->setGeometry(kLeft - kDepthWidth, kTop, kDepthWidth, ph);
  const int rx = p1.right() + 8;
  Picture2->setGeometry(rx, kTop, kEofWidth, ph);
  Label2->setGeometry(rx, 8, 70, 24);
  Combo1->setGeometry(rx + 72, 8, 70, 24);
  Label4->setGeometry(rx, 40, kEofWidth, 22);
  const int below = p1.bottom() + 3;
  for (int i = 0; i < 3; ++i)
    Label3[static_cast<std::size_t>(i)]->setGeometry(rx + i * kEofWidth / 3, below, kEofWidth / 3,
                                                     16);
  Slider2->setGeometry(rx, below + 18, kEofWidth, 24);
  HScroll1->setGeometry(kLeft, below, pw, 16);
  const int row = below + 21;
  const int x = 6;
  Combo2->setGeometry(x, row, 110, 26);
  UpDown1->setGeometry(x + 114, row, 64, 26);
  Check1->setGeometry(x + 186, row, 120, 26);
  CaptionSlider3->setGeometry(x + 312, row, 100, 26);
  Slider3->setGeometry(x + 414, row, std::max(60, std::min(200, pw + kLeft - 420)), 26);
}

void frmDiagram::ScheduleRedraw() {
  if (redrawPending_ || !s_.DiagramOpen) return;
  redrawPending_ = true;
  QTimer::singleShot(0, this, [this] {
    redrawPending_ = false;
    if (s_.DiagramOpen) boundary_.Run([this] { FullRedraw(); });
  });
}

void frmDiagram::closeEvent(QCloseEvent* event) {
  s_.DiagramOpen = false;
  SetSizing(false);
  event->accept();
}

}  // namespace varnoth
