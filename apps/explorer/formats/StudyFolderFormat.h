#pragma once

#include "formats/StudyFormat.h"

namespace explorer
{

/// The explorer's own study folder: cases.csv, and auxfiles.csv for the cases' files.
class StudyFolderFormat : public StudyFormat
{
public:
  std::string name() const override { return "study folder"; }
  std::string description() const override
  {
    return "a study folder holding cases.csv (and auxfiles.csv), or its cases.csv";
  }
  int score(const std::string& path) const override;
  std::shared_ptr<const Project> read(const std::string& path,
                                      const ReadOptions& options) const override;
};

} // namespace explorer
