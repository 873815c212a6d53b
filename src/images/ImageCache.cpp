#include "images/ImageCache.h"
#include "images/ImageCacheClient.h"
#include "images/ImageCache_p.h"

#include <QFile>
#include <QImageReader>

ImageFileLoaderInterface::~ImageFileLoaderInterface() = default;

namespace
{

// A GIF's logical screen (bytes 6 to 9, little-endian) may be far larger than the first frame
// that QImageReader::size() reports, and Qt allocates for the screen.
bool gifScreenFits(const QString& path, long long budget)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
  {
    return true;
  }
  const QByteArray header = file.read(10);
  if (header.size() < 10 || !header.startsWith("GIF"))
  {
    return true;
  }
  const auto byte = [&](int i) { return static_cast<unsigned char>(header[i]); };
  const long long width = byte(6) | (byte(7) << 8);
  const long long height = byte(8) | (byte(9) << 8);
  return width * height <= budget;
}

} // namespace

ImageCache::ImageCache()
  : d(std::make_shared<Impl>())
{
}

ImageCache::~ImageCache() = default;

std::shared_ptr<ImageFileLoaderInterface> ImageCache::imageLoader() const
{
  return std::make_shared<ImageCacheClient>(d);
}

std::shared_ptr<ImageFileLoaderInterface> ImageCache::sharedLoader() const
{
  return d;
}

long long ImageCache::pixelBudget() const
{
  return d->pixelBudget.load();
}

void ImageCache::setPixelBudget(long long pixels)
{
  d->pixelBudget.store(pixels);
}

std::shared_ptr<QImage> ImageCache::Impl::produceImage(const std::string& fileName) const
{
  auto image = std::make_shared<QImage>();
  const QString path = QString::fromUtf8(fileName.c_str());
  QImageReader reader(path);
  const QSize declared = reader.size();
  const long long budget = pixelBudget.load();
  if (declared.isValid() && static_cast<long long>(declared.width()) * declared.height() > budget)
  {
    return image;
  }
  if (!gifScreenFits(path, budget))
  {
    return image;
  }
  // What read() reports is not needed: a failed read leaves the image null.
  reader.read(image.get());
  return image;
}
