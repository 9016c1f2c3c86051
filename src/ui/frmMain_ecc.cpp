// The EOF-climate correlation window from the main window: the diagram's
// Tools menu opens it, and the selected sample, the EOF axis and the EOF
// choice reach it from the diagram and the main window while it is open.
#include "ui/frmDiagram.h"
#include "ui/frmECC.h"
#include "ui/frmMain.h"

namespace varnoth {

frmECC* frmMain::EccWindow() {
  if (!ecc_) {
    frmDiagram* diagram = DiagramWindow();
    ecc_ = new frmECC(s_, colours_, dialogs_, progress_, *diagram);
    AddWindow(WindowOrder::ECC, ecc_);
    connect(diagram, &frmDiagram::SampleSelected, ecc_.data(), &frmECC::FollowSample);
    connect(diagram, &frmDiagram::ZoomChanged, ecc_.data(), &frmECC::FollowZoom);
    connect(diagram, &frmDiagram::EofChosen, ecc_.data(), &frmECC::FollowEof);
    connect(this, &frmMain::SampleChosen, ecc_.data(), &frmECC::FollowSample);
    connect(this, &frmMain::RangeChanged, ecc_.data(), &frmECC::FollowZoom);
  }
  return ecc_;
}

}  // namespace varnoth
