#pragma once

// The storage behind a Project and its handles. Values are kept per variable in one column
// (numbers or texts), so a study of a million cases costs a few bytes per value, and the handles
// point into these vectors through aliasing shared pointers that share the project's ownership.

#include "datamanagement/Variable.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

class Project;

struct ValueColumn
{
  bool isText = false;
  std::vector<double> numbers;
  std::vector<std::string> texts;
};

struct VariableData
{
  static constexpr std::size_t caseIdColumn = std::numeric_limits<std::size_t>::max();

  unsigned long long id = 0;
  std::string name;
  Variable::Nature nature = Variable::Continuous;
  Variable::Role role = Variable::Unknown;
  std::pair<double, double> range{ 0.0, 0.0 };
  std::size_t column = caseIdColumn;
  const Project* project = nullptr;
};

// A record is its place among the project's records (its row); what else it has, the project
// holds by row: a record is one pointer.
struct RecordData
{
  const Project* project = nullptr;
};

struct AuxFileData
{
  unsigned long long id = 0;
  std::string relativePath;
  // Empty when the path is the project's fileFolder joined with relativePath, as most are: a
  // million files do not keep a million copies of the folder.
  std::string filePath;
  // Shared by the files of one column or kind: a million files have a handful of tag lists.
  std::shared_ptr<const std::vector<std::string>> tags;
  std::size_t record = 0;
  const Project* project = nullptr;
};

struct TagGroupData
{
  unsigned long long id = 0;
  std::string name;
  std::vector<std::string> tags;
};

// The records of a project, made when first asked for: the views read the study's columns by
// row, and a study whose cases are never handed out one by one keeps no record (80 MB at ten
// million cases). A copy of the project makes its own, which point at it.
class LazyRecords
{
public:
  LazyRecords() = default;
  LazyRecords(const LazyRecords&) {}
  LazyRecords& operator=(const LazyRecords&) = delete;

  const std::vector<RecordData>& of(const Project* project, std::size_t count) const
  {
    std::call_once(made, [&] { list.assign(count, RecordData{ project }); });
    return list;
  }

private:
  mutable std::once_flag made;
  mutable std::vector<RecordData> list;
};

struct ProjectData
{
  std::string folder;
  // The folder the files' relative paths are joined to: normal, with no slash at its end but
  // for "/", and empty for the current folder.
  std::string fileFolder;
  std::vector<ValueColumn> columns;
  std::vector<VariableData> variables;
  VariableData caseIdVariable;
  // The project that owns this storage (set as it takes it).
  const Project* owner = nullptr;
  LazyRecords lazyRecords;
  const std::vector<RecordData>& records() const { return lazyRecords.of(owner, caseIds.size()); }
  // The records' ids, one after the other from the first record's.
  unsigned long long firstRecordId = 0;
  std::vector<AuxFileData> auxFiles;
  // The indices in auxFiles of the files of each record, record after record; the files of the
  // record of row r are those from firstFileOfRecord[r] to firstFileOfRecord[r + 1]. Empty in a
  // study without files.
  std::vector<std::size_t> filesOfRecords;
  std::vector<std::size_t> firstFileOfRecord;
  std::vector<TagGroupData> tagGroups;
  std::vector<unsigned long long> caseIds;
  std::vector<std::string> tags;
  // The row of each case id; left empty when the ids ascend, as most do, and are searched.
  std::unordered_map<unsigned long long, std::size_t> recordByCaseId;
  std::unordered_map<std::string, std::size_t> variableByName;
  std::unordered_map<std::string, std::size_t> tagGroupByName;

  /// The row of a case id, or npos.
  std::size_t rowOf(unsigned long long caseId) const
  {
    if (!recordByCaseId.empty() || caseIds.empty())
    {
      const auto found = recordByCaseId.find(caseId);
      return found == recordByCaseId.end() ? npos : found->second;
    }
    const auto found = std::lower_bound(caseIds.begin(), caseIds.end(), caseId);
    return found == caseIds.end() || *found != caseId ? npos : std::size_t(found - caseIds.begin());
  }
  static constexpr std::size_t npos = std::size_t(-1);

  /// The row of a record of this project.
  std::size_t rowOf(const RecordData& record) const
  {
    return static_cast<std::size_t>(&record - records().data());
  }
};

/// A handle sharing the ownership of whatever `owner` shares (the project), pointing at `item`.
template<typename Handle, typename Owner>
Handle aliasHandle(const std::shared_ptr<Owner>& owner, const typename Handle::Data& item)
{
  return Handle(std::shared_ptr<const typename Handle::Data>(owner, &item));
}
