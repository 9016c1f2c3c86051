#include "ui/frmLuvane.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QStatusBar>
#include <QToolTip>
#include <cmath>

#include "interpolation/StationImport.h"
#include "presentation/publication/Figures.h"
#include "state/Format.h"
#include "ui/Controls.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/PublicationExport.h"
#include "ui/ToolTips.h"
#include "ui/WindowPlacement.h"
#include "ui/frmLuvaneCorrel.h"
#include "ui/frmLuvaneHelp.h"
#include "ui/frmLuvaneMag.h"
#include "ui/frmMAT.h"

namespace varnoth {

namespace {

constexpr int Pixels(int twips) { return (twips + 7) / 15; }
constexpr int kBeside = Pixels(4450);     // the controls to the right of the map
constexpr int kMapHeight = Pixels(5400);  // the map's height as designed
constexpr int kMargin = 8;

constexpr int kBoxWidth = 50;              // a bound box
constexpr int kLatColumn = kBoxWidth + 4;  // the latitude boxes, left of the map
constexpr float kBoundStep = 5;            // the step the bounds are rounded to

QString Number(double v) { return QString::fromStdString(FormatGeneral(static_cast<float>(v))); }

struct MapBounds {
  float MinLat, MaxLat, MinLon, MaxLon;
};

// The stations' bounds as the map shows them. Stations on one parallel or
// meridian at a multiple of 10 keep a span of 0 after the rounding: it is
// widened by the rounding step on each side, so that the map stays a map.
MapBounds StationBounds(const InterpolationState& in) {
  MapBounds b{in.MinLat, in.MaxLat, in.MinLon, in.MaxLon};
  if (b.MaxLat <= b.MinLat) {
    b.MinLat -= kBoundStep;
    b.MaxLat += kBoundStep;
  }
  if (b.MaxLon <= b.MinLon) {
    b.MinLon -= kBoundStep;
    b.MaxLon += kBoundStep;
  }
  return b;
}

// Out of the task bar and above the others.
void BringToFront(QWidget* w) {
  w->setWindowState(w->windowState() & ~Qt::WindowMinimized);
  w->raise();
}

}  // namespace

std::vector<std::string> CoastlineCandidates() {
  std::vector<std::string> c;
  const QString self = QCoreApplication::applicationDirPath();
  if (!self.isEmpty()) c.push_back((self + "/../share/varnoth/coastline.csv").toStdString());
  c.push_back("data/coastline.csv");
#ifdef VARNOTH_COASTLINE
  c.push_back(VARNOTH_COASTLINE);
#endif
  return c;
}

frmLuvane::frmLuvane(Session& session, Dialogs& dialogs, frmMAT& mat, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      s_(session),
      dialogs_(dialogs, this),
      mat_(mat),
      coast_(WorldCoastline(CoastlineCandidates())) {
  setObjectName("frmLuvane");
  setWindowTitle("Luvane 1.1");
  setAttribute(Qt::WA_QuitOnClose, false);
  BuildControls();
  StatusNext = NextStepLine(this, [this] { return NextStep(); });
}

QString frmLuvane::NextStep() const {
  if (s_.SiteInfoLoaded) return "The climate is with the reconstruction";
  if (!s_.Interp.InterpRefLoaded)
    return "Import reference dataset: the climate stations (a CSV file)";
  if (!s_.Interp.InterpTargetLoaded)
    return "Next: Import target cordinates, the positions of the reference sites in their order";
  if (!Command1->isEnabled()) return "Next: Check accuracy interpolates onto the sites";
  return "Next: Return to Varnoth hands the climate to the reconstruction";
}

frmLuvane::~frmLuvane() = default;

void frmLuvane::BuildControls() {
  auto* c = new QWidget(this);
  setCentralWidget(c);
  mapHeight_ = kMapHeight;
  Picture1 = new PictureBox("Picture1", QSize(2 * mapHeight_, mapHeight_), false, c);
  Picture1->setMouseTracking(true);
  Picture1->installEventFilter(this);

  Command0 = Named(new QPushButton("Import reference dataset", c), "Command0");
  Command2 = Named(new QPushButton("Import target cordinates", c), "Command2");
  Option1[1] = Named(new QRadioButton("Interpolation", c), "Option1_1");
  Option1[0] = Named(new QRadioButton("Minimum distance", c), "Option1_0");
  Label1 = Named(new QLabel("Weighting factor:", c), "Label1");
  Label2 = Named(new QLabel("w = d", c), "Label2");
  Combo1 = Named(new QComboBox(c), "Combo1");
  Combo1->setEditable(true);
  Label3 = Named(new QLabel("Radius:", c), "Label3");
  Text3 = Named(new QLineEdit(c), "Text3");
  Combo2 = Named(new QComboBox(c), "Combo2");
  Command3 = Named(new QPushButton("Check accuracy", c), "Command3");
  Command1 = Named(new QPushButton("Return to Varnoth", c), "Command1");
  Command4 = Named(new QPushButton("Close", c), "Command4");
  for (int i = 0; i < 2; ++i) {
    Text1[i] = Named(new QLineEdit(c), QString("Text1_%1").arg(i));
    Text2[i] = Named(new QLineEdit(c), QString("Text2_%1").arg(i));
  }
  ProgressBar1 = Named(new QProgressBar(c), "ProgressBar1");
  ProgressBar1->setTextVisible(false);
  progress_.SetBar(ProgressBar1);

  mnuHelpTag = menuBar()->addMenu("Help");
  mnuHelpTag->setObjectName("mnuHelpTag");
  mnuHelp = mnuHelpTag->addAction("Help");
  mnuHelp->setObjectName("mnuHelp");
  mnuRBTag = new QMenu("RightButton", this);
  mnuRBTag->setObjectName("mnuRBTag");
  mnuCopyMap = mnuRBTag->addAction("Copy");
  mnuCopyMap->setObjectName("mnuCopyMap");

  connect(Command0, &QPushButton::clicked, this, [this] { ImportData(kStationFile); });
  connect(Command2, &QPushButton::clicked, this, [this] { ImportData(kTargetFile); });
  connect(Command3, &QPushButton::clicked, this, [this] { DoInterpolation(); });
  connect(Command1, &QPushButton::clicked, this, [this] { ReturnToVarnoth(); });
  connect(Command4, &QPushButton::clicked, this, [this] {
    hide();
    mat_.Command8->setEnabled(true);
  });
  for (QRadioButton* o : Option1)
    connect(o, &QRadioButton::clicked, this, [this] { InputChanged(false); });
  connect(Combo1, &QComboBox::textActivated, this, [this] { InputChanged(false); });
  connect(Combo1, &QComboBox::editTextChanged, this, [this] {
    if (loaded_) InputChanged(false);
  });
  connect(Text3, &QLineEdit::textEdited, this, [this] { InputChanged(true); });
  connect(mnuHelp, &QAction::triggered, this, [this] {
    if (!help_) help_ = new frmLuvaneHelp(this);
    help_->show();
    help_->raise();
  });
  connect(mnuCopyMap, &QAction::triggered, this, [this] { Picture1->surface().CopyToClipboard(); });
  AddSavePictureEntry(
      mnuRBTag, "mnuSavePictureMap", dialogs_, boundary_,
      [this]() -> const Surface& { return Picture1->surface(); }, mnuCopyMap);
  AddPublicationEntry(
      mnuRBTag, "mnuPublicationMap", dialogs_, boundary_, this, PublicationKind::WidthOnly,
      [] { return false; },
      [this](const PublicationChoice& c) { return pub::MapFigure(s_, coast_, c.WidthMm); },
      mnuCopyMap);
  ExplainControls(this);
  connect(Picture1, &PictureBox::RightPressed, this,
          [this](const QPoint& at) { mnuRBTag->popup(at); });
  connect(Picture1, &PictureBox::LeftPressed, this, [this](const QPointF& pixel) {
    const QPointF u = Picture1->surface().ToUser(pixel);
    ClickOnMap(u.x(), u.y());
  });
  PlaceControls();
}

void frmLuvane::PlaceControls() {
  const int mapWidth = Picture1->width();
  // Each bound at its corner of the map: the latitudes at the left edge,
  // upper at the top, the longitudes under the map, western at the left.
  const int left = kMargin + kLatColumn, bottom = kMargin + mapHeight_;
  Picture1->move(left, kMargin);
  Text1[1]->setGeometry(kMargin, kMargin, kBoxWidth, 22);
  Text1[0]->setGeometry(kMargin, bottom - 22, kBoxWidth, 22);
  Text2[0]->setGeometry(left, bottom + 4, kBoxWidth, 22);
  Text2[1]->setGeometry(left + mapWidth - kBoxWidth, bottom + 4, kBoxWidth, 22);
  const int x = left + mapWidth + kMargin;
  const int w = kBeside - kLatColumn - 3 * kMargin;
  int y = kMargin;
  auto row = [&](QWidget* widget, int height = 28) {
    widget->setGeometry(x, y, w, height);
    y += height + 4;
  };
  row(Command0);
  row(Command2);
  row(Option1[1], 22);
  row(Option1[0], 22);
  Label1->setGeometry(x, y, 110, 24);
  Label2->setGeometry(x + 112, y, 36, 24);
  Combo1->setGeometry(x + 150, y, w - 150, 24);
  y += 28;
  Label3->setGeometry(x, y, 60, 24);
  Text3->setGeometry(x + 62, y, 60, 24);
  Combo2->setGeometry(x + 126, y, w - 126, 24);
  y += 32;
  row(Command3);
  row(Command1);
  row(Command4);
  row(ProgressBar1, 14);
  const int height = std::max(kMargin + mapHeight_ + 30, y) + kMargin;
  centralWidget()->setFixedSize(mapWidth + kBeside, height);
  // The window follows the map at once, not at the next layout pass.
  if (layout()) layout()->activate();
  resize(mapWidth + kBeside,
         height + menuBar()->sizeHint().height() + statusBar()->sizeHint().height());
}

void frmLuvane::Open() {
  boundary_.Run([this] {
    if (!loaded_) Load();
    show();
    raise();
    activateWindow();
  });
}

void frmLuvane::Load() {
  loaded_ = true;
  s_.Interp.InterpRefLoaded = false;
  s_.Interp.InterpTargetLoaded = false;
  {
    const QSignalBlocker q1(Combo1), q2(Combo2), q3(Text3);
    Combo1->clear();
    Combo1->addItems({"-1", "-2"});
    Combo1->setEditText("-2");
    Combo2->clear();
    Combo2->addItems({"Degree", "km"});
    Combo2->setCurrentIndex(0);
    Text3->setText("3");
  }
  Option1[1]->setChecked(true);
  for (QWidget* w :
       std::initializer_list<QWidget*>{Command0, Command4, Option1[0], Option1[1], Combo1, Text3})
    w->setEnabled(true);
  // The unit of the radius is degrees whatever the list says.
  Combo2->setEnabled(false);
  for (QPushButton* b : {Command1, Command2, Command3}) b->setEnabled(false);
  Text1[0]->setText("-90");
  Text1[1]->setText("90");
  Text2[0]->setText("-180");
  Text2[1]->setText("180");
  ProgressBar1->setVisible(false);
  mapHeight_ = kMapHeight;
  Picture1->setFixedSize(2 * mapHeight_, mapHeight_);
  Picture1->surface().Resize(Picture1->width(), Picture1->height());
  PlaceControls();
  if (NeverPlaced(this)) PlaceOver(this, &mat_, size());
  // Kept inside the screen from below.
  const QRect screen = AvailableArea(this);
  if (y() + frameGeometry().height() > screen.bottom())
    move(x(), std::max(screen.top(), screen.bottom() - frameGeometry().height()));

  Surface& map = Picture1->surface();
  SetMapScale(map, -90, 90, -180, 180);
  map.SetBackColour(Qt::white);
  if (!s_.ReconstructionOpen) {
    DrawCoastline();
  } else if (s_.SiteInfoLoaded) {
    // Open again for inspection of what was handed back.
    ShowStationRange();
    for (QWidget* w : std::initializer_list<QWidget*>{
             Command0, Command1, Command2, Command4, Option1[0], Option1[1], Combo1, Combo2, Text3})
      w->setEnabled(false);
    Command3->setEnabled(true);
  }
  Picture1->update();
  s_.Interp.InterpWindowOpen = true;
}

// The stations' range in the four boxes, and the map drawn over it.
void frmLuvane::ShowStationRange() {
  const MapBounds b = StationBounds(s_.Interp);
  Text1[0]->setText(Number(b.MinLat));
  Text1[1]->setText(Number(b.MaxLat));
  Text2[0]->setText(Number(b.MinLon));
  Text2[1]->setText(Number(b.MaxLon));
  LayOutMap();
  RedrawInterpMap();
}

InterpolationSettings frmLuvane::Settings() const {
  InterpolationSettings st;
  st.Mode = Option1[1]->isChecked() ? InterpMode::Interpolation : InterpMode::MinimumDistance;
  st.Exponent = Combo1->currentText().toStdString();
  st.Radius = Text3->text().toStdString();
  return st;
}

// Read as the run reads it, so that the circle and the square show the
// reach the run used ("1,5" is 1).
double frmLuvane::Radius() const { return LenientParse(Text3->text().toStdString()); }

void frmLuvane::ImportData(Count mode) {
  QPushButton* button = mode == kStationFile ? Command0 : Command2;
  // Every failure of an import ends it quietly, its button usable again.
  try {
    const std::string title = mode == kStationFile
                                  ? "Open station table (reference dataset)"
                                  : "Open target table (positions of the reference sites)";
    // With the example data in use, their station and target tables are
    // beside them.
    const std::optional<std::string> path =
        s_.ExampleFolder.empty()
            ? dialogs_.OpenFileName(kDataFileFilter, title)
            : dialogs_.OpenFileNameIn(kDataFileFilter, title, s_.ExampleFolder);
    const InterpImportResult r = varnoth::ImportData(s_, mode, path, dialogs_);
    BusyPointer::Restore();
    if (!r.Ok) {
      button->setEnabled(true);
      return;
    }
    if (mode == kStationFile) {
      ShowStationRange();
      Command0->setEnabled(false);
      Command2->setEnabled(true);
      Command2->setFocus();
    } else {
      Command2->setEnabled(false);
      Command3->setEnabled(true);
      Command3->setFocus();
      DrawTargetSites();
      Picture1->update();
    }
  } catch (const std::exception&) {
    BusyPointer::Restore();
    progress_.Finish();
    button->setEnabled(true);
  }
}

void frmLuvane::LayOutMap() {
  const MapBounds b = StationBounds(s_.Interp);
  const double lonSpan = b.MaxLon - b.MinLon, latSpan = b.MaxLat - b.MinLat;
  if (lonSpan <= 0 || latSpan <= 0) return;
  int h = kMapHeight;
  int w = static_cast<int>(std::lround(lonSpan * h / latSpan));
  // A map wider than the screen shrinks to it, its shape kept; the frame's
  // borders count, so that the whole window fits.
  const QRect screen = AvailableArea(this);
  const int borders = isVisible() ? frameGeometry().width() - width() : 0;
  if (w + kBeside + borders > screen.width()) {
    w = std::max(1, screen.width() - kBeside - borders);
    h = std::max(1, static_cast<int>(std::lround(w * latSpan / lonSpan)));
  }
  mapHeight_ = h;
  Picture1->setFixedSize(w, h);
  Picture1->surface().Resize(w, h);
  PlaceControls();
  KeepOnScreen();
}

// The window grown by its map comes back wholly onto the screen.
void frmLuvane::KeepOnScreen() {
  const QRect frame = frameGeometry();
  const QRect onScreen = OntoScreen(frame, AvailableArea(this));
  if (onScreen.topLeft() != frame.topLeft()) move(onScreen.topLeft());
}

// The magnifier and the accuracy window stand beside the map window, the
// later one under the earlier where both would take the same place.
void frmLuvane::PlaceBesideMap(QWidget* window, const QWidget* other) {
  PlaceBeside(window, this);
  if (!other || !other->isVisible()) return;
  QRect f = window->frameGeometry();
  if (!f.intersects(other->frameGeometry())) return;
  f.moveTop(other->frameGeometry().bottom() + 1);
  window->move(OntoScreen(f, AvailableArea(this)).topLeft());
}

void frmLuvane::RedrawInterpMap() {
  Surface& map = Picture1->surface();
  SetMapScale(map, Text1[0]->text().toDouble(), Text1[1]->text().toDouble(),
              Text2[0]->text().toDouble(), Text2[1]->text().toDouble());
  map.SetBackColour(Qt::white);
  map.StoreBackground();
  DrawCoastline();
  DrawStations(map, s_.Interp, kMapMark);
  map.StoreBackground();
  if (!Command2->isEnabled()) {
    DrawTargetSites();
    HighlightAnalogues();
  }
  Picture1->update();
}

void frmLuvane::DrawCoastline() {
  Surface& map = Picture1->surface();
  map.SetForeColour(Qt::white);
  map.Clear();
  BusyPointer::Set();
  QProgressBar* bar = mat_.ProgressBar1;
  bar->setRange(10, 130);
  bar->setValue(10);
  bar->setVisible(true);
  varnoth::DrawCoastline(map, coast_, [bar](int piece) { bar->setValue(10 + 10 * piece); });
  map.StoreBackground();
  bar->setVisible(false);
  bar->setMinimum(0);
  bar->setValue(0);
  BusyPointer::Restore();
  Picture1->update();
}

void frmLuvane::DrawTargetSites() {
  Surface& map = Picture1->surface();
  SetMapScale(map, Text1[0]->text().toDouble(), Text1[1]->text().toDouble(),
              Text2[0]->text().toDouble(), Text2[1]->text().toDouble());
  DrawTargets(map, s_.Interp, kMapMark);
  MarkNoDataTargets();
  map.StoreBackground();
  Picture1->update();
}

void frmLuvane::MarkNoDataTargets() {
  Surface& map = Picture1->surface();
  if (s_.ClimateLoaded && s_.Interp.InterpTargetLoaded) DrawNoDataTargets(map, s_, kMapMark);
  map.StoreBackground();
  Picture1->update();
}

void frmLuvane::DoInterpolation() {
  boundary_.Run(
      [this] {
        if (correl_) correl_->close();
        varnoth::DoInterpolation(s_, Settings(), progress_);
        // The reconstruction's parameter list takes the interpolated names.
        {
          const QSignalBlocker quiet(mat_.Combo1);
          mat_.Combo1->clear();
          for (long k = 1; k <= s_.ClimateParamCount; ++k)
            mat_.Combo1->addItem(QString::fromStdString(s_.ClimateParamNames(k)));
          mat_.Combo1->setCurrentIndex(0);
        }
        MarkNoDataTargets();
        frmLuvaneCorrel* correl = CorrelWindow();
        if (NeverPlaced(correl)) PlaceBesideMap(correl, mag_);
        correl->Open();
        if (!s_.ReconstructionOpen) {
          Command1->setEnabled(true);
          Command1->setFocus();
        }
        progress_.Finish();
        DrawTargetSites();
      },
      [this] { progress_.Finish(); });
}

void frmLuvane::InputChanged(bool radius) {
  boundary_.Run([this, radius] {
    Picture1->surface().Clear();
    if (mag_) mag_->close();
    if (correl_) correl_->close();
    Command1->setEnabled(false);
    if (radius) {
      if (s_.Interp.InterpTargetLoaded) DrawTargetSites();
      Text3->setCursorPosition(Text3->text().size());
    }
    Picture1->update();
  });
}

void frmLuvane::ReturnToVarnoth() {
  boundary_.Run([this] {
    // Both windows of the analysis come to the front, the reconstruction
    // on top.
    for (QWidget* w : QApplication::topLevelWidgets())
      if (w->objectName() == "frmMain") BringToFront(w);
    BringToFront(&mat_);
    mat_.show();
    mat_.activateWindow();
    for (QWidget* w : std::initializer_list<QWidget*>{
             mat_.Option1[0], mat_.Option1[1], mat_.Option3[0], mat_.Option3[1], mat_.Slider1,
             mat_.Slider2, mat_.Slider3, mat_.Check1, mat_.Label1, mat_.Label2})
      w->setEnabled(true);
    if (!s_.EnhanceUsed) {
      mat_.Check2->setEnabled(true);
      if (mat_.Check2->isChecked())
        for (QRadioButton* o : mat_.Option2) o->setEnabled(true);
    }
    mat_.Command1->setEnabled(false);
    mat_.Command8->setEnabled(false);
    if (mag_) mag_->close();
    s_.SiteInfoLoaded = true;
    for (QWidget* w :
         std::initializer_list<QWidget*>{Option1[0], Option1[1], Combo1, Combo2, Text3})
      w->setEnabled(false);
    // The reconstruction runs on the interpolated climate at once.
    mat_.Open();
  });
}

frmLuvaneMag* frmLuvane::MagWindow() {
  if (!mag_) {
    mag_ = new frmLuvaneMag(*this);
    PlaceBesideMap(mag_, correl_);
  }
  return mag_;
}

frmLuvaneCorrel* frmLuvane::CorrelWindow() {
  if (!correl_) {
    correl_ = new frmLuvaneCorrel(s_, dialogs_.Inner(), mat_, this);
  }
  return correl_;
}

void frmLuvane::ClickOnMap(double x, double y) {
  boundary_.Run([this, x, y] {
    if (!s_.Interp.InterpRefLoaded) return;
    Surface& map = Picture1->surface();
    map.SetBackColour(Qt::white);
    RedrawInterpMap();
    map.SetFillStyle(FillStyle::Transparent);
    const double r = Radius();
    map.Box(x - kMagnifierHalf * r, y - kMagnifierHalf * r, x + kMagnifierHalf * r,
            y + kMagnifierHalf * r, kCoastColour);
    map.StoreBackground();
    Picture1->update();
    frmLuvaneMag* mag = MagWindow();
    mag->show();
    mag->raise();
    DrawMagnifier(x, y, kMagnifierHalf);
  });
}

void frmLuvane::DrawMagnifier(double x, double y, double half) {
  frmLuvaneMag* mag = MagWindow();
  varnoth::DrawMagnifier(mag->Picture2->surface(), s_, coast_, x, y, half);
  mag->Picture2->update();
}

void frmLuvane::MoveOnMap(double x, double y) {
  boundary_.Run([this, x, y] {
    const InterpolationState& in = s_.Interp;
    const std::string name = SiteNameAt(in, x, y, kMapHover);
    if (!name.empty()) Picture1->setToolTip(QString::fromStdString(name));
    Surface& map = Picture1->surface();
    map.Clear();
    Surface* magnifier = mag_ && mag_->isVisible() ? &mag_->Picture2->surface() : nullptr;
    if (magnifier) magnifier->Clear();
    if (!Command1->isEnabled()) HighlightAnalogues();
    const double r = Radius();
    for (Count i : TargetsAt(in, x, y, kMapHover)) {
      DrawReach(map, in.SiteLongitude(i), in.SiteLatitude(i), kMapMark, r);
      if (magnifier)
        DrawReach(*magnifier, in.SiteLongitude(i), in.SiteLatitude(i),
                  std::abs(magnifier->ScaleWidth()) / 20, r);
    }
    Picture1->update();
    if (magnifier) mag_->Picture2->update();
  });
}

void frmLuvane::MoveOnMagnifier(double x, double y) {
  boundary_.Run([this, x, y] {
    if (!mag_) return;
    Surface& m = mag_->Picture2->surface();
    const double tol = std::abs(m.ScaleWidth()) / 20;
    const InterpolationState& in = s_.Interp;
    const std::string name = SiteNameAt(in, x, y, tol);
    if (!name.empty()) mag_->Picture2->setToolTip(QString::fromStdString(name));
    m.Clear();
    HighlightAnalogues();
    for (Count i : TargetsAt(in, x, y, tol))
      DrawReach(m, in.SiteLongitude(i), in.SiteLatitude(i), tol, Radius());
    mag_->Picture2->update();
  });
}

void frmLuvane::MagnifierClosed() {
  boundary_.Run([this] {
    if (!loaded_ || !s_.Interp.InterpRefLoaded) return;
    RedrawInterpMap();
    HighlightAnalogues();
  });
}

void frmLuvane::HighlightAnalogues() {
  if (!s_.ReconstructionOpen || !s_.Interp.InterpWindowOpen || !loaded_) return;
  const long k = s_.SampleCursor;
  if (k < 1 || !s_.FossilEmptySample.Allocated() ||
      k >= static_cast<long>(s_.FossilEmptySample.Size()) || s_.FossilEmptySample(k))
    return;
  Surface& map = Picture1->surface();
  map.Clear();
  DrawAnalogueRings(map, s_, kMapMark);
  Picture1->update();
  if (mag_ && mag_->isVisible()) {
    Surface& m = mag_->Picture2->surface();
    m.Clear();
    DrawAnalogueRings(m, s_, std::abs(m.ScaleWidth()) / 16);
    mag_->Picture2->update();
  }
}

void frmLuvane::UnloadAll() {
  if (mag_) mag_->close();
  if (correl_) correl_->close();
  if (help_) help_->close();
}

bool frmLuvane::eventFilter(QObject* watched, QEvent* event) {
  if (watched == Picture1 && event->type() == QEvent::MouseMove) {
    const auto* m = static_cast<QMouseEvent*>(event);
    const QPointF u = Picture1->surface().ToUser(m->position() - QPointF(Picture1->Origin()));
    MoveOnMap(u.x(), u.y());
  }
  return QMainWindow::eventFilter(watched, event);
}

void frmLuvane::closeEvent(QCloseEvent* event) {
  // Unloaded first, so that the magnifier's closing leaves the map alone.
  loaded_ = false;
  UnloadAll();
  s_.Interp.InterpWindowOpen = false;
  mat_.Command8->setEnabled(true);
  emit Unloaded();
  event->accept();
}

}  // namespace varnoth
