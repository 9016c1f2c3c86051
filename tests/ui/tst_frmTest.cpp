// The test form: one button writes the working values to a chosen file.
#include <QFile>
#include <QPushButton>

#include "UiSupport.h"
#include "ui/frmTest.h"

using namespace varnoth;
using varnoth::uitest::Example;
using varnoth::uitest::MainFixture;

class tst_frmTest : public QObject {
  Q_OBJECT
 private slots:
  void writesWorkingValues() {
    MainFixture f;
    f.ImportReference(Example("reference.csv"));
    f.Confirm();
    f.window->Command9->click();
    frmTest* t = f.window->TestForm();
    QVERIFY(t->isVisible());
    QCOMPARE(t->findChildren<QPushButton*>().size(), qsizetype(1));
    const QString path = f.folder.path() + "/working.csv";
    f.dialogs.SaveNames.push_back(path.toStdString());
    t->Command1->click();
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    QVERIFY(lines[0].startsWith("\"Working values\""));
    // A header, 22 taxa, eigenvalues and contributions after the three counts.
    QCOMPARE(lines.size(), 3 + 1 + 22 + 2 + 1);
    QVERIFY(lines[4].startsWith("\"O.univ\","));
    QVERIFY(f.dialogs.Messages.empty());
  }

  void cancelWritesNothing() {
    MainFixture f;
    f.window->Command9->click();
    f.window->TestForm()->Command1->click();
    QVERIFY(f.dialogs.Messages.empty());
  }

  void unwritableFileIsReported() {
    MainFixture f;
    f.dialogs.SaveNames.push_back(f.folder.path().toStdString() + "/no/such/folder/x.csv");
    f.window->Command9->click();
    f.window->TestForm()->Command1->click();
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QCOMPARE(f.dialogs.Messages[0].Title, std::string("Error"));
  }
};

QTEST_MAIN(tst_frmTest)
#include "tst_frmTest.moc"
