// The diagram window driven by its control names on small cores imported
// through the engine: the five styles checked at computed pixels, the line
// of the selected sample, the EOF axis, CONISS on and off, the EOF files,
// the stepping and the resize rules. With VARNOTH_SHOTS set to a folder,
// the example core is also rendered there as PNG files.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <memory>

#include "PixelSupport.h"
#include "UiSupport.h"
#include "diagram/Coniss.h"
#include "envelope/Envelope.h"
#include "eof/PreTreatment.h"
#include "presentation/Colours.h"
#include "presentation/DiagramFigure.h"
#include "state/Import.h"
#include "ui/PictureBox.h"
#include "ui/QtDialogs.h"
#include "ui/ScriptedDialogs.h"
#include "ui/frmDiagram.h"

using namespace varnoth;
using varnoth::uitest::Shot;

namespace {

using varnoth::uitest::Near;

const char* kReference =
    "Site,A,B,Cae\r\nS1,50,30,20\r\nS2,20,60,20\r\nS3,30,30,40\r\nS4,60,20,20\r\n"
    "S5,10,70,20\r\nS6,40,40,20\r\n";
// Five samples at even depths; the third is empty.
const char* kFossil =
    "Depth,A,B,Cae\r\n0,50,30,20\r\n10,20,60,20\r\n20,0,0,0\r\n30,40,40,20\r\n40,10,70,20\r\n";

const QColor kWhite(255, 255, 255), kBlack(0, 0, 0);

QByteArray ManyTaxa(int rows, int taxa, bool depth) {
  QByteArray out = depth ? "Depth" : "Site";
  for (int t = 1; t <= taxa; ++t) out += ",T" + QByteArray::number(t);
  out += "\r\n";
  for (int i = 0; i < rows; ++i) {
    out += depth ? QByteArray::number(5 * i) : "S" + QByteArray::number(i + 1);
    for (int t = 1; t <= taxa; ++t)
      // A few taxa dominate, as in a real count.
      out += "," + QByteArray::number(((i * 7 + t * 13) % 17) * ((t * 37) % 13 == 0 ? 60
                                                                 : t % 4 == 0       ? 8
                                                                                    : 1));
    out += "\r\n";
  }
  return out;
}

struct Fixture {
  Session s;
  ColourSettings colours;
  ScriptedDialogs dialogs;
  NoProgress progress;
  QTemporaryDir dir;
  std::unique_ptr<frmDiagram> w;
  bool ok = false;

  Fixture(const QByteArray& reference, const QByteArray& fossil) {
    ApplyColourPreset(colours);
    s.DisplayAxes.ReDim(3);
    s.EnvelopeAxes.ReDim(3);
    for (Count i = 1; i <= 3; ++i) s.DisplayAxes(i) = s.EnvelopeAxes(i) = i;
    ok = ImportReference(s, Write("reference.csv", reference), dialogs, progress).Ok;
    ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
    ok = ok && ImportFossil(s, Write("fossil.csv", fossil), dialogs, progress).Ok;
    w = std::make_unique<frmDiagram>(s, colours, dialogs, progress);
  }
  Fixture() : Fixture(kReference, kFossil) {}

  std::string Write(const QString& name, const QByteArray& text) {
    const QString path = dir.path() + "/" + name;
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(text);
    return path.toStdString();
  }
  void Open() {
    w->ShowDiagram();
    QCoreApplication::processEvents();
  }
  Surface& P1() { return w->Picture1->surface(); }
  Surface& P2() { return w->Picture2->surface(); }
  const TaxaColumns& Cols() { return w->Settings().Columns; }
  double X0(long t) { return ZeroLineX(Cols(), t, w->Settings().Scroll); }
  double X(long t, long i) {
    return ValueX(Cols(), t, w->Settings().Scroll, s.FossilProportion(i, t));
  }
  double Y(long i) { return SamplePosition(s, i); }
};

QColor Curve(const Fixture& f) { return f.colours.DiagramCurveColour.ToQColor(); }
QColor Mark(const Fixture& f) { return f.colours.SmoothCurveColour.ToQColor(); }
QColor Cursor(const Fixture& f) { return f.colours.CursorColour.ToQColor(); }

QStringList Lines(const QString& path) {
  QFile f(path);
  if (!f.open(QIODevice::ReadOnly)) return {};
  QStringList lines = QString::fromLatin1(f.readAll()).split("\r\n");
  if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
  return lines;
}

}  // namespace

class tst_frmDiagram : public QObject {
  Q_OBJECT
 private slots:
  void controlsCarryTheirNames() {
    Fixture f;
    QVERIFY(f.ok);
    for (const char* name : {"Picture1", "Picture2", "Picture4", "Slider1", "Slider2", "Slider3",
                             "Combo1", "Combo2", "UpDown1", "Check1", "Label2", "Label4",
                             "Label3_0", "Label3_1", "Label3_2", "HScroll1", "StatusBar1"})
      QVERIFY2(f.w->findChild<QWidget*>(name), name);
    for (const char* name :
         {"mnuBar", "mnuArea", "mnuDot", "mnuCurve", "mnuDotCurve", "nmuConiss", "mnuECC",
          "mnuCopyDiagram", "mnuCopyEOF", "mnuSaveEOF", "mnuSaveAllEOF", "mnuCopyTaxaName"})
      QVERIFY2(f.w->findChild<QAction*>(name), name);
    QCOMPARE(f.w->windowTitle(), QString("Diagram"));
    QCOMPARE(f.w->mnuDot->text(), QString("&Dot (>0.5%)"));
    QCOMPARE(f.w->mnuArea->text(), QString("&Curve"));
    QCOMPARE(f.w->Label2->text(), QString(" EOF No."));
    QSignalSpy ecc(f.w.get(), &frmDiagram::EccRequested);
    f.w->mnuECC->trigger();
    QCOMPARE(ecc.count(), 1);
  }

  void openingFillsTheControls() {
    Fixture f;
    f.s.SampleCursor = 2;
    f.Open();
    QVERIFY(f.s.DiagramOpen);
    QCOMPARE(f.w->Slider1->minimum(), 1);
    QCOMPARE(f.w->Slider1->maximum(), 5);
    QCOMPARE(f.w->Slider1->value(), 2);
    QCOMPARE(f.w->UpDown1->value(), 2);
    // The empty sample has no entry.
    QCOMPARE(f.w->Combo2->count(), 4);
    QCOMPARE(f.w->Combo2->currentText(), QString("10"));
    QCOMPARE(f.w->Combo1->count(), 3);
    QCOMPARE(f.w->Combo1->currentText(), QString("1"));
    QVERIFY(f.w->mnuBar->isChecked());
    QVERIFY(f.w->EofCurveDrawn());
    f.w->close();
    QVERIFY(!f.s.DiagramOpen);
    // Opened again, it starts afresh from the current sample.
    f.s.SampleCursor = 4;
    f.Open();
    QVERIFY(f.s.DiagramOpen);
    QCOMPARE(f.w->Slider1->value(), 4);
    QCOMPARE(f.P1().PixelAtUser(495, f.Y(4)), Cursor(f));
  }

  void barStyleDrawsBarsZeroLineTicksAndMarks() {
    Fixture f;
    f.s.SampleIsOut(4) = 1;
    f.Open();
    Surface& p = f.P1();
    // Taxon B, sample 2 (60 %): the bar from the zero line to its value.
    const double x0 = f.X0(2), xe = f.X(2, 2), y2 = f.Y(2);
    QVERIFY(Near(p, (x0 + xe) / 2, y2, Curve(f), 0));
    QVERIFY(Near(p, xe - 1, y2, Curve(f), 0));
    QVERIFY(!Near(p, xe + 4, y2, Curve(f), 1));
    // A sample outside the envelope in the mark colour.
    QVERIFY(Near(p, (x0 + f.X(2, 4)) / 2, f.Y(4), Mark(f), 0));
    // The zero line between the samples, and ticks every 10 along the top.
    QCOMPARE(p.PixelAtUser(x0, (f.Y(2) + f.Y(3)) / 2), kBlack);
    const double top = p.ScaleTop() + p.ScaleHeight() * 4 / 1000;
    QVERIFY(Near(p, x0, top, kBlack, 0));
    QVERIFY(Near(p, x0 + 10 * f.Cols().DiagramHScale, top, kBlack, 0));
    QVERIFY(!Near(p, x0 + 5 * f.Cols().DiagramHScale, top, kBlack, 0));
    const double bottom = p.ScaleTop() + p.ScaleHeight() * 996 / 1000;
    QVERIFY(Near(p, x0 + 50 * f.Cols().DiagramHScale, bottom, kBlack, 0));
    // No curve in this style: the middle of a segment stays white.
    QCOMPARE(p.PixelAtUser((f.X(2, 4) + f.X(2, 5)) / 2, (f.Y(4) + f.Y(5)) / 2), kWhite);
  }

  void curveStyleLeavesAGapAtAnEmptySampleAndClosesIt() {
    Fixture f;
    f.s.SampleCursor = 5;
    f.Open();
    f.w->mnuArea->trigger();
    QVERIFY(f.w->Settings().Style == DiagramStyle::Area);
    QVERIFY(!f.w->mnuBar->isChecked());
    Surface& p = f.P1();
    const double x0 = f.X0(1);
    // A pixel of the segment between samples a and b, near its middle.
    auto mid = [&](long a, long b) {
      return Near(p, (f.X(1, a) + f.X(1, b)) / 2, (f.Y(a) + f.Y(b)) / 2, Curve(f), 1);
    };
    QVERIFY(mid(1, 2));
    QVERIFY(!mid(2, 3));
    QVERIFY(!mid(3, 4));
    QVERIFY(mid(4, 5));
    // Closing bars before the gap and at the first sample; none at sample 4.
    QCOMPARE(p.PixelAtUser((x0 + f.X(1, 2)) / 2, f.Y(2)), Curve(f));
    QCOMPARE(p.PixelAtUser((x0 + f.X(1, 1)) / 2, f.Y(1)), Curve(f));
    QCOMPARE(p.PixelAtUser((x0 + f.X(1, 4)) / 2, f.Y(4)), kWhite);
  }

  void dotsFromHalfAPercentIncluded() {
    Fixture f;
    f.s.FossilProportion(4, 3) = 0.005;
    f.s.FossilProportion(5, 3) = 0.0049;
    f.Open();
    f.w->Slider3->setValue(20);  // wider columns: the dot stands clear of the zero line
    f.w->mnuDot->trigger();
    Surface& p = f.P1();
    const double r = 1.5;
    QVERIFY(Near(p, f.X(3, 4) + r, f.Y(4), Curve(f), 1));
    QVERIFY(Near(p, f.X(3, 4),
                 f.Y(4) - r * p.Width() / p.ScaleWidth() * p.ScaleHeight() / p.Height(), Curve(f),
                 1));
    QVERIFY(!Near(p, f.X(3, 5) + r, f.Y(5), Curve(f), 2));
    // The centre is white, and a large value has its dot too; no bars.
    QCOMPARE(p.PixelAtUser(f.X(2, 2), f.Y(2)), kWhite);
    QVERIFY(Near(p, f.X(2, 2) + r, f.Y(2), Curve(f), 1));
    QCOMPARE(p.PixelAtUser((f.X0(2) + f.X(2, 2)) / 2, f.Y(2)), kWhite);
  }

  void barAndCurveThenDotAndCurve() {
    Fixture f;
    f.s.SampleCursor = 3;
    f.Open();
    f.w->mnuCurve->trigger();
    Surface& p = f.P1();
    auto segment = [&] {
      return Near(p, (f.X(2, 4) + f.X(2, 5)) / 2, (f.Y(4) + f.Y(5)) / 2, Curve(f), 1) ? Curve(f)
                                                                                      : kWhite;
    };
    auto bar = [&] { return p.PixelAtUser((f.X0(2) + f.X(2, 4)) / 2, f.Y(4)); };
    QCOMPARE(segment(), Curve(f));
    QCOMPARE(bar(), Curve(f));
    f.w->mnuDotCurve->trigger();
    QCOMPARE(segment(), Curve(f));
    QCOMPARE(bar(), kWhite);
    QVERIFY(Near(p, f.X(2, 4) + 1.5, f.Y(4), Curve(f), 1));
  }

  void markerMovesByAClearAndOneLine() {
    Fixture f;
    f.Open();
    Surface& p = f.P1();
    QSignalSpy selected(f.w.get(), &frmDiagram::SampleSelected);
    QCOMPARE(p.PixelAtUser(495, f.Y(1)), Cursor(f));
    f.w->Slider1->setValue(4);
    QCOMPARE(f.s.SampleCursor, Count{4});
    QCOMPARE(selected.count(), 1);
    QCOMPARE(p.PixelAtUser(495, f.Y(4)), Cursor(f));
    QCOMPARE(p.PixelAtUser(495, f.Y(1)), kWhite);
    QCOMPARE(f.w->UpDown1->value(), 4);
    QCOMPARE(f.w->Combo2->currentText(), QString("30"));
    // The EOF panel's line, edge to edge.
    Surface& q = f.P2();
    QVERIFY(Near(q, q.ScaleLeft() + q.ScaleWidth() * 0.02, f.Y(4), Cursor(f), 0));
    QVERIFY(Near(q, q.ScaleLeft() + q.ScaleWidth() * 0.98, f.Y(4), Cursor(f), 0));
    // The empty sample has no entry: the list shows nothing.
    f.w->Slider1->setValue(3);
    QCOMPARE(f.w->Combo2->currentIndex(), -1);
    // Choosing a label selects its sample.
    f.w->Combo2->setCurrentIndex(f.w->Combo2->findText("10"));
    emit f.w->Combo2->activated(f.w->Combo2->currentIndex());
    QCOMPARE(f.w->Slider1->value(), 2);
    QCOMPARE(f.w->UpDown1->value(), 2);
    // Without Check1 no line, but a drag of Slider1 shows it.
    QSignalSpy line(f.w.get(), &frmDiagram::SelectionLineToggled);
    f.w->Check1->setChecked(false);
    QCOMPARE(line.count(), 1);
    QCOMPARE(line.at(0).at(0).toBool(), false);
    QCOMPARE(p.PixelAtUser(495, f.Y(2)), kWhite);
    emit f.w->Slider1->sliderPressed();
    QCOMPARE(p.PixelAtUser(495, f.Y(2)), Cursor(f));
    QCOMPARE(f.w->Slider1->cursor().shape(), Qt::SizeVerCursor);
    emit f.w->Slider1->sliderReleased();
    QCOMPARE(p.PixelAtUser(495, f.Y(2)), kWhite);
    // Moved from the main window: the controls follow without a signal back.
    f.s.SampleCursor = 5;
    f.w->MoveMarker();
    QCOMPARE(f.w->Slider1->value(), 5);
    QCOMPARE(selected.count(), 3);
  }

  void upDownWrapsAtBothEnds() {
    Fixture f;
    f.s.SampleCursor = 5;
    f.Open();
    f.w->UpDown1->stepBy(1);
    QCOMPARE(f.w->UpDown1->value(), 1);
    QCOMPARE(f.w->Slider1->value(), 1);
    QCOMPARE(f.s.SampleCursor, Count{1});
    f.w->UpDown1->stepBy(-1);
    QCOMPARE(f.s.SampleCursor, Count{5});
    QCOMPARE(f.w->Slider1->value(), 5);
    f.w->UpDown1->stepBy(-1);
    QCOMPARE(f.s.SampleCursor, Count{4});
  }

  void eofAxisAtSliderZeroHasTicksAtMinusOneAndOneOnly() {
    Fixture f;
    f.Open();
    QSignalSpy zoom(f.w.get(), &frmDiagram::ZoomChanged);
    f.w->Slider2->setValue(0);
    QCOMPARE(zoom.count(), 1);
    QCOMPARE(f.s.ScatterZoom, 1.0);
    QCOMPARE(f.w->Label3[0]->text(), QString("-1"));
    QCOMPARE(f.w->Label3[1]->text(), QString());
    QCOMPARE(f.w->Label3[2]->text(), QString("1"));
    Surface& q = f.P2();
    QCOMPARE(q.ScaleLeft(), -1.0);
    QCOMPARE(q.ScaleWidth(), 2.0);
    const QImage& img = q.Image();
    QCOMPARE(img.pixelColor(0, 0), kBlack);
    QCOMPARE(img.pixelColor(img.width() / 2, 0), kWhite);
    QCOMPARE(img.pixelColor(img.width() / 4, 0), kWhite);
    QCOMPARE(img.pixelColor(0, img.height() - 1), kBlack);
    // The zero line down the core.
    QCOMPARE(q.PixelAtUser(0, (f.Y(2) + f.Y(3)) / 2), kBlack);
    // Range 8: ticks every 2.
    f.w->Slider2->setValue(3);
    QVERIFY(Near(q, -6, q.ScaleTop(), kBlack, 0));
    QVERIFY(!Near(q, -7, q.ScaleTop(), kBlack, 0));
    // Following the main window's range moves the slider without a signal back.
    f.w->FollowRange(2);
    QCOMPARE(f.w->Slider2->value(), 2);
    QCOMPARE(f.s.ScatterZoom, 4.0);
    QCOMPARE(zoom.count(), 2);
  }

  void eofCurveMarksTheOutSamples() {
    Fixture f;
    f.s.SampleIsOut(2) = 1;
    f.s.SampleIsOut(3) = 1;  // empty: neither drawn nor counted
    f.s.SampleCursor = 1;
    f.Open();
    double widest = 0;
    for (long i = 1; i <= 5; ++i) widest = std::max(widest, std::abs(f.s.FossilScores(i, 1)));
    f.w->Slider2->setValue(std::max(0, int(std::ceil(std::log2(widest * 1.5)))));
    QCOMPARE(f.w->Label4->text(), QString("Out count:  1"));
    Surface& q = f.P2();
    QCOMPARE(q.PixelAtUser(f.s.FossilScores(2, 1) / 2, f.Y(2)), Mark(f));
    const QColor eof = f.colours.CurveColour.ToQColor();
    QVERIFY(Near(q, (f.s.FossilScores(4, 1) + f.s.FossilScores(5, 1)) / 2, (f.Y(4) + f.Y(5)) / 2,
                 eof, 1));
    // No segment to or from the empty sample.
    QVERIFY(!Near(q, (f.s.FossilScores(2, 1) + f.s.FossilScores(3, 1)) / 2, (f.Y(2) + f.Y(3)) / 2,
                  eof, 0));
    // Another EOF.
    f.w->Combo1->setCurrentIndex(1);
    emit f.w->Combo1->activated(1);
    QCOMPARE(f.w->Settings().ShownEof, Count{2});
  }

  void conissTakesThePanelAndGivesItBack() {
    Fixture f;
    f.Open();
    f.w->nmuConiss->trigger();
    QVERIFY(f.w->nmuConiss->isChecked());
    for (QWidget* hidden :
         {static_cast<QWidget*>(f.w->Slider2), static_cast<QWidget*>(f.w->Combo1),
          static_cast<QWidget*>(f.w->Label2), static_cast<QWidget*>(f.w->Label3[0]),
          static_cast<QWidget*>(f.w->Label3[2])})
      QVERIFY(hidden->isHidden());
    QVERIFY(!f.w->mnuSaveEOF->isEnabled());
    QVERIFY(!f.w->mnuSaveAllEOF->isEnabled());
    Surface& q = f.P2();
    const long last = f.s.FossilSampleCount - 1;
    QCOMPARE(q.ScaleLeft(), 0.0);
    QCOMPARE(q.ScaleWidth(), ConissScaleWidth(f.s));
    const double stem = (double(f.s.ConissLeft(last)) + f.s.ConissRight(last)) / 2;
    QCOMPARE(q.PixelAtUser(f.s.ConissHeight(last) * 1.05, stem), kBlack);
    // The first join, drawn last, stands whole.
    const double l = f.s.ConissLeft(1), r = f.s.ConissRight(1), h = f.s.ConissHeight(1);
    QVERIFY(Near(q, h, (l + r) / 2, kBlack, 1));
    QVERIFY(Near(q, h / 2, l, kBlack, 1));
    // A redraw of the diagram keeps the tree.
    f.w->mnuDot->trigger();
    QCOMPARE(q.ScaleLeft(), 0.0);
    QCOMPARE(q.PixelAtUser(f.s.ConissHeight(last) * 1.05, stem), kBlack);

    f.w->nmuConiss->trigger();
    QVERIFY(!f.w->nmuConiss->isChecked());
    QVERIFY(!f.w->Slider2->isHidden());
    QVERIFY(f.w->Combo1->isEnabled());
    QVERIFY(f.w->mnuSaveEOF->isEnabled());
    QCOMPARE(q.ScaleLeft(), -f.s.ScatterZoom);
    QCOMPARE(q.PixelAtUser(0, (f.Y(2) + f.Y(3)) / 2), kBlack);
    QVERIFY(f.dialogs.Messages.empty());

    // Closed with the tree shown, the window opens again on the EOF curve.
    f.w->nmuConiss->trigger();
    f.w->close();
    f.Open();
    QVERIFY(!f.w->nmuConiss->isChecked());
    QVERIFY(!f.w->Combo1->isHidden());
    QCOMPARE(q.ScaleLeft(), -f.s.ScatterZoom);
  }

  void conissOfIdenticalSamplesEndsInTheFailureMessage() {
    Fixture f(kReference, "Depth,A,B,Cae\r\n0,50,30,20\r\n10,50,30,20\r\n20,50,30,20\r\n");
    QVERIFY(f.ok);
    f.Open();
    f.w->nmuConiss->trigger();
    QCOMPARE(int(f.dialogs.Messages.size()), 1);
    QCOMPARE(QString::fromStdString(f.dialogs.Messages[0].Title), QString("Error"));
    QVERIFY(!f.w->nmuConiss->isChecked());
    QVERIFY(!f.w->Slider2->isHidden());
    QCOMPARE(f.P2().ScaleLeft(), -f.s.ScatterZoom);
  }

  void savesTheShownEofAndAllEofs() {
    Fixture f;
    f.Open();
    const QString one = f.dir.path() + "/one.csv", all = f.dir.path() + "/all.csv";
    f.dialogs.SaveNames.push_back(one.toStdString());
    f.w->mnuSaveEOF->trigger();
    QStringList lines = Lines(one);
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines[0], QString("\"Depth\",\"EOF-1\""));
    QCOMPARE(lines[3], QString("\"20\""));  // the empty sample: its label only
    QCOMPARE(lines[1].split(',').size(), 2);
    QCOMPARE(lines[1].split(',')[0], QString("\"0\""));
    QCOMPARE(lines[1].split(',')[1].toDouble(), f.s.FossilScores(1, 1));
    QCOMPARE(f.dialogs.Filters.back(), std::string("DataFile(*.csv)|*.csv"));

    f.w->Combo1->setCurrentIndex(1);
    emit f.w->Combo1->activated(1);
    f.dialogs.SaveNames.push_back(one.toStdString());
    f.w->mnuSaveEOF->trigger();
    QCOMPARE(Lines(one)[0], QString("\"Depth\",\"EOF-2\""));

    f.dialogs.SaveNames.push_back(all.toStdString());
    f.w->mnuSaveAllEOF->trigger();
    lines = Lines(all);
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines[0], QString("\"Depth\",\"EOF-1\",\"EOF-2\",\"EOF - 3\""));
    QCOMPARE(lines[2].split(',').size(), 4);
    QCOMPARE(lines[3], QString("\"20\""));

    // A cancel ends quietly.
    QFile::remove(all);
    f.w->mnuSaveAllEOF->trigger();
    QVERIFY(!QFile::exists(all));
    QVERIFY(f.dialogs.Messages.empty());
  }

  void frameTooSmallRules() {
    using R = frmDiagram;
    // Kept at 6000 by 4000 twips at least.
    R::FrameRules r = R::ApplyFrameRules(QSize(100, 100), QSize(10, 10));
    QCOMPARE(r.Size, QSize(267, 400));
    QCOMPARE(r.Messages, 0);
    // A diagram below 500 twips high: the message, and the diagram itself
    // 5000 twips high again beside the margins.
    r = R::ApplyFrameRules(QSize(600, 420), QSize(100, 400));
    QCOMPARE(r.Messages, 1);
    QCOMPARE(r.Size, QSize(600, 400 + 333));
    // Too narrow as well: one message only, and the diagram 3500 twips wide.
    r = R::ApplyFrameRules(QSize(300, 420), QSize(290, 400));
    QCOMPARE(r.Messages, 1);
    QCOMPARE(r.Size, QSize(290 + 233, 400 + 333));
    r = R::ApplyFrameRules(QSize(300, 700), QSize(290, 400));
    QCOMPARE(r.Messages, 1);
    QCOMPARE(r.Size, QSize(290 + 233, 700));
    r = R::ApplyFrameRules(QSize(1000, 700), QSize(266, 240));
    QCOMPARE(r.Messages, 0);
    QCOMPARE(r.Size, QSize(1000, 700));
    // This layout's margins: 314 pixels across. A window of 4000 twips
    // shows no diagram there; the rule restores a usable one.
    r = R::ApplyFrameRules(QSize(340, 700), QSize(314, 220));
    QCOMPARE(r.Messages, 1);
    QVERIFY(r.Size.width() - 314 >= 500 / 15);
  }

  void smallestWindowStillShowsTheDiagram() {
    using R = frmDiagram;
    // 500 twips of diagram beside the margins, and the row of controls.
    const QSize m(314, 220);
    const QSize smallest = R::SmallestWindow(m);
    QVERIFY(smallest.width() - m.width() >= 34);
    QVERIFY(smallest.height() - m.height() >= 34);
    QVERIFY(smallest.width() >= 267 && smallest.height() >= 400);
    const R::FrameRules r = R::ApplyFrameRules(smallest, m);
    QCOMPARE(r.Messages, 0);
    QCOMPARE(r.Size, smallest);
  }

  void frameTooSmallInTheWindow() {
    Fixture f;
    f.Open();
    QVERIFY(f.dialogs.Messages.empty());
    // Squeezed: the window stops at its smallest size, which still shows a
    // diagram of 500 twips and every control of the row below it.
    f.w->resize(250, 300);
    QCoreApplication::processEvents();
    QVERIFY(f.dialogs.Messages.empty());
    QCOMPARE(f.w->size(), f.w->minimumSize());
    QVERIFY(f.w->Picture1->width() * 15 >= 500);
    QVERIFY(f.w->Picture1->height() * 15 >= 500);
    QCOMPARE(f.w->Picture1->width(), f.w->width() - f.w->Margins().width());
    const QRect row = f.w->Slider3->geometry();
    QVERIFY(row.right() < f.w->centralWidget()->width());
    QVERIFY(!f.w->Check1->geometry().intersects(f.w->UpDown1->geometry()));
    QVERIFY(!f.w->Picture2->geometry().intersects(f.w->Picture1->geometry()));
    QCOMPARE(f.P1().Width(), f.w->Picture1->width());
    Shot(f.w.get(), "diagram-smallest");
    // Large again: the panels follow and the diagram is drawn at its new size.
    f.w->resize(900, 650);
    QCoreApplication::processEvents();
    QVERIFY(f.dialogs.Messages.empty());
    QCOMPARE(f.w->Picture1->width(), 900 - f.w->Margins().width());
    QCOMPARE(f.P1().Width(), f.w->Picture1->width());
    QCOMPARE(f.P1().PixelAtUser(f.X0(1), (f.Y(2) + f.Y(3)) / 2), kBlack);
    Shot(f.w.get(), "diagram-900x650");
  }

  void outCountLeavesWithTheEofCurve() {
    Fixture f;
    f.s.SampleIsOut(2) = true;
    f.Open();
    QVERIFY(f.w->Label4->isVisible());
    QCOMPARE(f.w->Label4->text(), QString("Out count:  1"));
    f.w->nmuConiss->trigger();
    QVERIFY(f.w->nmuConiss->isChecked());
    QVERIFY(!f.w->Label4->isVisible());
    f.w->nmuConiss->trigger();
    QVERIFY(f.w->Label4->isVisible());
  }

  void emptySampleShowsItsLabelInTheList() {
    Fixture f;
    f.Open();
    // The third sample is empty and has no entry of its own.
    QCOMPARE(f.w->Combo2->findText("20"), -1);
    f.w->Slider1->setValue(3);
    QCOMPARE(f.w->Combo2->currentIndex(), -1);
    QCOMPARE(f.w->Combo2->placeholderText(), QString("20"));
    f.w->Slider1->setValue(4);
    QCOMPARE(f.w->Combo2->currentText(), QString("30"));
  }

  void dialogsStandOverTheDiagram() {
    // Real dialogs: a save dialog raised by the diagram's own menu belongs
    // to the diagram, not to the main window that the dialogs start with.
    Session s;
    ColourSettings colours;
    QtDialogs dialogs;
    QWidget main;
    dialogs.SetOwner(&main);
    NoProgress progress;
    frmDiagram d(s, colours, dialogs, progress);
    d.show();
    QWidget* parentSeen = nullptr;
    bool seen = false;
    QTimer::singleShot(0, &d, [&] {
      QWidget* box = QApplication::activeModalWidget();
      if (!box) return;
      seen = true;
      parentSeen = box->parentWidget();
      box->close();
    });
    d.mnuSaveEOF->trigger();
    QVERIFY(seen);
    QCOMPARE(parentSeen, static_cast<QWidget*>(&d));
    // The main window's own dialogs stand over it again.
    QCOMPARE(dialogs.Owner(), static_cast<void*>(&main));
  }

  void statusBarTellsTaxonSampleAndValue() {
    Fixture f;
    f.Open();
    Surface& p = f.P1();
    const QPointF at =
        p.ToPixel(f.X0(1) + 10 * f.Cols().DiagramHScale, f.Y(1)) + QPointF(f.w->Picture1->Origin());
    QMouseEvent move(QEvent::MouseMove, at, f.w->Picture1->mapToGlobal(at), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(f.w->Picture1, &move);
    const QString text = f.w->StatusBar1->currentMessage();
    QVERIFY2(text.startsWith("A "), qPrintable(text));
    QVERIFY2(text.contains("Sample: 0"), qPrintable(text));
    QVERIFY2(text.contains("Value: 50%"), qPrintable(text));
  }

  void depthLabelsSpaceOutInProportion() {
    Fixture f(kReference, "Depth,A,B,Cae\r\n0,50,30,20\r\n10,20,60,20\r\n100,40,40,20\r\n");
    QVERIFY(f.ok);
    f.s.SampleCursor = 3;
    f.Open();
    // Depths 0, 10, 100 stand at 10, 12 and 30.
    QCOMPARE(f.Y(2), 12.0);
    Surface& p = f.P1();
    QCOMPARE(p.PixelAtUser((f.X0(1) + f.X(1, 2)) / 2, 12), Curve(f));
    QCOMPARE(p.PixelAtUser((f.X0(1) + f.X(1, 2)) / 2, 20), kWhite);
    f.w->Slider1->setValue(2);
    QCOMPARE(p.PixelAtUser(495, 12), Cursor(f));
  }

  void manyTaxaScrollAndOnlyColumnsInViewAreDrawn() {
    Fixture f(ManyTaxa(30, 120, false), ManyTaxa(40, 120, true));
    QVERIFY(f.ok);
    f.Open();
    QVERIFY(f.w->HScroll1->isVisibleTo(f.w.get()));
    QCOMPARE(f.w->HScroll1->value(), 0);
    QCOMPARE(f.w->HScroll1->maximum(), int(f.Cols().ScrollMax));
    const int scroll = f.w->HScroll1->maximum() / 2;
    f.w->HScroll1->setValue(scroll);
    QCOMPARE(f.w->Settings().Scroll, long(scroll));
    long first = 0, shown = 0;
    for (long t = 1; t <= 120; ++t)
      if (ColumnInView(f.Cols(), t, scroll)) {
        if (!first && f.X0(t) > 0) first = t;
        ++shown;
      }
    QVERIFY(first > 1);
    QVERIFY(shown < 60);
    Surface& p = f.P1();
    QCOMPARE(p.PixelAtUser(f.X0(first), (f.Y(2) + f.Y(3)) / 2), kBlack);
    // Its name, turned, stands over the column.
    const Surface& names = f.w->Picture4->surface();
    const QPointF base = names.ToPixel(TaxonNameX(f.w->Settings(), first), TaxonNameY(names));
    int ink = 0;
    for (int y = int(base.y()) - 20; y < int(base.y()); ++y)
      for (int x = int(base.x()); x < int(base.x()) + 12; ++x)
        if (names.Image().pixelColor(x, y) != kWhite) ++ink;
    QVERIFY(ink > 5);
    // A wider scale lays the columns out anew from the start.
    f.w->Slider3->setValue(20);
    QCOMPARE(f.w->HScroll1->value(), 0);
    QCOMPARE(double(f.Cols().DiagramHScale), 2.0);
  }

  void depthScaleLabelsSamplesWhereThereIsRoom() {
    QFile r(QString(VARNOTH_EXAMPLES) + "/reference.csv"),
        c(QString(VARNOTH_EXAMPLES) + "/fossil.csv");
    QVERIFY(r.open(QIODevice::ReadOnly) && c.open(QIODevice::ReadOnly));
    Fixture f(r.readAll(), c.readAll());
    QVERIFY(f.ok);
    f.Open();
    const Surface& scale = f.w->DepthScale->surface();
    QCOMPARE(scale.ScaleTop(), f.P1().ScaleTop());
    QCOMPARE(scale.ScaleHeight(), f.P1().ScaleHeight());
    Surface copy(scale.Width(), scale.Height());
    const std::vector<long> labelled = DrawSampleLabels(f.s, f.P1(), copy);
    QVERIFY(labelled.size() > 10);
    QVERIFY(labelled.size() < std::size_t(f.s.FossilSampleCount));
    QCOMPARE(labelled.front(), 1L);
    const double h = copy.TextHeight("0");
    for (std::size_t k = 1; k < labelled.size(); ++k)
      QVERIFY(f.Y(labelled[k]) - f.Y(labelled[k - 1]) >= h);
    // A tick at every sample on the right edge, labelled or not.
    for (long i : {2L, 3L, 50L}) QCOMPARE(copy.PixelAtUser(copy.Width() - 2.0, f.Y(i)), kBlack);
    QCOMPARE(copy.Image(), scale.Image());
  }

  void namesInItalicsUnlessNoneEndsInAe() {
    // With "Cae" in the list, "A" leans; without it, "A" stands upright.
    Fixture leaning;
    QByteArray reference(kReference), fossil(kFossil);
    reference.replace("Cae", "C");
    fossil.replace("Cae", "C");
    Fixture upright(reference, fossil);
    QVERIFY(leaning.ok && upright.ok);
    leaning.Open();
    upright.Open();
    auto nameOfA = [](Fixture& f) {
      const Surface& names = f.w->Picture4->surface();
      const QPointF base = names.ToPixel(TaxonNameX(f.w->Settings(), 1), TaxonNameY(names));
      return names.Image().copy(int(base.x()) - 2, int(base.y()) - 16, 18, 16);
    };
    const QImage a = nameOfA(leaning), b = nameOfA(upright);
    QCOMPARE(a.size(), b.size());
    int inkA = 0, inkB = 0;
    for (int y = 0; y < a.height(); ++y)
      for (int x = 0; x < a.width(); ++x) {
        inkA += a.pixelColor(x, y) != kWhite;
        inkB += b.pixelColor(x, y) != kWhite;
      }
    QVERIFY(inkA > 3 && inkB > 3);
    QVERIFY(a != b);
  }

  void rightButtonMenusCopyTheirPictures() {
    Fixture f;
    f.Open();
    struct Case {
      PictureBox* picture;
      QMenu* menu;
      QAction* copy;
    };
    for (Case c : {Case{f.w->Picture1, f.w->RB1, f.w->mnuCopyDiagram},
                   Case{f.w->Picture2, f.w->RB2, f.w->mnuCopyEOF},
                   Case{f.w->Picture4, f.w->RB3, f.w->mnuCopyTaxaName}}) {
      QTest::mouseClick(c.picture, Qt::RightButton, {}, QPoint(20, 20));
      QTRY_COMPARE(QApplication::activePopupWidget(), static_cast<QWidget*>(c.menu));
      QVERIFY(c.menu->actions().contains(c.copy));
      c.menu->close();
      QApplication::clipboard()->clear();
      c.copy->trigger();
      QCOMPARE(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
               c.picture->surface().Image());
    }
    // Copy and the two saves, then the picture file and the figure for papers.
    QCOMPARE(f.w->RB2->actions().size(), 5);
    QCOMPARE(f.w->RB2->actions()[3]->objectName(), QString("mnuSavePictureEOF"));
    QCOMPARE(f.w->RB2->actions().back()->objectName(), QString("mnuPublicationRB2"));
  }

  void redrawAllFollowsTheColours() {
    Fixture f;
    f.Open();
    ApplyGreyPreset(f.colours);
    f.w->RedrawAll();
    QCOMPARE(f.P1().PixelAtUser((f.X0(2) + f.X(2, 2)) / 2, f.Y(2)), QColor(100, 100, 100));
  }

  void exampleCoreInEveryStyle() {
    // The example core after an envelope test: every style draws ink, the
    // Out count is that of the envelope, and the tree has one join less
    // than the samples.
    {
      QFile r(QString(VARNOTH_EXAMPLES) + "/reference.csv"),
          s(QString(VARNOTH_EXAMPLES) + "/fossil.csv");
      QVERIFY(r.open(QIODevice::ReadOnly) && s.open(QIODevice::ReadOnly));
      Fixture g(r.readAll(), s.readAll());
      QVERIFY(g.ok);
      RunEnvelope(g.s, 0, g.progress);
      g.s.SampleCursor = 40;
      g.Open();
      QCOMPARE(g.w->Label4->text(), QString::fromStdString(OutCountText(OutCount(g.s))));
      const char* names[] = {"diagram-bar", "diagram-curve", "diagram-dot", "diagram-barcurve",
                             "diagram-dotcurve"};
      QAction* styles[] = {g.w->mnuBar, g.w->mnuArea, g.w->mnuDot, g.w->mnuCurve, g.w->mnuDotCurve};
      for (int i = 0; i < 5; ++i) {
        styles[i]->trigger();
        int ink = 0;
        const QImage& img = g.P1().Image();
        for (int y = 0; y < img.height(); y += 3)
          for (int x = 0; x < img.width(); x += 3)
            if (img.pixelColor(x, y) == Curve(g)) ++ink;
        QVERIFY(ink > 100);
        Shot(g.w.get(), names[i]);
      }
      g.w->mnuArea->trigger();
      g.w->nmuConiss->trigger();
      QVERIFY(g.dialogs.Messages.empty());
      Shot(g.w.get(), "diagram-coniss");
    }
    {
      Fixture m(ManyTaxa(30, 150, false), ManyTaxa(110, 150, true));
      QVERIFY(m.ok);
      m.Open();
      m.w->HScroll1->setValue(m.w->HScroll1->maximum() / 2);
      QVERIFY(m.w->HScroll1->value() > 0);
      Shot(m.w.get(), "diagram-150-taxa-scrolled");
    }
  }
};

QTEST_MAIN(tst_frmDiagram)
#include "tst_frmDiagram.moc"
