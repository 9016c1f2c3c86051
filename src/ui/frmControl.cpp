#include "ui/frmControl.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/Controls.h"
#include "ui/PictureBox.h"
#include "ui/ToolTips.h"

namespace varnoth {

namespace {

// Ten lines of the table: 10 * 227.5 twips at 15 twips per pixel.
constexpr int kTableHeight = 152;
constexpr int kSummaryHeight = 34;
constexpr int kTwipsPerPixel = 15;

QPushButton* Button(QWidget* parent, const QString& name, const QString& caption) {
  auto* b = new QPushButton(caption, parent);
  b->setObjectName(name);
  return b;
}

QListWidget* List(QWidget* parent, const QString& name) {
  auto* l = new QListWidget(parent);
  l->setObjectName(name);
  l->setSelectionMode(QAbstractItemView::ExtendedSelection);
  l->setFixedWidth(64);
  l->setMinimumHeight(120);
  return l;
}

}  // namespace

frmControl::frmControl(Session& session, Dialogs& dialogs, ControlPanelLinks links,
                       Progress* progress, QWidget* parent)
    : QWidget(parent, Qt::Window),
      s_(session),
      links_(std::move(links)),
      ownDialogs_(dialogs, this),
      boundary_(ownDialogs_, progress ? *progress : noProgress_) {
  setObjectName("frmControl");
  setWindowTitle("Control panel");
  setAttribute(Qt::WA_QuitOnClose, false);
  Build();
  ConnectEvents();
  ExplainControls(this);
}

void frmControl::Build() {
  auto* outer = new QVBoxLayout(this);

  Frame2 = new QGroupBox(" Selected EOFs for default display", this);
  Frame2->setObjectName("Frame2");
  {
    auto* row = new QHBoxLayout(Frame2);
    Label2 = Caption(Frame2, "Label2", "X-Axis");
    Label3 = Caption(Frame2, "Label3", "Y-Axis");
    Label4 = Caption(Frame2, "Label4", "Z-Axis");
    QLabel* captions[4] = {nullptr, Label2, Label3, Label4};
    for (int k = 1; k <= 3; ++k) {
      auto* c = new QComboBox(Frame2);
      c->setObjectName(QString("Combo1_%1").arg(k));
      c->setMinimumContentsLength(3);
      c->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
      Combo1[static_cast<std::size_t>(k)] = c;
      row->addWidget(captions[k]);
      row->addWidget(c);
      row->addSpacing(8);
    }
    row->addStretch(1);
  }
  outer->addWidget(Frame2);

  Frame1 = new QGroupBox(" EOFs for emvelope analysis", this);
  Frame1->setObjectName("Frame1");
  {
    auto* grid = new QGridLayout(Frame1);
    Check1 = new QCheckBox("Set more axes", Frame1);
    Check1->setObjectName("Check1");
    Label1 = Caption(Frame1, "Label1", " (Invisible, reflected in envelop analysis)");
    auto* top = new QHBoxLayout;
    top->addWidget(Check1);
    top->addWidget(Label1);
    top->addStretch(1);
    grid->addLayout(top, 0, 0, 1, 4);
    List1 = List(Frame1, "List1");
    List2 = List(Frame1, "List2");
    Command1 = Button(Frame1, "Command1", "Add >>");
    Command2 = Button(Frame1, "Command2", "<< Delete");
    for (QPushButton* b : {Command1, Command2})
      b->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* buttons = new QVBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(Command1);
    buttons->addWidget(Command2);
    buttons->addStretch(1);
    grid->addWidget(List1, 1, 0);
    grid->addLayout(buttons, 1, 1);
    grid->addWidget(List2, 1, 2);
    grid->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum), 1, 3);
    grid->setColumnStretch(3, 1);
  }
  outer->addWidget(Frame1);

  // The table: three columns of lines and the scroll bar beside them.
  auto* table = new QGridLayout;
  table->setHorizontalSpacing(2);
  table->setVerticalSpacing(2);
  Label5 = Caption(this, "Label5", "EOF No.");
  Label6 = Caption(this, "Label6", "Contribution");
  Label7 = Caption(this, "Label7", "Cumulative");
  const int widths[3] = {56, 92, 92};
  QLabel* headers[3] = {Label5, Label6, Label7};
  for (int i = 0; i < 3; ++i) {
    auto* p =
        new PictureBox(QString("Picture1_%1").arg(i), QSize(widths[i], kTableHeight), false, this);
    p->surface().SetBackColour(Qt::white);
    Picture1[static_cast<std::size_t>(i)] = p;
    table->addWidget(headers[i], 0, i);
    table->addWidget(p, 1, i);
  }
  VScroll1 = new QScrollBar(Qt::Vertical, this);
  VScroll1->setObjectName("VScroll1");
  VScroll1->setFixedHeight(kTableHeight);
  VScroll1->setRange(1, 1);
  VScroll1->setPageStep(1);
  table->addWidget(VScroll1, 1, 3);
  const int summaryWidth = widths[0] + widths[1] + widths[2] + 4;
  Picture2 = new PictureBox("Picture2", QSize(summaryWidth, kSummaryHeight), false, this);
  Picture3 = new PictureBox("Picture3", QSize(summaryWidth, kSummaryHeight), false, this);
  Picture2->surface().SetBackColour(Qt::white);
  Picture3->surface().SetBackColour(Qt::white);
  table->addWidget(Picture2, 2, 0, 1, 3);
  table->addWidget(Picture3, 3, 0, 1, 3);
  auto* tableRow = new QHBoxLayout;
  tableRow->addLayout(table);
  tableRow->addStretch(1);
  outer->addLayout(tableRow);

  auto* buttons = new QHBoxLayout;
  Command3 = Button(this, "Command3", "Reflect");
  Command4 = Button(this, "Command4", "OK");
  buttons->addStretch(1);
  buttons->addWidget(Command3);
  buttons->addWidget(Command4);
  outer->addLayout(buttons);
  outer->addStretch(1);

  SetListsEnabled(false);
}

void frmControl::ConnectEvents() {
  connect(Check1, &QCheckBox::toggled, this, &frmControl::MoreAxisToggled);
  connect(Command1, &QPushButton::clicked, this, &frmControl::Add);
  connect(Command2, &QPushButton::clicked, this, &frmControl::Delete);
  connect(Command3, &QPushButton::clicked, this, &frmControl::Reflect);
  connect(Command4, &QPushButton::clicked, this, &frmControl::Ok);
  connect(VScroll1, &QScrollBar::valueChanged, this,
          [this] { boundary_.Run([this] { ShowKiyo(); }); });
}

bool frmControl::ThreeD() const { return links_.ThreeD ? links_.ThreeD() : threeD_; }

int frmControl::TableLines() const { return KiyoLinesFit(Picture1[0]->surface().Height()); }

AxisChoice frmControl::Choice() const {
  AxisChoice c;
  c.MoreAxis = Check1->isChecked();
  for (int k = 1; k <= 3; ++k) {
    const QComboBox* combo = Combo1[static_cast<std::size_t>(k)];
    // A combo with nothing to choose keeps the axis as it stands.
    c.Combo[static_cast<std::size_t>(k)] = combo->currentIndex() >= 0
                                               ? static_cast<Count>(combo->currentText().toInt())
                                               : s_.EnvelopeAxes(k);
  }
  for (int i = 0; i < List2->count(); ++i)
    c.List2.push_back(static_cast<Count>(List2->item(i)->text().toInt()));
  return c;
}

void frmControl::ShowList2(const std::vector<Count>& entries) {
  List2->clear();
  for (Count eof : entries) List2->addItem(QString::number(eof));
}

void frmControl::SetListsEnabled(bool on) {
  for (QWidget* w : std::initializer_list<QWidget*>{List1, List2, Command1, Command2})
    w->setEnabled(on);
}

void frmControl::SetCombosEnabled(bool on) {
  Combo1[1]->setEnabled(on);
  Combo1[2]->setEnabled(on);
  Combo1[3]->setEnabled(on && ThreeD());
}

void frmControl::Open() {
  if (!isVisible()) boundary_.Run([this] { Load(); });
  show();
  raise();
  activateWindow();
}

void frmControl::Load() {
  const Count n = PanelEofCount(s_);
  threeD_ = ThreeD();
  const AxisChoice c = LoadAxisChoice(s_, threeD_);
  for (int k = 1; k <= 3; ++k) {
    QComboBox* combo = Combo1[static_cast<std::size_t>(k)];
    combo->clear();
    for (Count e = 1; e <= n; ++e) combo->addItem(QString::number(e));
    const Count shown = c.Combo[static_cast<std::size_t>(k)];
    combo->setCurrentIndex(shown >= 1 && shown <= n ? shown - 1 : -1);
  }
  Label4->setVisible(threeD_);
  Combo1[3]->setVisible(threeD_);
  List1->clear();
  for (Count e = 1; e <= n; ++e) List1->addItem(QString::number(e));
  ShowList2(c.List2);
  {
    const QSignalBlocker quiet(Check1);
    Check1->setChecked(c.MoreAxis);
  }
  SetListsEnabled(c.MoreAxis);
  SetCombosEnabled(!c.MoreAxis);
  {
    const QSignalBlocker quiet(VScroll1);
    VScroll1->setValue(1);
  }
  if (n > 2 && s_.EofDone) {
    ShowKiyo();
  } else {
    for (PictureBox* p : {Picture1[0], Picture1[1], Picture1[2], Picture2, Picture3}) {
      p->surface().Clear();
      p->update();
    }
    VScroll1->setEnabled(false);
  }
}

void frmControl::DrawLines(PictureBox* picture, const std::vector<std::string>& lines) {
  Surface& surface = picture->surface();
  surface.SetScale(0, 0, surface.Width() * kTwipsPerPixel, surface.Height() * kTwipsPerPixel);
  surface.SetFontSize(8);
  surface.SetForeColour(Qt::black);
  surface.Clear();
  for (std::size_t i = 0; i < lines.size(); ++i)
    surface.Print(4 * kTwipsPerPixel, kKiyoLineTwips * static_cast<double>(i) + 15,
                  QString::fromStdString(lines[i]));
  picture->update();
}

void frmControl::ShowKiyo() {
  const int fit = TableLines();
  const Count n = PanelEofCount(s_);
  {
    // Scrolling shows at most the last full page.
    const QSignalBlocker quiet(VScroll1);
    VScroll1->setRange(1, std::max(1, n - fit + 1));
    VScroll1->setPageStep(std::max(1, fit));
  }
  const KiyoText t = varnoth::ShowKiyo(s_, Choice().List2, VScroll1->value(), fit);
  VScroll1->setEnabled(t.ScrollEnabled);
  for (std::size_t column = 0; column < 3; ++column) {
    std::vector<std::string> lines;
    for (const auto& line : t.Lines) lines.push_back(line[column]);
    DrawLines(Picture1[column], lines);
  }
  DrawLines(Picture2, t.Summary);
  DrawLines(Picture3, t.Selected);
}

void frmControl::MoreAxisToggled(bool on) {
  boundary_.Run([this, on] {
    AxisChoice c = Choice();
    if (on) {
      SetListsEnabled(true);
      MoreAxisOn(s_, c);
      SetCombosEnabled(false);
      ShowKiyo();
      if (links_.MoreAxisStarted) links_.MoreAxisStarted();
    } else {
      MoreAxisOff(s_, c, ThreeD());
      SetListsEnabled(false);
      SetCombosEnabled(true);
      ShowList2(c.List2);
      ShowKiyo();
    }
  });
}

void frmControl::Add() {
  boundary_.Run([this] {
    std::vector<Count> chosen;
    for (int i = 0; i < List1->count(); ++i) {
      QListWidgetItem* item = List1->item(i);
      if (!item->isSelected()) continue;
      chosen.push_back(static_cast<Count>(item->text().toInt()));
      item->setSelected(false);
    }
    AxisChoice c = Choice();
    AddToList(c.List2, chosen);
    ShowList2(c.List2);
    ShowKiyo();
  });
}

void frmControl::Delete() {
  boundary_.Run([this] {
    std::vector<int> chosen;
    for (int i = 0; i < List2->count(); ++i)
      if (List2->item(i)->isSelected()) chosen.push_back(i);
    AxisChoice c = Choice();
    DeleteFromList(c.List2, chosen, s_.VisibleAxisCount);
    ShowList2(c.List2);
    ShowKiyo();
  });
}

void frmControl::Reflect() {
  boundary_.Run([this] {
    const bool threeD = ThreeD();
    // Unticking runs the box's own handler, as a click would.
    if (NothingInvisible(threeD, static_cast<std::size_t>(List2->count())))
      Check1->setChecked(false);
    AxisChoice c = Choice();
    const ReflectOutcome r = varnoth::Reflect(s_, c, threeD);
    ShowList2(c.List2);
    if (r.Redraw && links_.RedrawScatter) links_.RedrawScatter();
    if (r.RunEnvelope && links_.RunEnvelope) links_.RunEnvelope();
    if (links_.Reflected) links_.Reflected();
  });
}

void frmControl::Ok() {
  Reflect();
  close();
}

void frmControl::DimensionChanged(bool threeD) {
  threeD_ = threeD;
  Label4->setVisible(threeD);
  Combo1[3]->setVisible(threeD);
  if (!isVisible()) return;
  boundary_.Run([this] {
    // Without MoreAxis the envelope follows the axes on screen, and so
    // does the list.
    if (!s_.MoreAxis) {
      {
        const QSignalBlocker quiet(Check1);
        Check1->setChecked(false);
      }
      SetListsEnabled(false);
      SetCombosEnabled(true);
      std::vector<Count> entries;
      for (Count k = 1; k <= s_.EnvelopeAxisCount; ++k) entries.push_back(s_.EnvelopeAxes(k));
      ShowList2(entries);
    }
    if (PanelEofCount(s_) > 2 && s_.EofDone) ShowKiyo();
  });
}

void frmControl::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && links_.Activated)
    links_.Activated();
  QWidget::changeEvent(event);
}

}  // namespace varnoth
