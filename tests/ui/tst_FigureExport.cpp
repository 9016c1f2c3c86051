// Every figure as a file for papers: "Save Picture As..." in the right-button
// menus and the Edit menus of the main window, the diagram, the correlation
// window and the reconstruction window, checked on the files written (the
// SVG as XML with the figure's text, the PDF's header and page count, the
// PNG at twice the size with the marks where they belong), and the example
// data set opened from the File menu. With VARNOTH_SHOTS set to a folder,
// the files written are kept there.
#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>

#include "UiSupport.h"
#include "presentation/PictureFile.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/frmDiagram.h"
#include "ui/frmECC.h"
#include "ui/frmMAT.h"

using namespace varnoth;
using varnoth::uitest::Example;
using varnoth::uitest::MainFixture;
using varnoth::uitest::ReadAll;

namespace {

enum Choice { Png1 = 0, Png2 = 1, Png4 = 2, Svg = 3, Pdf = 4 };

// The words of every text element, or "<invalid>" when the file is not
// well-formed XML with an svg root.
QString SvgText(const QString& path) {
  QXmlStreamReader xml(ReadAll(path));
  QString words;
  bool root = false, inText = false;
  while (!xml.atEnd()) {
    xml.readNext();
    if (xml.isStartElement()) {
      if (!root && xml.name() != QStringLiteral("svg")) return "<invalid>";
      root = true;
      if (xml.name() == QStringLiteral("text")) inText = true;
    } else if (xml.isEndElement() && xml.name() == QStringLiteral("text")) {
      inText = false;
      words += '\n';
    } else if (xml.isCharacters() && inText) {
      words += xml.text();
    }
  }
  if (xml.hasError() || !root) return "<invalid>";
  return words;
}

// Pages of a PDF, counted by their page objects (not the page tree).
int PdfPages(const QByteArray& pdf) {
  return static_cast<int>(pdf.count("/Type /Page\n") + pdf.count("/Type /Page\r") +
                          pdf.count("/Type /Page ") + pdf.count("/Type /Page/") +
                          pdf.count("/Type /Page>"));
}

struct Fixture : MainFixture {
  // Chooses the entry with a file name and a filter, as the user would.
  QString Save(QAction* entry, const QString& name, Choice choice) {
    const QString path = folder.path() + "/" + name;
    dialogs.SaveNames.push_back(path.toStdString());
    dialogs.SaveChoices.push_back(choice);
    entry->trigger();
    // With VARNOTH_SHOTS set to a folder the files are kept there to be looked at.
    const QString shots = qEnvironmentVariable("VARNOTH_SHOTS");
    if (!shots.isEmpty() && QFileInfo::exists(path)) {
      QDir().mkpath(shots);
      QFile::remove(shots + "/" + name);
      QFile::copy(path, shots + "/" + name);
    }
    return path;
  }
  QAction* Action(QObject* owner, const char* name) {
    auto* a = owner->findChild<QAction*>(name);
    if (!a) qWarning("no entry named %s", name);
    return a;
  }
  int FilesWritten() const {
    return static_cast<int>(QDir(folder.path()).entryList(QDir::Files).size());
  }
};

// The number of marks of `colour` on the screen image whose centre pixel,
// doubled, is not of that colour in the big image: zero when the big image
// holds the same marks at the scaled places.
int MisplacedMarks(const QImage& screen, const QImage& big, int scale, QColor colour) {
  int checked = 0, misplaced = 0;
  for (int y = 1; y + 1 < screen.height(); ++y)
    for (int x = 1; x + 1 < screen.width(); ++x) {
      // The middle of a mark: the pixel and its four neighbours of the colour.
      if (screen.pixelColor(x, y) != colour || screen.pixelColor(x - 1, y) != colour ||
          screen.pixelColor(x + 1, y) != colour || screen.pixelColor(x, y - 1) != colour ||
          screen.pixelColor(x, y + 1) != colour)
        continue;
      ++checked;
      bool found = false;
      for (int dy = -1; dy <= 1 && !found; ++dy)
        for (int dx = -1; dx <= 1 && !found; ++dx)
          found = big.pixelColor(x * scale + scale / 2 + dx, y * scale + scale / 2 + dy) == colour;
      if (!found) ++misplaced;
    }
  return checked == 0 ? -1 : misplaced;
}

// Of the screen pixels of `colour`, the share whose scaled place in the big
// image has a pixel near that colour (smoothing may soften an edge); the
// count of such screen pixels goes to `inked`.
double InkInPlace(const QImage& screen, const QImage& big, int scale, QColor colour, int& inked) {
  auto close = [&](QColor c) {
    return std::abs(c.red() - colour.red()) < 48 && std::abs(c.green() - colour.green()) < 48 &&
           std::abs(c.blue() - colour.blue()) < 48;
  };
  inked = 0;
  int found = 0;
  for (int y = 0; y < screen.height(); ++y)
    for (int x = 0; x < screen.width(); ++x) {
      if (screen.pixelColor(x, y) != colour) continue;
      ++inked;
      bool hit = false;
      for (int dy = -1; dy <= scale && !hit; ++dy)
        for (int dx = -1; dx <= scale && !hit; ++dx) {
          const int bx = x * scale + dx, by = y * scale + dy;
          hit = bx >= 0 && by >= 0 && bx < big.width() && by < big.height() &&
                close(big.pixelColor(bx, by));
        }
      if (hit) ++found;
    }
  return inked == 0 ? 0 : double(found) / inked;
}

}  // namespace

class tst_FigureExport : public QObject {
  Q_OBJECT
 private slots:
  void entriesFollowTheirMenusAndStartDisabled();
  void scatterSvgHoldsNamesAndAxisCaption();
  void scatterPdfIsOnePage();
  void scatterPngTwiceTheSizeWithMarksInPlace();
  void screenSizePngMatchesTheScreen();
  void editMenuSavesEachFigure();
  void cancelWritesNothing();
  void writeFailureEndsInAMessage();
  void extensionComesFromTheChosenKind();
  void replayKeepsBothLayersAndForgetsClearedMarks();
  void diagramTaxonNamesInSvgAndDiagramAsPdf();
  void eccScatterAsSvgAndPng();
  void reconstructionCurveAndScatterAsFiles();
  void openExampleDataRunsTheWholeRoad();
  void climateDialogStartsInTheExampleFolder();
};

void tst_FigureExport::entriesFollowTheirMenusAndStartDisabled() {
  Fixture f;
  for (const char* name :
       {"mnuSavePicture1L", "mnuSavePicture1R", "mnuSavePicture2L", "mnuSavePicture2R"}) {
    QAction* a = f.Action(f.window.get(), name);
    QVERIFY(a);
    QCOMPARE(a->text(), QString("Save Picture As..."));
    QVERIFY2(!a->isEnabled(), name);
  }
  // After the entries of its own menu, which stay as they were.
  const QList<QAction*> fig1 = f.window->mnuFig1L->actions();
  QCOMPARE(fig1.size(), 4);
  QCOMPARE(fig1[0]->objectName(), QString("mnuCopy1L"));
  QCOMPARE(fig1[1]->objectName(), QString("mnuSaveL2"));
  QCOMPARE(fig1[2]->objectName(), QString("mnuSavePicture1L"));
  QCOMPARE(fig1[3]->objectName(), QString("mnuPublication1L"));  // the figure for papers
  QVERIFY(!fig1[3]->isEnabled());
  f.ImportReference(Example("reference.csv"));
  f.Confirm();
  QVERIFY(f.Action(f.window.get(), "mnuSavePicture1L")->isEnabled());
  QVERIFY(f.Action(f.window.get(), "mnuEditPicture2L")->isEnabled());
}

void tst_FigureExport::scatterSvgHoldsNamesAndAxisCaption() {
  Fixture f;
  f.Road();
  const QString path = f.Save(f.Action(f.window.get(), "mnuSavePicture2L"), "sites.svg", Svg);
  const QString words = SvgText(path);
  QVERIFY2(words != "<invalid>", qPrintable(path));
  QVERIFY2(words.contains("EOF-1"), qPrintable(words.left(200)));
  QVERIFY(words.contains(QString::fromStdString(f.session.RefSiteNames(1))));
  // The taxa figure holds the taxon names.
  const QString taxa =
      SvgText(f.Save(f.Action(f.window.get(), "mnuSavePicture1L"), "taxa.svg", Svg));
  QVERIFY(taxa.contains(QString::fromStdString(f.session.RefTaxaNames(1))));
  QVERIFY(f.dialogs.Messages.empty());
}

void tst_FigureExport::scatterPdfIsOnePage() {
  Fixture f;
  f.Road();
  const QByteArray pdf =
      ReadAll(f.Save(f.Action(f.window.get(), "mnuSavePicture2L"), "sites.pdf", Pdf));
  QVERIFY(pdf.startsWith("%PDF-"));
  QCOMPARE(PdfPages(pdf), 1);
  QVERIFY(pdf.trimmed().endsWith("%%EOF"));
}

void tst_FigureExport::scatterPngTwiceTheSizeWithMarksInPlace() {
  Fixture f;
  f.Road();
  const Surface& screen = f.window->Picture2(0)->surface();
  const QImage big(f.Save(f.Action(f.window.get(), "mnuSavePicture2L"), "sites.png", Png2));
  QCOMPARE(big.width(), 2 * screen.Width());
  QCOMPARE(big.height(), 2 * screen.Height());
  const QColor site = f.colours.ColourSlot2.ToQColor();
  QCOMPARE(MisplacedMarks(screen.Image(), big, 2, site), 0);
  const QImage four(f.Save(f.Action(f.window.get(), "mnuSavePicture2L"), "sites4.png", Png4));
  QCOMPARE(four.width(), 4 * screen.Width());
  QCOMPARE(MisplacedMarks(screen.Image(), four, 4, site), 0);
  // The big picture is drawn anew, not enlarged: the screen copy blown up
  // pixel by pixel differs from it wherever text and edges were drawn.
  const QImage blown = screen.Image()
                           .scaled(big.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation)
                           .convertToFormat(big.format());
  long differ = 0;
  for (int y = 0; y < big.height(); ++y)
    for (int x = 0; x < big.width(); ++x)
      if (big.pixel(x, y) != blown.pixel(x, y)) ++differ;
  QVERIFY2(differ > 500, qPrintable(QString::number(differ)));
}

void tst_FigureExport::screenSizePngMatchesTheScreen() {
  Fixture f;
  f.Road();
  const QImage& screen = f.window->Picture1(0)->surface().Image();
  const QImage png(f.Save(f.Action(f.window.get(), "mnuSavePicture1L"), "taxa.png", Png1));
  QCOMPARE(png.size(), screen.size());
  // Text is laid out by another call, so a few pixels may differ; the
  // figure is the same.
  long differ = 0;
  for (int y = 0; y < png.height(); ++y)
    for (int x = 0; x < png.width(); ++x)
      if (png.pixel(x, y) != screen.pixel(x, y)) ++differ;
  QVERIFY2(differ * 100 < png.width() * png.height(), qPrintable(QString::number(differ)));
}

void tst_FigureExport::editMenuSavesEachFigure() {
  Fixture f;
  f.Road();
  auto* edit = f.window->findChild<QMenu*>("mnuEdit");
  QVERIFY(edit);
  auto* sub = edit->findChild<QMenu*>("mnuSavePicture");
  QVERIFY(sub);
  QCOMPARE(sub->actions().size(), 4);
  QCOMPARE(sub->actions()[2]->text(), QString("Fig2(0)..."));
  const QImage png(f.Save(sub->actions()[2], "edit.png", Png1));
  QCOMPARE(png.size(), f.window->Picture2(0)->surface().Image().size());
  QVERIFY(SvgText(f.Save(sub->actions()[0], "edit.svg", Svg))
              .contains(QString::fromStdString(f.session.RefTaxaNames(1))));
}

void tst_FigureExport::cancelWritesNothing() {
  Fixture f;
  f.Road();
  f.Action(f.window.get(), "mnuSavePicture2L")->trigger();  // no name queued: cancel
  QCOMPARE(f.FilesWritten(), 0);
  QVERIFY(f.dialogs.Messages.empty());
  QCOMPARE(f.dialogs.Filters.back(), std::string(kPictureFilter));
}

void tst_FigureExport::writeFailureEndsInAMessage() {
  Fixture f;
  f.Road();
  for (Choice c : {Png2, Svg, Pdf}) {
    f.dialogs.Messages.clear();
    const QString path = f.Save(f.Action(f.window.get(), "mnuSavePicture2L"),
                                "missing-folder/sites." + QString(c == Svg   ? "svg"
                                                                  : c == Pdf ? "pdf"
                                                                             : "png"),
                                c);
    QCOMPARE(f.dialogs.Messages.size(), std::size_t(1));
    QCOMPARE(f.dialogs.Messages[0].Title, std::string("Error"));
    QVERIFY(!QFileInfo::exists(path));
  }
  QVERIFY(f.window->isEnabled());
}

void tst_FigureExport::extensionComesFromTheChosenKind() {
  Fixture f;
  f.Road();
  f.Save(f.Action(f.window.get(), "mnuSavePicture2L"), "plain", Pdf);
  QVERIFY(ReadAll(f.folder.path() + "/plain.pdf").startsWith("%PDF-"));
  f.Save(f.Action(f.window.get(), "mnuSavePicture2L"), "other", Png4);
  QCOMPARE(QImage(f.folder.path() + "/other.png").width(),
           4 * f.window->Picture2(0)->surface().Width());
  // A name with an extension keeps it, whatever kind was chosen.
  f.Save(f.Action(f.window.get(), "mnuSavePicture2L"), "named.svg", Png1);
  QVERIFY(SvgText(f.folder.path() + "/named.svg") != "<invalid>");
}

void tst_FigureExport::replayKeepsBothLayersAndForgetsClearedMarks() {
  Surface s(100, 50);
  s.SetScale(0, 0, 100, 50);
  s.Line(0, 10, 100, 10, Qt::blue);
  s.StoreBackground();
  s.Line(50, 0, 50, 50, Qt::red);  // a marker over the stored background
  QImage both(200, 100, QImage::Format_RGB32);
  {
    QPainter p(&both);
    p.scale(2, 2);
    s.Replay(p);
  }
  QCOMPARE(both.pixelColor(20, 20), QColor(Qt::blue));
  QCOMPARE(both.pixelColor(100, 80), QColor(Qt::red));
  s.Clear();  // the marker goes, the background stays
  s.Line(70, 0, 70, 50, Qt::red);
  QImage moved(200, 100, QImage::Format_RGB32);
  {
    QPainter p(&moved);
    p.scale(2, 2);
    s.Replay(p);
  }
  QCOMPARE(moved.pixelColor(20, 20), QColor(Qt::blue));
  QCOMPARE(moved.pixelColor(100, 80), QColor(Qt::white));
  QCOMPARE(moved.pixelColor(140, 80), QColor(Qt::red));
  // A box over the whole picture hides the marks: they are not kept.
  const std::size_t background = 2;  // the first wipe and the blue line
  for (int i = 0; i < 100; ++i) {
    s.FilledBox(0, 0, 100, 50, Qt::white);
    s.Line(i, 0, i, 50, Qt::red);
  }
  QCOMPARE(s.OperationCount(), background + 2);
  // A new background colour wipes both layers.
  s.SetBackColour(Qt::yellow);
  QCOMPARE(s.OperationCount(), std::size_t(1));
  QTemporaryDir dir;
  const QString path = dir.path() + "/wiped.png";
  SavePicture(s, path.toStdString(), PictureFormat::Png, 2);
  const QImage wiped(path);
  QCOMPARE(wiped.pixelColor(20, 20), QColor(Qt::yellow));
}

void tst_FigureExport::diagramTaxonNamesInSvgAndDiagramAsPdf() {
  Fixture f;
  f.Road();
  f.window->Command14->click();
  QCoreApplication::processEvents();
  frmDiagram* d = f.window->DiagramWindow();
  QVERIFY(d);
  const QString names = SvgText(f.Save(f.Action(d, "mnuSavePictureTaxaName"), "names.svg", Svg));
  QVERIFY2(names.contains(QString::fromStdString(f.session.FossilTaxaNames(1))),
           qPrintable(names.left(200)));
  const QByteArray pdf = ReadAll(f.Save(f.Action(d, "mnuSavePictureDiagram"), "diagram.pdf", Pdf));
  QVERIFY(pdf.startsWith("%PDF-"));
  QCOMPARE(PdfPages(pdf), 1);
  const Surface& eof = d->Picture2->surface();
  const QImage big(f.Save(f.Action(d, "mnuSavePictureEOF"), "eof.png", Png2));
  QCOMPARE(big.size(), eof.Image().size() * 2);
  int inked = 0;
  const double share = InkInPlace(eof.Image(), big, 2, f.colours.CurveColour.ToQColor(), inked);
  QVERIFY2(inked > 50 && share > 0.95, qPrintable(QString("%1 %2").arg(inked).arg(share)));
  // The Edit menu offers the three panels.
  auto* sub = d->findChild<QMenu*>("mnuSavePicture");
  QVERIFY(sub);
  QCOMPARE(sub->actions().size(), 3);
  QVERIFY(f.dialogs.Messages.empty());
}

void tst_FigureExport::eccScatterAsSvgAndPng() {
  Fixture f;
  f.Road();
  f.window->Command14->click();
  frmDiagram* d = f.window->DiagramWindow();
  f.dialogs.Answers.push_back(true);
  f.dialogs.OpenNames.push_back(Example("climate.csv"));
  d->mnuECC->trigger();
  QCoreApplication::processEvents();
  frmECC* e = f.window->EccWindow();
  QVERIFY(e);
  // The table with its row and column heads in one picture.
  const QString table = SvgText(f.Save(f.Action(e, "mnuSaveTablePicture"), "table.svg", Svg));
  QVERIFY2(table.contains("EOF-1"), qPrintable(table.left(300)));
  QVERIFY(table.contains(QString::fromStdString(f.session.ClimateParamNames(1))));
  QVERIFY(table.contains(
      QRegularExpression("^-?0?\\.\\d\\d$|^-?\\d\\.\\d+$", QRegularExpression::MultilineOption)));
  const QImage tablePng(f.Save(f.Action(e, "mnuSaveTablePicture"), "table.png", Png1));
  QCOMPARE(tablePng.width(), e->Picture2->x() + e->Picture2->width() - e->Picture1->x());
  QCOMPARE(tablePng.height(), e->Picture2->y() + e->Picture2->height() - e->Picture0[0]->y());
  const QString svg = f.Save(f.Action(e, "mnuSavePicture"), "ecc.svg", Svg);
  QVERIFY(SvgText(svg) != "<invalid>");
  QVERIFY(ReadAll(svg).contains("<circle") || ReadAll(svg).contains("<path") ||
          ReadAll(svg).contains("<ellipse"));
  const Surface& scatter = e->Picture3->surface();
  const QImage big(f.Save(f.Action(e, "mnuSavePicture"), "ecc.png", Png2));
  QCOMPARE(big.size(), scatter.Image().size() * 2);
  int inked = 0;
  const double share = InkInPlace(scatter.Image(), big, 2, f.colours.CurveColour.ToQColor(), inked);
  QVERIFY2(inked > 50 && share > 0.95, qPrintable(QString("%1 %2").arg(inked).arg(share)));
  QVERIFY(f.dialogs.Messages.empty());
}

void tst_FigureExport::reconstructionCurveAndScatterAsFiles() {
  Fixture f;
  f.Road();
  f.window->Command8->click();
  frmMAT* m = f.window->MATWindow();
  QVERIFY(m);
  f.dialogs.OpenNames.push_back(Example("climate.csv"));
  m->Command1->click();
  QCoreApplication::processEvents();
  QVERIFY(f.Action(m, "mnuSavePicture1")->isEnabled());
  const QByteArray pdf = ReadAll(f.Save(f.Action(m, "mnuSavePicture1"), "curve.pdf", Pdf));
  QVERIFY(pdf.startsWith("%PDF-"));
  QCOMPARE(PdfPages(pdf), 1);
  const QString svg = f.Save(f.Action(m, "mnuSavePicture1"), "curve.svg", Svg);
  QVERIFY(SvgText(svg) != "<invalid>");
  QVERIFY(ReadAll(svg).contains("<polyline") || ReadAll(svg).contains("<path"));
  const Surface& curve = m->Picture1->surface();
  const QImage big(f.Save(f.Action(m, "mnuSavePicture1"), "curve.png", Png2));
  QCOMPARE(big.size(), curve.Image().size() * 2);
  int inked = 0;
  const double share = InkInPlace(curve.Image(), big, 2, f.colours.CurveColour.ToQColor(), inked);
  QVERIFY2(inked > 50 && share > 0.95, qPrintable(QString("%1 %2").arg(inked).arg(share)));
  // The scatter, once the error model is there, through the Edit menu.
  m->Command3->click();
  QCoreApplication::processEvents();
  QVERIFY(f.session.ErrorModelReady);
  auto* sub = m->findChild<QMenu*>("mnuSavePicture");
  QVERIFY(sub);
  QCOMPARE(sub->actions()[1]->text(), QString("Estimated-Observed Scatter..."));
  const QImage scatter(f.Save(sub->actions()[1], "scatter.png", Png1));
  QCOMPARE(scatter.size(), m->Picture2->surface().Image().size());
  QVERIFY(f.dialogs.Messages.empty());
}

void tst_FigureExport::openExampleDataRunsTheWholeRoad() {
  Fixture f;
  QAction* open = f.Action(f.window.get(), "mnuOpenExample");
  QVERIFY(open);
  QCOMPARE(open->text(), QString("Open &Example Data"));
  QVERIFY(open->isEnabled());
  open->trigger();
  // The pre-treatment dialog stands open as after any first import.
  QVERIFY(f.window->CorrelVar() && f.window->CorrelVar()->isVisible());
  QVERIFY(f.session.FossilSampleCount == 0);
  f.Confirm();
  QVERIFY(f.session.EofDone);
  QVERIFY(f.session.ProjectionDone);
  QVERIFY(f.session.FossilSampleCount > 0);
  QVERIFY(f.window->Command11->isEnabled());
  QVERIFY(f.window->Command8->isEnabled());
  QVERIFY(!open->isEnabled());
  QVERIFY(f.dialogs.Filters.empty());  // nothing was asked of the user
  QVERIFY(f.dialogs.Messages.empty());
}

void tst_FigureExport::climateDialogStartsInTheExampleFolder() {
  {
    Fixture f;
    f.Action(f.window.get(), "mnuOpenExample")->trigger();
    f.Confirm();
    f.window->Command8->click();
    frmMAT* m = f.window->MATWindow();
    f.dialogs.OpenNames.push_back(Example("climate.csv"));
    m->Command1->click();
    QCOMPARE(f.dialogs.OpenFolders.size(), std::size_t(1));
    QCOMPARE(QFileInfo(QString::fromStdString(f.dialogs.OpenFolders[0])).canonicalFilePath(),
             QFileInfo(QString::fromStdString(Example(""))).canonicalFilePath());
    QVERIFY(f.session.ClimateLoaded);
  }
  {
    // Tables of the user's own: the dialog starts where it always does.
    Fixture f;
    f.Road();
    f.window->Command8->click();
    f.dialogs.OpenNames.push_back(Example("climate.csv"));
    f.window->MATWindow()->Command1->click();
    QVERIFY(f.dialogs.OpenFolders.empty());
    QVERIFY(f.session.ClimateLoaded);
  }
}

QTEST_MAIN(tst_FigureExport)
#include "tst_FigureExport.moc"
