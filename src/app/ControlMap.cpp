#include "ControlMap.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QSaveFile>
#include <QTimer>
#include <QWidget>

namespace varnoth {

namespace {

bool Clickable(const QWidget* w) {
  return qobject_cast<const QAbstractButton*>(w) || qobject_cast<const QAbstractSlider*>(w) ||
         qobject_cast<const QComboBox*>(w) || qobject_cast<const QLineEdit*>(w) ||
         w->objectName().startsWith("Picture");
}

// One line per control: window, control, and its centre on the screen.
QByteArray Map() {
  QByteArray text;
  for (QWidget* top : QApplication::topLevelWidgets()) {
    if (!top->isVisible() || top->objectName().isEmpty()) continue;
    const QRect frame = top->frameGeometry();
    text += top->objectName().toUtf8() + " window " + QByteArray::number(frame.x()) + " " +
            QByteArray::number(frame.y()) + " " + QByteArray::number(frame.width()) + " " +
            QByteArray::number(frame.height()) + "\n";
    for (QWidget* c : top->findChildren<QWidget*>()) {
      if (c->objectName().isEmpty() || c->objectName().startsWith("qt_") || !c->isVisible() ||
          !Clickable(c))
        continue;
      const QPoint centre = c->mapToGlobal(c->rect().center());
      text += top->objectName().toUtf8() + " " + c->objectName().toUtf8() + " " +
              QByteArray::number(centre.x()) + " " + QByteArray::number(centre.y()) + "\n";
    }
  }
  return text;
}

}  // namespace

void StartControlMap(QObject* parent) {
  const QString path = qEnvironmentVariable("VARNOTH_CONTROL_MAP");
  if (path.isEmpty()) return;
  auto* timer = new QTimer(parent);
  QObject::connect(timer, &QTimer::timeout, parent, [path] {
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly)) return;
    f.write(Map());
    f.commit();
  });
  timer->start(250);
}

}  // namespace varnoth
