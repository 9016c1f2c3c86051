// The envelope test from the main window: "Envelop", "Reset envelope", the
// tightness slider running the test again, and what the scatter shows.
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTimer>

#include "UiSupport.h"
#include "presentation/Scatter.h"
#include "ui/PictureBox.h"

using namespace varnoth;
using varnoth::uitest::MainFixture;
using varnoth::uitest::Near;

namespace {

long OutCount(const Session& s) {
  long n = 0;
  for (long i = 1; i <= s.FossilSampleCount; ++i) n += s.SampleIsOut(i);
  return n;
}

// The site farthest out along EOF 1: extreme on the directions near that axis.
long RightmostSite(const Session& s) {
  long best = 1;
  for (long i = 2; i <= s.RefSiteCount; ++i)
    if (s.RefScores(i, 1) > s.RefScores(best, 1)) best = i;
  return best;
}

}  // namespace

class tst_frmMain_envelope : public QObject {
  Q_OBJECT
 private slots:
  void envelopMarksAndResets() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    QVERIFY(w.Command11->isEnabled());
    QCOMPARE(w.Command11->text(), QString("Envelop"));
    w.Command11->click();
    QVERIFY(f.session.EnvelopeDone);
    QCOMPARE(w.Command11->text(), QString("Reset envelope"));
    QVERIFY(w.Command11->isEnabled());
    QVERIFY(!w.ProgressBar1->isVisible());
    const long site = RightmostSite(f.session);
    QVERIFY(f.session.SiteIsExtreme(site));
    // Extreme sites are drawn in the first slot.
    w.Option3[2]->click();  // names hidden, so only the marks stand there
    const Surface& fig = w.Picture2(0)->surface();
    QVERIFY(Near(fig, f.session.RefScores(site, 1), f.session.RefScores(site, 2),
                 f.colours.Slot(1).ToQColor(), 0));

    w.Command11->click();  // "Reset envelope"
    QCOMPARE(w.Command11->text(), QString("Envelop"));
    QVERIFY(f.session.EnvelopeDone);  // every sample counts as In from now on
    QCOMPARE(OutCount(f.session), 0L);
    QVERIFY(!f.session.SiteIsExtreme(site));
    QVERIFY(Near(fig, f.session.RefScores(site, 1), f.session.RefScores(site, 2),
                 f.colours.Slot(2).ToQColor(), 0));
  }

  void outSamplesAreHollowCircles() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    w.Slider1->setValue(0);  // the tightest test
    w.Command11->click();
    long out = 0;
    for (long i = 1; i <= f.session.FossilSampleCount && !out; ++i)
      if (f.session.SampleIsOut(i)) out = i;
    QVERIFY2(out > 0, "the example core has samples beyond the modern sites");
    w.Option5[2]->click();  // sample labels hidden
    const Surface& fig = w.Picture2(0)->surface();
    const double r = 0.02 * SitesRange(f.session);
    QVERIFY(Near(fig, f.session.FossilScores(out, 1) + r, f.session.FossilScores(out, 2),
                 f.colours.Slot(3).ToQColor(), 1));
  }

  void sliderRunsTheTestAgainWhileResultsStand() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    // Before the first run the slider only sets the tolerance.
    w.Slider1->setValue(0);
    QVERIFY(!f.session.EnvelopeDone);
    QCOMPARE(f.session.EnvelopeTolerance, 0.0f);
    w.Command11->click();
    const long tight = OutCount(f.session);
    const double firstDirection = f.session.EnvelopeDirections(1, 1);
    w.Slider1->setValue(10);  // the loosest: a new run with new directions
    QCOMPARE(f.session.EnvelopeTolerance, 1.0f);
    QVERIFY(f.session.EnvelopeDirections(1, 1) != firstDirection);
    QVERIFY(OutCount(f.session) <= tight);
    QCOMPARE(w.Label4->text(), QString("1"));
  }

  void turningStopsForTheTestAndStartsAgain() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    w.Option4[1]->click();  // 3-D: the view turns
    QVERIFY(w.Timer1().isActive());
    w.Command11->click();
    QVERIFY(w.Timer1().isActive());
    QCOMPARE(f.session.EnvelopeAxisCount, 3);
  }
};

QTEST_MAIN(tst_frmMain_envelope)
#include "tst_frmMain_envelope.moc"
