#pragma once

// The storage behind a Project and its handles. Values are kept per variable in one column
// (numbers or texts), so a study of a million cases costs a few bytes per value, and the handles
// point into these vectors through aliasing shared pointers that share the project's ownership.

#include "datamanagement/Variable.h"

#include <cstddef>
#include <limits>
#include <memory>
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

struct RecordData
{
  unsigned long long id = 0;
  unsigned long long caseId = 0;
  std::size_t row = 0;
  std::vector<std::size_t> auxFiles;
  const Project* project = nullptr;
};

struct AuxFileData
{
  unsigned long long id = 0;
  std::string relativePath;
  std::string filePath;
  std::vector<std::string> tags;
  std::size_t record = 0;
  const Project* project = nullptr;
};

struct TagGroupData
{
  unsigned long long id = 0;
  std::string name;
  std::vector<std::string> tags;
};

struct ProjectData
{
  std::string folder;
  std::vector<ValueColumn> columns;
  std::vector<VariableData> variables;
  VariableData caseIdVariable;
  std::vector<RecordData> records;
  std::vector<AuxFileData> auxFiles;
  std::vector<TagGroupData> tagGroups;
  std::vector<unsigned long long> caseIds;
  std::vector<std::string> tags;
  std::unordered_map<unsigned long long, std::size_t> recordByCaseId;
  std::unordered_map<std::string, std::size_t> variableByName;
  std::unordered_map<std::string, std::size_t> tagGroupByName;
};

/// A handle sharing the ownership of whatever `owner` shares (the project), pointing at `item`.
template<typename Handle, typename Owner>
Handle aliasHandle(const std::shared_ptr<Owner>& owner, const typename Handle::Data& item)
{
  return Handle(std::shared_ptr<const typename Handle::Data>(owner, &item));
}
