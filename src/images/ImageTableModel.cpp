#include "images/ImageTableModel.h"

#include "analyzer_common/VariantDisplayText.h"
#include "common_vtk/vtkPxCommandProxy.h"
#include "datamanagement/Project.h"
#include "dataviews/CaseIdColumn_p.h"
#include "images/ImageMatrixViewProperties.h"
#include "properties/PropertyAbstract.h"
#include "signals/SignalConnectionCollection.h"

#include <vtkAbstractArray.h>
#include <vtkCommand.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace
{

using Dimension = ImageMatrixViewProperties::RowColumnDimensionBy;

// One axis of the grid, as the settings lay it out.
struct Axis
{
  std::vector<Variant> values;
  bool byTag = false;
  Variable variable; // empty: no variable, a single entry holding every case
  // For a variable axis, the entry of each laid out case.
  std::vector<int> entryOfCase;

  int size() const { return static_cast<int>(values.size()); }
};

std::vector<unsigned long long> inputCaseIds(vtkTableAlgorithm& input)
{
  input.Update();
  vtkTable* table = input.GetOutput();
  if (!table || table->GetNumberOfColumns() == 0)
  {
    return {};
  }
  std::vector<unsigned long long> ids = caseids::allCaseIds(*table->GetColumn(0));
  ids.resize(std::min<std::size_t>(ids.size(), static_cast<std::size_t>(table->GetNumberOfRows())));
  if (!std::is_sorted(ids.begin(), ids.end()))
    std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

// The cases the grid lays out: the input's case ids the project has, ascending, and their rows
// in the project, through which their values are read from the project's columns.
struct Cases
{
  std::vector<unsigned long long> ids;
  std::vector<std::size_t> rows;
};

Cases inputCases(vtkTableAlgorithm& input, const Project& project)
{
  Cases cases;
  cases.ids = inputCaseIds(input);
  cases.rows = project.rowsOf(cases.ids);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < cases.ids.size(); ++i)
  {
    if (cases.rows[i] == Project::npos)
      continue;
    cases.ids[kept] = cases.ids[i];
    cases.rows[kept] = cases.rows[i];
    ++kept;
  }
  cases.ids.resize(kept);
  cases.rows.resize(kept);
  return cases;
}

// Numbers the distinct keys of the rows in the order they first appear; `firstRows` receives a
// row holding each.
template<typename Key, typename KeyOf>
std::vector<int> numberFirstSeen(const std::vector<std::size_t>& rows,
                                 KeyOf keyOf,
                                 std::vector<std::size_t>& firstRows)
{
  std::unordered_map<Key, int> seen;
  std::vector<int> numbers;
  numbers.reserve(rows.size());
  for (std::size_t row : rows)
  {
    const auto [entry, inserted] = seen.try_emplace(keyOf(row), static_cast<int>(seen.size()));
    if (inserted)
      firstRows.push_back(row);
    numbers.push_back(entry->second);
  }
  return numbers;
}

// A number as a key that is equal exactly when the numbers are equal as Variants: one zero,
// one NaN.
std::uint64_t numberKey(double value)
{
  if (std::isnan(value))
    value = std::numeric_limits<double>::quiet_NaN();
  else if (value == 0.0)
    value = 0.0;
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

// The distinct values of a variable over the cases, ascending by Variant's less-than, and the
// entry of each case among them. Numbers and texts are read from the project's columns and
// grouped by hashing (a study of ten million cases is grouped in one pass); any other variable
// (the case ids) goes through Record::data. Equal values keep the first case's value.
struct Distinct
{
  std::vector<Variant> values;
  std::vector<int> entryOfCase;
};

Distinct distinctValues(const Project& project,
                        const Variable& variable,
                        const std::vector<std::size_t>& rows)
{
  Distinct distinct;
  std::vector<std::size_t> firstRows;
  if (const auto* numbers = project.numericValues(variable))
  {
    distinct.entryOfCase = numberFirstSeen<std::uint64_t>(
      rows, [numbers](std::size_t row) { return numberKey((*numbers)[row]); }, firstRows);
  }
  else if (const auto* texts = project.textValues(variable))
  {
    distinct.entryOfCase = numberFirstSeen<std::string_view>(
      rows, [texts](std::size_t row) { return std::string_view((*texts)[row]); }, firstRows);
  }
  else
  {
    std::map<Variant, int> seen;
    distinct.entryOfCase.reserve(rows.size());
    for (std::size_t row : rows)
    {
      const auto [entry, inserted] =
        seen.emplace(project.recordAt(row).lock().data(variable), static_cast<int>(seen.size()));
      if (inserted)
        firstRows.push_back(row);
      distinct.entryOfCase.push_back(entry->second);
    }
  }
  std::vector<Variant> firstValues;
  firstValues.reserve(firstRows.size());
  for (std::size_t row : firstRows)
    firstValues.push_back(project.recordAt(row).lock().data(variable));
  std::vector<int> order(firstValues.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(),
            order.end(),
            [&](int a, int b) {
              return firstValues[static_cast<std::size_t>(a)] <
                     firstValues[static_cast<std::size_t>(b)];
            });
  std::vector<int> entryOfFirst(order.size());
  distinct.values.reserve(order.size());
  for (int seen : order)
  {
    entryOfFirst[static_cast<std::size_t>(seen)] = static_cast<int>(distinct.values.size());
    distinct.values.push_back(std::move(firstValues[static_cast<std::size_t>(seen)]));
  }
  for (int& entry : distinct.entryOfCase)
    entry = entryOfFirst[static_cast<std::size_t>(entry)];
  return distinct;
}

Axis layoutAxis(Dimension dimension,
                const WeakPtr<Variable>& handle,
                const std::vector<std::string>& tags,
                const Project& project,
                const std::vector<std::size_t>& rows)
{
  Axis axis;
  if (dimension == ImageMatrixViewProperties::ByTag)
  {
    axis.byTag = true;
    for (const auto& tag : tags)
      axis.values.emplace_back(tag);
    return axis;
  }
  axis.variable = handle.lock();
  if (!axis.variable)
  {
    axis.values.emplace_back(0.0);
    return axis;
  }
  Distinct distinct = distinctValues(project, axis.variable, rows);
  axis.values = std::move(distinct.values);
  axis.entryOfCase = std::move(distinct.entryOfCase);
  return axis;
}

// The entries of an axis the case at `index` belongs to: all of them for a tag axis, the only
// one of an axis without a variable, or the entry of the case's value.
void entriesOf(const Axis& axis, std::size_t index, std::vector<int>& entries)
{
  entries.clear();
  if (axis.byTag)
  {
    for (int i = 0; i < axis.size(); ++i)
      entries.push_back(i);
  }
  else if (!axis.variable)
  {
    entries.push_back(0);
  }
  else
  {
    entries.push_back(axis.entryOfCase[index]);
  }
}

const std::vector<unsigned long long> noCases;

} // namespace

struct ImageTableModel::Impl
{
  vtkSmartPointer<vtkTableAlgorithm> input;
  std::shared_ptr<ImageMatrixViewProperties> properties;
  vtkSmartPointer<vtkPxCommandProxy> observer;
  SignalConnectionCollection connections;
  mutable ModelResetSignal signalModelReset;

  Axis rows;
  Axis columns;
  std::optional<std::string> pageTag;
  std::vector<std::vector<unsigned long long>> cells;
  // (case id, cell index) for every case in every cell, in case id order.
  std::vector<std::pair<unsigned long long, std::size_t>> cellOfCase;
  mutable std::vector<std::optional<std::vector<WeakPtr<AuxFile>>>> files;

  bool inGrid(int row, int column) const
  {
    return row >= 0 && column >= 0 && row < rows.size() && column < columns.size();
  }
  std::size_t cellIndex(int row, int column) const
  {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns.size()) +
           static_cast<std::size_t>(column);
  }

  void add(unsigned long long id, std::size_t cell)
  {
    cells[cell].push_back(id);
    cellOfCase.emplace_back(id, cell);
  }

  void build()
  {
    const auto project = Project::project();
    const Cases cases = inputCases(*input, *project);

    const auto& p = *properties;
    const std::vector<std::string> tags = p.allTagsToShow()->value();
    rows =
      layoutAxis(p.dimensionRowsBy()->value(), p.rowVar()->value(), tags, *project, cases.rows);
    columns = layoutAxis(
      p.dimensionColumnsBy()->value(), p.columnVar()->value(), tags, *project, cases.rows);

    const auto pages = p.dimensionPagesBy()->value();
    const Variant pageValue = p.pageValue()->value();
    pageTag.reset();
    if (pages == ImageMatrixViewProperties::PageByTag)
      pageTag = pageValue.toString();
    // Paged by a variable, a case takes part when its value equals the page's: decided once per
    // distinct value.
    Distinct pageValues;
    std::vector<bool> onPage;
    if (pages == ImageMatrixViewProperties::PageByVariable)
    {
      pageValues = distinctValues(*project, p.pageVar()->value().lock(), cases.rows);
      for (const Variant& value : pageValues.values)
        onPage.push_back(value == pageValue);
    }

    cells.assign(static_cast<std::size_t>(rows.size()) * static_cast<std::size_t>(columns.size()),
                 {});
    files.assign(cells.size(), std::nullopt);
    // Every case into each of its cells, in ascending case order, so that every cell's list is
    // sorted as it is filled. Done twice: counting first, so that each list is allocated once at
    // its size (grown by doubling, ten million cases would leave up to twice their bytes behind).
    const auto place = [&](auto&& into)
    {
      std::vector<int> rowEntries;
      std::vector<int> columnEntries;
      for (std::size_t i = 0; i < cases.ids.size(); ++i)
      {
        if (pages == ImageMatrixViewProperties::PageByVariable &&
            !onPage[static_cast<std::size_t>(pageValues.entryOfCase[i])])
          continue;
        const unsigned long long id = cases.ids[i];
        if (rows.byTag && columns.byTag)
        {
          for (int d = 0; d < std::min(rows.size(), columns.size()); ++d)
            into(id, cellIndex(d, d));
          continue;
        }
        entriesOf(rows, i, rowEntries);
        entriesOf(columns, i, columnEntries);
        for (int r : rowEntries)
          for (int c : columnEntries)
            into(id, cellIndex(r, c));
      }
    };
    std::vector<std::size_t> sizes(cells.size(), 0);
    place([&](unsigned long long, std::size_t cell) { ++sizes[cell]; });
    for (std::size_t cell = 0; cell < cells.size(); ++cell)
      cells[cell].reserve(sizes[cell]);
    cellOfCase = {};
    cellOfCase.reserve(std::accumulate(sizes.begin(), sizes.end(), std::size_t(0)));
    place([&](unsigned long long id, std::size_t cell) { add(id, cell); });
  }

  // The cells holding any of the ids, given ascending without repeats (a set or a sorted list).
  template<typename AscendingIds>
  std::vector<std::pair<int, int>> cellsOf(const AscendingIds& ids) const
  {
    std::vector<bool> hit(cells.size(), false);
    const auto& index = cellOfCase;
    if (ids.size() < index.size() / 16)
    {
      for (unsigned long long id : ids)
      {
        auto entry =
          std::lower_bound(index.begin(),
                           index.end(),
                           id,
                           [](const auto& e, unsigned long long v) { return e.first < v; });
        for (; entry != index.end() && entry->first == id; ++entry)
          hit[entry->second] = true;
      }
    }
    else
    {
      // Both in case id order: one merged walk.
      auto id = ids.begin();
      for (const auto& [caseId, cell] : index)
      {
        while (id != ids.end() && *id < caseId)
          ++id;
        if (id == ids.end())
          break;
        if (*id == caseId)
          hit[cell] = true;
      }
    }
    std::vector<std::pair<int, int>> result;
    const int width = columns.size();
    for (std::size_t cell = 0; cell < hit.size(); ++cell)
      if (hit[cell])
        result.emplace_back(static_cast<int>(cell) / width, static_cast<int>(cell) % width);
    return result;
  }

  std::vector<WeakPtr<AuxFile>> filesOf(int row, int column) const
  {
    const auto project = Project::project();
    std::vector<WeakPtr<AuxFile>> result;
    std::string rowTagText;
    std::string columnTagText;
    if (rows.byTag)
      rowTagText = rows.values[static_cast<std::size_t>(row)].toString();
    if (columns.byTag)
      columnTagText = columns.values[static_cast<std::size_t>(column)].toString();
    for (std::size_t caseRow : project->rowsOf(cells[cellIndex(row, column)]))
    {
      for (const auto& handle : project->recordAt(caseRow).lock().auxFiles())
      {
        const AuxFile file = handle.lock();
        if ((rows.byTag && !file.hasTag(rowTagText)) ||
            (columns.byTag && !file.hasTag(columnTagText)) || (pageTag && !file.hasTag(*pageTag)))
        {
          continue;
        }
        result.push_back(handle);
      }
    }
    return result;
  }
};

ImageTableModel::ImageTableModel(vtkSmartPointer<vtkTableAlgorithm> input,
                                 std::shared_ptr<ImageMatrixViewProperties> properties)
  : d(std::make_unique<Impl>())
{
  d->input = input;
  d->properties = std::move(properties);
  d->observer = vtkPxCommandProxy::New([this] { rebuild(); });
  d->input->AddObserver(vtkCommand::ModifiedEvent, d->observer, 0.0);

  const auto changed = [this] { rebuild(); };
  auto& p = *d->properties;
  d->connections.add(p.dimensionRowsBy()->connectSignalPropertyChanged(changed));
  d->connections.add(p.dimensionColumnsBy()->connectSignalPropertyChanged(changed));
  d->connections.add(p.rowVar()->connectSignalPropertyChanged(changed));
  d->connections.add(p.columnVar()->connectSignalPropertyChanged(changed));
  d->connections.add(p.pageVar()->connectSignalPropertyChanged(changed));
  d->connections.add(p.pageValue()->connectSignalPropertyChanged(changed));
  d->connections.add(p.dimensionPagesBy()->connectSignalPropertyChanged(changed));
  d->connections.add(p.allTagsToShow()->connectSignalPropertyChanged(changed));
  d->build();
}

ImageTableModel::~ImageTableModel()
{
  d->input->RemoveObserver(d->observer);
  d->connections.clear();
}

void ImageTableModel::suspend()
{
  d->connections.block();
  d->properties->suspend();
  d->input->RemoveObserver(d->observer);
}

void ImageTableModel::resume()
{
  d->connections.unblock();
  d->properties->resume();
  d->input->AddObserver(vtkCommand::ModifiedEvent, d->observer, 0.0);
  rebuild();
}

void ImageTableModel::rebuild()
{
  d->build();
  d->signalModelReset();
}

int ImageTableModel::rowCount() const
{
  return d->rows.size();
}

int ImageTableModel::columnCount() const
{
  return d->columns.size();
}

std::vector<WeakPtr<AuxFile>> ImageTableModel::auxFilesAt(int row, int column) const
{
  if (!d->inGrid(row, column))
  {
    return {};
  }
  auto& memo = d->files[d->cellIndex(row, column)];
  if (!memo)
  {
    memo = d->filesOf(row, column);
  }
  return *memo;
}

const std::vector<unsigned long long>& ImageTableModel::casesAt(int row, int column) const
{
  return d->inGrid(row, column) ? d->cells[d->cellIndex(row, column)] : noCases;
}

std::vector<std::pair<int, int>> ImageTableModel::cellsOf(
  const std::set<unsigned long long>& ids) const
{
  return d->cellsOf(ids);
}

std::vector<std::pair<int, int>> ImageTableModel::cellsOf(
  const std::vector<unsigned long long>& ascendingIds) const
{
  return d->cellsOf(ascendingIds);
}

std::vector<std::string> ImageTableModel::availableTags() const
{
  const auto project = Project::project();
  std::set<std::string> tags;
  for (std::size_t row : inputCases(*d->input, *project).rows)
  {
    for (const auto& handle : project->recordAt(row).lock().auxFiles())
    {
      for (const auto& tag : handle.lock().tags())
        tags.insert(tag);
    }
  }
  return { tags.begin(), tags.end() };
}

Variant ImageTableModel::rowValue(int i) const
{
  return d->rows.values.at(static_cast<std::size_t>(i));
}

Variant ImageTableModel::columnValue(int i) const
{
  return d->columns.values.at(static_cast<std::size_t>(i));
}

std::string ImageTableModel::rowTitle(int i) const
{
  return !d->rows.byTag && !d->rows.variable ? "All" : variantDisplayText(rowValue(i));
}

std::string ImageTableModel::columnTitle(int i) const
{
  return !d->columns.byTag && !d->columns.variable ? "All" : variantDisplayText(columnValue(i));
}

boost::signals2::connection ImageTableModel::connectSignalModelReset(
  const ModelResetSignal::slot_type& slot) const
{
  return d->signalModelReset.connect(slot);
}
