#pragma once

#include "datamanagement/StudyObjectHandle.h"
#include "datamanagement/WeakPtr.h"
#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <string>
#include <vector>

struct AuxFileData;
class Record;

/// An auxiliary file of a case (an image), with its tags.
class QUEN_DATAMANAGEMENT_LIB2_EXPORT AuxFile : public StudyObjectHandle<AuxFileData>
{
public:
  using StudyObjectHandle::StudyObjectHandle;

  unsigned long long id() const;
  /// The path to open: the study folder joined with the relative path. The file may not exist.
  std::string filePath() const;
  /// The path as written in auxfiles.csv, relative to the study folder.
  std::string relativePath() const;
  /// The tag texts, in the order written, without repeats.
  std::vector<std::string> tags() const;
  /// Whether the file carries the tag; texts compare byte for byte.
  bool hasTag(const std::string& tag) const;
  /// The case the file belongs to.
  WeakPtr<Record> record() const;

  /// Whether a path is a URL ("https://host/a.png": a scheme of two or more letters, digits,
  /// '+', '-' or '.', then "://"). A study keeps URLs as written, never joined to its folder.
  static bool isUrl(const std::string& path);
};
