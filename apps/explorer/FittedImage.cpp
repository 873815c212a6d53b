#include "FittedImage.h"

#include <QPainter>

#include <algorithm>

namespace explorer
{

FittedImage::FittedImage(QWidget* parent)
  : QWidget(parent)
{
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void FittedImage::setImage(const QImage& image)
{
  picture = image;
  message.clear();
  update();
}

void FittedImage::setText(const QString& text)
{
  picture = QImage();
  message = text;
  update();
}

void FittedImage::clear()
{
  picture = QImage();
  message.clear();
  update();
}

QRect FittedImage::imageRect() const
{
  if (picture.isNull() || width() <= 0 || height() <= 0)
    return {};
  const double scale = std::min({ static_cast<double>(width()) / picture.width(),
                                  static_cast<double>(height()) / picture.height(),
                                  static_cast<double>(largestZoom) });
  const QSize size(std::max(1, static_cast<int>(picture.width() * scale)),
                   std::max(1, static_cast<int>(picture.height() * scale)));
  return QRect(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size);
}

QSize FittedImage::sizeHint() const
{
  return { 160, 120 };
}

QSize FittedImage::minimumSizeHint() const
{
  return { 32, 24 };
}

void FittedImage::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  if (picture.isNull())
  {
    painter.drawText(rect().adjusted(4, 4, -4, -4), Qt::AlignCenter | Qt::TextWordWrap, message);
    return;
  }
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(imageRect(), picture);
}

} // namespace explorer
