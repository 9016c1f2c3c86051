// The reconstruction window driven by its control names after the example
// road through the main window: the stages and their enabling, the sliders
// that follow each other, the panels of the error model, the curve and the
// scatter checked at computed pixels, the selected sample shared with the
// diagram, the failure boundary, and the saved files against the batch
// runner's files for the same settings.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <array>
#include <cmath>
#include <map>

#include "RecordSupport.h"
#include "UiSupport.h"
#include "presentation/ReconstructionFigure.h"
#include "reconstruction/ClimateImport.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"
#include "ui/PictureBox.h"
#include "ui/WindowPlacement.h"
#include "ui/frmCalib.h"
#include "ui/frmColor.h"
#include "ui/frmDiagram.h"
#include "ui/frmLuvane.h"
#include "ui/frmMAT.h"

using namespace varnoth;
using varnoth::uitest::BatchOnExamples;
using varnoth::uitest::Compare;
using varnoth::uitest::Example;
using varnoth::uitest::Field;
using varnoth::uitest::Inked;
using varnoth::uitest::Near;
using varnoth::uitest::ReadAll;
using varnoth::uitest::Record;
using varnoth::uitest::Records;
using varnoth::uitest::TestData;
using varnoth::uitest::Value;
using varnoth::uitest::WithoutClockAndPaths;

namespace {

// The example road up to the open reconstruction window.
struct Road : uitest::MainFixture {
  frmMAT* mat = nullptr;

  Road() {
    MainFixture::Road();
    window->Command8->click();
    mat = window->MATWindow();
    QCoreApplication::processEvents();
  }
  void Climate(const std::string& path = Example("climate.csv")) {
    dialogs.OpenNames.push_back(path);
    mat->Command1->click();
    QCoreApplication::processEvents();
  }
  Surface& P1() { return mat->Picture1->surface(); }
  Surface& P2() { return mat->Picture2->surface(); }
  long P() const { return session.CurrentParameter; }
  QColor Curve() const { return colours.CurveColour.ToQColor(); }
  QColor Smooth() const { return colours.SmoothCurveColour.ToQColor(); }
  QColor Cursor() const { return colours.CursorColour.ToQColor(); }
  // A sample away from the selection line whose estimate stands inside the axis.
  long Inner() const {
    for (long k = session.FossilSampleCount / 2; k <= session.FossilSampleCount; ++k)
      if (session.ReconValue(k, P()) != kMissing && !session.FossilEmptySample(k)) return k;
    return 0;
  }
  std::string Save(QAction* entry, const QString& name) {
    const std::string path = (folder.path() + "/" + name).toStdString();
    dialogs.SaveNames.push_back(path);
    entry->trigger();
    return path;
  }
  // The error model, the calibration tool with the generated model and
  // "Start", then its "Return".
  void Returned() {
    mat->Command3->click();
    mat->Command6->click();
    frmCalib* cal = mat->CalibWindow();
    cal->Check4->click();
    cal->Command3->click();
    cal->Command10->click();
    QCoreApplication::processEvents();
  }
  Surface& P4() { return mat->Picture4->surface(); }
};

// Where a widget stands on the screen.
QRect OnScreen(const QWidget* w) { return QRect(w->mapToGlobal(QPoint(0, 0)), w->size()); }

// Every picture shown lies wholly inside the window and the screen, and
// none covers another; the message names the first that does not.
QString PanelsFault(frmMAT* m) {
  const QRect screen = AvailableArea(m);
  const QRect window = m->geometry();
  if (!screen.contains(m->frameGeometry())) return "window off the screen";
  std::vector<PictureBox*> shown;
  for (PictureBox* p : {m->Picture1, m->Picture2, m->Picture3, m->Picture4}) {
    if (!p->isVisible()) continue;
    const QRect g = OnScreen(p);
    const QString where = QString("%1 at %2,%3 %4x%5 in window %6,%7 %8x%9")
                              .arg(p->objectName())
                              .arg(g.x())
                              .arg(g.y())
                              .arg(g.width())
                              .arg(g.height())
                              .arg(window.x())
                              .arg(window.y())
                              .arg(window.width())
                              .arg(window.height());
    if (!window.contains(g)) return where + ": outside the window";
    if (!screen.contains(g)) return where + ": outside the screen";
    for (PictureBox* q : shown)
      if (OnScreen(q).intersects(g)) return where + ": over " + q->objectName();
    if (p->width() < 20 || p->height() < 20) return where + ": too small to read";
    shown.push_back(p);
  }
  return QString();
}

// Runs the batch runner on the example data; its files land in `out`.
bool Batch(const QString& out, const QStringList& more) {
  return BatchOnExamples(
      QStringList{"--climate", QString::fromStdString(Example("climate.csv")), "--out", out} +
      more);
}

// A core made by hand for the figure alone: text labels, one parameter.
struct Core {
  Session s;
  Surface pic{200, 400};
  CurveSettings set;
  explicit Core(const std::vector<double>& values) {
    const long n = static_cast<long>(values.size());
    s.FossilSampleCount = static_cast<Count>(n);
    s.FossilLabelsAreText = true;
    s.FossilLabels.ReDim(n);
    s.FossilEmptySample.ReDim(n);
    s.SampleIsOut.ReDim(n);
    s.ReconValue.ReDim(n, 1);
    s.ReconLow.ReDim(n, 1);
    s.ReconHigh.ReDim(n, 1);
    for (long k = 1; k <= n; ++k) {
      s.FossilLabels(k) = "S" + std::to_string(k);
      s.ReconValue(k, 1) = values[static_cast<std::size_t>(k - 1)];
    }
    s.DiagramGapA = 0;
    s.DiagramGapB = 10 * (n + 1);
    s.SampleCursor = 1;
    ApplyColourPreset(set.Colours);
    set.Low = 0;
    set.High = 20;
    set.SelectionShown = false;
  }
  QColor Red() const { return set.Colours.SmoothCurveColour.ToQColor(); }
  QColor Curve() const { return set.Colours.CurveColour.ToQColor(); }
  int RedPixels() const {
    int n = 0;
    const QImage& img = pic.Image();
    for (int y = 0; y < img.height(); ++y)
      for (int x = 0; x < img.width(); ++x)
        if (img.pixelColor(x, y) == Red()) ++n;
    return n;
  }
  int RedBetween(double y1, double y2) const {
    int n = 0;
    const QImage& img = pic.Image();
    const int a = int(pic.ToPixel(0, y1).y()), b = int(pic.ToPixel(0, y2).y());
    for (int y = a; y <= b; ++y)
      for (int x = 0; x < img.width(); ++x)
        if (img.pixelColor(x, y) == Red()) ++n;
    return n;
  }
};

// The example fossil table with the samples at `rows` (1-based) set to zero.
std::string FossilWithEmpty(uitest::MainFixture& f, std::initializer_list<int> rows) {
  QList<QByteArray> lines = ReadAll(QString::fromStdString(Example("fossil.csv"))).split('\n');
  QByteArray out;
  int sample = 0;
  for (int i = 0; i < lines.size(); ++i) {
    QByteArray line = lines[i].trimmed();
    if (line.isEmpty()) continue;
    if (i > 0) {
      ++sample;
      if (std::find(rows.begin(), rows.end(), sample) != rows.end()) {
        QList<QByteArray> cells = line.split(',');
        for (int c = 1; c < cells.size(); ++c) cells[c] = "0";
        line = cells.join(',');
      }
    }
    out += line + "\r\n";
  }
  return f.Write("fossil-empty.csv", out);
}

// The correlation of two columns of a scatter file, as the label gives it.
QString CorrelationOf(const QString& path) {
  const std::vector<Record> rows = Records(path);
  std::vector<double> x, y;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    if (rows[i][0].Quoted || rows[i][1].Text.toDouble() == -9999) continue;
    x.push_back(rows[i][0].Text.toDouble());
    y.push_back(rows[i][1].Text.toDouble());
  }
  double mx = 0, my = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    mx += x[i];
    my += y[i];
  }
  mx /= double(x.size());
  my /= double(y.size());
  double sxy = 0, sxx = 0, syy = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    sxy += (x[i] - mx) * (y[i] - my);
    sxx += (x[i] - mx) * (x[i] - mx);
    syy += (y[i] - my) * (y[i] - my);
  }
  return "R = " + QString::number(std::round(sxy / std::sqrt(sxx * syy) * 10000) / 10000, 'g', 6);
}

}  // namespace

class TestFrmMAT : public QObject {
  Q_OBJECT

 private slots:
  void loadStateBeforeClimate();
  void cancelledClimateLeavesAllAsItWas();
  void climateRunsReconstructionAndEnables();
  void slider1LowersSlider3AndSlider3RaisesSlider1();
  void slider2SetsThresholdAndRunsAgain();
  void noAnaloguesPrintsThreeLinesAndRecovers();
  void check2DisabledUnderEofValues();
  void command3OpensPanelsAndResetClosesThem();
  void command3AfterResetRebuildsPanelsAtSameSizes();
  void knownEstimateDrawnAtItsPosition();
  void outLineInSmoothCurveColour();
  void errorBarsInGreyFollowCheck5();
  void scatterCircleAtEstimateAndObserved();
  void smoothingLevelOneDrawsNoSmoothing();
  void smoothingLongerThanCoreHasNoPoint();
  void missingEstimateLeavesGapOfLPoints();
  void isolatedSamplesAtTheEndsDrawNoPoint();
  void constantParameterGivesTwoLimitsAndZeroDrawsNothing();
  void selectionDragMovesDiagramSlider();
  void upDownWrapsAndCheck3FollowsDiagram();
  void colourChangeReachesCurve();
  void failureEndsAtBoundary();
  void windowSavesAreTheBatchRunnersBytes();
  void unloadAndReopen();
  void quitClosesWindow();
  void smoothingDrawnTwoPixelsWide();
  void envelopeRunRedrawsOutLines();
  void samplePositionBoxFollowsSample();
  void eofBasisRunsTheSearchOnScores();
  void editedLimitsRedrawCurveAndScatter();
  void changeParaKeepsErrorModel();
  void slider7ResizesPicturesAndHeightHasMinimum();
  void stateButtonsTellNoMatrices();
  void climateFromElsewhereIsTakenUpAtActivation();
  void mainCommand8OpensWindowAfterProjection();
  void scatterShowsSelectedEstimate();
  void enhancedDataShowEnhancementOnlyUnderEofValues();
  void taxaProportionsAfterEnhancedPreTreatmentMatchIndependentCurve();
  void analogueDetailsFromClimateFileNameTheSites();
  void returnShowsEveryPanelInsideWindowAndScreen();
  void shortWindowStillShowsEveryPanel();
  void matrixAndScatterShowSelectedEstimate();
  void basisSwitchDropsMatricesOfTheOldScale();
  void option1RunsTheSearchWithTheThresholdAsDefined();
  void reopeningReturnsControlsToLoadState();
  void redrawAllAndRampChangeRecolourBothMatrices();
  void emptyEndSamplesPutHistogramOnCurveScale();
  void combo3ShowsAnEmptySelectedSample();
  void matrixFilesSayNoEnhancementAfterCheck2Off();
  void everySaveEntryMatchesIndependentResults();
  void correlationLabelReadsIndependentR();
  void ostrelAndTamsekReadBack();
  void analogueDetailsAfterInterpolationGiveFiveRecords();
};

void TestFrmMAT::loadStateBeforeClimate() {
  Road r;
  frmMAT* m = r.mat;
  QVERIFY(m->isVisible());
  QCOMPARE(m->windowTitle(), QString("Reconstruction"));
  QCOMPARE(m->Label1->text(), QString("No. of analogs: 0-8"));
  QCOMPARE(m->Label6->text(), QString("Smoothing level: 3"));
  QCOMPARE(m->Label2->text(), QString("Threshold: 0.2"));
  QCOMPARE(m->Slider2->maximum(), 200);
  QCOMPARE(m->Slider2->value(), 20);
  QCOMPARE(m->Slider1->value(), 8);
  QCOMPARE(m->Slider3->value(), 0);
  QVERIFY(m->Option1[0]->isChecked());
  QVERIFY(!m->Check2->isChecked());
  for (QWidget* w : std::initializer_list<QWidget*>{m->Command3, m->Combo1, m->Combo2, m->Combo3,
                                                    m->Text1, m->Text2, m->Check3, m->UpDown1,
                                                    m->Command7, m->Option2[0], m->Option2[1]})
    QVERIFY2(!w->isEnabled(), qPrintable(w->objectName()));
  for (QWidget* w : std::initializer_list<QWidget*>{m->Command6, m->Command4, m->Frame6,
                                                    m->Picture2, m->Picture3, m->Picture4,
                                                    m->Slider7, m->Label7, m->ProgressBar1})
    QVERIFY2(!w->isVisible(), qPrintable(w->objectName()));
  QVERIFY(m->Text1->text().isEmpty() && m->Text2->text().isEmpty());
  QVERIFY(m->Command1->isEnabled());
  QCOMPARE(m->Command1->toolTip(), QString("Use pre-interpolated climate file (Varnoth 1.5)"));
  for (QAction* a :
       {m->mnuSaveCurveEntry, m->mnuSaveCurveAllEntry, m->mnuSaveDistAna2, m->mnuSaveScatter,
        m->mnuCopy1, m->mnuCopy2, m->mnuSaveOstrel, m->mnuSaveTamsek})
    QVERIFY2(!a->isEnabled(), qPrintable(a->objectName()));
  QVERIFY(!r.session.ReconstructionOpen);
}

void TestFrmMAT::cancelledClimateLeavesAllAsItWas() {
  Road r;
  r.mat->Command1->click();  // no file chosen
  QVERIFY(!r.session.ClimateLoaded);
  QVERIFY(r.mat->Command1->isEnabled());
  QVERIFY(!r.mat->Combo1->isEnabled());
  QVERIFY(r.dialogs.Messages.empty());
  QCOMPARE(r.dialogs.Filters.back(), std::string("DataFile(*.csv)|*.csv"));
}

void TestFrmMAT::climateRunsReconstructionAndEnables() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  QVERIFY(r.session.ClimateLoaded);
  QVERIFY(r.session.ReconstructionOpen);
  QVERIFY(!m->Command1->isEnabled());
  QVERIFY(!m->Command8->isEnabled());
  QCOMPARE(m->Combo1->count(), 3);
  QCOMPARE(m->Combo1->currentText(), QString("SumSST"));
  QCOMPARE(r.session.CurrentParameter, Count{1});
  for (QWidget* w : std::initializer_list<QWidget*>{
           m->Command3, m->Combo1, m->Combo3, m->Text1, m->Text2, m->Check3, m->UpDown1, m->Slider1,
           m->Slider2, m->Slider3, m->Check1, m->Check2, m->Option1[0], m->Option1[1]})
    QVERIFY2(w->isEnabled(), qPrintable(w->objectName()));
  const ScaleLimits l = CurveLimits(r.session, 1);
  QCOMPARE(m->Text1->text().toStdString(), FormatGeneral(l.Low));
  QCOMPARE(m->Text2->text().toStdString(), FormatGeneral(l.High));
  for (QAction* a : {m->mnuSaveCurveEntry, m->mnuSaveCurveAllEntry, m->mnuSaveDistAna2,
                     m->mnuSaveDistAna, m->mnuCopy1, m->mnuSaveCurveVOnly})
    QVERIFY2(a->isEnabled(), qPrintable(a->objectName()));
  QVERIFY(!m->mnuSaveCurveVandE->isEnabled());  // until Check5 is ticked
  QVERIFY(!m->mnuSaveScatter->isEnabled());
  const long k = r.session.SampleCursor;
  QCOMPARE(m->Check3->text().toStdString(), r.session.FossilLabels(k));
  QCOMPARE(m->Label4->text(), QString("No. of analogues: %1").arg(r.session.AnalogueCount(k)));
  QVERIFY(r.dialogs.Messages.empty());
}

void TestFrmMAT::slider1LowersSlider3AndSlider3RaisesSlider1() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Slider3->setValue(12);
  QCOMPARE(m->Slider1->value(), 12);
  QCOMPARE(m->Label1->text(), QString("No.of analogues: 12-12"));
  m->Slider1->setValue(5);
  QCOMPARE(m->Slider3->value(), 5);
  QCOMPARE(m->Label1->text(), QString("No.of analogues: 5-5"));
  m->Slider1->setValue(0);
  QCOMPARE(m->Slider1->value(), 1);
  QCOMPARE(m->Slider3->value(), 1);
  // The search ran with the fixed count.
  for (long k = 1; k <= r.session.FossilSampleCount; ++k)
    QCOMPARE(r.session.AnalogueCount(k), Count{1});
}

void TestFrmMAT::slider2SetsThresholdAndRunsAgain() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  const Count before = r.session.AnalogueCount(r.Inner());
  m->Slider3->setValue(0);
  m->Slider2->setValue(1);
  // Reset's own DefineThreshold writes the raw value last.
  QCOMPARE(m->Label2->text(), QString("Threshold: 0.01"));
  QCOMPARE(m->Settings().AnalogueThreshold, 0.01);
  Count most = 0;
  for (long k = 1; k <= r.session.FossilSampleCount; ++k)
    most = std::max(most, r.session.AnalogueCount(k));
  QVERIFY(most < before || before == 0);
}

void TestFrmMAT::noAnaloguesPrintsThreeLinesAndRecovers() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Slider2->setValue(0);
  QVERIFY(m->Text1->text().isEmpty() && m->Text2->text().isEmpty());
  const Surface& p = r.P1();
  // The three lines stand at the left edge, one under the other.
  QVERIFY(Inked(p, p.ScaleLeft(), p.ScaleTop(), p.ScaleLeft() + p.ScaleWidth() / 2,
                p.ScaleTop() + p.ScaleHeight() / 10) > 30);
  QCOMPARE(r.dialogs.Messages.size(), std::size_t{0});
  m->Slider2->setValue(20);
  QVERIFY(!m->Text1->text().isEmpty());
  QVERIFY(r.session.ReconstructionOpen);
}

void TestFrmMAT::check2DisabledUnderEofValues() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Option1[1]->click();
  QVERIFY(!m->Check2->isEnabled());
  QVERIFY(!m->Option2[0]->isEnabled() && !m->Option2[1]->isEnabled());
  QVERIFY(m->Combo2->isEnabled());
  QVERIFY(m->Command7->isEnabled());
  QCOMPARE(m->Settings().Basis, AnalogueBasis::EofValues);
  const bool was = m->Check2->isChecked();
  QTest::mouseClick(m->Check2, Qt::LeftButton);
  QCOMPARE(m->Check2->isChecked(), was);
  m->Option1[0]->click();
  QVERIFY(m->Check2->isEnabled());
  QVERIFY(!m->Combo2->isEnabled());
  QVERIFY(!m->Command7->isEnabled());
  QTest::mouseClick(m->Check2, Qt::LeftButton);
  QCOMPARE(m->Check2->isChecked(), !was);
  QVERIFY(m->Option2[0]->isEnabled());
}

void TestFrmMAT::command3OpensPanelsAndResetClosesThem() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  const int narrow = m->width();
  m->Command3->click();
  QVERIFY(r.session.ErrorModelReady);
  QVERIFY(m->PanelsOpen());
  // Wider by the panels, as far as the screen lets it be.
  QVERIFY(m->width() > narrow);
  QVERIFY(m->width() <= narrow + m->Picture0->width());
  QVERIFY2(PanelsFault(m).isEmpty(), qPrintable(PanelsFault(m)));
  for (QWidget* w : std::initializer_list<QWidget*>{m->Picture2, m->Picture3, m->Slider7, m->Label7,
                                                    m->Frame6, m->Command4})
    QVERIFY2(w->isVisible(), qPrintable(w->objectName()));
  QVERIFY(!m->Command3->isEnabled());
  QVERIFY(m->mnuSaveScatter->isEnabled() && m->mnuSaveScatter2->isEnabled() &&
          m->mnuCopy2->isEnabled());
  QCOMPARE(m->Label7->text(),
           CorrelationOf(TestData("reconstruction/expected/scatter-SumSST-default.csv")));

  m->Check1->click();  // any setting: Reset
  QVERIFY(!r.session.ErrorModelReady);
  QVERIFY(!m->PanelsOpen());
  QCOMPARE(m->width(), narrow);
  QVERIFY(!m->Picture2->isVisible() && !m->Picture3->isVisible() && !m->Slider7->isVisible());
  QVERIFY(!m->mnuSaveScatter->isEnabled());
  QVERIFY(m->Command3->isEnabled());
  QVERIFY(r.session.ReconstructionOpen);
}

void TestFrmMAT::command3AfterResetRebuildsPanelsAtSameSizes() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Command3->click();
  QCoreApplication::processEvents();
  const QSize window = m->size();
  const QRect p2 = m->Picture2->geometry(), p3 = m->Picture3->geometry();
  const int frame5 = m->Frame5->width();
  m->Slider2->setValue(25);
  QCoreApplication::processEvents();
  QVERIFY(m->width() < window.width());
  m->Command3->click();
  QCoreApplication::processEvents();
  QCOMPARE(m->size(), window);
  QCOMPARE(m->Picture2->geometry(), p2);
  QCOMPARE(m->Picture3->geometry(), p3);
  QCOMPARE(m->Frame5->width(), frame5);
}

void TestFrmMAT::knownEstimateDrawnAtItsPosition() {
  Road r;
  r.Climate();
  r.mat->Slider6->setValue(1);  // the raw curve alone
  const long k = r.Inner();
  QVERIFY(k > 1);
  const double x = r.session.ReconValue(k, r.P()), y = CurvePosition(r.session, k);
  QVERIFY(Near(r.P1(), x, y, r.Curve(), 1));
  // Not anywhere: well beside it there is no curve at that height.
  const double off = x < (r.P1().ScaleLeft() + r.P1().ScaleWidth() / 2)
                         ? r.P1().ScaleLeft() + r.P1().ScaleWidth() * 0.97
                         : r.P1().ScaleLeft() + r.P1().ScaleWidth() * 0.03;
  QVERIFY(!Near(r.P1(), off, y, r.Curve(), 0));
}

void TestFrmMAT::outLineInSmoothCurveColour() {
  Road r;
  r.Climate();
  r.mat->Slider6->setValue(1);
  const long k = r.Inner();
  const Surface& p = r.P1();
  const double edge = p.ScaleLeft() + p.ScaleWidth() * 0.01;
  const double y = CurvePosition(r.session, k);
  QVERIFY(!Near(p, edge, y, r.Smooth(), 0));
  r.session.SampleIsOut(k) = 1;
  r.window->RedrawAll();  // as after the envelope test
  QVERIFY(Near(r.P1(), edge, y, r.Smooth(), 0));
  QVERIFY(Near(r.P1(), p.ScaleLeft() + p.ScaleWidth() * 0.99, y, r.Smooth(), 0));
}

void TestFrmMAT::errorBarsInGreyFollowCheck5() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Slider6->setValue(1);
  // A sample whose analogue range is wide on both sides of its estimate.
  long k = 0;
  double a = 0;
  const double w = r.P1().ScaleWidth();
  for (long i = 2; i < r.session.FossilSampleCount && !k; ++i) {
    const double v = r.session.ReconValue(i, 1);
    if (i == r.session.SampleCursor || v == kMissing) continue;
    if (v - r.session.ReconLow(i, 1) > w / 8 && r.session.ReconLow(i, 1) > r.P1().ScaleLeft()) {
      k = i;
      a = (v + r.session.ReconLow(i, 1)) / 2;
    }
  }
  QVERIFY(k > 0);
  const double y = CurvePosition(r.session, k);
  QVERIFY(!Near(r.P1(), a, y, kErrorBarGrey, 0));
  QVERIFY(!m->mnuSaveCurveVandE->isEnabled());
  m->Check5->click();
  QVERIFY(Near(r.P1(), a, y, kErrorBarGrey, 0));
  for (QAction* e : {m->mnuSaveCurveVandE, m->mnuSaveCurveAllVandE, m->mnuSaveCurve2VandE,
                     m->mnuSaveCurveAll2VandE})
    QVERIFY(e->isEnabled());
  m->Check5->click();
  QVERIFY(!Near(r.P1(), a, y, kErrorBarGrey, 0));
  QVERIFY(!m->mnuSaveCurveVandE->isEnabled());
}

void TestFrmMAT::scatterCircleAtEstimateAndObserved() {
  Road r;
  r.Climate();
  r.mat->Command3->click();
  const Surface& p = r.P2();
  const double low = r.mat->CurveSet().Low, high = r.mat->CurveSet().High;
  const double radius = std::fabs(high - low) / 67;
  long found = 0;
  for (long i = 1; i <= r.session.RefSiteCount && !found; ++i) {
    const double x = r.session.ReconRefValue(i, 1), y = r.session.ClimateData(i, 1);
    if (x > low + 2 * radius && x < high - 2 * radius && y > low + 2 * radius &&
        y < high - 2 * radius)
      found = i;
  }
  QVERIFY(found > 0);
  const double x = r.session.ReconRefValue(found, 1), y = r.session.ClimateData(found, 1);
  // The circle's rim, left and right of the point; y grows upwards.
  QVERIFY(Near(p, x - radius, y, r.Curve(), 1));
  QVERIFY(Near(p, x + radius, y, r.Curve(), 1));
  QVERIFY(p.ScaleHeight() < 0);
}

void TestFrmMAT::smoothingLevelOneDrawsNoSmoothing() {
  Road r;
  r.Climate();
  r.mat->Slider6->setValue(1);
  QCOMPARE(r.mat->Label6->text(), QString("Smoothing level: 1"));
  const Surface& p = r.P1();
  auto red = [&] {
    int n = 0;
    for (int y = 0; y < p.Height(); ++y)
      for (int x = 0; x < p.Width(); ++x)
        if (p.PixelAt(x, y) == r.Smooth()) ++n;
    return n;
  };
  QCOMPARE(red(), 0);
  r.mat->Slider6->setValue(4);
  QVERIFY(red() > 50);

  // The figure alone: level 1 leaves the smoothing arrays untouched.
  Core c({5, 6, 7, 8, 9});
  QVERIFY(DrawReconstructionCurve(
      c.s, 1,
      [&] {
        CurveSettings s = c.set;
        s.Smoothing = 1;
        return s;
      }(),
      c.pic));
  QVERIFY(!c.s.SmoothedValue.Allocated());
  QCOMPARE(c.RedPixels(), 0);
}

void TestFrmMAT::smoothingLongerThanCoreHasNoPoint() {
  Core c({5, 6, 7, 8});
  c.set.Smoothing = 5;
  QVERIFY(DrawReconstructionCurve(c.s, 1, c.set, c.pic));
  QCOMPARE(c.RedPixels(), 0);
  c.set.Smoothing = 4;  // exactly N: one point, standing alone, is drawn by no line
  QVERIFY(DrawReconstructionCurve(c.s, 1, c.set, c.pic));
  QCOMPARE(c.s.SmoothedValue(1), 6.5f);
}

void TestFrmMAT::missingEstimateLeavesGapOfLPoints() {
  std::vector<double> v(12, 10.0);
  for (std::size_t i = 0; i < v.size(); ++i) v[i] = 8 + static_cast<double>(i % 3);
  v[5] = kMissing;  // sample 6
  Core c(v);
  c.set.Smoothing = 3;
  QVERIFY(DrawReconstructionCurve(c.s, 1, c.set, c.pic));
  for (long i = 1; i <= 10; ++i)
    QCOMPARE(c.s.SmoothedValue(i) == static_cast<float>(kMissing), i >= 4 && i <= 6);
  // Points 3 and 7 (at 10 * 4 and 10 * 8) stand; nothing red is drawn between.
  QCOMPARE(c.RedBetween(42, 78), 0);
  QVERIFY(c.RedBetween(22, 38) > 0);
  QVERIFY(c.RedBetween(82, 98) > 0);
  // The raw curve has its own gap of the one sample.
  QVERIFY(!Near(c.pic, 9.5, 55, c.Curve(), 0));
}

void TestFrmMAT::isolatedSamplesAtTheEndsDrawNoPoint() {
  Core c({5, kMissing, 7, kMissing, 9});
  c.set.Smoothing = 1;
  QVERIFY(DrawReconstructionCurve(c.s, 1, c.set, c.pic));
  QVERIFY(Near(c.pic, 7, 30, c.Curve(), 0));
  QVERIFY(!Near(c.pic, 5, 10, c.Curve(), 1));
  QVERIFY(!Near(c.pic, 9, 50, c.Curve(), 1));
}

void TestFrmMAT::constantParameterGivesTwoLimitsAndZeroDrawsNothing() {
  Road r;
  // The example climate with a constant parameter and one that is all zero.
  QByteArray text = ReadAll(QString::fromStdString(Example("climate.csv")));
  QList<QByteArray> lines = text.split('\n');
  QByteArray out;
  for (int i = 0; i < lines.size(); ++i) {
    QByteArray line = lines[i].trimmed();
    if (line.isEmpty()) continue;
    out += line + (i == 0 ? ",Const,Zero" : ",12,0") + "\r\n";
  }
  r.Climate(r.Write("climate-constant.csv", out));
  frmMAT* m = r.mat;
  QCOMPARE(m->Combo1->count(), 5);
  m->Combo1->setCurrentIndex(3);
  emit m->Combo1->activated(3);
  QCOMPARE(r.session.CurrentParameter, Count{4});
  QCOMPARE(m->Text1->text(), QString("10"));
  QCOMPARE(m->Text2->text(), QString("15"));
  m->Slider6->setValue(1);
  QVERIFY(Near(r.P1(), 12, CurvePosition(r.session, r.Inner()), r.Curve(), 1));

  const QImage before = r.P1().Image();
  m->Combo1->setCurrentIndex(4);
  emit m->Combo1->activated(4);
  QCOMPARE(m->Text1->text(), QString("0"));
  QCOMPARE(m->Text2->text(), QString("0"));
  QCOMPARE(r.P1().Image(), before);  // nothing drawn
  QVERIFY(r.dialogs.Messages.empty());
}

void TestFrmMAT::selectionDragMovesDiagramSlider() {
  Road r;
  r.window->Command14->click();
  frmDiagram* d = r.window->DiagramWindow();
  r.Climate();
  frmMAT* m = r.mat;
  QVERIFY(m->Check3->isChecked());
  PictureBox* p = m->Picture1;
  const Surface& s = r.P1();
  auto pixel = [&](long k) {
    return s.ToPixel(s.ScaleLeft() + s.ScaleWidth() / 2, CurvePosition(r.session, k)) +
           QPointF(p->Origin());
  };
  auto send = [&](QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held) {
    QMouseEvent e(type, at, p->mapToGlobal(at), button, held, Qt::NoModifier);
    QCoreApplication::sendEvent(p, &e);
  };
  // Hovering on the line takes the sizing pointer; far from it, not.
  send(QEvent::MouseMove, pixel(r.session.FossilSampleCount), Qt::NoButton, Qt::NoButton);
  QVERIFY(p->cursor().shape() != Qt::SizeVerCursor);
  send(QEvent::MouseMove, pixel(1), Qt::NoButton, Qt::NoButton);
  QCOMPARE(p->cursor().shape(), Qt::SizeVerCursor);
  send(QEvent::MouseButtonPress, pixel(1), Qt::LeftButton, Qt::LeftButton);
  send(QEvent::MouseMove, pixel(5), Qt::NoButton, Qt::LeftButton);
  QCOMPARE(r.session.SampleCursor, Count{5});
  QCOMPARE(d->Slider1->value(), 5);
  send(QEvent::MouseButtonRelease, pixel(5), Qt::LeftButton, Qt::NoButton);
  QVERIFY(p->cursor().shape() != Qt::SizeVerCursor);
  QCOMPARE(m->Check3->text().toStdString(), r.session.FossilLabels(5));
  QVERIFY(Near(r.P1(), s.ScaleLeft() + s.ScaleWidth() * 0.02, CurvePosition(r.session, 5),
               r.Cursor(), 0));
  QVERIFY(!Near(r.P1(), s.ScaleLeft() + s.ScaleWidth() * 0.02, CurvePosition(r.session, 1),
                r.Cursor(), 0));

  // The diagram's slider moves the line back.
  d->Slider1->setValue(3);
  QCOMPARE(m->UpDown1->value(), 3);
  QVERIFY(Near(r.P1(), s.ScaleLeft() + s.ScaleWidth() * 0.02, CurvePosition(r.session, 3),
               r.Cursor(), 0));
}

void TestFrmMAT::upDownWrapsAndCheck3FollowsDiagram() {
  Road r;
  r.window->Command14->click();
  frmDiagram* d = r.window->DiagramWindow();
  r.Climate();
  frmMAT* m = r.mat;
  const long n = r.session.FossilSampleCount;
  m->UpDown1->setValue(static_cast<int>(n));
  QCOMPARE(r.session.SampleCursor, Count(n));
  m->UpDown1->stepBy(1);
  QCOMPARE(r.session.SampleCursor, Count{1});
  m->UpDown1->stepBy(-1);
  QCOMPARE(r.session.SampleCursor, Count(n));
  QCOMPARE(d->Slider1->value(), static_cast<int>(n));

  m->Check3->click();
  QVERIFY(!m->Check3->isChecked());
  QVERIFY(!d->Check1->isChecked());
  d->Check1->click();
  QVERIFY(m->Check3->isChecked());

  // Combo3 selects by label.
  const int index = m->Combo3->findText(QString::fromStdString(r.session.FossilLabels(4)));
  m->Combo3->setCurrentIndex(index);
  emit m->Combo3->activated(index);
  QCOMPARE(r.session.SampleCursor, Count{4});
}

void TestFrmMAT::colourChangeReachesCurve() {
  Road r;
  r.Climate();
  r.mat->Slider6->setValue(1);
  const long k = r.Inner();
  const double x = r.session.ReconValue(k, 1), y = CurvePosition(r.session, k);
  QVERIFY(Near(r.P1(), x, y, QColor(0, 0, 128), 1));
  r.window->mnuGrey->trigger();
  QVERIFY(Near(r.P1(), x, y, QColor(100, 100, 100), 1));
  QVERIFY(!Near(r.P1(), x, y, QColor(0, 0, 128), 1));
  r.mat->mnuColor->trigger();
  QVERIFY(r.window->ColorWindow()->isVisible());
}

void TestFrmMAT::failureEndsAtBoundary() {
  Road r;
  r.Climate();
  r.session.ReconValue.ReDim(1, 1);  // a result that no longer fits the core
  r.mat->Slider6->setValue(2);
  QCOMPARE(r.dialogs.Messages.size(), std::size_t{1});
  QCOMPARE(r.dialogs.Messages[0].Title, std::string("Error"));
  QCOMPARE(r.dialogs.Messages[0].Text, std::string("Subscript out of range"));
  QVERIFY(!BusyPointer::IsBusy());
  QVERIFY(!r.mat->ProgressBar1->isVisible());
  // Still usable: the next setting runs the search afresh.
  r.mat->Slider2->setValue(21);
  r.mat->Slider6->setValue(1);
  QCOMPARE(r.dialogs.Messages.size(), std::size_t{1});
  const long k = r.Inner();
  QVERIFY(Near(r.P1(), r.session.ReconValue(k, 1), CurvePosition(r.session, k), r.Curve(), 1));
}

// Away from the defaults, every file the window saves is the batch
// runner's file byte for byte; what the files hold is checked against the
// independent results in everySaveEntryMatchesIndependentResults.
void TestFrmMAT::windowSavesAreTheBatchRunnersBytes() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Slider2->setValue(35);
  m->Slider3->setValue(2);
  m->Check5->click();
  const QString out = r.folder.path() + "/batch";
  QVERIFY(Batch(out, {"--threshold", "0.35", "--min", "2", "--error-model"}));
  const std::pair<QAction*, QString> entries[] = {
      {m->mnuSaveCurveVOnly, "curve.csv"},
      {m->mnuSaveCurveVandE, "curve-with-error.csv"},
      {m->mnuSaveCurveAllVOnly, "curve-all.csv"},
      {m->mnuSaveCurveAllVandE, "curve-all-with-error.csv"},
      {m->mnuSaveDistAna2, "analogue-details.csv"},
      {m->mnuSaveCurve2VOnly, "curve.csv"},
      {m->mnuSaveCurve2VandE, "curve-with-error.csv"},
      {m->mnuSaveCurveAll2VOnly, "curve-all.csv"},
      {m->mnuSaveCurveAll2VandE, "curve-all-with-error.csv"},
      {m->mnuSaveDistAna, "analogue-details.csv"}};
  int n = 0;
  for (const auto& [entry, name] : entries) {
    QVERIFY2(entry->isEnabled(), qPrintable(entry->objectName()));
    const std::string path = r.Save(entry, QString("window-%1-%2").arg(n++).arg(name));
    const QByteArray mine = ReadAll(QString::fromStdString(path));
    QVERIFY2(!mine.isEmpty(), qPrintable(name));
    QVERIFY2(mine == ReadAll(out + "/" + name), qPrintable(entry->objectName()));
  }
  m->Command3->click();
  for (QAction* entry : {m->mnuSaveScatter, m->mnuSaveScatter2}) {
    const std::string path = r.Save(entry, QString("window-%1-scatter.csv").arg(n++));
    QVERIFY(ReadAll(QString::fromStdString(path)) == ReadAll(out + "/scatter-SumSST.csv"));
  }
  // A cancelled save writes nothing and says nothing.
  m->mnuSaveScatter->trigger();
  QVERIFY(r.dialogs.Messages.empty());
  QVERIFY(!r.window->ProgressBar1->isVisible());
}

void TestFrmMAT::unloadAndReopen() {
  Road r;
  r.Climate();
  r.window->Command8->setEnabled(false);
  r.mat->close();
  QVERIFY(!r.session.ReconstructionOpen);
  QVERIFY(!r.mat->mnuSaveCurveEntry->isEnabled());
  QVERIFY(r.window->Command8->isEnabled());
  r.window->Command8->click();
  // The climate stays: the window reconstructs at once on opening.
  QVERIFY(r.session.ReconstructionOpen);
  QVERIFY(!r.mat->Text1->text().isEmpty());
  QCOMPARE(r.mat->Label1->text(), QString("No. of analogs: 0-8"));
  QVERIFY(!r.mat->Command1->isEnabled());
}

void TestFrmMAT::quitClosesWindow() {
  Road r;
  r.Climate();
  QVERIFY(r.mat->isVisible());
  r.window->QuitProgram();
  QVERIFY(!r.mat->isVisible());
  QVERIFY(!r.session.ReconstructionOpen);
  QCOMPARE(r.ended, 1);
}

void TestFrmMAT::smoothingDrawnTwoPixelsWide() {
  // A constant core: the moving average is one upright line.
  Core c(std::vector<double>(8, 10.0));
  c.set.Smoothing = 2;
  QVERIFY(DrawReconstructionCurve(c.s, 1, c.set, c.pic));
  const int row = int(c.pic.ToPixel(0, 45).y());
  int red = 0;
  for (int x = 0; x < c.pic.Width(); ++x)
    if (c.pic.PixelAt(x, row) == c.Red()) ++red;
  QCOMPARE(red, 2);
  // The pen returns to one pixel for what follows.
  QCOMPARE(c.pic.DrawWidth(), 1);
}

void TestFrmMAT::envelopeRunRedrawsOutLines() {
  Road r;
  r.Climate();
  r.mat->Slider6->setValue(1);
  r.window->Slider1->setValue(0);  // the tightest envelope marks samples Out
  r.window->Command11->click();
  QVERIFY(r.session.EnvelopeDone);
  long out = 0;
  for (long k = 2; k <= r.session.FossilSampleCount && !out; ++k)
    if (r.session.SampleIsOut(k) && k != r.session.SampleCursor) out = k;
  QVERIFY(out > 0);
  const Surface& p = r.P1();
  QVERIFY(
      Near(p, p.ScaleLeft() + p.ScaleWidth() * 0.01, CurvePosition(r.session, out), r.Smooth(), 0));
}

void TestFrmMAT::samplePositionBoxFollowsSample() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  const long n = r.session.FossilSampleCount;
  m->UpDown1->setValue(static_cast<int>(n / 3));
  const int upper = m->Frame5->y();
  m->UpDown1->setValue(static_cast<int>(2 * n / 3));
  const int lower = m->Frame5->y();
  QVERIFY(lower > upper);
  // The box moves as the sample's position does, 60 twips less per picture.
  const Surface& p = r.P1();
  const double step = (CurvePosition(r.session, 2 * n / 3) - CurvePosition(r.session, n / 3)) *
                      (m->Picture1->height() * 15.0 - 60) / p.ScaleHeight() / 15;
  QVERIFY(std::abs((lower - upper) - step) <= 1.0);
  QCOMPARE(m->Check3->palette().color(QPalette::WindowText), QColor(0, 0, 0));
  r.session.SampleIsOut(2 * n / 3) = 1;
  m->UpDown1->setValue(static_cast<int>(n / 3));
  m->UpDown1->setValue(static_cast<int>(2 * n / 3));
  QCOMPARE(m->Check3->palette().color(QPalette::WindowText), QColor(200, 0, 0));
  QCOMPARE(m->Combo3->palette().color(QPalette::Text), r.Smooth());
}

void TestFrmMAT::eofBasisRunsTheSearchOnScores() {
  Road r;
  r.Climate();
  const long k = r.Inner();
  const double taxa = r.session.ReconValue(k, 1);
  const Count site = r.session.AnalogueSite(k, 1);
  r.mat->Option1[1]->click();
  QVERIFY(r.session.AnalogueSite(k, 1) != site || r.session.ReconValue(k, 1) != taxa);
  r.mat->Option1[0]->click();
  QCOMPARE(r.session.ReconValue(k, 1), taxa);
}

void TestFrmMAT::editedLimitsRedrawCurveAndScatter() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Command3->click();
  QTest::keyClicks(m->Text2, "0");  // "30" becomes "300"
  QCOMPARE(m->CurveSet().High, LenientParse(m->Text2->text().toStdString()));
  QCOMPARE(r.P1().ScaleWidth(), m->CurveSet().High - m->CurveSet().Low);
  QCOMPARE(r.P2().ScaleWidth(), m->CurveSet().High - m->CurveSet().Low);
  QVERIFY(m->ScaleEdited());
  QVERIFY(r.session.ErrorModelReady);
  // Equal limits draw nothing and say nothing.
  const QImage before = r.P1().Image();
  m->Text2->setText(m->Text1->text());
  QTest::keyClick(m->Text2, Qt::Key_Return);
  QCOMPARE(r.P1().Image(), before);
  QVERIFY(r.dialogs.Messages.empty());
}

void TestFrmMAT::changeParaKeepsErrorModel() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Command3->click();
  const double kept = r.session.ReconRefValue(3, 2);
  m->Combo1->setCurrentIndex(1);
  emit m->Combo1->activated(1);
  QCOMPARE(r.session.CurrentParameter, Count{2});
  QVERIFY(r.session.ErrorModelReady);
  QCOMPARE(r.session.ReconRefValue(3, 2), kept);
  QCOMPARE(m->Label7->text(),
           CorrelationOf(TestData("reconstruction/expected/scatter-WinSST-default.csv")));
  const ScaleLimits l = CurveLimits(r.session, 2);
  QCOMPARE(m->Text1->text().toStdString(), FormatGeneral(l.Low));
  QCOMPARE(r.P2().ScaleLeft(), l.Low);
}

void TestFrmMAT::slider7ResizesPicturesAndHeightHasMinimum() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Command3->click();
  m->Slider7->setValue(3);
  QCOMPARE(m->Picture1->width(), 3 * 2055 / 10 / 15);
  QCOMPARE(m->Picture2->width(), m->Picture2->height());
  QCOMPARE(m->Picture3->width(), m->Picture1->width());
  QCOMPARE(r.P1().Width(), m->Picture1->width());
  m->Slider7->setValue(0);
  QCOMPARE(m->Slider7->value(), 1);
  const int width = m->width();
  m->resize(width, 200);
  QCOMPARE(m->height(), 300);  // 4500 twips
  QCOMPARE(m->width(), width);
  m->resize(width, 700);
  QCOMPARE(m->Picture1->height(), 700 - 161);
  QCOMPARE(r.P1().Height(), 700 - 161);
}

void TestFrmMAT::stateButtonsTellNoMatrices() {
  Road r;
  r.Climate();
  r.mat->Command5->click();
  QCOMPARE(r.mat->Command5->text(), QString("Hist: No"));
  r.mat->Command2->click();
  QCOMPARE(r.mat->Command2->text(), QString("Calib: No"));
}

void TestFrmMAT::climateFromElsewhereIsTakenUpAtActivation() {
  Road r;
  r.mat->close();
  // Climate already in the session, as the interpolation tool leaves it.
  QVERIFY(Inport_climate_data(r.session, Example("climate.csv"), r.dialogs).Ok);
  r.session.CurrentParameter = 2;
  r.session.EnhanceUsed = true;
  r.window->Command8->click();
  QVERIFY(r.session.ReconstructionOpen);
  QCOMPARE(r.mat->Combo1->currentText(), QString("WinSST"));
  QVERIFY(!r.mat->Command1->isEnabled());
  QVERIFY(!r.mat->Check2->isEnabled());
  QVERIFY(!r.session.EstObsImported);
  // The settings are usable as after a file read here.
  for (QWidget* w : std::initializer_list<QWidget*>{r.mat->Slider1, r.mat->Slider2, r.mat->Slider3,
                                                    r.mat->Check1, r.mat->Option1[0]})
    QVERIFY2(w->isEnabled(), qPrintable(w->objectName()));
  r.mat->Slider1->setValue(3);
  QCOMPARE(r.session.AnalogueCount(r.Inner()), Count{3});
}

void TestFrmMAT::mainCommand8OpensWindowAfterProjection() {
  uitest::MainFixture f;
  QVERIFY(!f.window->Command8->isEnabled());
  f.ImportReference(Example("reference.csv"));
  f.Confirm();
  QVERIFY(!f.window->Command8->isEnabled());
  f.ImportFossil(Example("fossil.csv"));
  QVERIFY(f.session.ProjectionDone);
  QVERIFY(f.window->Command8->isEnabled());
  f.window->Command8->click();
  QVERIFY(f.window->MATWindow()->isVisible());
  QVERIFY(f.window->MATWindow()->Loaded());
}

void TestFrmMAT::scatterShowsSelectedEstimate() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->UpDown1->setValue(static_cast<int>(r.Inner()));
  m->Command3->click();
  const Surface& p = r.P2();
  const double x = r.session.ReconValue(r.Inner(), 1);
  const double low = m->CurveSet().Low, high = m->CurveSet().High;
  const double mid = (low + high) / 2;
  QVERIFY(Near(p, x, mid, r.Cursor(), 0));
  // Another sample moves the line over the stored circles.
  const long other = r.Inner() + 1;
  m->UpDown1->setValue(static_cast<int>(other));
  const double moved = r.session.ReconValue(other, 1);
  QVERIFY(std::abs(p.ToPixel(moved, mid).x() - p.ToPixel(x, mid).x()) >= 2);
  QVERIFY(Near(p, moved, mid, r.Cursor(), 0));
  QVERIFY(!Near(p, x, mid, r.Cursor(), 0));
  // With the selection line switched off, no line.
  m->Check3->click();
  QVERIFY(!Near(p, moved, mid, r.Cursor(), 0));
}

void TestFrmMAT::enhancedDataShowEnhancementOnlyUnderEofValues() {
  Road r;
  // As after a pre-treatment with "Enhance minor taxa" and "Log".
  r.session.PreTreatment.Enhance = true;
  r.session.PreTreatment.SquareRoot = false;
  r.session.EnhanceUsed = true;
  r.Climate();
  frmMAT* m = r.mat;
  // At load the box is unticked; the enhanced data disable it.
  QVERIFY(!m->Check2->isEnabled());
  QVERIFY(!m->Check2->isChecked());
  QCOMPARE(m->Settings().Enhance, AnalogueEnhance::None);
  m->Option1[1]->click();
  QVERIFY(m->Check2->isChecked());
  QVERIFY(m->Option2[1]->isChecked());
  QVERIFY(!m->Check2->isEnabled());
  QVERIFY(!m->Option2[0]->isEnabled() && !m->Option2[1]->isEnabled());
  QCOMPARE(m->Settings().Enhance, AnalogueEnhance::Log);
  // Back on the proportions: the dialog's choice stands and can be changed.
  m->Option1[0]->click();
  QVERIFY(m->Check2->isChecked());
  QVERIFY(m->Option2[1]->isChecked());
  QVERIFY(m->Check2->isEnabled());
  QVERIFY(m->Option2[0]->isEnabled() && m->Option2[1]->isEnabled());
  QCOMPARE(m->Settings().Enhance, AnalogueEnhance::Log);
  m->Check2->click();
  QVERIFY(!m->Option2[0]->isEnabled() && !m->Option2[1]->isEnabled());
  QCOMPARE(m->Settings().Enhance, AnalogueEnhance::None);
}

void TestFrmMAT::taxaProportionsAfterEnhancedPreTreatmentMatchIndependentCurve() {
  uitest::MainFixture f;
  f.ImportReference(Example("reference.csv"));
  f.window->CorrelVar()->Check1->click();  // "Enhance minor taxa", square root
  f.Confirm();
  f.ImportFossil(Example("fossil.csv"));
  QVERIFY(f.session.EnhanceUsed);
  f.window->Command8->click();
  frmMAT* m = f.window->MATWindow();
  f.dialogs.OpenNames.push_back(Example("climate.csv"));
  m->Command1->click();
  m->Option1[1]->click();
  m->Option1[0]->click();
  QVERIFY(m->Check2->isChecked() && m->Option2[0]->isChecked());
  m->Slider3->setValue(8);  // eight analogues, no fewer
  QCOMPARE(m->Slider1->value(), 8);
  m->Check5->click();
  const QString path = f.folder.path() + "/curves.csv";
  f.dialogs.SaveNames.push_back(path.toStdString());
  m->mnuSaveCurveAllVandE->trigger();
  const QString diff =
      Compare(Records(path),
              Records(TestData("reconstruction/expected/curve-all-with-error-sqrt-k8.csv")), 1e-9);
  QVERIFY2(diff.isEmpty(), qPrintable(diff));
}

void TestFrmMAT::analogueDetailsFromClimateFileNameTheSites() {
  Road r;
  r.Climate();
  const std::string path = r.Save(r.mat->mnuSaveDistAna2, "details.csv");
  const std::vector<Record> mine = Records(QString::fromStdString(path));
  // Two records per sample: the analogues' names, then their distances.
  QVERIFY(mine.size() > 2);
  QCOMPARE(mine[1][1].Text, QString("Analogue site name"));
  QCOMPARE(mine[2][1].Text, QString("Squared chord distance"));
  const QString diff =
      Compare(mine, Records(TestData("reconstruction/expected/analogue-details-default.csv")));
  QVERIFY2(diff.isEmpty(), qPrintable(diff));
}

void TestFrmMAT::analogueDetailsAfterInterpolationGiveFiveRecords() {
  Road r;
  r.mat->Command8->click();
  frmLuvane* lv = r.mat->LuvaneWindow();
  const QString stations = TestData("interpolation/stations.csv");
  const QString targets = TestData("interpolation/targets.csv");
  r.dialogs.OpenNames.push_back(stations.toStdString());
  lv->Command0->click();
  r.dialogs.OpenNames.push_back(targets.toStdString());
  lv->Command2->click();
  lv->Command3->click();
  lv->Command1->click();  // "Return to Varnoth"
  QCoreApplication::processEvents();
  QVERIFY(r.session.SiteInfoLoaded);
  QVERIFY(r.session.ReconstructionOpen);
  QVERIFY(r.mat->mnuSaveDistAna->isEnabled());
  const std::string path = r.Save(r.mat->mnuSaveDistAna, "details.csv");
  const std::vector<Record> mine = Records(QString::fromStdString(path));

  // The sites' positions as the target table gives them.
  std::map<QString, std::array<double, 3>> place;
  for (const Record& row : Records(targets))
    if (row.size() >= 4 && !row[1].Quoted && row[1].Text.toDouble() != 0)
      place[row[0].Text] = {row[1].Text.toDouble(), row[2].Text.toDouble(), row[3].Text.toDouble()};
  QVERIFY(place.size() > 50);

  // Every sample in five records: its label, what the record holds, then
  // one field per analogue, nearest first.
  const long n = r.session.FossilSampleCount;
  QCOMPARE(mine.size(), std::size_t(1 + 5 * n));
  QCOMPARE(mine[0][0].Text, QString("Depth"));
  QCOMPARE(mine[0][1].Text, QString("Parameter"));
  const QString kinds[] = {"Analogue site name", "Longitude", "Latitude", "Altitude",
                           "Squared chord distance"};
  for (long k = 0; k < n; ++k) {
    const Record& names = mine[std::size_t(1 + 5 * k)];
    QCOMPARE(names[0].Text, QString::fromStdString(r.session.FossilLabels(k + 1)));
    for (int x = 0; x < 5; ++x) {
      const Record& row = mine[std::size_t(1 + 5 * k + x)];
      QCOMPARE(row[0].Text, names[0].Text);
      QCOMPARE(row[1].Text, kinds[x]);
      QCOMPARE(row.size(), names.size());
    }
    QVERIFY(names.size() > 2);
    double last = 0;
    for (std::size_t a = 2; a < names.size(); ++a) {
      const Field& site = names[a];
      QVERIFY(site.Quoted);
      QVERIFY2(place.count(site.Text), qPrintable(site.Text));
      for (int c = 0; c < 3; ++c) {
        const Field& v = mine[std::size_t(2 + 5 * k + c)][a];
        QVERIFY(!v.Quoted);
        QVERIFY2(std::abs(v.Text.toDouble() - place[site.Text][std::size_t(c)]) < 1e-4,
                 qPrintable(site.Text + " " + kinds[c + 1] + " " + v.Text));
      }
      const Field& d = mine[std::size_t(5 + 5 * k)][a];
      QVERIFY(!d.Quoted && d.Text.toDouble() >= last);
      last = d.Text.toDouble();
    }
  }
}

void TestFrmMAT::returnShowsEveryPanelInsideWindowAndScreen() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  const int narrow = m->width();
  m->Command3->click();
  QCoreApplication::processEvents();
  QVERIFY2(PanelsFault(m).isEmpty(), qPrintable(PanelsFault(m)));
  r.Returned();
  QVERIFY(m->CalibReady());
  for (QWidget* w : std::initializer_list<QWidget*>{m->Picture1, m->Picture2, m->Picture3,
                                                    m->Picture4, m->Label7})
    QVERIFY2(w->isVisible(), qPrintable(w->objectName()));
  QVERIFY2(PanelsFault(m).isEmpty(), qPrintable(PanelsFault(m)));
  // The matrix is drawn at the picture's own size, not only placed.
  QCOMPARE(r.P4().Width(), m->Picture4->width());
  QVERIFY(Inked(r.P4(), 25, 225, 225, 25) > 100);
  // The scatter's label is not hidden under a picture.
  for (PictureBox* p : {m->Picture2, m->Picture3, m->Picture4})
    QVERIFY2(!OnScreen(p).intersects(OnScreen(m->Label7)), qPrintable(p->objectName()));
  m->Command4->click();
  QVERIFY(m->HistReady());
  QVERIFY2(PanelsFault(m).isEmpty(), qPrintable(PanelsFault(m)));
  QVERIFY(m->Picture4->isVisible());
  // A new setting closes the panels: the window is as narrow as before.
  m->Check1->click();
  QVERIFY(!m->Picture4->isVisible() && !m->Picture2->isVisible());
  QCOMPARE(m->width(), narrow);
  QVERIFY2(PanelsFault(m).isEmpty(), qPrintable(PanelsFault(m)));
}

void TestFrmMAT::shortWindowStillShowsEveryPanel() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->resize(m->width(), 300);  // the least height: no room under the scatter
  QCoreApplication::processEvents();
  r.Returned();
  QVERIFY(m->Picture4->isVisible());
  // Under the scatter where the height holds it, else beside the histogram.
  QVERIFY2(PanelsFault(m).isEmpty(), qPrintable(PanelsFault(m)));
  QVERIFY(OnScreen(m->Picture4).left() > OnScreen(m->Picture3).right() ||
          OnScreen(m->Picture4).top() > OnScreen(m->Label7).bottom());
}

void TestFrmMAT::matrixAndScatterShowSelectedEstimate() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  const long k = r.Inner();
  m->UpDown1->setValue(static_cast<int>(k));
  r.Returned();
  QVERIFY(m->Picture4->isVisible());
  const double low = m->CurveSet().Low, high = m->CurveSet().High;
  auto bin = [&](long sample) {
    return 25 + (r.session.ReconValue(sample, 1) - low) / (high - low) * 200;
  };
  // The line stands over the matrix even with the selection line off.
  m->Check3->click();
  QVERIFY(!m->Check3->isChecked());
  for (double y : {40.0, 125.0, 210.0})
    QVERIFY2(Near(r.P4(), bin(k), y, r.Cursor(), 0), qPrintable(QString::number(y)));
  const double mid = (low + high) / 2;
  QVERIFY(Near(r.P2(), r.session.ReconValue(k, 1), mid, r.Cursor(), 0));
  // Another sample moves it on both pictures.
  long other = 0;
  for (long i = 1; i <= r.session.FossilSampleCount && !other; ++i)
    if (r.session.ReconValue(i, 1) != kMissing &&
        std::abs(r.P4().ToPixel(bin(i), 125).x() - r.P4().ToPixel(bin(k), 125).x()) >= 3)
      other = i;
  QVERIFY(other > 0);
  m->UpDown1->setValue(static_cast<int>(other));
  QVERIFY(Near(r.P4(), bin(other), 125, r.Cursor(), 0));
  QVERIFY(!Near(r.P4(), bin(k), 125, r.Cursor(), 0));
  QVERIFY(Near(r.P2(), r.session.ReconValue(other, 1), mid, r.Cursor(), 0));
  // The matrix's own redraw keeps it.
  m->Option4[1]->click();
  QVERIFY(Near(r.P4(), bin(other), 125, r.Cursor(), 0));
}

void TestFrmMAT::basisSwitchDropsMatricesOfTheOldScale() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  // The user widens the axis; the matrices are made on that scale.
  m->Text2->selectAll();
  QTest::keyClicks(m->Text2, "31");
  QCOMPARE(m->Text2->text(), QString("31"));
  r.Returned();
  m->Command4->click();
  QVERIFY(m->CalibReady() && m->HistReady());
  const QString low = m->Text1->text(), high = m->Text2->text();
  m->Option1[1]->click();
  // The search writes its own limits, which drop what the old scale made.
  QVERIFY(m->Text1->text() != low || m->Text2->text() != high);
  QVERIFY(!m->CalibReady());
  QVERIFY(!m->HistReady());
  QVERIFY(!m->Picture4->isVisible());
  for (QAction* a : {m->mnuSaveOstrel, m->mnuSaveOstrel2, m->mnuCopy4, m->mnuSaveTamsek,
                     m->mnuSaveTamsek2, m->mnuCopy3})
    QVERIFY2(!a->isEnabled(), qPrintable(a->objectName()));
  QVERIFY(m->Command6->isEnabled());
  QVERIFY(r.session.ErrorModelReady);
}

void TestFrmMAT::option1RunsTheSearchWithTheThresholdAsDefined() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Check2->click();  // square root: the threshold becomes 0.2^0.5
  QVERIFY(std::abs(m->Settings().AnalogueThreshold - std::sqrt(0.2)) < 1e-15);
  const QString label = m->Label2->text();
  m->Option1[1]->click();  // takes the dialog's choice: no enhancement
  QVERIFY(!m->Check2->isChecked());
  QVERIFY(std::abs(m->Settings().AnalogueThreshold - std::sqrt(0.2)) < 1e-15);
  QCOMPARE(m->Label2->text(), label);
  m->Option1[0]->click();
  QVERIFY(std::abs(m->Settings().AnalogueThreshold - std::sqrt(0.2)) < 1e-15);
  QCOMPARE(m->Label2->text(), label);
}

void TestFrmMAT::reopeningReturnsControlsToLoadState() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Slider1->setValue(5);
  m->Slider3->setValue(2);
  m->Slider6->setValue(6);
  m->Check1->click();
  m->Check3->click();
  m->Check5->click();
  m->Command3->click();
  m->Slider5->setValue(150);
  m->Command2->click();
  m->Command5->click();
  QCOMPARE(m->Command2->text(), QString("Calib: No"));
  m->close();
  r.window->Command8->click();
  QCOMPARE(m->Slider1->value(), 8);
  QCOMPARE(m->Slider3->value(), 0);
  QCOMPARE(m->Slider5->value(), 100);
  QCOMPARE(m->ZEnhancement(), 1.0);
  QCOMPARE(m->Slider6->value(), 3);
  QCOMPARE(m->Label6->text(), QString("Smoothing level: 3"));
  QVERIFY(!m->Check1->isChecked());
  QVERIFY(m->Check3->isChecked());
  QVERIFY(!m->Check5->isChecked());
  QCOMPARE(m->Command2->text(), QString("Calib"));
  QCOMPARE(m->Command5->text(), QString("Hist"));
  QCOMPARE(m->Settings().MaxAnalogues, Count{8});
  QCOMPARE(m->Settings().MinAnalogues, Count{0});
  QVERIFY(!m->Settings().InverseWeighting);
  // Check5's save entries follow its tick, and only it.
  for (QAction* a : {m->mnuSaveCurveVandE, m->mnuSaveCurveAllVandE, m->mnuSaveCurve2VandE,
                     m->mnuSaveCurveAll2VandE})
    QVERIFY2(!a->isEnabled(), qPrintable(a->objectName()));
  m->Check5->click();
  for (QAction* a : {m->mnuSaveCurveVandE, m->mnuSaveCurveAllVandE, m->mnuSaveCurve2VandE,
                     m->mnuSaveCurveAll2VandE})
    QVERIFY2(a->isEnabled(), qPrintable(a->objectName()));
}

void TestFrmMAT::redrawAllAndRampChangeRecolourBothMatrices() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  r.Returned();
  m->Command4->click();
  const QImage matrix = r.P4().Image().copy();
  const QImage hist = m->Picture3->surface().Image().copy();
  // The grey preset redraws everything.
  r.window->mnuGrey->trigger();
  QVERIFY(r.P4().Image() != matrix);
  QVERIFY(m->Picture3->surface().Image() != hist);
  r.window->mnuColor->trigger();
  QVERIFY(r.P4().Image() == matrix);
  // A ramp edited in the colour window: the next activation redraws.
  for (int ch = 0; ch < 3; ++ch)
    for (int b = 0; b < 4; ++b) r.colours.Break(ch, b) = r.colours.Break(0, b);
  r.colours.PaletteChanged = true;
  m->Open();
  QVERIFY(r.P4().Image() != matrix);
  QVERIFY(!r.colours.PaletteChanged);
}

void TestFrmMAT::emptyEndSamplesPutHistogramOnCurveScale() {
  uitest::MainFixture f;
  f.ImportReference(Example("reference.csv"));
  f.Confirm();
  f.ImportFossil(FossilWithEmpty(f, {1, 110}));
  QVERIFY(f.session.FossilEmptySample(1) && f.session.FossilEmptySample(110));
  f.window->Command8->click();
  frmMAT* m = f.window->MATWindow();
  f.dialogs.OpenNames.push_back(Example("climate.csv"));
  m->Command1->click();
  m->Command3->click();
  const Surface& p1 = m->Picture1->surface();
  const Surface& p3 = m->Picture3->surface();
  QCOMPARE(p1.ScaleTop(), 10.0);
  QCOMPARE(p1.ScaleHeight(), 109 * 10.0);
  QCOMPARE(p3.ScaleTop(), p1.ScaleTop());
  QCOMPARE(p3.ScaleHeight(), p1.ScaleHeight());
}

void TestFrmMAT::combo3ShowsAnEmptySelectedSample() {
  uitest::MainFixture f;
  f.ImportReference(Example("reference.csv"));
  f.Confirm();
  f.ImportFossil(FossilWithEmpty(f, {5}));
  QVERIFY(f.session.FossilEmptySample(5));
  f.window->Command8->click();
  frmMAT* m = f.window->MATWindow();
  f.dialogs.OpenNames.push_back(Example("climate.csv"));
  m->Command1->click();
  QCOMPARE(m->Combo3->count(), 109);  // the list holds the samples with data
  m->UpDown1->setValue(5);
  QCOMPARE(f.session.SampleCursor, Count{5});
  const QString label = QString::fromStdString(f.session.FossilLabels(5));
  QCOMPARE(m->Check3->text(), label);
  QCOMPARE(m->Combo3->currentText(), label);
  QVERIFY(m->Label4->text().isEmpty());
  m->UpDown1->setValue(6);
  QCOMPARE(m->Combo3->currentText(), QString::fromStdString(f.session.FossilLabels(6)));
}

void TestFrmMAT::matrixFilesSayNoEnhancementAfterCheck2Off() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Check2->click();
  QCOMPARE(m->Settings().Enhance, AnalogueEnhance::SquareRoot);
  m->Check2->click();
  QVERIFY(!m->Check2->isChecked());
  r.Returned();
  m->Command4->click();
  const std::string ostrel = r.Save(m->mnuSaveOstrel, "ostrel.csv");
  const std::string tamsek = r.Save(m->mnuSaveTamsek, "tamsek.csv");
  for (const std::string& path : {ostrel, tamsek}) {
    const std::vector<Record> rows = Records(QString::fromStdString(path));
    QCOMPARE(Value(rows, "Enhancing minor taxa: "), QString("N/A"));
    QCOMPARE(Value(rows, "Inversed weighting: "), QString("N/A"));
  }
}

// Every save entry of the curves, the analogues and the scatter, from the
// menu and from the pictures, read back and set against the independent
// results at the window's defaults. The files of one parameter or without
// the errors are the columns of the independent file of all parameters.
void TestFrmMAT::everySaveEntryMatchesIndependentResults() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Check5->click();
  const std::vector<Record> all =
      Records(TestData("reconstruction/expected/curve-all-with-error-default.csv"));
  // Depth, then from, value and to for SumSST, WinSST and Salinity, then the
  // number of analogues.
  QCOMPARE(all[0].size(), std::size_t(11));
  QCOMPARE(all[0][2].Text, QString("SumSST"));
  auto columns = [&all](std::initializer_list<std::size_t> picked) {
    std::vector<Record> out;
    for (const Record& row : all) {
      Record kept;
      for (std::size_t c : picked) kept.push_back(row[c]);
      out.push_back(kept);
    }
    return out;
  };
  const std::vector<Record> curve = columns({0, 2});
  std::vector<Record> curveWithError = columns({0, 1, 2, 3, 10});
  curveWithError[0][1].Text = "Error (from)";
  curveWithError[0][3].Text = "Error (to)";
  const std::vector<Record> curveAll = columns({0, 2, 5, 8});
  const std::vector<Record> details =
      Records(TestData("reconstruction/expected/analogue-details-default.csv"));
  const std::pair<QAction*, const std::vector<Record>*> saves[] = {
      {m->mnuSaveCurveVOnly, &curve},          {m->mnuSaveCurve2VOnly, &curve},
      {m->mnuSaveCurveVandE, &curveWithError}, {m->mnuSaveCurve2VandE, &curveWithError},
      {m->mnuSaveCurveAllVOnly, &curveAll},    {m->mnuSaveCurveAll2VOnly, &curveAll},
      {m->mnuSaveCurveAllVandE, &all},         {m->mnuSaveCurveAll2VandE, &all},
      {m->mnuSaveDistAna2, &details},          {m->mnuSaveDistAna, &details}};
  for (const auto& [entry, expected] : saves) {
    QVERIFY2(entry->isEnabled(), qPrintable(entry->objectName()));
    const std::string path = r.Save(entry, entry->objectName() + ".csv");
    const QString diff = Compare(Records(QString::fromStdString(path)), *expected, 1e-9);
    QVERIFY2(diff.isEmpty(), qPrintable(entry->objectName() + ": " + diff));
  }
  m->Command3->click();
  const std::vector<Record> scatter =
      Records(TestData("reconstruction/expected/scatter-SumSST-default.csv"));
  for (QAction* entry : {m->mnuSaveScatter, m->mnuSaveScatter2}) {
    const std::string path = r.Save(entry, entry->objectName() + ".csv");
    const QString diff = Compare(Records(QString::fromStdString(path)), scatter, 1e-9);
    QVERIFY2(diff.isEmpty(), qPrintable(entry->objectName() + ": " + diff));
  }
}

void TestFrmMAT::correlationLabelReadsIndependentR() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Command3->click();
  QCOMPARE(m->Label7->text(),
           CorrelationOf(TestData("reconstruction/expected/scatter-SumSST-default.csv")));
  m->Combo1->setCurrentIndex(1);
  emit m->Combo1->activated(1);
  QCOMPARE(m->Label7->text(),
           CorrelationOf(TestData("reconstruction/expected/scatter-WinSST-default.csv")));
}

void TestFrmMAT::ostrelAndTamsekReadBack() {
  Road r;
  r.Climate();
  frmMAT* m = r.mat;
  m->Check2->click();  // square root, as the independent run
  r.Returned();
  m->Command4->click();
  const std::vector<Record> ostrel =
      Records(QString::fromStdString(r.Save(m->mnuSaveOstrel, "o.csv")));
  std::vector<Record> expected = Records(TestData("reconstruction/expected/ostrel-sqrt.csv"));
  // The clock and the paths differ by nature.
  QString diff = Compare(WithoutClockAndPaths(ostrel), WithoutClockAndPaths(expected));
  QVERIFY2(diff.isEmpty(), qPrintable(diff));

  // The histogram matrix: its header, its bins, its depths, its cells.
  const std::vector<Record> tamsek =
      Records(QString::fromStdString(r.Save(m->mnuSaveTamsek2, "t.csv")));
  QCOMPARE(tamsek[0][0].Text, QString("Varnoth 2.0 output file"));
  QCOMPARE(Value(tamsek, "Similarity index: "), QString("Taxa-based"));
  QCOMPARE(Value(tamsek, "No. of analogues: "), QString("0-8"));
  QCOMPARE(Value(tamsek, "Threshold: "), QString("0.2"));
  QCOMPARE(Value(tamsek, "Enhancing minor taxa: "), QString("Square root"));
  QCOMPARE(Value(tamsek, "Horizontal resolution: "), QString("200"));
  QCOMPARE(Value(tamsek, "Smoothed levels"), QString("3"));
  QCOMPARE(Value(tamsek, "Parameter"), QString("SumSST"));
  QCOMPARE(Value(tamsek, "Confidence coefficient1 (%): "), QString("68.2"));
  const int rows = Value(tamsek, "Vertical resolution: ").toInt();
  QCOMPARE(rows, int(m->Hist().HistColumns));
  QVERIFY(rows > 10);
  std::size_t head = 0;
  while (head < tamsek.size() && !(tamsek[head][0].Quoted && tamsek[head][0].Text.isEmpty()))
    ++head;
  QVERIFY(head < tamsek.size());
  const Record& bins = tamsek[head];
  QCOMPARE(bins.size(), std::size_t(202));
  const double low = m->Text1->text().toDouble(), high = m->Text2->text().toDouble();
  for (int i = 0; i <= 200; ++i)
    QVERIFY(std::abs(bins[std::size_t(i + 1)].Text.toDouble() - (low + i * (high - low) / 200)) <
            1e-4);
  QCOMPARE(tamsek.size(), head + 1 + std::size_t(rows + 1));
  const double first = 0, last = 1090;  // the example core's top and bottom depths
  int packed = 0;
  for (int row = 0; row <= rows; ++row) {
    const Record& line = tamsek[head + 1 + std::size_t(row)];
    QCOMPARE(line.size(), std::size_t(202));
    const double depth = std::round(((rows - row) * first + row * last) / rows * 10000) / 10000;
    QVERIFY2(std::abs(line[0].Text.toDouble() - depth) < 1e-6, qPrintable(line[0].Text));
    for (std::size_t c = 1; c < line.size(); ++c) {
      const double v = std::abs(line[c].Text.toDouble());
      QVERIFY(v < 4);
      if (v >= 1) ++packed;
    }
  }
  QVERIFY(packed > rows);  // most rows hold an interval
}

QTEST_MAIN(TestFrmMAT)
#include "tst_frmMAT.moc"
