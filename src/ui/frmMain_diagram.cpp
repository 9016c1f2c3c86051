// The diagram window from the main window: "Diagram" opens it, and the
// selected sample, the range and the redraws pass between the two.
#include <QButtonGroup>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>

#include "ui/ListName.h"
#include "ui/WindowPlacement.h"
#include "ui/frmDiagram.h"
#include "ui/frmECC.h"
#include "ui/frmMain.h"

namespace varnoth {

frmDiagram* frmMain::DiagramWindow() {
  if (!diagram_) {
    diagram_ = new frmDiagram(s_, colours_, dialogs_, progress_);
    AddWindow(WindowOrder::Diagram, diagram_);
    connect(diagram_, &frmDiagram::SampleSelected, this, [this] {
      boundary_.Run([this] {
        ShowListName(Combo1, QString::fromStdString(s_.FossilLabels(s_.SampleCursor)));
        RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
      });
    });
    connect(diagram_, &frmDiagram::ZoomChanged, this, [this](int value) {
      const QSignalBlocker quiet(Slider4);
      Slider4->setValue(value);
      boundary_.Run(
          [this] { RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3)); });
    });
    connect(diagram_, &frmDiagram::SelectionLineToggled, this, [this](bool on) {
      Option5[on ? 1 : 2]->setChecked(true);
      NameOptionChosen(2);
    });
    connect(group5_, &QButtonGroup::idClicked, diagram_.data(),
            [this](int id) { diagram_->FollowSampleNames(id == 1); });
    connect(this, &frmMain::RangeChanged, diagram_.data(), &frmDiagram::FollowRange);
    connect(this, &frmMain::RedrawOthers, diagram_.data(), &frmDiagram::RedrawAll);
    connect(this, &frmMain::SampleChosen, diagram_.data(), &frmDiagram::MoveMarker);
    connect(diagram_, &frmDiagram::EccRequested, this, [this] { EccWindow()->Open(); });
    LinkDiagramAndMAT();
  }
  return diagram_;
}

void frmMain::ConnectDiagramEvents() {
  connect(Command14, &QPushButton::clicked, this, [this] {
    boundary_.Run([this] {
      frmDiagram* d = DiagramWindow();
      // At its first opening the diagram stands over this window, on screen.
      if (NeverPlaced(d)) PlaceOver(d, this, d->size());
      d->ShowDiagram();
    });
  });
}

}  // namespace varnoth
