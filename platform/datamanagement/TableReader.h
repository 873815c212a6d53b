#pragma once

#include "datamanagement/CinemaReader.h"
#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <memory>
#include <string>
#include <vector>

class Project;

/// Reads a table of runs, as spreadsheets, job schedulers and design tools write them: a text
/// file (".csv", ".tsv", ".txt") with a header row, then one row per run.
/// - The fields are separated by commas, tabs or semicolons: whichever the header holds most of,
///   outside quotes. UTF-8, with or without a byte-order mark; fields may be quoted.
/// - The case ids are the row numbers (the first run is 1), unless a column named "case_id",
///   "id", "run" or "simuID" (in any case) holds unique non-negative integers.
/// - A column whose non-empty fields are all file names or URLs ("runs/a.png",
///   "https://host/a.json": a name with an extension and a folder, a scheme, or a file beside
///   the table) is a column of files: each field a file of its run, tagged with the column's
///   name. Paths are relative to the table's folder, must not lead out of it unless a rebase
///   sends them elsewhere, and URLs are kept as written.
/// - A column named "in:NAME" or "out:NAME" (in any case) is the input or output variable NAME
///   of the runs; units in brackets stay in the name ("in:Depth [ft]" is "Depth [ft]").
/// - The other columns are variables as in a study: numbers (an empty field or "NaN" is NaN), or
///   text when any field is not a number.
///
/// Throws StudyFormatError naming the file, line and column of the first problem (a ragged row,
/// a file that is not text); the current project is never touched.
QUEN_DATAMANAGEMENT_LIB2_EXPORT std::shared_ptr<const Project> readRunTable(
  const std::string& path,
  const std::vector<PathRebase>& rebases);

/// The separator of a table's header line: ',', '\t' or ';', whichever it holds most of outside
/// quotes; a comma when it holds none.
QUEN_DATAMANAGEMENT_LIB2_EXPORT char tableSeparator(const std::string& headerLine);
