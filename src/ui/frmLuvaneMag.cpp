#include "ui/frmLuvaneMag.h"

#include <QCloseEvent>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "ui/PictureBox.h"
#include "ui/frmLuvane.h"

namespace varnoth {

frmLuvaneMag::frmLuvaneMag(frmLuvane& map) : QWidget(&map, Qt::Window), map_(map) {
  setObjectName("frmLuvaneMag");
  setWindowTitle("Magnifier");
  setAttribute(Qt::WA_QuitOnClose, false);
  Picture2 = new PictureBox("Picture2", QSize(300, 300), false, this);
  Picture2->setMouseTracking(true);
  Picture2->installEventFilter(this);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(Picture2);
  Picture2->surface().SetBackColour(Qt::white);
}

bool frmLuvaneMag::eventFilter(QObject* watched, QEvent* event) {
  if (watched == Picture2 && event->type() == QEvent::MouseMove) {
    const auto* m = static_cast<QMouseEvent*>(event);
    const QPointF u = Picture2->surface().ToUser(m->position() - QPointF(Picture2->Origin()));
    map_.MoveOnMagnifier(u.x(), u.y());
  }
  return QWidget::eventFilter(watched, event);
}

void frmLuvaneMag::closeEvent(QCloseEvent* event) {
  event->accept();
  map_.MagnifierClosed();
}

}  // namespace varnoth
