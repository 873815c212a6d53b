#include "views/importance/ImportanceView.h"

#include "CaseRowIndex.h"
#include "ChangesWhileHidden.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "VariableRoles.h"
#include "views/Canvas.h"
#include "views/UndoableSetting.h"

#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QPointer>
#include <boost/make_shared.hpp>
#include <vtkDoubleArray.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <cmath>

namespace explorer
{

namespace
{

constexpr double rowHeight = 26;
constexpr double top = 44;
constexpr double nameWidth = 170;

QString figure(double value)
{
  return std::isnan(value) ? QString("-") : QString::number(value, 'f', 2);
}

} // namespace

struct ImportanceView::Impl
{
  std::shared_ptr<const Project> project;
  DataPipelineManager& pipeline;
  boost::shared_ptr<MasterSelection> selection;
  std::shared_ptr<VariableRoles> roles;
  std::function<void(const WeakPtr<Variable>&, const WeakPtr<Variable>&)> plotInScatter;
  QPointer<Canvas> canvas;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> output;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> compare;
  std::unique_ptr<ChangesWhileHidden> changes;

  // What the figures were computed from: the shown cases and their inputs' columns.
  CaseRowIndex rowOfCase;
  vtkSmartPointer<vtkTable> shownTable;
  const double* outputValues = nullptr;
  std::vector<InputColumn> columns;
  std::vector<std::vector<int>> categories;
  std::vector<InputImportance> shown;
  std::vector<InputImportance> selected;
  std::size_t selectedCases = 0;
  QString note;

  explicit Impl(DataPipelineManager& pipeline)
    : pipeline(pipeline)
  {
  }

  // The inputs: the variables marked input, or all but the output when none is.
  std::vector<Variable> inputs() const
  {
    const Variable out = output->value().lock();
    std::vector<Variable> marked;
    std::vector<Variable> others;
    for (const auto& handle : project->variables())
    {
      const Variable variable = handle.lock();
      if (variable.isNull() || variable == out)
        continue;
      others.push_back(variable);
      if (roles && roles->role(variable.name()) == Variable::Input)
        marked.push_back(variable);
    }
    return marked.empty() ? others : marked;
  }

  // Reads the shown cases' output and inputs, and weighs the inputs over all of them.
  void reload()
  {
    pipeline.output()->Update();
    shownTable = pipeline.output()->GetOutput();
    vtkTable& table = *shownTable;
    rowOfCase.assign(CaseIds(table));
    shown.clear();
    columns.clear();
    categories.clear();
    outputValues = nullptr;
    note.clear();
    const Variable out = output->value().lock();
    auto* outputColumn =
      out.isNull() ? nullptr
                   : vtkDoubleArray::SafeDownCast(table.GetColumnByName(out.name().c_str()));
    if (!outputColumn)
    {
      note = "Choose a numeric output";
      return;
    }
    outputValues = outputColumn->GetPointer(0);
    const std::vector<Variable> weighed = inputs();
    // Text inputs as the indices of their values; reserved, so that pointers to them hold.
    categories.reserve(weighed.size());
    for (const Variable& input : weighed)
    {
      vtkAbstractArray* column = table.GetColumnByName(input.name().c_str());
      InputColumn entry;
      entry.name = input.name();
      if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
        entry.numbers = numbers->GetPointer(0);
      else if (auto* texts = vtkStringArray::SafeDownCast(column))
      {
        std::vector<std::string> sorted;
        for (vtkIdType row = 0; row < texts->GetNumberOfValues(); ++row)
          sorted.push_back(texts->GetValue(row));
        std::sort(sorted.begin(), sorted.end());
        sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
        std::vector<int> indices(static_cast<std::size_t>(texts->GetNumberOfValues()));
        for (std::size_t row = 0; row < indices.size(); ++row)
          indices[row] = static_cast<int>(
            std::lower_bound(
              sorted.begin(), sorted.end(), texts->GetValue(static_cast<vtkIdType>(row))) -
            sorted.begin());
        categories.push_back(std::move(indices));
        entry.categories = categories.back().data();
      }
      else
        continue;
      columns.push_back(entry);
    }
    if (columns.empty())
    {
      note = "No inputs to weigh: the study has no variable besides " +
             QString::fromStdString(out.name());
      return;
    }
    shown = importanceOf(outputValues, rowOfCase.caseIds().size(), columns);
    reselect();
  }

  // Weighs the inputs over the selected shown cases, when asked to.
  void reselect()
  {
    selected.clear();
    selectedCases = 0;
    if (!compare->value() || !outputValues)
      return;
    const std::vector<int> rows = rowOfCase.rowsOf(*selection->cases());
    selectedCases = rows.size();
    if (rows.empty())
      return;
    const std::vector<std::uint32_t> listed(rows.begin(), rows.end());
    selected = importanceOf(outputValues, rowOfCase.caseIds().size(), columns, &listed);
  }

  const InputImportance* selectedOf(const std::string& name) const
  {
    for (const auto& entry : selected)
      if (entry.name == name)
        return &entry;
    return nullptr;
  }

  void paint(QPainter& painter)
  {
    changes->catchUp();
    const QSize size = canvas->size();
    painter.fillRect(QRect(QPoint(0, 0), size), Qt::white);
    painter.setRenderHint(QPainter::Antialiasing, true);
    if (!note.isEmpty())
    {
      painter.drawText(QRect(QPoint(0, 0), size), Qt::AlignCenter, note);
      return;
    }
    // Name, then each measure's bars with its figures in a column of their own.
    const double figures =
      painter.fontMetrics().horizontalAdvance(compare->value() ? "-0.00 / -0.00" : "-0.00") + 10;
    const double ratioLeft = nameWidth + 8;
    const double ratioWidth = std::max((size.width() - ratioLeft - 2 * figures - 24) * 0.5, 60.0);
    const double rankLeft = ratioLeft + ratioWidth + figures + 16;
    const double rankWidth = std::max(size.width() - rankLeft - figures - 8, 60.0);
    const double rankMiddle = rankLeft + rankWidth / 2;
    const Variable out = output->value().lock();
    painter.setPen(QColor(20, 20, 20));
    QFont bold = painter.font();
    bold.setBold(true);
    painter.save();
    painter.setFont(bold);
    painter.drawText(
      QRectF(8, 4, size.width() - 16, 18),
      Qt::AlignLeft | Qt::AlignVCenter,
      "What drives " + QString::fromStdString(out.name()) +
        QString(" (%1 shown cases%2)")
          .arg(rowOfCase.caseIds().size())
          .arg(compare->value() ? QString(", %1 selected in dark").arg(selectedCases) : QString()));
    painter.restore();
    const QFontMetrics metrics = painter.fontMetrics();
    painter.drawText(QRectF(ratioLeft, 22, ratioWidth + figures, 18),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText("variance explained (correlation ratio)",
                                        Qt::ElideRight,
                                        static_cast<int>(ratioWidth + figures)));
    painter.drawText(QRectF(rankLeft, 22, rankWidth + figures, 18),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText("rank correlation (-1 to 1)",
                                        Qt::ElideRight,
                                        static_cast<int>(rankWidth + figures)));
    painter.setPen(QColor(200, 200, 200));
    painter.drawLine(QPointF(rankMiddle, top - 2),
                     QPointF(rankMiddle, top + rowHeight * static_cast<double>(shown.size())));
    for (std::size_t i = 0; i < shown.size(); ++i)
    {
      const InputImportance& entry = shown[i];
      const double y = top + rowHeight * static_cast<double>(i);
      if (i % 2 == 1)
        painter.fillRect(QRectF(0, y, size.width(), rowHeight), QColor(246, 246, 246));
      painter.setPen(QColor(20, 20, 20));
      painter.drawText(QRectF(8, y, nameWidth - 8, rowHeight),
                       Qt::AlignLeft | Qt::AlignVCenter,
                       painter.fontMetrics().elidedText(QString::fromStdString(entry.name),
                                                        Qt::ElideRight,
                                                        static_cast<int>(nameWidth - 8)));
      const InputImportance* part = selectedOf(entry.name);
      const double barHeight = part ? 8 : 14;
      const auto bars = [&](const InputImportance& of, double barTop, const QColor& colour)
      {
        if (!std::isnan(of.correlationRatio))
          painter.fillRect(QRectF(ratioLeft, barTop, ratioWidth * of.correlationRatio, barHeight),
                           colour);
        if (!std::isnan(of.rankCorrelation))
        {
          const double end = rankMiddle + of.rankCorrelation * rankWidth / 2;
          painter.fillRect(QRectF(QPointF(std::min(rankMiddle, end), barTop),
                                  QPointF(std::max(rankMiddle, end), barTop + barHeight)),
                           colour);
        }
      };
      bars(entry, y + (rowHeight - barHeight * (part ? 2 : 1)) / 2, QColor(70, 130, 180));
      if (part)
        bars(*part, y + rowHeight / 2, QColor(30, 30, 30));
      painter.setPen(QColor(20, 20, 20));
      painter.drawText(QRectF(ratioLeft + ratioWidth + 4, y, figures, rowHeight),
                       Qt::AlignLeft | Qt::AlignVCenter,
                       figure(entry.correlationRatio) +
                         (part ? " / " + figure(part->correlationRatio) : QString()));
      painter.drawText(QRectF(rankLeft + rankWidth + 4, y, figures, rowHeight),
                       Qt::AlignLeft | Qt::AlignVCenter,
                       figure(entry.rankCorrelation) +
                         (part ? " / " + figure(part->rankCorrelation) : QString()));
    }
    painter.setPen(QColor(90, 90, 90));
    painter.drawText(
      QRectF(8, top + rowHeight * static_cast<double>(shown.size()) + 4, size.width() - 16, 18),
      Qt::AlignLeft | Qt::AlignVCenter,
      "A click on an input plots the output against it in the scatter plot.");
  }

  int rowAt(const QPoint& point) const
  {
    if (point.y() < top)
      return -1;
    const auto row = static_cast<std::size_t>((point.y() - top) / rowHeight);
    return row < shown.size() ? static_cast<int>(row) : -1;
  }
};

ImportanceView::ImportanceView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("InputsThatMatter"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  d->project = context.project;
  d->selection = context.selection;
  d->roles = context.roles;
  d->plotInScatter = context.plotInScatter;
  d->canvas = new Canvas();
  setWidget(d->canvas);
  d->canvas->setObjectName("importance");
  d->canvas->setMinimumSize(200, 160);

  d->output = undoableSetting("Output", defaults::scatter(*d->project).y);
  d->compare = undoableSetting("Compare Selection", false);

  Impl* impl = d.get();
  d->canvas->paint = [impl](QPainter& painter) { impl->paint(painter); };
  d->canvas->release = [impl](QMouseEvent& event)
  {
    if (event.button() != Qt::LeftButton)
      return;
    impl->changes->catchUp();
    const int row = impl->rowAt(event.pos());
    if (row < 0 || !impl->plotInScatter)
      return;
    impl->plotInScatter(impl->project->variable(impl->shown[static_cast<std::size_t>(row)].name),
                        impl->output->value());
  };

  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->canvas,
    *context.selection,
    // A new selection weighs the selected cases again, not all of them.
    ChangesWhileHidden::Steps{ [impl] { impl->reload(); },
                               [impl](const auto&) { impl->reselect(); },
                               [impl] { impl->canvas->update(); } });
  const auto reload = [impl] { impl->changes->changedLater(); };
  connections().add(context.pipeline->connectSignalPipelineChanged(reload));
  connections().add(d->output->connectSignalPropertyChanged(reload));
  connections().add(d->compare->connectSignalPropertyChanged(reload));
  if (d->roles)
    connections().add(d->roles->said()->connectSignalPropertyChanged(reload));
  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases& ids) { impl->changes->selectionChanged(*ids); }));

  saveVariableSetting("Output", d->output, *d->project);
  saveSetting(boost::make_shared<GenericSerializer<bool>>("CompareSelection", d->compare),
              "0 or 1");
}

ImportanceView::~ImportanceView() = default;

std::vector<SettingsSection> ImportanceView::settingsSections(PropertyEditors& editors)
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  form->addRow("Output", editors.variableChooser(d->output, true, {}));
  form->addRow(editors.checkBox("Compare the selected cases with all", d->compare));
  return { { "Inputs that matter", box } };
}

std::string ImportanceView::selectionSummary() const
{
  d->changes->catchUp();
  return d->compare->value() ? std::to_string(d->selectedCases) + " selected cases weighed"
                             : "figures over all shown cases";
}

void ImportanceView::refresh()
{
  d->canvas->update();
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ImportanceView::output() const
{
  return d->output;
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> ImportanceView::compareSelection() const
{
  return d->compare;
}

const std::vector<InputImportance>& ImportanceView::overShown() const
{
  d->changes->catchUp();
  return d->shown;
}

const std::vector<InputImportance>& ImportanceView::overSelected() const
{
  d->changes->catchUp();
  return d->selected;
}

QPoint ImportanceView::rowPoint(std::size_t row) const
{
  return QPointF(nameWidth / 2, top + rowHeight * (static_cast<double>(row) + 0.5)).toPoint();
}

void ImportanceView::resumeParts()
{
  d->changes->changed(true);
}

bool ImportanceView::caseIDAtPoint(unsigned long long&)
{
  // Rows are inputs, not cases: a click selects no case.
  return false;
}

} // namespace explorer
