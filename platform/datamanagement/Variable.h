#pragma once

#include "datamanagement/StudyObjectHandle.h"
#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <string>
#include <utility>

struct VariableData;

/// A variable of a study: a column of cases.csv.
class QUEN_DATAMANAGEMENT_LIB2_EXPORT Variable : public StudyObjectHandle<VariableData>
{
public:
  /// How a variable's values behave, decided when the study is read: Continuous for numbers
  /// with many distinct values, Text for texts, Discrete for numbers with few distinct values
  /// (such as the swept inputs of a design study).
  enum Nature : int
  {
    Continuous = 0,
    Text = 1,
    Discrete = 2
  };

  /// What a variable is to the study that wrote it: an input the runs were given (a parameter of
  /// the design), an output they produced (a result), or not said.
  enum Role : int
  {
    Unknown = 0,
    Input = 1,
    Output = 2
  };

  using StudyObjectHandle::StudyObjectHandle;

  /// Unique id of the object; 0 for an empty handle.
  unsigned long long id() const;
  /// The column name; empty for an empty handle.
  std::string name() const;
  Nature nature() const;
  /// Unknown unless the study said it (an "in:" or "out:" column of a table, say).
  Role role() const;
  /// Smallest and largest finite value; (0, 0) for texts, for a variable without finite values
  /// and for an empty handle, so that the range is always finite.
  std::pair<double, double> range() const;
};
