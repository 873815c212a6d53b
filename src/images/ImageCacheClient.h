#pragma once

#include "images/CachingImageLoaderAbstract.h"

/// A view's client of the shared ImageCache: it asks the cache for images and keeps every image
/// it received, so that they stay shared while the client lives.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageCacheClient
  : public CachingImageLoaderAbstract<std::shared_ptr<QImage>>
{
public:
  explicit ImageCacheClient(std::shared_ptr<ImageFileLoaderInterface> cache);
  ~ImageCacheClient() override;

private:
  // Lock order: this client's mutex, then the cache's; never the reverse.
  std::shared_ptr<QImage> produceImage(const std::string& fileName) const override;

  std::shared_ptr<ImageFileLoaderInterface> cache;
};
