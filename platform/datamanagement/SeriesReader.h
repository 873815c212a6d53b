#pragma once

#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <string>
#include <vector>

/// A run's own series, as a small table it wrote: named columns of numbers, one row per sample
/// (a history over time, values along a line).
struct QUEN_DATAMANAGEMENT_LIB2_EXPORT SeriesTable
{
  std::vector<std::string> names;
  /// One vector per column, in the header's order, all of the same length.
  std::vector<std::vector<double>> columns;

  /// The column of that name, or null.
  const std::vector<double>* column(const std::string& name) const;
  std::size_t rows() const { return columns.empty() ? 0 : columns.front().size(); }
};

/// Reads a series table: a header row, then rows of numbers, separated as tables of runs are
/// (commas, tabs or semicolons; quotes allowed). An empty field or "NaN" is NaN.
///
/// Throws StudyFormatError naming the file, line and column of the first problem: a field that
/// is not a number, a row with more or fewer fields than the header, a table without rows, a
/// file that cannot be read or is not UTF-8.
QUEN_DATAMANAGEMENT_LIB2_EXPORT SeriesTable readSeriesTable(const std::string& path);
