// The main window driven by its control names: start state, the road of one
// analysis with the enabling at each stage, failures, display controls,
// pictures and quitting.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTimer>
#include <cmath>

#include "UiSupport.h"
#include "state/Import.h"
#include "ui/PictureBox.h"
#include "ui/WindowPlacement.h"
#include "ui/frmAbout1.h"
#include "ui/frmColor.h"
#include "ui/frmTest.h"

using namespace varnoth;
using varnoth::uitest::Example;
using varnoth::uitest::Inked;
using varnoth::uitest::LoneSite;
using varnoth::uitest::MainFixture;
using varnoth::uitest::Near;

namespace {

const QStringList kOffAtStart = {
    "Command11", "Command14",  "Command1_0", "Command1_1", "Command2_0",  "Command2_1",
    "Command3",  "Command4_0", "Command4_1", "Command8",   "Command13_0", "Command13_1",
    "Picture3",  "Option2_0",  "Option2_1",  "Option2_2",  "Option3_0",   "Option3_1",
    "Option3_2", "Option5_0",  "Option5_1",  "Option5_2",  "Option6_0",   "Option6_1",
    "Option4_0", "Option4_1",  "Slider1",    "Slider2_1",  "Slider2_2",   "Slider3",
    "Slider4",   "Slider5",    "Label_0",    "Label_1",    "Label1",      "Label2",
    "Label3",    "Label4",     "Label7",     "Combo1",     "Combo3",      "Combo4",
    "Check1",    "Check2",     "Check3",     "Check4"};
const QStringList kEntries = {"mnuControl", "mnuCopy1L", "mnuCopy1R", "mnuCopy2L",
                              "mnuCopy2R",  "mnuSaveL",  "mnuSaveS",  "mnuSaveF",
                              "mnuSaveL2",  "mnuSaveS2", "mnuSaveF2"};

QStringList Differences(MainFixture& f, const QStringList& on, const QStringList& off) {
  QStringList wrong;
  for (const QString& n : on) {
    if (auto* w = f.window->findChild<QWidget*>(n)) {
      if (!w->isEnabledTo(f.window.get())) wrong << n + " should be on";
    } else if (auto* a = f.window->findChild<QAction*>(n)) {
      if (!a->isEnabled()) wrong << n + " should be on";
    } else {
      wrong << n + " missing";
    }
  }
  for (const QString& n : off) {
    if (auto* w = f.window->findChild<QWidget*>(n)) {
      if (w->isEnabledTo(f.window.get())) wrong << n + " should be off";
    } else if (auto* a = f.window->findChild<QAction*>(n)) {
      if (a->isEnabled()) wrong << n + " should be off";
    } else {
      wrong << n + " missing";
    }
  }
  return wrong;
}

QStringList Minus(QStringList all, const QStringList& remove) {
  for (const QString& r : remove) all.removeAll(r);
  return all;
}

const char* kThreeTaxa = "Site,A,B,C\r\nS1,1,2,3\r\nS2,4,5,6\r\nS3,7,8,9\r\nS4,2,9,4\r\n";

}  // namespace

class tst_frmMain : public QObject {
  Q_OBJECT
 private slots:
  void startState() {
    MainFixture f;
    const QStringList wrong = Differences(f,
                                          {"Command5", "Command6", "Command7", "Command9",
                                           "mnuQuit", "mnuColor", "mnuGrey", "mnuAbout"},
                                          kOffAtStart + kEntries);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(", ")));
    QVERIFY(f.window->Check4->isChecked());
    QVERIFY(!f.window->Check1->isChecked());
    QVERIFY(f.window->Option4[0]->isChecked());
    QCOMPARE(f.window->Slider1->value(), 1);
    QCOMPARE(f.window->Slider4->value(), 2);
    QCOMPARE(f.window->Slider5->value(), 5);
    QCOMPARE(f.window->Slider3->value(), 40);
    QCOMPARE(f.window->Slider2[2]->value(), 15);
    QCOMPARE(f.window->Slider2[1]->value(), 0);
    QCOMPARE(f.window->Label4->text(), QString("0.1"));
    QCOMPARE(f.window->Label6->text(), QString("MoreAxis: No"));
    QVERIFY(f.window->Label8->text().isEmpty());
    QCOMPARE(f.session.ScatterZoom, 4.0);
    QCOMPARE(f.session.EnvelopeAxisCount, Count(2));
    QCOMPARE(f.session.EnvelopeTolerance, 0.1f);
    QCOMPARE(f.session.RotationStep, 0.01f);
    QVERIFY(std::abs(f.session.RotationAngles.A2 - 15 * 3.14159265358979 / 180) < 1e-12);
    QVERIFY(f.session.UseCorrelation);
    QCOMPARE(f.session.DisplayAxes(3), Count(3));
    for (QComboBox* c : {f.window->Combo1, f.window->Combo3, f.window->Combo4})
      QCOMPARE(c->count(), 0);
    QVERIFY(!f.window->ProgressBar1->isVisible());
    QCOMPARE(f.window->ProgressBar1->value(), 0);
    QCOMPARE(f.window->Timer1().interval(), 10);
    QCOMPARE(f.window->Timer2().interval(), 5000);
    QVERIFY(!f.window->Timer1().isActive());
    QVERIFY(!f.window->Timer2().isActive());
    QVERIFY(f.window->mnuColor->isChecked());
    QVERIFY(!f.window->mnuGrey->isChecked());
    QCOMPARE(f.colours.Slot(2), (Rgb{0, 255, 0}));
    QVERIFY(!f.window->Picture1(1)->isVisible());
    QVERIFY(QApplication::overrideCursor() == nullptr);
  }

  void captionsAndMnemonics() {
    MainFixture f;
    auto caption = [&](const char* name) { return f.Find<QPushButton>(name)->text(); };
    QCOMPARE(caption("Command5"), QString("Import reference data"));
    QCOMPARE(caption("Command6"), QString("Import fossil data"));
    QCOMPARE(caption("Command3"), QString("Axis settings"));
    QCOMPARE(caption("Command11"), QString("Envelop"));
    QCOMPARE(caption("Command14"), QString("Diagram"));
    QCOMPARE(caption("Command8"), QString("Reconstruction"));
    QCOMPARE(caption("Command9"), QString("Test"));
    QCOMPARE(caption("Command7"), QString("Quit"));
    QCOMPARE(caption("Command13_0"), QString("Prev."));
    QCOMPARE(caption("Command13_1"), QString("Next"));
    QCOMPARE(f.window->Frame3->title(), QString(" Taxa"));
    QCOMPARE(f.window->Frame4->title(), QString(" Reference sites"));
    QCOMPARE(f.window->Frame6->title(), QString(" Fossil data"));
    QCOMPARE(f.window->Frame5->title(), QString(" Display mode"));
    QCOMPARE(f.window->Frame2->title(), QString(" Envelope analysis"));
    QCOMPARE(f.window->Frame7->title(), QString(" EOF analysis"));
    QCOMPARE(f.window->mnuSaveL->text(), QString("&Loading"));
    QCOMPARE(f.window->mnuSaveS->text(), QString("Score (&Reference)"));
    QCOMPARE(f.window->mnuSaveF->text(), QString("Score (&Fossil)"));
    QCOMPARE(f.window->mnuQuit->text(), QString("&Quit"));
    QCOMPARE(f.window->mnuControl->text(), QString("&Axis Settings"));
    QCOMPARE(f.window->mnuColor->text(), QString("&Colour"));
    QCOMPARE(f.window->mnuGrey->text(), QString("&Grey"));
    QCOMPARE(f.window->mnuAbout->text(), QString("&About Varnoth 2.3"));
    QCOMPARE(f.window->mnuFig1L->title(), QString("Fig1(0)"));
    QCOMPARE(f.window->mnuSaveL2->text(), QString("&Save Matrix"));
    QCOMPARE(f.window->mnuSaveS2->text(), QString("Save Matrix (&Reference)"));
    QCOMPARE(f.window->mnuSaveF2->text(), QString("Save Matrix (&Fossil)"));
    QCOMPARE(f.window->mnuCopy2R->text(), QString("Copy"));
    QCOMPARE(f.Find<QMenu>("mnuFile")->title(), QString("File(&F)"));
    QCOMPARE(f.Find<QMenu>("mnuSave")->title(), QString("&Save"));
    QCOMPARE(f.Find<QMenu>("mnuEdit")->title(), QString("Edit(&E)"));
    QCOMPARE(f.Find<QMenu>("mnuColorSettings")->title(), QString("&Colour Settings"));
    QCOMPARE(f.Find<QMenu>("mnuAboutVarnoth")->title(), QString("About Varnoth(&A)"));
    QCOMPARE(f.window->Check1->text(), QString("Stereo"));
    QCOMPARE(f.window->Check2->text(), QString("Pause"));
    QCOMPARE(f.window->Check3->text(), QString("Reverse"));
    QCOMPARE(f.window->Check4->text(), QString("Tick / Label"));
    QCOMPARE(f.window->Option4[0]->text(), QString("2-D"));
    QCOMPARE(f.window->Option4[1]->text(), QString("3-D"));
    QCOMPARE(f.window->Option2[1]->text(), QString("Sequential"));
    QCOMPARE(f.window->Label1->text(), QString("Tight"));
    QCOMPARE(f.window->Label2->text(), QString("Loose"));
  }

  void dialogsInQtForm() {
    QCOMPARE(QtFilter(kDataFileFilter), QString("DataFile (*.csv)"));
    QCOMPARE(QtFilter("DataFile(*.csv)|*.csv|All(*.*)|*.*"),
             QString("DataFile (*.csv);;All (*.*)"));
    // A long report moves the bar under the busy pointer; the end restores both.
    QProgressBar bar;
    BarProgress progress(&bar);
    progress.Start(40);
    QVERIFY(bar.isVisibleTo(nullptr) || !bar.isHidden());
    QCOMPARE(bar.maximum(), 40);
    QVERIFY(QApplication::overrideCursor() != nullptr);
    progress.Step(12);
    QCOMPARE(bar.value(), 12);
    progress.Finish();
    QVERIFY(bar.isHidden());
    QCOMPARE(bar.value(), 0);
    QVERIFY(QApplication::overrideCursor() == nullptr);
  }

  void realMessageBoxes() {
    QtDialogs dialogs;
    QString title, text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    auto answer = [&](QMessageBox::StandardButton button) {
      QTimer::singleShot(0, [&, button] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box);
        title = box->windowTitle();
        text = box->text();
        icon = box->icon();
        box->button(button)->click();
      });
    };
    answer(QMessageBox::Ok);
    dialogs.Message("Blanc cell detected.", "Error");
    QCOMPARE(title, QString("Error"));
    QCOMPARE(text, QString("Blanc cell detected."));
    QCOMPARE(icon, QMessageBox::Warning);
    answer(QMessageBox::Yes);
    QVERIFY(dialogs.Question("Name inconsistent.  [a] = [b]?", "Error"));
    QCOMPARE(title, QString("Error"));
    answer(QMessageBox::No);
    QVERIFY(!dialogs.Question("Name inconsistent.  [a] = [b]?", "Error"));
  }

  void rightClickBeforeImportOpensDisabledPopup() {
    MainFixture f;
    f.window->Picture1(1)->setVisible(true);
    f.window->Picture2(1)->setVisible(true);
    struct Case {
      PictureBox* picture;
      QMenu* menu;
    };
    for (Case c : {Case{f.window->Picture1(0), f.window->mnuFig1L},
                   Case{f.window->Picture1(1), f.window->mnuFig1R},
                   Case{f.window->Picture2(0), f.window->mnuFig2L},
                   Case{f.window->Picture2(1), f.window->mnuFig2R}}) {
      QTest::mouseClick(c.picture, Qt::RightButton, {}, QPoint(20, 20));
      QTRY_COMPARE(QApplication::activePopupWidget(), static_cast<QWidget*>(c.menu));
      QVERIFY(!c.menu->actions().isEmpty());
      for (QAction* a : c.menu->actions()) QVERIFY2(!a->isEnabled(), qPrintable(a->objectName()));
      c.menu->close();
    }
  }

  void wholeRoadEnablesByStage() {
    MainFixture f;
    frmMain& w = *f.window;

    // Base import read: the pre-treatment dialog is up and holds the window.
    f.ImportReference(Example("reference.csv"));
    QVERIFY(f.dialogs.Messages.empty());
    QVERIFY(w.CorrelVar()->isVisible());
    QVERIFY(!w.isEnabled());
    const QStringList base = {"Command3",  "mnuControl", "mnuCopy1L", "mnuCopy1R",
                              "mnuCopy2L", "mnuCopy2R",  "mnuSaveL",  "mnuSaveL2",
                              "mnuSaveS",  "mnuSaveS2",  "Slider4"};
    QStringList wrong = Differences(f, base + QStringList{"Command6"},
                                    Minus(kOffAtStart + kEntries, base) + QStringList{"Command5"});
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(", ")));
    QCOMPARE(w.Combo3->count(), 22);
    QCOMPARE(w.Combo3->currentText(), QString("O.univ"));
    QCOMPARE(w.Combo4->count(), 61);
    QCOMPARE(w.Combo4->currentText(), QString("V14-61"));
    QVERIFY(f.dialogs.Filters.size() == 1 && f.dialogs.Filters[0] == "DataFile(*.csv)|*.csv");

    // EOF analysis ended.
    f.Confirm();
    QVERIFY(f.dialogs.Messages.empty());
    QVERIFY(!w.CorrelVar()->isVisible());
    QVERIFY(w.isEnabled());
    QVERIFY(f.session.EofDone);
    const QStringList analysed = {"Command6",  "Option2_0", "Option2_1", "Option2_2", "Option4_0",
                                  "Option4_1", "Slider2_1", "Slider2_2", "Slider3",   "Check1",
                                  "Check2",    "Check3",    "Check4",    "Label_0",   "Label_1",
                                  "Label3",    "Option3_0", "Option3_1", "Option3_2"};
    wrong = Differences(f, base + analysed,
                        Minus(kOffAtStart + kEntries, base + analysed) + QStringList{"Command5"});
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(", ")));
    QCOMPARE(w.Label8->text(), QString("Temp: 1, 2, 3"));
    QCOMPARE(w.Label9->text(), QString("Axis: 1, 2, 3"));
    QVERIFY(!w.ProgressBar1->isVisible());
    QVERIFY(QApplication::overrideCursor() == nullptr);

    // Second import read and projected.
    f.ImportFossil(Example("fossil.csv"));
    QVERIFY(f.dialogs.Messages.empty());
    QVERIFY(f.session.ProjectionDone);
    const QStringList second = {"Slider1",   "Label1",    "Label2",    "Label4",
                                "Command14", "mnuSaveF",  "mnuSaveF2", "Command11",
                                "Command8",  "Option5_0", "Option5_1", "Option5_2"};
    wrong = Differences(f, base + analysed + second,
                        Minus(kOffAtStart + kEntries, base + analysed + second) +
                            QStringList{"Command5", "Command6"});
    wrong.removeAll("Command6 should be on");
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(", ")));
    QVERIFY(!w.Command6->isEnabled());
    QCOMPARE(w.Combo1->count(), 110);
    QVERIFY(!w.ProgressBar1->isVisible());
  }

  void siteMarksStandAtTheirScores() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    w.Option3[2]->click();  // hide the names
    w.Option5[2]->click();
    w.Option2[2]->click();
    const Surface& fig = w.Picture2(0)->surface();
    const long lone = LoneSite(f.session, true);
    QVERIFY(Near(fig, f.session.RefScores(lone, 1), f.session.RefScores(lone, 2), QColor(0, 255, 0),
                 0));
    // The core's path in the fourth slot between two samples.
    const double mx = (f.session.FossilScores(1, 1) + f.session.FossilScores(2, 1)) / 2;
    const double my = (f.session.FossilScores(1, 2) + f.session.FossilScores(2, 2)) / 2;
    QVERIFY(Near(fig, mx, my, QColor(255, 150, 0), 1));
    // A taxon's mark in the first slot.
    const Surface& taxa = w.Picture1(0)->surface();
    QVERIFY(Near(taxa, f.session.Loadings(3, 1), f.session.Loadings(3, 2), QColor(0, 0, 255), 0));
    // Grey mode recolours the marks.
    w.mnuGrey->trigger();
    QVERIFY(Near(fig, f.session.RefScores(lone, 1), f.session.RefScores(lone, 2),
                 QColor(100, 100, 100), 0));
    QVERIFY(w.mnuGrey->isChecked());
    QVERIFY(!w.mnuColor->isChecked());
    QCOMPARE(f.colours.Slot(3), (Rgb{255, 0, 0}));
    w.mnuColor->trigger();
    QVERIFY(Near(fig, f.session.RefScores(lone, 1), f.session.RefScores(lone, 2), QColor(0, 255, 0),
                 0));
  }

  void failedReferenceImportShowsBothMessages() {
    MainFixture f;
    const std::string path =
        f.Write("blank.csv", "Site,A,B,C\r\nS1,1,2,3\r\nS2,4,5,6\r\nS3,7,,9\r\n");
    f.ImportReference(path);
    QCOMPARE(int(f.dialogs.Messages.size()), 2);
    QCOMPARE(f.dialogs.Messages[0].Text, std::string("Blanc cell detected."));
    QCOMPARE(f.dialogs.Messages[0].Title, std::string("Error"));
    QCOMPARE(f.dialogs.Messages[1].Text, std::string(kFormatErrorMessage));
    QCOMPARE(f.dialogs.Messages[1].Title, std::string("Error"));
    // Back to the empty session: both imports open, the window usable.
    QVERIFY(f.window->isEnabled());
    QVERIFY(f.window->Command5->isEnabled());
    QVERIFY(f.window->Command6->isEnabled());
    QVERIFY(!f.window->Command3->isEnabled());
    QVERIFY(!f.window->Slider4->isEnabled());
    QVERIFY(!f.window->CorrelVar()->isVisible());
    QVERIFY(!f.session.ReferenceIsBase && !f.session.FossilIsBase);
    QCOMPARE(f.session.RefTaxaCount, Count(0));
    QCOMPARE(f.session.RefSiteCount, Count(3));
    QVERIFY(QApplication::overrideCursor() == nullptr);
  }

  void cancelledImportIsAFormatError() {
    MainFixture f;
    f.window->Command5->click();  // no file name queued: the dialog is cancelled
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QCOMPARE(f.dialogs.Messages[0].Text, std::string(kFormatErrorMessage));
    QVERIFY(f.window->isEnabled());
    QVERIFY(f.window->Command5->isEnabled());
    // The fossil import shows nothing on a cancel.
    f.window->Command6->click();
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QVERIFY(f.window->Command6->isEnabled());
  }

  void failedFossilImportShowsOneMessageAndRestartsTurning() {
    MainFixture f;
    f.ImportReference(Example("reference.csv"));
    f.Confirm();
    f.window->Option4[1]->click();
    QVERIFY(f.window->Timer1().isActive());
    const std::string path = f.Write("short.csv", kThreeTaxa);
    f.ImportFossil(path);
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QCOMPARE(f.dialogs.Messages[0].Text, std::string("Parameter number inconsistent."));
    QVERIFY(f.window->Command6->isEnabled());
    QVERIFY(!f.window->Command5->isEnabled());
    QVERIFY(!f.window->Command11->isEnabled());
    QVERIFY(!f.window->Command14->isEnabled());
    QVERIFY(f.window->isEnabled());
    QVERIFY(f.session.ReferenceIsBase);
    QCOMPARE(f.session.FossilTaxaCount, Count(0));
    QVERIFY(f.window->Timer1().isActive());
  }

  void refusedNameEndsTheFossilImport() {
    MainFixture f;
    f.ImportReference(f.Write("r.csv", kThreeTaxa));
    f.Confirm();
    f.dialogs.Answers.push_back(false);
    f.ImportFossil(f.Write("f.csv", "Depth,A,X,C\r\n0,1,2,3\r\n10,4,5,6\r\n20,7,8,9\r\n"));
    QCOMPARE(int(f.dialogs.Questions.size()), 1);
    QCOMPARE(f.dialogs.Questions[0].Text, std::string("Name inconsistent.  [X] = [B]?"));
    QCOMPARE(f.dialogs.Questions[0].Title, std::string("Error"));
    QVERIFY(f.dialogs.Messages.empty());
    QVERIFY(f.window->Command6->isEnabled());
    QVERIFY(!f.session.ProjectionDone);
    // Accepted the second time: the samples are projected and drawn.
    f.dialogs.Answers.push_back(true);
    f.ImportFossil(f.Write("f.csv", "Depth,A,X,C\r\n0,1,2,3\r\n10,4,5,6\r\n20,7,8,9\r\n"));
    QVERIFY(f.session.ProjectionDone);
    QVERIFY(f.window->Command11->isEnabled());
    QVERIFY(!f.window->Command6->isEnabled());
  }

  void analysisFailureEndsAtTheBoundary() {
    // Two taxa import, but the analysis needs a third axis.
    MainFixture f;
    f.ImportReference(f.Write("two.csv", "Site,A,B\r\nS1,1,2\r\nS2,4,5\r\nS3,7,8\r\n"));
    QVERIFY(f.dialogs.Messages.empty());
    f.Confirm();
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QCOMPARE(f.dialogs.Messages[0].Title, std::string("Error"));
    QVERIFY(
        QString::fromStdString(f.dialogs.Messages[0].Text).startsWith("Subscript out of range"));
    QVERIFY(!f.session.EofDone);
    QVERIFY(f.window->isEnabled());
    QVERIFY(!f.window->ProgressBar1->isVisible());
    QCOMPARE(f.window->ProgressBar1->value(), 0);
    QVERIFY(QApplication::overrideCursor() == nullptr);
    QVERIFY(!f.window->Option4[1]->isEnabled());
  }

  void errorBoundaryRestoresBarAndPointer() {
    MainFixture f;
    f.window->progress().Start(10);
    f.window->progress().Step(4);
    QVERIFY(f.window->ProgressBar1->isVisible());
    QVERIFY(QApplication::overrideCursor() != nullptr);
    bool restored = false;
    const bool ran = f.window->boundary().Run([] { ThrowOverflow(); }, [&] { restored = true; });
    QVERIFY(!ran);
    QVERIFY(restored);
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QCOMPARE(f.dialogs.Messages[0].Text, std::string("Overflow"));
    QCOMPARE(f.dialogs.Messages[0].Title, std::string("Error"));
    QVERIFY(!f.window->ProgressBar1->isVisible());
    QCOMPARE(f.window->ProgressBar1->value(), 0);
    QVERIFY(QApplication::overrideCursor() == nullptr);
    QVERIFY(f.window->boundary().Run([] {}));
  }

  void quitDuringPreTreatmentClosesEverything() {
    MainFixture f;
    f.window->AboutWindow()->show();
    f.ImportReference(Example("reference.csv"));
    QVERIFY(f.window->CorrelVar()->isVisible());
    QVERIFY(!f.window->isEnabled());
    // Only the dialog's own frame can be used; the user confirms the quit.
    f.dialogs.Answers.push_back(true);
    f.window->CorrelVar()->close();
    QVERIFY(!f.window->CorrelVar()->isVisible());
    QVERIFY(!f.window->AboutWindow()->isVisible());
    QVERIFY(!f.window->isVisible());
    QCOMPARE(f.ended, 1);
    QVERIFY(!f.session.EofDone);
  }

  void quitClosesWindowsInTheirOrder() {
    MainFixture f;
    QStringList closed;
    class Recorder : public QWidget {
     public:
      Recorder(QStringList& log, QString name) : log_(log), name_(std::move(name)) {}
      void closeEvent(QCloseEvent* e) override {
        log_ << name_;
        QWidget::closeEvent(e);
      }

     private:
      QStringList& log_;
      QString name_;
    };
    std::vector<std::unique_ptr<Recorder>> windows;
    const std::pair<WindowOrder, const char*> order[] = {
        {WindowOrder::Diagram, "frmDiagram"},   {WindowOrder::Calibration, "calibration"},
        {WindowOrder::Interpolation, "interp"}, {WindowOrder::ECC, "frmECC"},
        {WindowOrder::MAT, "frmMAT"},           {WindowOrder::Control, "frmControl"}};
    for (auto [slot, name] : order) {
      windows.push_back(std::make_unique<Recorder>(closed, name));
      windows.back()->show();
      f.window->AddWindow(slot, windows.back().get());
    }
    f.window->TestForm()->show();
    f.window->AboutWindow()->show();
    f.window->ColorWindow()->show();
    connect(f.window->TestForm(), &QObject::objectNameChanged, [] {});
    f.window->Command7->click();
    QCOMPARE(closed, (QStringList{"frmControl", "frmMAT", "frmECC", "interp", "calibration",
                                  "frmDiagram"}));
    QVERIFY(!f.window->TestForm()->isVisible());
    QVERIFY(!f.window->AboutWindow()->isVisible());
    QVERIFY(!f.window->ColorWindow()->isVisible());
    QVERIFY(!f.window->isVisible());
    QCOMPARE(f.ended, 1);
  }

  void quitByMenuAndByFrame() {
    {
      MainFixture f;
      f.window->mnuQuit->trigger();
      QCOMPARE(f.ended, 1);
      QVERIFY(!f.window->isVisible());
    }
    {
      MainFixture f;
      f.window->close();
      QCOMPARE(f.ended, 1);
    }
  }

  void correlationKeepsTaxaAtRangeOne() {
    MainFixture f;
    f.ImportReference(Example("reference.csv"));
    f.window->CorrelVar()->Option1[0]->click();
    f.Confirm();
    QVERIFY(f.session.UseCorrelation);
    f.window->Slider4->setValue(6);
    QCOMPARE(f.session.ScatterZoom, 64.0);
    QCOMPARE(f.window->Picture1(0)->surface().ScaleWidth(), 2.4);
    QCOMPARE(f.window->Picture2(0)->surface().ScaleWidth(), 2.4 * 64);
    f.window->Slider4->setValue(1);
    QCOMPARE(f.window->Picture1(0)->surface().ScaleWidth(), 2.4);
    QCOMPARE(f.window->Picture2(0)->surface().ScaleWidth(), 2.4 * 2);
  }

  void slider4AtZeroGivesRangeOne() {
    MainFixture f;
    f.ImportReference(Example("reference.csv"));
    f.Confirm();
    QVERIFY(!f.session.UseCorrelation);
    QCOMPARE(f.window->Picture1(0)->surface().ScaleWidth(), 2.4 * 4);
    f.window->Slider4->setValue(0);
    QCOMPARE(f.session.ScatterZoom, 1.0);
    QCOMPARE(f.window->Picture1(0)->surface().ScaleWidth(), 2.4);
    QCOMPARE(f.window->Picture2(0)->surface().ScaleLeft(), -1.2);
    QCOMPARE(f.window->Picture2(0)->surface().ScaleTop(), 1.2);
  }

  void check4OffDrawsNeitherTicksNorNumbers() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    w.Option2[2]->click();
    const Surface& fig = w.Picture1(0)->surface();
    const double R = 4;
    auto labels = [&] { return Inked(fig, -R - 0.06 * R, 0.17 * R, -R + 0.15 * R, 0.08 * R); };
    auto ticks = [&] {
      int n = 0;
      for (int t = -4; t <= 4; ++t)
        if (t != 0) n += Inked(fig, t - 0.02, 0.033 * R * 0.9, t + 0.02, 0.033 * R * 0.3);
      return n;
    };
    const int labelsOn = labels(), ticksOn = ticks();
    w.Check4->click();
    QVERIFY(!w.Check4->isChecked());
    QVERIFY(labels() < labelsOn);
    QVERIFY(ticks() < ticksOn);
    QVERIFY(Inked(fig, R - 0.14 * R, -0.05 * R, R + 0.15 * R, -0.15 * R) > 0);  // "EOF-1" stays
    w.Check4->click();
    QCOMPARE(labels(), labelsOn);
    QCOMPARE(ticks(), ticksOn);
  }

  void stereoWidensTheWindow() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    // By one picture, as far as the screen allows.
    const int room = AvailableArea(&w).width() - (w.frameGeometry().width() - w.width());
    w.resize(std::max(w.minimumSizeHint().width(), std::min(900, room - 200)), 650);
    QApplication::processEvents();
    const int before = w.width();
    const int pictureWidth = w.Picture1(0)->width();
    w.Check1->click();
    QVERIFY(w.Picture1(1)->isVisible());
    QVERIFY(w.Picture2(1)->isVisible());
    QCOMPARE(w.width(), std::max({before, w.minimumSizeHint().width(),
                                  std::min(before + pictureWidth, room)}));
    QApplication::processEvents();
    const Surface& partner = w.Picture2(1)->surface();
    QVERIFY(Inked(partner, partner.ScaleLeft(), partner.ScaleTop(),
                  partner.ScaleLeft() + partner.ScaleWidth(),
                  partner.ScaleTop() + partner.ScaleHeight()) > 100);
    w.Check1->click();
    QVERIFY(!w.Picture1(1)->isVisible());
    QCOMPARE(w.width(), before);
  }

  void turningIn3D() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    w.Option4[1]->click();
    QCOMPARE(f.session.EnvelopeAxisCount, Count(3));
    QVERIFY(w.Timer1().isActive());
    QTRY_VERIFY(w.Slider2[1]->value() > 0);
    QVERIFY(f.session.RotationAngles.A1 > 0);
    // Pause stops the turning.
    w.Check2->click();
    const double held = f.session.RotationAngles.A1;
    QTest::qWait(60);
    QCOMPARE(f.session.RotationAngles.A1, held);
    w.Check2->click();
    QVERIFY(w.Timer1().isActive());
    // Back to 2-D: the timer stops.
    w.Option4[0]->click();
    QVERIFY(!w.Timer1().isActive());
    QCOMPARE(f.session.EnvelopeAxisCount, Count(2));
    // The tilt slider sets A2 in radians.
    w.Slider2[2]->setValue(30);
    QVERIFY(std::abs(f.session.RotationAngles.A2 - 30 * 3.1415926535898 / 180) < 1e-12);
    w.Slider3->setValue(0);
    QCOMPARE(f.session.RotationStep, 0.0f);
  }

  void sequentialNamesAndStepping() {
    MainFixture f;
    f.Road();
    frmMain& w = *f.window;
    QVERIFY(!w.Combo4->isEnabled());
    w.Option3[1]->click();
    QVERIFY(w.Combo4->isEnabled());
    QVERIFY(w.Command2[0]->isEnabled() && w.Command2[1]->isEnabled());
    w.Command2[1]->click();
    QCOMPARE(f.session.SiteCursor, Count(2));
    QCOMPARE(w.Combo4->currentText(), QString::fromStdString(f.session.RefSiteNames(2)));
    w.Command2[0]->click();
    w.Command2[0]->click();
    QCOMPARE(f.session.SiteCursor, Count(61));
    // A choice by name; the cursor's site is drawn larger in the third slot.
    w.Option5[2]->click();
    const long lone = LoneSite(f.session, true);
    w.Combo4->setCurrentIndex(int(lone - 1));
    emit w.Combo4->activated(int(lone - 1));
    QCOMPARE(f.session.SiteCursor, Count(lone));
    QVERIFY(Near(w.Picture2(0)->surface(), f.session.RefScores(lone, 1),
                 f.session.RefScores(lone, 2), QColor(255, 0, 0), 0));
    w.Option3[0]->click();
    QVERIFY(!w.Combo4->isEnabled());
    QVERIFY(!w.Command2[1]->isEnabled());
  }

  void saveMenusWriteScoreFiles() {
    MainFixture f;
    f.Road();
    const QString path = f.folder.path() + "/loading.csv";
    f.dialogs.SaveNames.push_back(path.toStdString());
    f.window->mnuSaveL->trigger();
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().startsWith("\"Varnoth 1.0 output file (component loading)\""));
    const QString fossil = f.folder.path() + "/fossil-scores.csv";
    f.dialogs.SaveNames.push_back(fossil.toStdString());
    f.window->mnuSaveF2->trigger();
    QVERIFY(QFile::exists(fossil));
    // A cancel ends quietly.
    f.window->mnuSaveS->trigger();
    QVERIFY(f.dialogs.Messages.empty());
    QVERIFY(!f.window->ProgressBar1->isVisible());
  }

  void copyPutsThePictureOnTheClipboard() {
    MainFixture f;
    f.Road();
    QApplication::clipboard()->clear();
    f.window->mnuCopy2L->trigger();
    const QImage got = QApplication::clipboard()->image();
    QCOMPARE(got.size(), f.window->Picture2(0)->surface().Image().size());
    QCOMPARE(
        got.pixelColor(got.width() / 3, got.height() / 3),
        f.window->Picture2(0)->surface().Image().pixelColor(got.width() / 3, got.height() / 3));
  }

  void resizingKeepsFiguresSquare() {
    MainFixture f;
    f.Road();
    f.window->resize(f.window->width() + 300, f.window->height() + 120);
    QApplication::processEvents();
    QTRY_VERIFY(true);
    const Surface& s = f.window->Picture2(0)->surface();
    QCOMPARE(s.Width(), s.Height());
    QCOMPARE(s.ScaleWidth(), -s.ScaleHeight());
    // Redrawn at the new size: the lone site is still where its scores say.
    f.window->Option3[2]->click();
    f.window->Option5[2]->click();
    const long lone = LoneSite(f.session, true);
    QVERIFY(
        Near(s, f.session.RefScores(lone, 1), f.session.RefScores(lone, 2), QColor(0, 255, 0), 0));
  }

  void fossilFirstAnalysesTheCore() {
    MainFixture f;
    frmMain& w = *f.window;
    f.ImportFossil(Example("fossil.csv"));
    QVERIFY(f.session.FossilIsBase);
    QVERIFY(w.CorrelVar()->isVisible());
    QVERIFY(w.isEnabled());  // only the reference read holds the window
    QVERIFY(w.mnuSaveF->isEnabled());
    QCOMPARE(w.Combo1->count(), 110);
    f.Confirm();
    QVERIFY(f.dialogs.Messages.empty());
    QVERIFY(f.session.EofDone);
    QVERIFY(w.Command5->isEnabled());
    QVERIFY(!w.Command6->isEnabled());
    QVERIFY(w.Option5[0]->isEnabled());
    QVERIFY(!w.Option3[0]->isEnabled());
    // The samples are the base's own points: drawn on the second figure.
    w.Option5[2]->click();
    QVERIFY(Near(
        w.Picture2(0)->surface(), (f.session.FossilScores(1, 1) + f.session.FossilScores(2, 1)) / 2,
        (f.session.FossilScores(1, 2) + f.session.FossilScores(2, 2)) / 2, QColor(255, 150, 0), 1));
    // The reference after a fossil base ends in the format error.
    f.ImportReference(Example("reference.csv"));
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QCOMPARE(f.dialogs.Messages[0].Text, std::string(kFormatErrorMessage));
    QVERIFY(w.Command5->isEnabled());
    QVERIFY(w.isEnabled());
    QVERIFY(f.session.FossilIsBase);
  }

  void toleranceSlider() {
    MainFixture f;
    f.Road();
    f.window->Slider1->setValue(0);
    QCOMPARE(f.session.EnvelopeTolerance, 0.0f);
    QCOMPARE(f.window->Label4->text(), QString("0"));
    f.window->Slider1->setValue(7);
    QCOMPARE(f.session.EnvelopeTolerance, 0.7f);
    QCOMPARE(f.window->Label4->text(), QString("0.7"));
  }
};

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
