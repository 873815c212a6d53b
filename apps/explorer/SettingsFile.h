#pragma once

#include "SettingsError.h"

#include <QString>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class DataPipelineManager;
class DeleteSignaler;
class Project;
class SerializerInterface;

namespace explorer
{

class ExplorerView;

/// The view settings of the explorer as one XML document: an element "ExplorerSettings" with the
/// settings of the study that every view shares (where its files are, say), the element of each
/// view (written by the view's serializer) and the range filters.
class SettingsFile
{
public:
  using StudySettings = std::vector<boost::shared_ptr<SerializerInterface>>;

  static QString write(const StudySettings& study,
                       const std::vector<ExplorerView*>& views,
                       const DataPipelineManager& pipeline);

  /// Reads settings and applies them. A document that is not well-formed, is not explorer
  /// settings, or names variables the study does not have is refused before anything changes;
  /// a value a setting refuses while applying puts every setting back as it was. Throws
  /// SettingsError; `source` names the document in messages. Loading is one undo step ("Load
  /// Settings"), which does nothing once `owner` is gone.
  static void load(const QString& xml,
                   const std::string& source,
                   const StudySettings& study,
                   const std::vector<ExplorerView*>& views,
                   DataPipelineManager& pipeline,
                   const Project& project,
                   const DeleteSignaler& owner);
};

} // namespace explorer
