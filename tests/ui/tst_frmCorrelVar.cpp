// The pre-treatment dialog: its defaults, its events, and its choices
// reaching the analysis and the second import.
#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <cmath>

#include "UiSupport.h"
#include "eof/PreTreatment.h"

using namespace varnoth;
using varnoth::uitest::Example;
using varnoth::uitest::MainFixture;

namespace {
const char* kReference =
    "Site,A,B,C,D\r\nS1,12,0,3,1\r\nS2,4,5,6,2\r\nS3,7,8,0.5,3\r\nS4,2,9,4,1\r\n";
const char* kFossil = "Depth,A,B,C,D\r\n0,1,2,3,4\r\n10,0,5,5,0\r\n20,7,8,9,1\r\n30,2,2,2,2\r\n";
}  // namespace

class tst_frmCorrelVar : public QObject {
  Q_OBJECT
 private slots:
  void defaultsAndCaptions() {
    MainFixture f;
    frmCorrelVar* d = f.window->CorrelVar();
    QCOMPARE(d->objectName(), QString("frmCorrelVar"));
    QCOMPARE(d->windowTitle(), QString("Data pre-treatment for PCA"));
    QCOMPARE(d->Frame1->title(), QString(" Percentage conversion"));
    QCOMPARE(d->Frame2->title(), QString(" Enhancement"));
    QCOMPARE(d->Frame3->title(), QString(" Select matrix type for PCA"));
    QCOMPARE(d->Option2[0]->text(), QString("Convert to % values"));
    QCOMPARE(d->Option2[1]->text(), QString("Don't convert"));
    QCOMPARE(d->Check1->text(), QString("Enhance minor taxa"));
    QCOMPARE(d->Option3[0]->text(), QString("Square root"));
    QCOMPARE(d->Option3[1]->text(), QString("Log"));
    QCOMPARE(d->Option1[0]->text(), QString("Correlation"));
    QCOMPARE(d->Option1[1]->text(), QString("Variance / Covariance"));
    QVERIFY(d->Option2[0]->isChecked());
    QVERIFY(!d->Check1->isChecked());
    QVERIFY(d->Option3[0]->isChecked());
    QVERIFY(!d->Option3[0]->isEnabled());
    QVERIFY(!d->Option3[1]->isEnabled());
    QVERIFY(d->Option1[1]->isChecked());
    for (const char* name : {"Option2_0", "Option2_1", "Check1", "Option3_0", "Option3_1",
                             "Option1_0", "Option1_1", "Command1"})
      QVERIFY2(d->findChild<QWidget*>(name), name);
    const PreTreatmentSettings s = d->Settings();
    QVERIFY(s.ConvertToPercent && !s.Enhance && s.SquareRoot && !s.Correlation);
  }

  void enhanceCheckEnablesTheTransforms() {
    MainFixture f;
    frmCorrelVar* d = f.window->CorrelVar();
    d->Check1->click();
    QVERIFY(d->Option3[0]->isEnabled() && d->Option3[1]->isEnabled());
    QVERIFY(d->Option3[0]->isChecked());
    d->Option3[1]->click();
    QVERIFY(d->Settings().Enhance && !d->Settings().SquareRoot);
    d->Check1->click();
    QVERIFY(!d->Option3[0]->isEnabled() && !d->Option3[1]->isEnabled());
    QVERIFY(d->Option3[0]->isChecked());
    d->Check1->click();
    QVERIFY(d->Option3[0]->isChecked());  // ticking again selects the square root
  }

  void optionClickMovesFocusToConfirm() {
    MainFixture f;
    frmCorrelVar* d = f.window->CorrelVar();
    d->show();
    d->activateWindow();
    QApplication::setActiveWindow(d);
    d->Option2[1]->setFocus();
    d->Option1[0]->click();
    QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(d->Command1));
    d->Option2[1]->setFocus();
    d->Option2[1]->click();
    QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(d->Command1));
  }

  void confirmTreatsAndAnalyses() {
    MainFixture f;
    f.ImportReference(Example("reference.csv"));
    frmCorrelVar* d = f.window->CorrelVar();
    d->Option1[0]->click();
    f.Confirm();
    QVERIFY(f.session.UseCorrelation);
    QVERIFY(f.session.EofDone);
    QVERIFY(!d->isVisible());
    QVERIFY(f.window->isEnabled());
    // The choices stay readable after the dialog is hidden.
    QVERIFY(d->Option1[0]->isChecked());
    QVERIFY(f.session.PreTreatment.Correlation);
  }

  void dontConvertWithLogTakesRawValuesAsFractions() {
    MainFixture f;
    f.ImportReference(f.Write("r.csv", kReference));
    frmCorrelVar* d = f.window->CorrelVar();
    d->Option2[1]->click();
    d->Check1->click();
    d->Option3[1]->click();
    f.Confirm();
    QVERIFY(f.session.EnhanceUsed);
    QVERIFY(std::abs(f.session.RefData(1, 1) - std::log10(1200.0) / 2) < 1e-12);
    QCOMPARE(f.session.RefData(1, 2), 0.0);  // exactly 0 stays 0 under "Log"
    QVERIFY(std::abs(f.session.RefData(3, 3) - std::log10(50.0) / 2) < 1e-12);
  }

  void convertAndLogCutsSmallFractions() {
    MainFixture f;
    // 0.005 of the row: below 1 %, cut to 0.
    f.ImportReference(
        f.Write("r.csv", "Site,A,B,C\r\nS1,0.5,99.5,0\r\nS2,50,25,25\r\nS3,1,1,98\r\n"));
    frmCorrelVar* d = f.window->CorrelVar();
    d->Check1->click();
    d->Option3[1]->click();
    f.Confirm();
    QCOMPARE(f.session.RefData(1, 1), 0.0);
    QVERIFY(std::abs(f.session.RefData(2, 1) - std::log10(50.0) / 2) < 1e-12);
    QCOMPARE(f.session.RefProportion(1, 0), 100.0);  // column 0 keeps the row sum
  }

  void squareRootKeepsZero() {
    MainFixture f;
    f.ImportReference(f.Write("r.csv", kReference));
    f.window->CorrelVar()->Check1->click();
    f.Confirm();
    QCOMPARE(f.session.RefData(1, 2), 0.0);
    QVERIFY(std::abs(f.session.RefData(1, 1) - std::sqrt(12.0 / 16.0)) < 1e-12);
  }

  void secondImportReadsTheSameChoices() {
    MainFixture f;
    f.ImportReference(f.Write("r.csv", kReference));
    f.window->CorrelVar()->Option2[1]->click();
    f.Confirm();
    f.ImportFossil(f.Write("f.csv", kFossil));
    QVERIFY(f.dialogs.Messages.empty());
    // "Don't convert" without enhancement: the fossil goes onto a percent scale.
    QCOMPARE(f.session.FossilData(1, 1), 100.0);
    QCOMPARE(f.session.FossilData(3, 3), 900.0);
    QVERIFY(f.session.ProjectionDone);
  }

  void hugeCellsEndInOverflowAtTheBoundary() {
    MainFixture f;
    // Both 1e308 cells are finite; their row sum is not.
    f.ImportReference(
        f.Write("r.csv", "Site,A,B,C\r\nS1,1,1e308,1e308\r\nS2,1,2,3\r\nS3,4,5,6\r\n"));
    QVERIFY(f.dialogs.Messages.empty());
    f.Confirm();
    QCOMPARE(f.dialogs.Messages.size(), std::size_t(1));
    QCOMPARE(f.dialogs.Messages.back().Text, std::string("Overflow"));
    QCOMPARE(f.dialogs.Messages.back().Title, std::string("Error"));
    QVERIFY(!f.session.EofDone);
  }

  void returnConfirmsTheDialog() {
    MainFixture f;
    f.ImportReference(f.Write("reference.csv", kReference));
    frmCorrelVar* d = f.window->CorrelVar();
    QVERIFY(d->isVisible());
    QVERIFY(d->Command1->isDefault());
    // The focus on an option, as after a click on it: Return still confirms.
    d->Option1[0]->setFocus();
    QTest::keyClick(d, Qt::Key_Return);
    QVERIFY(f.session.EofDone);
    QVERIFY(f.session.UseCorrelation == false);
    QVERIFY(!d->isVisible());
    QVERIFY(f.window->isEnabled());
    QCOMPARE(f.ended, 0);
  }

  void escapeKeepsTheDialog() {
    MainFixture f;
    f.ImportReference(f.Write("reference.csv", kReference));
    frmCorrelVar* d = f.window->CorrelVar();
    QVERIFY(d->isVisible());
    QTest::keyClick(d, Qt::Key_Escape);
    QVERIFY(d->isVisible());
    QVERIFY(f.dialogs.Questions.empty());
    QCOMPARE(f.ended, 0);
    // The way on is still open.
    d->Command1->click();
    QVERIFY(f.session.EofDone);
  }

  void closingAsksBeforeTheProgramEnds() {
    MainFixture f;
    f.ImportReference(f.Write("reference.csv", kReference));
    frmCorrelVar* d = f.window->CorrelVar();
    // No: the dialog stays and the session goes on.
    d->close();
    QCOMPARE(f.dialogs.Questions.size(), std::size_t{1});
    QVERIFY(f.dialogs.Questions[0].Text.find("Quit Varnoth") != std::string::npos);
    QCOMPARE(f.dialogs.Questions[0].Owner, static_cast<void*>(d));
    QVERIFY(d->isVisible());
    QCOMPARE(f.ended, 0);
    // Yes: everything closes.
    f.dialogs.Answers.push_back(true);
    d->close();
    QVERIFY(!d->isVisible());
    QVERIFY(!f.window->isVisible());
    QCOMPARE(f.ended, 1);
    QCOMPARE(f.dialogs.Questions.size(), std::size_t{2});
  }
};

QTEST_MAIN(tst_frmCorrelVar)
#include "tst_frmCorrelVar.moc"
