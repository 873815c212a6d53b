#include "Screenshots.h"

#include "ExplorerView.h"
#include "ExplorerWindow.h"
#include "MasterSelection.h"
#include "datamanagement/Project.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QPixmap>
#include <QTabWidget>
#include <QThread>

#include <vector>

namespace explorer
{

namespace
{

void settle()
{
  for (int i = 0; i < 5; ++i)
  {
    QApplication::processEvents();
    QThread::msleep(20);
  }
}

} // namespace

bool writeScreenshots(ExplorerWindow& window,
                      const QString& folder,
                      std::ostream& summary,
                      QString& error)
{
  QDir dir(folder);
  if (!dir.mkpath("."))
  {
    error = "cannot create the folder " + folder;
    return false;
  }
  window.resize(1600, 1000);
  window.show();
  settle();
  for (ExplorerView* view : window.views())
    view->refresh();
  settle();

  std::vector<QString> written;
  const auto save = [&](const QPixmap& picture, const QString& name)
  {
    const QString path = dir.filePath(name);
    if (!picture.save(path, "PNG"))
    {
      error = "cannot write " + path;
      return false;
    }
    written.push_back(path);
    return true;
  };
  if (!save(window.grab(), "window.png"))
    return false;
  for (ExplorerView* view : window.views())
  {
    // A view on a tab that is not shown is brought forward first, so that it is laid out.
    QWidget* widget = view->widget();
    for (QWidget* parent = widget->parentWidget(); parent; parent = parent->parentWidget())
    {
      if (auto* tabs = qobject_cast<QTabWidget*>(parent))
      {
        tabs->setCurrentWidget(widget);
        settle();
        view->refresh();
        break;
      }
    }
    // What a view reads in the background is in the picture; a view stuck reading is shown as
    // it is after a minute.
    QElapsedTimer waiting;
    waiting.start();
    while (view->working() && waiting.elapsed() < 60000)
      QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    settle();
    if (!save(widget->grab(), QString::fromStdString(view->shortName()) + ".png"))
      return false;
  }
  for (const auto& [name, fullPrecision] :
       { std::make_pair("cases.csv", true), std::make_pair("cases-6digits.csv", false) })
  {
    if (!window.exportCases(dir.filePath(name), fullPrecision, error))
      return false;
    written.push_back(dir.filePath(name));
  }
  if (!window.saveSettings(dir.filePath("settings.xml"), error))
    return false;
  written.push_back(dir.filePath("settings.xml"));

  const auto project = window.project();
  const auto selected = window.selection().getSelections();
  summary << "study: " << (project->folder().empty() ? "(none)" : project->folder()) << " ("
          << project->numberOfRecords() << " cases, " << project->variables().size()
          << " variables, " << project->auxFiles().size() << " images)\n";
  summary << "shown: " << window.shownCases() << " cases\n";
  summary << "selection: " << selected.size() << " cases";
  if (!selected.empty())
  {
    summary << " (";
    bool first = true;
    for (unsigned long long id : selected)
    {
      summary << (first ? "" : ",") << id;
      first = false;
    }
    summary << ")";
  }
  summary << "\n";
  for (ExplorerView* view : window.views())
    summary << view->shortName() << ": " << view->selectionSummary() << "\n";
  summary << "files:";
  for (const QString& path : written)
    summary << " " << path.toStdString();
  summary << "\n";
  return true;
}

} // namespace explorer
