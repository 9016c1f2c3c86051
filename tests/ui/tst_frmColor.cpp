// The colour window: presets, the white limit, dragging break points, and
// the grey mode that shows one channel for all three.
#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QSlider>

#include "UiSupport.h"
#include "ui/PictureBox.h"
#include "ui/frmColor.h"

using namespace varnoth;
using varnoth::uitest::MainFixture;

namespace {
QPoint PointOf(frmColor& c, ColourSettings&, int channel, int r) {
  return c.PointAt(channel, r).toPoint();
}

// The x of a break value on a panel, from two points of different value.
double XOf(frmColor& c, ColourSettings& s, int channel, int r0, int r1, double value) {
  const double x0 = c.PointAt(channel, r0).x(), x1 = c.PointAt(channel, r1).x();
  const double v0 = s.Break(channel, r0), v1 = s.Break(channel, r1);
  return x0 + (value - v0) / (v1 - v0) * (x1 - x0);
}

void Drag(PictureBox* p, QPoint from, QPointF to) {
  QTest::mousePress(p, Qt::LeftButton, {}, from);
  QMouseEvent move(QEvent::MouseMove, to, p->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                   Qt::NoModifier);
  QApplication::sendEvent(p, &move);
  QTest::mouseRelease(p, Qt::LeftButton, {}, to.toPoint());
}

QImage Grab(QWidget* w) { return w->grab().toImage(); }
}  // namespace

class tst_frmColor : public QObject {
  Q_OBJECT
 private slots:
  void loadShowsTheSettings() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    QCOMPARE(c->windowTitle(), QString("Colour settings"));
    QCOMPARE(c->Command1->text(), QString("Grey scale"));
    QCOMPARE(c->Command2->text(), QString("OK"));
    QCOMPARE(c->Command3->text(), QString("Reset"));
    QCOMPARE(c->Slider1->value(), 10);
    QCOMPARE(c->Label3->text(), QString("10%"));
    QCOMPARE(c->findChild<QLabel*>("Label0_0")->text(), QString("30%"));
    QCOMPARE(c->findChild<QLabel*>("Label1_3")->text(), QString("65%"));
    QCOMPARE(c->findChild<QLabel*>("Label2_2")->text(), QString("25%"));
    for (int ch = 0; ch < 3; ++ch) QVERIFY(c->Picture2[std::size_t(ch)]->isVisible());
    // The bar: white up to the limit, black at the end.
    const QImage& bar = c->Picture1->surface().Image();
    QCOMPARE(bar.pixelColor(2, 5), QColor(255, 255, 255));
    QCOMPARE(bar.pixelColor(bar.width() - 1, 5), QColor(0, 0, 0));
    QCOMPARE(bar.pixelColor(int(bar.width() * 0.5), 5), PaletteColour(f.colours, 0.5));
  }

  void greyScaleKeepsSlotThreeRed() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    c->Command1->click();
    QVERIFY(f.colours.GreyMode);
    QVERIFY(f.colours.PaletteChanged);
    QCOMPARE(f.colours.Slot(3), (Rgb{255, 0, 0}));
    QCOMPARE(f.colours.Slot(2), (Rgb{100, 100, 100}));
    QVERIFY(f.window->mnuGrey->isChecked());
    QVERIFY(!f.window->mnuColor->isChecked());
    QVERIFY(!c->Picture2[0]->isVisible());
    QVERIFY(!c->Picture2[1]->isVisible());
    QVERIFY(c->Picture2[2]->isVisible());
    QVERIFY(!c->findChild<QLabel*>("Label0_1")->isVisible());
    QCOMPARE(c->Slider1->value(), 0);
    c->Command3->click();
    QVERIFY(!f.colours.GreyMode);
    QVERIFY(f.window->mnuColor->isChecked());
    QVERIFY(c->Picture2[0]->isVisible());
    QCOMPARE(c->Slider1->value(), 10);
  }

  void greyMenuFromTheMainWindow() {
    MainFixture f;
    f.window->mnuGrey->trigger();
    QCOMPARE(f.colours.Slot(3), (Rgb{255, 0, 0}));
    frmColor* c = f.window->ColorWindow();
    c->show();
    QVERIFY(!c->Picture2[0]->isVisible());
  }

  void whiteSlider() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    c->Slider1->setValue(40);
    QCOMPARE(f.colours.PaletteWhite, 0.4f);
    QCOMPARE(c->Label3->text(), QString("40%"));
    const QImage& bar = c->Picture1->surface().Image();
    QCOMPARE(bar.pixelColor(int(bar.width() * 0.35), 5), QColor(255, 255, 255));
  }

  void dragABreakPoint() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    PictureBox* red = c->Picture2[0];
    const int w = red->surface().Width();
    const QPoint from = PointOf(*c, f.colours, 0, 1);
    const double half = XOf(*c, f.colours, 0, 0, 3, 0.5);
    QTest::mousePress(red, Qt::LeftButton, {}, from + QPoint(2, -2));  // within the grip
    QTest::mouseMove(red, QPoint(int(half), from.y()));
    QMouseEvent move(QEvent::MouseMove, QPointF(half, from.y()),
                     red->mapToGlobal(QPointF(half, from.y())), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(red, &move);
    QVERIFY(!f.colours.PaletteChanged);
    QTest::mouseRelease(red, Qt::LeftButton, {}, QPoint(int(half), from.y()));
    QVERIFY(std::abs(f.colours.Break(0, 1) - 0.5f) < 0.01f);
    QVERIFY(f.colours.PaletteChanged);
    QCOMPARE(c->findChild<QLabel*>("Label0_1")->text(), QString("50%"));
    // A press away from every point takes nothing.
    f.colours.PaletteChanged = false;
    QTest::mousePress(red, Qt::LeftButton, {}, red->Origin() + QPoint(w - 2, 2));
    QTest::mouseRelease(red, Qt::LeftButton, {}, red->Origin() + QPoint(w - 2, 2));
    QVERIFY(!f.colours.PaletteChanged);
  }

  void greyDragMovesAllChannels() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    c->Command1->click();
    PictureBox* grey = c->Picture2[2];
    const QPoint from = PointOf(*c, f.colours, 2, 3);
    QTest::mousePress(grey, Qt::LeftButton, {}, from);
    const QPointF to(XOf(*c, f.colours, 2, 0, 3, 0.8), from.y());
    QMouseEvent move(QEvent::MouseMove, to, grey->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(grey, &move);
    QTest::mouseRelease(grey, Qt::LeftButton, {}, to.toPoint());
    QVERIFY(std::abs(f.colours.Break(2, 3) - 0.8f) < 0.01f);
    QCOMPARE(f.colours.Break(0, 3), f.colours.Break(2, 3));
    QCOMPARE(f.colours.Break(1, 3), f.colours.Break(2, 3));
  }

  void pointsAtTheEndsShowWhole() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    f.colours.Break(0, 0) = 0;
    f.colours.Break(0, 3) = 1;
    c->DrawAll();
    PictureBox* red = c->Picture2[0];
    const QImage image = Grab(red);
    // The square of each point (6 pixels across) lies wholly on the panel
    // and is drawn in the channel's colour on both sides of its centre.
    for (int r : {0, 3}) {
      const QPoint p = PointOf(*c, f.colours, 0, r);
      QVERIFY(p.x() - 3 >= 0 && p.x() + 3 < image.width());
      const QColor left = image.pixelColor(p.x() - 2, p.y());
      const QColor right = image.pixelColor(p.x() + 2, p.y());
      QVERIFY2(left.red() > 150 && left.green() < 80, qPrintable(left.name()));
      QVERIFY2(right.red() > 150 && right.green() < 80, qPrintable(right.name()));
    }
  }

  void labelsStandUnderTheirPoints() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    QCoreApplication::processEvents();
    PictureBox* red = c->Picture2[0];
    for (int r = 0; r < 4; ++r) {
      QLabel* l = c->findChild<QLabel*>(QString("Label0_%1").arg(r));
      const QPoint centre = l->mapTo(c, l->rect().center());
      const QPoint point = red->mapTo(c, PointOf(*c, f.colours, 0, r));
      QVERIFY2(std::abs(centre.x() - point.x()) <= 2,
               qPrintable(
                   QString("break %1: label %2, point %3").arg(r).arg(centre.x()).arg(point.x())));
      QVERIFY(centre.y() > point.y());
    }
  }

  void stackedBreaksCanAllBeTakenApart() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    c->Command1->click();  // grey: breaks 0, 1 and 2 all at 0 %
    QCoreApplication::processEvents();
    QCOMPARE(f.colours.Break(2, 1), 0.0f);
    QCOMPARE(f.colours.Break(2, 2), 0.0f);
    PictureBox* grey = c->Picture2[2];
    // Breaks 1 and 2 stand on one point: the one that can move is taken.
    const QPoint top = PointOf(*c, f.colours, 2, 2);
    QCOMPARE(top, PointOf(*c, f.colours, 2, 1));
    QCOMPARE(c->BreakAt(2, top - grey->Origin()), 2);
    Drag(grey, top, QPointF(XOf(*c, f.colours, 2, 0, 3, 0.3), top.y()));
    QVERIFY(std::abs(f.colours.Break(2, 2) - 0.3f) < 0.01f);
    QCOMPARE(f.colours.Break(2, 1), 0.0f);
    // Now break 1 has room, and then break 0.
    const QPoint one = PointOf(*c, f.colours, 2, 1);
    Drag(grey, one, QPointF(XOf(*c, f.colours, 2, 2, 3, 0.2), one.y()));
    QVERIFY(std::abs(f.colours.Break(2, 1) - 0.2f) < 0.01f);
    const QPoint zero = PointOf(*c, f.colours, 2, 0);
    Drag(grey, zero, QPointF(XOf(*c, f.colours, 2, 1, 3, 0.1), zero.y()));
    QVERIFY(std::abs(f.colours.Break(2, 0) - 0.1f) < 0.01f);
    // A break does not pass its neighbour.
    const QPoint again = PointOf(*c, f.colours, 2, 0);
    Drag(grey, again, QPointF(XOf(*c, f.colours, 2, 1, 3, 0.9), again.y()));
    QCOMPARE(f.colours.Break(2, 0), f.colours.Break(2, 1));
  }

  void everyControlSaysWhatItDoes() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    for (QWidget* w : c->findChildren<QWidget*>())
      if (qobject_cast<QAbstractButton*>(w) || qobject_cast<QAbstractSlider*>(w) ||
          qobject_cast<PictureBox*>(w) || w->objectName().startsWith("Label"))
        QVERIFY2(!w->toolTip().isEmpty(), qPrintable(w->objectName()));
  }

  void okCloses() {
    MainFixture f;
    frmColor* c = f.window->ColorWindow();
    c->show();
    c->Command2->click();
    QVERIFY(!c->isVisible());
  }
};

QTEST_MAIN(tst_frmColor)
#include "tst_frmColor.moc"
