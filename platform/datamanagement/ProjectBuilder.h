#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

class Project;
struct ProjectData;

/// Assembles a Project in memory: the case ids, one column of values per variable, and the
/// auxiliary files. Used by the study reader and by hosts and tests that make studies of their
/// own. build() checks the whole and throws std::invalid_argument, naming the problem, for
/// repeated case ids, repeated or empty variable names, columns of the wrong length and files of
/// unknown cases.
class QUEN_DATAMANAGEMENT_LIB2_EXPORT ProjectBuilder
{
public:
  ProjectBuilder();
  ~ProjectBuilder();
  ProjectBuilder(const ProjectBuilder&) = delete;
  ProjectBuilder& operator=(const ProjectBuilder&) = delete;

  /// The folder that relative file paths are resolved against.
  void setFolder(std::string folder);
  /// The case ids, in record order.
  void setCaseIds(std::vector<unsigned long long> caseIds);
  /// A numeric variable; its nature is decided from the values unless given.
  void addNumericVariable(std::string name, std::vector<double> values);
  void addNumericVariable(std::string name, std::vector<double> values, Variable::Nature nature);
  void addTextVariable(std::string name, std::vector<std::string> values);
  /// What an added variable is to the study; Unknown unless set. A name no variable has is
  /// refused by build().
  void setRole(const std::string& variable, Variable::Role role);
  /// An auxiliary file of a case, with a path relative to the folder. Repeated tags are dropped.
  void addAuxFile(unsigned long long caseId,
                  std::string relativePath,
                  std::vector<std::string> tags);

  /// The project; the builder is empty afterwards.
  std::shared_ptr<const Project> build();

  /// A copy of `base` without the variables named in `removed` and with the numeric `added`
  /// ones after the others (natures decided from their values, roles unknown). The copy's
  /// objects have new ids, as in any new project. Throws std::invalid_argument for a name
  /// `removed` lacks, an added name already taken, or a column of the wrong length.
  static std::shared_ptr<const Project> withColumns(
    const Project& base,
    const std::vector<std::string>& removed,
    std::vector<std::pair<std::string, std::vector<double>>> added);

  /// Continuous or Discrete for a numeric column: Discrete when it holds at most 20 distinct
  /// finite values, each occurring twice on average (the swept inputs of a design study).
  static Variable::Nature natureOfNumbers(const std::vector<double>& values);

  /// The name of the case-id variable.
  static const char* caseIdName;

private:
  // The project of `data`, its objects pointing back at it.
  static std::shared_ptr<const Project> own(std::unique_ptr<ProjectData> data);

  struct Pending;
  std::unique_ptr<Pending> pending;
};
