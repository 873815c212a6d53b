#include "images/ScalingImageLoader.h"
#include "images/ImageScaling.h"

ScalingImageLoader::ScalingImageLoader(std::shared_ptr<ImageFileLoaderInterface> source,
                                       const QSize& size)
  : source(std::move(source))
  , targetSize(-1, -1)
{
  setSize(size);
}

ScalingImageLoader::~ScalingImageLoader() = default;

void ScalingImageLoader::setSize(const QSize& size)
{
  withLock(
    [&]
    {
      if (size != targetSize)
      {
        targetSize = size;
        clearWhileLocked();
      }
    });
}

QSize ScalingImageLoader::size() const
{
  return withLock([&] { return targetSize; });
}

std::shared_ptr<QImage> ScalingImageLoader::produceImage(const std::string& fileName) const
{
  const std::shared_ptr<QImage> original = source->image(fileName);
  if (!original || original->isNull() || targetSize.isEmpty())
  {
    return std::make_shared<QImage>();
  }
  return std::make_shared<QImage>(scaledSmoothly(*original, targetSize));
}
