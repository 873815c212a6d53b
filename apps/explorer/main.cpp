// The explorer: opens a study of runs in linked views. See README.md for the command line.

#include "ExplorerWindow.h"
#include "SampleStudy.h"
#include "Screenshots.h"
#include "analyzer_common/SelectionModel.h"
#include "datamanagement/Project.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QSurfaceFormat>
#include <QVTKOpenGLNativeWidget.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <set>

namespace
{

enum ExitCode
{
  Ok = 0,
  UsageError = 1,
  StudyError = 2,
  SettingsError = 3,
  SelectionError = 4,
  OutputError = 5
};

bool parseIds(const QString& text, std::set<unsigned long long>& ids)
{
  for (const QString& part : text.split(',', Qt::SkipEmptyParts))
  {
    bool ok = false;
    const unsigned long long id = part.trimmed().toULongLong(&ok);
    if (!ok)
      return false;
    ids.insert(id);
  }
  return true;
}

} // namespace

int main(int argc, char** argv)
{
  // Writing the sample study needs no display: draw offscreen when there is none.
  const bool generating = std::any_of(
    argv + 1,
    argv + argc,
    [](const char* argument) { return std::strncmp(argument, "--generate-sample", 17) == 0; });
  if (generating && qEnvironmentVariableIsEmpty("DISPLAY") &&
      qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
  {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
  QApplication application(argc, argv);
  QApplication::setOrganizationName("quen");
  QApplication::setApplicationName("explorer");

  QCommandLineParser parser;
  parser.setApplicationDescription("Explores the runs of a study in linked views.");
  parser.addHelpOption();
  parser.addPositionalArgument(
    "study", "The study folder (cases.csv, auxfiles.csv, images).", "[STUDY_DIR]");
  const QCommandLineOption settings("settings", "Load the view settings from FILE.", "FILE");
  const QCommandLineOption select(
    "select", "Select the cases with these ids, e.g. 1003,1007.", "IDS");
  const QCommandLineOption screenshots("screenshots",
                                       "Render the window and each view to PNG files in DIR, with "
                                       "the settings and the shown cases, then exit.",
                                       "DIR");
  const QCommandLineOption generate(
    "generate-sample", "Write the sample study into DIR and exit.", "DIR");
  const QCommandLineOption runs("runs", "Runs of the sample study.", "N", "288");
  const QCommandLineOption seed("seed", "Seed of the sample study.", "SEED", "20261121");
  parser.addOptions({ settings, select, screenshots, generate, runs, seed });
  parser.process(application);

  if (parser.isSet(generate))
  {
    explorer::SampleStudyOptions options;
    options.folder = parser.value(generate).toStdString();
    options.runs = parser.value(runs).toInt();
    options.seed = parser.value(seed).toUInt();
    try
    {
      const int written = explorer::writeSampleStudy(options);
      std::cout << "wrote a sample study of " << written << " runs to " << options.folder
                << std::endl;
      return Ok;
    }
    catch (const std::exception& e)
    {
      std::cerr << "explorer: " << e.what() << std::endl;
      return OutputError;
    }
  }

  const bool headless = parser.isSet(screenshots);
  const auto fail = [&](const QString& title, const QString& message, int code)
  {
    std::cerr << "explorer: " << message.toStdString() << std::endl;
    if (!headless)
      QMessageBox::critical(nullptr, title, message);
    return code;
  };
  const QStringList positional = parser.positionalArguments();
  if (positional.size() > 1)
  {
    std::cerr << "explorer: give one study folder at most" << std::endl;
    return UsageError;
  }

  explorer::ExplorerWindow window;
  if (!positional.isEmpty())
  {
    try
    {
      window.showStudy(explorer::readStudyWithProgress(positional.front().toStdString(), &window));
    }
    catch (const std::exception& e)
    {
      const int code = fail("Cannot open the study", QString::fromStdString(e.what()), StudyError);
      if (headless)
        return code;
    }
  }
  else if (headless)
  {
    std::cerr << "explorer: --screenshots needs a study folder" << std::endl;
    return UsageError;
  }

  if (parser.isSet(settings))
  {
    QString error;
    if (!window.loadSettings(parser.value(settings), error))
    {
      const int code = fail("Cannot load the settings", error, SettingsError);
      if (headless)
        return code;
    }
  }
  if (parser.isSet(select))
  {
    std::set<unsigned long long> ids;
    if (!parseIds(parser.value(select), ids))
    {
      std::cerr << "explorer: --select takes case ids separated by commas, not \""
                << parser.value(select).toStdString() << "\"" << std::endl;
      return SelectionError;
    }
    window.selection().setSelection(ids);
  }

  if (headless)
  {
    QString error;
    if (!explorer::writeScreenshots(window, parser.value(screenshots), std::cout, error))
    {
      std::cerr << "explorer: " << error.toStdString() << std::endl;
      return OutputError;
    }
    return Ok;
  }
  window.resize(1600, 1000);
  window.show();
  window.preloadImages();
  return QApplication::exec();
}
