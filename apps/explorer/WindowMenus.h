#pragma once

#include <QObject>

class QAction;
class QActionGroup;
class QMenu;
class QString;

namespace explorer
{

class ExplorerView;
class ExplorerWindow;

/// The window's menus and tool bar: File (open a study from a file, a folder or the recent ones,
/// load and save settings, export the cases, locate the study's files), Edit (undo, redo),
/// Variables (new, edit and remove derived variables) and View (the chart's mouse modes and Fit to
/// Data, also in the tool bar), with the dialogs they open.
class WindowMenus : public QObject
{
public:
  explicit WindowMenus(ExplorerWindow& window);

  /// The chart actions apply to `view`, enabled when it is a chart.
  void applyChartActionsTo(ExplorerView* view, bool chart);

private:
  void openStudyFile();
  void openStudyFolder();
  void listRecent(QMenu& menu);
  void openStudy(const QString& path);
  void openSettings();
  void saveSettingsAs();
  void exportCasesAs(bool fullPrecision);
  void locateFiles();
  void newDerivedVariable();
  void editDerivedVariable();
  void removeDerivedVariable();
  // Asks which derived variable; empty when there is none or the user cancels.
  QString chooseDerivedVariable(const QString& title);

  ExplorerWindow& window;
  ExplorerView* current = nullptr;
  QActionGroup* mouseModes = nullptr;
  QAction* fitAction = nullptr;
};

} // namespace explorer
