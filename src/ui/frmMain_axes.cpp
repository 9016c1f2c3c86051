// The axes of the main window: the control panel that chooses them, and the
// ring of EOFs that the axis-change timer or the stepping buttons turn.
#include <QAction>
#include <QButtonGroup>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

#include "envelope/Animation.h"
#include "presentation/Scatter.h"
#include "ui/PictureBox.h"
#include "ui/WindowPlacement.h"
#include "ui/frmControl.h"
#include "ui/frmMain.h"

namespace varnoth {

frmControl* frmMain::ControlPanel() {
  if (!control_) {
    ControlPanelLinks links;
    links.ThreeD = [this] { return Option4[1]->isChecked(); };
    links.RedrawScatter = [this] {
      RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
    };
    links.RunEnvelope = [this] { RunEnvelopeAndRedraw(); };
    links.Reflected = [this] {
      RefreshMoreAxisLabel();
      emit RedrawOthers();
    };
    links.MoreAxisStarted = [this] {
      // The ring turns by itself from now on; the mode can be chosen.
      Option6[0]->setEnabled(true);
      Option6[1]->setEnabled(true);
      Option6[0]->setChecked(true);
      ChooseAxisChangeMode(true);
    };
    links.Activated = [this] {
      if (!s_.EofDone) return;
      DrawAxesLine(s_, colours_, picture3_->surface());
      picture3_->update();
    };
    control_ = new frmControl(s_, dialogs_, std::move(links), &progress_);
    AddWindow(WindowOrder::Control, control_);
  }
  return control_;
}

void frmMain::StepAxisRing(bool next) {
  boundary_.Run([this, next] {
    if (next)
      AxisRingNext(s_);
    else
      AxisRingPrev(s_);
    RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
  });
}

void frmMain::ChooseAxisChangeMode(bool automatic) {
  const AxisChangeControls c = AxisChangeMode(automatic);
  if (c.Timer2On)
    timer2_.start(AxisChangeIntervalMs(Slider5->value()));
  else
    timer2_.stop();
  Slider5->setEnabled(c.IntervalEnabled);
  Label7->setEnabled(c.IntervalEnabled);
  Command4[0]->setEnabled(c.StepButtonsEnabled);
  Command4[1]->setEnabled(c.StepButtonsEnabled);
}

void frmMain::ConnectAxisEvents() {
  auto open = [this] {
    boundary_.Run([this] {
      frmControl* panel = ControlPanel();
      // At its first opening the panel stands beside this window, on the side
      // with room, so that it hides none of the figures.
      if (NeverPlaced(panel)) PlaceBeside(panel, this);
      panel->Open();
    });
  };
  connect(Command3, &QPushButton::clicked, this, open);
  connect(mnuControl, &QAction::triggered, this, open);
  connect(&timer2_, &QTimer::timeout, this, [this] { StepAxisRing(false); });
  connect(Command4[0], &QPushButton::clicked, this, [this] { StepAxisRing(false); });
  connect(Command4[1], &QPushButton::clicked, this, [this] { StepAxisRing(true); });
  connect(group6_, &QButtonGroup::idClicked, this,
          [this](int id) { ChooseAxisChangeMode(id == 0); });
  connect(Slider5, &QSlider::valueChanged, this, [this] {
    timer2_.setInterval(AxisChangeIntervalMs(Slider5->value()));
    if (Option6[0]->isChecked() && timer2_.isActive()) timer2_.start();
  });
}

}  // namespace varnoth
