#pragma once

#include "datamanagement/CinemaReader.h"

#include <memory>
#include <string>
#include <vector>

class Project;
class QWidget;

namespace explorer
{

/// Reads a study in whichever format reads it (see StudyFormats), with paths of Cinema
/// databases written elsewhere rewritten by `rebases`, in the background: a progress dialog
/// shows over `parent` and the window stays responsive. Throws what the readers throw.
std::shared_ptr<const Project> readStudyWithProgress(const std::string& path,
                                                     const std::vector<PathRebase>& rebases,
                                                     QWidget* parent);

} // namespace explorer
