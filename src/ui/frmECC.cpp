#include "ui/frmECC.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSlider>
#include <algorithm>

#include "diagram/DiagramLayout.h"
#include "diagram/EofClimateCorrelation.h"
#include "presentation/publication/Figures.h"
#include "reconstruction/ClimateImport.h"
#include "state/Format.h"
#include "ui/Controls.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/PublicationExport.h"
#include "ui/frmDiagram.h"

namespace varnoth {

namespace {

constexpr double kTwips = 15;  // twips per pixel

// The designed layout, in pixels. The table shows twelve rows and, with
// the column that stands partly at its edge, five columns.
constexpr int kTableWidth = 336, kTableHeight = 183;
constexpr int kHeadWidth = 60, kStripHeight = 20, kScroll = 16;
constexpr int kScatterWidth = 220, kScatterHeight = 200, kBoundWidth = 56;

PictureBox* Picture(QWidget* parent, const QString& name, int width, int height) {
  auto* p = new PictureBox(name, QSize(width, height), false, parent);
  // The table's surfaces count in twips, as its cells are given.
  p->surface().SetScale(0, 0, width * kTwips, height * kTwips);
  return p;
}

QLabel* Caption(QWidget* parent, const QString& name, Qt::Alignment align) {
  auto* l = new QLabel(parent);
  l->setObjectName(name);
  l->setAlignment(align);
  return l;
}

}  // namespace

frmECC::frmECC(Session& session, ColourSettings& colours, Dialogs& dialogs, Progress& progress,
               frmDiagram& diagram, QWidget* parent)
    : QWidget(parent, Qt::Window),
      s_(session),
      colours_(colours),
      ownDialogs_(dialogs, this),
      dialogs_(ownDialogs_),
      progress_(progress),
      diagram_(diagram) {
  setObjectName("frmECC");
  setWindowTitle("EOF-Climate correlation");
  setAttribute(Qt::WA_QuitOnClose, false);
  BuildControls();
  ConnectEvents();
}

void frmECC::BuildControls() {
  Frame1 = new QGroupBox(" Correlation coefficient (R)", this);
  Frame1->setObjectName("Frame1");
  const int tx = 10 + kHeadWidth, ty = 22 + 2 * kStripHeight;
  Picture0[0] = Picture(Frame1, "Picture0_0", kTableWidth, kStripHeight);
  Picture0[1] = Picture(Frame1, "Picture0_1", kTableWidth, kStripHeight);
  Picture1 = Picture(Frame1, "Picture1", kHeadWidth, kTableHeight);
  Picture2 = Picture(Frame1, "Picture2", kTableWidth, kTableHeight);
  Picture0[0]->move(tx, 22);
  Picture0[1]->move(tx, 22 + kStripHeight);
  Picture1->move(10, ty);
  Picture2->move(tx, ty);
  Picture2->setMouseTracking(true);
  Picture2->installEventFilter(this);
  Picture2->setCursor(Qt::PointingHandCursor);
  VScroll1 = new QScrollBar(Qt::Vertical, Frame1);
  VScroll1->setObjectName("VScroll1");
  VScroll1->setGeometry(tx + kTableWidth, ty, kScroll, kTableHeight);
  HScroll1 = new QScrollBar(Qt::Horizontal, Frame1);
  HScroll1->setObjectName("HScroll1");
  HScroll1->setGeometry(tx, ty + kTableHeight, kTableWidth, kScroll);
  for (QScrollBar* bar : {VScroll1, HScroll1}) {
    bar->setRange(1, 1);
    bar->setVisible(false);
  }
  Frame1->setGeometry(8, 8, tx + kTableWidth + kScroll + 10, ty + kTableHeight + kScroll + 10);

  Frame2 = new QGroupBox(this);
  Frame2->setObjectName("Frame2");
  const int sx = 10 + kBoundWidth + 4, sy = 22;
  Picture3 = Picture(Frame2, "Picture3", kScatterWidth, kScatterHeight);
  Picture3->move(sx, sy);
  for (int i = 0; i < 2; ++i) {
    Text1[static_cast<std::size_t>(i)] = new QLineEdit(Frame2);
    Text1[static_cast<std::size_t>(i)]->setObjectName(QString("Text1_%1").arg(i));
    Text1[static_cast<std::size_t>(i)]->setAlignment(Qt::AlignRight);
  }
  Text1[1]->setGeometry(10, sy, kBoundWidth, 22);
  Text1[1]->setToolTip("Top of the climate axis");
  Text1[0]->setGeometry(10, sy + kScatterHeight - 22, kBoundWidth, 22);
  Text1[0]->setToolTip("Bottom of the climate axis");
  Label2[1] = Caption(Frame2, "Label2_1", Qt::AlignCenter);
  Label2[1]->setWordWrap(true);
  Label2[1]->setGeometry(6, sy + 30, kBoundWidth + 4, kScatterHeight - 60);
  const int below = sy + kScatterHeight + 2;
  Label1[0] = Caption(Frame2, "Label1_0", Qt::AlignLeft | Qt::AlignVCenter);
  Label1[0]->setGeometry(sx, below, kScatterWidth / 3, 16);
  Label2[0] = Caption(Frame2, "Label2_0", Qt::AlignCenter);
  Label2[0]->setGeometry(sx + kScatterWidth / 3, below, kScatterWidth / 3, 16);
  Label1[1] = Caption(Frame2, "Label1_1", Qt::AlignRight | Qt::AlignVCenter);
  Label1[1]->setGeometry(sx + 2 * kScatterWidth / 3, below, kScatterWidth / 3, 16);
  Slider1 = new QSlider(Qt::Horizontal, Frame2);
  Slider1->setObjectName("Slider1");
  Slider1->setRange(0, 8);
  Slider1->setPageStep(1);
  Slider1->setTickPosition(QSlider::TicksBelow);
  Slider1->setTickInterval(1);
  Slider1->setToolTip("EOF axis half width");
  Slider1->setGeometry(sx, below + 18, kScatterWidth, 26);
  Frame2->setGeometry(Frame1->geometry().right() + 9, 8, sx + kScatterWidth + 10, Frame1->height());

  RB = new QMenu("RB", this);
  RB->setObjectName("RB");
  mnuCopy = new QAction("&Copy", this);
  mnuCopy->setObjectName("mnuCopy");
  RB->addAction(mnuCopy);
  // The scatter as a file for papers.
  AddSavePictureEntry(RB, "mnuSavePicture", dialogs_, boundary_,
                      [this]() -> const Surface& { return Picture3->surface(); });
  // The table in view with its heads, placed as on the screen.
  AddSavePictureEntry(
      RB, "mnuSaveTablePicture", dialogs_, boundary_,
      [this] {
        std::vector<PlacedSurface> parts;
        for (PictureBox* p : {Picture2, Picture1, Picture0[0], Picture0[1]})
          parts.push_back({&p->surface(), p->pos()});
        return parts;
      },
      "Save Table Picture As...");
  // The whole table drawn again for a paper, as a heat map.
  AddPublicationEntry(
      RB, "mnuPublicationTable", dialogs_, boundary_, this, PublicationKind::WidthOnly,
      [] { return false; },
      [this](const PublicationChoice& c) {
        return pub::EofClimateFigure(s_, EccMatrix, s_.RefTaxaCount, c.WidthMm);
      });

  setFixedSize(Frame2->geometry().right() + 9, Frame1->geometry().bottom() + 9);
}

void frmECC::ConnectEvents() {
  connect(Picture2, &PictureBox::LeftPressed, this, &frmECC::CellClicked);
  connect(VScroll1, &QScrollBar::valueChanged, this,
          [this] { boundary_.Run([this] { ShowSoukan(pointerX_, pointerY_); }); });
  connect(HScroll1, &QScrollBar::valueChanged, this,
          [this] { boundary_.Run([this] { ShowSoukan(pointerX_, pointerY_); }); });
  for (QLineEdit* box : Text1) connect(box, &QLineEdit::textChanged, this, &frmECC::BoundsEdited);
  connect(Slider1, &QSlider::valueChanged, this, &frmECC::SliderMoved);
  connect(Picture3, &PictureBox::RightPressed, this, [this](const QPoint& at) { RB->popup(at); });
  connect(mnuCopy, &QAction::triggered, this, [this] { Picture3->surface().CopyToClipboard(); });
}

void frmECC::Open() {
  if (EccOpen && isVisible()) {
    raise();
    activateWindow();
    return;
  }
  bool loaded = false;
  boundary_.Run([this, &loaded] { loaded = Load(); });
  if (!loaded) {
    // Without climate data the window has nothing to show: it unloads itself.
    EccOpen = false;
    hide();
    return;
  }
  show();
  raise();
}

bool frmECC::Load() {
  EccClimate = 1;
  EccEof = 1;
  if (!s_.ClimateLoaded) {
    if (!dialogs_.Question("Please import climate file.", "Varnoth")) return false;
    const ClimateImportResult read = Inport_climate_data(
        s_, dialogs_.OpenFileName(kDataFileFilter, "Open climate at the reference sites"),
        dialogs_);
    // A cancelled dialog or a file that cannot be opened ends quietly.
    if (read.Failure && *read.Failure != FailureKind::Cancelled &&
        !IsFileFailure(*read.Failure))
      throw RuntimeFailure(*read.Failure);
    if (!read.Ok) return false;
  }
  EccMatrix = EccCorrelationMatrix(s_, progress_);
  EccEof = ToCount(static_cast<long long>(std::max(1, diagram_.Combo1->currentText().toInt())));
  SetQuietly(Slider1, diagram_.Slider2->value());
  SetQuietly(VScroll1, 1);
  SetQuietly(HScroll1, 1);
  SetBounds();
  ShowSoukan(0, 0);
  DrawScatter();
  return true;
}

void frmECC::SetBounds() {
  const EccRange range = EccClimateRange(s_, EccClimate);
  const double zoom = s_.ScatterZoom;
  Picture3->surface().SetScale(-zoom, range.Top, 2 * zoom, range.Bottom - range.Top);
  // The boxes' own change events must not act on what the program writes.
  filling_ = true;
  Text1[1]->setText(QString::fromStdString(EccText(range.Top)));
  Text1[0]->setText(QString::fromStdString(EccText(range.Bottom)));
  Label2[1]->setText(QString::fromStdString(s_.ClimateParamNames(EccClimate)));
}

EccTableView frmECC::View() const {
  EccTableView v;
  v.Eofs = s_.RefTaxaCount;
  v.Params = s_.ClimateParamCount;
  v.RowScroll = VScroll1->value();
  v.ColumnScroll = HScroll1->value();
  v.HoverRow = EccHoverRow;
  v.HoverColumn = EccHoverCol;
  v.SelectedEof = EccEof;
  v.SelectedClimate = EccClimate;
  return v;
}

void frmECC::SetScrollBars() {
  const Surface& table = Picture2->surface();
  const EccFit fit = EccCellsThatFit(table.ScaleWidth(), table.ScaleHeight());
  const long eofs = s_.RefTaxaCount, params = s_.ClimateParamCount;
  const bool rows = eofs > fit.Rows, columns = params > fit.Columns + 1;
  VScroll1->setRange(1, rows ? static_cast<int>(eofs - fit.Rows + 1) : 1);
  VScroll1->setPageStep(static_cast<int>(std::max(1L, fit.Rows)));
  VScroll1->setVisible(rows);
  HScroll1->setRange(1, columns ? static_cast<int>(params - fit.Columns) : 1);
  HScroll1->setPageStep(static_cast<int>(std::max(1L, fit.Columns)));
  HScroll1->setVisible(columns);
}

void frmECC::ShowSoukan(double x, double y) {
  pointerX_ = x;
  pointerY_ = y;
  {
    // A change of range that moves a value is not a scroll of the user's.
    const bool v = VScroll1->blockSignals(true), h = HScroll1->blockSignals(true);
    SetScrollBars();
    VScroll1->blockSignals(v);
    HScroll1->blockSignals(h);
  }
  const EccCell cell = EccCellAt(View(), x, y);
  EccHoverRow = ToCount(static_cast<long long>(cell.Row));
  EccHoverCol = ToCount(static_cast<long long>(cell.Column));
  const EccTableView view = View();
  DrawEccTable(EccMatrix, view, Picture2->surface());
  DrawEccRowHeads(view, Picture1->surface());
  std::vector<QString> names(static_cast<std::size_t>(s_.ClimateParamCount) + 1);
  for (long p = 1; p <= s_.ClimateParamCount; ++p)
    names[static_cast<std::size_t>(p)] = QString::fromStdString(s_.ClimateParamNames(p));
  DrawEccColumnHeads(names, view, Picture0[0]->surface(), Picture0[1]->surface());
  for (PictureBox* p : {Picture0[0], Picture0[1], Picture1, Picture2}) p->update();
}

void frmECC::DrawScatter() {
  const double zoom = s_.ScatterZoom;
  DrawEccScatter(s_, colours_, EccEof, EccClimate, zoom, Picture3->surface());
  Picture3->update();
  Label1[0]->setText(QString::fromStdString(FormatGeneral(-zoom)));
  Label1[1]->setText(QString::fromStdString(FormatGeneral(zoom)));
  Label2[0]->setText("EOF-" + QString::number(EccEof));
  EccOpen = true;
}

void frmECC::CellClicked(const QPointF& pixel) {
  if (!EccOpen) return;
  boundary_.Run([this, pixel] {
    ShowSoukan(pixel.x() * kTwips, pixel.y() * kTwips);
    // Below the last EOF or right of the last parameter there is no pair.
    if (EccHoverRow < 1 || EccHoverRow > s_.RefTaxaCount || EccHoverCol < 1 ||
        EccHoverCol > s_.ClimateParamCount)
      return;
    EccEof = EccHoverRow;
    EccClimate = EccHoverCol;
    const int index = diagram_.Combo1->findText(QString::number(EccEof), Qt::MatchExactly);
    if (index >= 0) diagram_.Combo1->setCurrentIndex(index);
    if (s_.DiagramOpen) diagram_.DrawEofCurve();
    SetBounds();
    ShowSoukan(pointerX_, pointerY_);
    DrawScatter();
  });
}

void frmECC::BoundsEdited() {
  if (filling_) {
    filling_ = false;
    return;
  }
  boundary_.Run([this] {
    const QString top = Text1[1]->text(), bottom = Text1[0]->text();
    if (top == bottom) return;
    Surface& pic = Picture3->surface();
    const double t = LenientParse(top.toStdString());
    pic.SetScale(pic.ScaleLeft(), t, pic.ScaleWidth(), LenientParse(bottom.toStdString()) - t);
    if (EccOpen) DrawScatter();
  });
}

void frmECC::SliderMoved(int value) {
  boundary_.Run([this, value] {
    // The diagram's slider follows, and with it the main window's range.
    if (diagram_.Slider2->value() != value) diagram_.Slider2->setValue(value);
    s_.ScatterZoom = ScatterZoomFor(value);
    if (EccOpen) DrawScatter();
  });
}

void frmECC::FollowZoom(int value) {
  SetQuietly(Slider1, value);
  if (EccOpen) boundary_.Run([this] { DrawScatter(); });
}

void frmECC::FollowSample() {
  if (EccOpen) boundary_.Run([this] { DrawScatter(); });
}

void frmECC::FollowEof() {
  if (!EccOpen) return;
  boundary_.Run([this] {
    EccEof = ToCount(static_cast<long long>(std::max(1, diagram_.Combo1->currentText().toInt())));
    ShowSoukan(pointerX_, pointerY_);
    DrawScatter();
  });
}

bool frmECC::eventFilter(QObject* watched, QEvent* event) {
  if (watched == Picture2 && event->type() == QEvent::MouseMove && EccOpen) {
    const QPointF at = static_cast<QMouseEvent*>(event)->position();
    boundary_.Run([this, at] { ShowSoukan(at.x() * kTwips, at.y() * kTwips); });
  }
  return QWidget::eventFilter(watched, event);
}

void frmECC::closeEvent(QCloseEvent* event) {
  EccOpen = false;
  event->accept();
}

}  // namespace varnoth
