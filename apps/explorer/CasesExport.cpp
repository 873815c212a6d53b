#include "CasesExport.h"

#include "vtkExportedColumns.h"

#include "datapipeline/DataPipelineManager.h"
#include "export/FullPrecisionCSVExporter.h"
#include "export/SurrogateModelCSVExporter.h"

#include <QFileInfo>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <exception>

namespace explorer
{

bool exportShownCases(const DataPipelineManager& pipeline,
                      std::shared_ptr<const Project> project,
                      std::shared_ptr<const VariableRoles> roles,
                      const QString& path,
                      bool fullPrecision,
                      QString& error)
{
  auto output = vtkSmartPointer<vtkExportedColumns>::New();
  output->SetInputConnection(pipeline.output()->GetOutputPort());
  output->SetProject(std::move(project));
  output->SetRoles(std::move(roles));
  output->SetExportFolder(QFileInfo(path).absolutePath().toStdString());
  output->Update();
  if (fullPrecision)
  {
    try
    {
      FullPrecisionCSVExporter().writeCSVFile(*output->GetOutput(), path.toStdString());
    }
    catch (const std::exception& e)
    {
      error = QString::fromStdString(e.what());
      return false;
    }
    return true;
  }
  if (!SurrogateModelCSVExporter().writeCSVFile(output, path.toStdString()))
  {
    error = "cannot export to \"" + path + "\": the file cannot be written";
    return false;
  }
  return true;
}

} // namespace explorer
