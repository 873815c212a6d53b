#include "CommandLine.h"

#include "ExplorerWindow.h"
#include "MasterSelection.h"
#include "Screenshots.h"
#include "datamanagement/Project.h"
#include "formats/StudyFormats.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>

#include <algorithm>
#include <iostream>

namespace explorer
{

namespace
{

struct Parser
{
  QCommandLineParser parser;
  const QCommandLineOption help{ { "h", "help" }, "Show this help and exit." };
  const QCommandLineOption settings{ "settings", "Load the view settings from FILE.", "FILE" };
  const QCommandLineOption select{ "select",
                                   "Select the cases with these ids, e.g. 1003,1007.",
                                   "IDS" };
  const QCommandLineOption screenshots{ "screenshots",
                                        "Render the window and each view to PNG files in DIR, "
                                        "with the settings and the shown cases, then exit.",
                                        "DIR" };
  const QCommandLineOption generate{ "generate-sample",
                                     "Write the sample study into DIR and exit.",
                                     "DIR" };
  const QCommandLineOption rebase{ "rebase",
                                   "Read the file paths of a Cinema database that start with OLD "
                                   "(a folder of another machine, a URL) as starting with NEW "
                                   "(may be repeated).",
                                   "OLD=NEW" };
  const QCommandLineOption derive{ "derive",
                                   "Add a variable computed from the others, e.g. "
                                   "\"ratio=range / speed^2\"; names with spaces or symbols "
                                   "in backquotes (may be repeated; each may use the ones "
                                   "before it).",
                                   "NAME=EXPRESSION" };
  const QCommandLineOption runs{ "runs", "Runs of the sample study (at least 1).", "N", "288" };
  const QCommandLineOption noImages{ "no-images", "Write the sample study without images." };
  const QCommandLineOption seed{ "seed", "Seed of the sample study.", "SEED", "20261121" };

  Parser()
  {
    parser.setApplicationDescription(QString::fromStdString(
      "Explores the runs of a study in linked views. It opens:\n" + formatsHelp()));
    parser.addPositionalArgument(
      "study", "The study: a study folder or a Cinema database (see above).", "[STUDY]");
    parser.addOptions(
      { help, settings, select, screenshots, rebase, derive, generate, runs, noImages, seed });
  }
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

bool parseOptions(const QStringList& arguments, Options& options, QString& error, int& code)
{
  Parser p;
  code = UsageError;
  if (!p.parser.parse(QStringList{ "explorer" } + arguments))
  {
    error = p.parser.errorText();
    return false;
  }
  if (p.parser.isSet(p.help))
  {
    options.mode = Options::Mode::Help;
    return true;
  }
  if (p.parser.isSet(p.generate))
  {
    options.mode = Options::Mode::GenerateSample;
    options.sample.folder = p.parser.value(p.generate).toStdString();
    bool ok = false;
    options.sample.runs = p.parser.value(p.runs).toInt(&ok);
    if (!ok || options.sample.runs < 1)
    {
      error =
        "--runs takes a whole number of runs, at least 1, not \"" + p.parser.value(p.runs) + "\"";
      return false;
    }
    options.sample.images = !p.parser.isSet(p.noImages);
    options.sample.seed = p.parser.value(p.seed).toUInt(&ok);
    if (!ok)
    {
      error = "--seed takes a whole number, not \"" + p.parser.value(p.seed) + "\"";
      return false;
    }
    return true;
  }
  const QStringList positional = p.parser.positionalArguments();
  if (positional.size() > 1)
  {
    error = "give one study at most";
    return false;
  }
  options.study = positional.value(0);
  options.settings = p.parser.value(p.settings);
  if (p.parser.isSet(p.select))
  {
    options.selectGiven = true;
    if (!parseIds(p.parser.value(p.select), options.select))
    {
      error =
        "--select takes case ids separated by commas, not \"" + p.parser.value(p.select) + "\"";
      code = SelectionError;
      return false;
    }
  }
  for (const QString& rebase : p.parser.values(p.rebase))
  {
    const int equals = rebase.indexOf('=');
    if (equals <= 0)
    {
      error = "--rebase takes OLD=NEW, not \"" + rebase + "\"";
      return false;
    }
    options.rebases.push_back(
      { rebase.left(equals).toStdString(), rebase.mid(equals + 1).toStdString() });
  }
  for (const QString& definition : p.parser.values(p.derive))
  {
    try
    {
      options.derived.push_back(derivedVariableOf(definition.toStdString()));
    }
    catch (const std::exception& e)
    {
      error = "--derive takes NAME=EXPRESSION: " + QString::fromStdString(e.what());
      code = DerivedVariableError;
      return false;
    }
  }
  if (p.parser.isSet(p.screenshots))
  {
    options.mode = Options::Mode::Screenshots;
    options.screenshots = p.parser.value(p.screenshots);
    if (options.study.isEmpty())
    {
      error = "--screenshots needs a study";
      return false;
    }
  }
  return true;
}

QString helpText()
{
  Parser p;
  return p.parser.helpText();
}

int generateSample(const Options& options, std::ostream& out, std::ostream& err)
{
  try
  {
    const int written = writeSampleStudy(options.sample);
    out << "wrote a sample study of " << written << " runs to " << options.sample.folder
        << std::endl;
    return Ok;
  }
  catch (const std::exception& e)
  {
    err << "explorer: " << e.what() << std::endl;
    return OutputError;
  }
}

namespace
{

// Opens the study, the settings and the selection the options name in a window. Problems are
// written to `err`; with `interactive` they are also shown in a dialog and the window stays
// (with what could be opened), otherwise the first problem ends the run with its exit code.
int prepareWindow(ExplorerWindow& window,
                  const Options& options,
                  bool interactive,
                  std::ostream& err)
{
  const auto fail = [&](const QString& title, const QString& message, int code)
  {
    err << "explorer: " << message.toStdString() << std::endl;
    if (interactive)
      QMessageBox::critical(&window, title, message);
    return interactive ? Ok : code;
  };
  window.setPathRebases(options.rebases);
  if (!options.study.isEmpty())
  {
    QString error;
    if (!window.openStudy(options.study, error))
    {
      if (const int code = fail("Cannot open the study", error, StudyError))
        return code;
    }
  }
  if (!options.settings.isEmpty())
  {
    QString error;
    if (!window.loadSettings(options.settings, error))
    {
      if (const int code = fail("Cannot load the settings", error, SettingsError))
        return code;
    }
  }
  for (const DerivedVariable& variable : options.derived)
  {
    // Settings loaded may define it already: the command line's definition wins.
    const auto& present = window.derivedVariables();
    const bool defined =
      std::any_of(present.begin(),
                  present.end(),
                  [&variable](const DerivedVariable& v) { return v.name == variable.name; });
    QString error;
    if (!(defined ? window.editDerivedVariable(variable.name, variable, error)
                  : window.addDerivedVariable(variable, error)))
    {
      if (const int code = fail("Cannot add the derived variable", error, DerivedVariableError))
        return code;
    }
  }
  if (options.selectGiven)
  {
    std::set<unsigned long long> known;
    QString unknown;
    for (unsigned long long id : options.select)
    {
      if (window.project()->record(id).lock().isNull())
        unknown += (unknown.isEmpty() ? "" : ",") + QString::number(id);
      else
        known.insert(id);
    }
    window.selection().setSelection(known);
    if (!unknown.isEmpty())
    {
      if (const int code = fail("Cannot select the cases",
                                "--select names cases the study does not have: " + unknown,
                                SelectionError))
        return code;
    }
  }
  return Ok;
}

} // namespace

int writeScreenshotsOfStudy(const Options& options, std::ostream& out, std::ostream& err)
{
  ExplorerWindow window;
  if (const int code = prepareWindow(window, options, false, err))
    return code;
  QString error;
  if (!writeScreenshots(window, options.screenshots, out, error))
  {
    err << "explorer: " << error.toStdString() << std::endl;
    return OutputError;
  }
  return Ok;
}

int openWindow(const Options& options, std::ostream& err)
{
  ExplorerWindow window;
  // On screen before the study is read: the reading's progress shows over the window.
  window.rememberBetweenRuns();
  window.show();
  QApplication::processEvents();
  prepareWindow(window, options, true, err);
  window.preloadImages();
  return QApplication::exec();
}

} // namespace explorer
