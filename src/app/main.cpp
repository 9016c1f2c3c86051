// The desktop program: one session, one main window.
#include <QApplication>

#include "presentation/Colours.h"
#include "state/Session.h"
#include "ui/QtDialogs.h"
#include "ui/frmMain.h"

int main(int argc, char* argv[]) {
  QApplication app(argc, argv);
  QApplication::setApplicationName("Varnoth");
  QApplication::setApplicationVersion("2.3");

  varnoth::Session session;
  varnoth::ColourSettings colours;
  varnoth::QtDialogs dialogs;
  varnoth::frmMain window(session, colours, dialogs);
  window.show();
  return QApplication::exec();
}
