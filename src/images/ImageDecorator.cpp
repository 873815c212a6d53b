#include "images/ImageDecorator.h"

#include <QPainter>

ImageDecorator::ImageDecorator() = default;

ImageDecorator::~ImageDecorator() = default;

QImage ImageDecorator::decorate(QImage image) const
{
  if (image.isNull())
  {
    return image;
  }
  // QPainter cannot paint on indexed or monochrome images.
  if (image.format() == QImage::Format_Indexed8 || image.format() == QImage::Format_Mono ||
      image.format() == QImage::Format_MonoLSB)
  {
    image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  }
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  const QImage marker(":/image-matrix-resources/images-stack.png");
  painter.drawImage(QPoint(2, 2), marker, QRect(0, 0, -1, -1));
  painter.end();
  return image;
}
