#include "PropertyEditors.h"

#include "StudyFiles.h"

#include "analyzer_common/UndoStack.h"
#include "charts/AxisDetailsInterface.h"
#include "colorlegend/ColorLegend.h"
#include "datamanagement/Project.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace explorer
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

PropertyEditors::PropertyEditors(std::shared_ptr<const Project> project, Report report)
  : studyProject(std::move(project))
  , report(std::move(report))
{
}

PropertyEditors::~PropertyEditors() = default;

void PropertyEditors::edit(const std::function<void()>& change,
                           const std::function<void()>& restore) const
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

void PropertyEditors::followEdits(QWidget* editor, const QString& step, std::function<void()> run)
{
  followUps[editor] = { step, std::move(run) };
  QObject::connect(editor, &QObject::destroyed, [this, editor] { followUps.erase(editor); });
}

void PropertyEditors::editWith(QWidget* editor,
                               const std::function<void()>& change,
                               const std::function<void()>& restore) const
{
  const auto found = followUps.find(editor);
  if (found == followUps.end())
  {
    edit(change, restore);
    return;
  }
  const UndoStack::Macro step(found->second.step);
  bool accepted = true;
  edit(change,
       [&]
       {
         accepted = false;
         restore();
       });
  if (accepted)
    edit(found->second.run, restore);
}

void PropertyEditors::follow(const plexa::PropertyItemInterface& property,
                             const std::function<void()>& show)
{
  connections.add(property.connectSignalPropertyChanged(show));
}

QComboBox* PropertyEditors::variableChooser(boost::shared_ptr<VariableProperty> property,
                                            bool numericOnly,
                                            const QString& none)
{
  auto* combo = new QComboBox();
  std::vector<WeakPtr<Variable>> choices;
  if (!none.isEmpty())
  {
    combo->addItem(none);
    choices.emplace_back();
  }
  for (const auto& variable : studyProject->variables())
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
    combo->setCurrentIndex(found == choices.end() ? -1 : static_cast<int>(found - choices.begin()));
  };
  show();
  follow(*property, show);
  QObject::connect(
    combo,
    QOverload<int>::of(&QComboBox::activated),
    [this, combo, choices, property, show](int i)
    {
      if (i >= 0 && i < static_cast<int>(choices.size()))
        editWith(
          combo, [&] { property->setValue(choices[static_cast<std::size_t>(i)]); }, show);
    });
  return combo;
}

QComboBox* PropertyEditors::tagChooser(
  boost::shared_ptr<plexa::PropertyAbstract<std::string>> property,
  const QString& none)
{
  std::vector<std::string> tags = studyfiles::imageTags(project());
  for (const auto& tag : project().tags())
    if (std::find(tags.begin(), tags.end(), tag) == tags.end())
      tags.push_back(tag);
  std::vector<std::pair<QString, std::string>> choices{ { none, std::string() } };
  for (const auto& tag : tags)
    choices.emplace_back(QString::fromStdString(tag), tag);
  return enumChooser(property, choices);
}

QLineEdit* PropertyEditors::numberEditor(
  boost::shared_ptr<plexa::PropertyAbstract<double>> property)
{
  auto* line = new QLineEdit();
  // Wide enough for the longest shortest form of a double, so that the whole number shows.
  line->setMinimumWidth(line->fontMetrics().horizontalAdvance("-0.30000000000000004") + 16);
  const auto show = [line, property]
  {
    line->setText(numberText(property->value()));
    line->setCursorPosition(0);
  };
  show();
  follow(*property, show);
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

QCheckBox* PropertyEditors::checkBox(const QString& text,
                                     boost::shared_ptr<plexa::PropertyAbstract<bool>> property)
{
  auto* box = new QCheckBox(text);
  const auto show = [box, property]
  {
    const QSignalBlocker blocker(box);
    box->setChecked(property->value());
  };
  show();
  follow(*property, show);
  QObject::connect(box,
                   &QCheckBox::toggled,
                   [this, property, show](bool on)
                   { edit([&] { property->setValue(on); }, show); });
  return box;
}

QListWidget* PropertyEditors::checkList(const std::vector<std::string>& entries,
                                        std::function<bool(const std::string&)> isChecked,
                                        std::function<void(const std::vector<std::string>&)> apply,
                                        bool reorderable,
                                        const plexa::PropertyItemInterface* followed)
{
  auto* list = new QListWidget();
  list->setMaximumHeight(110);
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsUserCheckable;
  if (reorderable)
  {
    flags |= Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    list->setDragDropMode(QAbstractItemView::InternalMove);
  }
  for (const auto& entry : entries)
  {
    auto* item = new QListWidgetItem(QString::fromStdString(entry), list);
    item->setFlags(flags);
    item->setCheckState(isChecked(entry) ? Qt::Checked : Qt::Unchecked);
  }
  const auto applyChecked = [list, apply = std::move(apply)]
  {
    std::vector<std::string> checked;
    for (int i = 0; i < list->count(); ++i)
      if (list->item(i)->checkState() == Qt::Checked)
        checked.push_back(list->item(i)->text().toStdString());
    apply(checked);
  };
  QObject::connect(list, &QListWidget::itemChanged, applyChecked);
  QObject::connect(list->model(), &QAbstractItemModel::rowsMoved, applyChecked);
  if (followed)
    follow(*followed,
           [list, isChecked = std::move(isChecked)]
           {
             const QSignalBlocker blocker(list);
             for (int i = 0; i < list->count(); ++i)
               list->item(i)->setCheckState(
                 isChecked(list->item(i)->text().toStdString()) ? Qt::Checked : Qt::Unchecked);
           });
  return list;
}

QListWidget* PropertyEditors::variableList(
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>> property,
  bool reorderable)
{
  std::vector<WeakPtr<Variable>> entries;
  if (reorderable)
    entries = property->value();
  for (const auto& variable : project().variables())
    if (std::find(entries.begin(), entries.end(), variable) == entries.end())
      entries.push_back(variable);
  std::vector<std::string> names;
  names.reserve(entries.size());
  for (const auto& variable : entries)
    names.push_back(variable.lock().name());
  return checkList(
    names,
    [property](const std::string& name)
    {
      const auto chosen = property->value();
      return std::any_of(chosen.begin(),
                         chosen.end(),
                         [&](const WeakPtr<Variable>& v) { return v.lock().name() == name; });
    },
    [this, property](const std::vector<std::string>& checked)
    {
      std::vector<WeakPtr<Variable>> chosen;
      chosen.reserve(checked.size());
      for (const auto& name : checked)
        chosen.push_back(project().variable(name));
      edit([&] { property->setValue(chosen); }, [] {});
    },
    reorderable,
    property.get());
}

QWidget* PropertyEditors::axisEditor(const QString& title, AxisDetailsInterface& axis)
{
  auto* box = new QGroupBox(title);
  auto* form = new QFormLayout(box);
  form->addRow("Minimum", numberEditor(axis.min()));
  form->addRow("Maximum", numberEditor(axis.max()));
  form->addRow(checkBox("Custom grid spacing", axis.useCustomGridSpacing()));
  form->addRow("Grid spacing", numberEditor(axis.gridSpacing()));
  return box;
}

QWidget* PropertyEditors::colorLegendEditor(ColorLegend& legend)
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
  follow(*range, show);
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
  // Checked when the number is committed, not at each key: "12" is typed through "1", which the
  // legend refuses.
  labels->setKeyboardTracking(false);
  const auto count = legend.numLabels();
  const auto showCount = [labels, count]
  {
    const QSignalBlocker blocker(labels);
    labels->setValue(count->value());
  };
  showCount();
  follow(*count, showCount);
  QObject::connect(labels,
                   QOverload<int>::of(&QSpinBox::valueChanged),
                   [this, count, showCount](int value)
                   { edit([&] { count->setValue(static_cast<short>(value)); }, showCount); });
  form->addRow("Number of labels", labels);
  return box;
}

} // namespace explorer
