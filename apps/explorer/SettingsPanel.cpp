#include "SettingsPanel.h"

#include "ImageMatrixView.h"
#include "ScatterPlotView.h"
#include "charts/AxisDetailsInterface.h"
#include "colorlegend/ColorLegend.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "datapipeline/RangeFilter.h"
#include "images/ImageMatrixViewProperties.h"
#include "properties/PropertyAbstract.h"
#include "signals/SignalConnectionCollection.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QSlider>
#include <QSpinBox>
#include <QTableWidget>
#include <QToolBox>
#include <QVBoxLayout>

#include <charconv>
#include <cmath>
#include <set>

namespace explorer
{

namespace
{

QString numberText(double value)
{
  if (std::isnan(value))
    return {};
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return QString::fromLatin1(buffer, static_cast<int>(result.ptr - buffer));
}

bool parseNumber(const QString& text, double& value)
{
  bool ok = false;
  value = text.trimmed().toDouble(&ok);
  return ok;
}

} // namespace

struct SettingsPanel::Impl
{
  std::shared_ptr<const Project> project;
  DataPipelineManager& pipeline;
  Report report;
  SignalConnectionCollection connections;

  Impl(std::shared_ptr<const Project> project, DataPipelineManager& pipeline, Report report)
    : project(std::move(project))
    , pipeline(pipeline)
    , report(std::move(report))
  {
  }

  // Runs an edit; a refused value is reported and the editor is brought back by `restore`.
  template<typename F>
  void edit(F&& change, const std::function<void()>& restore)
  {
    try
    {
      change();
    }
    catch (const std::exception& e)
    {
      report(QString::fromStdString(e.what()));
      restore();
    }
  }

  QComboBox* variableChooser(boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> property,
                             bool numericOnly,
                             bool allowNone)
  {
    auto* combo = new QComboBox();
    std::vector<WeakPtr<Variable>> choices;
    if (allowNone)
    {
      combo->addItem("(none)");
      choices.emplace_back();
    }
    for (const auto& variable : project->variables())
    {
      if (numericOnly && variable.lock().nature() == Variable::Text)
        continue;
      combo->addItem(QString::fromStdString(variable.lock().name()));
      choices.push_back(variable);
    }
    const auto show = [combo, choices, property]
    {
      const auto found = std::find(choices.begin(), choices.end(), property->value());
      const QSignalBlocker blocker(combo);
      combo->setCurrentIndex(found == choices.end() ? -1
                                                    : static_cast<int>(found - choices.begin()));
    };
    show();
    connections.add(property->connectSignalPropertyChanged(show));
    QObject::connect(combo,
                     QOverload<int>::of(&QComboBox::activated),
                     [this, combo, choices, property, show](int i)
                     {
                       if (i >= 0 && i < static_cast<int>(choices.size()))
                         edit([&] { property->setValue(choices[static_cast<std::size_t>(i)]); },
                              show);
                     });
    return combo;
  }

  QLineEdit* numberEditor(boost::shared_ptr<plexa::PropertyAbstract<double>> property)
  {
    auto* line = new QLineEdit();
    const auto show = [line, property] { line->setText(numberText(property->value())); };
    show();
    connections.add(property->connectSignalPropertyChanged(show));
    QObject::connect(line,
                     &QLineEdit::editingFinished,
                     [this, line, property, show]
                     {
                       double value = 0;
                       if (!parseNumber(line->text(), value))
                       {
                         report("\"" + line->text() + "\" is not a number");
                         show();
                         return;
                       }
                       edit([&] { property->setValue(value); }, show);
                     });
    return line;
  }

  QCheckBox* checkBox(const QString& text,
                      boost::shared_ptr<plexa::PropertyAbstract<bool>> property)
  {
    auto* box = new QCheckBox(text);
    const auto show = [box, property]
    {
      const QSignalBlocker blocker(box);
      box->setChecked(property->value());
    };
    show();
    connections.add(property->connectSignalPropertyChanged(show));
    QObject::connect(box,
                     &QCheckBox::toggled,
                     [this, property, show](bool on)
                     { edit([&] { property->setValue(on); }, show); });
    return box;
  }

  template<typename E>
  QComboBox* enumChooser(boost::shared_ptr<plexa::PropertyAbstract<E>> property,
                         const std::vector<std::pair<QString, E>>& choices)
  {
    auto* combo = new QComboBox();
    for (const auto& choice : choices)
      combo->addItem(choice.first);
    const auto show = [combo, choices, property]
    {
      const QSignalBlocker blocker(combo);
      for (std::size_t i = 0; i < choices.size(); ++i)
        if (choices[i].second == property->value())
          combo->setCurrentIndex(static_cast<int>(i));
    };
    show();
    connections.add(property->connectSignalPropertyChanged(show));
    QObject::connect(
      combo,
      QOverload<int>::of(&QComboBox::activated),
      [this, choices, property, show](int i)
      { edit([&] { property->setValue(choices[static_cast<std::size_t>(i)].second); }, show); });
    return combo;
  }

  QWidget* axisEditor(const QString& title, AxisDetailsInterface& axis)
  {
    auto* box = new QGroupBox(title);
    auto* form = new QFormLayout(box);
    form->addRow("Minimum", numberEditor(axis.min()));
    form->addRow("Maximum", numberEditor(axis.max()));
    form->addRow(checkBox("Custom grid spacing", axis.useCustomGridSpacing()));
    form->addRow("Grid spacing", numberEditor(axis.gridSpacing()));
    return box;
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
    for (const auto& variable : project->variables())
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
          report("the filter on " + QString::fromStdString(variable.lock().name()) +
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

  QWidget* legendEditor(ColorLegend& legend)
  {
    auto* box = new QWidget();
    auto* form = new QFormLayout(box);
    form->addRow(checkBox("Show colour legend", legend.show()));
    form->addRow("Range",
                 enumChooser<ColorLegend::RangeType>(
                   legend.rangeType(),
                   { { "Automatic", ColorLegend::Auto }, { "Custom", ColorLegend::Custom } }));
    auto* min = new QLineEdit();
    auto* max = new QLineEdit();
    const auto range = legend.range();
    const auto show = [min, max, range]
    {
      min->setText(numberText(range->value().min));
      max->setText(numberText(range->value().max));
    };
    show();
    connections.add(range->connectSignalPropertyChanged(show));
    const auto apply = [this, min, max, range, show]
    {
      double low = 0;
      double high = 0;
      if (!parseNumber(min->text(), low) || !parseNumber(max->text(), high))
      {
        report("the colour range needs two numbers");
        show();
        return;
      }
      edit([&] { range->setValue({ low, high }); }, show);
    };
    QObject::connect(min, &QLineEdit::editingFinished, apply);
    QObject::connect(max, &QLineEdit::editingFinished, apply);
    form->addRow("Custom minimum", min);
    form->addRow("Custom maximum", max);
    auto* labels = new QSpinBox();
    labels->setRange(1, 100);
    const auto count = legend.numLabels();
    const auto showCount = [labels, count]
    {
      const QSignalBlocker blocker(labels);
      labels->setValue(count->value());
    };
    showCount();
    connections.add(count->connectSignalPropertyChanged(showCount));
    QObject::connect(labels,
                     QOverload<int>::of(&QSpinBox::valueChanged),
                     [this, count, showCount](int value)
                     { edit([&] { count->setValue(static_cast<short>(value)); }, showCount); });
    form->addRow("Number of labels", labels);
    return box;
  }

  QListWidget* checkList(const std::vector<std::string>& all,
                         std::function<bool(const std::string&)> isChecked,
                         std::function<void(const std::vector<std::string>&)> apply)
  {
    auto* list = new QListWidget();
    list->setMaximumHeight(110);
    for (const auto& entry : all)
    {
      auto* item = new QListWidgetItem(QString::fromStdString(entry), list);
      item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
      item->setCheckState(isChecked(entry) ? Qt::Checked : Qt::Unchecked);
    }
    QObject::connect(list,
                     &QListWidget::itemChanged,
                     [list, apply](QListWidgetItem*)
                     {
                       std::vector<std::string> checked;
                       for (int i = 0; i < list->count(); ++i)
                         if (list->item(i)->checkState() == Qt::Checked)
                           checked.push_back(list->item(i)->text().toStdString());
                       apply(checked);
                     });
    return list;
  }

  QWidget* matrixEditor(ImageMatrixView& view)
  {
    using Matrix = ImageMatrixViewProperties;
    const auto p = view.properties();
    auto* box = new QWidget();
    auto* form = new QFormLayout(box);
    const std::vector<std::pair<QString, Matrix::RowColumnDimensionBy>> axes = {
      { "Variable", Matrix::ByVariable }, { "Tag", Matrix::ByTag }
    };
    form->addRow("Rows by", enumChooser<Matrix::RowColumnDimensionBy>(p->dimensionRowsBy(), axes));
    form->addRow("Row variable", variableChooser(p->rowVar(), false, true));
    form->addRow("Columns by",
                 enumChooser<Matrix::RowColumnDimensionBy>(p->dimensionColumnsBy(), axes));
    form->addRow("Column variable", variableChooser(p->columnVar(), false, true));
    form->addRow("Pages",
                 enumChooser<Matrix::PageDimensionBy>(p->dimensionPagesBy(),
                                                      { { "None", Matrix::NoPages },
                                                        { "By variable", Matrix::PageByVariable },
                                                        { "By tag", Matrix::PageByTag } }));
    form->addRow("Page variable", variableChooser(p->pageVar(), false, true));
    auto* page = new QLineEdit();
    const auto showPage = [page, p]
    { page->setText(QString::fromStdString(p->pageValue()->value().toString())); };
    showPage();
    connections.add(p->pageValue()->connectSignalPropertyChanged(showPage));
    QObject::connect(page,
                     &QLineEdit::editingFinished,
                     [this, page, p, showPage]
                     {
                       double number = 0;
                       const Variant value = parseNumber(page->text(), number)
                                               ? Variant(number)
                                               : Variant(page->text().toStdString());
                       edit([&] { p->pageValue()->setValue(value); }, showPage);
                     });
    form->addRow("Page value", page);
    form->addRow(checkBox("Show labels", p->showLabels()));

    std::vector<std::string> names;
    for (const auto& variable : project->variables())
      names.push_back(variable.lock().name());
    form->addRow("Label variables",
                 checkList(
                   names,
                   [p](const std::string& name)
                   {
                     for (const auto& v : p->variablesInLabel()->value())
                       if (v.lock().name() == name)
                         return true;
                     return false;
                   },
                   [this, p](const std::vector<std::string>& checked)
                   {
                     std::vector<WeakPtr<Variable>> chosen;
                     for (const auto& name : checked)
                       chosen.push_back(project->variable(name));
                     edit([&] { p->variablesInLabel()->setValue(chosen); }, [] {});
                   }));
    const auto tagsToShow = p->tagsToShow()->value();
    form->addRow(
      "Tags to show",
      checkList(
        project->tags(),
        [tagsToShow](const std::string& tag)
        { return std::find(tagsToShow.begin(), tagsToShow.end(), tag) != tagsToShow.end(); },
        [this, p](const std::vector<std::string>& checked)
        { edit([&] { p->tagsToShow()->setValue(checked); }, [] {}); }));
    auto* zoom = new QSlider(Qt::Horizontal);
    zoom->setRange(0, 100);
    const auto showZoom = [zoom, p]
    {
      const QSignalBlocker blocker(zoom);
      zoom->setValue(static_cast<int>(std::min<unsigned long long>(p->zoom()->value(), 100)));
    };
    showZoom();
    connections.add(p->zoom()->connectSignalPropertyChanged(showZoom));
    QObject::connect(
      zoom,
      &QSlider::valueChanged,
      [this, p, showZoom](int value)
      { edit([&] { p->zoom()->setValue(static_cast<unsigned long long>(value)); }, showZoom); });
    form->addRow("Zoom", zoom);
    return box;
  }
};

SettingsPanel::SettingsPanel(std::shared_ptr<const Project> project,
                             DataPipelineManager& pipeline,
                             ScatterPlotView& scatter,
                             ImageMatrixView& images,
                             Report report,
                             QWidget* parent)
  : QWidget(parent)
  , d(std::make_unique<Impl>(std::move(project), pipeline, std::move(report)))
{
  setObjectName("settingsPanel");
  auto* layout = new QVBoxLayout(this);
  auto* sections = new QToolBox();
  layout->addWidget(sections);

  auto* chart = new QWidget();
  auto* chartForm = new QFormLayout(chart);
  chartForm->addRow("X", d->variableChooser(scatter.xVariable(), true, false));
  chartForm->addRow("Y", d->variableChooser(scatter.yVariable(), true, false));
  chartForm->addRow("Colour", d->variableChooser(scatter.colorVariable(), true, true));
  chartForm->addRow(d->axisEditor("X axis", scatter.xAxis()));
  chartForm->addRow(d->axisEditor("Y axis", scatter.yAxis()));
  sections->addItem(chart, "Scatter plot");
  sections->addItem(d->legendEditor(scatter.colorLegend()), "Colour legend");
  sections->addItem(d->filtersEditor(), "Range filters");
  sections->addItem(d->matrixEditor(images), "Image matrix");
}

SettingsPanel::~SettingsPanel()
{
  d->connections.clear();
}

} // namespace explorer
