// The calibration figures as plain functions on images and surfaces: the
// rainbow floor, the cell positions, the sharp stretch of a matrix image,
// the ridge test of the mode curve, the chart and histogram cells.
#include <QGuiApplication>
#include <QTest>

#include "calibration/PairSets.h"
#include "presentation/CalibFigure.h"

using namespace varnoth;

namespace {

ColourSettings Preset() {
  ColourSettings c;
  ApplyColourPreset(c);
  return c;
}

int Pixels(const QImage& image, const QColor& colour) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixelColor(x, y) == colour) ++n;
  return n;
}

// A chain state whose columns p = 100 and 101 hold modes at q.
CalibState Modes(long m0, long m1) {
  CalibState c;
  for (long p = 0; p <= kGridLast; ++p) {
    c.ModeIndex(p) = -9999;
    c.MedianIndex(p) = -9999;
  }
  c.ModeIndex(100) = static_cast<Count>(m0);
  c.ModeIndex(101) = static_cast<Count>(m1);
  return c;
}

}  // namespace

class TestCalibFigure : public QObject {
  Q_OBJECT
 private slots:
  void rainbowPaintsOnlyAboveTheWhiteFloor() {
    ColourSettings c = Preset();
    QRgb rgb = 0;
    const double floor = c.PaletteWhite / 1.25;
    QVERIFY(!RainbowColour(c, 1.0, floor, rgb));
    QVERIFY(RainbowColour(c, 1.0, floor + 0.01, rgb));
    // The enhancement scales the value first; the sign is dropped.
    QVERIFY(!RainbowColour(c, 0.0, 0.9, rgb));
    QVERIFY(RainbowColour(c, 1.0, -0.5, rgb));
    QCOMPARE(QColor(rgb), PaletteColour(c, 0.5));
  }

  void cellsOfTheShownBinsOnly() {
    ColourSettings c = Preset();
    CalibImages images(c, [] { return 1.0; });
    images.Rainbow(0.5f, 24, 100, 2);
    images.Rainbow(0.5f, 100, 226, 2);
    QCOMPARE(Pixels(images.Image(2), Qt::white), 201 * 201);
    images.Rainbow(0.5f, 25, 25, 2);    // bottom left
    images.Rainbow(0.5f, 225, 225, 2);  // top right
    QVERIFY(images.Image(2).pixelColor(0, 200) != Qt::white);
    QVERIFY(images.Image(2).pixelColor(200, 0) != Qt::white);
    QVERIFY(images.Dirty[2]);
    images.Region(100, 100, 2);
    QCOMPARE(images.Image(5).pixelColor(CellPixel(100, 100)), RegionColour(false, 2));
    images.Region(101, 100, 1);
    QCOMPARE(images.Image(5).pixelColor(CellPixel(101, 100)), RegionColour(false, 1));
  }

  void matrixImageStretchesSharp() {
    QImage cells(201, 201, QImage::Format_RGB32);
    cells.fill(Qt::white);
    cells.setPixelColor(100, 100, Qt::red);
    Surface pic(402, 402);
    ShowMatrixImage(cells, pic);
    // One cell becomes a 2 x 2 block, no blur around it.
    QCOMPARE(Pixels(pic.Image(), Qt::red), 4);
    QCOMPARE(Pixels(pic.Image(), Qt::white), 402 * 402 - 4);
  }

  void modesOnOneRidgeAreJoined() {
    // Between the modes the probability only rises in column 101.
    CalibState c = Modes(100, 110);
    for (long q = 100; q <= 110; ++q) c.CalibMatrix(6, 101, q) = 0.01f * static_cast<float>(q - 99);
    Surface pic(201, 201);
    pic.SetScale(0, 0, kCalibCanvas, kCalibCanvas);
    CalibShowMode(c, false, pic);
    const int joined = Pixels(pic.Image(), QColor(255, 0, 0));
    // A dip on the way: two separate points.
    CalibState d = Modes(100, 110);
    for (long q = 100; q <= 110; ++q) d.CalibMatrix(6, 101, q) = 0.01f * static_cast<float>(q - 99);
    d.CalibMatrix(6, 101, 105) = 0.0f;
    Surface apart(201, 201);
    apart.SetScale(0, 0, kCalibCanvas, kCalibCanvas);
    CalibShowMode(d, false, apart);
    const int points = Pixels(apart.Image(), QColor(255, 0, 0));
    QVERIFY2(joined >= 10, qPrintable(QString::number(joined)));
    QCOMPARE(points, 2);
  }

  void greyModeDrawsCurvesInBlack() {
    CalibState c = Modes(100, 101);
    Surface pic(201, 201);
    pic.SetScale(0, 0, kCalibCanvas, kCalibCanvas);
    CalibShowMode(c, true, pic);
    QVERIFY(Pixels(pic.Image(), Qt::black) > 0);
    QCOMPARE(Pixels(pic.Image(), QColor(255, 0, 0)), 0);
  }

  void chartCellsByClassAndEnhancement() {
    ColourSettings c = Preset();
    FineGrid fine;
    fine.FineClass(100, 100) = 2;
    fine.FineProb(100, 100) = 0.02f;
    fine.FineClass(101, 100) = 1;
    fine.FineProb(101, 100) = 0.02f;
    fine.FineProb(102, 100) = 0.02f;  // outside every region
    const QImage conf = ChartImage(fine, true, 100, c);
    QCOMPARE(conf.pixelColor(50, 350), RegionColour(false, 2));
    QCOMPARE(conf.pixelColor(51, 350), RegionColour(false, 1));
    QCOMPARE(conf.pixelColor(52, 350), QColor(Qt::white));
    const QImage prob = ChartImage(fine, false, 100, c);
    QCOMPARE(prob.pixelColor(50, 350), PaletteColour(c, 0.02 * 1.25 * 20));
    QCOMPARE(prob.pixelColor(52, 350), QColor(Qt::white));
    // No enhancement: the probability view is white.
    QCOMPARE(Pixels(ChartImage(fine, false, 0, c), Qt::white), 401 * 401);
  }

  void histCellsUnpackClassAndProbability() {
    ColourSettings c = Preset();
    HistImage prob(c, 1.0, false, 200, 10);
    prob.Cell(2.03f, 5, 1);
    prob.Cell(0.5f, 6, 1);  // class 0: no cell under "Probability"
    QCOMPARE(prob.Image.pixelColor(5, 1), PaletteColour(c, (2.03f - 2) * 20 * 1.25));
    QCOMPARE(prob.Image.pixelColor(6, 1), QColor(Qt::white));
    HistImage conf(c, 1.0, true, 200, 10);
    conf.Cell(-3.05f, 5, 1);
    conf.Cell(1.2f, 6, 1);
    QCOMPARE(conf.Image.pixelColor(5, 1), RegionColour(false, 2));
    QCOMPARE(conf.Image.pixelColor(6, 1), RegionColour(false, 1));
  }

  void sectionProfileFillsFromTheLeft() {
    FineGrid fine;
    fine.FineProb(250, 250) = 0.5f / (1.25f * 100 * 20);  // reaches 0.5 at Slider2 = 100
    Surface pic(101, 401);
    DrawSectionProfile(fine, 250, 100, false, pic);
    const QColor blue(0, 0, 255);
    int y = static_cast<int>(pic.ToPixel(0, 200).y());
    QVERIFY(pic.Image().pixelColor(0, y) == blue);
    // Not beyond its value.
    QVERIFY(pic.Image().pixelColor(50, y) != blue);
    // Any other row: only the first point.
    y = static_cast<int>(pic.ToPixel(0, 100).y());
    QCOMPARE(pic.Image().pixelColor(0, y), blue);
    QCOMPARE(pic.Image().pixelColor(5, y), QColor(Qt::white));
  }
};

QTEST_MAIN(TestCalibFigure)
#include "tst_CalibFigure.moc"
