#pragma once

#include "formats/StudyFormat.h"

namespace explorer
{

/// A table of runs: a CSV, TSV or text file with a header, one row per run (see readRunTable),
/// such as a spreadsheet's, a job scheduler's or a design tool's, whose "in:" and "out:" columns
/// give the variables' roles and whose columns of paths or URLs give the runs' files.
class TableOfRunsFormat : public StudyFormat
{
public:
  std::string name() const override { return "table of runs"; }
  std::string description() const override
  {
    return "a table of runs (a .csv, .tsv or .txt file with a header, one row per run)";
  }
  int score(const std::string& path) const override;
  std::shared_ptr<const Project> read(const std::string& path,
                                      const ReadOptions& options) const override;
};

} // namespace explorer
