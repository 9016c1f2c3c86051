// Two helpers for the road on a real X display (scripts/shots-x11.sh):
// where the controls of the main window (or, named after --probe, of the
// reconstruction window or the calibration tool) stand, so that a script
// can click them by name, and a picture of the whole screen, window
// manager included.
#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QSlider>
#include <cstdio>

#include "presentation/Colours.h"
#include "state/Session.h"
#include "ui/ScriptedDialogs.h"
#include "ui/frmCalib.h"
#include "ui/frmMAT.h"
#include "ui/frmMain.h"

int ProbeMainWindow(int argc, char* argv[]) {
  // The same window as the program's, laid out on the same display: its
  // controls stand where the program's do.
  QApplication app(argc, argv);
  varnoth::Session session;
  varnoth::ColourSettings colours;
  varnoth::ScriptedDialogs dialogs;
  varnoth::frmMain w(session, colours, dialogs);
  w.SetEndProgram([] {});
  w.show();
  // The settings of these windows stand at fixed places, whatever the data.
  QWidget* probed = &w;
  const std::string which = argc > 2 ? argv[2] : "";
  if (which == "frmMAT" || which == "frmCalib") {
    varnoth::frmMAT* mat = w.MATWindow();
    mat->show();
    probed = mat;
    if (which == "frmCalib") {
      mat->OpenCalibration();
      if (mat->CalibWindow()) probed = mat->CalibWindow();
    }
  }
  for (int i = 0; i < 10; ++i) QApplication::processEvents();
  std::printf("size %d %d\n", probed->width(), probed->height());
  for (QWidget* c : probed->findChildren<QWidget*>()) {
    if (c->objectName().isEmpty() || c->objectName().startsWith("qt_")) continue;
    if (!qobject_cast<QAbstractButton*>(c) && !qobject_cast<QComboBox*>(c) &&
        !qobject_cast<QSlider*>(c))
      continue;
    if (c->window() != probed) continue;
    const QPoint centre = c->mapTo(probed, c->rect().center());
    std::printf("%s %d %d\n", qPrintable(c->objectName()), centre.x(), centre.y());
  }
  return 0;
}

int GrabScreen(int argc, char* argv[]) {
  QApplication app(argc, argv);
  QScreen* screen = QGuiApplication::primaryScreen();
  if (!screen || argc < 3) return 1;
  const QPixmap picture = screen->grabWindow(0);
  if (!picture.save(QString::fromLocal8Bit(argv[2]))) return 1;
  std::printf("%s\n", argv[2]);
  return 0;
}
