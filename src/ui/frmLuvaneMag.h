#pragma once
// The magnifier of the interpolation map: one surface around the point
// last clicked on the map. Closing it gives the map back without its square.
#include <QWidget>

namespace varnoth {

class PictureBox;
class frmLuvane;

class frmLuvaneMag : public QWidget {
  Q_OBJECT
 public:
  explicit frmLuvaneMag(frmLuvane& map);
  PictureBox* Picture2 = nullptr;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  frmLuvane& map_;
};

}  // namespace varnoth
