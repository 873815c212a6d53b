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
#include <map>
#include <optional>
#include <set>
#include <stdexcept>

namespace
{

using Dimension = ImageMatrixViewProperties::RowColumnDimensionBy;

// One axis of the grid, as the settings lay it out.
struct Axis
{
  std::vector<Variant> values;
  bool byTag = false;
  Variable variable; // empty: no variable, a single entry holding every case
  // For a variable axis, the entry of each record in the order the records were laid out.
  std::vector<int> entryOfRecord;

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
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

Axis layoutAxis(Dimension dimension,
                const WeakPtr<Variable>& handle,
                const std::vector<std::string>& tags,
                const std::vector<Record>& records)
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
  // One lookup per record: distinct values are numbered as they first appear, then the numbers
  // are remapped to the sorted order of the values.
  std::map<Variant, int> firstSeen;
  axis.entryOfRecord.reserve(records.size());
  for (const auto& record : records)
  {
    const auto inserted =
      firstSeen.emplace(record.data(axis.variable), static_cast<int>(firstSeen.size()));
    axis.entryOfRecord.push_back(inserted.first->second);
  }
  std::vector<int> sortedIndex(firstSeen.size());
  axis.values.reserve(firstSeen.size());
  for (const auto& [value, seen] : firstSeen)
  {
    sortedIndex[static_cast<std::size_t>(seen)] = static_cast<int>(axis.values.size());
    axis.values.push_back(value);
  }
  for (int& entry : axis.entryOfRecord)
    entry = sortedIndex[static_cast<std::size_t>(entry)];
  return axis;
}

// The entries of an axis the record at `index` belongs to: all of them for a tag axis, the only
// one of an axis without a variable, or the entry of the record's value.
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
    entries.push_back(axis.entryOfRecord[index]);
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
    std::vector<Record> records;
    for (unsigned long long id : inputCaseIds(*input))
    {
      Record record = project->record(id).lock();
      if (record)
        records.push_back(std::move(record));
    }

    const auto& p = *properties;
    const std::vector<std::string> tags = p.allTagsToShow()->value();
    rows = layoutAxis(p.dimensionRowsBy()->value(), p.rowVar()->value(), tags, records);
    columns = layoutAxis(p.dimensionColumnsBy()->value(), p.columnVar()->value(), tags, records);

    const auto pages = p.dimensionPagesBy()->value();
    const Variant pageValue = p.pageValue()->value();
    const Variable pageVariable = p.pageVar()->value().lock();
    pageTag.reset();
    if (pages == ImageMatrixViewProperties::PageByTag)
      pageTag = pageValue.toString();

    cells.assign(static_cast<std::size_t>(rows.size()) * static_cast<std::size_t>(columns.size()),
                 {});
    files.assign(cells.size(), std::nullopt);
    cellOfCase.clear();
    // One pass over the cases, each appended to its cells; the cases come in ascending order
    // without repeats, so every cell's list is sorted as it is filled.
    std::vector<int> rowEntries;
    std::vector<int> columnEntries;
    for (std::size_t i = 0; i < records.size(); ++i)
    {
      const Record& record = records[i];
      if (pages == ImageMatrixViewProperties::PageByVariable &&
          record.data(pageVariable) != pageValue)
        continue;
      const unsigned long long id = record.caseId();
      if (rows.byTag && columns.byTag)
      {
        for (int i = 0; i < std::min(rows.size(), columns.size()); ++i)
          add(id, cellIndex(i, i));
        continue;
      }
      entriesOf(rows, i, rowEntries);
      entriesOf(columns, i, columnEntries);
      for (int r : rowEntries)
      {
        for (int c : columnEntries)
        {
          add(id, cellIndex(r, c));
        }
      }
    }
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
    for (unsigned long long id : cells[cellIndex(row, column)])
    {
      for (const auto& handle : project->record(id).lock().auxFiles())
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
  std::vector<bool> hit(d->cells.size(), false);
  const auto& index = d->cellOfCase;
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
  const int columns = d->columns.size();
  for (std::size_t cell = 0; cell < hit.size(); ++cell)
    if (hit[cell])
      result.emplace_back(static_cast<int>(cell) / columns, static_cast<int>(cell) % columns);
  return result;
}

std::vector<std::string> ImageTableModel::availableTags() const
{
  const auto project = Project::project();
  std::set<std::string> tags;
  for (unsigned long long id : inputCaseIds(*d->input))
  {
    for (const auto& handle : project->record(id).lock().auxFiles())
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
