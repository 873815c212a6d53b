#include "SettingsPanel.h"

#include "ExplorerView.h"
#include "FilterEdits.h"
#include "PropertyEditors.h"
#include "analyzer_common/DeleteSignaler.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableWidget>
#include <QToolBox>
#include <QVBoxLayout>

namespace explorer
{

namespace
{

// Lets Undo and Redo pass a text field by to the program's actions.
class UndoKeysToProgram : public QObject
{
public:
  using QObject::QObject;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override
  {
    if (event->type() == QEvent::ShortcutOverride)
    {
      auto* key = static_cast<QKeyEvent*>(event);
      if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo))
      {
        // Not taken by the field, so the window's shortcut runs.
        event->ignore();
        return true;
      }
    }
    return QObject::eventFilter(watched, event);
  }
};

} // namespace

struct SettingsPanel::Impl
{
  PropertyEditors editors;
  DataPipelineManager& pipeline;
  SignalConnectionCollection connections;
  // The owner of the filters' undo steps: they do nothing once the panel is gone.
  DeleteSignaler undoOwner;

  Impl(std::shared_ptr<const Project> project, DataPipelineManager& pipeline, Report report)
    : editors(std::move(project), std::move(report))
    , pipeline(pipeline)
  {
  }

  QWidget* filtersEditor()
  {
    auto* table = new QTableWidget();
    table->setObjectName("filtersTable");
    table->setColumnCount(4);
    table->setHorizontalHeaderLabels({ "Variable", "On", "Minimum", "Maximum" });
    table->verticalHeader()->hide();
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    std::vector<WeakPtr<Variable>> numeric;
    for (const auto& variable : editors.project().variables())
      if (variable.lock().nature() != Variable::Text)
        numeric.push_back(variable);
    table->setRowCount(static_cast<int>(numeric.size()));
    for (int row = 0; row < static_cast<int>(numeric.size()); ++row)
    {
      const auto variable = numeric[static_cast<std::size_t>(row)];
      const auto range = variable.lock().range();
      auto* name = new QTableWidgetItem(QString::fromStdString(variable.lock().name()));
      name->setFlags(Qt::ItemIsEnabled);
      table->setItem(row, 0, name);
      auto* on = new QCheckBox();
      auto* min = new QLineEdit(numberText(range.first));
      auto* max = new QLineEdit(numberText(range.second));
      table->setCellWidget(row, 1, on);
      table->setCellWidget(row, 2, min);
      table->setCellWidget(row, 3, max);
      // Without a filter (at the start, or once its creation is undone) the editors offer the
      // variable's whole range.
      const auto show = [this, variable, on, min, max, range]
      {
        const FilterState state = filterState(pipeline, variable);
        const QSignalBlocker blocker(on);
        on->setChecked(state.exists && state.enabled);
        min->setText(numberText(state.exists ? state.min : range.first));
        max->setText(numberText(state.exists ? state.max : range.second));
      };
      // Editing a bound switches the filter on: a bound typed is a bound meant.
      const auto apply = [this, variable, on, min, max, show, range](bool switchOn)
      {
        double low = 0;
        double high = 0;
        if (!parseNumber(min->text(), low) || !parseNumber(max->text(), high) || low > high)
        {
          editors.reportProblem("the filter on " + QString::fromStdString(variable.lock().name()) +
                                " needs a minimum not above its maximum");
          show();
          return;
        }
        const FilterState before = filterState(pipeline, variable);
        const bool boundsChanged = !before.exists ? low != range.first || high != range.second
                                                  : low != before.min || high != before.max;
        if (switchOn && !boundsChanged)
          return;
        changeFilter(
          pipeline, variable, { true, low, high, on->isChecked() || switchOn }, undoOwner);
      };
      QObject::connect(on, &QCheckBox::toggled, [apply] { apply(false); });
      QObject::connect(min, &QLineEdit::editingFinished, [apply] { apply(true); });
      QObject::connect(max, &QLineEdit::editingFinished, [apply] { apply(true); });
      connections.add(pipeline.connectSignalPipelineChanged(show));
    }
    return table;
  }
};

SettingsPanel::SettingsPanel(std::shared_ptr<const Project> project,
                             DataPipelineManager& pipeline,
                             const std::vector<ExplorerView*>& views,
                             Report report,
                             QWidget* parent)
  : QWidget(parent)
  , d(std::make_unique<Impl>(std::move(project), pipeline, std::move(report)))
{
  setObjectName("settingsPanel");
  auto* layout = new QVBoxLayout(this);
  auto* sections = new QToolBox();
  layout->addWidget(sections);
  for (ExplorerView* view : views)
  {
    for (const SettingsSection& section : view->settingsSections(d->editors))
      sections->addItem(section.widget, section.title);
  }
  sections->addItem(d->filtersEditor(), "Range filters");
  // Undo and Redo are the program's in its fields too: a field's own undo of its text would
  // leave the setting it edits as it was.
  auto* undoKeys = new UndoKeysToProgram(this);
  for (QWidget* field : findChildren<QLineEdit*>())
    field->installEventFilter(undoKeys);
}

SettingsPanel::~SettingsPanel()
{
  // The editors' handlers refer to d: the editors go first, so that none runs (a line edit
  // reports the end of its editing when it loses focus) once d is gone.
  qDeleteAll(findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
  d->connections.clear();
  d->editors.clear();
}

} // namespace explorer
