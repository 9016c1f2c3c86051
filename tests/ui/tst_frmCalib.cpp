// The calibration tool driven by its control names from the reconstruction
// window: the pair sets, the generated and the fitted error model, "Start"
// and the sliders that re-run only the tail of the chain, the chart with
// its section and intervals, the coefficient dialogs, the print options and
// the printed pages, the common output file against the batch runner's, and
// the matrices handed back to the reconstruction window.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPrinter>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSlider>
#include <QTest>
#include <numeric>

#include "RecordSupport.h"
#include "UiSupport.h"
#include "presentation/CalibFigure.h"
#include "presentation/CalibPrint.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"
#include "ui/PictureBox.h"
#include "ui/frmCC1.h"
#include "ui/frmCC2.h"
#include "ui/frmCalib.h"
#include "ui/frmMAT.h"
#include "ui/frmOutPut2.h"
#include "ui/frmPrintSetup.h"

using namespace varnoth;
using varnoth::uitest::BatchOnExamples;
using varnoth::uitest::Compare;
using varnoth::uitest::Example;
using varnoth::uitest::ReadAll;
using varnoth::uitest::Record;
using varnoth::uitest::Records;
using varnoth::uitest::TestData;
using varnoth::uitest::Value;
using varnoth::uitest::WithoutClockAndPaths;

namespace {

int CountColour(const QImage& image, const QColor& colour) {
  int n = 0;
  const QRgb want = colour.rgb();
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if ((image.pixel(x, y) & 0xFFFFFF) == (want & 0xFFFFFF)) ++n;
  return n;
}

int NonWhite(const QImage& image) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if ((image.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF) ++n;
  return n;
}

// From the main window to the calibration tool, opened on the error model
// of the first parameter.
struct Road : uitest::MainFixture {
  frmMAT* mat = nullptr;
  frmCalib* cal = nullptr;

  Road() {
    MainFixture::Road();
    window->Command8->click();
    mat = window->MATWindow();
    dialogs.OpenNames.push_back(Example("climate.csv"));
    mat->Command1->click();
    mat->Command3->click();
    QCoreApplication::processEvents();
  }
  void Open() {
    mat->Command6->click();
    cal = mat->CalibWindow();
    QCoreApplication::processEvents();
  }
  // The generated model and "Start".
  void Generated() {
    cal->Check4->click();
    cal->Command3->click();
  }
  std::string Save(QAction* entry, const QString& name) {
    const std::string path = (folder.path() + "/" + name).toStdString();
    dialogs.SaveNames.push_back(path);
    entry->trigger();
    return path;
  }
  // A Vest-Vobs file made of the site pairs themselves.
  std::string PairFile() {
    QByteArray text = "Vest,Vobs\r\n";
    const long p = session.CurrentParameter;
    for (long s = 1; s <= session.RefSiteCount; ++s) {
      const double v = session.ClimateData(s, p);
      text += QByteArray::fromStdString(FormatGeneral(v) + "," + FormatGeneral(v + (s % 3) - 1)) +
              "\r\n";
    }
    return Write("pairs.csv", text);
  }
  const QImage& Figure(int n) {
    return n <= 2 ? cal->Picture1[static_cast<std::size_t>(n - 1)]->surface().Image()
                  : cal->Picture2[static_cast<std::size_t>(n - 3)]->surface().Image();
  }
  std::array<int, 9> Shows() const {
    std::array<int, 9> s{};
    for (int f = 1; f <= 8; ++f) s[static_cast<std::size_t>(f)] = cal->FigureShows(f);
    return s;
  }
};

// A matrix file read back: the header lines, the record of the bins (its
// first field quoted and empty), then one record per depth row.
struct MatrixFile {
  std::vector<Record> Header, Body;
  Record Bins;
  explicit MatrixFile(const std::vector<Record>& records) {
    std::size_t i = 0;
    for (; i < records.size() && !(records[i][0].Quoted && records[i][0].Text.isEmpty()); ++i)
      Header.push_back(records[i]);
    if (i < records.size()) Bins = records[i++];
    Body.assign(records.begin() + std::ptrdiff_t(i), records.end());
  }
  int Rows() const { return int(Body.size()) - 1; }
  // Without the clock, the paths and the count of rows.
  std::vector<Record> HeaderWithoutRows() const {
    std::vector<Record> kept;
    for (const Record& row : WithoutClockAndPaths(Header))
      if (row[0].Text != "Vertical resolution: ") kept.push_back(row);
    return kept;
  }
};

bool Batch(const QString& out, const QStringList& more) {
  return BatchOnExamples(
      QStringList{"--climate", QString::fromStdString(Example("climate.csv")), "--out", out} +
      more);
}

// A fine grid made by hand: every column empty but pc, which holds the
// classes given from qf = 50 upwards.
FineGrid HandGrid(long pc, const std::vector<int>& classes) {
  FineGrid f;
  for (long pf = 0; pf <= 500; ++pf) {
    f.FineMode(pf) = -9999;
    f.FineMedian(pf) = -9999;
  }
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const long qf = 50 + static_cast<long>(i);
    f.FineClass(pc, qf) = static_cast<float>(classes[i]);
    f.FineProb(pc, qf) = classes[i] > 0 ? 0.01f : 0.0f;
  }
  return f;
}

}  // namespace

class TestFrmCalib : public QObject {
  Q_OBJECT
 private slots:
  void loadDefaultsAndRangeFromReconstruction();
  void startDisabledUntilBothScattersDrawn();
  void fittedModelFromPairFileShowsLineAndDeviation();
  void generatedModelRunsChainAndPaintsRegions();
  void slidersRerunOnlyTheTail();
  void clickOnBlankFigureCatchesUp();
  void averageWithoutModeNotRedrawnAfterRecompute();
  void equalRangeShowsMessageAndKeepsOldRange();
  void coefficientAbove100FailsAtTheSlider();
  void coefficientTypedMovesSlider();
  void chartOpensFromFig7AndFig8();
  void chartStaysWhenTheToolIsActivatedFromIt();
  void everyControlSaysWhatItDoesAndTheStatusLineTheNextStep();
  void dialogsStandOverTheToolAndTheChart();
  void chartSectionInEmptyColumnReadsOutOfRange();
  void chartIntervalOpenAtTopReadsQuestionMark();
  void chartStopsAtElevenIntervals();
  void chartSlider2AtZeroLeavesProbabilityWhite();
  void commonOutputSameFromToolChartAndBatch();
  void returnPaintsMatricesInReconstructionWindow();
  void reconstructionSettingsDropTheMatrices();
  void printOptionsStoreAndCancel();
  void printedPdfHasPagesAndRegionColours();
  void closeClearsToolOpenAndSecondaryWindows();
  void headerOnlyAndSinglePairFilesFitNoLine();
  void generatedModelFollowsSlider4AndRangeWidth();
  void uncheckingGenerateModelReturnsToFileState();
  void rangeEditRedrawsScattersAndClearsChain();
  void copyEntriesFollowDrawnFigures();
  void hoverReadsValuesOnDrawnFigures();
  void zEnhancementOfReconstructionRecoloursBoth();
  void reopeningTakesTheReconstructionRange();
  void figuresSaveAsPicturesWithTheirMatrices();
  void anotherParameterAfterClosingHandsBackItsOwnMatrix();
  void newVrecVestFileRunsTheChainFromTheStart();
  void generatedModelThenImportEnablesStartAtOnce();
  void returnRefusesAMatrixOnAnotherRangeThanTheCurve();
  void resetOfTheReconstructionTakesBackTheToolsMatrix();
  void minorItemsOfTheScatterModelAndRange();
  void chartOpensAtTheReconstructionEnhancementWithIntervalsOff();
  void sectionProfileAtZeroEnhancementKeepsItsFirstPoints();
  void openedWithNoVrecVestDataStartWaitsForBothScatters();
};

void TestFrmCalib::loadDefaultsAndRangeFromReconstruction() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  QVERIFY(c->isVisible());
  QCOMPARE(c->windowTitle(), QString("Ostrel 3.0"));
  QCOMPARE(c->Text1->text(), r.mat->Text1->text());
  QCOMPARE(c->Text2->text(), r.mat->Text2->text());
  QCOMPARE(c->Slider1->value(), 682);
  QCOMPARE(c->Slider2->value(), 954);
  QCOMPARE(c->Label4[0]->text(), QString("68.2"));
  QCOMPARE(c->Label4[1]->text(), QString("95.4"));
  QCOMPARE(c->Slider3->value(), 10);
  QCOMPARE(c->Slider4->value(), 5);
  QVERIFY(!c->Slider4->isEnabled());
  QCOMPARE(c->Slider5->value(), 2);
  QCOMPARE(c->Slider6->value(), 1);
  QCOMPARE(c->Label23->text(), QString("Threshold: 2 sample(s)"));
  QVERIFY(!c->Check2->isEnabled() && !c->Check6->isEnabled());
  QVERIFY(!c->Command10->isEnabled());
  QVERIFY(!c->mnuCommonOutput->isEnabled());
  // The pairs of the error model make Fig.1 at once.
  QVERIFY(c->PictDrawn(1));
  QVERIFY(NonWhite(r.Figure(1)) > 0);
  QCOMPARE(c->Label12[0]->text().toLong(), static_cast<long>(c->State().PairCount));
  QVERIFY(c->Label12[0]->text().toLong() > 1);
  QVERIFY(!c->Label13[0]->text().isEmpty());
}

void TestFrmCalib::startDisabledUntilBothScattersDrawn() {
  Road r;
  r.Open();
  QVERIFY(r.cal->PictDrawn(1));
  QVERIFY(!r.cal->PictDrawn(2));
  QVERIFY(!r.cal->Command3->isEnabled());
  // A Vrec-Vest file alone leaves "Start" off too.
  r.dialogs.OpenNames.push_back(r.Write("vrec.csv", "Vrec,Vest\r\n26,26.5\r\n27,27.5\r\n"));
  r.cal->Command1[0]->click();
  QCOMPARE(r.cal->Label12[0]->text(), QString("2"));
  QVERIFY(r.cal->PictDrawn(1));
  QVERIFY(!r.cal->PictDrawn(2));
  QVERIFY(!r.cal->Command3->isEnabled());
  r.dialogs.OpenNames.push_back(r.PairFile());
  r.cal->Command1[1]->click();
  QVERIFY(r.cal->PictDrawn(2));
  QVERIFY(r.cal->Command3->isEnabled());
}

void TestFrmCalib::fittedModelFromPairFileShowsLineAndDeviation() {
  Road r;
  r.Open();
  const std::string path = r.PairFile();
  r.dialogs.OpenNames.push_back(path);
  r.cal->Command1[1]->click();
  frmCalib* c = r.cal;
  QCOMPARE(c->Label21[1]->text().toStdString(), path);
  QCOMPARE(c->Label14[1]->text(), QString("Vest"));
  QCOMPARE(c->Label15[1]->text(), QString("Vobs"));
  QVERIFY(c->Label17->text().startsWith("y = "));
  QVERIFY(!c->Label19->text().isEmpty());
  QVERIFY(NonWhite(r.Figure(2)) > 0);
  // The fitting line over the scatter, in red.
  const int red = CountColour(r.Figure(2), QColor(255, 0, 0));
  QCOMPARE(red, 0);
  c->Check1->click();
  QVERIFY(CountColour(r.Figure(2), QColor(255, 0, 0)) > 50);
  c->Command3->click();
  for (int f = 3; f <= 8; ++f) QVERIFY2(c->PictDrawn(f), qPrintable(QString::number(f)));
  QVERIFY(c->Command10->isEnabled());
}

void TestFrmCalib::generatedModelRunsChainAndPaintsRegions() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  c->Check4->click();
  QVERIFY(c->Slider4->isEnabled());
  QVERIFY(!c->Command1[1]->isEnabled());
  QVERIFY(c->Label22->isVisible());
  QCOMPARE(c->Label22->text(), QString("Std.Dev.: 5 % of range"));
  QCOMPARE(c->Label17->text(), QString("y = x"));
  QCOMPARE(c->Label21[1]->text(), QString("Generated error model"));
  QVERIFY(c->PictDrawn(3));
  QVERIFY(NonWhite(r.Figure(3)) > 0);
  QVERIFY(c->Command3->isEnabled());
  c->Command3->click();
  for (int f = 3; f <= 8; ++f) QVERIFY2(c->PictDrawn(f), qPrintable(QString::number(f)));
  QVERIFY(c->Command10->isEnabled());
  QVERIFY(c->mnuCommonOutput->isEnabled() && c->ConfidenceRegions->isEnabled() &&
          c->ProbabilityDistribution->isEnabled());
  QVERIFY(c->Check2->isEnabled() && c->Check6->isEnabled());
  // Fig.8 holds both region colours; Fig.7 keeps colour only inside them.
  QVERIFY(CountColour(r.Figure(8), RegionColour(false, 2)) > 0);
  QVERIFY(CountColour(r.Figure(8), RegionColour(false, 1)) > 0);
  const QImage& fig7 = r.Figure(7);
  const QImage& fig8 = r.Figure(8);
  for (int y = 0; y < fig7.height(); y += 3)
    for (int x = 0; x < fig7.width(); x += 3)
      if ((fig8.pixel(x, y) & 0xFFFFFF) == 0xFFFFFF)
        QVERIFY((fig7.pixel(x, y) & 0xFFFFFF) == 0xFFFFFF);
  // The mode curve in red on Fig.8 after "Show mode".
  QCOMPARE(CountColour(r.Figure(8), QColor(255, 0, 0)), 0);
  c->Check2->click();
  QVERIFY(CountColour(r.Figure(8), QColor(255, 0, 0)) > 0);
}

void TestFrmCalib::slidersRerunOnlyTheTail() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  c->Check4->click();
  // Before "Start" a slider has no drawn figure to re-run from.
  const std::array<int, 9> idle = r.Shows();
  c->Slider3->setValue(8);
  QVERIFY(r.Shows() == idle);
  QVERIFY(!c->PictDrawn(5));
  c->Slider3->setValue(10);
  c->Command3->click();
  r.cal->Command10->click();
  QVERIFY(r.mat->CalibReady());

  struct Move {
    QSlider* slider;
    int value;
    int firstRedrawn;
  };
  const Move moves[] = {
      {c->Slider3, 6, 5}, {c->Slider5, 1, 6}, {c->Slider6, 0, 7}, {c->Slider1, 500, 7}};
  for (const Move& m : moves) {
    const std::array<int, 9> before = r.Shows();
    QImage fig4 = r.Figure(4).copy();
    m.slider->setValue(m.value);
    const std::array<int, 9> after = r.Shows();
    for (int f = 1; f <= 8; ++f) {
      const auto i = static_cast<std::size_t>(f);
      if (f < m.firstRedrawn)
        QVERIFY2(after[i] == before[i],
                 qPrintable(m.slider->objectName() + QString(" Fig.%1").arg(f)));
      else
        QVERIFY2(after[i] == before[i] + 1,
                 qPrintable(m.slider->objectName() + QString(" Fig.%1").arg(f)));
      // Fig.2 stays blank under the generated model.
      if (f != 2)
        QVERIFY2(c->PictDrawn(f),
                 qPrintable(m.slider->objectName() + QString(" drawn Fig.%1").arg(f)));
    }
    QVERIFY(r.Figure(4) == fig4);
    // The hand-back is gone until "Return" again.
    QVERIFY(!c->Command10->isEnabled());
    QVERIFY(!r.mat->CalibReady());
    QVERIFY(!r.mat->mnuSaveOstrel->isEnabled());
  }
  // Skip re-runs from the normalisation per Vobs bin.
  const std::array<int, 9> before = r.Shows();
  c->Check5->click();
  const std::array<int, 9> after = r.Shows();
  QCOMPARE(after[5], before[5]);
  QCOMPARE(after[7], before[7] + 1);
}

void TestFrmCalib::clickOnBlankFigureCatchesUp() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  c->Check4->click();
  QVERIFY(!c->PictDrawn(4));
  // A click on blank Fig.4 runs the chain from the product to the end.
  QTest::mouseClick(c->Picture2[1], Qt::LeftButton, {}, QPoint(50, 50));
  for (int f = 4; f <= 8; ++f) QVERIFY2(c->PictDrawn(f), qPrintable(QString::number(f)));
  // A drawn figure does not run again.
  const std::array<int, 9> before = r.Shows();
  QTest::mouseClick(c->Picture2[2], Qt::LeftButton, {}, QPoint(50, 50));
  QVERIFY(r.Shows() == before);
}

void TestFrmCalib::averageWithoutModeNotRedrawnAfterRecompute() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  c->Check6->click();
  QVERIFY(CountColour(r.Figure(8), QColor(0, 0, 255)) > 0);
  // A recomputation drops both boxes; the average does not come back.
  c->Slider2->setValue(900);
  QVERIFY(!c->Check6->isChecked());
  QCOMPARE(CountColour(r.Figure(8), QColor(0, 0, 255)), 0);
}

void TestFrmCalib::equalRangeShowsMessageAndKeepsOldRange() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  const QString t1 = c->Text1->text(), t2 = c->Text2->text();
  c->Text2->setText(t1);
  emit c->Text2->editingFinished();
  QCOMPARE(r.dialogs.Messages.size(), std::size_t{1});
  QCOMPARE(r.dialogs.Messages[0].Text, std::string("Please set valid range."));
  QCOMPARE(r.dialogs.Messages[0].Title, std::string("Error"));
  QCOMPARE(c->Text1->text(), t1);
  QCOMPARE(c->Text2->text(), t2);
  QCOMPARE(c->Label2[3]->text(), t2);
}

void TestFrmCalib::coefficientAbove100FailsAtTheSlider() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  QTest::mouseDClick(c->Label4[0], Qt::LeftButton);
  QVERIFY(c->CC1());
  QCOMPARE(c->CC1()->windowTitle(), QString("New confidence coefficient (%)"));
  QCOMPARE(c->CC1()->Label1->text(), QString("Coefficient 1 (default = 68.2)"));
  QCOMPARE(c->CC1()->Text1->text(), QString("68.2"));
  c->CC1()->Text1->setText("150");
  c->CC1()->Command1->click();
  QCOMPARE(r.dialogs.Messages.size(), std::size_t{1});
  QCOMPARE(r.dialogs.Messages[0].Title, std::string("Error"));
  QCOMPARE(c->Slider1->value(), 682);
  QCOMPARE(c->Label4[0]->text(), QString("150"));
}

void TestFrmCalib::coefficientTypedMovesSlider() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  const int shows8 = c->FigureShows(8);
  QTest::mouseDClick(c->Label4[1], Qt::LeftButton);
  QCOMPARE(c->CC2()->Text1->text(), QString("95.4"));
  c->CC2()->Text1->setText("90");
  c->CC2()->Command1->click();
  QCOMPARE(c->Slider2->value(), 900);
  QCOMPARE(c->Label4[1]->text(), QString("90"));
  QCOMPARE(c->FigureShows(8), shows8 + 1);
}

// Activates a window as a click on it would, and lets the activation arrive.
void ActivateWindow(QWidget* w) {
  w->activateWindow();
  QApplication::setActiveWindow(w);
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

void TestFrmCalib::chartStaysWhenTheToolIsActivatedFromIt() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  QTest::mouseClick(c->Picture2[4], Qt::LeftButton, {}, QPoint(50, 50));
  frmOutPut2* ch = c->Chart();
  QVERIFY(ch && ch->isVisible());
  ActivateWindow(ch);
  QVERIFY(ch->isActiveWindow());
  // Back into the tool from its chart: the chart stays in view.
  ActivateWindow(c);
  QVERIFY(c->isActiveWindow());
  QVERIFY(ch->isVisible());
  // Back into the tool from another window of the program: it closes.
  ActivateWindow(r.mat);
  ActivateWindow(c);
  QVERIFY(!ch->isVisible());
}

// Every control a user can point at has a tool tip.
void CheckToolTips(QWidget* window) {
  const QStringList missing = uitest::WithoutToolTip(window, true);
  QVERIFY2(missing.isEmpty(), qPrintable(missing.join(", ") + " without a tool tip"));
}

void TestFrmCalib::everyControlSaysWhatItDoesAndTheStatusLineTheNextStep() {
  uitest::MainFixture f;
  f.Road();
  f.window->Command8->click();
  frmMAT* mat = f.window->MATWindow();
  auto next = [&](QLabel* l) {
    QTest::qWait(300);
    return l->text();
  };
  QVERIFY(next(mat->StatusNext).startsWith("Load climate at the reference sites"));
  f.dialogs.OpenNames.push_back(Example("climate.csv"));
  mat->Command1->click();
  QVERIFY(next(mat->StatusNext).contains("Generate error model"));
  mat->Command3->click();
  QVERIFY(next(mat->StatusNext).contains("Ostrel 3.0"));
  CheckToolTips(mat);
  QVERIFY(mat->Command6->toolTip().contains("needs the error model"));
  // The climate import's own tip stays.
  QCOMPARE(mat->Command1->toolTip(), QString("Use pre-interpolated climate file (Varnoth 1.5)"));
  mat->Command6->click();
  frmCalib* c = mat->CalibWindow();
  CheckToolTips(c);
  QVERIFY(next(c->StatusNext).contains("Generate model"));
  c->Check4->click();
  QVERIFY2(next(c->StatusNext).contains("Start"), qPrintable(c->StatusNext->text()));
  c->Command3->click();
  QVERIFY(next(c->StatusNext).contains("Return"));
  c->Command10->click();
  QVERIFY(next(mat->StatusNext).contains("Tamsek 2.5"));
  // The next step is in the reconstruction window: it comes to the front.
  QTRY_VERIFY(mat->isActiveWindow());
}

void TestFrmCalib::dialogsStandOverTheToolAndTheChart() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  // A cancelled pair import: the dialog belongs to the tool and says what it asks for.
  c->Command1[1]->click();
  QVERIFY(!r.dialogs.FileDialogs.empty());
  QCOMPARE(r.dialogs.FileDialogs.back().Owner, static_cast<void*>(c));
  QVERIFY(r.dialogs.FileDialogs.back().Title.find("Vest-Vobs") != std::string::npos);
  r.Generated();
  c->ProbabilityDistribution->trigger();
  QCOMPARE(r.dialogs.FileDialogs.back().Owner, static_cast<void*>(c));
  QCOMPARE(r.dialogs.FileDialogs.back().Title, std::string("Save the probability matrix"));
  QTest::mouseClick(c->Picture2[5], Qt::LeftButton, {}, QPoint(50, 50));
  frmOutPut2* ch = c->Chart();
  QVERIFY(ch && ch->isVisible());
  ch->SaveMatrixEntry->trigger();
  QCOMPARE(r.dialogs.FileDialogs.back().Owner, static_cast<void*>(ch));
  // The reconstruction window's own saves stand over it.
  r.mat->mnuSaveCurveVOnly->trigger();
  QCOMPARE(r.dialogs.FileDialogs.back().Owner, static_cast<void*>(r.mat));
  QCOMPARE(r.dialogs.FileDialogs.back().Title,
           "Save the curve of " + r.mat->Combo1->currentText().toStdString());
  // The main window's stand over the main window.
  r.window->mnuSaveL->trigger();
  QCOMPARE(r.dialogs.FileDialogs.back().Owner, static_cast<void*>(r.window.get()));
}

void TestFrmCalib::chartOpensFromFig7AndFig8() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  QTest::mouseClick(c->Picture2[4], Qt::LeftButton, {}, QPoint(50, 50));
  frmOutPut2* ch = c->Chart();
  QVERIFY(ch && ch->isVisible());
  QCOMPARE(ch->windowTitle(), QString("Calibration chart"));
  QVERIFY(ch->Option1[0]->isChecked());
  QVERIFY(!ch->Check1->isChecked() && !ch->Check4->isChecked());
  QCOMPARE(ch->Slider2->value(), r.mat->Slider5->value());
  QVERIFY(NonWhite(ch->Picture1->surface().Image()) > 0);
  ch->close();
  QTest::mouseClick(c->Picture2[5], Qt::LeftButton, {}, QPoint(50, 50));
  QVERIFY(ch->isVisible());
  QVERIFY(ch->Option1[1]->isChecked());
  QVERIFY(ch->Check1->isChecked() && ch->Check4->isChecked());
  const QImage& main = ch->Picture1->surface().Image();
  QVERIFY(CountColour(main, RegionColour(false, 2)) > 0);
  QVERIFY(CountColour(main, QColor(255, 0, 0)) > 0);  // mode
  // The section moves with its slider; its line follows.
  ch->Slider1->setValue(50);
  const int x = ch->Picture1->width() / 2;
  int blue = 0;
  for (int y = 0; y < main.height(); ++y)
    if (ch->Picture1->surface().Image().pixelColor(x, y) == QColor(0, 0, 255)) ++blue;
  QVERIFY(blue > main.height() / 2);
  ch->Check2->click();
  QVERIFY(ch->IntervalLines().contains("Average"));
  QVERIFY(ch->IntervalLines().contains("Mode"));
  QVERIFY(ch->IntervalLines().first().endsWith(" %"));
}

void TestFrmCalib::chartSectionInEmptyColumnReadsOutOfRange() {
  Road r;
  r.Open();
  r.Generated();
  r.cal->PrepareChart(5);
  frmOutPut2* ch = r.cal->Chart();
  ch->Open(HandGrid(250, {0, 2, 2, 0}), 5);
  ch->Check2->click();
  // Slider 0: column 50, empty.
  QCOMPARE(ch->SectionColumn(), 50L);
  const QStringList lines = ch->IntervalLines();
  QCOMPARE(lines.count("  Out of range"), 2);
  const QImage& profile = ch->Picture2->surface().Image();
  int inked = 0;
  for (int y = 0; y < profile.height(); ++y)
    for (int x = 2; x < profile.width(); ++x)
      if ((profile.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF) ++inked;
  QCOMPARE(inked, 0);
}

void TestFrmCalib::chartIntervalOpenAtTopReadsQuestionMark() {
  Road r;
  r.Open();
  r.Generated();
  r.cal->PrepareChart(5);
  frmOutPut2* ch = r.cal->Chart();
  std::vector<int> classes(401, 0);
  for (int i = 390; i <= 400; ++i) classes[static_cast<std::size_t>(i)] = 2;
  FineGrid f = HandGrid(50, classes);
  // The region goes on above the window of interest.
  for (long qf = 451; qf <= 470; ++qf) f.FineClass(50, qf) = 2;
  ch->Open(f, 5);
  ch->Check2->click();
  const QStringList lines = ch->IntervalLines();
  bool open = false;
  for (const QString& l : lines)
    if (l.endsWith(" - ?")) open = true;
  QVERIFY2(open, qPrintable(lines.join('|')));
}

void TestFrmCalib::chartStopsAtElevenIntervals() {
  Road r;
  r.Open();
  r.Generated();
  r.cal->PrepareChart(5);
  frmOutPut2* ch = r.cal->Chart();
  std::vector<int> classes;
  for (int i = 0; i < 15; ++i) {
    classes.push_back(0);
    classes.push_back(2);
  }
  ch->Open(HandGrid(50, classes), 5);
  ch->Check2->click();
  const QStringList lines = ch->IntervalLines();
  int intervals = 0;
  for (const QString& l : lines)
    if (l.contains(" - ")) ++intervals;
  // Eleven of class 2 and eleven of class 1 (which class 2 counts in).
  QCOMPARE(intervals, 22);
}

void TestFrmCalib::chartSlider2AtZeroLeavesProbabilityWhite() {
  Road r;
  r.Open();
  r.Generated();
  QTest::mouseClick(r.cal->Picture2[4], Qt::LeftButton, {}, QPoint(50, 50));
  frmOutPut2* ch = r.cal->Chart();
  QVERIFY(NonWhite(ch->Picture1->surface().Image()) > 100);
  ch->Check1->setChecked(false);
  ch->Slider2->setValue(0);
  ch->Check4->setChecked(false);
  ch->Slider1->setValue(0);
  ch->Picture1->surface().Clear();
  // Only the section line stays on a white main figure.
  const QImage& main = ch->Picture1->surface().Image();
  QCOMPARE(NonWhite(main), 0);
  QCOMPARE(ch->Label4->text(), QString("0 %"));
  QCOMPARE(r.mat->ZEnhancement(), 0.0);
}

void TestFrmCalib::commonOutputSameFromToolChartAndBatch() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  const QString out = r.folder.path() + "/batch";
  const QString name = r.mat->Combo1->currentText();
  QVERIFY(Batch(out, {"--calibrate", name}));
  const QByteArray batch = ReadAll(out + "/common-output.csv");
  QVERIFY(!batch.isEmpty());
  int n = 0;
  for (QAction* a : {c->mnuCommonOutput, c->ConfidenceRegions, c->ProbabilityDistribution,
                     c->SaveMatrixConfi, c->SaveMartixProb}) {
    const std::string path = r.Save(a, QString("tool-%1.csv").arg(n++));
    QVERIFY2(ReadAll(QString::fromStdString(path)) == batch, qPrintable(a->objectName()));
  }
  QTest::mouseClick(c->Picture2[5], Qt::LeftButton, {}, QPoint(50, 50));
  const std::string path = r.Save(c->Chart()->SaveMatrixEntry, "chart.csv");
  QVERIFY(ReadAll(QString::fromStdString(path)) == batch);
  // A cancel writes nothing and says nothing.
  c->mnuCommonOutput->trigger();
  QVERIFY(r.dialogs.Messages.empty());
}

void TestFrmCalib::returnPaintsMatricesInReconstructionWindow() {
  Road r;
  frmMAT* m = r.mat;
  // Square-root enhancement, as the independent run of the same calibration.
  m->Check2->click();
  m->Command3->click();
  QVERIFY(m->Command6->isEnabled());
  m->Command5->click();
  QCOMPARE(m->Command5->text(), QString("Hist: No"));
  r.Open();
  r.Generated();
  r.cal->Command10->click();
  QVERIFY(m->CalibReady());
  QVERIFY(m->Picture4->isVisible());
  QVERIFY(m->Label7->text().startsWith("R1 = "));
  QVERIFY(m->Label7->text().contains(" / R2 = "));
  QVERIFY(m->mnuSaveOstrel->isEnabled() && m->mnuSaveOstrel2->isEnabled());
  m->Command2->click();
  QCOMPARE(m->Command2->text(), QString("Calib: Yes"));
  // Probability view: ramp colours; confidence view: the region colours.
  const QImage prob = m->Picture4->surface().Image().copy();
  QVERIFY(NonWhite(prob) > 0);
  QCOMPARE(CountColour(prob, RegionColour(false, 2)), 0);
  m->Option4[1]->click();
  QVERIFY(CountColour(m->Picture4->surface().Image(), RegionColour(false, 2)) > 0);

  QVERIFY(m->Command4->isEnabled());
  m->Command4->click();
  QVERIFY(m->HistReady());
  QVERIFY(!m->Command4->isEnabled());
  QVERIFY(m->mnuSaveTamsek->isEnabled());
  QVERIFY(CountColour(m->Picture3->surface().Image(), RegionColour(false, 2)) > 0);
  m->Command5->click();
  QCOMPARE(m->Command5->text(), QString("Hist: Yes"));
  // Both matrices handed back, read back from every save entry and set
  // against the files of the independent run (the clock and the paths
  // differ by nature). The calibration matrix is the same record by record.
  const std::vector<Record> ostrelExpected =
      WithoutClockAndPaths(Records(TestData("calibration/ik/calib-hist/ostrel.csv")));
  QCOMPARE(Value(ostrelExpected, "Parameter"), QString("SumSST"));
  for (QAction* entry : {m->mnuSaveOstrel, m->mnuSaveOstrel2}) {
    const std::vector<Record> mine =
        Records(QString::fromStdString(r.Save(entry, entry->objectName() + ".csv")));
    const QString diff = Compare(WithoutClockAndPaths(mine), ostrelExpected);
    QVERIFY2(diff.isEmpty(), qPrintable(entry->objectName() + ": " + diff));
  }
  // The matrix down the core has as many depth rows as the picture's shape
  // gives (200 steps across its width): the same header lines but that
  // count, the same bins, depths evenly from the core's top to its bottom,
  // and at every depth both files hold, the same cells.
  const MatrixFile expected(Records(TestData("calibration/ik/calib-hist/tamsek.csv")));
  QCOMPARE(expected.Rows(), 494);
  const int rows = int(std::floor(200.0 * m->Picture3->height() / m->Picture3->width()));
  for (QAction* entry : {m->mnuSaveTamsek, m->mnuSaveTamsek2}) {
    const MatrixFile mine(
        Records(QString::fromStdString(r.Save(entry, entry->objectName() + ".csv"))));
    const QString name = entry->objectName();
    QVERIFY2(!mine.Body.empty(), qPrintable(name));
    QString diff = Compare(mine.HeaderWithoutRows(), expected.HeaderWithoutRows());
    QVERIFY2(diff.isEmpty(), qPrintable(name + " header: " + diff));
    QCOMPARE(Value(mine.Header, "Vertical resolution: ").toInt(), rows);
    QCOMPARE(mine.Rows(), rows);
    diff = Compare({mine.Bins}, {expected.Bins});
    QVERIFY2(diff.isEmpty(), qPrintable(name + " bins: " + diff));
    const double top = 0, bottom = 1090;  // the example core's first and last depths
    int shared = 0;
    for (int row = 0; row <= rows; ++row) {
      const Record& line = mine.Body[std::size_t(row)];
      const double depth = std::round((top * (rows - row) + bottom * row) / rows * 10000) / 10000;
      QVERIFY2(std::abs(line[0].Text.toDouble() - depth) < 1e-6, qPrintable(line[0].Text));
      for (const Record& other : expected.Body) {
        if (std::abs(other[0].Text.toDouble() - depth) > 1e-6) continue;
        diff = Compare({line}, {other});
        QVERIFY2(diff.isEmpty(), qPrintable(name + " at depth " + line[0].Text + ": " + diff));
        ++shared;
      }
    }
    // The depths both hold: the top, the bottom and those between where
    // the two counts of rows meet.
    QCOMPARE(shared, std::gcd(rows, expected.Rows()) + 1);
  }
}

void TestFrmCalib::reconstructionSettingsDropTheMatrices() {
  Road r;
  frmMAT* m = r.mat;
  r.Open();
  r.Generated();
  r.cal->Command10->click();
  m->Command4->click();
  QVERIFY(m->HistReady());
  m->Slider6->setValue(m->Slider6->value() + 1);
  QVERIFY(!m->HistReady());
  QVERIFY(!m->mnuSaveTamsek->isEnabled());
  QVERIFY(m->Command4->isEnabled());
  m->Text1->setText("0");
  emit m->Text1->textEdited("0");
  QVERIFY(!m->CalibReady());
  QVERIFY(!m->mnuSaveOstrel->isEnabled());
  QVERIFY(m->Command6->isEnabled());
  m->Command2->click();
  QCOMPARE(m->Command2->text(), QString("Calib: No"));
}

void TestFrmCalib::printOptionsStoreAndCancel() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  c->PrintOptionsEntry->trigger();
  frmPrintSetup* d = c->PrintSetup();
  QVERIFY(d && d->isVisible());
  QCOMPARE(d->windowTitle(), QString("Print options"));
  QCOMPARE(d->Text1->text(), QString("6"));
  QCOMPARE(d->Text2->text(), QString("3"));
  QCOMPARE(d->Text3->text(), QString("100"));
  QCOMPARE(d->Text4->text(), QString("10"));
  d->Text3->setText("50");
  QCOMPARE(c->Print().PrintZoom, 0.5f);
  d->Text1->setText("abc");
  QCOMPARE(c->Print().PrintDotSize, 0.0f);
  QVERIFY(c->Check3());
  d->Command2->click();
  QCOMPARE(c->Print().PrintZoom, 1.0f);
  QCOMPARE(c->Print().PrintDotSize, 6.0f);
  c->PrintOptionsEntry->trigger();
  c->PrintSetup()->Text5->setText("Core MD95");
  c->PrintSetup()->Command1->click();
  QCOMPARE(c->Print().PrintTitle, std::string("Core MD95"));
}

void TestFrmCalib::printedPdfHasPagesAndRegionColours() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  int n = 0;
  auto printTo = [&](const QString& name) {
    const QString path = r.folder.path() + "/" + name;
    c->ChoosePrinter = [path](QWidget*) {
      auto p = std::make_unique<QPrinter>(QPrinter::HighResolution);
      p->setOutputFormat(QPrinter::PdfFormat);
      p->setOutputFileName(path);
      return p;
    };
    ++n;
    return path;
  };
  auto pages = [](const QByteArray& pdf) {
    return static_cast<int>(pdf.count("/Type /Page\n") + pdf.count("/Type /Page ") +
                            pdf.count("/Type /Page/") + pdf.count("/Type /Page>"));
  };
  const QString full = printTo("full.pdf");
  c->PrintAllEntry->trigger();
  const QByteArray pdf = ReadAll(full);
  QVERIFY(pdf.startsWith("%PDF"));
  QCOMPARE(pages(pdf), 2);
  // Half the zoom puts everything on one page.
  c->Print().PrintZoom = 0.5f;
  const QString small = printTo("small.pdf");
  c->PrintAllEntry->trigger();
  QCOMPARE(pages(ReadAll(small)), 1);

  // The same pages on images: the regions of Fig.8 in their colours, the
  // scatter points in the point colour.
  c->Print().PrintZoom = 1.0f;
  ImagePrintTarget images(1000);
  QCOMPARE(c->PrintTo(images), 2);
  images.End();
  QCOMPARE(images.Pages.size(), std::size_t{2});
  QVERIFY(CountColour(images.Pages[1], RegionColour(false, 2)) > 1000);
  QVERIFY(CountColour(images.Pages[1], RegionColour(false, 1)) > 100);
  QVERIFY(CountColour(images.Pages[0], r.colours.CurveColour.ToQColor()) > 50);
  // A smaller dot leaves white between the cells of a matrix.
  c->Print().PrintDotSize = 3;
  ImagePrintTarget smallDots(1000);
  c->PrintTo(smallDots);
  smallDots.End();
  const int full8 = CountColour(images.Pages[1], RegionColour(false, 2));
  const int small8 = CountColour(smallDots.Pages[1], RegionColour(false, 2));
  QVERIFY2(small8 < full8 * 2 / 3, qPrintable(QString("%1 %2").arg(small8).arg(full8)));
}

void TestFrmCalib::closeClearsToolOpenAndSecondaryWindows() {
  Road r;
  r.Open();
  r.Generated();
  QTest::mouseClick(r.cal->Picture2[5], Qt::LeftButton, {}, QPoint(50, 50));
  QVERIFY(r.cal->Chart()->isVisible());
  r.cal->Command2->click();
  QVERIFY(!r.cal->isVisible());
  QVERIFY(!r.cal->Chart()->isVisible());
  QVERIFY(!r.cal->State().CalibToolOpen);
}

void TestFrmCalib::headerOnlyAndSinglePairFilesFitNoLine() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  r.dialogs.OpenNames.push_back(r.Write("header.csv", "Vest,Vobs\r\n"));
  c->Command1[1]->click();
  QCOMPARE(c->Label12[1]->text(), QString("0"));
  QVERIFY(c->Label17->text().isEmpty());
  QVERIFY(c->Label13[1]->text().isEmpty());
  r.dialogs.OpenNames.push_back(r.Write("one.csv", "Vest,Vobs\r\n26,27\r\n28,\r\n"));
  c->Command1[1]->click();
  QCOMPARE(c->Label12[1]->text(), QString("1"));
  QVERIFY(c->Label17->text().isEmpty());
  QVERIFY(c->Label19->text().isEmpty());
  // A cancelled import leaves everything as it was.
  c->Command1[1]->click();
  QCOMPARE(c->Label12[1]->text(), QString("1"));
  QVERIFY(r.dialogs.Messages.empty());
}

void TestFrmCalib::generatedModelFollowsSlider4AndRangeWidth() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  c->Text1->setText("30");
  c->Text2->setText("25");
  emit c->Text2->editingFinished();
  c->Check4->click();
  // The deviation is a percentage of |T1 - T2|, whichever is larger.
  QCOMPARE(c->Label19->text(), QString("0.25"));
  c->Slider4->setValue(1);
  QCOMPARE(c->Label22->text(), QString("Std.Dev.: 1 % of range"));
  QCOMPARE(c->Label19->text(), QString("0.05"));
  QVERIFY(c->PictDrawn(3));
  QVERIFY(!c->PictDrawn(4));
  QVERIFY(c->Command3->isEnabled());
}

void TestFrmCalib::uncheckingGenerateModelReturnsToFileState() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  c->Check4->click();
  QVERIFY(!c->mnuCommonOutput->isEnabled());
  c->Check4->click();
  QVERIFY(c->Command1[1]->isEnabled());
  QVERIFY(!c->Slider4->isEnabled());
  QVERIFY(!c->Label22->isVisible());
  QVERIFY(c->Label17->text().isEmpty());
  QVERIFY(c->Label21[1]->text().isEmpty());
  QVERIFY(!c->PictDrawn(3));
  QVERIFY(!c->Command3->isEnabled());
}

void TestFrmCalib::rangeEditRedrawsScattersAndClearsChain() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  const int shows1 = c->FigureShows(1);
  c->Text2->setText("32");
  emit c->Text2->textEdited("32");
  QCOMPARE(c->FigureShows(1), shows1 + 1);
  for (QLabel* l : c->Label2) QCOMPARE(l->text(), QString("32"));
  QVERIFY(!c->PictDrawn(8));
  QVERIFY(!c->Command10->isEnabled());
  // The generated model follows the new range at once.
  QVERIFY(c->PictDrawn(3));
  QVERIFY(c->Command3->isEnabled());
  c->Command3->click();
  QVERIFY(c->PictDrawn(8));
}

void TestFrmCalib::copyEntriesFollowDrawnFigures() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  QVERIFY(c->CopyFig[1]->isEnabled() && c->CopyN[1]->isEnabled());
  QVERIFY(!c->CopyFig[7]->isEnabled() && !c->CopyN[7]->isEnabled());
  QVERIFY(!c->SaveMartixProb->isEnabled() && !c->SaveMatrixConfi->isEnabled());
  r.Generated();
  QVERIFY(c->CopyFig[7]->isEnabled() && c->CopyN[8]->isEnabled());
  QVERIFY(c->SaveMartixProb->isEnabled() && c->SaveMatrixConfi->isEnabled());
  c->CopyFig[8]->trigger();
  QCOMPARE(QApplication::clipboard()->image().size(), c->Picture2[5]->surface().Image().size());
  c->mnuAbout->trigger();
  QWidget* about = c->findChild<QWidget*>("frmAbout");
  QVERIFY(about && about->isVisible());
}

void TestFrmCalib::hoverReadsValuesOnDrawnFigures() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  QTest::mouseMove(c->Picture2[0], QPoint(100, 100));
  QMouseEvent blank(QEvent::MouseMove, QPointF(100, 100), QPointF(100, 100), Qt::NoButton,
                    Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(c->Picture2[0], &blank);
  QCOMPARE(c->StatusLabel->text(), QString("X: / Y: "));
  r.Generated();
  QMouseEvent drawn(QEvent::MouseMove, QPointF(100, 100), QPointF(100, 100), Qt::NoButton,
                    Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(c->Picture2[0], &drawn);
  // The middle of a figure on 25..30.
  QVERIFY2(c->StatusLabel->text().startsWith("X: 27.5"), qPrintable(c->StatusLabel->text()));
}

void TestFrmCalib::zEnhancementOfReconstructionRecoloursBoth() {
  Road r;
  r.Open();
  r.dialogs.OpenNames.push_back(r.PairFile());
  r.cal->Command1[1]->click();
  r.cal->Command3->click();
  r.cal->Command10->click();
  frmMAT* m = r.mat;
  const QImage before = m->Picture4->surface().Image().copy();
  const int shows7 = r.cal->FigureShows(7);
  m->Slider5->setValue(40);
  QCOMPARE(m->ZEnhancement(), 0.4);
  QVERIFY(m->Picture4->surface().Image() != before);
  QVERIFY(r.cal->FigureShows(7) > shows7);
  // The matrices stay valid: only the colours changed.
  QVERIFY(m->CalibReady());
}

void TestFrmCalib::reopeningTakesTheReconstructionRange() {
  Road r;
  r.Open();
  r.Generated();
  r.cal->Command10->click();
  frmMAT* m = r.mat;
  m->Text2->setText("31");
  emit m->Text2->textEdited("31");
  QVERIFY(!m->CalibReady());
  m->Command6->click();
  QCOMPARE(r.cal->Text2->text(), QString("31"));
  QCOMPARE(r.cal->Label2[0]->text(), QString("31"));
  QVERIFY(!r.cal->PictDrawn(8));
  QVERIFY(r.cal->PictDrawn(3));  // the generated model follows the range
  QVERIFY(r.cal->Command3->isEnabled());
}

// "Save Picture As..." of a matrix figure draws its cells again at the
// chosen size: the region colours fill the twice-sized PNG as they fill the
// figure, cell by cell, and the chart's main figure saves as well.
void TestFrmCalib::figuresSaveAsPicturesWithTheirMatrices() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  auto* entry = c->findChild<QAction*>("mnuSavePicture8");
  QVERIFY(entry);
  QVERIFY(entry->isEnabled());
  const QString path = r.folder.path() + "/fig8.png";
  r.dialogs.SaveNames.push_back(path.toStdString());
  r.dialogs.SaveChoices.push_back(1);  // PNG at twice the size
  entry->trigger();
  const QImage big(path);
  const QImage& fig8 = r.Figure(8);
  QCOMPARE(big.size(), fig8.size() * 2);
  for (bool inner : {false, true}) {
    const QColor region = RegionColour(false, inner ? 1 : 2);
    const int onScreen = CountColour(fig8, region);
    QVERIFY(onScreen > 0);
    const int saved = CountColour(big, region);
    QVERIFY2(std::abs(saved - 4 * onScreen) <= onScreen / 10,
             qPrintable(QString("%1 %2").arg(saved).arg(onScreen)));
  }
  // The Edit menu names each figure.
  auto* fig3 = c->findChild<QAction*>("mnuSavePictureFig3");
  QVERIFY(fig3 && fig3->isEnabled());
  // The chart opened from Fig.8, its main figure as an SVG.
  c->DetailConfi->trigger();
  QCoreApplication::processEvents();
  auto* chart = c->findChild<frmOutPut2*>();
  QVERIFY(chart);
  auto* chartEntry = chart->findChild<QAction*>("mnuSavePicture1");
  QVERIFY(chartEntry);
  const QString svg = r.folder.path() + "/chart.svg";
  r.dialogs.SaveNames.push_back(svg.toStdString());
  r.dialogs.SaveChoices.push_back(3);
  chartEntry->trigger();
  const QByteArray text = ReadAll(svg);
  QVERIFY(text.startsWith("<?xml"));
  QVERIFY(text.contains("<image"));
  QVERIFY(r.dialogs.Messages.empty());
}

namespace {

// The pairs the reconstruction window holds for parameter p, as the tool
// stores them.
float ReconPair(const Session& s, long site, long p) {
  return static_cast<float>(s.ReconRefValue(site, p));
}

std::vector<float> Slot8(const CalibState& c) {
  std::vector<float> out;
  for (long p = 25; p <= 225; ++p)
    for (long q = 25; q <= 225; ++q) out.push_back(c.CalibMatrix(8, p, q));
  return out;
}

}  // namespace

void TestFrmCalib::anotherParameterAfterClosingHandsBackItsOwnMatrix() {
  Road r;
  frmMAT* m = r.mat;
  r.Open();
  r.Generated();
  r.cal->Command10->click();
  QVERIFY(m->CalibReady());
  const std::vector<float> first = Slot8(*m->Calib());
  r.cal->Command2->click();
  // Another parameter in the reconstruction window, then the tool again.
  QVERIFY(m->Combo1->count() > 1);
  m->Combo1->setCurrentIndex(1);
  emit m->Combo1->activated(1);
  const QString name = m->Combo1->currentText();
  const long p = r.session.CurrentParameter;
  QCOMPARE(QString::fromStdString(r.session.ClimateParamNames(p)), name);
  r.Open();
  QCOMPARE(r.cal->Label14[0]->text(), "(Reconstructed)" + name);
  QCOMPARE(r.cal->Label15[0]->text(), "(Estimated)" + name);
  QCOMPARE(r.cal->Text1->text(), m->Text1->text());
  QCOMPARE(r.cal->Text2->text(), m->Text2->text());
  QVERIFY(!r.cal->Check4->isChecked());  // loaded afresh
  QVERIFY(!r.cal->Command10->isEnabled());
  r.Generated();
  r.cal->Command10->click();
  // What the reconstruction window received: the new parameter's pairs,
  // a matrix on its axis, and not the old matrix.
  QVERIFY(m->CalibReady());
  const CalibState& got = *m->Calib();
  for (long site : {1L, 2L, 10L, static_cast<long>(r.session.RefSiteCount)}) {
    QCOMPARE(got.PairData(0, site, 1), ReconPair(r.session, site, p));
    QCOMPARE(got.PairData(0, site, 2), static_cast<float>(r.session.ClimateData(site, p)));
  }
  QCOMPARE(QString::fromStdString(got.LastText1), m->Text1->text());
  QCOMPARE(QString::fromStdString(got.LastText2), m->Text2->text());
  QVERIFY(Slot8(got) != first);
}

void TestFrmCalib::newVrecVestFileRunsTheChainFromTheStart() {
  Road r;
  frmMAT* m = r.mat;
  r.Open();
  r.dialogs.OpenNames.push_back(r.PairFile());
  r.cal->Command1[1]->click();
  r.cal->Command3->click();
  r.cal->Command10->click();
  QVERIFY(m->CalibReady());
  const std::vector<float> first = Slot8(*m->Calib());
  // A Vrec-Vest file of its own: every figure computed from the pairs goes.
  const double t1 = LenientParse(m->Text1->text().toStdString());
  const double t2 = LenientParse(m->Text2->text().toStdString());
  QByteArray text = "Vrec,Vest\r\n";
  // As many rows as sites: the counts run over that many.
  const int rows = r.session.RefSiteCount;
  for (int i = 0; i < rows; ++i) {
    const double v = t1 + (t2 - t1) * (i % 20) / 20.0;
    text += QByteArray::fromStdString(FormatGeneral(v) + "," + FormatGeneral(v)) + "\r\n";
  }
  r.dialogs.OpenNames.push_back(r.Write("vrec.csv", text));
  r.cal->Command1[0]->click();
  QVERIFY(!m->CalibReady());
  QVERIFY(!r.cal->Command10->isEnabled());
  for (int f = 3; f <= 8; ++f) QVERIFY2(!r.cal->PictDrawn(f), qPrintable(QString::number(f)));
  QVERIFY(r.cal->Command3->isEnabled());
  r.cal->Command3->click();
  for (int f = 3; f <= 8; ++f) QVERIFY2(r.cal->PictDrawn(f), qPrintable(QString::number(f)));
  r.cal->Command10->click();
  QVERIFY(m->CalibReady());
  const CalibState& got = *m->Calib();
  QCOMPARE(got.PairData(0, 2, 1), static_cast<float>(t1 + (t2 - t1) / 20.0));
  QCOMPARE(r.cal->Label12[0]->text(), QString::number(rows));
  // Every pair of the file on the diagonal: the counts stand on it alone.
  double offDiagonal = 0, onDiagonal = 0;
  for (long i = 0; i <= 250; ++i)
    for (long j = 0; j <= 250; ++j) (i == j ? onDiagonal : offDiagonal) += got.CalibMatrix(0, i, j);
  QCOMPARE(onDiagonal, static_cast<double>(rows));
  QCOMPARE(offDiagonal, 0.0);
  QVERIFY(Slot8(got) != first);
}

void TestFrmCalib::generatedModelThenImportEnablesStartAtOnce() {
  Road r;
  r.Open();
  r.cal->Check4->click();
  r.dialogs.OpenNames.push_back(r.Write(
      "vrec.csv", "Vrec,Vest\r\n" + r.mat->Text1->text().toUtf8() + "," +
                      r.mat->Text1->text().toUtf8() + "\r\n" + r.mat->Text2->text().toUtf8() + "," +
                      r.mat->Text2->text().toUtf8() + "\r\n"));
  r.cal->Command1[0]->click();
  QVERIFY(r.cal->Check4->isChecked());
  QVERIFY(r.cal->PictDrawn(3));  // the model stays
  QVERIFY(r.cal->Command3->isEnabled());
  r.cal->Command3->click();
  QVERIFY(r.cal->PictDrawn(8));
  QVERIFY(r.cal->Command10->isEnabled());
  r.cal->Command10->click();
  QVERIFY(r.mat->CalibReady());
  QCOMPARE(r.mat->Calib()->PairData(0, 1, 1),
           static_cast<float>(LenientParse(r.mat->Text1->text().toStdString())));
}

void TestFrmCalib::returnRefusesAMatrixOnAnotherRangeThanTheCurve() {
  Road r;
  frmMAT* m = r.mat;
  r.Open();
  frmCalib* c = r.cal;
  c->Check4->click();
  // The user's own range in the tool: the chain runs on it...
  const QString wider =
      QString::fromStdString(FormatGeneral(LenientParse(m->Text2->text().toStdString()) + 2));
  c->Text2->setText(wider);
  emit c->Text2->textEdited(wider);
  emit c->Text2->editingFinished();
  QCOMPARE(c->Text2->text(), wider);
  c->Command3->click();
  QVERIFY(c->Command10->isEnabled());
  // ... but the curve's axis is another: nothing is handed back.
  c->Command10->click();
  QCOMPARE(r.dialogs.Messages.size(), std::size_t{1});
  QCOMPARE(QString::fromStdString(r.dialogs.Messages[0].Title), QString("Error"));
  QVERIFY(QString::fromStdString(r.dialogs.Messages[0].Text).contains(wider));
  QVERIFY(!m->CalibReady());
  QVERIFY(!m->Picture4->isVisible());
  // A new pair set 0 takes the curve's range again, and then it goes back.
  r.dialogs.OpenNames.push_back(r.Write("vrec.csv", "Vrec,Vest\r\n26,26.5\r\n27,27.5\r\n"));
  c->Command1[0]->click();
  QCOMPARE(c->Text2->text(), m->Text2->text());
  for (QLabel* l : c->Label2) QCOMPARE(l->text(), m->Text2->text());
  QVERIFY(c->PictDrawn(3));  // the model made again on the new range
  c->Command3->click();
  c->Command10->click();
  QCOMPARE(r.dialogs.Messages.size(), std::size_t{1});
  QVERIFY(m->CalibReady());
  QCOMPARE(QString::fromStdString(m->Calib()->LastText2), m->Text2->text());
  QCOMPARE(m->Calib()->MatrixStepSize, (LenientParse(m->Text2->text().toStdString()) -
                                        LenientParse(m->Text1->text().toStdString())) /
                                           200);
  // The ostrel file's bins are the matrix's axis.
  const std::string ostrel = r.Save(m->mnuSaveOstrel, "ostrel.csv");
  const QList<QByteArray> lines = ReadAll(QString::fromStdString(ostrel)).split('\n');
  QVERIFY(lines.size() > 20);
  const QList<QByteArray> bins = lines[15].trimmed().split(',');
  QCOMPARE(bins.size(), 202);
  QCOMPARE(bins[1].toDouble(), LenientParse(m->Text1->text().toStdString()));
  QCOMPARE(bins[201].toDouble(), LenientParse(m->Text2->text().toStdString()));
}

void TestFrmCalib::resetOfTheReconstructionTakesBackTheToolsMatrix() {
  Road r;
  frmMAT* m = r.mat;
  r.Open();
  r.Generated();
  QVERIFY(r.cal->Command10->isEnabled());
  // A setting of the reconstruction changes while the tool stays open.
  m->Slider1->setValue(m->Slider1->value() - 1);
  QVERIFY(!r.cal->Command10->isEnabled());
  QVERIFY(!r.cal->PictDrawn(1));
  QVERIFY(!r.cal->PictDrawn(8));
  QVERIFY(!r.cal->Command3->isEnabled());
  // Even a stray hand-back delivers nothing.
  r.cal->ReturnData();
  QVERIFY(!m->CalibReady());
  // A new error model and the tool again: the pairs of the new search.
  m->Command3->click();
  r.Open();
  QVERIFY(r.cal->PictDrawn(1));
  const long p = r.session.CurrentParameter;
  QCOMPARE(r.mat->Calib()->PairData(0, 3, 1), ReconPair(r.session, 3, p));
  QVERIFY(r.cal->Command3->isEnabled());
  r.cal->Command3->click();
  r.cal->Command10->click();
  QVERIFY(m->CalibReady());
}

void TestFrmCalib::minorItemsOfTheScatterModelAndRange() {
  Road r;
  r.Open();
  frmCalib* c = r.cal;
  // The scatter of pair set 1 unticks "Show fitting line".
  const std::string pairs = r.PairFile();
  r.dialogs.OpenNames.push_back(pairs);
  c->Command1[1]->click();
  c->Check1->click();
  QVERIFY(c->Check1->isChecked());
  r.dialogs.OpenNames.push_back(pairs);
  c->Command1[1]->click();
  QVERIFY(!c->Check1->isChecked());
  QVERIFY(c->Check1->isEnabled());
  // Leaving the generated model returns its slider to the minimum.
  c->Check4->click();
  c->Slider4->setValue(7);
  c->Check4->click();
  QCOMPARE(c->Slider4->value(), 1);
  QVERIFY(!c->Slider4->isEnabled());
  // ResetRange keeps the Vest-Vobs import off while the climate comes
  // from the interpolation tool.
  r.session.SiteInfoLoaded = true;
  c->Command1[1]->setEnabled(false);
  c->ResetRange();
  QVERIFY(!c->Command1[1]->isEnabled());
  r.session.SiteInfoLoaded = false;
  c->ResetRange();
  QVERIFY(c->Command1[1]->isEnabled());
  // "Return" closes the colour settings.
  c->Check4->click();
  c->Command3->click();
  c->ColourSetting->trigger();
  QCoreApplication::processEvents();
  QWidget* colour = nullptr;
  for (QWidget* w : QApplication::topLevelWidgets())
    if (w->objectName() == "frmColor" && w->isVisible()) colour = w;
  QVERIFY(colour);
  c->Command10->click();
  QVERIFY(!colour->isVisible());
  QVERIFY(r.mat->CalibReady());
}

void TestFrmCalib::chartOpensAtTheReconstructionEnhancementWithIntervalsOff() {
  Road r;
  r.Open();
  r.Generated();
  frmCalib* c = r.cal;
  QTest::mouseClick(c->Picture2[4], Qt::LeftButton, {}, QPoint(50, 50));
  frmOutPut2* ch = c->Chart();
  QCOMPARE(ch->Slider2->value(), r.mat->Slider5->value());
  ch->Check2->click();
  QVERIFY(ch->Check2->isChecked());
  // The chart's own enhancement moves the shared factor, not the slider of
  // the reconstruction window.
  ch->Slider2->setValue(40);
  emit ch->Slider2->sliderReleased();
  ch->close();
  int steps = 0;
  connect(ch->ProgressBar1, &QProgressBar::valueChanged, ch, [&steps] { ++steps; });
  QTest::mouseClick(c->Picture2[4], Qt::LeftButton, {}, QPoint(50, 50));
  QCOMPARE(ch->Slider2->value(), r.mat->Slider5->value());
  QVERIFY(!ch->Check2->isChecked());
  // DrawChart counts its columns on the bar and hides it afterwards.
  QVERIFY(steps > 10);
  QVERIFY(!ch->ProgressBar1->isVisible());
}

void TestFrmCalib::sectionProfileAtZeroEnhancementKeepsItsFirstPoints() {
  Road r;
  r.Open();
  r.Generated();
  QTest::mouseClick(r.cal->Picture2[4], Qt::LeftButton, {}, QPoint(50, 50));
  frmOutPut2* ch = r.cal->Chart();
  // A section where the column has mass: its profile reaches past the
  // left edge.
  auto reach = [ch] {
    const QImage& img = ch->Picture2->surface().Image();
    int n = 0;
    for (int y = 0; y < img.height(); ++y)
      for (int x = 3; x < img.width(); ++x)
        if ((img.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF) ++n;
    return n;
  };
  int best = 0, at = 0;
  for (int v = 0; v <= 100; v += 5) {
    ch->Slider1->setValue(v);
    if (reach() > best) {
      best = reach();
      at = v;
    }
  }
  QVERIFY(best > 0);
  ch->Slider1->setValue(at);
  QCOMPARE(reach(), best);
  ch->Slider2->setValue(0);
  emit ch->Slider2->sliderReleased();
  // Only the first point of every row stays: the left edge, nothing else.
  const QImage& img = ch->Picture2->surface().Image();
  int left = 0, rest = 0;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x)
      if ((img.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF) (x <= 2 ? left : rest) += 1;
  QVERIFY(left > 0);
  QCOMPARE(rest, 0);
}

void TestFrmCalib::openedWithNoVrecVestDataStartWaitsForBothScatters() {
  Road r;
  // No reconstructed value at any site for the parameter.
  const long p = SetCurrentParameter(r.session, r.mat->Combo1->currentText().toStdString());
  for (long s = 1; s <= r.session.RefSiteCount; ++s) r.session.ReconRefValue(s, p) = -9999;
  r.Open();
  QCOMPARE(r.cal->Label12[0]->text(), QString("0"));
  QVERIFY(!r.cal->Command3->isEnabled());
  r.cal->Command3->click();
  QVERIFY(!r.cal->PictDrawn(3));
  r.dialogs.OpenNames.push_back(r.PairFile());
  r.cal->Command1[1]->click();
  QVERIFY(r.cal->PictDrawn(1) && r.cal->PictDrawn(2));
  QVERIFY(r.cal->Command3->isEnabled());
}

QTEST_MAIN(TestFrmCalib)
#include "tst_frmCalib.moc"
