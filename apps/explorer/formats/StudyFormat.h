#pragma once

#include "datamanagement/CinemaReader.h"

#include <memory>
#include <string>
#include <vector>

class Project;

namespace explorer
{

/// What a reader is told besides the path: how to rewrite paths written on another machine.
struct ReadOptions
{
  std::vector<PathRebase> rebases;
};

/// A kind of study the explorer opens: a folder or a file in a format. Each format is a reader
/// that says how well it can read a path; the registry (StudyFormats) asks them all and the best
/// one reads.
class StudyFormat
{
public:
  virtual ~StudyFormat() = default;

  /// The format's name for the user: "study folder".
  virtual std::string name() const = 0;
  /// What a path of this format holds, for the help and for messages: "a folder holding
  /// cases.csv (and auxfiles.csv)".
  virtual std::string description() const = 0;
  /// How well this format reads `path`: 0 not at all; the highest score reads it.
  virtual int score(const std::string& path) const = 0;
  /// Reads the study; throws what the reader throws (StudyFormatError, naming the file, line
  /// and column of the first problem).
  virtual std::shared_ptr<const Project> read(const std::string& path,
                                              const ReadOptions& options) const = 0;
};

} // namespace explorer
