#include "SettingsPanel.h"

#include "ExplorerView.h"
#include "PropertyEditors.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "datapipeline/RangeFilter.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableWidget>
#include <QToolBox>
#include <QVBoxLayout>

namespace explorer
{

struct SettingsPanel::Impl
{
  PropertyEditors editors;
  DataPipelineManager& pipeline;
  SignalConnectionCollection connections;

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
      const auto show = [this, variable, on, min, max]
      {
        const QSignalBlocker blocker(on);
        on->setChecked(pipeline.isFilterEnabled(variable));
        if (const auto filter = boost::dynamic_pointer_cast<RangeFilter>(pipeline.filter(variable)))
        {
          min->setText(numberText(filter->range().first));
          max->setText(numberText(filter->range().second));
        }
      };
      const auto apply = [this, variable, on, min, max, show]
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
        pipeline.setRangeFilter(variable, low, high);
        pipeline.setFilterEnabled(variable, on->isChecked());
      };
      QObject::connect(on, &QCheckBox::toggled, apply);
      QObject::connect(min, &QLineEdit::editingFinished, apply);
      QObject::connect(max, &QLineEdit::editingFinished, apply);
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
