// The reconstruction window from the main window: "Reconstruction" opens
// it, and the selected sample, its selection line and the redraws pass
// between it, the diagram and the scatter.
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>

#include "ui/WindowPlacement.h"
#include "ui/frmColor.h"
#include "ui/frmControl.h"
#include "ui/frmDiagram.h"
#include "ui/frmMAT.h"
#include "ui/frmMain.h"

namespace varnoth {

frmMAT* frmMain::MATWindow() {
  if (!mat_) {
    mat_ = new frmMAT(s_, colours_, dialogs_, progress_);
    AddWindow(WindowOrder::MAT, mat_);
    connect(mat_, &frmMAT::SampleSelected, this, [this] {
      if (diagram_) diagram_->MoveMarker();
      boundary_.Run([this] {
        const int index = Combo1->findText(QString::fromStdString(s_.FossilLabels(s_.SampleCursor)),
                                           Qt::MatchExactly);
        if (index >= 0) Combo1->setCurrentIndex(index);
        RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
      });
    });
    connect(mat_, &frmMAT::SelectionLineToggled, this, [this](bool on) {
      if (diagram_ && diagram_->Check1->isChecked() != on) diagram_->Check1->setChecked(on);
    });
    connect(mat_, &frmMAT::DiagramRedrawRequested, this, [this] {
      if (diagram_ && s_.DiagramOpen) boundary_.Run([this] { diagram_->DrawDiagram(); });
    });
    connect(mat_, &frmMAT::ColourSettingsRequested, this, [this] {
      frmColor* colour = ColorWindow();
      colour->show();
      colour->raise();
    });
    connect(mat_, &frmMAT::AxisSettingsRequested, this,
            [this] { boundary_.Run([this] { ControlPanel()->Open(); }); });
    connect(mat_, &frmMAT::RefreshRequested, this, [this] {
      update();
      if (diagram_) diagram_->update();
    });
    connect(mat_, &frmMAT::Unloaded, this, [this] { Command8->setEnabled(true); });
    connect(mat_, &frmMAT::LuvaneCreated, this,
            [this](QWidget* w) { AddWindow(WindowOrder::Interpolation, w); });
    connect(this, &frmMain::SampleChosen, mat_.data(), &frmMAT::MoveMarker);
    connect(this, &frmMain::RedrawOthers, mat_.data(), &frmMAT::RedrawAll);
    LinkDiagramAndMAT();
  }
  return mat_;
}

void frmMain::LinkDiagramAndMAT() {
  if (!diagram_ || !mat_) return;
  connect(diagram_, &frmDiagram::SampleSelected, mat_.data(), &frmMAT::MoveMarker,
          Qt::UniqueConnection);
  connect(diagram_, &frmDiagram::SelectionLineToggled, mat_.data(), &frmMAT::FollowSelectionLine,
          Qt::UniqueConnection);
}

void frmMain::ConnectMATEvents() {
  connect(Command8, &QPushButton::clicked, this, [this] {
    frmMAT* mat = MATWindow();
    // The same place every session: cascaded from the main window, on screen.
    if (NeverPlaced(mat)) PlaceOver(mat, this, mat->size());
    mat->Open();
  });
}

}  // namespace varnoth
