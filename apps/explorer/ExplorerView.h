#pragma once

#include "MasterSelection.h"

// The interface every view of the explorer implements, and what a view is built from.

#include "views/ViewKinds.h"

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "dataviews/DataViewAbstract.h"
#include "dataviews/DataViewVisitorInterface.h"
#include "signals/SignalConnectionCollection.h"

#include <QPointer>
#include <QString>
#include <boost/enable_shared_from_this.hpp>
#include <boost/pointer_cast.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class DataPipelineManager;
class SerializerInterface;
class ImageCache;
class Project;
class QTableView;
class QWidget;

namespace explorer
{

class CaseKeys;
class CaseOrder;
class FileLocator;
class VariableRoles;
class PropertyEditors;

/// What every view is built from: the study, its pipeline (the cases the filters let through),
/// the master selection and the shared image cache. A view follows the master selection and the
/// pipeline's changes by itself, from its constructor on.
struct ViewContext
{
  std::shared_ptr<const Project> project;
  std::shared_ptr<DataPipelineManager> pipeline;
  boost::shared_ptr<MasterSelection> selection;
  ImageCache* images = nullptr;
  /// The study's case keys, for plots that carry keys instead of case ids.
  std::shared_ptr<const CaseKeys> keys;
  /// Where the study's files are on this machine; image views read through it.
  std::shared_ptr<const FileLocator> files;
  /// The order the user sees the cases in, set by the cases table when sorted.
  std::shared_ptr<CaseOrder> order;
  /// Whether each variable is an input or an output, as the study or the user said.
  std::shared_ptr<VariableRoles> roles;
  /// Plots Y against X in the scatter plot, as one undo step.
  std::function<void(const WeakPtr<Variable>& x, const WeakPtr<Variable>& y)> plotInScatter;
};

/// Brings the first selected item of a table into sight once control returns to the event loop
/// (when every view has taken in the selection), unless the table has the focus: a selection made
/// in the table itself never makes it jump.
/// `firstRow`, when given, names the first selected row instead of Qt's item selection.
void scrollToSelectionLater(QTableView& table, std::function<int()> firstRow = {});

/// Draws a view at once, or once control returns to the event loop however many changes asked
/// for it meanwhile; a draw in between makes the queued one unnecessary.
class QueuedDraw
{
public:
  /// Draws with `draw` from now on; a queued draw is dropped once `widget` is gone.
  void attach(QWidget& widget, std::function<void()> draw);
  void now();
  void later();

private:
  QPointer<QWidget> widget;
  std::function<void()> draw;
  bool pending = false;
};

/// One section of the settings panel: a titled widget of editors bound to a view's properties.
struct SettingsSection
{
  QString title;
  QWidget* widget = nullptr;
};

/// A view of the explorer: a data view with a widget, a title, a section of the settings panel
/// and an element in the settings file (written and read by its serializer, under domName()).
///
/// The view owns its widget and its connections to the study: suspending the view blocks them,
/// resuming it unblocks them; the widget goes after the view's own parts. A view derives from
/// ViewOfKind<its kind>, which answers visitors.
class ExplorerView
  : public DataViewAbstract
  , public boost::enable_shared_from_this<ExplorerView>
{
public:
  using DataViewAbstract::DataViewAbstract;
  ~ExplorerView() override;

  QWidget* widget() const;
  void suspend() final;
  void resume() final;
  /// The title of the view's pane and settings ("Scatter plot").
  virtual QString title() const = 0;
  /// A short name for file names ("scatter").
  virtual std::string shortName() const = 0;
  /// Calls the visitor's overload of this view's kind.
  virtual void accept(DataViewVisitorInterface& visitor) = 0;
  /// The settings panel's sections for this view, built from the generic editors, which own the
  /// connections to the properties. A view without settings returns none.
  virtual std::vector<SettingsSection> settingsSections(PropertyEditors& editors) = 0;
  /// What the view shows of the master selection, for the summary: e.g. "2 highlighted points".
  virtual std::string selectionSummary() const = 0;
  /// Fits a chart to the shown cases; views that are not charts ignore it.
  virtual void fitToData() {}
  /// Whether the view is still reading what it shows in the background.
  virtual bool working() const { return false; }

  /// The elements of the view's saved settings whose text names a variable, so that settings
  /// naming a variable the study lacks can be refused before anything is applied.
  const std::vector<std::string>& variableElements() const { return variableElementNames; }

  using DataViewAbstract::mouseMode;

protected:
  /// The view's widget, owned by the view from now on.
  void setWidget(QWidget* widget);
  /// The view's connections to the study, the selection and its settings.
  SignalConnectionCollection& connections() { return viewConnections; }
  /// Run after the view's connections are blocked, and after they are unblocked: a resumed
  /// view takes in what changed meanwhile.
  virtual void suspendParts() {}
  virtual void resumeParts() {}

  /// Adds a setting to the view's saved element. A value it refuses while settings are read
  /// back is reported with the setting's path and the value: "ScatterPlot2D/XMin: 'abc' is not
  /// a number", where `expected` ("a number") says what a value must be.
  void saveSetting(boost::shared_ptr<SerializerInterface> setting,
                   const std::string& expected = "a valid value");
  /// Saves a variable setting under `element`, by name, and records the element.
  void saveVariableSetting(const std::string& element,
                           boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> property,
                           const Project& project);

private:
  QPointer<QWidget> ownWidget;
  SignalConnectionCollection viewConnections;
  std::vector<std::string> variableElementNames;
};

/// A view of a kind: answers visitors with that kind's overload.
template<typename Kind>
class ViewOfKind
  : public Kind
  , public ExplorerView
{
public:
  using ExplorerView::ExplorerView;

  void accept(DataViewVisitorInterface& visitor) override
  {
    visitKind(visitor, boost::dynamic_pointer_cast<Kind>(shared_from_this()));
  }
};

} // namespace explorer
