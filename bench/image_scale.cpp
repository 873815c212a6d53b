// Decoding and scaling 200 PNGs of 1024 x 768 to the size of zoom 25, against Qt's decoding
// alone.

#include "BenchSupport.h"
#include "images/ImageCache.h"
#include "images/ImageViewProperties.h"
#include "images/ScalingImageLoader.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>

namespace
{

std::vector<std::string> pictures()
{
  const std::string folder = bench::dataFolder() + "/pictures";
  QDir().mkpath(QString::fromStdString(folder));
  std::vector<std::string> files;
  const int count = static_cast<int>(bench::size(200, 2));
  for (int i = 0; i < count; ++i)
  {
    const std::string path = folder + "/picture" + std::to_string(i) + ".png";
    if (!QFile::exists(QString::fromStdString(path)))
    {
      QImage image(1024, 768, QImage::Format_RGB32);
      image.fill(Qt::white);
      QPainter painter(&image);
      QRandomGenerator random(static_cast<quint32>(i));
      for (int k = 0; k < 60; ++k)
      {
        painter.setPen(QPen(QColor::fromRgb(random.generate()), 3));
        painter.drawLine(
          random.bounded(1024), random.bounded(768), random.bounded(1024), random.bounded(768));
      }
      painter.end();
      image.save(QString::fromStdString(path));
    }
    files.push_back(path);
  }
  return files;
}

void DecodeOnly(benchmark::State& state)
{
  const auto files = pictures();
  for (auto _ : state)
  {
    for (const auto& file : files)
    {
      QImage image(QString::fromStdString(file));
      benchmark::DoNotOptimize(image.bits());
    }
  }
}

void DecodeAndScale(benchmark::State& state)
{
  const auto files = pictures();
  ImageCache cache;
  for (auto _ : state)
  {
    // As the image matrix reads them: the originals go once scaled.
    ScalingImageLoader loader(cache.sharedLoader(), zoomLevelToImageSize(25));
    for (const auto& file : files)
      benchmark::DoNotOptimize(loader.image(file)->bits());
  }
}

} // namespace

BENCHMARK(DecodeOnly)->Unit(benchmark::kMillisecond);
BENCHMARK(DecodeAndScale)->Unit(benchmark::kMillisecond);

QUEN_BENCH_MAIN()
