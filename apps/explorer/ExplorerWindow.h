#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "derived/DerivedVariables.h"

#include <QMainWindow>

#include <memory>
#include <string>
#include <vector>

class DataPipelineManager;
class Project;
struct PathRebase;
class QAction;

namespace explorer
{

class ExplorerView;
class FileLocator;
class MasterSelection;
class VariableRoles;

/// The explorer's main window: one view of each registered kind over one study, linked by one
/// master selection, with the settings panel at the side.
class ExplorerWindow : public QMainWindow
{
  Q_OBJECT

public:
  explicit ExplorerWindow(QWidget* parent = nullptr);
  ~ExplorerWindow() override;

  /// Shows a study (an empty project shows empty views). The previous study's views go.
  void showStudy(std::shared_ptr<const Project> project);
  /// Reads the study at `path` (a folder or a file, in any format the explorer reads) with its
  /// progress over the window and shows it; when the window remembers between runs, the study
  /// joins the recent ones and comes back with the settings it was last closed with. Returns
  /// false and sets `error` when it cannot be read: the study shown stays then.
  bool openStudy(const QString& path, QString& error);
  std::shared_ptr<const Project> project() const;

  /// Each returns false and sets `error` to a message for the user when it fails; nothing the
  /// user had is changed then.
  bool loadSettings(const QString& path, QString& error);
  bool saveSettings(const QString& path, QString& error) const;
  /// The settings of the study shown as a document, as saveSettings writes it.
  QString settingsDocument() const;

  /// The variables the user computed, in the order they are computed (each may use the ones
  /// before it). They are variables of project() like any other.
  const DerivedVariables& derivedVariables() const;
  /// Adds a derived variable, changes the one named `name` (settings naming it follow a new
  /// name) or removes it; each is one undo step. The views are made again over the new study,
  /// with their settings, the selection and the undo history as they were. Each returns false
  /// and sets `error` ("ratio: a value is expected after '^' (column 7)") when the study cannot
  /// have it; nothing changes then. A variable that settings still name is not removed.
  bool addDerivedVariable(const DerivedVariable& variable, QString& error);
  bool editDerivedVariable(const std::string& name,
                           const DerivedVariable& variable,
                           QString& error);
  bool removeDerivedVariable(const std::string& name, QString& error);
  /// Exports the shown cases: in full precision, or with six significant digits through VTK.
  bool exportCases(const QString& path, bool fullPrecision, QString& error) const;

  MasterSelection& selection() const;
  /// The cases of the study and the range filters on them.
  DataPipelineManager& pipeline() const;
  /// The views, in registry order.
  std::vector<ExplorerView*> views() const;
  /// The first view of a kind, or null.
  template<typename View>
  View* view() const
  {
    for (ExplorerView* candidate : views())
      if (auto* found = dynamic_cast<View*>(candidate))
        return found;
    return nullptr;
  }
  /// The view the chart actions (mouse modes, Fit to Data) apply to: the last chart focused.
  ExplorerView* currentView() const;
  /// The number of cases the filters let through.
  int shownCases() const;

  /// Where the study's files are found on this machine.
  FileLocator& files() const;
  /// Whether each variable is an input or an output.
  VariableRoles& roles() const;

  /// How File > Open rewrites the paths of Cinema databases written elsewhere.
  void setPathRebases(std::vector<PathRebase> rebases);
  const std::vector<PathRebase>& pathRebases() const;
  /// Plots Y against X in the scatter plot, as one undo step.
  void plotInScatter(const WeakPtr<Variable>& x, const WeakPtr<Variable>& y);
  /// A message in the status bar for a while.
  void showMessage(const QString& message);

  /// Takes the size, place and pane widths the window had when it was last closed (in the
  /// application's settings), and keeps them for next time when it closes; keeps the studies
  /// opened and the settings each was left with too (see StudySessions).
  void rememberBetweenRuns();

  /// Decodes every image of the study in the background, with a progress bar, so that the
  /// image matrix finds them ready.
  void preloadImages();

protected:
  void closeEvent(QCloseEvent* event) override;

private:
  void restoreSplitters();
  // Makes the views over `project`; the views before go.
  void makeViews(std::shared_ptr<const Project> project);
  // Shows the same study with other derived variables: new views, the selection kept.
  void remakeViews(std::shared_ptr<const Project> project, DerivedVariables derived);
  // Applies a settings document and the derived variables it names; throws, changing nothing,
  // when it cannot.
  void applyStudyState(const QString& xml, const std::string& source);
  // Applies a settings document as one undo step named `step`.
  bool changeStudy(const QString& xml,
                   const std::string& source,
                   const QString& step,
                   QString& error);
  // Keeps the settings of the study shown for the next time it is opened.
  void keepSession();
  void setCurrentView(ExplorerView* view);
  void showSelectionCount(std::size_t selected);
  void showShownCount();
  void showMissingFiles();

  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
