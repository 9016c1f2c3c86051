// The desktop program: one session, one main window.
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ControlMap.h"
#include "presentation/Colours.h"
#include "state/Session.h"
#include "ui/ExampleData.h"
#include "ui/QtDialogs.h"
#include "ui/WindowPlacement.h"
#include "ui/frmMain.h"

namespace {

bool Unset(const char* name) {
  const char* value = std::getenv(name);
  return !value || !*value;
}

// Qt would end in an abort when it cannot reach a display; a user is told
// what is missing instead. A platform chosen by hand (offscreen, vnc) is
// left to Qt.
bool NoDisplay() {
#if defined(__linux__) || defined(__unix__)
  return Unset("QT_QPA_PLATFORM") && Unset("DISPLAY") && Unset("WAYLAND_DISPLAY");
#else
  return false;
#endif
}

}  // namespace

int main(int argc, char* argv[]) {
  if (NoDisplay()) {
    std::fprintf(stderr,
                 "varnoth: no display to open the windows on (DISPLAY and WAYLAND_DISPLAY are "
                 "unset); varnoth-batch runs the analyses without windows.\n");
    return 1;
  }
  QApplication app(argc, argv);
  QApplication::setApplicationName("Varnoth");
  QApplication::setApplicationVersion("2.3");

  varnoth::Session session;
  varnoth::ColourSettings colours;
  varnoth::QtDialogs dialogs;
  // Until a table is read, file dialogs start at the example data.
  dialogs.SetStartFolder(varnoth::ExampleDataDir());
  varnoth::frmMain window(session, colours, dialogs);
  // At the top left of the screen, so that the windows it opens find room
  // beside it.
  window.move(varnoth::AvailableArea(&window).topLeft());
  window.show();
  varnoth::StartControlMap(&app);
  return QApplication::exec();
}
