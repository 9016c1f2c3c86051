#pragma once
// A picture control: shows one drawing surface and reports the mouse. A
// square picture keeps its figure's aspect: the surface takes the largest
// square that fits and the owner redraws it at the new size.
#include <QWidget>

#include "presentation/Surface.h"

namespace varnoth {

class PictureBox : public QWidget {
  Q_OBJECT
 public:
  PictureBox(const QString& name, QSize size, bool square, QWidget* parent = nullptr);

  Surface& surface() { return surface_; }
  const Surface& surface() const { return surface_; }
  QSize sizeHint() const override { return hint_; }
  // Where the surface stands inside the widget.
  QPoint Origin() const;

 signals:
  void Resized();
  void RightPressed(const QPoint& globalPosition);
  void LeftPressed(const QPointF& pixel);
  void LeftMoved(const QPointF& pixel);
  void LeftReleased(const QPointF& pixel);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  Surface surface_;
  QSize hint_;
  bool square_;
};

}  // namespace varnoth
