#include "datamanagement/ProjectBuilder.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectData_p.h"
#include "datamanagement/StudyText_p.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <unordered_set>

const char* ProjectBuilder::caseIdName = "case_id";

struct ProjectBuilder::Pending
{
  struct Column
  {
    std::string name;
    Variable::Nature nature = Variable::Continuous;
    ValueColumn values;
  };
  struct File
  {
    unsigned long long caseId = 0;
    std::string relativePath;
    std::vector<std::string> tags;
  };

  std::string folder;
  std::vector<unsigned long long> caseIds;
  std::vector<Column> columns;
  // A deque: a million files are not moved each time it grows.
  std::deque<File> files;
  std::map<std::string, Variable::Role> roles;
};

namespace
{

// Object ids are unique across every project of the process, so that handles of two projects
// never compare equal. Each project takes a block of 2^32 ids.
std::atomic<unsigned long long> nextIdBlock{ 1 };

// Gives back a list's spare room when there is much of it: a list grown by doubling may hold
// room for 16.7 million values for ten million, for as long as the study is open. A little room
// over (a reader that counted lines ahead) is not worth a copy of the list.
template<typename T>
void shrinkIfRoomy(std::vector<T>& values)
{
  if (values.capacity() - values.size() > values.size() / 16)
    values.shrink_to_fit();
}

std::pair<double, double> finiteRange(const std::vector<double>& values)
{
  bool any = false;
  double lo = 0.0;
  double hi = 0.0;
  for (double v : values)
  {
    if (!std::isfinite(v))
      continue;
    if (!any)
    {
      lo = hi = v;
      any = true;
    }
    lo = std::min(lo, v);
    hi = std::max(hi, v);
  }
  return { lo, hi };
}

std::vector<std::string> withoutRepeats(std::vector<std::string> tags)
{
  // A file has a few tags: searching those kept beats hashing, which a million files feel.
  auto kept = tags.begin();
  for (auto tag = tags.begin(); tag != tags.end(); ++tag)
  {
    if (std::find(tags.begin(), kept, *tag) != kept)
      continue;
    if (kept != tag)
      *kept = std::move(*tag);
    ++kept;
  }
  tags.erase(kept, tags.end());
  return tags;
}

} // namespace

ProjectBuilder::ProjectBuilder()
  : pending(std::make_unique<Pending>())
{
}

ProjectBuilder::~ProjectBuilder() = default;

void ProjectBuilder::setFolder(std::string folder)
{
  pending->folder = std::move(folder);
}

void ProjectBuilder::setCaseIds(std::vector<unsigned long long> caseIds)
{
  pending->caseIds = std::move(caseIds);
  shrinkIfRoomy(pending->caseIds);
}

void ProjectBuilder::addNumericVariable(std::string name, std::vector<double> values)
{
  const Variable::Nature nature = natureOfNumbers(values);
  addNumericVariable(std::move(name), std::move(values), nature);
}

void ProjectBuilder::addNumericVariable(std::string name,
                                        std::vector<double> values,
                                        Variable::Nature nature)
{
  Pending::Column column;
  column.name = std::move(name);
  column.nature = nature;
  column.values.numbers = std::move(values);
  shrinkIfRoomy(column.values.numbers);
  pending->columns.push_back(std::move(column));
}

void ProjectBuilder::addTextVariable(std::string name, std::vector<std::string> values)
{
  Pending::Column column;
  column.name = std::move(name);
  column.nature = Variable::Text;
  column.values.isText = true;
  column.values.texts = std::move(values);
  shrinkIfRoomy(column.values.texts);
  pending->columns.push_back(std::move(column));
}

void ProjectBuilder::setRole(const std::string& variable, Variable::Role role)
{
  pending->roles[variable] = role;
}

void ProjectBuilder::addAuxFile(unsigned long long caseId,
                                std::string relativePath,
                                std::vector<std::string> tags)
{
  pending->files.push_back({ caseId, std::move(relativePath), withoutRepeats(std::move(tags)) });
}

Variable::Nature ProjectBuilder::natureOfNumbers(const std::vector<double>& values)
{
  constexpr std::size_t maxDistinct = 20;
  // At most 21 values are ever kept, so a flat array searched in order beats a tree.
  std::vector<double> distinct;
  distinct.reserve(maxDistinct + 1);
  std::size_t finite = 0;
  for (double v : values)
  {
    if (!std::isfinite(v))
      continue;
    ++finite;
    if (std::find(distinct.begin(), distinct.end(), v) == distinct.end())
    {
      distinct.push_back(v);
      if (distinct.size() > maxDistinct)
        return Variable::Continuous;
    }
  }
  return !distinct.empty() && distinct.size() * 2 <= finite ? Variable::Discrete
                                                            : Variable::Continuous;
}

std::shared_ptr<const Project> ProjectBuilder::build()
{
  Pending input = std::move(*pending);
  pending = std::make_unique<Pending>();

  auto data = std::make_unique<ProjectData>();
  data->folder = input.folder;
  const std::size_t rows = input.caseIds.size();
  const unsigned long long base = nextIdBlock.fetch_add(1) << 32;
  unsigned long long nextId = base + 1;

  data->caseIds = std::move(input.caseIds);
  // Ascending ids are searched, not hashed: a million cases do not need a million nodes.
  const bool ascending =
    std::adjacent_find(data->caseIds.begin(), data->caseIds.end(), std::greater_equal<>()) ==
    data->caseIds.end();
  if (!ascending)
    data->recordByCaseId.reserve(rows);
  for (std::size_t row = 0; row < rows; ++row)
  {
    const unsigned long long caseId = data->caseIds[row];
    if (!ascending && !data->recordByCaseId.emplace(caseId, row).second)
      throw std::invalid_argument("duplicate case id " + std::to_string(caseId));
  }
  data->firstRecordId = nextId;
  nextId += rows;

  data->caseIdVariable.id = nextId++;
  data->caseIdVariable.name = caseIdName;
  data->caseIdVariable.range =
    finiteRange(std::vector<double>(data->caseIds.begin(), data->caseIds.end()));

  data->variables.resize(input.columns.size());
  data->columns.reserve(input.columns.size());
  for (std::size_t c = 0; c < input.columns.size(); ++c)
  {
    auto& column = input.columns[c];
    if (column.name.empty())
      throw std::invalid_argument("variable " + std::to_string(c + 1) + " has no name");
    if (column.name == caseIdName)
      throw std::invalid_argument(std::string("a variable may not be named ") + caseIdName);
    if (!data->variableByName.emplace(column.name, c).second)
      throw std::invalid_argument("duplicate variable name \"" + column.name + "\"");
    const std::size_t length =
      column.values.isText ? column.values.texts.size() : column.values.numbers.size();
    if (length != rows)
      throw std::invalid_argument("variable \"" + column.name + "\" has " + std::to_string(length) +
                                  " values for " + std::to_string(rows) + " cases");

    VariableData& variable = data->variables[c];
    variable.id = nextId++;
    variable.name = column.name;
    variable.nature = column.nature;
    if (const auto role = input.roles.find(column.name); role != input.roles.end())
      variable.role = role->second;
    variable.range = column.values.isText ? std::pair<double, double>(0.0, 0.0)
                                          : finiteRange(column.values.numbers);
    variable.column = c;
    data->columns.push_back(std::move(column.values));
  }

  for (const auto& [name, role] : input.roles)
    if (data->variableByName.count(name) == 0)
      throw std::invalid_argument("a role is given to \"" + name + "\", which is no variable");

  std::set<std::string> allTags;
  std::map<std::string, std::set<std::string>> groups;
  data->auxFiles.reserve(input.files.size());
  // Most paths are plain relative ones: joined to the folder when asked for.
  std::string& folder = data->fileFolder;
  folder = std::filesystem::path(input.folder).lexically_normal().string();
  if (folder.size() > 1 && folder.back() == '/')
    folder.pop_back();
  if (folder == ".")
    folder.clear();
  std::shared_ptr<const std::vector<std::string>> lastTags;
  std::vector<std::size_t> rowOfFile;
  rowOfFile.reserve(input.files.size());
  std::size_t nextRow = 0;
  for (auto& file : input.files)
  {
    // Files come row after row, column after column: the next row is tried first.
    const std::size_t row =
      nextRow < rows && data->caseIds[nextRow] == file.caseId ? nextRow : data->rowOf(file.caseId);
    if (row == ProjectData::npos)
      throw std::invalid_argument("auxiliary file \"" + file.relativePath +
                                  "\" names unknown case id " + std::to_string(file.caseId));
    nextRow = row + 1;
    AuxFileData aux;
    aux.id = nextId++;
    if (input.folder.empty() || AuxFile::isUrl(file.relativePath))
      aux.filePath = file.relativePath;
    else if (!studytext::isNormalRelativePath(file.relativePath))
      aux.filePath =
        (std::filesystem::path(input.folder) / file.relativePath).lexically_normal().string();
    aux.relativePath = std::move(file.relativePath);
    aux.record = row;
    // Files come column by column: most have the tags of the file before, and share them.
    if (!lastTags || *lastTags != file.tags)
    {
      for (const auto& tag : file.tags)
      {
        allTags.insert(tag);
        const auto colon = tag.find(':');
        if (colon != std::string::npos && colon > 0)
          groups[tag.substr(0, colon)].insert(tag);
      }
      lastTags = std::make_shared<const std::vector<std::string>>(std::move(file.tags));
    }
    aux.tags = lastTags;
    rowOfFile.push_back(row);
    data->auxFiles.push_back(std::move(aux));
  }
  // The files of each record, record after record: counted, summed, then placed.
  if (!rowOfFile.empty())
  {
    std::vector<std::size_t>& first = data->firstFileOfRecord;
    first.assign(rows + 1, 0);
    for (const std::size_t row : rowOfFile)
      ++first[row + 1];
    for (std::size_t row = 0; row < rows; ++row)
      first[row + 1] += first[row];
    std::vector<std::size_t> placed(first.begin(), first.end() - 1);
    data->filesOfRecords.resize(rowOfFile.size());
    for (std::size_t file = 0; file < rowOfFile.size(); ++file)
      data->filesOfRecords[placed[rowOfFile[file]]++] = file;
  }
  data->tags.assign(allTags.begin(), allTags.end());
  for (auto& [name, tags] : groups)
  {
    TagGroupData group;
    group.id = nextId++;
    group.name = name;
    group.tags.assign(tags.begin(), tags.end());
    data->tagGroupByName.emplace(name, data->tagGroups.size());
    data->tagGroups.push_back(std::move(group));
  }

  return own(std::move(data));
}

std::shared_ptr<const Project> ProjectBuilder::withColumns(
  const Project& base,
  const std::vector<std::string>& removed,
  std::vector<std::pair<std::string, std::vector<double>>> added)
{
  auto data = std::make_unique<ProjectData>(base.data());
  for (const auto& name : removed)
    if (data->variableByName.count(name) == 0)
      throw std::invalid_argument("there is no variable \"" + name + "\" to remove");

  std::vector<VariableData> variables;
  std::vector<ValueColumn> columns;
  for (auto& variable : data->variables)
  {
    if (std::find(removed.begin(), removed.end(), variable.name) != removed.end())
      continue;
    columns.push_back(std::move(data->columns[variable.column]));
    variable.column = columns.size() - 1;
    variables.push_back(std::move(variable));
  }
  const std::size_t rows = data->caseIds.size();
  for (auto& addition : added)
  {
    const std::string& name = addition.first;
    std::vector<double>& values = addition.second;
    if (name.empty() || name == caseIdName ||
        std::any_of(variables.begin(),
                    variables.end(),
                    [&name](const VariableData& v) { return v.name == name; }))
      throw std::invalid_argument("the name \"" + name + "\" is taken");
    if (values.size() != rows)
      throw std::invalid_argument("variable \"" + name + "\" has " + std::to_string(values.size()) +
                                  " values for " + std::to_string(rows) + " cases");
    VariableData variable;
    variable.name = name;
    variable.nature = natureOfNumbers(values);
    variable.range = finiteRange(values);
    ValueColumn column;
    column.numbers = std::move(values);
    columns.push_back(std::move(column));
    variable.column = columns.size() - 1;
    variables.push_back(std::move(variable));
  }
  data->variables = std::move(variables);
  data->columns = std::move(columns);
  data->variableByName.clear();
  for (std::size_t v = 0; v < data->variables.size(); ++v)
    data->variableByName.emplace(data->variables[v].name, v);

  unsigned long long nextId = nextIdBlock.fetch_add(1) << 32;
  data->firstRecordId = nextId + 1;
  nextId += data->caseIds.size();
  data->caseIdVariable.id = ++nextId;
  for (auto& variable : data->variables)
    variable.id = ++nextId;
  for (auto& file : data->auxFiles)
    file.id = ++nextId;
  for (auto& group : data->tagGroups)
    group.id = ++nextId;

  return own(std::move(data));
}

std::shared_ptr<const Project> ProjectBuilder::own(std::unique_ptr<ProjectData> data)
{
  std::shared_ptr<Project> project(new Project(std::move(data)));
  const Project* owner = project.get();
  ProjectData& stored = *project->d;
  stored.caseIdVariable.project = owner;
  for (auto& variable : stored.variables)
    variable.project = owner;
  stored.owner = owner;
  for (auto& file : stored.auxFiles)
    file.project = owner;
  return project;
}
