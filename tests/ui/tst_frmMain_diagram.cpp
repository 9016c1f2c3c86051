// The diagram window reached from the main window: "Diagram" opens it, and
// the selected sample and the range pass both ways.
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

#include "UiSupport.h"
#include "ui/frmDiagram.h"

using namespace varnoth;
using varnoth::uitest::MainFixture;

class tst_frmMain_diagram : public QObject {
  Q_OBJECT
 private slots:
  void diagramOpensFromTheMainWindow() {
    MainFixture f;
    f.Road();
    QVERIFY(f.window->Command14->isEnabled());
    f.window->Command14->click();
    QVERIFY(f.window->DiagramWindow()->isVisible());
    QVERIFY(f.session.DiagramOpen);
    QVERIFY(f.dialogs.Messages.empty());
  }

  void samplesStepInTheMainWindowMoveTheDiagram() {
    MainFixture f;
    f.Road();
    f.window->Command14->click();
    frmDiagram& d = *f.window->DiagramWindow();
    f.window->Option5[1]->click();    // "Sequential": the stepping buttons work
    f.window->Command13[1]->click();  // "Next" sample
    QCOMPARE(f.session.SampleCursor, Count(2));
    QCOMPARE(d.Combo2->currentText().toStdString(), f.session.FossilLabels(2));
  }

  void samplesChosenInTheDiagramMoveTheMainWindow() {
    MainFixture f;
    f.Road();
    f.window->Command14->click();
    frmDiagram& d = *f.window->DiagramWindow();
    const int target = d.Combo2->findText(QString::fromStdString(f.session.FossilLabels(5)));
    QVERIFY(target >= 0);
    d.Combo2->setCurrentIndex(target);
    emit d.Combo2->activated(target);
    QCOMPARE(f.session.SampleCursor, Count(5));
    QCOMPARE(f.window->Combo1->currentText().toStdString(), f.session.FossilLabels(5));
  }

  void rangeFollowsBothWays() {
    MainFixture f;
    f.Road();
    f.window->Command14->click();
    frmDiagram& d = *f.window->DiagramWindow();
    f.window->Slider4->setValue(4);
    QCOMPARE(d.Slider2->value(), 4);
    d.Slider2->setValue(1);
    QCOMPARE(f.window->Slider4->value(), 1);
    QCOMPARE(f.session.ScatterZoom, 2.0);
  }
};

QTEST_MAIN(tst_frmMain_diagram)
#include "tst_frmMain_diagram.moc"
