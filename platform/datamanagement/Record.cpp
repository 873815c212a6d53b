#include "datamanagement/Record.h"

#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectData_p.h"
#include "datamanagement/Variable.h"

unsigned long long Record::id() const
{
  return d ? d->id : 0;
}

unsigned long long Record::caseId() const
{
  return d ? d->caseId : 0;
}

Variant Record::data(const Variable& variable) const
{
  const auto& v = variable.sharedData();
  if (!d || !v || v->project != d->project)
  {
    return {};
  }
  if (v->column == VariableData::caseIdColumn)
  {
    return Variant(d->caseId);
  }
  const ValueColumn& column = d->project->data().columns[v->column];
  if (column.isText)
  {
    return Variant(column.texts[d->row]);
  }
  return Variant(column.numbers[d->row]);
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
  files.reserve(d->fileCount);
  for (std::size_t i = d->firstFile; i < d->firstFile + d->fileCount; ++i)
  {
    files.emplace_back(aliasHandle<AuxFile>(d, data.auxFiles[data.filesOfRecords[i]]));
  }
  return files;
}
