#include "ExplorerWindow.h"

#include "CaseKeys.h"
#include "CaseOrder.h"
#include "ExplorerView.h"
#include "FileLocator.h"
#include "SettingsFile.h"
#include "SettingsPanel.h"
#include "ViewRegistry.h"
#include "analyzer_common/DeleteSignaler.h"
#include "analyzer_common/SelectionModel.h"
#include "analyzer_common/UndoStack.h"
#include "datamanagement/CinemaReader.h"
#include "datamanagement/Project.h"
#include "datamanagement/StudyReader.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/DataViewVisitorAbstract.h"
#include "export/FullPrecisionCSVExporter.h"
#include "export/SurrogateModelCSVExporter.h"
#include "formats/StudyFormats.h"
#include "images/ImageCache.h"
#include "signals/SignalConnectionCollection.h"
#include "vtkFilePathColumns.h"

#include "properties/PropertyAbstract.h"

#include <QImage>

#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QProgressDialog>
#include <QScrollArea>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextStream>
#include <QThread>
#include <QTimer>
#include <QToolBar>
#include <QUndoStack>
#include <boost/make_shared.hpp>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <atomic>
#include <exception>

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
  boost::shared_ptr<SelectionModel> selection = boost::make_shared<SelectionModel>();
  ImageCache cache;
  std::vector<boost::shared_ptr<ExplorerView>> views;
  ExplorerView* current = nullptr;
  QSplitter* splitter = nullptr;
  QDockWidget* dock = nullptr;
  QActionGroup* mouseModes = nullptr;
  QAction* fitAction = nullptr;
  QProgressBar* progress = nullptr;
  QLabel* selectionCount = nullptr;
  QLabel* shownCount = nullptr;
  QLabel* filesNote = nullptr;
  // Connections to the study shown, made again for each study.
  SignalConnectionCollection studyConnections;
  SignalConnectionCollection connections;
  std::shared_ptr<ImageFileLoaderInterface> preloaded;
  QThread* preloader = nullptr;
  std::shared_ptr<std::atomic<bool>> stopPreloading = std::make_shared<std::atomic<bool>>(false);
  // The owner of the window's own undo steps (loading settings): they do nothing once it is gone.
  DeleteSignaler undoOwner;
  std::vector<PathRebase> rebases;
  bool remembersLayout = false;

  void stopPreloader()
  {
    if (preloader)
    {
      stopPreloading->store(true);
      preloader->wait();
      delete preloader;
      preloader = nullptr;
    }
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
  d->progress = new QProgressBar();
  d->progress->setMaximumWidth(200);
  d->progress->hide();
  d->selectionCount = new QLabel();
  d->selectionCount->setObjectName("selectionCount");
  d->shownCount = new QLabel();
  d->shownCount->setObjectName("shownCount");
  d->filesNote = new QLabel();
  d->filesNote->setObjectName("filesNote");
  d->filesNote->setStyleSheet("color: #a00000");
  for (QLabel* label : { d->selectionCount, d->shownCount, d->filesNote })
    label->setContentsMargins(10, 0, 10, 0);
  statusBar()->addPermanentWidget(d->filesNote);
  statusBar()->addPermanentWidget(d->shownCount);
  statusBar()->addPermanentWidget(d->selectionCount);
  statusBar()->addPermanentWidget(d->progress);
  d->connections.add(d->selection->connectSignalSelectionChanged(
    [this](const std::set<unsigned long long>& ids) { showSelectionCount(ids.size()); }));
  createActions();
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
  d->stopPreloader();
  d->clearViews();
}

void ExplorerWindow::createActions()
{
  QMenu* file = menuBar()->addMenu("&File");
  file->addAction("&Open Study...", this, &ExplorerWindow::openStudy, QKeySequence::Open);
  file->addAction("&Load Settings...", this, &ExplorerWindow::openSettings);
  file->addAction("&Save Settings...", this, &ExplorerWindow::saveSettingsAs, QKeySequence::Save);
  file->addSeparator();
  file->addAction("Export Cases (full precision)...", this, [this] { exportCasesAs(true); });
  file->addAction("Export Cases (6 digits)...", this, [this] { exportCasesAs(false); });
  file->addSeparator();
  file->addAction("Locate &Files...", this, &ExplorerWindow::locateFiles);
  file->addSeparator();
  file->addAction("&Quit", this, &QWidget::close, QKeySequence::Quit);

  QMenu* edit = menuBar()->addMenu("&Edit");
  QUndoStack& undo = UndoStack().qUndoStack();
  QAction* undoAction = undo.createUndoAction(this, "&Undo");
  undoAction->setShortcut(QKeySequence::Undo);
  QAction* redoAction = undo.createRedoAction(this, "&Redo");
  redoAction->setShortcut(QKeySequence::Redo);
  edit->addAction(undoAction);
  edit->addAction(redoAction);

  QMenu* viewMenu = menuBar()->addMenu("&View");
  QToolBar* tools = addToolBar("Chart");
  tools->setObjectName("chartTools");
  d->mouseModes = new QActionGroup(this);
  const std::pair<const char*, DataViewInterface::MouseMode> modes[] = {
    { "Select", DataViewInterface::Select },
    { "Pan", DataViewInterface::Pan },
    { "Zoom", DataViewInterface::Zoom }
  };
  for (const auto& [name, mode] : modes)
  {
    QAction* action = d->mouseModes->addAction(name);
    action->setCheckable(true);
    action->setChecked(mode == DataViewInterface::Select);
    connect(action,
            &QAction::triggered,
            this,
            [this, mode = mode]
            {
              if (d->current)
                d->current->mouseMode()->setValue(mode);
            });
    viewMenu->addAction(action);
    tools->addAction(action);
  }
  d->fitAction = new QAction("Fit to Data", this);
  connect(d->fitAction,
          &QAction::triggered,
          this,
          [this]
          {
            if (d->current)
              d->current->fitToData();
          });
  viewMenu->addSeparator();
  viewMenu->addAction(d->fitAction);
  tools->addAction(d->fitAction);
}

void ExplorerWindow::setCurrentView(ExplorerView* view)
{
  d->current = view;
  ChartActionsVisitor visitor;
  if (view)
    view->accept(visitor);
  d->mouseModes->setEnabled(visitor.chart);
  d->fitAction->setEnabled(visitor.chart);
  if (visitor.chart)
  {
    for (QAction* action : d->mouseModes->actions())
      action->setChecked(d->mouseModes->actions().indexOf(action) == view->mouseMode()->value());
  }
}

ExplorerView* ExplorerWindow::currentView() const
{
  return d->current;
}

void ExplorerWindow::showStudy(std::shared_ptr<const Project> project)
{
  d->stopPreloader();
  d->clearViews();
  UndoStack().clear();
  d->selection->setSelection({});
  d->project = project ? std::move(project) : Project::project();
  Project::setProject(d->project);
  d->pipeline = std::make_shared<DataPipelineManager>(d->project);
  d->files = std::make_shared<FileLocator>();
  const auto keys = std::make_shared<CaseKeys>(*d->project);
  const ViewContext context{ d->project,
                             d->pipeline,
                             d->selection,
                             &d->cache,
                             keys,
                             d->files,
                             std::make_shared<CaseOrder>(keys) };
  // What the views set up for themselves is where the history starts, not a step in it.
  const UndoStack::SuspendUndoRecording startingUp;
  while (d->splitter->count() > 0)
    delete d->splitter->widget(0);
  auto* side = new QSplitter(Qt::Vertical);
  QTabWidget* tabs = nullptr;
  int tabsStretch = 0;
  QList<int> mainSizes;
  QList<int> sideSizes;
  for (const ViewKind& kind : viewKinds())
  {
    d->views.push_back(kind.create(context));
    QWidget* widget = d->views.back()->widget();
    if (kind.area == ViewArea::Main)
    {
      d->splitter->addWidget(widget);
      mainSizes.append(kind.stretch);
    }
    else if (kind.area == ViewArea::Side)
    {
      side->addWidget(widget);
      sideSizes.append(kind.stretch);
    }
    else
    {
      if (!tabs)
      {
        tabs = new QTabWidget();
        tabs->setObjectName("viewTabs");
        side->addWidget(tabs);
      }
      tabs->addTab(widget, d->views.back()->title());
      tabsStretch = std::max(tabsStretch, kind.stretch);
    }
  }
  if (tabs)
    sideSizes.append(tabsStretch);
  d->splitter->addWidget(side);
  // Sizes in proportion to the kinds' stretches: the main area takes about half the width.
  const auto scaled = [](QList<int> stretches, int total)
  {
    int sum = 0;
    for (int stretch : stretches)
      sum += stretch;
    for (int& stretch : stretches)
      stretch = total * stretch / std::max(sum, 1);
    return stretches;
  };
  d->splitter->setSizes(scaled(mainSizes, 650) << 600);
  d->splitter->show();
  side->setSizes(scaled(sideSizes, 830));
  if (d->remembersLayout)
    restoreSplitters();

  auto* panel = new SettingsPanel(
    d->project, *d->pipeline, views(), [this](const QString& message) { report(message); });
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
  showSelectionCount(d->selection->getSelections().size());
  showShownCount();
  showMissingFiles();
  d->studyConnections.add(d->pipeline->connectSignalPipelineChanged([this] { showShownCount(); }));
  d->studyConnections.add(
    d->files->locations()->connectSignalPropertyChanged([this] { showMissingFiles(); }));
}

void ExplorerWindow::rememberLayout()
{
  d->remembersLayout = true;
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
  if (d->remembersLayout)
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
  d->selectionCount->setText(QString("%1 of %2 cases selected")
                               .arg(QLocale().toString(static_cast<qulonglong>(selected)))
                               .arg(QLocale().toString(static_cast<qulonglong>(
                                 d->project ? d->project->numberOfRecords() : 0))));
}

void ExplorerWindow::showShownCount()
{
  const auto all = static_cast<qulonglong>(d->project->numberOfRecords());
  const auto shown = static_cast<qulonglong>(shownCases());
  d->shownCount->setText(shown == all ? QString("%1 cases shown").arg(QLocale().toString(all))
                                      : QString("%1 of %2 cases shown")
                                          .arg(QLocale().toString(shown))
                                          .arg(QLocale().toString(all)));
}

void ExplorerWindow::showMissingFiles()
{
  std::size_t missing = 0;
  std::size_t urls = 0;
  d->files->countMissing(*d->project, missing, urls);
  const std::size_t all = d->project->auxFiles().size();
  QString note;
  if (missing > 0)
    note = QString("%1 of %2 files not found%3")
             .arg(missing)
             .arg(all)
             .arg(urls > 0 ? QString(" (%1 are URLs): File > Locate Files...").arg(urls)
                           : QString(": File > Locate Files..."));
  d->filesNote->setText(note);
  d->filesNote->setVisible(!note.isEmpty());
}

FileLocator& ExplorerWindow::files() const
{
  return *d->files;
}

void ExplorerWindow::locateFiles()
{
  FileLocator::Location proposed;
  const QString studyFolder = QString::fromStdString(d->project->folder());
  QFileInfo study(studyFolder);
  if (!d->files->proposeLocation(
        *d->project, study.absoluteDir().absolutePath().toStdString(), proposed))
  {
    QMessageBox::information(this, "Locate Files", "Every file of this study is found.");
    return;
  }
  bool ok = false;
  const QString prefix =
    QInputDialog::getText(this,
                          "Locate Files",
                          "Paths that start with this are read from the folder chosen next:",
                          QLineEdit::Normal,
                          QString::fromStdString(proposed.prefix),
                          &ok);
  if (!ok || prefix.isEmpty())
    return;
  const QString folder = QFileDialog::getExistingDirectory(
    this,
    "Folder of the files starting with " + prefix,
    proposed.folder.empty() ? studyFolder : QString::fromStdString(proposed.folder));
  if (folder.isEmpty())
    return;
  d->files->addLocation({ prefix.toStdString(), folder.toStdString() });
  report(QString("files starting with %1 are read from %2").arg(prefix, folder));
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
  try
  {
    SettingsFile::load(QString::fromUtf8(file.readAll()),
                       path.toStdString(),
                       { d->files->serializer() },
                       views(),
                       *d->pipeline,
                       *d->project,
                       d->undoOwner);
  }
  catch (const std::exception& e)
  {
    error = QString::fromStdString(e.what());
    return false;
  }
  return true;
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
  stream << SettingsFile::write({ d->files->serializer() }, views(), *d->pipeline);
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
  // The shown cases with the paths of their files, as the study wrote them.
  auto output = vtkSmartPointer<vtkFilePathColumns>::New();
  output->SetInputConnection(d->pipeline->output()->GetOutputPort());
  output->SetProject(d->project);
  output->Update();
  if (fullPrecision)
  {
    try
    {
      FullPrecisionCSVExporter().writeCSVFile(*output->GetOutput(), path.toStdString());
    }
    catch (const std::exception& e)
    {
      error = QString::fromStdString(e.what());
      return false;
    }
    return true;
  }
  if (!SurrogateModelCSVExporter().writeCSVFile(output, path.toStdString()))
  {
    error = "cannot export to \"" + path + "\": the file cannot be written";
    return false;
  }
  return true;
}

SelectionModel& ExplorerWindow::selection() const
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
  d->stopPreloader();
  std::vector<std::string> paths;
  for (const auto& file : d->project->auxFiles())
    paths.push_back(file.lock().filePath());
  if (paths.empty())
    return;
  d->preloaded = d->cache.imageLoader();
  d->stopPreloading = std::make_shared<std::atomic<bool>>(false);
  d->progress->setRange(0, static_cast<int>(paths.size()));
  d->progress->setValue(0);
  d->progress->setFormat("images %v/%m");
  d->progress->show();
  auto loader = d->preloaded;
  auto stop = d->stopPreloading;
  QProgressBar* bar = d->progress;
  d->preloader = QThread::create(
    [paths, loader, stop, bar]
    {
      // Decoded images stay in memory while the client holds them: a study of many images is
      // preloaded only up to a budget, the rest load when shown.
      constexpr qint64 budget = 512LL * 1024 * 1024;
      qint64 held = 0;
      for (std::size_t i = 0; i < paths.size() && !stop->load() && held < budget; ++i)
      {
        held += loader->image(paths[i])->sizeInBytes();
        QMetaObject::invokeMethod(
          bar, "setValue", Qt::QueuedConnection, Q_ARG(int, static_cast<int>(i + 1)));
      }
    });
  connect(d->preloader, &QThread::finished, d->progress, &QWidget::hide);
  d->preloader->start();
}

void ExplorerWindow::report(const QString& message)
{
  statusBar()->showMessage(message, 8000);
}

void ExplorerWindow::openStudy()
{
  const QString folder = QFileDialog::getExistingDirectory(this, "Open Study");
  if (folder.isEmpty())
    return;
  try
  {
    showStudy(readStudyWithProgress(folder.toStdString(), d->rebases, this));
    preloadImages();
  }
  catch (const std::exception& e)
  {
    QMessageBox::critical(this, "Cannot open the study", QString::fromStdString(e.what()));
  }
}

void ExplorerWindow::openSettings()
{
  const QString path = QFileDialog::getOpenFileName(this, "Load Settings", {}, "Settings (*.xml)");
  QString error;
  if (path.isEmpty())
    return;
  if (!loadSettings(path, error))
    QMessageBox::critical(this, "Cannot load the settings", error);
  else
    report("settings loaded from " + path);
}

void ExplorerWindow::saveSettingsAs()
{
  const QString path =
    QFileDialog::getSaveFileName(this, "Save Settings", "settings.xml", "Settings (*.xml)");
  QString error;
  if (path.isEmpty())
    return;
  if (!saveSettings(path, error))
    QMessageBox::critical(this, "Cannot save the settings", error);
  else
    report("settings saved to " + path);
}

void ExplorerWindow::exportCasesAs(bool fullPrecision)
{
  const QString path =
    QFileDialog::getSaveFileName(this, "Export Cases", "cases.csv", "CSV (*.csv)");
  QString error;
  if (path.isEmpty())
    return;
  if (!exportCases(path, fullPrecision, error))
    QMessageBox::critical(this, "Cannot export the cases", error);
  else
    report("exported " + QString::number(shownCases()) + " cases to " + path);
}

void ExplorerWindow::setPathRebases(std::vector<PathRebase> rebases)
{
  d->rebases = std::move(rebases);
}

std::shared_ptr<const Project> readStudyWithProgress(const std::string& folder,
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
        project = readAnyStudy(folder, { rebases });
      }
      catch (...)
      {
        failure = std::current_exception();
      }
    });
  QProgressDialog progress(
    "Reading " + QString::fromStdString(folder) + "...", QString(), 0, 0, parent);
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
