// Renders the windows of the program to PNG files with no display, after a
// scripted road through the example data: for looking at what users see.
//   varnoth-shots [output folder] [reference.csv fossil.csv]
//   varnoth-shots --probe | --grab picture.png   (on a real X display)
#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QMouseEvent>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <cstdio>
#include <string>

#include "StationTables.h"
#include "presentation/Colours.h"
#include "state/Session.h"
#include "ui/PictureBox.h"
#include "ui/ScriptedDialogs.h"
#include "ui/frmAbout1.h"
#include "ui/frmCalib.h"
#include "ui/frmColor.h"
#include "ui/frmControl.h"
#include "ui/frmCorrelVar.h"
#include "ui/frmDiagram.h"
#include "ui/frmECC.h"
#include "ui/frmLuvane.h"
#include "ui/frmMAT.h"
#include "ui/frmMain.h"
#include "ui/frmOutPut2.h"
#include "ui/frmTest.h"

namespace {

QString g_folder;

void Settle() {
  for (int i = 0; i < 5; ++i) QApplication::processEvents();
}

void Shot(QWidget* w, const char* name) {
  Settle();
  const QString path = g_folder + "/" + name + ".png";
  if (!w->grab().save(path)) std::fprintf(stderr, "could not write %s\n", qPrintable(path));
  std::printf("%s\n", qPrintable(path));
}

// The calibration of the error model: the tool after "Start" with the mode
// and average on Fig.8, the chart with the intervals of a section, and the
// reconstruction window with both matrices, in colour and grey.
void ShotCalibration(varnoth::frmMain& w, varnoth::frmMAT* mat) {
  mat->Command6->click();
  varnoth::frmCalib* cal = mat->CalibWindow();
  cal->Check4->click();
  cal->Command3->click();
  cal->Check2->click();
  cal->Check6->click();
  cal->resize(1224, 620);  // the offscreen screen is smaller than the window
  Shot(cal, "calib");
  // The printed pages as PDF files beside the pictures.
  cal->ChoosePrinter = [](QWidget*) {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setOutputFileName(g_folder + "/calib-print.pdf");
    return printer;
  };
  cal->Print().PrintTitle = "Example core: calibration of SumSST";
  cal->PrintAllEntry->trigger();
  cal->PrepareChart(5);
  cal->Chart()->Slider1->setValue(50);
  cal->Chart()->Check2->click();
  Shot(cal->Chart(), "calib-chart-confidence");
  cal->ChoosePrinter = [](QWidget*) {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setOutputFileName(g_folder + "/calib-chart-print.pdf");
    return printer;
  };
  cal->Chart()->Print->trigger();
  cal->PrepareChart(4);
  Shot(cal->Chart(), "calib-chart-probability");
  // "Return" widens the window itself to show the matrix.
  cal->Command10->click();
  Shot(mat, "mat-returned");
  mat->Command4->click();
  Shot(mat, "mat-matrices-probability");
  mat->Option4[1]->click();
  Shot(mat, "mat-matrices-confidence");
  w.mnuGrey->trigger();
  mat->DrawResponseMatrices();
  mat->DrawReconstructionCurve();
  Shot(mat, "mat-matrices-grey");
  cal->ResetColour();
  Shot(cal, "calib-grey");
  w.mnuColor->trigger();
  cal->close();
}

// The reconstruction of the example core: the curve with error bars and
// smoothing, the widened window after the error model, in colour and grey.
void ShotReconstruction(varnoth::frmMain& w, varnoth::ScriptedDialogs& dialogs) {
  w.Command8->click();
  varnoth::frmMAT* mat = w.MATWindow();
  Shot(mat, "mat-start");
  dialogs.OpenNames.push_back(std::string(VARNOTH_EXAMPLES_DIR) + "/climate.csv");
  mat->Command1->click();
  Shot(mat, "mat-curve");
  mat->Check5->click();
  Shot(mat, "mat-curve-error-bars");
  mat->Command3->click();
  Shot(mat, "mat-error-model");
  w.mnuGrey->trigger();
  Shot(mat, "mat-error-model-grey");
  w.mnuColor->trigger();
  ShotCalibration(w, mat);
  mat->hide();
}

// The EOF-climate correlation window from the diagram's Tools menu, with
// the example climate file read on the way; then a pointer over a cell and
// a click on another pair.
void EccShots(varnoth::frmMain& w, varnoth::ScriptedDialogs& dialogs) {
  varnoth::frmDiagram* diagram = w.DiagramWindow();
  if (diagram->nmuConiss->isChecked()) diagram->nmuConiss->trigger();
  dialogs.Answers.push_back(true);
  dialogs.OpenNames.push_back(std::string(VARNOTH_EXAMPLES_DIR) + "/climate.csv");
  diagram->mnuECC->trigger();
  varnoth::frmECC* ecc = w.EccWindow();
  Shot(ecc, "ecc");
  // The cell of EOF 2 and the second parameter, in pixels at 15 twips each.
  const QPointF cell(1050.0 * 1 / 15 + 20, (45.0 + 225 * 1) / 15 + 5);
  QMouseEvent move(QEvent::MouseMove, cell, ecc->Picture2->mapToGlobal(cell), Qt::NoButton,
                   Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(ecc->Picture2, &move);
  Shot(ecc, "ecc-hover");
  QMouseEvent press(QEvent::MouseButtonPress, cell, ecc->Picture2->mapToGlobal(cell),
                    Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(ecc->Picture2, &press);
  Shot(ecc, "ecc-click");
  Shot(diagram, "diagram-after-ecc");
  ecc->hide();
}

// The interpolation tool on a session of its own, before any climate file:
// the world at load, the made-up stations and targets over Europe, a
// pointer on a target, the magnifier, the accuracy scatter, and the
// analogues ringed after the hand-back.
void LuvaneShots(const std::string& reference, const std::string& fossil) {
  varnoth::Session session;
  varnoth::ColourSettings colours;
  varnoth::ScriptedDialogs dialogs;
  dialogs.OpenNames = {reference, fossil};
  varnoth::frmMain w(session, colours, dialogs);
  w.SetEndProgram([] {});
  w.show();
  w.Command5->click();
  w.CorrelVar()->Command1->click();
  w.Command6->click();
  w.Command8->click();
  varnoth::frmMAT* mat = w.MATWindow();
  mat->Command8->click();
  varnoth::frmLuvane* lv = mat->LuvaneWindow();
  Shot(lv, "luvane-world");

  std::vector<std::string> names;
  for (long i = 1; i <= session.RefSiteCount; ++i) names.push_back(session.RefSiteNames(i));
  auto write = [](const QString& name, const std::string& text) {
    QFile f(g_folder + "/" + name);
    f.open(QIODevice::WriteOnly);
    f.write(text.data(), static_cast<qint64>(text.size()));
    return f.fileName().toStdString();
  };
  dialogs.OpenNames.push_back(write("stations.csv", varnoth::demo::StationTable(300)));
  lv->Command0->click();
  Shot(lv, "luvane-stations");
  dialogs.OpenNames.push_back(
      write("targets.csv", varnoth::demo::TargetTable(varnoth::demo::TargetSites(names))));
  lv->Command2->click();
  Shot(lv, "luvane-map");
  const varnoth::InterpolationState& in = session.Interp;
  lv->MoveOnMap(in.SiteLongitude(5), in.SiteLatitude(5));
  Shot(lv, "luvane-hover");
  lv->ClickOnMap(in.SiteLongitude(5), in.SiteLatitude(5));
  lv->MoveOnMagnifier(in.SiteLongitude(5), in.SiteLatitude(5));
  Shot(lv->Magnifier(), "luvane-magnifier");
  Shot(lv, "luvane-map-square");
  lv->Magnifier()->close();
  lv->Command3->click();
  Shot(lv->Correl(), "luvane-accuracy");
  Shot(lv, "luvane-after-run");
  lv->Command1->click();
  Shot(mat, "mat-interpolated");
  lv->show();
  Shot(lv, "luvane-analogues");
  w.QuitProgram();
}

// The map over North America, stations around the Great Lakes, and the
// magnifier on Lake Erie.
void GreatLakesShots(const std::string& reference, const std::string& fossil) {
  varnoth::Session session;
  varnoth::ColourSettings colours;
  varnoth::ScriptedDialogs dialogs;
  dialogs.OpenNames = {reference, fossil};
  varnoth::frmMain w(session, colours, dialogs);
  w.SetEndProgram([] {});
  w.show();
  w.Command5->click();
  w.CorrelVar()->Command1->click();
  w.Command6->click();
  w.Command8->click();
  varnoth::frmMAT* mat = w.MATWindow();
  mat->Command8->click();
  varnoth::frmLuvane* lv = mat->LuvaneWindow();
  std::string table = "Station,Longitude,Latitude,Altitude,T lapse,P lapse,TJan\r\n";
  int n = 0;
  for (int lon = -98; lon <= -66; lon += 4)
    for (int lat = 36; lat <= 54; lat += 3)
      table += "S" + std::to_string(++n) + "," + std::to_string(lon) + "," + std::to_string(lat) +
               ",200,-0.6,25," + std::to_string(10 - (lat - 36)) + "\r\n";
  QFile f(g_folder + "/stations-north-america.csv");
  f.open(QIODevice::WriteOnly);
  f.write(table.data(), static_cast<qint64>(table.size()));
  f.close();
  dialogs.OpenNames.push_back(f.fileName().toStdString());
  lv->Command0->click();
  Shot(lv, "luvane-north-america");
  lv->ClickOnMap(-81.5, 42.3);
  Shot(lv->Magnifier(), "luvane-magnifier-lake-erie");
  w.QuitProgram();
}

}  // namespace

// On a real X display, in x11.cpp.
int ProbeMainWindow(int argc, char* argv[]);
int GrabScreen(int argc, char* argv[]);

int main(int argc, char* argv[]) {
  if (argc > 1 && std::string(argv[1]) == "--probe") return ProbeMainWindow(argc, argv);
  if (argc > 1 && std::string(argv[1]) == "--grab") return GrabScreen(argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  g_folder = argc > 1 ? QString(argv[1]) : QString("shots");
  QDir().mkpath(g_folder);
  const std::string reference =
      argc > 3 ? argv[2] : std::string(VARNOTH_EXAMPLES_DIR) + "/reference.csv";
  const std::string fossil = argc > 3 ? argv[3] : std::string(VARNOTH_EXAMPLES_DIR) + "/fossil.csv";

  varnoth::Session session;
  varnoth::ColourSettings colours;
  varnoth::ScriptedDialogs dialogs;
  dialogs.OpenNames = {reference, fossil};
  varnoth::frmMain w(session, colours, dialogs);
  w.SetEndProgram([] {});
  w.show();
  Shot(&w, "main-start");

  w.Command5->click();
  varnoth::frmCorrelVar* dialog = w.CorrelVar();
  Shot(dialog, "correlvar");
  dialog->Command1->click();
  Shot(&w, "main-reference");
  w.Command6->click();
  Shot(&w, "main-2d");

  w.Option4[1]->click();
  w.Timer1().stop();
  w.Slider2[1]->setValue(35);
  Shot(&w, "main-3d");
  w.Check1->click();
  Shot(&w, "main-3d-stereo");
  w.Option2[1]->click();
  w.Option3[2]->click();
  w.Option5[1]->click();
  w.Check4->click();
  Shot(&w, "main-3d-stereo-sequential-noticks");
  w.Check4->click();
  w.Option2[0]->click();
  w.Option3[0]->click();
  w.Option5[0]->click();
  w.Check1->click();
  w.Option4[0]->click();
  w.Slider4->setValue(1);
  Shot(&w, "main-2d-zoom1");
  w.Slider4->setValue(2);
  w.mnuGrey->trigger();
  Shot(&w, "main-2d-grey");

  varnoth::frmColor* colour = w.ColorWindow();
  colour->show();
  Shot(colour, "color-grey");
  colour->Command3->click();
  Shot(colour, "color");
  Shot(&w, "main-2d-colour");

  // The envelope test at the tightest setting, flat and turning.
  w.Slider1->setValue(0);
  w.Command11->click();
  w.Option3[2]->click();
  w.Option5[2]->click();
  Shot(&w, "main-envelope-2d");
  w.Option4[1]->click();
  w.Check2->click();  // paused, so the picture is the one the test drew
  Shot(&w, "main-envelope-3d");
  w.Check2->click();
  w.Option4[0]->click();
  w.Option3[0]->click();
  w.Option5[0]->click();

  // The control panel with every EOF listed.
  varnoth::frmControl* panel = w.ControlPanel();
  panel->Open();
  Shot(panel, "control");
  panel->hide();

  // The pollen diagram of the core in its five styles, then with CONISS.
  w.Command14->click();
  varnoth::frmDiagram* diagram = w.DiagramWindow();
  const std::pair<QAction*, const char*> styles[] = {{diagram->mnuBar, "diagram-bar"},
                                                     {diagram->mnuArea, "diagram-area"},
                                                     {diagram->mnuDot, "diagram-dot"},
                                                     {diagram->mnuCurve, "diagram-curve"},
                                                     {diagram->mnuDotCurve, "diagram-dot-curve"}};
  for (const auto& [action, name] : styles) {
    action->trigger();
    Shot(diagram, name);
  }
  diagram->nmuConiss->trigger();
  Shot(diagram, "diagram-coniss");
  ShotReconstruction(w, dialogs);
  LuvaneShots(reference, fossil);
  GreatLakesShots(reference, fossil);
  EccShots(w, dialogs);
  diagram->hide();

  varnoth::frmAbout1* about = w.AboutWindow();
  about->show();
  Shot(about, "about");
  varnoth::frmTest* test = w.TestForm();
  test->show();
  Shot(test, "test");
  if (!dialogs.Messages.empty())
    for (const auto& m : dialogs.Messages) std::fprintf(stderr, "message: %s\n", m.Text.c_str());
  return 0;
}
