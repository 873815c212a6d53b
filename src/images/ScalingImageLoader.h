#pragma once

#include "images/CachingImageLoaderAbstract.h"

#include <QSize>

/// Serves another loader's images scaled to fit a size, keeping the aspect ratio, with smooth
/// scaling. Scaled images are cached for the current size only: a new size discards them all,
/// the same size keeps them. Until a valid size is set the images are null.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ScalingImageLoader
  : public CachingImageLoaderAbstract<std::shared_ptr<QImage>>
{
public:
  ScalingImageLoader(std::shared_ptr<ImageFileLoaderInterface> source, const QSize& size);
  ~ScalingImageLoader() override;

  void setSize(const QSize& size);
  QSize size() const;

private:
  std::shared_ptr<QImage> produceImage(const std::string& fileName) const override;

  std::shared_ptr<ImageFileLoaderInterface> source;
  QSize targetSize;
};
