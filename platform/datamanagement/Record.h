#pragma once

#include "common/Variant.h"
#include "datamanagement/StudyObjectHandle.h"
#include "datamanagement/WeakPtr.h"
#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <vector>

struct RecordData;
class AuxFile;
class Variable;

/// A case of a study: its case id, its value for each variable and its auxiliary files.
class QUEN_DATAMANAGEMENT_LIB2_EXPORT Record : public StudyObjectHandle<RecordData>
{
public:
  using StudyObjectHandle::StudyObjectHandle;

  unsigned long long id() const;
  /// The case id; 0 for an empty handle.
  unsigned long long caseId() const;
  /// The value of the variable for this case: a double for numeric variables (NaN when missing),
  /// a text for text variables, the case id for the project's case-id variable, and the empty
  /// Variant for an empty handle or a variable of another project.
  Variant data(const Variable& variable) const;
  Variant data(const WeakPtr<Variable>& variable) const;
  /// The case's auxiliary files, in the order of auxfiles.csv.
  std::vector<WeakPtr<AuxFile>> auxFiles() const;
};
