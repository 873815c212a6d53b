#include "qxt/QxtLabel.h"

#include <QEvent>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace
{

constexpr int margin = 2;

} // namespace

struct QxtLabel::Private
{
  QString text;
  Qt::Alignment alignment = Qt::AlignCenter;
  Qt::TextElideMode elideMode = Qt::ElideMiddle;
  Rotation rotation = NoRotation;
  bool pressed = false;
};

QxtLabel::QxtLabel(QWidget* parent)
  : QFrame(parent)
  , d(std::make_unique<Private>())
{
}

QxtLabel::QxtLabel(const QString& text, QWidget* parent)
  : QxtLabel(parent)
{
  setText(text);
}

QxtLabel::~QxtLabel() = default;

QString QxtLabel::text() const
{
  return d->text;
}

void QxtLabel::setText(const QString& text)
{
  if (d->text == text)
  {
    return;
  }
  d->text = text;
  updateGeometry();
  update();
  Q_EMIT textChanged(text);
}

Qt::Alignment QxtLabel::alignment() const
{
  return d->alignment;
}

void QxtLabel::setAlignment(Qt::Alignment alignment)
{
  d->alignment = alignment;
  update();
}

Qt::TextElideMode QxtLabel::elideMode() const
{
  return d->elideMode;
}

void QxtLabel::setElideMode(Qt::TextElideMode mode)
{
  d->elideMode = mode;
  update();
}

QxtLabel::Rotation QxtLabel::rotation() const
{
  return d->rotation;
}

void QxtLabel::setRotation(Rotation rotation)
{
  d->rotation = rotation;
  updateGeometry();
  update();
}

bool QxtLabel::isVertical() const
{
  return d->rotation == Clockwise || d->rotation == CounterClockwise;
}

QSize QxtLabel::sizeHint() const
{
  const QFontMetrics metrics = fontMetrics();
  const QSize text(metrics.horizontalAdvance(d->text) + 2 * margin, metrics.height() + 2 * margin);
  const QSize size = isVertical() ? text.transposed() : text;
  const int frame = 2 * frameWidth();
  return size + QSize(frame, frame);
}

QSize QxtLabel::minimumSizeHint() const
{
  const QFontMetrics metrics = fontMetrics();
  const QSize text(metrics.horizontalAdvance(QLatin1String("...")) + 2 * margin,
                   metrics.height() + 2 * margin);
  const QSize size = isVertical() ? text.transposed() : text;
  const int frame = 2 * frameWidth();
  return size + QSize(frame, frame);
}

void QxtLabel::changeEvent(QEvent* event)
{
  QFrame::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
  {
    updateGeometry();
  }
}

void QxtLabel::mousePressEvent(QMouseEvent* event)
{
  QFrame::mousePressEvent(event);
  d->pressed = event->button() == Qt::LeftButton;
}

void QxtLabel::mouseReleaseEvent(QMouseEvent* event)
{
  QFrame::mouseReleaseEvent(event);
  if (d->pressed && event->button() == Qt::LeftButton && rect().contains(event->pos()))
  {
    Q_EMIT clicked();
  }
  d->pressed = false;
}

void QxtLabel::paintEvent(QPaintEvent* event)
{
  QFrame::paintEvent(event);
  QPainter painter(this);
  QRect area = contentsRect().adjusted(margin, margin, -margin, -margin);
  // Paint in a frame turned with the text, so that alignment and elision work along the text.
  painter.translate(contentsRect().center());
  painter.rotate(d->rotation);
  if (isVertical())
  {
    area = QRect(0, 0, area.height(), area.width());
  }
  area.moveCenter(QPoint(0, 0));
  const QString shown = fontMetrics().elidedText(d->text, d->elideMode, area.width());
  style()->drawItemText(&painter,
                        area,
                        static_cast<int>(d->alignment),
                        palette(),
                        isEnabled(),
                        shown,
                        foregroundRole());
}
