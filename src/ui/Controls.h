#pragma once
// The small makers of controls that every window shares: each control gets
// its name as objectName, so that tests and bug reports can name it.
#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QSignalBlocker>
#include <QSlider>
#include <QStatusBar>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <functional>

#include "ui/PictureBox.h"

namespace varnoth {

template <typename T>
T* Named(T* w, const QString& name) {
  w->setObjectName(name);
  return w;
}

inline QAction* Entry(QObject* parent, const QString& name, const QString& caption) {
  return Named(new QAction(caption, parent), name);
}

inline QLabel* Caption(QWidget* parent, const QString& name, const QString& text) {
  return Named(new QLabel(text, parent), name);
}

// The status line that names the next step. The stages move in several
// windows at once (a calibration changes what the reconstruction offers), so
// the line follows its window's reading of them wherever they moved.
inline QLabel* NextStepLine(QMainWindow* window, std::function<QString()> next) {
  auto* line = Named(new QLabel(window), "StatusNext");
  window->statusBar()->setSizeGripEnabled(false);
  window->statusBar()->addWidget(line, 1);
  auto* follow = new QTimer(line);
  QObject::connect(follow, &QTimer::timeout, line, [line, next] {
    const QString text = next();
    if (line->text() != text) line->setText(text);
  });
  follow->start(250);
  line->setText(next());
  return line;
}

// A horizontal slider stepping by one, with ticks below.
inline QSlider* Slider(QWidget* parent, const QString& name, int minimum, int maximum, int value) {
  auto* s = Named(new QSlider(Qt::Horizontal, parent), name);
  s->setRange(minimum, maximum);
  s->setValue(value);
  s->setSingleStep(1);
  s->setPageStep(1);
  s->setTickPosition(QSlider::TicksBelow);
  s->setTickInterval(std::max(1, (maximum - minimum) / 10));
  return s;
}

// A picture that its window places and sizes itself.
inline PictureBox* Picture(QWidget* parent, const QString& name) {
  auto* p = new PictureBox(name, QSize(100, 100), false, parent);
  p->setMinimumSize(1, 1);
  p->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
  return p;
}

// Sets a control's value without its change event.
template <typename Control>
void SetQuietly(Control* c, int value) {
  const QSignalBlocker quiet(c);
  c->setValue(value);
}

}  // namespace varnoth
