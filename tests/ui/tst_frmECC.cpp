// The EOF-climate correlation window driven by control names from the
// diagram's Tools menu, on the example data with climate files written for
// each case: the question and the climate reader behind it, the table
// against a Pearson coefficient worked out here, the cells as drawn, the
// scatter, and the links with the diagram and the main window.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <cmath>
#include <functional>
#include <vector>

#include "UiSupport.h"
#include "diagram/DiagramLayout.h"
#include "diagram/EofClimateCorrelation.h"
#include "presentation/EccFigure.h"
#include "ui/PictureBox.h"
#include "ui/frmDiagram.h"
#include "ui/frmECC.h"

using namespace varnoth;
using varnoth::uitest::Example;
using varnoth::uitest::MainFixture;
using varnoth::uitest::Shot;

namespace {

const QColor kRed(255, 0, 0), kBlack(0, 0, 0);

// Climate value of site i (1-based) and parameter p (1-based).
using ClimateRule = std::function<double(long i, long p)>;

struct EccFixture : MainFixture {
  EccFixture() {
    Road();
    window->Command14->click();
  }
  frmDiagram& Diagram() { return *window->DiagramWindow(); }
  frmECC& Ecc() { return *window->EccWindow(); }

  // A climate file for the reference sites, in their order and names.
  std::string Climate(long params, const ClimateRule& rule, long rows = -1) {
    QByteArray text = "Site";
    for (long p = 1; p <= params; ++p) text += ",P" + QByteArray::number(static_cast<int>(p));
    text += "\r\n";
    if (rows < 0) rows = session.RefSiteCount;
    for (long i = 1; i <= rows; ++i) {
      text += QByteArray::fromStdString(session.RefSiteNames(i));
      for (long p = 1; p <= params; ++p) text += "," + QByteArray::number(rule(i, p), 'g', 15);
      text += "\r\n";
    }
    return Write("climate.csv", text);
  }
  // The mnuECC click with the user's answer and file.
  void Open(bool yes, const std::string& path = Example("climate.csv")) {
    dialogs.Answers.push_back(yes);
    dialogs.OpenNames.push_back(path);
    Diagram().mnuECC->trigger();
    QCoreApplication::processEvents();
  }

  // A mouse event on the table at a point given in twips.
  void Pointer(QEvent::Type type, double x, double y) {
    const QPointF at(x / 15, y / 15);
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent e(type, at, Ecc().Picture2->mapToGlobal(at), button,
                  type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Ecc().Picture2, &e);
  }
  // The middle of the cell in view position (column k, row r), from 0.
  static double CellX(long k) { return EccColumnCentre(k); }
  static double CellY(long r) { return EccRowTop(r) + 110; }
  void Hover(long k, long r) { Pointer(QEvent::MouseMove, CellX(k), CellY(r)); }
  void Click(long k, long r) { Pointer(QEvent::MouseButtonPress, CellX(k), CellY(r)); }

  // The pixels of one cell of the table.
  QImage Cell(long k, long r) {
    const Surface& s = Ecc().Picture2->surface();
    const QPointF a = s.ToPixel(EccColumnCentre(k) - 400, EccRowTop(r));
    const QPointF b = s.ToPixel(EccColumnCentre(k) + 400, EccRowTop(r) + kEccCellHeight);
    return s.Image().copy(QRect(a.toPoint(), b.toPoint()).intersected(s.Image().rect()));
  }
};

// Pixels of a colour; text is smoothed at its edges, so for pure red or
// black the pixels whose hue is clearly that count.
int Pixels(const QImage& img, const QColor& colour) {
  int n = 0;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x) {
      const QColor c = img.pixelColor(x, y);
      if (colour == kRed)
        n += c.red() > 180 && c.green() < c.red() - 100 && c.blue() < c.red() - 100;
      else if (colour == kBlack)
        n += c.red() < 110 && std::abs(c.red() - c.green()) < 30 &&
             std::abs(c.red() - c.blue()) < 30;
      else
        n += c == colour;
    }
  return n;
}
int Inked(const QImage& img) {
  int n = 0;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x)
      if (!uitest::IsWhite(img.pixelColor(x, y))) ++n;
  return n;
}

// The text as the figure font prints it, black on white, centred where a
// cell's number stands: what the cell must look like.
QImage Printed(const QString& text, const Surface& like, long k, long r) {
  Surface s(like.Width(), like.Height());
  s.SetScale(like.ScaleLeft(), like.ScaleTop(), like.ScaleWidth(), like.ScaleHeight());
  s.Print(EccColumnCentre(k) - s.TextWidth(text) / 2, EccRowTop(r), text, kBlack);
  const QPointF a = s.ToPixel(EccColumnCentre(k) - 400, EccRowTop(r));
  const QPointF b = s.ToPixel(EccColumnCentre(k) + 400, EccRowTop(r) + kEccCellHeight);
  return s.Image().copy(QRect(a.toPoint(), b.toPoint()).intersected(s.Image().rect()));
}

// Pearson's r as a textbook writes it, in long double.
double Pearson(const Session& s, long e, long p) {
  long double n = s.RefSiteCount, sx = 0, sy = 0, sxx = 0, syy = 0, sxy = 0;
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    const long double x = s.RefScores(i, e), y = s.ClimateData(i, p);
    sx += x;
    sy += y;
    sxx += x * x;
    syy += y * y;
    sxy += x * y;
  }
  const long double d = std::sqrt((n * sxx - sx * sx) * (n * syy - sy * sy));
  return d == 0 ? 0.0 : static_cast<double>((n * sxy - sx * sy) / d);
}

// Pixels of a colour in a vertical strip of the scatter around x (user units).
int InStrip(const Surface& s, double x, const QColor& colour) {
  const int px = static_cast<int>(std::floor(s.ToPixel(x, 0).x()));
  int n = 0;
  const QImage& img = s.Image();
  for (int y = 0; y < img.height(); ++y)
    for (int dx = -1; dx <= 1; ++dx)
      if (px + dx >= 0 && px + dx < img.width() && img.pixelColor(px + dx, y) == colour) ++n;
  return n;
}

}  // namespace

class tst_frmECC : public QObject {
  Q_OBJECT
 private slots:
  void theMenuAsksForTheClimateFileAndOpens() {
    EccFixture f;
    QCOMPARE(f.Diagram().mnuECC->text(), QString("&EOF-Climate correlation"));
    f.Open(true);
    QCOMPARE(f.dialogs.Questions.size(), std::size_t(1));
    QCOMPARE(f.dialogs.Questions[0].Text, std::string("Please import climate file."));
    QCOMPARE(f.dialogs.Questions[0].Title, std::string("Varnoth"));
    QCOMPARE(f.dialogs.Filters.back(), std::string("DataFile(*.csv)|*.csv"));
    QVERIFY(f.session.ClimateLoaded);
    frmECC& w = f.Ecc();
    QVERIFY(w.isVisible());
    QCOMPARE(w.windowTitle(), QString("EOF-Climate correlation"));
    QCOMPARE(w.Frame1->title(), QString(" Correlation coefficient (R)"));
    QVERIFY(w.EccOpen);
    QCOMPARE(w.EccMatrix.Upper0(), long(f.session.RefTaxaCount));
    QCOMPARE(w.EccMatrix.Upper1(), long(f.session.ClimateParamCount));
    QCOMPARE(w.EccClimate, varnoth::Count(1));
    QCOMPARE(w.EccEof, varnoth::Count(f.Diagram().Combo1->currentText().toInt()));
    QCOMPARE(w.Label2[0]->text(), "EOF-" + f.Diagram().Combo1->currentText());
    QCOMPARE(w.Label2[1]->text(), QString("SumSST"));
    QCOMPARE(w.Label1[0]->text(), QString("-4"));
    QCOMPARE(w.Label1[1]->text(), QString("4"));
    QVERIFY(f.dialogs.Messages.empty());
    // The progress bar is put away again.
    QVERIFY(!f.window->ProgressBar1->isVisible());
  }

  void theMatrixIsPearsonsCoefficient() {
    EccFixture f;
    f.Open(true);
    const frmECC& w = f.Ecc();
    for (long e = 1; e <= f.session.RefTaxaCount; ++e)
      for (long p = 1; p <= f.session.ClimateParamCount; ++p)
        QVERIFY2(std::fabs(w.EccMatrix(e, p) - Pearson(f.session, e, p)) < 1e-5,
                 qPrintable(QString("EOF %1, parameter %2").arg(e).arg(p)));
    // Summer temperature goes strongly with the first EOF of this set.
    QVERIFY(std::fabs(w.EccMatrix(1, 1)) > 0.9f);
  }

  void noClosesTheWindowWithoutClimate() {
    EccFixture f;
    const std::size_t dialogsBefore = f.dialogs.Filters.size();
    f.Open(false);
    QCOMPARE(f.dialogs.Questions.size(), std::size_t(1));
    QCOMPARE(f.dialogs.Filters.size(), dialogsBefore);  // no file dialog
    QVERIFY(!f.session.ClimateLoaded);
    QVERIFY(!f.Ecc().isVisible());
    QVERIFY(!f.Ecc().EccOpen);
  }

  void aCancelledFileDialogClosesTheWindow() {
    EccFixture f;
    f.dialogs.Answers.push_back(true);
    f.Diagram().mnuECC->trigger();  // no file name queued: the dialog is cancelled
    QVERIFY(!f.session.ClimateLoaded);
    QVERIFY(!f.Ecc().isVisible());
    QVERIFY(f.dialogs.Messages.empty());
  }

  void aShortClimateFileShowsTheReadersMessageAndCloses() {
    EccFixture f;
    const std::string path = f.Climate(
        2, [](long i, long p) { return i + p; }, 20);
    f.Open(true, path);
    QCOMPARE(f.dialogs.Messages.size(), std::size_t(1));
    QCOMPARE(f.dialogs.Messages[0].Text, std::string("Site number inconsistent."));
    QCOMPARE(f.dialogs.Messages[0].Title, std::string("Error"));
    QVERIFY(!f.session.ClimateLoaded);
    QVERIFY(!f.Ecc().isVisible());
    QVERIFY(!f.Ecc().EccOpen);
  }

  void aBlankCellShowsTheReadersMessageAndCloses() {
    EccFixture f;
    QByteArray text = "Site,A,B\r\n";
    for (long i = 1; i <= f.session.RefSiteCount; ++i)
      text +=
          QByteArray::fromStdString(f.session.RefSiteNames(i)) + (i == 5 ? ",1," : ",1,2") + "\r\n";
    f.Open(true, f.Write("blank.csv", text));
    QCOMPARE(f.dialogs.Messages.size(), std::size_t(1));
    QCOMPARE(f.dialogs.Messages[0].Text, std::string("Blanc cell detected."));
    QVERIFY(!f.session.ClimateLoaded);
    QVERIFY(!f.Ecc().isVisible());
  }

  void aRefusedSiteNameClosesTheWindow() {
    EccFixture f;
    QByteArray text = "Site,A\r\n";
    for (long i = 1; i <= f.session.RefSiteCount; ++i)
      text +=
          (i == 3 ? QByteArray("Other") : QByteArray::fromStdString(f.session.RefSiteNames(i))) +
          "," + QByteArray::number(static_cast<int>(i)) + "\r\n";
    f.Open(true, f.Write("names.csv", text));  // then "No" to the name question
    QCOMPARE(f.dialogs.Questions.size(), std::size_t(2));
    QCOMPARE(f.dialogs.Questions[1].Text,
             "Name inconsistent.  [Other] = [" + f.session.RefSiteNames(3) + "]?");
    QVERIFY(!f.session.ClimateLoaded);
    QVERIFY(!f.Ecc().isVisible());
  }

  void loadedClimateIsNotAskedForAgain() {
    EccFixture f;
    f.Open(true);
    f.Ecc().close();
    QVERIFY(!f.Ecc().EccOpen);
    f.Diagram().mnuECC->trigger();
    QCOMPARE(f.dialogs.Questions.size(), std::size_t(1));
    QVERIFY(f.Ecc().isVisible());
    QVERIFY(f.Ecc().EccOpen);
  }

  void aConstantParameterShowsZero() {
    EccFixture f;
    f.Open(true, f.Climate(3, [](long i, long p) { return p == 2 ? 12.5 : i * 0.5 + p; }));
    frmECC& w = f.Ecc();
    QVERIFY(w.isVisible());
    const Surface& table = w.Picture2->surface();
    for (long e = 1; e <= 12; ++e) {
      QCOMPARE(w.EccMatrix(e, 2), 0.0f);
      // Column 2 is the second in view; rows start at EOF 1.
      QCOMPARE(f.Cell(1, e - 1), Printed("0", table, 1, e - 1));
    }
    // A column with something in it does not print 0.
    QVERIFY(f.Cell(0, 1) != Printed("0", table, 0, 1));
  }

  void aMissingValueCountsAndItsCircleFallsOutOfRange() {
    EccFixture f;
    const long site = 7;
    f.Open(true, f.Climate(2, [&](long i, long p) {
      if (i == site && p == 1) return -9999.0;
      return 10 + 5 * f.session.RefScores(i, 1) + p;
    }));
    frmECC& w = f.Ecc();
    QVERIFY(w.isVisible());
    // The value enters the coefficient as it stands.
    QVERIFY(std::fabs(w.EccMatrix(1, 1) - Pearson(f.session, 1, 1)) < 1e-5);
    QVERIFY(std::fabs(w.EccMatrix(1, 2) - 1.0f) < 1e-5f);
    QVERIFY(w.EccMatrix(1, 1) < 0.9f);
    // The vertical range is that of the other sites, so the circle is below it.
    const Surface& pic = w.Picture3->surface();
    double low = 1e300;
    for (long i = 1; i <= f.session.RefSiteCount; ++i)
      if (i != site) low = std::min(low, f.session.ClimateData(i, 1));
    const double bottom = pic.ScaleTop() + pic.ScaleHeight();
    QVERIFY(bottom <= low);
    QVERIFY(bottom > -9999);
    QCOMPARE(w.Text1[0]->text().toDouble(), bottom);
    QVERIFY(pic.ToPixel(0, -9999).y() > pic.Height());
    Shot(&w, "ecc-missing-value");
  }

  void anEmptySampleDrawsNoLine() {
    MainFixture f;
    // The example core with its fifth sample emptied.
    QFile in(QString::fromStdString(Example("fossil.csv")));
    QVERIFY(in.open(QIODevice::ReadOnly));
    QList<QByteArray> lines = in.readAll().split('\n');
    QList<QByteArray> cells = lines[5].trimmed().split(',');
    for (int c = 1; c < cells.size(); ++c) cells[c] = "0";
    lines[5] = cells.join(',') + "\r";
    f.ImportReference(Example("reference.csv"));
    f.Confirm();
    f.ImportFossil(f.Write("fossil.csv", lines.join('\n')));
    QVERIFY(f.session.FossilEmptySample(5));
    f.window->Command14->click();
    frmDiagram& d = *f.window->DiagramWindow();
    f.dialogs.Answers.push_back(true);
    f.dialogs.OpenNames.push_back(Example("climate.csv"));
    d.mnuECC->trigger();
    frmECC& w = *f.window->EccWindow();
    const QColor cursor = f.colours.CursorColour.ToQColor();
    d.Slider1->setValue(4);
    QVERIFY(InStrip(w.Picture3->surface(), f.session.FossilScores(4, w.EccEof), cursor) >
            w.Picture3->height() / 2);
    d.Slider1->setValue(5);
    QCOMPARE(f.session.SampleCursor, varnoth::Count(5));
    QCOMPARE(Pixels(w.Picture3->surface().Image(), cursor), 0);
  }

  void thePointerOverTheSelectedCellIsBoldAndRed() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    f.Hover(2, 5);  // somewhere else
    const QImage plain = f.Cell(0, 0);
    QVERIFY(Pixels(plain, kRed) > 0);
    f.Hover(0, 0);
    QCOMPARE(w.EccHoverRow, varnoth::Count(1));
    QCOMPARE(w.EccHoverCol, varnoth::Count(1));
    const QImage bold = f.Cell(0, 0);
    QVERIFY(Pixels(bold, kRed) > Pixels(plain, kRed));
    QCOMPARE(Pixels(bold, kBlack), 0);
    // Another cell under the pointer is bold and black.
    f.Hover(1, 2);
    const QImage other = f.Cell(1, 2);
    QCOMPARE(Pixels(other, kRed), 0);
    const QString text = QString::fromStdString(EccText(w.EccMatrix(3, 2)));
    QVERIFY(Inked(other) > Inked(Printed(text, w.Picture2->surface(), 1, 2)));
  }

  void theCellReachesLeftOfItsColumn() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    f.Pointer(QEvent::MouseMove, 1050 - 200 + 5, 45 + 5);
    QCOMPARE(w.EccHoverCol, varnoth::Count(2));
    QCOMPARE(w.EccHoverRow, varnoth::Count(1));
    f.Pointer(QEvent::MouseMove, 1050 - 200 - 15, 45 + 225 + 5);
    QCOMPARE(w.EccHoverCol, varnoth::Count(1));
    QCOMPARE(w.EccHoverRow, varnoth::Count(2));
  }

  void aClickChoosesThePairAndTheDiagramFollows() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    frmDiagram& d = f.Diagram();
    const QImage before = d.Picture2->surface().Image();
    f.Click(1, 2);  // WinSST, EOF 3
    QCOMPARE(w.EccEof, varnoth::Count(3));
    QCOMPARE(w.EccClimate, varnoth::Count(2));
    QCOMPARE(d.Combo1->currentText(), QString("3"));
    QCOMPARE(d.Settings().ShownEof, varnoth::Count(3));
    QVERIFY(d.Picture2->surface().Image() != before);
    QCOMPARE(w.Label2[0]->text(), QString("EOF-3"));
    QCOMPARE(w.Label2[1]->text(), QString("WinSST"));
    // The new pair is red, the old one black.
    QVERIFY(Pixels(f.Cell(1, 2), kRed) > 0);
    QCOMPARE(Pixels(f.Cell(0, 0), kRed), 0);
    // The bounds are those of the new parameter.
    const EccRange range = EccClimateRange(f.session, 2);
    QCOMPARE(w.Text1[1]->text(), QString::fromStdString(EccText(range.Top)));
    QCOMPARE(w.Text1[0]->text(), QString::fromStdString(EccText(range.Bottom)));
    // The scatter shows EOF 3 against WinSST: a site's circle stands there.
    const QColor mark = f.colours.CurveColour.ToQColor();
    const Surface& pic = w.Picture3->surface();
    int found = 0;
    for (long i = 1; i <= f.session.RefSiteCount; ++i)
      if (uitest::Near(pic, f.session.RefScores(i, 3), f.session.ClimateData(i, 2), mark)) ++found;
    QVERIFY(found >= f.session.RefSiteCount * 9 / 10);
  }

  void aClickBelowTheLastEofChangesNothing() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    w.VScroll1->setValue(w.VScroll1->maximum());
    f.Click(3, 11);  // right of the last parameter
    QCOMPARE(w.EccEof, varnoth::Count(f.Diagram().Combo1->currentText().toInt()));
    QCOMPARE(w.EccClimate, varnoth::Count(1));
    QVERIFY(f.dialogs.Messages.empty());
  }

  void theDiagramsEofChoiceReachesTheTable() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    frmDiagram& d = f.Diagram();
    d.Combo1->setCurrentIndex(d.Combo1->findText("2"));
    emit d.Combo1->activated(d.Combo1->currentIndex());
    QCOMPARE(w.EccEof, varnoth::Count(2));
    QVERIFY(Pixels(f.Cell(0, 1), kRed) > 0);
    QCOMPARE(w.Label2[0]->text(), QString("EOF-2"));
  }

  void scrollBarsShowOnlyWhenTheTableOverflows() {
    EccFixture f;
    // 22 EOFs in 12 rows; 5 parameters fit four columns and the one at the edge.
    f.Open(true, f.Climate(5, [](long i, long p) { return i * p * 0.25; }));
    frmECC& w = f.Ecc();
    QCOMPARE(
        EccCellsThatFit(w.Picture2->surface().ScaleWidth(), w.Picture2->surface().ScaleHeight())
            .Rows,
        12L);
    QVERIFY(w.VScroll1->isVisible());
    QCOMPARE(w.VScroll1->maximum(), f.session.RefTaxaCount - 12 + 1);
    QVERIFY(!w.HScroll1->isVisible());
    // Scrolled down by two, the first row in view is EOF 3.
    w.VScroll1->setValue(3);
    f.Hover(0, 0);
    QCOMPARE(w.EccHoverRow, varnoth::Count(3));
  }

  void sixParametersNeedTheHorizontalBar() {
    EccFixture f;
    f.Open(true, f.Climate(6, [](long i, long p) { return i * p * 0.25 + (i % p); }));
    frmECC& w = f.Ecc();
    QVERIFY(w.HScroll1->isVisible());
    QCOMPARE(w.HScroll1->maximum(), 6 - 4);
    w.HScroll1->setValue(2);
    f.Click(0, 0);
    QCOMPARE(w.EccClimate, varnoth::Count(2));
    QCOMPARE(w.Label2[1]->text(), QString("P2"));
    Shot(&w, "ecc-six-parameters");
  }

  void theSliderFollowsTheDiagramBothWays() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    frmDiagram& d = f.Diagram();
    QCOMPARE(w.Slider1->value(), d.Slider2->value());
    w.Slider1->setValue(1);
    QCOMPARE(d.Slider2->value(), 1);
    QCOMPARE(f.window->Slider4->value(), 1);
    QCOMPARE(f.session.ScatterZoom, 2.0);
    QCOMPARE(w.Picture3->surface().ScaleLeft(), -2.0);
    QCOMPARE(w.Label1[1]->text(), QString("2"));
    d.Slider2->setValue(3);
    QCOMPARE(w.Slider1->value(), 3);
    QCOMPARE(w.Picture3->surface().ScaleWidth(), 16.0);
    QCOMPARE(w.Label1[0]->text(), QString("-8"));
  }

  void theSelectedSampleMovesTheLine() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    const QColor cursor = f.colours.CursorColour.ToQColor();
    const Surface& pic = w.Picture3->surface();
    f.Diagram().Slider1->setValue(30);
    const double x30 = f.session.FossilScores(30, w.EccEof);
    QVERIFY(InStrip(pic, x30, cursor) > pic.Height() / 2);
    // The main window's stepping reaches the scatter too.
    f.window->Option5[1]->click();
    f.window->Command13[1]->click();
    QCOMPARE(f.session.SampleCursor, varnoth::Count(31));
    const double x31 = f.session.FossilScores(31, w.EccEof);
    QVERIFY(InStrip(pic, x31, cursor) > pic.Height() / 2);
  }

  void theBoundsSetTheVerticalScale() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    const Surface& pic = w.Picture3->surface();
    // The program's own filling has been swallowed: the user's edit acts.
    w.Text1[1]->setText("40");
    QCOMPARE(pic.ScaleTop(), 40.0);
    QCOMPARE(pic.ScaleHeight(), w.Text1[0]->text().toDouble() - 40);
    w.Text1[0]->setText("-10");
    QCOMPARE(pic.ScaleHeight(), -50.0);
    // Equal texts do nothing.
    w.Text1[0]->setText("40");
    QCOMPARE(pic.ScaleHeight(), -50.0);
  }

  void theGuardStopsOneChangeOnly() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    const Surface& pic = w.Picture3->surface();
    // A click on the pair already chosen writes the same bounds again: no
    // box changes, so the guard stays up and stops the next change.
    f.Click(0, 0);
    w.Text1[1]->setText("45");
    QVERIFY(pic.ScaleTop() != 45.0);
    w.Text1[1]->setText("50");
    QCOMPARE(pic.ScaleTop(), 50.0);
  }

  void copyPutsTheScatterOnTheClipboard() {
    EccFixture f;
    f.Open(true);
    frmECC& w = f.Ecc();
    QCOMPARE(w.mnuCopy->text(), QString("&Copy"));
    QVERIFY(w.RB->actions().contains(w.mnuCopy));
    QApplication::clipboard()->clear();
    w.mnuCopy->trigger();
    QCOMPARE(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
             w.Picture3->surface().Image());
  }

  void quitClosesTheWindow() {
    EccFixture f;
    f.Open(true);
    QVERIFY(f.Ecc().isVisible());
    f.window->QuitProgram();
    QVERIFY(!f.Ecc().isVisible());
    QVERIFY(!f.Ecc().EccOpen);
    QCOMPARE(f.ended, 1);
  }

  void quitClosesItBeforeTheDiagram() {
    EccFixture f;
    f.Open(true);
    struct Recorder : QObject {
      QStringList Closed;
      bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Close) Closed << watched->objectName();
        return false;
      }
    } recorder;
    f.Diagram().installEventFilter(&recorder);
    f.Ecc().installEventFilter(&recorder);
    f.window->QuitProgram();
    QCOMPARE(recorder.Closed, QStringList({"frmECC", "frmDiagram"}));
  }
};

QTEST_MAIN(tst_frmECC)
#include "tst_frmECC.moc"
