#pragma once

#include "quen_analyzer_dataviews_common_export.h"

class QImage;

/// Marks an image as one of several: paints the stack marker (the Qt resource
/// ":/image-matrix-resources/images-stack.png") over its top-left corner, at (2, 2).
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageDecorator
{
public:
  ImageDecorator();
  ImageDecorator(const ImageDecorator&) = default;
  ImageDecorator& operator=(const ImageDecorator&) = default;
  virtual ~ImageDecorator();

  /// The image with the marker; a null image is returned as it is.
  virtual QImage decorate(QImage image) const;
};
