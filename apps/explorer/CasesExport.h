#pragma once

#include <QString>

#include <memory>

class DataPipelineManager;
class Project;

namespace explorer
{

class VariableRoles;

/// Writes the cases `pipeline` lets through to a CSV file that opens back as the same study:
/// with the paths of their files and the roles of their variables as `roles` says (see
/// vtkExportedColumns), in full precision or with six significant digits through VTK. Returns false
/// and sets `error` to a message for the user when the file cannot be written.
bool exportShownCases(const DataPipelineManager& pipeline,
                      std::shared_ptr<const Project> project,
                      std::shared_ptr<const VariableRoles> roles,
                      const QString& path,
                      bool fullPrecision,
                      QString& error);

} // namespace explorer
