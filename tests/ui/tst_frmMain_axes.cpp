// The main window's axes and animation: the control panel opened from the
// window, the turning timer, the ring of EOFs and the stepping of samples.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include "UiSupport.h"
#include "ui/frmControl.h"

using namespace varnoth;
using varnoth::uitest::MainFixture;

class tst_frmMain_axes : public QObject {
  Q_OBJECT
 private slots:
  void axisSettingsOpenTheControlPanel() {
    MainFixture f;
    f.Road();
    f.window->Command3->click();
    QVERIFY(f.window->ControlPanel()->isVisible());
    f.window->ControlPanel()->hide();
    f.window->mnuControl->trigger();
    QVERIFY(f.window->ControlPanel()->isVisible());
  }

  void turningTimerMovesTheViewUnlessPaused() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    w.Option4[1]->click();
    QVERIFY(w.Timer1().isActive());
    const double before = f.session.RotationAngles.A1;
    QTRY_VERIFY_WITH_TIMEOUT(f.session.RotationAngles.A1 != before, 2000);
    w.Check2->click();  // "Pause"
    QTest::qWait(30);
    const double paused = f.session.RotationAngles.A1;
    QTest::qWait(60);
    QCOMPARE(f.session.RotationAngles.A1, paused);
    // Back to 2-D: the turning stops.
    w.Check2->click();
    w.Option4[0]->click();
    QVERIFY(!w.Timer1().isActive());
  }

  void stepThroughSamplesWraps() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    QCOMPARE(f.session.SampleCursor, Count(1));
    w.Option5[1]->click();    // "Sequential"
    w.Command13[0]->click();  // "Prev." from the first goes to the last
    QCOMPARE(f.session.SampleCursor, f.session.FossilSampleCount);
    QCOMPARE(w.Combo1->currentText().toStdString(),
             f.session.FossilLabels(f.session.FossilSampleCount));
    w.Command13[1]->click();  // and "Next" back to the first
    QCOMPARE(f.session.SampleCursor, Count(1));
  }

  void automaticChangeTurnsTheRing() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    w.Option4[1]->click();
    QVERIFY(!w.Option6[0]->isEnabled());
    // "Set more axes" in the control panel starts the ring turning.
    w.Command3->click();
    w.ControlPanel()->Check1->click();
    QVERIFY(f.session.MoreAxis);
    QVERIFY(w.Timer2().isActive());
    QVERIFY(w.Option6[0]->isEnabled() && w.Option6[0]->isChecked());
    QVERIFY(!w.Command4[0]->isEnabled());
    w.ControlPanel()->Check1->click();  // the panel's own lists go back
    w.ControlPanel()->hide();
    w.Option6[1]->click();  // "Manual change"
    QVERIFY(!w.Timer2().isActive());
    QVERIFY(w.Command4[1]->isEnabled());
    // "Next" moves the EOFs on the axes one place round the ring of three.
    w.Command4[1]->click();
    QCOMPARE(f.session.DisplayAxes(1), Count(3));
    QCOMPARE(f.session.DisplayAxes(2), Count(1));
    QCOMPARE(f.session.DisplayAxes(3), Count(2));
    w.Command4[0]->click();
    QCOMPARE(f.session.DisplayAxes(1), Count(1));
  }
};

QTEST_MAIN(tst_frmMain_axes)
#include "tst_frmMain_axes.moc"
