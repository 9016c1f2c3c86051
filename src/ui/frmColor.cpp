#include "ui/frmColor.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "presentation/Colours.h"
#include "ui/PictureBox.h"
#include "ui/ToolTips.h"
#include "ui/frmMain.h"

namespace varnoth {

namespace {
constexpr int kPanelWidth = 260, kPanelHeight = 90;
// Room at both ends of a panel, so that points at 0 % and 100 % show whole.
constexpr double kInset = 8;
constexpr int kLabelWidth = 36, kLabelHeight = 16;
// 60 twips: how near the pointer must come to take hold of a point.
constexpr double kGrip = 60.0 / 15.0;
const QColor kChannelColour[3] = {QColor(220, 0, 0), QColor(0, 170, 0), QColor(0, 0, 230)};

QString Percent(double v) { return QString::number(std::lround(v * 100)) + "%"; }
}  // namespace

frmColor::frmColor(frmMain& main) : QWidget(nullptr, Qt::Window), main_(main), c_(main.colours()) {
  setObjectName("frmColor");
  setWindowTitle("Colour settings");
  setAttribute(Qt::WA_QuitOnClose, false);
  auto* grid = new QGridLayout(this);
  const char* names[3] = {"Red", "Green", "Blue"};
  for (int ch = 0; ch < 3; ++ch) {
    const auto i = static_cast<std::size_t>(ch);
    ChannelNames[i] = new QLabel(names[ch], this);
    ChannelNames[i]->setObjectName(QString("ChannelName_%1").arg(ch));
    Picture2[i] = new PictureBox(QString("Picture2_%1").arg(ch), QSize(kPanelWidth, kPanelHeight),
                                 false, this);
    // The strip is as wide as the panel and starts where it does.
    auto* column = new QWidget(this);
    auto* stack = new QVBoxLayout(column);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(0);
    LabelStrips[i] = new QWidget(column);
    LabelStrips[i]->setFixedHeight(kLabelHeight);
    Picture2[i]->setParent(column);
    stack->addWidget(Picture2[i]);
    stack->addWidget(LabelStrips[i]);
    const char* breakNames[4] = {"rises from", "full from", "full up to", "falls to 0 at"};
    for (int r = 0; r < 4; ++r) {
      QLabel* l = new QLabel(LabelStrips[i]);
      l->setObjectName(QString("Label%1_%2").arg(ch).arg(r));
      l->setAlignment(Qt::AlignCenter);
      l->resize(kLabelWidth, kLabelHeight);
      l->setToolTip(QString("%1 %2").arg(names[ch], breakNames[r]));
      ChannelLabels[i][static_cast<std::size_t>(r)] = l;
    }
    grid->addWidget(ChannelNames[i], 3 * ch, 0, 1, 3);
    grid->addWidget(column, 3 * ch + 1, 0, 2, 3);
    connect(Picture2[i], &PictureBox::Resized, this, [this, ch] {
      DrawPanel(ch);
      PlaceLabels(ch);
    });
    connect(Picture2[i], &PictureBox::LeftPressed, this,
            [this, ch](const QPointF& at) { Press(ch, at); });
    connect(Picture2[i], &PictureBox::LeftMoved, this,
            [this, ch](const QPointF& at) { Move(ch, at); });
    connect(Picture2[i], &PictureBox::LeftReleased, this, [this] { Release(); });
  }
  Picture1 = new PictureBox("Picture1", QSize(kPanelWidth, 24), false, this);
  grid->addWidget(Picture1, 9, 0, 1, 3);
  Slider1 = new QSlider(Qt::Horizontal, this);
  Slider1->setObjectName("Slider1");
  Slider1->setRange(0, 100);
  Label3 = new QLabel(this);
  Label3->setObjectName("Label3");
  Label3->setMinimumWidth(40);
  auto* white = new QLabel("White", this);
  white->setObjectName("LabelWhite");
  grid->addWidget(white, 10, 0);
  grid->addWidget(Slider1, 10, 1);
  grid->addWidget(Label3, 10, 2);
  auto* buttons = new QHBoxLayout;
  Command1 = new QPushButton("Grey scale", this);
  Command1->setObjectName("Command1");
  Command3 = new QPushButton("Reset", this);
  Command3->setObjectName("Command3");
  Command2 = new QPushButton("OK", this);
  Command2->setObjectName("Command2");
  buttons->addWidget(Command1);
  buttons->addWidget(Command3);
  buttons->addStretch(1);
  buttons->addWidget(Command2);
  grid->addLayout(buttons, 11, 0, 1, 3);

  Slider1->setValue(static_cast<int>(std::lround(c_.PaletteWhite * 100)));
  connect(Slider1, &QSlider::valueChanged, this, &frmColor::WhiteChanged);
  connect(Command1, &QPushButton::clicked, this, &frmColor::GreyScale);
  connect(Command3, &QPushButton::clicked, this, &frmColor::Reset);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  ShowChannels();
  DrawAll();
  ExplainControls(this);
}

void frmColor::showEvent(QShowEvent* event) {
  // Opening the window reads the settings as they stand now.
  {
    const QSignalBlocker block(Slider1);
    Slider1->setValue(static_cast<int>(std::lround(c_.PaletteWhite * 100)));
  }
  ShowChannels();
  DrawAll();
  QWidget::showEvent(event);
}

void frmColor::ShowChannels() {
  // In grey mode only the blue channel stands for all three.
  for (int ch = 0; ch < 2; ++ch) {
    const auto i = static_cast<std::size_t>(ch);
    Picture2[i]->parentWidget()->setVisible(!c_.GreyMode);
    Picture2[i]->setVisible(!c_.GreyMode);
    ChannelNames[i]->setVisible(!c_.GreyMode);
    for (QLabel* l : ChannelLabels[i]) l->setVisible(!c_.GreyMode);
  }
  ChannelNames[2]->setText(c_.GreyMode ? "Grey" : "Blue");
}

void frmColor::DrawAll() {
  for (int ch = 0; ch < 3; ++ch) DrawPanel(ch);
  DrawBar();
  DrawLabels();
}

void frmColor::DrawPanel(int channel) {
  Surface& sf = Picture2[static_cast<std::size_t>(channel)]->surface();
  // The ramp runs from 0 to w, inside the inset at both ends.
  const double w = sf.Width() - 2 * kInset, h = sf.Height();
  sf.SetScale(-kInset, 0, sf.Width(), h);
  sf.SetBackColour(Qt::white);
  const QColor colour = c_.GreyMode ? QColor(60, 60, 60) : kChannelColour[channel];
  const double level[4] = {0.8 * h, 0.2 * h, 0.2 * h, 0.8 * h};
  double x[4];
  for (int r = 0; r < 4; ++r) x[r] = c_.Break(channel, r) * w;
  sf.Line(0, 0.8 * h, w, 0.8 * h, QColor(200, 200, 200));
  for (int r = 0; r < 4; ++r) {
    const int next = (r + 1) % 4;
    sf.Line(x[r], level[r], x[next], level[next], colour);
  }
  sf.SetFillStyle(FillStyle::Solid);
  sf.SetFillColour(colour);
  for (int r = 0; r < 4; ++r) sf.FilledBox(x[r] - 3, level[r] - 3, x[r] + 3, level[r] + 3, colour);
  Picture2[static_cast<std::size_t>(channel)]->update();
}

void frmColor::DrawBar() {
  Surface& sf = Picture1->surface();
  const int w = sf.Width();
  sf.SetScale(0, 0, w, sf.Height());
  sf.SetBackColour(Qt::white);
  for (int x = 0; x <= w; ++x) {
    const QColor colour = PaletteColour(c_, static_cast<double>(x) / w);
    sf.Line(x + 0.5, 0, x + 0.5, sf.Height(), colour);
  }
  Picture1->update();
}

void frmColor::DrawLabels() {
  for (int ch = 0; ch < 3; ++ch) {
    for (int r = 0; r < 4; ++r)
      ChannelLabels[static_cast<std::size_t>(ch)][static_cast<std::size_t>(r)]->setText(
          Percent(c_.Break(ch, r)));
    PlaceLabels(ch);
  }
  Label3->setText(Percent(c_.PaletteWhite));
}

void frmColor::PlaceLabels(int channel) {
  // Each label under its point; labels of points that stand close together
  // keep the order of their breaks side by side.
  const auto i = static_cast<std::size_t>(channel);
  const double stripWidth = LabelStrips[i]->width();
  std::array<int, 4> order{0, 1, 2, 3};
  std::array<double, 4> centre{};
  for (int r = 0; r < 4; ++r) centre[static_cast<std::size_t>(r)] = PointAt(channel, r).x();
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    return centre[static_cast<std::size_t>(a)] < centre[static_cast<std::size_t>(b)];
  });
  std::array<double, 4> left{};
  double limit = 0;
  for (int k = 0; k < 4; ++k) {
    const auto r = static_cast<std::size_t>(order[static_cast<std::size_t>(k)]);
    left[r] = std::max(centre[r] - kLabelWidth / 2.0, limit);
    limit = left[r] + kLabelWidth;
  }
  limit = stripWidth;
  for (int k = 3; k >= 0; --k) {
    const auto r = static_cast<std::size_t>(order[static_cast<std::size_t>(k)]);
    left[r] = std::max(0.0, std::min(left[r], limit - kLabelWidth));
    limit = left[r];
  }
  for (int r = 0; r < 4; ++r)
    ChannelLabels[i][static_cast<std::size_t>(r)]->move(
        static_cast<int>(std::lround(left[static_cast<std::size_t>(r)])), 0);
}

QPointF frmColor::PointAt(int channel, int r) const {
  const PictureBox* p = Picture2[static_cast<std::size_t>(channel)];
  const double h = p->surface().Height();
  const double level = (r == 0 || r == 3) ? 0.8 * h : 0.2 * h;
  const double w = p->surface().Width() - 2 * kInset;
  return QPointF(p->Origin()) + QPointF(kInset + c_.Break(channel, r) * w, level);
}

int frmColor::BreakAt(int channel, const QPointF& pixel) const {
  // Of the points within the grip, the nearest wins; among points that
  // stand on one another, one that has room to move between its
  // neighbours, so that a stack can always be taken apart.
  const PictureBox* p = Picture2[static_cast<std::size_t>(channel)];
  const QPointF at = pixel + QPointF(p->Origin());
  int best = -1;
  double bestDistance = 0;
  bool bestMoves = false;
  for (int r = 0; r < 4; ++r) {
    const QPointF point = PointAt(channel, r);
    if (std::abs(at.x() - point.x()) > kGrip || std::abs(at.y() - point.y()) > kGrip) continue;
    const double distance = std::hypot(at.x() - point.x(), at.y() - point.y());
    const double below = r > 0 ? c_.Break(channel, r - 1) : 0.0;
    const double above = r < 3 ? c_.Break(channel, r + 1) : 1.0;
    const bool moves = above > below;
    const bool nearer = distance < bestDistance - 1e-9;
    const bool level = std::abs(distance - bestDistance) <= 1e-9;
    if (best < 0 || nearer || (level && moves && !bestMoves)) {
      best = r;
      bestDistance = distance;
      bestMoves = moves;
    }
  }
  return best;
}

void frmColor::Press(int channel, const QPointF& at) {
  heldChannel_ = heldBreak_ = -1;
  const int r = BreakAt(channel, at);
  if (r < 0) return;
  heldChannel_ = channel;
  heldBreak_ = r;
}

void frmColor::Move(int channel, const QPointF& at) {
  if (heldChannel_ != channel || heldBreak_ < 0) return;
  const double w = Picture2[static_cast<std::size_t>(channel)]->surface().Width() - 2 * kInset;
  // A break stays between its neighbours: the ramp rises, stays and falls
  // in that order.
  const double below = heldBreak_ > 0 ? c_.Break(channel, heldBreak_ - 1) : 0.0;
  const double above = heldBreak_ < 3 ? c_.Break(channel, heldBreak_ + 1) : 1.0;
  const float value = static_cast<float>(std::clamp((at.x() - kInset) / w, below, above));
  c_.Break(channel, heldBreak_) = value;
  if (c_.GreyMode)
    for (int ch = 0; ch < 2; ++ch)
      for (int r = 0; r < 4; ++r) c_.Break(ch, r) = c_.Break(2, r);
  DrawPanel(channel);
  DrawLabels();
}

void frmColor::Release() {
  if (heldBreak_ < 0) return;
  heldChannel_ = heldBreak_ = -1;
  DrawAll();
  c_.PaletteChanged = true;
}

void frmColor::WhiteChanged(int value) {
  c_.PaletteWhite = static_cast<float>(value / 100.0);
  DrawBar();
  DrawLabels();
}

void frmColor::GreyScale() {
  main_.boundary().Run([this] { main_.ApplyGreyPreset(); });
  {
    const QSignalBlocker block(Slider1);
    Slider1->setValue(static_cast<int>(std::lround(c_.PaletteWhite * 100)));
  }
  ShowChannels();
  DrawAll();
  c_.PaletteChanged = true;
}

void frmColor::Reset() {
  main_.boundary().Run([this] { main_.ApplyColourPreset(); });
  {
    const QSignalBlocker block(Slider1);
    Slider1->setValue(static_cast<int>(std::lround(c_.PaletteWhite * 100)));
  }
  ShowChannels();
  DrawAll();
  c_.PaletteChanged = true;
}

}  // namespace varnoth
