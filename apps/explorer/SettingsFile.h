#pragma once

#include "SettingsError.h"
#include "derived/DerivedVariables.h"

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
/// view (written by the view's serializer), the range filters and the derived variables the
/// study is shown with ("DerivedVariables", one "DerivedVariable" element with a name and an
/// expression each, in the order they are computed).
class SettingsFile
{
public:
  using StudySettings = std::vector<boost::shared_ptr<SerializerInterface>>;

  static QString write(const StudySettings& study,
                       const std::vector<ExplorerView*>& views,
                       const DataPipelineManager& pipeline,
                       const DerivedVariables& derived = {});

  /// The derived variables a document names; throws SettingsError for a document that is not
  /// well-formed or a definition without a name.
  static DerivedVariables derivedVariablesOf(const QString& xml, const std::string& source);
  /// The document with `derived` in place of its derived variables.
  static QString withDerivedVariables(const QString& xml, const DerivedVariables& derived);
  /// The document with every setting of `views` and every filter that names the variable `from`
  /// naming `to` instead.
  static QString withVariableRenamed(const QString& xml,
                                     const std::vector<ExplorerView*>& views,
                                     const std::string& from,
                                     const std::string& to);
  /// What in a document names the variable: the titles of the views whose settings do, and
  /// "the range filters" when a filter does.
  static std::vector<std::string> usesOf(const QString& xml,
                                         const std::vector<ExplorerView*>& views,
                                         const std::string& variable);

  /// Applies a document as load() does, without recording an undo step.
  static void apply(const QString& xml,
                    const std::string& source,
                    const StudySettings& study,
                    const std::vector<ExplorerView*>& views,
                    DataPipelineManager& pipeline,
                    const Project& project);

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
