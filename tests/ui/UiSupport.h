#pragma once
// What the window tests share: a main window on its own session with
// scripted dialog answers, small tables written on the fly, and the road of
// one analysis clicked through.
#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "PixelSupport.h"
#include "presentation/Colours.h"
#include "state/Session.h"
#include "ui/PictureBox.h"
#include "ui/ScriptedDialogs.h"
#include "ui/frmCorrelVar.h"
#include "ui/frmMain.h"

namespace varnoth::uitest {

inline std::string Example(const char* name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }

// With VARNOTH_SHOTS set to a folder, the window as a case left it.
inline void Shot(QWidget* w, const char* name) {
  const QByteArray folder = qgetenv("VARNOTH_SHOTS");
  if (folder.isEmpty()) return;
  QCoreApplication::processEvents();
  w->grab().save(QString::fromLocal8Bit(folder) + "/" + name + ".png");
}

inline QByteArray ReadAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The controls of `window` a user can point at (buttons, check boxes,
// radio buttons, sliders, combo and spin boxes, line edits, and pictures
// when `pictures`) that carry no tool tip; `walked` counts those looked at.
inline QStringList WithoutToolTip(QWidget* window, bool pictures, int* walked = nullptr) {
  QStringList missing;
  int seen = 0;
  for (QWidget* w : window->findChildren<QWidget*>()) {
    if (w->objectName().isEmpty() || w->objectName().startsWith("qt_") || !w->isVisibleTo(window))
      continue;
    const bool control = qobject_cast<QAbstractButton*>(w) || qobject_cast<QAbstractSlider*>(w) ||
                         qobject_cast<QComboBox*>(w) || qobject_cast<QAbstractSpinBox*>(w) ||
                         qobject_cast<QLineEdit*>(w) || (pictures && qobject_cast<PictureBox*>(w));
    if (!control) continue;
    ++seen;
    if (w->toolTip().trimmed().isEmpty()) missing << window->objectName() + "." + w->objectName();
  }
  if (walked) *walked = seen;
  return missing;
}

#ifdef VARNOTH_BATCH
// The batch runner on the example reference and fossil tables with `more`
// arguments; true when it ends well.
inline bool BatchOnExamples(const QStringList& more) {
  QProcess p;
  p.start(VARNOTH_BATCH,
          QStringList{"--reference", QString::fromStdString(Example("reference.csv")), "--fossil",
                      QString::fromStdString(Example("fossil.csv"))} +
              more);
  return p.waitForFinished(120000) && p.exitCode() == 0;
}
#endif

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

// The reference site whose mark stands farthest from every other mark.
inline long LoneSite(const Session& s, bool withFossil) {
  long best = 1;
  double bestDistance = -1;
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    double nearest = 1e300;
    auto consider = [&](double x, double y) {
      const double d = std::hypot(x - s.RefScores(i, 1), y - s.RefScores(i, 2));
      nearest = std::min(nearest, d);
    };
    for (long j = 1; j <= s.RefSiteCount; ++j)
      if (j != i) consider(s.RefScores(j, 1), s.RefScores(j, 2));
    if (withFossil)
      for (long j = 1; j <= s.FossilSampleCount; ++j)
        consider(s.FossilScores(j, 1), s.FossilScores(j, 2));
    if (nearest > bestDistance) {
      bestDistance = nearest;
      best = i;
    }
  }
  return best;
}

}  // namespace varnoth::uitest
