#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <stdexcept>
#include <string>

class vtkTable;

/// A CSV export that could not be written; the message names the path and the reason. The file
/// that was at the path, if any, is untouched.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT CSVExportError : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
  ~CSVExportError() override;
};

/// Writes a table as a comma-separated file whose values read back exactly:
/// - a header row with the column names (a column of n components gives the columns
///   "name:0" ... "name:n-1", as vtkDelimitedTextWriter names them);
/// - every double and float in the shortest text that reads back to the same value
///   (558.765989623179 stays 558.765989623179), infinities as "inf" and "-inf", NaN as an empty
///   field; integers as integers; bits as 0 and 1;
/// - texts quoted only when they hold a comma, a double quote or a line break, with quotes
///   doubled.
/// The file is written beside its destination under a temporary name and renamed into place,
/// so a failed export never leaves a truncated file where a good one was.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT FullPrecisionCSVExporter
{
public:
  /// Throws CSVExportError.
  void writeCSVFile(vtkTable& table, const std::string& path) const;

  /// The field text of a double: shortest round-trip form, "" for NaN.
  static std::string formatDouble(double value);
  /// The field text of a text: quoted when needed, quotes doubled.
  static std::string quoteText(const std::string& text);
};
