#pragma once
// A list of names that shows the chosen item by name. An item the list does
// not hold (an empty fossil sample has no entry) still shows its name, as
// the list's placeholder, so that the list never shows a stale choice.
#include <QComboBox>
#include <QSignalBlocker>
#include <QString>

namespace varnoth {

inline void ShowListName(QComboBox* combo, const QString& name) {
  const QSignalBlocker quiet(combo);
  const int index = combo->findText(name, Qt::MatchExactly);
  combo->setPlaceholderText(index >= 0 ? QString() : name);
  combo->setCurrentIndex(index);
}

}  // namespace varnoth
