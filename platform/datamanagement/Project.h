#pragma once

#include "datamanagement/AuxFile.h"
#include "datamanagement/Record.h"
#include "datamanagement/TagGroup.h"
#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <memory>
#include <string>
#include <vector>

struct ProjectData;

/// A study: its variables, its cases (records), their auxiliary files and the tag groups.
/// A project is immutable once built (by ProjectBuilder or readStudy) and owns every object its
/// handles refer to; when the last reference to it goes, every WeakPtr into it expires.
///
/// Project::project() is the current project of the process, installed by the host (and tests)
/// with setProject(). It is never null: without a project it is an empty one.
class QUEN_DATAMANAGEMENT_LIB2_EXPORT Project : public std::enable_shared_from_this<Project>
{
public:
  ~Project();
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;

  static std::shared_ptr<const Project> project();
  /// Installs the current project; a null pointer installs an empty project.
  static void setProject(std::shared_ptr<const Project> project);

  /// The folder the study was read from; empty for a project built in memory.
  std::string folder() const;

  /// The variables in column order (the case-id column is not among them).
  std::vector<WeakPtr<Variable>> variables() const;
  /// The variable of that exact name, or an empty handle.
  WeakPtr<Variable> variable(const std::string& name) const;
  /// The variable that designates case ids: Record::data() of it is the case id.
  WeakPtr<Variable> caseIdVariable() const;

  std::size_t numberOfRecords() const;
  /// The records in file order.
  std::vector<WeakPtr<Record>> records() const;
  /// The record of a case id, or an empty handle.
  WeakPtr<Record> record(unsigned long long caseId) const;
  /// The case ids in file order.
  const std::vector<unsigned long long>& caseIds() const;
  /// The record of a row (an index into caseIds()), or an empty handle past the last row.
  WeakPtr<Record> recordAt(std::size_t row) const;
  /// The rows (indices into caseIds()) of ascending case ids, npos for an id the study does not
  /// have. One walk along the study when its ids ascend, as most studies' do: a bulk reader's
  /// way from a sorted list of cases to the columns.
  std::vector<std::size_t> rowsOf(const std::vector<unsigned long long>& ascendingIds) const;
  static constexpr std::size_t npos = std::size_t(-1);

  /// Column access for bulk readers (the data pipeline): the values of a numeric variable in
  /// record order, or null for a text variable or a variable of another project.
  const std::vector<double>* numericValues(const Variable& variable) const;
  /// The values of a text variable in record order, or null.
  const std::vector<std::string>* textValues(const Variable& variable) const;

  std::vector<WeakPtr<AuxFile>> auxFiles() const;
  std::vector<WeakPtr<TagGroup>> tagGroups() const;
  /// The tag group of that exact name, or an empty handle.
  WeakPtr<TagGroup> tagGroup(const std::string& name) const;
  /// Every tag text of every auxiliary file, sorted, without repeats.
  const std::vector<std::string>& tags() const;

  /// The storage, for the handles of this library.
  const ProjectData& data() const;

private:
  friend class ProjectBuilder;
  explicit Project(std::unique_ptr<ProjectData> data);

  std::unique_ptr<ProjectData> d;
};
