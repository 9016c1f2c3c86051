// The figures for papers, drawn from the example data set and read back
// from their SVG: the texts a reader looks for (axis titles, tick labels,
// taxon names), nothing off the page, no two texts on top of each other,
// at one column and at the full page width; and the batch runner writes
// the same drawing as the functions the windows call.
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "SvgLayout.h"
#include "UiSupport.h"
#include "diagram/Coniss.h"
#include "diagram/EofClimateCorrelation.h"
#include "envelope/Envelope.h"
#include "presentation/publication/Axis.h"
#include "presentation/publication/Figures.h"
#include "presentation/publication/Tree.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"
#include "ui/PublicationExport.h"
#include "ui/frmCalib.h"
#include "ui/frmDiagram.h"
#include "ui/frmECC.h"
#include "ui/frmLuvane.h"
#include "ui/frmMAT.h"
#include "ui/frmOutPut2.h"

using namespace varnoth;
using namespace varnoth::uitest;

namespace {

// The example road: both tables, the EOFs and the projection, and CONISS.
struct Road : MainFixture {
  Road() {
    MainFixture::Road();
    NoProgress none;
    DoConiss(session, none);
  }
};

// The road on to the reconstruction window with the example climate.
struct Reconstructed : MainFixture {
  frmMAT* m = nullptr;
  Reconstructed() {
    MainFixture::Road();
    window->Command8->click();
    m = window->MATWindow();
    dialogs.OpenNames.push_back(Example("climate.csv"));
    m->Command1->click();
    QCoreApplication::processEvents();
  }
};

SvgLayout Layout(const pub::Page& page) {
  return ReadSvgLayout(QByteArray::fromStdString(page.Svg()));
}

QString Joined(const QStringList& l) { return l.join(QStringLiteral("; ")); }

// With VARNOTH_SHOTS set to a folder, a figure is kept there as PNG to be
// looked at.
void Keep(const pub::Page& page, const QString& name) {
  const QString folder = qEnvironmentVariable("VARNOTH_SHOTS");
  if (folder.isEmpty()) return;
  QDir().mkpath(folder);
  pub::SavePage(page, (folder + "/" + name + ".png").toStdString(), pub::PageFormat::Png);
}

}  // namespace

class tst_PublicationFigures : public QObject {
  Q_OBJECT
 private slots:
  void ticksAreRoundAndInsideTheRange();
  void tickLabelsUseATrueMinus();
  void axisLabelsGiveWayToTextAlreadyThere();
  void pollenDiagramReadsAtBothWidths();
  void pollenDiagramKeepsTheTableOrderAndDepthDownwards();
  void pollenDiagramLimitsTaxaByMaximum();
  void pollenDiagramExaggeratesTenTimesWhenAsked();
  void pollenDiagramZonesCutTheTreeAtItsHighestJoins();
  void pollenDiagramTitlesTextLabelsAsSample();
  void batchWritesThePollenDiagramTheWindowsDraw();
  void reconstructionReadsAtBothWidths();
  void diagramWindowSavesTheSameDrawingFromEveryMenu();
  void reconstructionWindowSavesTheCurveAtTheChosenWidth();
  void cancelledChoiceWritesNothing();
  void choiceDialogOffersBothWidthsDoubleFirst();
  void estObsReadsAtBothWidths();
  void estObsNeedsTheErrorModel();
  void eofScatterReadsAtBothWidths();
  void calibrationReadsAtBothWidthsAndMatchesTheBatch();
  void responseMatrixReadsAtBothWidths();
  void mapReadsAtBothWidthsAndMatchesTheBatch();
  void eofClimateTableReadsAtBothWidthsAndMatchesTheBatch();
  void reconstructionShowsTheAnalogueCountWhenAsked();
  void samplesOutsideTheEnvelopeAreRingedAndNamed();
  void batchWritesTheReconstructionTheWindowsDraw();
};

void tst_PublicationFigures::ticksAreRoundAndInsideTheRange() {
  const pub::Ticks t = pub::NiceTicks(0, 1090, 10);
  QCOMPARE(t.Step, 200.0);
  QCOMPARE(t.Values.front(), 0.0);
  QCOMPARE(t.Values.back(), 1000.0);
  const pub::Ticks f = pub::NiceTicks(-0.37, 0.81, 4);
  QCOMPARE(f.Step, 0.5);
  QCOMPARE(f.Decimals, 1);
  QCOMPARE(f.Values.size(), std::size_t(2));  // 0 and 0.5: -0.5 and 1 lie outside
  double lo = -0.37, hi = 0.81;
  pub::NiceRange(lo, hi, 4);
  QCOMPARE(lo, -0.5);
  QCOMPARE(hi, 1.0);
}

void tst_PublicationFigures::tickLabelsUseATrueMinus() {
  QCOMPARE(pub::TickLabel(-2.5, 1), QString(QChar(0x2212)) + "2.5");
  QCOMPARE(pub::TickLabel(-0.0001, 1), QString("0.0"));  // no minus zero
  QCOMPARE(pub::TickLabel(20, 0), QString("20"));
}

void tst_PublicationFigures::axisLabelsGiveWayToTextAlreadyThere() {
  pub::Page page(50, 30);
  const pub::FigureStyle st = pub::StyleFor(50);
  pub::TextStyle ts;
  ts.H = pub::HAlign::Centre;
  ts.V = pub::VAlign::Top;
  // A word where the label of 5 would stand.
  page.Text(25, 20 + st.TickMm + st.LabelGapMm, "word", ts);
  pub::Axis a = pub::MakeAxis(pub::Side::Bottom, {0, 10, 5, 45}, pub::NiceTicks(0, 10, 2), "x");
  pub::DrawAxis(page, a, 20, st);
  const SvgLayout l = Layout(page);
  QVERIFY(l.HasText("0"));
  QVERIFY(l.HasText("10"));
  QVERIFY(!l.HasText("5"));
  QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
}

void tst_PublicationFigures::pollenDiagramReadsAtBothWidths() {
  Road f;
  for (double width : {pub::kSingleColumnMm, pub::kDoubleColumnMm}) {
    pub::PollenOptions o = pub::DefaultPollenOptions(f.session, width);
    o.Zones = 4;
    const pub::Page page = pub::PollenDiagramFigure(f.session, o);
    Keep(page, QString("publication-pollen-%1mm").arg(width));
    QCOMPARE(page.Width(), width);
    const QRectF ink = page.InkBounds();
    QVERIFY(ink.left() >= 0 && ink.top() >= 0 && ink.right() <= page.Width() &&
            ink.bottom() <= page.Height());
    const SvgLayout l = Layout(page);
    QVERIFY(l.Valid);
    QCOMPARE(l.Width, width);
    for (const char* words : {"Depth", "Percentage (%)", "EOF-1 score", "Sum of squares", "CONISS",
                              "EOF-1", "0", "200", "1000", "G.ruber", "G.saccu"})
      QVERIFY2(l.HasText(words), words);
    QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
    QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
    // The dominant taxon's scale reads 0, 20 and 40 per cent; at one
    // column's width 0 and 25.
    if (width > 100)
      QVERIFY(l.HasText("20") && l.HasText("40"));
    else
      QVERIFY(l.HasText("25"));
  }
  // At the full width every taxon of the table has its column.
  const SvgLayout wide =
      Layout(pub::PollenDiagramFigure(f.session, pub::DefaultPollenOptions(f.session, 175)));
  for (long t = 1; t <= f.session.FossilTaxaCount; ++t)
    QVERIFY2(wide.HasText(QString::fromStdString(f.session.FossilTaxaNames(t))),
             f.session.FossilTaxaNames(t).c_str());
}

void tst_PublicationFigures::pollenDiagramKeepsTheTableOrderAndDepthDownwards() {
  Road f;
  const SvgLayout l =
      Layout(pub::PollenDiagramFigure(f.session, pub::DefaultPollenOptions(f.session, 175)));
  auto find = [&](const QString& w) {
    for (const SvgText& t : l.Texts)
      if (t.Words == w) return t.Box;
    return QRectF();
  };
  double lastX = -1;
  for (long t = 1; t <= f.session.FossilTaxaCount; ++t) {
    const QRectF box = find(QString::fromStdString(f.session.FossilTaxaNames(t)));
    QVERIFY(box.x() > lastX);
    // Names stand over the plot, turned to read upwards.
    QVERIFY(box.height() > box.width());
    lastX = box.x();
  }
  // Depth grows downwards: 200 over 1000.
  QVERIFY(find("200").center().y() < find("1000").center().y());
  QVERIFY(find("G.ruber").bottom() < find("200").top());
}

void tst_PublicationFigures::pollenDiagramLimitsTaxaByMaximum() {
  Road f;
  pub::PollenOptions o = pub::DefaultPollenOptions(f.session, 175);
  o.MinMaxPercent = 10;
  const SvgLayout l = Layout(pub::PollenDiagramFigure(f.session, o));
  for (long t = 1; t <= f.session.FossilTaxaCount; ++t) {
    double m = 0;
    for (long i = 1; i <= f.session.FossilSampleCount; ++i)
      m = std::max(m, f.session.FossilProportion(i, t) * 100);
    QCOMPARE(l.HasText(QString::fromStdString(f.session.FossilTaxaNames(t))), m >= 10);
  }
}

void tst_PublicationFigures::pollenDiagramExaggeratesTenTimesWhenAsked() {
  Road f;
  pub::PollenOptions o = pub::DefaultPollenOptions(f.session, 175);
  const QByteArray plain = QByteArray::fromStdString(pub::PollenDiagramFigure(f.session, o).Svg());
  o.Exaggerate = true;
  o.Zones = 4;
  const pub::Page page = pub::PollenDiagramFigure(f.session, o);
  Keep(page, "publication-pollen-exaggerated");
  const QByteArray svg = QByteArray::fromStdString(page.Svg());
  // The outline in light grey behind the columns, none without it.
  QVERIFY(!plain.contains("fill=\"#cdcdcd\""));
  // Only the taxa below 10 % get it, and a note says so.
  long rare = 0;
  for (long t = 1; t <= f.session.FossilTaxaCount; ++t) {
    double m = 0;
    for (long i = 1; i <= f.session.FossilSampleCount; ++i)
      m = std::max(m, f.session.FossilProportion(i, t) * 100);
    if (m < 10) ++rare;
  }
  QVERIFY(rare > 0 && rare < f.session.FossilTaxaCount);
  QVERIFY(svg.count("fill=\"#cdcdcd\"") >= rare);
  QVERIFY(ReadSvgLayout(svg).HasText(QString("Light grey: values ") + QChar(0x00D7) +
                                     "10 for taxa below 10 %."));
  const SvgLayout l = ReadSvgLayout(svg);
  QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
  QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
}

void tst_PublicationFigures::pollenDiagramZonesCutTheTreeAtItsHighestJoins() {
  Road f;
  const pub::ConissTree tree = pub::ReplayConiss(f.session);
  QCOMPARE(static_cast<long>(tree.size()), f.session.FossilSampleCount - 1);
  // The last join holds every sample.
  QCOMPARE(tree.back().LeftFirst, 1L);
  QCOMPARE(tree.back().RightLast, static_cast<long>(f.session.FossilSampleCount));
  for (const pub::ConissJoin& j : tree) QCOMPARE(j.LeftLast + 1, j.RightFirst);
  // Two zones: the cut of the highest join.
  const pub::ConissJoin* top = &tree[0];
  for (const pub::ConissJoin& j : tree)
    if (j.Height > top->Height) top = &j;
  QCOMPARE(pub::ZoneBoundaries(tree, 2), std::vector<long>{top->LeftLast});
  const std::vector<long> four = pub::ZoneBoundaries(tree, 4);
  QCOMPARE(four.size(), std::size_t(3));
  QVERIFY(std::is_sorted(four.begin(), four.end()));
  // Drawn as dashed lines, none without zones.
  pub::PollenOptions o = pub::DefaultPollenOptions(f.session, 175);
  const int without = Layout(pub::PollenDiagramFigure(f.session, o)).DashedLines;
  o.Zones = 4;
  QCOMPARE(Layout(pub::PollenDiagramFigure(f.session, o)).DashedLines, without + 3);
}

void tst_PublicationFigures::pollenDiagramTitlesTextLabelsAsSample() {
  MainFixture f;
  f.ImportReference(Example("reference.csv"));
  f.Confirm();
  // The example core with its depths turned into names.
  QByteArray fossil = ReadAll(QString::fromStdString(Example("fossil.csv")));
  QList<QByteArray> lines = fossil.split('\n');
  for (int i = 1; i < lines.size(); ++i)
    if (!lines[i].trimmed().isEmpty())
      lines[i] = "S" + QByteArray::number(i) + lines[i].mid(lines[i].indexOf(','));
  f.ImportFossil(f.Write("named.csv", lines.join('\n')));
  QVERIFY(f.session.FossilLabelsAreText);
  const pub::PollenOptions o = pub::DefaultPollenOptions(f.session, 175);
  QCOMPARE(o.DepthTitle, QString("Sample"));
  QCOMPARE(pub::FossilCornerCell(f.session), QString("Depth"));  // the file's own corner
  const SvgLayout l = Layout(pub::PollenDiagramFigure(f.session, o));
  QVERIFY(l.HasText("Sample"));
  QVERIFY(l.HasText("S1"));
  QVERIFY(!l.HasText("CONISS"));  // no tree was computed
  QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
  QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
}

void tst_PublicationFigures::batchWritesThePollenDiagramTheWindowsDraw() {
  QTemporaryDir dir;
  QVERIFY(BatchOnExamples({"--coniss", "--out", dir.path() + "/out", "--figures",
                           dir.path() + "/fig", "--figure-style", "publication", "--zones", "3"}));
  Road f;
  pub::PollenOptions o = pub::DefaultPollenOptions(f.session, 175);
  o.Zones = 3;
  const QByteArray drawn = QByteArray::fromStdString(pub::PollenDiagramFigure(f.session, o).Svg());
  QCOMPARE(ReadAll(dir.path() + "/fig/pollen-diagram.svg"), drawn);
  QCOMPARE(ReadAll(dir.path() + "/fig/eof-scatter.svg"),
           QByteArray::fromStdString(pub::EofScatterFigure(f.session, f.session.DisplayAxes(1),
                                                           f.session.DisplayAxes(2), 175)
                                         .Svg()));
  // Only the figures for papers: no screen pictures beside them.
  QVERIFY(!QFile::exists(dir.path() + "/fig/diagram.svg"));
}

void tst_PublicationFigures::reconstructionReadsAtBothWidths() {
  Reconstructed f;
  QVERIFY(f.session.ClimateLoaded);
  for (double width : {pub::kSingleColumnMm, pub::kDoubleColumnMm})
    for (long p = 1; p <= f.session.ClimateParamCount; ++p) {
      const pub::Page page =
          pub::ReconstructionFigure(f.session, p, pub::DefaultCurveOptions(f.session, width));
      const SvgLayout l = Layout(page);
      QCOMPARE(l.Width, width);
      const QString name = QString::fromStdString(f.session.ClimateParamNames(p));
      for (const QString& words :
           {QString("Depth"), name, QString("Estimate"), QString("Analogue range"),
            QString("Moving average (3)"), QString("0"), QString("1000")})
        QVERIFY2(l.HasText(words), qPrintable(words));
      QVERIFY(!l.HasText("Analogues"));
      QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
      QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
    }
  // The example's summer temperatures lie between 23 and 29 degrees.
  const SvgLayout sst =
      Layout(pub::ReconstructionFigure(f.session, 1, pub::DefaultCurveOptions(f.session, 175)));
  QVERIFY(sst.HasText("SumSST") && sst.HasText("24") && sst.HasText("28"));
}

void tst_PublicationFigures::reconstructionShowsTheAnalogueCountWhenAsked() {
  Reconstructed f;
  pub::CurveOptions o = pub::DefaultCurveOptions(f.session, 85);
  o.AnalogueCount = true;
  o.Smoothing = 1;
  o.ErrorBand = false;
  const SvgLayout l = Layout(pub::ReconstructionFigure(f.session, 2, o));
  QVERIFY(l.HasText("Analogues"));
  QVERIFY(!l.HasText("Analogue range"));
  QVERIFY(!l.HasText("Moving average (1)"));
  QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
  QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
}

void tst_PublicationFigures::samplesOutsideTheEnvelopeAreRingedAndNamed() {
  Reconstructed f;
  NoProgress none;
  RunEnvelope(f.session, 0, none);  // no tolerance: samples fall outside
  long out = 0;
  for (long i = 1; i <= f.session.FossilSampleCount; ++i) out += f.session.SampleIsOut(i);
  QVERIFY(out > 0);
  const pub::Page curve =
      pub::ReconstructionFigure(f.session, 1, pub::DefaultCurveOptions(f.session, 175));
  Keep(curve, "publication-reconstruction-out");
  const SvgLayout l = Layout(curve);
  QVERIFY(l.HasText("Outside envelope"));
  QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
  // A ring is a white disc with a black edge: one per sample outside, and
  // one in the legend.
  const QByteArray svg = QByteArray::fromStdString(curve.Svg());
  QCOMPARE(svg.count("fill=\"#ffffff\" stroke=\"#000000\""), int(out) + 1);
  const SvgLayout plane = Layout(pub::EofScatterFigure(f.session, 1, 2, 85));
  QVERIFY(plane.HasText("Outside envelope") && plane.HasText("Envelope sites"));
  QVERIFY2(plane.Overlaps().isEmpty(), qPrintable(Joined(plane.Overlaps())));
}

void tst_PublicationFigures::batchWritesTheReconstructionTheWindowsDraw() {
  QTemporaryDir dir;
  QVERIFY(BatchOnExamples({"--climate", QString::fromStdString(Example("climate.csv")), "--out",
                           dir.path() + "/out", "--figures", dir.path() + "/fig", "--figure-style",
                           "publication", "--figure-width", "single", "--error-model"}));
  Reconstructed f;
  f.m->Command3->click();
  for (long p = 1; p <= f.session.ClimateParamCount; ++p) {
    const QString name = QString::fromStdString(f.session.ClimateParamNames(p));
    const QByteArray drawn = QByteArray::fromStdString(
        pub::ReconstructionFigure(f.session, p, pub::DefaultCurveOptions(f.session, 85)).Svg());
    QCOMPARE(ReadAll(dir.path() + "/fig/reconstruction-" + name + ".svg"), drawn);
    QCOMPARE(ReadAll(dir.path() + "/fig/est-obs-" + name + ".svg"),
             QByteArray::fromStdString(pub::EstObsFigure(f.session, p, 85).Svg()));
  }
}

namespace {
// The answer of the choice dialog, and the file the save dialog gives.
QString SaveFromEntry(MainFixture& f, QAction* entry, const QString& name,
                      const PublicationChoice& choice, int filter) {
  SetPublicationAnswer([choice](PublicationKind) { return choice; });
  const QString path = f.folder.path() + "/" + name;
  f.dialogs.SaveNames.push_back(path.toStdString());
  f.dialogs.SaveChoices.push_back(filter);
  entry->trigger();
  SetPublicationAnswer({});
  return path;
}
}  // namespace

void tst_PublicationFigures::diagramWindowSavesTheSameDrawingFromEveryMenu() {
  Road f;
  f.window->Command14->click();
  frmDiagram* d = f.window->DiagramWindow();
  QVERIFY(d);
  PublicationChoice c;
  c.WidthMm = pub::kSingleColumnMm;
  c.Zones = 3;
  pub::PollenOptions o = pub::DefaultPollenOptions(f.session, pub::kSingleColumnMm);
  o.Zones = 3;
  o.ShownEof = d->Settings().ShownEof;
  const QByteArray expected =
      QByteArray::fromStdString(pub::PollenDiagramFigure(f.session, o).Svg());
  for (const char* name :
       {"mnuPublicationRB1", "mnuPublicationRB2", "mnuPublicationRB3", "mnuEditPublication"}) {
    QAction* entry = d->findChild<QAction*>(name);
    QVERIFY2(entry, name);
    QCOMPARE(entry->text(), QString("Save Figure for Publication..."));
    // Without an extension the chosen kind of file names it.
    const QString path = SaveFromEntry(f, entry, QString(name), c, 0);
    QCOMPARE(ReadAll(path + ".svg"), expected);
  }
  // Beside "Save Picture As..." in the figure's menu.
  const QList<QAction*> menu = d->RB1->actions();
  const auto at = [&](const char* n) {
    for (int i = 0; i < menu.size(); ++i)
      if (menu[i]->objectName() == n) return i;
    return -1;
  };
  QCOMPARE(at("mnuPublicationRB1"), at("mnuSavePictureDiagram") + 1);
  QVERIFY(f.dialogs.Messages.empty());
}

void tst_PublicationFigures::reconstructionWindowSavesTheCurveAtTheChosenWidth() {
  Reconstructed f;
  QAction* entry = f.m->findChild<QAction*>("mnuPublication1");
  QVERIFY(entry && entry->isEnabled());
  QVERIFY(f.m->findChild<QAction*>("mnuEditPublication1"));
  PublicationChoice c;  // the default: double column
  QCOMPARE(c.WidthMm, 175.0);
  const QString pdf = SaveFromEntry(f, entry, "curve.pdf", c, 1);
  QVERIFY(ReadAll(pdf).startsWith("%PDF-"));
  const QImage png(SaveFromEntry(f, entry, "curve.png", c, 2));
  // 175 mm at 600 dots per inch.
  QCOMPARE(png.width(), 4134);
  QCOMPARE(png.dotsPerMeterX(), 23622);
  const QString svg = SaveFromEntry(f, entry, "curve.svg", c, 0);
  pub::CurveOptions o = pub::DefaultCurveOptions(f.session, 175);
  QCOMPARE(ReadAll(svg),
           QByteArray::fromStdString(
               pub::ReconstructionFigure(f.session, f.session.CurrentParameter, o).Svg()));
  QVERIFY(ReadSvgLayout(ReadAll(svg))
              .HasText(
                  QString::fromStdString(f.session.ClimateParamNames(f.session.CurrentParameter))));
}

void tst_PublicationFigures::choiceDialogOffersBothWidthsDoubleFirst() {
  bool checked = false;
  // The real dialog, answered as a user would: one column, three zones.
  QTimer::singleShot(0, [&] {
    QWidget* d = QApplication::activeModalWidget();
    QVERIFY(d);
    QCOMPARE(d->windowTitle(), QString("Save Figure for Publication"));
    auto* twice = d->findChild<QRadioButton*>("optDoubleColumn");
    auto* once = d->findChild<QRadioButton*>("optSingleColumn");
    auto* zones = d->findChild<QSpinBox*>("spnZones");
    QVERIFY(twice && once && zones);
    QVERIFY(twice->isChecked());
    QCOMPARE(twice->text(), QString("Double column (175 mm)"));
    QCOMPARE(once->text(), QString("Single column (85 mm)"));
    QVERIFY(zones->isEnabled());
    QVERIFY(d->findChild<QCheckBox*>("chkExaggerate"));
    QVERIFY(!d->findChild<QCheckBox*>("chkAnalogueCount"));
    Shot(d, "frmPublication");
    once->setChecked(true);
    zones->setValue(3);
    d->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
    checked = true;
  });
  const std::optional<PublicationChoice> c =
      AskPublicationChoice(nullptr, PublicationKind::PollenDiagram, true);
  QVERIFY(checked);
  QVERIFY(c);
  QCOMPARE(c->WidthMm, 85.0);
  QCOMPARE(c->Zones, 3);
  // Without a tree there are no zones to choose; the curve has its panel.
  QTimer::singleShot(0, [&] {
    QWidget* d = QApplication::activeModalWidget();
    QVERIFY(d && d->findChild<QCheckBox*>("chkAnalogueCount"));
    QVERIFY(!d->findChild<QSpinBox*>("spnZones"));
    d->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click();
  });
  QVERIFY(!AskPublicationChoice(nullptr, PublicationKind::Reconstruction, false));
}

void tst_PublicationFigures::cancelledChoiceWritesNothing() {
  Road f;
  f.window->Command14->click();
  SetPublicationAnswer([](PublicationKind) { return std::optional<PublicationChoice>(); });
  f.dialogs.SaveNames.push_back((f.folder.path() + "/never.svg").toStdString());
  f.window->DiagramWindow()->findChild<QAction*>("mnuEditPublication")->trigger();
  SetPublicationAnswer({});
  QVERIFY(!QFile::exists(f.folder.path() + "/never.svg"));
  QVERIFY(f.dialogs.Messages.empty());
}

void tst_PublicationFigures::estObsReadsAtBothWidths() {
  Reconstructed f;
  f.m->Command3->click();  // "Generate error model"
  QVERIFY(f.session.ErrorModelReady);
  for (double width : {pub::kSingleColumnMm, pub::kDoubleColumnMm})
    for (long p = 1; p <= f.session.ClimateParamCount; ++p) {
      const SvgLayout l = Layout(pub::EstObsFigure(f.session, p, width));
      const QString name = QString::fromStdString(f.session.ClimateParamNames(p));
      QVERIFY(l.HasText("Observed " + name));
      QVERIFY(l.HasText("Estimated " + name));
      QCOMPARE(l.HasText(QString("Estimated ") + QChar(0x2212) + " observed"), width > 100);
      const std::optional<double> r = EstObsCorrelation(f.session, p);
      QVERIFY(r);
      QVERIFY(l.HasText("R = " + pub::FigureNumber(*r, 3)));
      QVERIFY(l.HasText("RMSEP = " + pub::FigureNumber(*pub::Rmsep(f.session, p), 2)));
      QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
      QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
    }
  // From the window's scatter menu: the same drawing.
  QAction* entry = f.m->findChild<QAction*>("mnuPublication2");
  QVERIFY(entry && entry->isEnabled());
  PublicationChoice c;
  c.WidthMm = 85;
  const QString svg = SaveFromEntry(f, entry, "scatter.svg", c, 0);
  QCOMPARE(ReadAll(svg), QByteArray::fromStdString(
                             pub::EstObsFigure(f.session, f.session.CurrentParameter, 85).Svg()));
  QVERIFY(f.m->findChild<QAction*>("mnuEditPublication2"));
  // SumSST: the observed values run from 2 to 29 degrees, the axes from 0 to 30.
  const SvgLayout sst = Layout(pub::EstObsFigure(f.session, 1, 85));
  QVERIFY(sst.HasText("0") && sst.HasText("30"));
}

void tst_PublicationFigures::estObsNeedsTheErrorModel() {
  Reconstructed f;
  QVERIFY(!f.session.ErrorModelReady);
  QCOMPARE(pub::EstObsFigure(f.session, 1, 85).Height(), 0.0);
  QVERIFY(!pub::Rmsep(f.session, 1));
}

void tst_PublicationFigures::eofScatterReadsAtBothWidths() {
  Road f;
  const Count a = f.session.DisplayAxes(1), b = f.session.DisplayAxes(2);
  const QString ax = QString("EOF-%1 (%2 %)").arg(a).arg(f.session.Contribution(a), 0, 'f', 1);
  const QString bx = QString("EOF-%1 (%2 %)").arg(b).arg(f.session.Contribution(b), 0, 'f', 1);
  for (double width : {pub::kSingleColumnMm, pub::kDoubleColumnMm}) {
    const SvgLayout l = Layout(pub::EofScatterFigure(f.session, a, b, width));
    QCOMPARE(l.Width, width);
    for (const QString& words : {ax, bx, QString("Reference sites"), QString("Fossil samples"),
                                 QString("Taxa"), QString("G.ruber"), QString("G.pac.L")})
      QVERIFY2(l.HasText(words), qPrintable(words));
    QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
    QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
  }
  // The example's first EOF holds 57.2 % of the variance.
  QCOMPARE(ax, QString("EOF-1 (57.2 %)"));
  // From the main window's figure menus: the same drawing.
  QAction* entry = f.window->findChild<QAction*>("mnuPublication2L");
  QVERIFY(entry && entry->isEnabled());
  PublicationChoice c;
  const QString svg = SaveFromEntry(f, entry, "plane.svg", c, 0);
  QCOMPARE(ReadAll(svg),
           QByteArray::fromStdString(pub::EofScatterFigure(f.session, a, b, 175).Svg()));
  for (const char* name : {"mnuPublication1L", "mnuPublication1R", "mnuPublication2R"})
    QVERIFY2(f.window->findChild<QAction*>(name), name);
}

void tst_PublicationFigures::calibrationReadsAtBothWidthsAndMatchesTheBatch() {
  Reconstructed f;
  f.m->Command3->click();  // the error model
  f.m->Command6->click();  // the calibration tool
  frmCalib* cal = f.m->CalibWindow();
  QVERIFY(cal);
  cal->Check4->click();    // "Generate model"
  cal->Command3->click();  // "Start"
  cal->PrepareChart(5);
  frmOutPut2* chart = cal->Chart();
  QVERIFY(chart);
  const FineGrid& fine = chart->Fine();
  const double t1 = LenientParse(cal->Text1->text().toStdString()),
               t2 = LenientParse(cal->Text2->text().toStdString());
  const QString name = pub::CalibrationParameter(cal->State());
  QCOMPARE(name, QString::fromStdString(f.session.ClimateParamNames(f.session.CurrentParameter)));
  pub::CalibrationInput in{fine, t1, t2, 682, 954, pub::DefaultSectionColumn(fine), name};
  for (double width : {pub::kSingleColumnMm, pub::kDoubleColumnMm}) {
    const SvgLayout l = Layout(pub::CalibrationFigure(in, width));
    QCOMPARE(l.Width, width);
    for (const QString& words :
         {"Reconstructed " + name, "Observed " + name, QString("Probability"), QString("Mode"),
          QString("Median"), QString("68.2 %"), QString("95.4 %")})
      QVERIFY2(l.HasText(words), qPrintable(words));
    QVERIFY(std::any_of(l.Texts.begin(), l.Texts.end(), [](const SvgText& t) {
      return t.Words.startsWith("Section at reconstructed ");
    }));
    QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
    QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
  }
  // The section holds probability where the default puts it.
  double mass = 0;
  for (long q = 50; q <= 450; ++q) mass += fine.FineProb(in.SectionColumn, q);
  QVERIFY(mass > 0);
  // From the chart's menus: the section the slider chose.
  QAction* entry = chart->findChild<QAction*>("mnuPublication1");
  QVERIFY(entry && chart->findChild<QAction*>("mnuPublication2"));
  in.SectionColumn = chart->SectionColumn();
  const QString svg = SaveFromEntry(f, entry, "chart.svg", PublicationChoice{}, 0);
  QCOMPARE(ReadAll(svg), QByteArray::fromStdString(pub::CalibrationFigure(in, 175).Svg()));
  // The batch runner on the same road: the same drawing at its default section.
  QTemporaryDir dir;
  QVERIFY(BatchOnExamples({"--climate", QString::fromStdString(Example("climate.csv")),
                           "--calibrate", name, "--out", dir.path() + "/out", "--figures",
                           dir.path() + "/fig", "--figure-style", "publication"}));
  in.SectionColumn = pub::DefaultSectionColumn(fine);
  QCOMPARE(ReadAll(dir.path() + "/fig/calibration.svg"),
           QByteArray::fromStdString(pub::CalibrationFigure(in, 175).Svg()));
  // And the matrix down the core beside it.
  const SvgLayout down = ReadSvgLayout(ReadAll(dir.path() + "/fig/response-matrix.svg"));
  QVERIFY(down.Valid && down.HasText(name) && down.HasText("Probability"));
  QVERIFY2(down.Overlaps().isEmpty(), qPrintable(Joined(down.Overlaps())));
}

void tst_PublicationFigures::responseMatrixReadsAtBothWidths() {
  Reconstructed f;
  f.m->Command3->click();
  f.m->Command6->click();
  frmCalib* cal = f.m->CalibWindow();
  cal->Check4->click();
  cal->Command3->click();
  QAction* matrix = f.m->findChild<QAction*>("mnuPublication3");
  QVERIFY(matrix && !matrix->isEnabled());  // nothing down the core yet
  QCOMPARE(pub::ResponseMatrixFigure(f.session, f.m->Hist(), 1, 25, 30, 175).Height(), 0.0);
  cal->Command10->click();  // "Return"
  f.m->Command4->click();   // the matrix down the core
  QVERIFY(f.m->Hist().HistReady);
  QVERIFY(matrix->isEnabled());
  const long p = f.session.CurrentParameter;
  const QString name = QString::fromStdString(f.session.ClimateParamNames(p));
  const double t1 = LenientParse(f.m->Text1->text().toStdString()),
               t2 = LenientParse(f.m->Text2->text().toStdString());
  for (double width : {pub::kSingleColumnMm, pub::kDoubleColumnMm}) {
    const SvgLayout l = Layout(pub::ResponseMatrixFigure(f.session, f.m->Hist(), p, t1, t2, width));
    QCOMPARE(l.Width, width);
    for (const QString& words : {name, QString("Depth"), QString("Probability"), QString("0.00"),
                                 QString("200"), QString("1000")})
      QVERIFY2(l.HasText(words), qPrintable(words));
    QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
    QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
  }
  const QString svg = SaveFromEntry(f, matrix, "down.svg", PublicationChoice{}, 0);
  QCOMPARE(ReadAll(svg),
           QByteArray::fromStdString(
               pub::ResponseMatrixFigure(f.session, f.m->Hist(), p, t1, t2, 175).Svg()));
  // The calibration matrix of the window: the chart's figure at its default section.
  const QString chart = SaveFromEntry(f, f.m->findChild<QAction*>("mnuPublication4"), "matrix.svg",
                                      PublicationChoice{}, 0);
  QVERIFY(ReadSvgLayout(ReadAll(chart)).HasText("Reconstructed " + name));
}

void tst_PublicationFigures::mapReadsAtBothWidthsAndMatchesTheBatch() {
  // The interpolation fixtures: 400 stations and the 61 example sites.
  const QString data = QString::fromStdString(Example("")) + "/../../tests/data/interpolation/";
  MainFixture f;
  f.Road();
  f.window->Command8->click();
  frmMAT* m = f.window->MATWindow();
  m->Command8->click();
  frmLuvane* lv = m->LuvaneWindow();
  QVERIFY(lv);
  QAction* entry = lv->findChild<QAction*>("mnuPublicationMap");
  QVERIFY(entry);
  QCOMPARE(pub::MapFigure(f.session, Coastline{}, 175).Height(), 0.0);
  // Before the stations are read there is no figure: said, and no file.
  SaveFromEntry(f, entry, "early.svg", PublicationChoice{}, 0);
  QVERIFY(!QFile::exists(f.folder.path() + "/early.svg"));
  QCOMPARE(f.dialogs.Messages.size(), std::size_t(1));
  f.dialogs.Messages.clear();
  f.dialogs.SaveNames.clear();
  f.dialogs.SaveChoices.clear();
  f.dialogs.OpenNames.push_back((data + "stations.csv").toStdString());
  lv->Command0->click();
  f.dialogs.OpenNames.push_back((data + "targets.csv").toStdString());
  lv->Command2->click();
  QVERIFY(f.session.Interp.InterpTargetLoaded);
  QVERIFY(entry->isEnabled());
  const QString deg(QChar(0x00B0));
  for (double width : {pub::kSingleColumnMm, pub::kDoubleColumnMm}) {
    const SvgLayout l = Layout(pub::MapFigure(f.session, Coastline{}, width));
    QCOMPARE(l.Width, width);
    for (const QString& words : {QString("Stations (400)"), QString("Sites (61)"), "0" + deg,
                                 "60" + deg + "W", "20" + deg + "S"})
      QVERIFY2(l.HasText(words) || (width > 100 && words.startsWith("20")), qPrintable(words));
    QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
    QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
  }
  // "Check accuracy": the sites' climate is interpolated, those left
  // without data show as open rings, as after the batch runner's run.
  lv->Command3->click();
  QVERIFY(f.session.ClimateLoaded);
  QVERIFY(Layout(pub::MapFigure(f.session, Coastline{}, 85)).HasText("Sites without data"));
  // The window's coastline is the program's; the batch runner reads the same.
  const QString svg = SaveFromEntry(f, entry, "map.svg", PublicationChoice{}, 0);
  const SvgLayout saved = ReadSvgLayout(ReadAll(svg));
  QVERIFY(saved.HasText("Stations (400)"));
  QVERIFY(saved.Shapes.size() > 1000);  // the coastline's segments in the frame
  QTemporaryDir dir;
  QProcess p;
  p.start(VARNOTH_BATCH,
          {"--reference", QString::fromStdString(Example("reference.csv")), "--stations",
           data + "stations.csv", "--targets", data + "targets.csv", "--out", dir.path() + "/out",
           "--figures", dir.path() + "/fig", "--figure-style", "publication"});
  QVERIFY(p.waitForFinished(120000) && p.exitCode() == 0);
  QCOMPARE(ReadAll(dir.path() + "/fig/map.svg"), ReadAll(svg));
}

void tst_PublicationFigures::eofClimateTableReadsAtBothWidthsAndMatchesTheBatch() {
  Reconstructed f;  // the climate is in
  f.window->Command14->click();
  frmDiagram* d = f.window->DiagramWindow();
  d->mnuECC->trigger();
  QCoreApplication::processEvents();
  frmECC* ecc = f.window->EccWindow();
  QVERIFY(ecc && ecc->EccOpen);
  for (double width : {pub::kSingleColumnMm, pub::kDoubleColumnMm}) {
    const SvgLayout l =
        Layout(pub::EofClimateFigure(f.session, ecc->EccMatrix, f.session.RefTaxaCount, width));
    QCOMPARE(l.Width, width);
    for (long p = 1; p <= f.session.ClimateParamCount; ++p)
      QVERIFY(l.HasText(QString::fromStdString(f.session.ClimateParamNames(p))));
    for (long e = 1; e <= f.session.RefTaxaCount; ++e) QVERIFY(l.HasText(QString("EOF-%1").arg(e)));
    // Every coefficient printed as the window's table shows it.
    QVERIFY(l.HasText(QString::fromStdString(EccText(ecc->EccMatrix(1, 1)))));
    QVERIFY(l.HasText("R"));
    QVERIFY2(l.OffPage().isEmpty(), qPrintable(Joined(l.OffPage())));
    QVERIFY2(l.Overlaps().isEmpty(), qPrintable(Joined(l.Overlaps())));
  }
  QAction* entry = ecc->findChild<QAction*>("mnuPublicationTable");
  QVERIFY(entry);
  const QString svg = SaveFromEntry(f, entry, "table.svg", PublicationChoice{}, 0);
  QTemporaryDir dir;
  QVERIFY(BatchOnExamples({"--climate", QString::fromStdString(Example("climate.csv")),
                           "--eof-climate", "--out", dir.path() + "/out", "--figures",
                           dir.path() + "/fig", "--figure-style", "publication"}));
  QCOMPARE(ReadAll(dir.path() + "/fig/eof-climate.svg"), ReadAll(svg));
}

QTEST_MAIN(tst_PublicationFigures)
#include "tst_PublicationFigures.moc"
