// The reconstruction window's road to the interpolation tool: Command8
// "Launch Luvane 1.1" opens it, loaded at first use.
#include <QPushButton>

#include "ui/frmLuvane.h"
#include "ui/frmMAT.h"

namespace varnoth {

frmLuvane* frmMAT::LuvaneWindow() {
  if (!luvane_) {
    luvane_ = new frmLuvane(s_, dialogs_, *this);
    emit LuvaneCreated(luvane_);
  }
  return luvane_;
}

frmLuvane* frmMAT::Luvane() const { return luvane_; }

void frmMAT::ConnectLuvane() {
  connect(Command8, &QPushButton::clicked, this, [this] { LuvaneWindow()->Open(); });
}

}  // namespace varnoth
