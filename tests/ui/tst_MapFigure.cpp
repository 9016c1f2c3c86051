// The map's figure functions on their own: the coastline file and its
// pieces, the names under the pointer, the targets in reach, the marks and
// the magnifier, drawn into surfaces with no window.
#include <QTemporaryDir>
#include <QTest>

#include "PixelSupport.h"
#include "presentation/MapFigure.h"

using namespace varnoth;
using varnoth::uitest::Near;

namespace {

// Two stations and three targets; target 2 stands on station 1.
Session Sites() {
  Session s;
  InterpolationState& in = s.Interp;
  in.InterpRefCount = 2;
  in.InterpRefLon.ReDim(2);
  in.InterpRefLat.ReDim(2);
  in.InterpRefNames.ReDim(2);
  in.InterpRefLon(1) = 10;
  in.InterpRefLat(1) = 45;
  in.InterpRefNames(1) = "Station one";
  in.InterpRefLon(2) = 10.1f;
  in.InterpRefLat(2) = 45.1f;
  in.InterpRefNames(2) = "Station two";
  in.InterpTargetCount = 3;
  in.SiteLongitude.ReDim(3);
  in.SiteLatitude.ReDim(3);
  in.SiteMapNames.ReDim(3);
  const float lon[] = {0, 12, 10, 20}, lat[] = {0, 40, 45, 50};
  for (long i = 1; i <= 3; ++i) {
    in.SiteLongitude(i) = lon[i];
    in.SiteLatitude(i) = lat[i];
    in.SiteMapNames(i) = "Site " + std::to_string(i);
  }
  in.InterpRefLoaded = in.InterpTargetLoaded = true;
  s.ClimateData.ReDim(3, 1);
  s.ClimateData(1, 1) = 4;
  s.ClimateData(2, 1) = 5;
  s.ClimateData(3, 1) = kMissing;
  s.ClimateLoaded = true;
  return s;
}

}  // namespace

class TestMapFigure : public QObject {
  Q_OBJECT
 private slots:
  void coastlineFileSkipsLinesThatAreNotFourNumbers() {
    QTemporaryDir dir;
    const QString path = dir.path() + "/coast.csv";
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write("1.5,2,3,4\r\nnot,a,segment,here\r\n-5,-6.25,7,8\r\n1,2,3\r\n");
    f.close();
    const Coastline c = LoadCoastline(path.toStdString());
    QCOMPARE(c.Segments.size(), std::size_t(2));
    QCOMPARE(c.Segments[1][1], -6.25f);
    QVERIFY(LoadCoastline((dir.path() + "/none.csv").toStdString()).Segments.empty());
  }
  void piecesAreTwelveConsecutiveSlices() {
    Coastline c;
    c.Segments.resize(7961);
    std::size_t end = 0, largest = 0, smallest = c.Segments.size();
    for (int piece = 1; piece <= kCoastPieces; ++piece) {
      const auto [first, last] = CoastPiece(c, piece);
      QCOMPARE(first, end);
      largest = std::max(largest, last - first);
      smallest = std::min(smallest, last - first);
      end = last;
    }
    QCOMPARE(end, c.Segments.size());
    QVERIFY(largest - smallest <= 1);
  }
  void coastlineIsDrawnInGreyPieceByPiece() {
    Coastline c;
    for (int i = 0; i < 24; ++i) c.Segments.push_back({-170.0f + 14 * i, 0, -165.0f + 14 * i, 0});
    Surface map(720, 360);
    SetMapScale(map, -90, 90, -180, 180);
    map.SetBackColour(Qt::white);
    std::vector<int> told;
    DrawCoastline(map, c, [&](int piece) { told.push_back(piece); });
    QCOMPARE(int(told.size()), 12);
    QCOMPARE(told.back(), 12);
    QVERIFY(Near(map, -167.5, 0, kCoastColour, 1));
    QVERIFY(!Near(map, -160, 20, kCoastColour, 1));
  }
  void aTargetWinsOverTheStationItStandsOn() {
    const Session s = Sites();
    QCOMPARE(SiteNameAt(s.Interp, 10, 45, kMapHover), std::string("Site 2"));
    // Without the target file only the stations are named; of two in
    // reach the later one.
    InterpolationState in = s.Interp;
    in.InterpTargetLoaded = false;
    QCOMPARE(SiteNameAt(in, 10.05, 45.05, kMapHover), std::string("Station two"));
  }
  void theReachIsStrict() {
    const Session s = Sites();
    // 0.2 away exactly is outside; a little less is inside.
    QVERIFY(TargetsAt(s.Interp, 12.2, 40, kMapHover).empty());
    QCOMPARE(TargetsAt(s.Interp, 12.19, 40, kMapHover), std::vector<Count>{1});
    QCOMPARE(SiteNameAt(s.Interp, 12.2, 40, kMapHover), std::string());
  }
  void marksInTheirColours() {
    const Session s = Sites();
    // At 40 pixels a degree a mark shows its fill inside its outline.
    Surface big(1000, 1000);
    SetMapScale(big, 35, 60, 0, 25);
    big.SetBackColour(Qt::white);
    DrawStations(big, s.Interp, kMapMark);
    DrawTargets(big, s.Interp, kMapMark);
    DrawNoDataTargets(big, s, kMapMark);
    // Station two's disc where target 2's does not cover it.
    QVERIFY(Near(big, 10.3, 45.1, kStationColour, 0));
    QVERIFY(Near(big, 12, 40, kTargetFill, 0));
    QVERIFY(Near(big, 12.25, 40, kTargetOutline, 1));
    QVERIFY(Near(big, 20, 50, kNoDataFill, 0));
    QVERIFY(Near(big, 20.25, 50, kNoDataOutline, 1));
    QVERIFY(!Near(big, 12, 40, kNoDataFill, 0));
  }
  void reachDrawsTheMarkTheRadiusAndTheCircle() {
    Surface map(1000, 1000);
    SetMapScale(map, 35, 55, 0, 20);
    map.SetBackColour(Qt::white);
    DrawReach(map, 10, 45, kMapMark, 3);
    QVERIFY(Near(map, 10, 45, kReachColour, 0));
    QVERIFY(Near(map, 11.5, 45, kReachColour, 0));
    QVERIFY(Near(map, 10, 48, kReachColour, 1));
    QVERIFY(!Near(map, 10, 46.5, kReachColour, 1));
  }
  void magnifierShowsTheSquareAroundThePoint() {
    const Session s = Sites();
    Coastline c;
    c.Segments.push_back({9, 44, 11, 44});
    Surface m(300, 300);
    DrawMagnifier(m, s, c, 10, 45, 1.2);
    QCOMPARE(m.ScaleTop(), 46.2);
    QCOMPARE(m.ScaleHeight(), -2.4);
    QCOMPARE(m.ScaleLeft(), 8.8);
    QVERIFY(Near(m, 10, 44, kCoastColour, 1));
    // Site 2 stands on station 1: its yellow mark on top.
    QVERIFY(Near(m, 10, 45, kTargetFill, 0));
    QVERIFY(Near(m, 10.1, 45.1, kStationColour, 0));
  }
  void analogueRingsFollowTheSelectedSample() {
    Session s = Sites();
    s.SampleCursor = 1;
    s.AnalogueCount.ReDim(1);
    s.AnalogueCount(1) = 1;
    s.AnalogueSite.ReDim(1, 20);
    s.AnalogueSite(1, 1) = 3;
    Surface map(1000, 1000);
    SetMapScale(map, 35, 60, 0, 25);
    map.SetBackColour(Qt::white);
    DrawAnalogueRings(map, s, kMapMark);
    QVERIFY(Near(map, 20.25, 50, kReachColour, 1));
    QVERIFY(!Near(map, 12.25, 40, kReachColour, 2));
  }
};

QTEST_MAIN(TestMapFigure)
#include "tst_MapFigure.moc"
