#include "WindowMenus.h"

#include "ExplorerView.h"
#include "ExplorerWindow.h"
#include "FileLocator.h"
#include "StudyFiles.h"
#include "StudySessions.h"
#include "derived/DerivedVariableDialog.h"

#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "datamanagement/SeriesReader.h"
#include "properties/PropertyAbstract.h"

#include <QActionGroup>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QToolBar>
#include <QUndoStack>

#include <algorithm>

namespace explorer
{

WindowMenus::WindowMenus(ExplorerWindow& window)
  : QObject(&window)
  , window(window)
{
  QMenu* file = window.menuBar()->addMenu("&File");
  file->addAction(
    "&Open Study...", this, [this] { openStudyFile(); }, QKeySequence::Open);
  file->addAction("Open Study &Folder...", this, [this] { openStudyFolder(); });
  QMenu* recent = file->addMenu("Open &Recent");
  QObject::connect(recent, &QMenu::aboutToShow, this, [this, recent] { listRecent(*recent); });
  file->addAction("&Load Settings...", this, [this] { openSettings(); });
  file->addAction(
    "&Save Settings...", this, [this] { saveSettingsAs(); }, QKeySequence::Save);
  file->addSeparator();
  file->addAction("Export Cases (full precision)...", this, [this] { exportCasesAs(true); });
  file->addAction("Export Cases (6 digits)...", this, [this] { exportCasesAs(false); });
  file->addSeparator();
  file->addAction("Locate &Files...", this, [this] { locateFiles(); });
  file->addSeparator();
  file->addAction("&Quit", &window, &QWidget::close, QKeySequence::Quit);

  QMenu* edit = window.menuBar()->addMenu("&Edit");
  QUndoStack& undo = UndoStack().qUndoStack();
  QAction* undoAction = undo.createUndoAction(&window, "&Undo");
  undoAction->setShortcut(QKeySequence::Undo);
  QAction* redoAction = undo.createRedoAction(&window, "&Redo");
  redoAction->setShortcut(QKeySequence::Redo);
  edit->addAction(undoAction);
  edit->addAction(redoAction);

  QMenu* variables = window.menuBar()->addMenu("Va&riables");
  variables->addAction("&New Derived Variable...", this, [this] { newDerivedVariable(); });
  QAction* editDerived =
    variables->addAction("&Edit Derived Variable...", this, [this] { editDerivedVariable(); });
  QAction* removeDerived =
    variables->addAction("&Remove Derived Variable...", this, [this] { removeDerivedVariable(); });
  QObject::connect(variables,
                   &QMenu::aboutToShow,
                   this,
                   [this, editDerived, removeDerived]
                   {
                     const bool any = !this->window.derivedVariables().empty();
                     editDerived->setEnabled(any);
                     removeDerived->setEnabled(any);
                   });

  QMenu* viewMenu = window.menuBar()->addMenu("&View");
  QToolBar* tools = window.addToolBar("Chart");
  tools->setObjectName("chartTools");
  mouseModes = new QActionGroup(this);
  const std::pair<const char*, DataViewInterface::MouseMode> modes[] = {
    { "Select", DataViewInterface::Select },
    { "Pan", DataViewInterface::Pan },
    { "Zoom", DataViewInterface::Zoom }
  };
  for (const auto& [name, mode] : modes)
  {
    QAction* action = mouseModes->addAction(name);
    action->setCheckable(true);
    action->setChecked(mode == DataViewInterface::Select);
    QObject::connect(action,
                     &QAction::triggered,
                     this,
                     [this, mode = mode]
                     {
                       if (current)
                         current->mouseMode()->setValue(mode);
                     });
    viewMenu->addAction(action);
    tools->addAction(action);
  }
  fitAction = new QAction("Fit to Data", this);
  QObject::connect(fitAction,
                   &QAction::triggered,
                   this,
                   [this]
                   {
                     if (current)
                       current->fitToData();
                   });
  viewMenu->addSeparator();
  viewMenu->addAction(fitAction);
  tools->addAction(fitAction);
}

void WindowMenus::applyChartActionsTo(ExplorerView* view, bool chart)
{
  current = view;
  mouseModes->setEnabled(chart);
  fitAction->setEnabled(chart);
  if (chart)
  {
    for (QAction* action : mouseModes->actions())
      action->setChecked(mouseModes->actions().indexOf(action) == view->mouseMode()->value());
  }
}

void WindowMenus::locateFiles()
{
  FileLocator::Location proposed;
  const QString studyFolder = QString::fromStdString(window.project()->folder());
  QFileInfo study(studyFolder);
  if (!window.files().proposeLocation(
        *window.project(), study.absoluteDir().absolutePath().toStdString(), proposed))
  {
    QMessageBox::information(&window, "Locate Files", "Every file of this study is found.");
    return;
  }
  bool ok = false;
  const QString prefix =
    QInputDialog::getText(&window,
                          "Locate Files",
                          "Paths that start with this are read from the folder chosen next:",
                          QLineEdit::Normal,
                          QString::fromStdString(proposed.prefix),
                          &ok);
  if (!ok || prefix.isEmpty())
    return;
  const QString folder = QFileDialog::getExistingDirectory(
    &window,
    "Folder of the files starting with " + prefix,
    proposed.folder.empty() ? studyFolder : QString::fromStdString(proposed.folder));
  if (folder.isEmpty())
    return;
  window.files().addLocation({ prefix.toStdString(), folder.toStdString() });
  window.showMessage(QString("files starting with %1 are read from %2").arg(prefix, folder));
}

namespace
{

std::vector<std::string> variableNames(const Project& study)
{
  std::vector<std::string> names;
  for (const auto& variable : study.variables())
    names.push_back(variable.lock().name());
  return names;
}

Expression::NameLookup kindsIn(std::shared_ptr<const Project> study)
{
  return [study](const std::string& name)
  {
    const Variable variable = study->variable(name).lock();
    if (variable.isNull())
      return Expression::NameKind::Unknown;
    return study->numericValues(variable) ? Expression::NameKind::Numbers
                                          : Expression::NameKind::Text;
  };
}

// The runs' series: the columns of a tag are those of the first run's file that can be read.
DerivedVariableDialog::Series seriesOf(const ExplorerWindow& window)
{
  const auto study = window.project();
  const FileLocator* files = &window.files();
  return { studyfiles::seriesTags(*study),
           [study, files](const std::string& tag)
           {
             for (const auto& handle : study->auxFiles())
             {
               const AuxFile file = handle.lock();
               if (!file.hasTag(tag) || !studyfiles::isSeries(file.filePath()))
                 continue;
               try
               {
                 return readSeriesTable(files->locate(file.filePath())).names;
               }
               catch (const std::exception&)
               {
                 continue;
               }
             }
             return std::vector<std::string>{};
           } };
}

} // namespace

void WindowMenus::newDerivedVariable()
{
  DerivedVariableDialog dialog(&window,
                               "New Derived Variable",
                               variableNames(*window.project()),
                               kindsIn(window.project()),
                               seriesOf(window),
                               {},
                               [this](const DerivedVariable& variable)
                               {
                                 QString error;
                                 window.addDerivedVariable(variable, error);
                                 return error;
                               });
  dialog.exec();
}

QString WindowMenus::chooseDerivedVariable(const QString& title)
{
  QStringList names;
  for (const auto& variable : window.derivedVariables())
    names.push_back(QString::fromStdString(variable.name));
  if (names.size() <= 1)
    return names.value(0);
  bool ok = false;
  const QString chosen =
    QInputDialog::getItem(&window, title, "Derived variable:", names, 0, false, &ok);
  return ok ? chosen : QString();
}

void WindowMenus::editDerivedVariable()
{
  const std::string name = chooseDerivedVariable("Edit Derived Variable").toStdString();
  const auto& derived = window.derivedVariables();
  const auto found = std::find_if(
    derived.begin(), derived.end(), [&name](const DerivedVariable& v) { return v.name == name; });
  if (found == derived.end())
    return;
  DerivedVariableDialog dialog(&window,
                               "Edit Derived Variable",
                               variableNames(*window.project()),
                               kindsIn(window.project()),
                               seriesOf(window),
                               *found,
                               [this, name](const DerivedVariable& variable)
                               {
                                 QString error;
                                 window.editDerivedVariable(name, variable, error);
                                 return error;
                               });
  dialog.exec();
}

void WindowMenus::removeDerivedVariable()
{
  const QString name = chooseDerivedVariable("Remove Derived Variable");
  if (name.isEmpty())
    return;
  QString error;
  if (!window.removeDerivedVariable(name.toStdString(), error))
    QMessageBox::warning(&window, "Remove Derived Variable", error);
}

void WindowMenus::openStudyFile()
{
  // A table of runs, or the table of a study folder or Cinema database, which opens the study.
  const QString path = QFileDialog::getOpenFileName(
    &window, "Open Study", {}, "Tables of runs (*.csv *.tsv *.txt);;All files (*)");
  if (!path.isEmpty())
    openStudy(path);
}

void WindowMenus::openStudyFolder()
{
  const QString folder = QFileDialog::getExistingDirectory(&window, "Open Study Folder");
  if (!folder.isEmpty())
    openStudy(folder);
}

void WindowMenus::listRecent(QMenu& menu)
{
  menu.clear();
  for (const QString& path : StudySessions().recent())
    menu.addAction(path, this, [this, path] { openStudy(path); });
  if (menu.isEmpty())
    menu.addAction("No studies opened yet")->setEnabled(false);
}

void WindowMenus::openStudy(const QString& path)
{
  QString error;
  if (!window.openStudy(path, error))
  {
    QMessageBox::critical(&window, "Cannot open the study", error);
    return;
  }
  window.preloadImages();
}

void WindowMenus::openSettings()
{
  const QString path =
    QFileDialog::getOpenFileName(&window, "Load Settings", {}, "Settings (*.xml)");
  QString error;
  if (path.isEmpty())
    return;
  if (!window.loadSettings(path, error))
    QMessageBox::critical(&window, "Cannot load the settings", error);
  else
    window.showMessage("settings loaded from " + path);
}

void WindowMenus::saveSettingsAs()
{
  const QString path =
    QFileDialog::getSaveFileName(&window, "Save Settings", "settings.xml", "Settings (*.xml)");
  QString error;
  if (path.isEmpty())
    return;
  if (!window.saveSettings(path, error))
    QMessageBox::critical(&window, "Cannot save the settings", error);
  else
    window.showMessage("settings saved to " + path);
}

void WindowMenus::exportCasesAs(bool fullPrecision)
{
  const QString path =
    QFileDialog::getSaveFileName(&window, "Export Cases", "cases.csv", "CSV (*.csv)");
  QString error;
  if (path.isEmpty())
    return;
  if (!window.exportCases(path, fullPrecision, error))
    QMessageBox::critical(&window, "Cannot export the cases", error);
  else
    window.showMessage("exported " + QString::number(window.shownCases()) + " cases to " + path);
}

} // namespace explorer
