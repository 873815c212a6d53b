#pragma once

#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

#include <functional>

namespace explorer
{

/// A widget that a view draws with QPainter and whose mouse the view takes: the view sets the
/// functions, the widget calls them.
class Canvas : public QWidget
{
public:
  std::function<void(QPainter&)> paint;
  std::function<void(QMouseEvent&)> press;
  std::function<void(QMouseEvent&)> move;
  std::function<void(QMouseEvent&)> release;

protected:
  void paintEvent(QPaintEvent*) override
  {
    QPainter painter(this);
    if (paint)
      paint(painter);
  }
  void mousePressEvent(QMouseEvent* event) override
  {
    if (press)
      press(*event);
  }
  void mouseMoveEvent(QMouseEvent* event) override
  {
    if (move)
      move(*event);
  }
  void mouseReleaseEvent(QMouseEvent* event) override
  {
    if (release)
      release(*event);
  }
};

} // namespace explorer
