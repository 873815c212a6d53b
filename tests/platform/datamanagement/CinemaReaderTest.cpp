#include "datamanagement/CinemaReader.h"
#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "datamanagement/StudyFormatError.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

using testsupport::TemporaryFolder;

namespace
{

// The files of each case, as "tag=relative path".
std::map<unsigned long long, std::vector<std::string>> filesByCase(const Project& project)
{
  std::map<unsigned long long, std::vector<std::string>> files;
  for (const auto& handle : project.auxFiles())
  {
    const AuxFile file = handle.lock();
    files[file.record().lock().caseId()].push_back(file.tags().at(0) + "=" + file.relativePath());
  }
  return files;
}

} // namespace

TEST(CinemaReader, ParametersBecomeVariablesAndFileColumnsTaggedFiles)
{
  TemporaryFolder db;
  db.write("data.csv",
           "theta,phi,label,FILE,FILE_depth\n"
           "0,10,a,images/0_10.png,depth/0_10.png\n"
           "0,20,b,images/0_20.png,\n"
           "90,10,,images/missing.png,NaN\n"
           "NaN,,c,notes/readme.txt,depth/90_20.png\n");
  db.write("images/0_10.png", "not decoded here");
  const auto project = readCinemaDatabase(db.path(), {});
  ASSERT_EQ(project->numberOfRecords(), 4u);
  EXPECT_EQ(project->records()[0].lock().caseId(), 1u) << "row numbers, from 1";
  ASSERT_EQ(project->variables().size(), 3u) << "FILE columns are not variables";
  EXPECT_EQ(project->variable("theta").lock().nature(), Variable::Continuous);
  EXPECT_EQ(project->variable("label").lock().nature(), Variable::Text);
  EXPECT_TRUE(std::isnan(project->records()[3].lock().data(project->variable("phi")).toDouble()));
  EXPECT_EQ(filesByCase(*project),
            (std::map<unsigned long long, std::vector<std::string>>{
              { 1, { "FILE=images/0_10.png", "FILE_depth=depth/0_10.png" } },
              { 2, { "FILE=images/0_20.png" } },
              { 3, { "FILE=images/missing.png" } },
              { 4, { "FILE=notes/readme.txt", "FILE_depth=depth/90_20.png" } } }))
    << "blank and NaN cells are no file; missing and non-image files are listed";
  EXPECT_EQ(project->auxFiles()[0].lock().filePath(), db.filePath("images/0_10.png"));
}

TEST(CinemaReader, AnIdColumnGivesTheCaseIdsOnlyWhenItsValuesAreUniqueIntegers)
{
  const struct
  {
    const char* data;
    std::vector<unsigned long long> ids;
    std::size_t variables;
  } cases[] = {
    { "x,RUN\n1,7\n2,3\n", { 7, 3 }, 1 },
    { "simuID,x\n5,1\n5,2\n", { 1, 2 }, 2 }, // repeated: a variable
    { "id,x\n-1,1\n2,2\n", { 1, 2 }, 2 },    // negative
    { "x,FILE\n", {}, 1 },                   // a header only
  };
  for (const auto& c : cases)
  {
    TemporaryFolder db;
    db.write("data.csv", c.data);
    const auto project = readCinemaDatabase(db.path(), {});
    std::vector<unsigned long long> ids;
    for (const auto& record : project->records())
      ids.push_back(record.lock().caseId());
    EXPECT_EQ(ids, c.ids) << c.data;
    EXPECT_EQ(project->variables().size(), c.variables) << c.data;
  }
}

TEST(CinemaReader, PathsOutsideTheFolderAreRefusedWithTheirRowUnlessRebased)
{
  TemporaryFolder db;
  const struct
  {
    const char* path;
    const char* message;
  } refused[] = {
    { "file://cluster/scratch/a.png",
      "data.csv:3:3: row 2: path \"file://cluster/scratch/a.png\" is outside" },
    { "/scratch/a.png", "row 2: path \"/scratch/a.png\" is outside the database folder" },
    { "../a.png", "row 2: path \"../a.png\" leads out of the database folder" },
    { "images/../../a.png", "leads out of the database folder" },
  };
  for (const auto& c : refused)
  {
    db.write("data.csv", std::string("x,FILE\n1,ok.png\n2,") + c.path + "\n");
    try
    {
      readCinemaDatabase(db.path(), {});
      ADD_FAILURE() << c.path << " was accepted";
    }
    catch (const StudyFormatError& e)
    {
      EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos) << e.what();
    }
  }

  db.write("data.csv",
           "x,FILE\n1,file://cluster/scratch/run1/a.png\n2,/scratch/run2/b.png\n3," + db.path() +
             "/inside.png\n");
  const auto project = readCinemaDatabase(db.path(), { { "/scratch", "/home/me/runs" } });
  EXPECT_EQ(project->auxFiles()[0].lock().filePath(), "/home/me/runs/run1/a.png");
  EXPECT_EQ(project->auxFiles()[1].lock().filePath(), "/home/me/runs/run2/b.png");
  EXPECT_EQ(project->auxFiles()[2].lock().relativePath(), "inside.png")
    << "an absolute path inside the folder needs no rebase";

  // A URL names a file elsewhere: kept as written, never joined to the folder, unless rebased.
  db.write("data.csv", "x,FILE\n1,https://host/study/a.png\n2,HTTP://host/b.png\n");
  const auto remote = readCinemaDatabase(db.path(), { { "http://", "/never" } });
  EXPECT_EQ(remote->auxFiles()[0].lock().filePath(), "https://host/study/a.png");
  EXPECT_EQ(remote->auxFiles()[0].lock().relativePath(), "https://host/study/a.png");
  EXPECT_EQ(remote->auxFiles()[1].lock().filePath(), "HTTP://host/b.png");
  const auto rebased = readCinemaDatabase(db.path(), { { "https://host/", "/home/me/" } });
  EXPECT_EQ(rebased->auxFiles()[0].lock().filePath(), "/home/me/study/a.png");
  const auto withoutSlash = readCinemaDatabase(db.path(), { { "https://host/", "/home/me" } });
  EXPECT_EQ(withoutSlash->auxFiles()[0].lock().filePath(), "/home/me/study/a.png")
    << "the folder's slash is not lost";
}

TEST(CinemaReader, MalformedDatabasesNameTheirProblem)
{
  const struct
  {
    const char* data;
    const char* message;
  } cases[] = {
    { nullptr, "the database folder has no data.csv" },
    { "", "data.csv:1:1: the file has no header" },
    { "x,y\n1,2\n3\n", "data.csv:3:1: expected 2 fields, found 1" },
    { "x,,y\n", "data.csv:1:3: the column has no name" },
    { "x,x\n", "data.csv:1:3: column \"x\" is repeated" },
    { "x,case_id\n1,1.5\n", "data.csv:1:3: column \"case_id\" must hold unique non-negative" },
    { "x,\"y\n1,2\n", "data.csv:1:3" },
  };
  for (const auto& c : cases)
  {
    TemporaryFolder folder;
    if (c.data)
      folder.write("data.csv", c.data);
    try
    {
      readCinemaDatabase(folder.path(), {});
      ADD_FAILURE() << "accepted: " << (c.data ? c.data : "(no data.csv)");
    }
    catch (const StudyFormatError& e)
    {
      EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos) << e.what();
    }
  }
}
