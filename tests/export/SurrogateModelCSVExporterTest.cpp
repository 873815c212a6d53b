#include "export/SurrogateModelCSVExporter.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"
#include "export/CSVTestReader.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <vtkTableAlgorithm.h>

#include <filesystem>

using testsupport::readFile;
using testsupport::TemporaryFolder;

namespace
{

std::shared_ptr<const Project> study()
{
  ProjectBuilder builder;
  builder.setCaseIds({ 1, 2, 3 });
  builder.addNumericVariable("range", { 558.765989623179, 12.0, 40.5 });
  builder.addTextVariable("label", { "steel, polished", "wood", "lead" });
  return builder.build();
}

} // namespace

TEST(SurrogateModelCSVExporter, WritesTheAlgorithmsOutputWithHeaderAndQuotedTexts)
{
  const auto project = study();
  DataPipelineManager pipeline(project);
  pipeline.setRangeFilter(project->variable("range"), 20, 1000);
  auto algorithm = pipeline.output();
  algorithm->Update();

  TemporaryFolder folder;
  const std::string path = folder.filePath("export.csv");
  ASSERT_TRUE(SurrogateModelCSVExporter().writeCSVFile(algorithm, path));
  const auto rows = readCSV(readFile(path));
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0], (std::vector<std::string>{ "case_id", "range", "label" }));
  EXPECT_EQ(rows[1], (std::vector<std::string>{ "1", "558.766", "steel, polished" }))
    << "six significant digits, as the VTK writer keeps them";
  EXPECT_EQ(rows[2], (std::vector<std::string>{ "3", "40.5", "lead" }));
}

TEST(SurrogateModelCSVExporter, ReplacesAnExistingFileAndRefusesAnUnwritablePath)
{
  const auto project = study();
  DataPipelineManager pipeline(project);
  auto algorithm = pipeline.output();
  algorithm->Update();

  TemporaryFolder folder;
  const std::string existing = folder.write("export.csv", std::string(10000, 'x'));
  ASSERT_TRUE(SurrogateModelCSVExporter().writeCSVFile(algorithm, existing));
  EXPECT_EQ(readCSV(readFile(existing)).size(), 4u) << "the old content is gone";

  const std::string missingFolder = folder.filePath("no/such/folder/export.csv");
  EXPECT_FALSE(SurrogateModelCSVExporter().writeCSVFile(algorithm, missingFolder));
  EXPECT_FALSE(std::filesystem::exists(folder.filePath("no")));
  EXPECT_FALSE(SurrogateModelCSVExporter().writeCSVFile(algorithm, folder.path()))
    << "a folder is not a writable file";
}
