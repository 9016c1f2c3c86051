#include "ui/PictureBox.h"

#include <QMouseEvent>
#include <QPainter>

namespace varnoth {

PictureBox::PictureBox(const QString& name, QSize size, bool square, QWidget* parent)
    : QWidget(parent), surface_(size.width(), size.height()), hint_(size), square_(square) {
  setObjectName(name);
  setAttribute(Qt::WA_OpaquePaintEvent);
  if (square_) {
    setMinimumSize(160, 160);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  } else {
    setFixedSize(size);
  }
}

QPoint PictureBox::Origin() const {
  return QPoint((width() - surface_.Width()) / 2, (height() - surface_.Height()) / 2);
}

void PictureBox::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), palette().window());
  p.drawImage(Origin(), surface_.Image());
}

void PictureBox::resizeEvent(QResizeEvent*) {
  int w = width(), h = height();
  if (square_) w = h = std::min(w, h);
  if (w != surface_.Width() || h != surface_.Height()) {
    surface_.Resize(w, h);
    emit Resized();
  }
}

void PictureBox::mousePressEvent(QMouseEvent* event) {
  const QPointF at = event->position() - QPointF(Origin());
  if (event->button() == Qt::RightButton)
    emit RightPressed(event->globalPosition().toPoint());
  else if (event->button() == Qt::LeftButton)
    emit LeftPressed(at);
}

void PictureBox::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() & Qt::LeftButton) emit LeftMoved(event->position() - QPointF(Origin()));
}

void PictureBox::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) emit LeftReleased(event->position() - QPointF(Origin()));
}

}  // namespace varnoth
