#pragma once
// Where dialogs and panels open: over or beside the window they belong to,
// and always wholly on the screen, whatever the window manager would pick.
#include <QRect>
#include <QSize>

class QWidget;

namespace varnoth {

// The rectangles are frames (title bar and borders included) in screen
// coordinates. Pure, so that the rules can be tested without a screen.

// A rectangle of `size` centred on `owner`, then moved onto `screen`.
QRect CentredOn(const QRect& owner, QSize size, const QRect& screen);
// A rectangle of `size` touching `owner`'s right side, or its left side
// when there is more room there, top edges level, then moved onto
// `screen`.
QRect Beside(const QRect& owner, QSize size, const QRect& screen);
// Beside `owner` where there is room; where there is not, beside the part
// `keep` of the owner (its controls) that must stay in view, covering the
// rest of the owner rather than that part.
QRect BesideKeeping(const QRect& owner, const QRect& keep, QSize size, const QRect& screen);
// A rectangle of `size` (shrunk to the screen where it must be) moved the
// least distance that puts it wholly on `screen`.
QRect OntoScreen(const QRect& wanted, const QRect& screen);

// The same for real windows. A window not yet shown has no frame: the
// frame is taken as the owner's, whose borders are the same.
void PlaceCentredOn(QWidget* window, const QWidget* owner);
void PlaceBeside(QWidget* window, const QWidget* owner);
// `keep` is a rectangle of the owner's client area.
void PlaceBesideKeeping(QWidget* window, const QWidget* owner, const QRect& keep);
// A window at its default size, cascaded from its owner's top-left
// corner, and on screen.
void PlaceOver(QWidget* window, const QWidget* owner, QSize defaultSize);
// Moves a window the least distance that puts its frame wholly on the
// available screen, shrinking it where it is larger.
void KeepOnScreen(QWidget* window);
// The window has not been placed yet: once placed, a window stays where
// the user puts it for the rest of the session.
bool NeverPlaced(const QWidget* window);
// The available area of the screen that shows `window` (or of the primary
// screen).
QRect AvailableArea(const QWidget* window);

}  // namespace varnoth
