#pragma once

#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <memory>
#include <string>

class Project;

/// Reads a study folder:
/// - "cases.csv": a header "case_id,<variable>,...", then one row per case: the case id (a
///   decimal integer from 0 to 2^64-1, unique), then one value per variable. A variable whose
///   values are all numbers is numeric (an empty field or "nan" is NaN); any other text makes
///   the whole variable a text variable.
/// - "auxfiles.csv" (optional): a header "case_id,path,tags", then one row per file: the case,
///   a path relative to the folder, and tags separated by ";". A "group:tag" text puts the tag
///   in the tag group "group". A listed file that does not exist is not an error.
///
/// Throws StudyFormatError naming the file, line and column of the first problem; the current
/// project (Project::project()) is never touched, so a failed read loses nothing.
QUEN_DATAMANAGEMENT_LIB2_EXPORT std::shared_ptr<const Project> readStudy(const std::string& folder);
