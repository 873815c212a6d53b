#include "images/ImageCache.h"
#include "images/ImageCacheClient.h"
#include "images/ImageCache_p.h"
#include "images/ImageDecorator.h"
#include "images/ScalingImageLoader.h"
#include "support/SmallStudy.h"
#include "support/WarningGuard.h"

#include <QImage>
#include <QImageReader>
#include <gtest/gtest.h>

#include <QSize>

#include <atomic>
#include <fstream>
#include <thread>
#include <vector>

using testsupport::TemporaryFolder;
using testsupport::writeImage;

namespace
{

// A 1 KB PNG whose header claims 60000 x 60000 pixels.
std::string writePngBomb(const TemporaryFolder& folder)
{
  QImage small(8, 8, QImage::Format_RGB32);
  small.fill(Qt::white);
  const std::string path = writeImage(folder, "bomb.png", 8, 8, Qt::white);
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  const unsigned char size[8] = { 0, 0, 0xEA, 0x60, 0, 0, 0xEA, 0x60 };
  file.seekp(16); // width and height of the IHDR chunk
  file.write(reinterpret_cast<const char*>(size), 8);
  return path;
}

// A small real JPEG whose frame header is patched to declare 25075 x 29445 pixels.
std::string writeJpegBomb(const TemporaryFolder& folder)
{
  QImage small(16, 16, QImage::Format_RGB32);
  small.fill(Qt::gray);
  const std::string path = folder.filePath("bomb.jpg");
  small.save(QString::fromStdString(path), "JPEG");
  std::string bytes = testsupport::readFile(path);
  const auto frame = bytes.find("\xFF\xC0");
  if (frame != std::string::npos && frame + 9 < bytes.size())
  {
    const unsigned char size[4] = { 0x73, 0x05, 0x61, 0xF3 }; // height 29445, width 25075
    bytes.replace(frame + 5, 4, reinterpret_cast<const char*>(size), 4);
  }
  return folder.write("bomb.jpg", bytes);
}

// A 23-byte GIF whose logical screen is 65535 x 65535 around a first frame of 1 x 1.
std::string writeGifBomb(const TemporaryFolder& folder)
{
  const unsigned char bytes[] = { 'G',  'I',  'F',  '8',  '9',  'a',  0xFF, 0xFF,
                                  0xFF, 0xFF, 0x00, 0x00, 0x00, 0x2C, 0x00, 0x00,
                                  0x00, 0x00, 0x01, 0x00, 0x01, 0x00, 0x00 };
  return folder.write("bomb.gif", std::string(reinterpret_cast<const char*>(bytes), sizeof bytes));
}

} // namespace

TEST(ImageCache, ClientsShareOneDecodedImageWhileEitherHoldsIt)
{
  TemporaryFolder folder;
  const std::string path = writeImage(folder, "a.png", 40, 30, Qt::red);
  ImageCache cache;
  std::weak_ptr<QImage> watch;
  {
    auto first = cache.imageLoader();
    auto second = cache.imageLoader();
    const auto a = first->image(path);
    const auto b = second->image(path);
    EXPECT_EQ(a.get(), b.get()) << "one QImage object for both clients";
    EXPECT_EQ(a->size(), QSize(40, 30));
    EXPECT_EQ(first->image(path).get(), a.get()) << "a client serves its own cache";
    watch = a;
  }
  EXPECT_TRUE(watch.expired()) << "freed once both clients are gone";

  // The cache outlives its clients' images: the next request loads the file again, replacing
  // the stale entry.
  auto third = cache.imageLoader();
  const auto again = third->image(path);
  EXPECT_EQ(again->size(), QSize(40, 30));
  EXPECT_EQ(again->pixelColor(0, 0), QColor(Qt::red));
}

TEST(ImageCache, TheSharedLoaderSharesWhatAClientHoldsAndKeepsNothing)
{
  TemporaryFolder folder;
  const std::string held = writeImage(folder, "held.png", 40, 30, Qt::red);
  const std::string passing = writeImage(folder, "passing.png", 400, 300, Qt::blue);
  ImageCache cache;
  auto client = cache.imageLoader();
  const auto original = client->image(held);
  EXPECT_EQ(cache.sharedLoader()->image(held).get(), original.get());

  // The image matrix's way: scaled copies kept, originals gone once scaled.
  ScalingImageLoader scaled(cache.sharedLoader(), QSize(40, 40));
  std::weak_ptr<QImage> decoded = cache.sharedLoader()->image(passing);
  EXPECT_TRUE(decoded.expired()) << "nobody holds it";
  EXPECT_EQ(scaled.image(passing)->size(), QSize(40, 30));
  EXPECT_EQ(scaled.image(held)->pixelColor(0, 0), QColor(Qt::red));
}

TEST(ImageCache, AStaleWeakEntryIsReplacedByExactlyOne)
{
  TemporaryFolder folder;
  const std::string path = writeImage(folder, "a.png", 4, 4, Qt::blue);
  ImageCache::Impl cache;
  {
    const auto image = cache.image(path);
    EXPECT_EQ(cache.entryCount(), 1u);
  }
  const auto reloaded = cache.image(path);
  EXPECT_FALSE(reloaded->isNull());
  EXPECT_EQ(cache.entryCount(), 1u);
  cache.image(folder.path() + "/./a.png"); // another writing of the path is another entry
  EXPECT_EQ(cache.entryCount(), 2u);
}

TEST(ImageCache, UnreadableFilesGiveNullImagesNeverEmptyPointers)
{
  TemporaryFolder folder;
  const std::string corrupt = folder.write("corrupt.png", "\x89PNG\r\n\x1a\n this is not a png");
  const std::string empty = folder.write("empty.png", "");
  const std::string bomb = writePngBomb(folder);
  const std::string whole = writeImage(folder, "whole.png", 64, 64, Qt::red);
  const std::string full = testsupport::readFile(whole);
  const std::string truncated = folder.write("truncated.png", full.substr(0, 45));
  ImageCache cache;
  auto loader = cache.imageLoader();
  // Qt's decoders complain about the broken files as they read them.
  testsupport::ExpectWarnings jpeg("JPEG");
  testsupport::ExpectWarnings png("libpng");
  const std::string jpegBomb = writeJpegBomb(folder);
  EXPECT_EQ(QImageReader(QString::fromStdString(jpegBomb)).size(), QSize(25075, 29445))
    << "the header declares the size the budget refuses";
  for (const std::string& path : { folder.filePath("missing.png"),
                                   corrupt,
                                   empty,
                                   bomb,
                                   truncated,
                                   jpegBomb,
                                   writeGifBomb(folder) })
  {
    const auto image = loader->image(path);
    ASSERT_NE(image, nullptr) << path;
    EXPECT_TRUE(image->isNull()) << path;
  }
  EXPECT_EQ(loader->image(bomb).get(), loader->image(bomb).get()) << "null images are cached too";
}

TEST(ImageCache, ThePixelBudgetBelongsToEachCache)
{
  TemporaryFolder folder;
  const std::string path = writeImage(folder, "wide.png", 300, 200, Qt::red);
  ImageCache small;
  small.setPixelBudget(50000);
  const auto client = small.imageLoader();
  EXPECT_TRUE(client->image(path)->isNull()) << "60000 pixels > 50000";
  EXPECT_FALSE(ImageCache().imageLoader()->image(path)->isNull()) << "another cache, the default";
}

TEST(ScalingImageLoader, ScalesToFitAndKeepsItsImagesUntilTheSizeChanges)
{
  TemporaryFolder folder;
  const std::string path = writeImage(folder, "a.png", 200, 100, Qt::red);
  ImageCache cache;
  ScalingImageLoader scaler(cache.imageLoader(), QSize(-1, -1));
  EXPECT_TRUE(scaler.image(path)->isNull()) << "no valid size yet";
  scaler.setSize(QSize(50, 50));
  const auto scaled = scaler.image(path);
  EXPECT_EQ(scaled->size(), QSize(50, 25)) << "the aspect ratio is kept";
  scaler.setSize(QSize(50, 50));
  EXPECT_EQ(scaler.image(path).get(), scaled.get()) << "the same size keeps the scaled images";
  scaler.setSize(QSize(100, 100));
  const auto rescaled = scaler.image(path);
  EXPECT_NE(rescaled.get(), scaled.get());
  EXPECT_EQ(rescaled->size(), QSize(100, 50));
  EXPECT_TRUE(scaler.image(folder.filePath("missing.png"))->isNull());
}

TEST(ImageCache, ServesManyThreadsWhileClientsComeAndGoAndTheScaleChanges)
{
  TemporaryFolder folder;
  std::vector<std::string> paths;
  for (int i = 0; i < 8; ++i)
    paths.push_back(writeImage(folder, "img" + std::to_string(i) + ".png", 80, 40 + i, Qt::green));
  ImageCache cache;
  auto shared = cache.imageLoader();
  ScalingImageLoader scaler(cache.imageLoader(), QSize(20, 20));
  std::atomic<int> wrong{ 0 };
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t)
  {
    threads.emplace_back(
      [&, t]
      {
        auto own = cache.imageLoader();
        for (int round = 0; round < 300; ++round)
        {
          const std::size_t i = static_cast<std::size_t>(round + t) % paths.size();
          const auto image = (round % 2 ? shared : own)->image(paths[i]);
          if (!image || image->height() != 40 + static_cast<int>(i))
            ++wrong;
          // Scaled to one of the two sizes the other thread switches between, whole.
          if (scaler.image(paths[i])->width() % 20 != 0)
            ++wrong;
          if (round % 50 == 0)
            own = cache.imageLoader(); // drop a client: its images may expire in the cache
        }
      });
  }
  threads.emplace_back(
    [&]
    {
      for (int round = 0; round < 300; ++round)
        scaler.setSize(round % 2 ? QSize(20, 20) : QSize(40, 40));
    });
  for (auto& thread : threads)
    thread.join();
  EXPECT_EQ(wrong.load(), 0);
}

TEST(ImageDecorator, PaintsTheStackMarkerInTheTopLeftCorner)
{
  const QImage marker(":/image-matrix-resources/images-stack.png");
  ASSERT_FALSE(marker.isNull()) << "the marker is compiled into the library's resources";
  QImage image(40, 40, QImage::Format_RGB32);
  image.fill(Qt::white);
  const QImage decorated = ImageDecorator().decorate(image);
  int changed = 0;
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 40; ++x)
      changed += decorated.pixel(x, y) != image.pixel(x, y) ? 1 : 0;
  EXPECT_GT(changed, 0);
  EXPECT_EQ(decorated.pixel(1, 1), image.pixel(1, 1)) << "the marker starts at (2, 2)";
  EXPECT_EQ(decorated.pixel(39, 39), image.pixel(39, 39));
  EXPECT_TRUE(ImageDecorator().decorate(QImage()).isNull());
}
