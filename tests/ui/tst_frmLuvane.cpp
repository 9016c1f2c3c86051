// The interpolation tool driven by its control names from the
// reconstruction window: the start state, both imports with their refusals,
// the map with its coast, sites, hover names and reach circle, the
// magnifier, the accuracy scatter, the hand-back, the analogues ringed on
// the map, and the climate against the batch runner's for the same files.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <cmath>
#include <vector>

#include "UiSupport.h"
#include "app/shots/StationTables.h"
#include "interpolation/Interpolation.h"
#include "presentation/MapFigure.h"
#include "state/Format.h"
#include "ui/PictureBox.h"
#include "ui/WindowPlacement.h"
#include "ui/frmCalib.h"
#include "ui/frmLuvane.h"
#include "ui/frmLuvaneCorrel.h"
#include "ui/frmLuvaneHelp.h"
#include "ui/frmLuvaneMag.h"
#include "ui/frmMAT.h"

using namespace varnoth;
using varnoth::uitest::BatchOnExamples;
using varnoth::uitest::Example;
using varnoth::uitest::Inked;
using varnoth::uitest::Near;
using varnoth::uitest::ReadAll;

namespace {

const QColor kGreen(0, 255, 0), kYellow(255, 255, 0), kRed(255, 0, 0), kGrey(126, 126, 126),
    kBlue(0, 0, 255), kNoData(200, 200, 200);

// The example road up to the open interpolation tool.
struct Tool : uitest::MainFixture {
  frmMAT* mat = nullptr;
  frmLuvane* lv = nullptr;
  std::string stations, targets;
  std::vector<demo::Site> sites;

  Tool() {
    MainFixture::Road();
    window->Command8->click();
    mat = window->MATWindow();
    mat->Command8->click();
    lv = mat->LuvaneWindow();
    QCoreApplication::processEvents();
    std::vector<std::string> names;
    for (long i = 1; i <= session.RefSiteCount; ++i) names.push_back(session.RefSiteNames(i));
    sites = demo::TargetSites(names);
    stations = Write("stations.csv", QByteArray::fromStdString(demo::StationTable(300)));
    targets = Write("targets.csv", QByteArray::fromStdString(demo::TargetTable(sites)));
  }
  Surface& Map() { return lv->Picture1->surface(); }
  void ImportStations(const std::string& path) {
    dialogs.OpenNames.push_back(path);
    lv->Command0->click();
  }
  void ImportTargets(const std::string& path) {
    dialogs.OpenNames.push_back(path);
    lv->Command2->click();
  }
  void BothFiles() {
    ImportStations(stations);
    ImportTargets(targets);
  }
  // The pointer moved over the map to (lon, lat), as the mouse does it.
  void Hover(double lon, double lat) {
    const QPointF px = Map().ToPixel(lon, lat) + QPointF(lv->Picture1->Origin());
    QMouseEvent move(QEvent::MouseMove, px, lv->Picture1->mapToGlobal(px), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(lv->Picture1, &move);
  }
  void Click(double lon, double lat) {
    const QPointF px = Map().ToPixel(lon, lat) + QPointF(lv->Picture1->Origin());
    QTest::mouseClick(lv->Picture1, Qt::LeftButton, Qt::NoModifier, px.toPoint());
  }
};

// The batch runner on the example data and the same two files.
bool Batch(const QString& out, const std::string& stations, const std::string& targets) {
  return BatchOnExamples({"--stations", QString::fromStdString(stations), "--targets",
                          QString::fromStdString(targets), "--out", out});
}

}  // namespace

class TestFrmLuvane : public QObject {
  Q_OBJECT
 private slots:
  void opensWithItsCaptionDefaultsAndButtonOrder();
  void coastlineIsDrawnOnTheWorldAtLoad();
  void clickOnTheMapBeforeAnyFileDrawsNothing();
  void stationFileLaysOutTheMapAndDrawsGreenDiscs();
  void stationFileWithFiveColumnsIsRefused();
  void targetFileWithWrongCountIsRefused();
  void nameQuestionAnsweredNoEndsTheTargetImport();
  void nameQuestionAnsweredYesGoesOn();
  void targetsAreDrawnInYellow();
  void hoveringATargetAtAStationShowsTheTargetsName();
  void reachCircleGoesWithThePointer();
  void regionOfTwentyByTenDegreesNarrowsTheWindow();
  void clickOpensTheMagnifierWithTheGreySquare();
  void closingTheMagnifierRemovesTheSquare();
  void checkAccuracyShowsTheScatter();
  void stationWithoutNeighbourStaysOutOfScatterAndSave();
  void scatterToolTipNamesTheLaterStation();
  void changedInputsInvalidateTheRun();
  void returnHandsBackAndMatchesTheBatchRunner();
  void analoguesAreRingedAndFollowTheSample();
  void helpShowsTheFileFormats();
  void closeHidesAndUnloadClosesTheOthers();
  void quitClosesTheInterpolationWindows();
  void progressRunsOverTargetsAndStations();
  void minimumDistanceIgnoresTheExponent();
  void reopensForInspectionAfterReturn();
  void mapWiderThanTheScreenShrinksWithItsShape();
  void boundsBoxesAreReadAtTheNextRedraw();
  void flatColumnKeepsTheCoefficient();
  void parameterChosenInReconstructionFollowsInTheScatter();
  void cancelledTargetDialogEndsQuietly();
  void copyPutsTheMapAndTheScatterOnTheClipboard();
  void mapAndScatterSaveAsPictures();
  void lonelyStationBeyondAnyRadiusEndsAtTheBoundary();
  void hoverOnTheMagnifierNamesAndShowsTheReach();
  void editedScatterBoundsRedrawTheScatter();
  void calibrationTakesTheStationPairsOfTheParameter();
  void generateModelIsOffWhileTheStationPairsAreTaken();
  void typedParameterNameLeftCountsAsChosen();
  void narrowTargetFileReadsTheMissingColumnsAsZero();
  void radiusIsReadAsTheRunReadsIt();
  void returnBringsBothWindowsToTheFront();
  void boundBoxesStandAtTheMapsCorners();
  void zeroPairColumnShowsZeroBesideN1();
  void stationsOnOneParallelAndMeridianKeepAMap();
  void blankCellInARowStopsTheImportUnderError();
  void windowStaysOnTheScreenWhenTheMapGrows();
  void accuracyWindowAndMagnifierDoNotCoverEachOther();
  void coastHoldsTheGreatLakes();
  void everyControlOfTheToolSaysWhatItDoes();
};

void TestFrmLuvane::opensWithItsCaptionDefaultsAndButtonOrder() {
  Tool t;
  QCOMPARE(t.lv->windowTitle(), QString("Luvane 1.1"));
  QVERIFY(t.lv->isVisible());
  QVERIFY(t.session.Interp.InterpWindowOpen);
  QCOMPARE(t.lv->Command0->text(), QString("Import reference dataset"));
  QCOMPARE(t.lv->Command2->text(), QString("Import target cordinates"));
  QCOMPARE(t.lv->Command3->text(), QString("Check accuracy"));
  QCOMPARE(t.lv->Command1->text(), QString("Return to Varnoth"));
  QCOMPARE(t.lv->Command4->text(), QString("Close"));
  QVERIFY(t.lv->Command0->isEnabled());
  QVERIFY(!t.lv->Command2->isEnabled());
  QVERIFY(!t.lv->Command3->isEnabled());
  QVERIFY(!t.lv->Command1->isEnabled());
  QVERIFY(t.lv->Command4->isEnabled());
  QVERIFY(t.lv->Option1[1]->isChecked());
  QCOMPARE(t.lv->Option1[1]->text(), QString("Interpolation"));
  QCOMPARE(t.lv->Option1[0]->text(), QString("Minimum distance"));
  QCOMPARE(t.lv->Combo1->currentText(), QString("-2"));
  QCOMPARE(t.lv->Combo1->count(), 2);
  QCOMPARE(t.lv->Combo1->itemText(0), QString("-1"));
  QCOMPARE(t.lv->Combo1->itemText(1), QString("-2"));
  QCOMPARE(t.lv->Text3->text(), QString("3"));
  QCOMPARE(t.lv->Combo2->currentText(), QString("Degree"));
  QCOMPARE(t.lv->Combo2->count(), 2);
  QCOMPARE(t.lv->Combo2->itemText(1), QString("km"));
  QCOMPARE(t.lv->Label1->text(), QString("Weighting factor:"));
  QCOMPARE(t.lv->Label2->text(), QString("w = d"));
  QCOMPARE(t.lv->Label3->text(), QString("Radius:"));
  QCOMPARE(t.lv->mnuHelpTag->title(), QString("Help"));
  QCOMPARE(t.lv->mnuHelp->text(), QString("Help"));
  QCOMPARE(t.lv->mnuRBTag->title(), QString("RightButton"));
  QCOMPARE(t.lv->mnuCopyMap->text(), QString("Copy"));
  QVERIFY(!t.lv->Combo2->isEnabled());
  QCOMPARE(t.lv->Text1[0]->text(), QString("-90"));
  QCOMPARE(t.lv->Text1[1]->text(), QString("90"));
  QCOMPARE(t.lv->Text2[0]->text(), QString("-180"));
  QCOMPARE(t.lv->Text2[1]->text(), QString("180"));
  QVERIFY(!t.lv->ProgressBar1->isVisible());
  // The order is forced: each import opens the next step only.
  t.ImportStations(t.stations);
  QVERIFY(!t.lv->Command0->isEnabled());
  QVERIFY(t.lv->Command2->isEnabled());
  QVERIFY(!t.lv->Command3->isEnabled());
  t.ImportTargets(t.targets);
  QVERIFY(!t.lv->Command2->isEnabled());
  QVERIFY(t.lv->Command3->isEnabled());
  QVERIFY(!t.lv->Command1->isEnabled());
  t.lv->Command3->click();
  QVERIFY(t.lv->Command1->isEnabled());
}

void TestFrmLuvane::coastlineIsDrawnOnTheWorldAtLoad() {
  Tool t;
  QVERIFY(t.lv->Coast().Segments.size() > 4000);
  Surface& map = t.Map();
  QCOMPARE(map.ScaleLeft(), -180.0);
  QCOMPARE(map.ScaleTop(), 90.0);
  // A coast point of the table itself, and open ocean in the mid-Pacific.
  const auto& seg = t.lv->Coast().Segments[t.lv->Coast().Segments.size() / 3];
  QVERIFY(Near(map, seg[0], seg[1], kGrey, 1));
  QCOMPARE(Inked(map, -140, -45, -130, -35), 0);
  // The progress bar of the reconstruction window is put back.
  QVERIFY(!t.mat->ProgressBar1->isVisible());
  QCOMPARE(t.mat->ProgressBar1->minimum(), 0);
  QCOMPARE(t.mat->ProgressBar1->value(), 0);
  // The twelve pieces are consecutive slices of the whole table.
  std::size_t end = 0;
  for (int piece = 1; piece <= kCoastPieces; ++piece) {
    const auto [first, last] = CoastPiece(t.lv->Coast(), piece);
    QCOMPARE(first, end);
    end = last;
  }
  QCOMPARE(end, t.lv->Coast().Segments.size());
}

void TestFrmLuvane::clickOnTheMapBeforeAnyFileDrawsNothing() {
  Tool t;
  const QImage before = t.Map().Image().copy();
  t.Click(10, 45);
  QCOMPARE(t.Map().Image(), before);
  QVERIFY(!t.lv->Magnifier() || !t.lv->Magnifier()->isVisible());
}

void TestFrmLuvane::stationFileLaysOutTheMapAndDrawsGreenDiscs() {
  Tool t;
  t.ImportStations(t.stations);
  const InterpolationState& in = t.session.Interp;
  QVERIFY(in.InterpRefLoaded);
  QCOMPARE(in.InterpRefCount, Count{300});
  QCOMPARE(t.lv->Text2[0]->text(), QString::number(in.MinLon));
  QCOMPARE(t.lv->Text1[1]->text(), QString::number(in.MaxLat));
  QCOMPARE(t.Map().ScaleLeft(), double(in.MinLon));
  QCOMPARE(t.Map().ScaleTop(), double(in.MaxLat));
  // A degree as long across as down.
  const double perLon = t.Map().Width() / double(in.MaxLon - in.MinLon);
  const double perLat = t.Map().Height() / double(in.MaxLat - in.MinLat);
  QVERIFY(std::abs(perLon - perLat) < 0.05 * perLat);
  QVERIFY(Near(t.Map(), in.InterpRefLon(5), in.InterpRefLat(5), kGreen, 0));
  QVERIFY(t.lv->Command2->hasFocus() || !t.lv->isActiveWindow());
}

void TestFrmLuvane::stationFileWithFiveColumnsIsRefused() {
  Tool t;
  const std::string five =
      t.Write("five.csv", "S,Lon,Lat,Alt,TL,PL\r\nA,1,2,3,-0.5,30\r\nB,2,3,4,-0.5,30\r\n");
  t.ImportStations(five);
  QCOMPARE(t.dialogs.Messages.size(), std::size_t(1));
  QCOMPARE(t.dialogs.Messages[0].Text, std::string("File does not contain climate data."));
  QCOMPARE(t.dialogs.Messages[0].Title, std::string("Error"));
  QVERIFY(t.lv->Command0->isEnabled());
  QVERIFY(!t.lv->Command2->isEnabled());
  QVERIFY(!t.session.Interp.InterpRefLoaded);
  // A cancelled dialog ends as quietly.
  t.lv->Command0->click();
  QVERIFY(t.lv->Command0->isEnabled());
  QCOMPARE(t.dialogs.Messages.size(), std::size_t(1));
}

void TestFrmLuvane::targetFileWithWrongCountIsRefused() {
  Tool t;
  t.ImportStations(t.stations);
  std::vector<demo::Site> fewer(t.sites.begin(), t.sites.end() - 1);
  t.ImportTargets(t.Write("fewer.csv", QByteArray::fromStdString(demo::TargetTable(fewer))));
  QCOMPARE(t.dialogs.Messages.back().Text,
           std::string("Number of surface pollen sites inconsistent."));
  QCOMPARE(t.dialogs.Messages.back().Title, std::string("Error"));
  QCOMPARE(t.dialogs.Messages.size(), std::size_t(1));
  QVERIFY(t.lv->Command2->isEnabled());
  QVERIFY(!t.lv->Command3->isEnabled());
  QVERIFY(!t.session.Interp.InterpTargetLoaded);
}

void TestFrmLuvane::nameQuestionAnsweredNoEndsTheTargetImport() {
  Tool t;
  t.ImportStations(t.stations);
  auto renamed = t.sites;
  renamed[2].Name = "Elsewhere";
  t.dialogs.Answers.push_back(false);
  t.ImportTargets(t.Write("renamed.csv", QByteArray::fromStdString(demo::TargetTable(renamed))));
  QCOMPARE(t.dialogs.Questions.size(), std::size_t(1));
  QCOMPARE(t.dialogs.Questions[0].Title, std::string("Error"));
  QCOMPARE(t.dialogs.Questions[0].Text,
           "Name inconsistent.  [Elsewhere] = [" + t.session.RefSiteNames(3) + "]?");
  QVERIFY(t.lv->Command2->isEnabled());
  QVERIFY(!t.lv->Command3->isEnabled());
  QVERIFY(!t.session.Interp.InterpTargetLoaded);
}

void TestFrmLuvane::nameQuestionAnsweredYesGoesOn() {
  Tool t;
  t.ImportStations(t.stations);
  auto renamed = t.sites;
  renamed[2].Name = "Elsewhere";
  t.dialogs.Answers.push_back(true);
  t.ImportTargets(t.Write("renamed.csv", QByteArray::fromStdString(demo::TargetTable(renamed))));
  QVERIFY(t.session.Interp.InterpTargetLoaded);
  QVERIFY(!t.lv->Command2->isEnabled());
  QVERIFY(t.lv->Command3->isEnabled());
}

void TestFrmLuvane::targetsAreDrawnInYellow() {
  Tool t;
  t.ImportStations(t.stations);
  QVERIFY(!Near(t.Map(), t.session.Interp.InterpRefLon(1), t.session.Interp.InterpRefLat(1),
                kYellow, 3));
  t.ImportTargets(t.targets);
  const InterpolationState& in = t.session.Interp;
  int yellow = 0;
  for (long i = 1; i <= in.InterpTargetCount; ++i)
    if (Near(t.Map(), in.SiteLongitude(i), in.SiteLatitude(i), kYellow, 0)) ++yellow;
  // Nearly every target shows its yellow disc (a few lie under others).
  QVERIFY(yellow >= in.InterpTargetCount - 3);
}

void TestFrmLuvane::hoveringATargetAtAStationShowsTheTargetsName() {
  Tool t;
  // The first station stands exactly where the fourth target is.
  std::string table = demo::StationTable(300);
  const auto& site = t.sites[3];
  const std::size_t firstRow = table.find("\r\n") + 2;
  table.insert(firstRow, "Here," + demo::Cell(site.Lon) + "," + demo::Cell(site.Lat) +
                             ",100,-0.5,30,5,20,700\r\n");
  t.ImportStations(t.Write("here.csv", QByteArray::fromStdString(table)));
  t.Hover(std::stod(demo::Cell(site.Lon)), std::stod(demo::Cell(site.Lat)));
  QCOMPARE(t.lv->Picture1->toolTip(), QString("Here"));
  t.ImportTargets(t.targets);
  t.Hover(std::stod(demo::Cell(site.Lon)), std::stod(demo::Cell(site.Lat)));
  QCOMPARE(t.lv->Picture1->toolTip(), QString::fromStdString(site.Name));
}

void TestFrmLuvane::reachCircleGoesWithThePointer() {
  Tool t;
  t.BothFiles();
  const InterpolationState& in = t.session.Interp;
  const double lon = in.SiteLongitude(1), lat = in.SiteLatitude(1);
  t.Hover(lon, lat);
  // The red mark, the radius line and the circle of 3 degrees.
  QVERIFY(Near(t.Map(), lon, lat, kRed, 0));
  QVERIFY(Near(t.Map(), lon + 1.5, lat, kRed, 1));
  QVERIFY(Near(t.Map(), lon, lat + 3, kRed, 1));
  QVERIFY(Near(t.Map(), lon - 3, lat, kRed, 1));
  // Moved into the open sea, the circle is gone.
  t.Hover(in.MinLon + 0.01, in.MinLat + 0.01);
  QVERIFY(!Near(t.Map(), lon, lat + 3, kRed, 1));
  QVERIFY(!Near(t.Map(), lon + 1.5, lat, kRed, 1));
}

void TestFrmLuvane::regionOfTwentyByTenDegreesNarrowsTheWindow() {
  Tool t;
  const int worldWidth = t.lv->width();
  const int worldMap = t.lv->Picture1->width();
  // Stations fill 20 degrees of latitude and 10 of longitude exactly.
  std::string table = "St,Lon,Lat,Alt,TL,PL,TJan\r\n";
  table += "A,10,30,0,-0.5,30,5\r\nB,20,50,0,-0.5,30,6\r\nC,12,40,0,-0.5,30,7\r\n";
  t.ImportStations(t.Write("region.csv", QByteArray::fromStdString(table)));
  const InterpolationState& in = t.session.Interp;
  QCOMPARE(in.MaxLon - in.MinLon, 10.0f);
  QCOMPARE(in.MaxLat - in.MinLat, 20.0f);
  const int h = t.lv->Picture1->height();
  QCOMPARE(t.lv->Picture1->width(), int(std::lround(10.0 * h / 20)));
  QVERIFY(t.lv->width() < worldWidth);
  QCOMPARE(worldWidth - t.lv->width(), worldMap - t.lv->Picture1->width());
  // The coastline keeps its shape: a degree is as many pixels both ways.
  const Surface& map = t.Map();
  QVERIFY(std::abs(map.Width() / std::abs(map.ScaleWidth()) -
                   map.Height() / std::abs(map.ScaleHeight())) < 0.1);
  // And it is there: the Adriatic coast crosses this box.
  QVERIFY(Inked(map, 10, 50, 20, 30) > 100);
}

void TestFrmLuvane::clickOpensTheMagnifierWithTheGreySquare() {
  Tool t;
  t.BothFiles();
  const InterpolationState& in = t.session.Interp;
  const double lon = in.InterpRefLon(7), lat = in.InterpRefLat(7);
  t.Click(lon, lat);
  frmLuvaneMag* mag = t.lv->Magnifier();
  QVERIFY(mag && mag->isVisible());
  QCOMPARE(mag->windowTitle(), QString("Magnifier"));
  // The square 1.2 radii around the click.
  QVERIFY(Near(t.Map(), lon - 3.6, lat, kGrey, 1));
  QVERIFY(Near(t.Map(), lon, lat + 3.6, kGrey, 1));
  Surface& m = mag->Picture2->surface();
  // Around the click, within the pixel that the click hit.
  const double degree = std::abs(t.Map().ScaleWidth()) / t.Map().Width();
  QVERIFY(std::abs(m.ScaleTop() - (lat + 1.2)) <= degree);
  QCOMPARE(m.ScaleHeight(), -2.4);
  QVERIFY(Near(m, lon, lat, kGreen, 0));
}

void TestFrmLuvane::closingTheMagnifierRemovesTheSquare() {
  Tool t;
  t.BothFiles();
  const InterpolationState& in = t.session.Interp;
  const double lon = in.InterpRefLon(7), lat = in.InterpRefLat(7);
  t.Click(lon, lat);
  QVERIFY(Near(t.Map(), lon, lat + 3.6, kGrey, 1));
  // The square's upper edge is a grey row of pixels; closing takes it away.
  auto greyOnEdge = [&] {
    const Surface& map = t.Map();
    const int py = int(std::floor(map.ToPixel(lon, lat + 3.6).y()));
    const int x1 = int(map.ToPixel(lon - 3, lat).x()), x2 = int(map.ToPixel(lon + 3, lat).x());
    int n = 0;
    for (int px = x1; px <= x2; ++px)
      for (int dy = -1; dy <= 1; ++dy)
        if (py + dy >= 0 && py + dy < map.Height() && map.PixelAt(px, py + dy) == kGrey) {
          ++n;
          break;
        }
    return std::pair{n, x2 - x1 + 1};
  };
  const auto [before, span] = greyOnEdge();
  QVERIFY(before >= span - 1);
  t.lv->Magnifier()->close();
  QVERIFY(greyOnEdge().first < span / 2);
}

void TestFrmLuvane::checkAccuracyShowsTheScatter() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  frmLuvaneCorrel* c = t.lv->Correl();
  QVERIFY(c && c->isVisible());
  QCOMPARE(c->windowTitle(), QString("Accuracy (Est-Obs)"));
  QCOMPARE(c->Combo1->count(), 3);
  QCOMPARE(c->Combo1->currentText(), QString("TJan"));
  QCOMPARE(t.session.Interp.InterpCurrentParam, Count{6});
  // A real correlation of the smooth field.
  const double r = c->Label3->text().toDouble();
  QVERIFY(!c->Label3->text().isEmpty());
  QVERIFY(r > 0.8 && r <= 1);
  QCOMPARE(c->Label1[0]->text(), c->Text1[0]->text());
  // A blue disc at a pair.
  const InterpolationState& in = t.session.Interp;
  long j = 1;
  while (in.InterpRefEstimate(j, 6) == kMissing) ++j;
  QVERIFY(Near(c->Picture3->surface(), in.InterpRefEstimate(j, 6), in.InterpRefClimate(j, 6), kBlue,
               0));
  // The reconstruction's list takes the parameters.
  QCOMPARE(t.mat->Combo1->count(), 3);
  QVERIFY(t.session.ClimateLoaded);
  // Choosing another parameter: the reconstruction's list follows.
  c->Combo1->setCurrentIndex(2);
  emit c->Combo1->textActivated("PAnn");
  QCOMPARE(t.session.Interp.InterpCurrentParam, Count{8});
  QCOMPARE(t.mat->Combo1->currentText(), QString("PAnn"));
  // Save matrix against the engine's writer for the same column.
  const std::string path = (t.folder.path() + "/acc.csv").toStdString();
  t.dialogs.SaveNames.push_back(path);
  c->mnuSave->trigger();
  const QByteArray saved = ReadAll(QString::fromStdString(path));
  QVERIFY(saved.startsWith("\"PAnn (Estimated)\",\"PAnn (Observed)\"\r\n"));
  QCOMPARE(saved.count("\r\n"), 1 + t.session.Interp.InterpPairCount);
}

void TestFrmLuvane::stationWithoutNeighbourStaysOutOfScatterAndSave() {
  Tool t;
  std::string table = demo::StationTable(300);
  table += "Lonely,-170,-50,0,-0.5,30,1,2,3\r\n";
  t.ImportStations(t.Write("lonely.csv", QByteArray::fromStdString(table)));
  t.ImportTargets(t.targets);
  t.lv->Command3->click();
  const InterpolationState& in = t.session.Interp;
  QCOMPARE(in.InterpRefEstimate(301, 6), kMissing);
  frmLuvaneCorrel* c = t.lv->Correl();
  const std::string path = (t.folder.path() + "/acc.csv").toStdString();
  t.dialogs.SaveNames.push_back(path);
  c->mnuSave->trigger();
  const QByteArray saved = ReadAll(QString::fromStdString(path));
  QCOMPARE(saved.count("\r\n"), 1 + 300);
  QVERIFY(!saved.contains("\r\n-9999,"));
}

void TestFrmLuvane::scatterToolTipNamesTheLaterStation() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  frmLuvaneCorrel* c = t.lv->Correl();
  const InterpolationState& in = t.session.Interp;
  long j = 1;
  while (in.InterpRefEstimate(j, 6) == kMissing) ++j;
  c->MoveOnScatter(in.InterpRefEstimate(j, 6), in.InterpRefClimate(j, 6));
  QVERIFY(
      c->Picture3->toolTip().startsWith(QString::fromStdString(in.InterpRefNames(j)) + ", TJan="));
  // Stations close together: the last in the file names the point.
  const double tol = std::abs(c->Picture3->surface().ScaleWidth()) / 80;
  auto under = [&](double x, double y) {
    std::vector<long> found;
    for (long i = 1; i <= in.InterpRefCount; ++i)
      if (std::abs(in.InterpRefEstimate(i, 6) - x) < tol &&
          std::abs(in.InterpRefClimate(i, 6) - y) < tol)
        found.push_back(i);
    return found;
  };
  std::vector<long> found;
  double x = 0, y = 0;
  for (long i = 1; i <= in.InterpRefCount && found.size() < 2; ++i) {
    x = in.InterpRefEstimate(i, 6);
    y = in.InterpRefClimate(i, 6);
    found = under(x, y);
  }
  QVERIFY(found.size() >= 2);
  c->MoveOnScatter(x, y);
  QVERIFY(c->Picture3->toolTip().startsWith(
      QString::fromStdString(in.InterpRefNames(found.back())) + ","));
  QVERIFY(!c->Picture3->toolTip().startsWith(
      QString::fromStdString(in.InterpRefNames(found.front())) + ","));
}

void TestFrmLuvane::changedInputsInvalidateTheRun() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  QVERIFY(t.lv->Command1->isEnabled());
  QTest::keyClick(t.lv->Text3, Qt::Key_5);
  QVERIFY(!t.lv->Command1->isEnabled());
  QVERIFY(!t.lv->Correl()->isVisible());
  QVERIFY(!t.session.Interp.InterpCorrelOpen);
  QCOMPARE(t.lv->Text3->cursorPosition(), t.lv->Text3->text().size());
  t.lv->Command3->click();
  QVERIFY(t.lv->Command1->isEnabled());
  t.lv->Option1[0]->click();
  QVERIFY(!t.lv->Command1->isEnabled());
  t.lv->Command3->click();
  QVERIFY(t.lv->Command1->isEnabled());
  emit t.lv->Combo1->textActivated("-1");
  QVERIFY(!t.lv->Command1->isEnabled());
}

void TestFrmLuvane::returnHandsBackAndMatchesTheBatchRunner() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  // The accuracy matrix of every parameter, saved from the scatter.
  frmLuvaneCorrel* c = t.lv->Correl();
  for (const QString name : {"TJan", "TJul", "PAnn"}) {
    emit c->Combo1->textActivated(name);
    const QString path = t.folder.path() + "/mine-" + name + ".csv";
    t.dialogs.SaveNames.push_back(path.toStdString());
    c->mnuSave->trigger();
  }
  emit c->Combo1->textActivated("TJan");
  t.lv->Command1->click();
  QCoreApplication::processEvents();
  QVERIFY(t.session.SiteInfoLoaded);
  for (QWidget* w :
       std::initializer_list<QWidget*>{t.mat->Option1[0], t.mat->Option1[1], t.mat->Option3[0],
                                       t.mat->Option3[1], t.mat->Slider1, t.mat->Slider2,
                                       t.mat->Slider3, t.mat->Check1, t.mat->Label1, t.mat->Label2})
    QVERIFY(w->isEnabled());
  QVERIFY(!t.mat->Command1->isEnabled());
  QVERIFY(!t.mat->Command8->isEnabled());
  for (QWidget* w : std::initializer_list<QWidget*>{t.lv->Option1[0], t.lv->Option1[1],
                                                    t.lv->Combo1, t.lv->Combo2, t.lv->Text3})
    QVERIFY(!w->isEnabled());
  QVERIFY(t.session.ReconstructionOpen);
  // The climate of the reconstruction equals the batch runner's file.
  const QString out = t.folder.path() + "/batch";
  QVERIFY(Batch(out, t.stations, t.targets));
  const std::string mine = (t.folder.path() + "/mine.csv").toStdString();
  NoProgress quiet;
  QVERIFY(SaveInterpolatedClimate(t.session, mine, quiet));
  const QByteArray expected = ReadAll(out + "/climate.csv");
  QVERIFY(!expected.isEmpty());
  QCOMPARE(ReadAll(QString::fromStdString(mine)), expected);
  for (const QString name : {"TJan", "TJul", "PAnn"}) {
    const QByteArray batch = ReadAll(out + "/accuracy-" + name + ".csv");
    QVERIFY(!batch.isEmpty());
    QCOMPARE(ReadAll(t.folder.path() + "/mine-" + name + ".csv"), batch);
  }
}

void TestFrmLuvane::analoguesAreRingedAndFollowTheSample() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  t.lv->Command1->click();
  QCoreApplication::processEvents();
  QVERIFY(t.session.ReconstructionOpen);
  const InterpolationState& in = t.session.Interp;
  auto ringed = [&](long sample) {
    int n = 0;
    for (long r = 1; r <= t.session.AnalogueCount(sample); ++r) {
      const long site = t.session.AnalogueSite(sample, r);
      // The ring stands 0.25 degrees to the right of the site.
      if (Near(t.Map(), in.SiteLongitude(site) + 0.25, in.SiteLatitude(site), kRed, 1)) ++n;
    }
    return n;
  };
  long k = t.session.SampleCursor;
  QVERIFY(t.session.AnalogueCount(k) > 0);
  QCOMPARE(ringed(k), int(t.session.AnalogueCount(k)));
  // Another sample from the reconstruction window: the rings follow.
  long other = 0;
  for (long j = 1; j <= t.session.FossilSampleCount && !other; ++j)
    if (!t.session.FossilEmptySample(j) && t.session.AnalogueCount(j) > 0 &&
        t.session.AnalogueSite(j, 1) != t.session.AnalogueSite(k, 1))
      other = j;
  QVERIFY(other > 0);
  t.session.SampleCursor = Count(other);
  t.mat->MoveMarker();
  QCOMPARE(ringed(other), int(t.session.AnalogueCount(other)));
}

void TestFrmLuvane::helpShowsTheFileFormats() {
  Tool t;
  t.lv->mnuHelp->trigger();
  frmLuvaneHelp* h = t.lv->Help();
  QVERIFY(h && h->isVisible());
  QCOMPARE(h->windowTitle(), QString("Help"));
  // Every line under its frame, in order: eight for the reference file,
  // the first three again for the target file.
  auto lines = [h](const QString& frame) {
    QStringList texts;
    for (QGroupBox* g : h->findChildren<QGroupBox*>())
      if (g->title() == frame)
        for (QLabel* l : g->findChildren<QLabel*>()) texts << l->text();
    return texts;
  };
  const QStringList reference = {
      "First 5 collumns:",
      "Longitude / Latitude / Altitude / Temperature laps rate / Precipitation laps rate.",
      "(Cordinates must be given in decimal values. )",
      "Notes:",
      "Temperature laps rate (increment per 100m) will be applied if the parameter name",
      "is one of the followings: \"T---\", \"MT---\", \"(T)---\", \"(t)---\", \"---(T)\", or "
      "\"---(t)\".",
      "Precipitation laps rate (increment per 100m) will be applied if the parameter name",
      "is one of the followings: \"P---\", \"MP---\", \"(P)---\", \"(p)---\", \"---(P)\", or "
      "\"---(p)\"."};
  QCOMPARE(lines(" Reference data file format"), reference);
  QCOMPARE(lines(" Target data file format"), reference.mid(0, 3));
}

void TestFrmLuvane::closeHidesAndUnloadClosesTheOthers() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  t.Click(t.session.Interp.InterpRefLon(1), t.session.Interp.InterpRefLat(1));
  t.lv->mnuHelp->trigger();
  t.mat->Command8->setEnabled(false);
  t.lv->Command4->click();
  QVERIFY(!t.lv->isVisible());
  QVERIFY(t.mat->Command8->isEnabled());
  t.lv->show();
  t.lv->close();
  QVERIFY(!t.lv->Magnifier()->isVisible());
  QVERIFY(!t.lv->Correl()->isVisible());
  QVERIFY(!t.lv->Help()->isVisible());
  QVERIFY(!t.session.Interp.InterpWindowOpen);
  QVERIFY(!t.session.Interp.InterpCorrelOpen);
}

void TestFrmLuvane::quitClosesTheInterpolationWindows() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  t.window->QuitProgram();
  QVERIFY(!t.lv->isVisible());
  QVERIFY(!t.session.Interp.InterpWindowOpen);
  QVERIFY(!t.lv->Correl()->isVisible());
}

void TestFrmLuvane::progressRunsOverTargetsAndStations() {
  Tool t;
  t.BothFiles();
  int maximum = -1;
  QProgressBar* bar = t.lv->ProgressBar1;
  QObject::connect(bar, &QProgressBar::valueChanged,
                   [&](int) { maximum = std::max(maximum, bar->maximum()); });
  t.lv->Command3->click();
  QCOMPARE(maximum, t.session.Interp.InterpRefCount + t.session.Interp.InterpTargetCount);
  QVERIFY(!t.lv->ProgressBar1->isVisible());
  QCOMPARE(t.lv->ProgressBar1->value(), 0);
}

void TestFrmLuvane::minimumDistanceIgnoresTheExponent() {
  Tool t;
  t.BothFiles();
  t.lv->Option1[0]->click();
  t.lv->Combo1->setEditText("-1");
  t.lv->Command3->click();
  const Array2<double> first = t.session.Interp.InterpTargetEstimate;
  const Array2<double> stations = t.session.Interp.InterpRefEstimate;
  t.lv->Combo1->setEditText("7");
  t.lv->Command3->click();
  const InterpolationState& in = t.session.Interp;
  for (long i = 1; i <= in.InterpTargetCount; ++i)
    for (long k = 6; k <= in.InterpColumnCount; ++k)
      QCOMPARE(in.InterpTargetEstimate(i, k), first(i, k));
  for (long i = 1; i <= in.InterpRefCount; ++i)
    QCOMPARE(in.InterpRefEstimate(i, 6), stations(i, 6));
  // In the other mode the exponent changes the estimates.
  t.lv->Option1[1]->click();
  t.lv->Command3->click();
  bool differs = false;
  for (long i = 1; i <= in.InterpTargetCount; ++i)
    if (in.InterpTargetEstimate(i, 6) != first(i, 6)) differs = true;
  QVERIFY(differs);
}

void TestFrmLuvane::reopensForInspectionAfterReturn() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  t.lv->Command1->click();
  QCoreApplication::processEvents();
  t.lv->close();
  QVERIFY(t.mat->Command8->isEnabled());
  t.mat->Command8->click();
  QVERIFY(t.lv->isVisible());
  const InterpolationState& in = t.session.Interp;
  QCOMPARE(t.lv->Text2[0]->text(), QString::number(in.MinLon));
  QCOMPARE(t.lv->Text1[1]->text(), QString::number(in.MaxLat));
  for (QWidget* w : std::initializer_list<QWidget*>{
           t.lv->Command0, t.lv->Command1, t.lv->Command2, t.lv->Command4, t.lv->Option1[0],
           t.lv->Option1[1], t.lv->Combo1, t.lv->Combo2, t.lv->Text3})
    QVERIFY(!w->isEnabled());
  QVERIFY(t.lv->Command3->isEnabled());
  // The map is drawn again with the stations and targets.
  QVERIFY(Near(t.Map(), in.InterpRefLon(3), in.InterpRefLat(3), kGreen, 0));
  int yellow = 0;
  for (long i = 1; i <= in.InterpTargetCount; ++i)
    if (Near(t.Map(), in.SiteLongitude(i), in.SiteLatitude(i), kYellow, 0)) ++yellow;
  QVERIFY(yellow > in.InterpTargetCount / 2);
  QVERIFY(in.InterpWindowOpen);
  // The files count as not read in this window: a click opens no magnifier.
  QVERIFY(!in.InterpRefLoaded);
  QVERIFY(!in.InterpTargetLoaded);
  const QImage before = t.Map().Image().copy();
  t.Click(in.InterpRefLon(3), in.InterpRefLat(3));
  QCOMPARE(t.Map().Image(), before);
}

void TestFrmLuvane::mapWiderThanTheScreenShrinksWithItsShape() {
  Tool t;
  // Stations round the globe within 20 degrees of latitude.
  std::string table = "St,Lon,Lat,Alt,TL,PL,TJan\r\n";
  table += "A,-180,-10,0,-0.5,30,5\r\nB,180,10,0,-0.5,30,6\r\nC,0,0,0,-0.5,30,7\r\n";
  t.ImportStations(t.Write("round.csv", QByteArray::fromStdString(table)));
  const QRect screen = AvailableArea(t.lv);
  // 360 by 20 degrees at the designed height of 360 pixels would be 6480
  // pixels wide: the map takes the screen's width less the controls.
  QVERIFY(t.lv->Picture1->height() < 360);
  const int borders = t.lv->frameGeometry().width() - t.lv->width();
  QCOMPARE(t.lv->Picture1->width(), screen.width() - (4450 + 7) / 15 - borders);
  QVERIFY(screen.contains(t.lv->frameGeometry()));
  const double perLon = t.lv->Picture1->width() / 360.0;
  const double perLat = t.lv->Picture1->height() / 20.0;
  QVERIFY(std::abs(perLon - perLat) < 0.06);
}

void TestFrmLuvane::boundsBoxesAreReadAtTheNextRedraw() {
  Tool t;
  t.BothFiles();
  t.lv->Text2[0]->setText("0");
  t.lv->Text2[1]->setText("25");
  t.lv->Text1[0]->setText("45");
  t.lv->Text1[1]->setText("55");
  // Nothing moves until the map is drawn again.
  QVERIFY(t.Map().ScaleLeft() != 0.0);
  const InterpolationState& in = t.session.Interp;
  t.Click(in.InterpRefLon(1), in.InterpRefLat(1));
  QCOMPARE(t.Map().ScaleLeft(), 0.0);
  QCOMPARE(t.Map().ScaleLeft() + t.Map().ScaleWidth(), 25.0);
  QCOMPARE(t.Map().ScaleTop() + t.Map().ScaleHeight(), 45.0);
  QCOMPARE(t.Map().ScaleTop(), 55.0);
}

void TestFrmLuvane::flatColumnKeepsTheCoefficient() {
  Tool t;
  // TJan varies, Flat is 5 at every station at sea level.
  std::string table = "St,Lon,Lat,Alt,TL,PL,TJan,Flat\r\n";
  demo::Lcg g(3);
  for (int j = 1; j <= 120; ++j) {
    const double lon = 10 * g.Next(), lat = 40 + 10 * g.Next();
    table += "S" + std::to_string(j) + "," + demo::Cell(lon) + "," + demo::Cell(lat) +
             ",0,-0.5,30," + demo::Cell(demo::TJan(lon, lat, 0)) + ",5\r\n";
  }
  t.ImportStations(t.Write("flat.csv", QByteArray::fromStdString(table)));
  t.ImportTargets(t.targets);
  t.lv->Command3->click();
  frmLuvaneCorrel* c = t.lv->Correl();
  const QString shown = c->Label3->text();
  QVERIFY(!shown.isEmpty());
  emit c->Combo1->textActivated("Flat");
  QCOMPARE(t.session.Interp.InterpCurrentParam, Count{7});
  QCOMPARE(c->Text1[0]->text().toDouble(), 5.0);
  QVERIFY(c->Text1[1]->text().toDouble() - 5 <= 5);
  QCOMPARE(c->Label3->text(), shown);
}

void TestFrmLuvane::parameterChosenInReconstructionFollowsInTheScatter() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  t.lv->Command1->click();
  QCoreApplication::processEvents();
  t.lv->Command3->click();  // the scatter open again beside the reconstruction
  QVERIFY(t.session.Interp.InterpCorrelOpen);
  frmLuvaneCorrel* c = t.lv->Correl();
  t.mat->Combo1->setCurrentIndex(1);
  emit t.mat->Combo1->activated(1);
  // The list shows the name, and the scatter, its coefficient and the saved
  // matrix are those of the name: TJul, column 7.
  QCOMPARE(c->Combo1->currentText(), QString("TJul"));
  QCOMPARE(t.session.Interp.InterpCurrentParam, Count{7});
  const QString label = c->Label3->text();
  const QString low = c->Text1[0]->text(), high = c->Text1[1]->text();
  const std::string followed = (t.folder.path() + "/followed.csv").toStdString();
  t.dialogs.SaveNames.push_back(followed);
  c->mnuSave->trigger();
  const QByteArray saved = ReadAll(QString::fromStdString(followed));
  QVERIFY(saved.startsWith("\"TJul (Estimated)\",\"TJul (Observed)\"\r\n"));
  // The same as choosing TJul in the scatter's own list.
  emit c->Combo1->textActivated("TJan");
  emit c->Combo1->textActivated("TJul");
  QCOMPARE(c->Label3->text(), label);
  QCOMPARE(c->Text1[0]->text(), low);
  QCOMPARE(c->Text1[1]->text(), high);
  const std::string chosen = (t.folder.path() + "/chosen.csv").toStdString();
  t.dialogs.SaveNames.push_back(chosen);
  c->mnuSave->trigger();
  QCOMPARE(saved, ReadAll(QString::fromStdString(chosen)));
  // The tool tip names the parameter of the list.
  const InterpolationState& in = t.session.Interp;
  long j = 1;
  while (in.InterpRefEstimate(j, 7) == kMissing) ++j;
  c->MoveOnScatter(in.InterpRefEstimate(j, 7), in.InterpRefClimate(j, 7));
  QVERIFY(c->Picture3->toolTip().contains(", TJul="));
}

void TestFrmLuvane::cancelledTargetDialogEndsQuietly() {
  Tool t;
  t.ImportStations(t.stations);
  t.lv->Command2->click();  // no file name: the dialog was cancelled
  QVERIFY(t.lv->Command2->isEnabled());
  QVERIFY(!t.lv->Command3->isEnabled());
  QVERIFY(t.dialogs.Messages.empty());
}

void TestFrmLuvane::copyPutsTheMapAndTheScatterOnTheClipboard() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  QApplication::clipboard()->clear();
  t.lv->mnuCopyMap->trigger();
  QCOMPARE(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
           t.Map().Image().convertToFormat(QImage::Format_RGB32));
  frmLuvaneCorrel* c = t.lv->Correl();
  c->mnuCopyScatter->trigger();
  QCOMPARE(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
           c->Picture3->surface().Image().convertToFormat(QImage::Format_RGB32));
}

// "Save Picture As..." draws the map again at the chosen size: the coast and
// the green station discs stand at twice their places in a 2x PNG, and the
// SVG holds the coastline as vector lines.
void TestFrmLuvane::mapAndScatterSaveAsPictures() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  auto* entry = t.lv->findChild<QAction*>("mnuSavePictureMap");
  QVERIFY(entry && entry->isEnabled());
  const QString png = t.folder.path() + "/map.png";
  t.dialogs.SaveNames.push_back(png.toStdString());
  t.dialogs.SaveChoices.push_back(1);
  entry->trigger();
  const QImage big(png);
  const QImage& map = t.Map().Image();
  QCOMPARE(big.size(), map.size() * 2);
  int green = 0, kept = 0;
  for (int y = 0; y < map.height(); ++y)
    for (int x = 0; x < map.width(); ++x)
      if ((map.pixel(x, y) & 0xFFFFFF) == 0x00FF00) {
        ++green;
        if ((big.pixel(2 * x + 1, 2 * y + 1) & 0xFFFFFF) == 0x00FF00) ++kept;
      }
  QVERIFY(green > 20);
  QVERIFY2(kept > green * 9 / 10, qPrintable(QString("%1 of %2").arg(kept).arg(green)));
  const QString svg = t.folder.path() + "/map.svg";
  t.dialogs.SaveNames.push_back(svg.toStdString());
  t.dialogs.SaveChoices.push_back(3);
  entry->trigger();
  QFile file(svg);
  QVERIFY(file.open(QIODevice::ReadOnly));
  const QByteArray text = file.readAll();
  QVERIFY(text.startsWith("<?xml"));
  // Every coast segment with an end on the map is a line of its own.
  const Surface& shown = t.Map();
  const double west = shown.ScaleLeft(), east = west + shown.ScaleWidth();
  const double north = shown.ScaleTop(), south = north + shown.ScaleHeight();
  int onMap = 0;
  for (const auto& g : t.lv->Coast().Segments)
    if ((g[0] >= west && g[0] <= east && g[1] >= south && g[1] <= north) ||
        (g[2] >= west && g[2] <= east && g[3] >= south && g[3] <= north))
      ++onMap;
  QVERIFY(onMap > 500);
  QVERIFY(text.count("<polyline") + text.count("<path") + text.count("<line") >= onMap);
  frmLuvaneCorrel* c = t.lv->Correl();
  auto* scatter = c->findChild<QAction*>("mnuSavePictureScatter");
  QVERIFY(scatter && scatter->isEnabled());
  const QString pdf = t.folder.path() + "/accuracy.pdf";
  t.dialogs.SaveNames.push_back(pdf.toStdString());
  t.dialogs.SaveChoices.push_back(4);
  scatter->trigger();
  QFile pdfFile(pdf);
  QVERIFY(pdfFile.open(QIODevice::ReadOnly));
  QVERIFY(pdfFile.readAll().startsWith("%PDF-"));
  QVERIFY(t.dialogs.Messages.empty());
}

void TestFrmLuvane::lonelyStationBeyondAnyRadiusEndsAtTheBoundary() {
  Tool t;
  // Two stations at one place have no other station at non-zero distance:
  // in minimum distance mode with a huge radius the nearest stays missing
  // and is read.
  t.ImportStations(t.Write(
      "twin.csv", "St,Lon,Lat,Alt,TL,PL,TJan\r\nA,10,45,0,-0.5,30,5\r\nB,10,45,0,-0.5,30,6\r\n"));
  QVERIFY(t.session.Interp.InterpRefLoaded);
  t.ImportTargets(t.targets);
  t.lv->Option1[0]->click();
  t.lv->Text3->setText("99999");
  t.lv->Command3->click();
  QCOMPARE(t.dialogs.Messages.size(), std::size_t(1));
  QCOMPARE(t.dialogs.Messages[0].Title, std::string("Error"));
  QVERIFY(!t.lv->ProgressBar1->isVisible());
  QVERIFY(QApplication::overrideCursor() == nullptr);
  QVERIFY(!t.lv->Command1->isEnabled());
  QVERIFY(t.lv->isVisible());
}

void TestFrmLuvane::hoverOnTheMagnifierNamesAndShowsTheReach() {
  Tool t;
  t.BothFiles();
  const InterpolationState& in = t.session.Interp;
  const double lon = in.SiteLongitude(4), lat = in.SiteLatitude(4);
  t.Click(lon, lat);
  frmLuvaneMag* mag = t.lv->Magnifier();
  Surface& m = mag->Picture2->surface();
  QVERIFY(Near(m, lon, lat, kYellow, 0) || Near(m, lon, lat, kGreen, 0));
  const QPointF px = m.ToPixel(lon, lat) + QPointF(mag->Picture2->Origin());
  QMouseEvent move(QEvent::MouseMove, px, mag->Picture2->mapToGlobal(px), Qt::NoButton,
                   Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(mag->Picture2, &move);
  QCOMPARE(mag->Picture2->toolTip(), QString::fromStdString(in.SiteMapNames(4)));
  QVERIFY(Near(m, lon, lat, kRed, 0));
  // The radius line runs out of the magnifier to the right.
  QVERIFY(Near(m, lon + 0.9, lat, kRed, 0));
  // The map's foreground follows: cleared, with nothing red at the target.
  QVERIFY(!Near(t.Map(), lon, lat + 3, kRed, 1));
}

void TestFrmLuvane::editedScatterBoundsRedrawTheScatter() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  frmLuvaneCorrel* c = t.lv->Correl();
  c->Text1[1]->setText("50");
  QCOMPARE(c->Label1[1]->text(), QString("50"));
  QCOMPARE(c->Picture3->surface().ScaleTop(), 50.0);
  c->Text1[0]->setText("-50");
  QCOMPARE(c->Label1[0]->text(), QString("-50"));
  QCOMPARE(c->Picture3->surface().ScaleLeft(), -50.0);
  QCOMPARE(c->Picture3->surface().ScaleWidth(), 100.0);
}

void TestFrmLuvane::calibrationTakesTheStationPairsOfTheParameter() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  t.lv->Command1->click();
  QCoreApplication::processEvents();
  // The second parameter in the reconstruction, then its error model.
  t.mat->Combo1->setCurrentIndex(1);
  emit t.mat->Combo1->activated(1);
  t.mat->Command3->click();
  t.mat->Command6->click();
  QCoreApplication::processEvents();
  frmCalib* cal = t.mat->CalibWindow();
  QVERIFY(cal && cal->isVisible());
  const InterpolationState& in = t.session.Interp;
  const CalibState& c = *t.mat->Calib();
  // Pair set 1 is TJul's column of the stations, found by its name.
  for (long r = 1; r <= in.InterpRefCount; ++r) {
    QCOMPARE(c.PairData(1, r, 1), static_cast<float>(in.InterpRefEstimate(r, 7)));
    QCOMPARE(c.PairData(1, r, 2), static_cast<float>(in.InterpRefClimate(r, 7)));
  }
  // N1 is the count of the accuracy check.
  QCOMPARE(cal->Label12[1]->text(), QString::number(in.InterpPairCount));
  QVERIFY(in.InterpPairCount > 250);
}

namespace {
// Records every change of a control's enabled state, with what the
// calibration's pair set 1 held at that moment.
class EnabledLog : public QObject {
 public:
  EnabledLog(QWidget* w, const CalibState& c) : w_(w), c_(c) { w->installEventFilter(this); }
  struct Step {
    bool enabled;
    float firstPair;
  };
  std::vector<Step> steps;

 protected:
  bool eventFilter(QObject* o, QEvent* e) override {
    if (o == w_ && e->type() == QEvent::EnabledChange)
      steps.push_back({w_->isEnabled(), c_.PairData(1, 1, 1)});
    return false;
  }

 private:
  QWidget* w_;
  const CalibState& c_;
};
}  // namespace

void TestFrmLuvane::generateModelIsOffWhileTheStationPairsAreTaken() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  t.lv->Command1->click();
  QCoreApplication::processEvents();
  t.mat->Command3->click();
  t.mat->Command6->click();
  QCoreApplication::processEvents();
  frmCalib* cal = t.mat->CalibWindow();
  QVERIFY(cal && cal->isVisible());
  cal->close();
  QCoreApplication::processEvents();
  // A second parameter, so that opening again takes other pairs.
  t.mat->Combo1->setCurrentIndex(1);
  emit t.mat->Combo1->activated(1);
  t.mat->Command3->click();
  QCoreApplication::processEvents();
  const CalibState& c = *t.mat->Calib();
  const float before = c.PairData(1, 1, 1);
  EnabledLog log(cal->Check4, c);
  t.mat->Command6->click();
  QCoreApplication::processEvents();
  QVERIFY(cal->isVisible());
  // Disabled before the station pairs come in, enabled again at the end.
  QVERIFY(log.steps.size() >= 2);
  QCOMPARE(log.steps.front().enabled, false);
  QCOMPARE(log.steps.front().firstPair, before);
  QCOMPARE(log.steps.back().enabled, true);
  QVERIFY(cal->Check4->isEnabled());
  const InterpolationState& in = t.session.Interp;
  QCOMPARE(c.PairData(1, 1, 1), static_cast<float>(in.InterpRefEstimate(1, 7)));
  QVERIFY(c.PairData(1, 1, 1) != before);
}

void TestFrmLuvane::typedParameterNameLeftCountsAsChosen() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  frmLuvaneCorrel* c = t.lv->Correl();
  QLineEdit* edit = c->Combo1->lineEdit();
  edit->selectAll();
  QTest::keyClicks(edit, "PAnn");
  QCOMPARE(c->Combo1->currentText(), QString("PAnn"));
  QCOMPARE(t.session.Interp.InterpCurrentParam, Count{6});
  // Leaving the list: the name counts as chosen.
  QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
  QApplication::sendEvent(edit, &out);
  QCOMPARE(t.session.Interp.InterpCurrentParam, Count{8});
  QCOMPARE(t.mat->Combo1->currentText(), QString("PAnn"));
  QCOMPARE(c->Combo1->count(), 3);  // a typed name is no new entry
  // Return in the list does the same.
  edit->selectAll();
  QTest::keyClicks(edit, "TJul");
  QTest::keyClick(edit, Qt::Key_Return);
  QCOMPARE(t.session.Interp.InterpCurrentParam, Count{7});
  QCOMPARE(c->Combo1->count(), 3);
  const std::string path = (t.folder.path() + "/typed.csv").toStdString();
  t.dialogs.SaveNames.push_back(path);
  c->mnuSave->trigger();
  QVERIFY(ReadAll(QString::fromStdString(path)).startsWith("\"TJul (Estimated)\""));
}

void TestFrmLuvane::narrowTargetFileReadsTheMissingColumnsAsZero() {
  Tool t;
  t.ImportStations(t.stations);
  // Positions and altitude only: the two lapse rates read 0.
  std::string table = "Site,Longitude,Latitude,Altitude\r\n";
  for (const demo::Site& site : t.sites)
    table += site.Name + "," + demo::Cell(site.Lon) + "," + demo::Cell(site.Lat) + "," +
             demo::Cell(site.Alt) + "\r\n";
  t.ImportTargets(t.Write("narrow.csv", QByteArray::fromStdString(table)));
  const InterpolationState& in = t.session.Interp;
  QVERIFY(in.InterpTargetLoaded);
  QVERIFY(t.dialogs.Messages.empty());
  QVERIFY(!t.lv->Command2->isEnabled());
  QVERIFY(t.lv->Command3->isEnabled());
  QCOMPARE(in.InterpTargetCount, Count(t.sites.size()));
  QCOMPARE(double(in.SiteAltitude(2)), std::nearbyint(t.sites[1].Alt * 100) / 100);
  for (long k = 4; k <= in.InterpColumnCount; ++k) QCOMPARE(in.InterpTargetLapse(2, k), 0.0);
  QVERIFY(Near(t.Map(), in.SiteLongitude(2), in.SiteLatitude(2), kYellow, 0));
  t.lv->Command3->click();
  QVERIFY(t.session.ClimateLoaded);
  QVERIFY(t.lv->Command1->isEnabled());
}

void TestFrmLuvane::radiusIsReadAsTheRunReadsIt() {
  Tool t;
  t.BothFiles();
  // "1,5" reads as 1 in the run: the reach circle and the grey square too.
  t.lv->Text3->setText("1,5");
  QCOMPARE(LenientParse(t.lv->Settings().Radius), 1.0);
  const InterpolationState& in = t.session.Interp;
  const double lon = in.SiteLongitude(4), lat = in.SiteLatitude(4);
  t.Hover(lon, lat);
  QVERIFY(Near(t.Map(), lon + 0.75, lat, kRed, 0));  // the radius line
  QVERIFY(Near(t.Map(), lon, lat + 1, kRed, 1));     // the circle of radius 1
  QVERIFY(!Near(t.Map(), lon, lat + 1.5, kRed, 1));
  t.Click(lon, lat);
  QVERIFY(Near(t.Map(), lon - 1.2, lat, kGrey, 1));  // the square's left edge
  QVERIFY(Near(t.Map(), lon + 1.2, lat, kGrey, 1));
}

void TestFrmLuvane::returnBringsBothWindowsToTheFront() {
  Tool t;
  t.BothFiles();
  t.lv->Command3->click();
  t.window->showMinimized();
  t.mat->showMinimized();
  QVERIFY(t.window->isMinimized());
  t.lv->Command1->click();
  QCoreApplication::processEvents();
  QVERIFY(!t.window->isMinimized());
  QVERIFY(!t.mat->isMinimized());
  QVERIFY(t.window->isVisible());
  QVERIFY(t.mat->isVisible());
}

void TestFrmLuvane::boundBoxesStandAtTheMapsCorners() {
  Tool t;
  t.ImportStations(t.stations);
  auto frame = [&](QWidget* w) { return QRect(w->mapTo(t.lv, QPoint(0, 0)), w->size()); };
  const QRect map = frame(t.lv->Picture1);
  const QRect upperLat = frame(t.lv->Text1[1]), lowerLat = frame(t.lv->Text1[0]);
  const QRect west = frame(t.lv->Text2[0]), east = frame(t.lv->Text2[1]);
  // The latitudes left of the map, the upper at its top, the lower at its
  // bottom; the longitudes under it, the western at its left.
  QVERIFY(upperLat.right() < map.left() && lowerLat.right() < map.left());
  QCOMPARE(upperLat.top(), map.top());
  QCOMPARE(lowerLat.bottom(), map.bottom());
  QVERIFY(west.top() > map.bottom() && east.top() > map.bottom());
  QCOMPARE(west.left(), map.left());
  QCOMPARE(east.right(), map.right());
  QCOMPARE(t.lv->Text1[1]->text(), QString::number(t.session.Interp.MaxLat));
  QCOMPARE(t.lv->Text2[1]->text(), QString::number(t.session.Interp.MaxLon));
}

void TestFrmLuvane::zeroPairColumnShowsZeroBesideN1() {
  Tool t;
  // Empty has no value at any station: no pair.
  std::string table = "St,Lon,Lat,Alt,TL,PL,TJan,Empty\r\n";
  demo::Lcg g(5);
  for (int j = 1; j <= 120; ++j) {
    const double lon = -8 + 36 * g.Next(), lat = 37 + 21 * g.Next();
    table += "S" + std::to_string(j) + "," + demo::Cell(lon) + "," + demo::Cell(lat) +
             ",0,-0.5,30," + demo::Cell(demo::TJan(lon, lat, 0)) + ",-9999\r\n";
  }
  t.ImportStations(t.Write("empty.csv", QByteArray::fromStdString(table)));
  t.ImportTargets(t.targets);
  t.lv->Command3->click();
  t.lv->Command1->click();
  QCoreApplication::processEvents();
  t.mat->Command3->click();
  t.mat->Command6->click();
  QCoreApplication::processEvents();
  frmCalib* cal = t.mat->CalibWindow();
  QVERIFY(cal);
  t.lv->Command3->click();
  frmLuvaneCorrel* c = t.lv->Correl();
  QVERIFY(c->isVisible());
  QVERIFY(cal->Label12[1]->text().toInt() > 100);
  emit c->Combo1->textActivated("Empty");
  QCOMPARE(t.session.Interp.InterpCurrentParam, Count{7});
  QCOMPARE(t.session.Interp.InterpPairCount, Count{0});
  QCOMPARE(cal->Label12[1]->text(), QString("0"));
}

void TestFrmLuvane::stationsOnOneParallelAndMeridianKeepAMap() {
  Tool t;
  // All stations on the parallel 40 N, between 0 and 20 E.
  std::string table = "St,Lon,Lat,Alt,TL,PL,TJan\r\n";
  for (int j = 0; j <= 10; ++j)
    table += "S" + std::to_string(j) + "," + std::to_string(2 * j) + ",40,0,-0.5,30,5\r\n";
  t.ImportStations(t.Write("parallel.csv", QByteArray::fromStdString(table)));
  QCOMPARE(t.lv->Text1[0]->text(), QString("35"));
  QCOMPARE(t.lv->Text1[1]->text(), QString("45"));
  QCOMPARE(t.lv->Text2[0]->text(), QString("0"));
  QCOMPARE(t.lv->Text2[1]->text(), QString("20"));
  Surface& map = t.Map();
  QCOMPARE(map.ScaleTop(), 45.0);
  QVERIFY(map.ScaleHeight() < 0);  // latitude grows upwards
  // Twice as wide as high, a degree as long both ways.
  QVERIFY(std::abs(t.lv->Picture1->width() - 2 * t.lv->Picture1->height()) <= 2);
  // Small green discs, and the coast of Italy and Greece.
  QVERIFY(Near(map, 10, 40, kGreen, 0));
  QVERIFY(!Near(map, 10, 41, kGreen, 0));
  int coast = 0;
  for (int y = 0; y < map.Image().height(); ++y)
    for (int x = 0; x < map.Image().width(); ++x)
      if (map.Image().pixelColor(x, y) == kGrey) ++coast;
  QVERIFY(coast > 200);
  // A single station: a square of 10 degrees around it.
  Tool u;
  u.ImportStations(u.Write("one.csv",
                           "St,Lon,Lat,Alt,TL,PL,TJan\r\nA,10,40,0,-0.5,30,5\r\n"
                           "B,10,40,0,-0.5,30,6\r\n"));
  QCOMPARE(u.lv->Text2[0]->text(), QString("5"));
  QCOMPARE(u.lv->Text2[1]->text(), QString("15"));
  QCOMPARE(u.lv->Text1[0]->text(), QString("35"));
  QVERIFY(std::abs(u.lv->Picture1->width() - u.lv->Picture1->height()) <= 2);
}

void TestFrmLuvane::blankCellInARowStopsTheImportUnderError() {
  Tool t;
  const std::string blank = t.Write(
      "blank.csv",
      "St,Lon,Lat,Alt,TL,PL,TJan\r\nA,1,2,3,-0.5,30,5\r\nB,2,3,4,-0.5,30,6\r\nC,3,4,5,,30,7\r\n");
  t.ImportStations(blank);
  QCOMPARE(t.dialogs.Messages.size(), std::size_t(1));
  QCOMPARE(t.dialogs.Messages[0].Text, std::string("Blanc cell detected."));
  QCOMPARE(t.dialogs.Messages[0].Title, std::string("Error"));
  QVERIFY(t.lv->Command0->isEnabled());
  QVERIFY(!t.session.Interp.InterpRefLoaded);
}

void TestFrmLuvane::windowStaysOnTheScreenWhenTheMapGrows() {
  Tool t;
  const QRect screen = AvailableArea(t.lv);
  // Stations over 180 by 60 degrees make a map three times as wide as high.
  std::string table = "St,Lon,Lat,Alt,TL,PL,TJan\r\n";
  table += "A,-120,-20,0,-0.5,30,5\r\nB,60,40,0,-0.5,30,6\r\nC,0,0,0,-0.5,30,7\r\n";
  t.lv->move(screen.right() - t.lv->frameGeometry().width(), screen.top() + 10);
  t.ImportStations(t.Write("wide.csv", QByteArray::fromStdString(table)));
  QCoreApplication::processEvents();
  QVERIFY2(screen.contains(t.lv->frameGeometry()),
           qPrintable(QString("%1,%2 %3x%4")
                          .arg(t.lv->frameGeometry().x())
                          .arg(t.lv->frameGeometry().y())
                          .arg(t.lv->frameGeometry().width())
                          .arg(t.lv->frameGeometry().height())));
  for (QPushButton* b : {t.lv->Command0, t.lv->Command3, t.lv->Command4})
    QVERIFY(screen.contains(QRect(b->mapToGlobal(QPoint(0, 0)), b->size())));
}

void TestFrmLuvane::accuracyWindowAndMagnifierDoNotCoverEachOther() {
  Tool t;
  t.BothFiles();
  const InterpolationState& in = t.session.Interp;
  t.Click(in.SiteLongitude(4), in.SiteLatitude(4));
  t.lv->Command3->click();
  QCoreApplication::processEvents();
  const QRect mag = t.lv->Magnifier()->frameGeometry(), acc = t.lv->Correl()->frameGeometry();
  const QRect screen = AvailableArea(t.lv);
  QVERIFY(t.lv->Magnifier()->isVisible() && t.lv->Correl()->isVisible());
  QVERIFY(!mag.intersects(acc));
  QVERIFY(screen.contains(mag));
  QVERIFY(screen.contains(acc));
}

void TestFrmLuvane::coastHoldsTheGreatLakes() {
  Tool t;
  const Coastline& coast = t.lv->Coast();
  QVERIFY(coast.Segments.size() >= 8000 && coast.Segments.size() <= 20000);
  // Shores of Lake Superior and Lake Erie, far from the sea.
  auto within = [&](float west, float south, float east, float north) {
    int n = 0;
    for (const auto& g : coast.Segments)
      if (g[0] >= west && g[0] <= east && g[1] >= south && g[1] <= north) ++n;
    return n;
  };
  QVERIFY(within(-92.5f, 46.3f, -84.5f, 49.2f) > 20);
  QVERIFY(within(-83.5f, 41.3f, -78.8f, 43.0f) > 10);
  // The magnifier over Lake Erie shows its shore.
  std::string table = "St,Lon,Lat,Alt,TL,PL,TJan\r\n";
  table += "A,-90,35,0,-0.5,30,5\r\nB,-70,50,0,-0.5,30,6\r\n";
  t.ImportStations(t.Write("lakes.csv", QByteArray::fromStdString(table)));
  t.Click(-81.5, 42.3);
  const Surface& m = t.lv->Magnifier()->Picture2->surface();
  int grey = 0;
  for (int y = 0; y < m.Image().height(); ++y)
    for (int x = 0; x < m.Image().width(); ++x)
      if (m.Image().pixelColor(x, y) == kGrey) ++grey;
  QVERIFY(grey > 100);
}

// Every button, box, list and slider of the tool and of its other windows
// carries a tool tip, from the first look to the accuracy check.
void TestFrmLuvane::everyControlOfTheToolSaysWhatItDoes() {
  Tool t;
  auto check = [](QWidget* window, int least) {
    int walked = 0;
    const QStringList missing = uitest::WithoutToolTip(window, false, &walked);
    QVERIFY2(missing.isEmpty(), qPrintable(missing.join(", ") + " without a tool tip"));
    QVERIFY2(walked >= least, qPrintable(window->objectName() + ": too few controls walked"));
  };
  // Import, target, options, factor, radius, unit, the three buttons and the four bounds.
  check(t.lv, 14);
  QVERIFY(t.lv->Command2->toolTip().contains("needs"));
  QVERIFY(t.lv->Command3->toolTip().contains("needs"));
  QVERIFY(t.lv->Command1->toolTip().contains("needs"));
  t.lv->mnuHelp->trigger();
  check(t.lv->Help(), 0);
  t.BothFiles();
  check(t.lv, 14);
  t.Click(t.sites[0].Lon, t.sites[0].Lat);
  QVERIFY(t.lv->Magnifier() && t.lv->Magnifier()->isVisible());
  check(t.lv->Magnifier(), 0);
  t.lv->Command3->click();
  frmLuvaneCorrel* c = t.lv->Correl();
  QVERIFY(c && c->isVisible());
  // The parameter and the two bounds of the axes.
  check(c, 3);
  // The captions stay as they were.
  QCOMPARE(t.lv->Command4->text(), QString("Close"));
  QCOMPARE(t.lv->Combo2->currentText(), QString("Degree"));
}

QTEST_MAIN(TestFrmLuvane)
#include "tst_frmLuvane.moc"
