#include "datamanagement/Record.h"

#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectData_p.h"
#include "datamanagement/Variable.h"

unsigned long long Record::id() const
{
  if (!d)
  {
    return 0;
  }
  const ProjectData& data = d->project->data();
  return data.firstRecordId + data.rowOf(*d);
}

unsigned long long Record::caseId() const
{
  if (!d)
  {
    return 0;
  }
  const ProjectData& data = d->project->data();
  return data.caseIds[data.rowOf(*d)];
}

Variant Record::data(const Variable& variable) const
{
  const auto& v = variable.sharedData();
  if (!d || !v || v->project != d->project)
  {
    return {};
  }
  const ProjectData& data = d->project->data();
  const std::size_t row = data.rowOf(*d);
  if (v->column == VariableData::caseIdColumn)
  {
    return Variant(data.caseIds[row]);
  }
  const ValueColumn& column = data.columns[v->column];
  if (column.isText)
  {
    return Variant(column.texts[row]);
  }
  return Variant(column.numbers[row]);
}

Variant Record::data(const WeakPtr<Variable>& variable) const
{
  return data(variable.lock());
}

std::vector<WeakPtr<AuxFile>> Record::auxFiles() const
{
  std::vector<WeakPtr<AuxFile>> files;
  if (!d)
  {
    return files;
  }
  const ProjectData& data = d->project->data();
  if (data.firstFileOfRecord.empty())
  {
    return files;
  }
  const std::size_t row = data.rowOf(*d);
  const std::size_t first = data.firstFileOfRecord[row];
  const std::size_t end = data.firstFileOfRecord[row + 1];
  files.reserve(end - first);
  for (std::size_t i = first; i < end; ++i)
  {
    files.emplace_back(aliasHandle<AuxFile>(d, data.auxFiles[data.filesOfRecords[i]]));
  }
  return files;
}
