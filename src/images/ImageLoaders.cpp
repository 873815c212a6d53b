#include "images/ImageCache.h"
#include "images/ImageCacheClient.h"
#include "images/ImageDecorator.h"
#include "images/ImageFileLoaderInterface.h"
#include "images/ScalingImageLoader.h"

#include <QFile>
#include <QImageReader>
#include <QPainter>

#include <atomic>

ImageFileLoaderInterface::~ImageFileLoaderInterface() = default;

// ---------------------------------------------------------------------------------------------
// ImageCache

namespace
{

std::atomic<long long> maximumPixels{ 64LL * 1000 * 1000 };

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

long long ImageCache::pixelBudget()
{
  return maximumPixels.load();
}

void ImageCache::setPixelBudget(long long pixels)
{
  maximumPixels.store(pixels);
}

std::shared_ptr<QImage> ImageCache::Impl::produceImage(const std::string& fileName) const
{
  auto image = std::make_shared<QImage>();
  const QString path = QString::fromUtf8(fileName.c_str());
  QImageReader reader(path);
  const QSize declared = reader.size();
  const long long budget = pixelBudget();
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

// ---------------------------------------------------------------------------------------------
// ImageCacheClient

ImageCacheClient::ImageCacheClient(std::shared_ptr<ImageFileLoaderInterface> cache)
  : cache(std::move(cache))
{
}

ImageCacheClient::~ImageCacheClient() = default;

std::shared_ptr<QImage> ImageCacheClient::produceImage(const std::string& fileName) const
{
  return cache->image(fileName);
}

// ---------------------------------------------------------------------------------------------
// ScalingImageLoader

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
  return std::make_shared<QImage>(
    original->scaled(targetSize, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

// ---------------------------------------------------------------------------------------------
// ImageDecorator

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
