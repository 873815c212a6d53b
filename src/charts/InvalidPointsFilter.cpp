#include "charts/InvalidPointsFilter.h"

#include <vtkBitArray.h>
#include <vtkCharArray.h>
#include <vtkDataArray.h>
#include <vtkDataSetAttributes.h>
#include <vtkDoubleArray.h>
#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkWeakPointer.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

const std::string InvalidPointsFilter::validPointsArrayName = "ValidPointsMask";

// ---------------------------------------------------------------------------------------------
// RelevanceDependentVariableProperty

InvalidPointsFilter::RelevanceDependentVariableProperty::RelevanceDependentVariableProperty(
  boost::shared_ptr<VariableProperty> variable,
  boost::shared_ptr<plexa::PropertyAbstract<bool>> relevant)
  : variable(std::move(variable))
  , relevant(std::move(relevant))
{
  const auto relay = [this] { this->emitValueChangedSignal(this->value()); };
  connections.add(this->variable->connectSignalValueChanged(
    [relay](const WeakPtr<Variable, unsigned long long>&) { relay(); }));
  connections.add(this->relevant->connectSignalValueChanged([relay](const bool&) { relay(); }));
}

InvalidPointsFilter::RelevanceDependentVariableProperty::~RelevanceDependentVariableProperty() =
  default;

void InvalidPointsFilter::RelevanceDependentVariableProperty::storeValue(
  const WeakPtr<Variable, unsigned long long>&)
{
  // Read-only: the value only mirrors the two sources.
}

WeakPtr<Variable, unsigned long long>
InvalidPointsFilter::RelevanceDependentVariableProperty::retrieveValue() const
{
  return relevant->value() ? variable->value() : WeakPtr<Variable, unsigned long long>();
}

// ---------------------------------------------------------------------------------------------
// InvalidPointsFilter

struct InvalidPointsFilter::Kept
{
  // A column's kept numbers: the input column, as it was when copied, and the copy.
  struct Copy
  {
    vtkWeakPointer<vtkAbstractArray> input;
    vtkMTimeType inputTime = 0;
    vtkSmartPointer<vtkDataArray> copy;
  };

  std::vector<unsigned char> valid;
  std::vector<Copy> copies;

  // The copy of `input` made under the same rows, unchanged since; null if none.
  vtkDataArray* copyOf(vtkAbstractArray* input) const
  {
    for (const Copy& earlier : copies)
      if (earlier.input == input && earlier.inputTime == input->GetMTime())
        return earlier.copy;
    return nullptr;
  }
};

// The rows holding NaN of the double columns checked lately, so that a column checked again
// unchanged (a plot's Y when X changes, an X chosen again) is not scanned again. A list of rows
// rather than a mask: NaN is the exception in a column that is plotted; a column with NaN in more
// than a sixteenth of its rows is scanned each time instead (its list would take more than half
// the flags of the rows).
struct InvalidPointsFilter::ScannedColumns
{
  struct Scan
  {
    vtkWeakPointer<vtkDoubleArray> column;
    vtkMTimeType time = 0;
    vtkIdType values = 0;
    std::vector<vtkIdType> nanRows;
  };
  // A plot's X, Y and the X chosen before it, with room to spare.
  static constexpr std::size_t kept = 6;
  std::vector<Scan> scans; // the latest last

  /// Calls drop(row) for each row among the first `rows` whose value in `column` is NaN.
  template<typename Drop>
  void eachNaNRow(vtkDoubleArray& column, vtkIdType rows, const Drop& drop);
};

namespace
{

// NaN and only NaN: the bits with the sign cleared above those of +infinity. Infinities pass.
inline bool isNaN(double value)
{
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & 0x7FFFFFFFFFFFFFFFULL) > 0x7FF0000000000000ULL;
}

// Every row of the input, in order: what is kept when no row is invalid.
struct AllRows
{
  std::size_t count;
  std::size_t size() const { return count; }
  bool operator[](std::size_t) const { return true; }
};

// The rows kept: a flag per input row, and how many rows the flags cover.
struct KeptRows
{
  const unsigned char* flags;
  std::size_t count;
  std::size_t size() const { return count; }
  bool operator[](std::size_t row) const { return flags[row] != 0; }
};

// Gathers the kept rows of one column into the output column, for the types copied value by
// value through VTK's accessors.
template<typename ArrayT, typename Rows>
void gather(ArrayT& input, ArrayT& output, const Rows& rows)
{
  vtkIdType out = 0;
  for (std::size_t row = 0; row < rows.size(); ++row)
  {
    if (rows[row])
      output.SetValue(out++, input.GetValue(static_cast<vtkIdType>(row)));
  }
}

template<typename ArrayT, typename Rows>
void gatherAs(vtkAbstractArray* input, vtkAbstractArray* output, const Rows& rows)
{
  auto* in = ArrayT::SafeDownCast(input);
  auto* out = ArrayT::SafeDownCast(output);
  if (in && out)
  {
    gather(*in, *out, rows);
  }
}

// Numbers are copied as a row's single value; a column of several components is not copied.
// Every row up to the last kept one is written to the next free place, which moves on only past
// a kept row: no branch on the flags, and no write beyond the kept rows.
template<typename ArrayT>
void gatherSingleComponent(vtkAbstractArray* input, vtkAbstractArray* output, const KeptRows& rows)
{
  auto* in = ArrayT::SafeDownCast(input);
  auto* out = ArrayT::SafeDownCast(output);
  if (!in || !out || in->GetNumberOfComponents() != 1)
  {
    return;
  }
  std::size_t end = rows.count;
  while (end > 0 && rows.flags[end - 1] == 0)
    --end;
  const auto* source = in->GetPointer(0);
  auto* target = out->GetPointer(0);
  std::size_t next = 0;
  for (std::size_t row = 0; row < end; ++row)
  {
    target[next] = source[row];
    next += rows.flags[row];
  }
}

// Whether a column is copied value by value (the types above); others only get the row count.
bool copiedType(const vtkAbstractArray& column)
{
  switch (column.GetDataType())
  {
    case VTK_BIT:
    case VTK_CHAR:
    case VTK_STRING:
      return true;
    case VTK_DOUBLE:
    case VTK_INT:
      return column.GetNumberOfComponents() == 1;
    default:
      return false;
  }
}

// Puts `column` into the output in place of `out`, a column of the same name; false, changing
// nothing, where the name does not single `out` out (no name, or an earlier column of the name).
bool replaceColumn(vtkTable& output, vtkAbstractArray* out, vtkAbstractArray* column)
{
  const char* name = out->GetName();
  if (!name || !*name || !column->GetName() || std::strcmp(column->GetName(), name) != 0 ||
      output.GetColumnByName(name) != out)
    return false;
  output.GetRowData()->AddArray(column);
  return true;
}

// When every row is valid, the output's copied columns hold the input's values: the numbers and
// chars are the input's own columns (a plot of ten million points would otherwise copy each of its
// columns on every change of axis, and would see a new column where nothing changed), bits and
// texts are copied whole, and the columns of other types get the row count only, as when rows are
// dropped.
void passEveryRow(vtkTable& input, vtkTable& output, vtkIdType rows)
{
  const AllRows all{ static_cast<std::size_t>(rows) };
  for (vtkIdType c = 0; c < input.GetNumberOfColumns(); ++c)
  {
    vtkAbstractArray* in = input.GetColumn(c);
    vtkAbstractArray* out = output.GetColumn(c);
    const int type = in->GetDataType();
    if (copiedType(*in) && type != VTK_BIT && type != VTK_STRING)
    {
      if (!replaceColumn(output, out, in))
        vtkDataArray::SafeDownCast(out)->ShallowCopy(vtkDataArray::SafeDownCast(in));
      continue;
    }
    out->SetNumberOfTuples(rows);
    if (type == VTK_BIT)
      gatherAs<vtkBitArray>(in, out, all);
    else if (type == VTK_STRING)
      gatherAs<vtkStringArray>(in, out, all);
  }
}

// Whether every column of the table has exactly its rows (columns of a table built by hand may
// be longer).
bool evenColumns(vtkTable& table, vtkIdType rows)
{
  for (vtkIdType c = 0; c < table.GetNumberOfColumns(); ++c)
  {
    vtkAbstractArray* column = table.GetColumn(c);
    if (!column || column->GetNumberOfTuples() != rows)
      return false;
  }
  return true;
}

} // namespace

template<typename Drop>
void InvalidPointsFilter::ScannedColumns::eachNaNRow(vtkDoubleArray& column,
                                                     vtkIdType rows,
                                                     const Drop& drop)
{
  // The scan of a column that is gone cannot be asked for again.
  scans.erase(std::remove_if(scans.begin(), scans.end(), [](const Scan& s) { return !s.column; }),
              scans.end());
  const vtkIdType values = std::min(rows, column.GetNumberOfValues());
  for (auto scan = scans.begin(); scan != scans.end(); ++scan)
  {
    if (scan->column == &column && scan->time == column.GetMTime() && scan->values == values)
    {
      std::rotate(scan, scan + 1, scans.end());
      for (const vtkIdType row : scans.back().nanRows)
        drop(row);
      return;
    }
  }
  Scan scan;
  scan.column = &column;
  scan.time = column.GetMTime();
  scan.values = values;
  const auto longest = static_cast<std::size_t>(values / 16);
  bool keep = true;
  const double* data = column.GetPointer(0);
  for (vtkIdType row = 0; row < values; ++row)
  {
    if (!isNaN(data[row]))
      continue;
    drop(row);
    if (keep && scan.nanRows.size() == longest)
    {
      keep = false;
      std::vector<vtkIdType>().swap(scan.nanRows);
    }
    if (keep)
      scan.nanRows.push_back(row);
  }
  if (!keep)
    return;
  if (scans.size() == kept)
    scans.erase(scans.begin());
  scans.push_back(std::move(scan));
}

vtkSmartPointer<InvalidPointsFilter> InvalidPointsFilter::New(
  std::vector<boost::shared_ptr<const VariableProperty>> variableProperties)
{
  auto filter = vtkSmartPointer<InvalidPointsFilter>::Take(
    new InvalidPointsFilter(std::move(variableProperties)));
  filter->InitializeObjectBase();
  return filter;
}

InvalidPointsFilter::InvalidPointsFilter(
  std::vector<boost::shared_ptr<const VariableProperty>> properties)
  : variableProperties(std::move(properties))
{
  for (const auto& property : variableProperties)
  {
    connections.add(property->connectSignalValueChanged(
      [this](const WeakPtr<Variable, unsigned long long>&) { this->Modified(); }));
  }
}

vtkObjectBase* InvalidPointsFilter::NewInstanceInternal() const
{
  auto* filter = new InvalidPointsFilter(variableProperties);
  filter->InitializeObjectBase();
  return filter;
}

InvalidPointsFilter::~InvalidPointsFilter()
{
  connections.clear();
}

void InvalidPointsFilter::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "VariableProperties: " << variableProperties.size() << "\n";
}

int InvalidPointsFilter::RequestData(vtkInformation*,
                                     vtkInformationVector** inputVector,
                                     vtkInformationVector* outputVector)
{
  vtkTable* input = vtkTable::GetData(inputVector[0], 0);
  vtkTable* output = vtkTable::GetData(outputVector, 0);
  output->GetRowData()->CopyStructure(input->GetRowData());
  const vtkIdType rows = input->GetNumberOfRows();
  if (input->GetNumberOfColumns() == 0 || rows == 0)
  {
    output->SetNumberOfRows(rows);
    return 1;
  }

  std::vector<std::pair<vtkDoubleArray*, vtkAbstractArray*>> checked;
  for (const auto& property : variableProperties)
  {
    const Variable variable = property->value().lock();
    if (!variable)
    {
      continue;
    }
    const std::string name = variable.name();
    vtkAbstractArray* in = input->GetColumnByName(name.c_str());
    vtkAbstractArray* out = output->GetColumnByName(name.c_str());
    if (!in || !out)
    {
      output->ShallowCopy(input);
      return 1;
    }
    if (auto* numbers = vtkDoubleArray::SafeDownCast(in))
    {
      checked.emplace_back(numbers, out);
    }
  }
  if (checked.empty())
  {
    output->ShallowCopy(input);
    return 1;
  }
  std::sort(checked.begin(), checked.end());
  checked.erase(std::unique(checked.begin(), checked.end()), checked.end());

  // Which rows are valid: none with NaN in a checked column or marked invalid. No flags are
  // made while every row is valid.
  std::vector<unsigned char> valid;
  std::size_t dropped = 0;
  const auto drop = [&](vtkIdType row)
  {
    if (valid.empty())
      valid.assign(static_cast<std::size_t>(rows), 1);
    unsigned char& flag = valid[static_cast<std::size_t>(row)];
    dropped += flag;
    flag = 0;
  };
  if (!scanned)
    scanned = std::make_unique<ScannedColumns>();
  for (const auto& pair : checked)
    scanned->eachNaNRow(*pair.first, rows, drop);
  if (auto* mask = vtkCharArray::SafeDownCast(input->GetColumnByName(validPointsArrayName.c_str())))
  {
    const vtkIdType count = std::min(rows, mask->GetNumberOfValues());
    for (vtkIdType row = 0; row < count; ++row)
    {
      if (mask->GetValue(row) == 0)
        drop(row);
    }
  }
  if (valid.empty() && evenColumns(*input, rows))
  {
    passEveryRow(*input, *output, rows);
    lastKept.reset();
    return 1;
  }
  if (valid.empty())
    valid.assign(static_cast<std::size_t>(rows), 1);
  const KeptRows keptRows{ valid.data(), valid.size() };

  // The output's columns are sized once, to the rows kept, rather than to the input's rows and
  // shrunk after the copy: the result is the same (uncopied columns hold unset values either
  // way) without allocating and shrinking every column.
  output->SetNumberOfRows(rows - static_cast<vtkIdType>(dropped));

  // Copy the kept rows, per column type, packed to the front. Numbers copied under the same rows
  // before, from a column unchanged since, are that copy itself, unmodified: what is drawn from
  // it (a plot's Y when X changes) need not be made again.
  auto kept = std::make_unique<Kept>();
  const Kept* before = lastKept && lastKept->valid == valid ? lastKept.get() : nullptr;
  const auto copyNumbers = [&](vtkAbstractArray* in, vtkAbstractArray* out, auto gather)
  {
    auto* numbers = vtkDataArray::SafeDownCast(out);
    if (in->GetNumberOfComponents() != 1 || !numbers)
      return; // numbers of several components are left uncopied
    vtkDataArray* earlier = before ? before->copyOf(in) : nullptr;
    if (earlier && replaceColumn(*output, out, earlier))
      numbers = earlier;
    else if (earlier)
      numbers->ShallowCopy(earlier);
    else
      gather(in, out, keptRows);
    kept->copies.push_back({ in, in->GetMTime(), numbers });
  };
  for (vtkIdType c = 0; c < input->GetNumberOfColumns(); ++c)
  {
    vtkAbstractArray* in = input->GetColumn(c);
    vtkAbstractArray* out = output->GetColumn(c);
    if (!in || !out || in->GetNumberOfTuples() < rows)
    {
      continue;
    }
    switch (in->GetDataType())
    {
      case VTK_BIT:
        gatherAs<vtkBitArray>(in, out, keptRows);
        break;
      case VTK_CHAR:
        gatherAs<vtkCharArray>(in, out, keptRows);
        break;
      case VTK_STRING:
        gatherAs<vtkStringArray>(in, out, keptRows);
        break;
      case VTK_DOUBLE:
        copyNumbers(in, out, gatherSingleComponent<vtkDoubleArray>);
        break;
      case VTK_INT:
        copyNumbers(in, out, gatherSingleComponent<vtkIntArray>);
        break;
      default:
        // Other types are deliberately not copied.
        break;
    }
  }
  kept->valid = std::move(valid);
  lastKept = std::move(kept);
  return 1;
}
