#include "BenchSupport.h"

#include <QApplication>
#include <QDir>
#include <QSurfaceFormat>
#include <QVTKOpenGLNativeWidget.h>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace bench
{

namespace
{
bool smokeRun = false;
}

bool smoke()
{
  return smokeRun;
}

long long size(long long full, long long tiny)
{
  return smokeRun ? tiny : full;
}

std::string dataFolder()
{
  const char* folder = std::getenv("QUEN_BENCH_DATA");
  std::string path = folder ? folder : (QDir::tempPath() + "/quen-bench").toStdString();
  QDir().mkpath(QString::fromStdString(path));
  return path;
}

namespace
{
std::vector<std::function<void()>> cleanUps;
}

void atEnd(std::function<void()> cleanUp)
{
  cleanUps.push_back(std::move(cleanUp));
}

int run(int argc, char** argv)
{
  std::vector<char*> arguments;
  for (int i = 0; i < argc; ++i)
  {
    if (std::strcmp(argv[i], "--smoke") == 0)
      smokeRun = true;
    else
      arguments.push_back(argv[i]);
  }
  int count = static_cast<int>(arguments.size());
  if (std::getenv("DISPLAY") == nullptr && std::getenv("QT_QPA_PLATFORM") == nullptr)
    qputenv("QT_QPA_PLATFORM", "offscreen");
  QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
  QApplication application(count, arguments.data());
  // What the views remember goes under a name of its own, apart from the explorer's settings.
  QApplication::setOrganizationName("quen-bench");
  QApplication::setApplicationName("bench");
  benchmark::Initialize(&count, arguments.data());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  for (const auto& cleanUp : cleanUps)
    cleanUp();
  return 0;
}

} // namespace bench
