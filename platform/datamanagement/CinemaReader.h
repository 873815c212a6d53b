#pragma once

#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <memory>
#include <string>
#include <vector>

class Project;

/// Rewrites file paths that point outside a database: a path that starts with `from` starts
/// with `to` instead ("/old/cluster/run" becomes "/home/me/run"), for databases written on
/// another machine.
struct PathRebase
{
  std::string from;
  std::string to;
};

/// True when the folder holds a Cinema database rather than a study: a "data.csv" and no
/// "cases.csv".
QUEN_DATAMANAGEMENT_LIB2_EXPORT bool isCinemaDatabase(const std::string& folder);

/// Reads a Cinema "Spec D" database: a folder holding "data.csv", one row per run, with a
/// header of column names.
/// - A column whose name starts with "FILE" holds paths of the run's files, relative to the
///   folder; each becomes an auxiliary file of the run tagged with the column name (so that the
///   image matrix can lay them out by it). An empty or NaN cell is no file; a file that does not
///   exist is listed all the same. Such a column is not a variable.
/// - Paths that are absolute ("/data/a.png", or "file://host/data/a.png") must lie inside the
///   folder, and relative ones must not lead out of it, unless a rebase rewrites them; otherwise
///   the database is refused with a message naming the row. URLs ("https://host/a.png") are
///   kept as written.
/// - The case ids are the row numbers (the first run is 1), unless a column named "case_id",
///   "id", "run" or "simuID" (in any case) holds unique non-negative integers: then they are the
///   case ids and that column is not a variable.
/// - The other columns are variables as in a study: numbers (an empty field or "NaN" is NaN), or
///   text when any value is not a number.
///
/// Throws StudyFormatError naming the file, line and column of the first problem; the current
/// project is never touched.
QUEN_DATAMANAGEMENT_LIB2_EXPORT std::shared_ptr<const Project> readCinemaDatabase(
  const std::string& folder,
  const std::vector<PathRebase>& rebases);
