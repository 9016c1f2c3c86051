// Where dialogs and panels open: the placing rules on given rectangles,
// and the real windows on the screen, each over or beside its owner.
#include <QAction>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>

#include "UiSupport.h"
#include "ui/WindowPlacement.h"
#include "ui/frmAbout1.h"
#include "ui/frmControl.h"
#include "ui/frmDiagram.h"
#include "ui/frmTest.h"

using namespace varnoth;
using varnoth::uitest::MainFixture;

namespace {

const QRect kScreen(0, 0, 1280, 1024);

bool Within(const QRect& r, const QRect& screen) { return screen.contains(r); }

// Overlaps the owner, or touches one of its sides.
bool BelongsTo(const QRect& r, const QRect& owner) {
  return r.intersects(owner) || r.left() == owner.right() + 1 || r.right() == owner.left() - 1;
}

QRect Frame(const QWidget* w) { return w->frameGeometry(); }

}  // namespace

class tst_WindowPlacement : public QObject {
  Q_OBJECT
 private slots:
  void centredOnTheOwner() {
    const QRect owner(100, 80, 980, 720);
    const QRect r = CentredOn(owner, QSize(300, 400), kScreen);
    QCOMPARE(r.size(), QSize(300, 400));
    QCOMPARE(r.center(), owner.center());
  }

  void centredButOnScreen() {
    // An owner pushed to the bottom-left corner: the dialog stays whole.
    const QRect owner(-200, 700, 500, 500);
    const QRect r = CentredOn(owner, QSize(300, 400), kScreen);
    QVERIFY(Within(r, kScreen));
    QVERIFY(r.intersects(owner));
    QCOMPARE(r.left(), 0);
    QCOMPARE(r.bottom(), kScreen.bottom());
  }

  void besideOnTheSideWithRoom() {
    const QRect left(0, 0, 800, 700);
    QRect r = Beside(left, QSize(400, 500), kScreen);
    QCOMPARE(r.left(), left.right() + 1);
    QCOMPARE(r.top(), left.top());
    QVERIFY(Within(r, kScreen));
    const QRect right(480, 50, 800, 700);
    r = Beside(right, QSize(400, 500), kScreen);
    QCOMPARE(r.right(), right.left() - 1);
    QCOMPARE(r.top(), 50);
    QVERIFY(Within(r, kScreen));
  }

  void besideWithoutRoomStaysOnScreen() {
    const QRect owner(0, 0, 1100, 1000);
    const QRect r = Beside(owner, QSize(400, 500), kScreen);
    QVERIFY(Within(r, kScreen));
    QCOMPARE(r.right(), kScreen.right());
    QVERIFY(BelongsTo(r, owner));
  }

  void withoutRoomTheOwnersControlsStayInView() {
    // The calibration tool fills the screen's width; its settings are on
    // its left: the chart covers its figures, not its buttons.
    const QRect owner(40, 40, 1200, 620), keep(40, 70, 280, 560);
    const QRect r = BesideKeeping(owner, keep, QSize(840, 560), kScreen);
    QVERIFY(Within(r, kScreen));
    QVERIFY(!r.intersects(keep));
    // With room beside, beside it is.
    const QRect small(0, 0, 300, 400);
    QCOMPARE(BesideKeeping(small, QRect(0, 0, 100, 400), QSize(300, 300), kScreen),
             Beside(small, QSize(300, 300), kScreen));
  }

  void tooLargeIsShrunkToTheScreen() {
    const QRect r = OntoScreen(QRect(900, 900, 2000, 1500), kScreen);
    QCOMPARE(r, kScreen);
  }

  void preTreatmentDialogOverTheMainWindow() {
    MainFixture f;
    f.ImportReference(uitest::Example("reference.csv"));
    QWidget* d = f.window->CorrelVar();
    QVERIFY(d->isVisible());
    QVERIFY(d->isModal());
    const QRect screen = AvailableArea(f.window.get());
    QVERIFY2(Within(Frame(d), screen), qPrintable(QString("%1,%2 %3x%4")
                                                      .arg(Frame(d).x())
                                                      .arg(Frame(d).y())
                                                      .arg(Frame(d).width())
                                                      .arg(Frame(d).height())));
    QVERIFY(Frame(d).intersects(Frame(f.window.get())));
    // Centred, as far as the screen lets it be.
    const QRect expected = CentredOn(Frame(f.window.get()), Frame(d).size(), screen);
    QCOMPARE(Frame(d).topLeft(), expected.topLeft());
    // The whole caption fits in the title, beside the frame's buttons.
    QVERIFY(d->width() >= d->fontMetrics().horizontalAdvance(d->windowTitle()) + 100);
  }

  void controlPanelBesideTheMainWindow() {
    MainFixture f;
    // A main window that leaves room to its right.
    f.window->resize(600, 500);
    f.window->move(AvailableArea(f.window.get()).topLeft());
    f.Road();
    f.window->Command3->click();
    QWidget* panel = f.window->ControlPanel();
    QVERIFY(panel->isVisible());
    const QRect screen = AvailableArea(f.window.get());
    QVERIFY(Within(Frame(panel), screen));
    QVERIFY(BelongsTo(Frame(panel), Frame(f.window.get())));
    if (screen.right() - Frame(f.window.get()).right() >= Frame(panel).width())
      QCOMPARE(Frame(panel).left(), Frame(f.window.get()).right() + 1);
  }

  void diagramOnScreenAtItsDefaultSize() {
    MainFixture f;
    f.Road();
    f.window->Command14->click();
    QWidget* d = f.window->DiagramWindow();
    QVERIFY(d->isVisible());
    const QRect screen = AvailableArea(f.window.get());
    QVERIFY(Within(Frame(d), screen));
    QVERIFY(BelongsTo(Frame(d), Frame(f.window.get())));
  }

  void aboutAndTestFormsOverTheMainWindow() {
    MainFixture f;
    f.window->resize(700, 500);
    f.window->move(AvailableArea(f.window.get()).topLeft() + QPoint(30, 20));
    const QRect screen = AvailableArea(f.window.get());
    f.window->mnuAbout->trigger();
    QWidget* about = f.window->AboutWindow();
    QVERIFY(about->isVisible());
    QVERIFY(Within(Frame(about), screen));
    QCOMPARE(Frame(about).center(), Frame(f.window.get()).center());
    f.window->Command9->click();
    QWidget* test = f.window->TestForm();
    QVERIFY(test->isVisible());
    QVERIFY(Within(Frame(test), screen));
    QCOMPARE(Frame(test).center(), Frame(f.window.get()).center());
  }

  void panelStaysWhereTheUserPutsIt() {
    MainFixture f;
    f.Road();
    f.window->Command3->click();
    QWidget* panel = f.window->ControlPanel();
    const QPoint moved = AvailableArea(panel).topLeft() + QPoint(5, 7);
    panel->move(moved);
    panel->close();
    f.window->Command3->click();
    QVERIFY(panel->isVisible());
    QCOMPARE(panel->pos(), moved);
  }
};

QTEST_MAIN(tst_WindowPlacement)
#include "tst_WindowPlacement.moc"
