#pragma once
// What the window tests share: a main window on its own session with
// scripted dialog answers, small tables written on the fly, and the road of
// one analysis clicked through.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <string>

#include "presentation/Colours.h"
#include "state/Session.h"
#include "ui/ScriptedDialogs.h"
#include "ui/frmCorrelVar.h"
#include "ui/frmMain.h"

namespace varnoth::uitest {

inline std::string Example(const char* name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }

struct MainFixture {
  Session session;
  ColourSettings colours;
  ScriptedDialogs dialogs;
  std::unique_ptr<frmMain> window;
  int ended = 0;
  QTemporaryDir folder;

  MainFixture() {
    window = std::make_unique<frmMain>(session, colours, dialogs);
    window->SetEndProgram([this] { ++ended; });
    window->show();
  }
  ~MainFixture() {
    window->SetEndProgram([] {});
    if (auto* d = window->CorrelVar()) d->hide();
  }

  // Writes text to a file in the fixture's folder and returns its path.
  std::string Write(const QString& name, const QByteArray& text) {
    const QString path = folder.path() + "/" + name;
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(text);
    return path.toStdString();
  }

  template <typename T>
  T* Find(const char* name) {
    T* found = window->findChild<T*>(name);
    if (!found) qWarning("no control named %s", name);
    return found;
  }

  // Reference import of `path` up to the open pre-treatment dialog.
  void ImportReference(const std::string& path) {
    dialogs.OpenNames.push_back(path);
    window->Command5->click();
  }
  void Confirm() { window->CorrelVar()->Command1->click(); }
  void ImportFossil(const std::string& path) {
    dialogs.OpenNames.push_back(path);
    window->Command6->click();
  }
  void Road() {
    ImportReference(Example("reference.csv"));
    Confirm();
    ImportFossil(Example("fossil.csv"));
  }
};

}  // namespace varnoth::uitest
