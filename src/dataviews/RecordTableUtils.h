#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <set>

class vtkTable;

/// Reads case ids out of a table whose column 0 holds them.
///
/// A value is read as vtkVariant::ToInt() reads it and the signed 32-bit result is widened with
/// its sign: ids above 2147483647 do not survive, and -1 reads as 18446744073709551615. Every
/// reader of case ids from plot tables uses this same conversion, so comparisons stay
/// consistent.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT RecordTableUtils
{
public:
  /// The case id of a row; 0 for a row outside the table or a table without columns.
  static unsigned long long caseIDAtRow(vtkTable& table, long long row);
  /// The case ids of all rows; empty for an empty table.
  static std::set<unsigned long long> caseIDs(vtkTable& table);
};
