#pragma once

#include "formats/StudyFormat.h"

#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace explorer
{

/// Every study format the explorer reads, in the order they are offered.
const std::vector<std::unique_ptr<StudyFormat>>& studyFormats();

/// The format that reads `path` best, or null when none can.
const StudyFormat* formatOf(const std::string& path);

/// Reads a study in whichever format reads it best. A path no format reads is refused with a
/// StudyFormatError that says what the path is and what the explorer opens.
std::shared_ptr<const Project> readAnyStudy(const std::string& path, const ReadOptions& options);

/// The formats, one per line, for --help.
std::string formatsHelp();

} // namespace explorer
