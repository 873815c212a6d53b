#pragma once

#include "datamanagement/AuxFile.h"

#include <string>
#include <vector>

class Project;
class Record;

/// Which files of a study are images. Studies list data files beside their images (tables,
/// volumes, molecules); the image views show image files only. A file is an image by its
/// extension, one Qt can decode ("png", "jpg", ...); a file without an extension by its
/// content, when it exists.
namespace explorer::studyfiles
{

bool isImage(const std::string& path);

/// The tags whose files are all images, in the study's order of tags.
std::vector<std::string> imageTags(const Project& project);

/// Whether a file is a run's own series, a table of numbers: a ".csv", ".tsv" or ".txt" file.
bool isSeries(const std::string& path);
/// The tags whose files are all series, in the study's order of tags.
std::vector<std::string> seriesTags(const Project& project);
/// Whether any file of the study is not an image.
bool hasOtherFiles(const Project& project);

/// The image files of a case, in its order; with a tag, only those that carry it.
std::vector<AuxFile> imagesOf(const Record& record, const std::string& tag);

} // namespace explorer::studyfiles
