#include "ui/WindowPlacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace varnoth {

namespace {

// A cascaded window stands this far below and right of its owner, so that
// both title bars can be seen.
constexpr int kCascade = 40;

// The frame's borders: what a window adds around its client area. Taken
// from the owner when the window itself has not been shown yet.
QMargins FrameBorders(const QWidget* window, const QWidget* owner) {
  auto borders = [](const QWidget* w) {
    const QRect f = w->frameGeometry(), g = w->geometry();
    return QMargins(g.left() - f.left(), g.top() - f.top(), f.right() - g.right(),
                    f.bottom() - g.bottom());
  };
  if (window->isVisible()) return borders(window);
  return owner && owner->isVisible() ? borders(owner) : QMargins();
}

QRect OwnerFrame(const QWidget* owner) { return owner ? owner->frameGeometry() : QRect(); }

// Moves the window so that its frame takes the place of `frame`.
void MoveFrame(QWidget* window, const QRect& frame, const QMargins& borders) {
  const QSize client = frame.marginsRemoved(borders).size();
  if (client != window->size()) window->resize(client);
  window->move(frame.topLeft());
}

QSize FrameSize(const QMargins& borders, QSize client) { return client.grownBy(borders); }

QSize ClientSize(QWidget* window) {
  // A window never shown has its layout's size only once polished.
  if (!window->isVisible() && !window->testAttribute(Qt::WA_Resized))
    return window->sizeHint().expandedTo(window->minimumSizeHint());
  return window->size();
}

}  // namespace

QRect OntoScreen(const QRect& wanted, const QRect& screen) {
  if (screen.isEmpty()) return wanted;
  QRect r(wanted.topLeft(), wanted.size().boundedTo(screen.size()));
  if (r.right() > screen.right()) r.moveRight(screen.right());
  if (r.bottom() > screen.bottom()) r.moveBottom(screen.bottom());
  if (r.left() < screen.left()) r.moveLeft(screen.left());
  if (r.top() < screen.top()) r.moveTop(screen.top());
  return r;
}

QRect CentredOn(const QRect& owner, QSize size, const QRect& screen) {
  QRect r(QPoint(0, 0), size);
  r.moveCenter(owner.center());
  return OntoScreen(r, screen);
}

QRect Beside(const QRect& owner, QSize size, const QRect& screen) {
  const int roomRight = screen.right() - owner.right();
  const int roomLeft = owner.left() - screen.left();
  QRect r(QPoint(0, owner.top()), size);
  if (roomRight >= size.width() || roomRight >= roomLeft)
    r.moveLeft(owner.right() + 1);
  else
    r.moveRight(owner.left() - 1);
  return OntoScreen(r, screen);
}

QRect BesideKeeping(const QRect& owner, const QRect& keep, QSize size, const QRect& screen) {
  const QRect beside = Beside(owner, size, screen);
  if (!beside.intersects(owner)) return beside;
  for (const QRect& tried :
       {OntoScreen(QRect(QPoint(keep.right() + 1, owner.top()), size), screen),
        OntoScreen(QRect(QPoint(keep.left() - size.width(), owner.top()), size), screen)})
    if (!tried.intersects(keep)) return tried;
  return beside;
}

bool NeverPlaced(const QWidget* window) { return !window->testAttribute(Qt::WA_Moved); }

QRect AvailableArea(const QWidget* window) {
  const QScreen* screen =
      window && window->screen() ? window->screen() : QGuiApplication::primaryScreen();
  return screen ? screen->availableGeometry() : QRect();
}

void PlaceCentredOn(QWidget* window, const QWidget* owner) {
  const QMargins borders = FrameBorders(window, owner);
  const QSize frame = FrameSize(borders, ClientSize(window));
  MoveFrame(window, CentredOn(OwnerFrame(owner), frame, AvailableArea(owner)), borders);
}

void PlaceBeside(QWidget* window, const QWidget* owner) {
  const QMargins borders = FrameBorders(window, owner);
  const QSize frame = FrameSize(borders, ClientSize(window));
  MoveFrame(window, Beside(OwnerFrame(owner), frame, AvailableArea(owner)), borders);
}

void KeepOnScreen(QWidget* window) {
  if (!window->isVisible()) return;
  const QRect frame = window->frameGeometry();
  const QRect fitted = OntoScreen(frame, AvailableArea(window));
  if (fitted != frame) MoveFrame(window, fitted, FrameBorders(window, nullptr));
}

void PlaceBesideKeeping(QWidget* window, const QWidget* owner, const QRect& keep) {
  const QMargins borders = FrameBorders(window, owner);
  const QSize frame = FrameSize(borders, ClientSize(window));
  const QRect kept(owner->mapToGlobal(keep.topLeft()), keep.size());
  MoveFrame(window, BesideKeeping(OwnerFrame(owner), kept, frame, AvailableArea(owner)), borders);
}

void PlaceOver(QWidget* window, const QWidget* owner, QSize defaultSize) {
  const QMargins borders = FrameBorders(window, owner);
  const QRect o = OwnerFrame(owner);
  const QRect wanted(o.topLeft() + QPoint(kCascade, kCascade), FrameSize(borders, defaultSize));
  MoveFrame(window, OntoScreen(wanted, AvailableArea(owner)), borders);
}

}  // namespace varnoth
