#include "ImagePreloader.h"

#include "images/ImageFileLoaderInterface.h"

#include <QImage>
#include <QProgressBar>
#include <QThread>

namespace explorer
{

ImagePreloader::~ImagePreloader()
{
  stop();
}

void ImagePreloader::start(std::vector<std::string> paths,
                           std::shared_ptr<ImageFileLoaderInterface> loader,
                           QProgressBar& progress)
{
  stop();
  if (paths.empty())
    return;
  held = loader;
  stopping = std::make_shared<std::atomic<bool>>(false);
  progress.setRange(0, static_cast<int>(paths.size()));
  progress.setValue(0);
  progress.setFormat("images %v/%m");
  progress.show();
  QProgressBar* bar = &progress;
  thread = QThread::create(
    [paths = std::move(paths), loader, stop = stopping, bar]
    {
      qint64 kept = 0;
      for (std::size_t i = 0; i < paths.size() && !stop->load() && kept < budget; ++i)
      {
        kept += loader->image(paths[i])->sizeInBytes();
        QMetaObject::invokeMethod(
          bar, "setValue", Qt::QueuedConnection, Q_ARG(int, static_cast<int>(i + 1)));
      }
    });
  QObject::connect(thread, &QThread::finished, bar, &QWidget::hide);
  thread->start();
}

void ImagePreloader::stop()
{
  if (!thread)
    return;
  stopping->store(true);
  thread->wait();
  delete thread;
  thread = nullptr;
}

} // namespace explorer
