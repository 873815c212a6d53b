#include "ExplorerWindow.h"

#include "CaseKeys.h"
#include "CaseOrder.h"
#include "CasesExport.h"
#include "ExplorerView.h"
#include "FileLocator.h"
#include "ImagePreloader.h"
#include "MasterSelection.h"
#include "SettingsFile.h"
#include "SettingsPanel.h"
#include "StudyFiles.h"
#include "StudyHistory.h"
#include "StudyReading.h"
#include "StudySessions.h"
#include "VariableRoles.h"
#include "ViewArrangement.h"
#include "ViewRegistry.h"
#include "WindowMenus.h"
#include "WindowStatus.h"
#include "analyzer_common/DeleteSignaler.h"
#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/DataViewVisitorAbstract.h"
#include "dataviews/PxWaitCursor.h"
#include "derived/Expression.h"
#include "images/ImageCache.h"
#include "signals/SignalConnectionCollection.h"
#include "views/scatter/ScatterPlotView.h"

#include "properties/PropertyAbstract.h"

#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QFileInfo>
#include <QScrollArea>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextStream>
#include <QTimer>
#include <boost/make_shared.hpp>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <exception>
#include <set>

namespace explorer
{

namespace
{

// The views the chart actions (mouse modes, Fit to Data) apply to.
class ChartActionsVisitor : public DataViewVisitorAbstract
{
public:
  using DataViewVisitorAbstract::visit;
  void visit(boost::shared_ptr<ScatterPlot2DInterface>) override { chart = true; }
  bool chart = false;
};

// The derived variable of that name in `derived`, or the end with `error` saying there is none.
DerivedVariables::iterator derivedNamed(DerivedVariables& derived,
                                        const std::string& name,
                                        QString& error)
{
  const auto found = std::find_if(
    derived.begin(), derived.end(), [&name](const DerivedVariable& v) { return v.name == name; });
  if (found == derived.end())
    error = QString::fromStdString("there is no derived variable named \"" + name + "\"");
  return found;
}

bool isChart(ExplorerView& view)
{
  ChartActionsVisitor visitor;
  view.accept(visitor);
  return visitor.chart;
}

} // namespace

struct ExplorerWindow::Impl
{
  // Declared before the views, so that it outlives them.
  std::shared_ptr<const Project> project;
  std::shared_ptr<DataPipelineManager> pipeline;
  std::shared_ptr<FileLocator> files;
  MissingFiles missingFiles;
  std::shared_ptr<VariableRoles> roles;
  boost::shared_ptr<MasterSelection> selection = boost::make_shared<MasterSelection>();
  ImageCache cache;
  std::vector<boost::shared_ptr<ExplorerView>> views;
  ExplorerView* current = nullptr;
  QSplitter* splitter = nullptr;
  QDockWidget* dock = nullptr;
  WindowMenus* menus = nullptr;
  std::unique_ptr<WindowStatus> status;
  // Connections to the study shown, made again for each study.
  SignalConnectionCollection studyConnections;
  SignalConnectionCollection connections;
  ImagePreloader preloader;
  // The owner of the window's own undo steps that reach into the views (loading settings): they
  // do nothing once the views they reach into are gone.
  std::unique_ptr<DeleteSignaler> viewsOwner;
  // The owner of the steps that change the study (derived variables), which outlive the views.
  DeleteSignaler undoOwner;
  DerivedVariables derived;
  // The figures of the runs' series that derived variables used, kept while the study is shown.
  SeriesFeatureColumns seriesFeatures;
  std::unique_ptr<StudyHistory> history;
  std::vector<PathRebase> rebases;
  // What the window keeps between runs; null when it keeps nothing (screenshots, tests).
  std::unique_ptr<StudySessions> sessions;
  // The path the study shown was opened from, empty for one shown as it was read elsewhere.
  QString studyPath;

  // The settings of the study every view shares, as the settings file holds them.
  SettingsFile::StudySettings studySettings() const
  {
    return { files->serializer(), roles->serializer() };
  }

  void clearViews()
  {
    studyConnections.clear();
    current = nullptr;
    // Hidden first: a tab taking the place of a deleted one would be shown, and its view would
    // catch up on the study just before it goes.
    splitter->hide();
    delete dock;
    dock = nullptr;
    views.clear();
    pipeline.reset();
  }
};

ExplorerWindow::ExplorerWindow(QWidget* parent)
  : QMainWindow(parent)
  , d(std::make_unique<Impl>())
{
  setObjectName("explorerWindow");
  setWindowTitle("Explorer");
  d->splitter = new QSplitter(Qt::Horizontal, this);
  setCentralWidget(d->splitter);
  d->status = std::make_unique<WindowStatus>(*statusBar());
  d->connections.add(d->selection->connectCasesChanged(
    [this](const MasterSelection::SharedCases& ids) { showSelectionCount(ids->size()); }));
  d->menus = new WindowMenus(*this);
  d->history = std::make_unique<StudyHistory>([this] { return settingsDocument(); },
                                              [this](const QString& xml)
                                              {
                                                try
                                                {
                                                  applyStudyState(xml, "the undo history");
                                                }
                                                catch (const std::exception& e)
                                                {
                                                  showMessage("This step cannot be restored: " +
                                                              QString::fromStdString(e.what()));
                                                }
                                              });
  connect(qApp,
          &QApplication::focusChanged,
          this,
          [this](QWidget*, QWidget* now)
          {
            // The chart actions stay with the last chart that had the focus: a click in the
            // table or the settings panel does not take them away.
            for (ExplorerView* view : views())
            {
              if (now && (now == view->widget() || view->widget()->isAncestorOf(now)) &&
                  isChart(*view))
                setCurrentView(view);
            }
          });
  showStudy(Project::project());
}

ExplorerWindow::~ExplorerWindow()
{
  d->connections.clear();
  d->preloader.stop();
  d->clearViews();
}

void ExplorerWindow::setCurrentView(ExplorerView* view)
{
  d->current = view;
  d->menus->applyChartActionsTo(view, view && isChart(*view));
}

ExplorerView* ExplorerWindow::currentView() const
{
  return d->current;
}

bool ExplorerWindow::openStudy(const QString& path, QString& error)
{
  std::shared_ptr<const Project> study;
  try
  {
    study = readStudyWithProgress(path.toStdString(), d->rebases, this);
  }
  catch (const std::exception& e)
  {
    error = QString::fromStdString(e.what());
    return false;
  }
  showStudy(std::move(study));
  d->studyPath = path;
  if (d->sessions)
  {
    d->sessions->remember(path);
    const QString kept = d->sessions->settingsFile(path);
    QString why;
    if (QFileInfo::exists(kept) && !loadSettings(kept, why))
      showMessage("The settings this study was closed with are not restored: " + why);
    // The study comes back as it was left: that is where its history starts.
    UndoStack().clear();
    d->history->restart();
  }
  return true;
}

void ExplorerWindow::keepSession()
{
  if (!d->sessions || d->studyPath.isEmpty() || !d->pipeline)
    return;
  const QString file = d->sessions->settingsFile(d->studyPath);
  QDir().mkpath(QFileInfo(file).absolutePath());
  // A session not kept costs the user the views' settings next time, never data: no dialog
  // stands in the way of closing.
  QString error;
  if (!saveSettings(file, error))
    qWarning("explorer: %s", qUtf8Printable(error));
}

void ExplorerWindow::plotInScatter(const WeakPtr<Variable>& x, const WeakPtr<Variable>& y)
{
  auto* scatter = view<ScatterPlotView>();
  if (!scatter || x.lock().isNull() || y.lock().isNull())
    return;
  const UndoStack::Macro step(
    QString::fromStdString("Plot " + y.lock().name() + " against " + x.lock().name()));
  scatter->xVariable()->setValue(x);
  scatter->yVariable()->setValue(y);
}

void ExplorerWindow::showStudy(std::shared_ptr<const Project> project)
{
  keepSession();
  d->studyPath.clear();
  d->preloader.stop();
  d->clearViews();
  UndoStack().clear();
  d->selection->setSelection({});
  d->derived.clear();
  d->seriesFeatures.clear();
  makeViews(project ? std::move(project) : Project::project());
  d->history->restart();
  // The views fit themselves once on screen (queued by makeViews, so first): the history starts
  // from what they then show, unless a step was taken meanwhile.
  QTimer::singleShot(0,
                     this,
                     [this]
                     {
                       if (UndoStack().count() == 0)
                         d->history->restart();
                     });
}

void ExplorerWindow::remakeViews(std::shared_ptr<const Project> project, DerivedVariables derived)
{
  const QByteArray mainPanes = d->splitter->saveState();
  auto* side = qobject_cast<QSplitter*>(d->splitter->widget(d->splitter->count() - 1));
  const QByteArray sidePanes = side ? side->saveState() : QByteArray();
  std::vector<int> tabs;
  for (const auto* tabWidget : d->splitter->findChildren<QTabWidget*>())
    tabs.push_back(tabWidget->currentIndex());
  const MasterSelection::SharedCases selected = d->selection->cases();
  // Cleared while no view listens, and given back to the new views.
  d->clearViews();
  d->selection->setCases({});
  d->derived = std::move(derived);
  makeViews(std::move(project));
  d->splitter->restoreState(mainPanes);
  if (auto* newSide = qobject_cast<QSplitter*>(d->splitter->widget(d->splitter->count() - 1)))
    newSide->restoreState(sidePanes);
  // The same views in the same places: the tabs brought forward stay forward.
  const auto tabWidgets = d->splitter->findChildren<QTabWidget*>();
  for (int i = 0; i < tabWidgets.size() && std::size_t(i) < tabs.size(); ++i)
    tabWidgets[i]->setCurrentIndex(tabs[std::size_t(i)]);
  d->selection->setCases(*selected);
  d->history->viewsRemade();
}

void ExplorerWindow::makeViews(std::shared_ptr<const Project> project)
{
  d->clearViews();
  d->viewsOwner = std::make_unique<DeleteSignaler>();
  d->project = std::move(project);
  Project::setProject(d->project);
  d->pipeline = std::make_shared<DataPipelineManager>(d->project);
  d->files = std::make_shared<FileLocator>();
  d->roles = std::make_shared<VariableRoles>(d->project);
  const auto keys = std::make_shared<CaseKeys>(*d->project);
  const ViewContext context{ d->project,
                             d->pipeline,
                             d->selection,
                             &d->cache,
                             keys,
                             d->files,
                             std::make_shared<CaseOrder>(keys),
                             d->roles,
                             [this](const WeakPtr<Variable>& x, const WeakPtr<Variable>& y)
                             { plotInScatter(x, y); } };
  // What the views set up for themselves is where the history starts, not a step in it.
  const UndoStack::SuspendUndoRecording startingUp;
  for (const ViewKind& kind : viewKinds())
    d->views.push_back(kind.create(context));
  arrangeViews(*d->splitter, viewKinds(), d->views);
  if (d->sessions)
    restoreSplitters();

  auto* panel = new SettingsPanel(
    d->project, *d->pipeline, views(), [this](const QString& message) { showMessage(message); });
  auto* scroll = new QScrollArea();
  scroll->setWidget(panel);
  scroll->setWidgetResizable(true);
  d->dock = new QDockWidget("Settings", this);
  d->dock->setObjectName("settingsDock");
  d->dock->setWidget(scroll);
  addDockWidget(Qt::RightDockWidgetArea, d->dock);

  setCurrentView(d->views.empty() ? nullptr : d->views.front().get());
  // Once the window is on screen the views can fit themselves to the data.
  QTimer::singleShot(0,
                     this,
                     [this]
                     {
                       for (ExplorerView* view : views())
                         view->refresh();
                     });
  const QString folder = QString::fromStdString(d->project->folder());
  setWindowTitle(folder.isEmpty() ? "Explorer" : "Explorer - " + QFileInfo(folder).fileName());
  statusBar()->showMessage(QString("%1 cases, %2 variables")
                             .arg(d->project->numberOfRecords())
                             .arg(d->project->variables().size()));
  showSelectionCount(d->selection->size());
  showShownCount();
  showMissingFiles();
  d->studyConnections.add(d->pipeline->connectSignalPipelineChanged([this] { showShownCount(); }));
  d->studyConnections.add(
    d->files->locations()->connectSignalPropertyChanged([this] { showMissingFiles(); }));
}

void ExplorerWindow::rememberBetweenRuns()
{
  d->sessions = std::make_unique<StudySessions>();
  const QSettings settings;
  if (!restoreGeometry(settings.value("window/geometry").toByteArray()))
    resize(1600, 1000);
  restoreState(settings.value("window/state").toByteArray());
  restoreSplitters();
}

void ExplorerWindow::restoreSplitters()
{
  const QSettings settings;
  d->splitter->restoreState(settings.value("window/mainPanes").toByteArray());
  if (auto* side = qobject_cast<QSplitter*>(d->splitter->widget(d->splitter->count() - 1)))
    side->restoreState(settings.value("window/sidePanes").toByteArray());
}

void ExplorerWindow::closeEvent(QCloseEvent* event)
{
  keepSession();
  if (d->sessions)
  {
    QSettings settings;
    settings.setValue("window/geometry", saveGeometry());
    settings.setValue("window/state", saveState());
    settings.setValue("window/mainPanes", d->splitter->saveState());
    if (auto* side = qobject_cast<QSplitter*>(d->splitter->widget(d->splitter->count() - 1)))
      settings.setValue("window/sidePanes", side->saveState());
  }
  QMainWindow::closeEvent(event);
}

void ExplorerWindow::showSelectionCount(std::size_t selected)
{
  d->status->showSelected(selected, d->project ? d->project->numberOfRecords() : 0);
}

void ExplorerWindow::showShownCount()
{
  d->status->showShown(static_cast<std::size_t>(shownCases()), d->project->numberOfRecords());
}

void ExplorerWindow::showMissingFiles()
{
  const MissingFiles::Count count = d->missingFiles.of(*d->files, *d->project);
  d->status->showMissingFiles(count.missing, count.urls, d->project->auxFiles().size());
}

VariableRoles& ExplorerWindow::roles() const
{
  return *d->roles;
}

FileLocator& ExplorerWindow::files() const
{
  return *d->files;
}

std::shared_ptr<const Project> ExplorerWindow::project() const
{
  return d->project;
}

bool ExplorerWindow::loadSettings(const QString& path, QString& error)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
  {
    error = path + ": " + file.errorString();
    return false;
  }
  const QString xml = QString::fromUtf8(file.readAll());
  try
  {
    // Settings with other derived variables change the study: one step of the study's history.
    if (SettingsFile::derivedVariablesOf(xml, path.toStdString()) != d->derived)
      return changeStudy(xml, path.toStdString(), "Load Settings", error);
    SettingsFile::load(xml,
                       path.toStdString(),
                       d->studySettings(),
                       views(),
                       *d->pipeline,
                       *d->project,
                       *d->viewsOwner);
  }
  catch (const std::exception& e)
  {
    error = QString::fromStdString(e.what());
    return false;
  }
  return true;
}

QString ExplorerWindow::settingsDocument() const
{
  if (!d->pipeline)
    return {};
  return SettingsFile::write(d->studySettings(), views(), *d->pipeline, d->derived);
}

const DerivedVariables& ExplorerWindow::derivedVariables() const
{
  return d->derived;
}

void ExplorerWindow::applyStudyState(const QString& xml, const std::string& source)
{
  const DerivedVariables wanted = SettingsFile::derivedVariablesOf(xml, source);
  if (wanted == d->derived)
  {
    SettingsFile::apply(xml, source, d->studySettings(), views(), *d->pipeline, *d->project);
    return;
  }
  std::shared_ptr<const Project> changed;
  try
  {
    const PxWaitCursor waiting;
    changed = withDerivedVariables(
      *d->project,
      d->derived,
      wanted,
      [this](const std::vector<SeriesFeature>& features)
      { return d->seriesFeatures.columns(*d->project, d->files.get(), features); });
  }
  catch (const ExpressionError& e)
  {
    throw SettingsError(source.empty() ? e.what() : source + ": derived variable " + e.what());
  }
  const QString before = settingsDocument();
  const std::shared_ptr<const Project> previous = d->project;
  DerivedVariables present = d->derived;
  remakeViews(std::move(changed), wanted);
  try
  {
    SettingsFile::apply(xml, source, d->studySettings(), views(), *d->pipeline, *d->project);
  }
  catch (const std::exception&)
  {
    // Back to the study as it was: the same project, and its settings.
    remakeViews(previous, std::move(present));
    SettingsFile::apply(
      before, "the settings before", d->studySettings(), views(), *d->pipeline, *d->project);
    throw;
  }
}

bool ExplorerWindow::changeStudy(const QString& xml,
                                 const std::string& source,
                                 const QString& step,
                                 QString& error)
{
  try
  {
    applyStudyState(xml, source);
  }
  catch (const std::exception& e)
  {
    error = QString::fromStdString(e.what());
    return false;
  }
  d->history->pushStudyStep(step, d->undoOwner);
  return true;
}

bool ExplorerWindow::addDerivedVariable(const DerivedVariable& variable, QString& error)
{
  DerivedVariables wanted = d->derived;
  wanted.push_back(variable);
  return changeStudy(SettingsFile::withDerivedVariables(settingsDocument(), wanted),
                     {},
                     QString::fromStdString("New Derived Variable " + variable.name),
                     error);
}

bool ExplorerWindow::editDerivedVariable(const std::string& name,
                                         const DerivedVariable& variable,
                                         QString& error)
{
  DerivedVariables wanted = d->derived;
  const auto edited = derivedNamed(wanted, name, error);
  if (edited == wanted.end())
    return false;
  if (*edited == variable)
    return true;
  *edited = variable;
  QString xml = settingsDocument();
  if (variable.name != name)
    xml = SettingsFile::withVariableRenamed(xml, views(), name, variable.name);
  return changeStudy(SettingsFile::withDerivedVariables(xml, wanted),
                     {},
                     QString::fromStdString("Edit Derived Variable " + name),
                     error);
}

bool ExplorerWindow::removeDerivedVariable(const std::string& name, QString& error)
{
  DerivedVariables wanted = d->derived;
  const auto removed = derivedNamed(wanted, name, error);
  if (removed == wanted.end())
    return false;
  wanted.erase(removed);
  const QString xml = settingsDocument();
  const std::vector<std::string> uses = SettingsFile::usesOf(xml, views(), name);
  if (!uses.empty())
  {
    std::string where;
    for (std::size_t i = 0; i < uses.size(); ++i)
      where += (i == 0 ? "" : i + 1 == uses.size() ? " and " : ", ") + uses[i];
    error = QString::fromStdString("\"" + name + "\" is still used by " + where +
                                   "; choose another variable there first");
    return false;
  }
  return changeStudy(SettingsFile::withDerivedVariables(xml, wanted),
                     {},
                     QString::fromStdString("Remove Derived Variable " + name),
                     error);
}

bool ExplorerWindow::saveSettings(const QString& path, QString& error) const
{
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
  {
    error = path + ": " + file.errorString();
    return false;
  }
  QTextStream stream(&file);
  stream.setCodec("UTF-8");
  stream << settingsDocument();
  stream.flush();
  if (file.error() != QFile::NoError)
  {
    error = path + ": " + file.errorString();
    return false;
  }
  return true;
}

bool ExplorerWindow::exportCases(const QString& path, bool fullPrecision, QString& error) const
{
  return exportShownCases(*d->pipeline, d->project, d->roles, path, fullPrecision, error);
}

MasterSelection& ExplorerWindow::selection() const
{
  return *d->selection;
}

DataPipelineManager& ExplorerWindow::pipeline() const
{
  return *d->pipeline;
}

std::vector<ExplorerView*> ExplorerWindow::views() const
{
  std::vector<ExplorerView*> list;
  for (const auto& view : d->views)
    list.push_back(view.get());
  return list;
}

int ExplorerWindow::shownCases() const
{
  d->pipeline->output()->Update();
  return static_cast<int>(d->pipeline->output()->GetOutput()->GetNumberOfRows());
}

void ExplorerWindow::preloadImages()
{
  // The image files, where they are found: other files are not decoded, and a file not found
  // would be asked for again by every view.
  std::vector<std::string> paths;
  for (const auto& handle : d->project->auxFiles())
  {
    const std::string path = d->files->locate(handle.lock().filePath());
    if (studyfiles::isImage(path) && QFileInfo::exists(QString::fromStdString(path)))
      paths.push_back(path);
  }
  d->preloader.start(std::move(paths), d->cache.imageLoader(), d->status->progress());
}

void ExplorerWindow::showMessage(const QString& message)
{
  statusBar()->showMessage(message, 8000);
}

void ExplorerWindow::setPathRebases(std::vector<PathRebase> rebases)
{
  d->rebases = std::move(rebases);
}

const std::vector<PathRebase>& ExplorerWindow::pathRebases() const
{
  return d->rebases;
}

} // namespace explorer
