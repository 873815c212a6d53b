// Where a study's files are on this machine, and which of them are images.

#include "FileLocator.h"
#include "StudyFiles.h"

#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "properties/PropertyAbstract.h"
#include "serialize/SerializerInterface.h"
#include "support/SmallStudy.h"
#include "support/TemporaryFolder.h"

#include <QDomDocument>
#include <QDomElement>
#include <gtest/gtest.h>

using explorer::FileLocator;
using testsupport::TemporaryFolder;

TEST(FileLocator, FindsFilesWrittenElsewhereThroughItsLocations)
{
  TemporaryFolder here;
  const std::string local = here.write("runs/a.png", "x");
  here.write("runs/deep/b.png", "x");
  const std::string root = here.path();
  FileLocator locator;
  locator.addLocation({ "https://host/study/", root + "/runs" });
  locator.addLocation({ "https://host/study/deep/", root + "/runs/deep" });
  locator.addLocation({ "/scratch/old/", root + "/runs" });
  const struct
  {
    std::string written;
    std::string located;
  } paths[] = {
    { local, local },                                               // found as written
    { "file://" + local, local },                                   // a file URL is its path
    { "file://somehost" + local, local },                           // with a host
    { "https://host/study/a.png", root + "/runs/a.png" },           // through a location
    { "https://host/study/deep/b.png", root + "/runs/deep/b.png" }, // the longest prefix wins
    { "/scratch/old/a.png", root + "/runs/a.png" },                 // an absolute path elsewhere
    { "https://host/study/../../etc/passwd", "https://host/study/../../etc/passwd" }, // no way out
    { "https://other/a.png", "https://other/a.png" }, // no location: as written
  };
  for (const auto& path : paths)
    EXPECT_EQ(locator.locate(path.written), path.located) << path.written;
}

TEST(FileLocator, CountsAndNamesWhatIsNotFoundAndLocationsAreUndoneAndSaved)
{
  TemporaryFolder here;
  here.write("mine/run1.png", "x");
  here.write("mine/run2.png", "x");
  ProjectBuilder builder;
  builder.setFolder(here.path());
  builder.setCaseIds({ 1, 2, 3 });
  builder.addNumericVariable("x", { 1, 2, 3 });
  builder.addAuxFile(1, "https://host/data/run1.png", { "img" });
  builder.addAuxFile(2, "https://host/data/run2.png", { "img" });
  builder.addAuxFile(3, "images/run3.png", { "img" });
  const auto project = builder.build();
  const auto files = project->auxFiles();
  EXPECT_EQ(files[0].lock().filePath(), "https://host/data/run1.png")
    << "a URL is kept, not joined to the study folder";

  FileLocator locator;
  std::size_t missing = 0;
  std::size_t urls = 0;
  locator.countMissing(*project, missing, urls);
  EXPECT_EQ(missing, 3u);
  EXPECT_EQ(urls, 2u);
  const QString problem = locator.problem(files[0].lock());
  EXPECT_TRUE(problem.contains("https://host/data/run1.png") && problem.contains("Locate Files"))
    << problem.toStdString();
  EXPECT_EQ(locator.problem(files[2].lock()), "missing: images/run3.png");

  // The proposal: the part before the name, and the folder below where the name is.
  FileLocator::Location proposed;
  ASSERT_TRUE(locator.proposeLocation(*project, here.path(), proposed));
  EXPECT_EQ(proposed.prefix, "https://host/data/");
  EXPECT_EQ(proposed.folder, here.path() + "/mine");

  // The count is kept for a study naming the same files (one made anew for a derived variable):
  // a file put in place meanwhile is not looked for again until the files or locations change.
  explorer::MissingFiles kept;
  EXPECT_EQ(kept.of(locator, *project).missing, 3u);
  builder.setFolder(here.path());
  builder.setCaseIds({ 1, 2, 3 });
  builder.addNumericVariable("x", { 1, 2, 3 });
  builder.addNumericVariable("derived", { 2, 4, 6 });
  builder.addAuxFile(1, "https://host/data/run1.png", { "img" });
  builder.addAuxFile(2, "https://host/data/run2.png", { "img" });
  builder.addAuxFile(3, "images/run3.png", { "img" });
  const auto remade = builder.build();
  here.write("images/run3.png", "x");
  EXPECT_EQ(kept.of(locator, *remade).missing, 3u) << "the same files: not looked for again";

  UndoStack().clear();
  locator.addLocation(proposed);
  locator.countMissing(*project, missing, urls);
  EXPECT_EQ(missing, 0u) << "located, and the file put in place";
  EXPECT_EQ(urls, 0u);
  EXPECT_EQ(kept.of(locator, *remade).missing, 0u) << "other locations: counted again";
  builder.setFolder(here.path());
  builder.setCaseIds({ 1 });
  builder.addAuxFile(1, "images/run4.png", { "img" });
  EXPECT_EQ(kept.of(locator, *builder.build()).missing, 1u) << "other files: counted again";
  EXPECT_TRUE(locator.problem(files[1].lock()).isEmpty());

  QDomDocument document;
  const QDomElement saved = locator.serializer()->serialize(document);
  UndoStack().undo();
  EXPECT_TRUE(locator.locationList().empty()) << "adding a location is one undo step";
  QDomElement element = saved;
  locator.serializer()->deserialize(element);
  ASSERT_EQ(locator.locationList().size(), 1u);
  EXPECT_EQ(locator.locationList().front().folder, here.path() + "/mine");

  // A saved location without its folder is refused and changes nothing.
  QDomDocument bad;
  bad.setContent(QString("<FileLocations><Location prefix=\"https://x/\"/></FileLocations>"));
  QDomElement refused = bad.documentElement();
  EXPECT_THROW(locator.serializer()->deserialize(refused), std::exception);
  EXPECT_EQ(locator.locationList().size(), 1u);
  UndoStack().clear();
}

TEST(StudyFiles, ImageViewsTakeImageFilesOnly)
{
  TemporaryFolder here;
  const std::string png = testsupport::writeImage(here, "pictures/a", 4, 4, Qt::red);
  const struct
  {
    std::string path;
    bool image;
  } paths[] = {
    { "a.png", true },
    { "b.JPG", true },
    { "c.jpeg", true },
    { "data/d.csv", false },
    { "e.vti", false },
    { "f.pdb", false },
    { png, true }, // no extension: by its content
    { here.write("notes", "just text"), false },
    { "https://host/g.png", true },
  };
  for (const auto& path : paths)
    EXPECT_EQ(explorer::studyfiles::isImage(path.path), path.image) << path.path;

  ProjectBuilder builder;
  builder.setFolder(here.path());
  builder.setCaseIds({ 1, 2 });
  builder.addNumericVariable("x", { 1, 2 });
  builder.addAuxFile(1, "1.csv", { "FILE_table" });
  builder.addAuxFile(1, "1.png", { "FILE_image" });
  builder.addAuxFile(2, "2.vti", { "FILE_mixed" });
  builder.addAuxFile(1, "1b.png", { "FILE_mixed" });
  builder.addAuxFile(2, "2.png", { "FILE_image" });
  const auto project = builder.build();
  EXPECT_EQ(explorer::studyfiles::imageTags(*project), std::vector<std::string>{ "FILE_image" })
    << "a tag whose files are all images";
  EXPECT_TRUE(explorer::studyfiles::hasOtherFiles(*project));
  EXPECT_EQ(explorer::studyfiles::seriesTags(*project), std::vector<std::string>{ "FILE_table" });
  // The answers are kept for a study, and another study has its own.
  builder.setCaseIds({ 1 });
  builder.addAuxFile(1, "1.png", { "FILE_mixed" });
  const auto imagesOnly = builder.build();
  EXPECT_EQ(explorer::studyfiles::imageTags(*imagesOnly), std::vector<std::string>{ "FILE_mixed" });
  EXPECT_FALSE(explorer::studyfiles::hasOtherFiles(*imagesOnly));
  EXPECT_TRUE(explorer::studyfiles::seriesTags(*imagesOnly).empty());
  EXPECT_TRUE(explorer::studyfiles::hasOtherFiles(*project)) << "the first study, asked again";
  const auto images = explorer::studyfiles::imagesOf(project->record(1).lock(), "");
  ASSERT_EQ(images.size(), 2u) << "the table is left out, the images kept in order";
  EXPECT_EQ(images[0].relativePath(), "1.png");
  EXPECT_EQ(explorer::studyfiles::imagesOf(project->record(1).lock(), "FILE_mixed").size(), 1u);
}
