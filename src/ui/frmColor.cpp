#include "ui/frmColor.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <cmath>

#include "presentation/Colours.h"
#include "ui/PictureBox.h"
#include "ui/frmMain.h"

namespace varnoth {

namespace {
constexpr int kPanelWidth = 260, kPanelHeight = 90;
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
    auto* row = new QHBoxLayout;
    for (int r = 0; r < 4; ++r) {
      QLabel* l = new QLabel(this);
      l->setObjectName(QString("Label%1_%2").arg(ch).arg(r));
      l->setMinimumWidth(40);
      ChannelLabels[i][static_cast<std::size_t>(r)] = l;
      row->addWidget(l);
    }
    grid->addWidget(ChannelNames[i], 3 * ch, 0, 1, 3);
    grid->addWidget(Picture2[i], 3 * ch + 1, 0, 1, 3);
    grid->addLayout(row, 3 * ch + 2, 0, 1, 3);
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
  const double w = sf.Width(), h = sf.Height();
  sf.SetScale(0, 0, w, h);
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
  for (int ch = 0; ch < 3; ++ch)
    for (int r = 0; r < 4; ++r)
      ChannelLabels[static_cast<std::size_t>(ch)][static_cast<std::size_t>(r)]->setText(
          Percent(c_.Break(ch, r)));
  Label3->setText(Percent(c_.PaletteWhite));
}

void frmColor::Press(int channel, const QPointF& at) {
  const Surface& sf = Picture2[static_cast<std::size_t>(channel)]->surface();
  const double w = sf.Width(), h = sf.Height();
  const double level[4] = {0.8 * h, 0.2 * h, 0.2 * h, 0.8 * h};
  heldChannel_ = heldBreak_ = -1;
  for (int r = 0; r < 4; ++r) {
    if (std::abs(at.x() - c_.Break(channel, r) * w) <= kGrip &&
        std::abs(at.y() - level[r]) <= kGrip) {
      heldChannel_ = channel;
      heldBreak_ = r;
      return;
    }
  }
}

void frmColor::Move(int channel, const QPointF& at) {
  if (heldChannel_ != channel || heldBreak_ < 0) return;
  const double w = Picture2[static_cast<std::size_t>(channel)]->surface().Width();
  const float value = static_cast<float>(std::clamp(at.x() / w, 0.0, 1.0));
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
