// The reconstruction window's road to the interpolation tool: Command8
// "Launch Luvane 1.1" opens it, loaded at first use.
#include <QComboBox>
#include <QPushButton>

#include "interpolation/CalibrationPairs.h"
#include "ui/frmLuvane.h"
#include "ui/frmMAT.h"

namespace varnoth {

frmLuvane* frmMAT::LuvaneWindow() {
  if (!luvane_) {
    luvane_ = new frmLuvane(s_, dialogs_, *this);
    // A window of its own on the screen, it goes with this one.
    connect(this, &QObject::destroyed, luvane_, [w = luvane_.data()] { delete w; });
    emit LuvaneCreated(luvane_);
  }
  return luvane_;
}

frmLuvane* frmMAT::Luvane() const { return luvane_; }

void frmMAT::ConnectLuvane() {
  connect(Command8, &QPushButton::clicked, this, [this] { LuvaneWindow()->Open(); });
}

void frmMAT::FollowParameterInLuvane() {
  // With interpolated climate the accuracy pairs are read from the first
  // packed column from here on, whichever parameter is chosen; the
  // calibration tool later takes its pair set by the parameter's name.
  if (s_.SiteInfoLoaded) {
    s_.Interp.InterpCurrentParam = 1;
    if (calib_ && s_.Interp.InterpPairEstimates.Allocated()) CopyAccuracyPairs(*calib_, s_);
  }
  // The accuracy scatter's list shows the same parameter, and the scatter
  // follows its list.
  if (luvane_ && luvane_->Correl() && s_.Interp.InterpCorrelOpen)
    luvane_->Correl()->FollowParameter(Combo1->currentText());
}

}  // namespace varnoth
