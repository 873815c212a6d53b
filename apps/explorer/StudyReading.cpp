#include "StudyReading.h"

#include "formats/StudyFormats.h"

#include <QApplication>
#include <QProgressDialog>
#include <QThread>

#include <exception>

namespace explorer
{

std::shared_ptr<const Project> readStudyWithProgress(const std::string& path,
                                                     const std::vector<PathRebase>& rebases,
                                                     QWidget* parent)
{
  std::shared_ptr<const Project> project;
  std::exception_ptr failure;
  QThread* reader = QThread::create(
    [&]
    {
      try
      {
        project = readAnyStudy(path, { rebases });
      }
      catch (...)
      {
        failure = std::current_exception();
      }
    });
  QProgressDialog progress(
    "Reading " + QString::fromStdString(path) + "...", QString(), 0, 0, parent);
  progress.setWindowModality(Qt::WindowModal);
  progress.setMinimumDuration(300);
  QObject::connect(reader, &QThread::finished, &progress, &QProgressDialog::reset);
  reader->start();
  while (!reader->isFinished())
  {
    QApplication::processEvents(QEventLoop::AllEvents, 50);
    reader->wait(20);
  }
  delete reader;
  if (failure)
    std::rethrow_exception(failure);
  return project;
}

} // namespace explorer
