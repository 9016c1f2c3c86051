// The about window: name, version, one button.
#include <QAction>
#include <QLabel>
#include <QPushButton>

#include "UiSupport.h"
#include "ui/frmAbout1.h"

using namespace varnoth;
using varnoth::uitest::MainFixture;

class tst_frmAbout1 : public QObject {
  Q_OBJECT
 private slots:
  void showsNameAndVersionAndCloses() {
    MainFixture f;
    f.window->mnuAbout->trigger();
    frmAbout1* a = f.window->AboutWindow();
    QVERIFY(a->isVisible());
    QCOMPARE(a->Label1->text(), QString("Varnoth"));
    QVERIFY(a->Label2->text().contains("2.3"));
    QCOMPARE(a->findChildren<QPushButton*>().size(), qsizetype(1));
    a->Command1->click();
    QVERIFY(!a->isVisible());
    QCOMPARE(f.ended, 0);
  }
};

QTEST_MAIN(tst_frmAbout1)
#include "tst_frmAbout1.moc"
