#pragma once

#include "SampleStudy.h"
#include "datamanagement/CinemaReader.h"
#include "derived/DerivedVariables.h"

#include <QString>

#include <iosfwd>
#include <set>

namespace explorer
{

/// The exit codes of the explorer, one per kind of problem.
enum ExitCode
{
  Ok = 0,
  UsageError = 1,
  StudyError = 2,
  SettingsError = 3,
  SelectionError = 4,
  OutputError = 5,
  DerivedVariableError = 6
};

/// What the command line asks for.
struct Options
{
  enum class Mode
  {
    Open,           // show the window, on a study if one is given
    Screenshots,    // render the views of a study to files, then exit
    GenerateSample, // write the sample study, then exit
    Help
  };
  Mode mode = Mode::Open;
  QString study;
  QString settings;
  bool selectGiven = false;
  std::set<unsigned long long> select;
  QString screenshots;
  /// For Cinema databases written elsewhere: OLD=NEW rewrites paths that start with OLD.
  std::vector<PathRebase> rebases;
  /// Variables computed from the others, added after the settings are loaded (NAME=EXPRESSION).
  DerivedVariables derived;
  SampleStudyOptions sample;
};

/// Reads the arguments (without the program name). False, with a message in `error` and the
/// exit code in `code`, when they are malformed.
bool parseOptions(const QStringList& arguments, Options& options, QString& error, int& code);
/// The usage text of --help; needs a QCoreApplication, which names the program.
QString helpText();

/// The modes; each returns the program's exit code. Screenshots and Open need a QApplication;
/// GenerateSample needs a QGuiApplication (it draws the images).
int generateSample(const Options& options, std::ostream& out, std::ostream& err);
int writeScreenshotsOfStudy(const Options& options, std::ostream& out, std::ostream& err);
int openWindow(const Options& options, std::ostream& err);

} // namespace explorer
