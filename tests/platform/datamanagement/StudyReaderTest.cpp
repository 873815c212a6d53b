#include "datamanagement/StudyReader.h"
#include "datamanagement/Project.h"
#include "datamanagement/StudyFormatError.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>

using testsupport::TemporaryFolder;

TEST(StudyReader, ReadsCasesFilesTagsAndDecidesNatures)
{
  TemporaryFolder folder;
  // A byte-order mark, CRLF line ends, a quoted text holding a comma and a quote, empty and "nan"
  // values, a blank line, and a text column whose first values look like numbers.
  folder.write("cases.csv",
               "\xEF\xBB\xBF"
               "case_id,angle, speed ,label,code\r\n"
               "1,30,12.5,\"a, \"\"quoted\"\" label\",1\r\n"
               "2,45,,plain,2\r\n"
               "\r\n"
               "3,30,NaN,plain,x3\r\n"
               "4,45,+1e3,plain,4\r\n");
  folder.write("auxfiles.csv",
               "case_id,path,tags\n"
               "1,images/1.png, plot:trajectory ; plot:speed;;\n"
               "2,images/missing.png,plot:trajectory\n");
  folder.write("images/1.png", "not really a png");

  const auto project = readStudy(folder.path());
  EXPECT_EQ(project->caseIds(), (std::vector<unsigned long long>{ 1, 2, 3, 4 }));
  const Variable angle = project->variable("angle").lock();
  const Variable speed = project->variable("speed").lock();
  const Variable label = project->variable("label").lock();
  const Variable code = project->variable("code").lock();
  ASSERT_TRUE(angle && speed && label && code) << "header names are trimmed";
  EXPECT_EQ(angle.nature(), Variable::Discrete);
  EXPECT_EQ(speed.nature(), Variable::Continuous);
  EXPECT_EQ(label.nature(), Variable::Text);
  EXPECT_EQ(code.nature(), Variable::Text);

  const Record first = project->record(1).lock();
  EXPECT_EQ(first.data(label), Variant("a, \"quoted\" label"));
  EXPECT_EQ(first.data(code), Variant("1")) << "earlier values of a text column keep their text";
  EXPECT_EQ(project->record(4).lock().data(code), Variant("4"));
  EXPECT_EQ(project->record(4).lock().data(speed), Variant(1000.0));
  EXPECT_TRUE(std::isnan(project->record(2).lock().data(speed).toDouble()));
  EXPECT_TRUE(std::isnan(project->record(3).lock().data(speed).toDouble()));
  EXPECT_EQ(speed.range(), std::make_pair(12.5, 1000.0));

  const auto files = first.auxFiles();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(files[0].lock().tags(), (std::vector<std::string>{ "plot:trajectory", "plot:speed" }));
  EXPECT_EQ(files[0].lock().filePath(), folder.filePath("images/1.png"));
  EXPECT_EQ(project->record(2).lock().auxFiles().size(), 1u) << "a missing image is no error";
  EXPECT_EQ(project->tagGroup("plot").lock().tags().size(), 2u);
}

TEST(StudyReader, CaseIdsCoverTheWholeUnsigned64BitRangeAndAuxFilesAreOptional)
{
  TemporaryFolder folder;
  folder.write("cases.csv", "case_id,x\n0,1\n9223372036854775808,2\n18446744073709551615,3\n");
  const auto project = readStudy(folder.path());
  EXPECT_EQ(
    project->caseIds(),
    (std::vector<unsigned long long>{ 0, 9223372036854775808ULL, 18446744073709551615ULL }));
  EXPECT_TRUE(project->auxFiles().empty());

  // Ids in no order keep the file's order, and their files find them.
  TemporaryFolder unordered;
  unordered.write("cases.csv", "case_id,x\n7,1\n3,2\n5,3\n");
  unordered.write("auxfiles.csv", "case_id,path,tags\n3,a.png,t\n5,b.png,t\n5,c.png,t\n");
  const auto study = readStudy(unordered.path());
  EXPECT_EQ(study->caseIds(), (std::vector<unsigned long long>{ 7, 3, 5 }));
  EXPECT_EQ(study->record(7).lock().auxFiles().size(), 0U);
  EXPECT_EQ(study->record(3).lock().auxFiles().size(), 1U);
  EXPECT_EQ(study->record(5).lock().auxFiles().size(), 2U);
}

TEST(StudyReader, MalformedFilesNameFileLineColumnAndProblem)
{
  const struct
  {
    const char* cases;
    const char* auxFiles; // null: no auxfiles.csv
    const char* file;
    std::size_t line;
    std::size_t column;
    const char* problem;
  } cases[] = {
    { "", nullptr, "cases.csv", 1, 1, "the file is empty" },
    { "id,x\n1,2\n", nullptr, "cases.csv", 1, 1, "the first column must be \"case_id\"" },
    { "case_id,x,x\n", nullptr, "cases.csv", 1, 11, "column name \"x\" is repeated" },
    { "case_id,x,\n", nullptr, "cases.csv", 1, 11, "column 3 has no name" },
    { "case_id,x\n1,2\n2\n", nullptr, "cases.csv", 3, 1, "expected 2 fields, found 1" },
    { "case_id,x\n1,2,3\n", nullptr, "cases.csv", 2, 5, "expected 2 fields, found 3" },
    { "case_id,x\n1,2\nabc,3\n",
      nullptr,
      "cases.csv",
      3,
      1,
      "case id \"abc\" is not a non-negative integer" },
    { "case_id,x\n-1,2\n", nullptr, "cases.csv", 2, 1, "is not a non-negative integer" },
    { "case_id,x\n18446744073709551616,1\n",
      nullptr,
      "cases.csv",
      2,
      1,
      "is beyond the largest case id" },
    { "case_id,x\n5,1\n6,1\n5,2\n",
      nullptr,
      "cases.csv",
      4,
      1,
      "case id 5 is repeated (first on line 2)" },
    { "case_id,x\n5,1\n6,1\n6,2\n",
      nullptr,
      "cases.csv",
      4,
      1,
      "case id 6 is repeated (first on line 3)" },
    // Ids out of order, and a record over two lines before the repeat.
    { "case_id,x\n9,1\n3,\"a\nb\"\n7,1\n3,2\n",
      nullptr,
      "cases.csv",
      6,
      1,
      "case id 3 is repeated (first on line 3)" },
    { "case_id,x\n1,\"open\n", nullptr, "cases.csv", 2, 3, "quoted field is not closed" },
    { "case_id,x\n1,\"a\"b\n", nullptr, "cases.csv", 2, 6, "unexpected character after" },
    { "case_id,x\n1,caf\xC3\n", nullptr, "cases.csv", 2, 6, "not valid UTF-8" },
    { "case_id,x\n1,\xC0\xAF\n", nullptr, "cases.csv", 2, 3, "not valid UTF-8" },
    { "case_id,x\n1,2\n",
      "id,file,tags\n",
      "auxfiles.csv",
      1,
      1,
      "the header must be \"case_id,path,tags\"" },
    { "case_id,x\n1,2\n",
      "case_id,path,tags\n2,a.png,\n",
      "auxfiles.csv",
      2,
      1,
      "case id 2 is not in cases.csv" },
    { "case_id,x\n3,1\n1,2\n",
      "case_id,path,tags\n1,a.png,\n2,b.png,\n",
      "auxfiles.csv",
      3,
      1,
      "case id 2 is not in cases.csv" },
    { "case_id,x\n1,2\n",
      "case_id,path,tags\n1,/etc/passwd,\n",
      "auxfiles.csv",
      2,
      3,
      "must be relative to the study folder" },
    { "case_id,x\n1,2\n",
      "case_id,path,tags\n1,images/../../secret.png,\n",
      "auxfiles.csv",
      2,
      3,
      "leads out of the study folder" },
    { "case_id,x\n1,2\n", "case_id,path,tags\n1, ,t\n", "auxfiles.csv", 2, 3, "the path is empty" },
  };
  for (const auto& c : cases)
  {
    TemporaryFolder folder;
    folder.write("cases.csv", c.cases);
    if (c.auxFiles)
      folder.write("auxfiles.csv", c.auxFiles);
    try
    {
      readStudy(folder.path());
      ADD_FAILURE() << "accepted: " << c.cases << " / " << (c.auxFiles ? c.auxFiles : "");
    }
    catch (const StudyFormatError& e)
    {
      SCOPED_TRACE(e.what());
      EXPECT_EQ(e.file(), folder.filePath(c.file));
      EXPECT_EQ(e.line(), c.line);
      EXPECT_EQ(e.column(), c.column);
      EXPECT_NE(e.problem().find(c.problem), std::string::npos);
      const std::string where = folder.filePath(c.file) + ":" + std::to_string(c.line) + ":" +
                                std::to_string(c.column) + ": ";
      EXPECT_EQ(std::string(e.what()).rfind(where, 0), 0u) << "the message starts with " << where;
    }
  }
}

TEST(StudyReader, AFailedReadLeavesTheCurrentProjectAsItWas)
{
  TemporaryFolder good;
  good.write("cases.csv", "case_id,x\n1,2\n");
  const auto current = readStudy(good.path());
  Project::setProject(current);

  TemporaryFolder bad;
  bad.write("cases.csv", "case_id,x\n1,2\n1,3\n");
  EXPECT_THROW(readStudy(bad.path()), StudyFormatError);
  EXPECT_THROW(readStudy(bad.filePath("nowhere")), StudyFormatError);
  TemporaryFolder empty;
  EXPECT_THROW(readStudy(empty.path()), StudyFormatError);
  EXPECT_EQ(Project::project(), current);
  Project::setProject(nullptr);
}
