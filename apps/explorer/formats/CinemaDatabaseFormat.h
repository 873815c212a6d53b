#pragma once

#include "formats/StudyFormat.h"

namespace explorer
{

/// A Cinema database: a folder holding data.csv, one row per run, FILE columns for its files.
class CinemaDatabaseFormat : public StudyFormat
{
public:
  std::string name() const override { return "Cinema database"; }
  std::string description() const override
  {
    return "a Cinema database (a folder, often *.cdb, holding data.csv)";
  }
  /// Below a study folder: a folder holding both is read as a study.
  int score(const std::string& path) const override;
  std::shared_ptr<const Project> read(const std::string& path,
                                      const ReadOptions& options) const override;
};

} // namespace explorer
