// The colour window: presets, the white limit, dragging break points, and
// the grey mode that shows one channel for all three.
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
QPoint PointOf(frmColor& c, ColourSettings& s, int channel, int r) {
  PictureBox* p = c.Picture2[static_cast<std::size_t>(channel)];
  const double w = p->surface().Width(), h = p->surface().Height();
  const double level = (r == 0 || r == 3) ? 0.8 * h : 0.2 * h;
  return p->Origin() + QPoint(int(std::lround(s.Break(channel, r) * w)), int(std::lround(level)));
}
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
    QTest::mousePress(red, Qt::LeftButton, {}, from + QPoint(2, -2));  // within the grip
    QTest::mouseMove(red, QPoint(red->Origin().x() + w / 2, from.y()));
    QMouseEvent move(QEvent::MouseMove, QPointF(red->Origin().x() + w / 2, from.y()),
                     red->mapToGlobal(QPointF(red->Origin().x() + w / 2, from.y())), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(red, &move);
    QVERIFY(!f.colours.PaletteChanged);
    QTest::mouseRelease(red, Qt::LeftButton, {}, QPoint(red->Origin().x() + w / 2, from.y()));
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
    const int w = grey->surface().Width();
    const QPoint from = PointOf(*c, f.colours, 2, 3);
    QTest::mousePress(grey, Qt::LeftButton, {}, from);
    const QPointF to(grey->Origin().x() + 0.8 * w, from.y());
    QMouseEvent move(QEvent::MouseMove, to, grey->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(grey, &move);
    QTest::mouseRelease(grey, Qt::LeftButton, {}, to.toPoint());
    QVERIFY(std::abs(f.colours.Break(2, 3) - 0.8f) < 0.01f);
    QCOMPARE(f.colours.Break(0, 3), f.colours.Break(2, 3));
    QCOMPARE(f.colours.Break(1, 3), f.colours.Break(2, 3));
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
