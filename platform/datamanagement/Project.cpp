#include "datamanagement/Project.h"

#include "datamanagement/ProjectBuilder.h"
#include "datamanagement/ProjectData_p.h"

#include <algorithm>
#include <mutex>

namespace
{

std::mutex currentProjectMutex;

std::shared_ptr<const Project>& currentProject()
{
  static std::shared_ptr<const Project> current;
  return current;
}

std::shared_ptr<const Project> emptyProject()
{
  static const std::shared_ptr<const Project> empty = ProjectBuilder().build();
  return empty;
}

} // namespace

Project::Project(std::unique_ptr<ProjectData> data)
  : d(std::move(data))
{
}

Project::~Project() = default;

std::shared_ptr<const Project> Project::project()
{
  std::lock_guard<std::mutex> lock(currentProjectMutex);
  auto& current = currentProject();
  return current ? current : emptyProject();
}

void Project::setProject(std::shared_ptr<const Project> project)
{
  std::shared_ptr<const Project> previous;
  {
    std::lock_guard<std::mutex> lock(currentProjectMutex);
    previous = std::move(currentProject());
    currentProject() = std::move(project);
  }
  // `previous` is released here, outside the lock, since destroying a project may be slow.
}

std::string Project::folder() const
{
  return d->folder;
}

std::vector<WeakPtr<Variable>> Project::variables() const
{
  std::vector<WeakPtr<Variable>> result;
  result.reserve(d->variables.size());
  const auto self = shared_from_this();
  for (const auto& variable : d->variables)
  {
    result.emplace_back(aliasHandle<Variable>(self, variable));
  }
  return result;
}

WeakPtr<Variable> Project::variable(const std::string& name) const
{
  const auto found = d->variableByName.find(name);
  if (found == d->variableByName.end())
  {
    return {};
  }
  return aliasHandle<Variable>(shared_from_this(), d->variables[found->second]);
}

WeakPtr<Variable> Project::caseIdVariable() const
{
  return aliasHandle<Variable>(shared_from_this(), d->caseIdVariable);
}

std::size_t Project::numberOfRecords() const
{
  return d->caseIds.size();
}

std::vector<WeakPtr<Record>> Project::records() const
{
  std::vector<WeakPtr<Record>> result;
  const auto& records = d->records();
  result.reserve(records.size());
  const auto self = shared_from_this();
  for (const auto& record : records)
  {
    result.emplace_back(aliasHandle<Record>(self, record));
  }
  return result;
}

WeakPtr<Record> Project::record(unsigned long long caseId) const
{
  const std::size_t row = d->rowOf(caseId);
  if (row == ProjectData::npos)
  {
    return {};
  }
  return aliasHandle<Record>(shared_from_this(), d->records()[row]);
}

const std::vector<unsigned long long>& Project::caseIds() const
{
  return d->caseIds;
}

WeakPtr<Record> Project::recordAt(std::size_t row) const
{
  if (row >= d->caseIds.size())
  {
    return {};
  }
  return aliasHandle<Record>(shared_from_this(), d->records()[row]);
}

std::vector<std::size_t> Project::rowsOf(const std::vector<unsigned long long>& ascendingIds) const
{
  std::vector<std::size_t> rows;
  rows.reserve(ascendingIds.size());
  if (!d->recordByCaseId.empty())
  {
    for (unsigned long long id : ascendingIds)
      rows.push_back(d->rowOf(id));
    return rows;
  }
  // Both ascend: each id is searched from where the previous one was found, first in growing
  // steps, so that a dense list costs a step or two per id and a sparse one a short search.
  const auto& ids = d->caseIds;
  std::size_t from = 0;
  for (unsigned long long id : ascendingIds)
  {
    std::size_t step = 1;
    std::size_t to = from;
    while (to < ids.size() && ids[to] < id)
    {
      from = to + 1;
      to += step;
      step *= 2;
    }
    const auto found =
      std::lower_bound(ids.begin() + static_cast<std::ptrdiff_t>(from),
                       ids.begin() + static_cast<std::ptrdiff_t>(std::min(to, ids.size())),
                       id);
    from = static_cast<std::size_t>(found - ids.begin());
    rows.push_back(from < ids.size() && ids[from] == id ? from : npos);
  }
  return rows;
}

const std::vector<double>* Project::numericValues(const Variable& variable) const
{
  const auto& v = variable.sharedData();
  if (!v || v->project != this || v->column == VariableData::caseIdColumn ||
      d->columns[v->column].isText)
  {
    return nullptr;
  }
  return &d->columns[v->column].numbers;
}

const std::vector<std::string>* Project::textValues(const Variable& variable) const
{
  const auto& v = variable.sharedData();
  if (!v || v->project != this || v->column == VariableData::caseIdColumn ||
      !d->columns[v->column].isText)
  {
    return nullptr;
  }
  return &d->columns[v->column].texts;
}

std::vector<WeakPtr<AuxFile>> Project::auxFiles() const
{
  std::vector<WeakPtr<AuxFile>> result;
  result.reserve(d->auxFiles.size());
  const auto self = shared_from_this();
  for (const auto& file : d->auxFiles)
  {
    result.emplace_back(aliasHandle<AuxFile>(self, file));
  }
  return result;
}

std::vector<WeakPtr<TagGroup>> Project::tagGroups() const
{
  std::vector<WeakPtr<TagGroup>> result;
  result.reserve(d->tagGroups.size());
  const auto self = shared_from_this();
  for (const auto& group : d->tagGroups)
  {
    result.emplace_back(aliasHandle<TagGroup>(self, group));
  }
  return result;
}

WeakPtr<TagGroup> Project::tagGroup(const std::string& name) const
{
  const auto found = d->tagGroupByName.find(name);
  if (found == d->tagGroupByName.end())
  {
    return {};
  }
  return aliasHandle<TagGroup>(shared_from_this(), d->tagGroups[found->second]);
}

const std::vector<std::string>& Project::tags() const
{
  return d->tags;
}

const ProjectData& Project::data() const
{
  return *d;
}
