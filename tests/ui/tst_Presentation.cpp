// Colour slots and ramp, the drawing surface and the scatter figures, drawn
// into images with no window.
#include <QClipboard>
#include <QGuiApplication>
#include <QTest>
#include <cmath>

#include "PixelSupport.h"
#include "presentation/Colours.h"
#include "presentation/FigureServices.h"
#include "presentation/Scatter.h"
#include "presentation/Surface.h"

using namespace varnoth;

namespace {

using varnoth::uitest::Inked;
using varnoth::uitest::IsWhite;
using varnoth::uitest::Near;

// A session with three taxa and a few sites and samples, scored by hand.
void SmallSession(Session& s) {
  s.ReferenceIsBase = true;
  s.TaxaCount = s.RefTaxaCount = s.FossilTaxaCount = 3;
  s.RefTaxaNames.ReDim(3);
  s.RefTaxaNames(1) = "Pinus";
  s.RefTaxaNames(2) = "Quercus";
  s.RefTaxaNames(3) = "Betula";
  s.Loadings.ReDim(3, 3);
  s.Loadings(1, 1) = 0.5;
  s.Loadings(2, 2) = -0.5;
  s.Loadings(3, 3) = 0.3;
  s.RefSiteCount = 2;
  s.RefSiteNames.ReDim(2);
  s.RefSiteNames(1) = "A";
  s.RefSiteNames(2) = "B";
  s.RefScores.ReDim(2, 3);
  s.RefScores(1, 1) = 2;
  s.RefScores(1, 2) = 2;
  s.RefScores(2, 1) = -2;
  s.RefScores(2, 2) = -1;
  s.SiteIsExtreme.ReDim(2);
  s.FossilSampleCount = 4;
  s.FossilLabels.ReDim(4);
  for (int i = 1; i <= 4; ++i) s.FossilLabels(i) = std::to_string(10 * i);
  s.FossilScores.ReDim(4, 3);
  s.FossilScores(1, 1) = -3;
  s.FossilScores(1, 2) = 3;
  s.FossilScores(2, 1) = -1;
  s.FossilScores(2, 2) = 3;
  s.FossilScores(3, 1) = 1;
  s.FossilScores(3, 2) = 3;
  s.FossilScores(4, 1) = 3;
  s.FossilScores(4, 2) = 3;
  s.FossilEmptySample.ReDim(4);
  s.SampleIsOut.ReDim(4);
  s.UseCorrelation = false;
  s.ScatterZoom = 4;
}

}  // namespace

class tst_Presentation : public QObject {
  Q_OBJECT
 private slots:
  void colourPresetSlots() {
    ColourSettings c;
    ApplyColourPreset(c);
    QCOMPARE(c.Slot(1), (Rgb{0, 0, 255}));
    QCOMPARE(c.Slot(2), (Rgb{0, 255, 0}));
    QCOMPARE(c.Slot(3), (Rgb{255, 0, 0}));
    QCOMPARE(c.Slot(4), (Rgb{255, 150, 0}));
    QCOMPARE(c.Slot(5), (Rgb{0, 128, 0}));
    QCOMPARE(c.Slot(6), (Rgb{0, 0, 128}));
    QVERIFY(!c.GreyMode);
    QCOMPARE(c.PaletteWhite, 0.1f);
    QCOMPARE(c.Break(0, 0), 0.3f);
    QCOMPARE(c.Break(2, 3), 0.35f);
    QCOMPARE(c.PaletteBreaks[1], 0.15f);  // entry c + 3 r: green, break 0
  }

  void greyPresetKeepsSlotThreeRed() {
    ColourSettings c;
    ApplyColourPreset(c);
    ApplyGreyPreset(c);
    QVERIFY(c.GreyMode);
    QCOMPARE(c.Slot(1), (Rgb{100, 100, 100}));
    QCOMPARE(c.Slot(2), (Rgb{100, 100, 100}));
    QCOMPARE(c.Slot(3), (Rgb{255, 0, 0}));
    QCOMPARE(c.Slot(4), (Rgb{150, 150, 150}));
    QCOMPARE(c.Slot(5), (Rgb{100, 100, 100}));
    QCOMPARE(c.Slot(6), (Rgb{100, 100, 100}));
    // Slot 3 keeps whatever it held, not a fixed red.
    c.SmoothCurveColour = {1, 2, 3};
    ApplyGreyPreset(c);
    QCOMPARE(c.Slot(3), (Rgb{1, 2, 3}));
  }

  void colourRamp() {
    ColourSettings c;
    ApplyColourPreset(c);
    auto v = EvaluatePalette(c, 0.05);
    QCOMPARE(v, (std::array<std::int16_t, 3>{255, 255, 255}));
    QCOMPARE(c.PaletteRgb, v);
    v = EvaluatePalette(c, 0.1);  // up to the white limit inclusive
    QCOMPARE(v, (std::array<std::int16_t, 3>{255, 255, 255}));
    // At 0.3 red has not begun, green is full, and blue falls half way
    // between its breaks 0.25 and 0.35.
    v = EvaluatePalette(c, 0.3);
    QCOMPARE(v[0], std::int16_t(0));
    QCOMPARE(v[1], std::int16_t(255));
    QVERIFY(v[2] == 127 || v[2] == 128);
    for (double x : {0.95, 0.99, 1.0}) {
      v = EvaluatePalette(c, x);
      QCOMPARE(v, (std::array<std::int16_t, 3>{0, 0, 0}));
    }
    // Rising part of red: (0.375 - 0.3) / 0.15 * 255 = 127.5.
    v = EvaluatePalette(c, 0.375);
    QVERIFY(v[0] == 127 || v[0] == 128);
  }

  void greyRamp() {
    ColourSettings c;
    ApplyGreyPreset(c);
    auto v = EvaluatePalette(c, 0.3);
    for (auto ch : v) QVERIFY(ch == 127 || ch == 128);
    QVERIFY(v[0] == v[1] && v[1] == v[2]);
    v = EvaluatePalette(c, 0.6);
    QCOMPARE(v, (std::array<std::int16_t, 3>{0, 0, 0}));
    v = EvaluatePalette(c, 0.0);
    QCOMPARE(v, (std::array<std::int16_t, 3>{255, 255, 255}));
  }

  void equalBreaksDoNotDivide() {
    ColourSettings c;
    ApplyColourPreset(c);
    for (int ch = 0; ch < 3; ++ch)
      for (int r = 0; r < 4; ++r) c.Break(ch, r) = 0.5f;
    for (double x : {0.2, 0.5, 0.7}) {
      auto v = EvaluatePalette(c, x);
      QCOMPARE(v, (std::array<std::int16_t, 3>{0, 0, 0}));
    }
    // Breaks that have passed each other give no division either.
    c.Break(0, 0) = 0.6f;
    c.Break(0, 1) = 0.4f;
    auto v = EvaluatePalette(c, 0.5);
    QVERIFY(v[0] >= 0 && v[0] <= 255);
  }

  void userScaleWithNegativeHeight() {
    Surface s(240, 240);
    s.SetScale(-1.2, 1.2, 2.4, -2.4);
    QCOMPARE(s.ToPixel(-1.2, 1.2), QPointF(0, 0));
    QCOMPARE(s.ToPixel(1.2, -1.2), QPointF(240, 240));
    QCOMPARE(s.ToPixel(0, 0), QPointF(120, 120));
    // y grows upwards.
    QVERIFY(s.ToPixel(0, 1).y() < s.ToPixel(0, 0).y());
  }

  void shapes() {
    Surface s(100, 100);
    s.SetScale(0, 100, 100, -100);
    s.SetBackColour(Qt::white);
    s.Line(10, 50, 90, 50, Qt::red);
    QVERIFY(Near(s, 50, 50, QColor(Qt::red)));
    s.Box(10, 10, 30, 30, Qt::blue);
    QVERIFY(IsWhite(s.PixelAtUser(20, 20)));
    s.FilledBox(60, 10, 80, 30, Qt::green);
    QCOMPARE(s.PixelAtUser(70, 20), QColor(Qt::green));
    s.SetFillStyle(FillStyle::Solid);
    s.SetFillColour(Qt::magenta);
    s.Circle(30, 80, 8, Qt::black);
    QCOMPARE(s.PixelAtUser(30, 80), QColor(Qt::magenta));
    s.SetFillStyle(FillStyle::Transparent);
    s.Circle(70, 80, 8, Qt::black);
    QVERIFY(IsWhite(s.PixelAtUser(70, 80)));
    QVERIFY(Inked(s, 60, 70, 80, 90) > 0);
  }

  void circleRadiusInHorizontalUnits() {
    // A surface twice as high in units as wide: the radius follows x.
    Surface s(200, 200);
    s.SetScale(0, 0, 100, 200);
    s.SetBackColour(Qt::white);
    s.SetFillStyle(FillStyle::Solid);
    s.SetFillColour(Qt::black);
    s.Circle(50, 100, 10, Qt::black);  // 20 pixels across
    QVERIFY(!IsWhite(s.PixelAt(100 + 17, 100)));
    QVERIFY(IsWhite(s.PixelAt(100 + 23, 100)));
    QVERIFY(!IsWhite(s.PixelAt(100, 100 + 17)));
    QVERIFY(IsWhite(s.PixelAt(100, 100 + 23)));
  }

  void ringIsHollowWithRadiusInHorizontalUnits() {
    Surface s(200, 200);
    s.SetScale(0, 0, 100, 200);
    s.SetBackColour(Qt::white);
    s.Ring(50, 100, 10, Qt::black);  // 20 pixels across, one pixel wide
    for (const QPoint& p : {QPoint(120, 100), QPoint(80, 100), QPoint(100, 120), QPoint(100, 80)})
      QCOMPARE(s.PixelAt(p.x(), p.y()), QColor(Qt::black));
    QVERIFY(IsWhite(s.PixelAt(100, 100)));
    QVERIFY(IsWhite(s.PixelAt(118, 100)));
    QVERIFY(IsWhite(s.PixelAt(122, 100)));
    // A mark far off the picture draws nothing and fails nothing.
    s.Ring(-1e12, 100, 10, Qt::black);
    int inked = 0;
    for (int y = 0; y < 200; ++y)
      for (int x = 0; x < 200; ++x) inked += IsWhite(s.PixelAt(x, y)) ? 0 : 1;
    QVERIFY(inked > 60 && inked < 140);
  }

  void drawWidthWidensLinesAndPoints() {
    Surface s(40, 40);
    s.SetScale(0, 0, 40, 40);
    s.SetBackColour(Qt::white);
    s.SetDrawWidth(2);
    s.Line(20, 5, 20, 35, Qt::black);
    s.Point(5, 5, Qt::black);
    s.SetDrawWidth(1);
    int wide = 0;
    for (int x = 0; x < 40; ++x) wide += IsWhite(s.PixelAt(x, 20)) ? 0 : 1;
    QCOMPARE(wide, 2);
    int point = 0;
    for (int y = 0; y < 12; ++y)
      for (int x = 0; x < 12; ++x) point += IsWhite(s.PixelAt(x, y)) ? 0 : 1;
    QCOMPARE(point, 4);
  }

  void clearReturnsToStoredBackground() {
    Surface s(50, 50);
    s.SetScale(0, 0, 50, 50);
    s.SetBackColour(Qt::white);
    s.FilledBox(0, 0, 10, 10, Qt::blue);
    s.StoreBackground();
    s.FilledBox(30, 30, 40, 40, Qt::red);
    QCOMPARE(s.PixelAt(35, 35), QColor(Qt::red));
    s.Clear();
    QVERIFY(IsWhite(s.PixelAt(35, 35)));
    QCOMPARE(s.PixelAt(5, 5), QColor(Qt::blue));
    // Without a stored background clear wipes to the background colour.
    s.SetBackColour(Qt::yellow);
    s.FilledBox(0, 0, 10, 10, Qt::blue);
    s.Clear();
    QCOMPARE(s.PixelAt(5, 5), QColor(Qt::yellow));
  }

  void printAndRotatedText() {
    Surface s(200, 200);
    s.SetScale(0, 0, 200, 200);
    s.SetBackColour(Qt::white);
    s.SetFontSize(7);
    s.Print(20, 20, "EOF-1");
    QVERIFY(Inked(s, 20, 20, 60, 32) > 10);
    QCOMPARE(Inked(s, 0, 0, 18, 18), 0);
    // Rotated text reads upwards from its point: tall and narrow.
    s.PrintRotated(150, 190, "Quercus robur", Qt::black);
    QVERIFY(Inked(s, 150, 120, 165, 190) > 10);
    QCOMPARE(Inked(s, 100, 150, 145, 199), 0);
  }

  void copyPutsTheImageOnTheClipboard() {
    Surface s(40, 30);
    s.SetScale(0, 0, 40, 30);
    s.SetBackColour(Qt::white);
    s.FilledBox(0, 0, 20, 30, Qt::red);
    QGuiApplication::clipboard()->setText("old");
    s.CopyToClipboard();
    const QImage got = QGuiApplication::clipboard()->image();
    QCOMPARE(got.size(), QSize(40, 30));
    QCOMPARE(got.pixelColor(5, 5), QColor(Qt::red));
    QVERIFY(QGuiApplication::clipboard()->text().isEmpty());
  }

  void edgeTicks() {
    Surface s(100, 1000);
    s.SetScale(0, 0, 100, 1000);
    s.SetBackColour(Qt::white);
    s.SetAntialiasing(false);
    DrawEdgeTicks(s, {50}, Qt::black);
    // Top: from 0 to 8 of 1000; bottom: from 1000 down to 988.
    QVERIFY(!IsWhite(s.PixelAt(50, 3)));
    QVERIFY(IsWhite(s.PixelAt(50, 20)));
    QVERIFY(!IsWhite(s.PixelAt(50, 994)));
    QVERIFY(IsWhite(s.PixelAt(50, 980)));
    QVERIFY(IsWhite(s.PixelAt(50, 500)));
  }

  void outwardRounding() {
    QCOMPARE(RoundLowerOut(15, 5), 10.0);  // odd multiple moves out
    QCOMPARE(RoundLowerOut(20, 5), 20.0);  // even multiple stays
    QCOMPARE(RoundUpperOut(15, 5), 20.0);
    QCOMPARE(RoundUpperOut(20, 5), 20.0);
    QCOMPARE(RoundLowerOut(12, 5), 10.0);
    QCOMPARE(RoundUpperOut(12, 5), 15.0);
    QCOMPARE(RoundLowerOut(-12, 5), -15.0);
    QCOMPARE(AccuracyScatterUnit(250), 50.0);
    QCOMPARE(AccuracyScatterUnit(-250), 50.0);
  }

  void tickSteps() {
    QCOMPARE(TickStep(1), Count(2));
    QCOMPARE(TickStep(2), Count(1));
    QCOMPARE(TickStep(4), Count(1));
    QCOMPARE(TickStep(8), Count(2));
    QCOMPARE(TickStep(16), Count(4));
    QCOMPARE(TickStep(32), Count(4));
    QCOMPARE(TickStep(64), Count(8));
    QCOMPARE(TickStep(256), Count(32));
  }

  void projection() {
    RotationPair none;
    ScreenPoint flat = ProjectPoint(none, 1, 2, 3, false);
    QCOMPARE(flat.X, 1.0f);
    QCOMPARE(flat.Y, 2.0f);
    QCOMPARE(flat.Depth, 3.0f);
    // No turn, no tilt: x goes into the depth, y stays up, z points left.
    ScreenPoint p = ProjectPoint(none, 1, 2, 3, true);
    QCOMPARE(p.X, -3.0f);
    QCOMPARE(p.Y, 2.0f);
    QCOMPARE(p.Depth, 1.0f);
    // A quarter turn brings y onto the screen's X axis (with the sign of
    // -sin A1 * y) and z into the depth.
    RotationPair quarter{3.1415926535898 / 2, 0};
    p = ProjectPoint(quarter, 0, 1, 0, true);
    QVERIFY(std::abs(p.X + 1) < 1e-6);
    QVERIFY(std::abs(p.Y) < 1e-6);
  }

  void stereoPartner() {
    const double three = 3 * 3.1415926535898 / 180;
    QVERIFY(std::abs(StereoPartnerX(1, 0) - std::cos(three)) < 1e-12);
    QVERIFY(std::abs(StereoPartnerX(-1, 0) + std::cos(three)) < 1e-12);
    // x0 of 0 takes a quarter turn whatever the sign of the depth.
    QVERIFY(std::abs(StereoPartnerX(0, 2) + 2 * std::sin(three)) < 1e-12);
    QVERIFY(std::abs(StereoPartnerX(0, -2) + 2 * std::sin(three)) < 1e-12);
  }

  void partnerPicturePlacesPointsByThePartnerFormula() {
    // One taxon drawn alone in 3-D: its mark on the partner stands at the
    // stereo partner of its X on the first picture.
    Session s;
    SmallSession(s);
    s.Loadings.ReDim(3, 3);
    s.Loadings(2, 1) = -3;
    s.Loadings(2, 2) = 1.5;
    s.Loadings(2, 3) = 2;
    s.RotationAngles = {0.7, 0.3};
    ColourSettings c;
    ApplyColourPreset(c);
    ScatterView view;
    view.ThreeD = true;
    view.Stereo = true;
    view.TaxaNames = NameDisplay::Hide;
    view.TicksAndLabels = false;
    Surface main(400, 400), partner(400, 400);
    DrawTaxa(s, c, view, 1, 2, 3, {&main, &partner});
    const ScreenPoint p = ProjectPoint(s.RotationAngles, -3, 1.5, 2, true);
    QVERIFY(Near(main, p.X, p.Y, QColor(0, 0, 255), 0));
    QVERIFY(Near(partner, StereoPartnerX(p.X, p.Depth), p.Y, QColor(0, 0, 255), 0));
    QVERIFY(std::abs(StereoPartnerX(p.X, p.Depth) - p.X) > 0.05);
  }

  void ranges() {
    Session s;
    s.ScatterZoom = 16;
    s.UseCorrelation = true;
    QCOMPARE(TaxaRange(s), 1.0);
    QCOMPARE(SitesRange(s), 16.0);
    s.UseCorrelation = false;
    QCOMPARE(TaxaRange(s), 16.0);
  }

  void taxaFigure() {
    Session s;
    SmallSession(s);
    ColourSettings c;
    ApplyColourPreset(c);
    ScatterView view;
    Surface main(300, 300), partner(300, 300);
    DrawTaxa(s, c, view, 1, 2, 3, {&main, &partner});
    QCOMPARE(main.ScaleLeft(), -4.8);
    QCOMPARE(main.ScaleTop(), 4.8);
    QCOMPARE(main.ScaleWidth(), 9.6);
    QCOMPARE(main.ScaleHeight(), -9.6);
    // Taxon 1 at (0.5, 0): a filled mark in the first slot.
    QCOMPARE(main.PixelAtUser(0.5, 0.0), QColor(0, 0, 255));
    // Its name to the upper right.
    QVERIFY(Inked(main, 0.5 + 0.24, 0.24, 2.0, -0.1) > 5);
    // No stereo: the partner stays as it was.
    QCOMPARE(Inked(partner, -4.8, 4.8, 4.8, -4.8), 0);
    view.Stereo = true;
    DrawTaxa(s, c, view, 1, 2, 3, {&main, &partner});
    QVERIFY(Inked(partner, -4.8, 4.8, 4.8, -4.8) > 100);
  }

  void correlationKeepsTaxaAtOne() {
    Session s;
    SmallSession(s);
    s.UseCorrelation = true;
    s.ScatterZoom = 64;
    ColourSettings c;
    ApplyColourPreset(c);
    Surface taxa(300, 300), sites(300, 300);
    DrawTaxa(s, c, ScatterView{}, 1, 2, 3, {&taxa, nullptr});
    DrawSites(s, c, ScatterView{}, 1, 2, 3, {&sites, nullptr});
    QCOMPARE(taxa.ScaleWidth(), 2.4);
    QCOMPARE(sites.ScaleWidth(), 2.4 * 64);
  }

  void ticksAndNumberLabels() {
    Session s;
    SmallSession(s);
    s.Loadings.ReDim(3, 3);  // all taxa at the centre, out of the way
    ColourSettings c;
    ApplyColourPreset(c);
    ScatterView view;
    view.TaxaNames = NameDisplay::Hide;
    Surface on(400, 400), off(400, 400);
    DrawTaxa(s, c, view, 1, 2, 3, {&on, nullptr});
    view.TicksAndLabels = false;
    DrawTaxa(s, c, view, 1, 2, 3, {&off, nullptr});
    const double R = 4;
    // A tick at x = 2 stands above the axis.
    QVERIFY(Inked(on, 1.95, 0.033 * R * 0.9, 2.05, 0.033 * R * 0.3) > 0);
    QCOMPARE(Inked(off, 1.95, 0.033 * R * 0.9, 2.05, 0.033 * R * 0.3), 0);
    // Number labels of the first axis ends sit above them.
    QVERIFY(Inked(on, R - 0.06 * R, 0.17 * R, R + 0.1 * R, 0.06 * R) > 0);
    QCOMPARE(Inked(off, R - 0.06 * R, 0.17 * R, R + 0.1 * R, 0.06 * R), 0);
    QVERIFY(Inked(on, -R - 0.06 * R, 0.17 * R, -R + 0.2 * R, 0.06 * R) > 0);
    QCOMPARE(Inked(off, -R - 0.06 * R, 0.17 * R, -R + 0.2 * R, 0.06 * R), 0);
    // The EOF labels stay.
    QVERIFY(Inked(off, R - 0.14 * R, -0.05 * R, R + 0.15 * R, -0.15 * R) > 0);
    QVERIFY(Inked(off, -0.32 * R, R + 0.05 * R, -0.05 * R, R - 0.05 * R) > 0);
    // The axes stay.
    QVERIFY(Inked(off, 3, 0.02, 3.2, -0.02) > 0);
  }

  void sitesAndExtremeSites() {
    Session s;
    SmallSession(s);
    ColourSettings c;
    ApplyColourPreset(c);
    ScatterView view;
    view.SiteNames = NameDisplay::Hide;
    Surface fig(300, 300);
    DrawSites(s, c, view, 1, 2, 3, {&fig, nullptr});
    QCOMPARE(fig.PixelAtUser(2, 2), QColor(0, 255, 0));
    s.SiteIsExtreme(1) = 1;
    DrawSites(s, c, view, 1, 2, 3, {&fig, nullptr});
    QCOMPARE(fig.PixelAtUser(2, 2), QColor(0, 0, 255));
    QCOMPARE(fig.PixelAtUser(-2, -1), QColor(0, 255, 0));
    QCOMPARE(TempLabelText(s), QString("Temp: 1, 2, 3"));
    QCOMPARE(AxisLabelText(s), QString("Axis: 1, 2, 3"));
  }

  void sequentialNames() {
    Session s;
    SmallSession(s);
    ColourSettings c;
    ApplyColourPreset(c);
    ScatterView view;
    view.SiteNames = NameDisplay::Sequential;
    s.SiteCursor = 2;
    Surface fig(300, 300);
    DrawSites(s, c, view, 1, 2, 3, {&fig, nullptr});
    // The cursor's mark is redrawn larger in the third slot; only its name shows.
    QCOMPARE(fig.PixelAtUser(-2, -1), QColor(255, 0, 0));
    QCOMPARE(fig.PixelAtUser(2, 2), QColor(0, 255, 0));
    QCOMPARE(Inked(fig, 2.2, 2.3, 3.5, 1.9), 0);
    QVERIFY(Inked(fig, -2 + 0.24, -1 + 0.24, -1.2, -1.1) > 0);
  }

  void fossilPathLeavesOutEmptySamples() {
    Session s;
    SmallSession(s);
    ColourSettings c;
    ApplyColourPreset(c);
    ScatterView view;
    view.SampleNames = NameDisplay::Hide;
    view.SiteNames = NameDisplay::Hide;
    Surface fig(400, 400);
    DrawSites(s, c, view, 1, 2, 3, {&fig, nullptr});
    DrawFossil(s, c, view, 1, 2, 3, {&fig, nullptr});
    // Samples 1 to 4 lie on y = 3: a path in the fourth slot along it.
    QVERIFY(Near(fig, -2, 3, QColor(255, 150, 0)));
    QVERIFY(Near(fig, 2, 3, QColor(255, 150, 0)));
    // An empty sample takes its two segments away.
    s.FossilEmptySample(2) = 1;
    DrawSites(s, c, view, 1, 2, 3, {&fig, nullptr});
    DrawFossil(s, c, view, 1, 2, 3, {&fig, nullptr});
    QVERIFY(!Near(fig, -2, 3, QColor(255, 150, 0), 2));
    QVERIFY(!Near(fig, 0, 3, QColor(255, 150, 0), 2));
    QVERIFY(Near(fig, 2, 3, QColor(255, 150, 0)));
  }

  void samplesOutsideAreHollowRedCircles() {
    Session s;
    SmallSession(s);
    ColourSettings c;
    ApplyColourPreset(c);
    ScatterView view;
    view.SampleNames = NameDisplay::Hide;
    s.SampleIsOut(1) = 1;
    s.SampleIsOut(2) = 1;
    s.FossilEmptySample(2) = 1;  // empty: left out even when marked
    Surface fig(400, 400);
    DrawSites(s, c, view, 1, 2, 3, {&fig, nullptr});
    DrawFossil(s, c, view, 1, 2, 3, {&fig, nullptr});
    const double r = 0.02 * 4;
    QVERIFY(Near(fig, -3 + r, 3, QColor(255, 0, 0)));
    QVERIFY(Near(fig, -3, 3 + r, QColor(255, 0, 0)));
    QVERIFY(IsWhite(fig.PixelAtUser(-3, 3 - r * 0.4)));  // hollow inside
    // Sample 2 is empty: no circle, and sample 3 is In: none either.
    QVERIFY(!Near(fig, -1, 3 + r, QColor(255, 0, 0), 1));
    QVERIFY(!Near(fig, 1, 3 + r, QColor(255, 0, 0), 1));
  }

  void axesLine() {
    Session s;
    ColourSettings c;
    ApplyColourPreset(c);
    s.EnvelopeAxisCount = 2;
    QCOMPARE(AxesLineText(s), QString("No. of Axes: 2 (all visible)"));
    QCOMPARE(AxesLineColour(s, c), QColor(0, 0, 0));
    s.MoreAxis = true;
    s.EnvelopeAxisCount = 4;
    s.VisibleAxisCount = 3;
    QCOMPARE(AxesLineText(s), QString("No. of Axes: 4 (including invisible one)"));
    QCOMPARE(AxesLineColour(s, c), QColor(255, 0, 0));
    s.EnvelopeAxisCount = 6;
    QCOMPARE(AxesLineText(s), QString("No. of Axes: 6 (including invisible ones)"));
    Surface line(300, 20);
    DrawAxesLine(s, c, line);
    bool red = false;
    const QImage& img = line.Image();
    for (int y = 0; y < img.height(); ++y)
      for (int x = 0; x < img.width(); ++x)
        if (img.pixelColor(x, y) == QColor(255, 0, 0)) red = true;
    QVERIFY(red);
  }

  void figureRunsOffAShortArray() {
    // Display axes beyond the loadings are the subscript failure, not a crash.
    Session s;
    SmallSession(s);
    ColourSettings c;
    ApplyColourPreset(c);
    Surface fig(100, 100);
    QVERIFY_THROWS_EXCEPTION(RuntimeFailure,
                             DrawTaxa(s, c, ScatterView{}, 1, 2, 4, {&fig, nullptr}));
  }
};

QTEST_MAIN(tst_Presentation)
#include "tst_Presentation.moc"
