#include "images/ImageCacheClient.h"

ImageCacheClient::ImageCacheClient(std::shared_ptr<ImageFileLoaderInterface> cache)
  : cache(std::move(cache))
{
}

ImageCacheClient::~ImageCacheClient() = default;

std::shared_ptr<QImage> ImageCacheClient::produceImage(const std::string& fileName) const
{
  return cache->image(fileName);
}
