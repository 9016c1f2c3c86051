#pragma once
// What each control does, in a researcher's words, shown as its tool tip.
// The texts are kept by the controls' names, one table per window.
#include <QString>
#include <QStringList>

class QWidget;

namespace varnoth {

// Gives every control of `window` named in its table its tool tip, and
// returns the names of the table that the window does not hold.
QStringList ExplainControls(QWidget* window);

}  // namespace varnoth
