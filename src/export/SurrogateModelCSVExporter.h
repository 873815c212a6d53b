#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <vtkSmartPointer.h>

#include <string>

class vtkTableAlgorithm;

/// Writes the current output table of a table algorithm as a comma-separated file, through
/// vtkDelimitedTextWriter: a header of quoted column names, quoted texts, and numbers with six
/// significant digits (558.765989623179 becomes 558.766). For values that must read back
/// exactly, use FullPrecisionCSVExporter.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT SurrogateModelCSVExporter
{
public:
  /// False when the path cannot be opened for writing (nothing is written then); true once the
  /// table was handed to the writer. The algorithm is not updated first, so its output must be
  /// current. Opening the path empties an existing file, even if the writer then fails.
  bool writeCSVFile(vtkSmartPointer<vtkTableAlgorithm> algorithm, const std::string& path) const;
};
