// The explorer: opens a study of runs in linked views. See README.md for the command line.

#include "CommandLine.h"
#include "MemoryPolicy.h"

#include <QApplication>
#include <QSurfaceFormat>
#include <QVTKOpenGLNativeWidget.h>

#include <iostream>

int main(int argc, char** argv)
{
  using explorer::Options;
  QStringList arguments;
  for (int i = 1; i < argc; ++i)
    arguments << QString::fromLocal8Bit(argv[i]);
  Options options;
  QString error;
  int code = explorer::Ok;
  if (!explorer::parseOptions(arguments, options, error, code))
  {
    std::cerr << "explorer: " << error.toStdString() << std::endl;
    return code;
  }
  // Help and the sample study need no display: they run before any window system is touched.
  if (options.mode == Options::Mode::Help)
  {
    const QCoreApplication application(argc, argv);
    std::cout << explorer::helpText().toStdString();
    return explorer::Ok;
  }
  if (options.mode == Options::Mode::GenerateSample && qEnvironmentVariableIsEmpty("DISPLAY") &&
      qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
  {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  explorer::keepLargeBlocksInHeap();
  QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
  QApplication application(argc, argv);
  QApplication::setOrganizationName("quen");
  QApplication::setApplicationName("explorer");
  switch (options.mode)
  {
    case Options::Mode::GenerateSample:
      return explorer::generateSample(options, std::cout, std::cerr);
    case Options::Mode::Screenshots:
      return explorer::writeScreenshotsOfStudy(options, std::cout, std::cerr);
    default:
      return explorer::openWindow(options, std::cerr);
  }
}
