#pragma once
// What the two files of the interpolation tool look like.
#include <QWidget>

namespace varnoth {

class frmLuvaneHelp : public QWidget {
  Q_OBJECT
 public:
  explicit frmLuvaneHelp(QWidget* owner);
};

}  // namespace varnoth
