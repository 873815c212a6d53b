#pragma once

#include "images/ImageCache.h"

#include <atomic>

/// The shared, weak cache behind ImageCache and its clients: it reads the files, within the
/// cache's pixel budget.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageCache::Impl
  : public CachingImageLoaderAbstract<std::weak_ptr<QImage>>
{
public:
  /// For tests: the number of entries, stale ones included.
  using CachingImageLoaderAbstract::entryCount;

  std::atomic<long long> pixelBudget{ 64LL * 1000 * 1000 };

private:
  std::shared_ptr<QImage> produceImage(const std::string& fileName) const override;
};
