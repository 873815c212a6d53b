#include "images/ImageScaling.h"

#include <QColor>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace
{

// A plot as a study's images hold them: a gradient behind lines of every colour, and half of it
// see-through when the format has alpha.
QImage picture(const QSize& size, QImage::Format format)
{
  QImage image(size, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  QLinearGradient gradient(0, 0, size.width(), size.height());
  gradient.setColorAt(0, QColor(20, 40, 200));
  gradient.setColorAt(1, QColor(250, 200, 10, 120));
  painter.fillRect(QRect(QPoint(0, 0), size), gradient);
  QRandomGenerator random(7);
  for (int k = 0; k < 40; ++k)
  {
    painter.setPen(QPen(QColor::fromRgb(random.generate()), 1 + k % 4));
    painter.drawLine(random.bounded(size.width()),
                     random.bounded(size.height()),
                     random.bounded(size.width()),
                     random.bounded(size.height()));
  }
  painter.end();
  return image.convertToFormat(format);
}

struct Difference
{
  int largest = 0;
  double mean = 0;
};

// Channel by channel, in premultiplied ARGB (how both scalings average).
Difference difference(const QImage& a, const QImage& b)
{
  const QImage left = a.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  const QImage right = b.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  Difference result;
  long long sum = 0;
  for (int y = 0; y < left.height(); ++y)
  {
    const auto* l = reinterpret_cast<const QRgb*>(left.constScanLine(y));
    const auto* r = reinterpret_cast<const QRgb*>(right.constScanLine(y));
    for (int x = 0; x < left.width(); ++x)
    {
      for (int shift = 0; shift < 32; shift += 8)
      {
        const int d = std::abs(int((l[x] >> shift) & 0xFF) - int((r[x] >> shift) & 0xFF));
        result.largest = std::max(result.largest, d);
        sum += d;
      }
    }
  }
  result.mean = double(sum) / (4.0 * left.width() * left.height());
  return result;
}

} // namespace

TEST(ImageScaling, GivesQtsSmoothScalingInSizeAndFormatAndNearlyInEveryPixel)
{
  struct Case
  {
    QSize source;
    QImage::Format format;
    QSize box;
  };
  const Case cases[] = {
    // Halved once or more before Qt scales the rest.
    { { 1024, 768 }, QImage::Format_RGB32, { 237, 237 } },
    { { 1024, 768 }, QImage::Format_ARGB32_Premultiplied, { 100, 100 } },
    { { 1024, 768 }, QImage::Format_ARGB32, { 100, 100 } },
    { { 800, 600 }, QImage::Format_RGB888, { 150, 150 } },
    { { 640, 480 }, QImage::Format_Grayscale8, { 50, 50 } },
    { { 1200, 300 }, QImage::Format_RGB32, { 100, 400 } },
    // An odd size is not halved: Qt alone.
    { { 1023, 767 }, QImage::Format_RGB32, { 237, 237 } },
    { { 1024, 767 }, QImage::Format_ARGB32, { 100, 100 } },
    // Less than half, or larger: Qt alone.
    { { 300, 200 }, QImage::Format_RGB32, { 200, 200 } },
    { { 100, 80 }, QImage::Format_RGB32, { 400, 400 } },
    // Down to a pixel.
    { { 512, 512 }, QImage::Format_RGB32, { 1, 1 } },
  };
  for (const Case& c : cases)
  {
    const std::string name = std::to_string(c.source.width()) + "x" +
                             std::to_string(c.source.height()) + " format " +
                             std::to_string(int(c.format)) + " to " + std::to_string(c.box.width());
    const QImage image = picture(c.source, c.format);
    const QImage qt = image.scaled(c.box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    const QImage ours = scaledSmoothly(image, c.box);
    ASSERT_EQ(ours.size(), qt.size()) << name;
    EXPECT_EQ(ours.format(), qt.format()) << name;
    const Difference d = difference(ours, qt);
    // Two averages in a row round twice and place the last one's edges a little differently.
    EXPECT_LE(d.largest, 32) << name;
    EXPECT_LE(d.mean, 1.0) << name;
  }
}

TEST(ImageScaling, AveragesEveryChannelOfABlockAndKeepsNothingToScaleAsIs)
{
  // Alternating pixels: every 2 x 2 block averages to one pixel, each channel rounded half up.
  QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < 64; ++y)
    for (int x = 0; x < 64; ++x)
      image.setPixel(x, y, (x + y) % 2 ? qRgba(200, 0, 100, 255) : qRgba(0, 50, 21, 100));
  const QImage one = scaledSmoothly(image, QSize(1, 1));
  ASSERT_EQ(one.size(), QSize(1, 1));
  const QRgb pixel = one.pixel(0, 0);
  EXPECT_EQ(qRed(pixel), 100);
  EXPECT_EQ(qGreen(pixel), 25);
  EXPECT_EQ(qBlue(pixel), 61);
  EXPECT_EQ(qAlpha(pixel), 178);

  EXPECT_TRUE(scaledSmoothly(QImage(), QSize(10, 10)).isNull());
  EXPECT_TRUE(scaledSmoothly(image, QSize(0, 0)).isNull());
  const QImage same = scaledSmoothly(image, QSize(64, 64));
  EXPECT_EQ(same, image);
}
