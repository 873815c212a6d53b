#include "images/ImageScaling.h"

namespace
{

// The formats whose pixels are averaged channel by channel as they are: Qt's smooth scaling turns
// the others into one of these first, and so does scaledSmoothly.
bool averagedAsStored(QImage::Format format)
{
  return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32_Premultiplied;
}

// Each pixel the rounded average of a 2 x 2 block, the four channels of a pixel summed in two
// 16-bit lanes of a 32-bit word at a time (four sums of 255 fit in 10 bits). Premultiplied colour
// stays at most its alpha, which is averaged the same way.
QImage halved(const QImage& image)
{
  const int width = image.width() / 2;
  const int height = image.height() / 2;
  QImage result(width, height, image.format());
  if (result.isNull())
    return result;
  constexpr quint32 evenChannels = 0x00FF00FFU;
  constexpr quint32 half = 0x00020002U;
  for (int y = 0; y < height; ++y)
  {
    const auto* top = reinterpret_cast<const quint32*>(image.constScanLine(2 * y));
    const auto* bottom = reinterpret_cast<const quint32*>(image.constScanLine(2 * y + 1));
    auto* row = reinterpret_cast<quint32*>(result.scanLine(y));
    for (int x = 0; x < width; ++x, top += 2, bottom += 2)
    {
      const quint32 a = top[0];
      const quint32 b = top[1];
      const quint32 c = bottom[0];
      const quint32 d = bottom[1];
      const quint32 even =
        (a & evenChannels) + (b & evenChannels) + (c & evenChannels) + (d & evenChannels) + half;
      const quint32 odd = ((a >> 8) & evenChannels) + ((b >> 8) & evenChannels) +
                          ((c >> 8) & evenChannels) + ((d >> 8) & evenChannels) + half;
      row[x] = ((even >> 2) & evenChannels) | (((odd >> 2) & evenChannels) << 8);
    }
  }
  return result;
}

} // namespace

QImage scaledSmoothly(const QImage& image, const QSize& box)
{
  if (image.isNull())
    return {};
  const QSize target = image.size().scaled(box, Qt::KeepAspectRatio);
  // Halving stops while Qt would still have a reduction of at least two left (a last average over
  // less than two pixels of halves blurs the edges of thin lines visibly more than Qt's), and at
  // odd sizes, where the blocks would no longer tile the image. (Compared in 64 bits: a box zoomed
  // in far, and so the target, may be near the largest int.)
  const auto halvable = [&target](const QImage& from)
  {
    return from.width() % 2 == 0 && from.height() % 2 == 0 &&
           from.width() >= 4LL * target.width() && from.height() >= 4LL * target.height();
  };
  if (target.isEmpty() || !halvable(image))
    return image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);

  QImage source = image;
  if (!averagedAsStored(source.format()))
    source = source.convertToFormat(source.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
  while (halvable(source))
  {
    QImage next = halved(source);
    if (next.isNull()) // out of memory: Qt's scaling of what there is
      break;
    source = std::move(next);
  }
  QImage result = source.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  result.setDotsPerMeterX(image.dotsPerMeterX());
  result.setDotsPerMeterY(image.dotsPerMeterY());
  return result;
}
