// The envelope test from the main window: the "Envelop" / "Reset envelope"
// button and the tightness slider that runs the test again.
#include <QLabel>
#include <QPushButton>
#include <QSlider>

#include "envelope/Envelope.h"
#include "ui/frmMain.h"

namespace varnoth {

namespace {
const QString kEnvelop = QStringLiteral("Envelop");
const QString kResetEnvelope = QStringLiteral("Reset envelope");
}  // namespace

bool frmMain::EnvelopeStands() const { return Command11->text() == kResetEnvelope; }

void frmMain::EnvelopClick() {
  if (!EnvelopeStands()) {
    Command11->setEnabled(false);
    boundary_.Run([this] { RunEnvelopeAndRedraw(); }, [this] { Command11->setEnabled(true); });
    return;
  }
  boundary_.Run([this] {
    varnoth::ResetEnvelope(s_);
    Command11->setText(kEnvelop);
    const Count a = s_.DisplayAxes(1), b = s_.DisplayAxes(2), c = s_.DisplayAxes(3);
    DrawTaxaFigure(a, b, c);
    if (s_.ReferenceIsBase) DrawSitesFigure(a, b, c);
    if (s_.FossilSampleCount > 2) DrawFossilFigure(a, b, c);
    emit RedrawOthers();
  });
  ShowAnalysisState();
}

void frmMain::RunEnvelopeAndRedraw() {
  // The timers would re-enter the drawing while the test runs.
  const bool turning = timer1_.isActive(), cycling = timer2_.isActive();
  timer1_.stop();
  timer2_.stop();
  struct Restart {
    frmMain& w;
    bool turning, cycling;
    ~Restart() {
      if (turning) w.timer1_.start();
      if (cycling) w.timer2_.start();
    }
  } restart{*this, turning, cycling};

  varnoth::RunEnvelope(s_, Slider1->value(), progress_);
  if (s_.MoreAxis)
    RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
  else
    RedrawScatter(s_.EnvelopeAxes(1), s_.EnvelopeAxes(2), s_.EnvelopeAxes(3));
  emit RedrawOthers();
  progress_.Finish();
  Command11->setText(kResetEnvelope);
  Command11->setEnabled(true);
  ShowAnalysisState();
}

}  // namespace varnoth
