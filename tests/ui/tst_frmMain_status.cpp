// What the main window tells around its figures and what users of desktop
// programs expect of it: the title with the tables read, the status line
// with the analysis state, the Out count and the pointer's coordinates, the
// tool tips of every control, the keyboard shortcuts, and the sample list
// and the diagram's selection line kept in step.
#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSlider>
#include <QSpinBox>
#include <QStatusBar>

#include "UiSupport.h"
#include "state/Import.h"
#include "ui/PictureBox.h"
#include "ui/frmAbout1.h"
#include "ui/frmControl.h"
#include "ui/frmDiagram.h"

using namespace varnoth;
using varnoth::uitest::Example;
using varnoth::uitest::MainFixture;

namespace {

const char* kReference =
    "Site,A,B,Cae\r\nS1,50,30,20\r\nS2,20,60,20\r\nS3,30,30,40\r\nS4,60,20,20\r\n"
    "S5,10,70,20\r\nS6,40,40,20\r\n";
// Five samples at even depths; the third is empty.
const char* kFossil =
    "Depth,A,B,Cae\r\n0,50,30,20\r\n10,20,60,20\r\n20,0,0,0\r\n30,40,40,20\r\n40,10,70,20\r\n";

// Every control a user can point at: buttons, sliders, lists, pictures.
void CheckToolTips(QWidget* window) {
  for (QWidget* w : window->findChildren<QWidget*>()) {
    if (w->objectName().isEmpty() || w->objectName().startsWith("qt_")) continue;
    const bool control = qobject_cast<QAbstractButton*>(w) || qobject_cast<QAbstractSlider*>(w) ||
                         qobject_cast<QComboBox*>(w) || qobject_cast<QAbstractSpinBox*>(w) ||
                         qobject_cast<QListWidget*>(w) || qobject_cast<PictureBox*>(w);
    if (!control) continue;
    QVERIFY2(!w->toolTip().isEmpty(),
             qPrintable(window->objectName() + ": " + w->objectName() + " has no tool tip"));
  }
}

int OutShown(const QString& status) {
  const QRegularExpressionMatch m =
      QRegularExpression("Out: (\\d+) of (\\d+) samples").match(status);
  return m.hasMatch() ? m.captured(1).toInt() : -1;
}

long MarkedOut(const Session& s) {
  long n = 0;
  for (long i = 1; i <= s.FossilSampleCount; ++i)
    if (!s.FossilEmptySample(i) && s.SampleIsOut(i)) ++n;
  return n;
}

}  // namespace

class tst_frmMain_status : public QObject {
  Q_OBJECT
 private slots:
  void titleNamesTheTablesAndTheirSizes() {
    MainFixture f;
    QCOMPARE(f.window->windowTitle(), QString("Varnoth"));
    f.ImportReference(Example("reference.csv"));
    QCOMPARE(f.window->windowTitle(), QString("Varnoth - reference.csv: 61 sites x 22 taxa"));
    f.Confirm();
    f.ImportFossil(Example("fossil.csv"));
    QCOMPARE(f.window->windowTitle(),
             QString("Varnoth - reference.csv: 61 sites x 22 taxa; fossil.csv: 110 samples"));
  }

  void titleWithTheFossilAsBase() {
    MainFixture f;
    f.ImportFossil(f.Write("core.csv", kFossil));
    QCOMPARE(f.window->windowTitle(), QString("Varnoth - core.csv: 5 samples x 3 taxa"));
  }

  void statusLineFollowsTheAnalysis() {
    MainFixture f;
    QLabel* state = f.window->StatusState;
    QVERIFY(state->isVisible());
    QVERIFY(state->text().contains("Import"));
    f.ImportReference(Example("reference.csv"));
    QVERIFY(state->text().contains("pre-treatment"));
    f.Confirm();
    QVERIFY(state->text().startsWith("EOFs done"));
    QVERIFY(!state->text().contains("projected"));
    f.ImportFossil(Example("fossil.csv"));
    QVERIFY(state->text().contains("projected"));
    QCOMPARE(OutShown(state->text()), -1);
  }

  void statusLineTellsWhatEachOrderGives() {
    MainFixture f;
    const QString start = f.window->StatusState->text();
    // Before the choice: the reference first opens everything, the fossil
    // first the core's EOFs alone; the example data are named.
    QVERIFY2(start.contains("reference data first"), qPrintable(start));
    QVERIFY2(start.contains("fossil data first"), qPrintable(start));
    QVERIFY2(start.contains("EOFs of the core alone"), qPrintable(start));
    QVERIFY2(start.contains("Open Example Data"), qPrintable(start));
    QVERIFY(f.window->Command6->toolTip().contains("no reference table can follow"));
    // After a fossil base: the reference cannot follow.
    f.ImportFossil(f.Write("core.csv", kFossil));
    f.Confirm();
    const QString after = f.window->StatusState->text();
    QVERIFY2(after.contains("no reference table can follow"), qPrintable(after));
    QVERIFY2(!after.contains("import the reference"), qPrintable(after));
  }

  void failedReferenceAfterFossilBaseLeavesTheFigures() {
    MainFixture f;
    f.ImportFossil(f.Write("core.csv", kFossil));
    f.Confirm();
    QCoreApplication::processEvents();
    const QImage before = f.window->Picture2(0)->surface().Image().copy();
    f.ImportReference(f.Write("reference.csv", kReference));
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QCOMPARE(f.dialogs.Messages[0].Text, std::string(kFormatErrorMessage));
    QVERIFY(f.session.RefSiteCount > 0);  // the rows read stay counted
    // Neither the import nor a later redraw brings the failed table's sites.
    QVERIFY(f.window->Picture2(0)->surface().Image() == before);
    f.window->RedrawAll();
    QVERIFY(f.window->Picture2(0)->surface().Image() == before);
    QVERIFY(f.window->StatusState->text().contains("no reference table can follow"));
  }

  void statusLineOutCountIsTheNumberMarkedOut() {
    MainFixture f;
    f.Road();
    f.window->Slider1->setValue(0);  // the tightest envelope marks the most
    f.window->Command11->click();
    QVERIFY(f.session.EnvelopeDone);
    const long marked = MarkedOut(f.session);
    QVERIFY(marked > 0);
    QCOMPARE(OutShown(f.window->StatusState->text()), int(marked));
    QVERIFY(f.window->StatusState->text().contains(QString("of 110 samples")));
    // Another tightness runs the test again, and the count follows.
    f.window->Slider1->setValue(10);
    QCOMPARE(OutShown(f.window->StatusState->text()), int(MarkedOut(f.session)));
    // "Reset envelope" takes the count away.
    f.window->Command11->click();
    QCOMPARE(OutShown(f.window->StatusState->text()), -1);
  }

  void statusLineShowsThePointersEofCoordinates() {
    MainFixture f;
    f.Road();
    PictureBox* p = f.window->Picture2(0);
    // Zoom 4: the point (4, 0) in EOF units is the end of the first axis.
    const QPointF at = p->surface().ToPixel(4, 0) + QPointF(p->Origin());
    QMouseEvent move(QEvent::MouseMove, at, p->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(p, &move);
    const QString text = f.window->StatusPointer->text();
    const QRegularExpressionMatch m =
        QRegularExpression("Fig2  EOF-1: (-?[0-9.]+)  EOF-2: (-?[0-9.]+)").match(text);
    QVERIFY2(m.hasMatch(), qPrintable(text));
    QVERIFY(std::abs(m.captured(1).toDouble() - 4) < 0.05);
    QVERIFY(std::abs(m.captured(2).toDouble()) < 0.05);
    // The turning view has no EOF axes on screen.
    f.window->Option4[1]->click();
    f.window->Timer1().stop();
    QApplication::sendEvent(p, &move);
    QVERIFY(f.window->StatusPointer->text().isEmpty());
  }

  void everyControlHasAToolTip() {
    MainFixture f;
    f.Road();
    CheckToolTips(f.window.get());
    CheckToolTips(f.window->CorrelVar());
    f.window->Command3->click();
    CheckToolTips(f.window->ControlPanel());
    f.window->Command14->click();
    CheckToolTips(f.window->DiagramWindow());
    QVERIFY(f.window->Command5->toolTip().startsWith(
        "Read the modern reference table (sites by taxa) from a CSV file"));
  }

  void shortcuts() {
    MainFixture f;
    QCOMPARE(f.window->mnuQuit->shortcut(), QKeySequence("Ctrl+Q"));
    QCOMPARE(f.window->mnuAbout->shortcut(), QKeySequence("F1"));
    QCOMPARE(f.window->ImportNext->shortcut(), QKeySequence("Ctrl+O"));
    QCOMPARE(f.window->SaveScore->shortcut(), QKeySequence("Ctrl+S"));
    // Ctrl+O imports the table that is still to come.
    f.dialogs.OpenNames.push_back(Example("reference.csv"));
    f.window->ImportNext->trigger();
    QVERIFY(f.session.ReferenceIsBase);
    f.Confirm();
    f.dialogs.OpenNames.push_back(Example("fossil.csv"));
    f.window->ImportNext->trigger();
    QVERIFY(f.session.ProjectionDone);
    // Ctrl+S saves the scores of the figure last used.
    const std::string loading = f.Write("loading.csv", "");
    const std::string scores = f.Write("scores.csv", "");
    QTest::mouseClick(f.window->Picture1(0), Qt::LeftButton);
    f.dialogs.SaveNames.push_back(loading);
    f.window->SaveScore->trigger();
    QTest::mouseClick(f.window->Picture2(0), Qt::LeftButton);
    f.dialogs.SaveNames.push_back(scores);
    f.window->SaveScore->trigger();
    QFile l(QString::fromStdString(loading)), s(QString::fromStdString(scores));
    QVERIFY(l.open(QIODevice::ReadOnly));
    QVERIFY(s.open(QIODevice::ReadOnly));
    const QByteArray lt = l.readAll(), st = s.readAll();
    // The loadings have one line per taxon, the scores one per site.
    QVERIFY(lt.contains("G.ruber"));
    QVERIFY(st.contains("V14-61"));
    QVERIFY(!lt.contains("V14-61"));
    // F1 opens the about window; Ctrl+Q quits through QuitProgram.
    f.window->mnuAbout->trigger();
    QVERIFY(f.window->AboutWindow()->isVisible());
    f.window->mnuQuit->trigger();
    QCOMPARE(f.ended, 1);
  }

  void keysReachTheirActions() {
    MainFixture f;
    f.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    f.dialogs.OpenNames.push_back(Example("reference.csv"));
    QTest::keyClick(f.window.get(), Qt::Key_O, Qt::ControlModifier);
    QVERIFY(f.session.ReferenceIsBase);
    f.Confirm();
    f.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    QTest::keyClick(f.window.get(), Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(f.ended, 1);
  }

  void steppingOntoAnEmptySampleShowsItsLabel() {
    MainFixture f;
    f.ImportReference(f.Write("reference.csv", kReference));
    f.Confirm();
    f.ImportFossil(f.Write("fossil.csv", kFossil));
    f.window->Option5[1]->click();
    f.window->Command13[1]->click();  // sample 2, "10"
    QCOMPARE(f.window->Combo1->currentText(), QString("10"));
    f.window->Command13[1]->click();  // sample 3, "20", empty: not in the list
    QCOMPARE(f.session.SampleCursor, Count(3));
    QCOMPARE(f.window->Combo1->currentIndex(), -1);
    QCOMPARE(f.window->Combo1->placeholderText(), QString("20"));
    f.window->Command13[1]->click();
    QCOMPARE(f.window->Combo1->currentText(), QString("30"));
  }

  void selectionLineAndSampleNamesStartTogether() {
    MainFixture f;
    f.Road();
    QVERIFY(f.window->Option5[0]->isChecked());  // "Show all" at start
    f.window->Command14->click();
    frmDiagram* d = f.window->DiagramWindow();
    // The line is on, so the scatter marks the same sample.
    QVERIFY(d->Check1->isChecked());
    QVERIFY(f.window->Option5[1]->isChecked());
    QVERIFY(f.window->Command13[1]->isEnabled());
    // "Hide" in the main window takes the line away; "Sequential" brings it.
    f.window->Option5[2]->click();
    QVERIFY(!d->Check1->isChecked());
    f.window->Option5[1]->click();
    QVERIFY(d->Check1->isChecked());
    // And the other way, as before.
    d->Check1->click();
    QVERIFY(f.window->Option5[2]->isChecked());
  }
};

QTEST_MAIN(tst_frmMain_status)
#include "tst_frmMain_status.moc"
