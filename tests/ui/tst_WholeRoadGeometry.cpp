// The whole road of an analysis on a screen of 1280 x 1024: after each
// step every window in view, and every picture in view, lies inside the
// screen.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTest>

#include "UiSupport.h"
#include "ui/PictureBox.h"
#include "ui/frmCalib.h"
#include "ui/frmLuvane.h"
#include "ui/frmMAT.h"
#include "ui/frmOutPut2.h"

using namespace varnoth;
using varnoth::uitest::Example;

namespace {

QRect Screen() { return QGuiApplication::primaryScreen()->availableGeometry(); }

// Every visible top-level window, and every visible picture of it, inside
// the screen; the names of those that are not.
QStringList OutsideTheScreen() {
  QStringList outside;
  const QRect screen = Screen();
  for (QWidget* top : QApplication::topLevelWidgets()) {
    if (!top->isVisible() || top->isMinimized()) continue;
    const QString name =
        top->objectName().isEmpty() ? top->metaObject()->className() : top->objectName();
    if (!screen.contains(top->frameGeometry()))
      outside << QString("%1 at %2,%3 %4x%5")
                     .arg(name)
                     .arg(top->frameGeometry().x())
                     .arg(top->frameGeometry().y())
                     .arg(top->frameGeometry().width())
                     .arg(top->frameGeometry().height());
    for (PictureBox* p : top->findChildren<PictureBox*>()) {
      // Pictures of the windows it owns are checked with those windows.
      if (p->window() != top || !p->isVisibleTo(top) || p->width() <= 0 || p->height() <= 0)
        continue;
      const QRect global(p->mapToGlobal(QPoint(0, 0)), p->size());
      if (!screen.contains(global) || !top->geometry().contains(global))
        outside << QString("%1/%2 at %3,%4 %5x%6 in %7,%8 %9x%10")
                       .arg(name, p->objectName())
                       .arg(global.x())
                       .arg(global.y())
                       .arg(global.width())
                       .arg(global.height())
                       .arg(top->geometry().x())
                       .arg(top->geometry().y())
                       .arg(top->geometry().width())
                       .arg(top->geometry().height());
    }
  }
  return outside;
}

void Settle() {
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

#define CHECK_STEP(step)                                                        \
  do {                                                                          \
    Settle();                                                                   \
    const QStringList out = OutsideTheScreen();                                 \
    QVERIFY2(out.isEmpty(), qPrintable(QString(step) + ": " + out.join("; "))); \
  } while (false)

}  // namespace

class tst_WholeRoadGeometry : public QObject {
  Q_OBJECT
 private slots:
  void theScreenIs1280By1024() {
    QCOMPARE(QGuiApplication::primaryScreen()->geometry().size(), QSize(1280, 1024));
  }

  void everyWindowOfTheRoadStaysOnTheScreen() {
    uitest::MainFixture f;
    CHECK_STEP("start");
    f.ImportReference(Example("reference.csv"));
    CHECK_STEP("pre-treatment");
    f.Confirm();
    CHECK_STEP("EOFs");
    f.ImportFossil(Example("fossil.csv"));
    CHECK_STEP("projection");
    f.window->Command11->click();
    CHECK_STEP("envelope");
    f.window->Check1->click();
    CHECK_STEP("stereo");
    f.window->Check1->click();
    CHECK_STEP("stereo off");
    f.window->Command3->click();
    CHECK_STEP("axis settings");
    f.window->Command14->click();
    CHECK_STEP("diagram");
    f.window->Command8->click();
    frmMAT* mat = f.window->MATWindow();
    CHECK_STEP("reconstruction");
    f.dialogs.OpenNames.push_back(Example("climate.csv"));
    mat->Command1->click();
    CHECK_STEP("climate");
    mat->Command3->click();
    CHECK_STEP("error model");
    mat->Command6->click();
    frmCalib* c = mat->CalibWindow();
    CHECK_STEP("calibration");
    c->Check4->click();
    c->Command3->click();
    CHECK_STEP("calibration started");
    QTest::mouseClick(c->Picture2[4], Qt::LeftButton, {}, QPoint(50, 50));
    QVERIFY(c->Chart() && c->Chart()->isVisible());
    CHECK_STEP("calibration chart");
    c->Command10->click();
    CHECK_STEP("return");
    mat->Command4->click();
    CHECK_STEP("matrix down the core");
  }

  void theInterpolationToolStaysOnTheScreen() {
    uitest::MainFixture f;
    f.Road();
    f.window->Command8->click();
    frmMAT* mat = f.window->MATWindow();
    mat->Command8->click();
    frmLuvane* l = mat->Luvane();
    QVERIFY(l && l->isVisible());
    CHECK_STEP("interpolation tool");
    // The status line names the next step, and the example tables serve.
    auto next = [l] {
      QTest::qWait(300);
      return l->StatusNext->text();
    };
    QVERIFY(next().startsWith("Import reference dataset"));
    f.dialogs.OpenNames.push_back(Example("stations.csv"));
    l->Command0->click();
    CHECK_STEP("stations");
    QVERIFY(f.session.Interp.InterpRefLoaded);
    QVERIFY(next().contains("Import target cordinates"));
    f.dialogs.OpenNames.push_back(Example("targets.csv"));
    l->Command2->click();
    CHECK_STEP("targets");
    QVERIFY(f.session.Interp.InterpTargetLoaded);
    QVERIFY(next().contains("Check accuracy"));
    l->Command3->click();
    CHECK_STEP("accuracy");
    QVERIFY(next().contains("Return to Varnoth"));
    l->Command1->click();
    CHECK_STEP("returned");
    QVERIFY(f.session.SiteInfoLoaded);
  }
};

int main(int argc, char* argv[]) {
  // An offscreen screen of the size the program is tried on.
  const QString config = QDir::temp().filePath("varnoth-screen-1280x1024.json");
  QFile f(config);
  if (f.open(QIODevice::WriteOnly))
    f.write(R"({"screens": [{"name": "S", "x": 0, "y": 0, "width": 1280, "height": 1024,
                "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
  f.close();
  qputenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + config).toLocal8Bit());
  QApplication app(argc, argv);
  tst_WholeRoadGeometry test;
  return QTest::qExec(&test, argc, argv);
}

#include "tst_WholeRoadGeometry.moc"
