#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <memory>
#include <string>

class QImage;

/// A source of images by file name (UTF-8). The pointer returned is never empty; the image
/// behind it is null when the file cannot be read.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageFileLoaderInterface
{
public:
  ImageFileLoaderInterface() = default;
  ImageFileLoaderInterface(const ImageFileLoaderInterface&) = default;
  ImageFileLoaderInterface& operator=(const ImageFileLoaderInterface&) = default;
  virtual ~ImageFileLoaderInterface();

  virtual std::shared_ptr<QImage> image(const std::string& fileName) const = 0;
};
