// Tables of runs as other tools write them: separators, byte-order marks, quotes, id columns,
// columns of files and URLs, "in:" and "out:" roles, and files that are no table.

#include "datamanagement/TableReader.h"

#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "datamanagement/StudyFormatError.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>

using testsupport::TemporaryFolder;

TEST(TableReader, ReadsTheTablesToolsWrite)
{
  TemporaryFolder folder;
  const struct
  {
    const char* what;
    std::string text;
  } tables[] = {
    { "commas", "speed,material,range\n10,steel,1.5\n20,wood,2.5\n" },
    { "tabs", "speed\tmaterial\trange\n10\tsteel\t1.5\n20\twood\t2.5\n" },
    { "semicolons and CRLF", "speed;material;range\r\n10;steel;1.5\r\n20;wood;2.5\r\n" },
    { "a byte-order mark", "\xEF\xBB\xBFspeed,material,range\n10,steel,1.5\n20,wood,2.5\n" },
    { "quotes around fields", "\"speed\",\"material\",range\n10,\"steel\",1.5\n20,wood,\"2.5\"\n" },
  };
  for (const auto& table : tables)
  {
    const auto project = readRunTable(folder.write("runs.csv", table.text), {});
    ASSERT_EQ(project->variables().size(), 3u) << table.what;
    EXPECT_EQ(project->caseIds(), (std::vector<unsigned long long>{ 1, 2 }))
      << table.what << ": rows numbered without an id column";
    const Record second = project->record(2).lock();
    EXPECT_EQ(second.data(project->variable("range")).toDouble(), 2.5) << table.what;
    EXPECT_EQ(second.data(project->variable("material")).toString(), "wood") << table.what;
  }

  // Quoted separators and quotes inside a field; a semicolon table whose fields hold commas.
  auto project =
    readRunTable(folder.write("quoted.csv", "note;value\n\"a;b, \"\"c\"\"\";1,5\nplain;2\n"), {});
  EXPECT_EQ(project->record(1).lock().data(project->variable("note")).toString(), "a;b, \"c\"");
  EXPECT_EQ(project->variable("value").lock().nature(), Variable::Text) << "1,5 is no number";

  // An id column of unique non-negative integers gives the ids, up to 2^64 - 1.
  project =
    readRunTable(folder.write("ids.tsv", "RUN\tx\n18446744073709551615\t1\n4294967296\t2\n"), {});
  EXPECT_EQ(project->caseIds(),
            (std::vector<unsigned long long>{ 18446744073709551615ULL, 4294967296ULL }));
  EXPECT_EQ(project->variables().size(), 1u);
  // One that repeats a value is a variable.
  project = readRunTable(folder.write("notids.csv", "id,x\n3,1\n3,2\n"), {});
  EXPECT_EQ(project->caseIds(), (std::vector<unsigned long long>{ 1, 2 }));
  EXPECT_EQ(project->variable("id").lock().nature(), Variable::Discrete);
}

TEST(TableReader, DesignStudyColumnsGiveRolesAndFiles)
{
  TemporaryFolder folder;
  folder.write("images/a.png", "x");
  folder.write("b.png", "x");
  const std::string path = folder.write(
    "study.csv",
    "in:Depth [ft],OUT: Rate [m/s],img,threeD,local,label,mixed\n"
    "10,0.5,https://host/s/run1.png,https://host/s/run1.json,images/a.png,v1.2,images/a.png\n"
    "20,0.7,https://host/s/run2.png,,b.png,v1.3,steel\n");
  const auto project = readRunTable(path, { { "https://host/s/", "/data/s/" } });
  const auto depth = project->variable("Depth [ft]").lock();
  ASSERT_FALSE(depth.isNull()) << "the prefix goes, the units stay";
  EXPECT_EQ(depth.role(), Variable::Input);
  EXPECT_EQ(project->variable("Rate [m/s]").lock().role(), Variable::Output);
  EXPECT_EQ(project->variable("label").lock().role(), Variable::Unknown);
  EXPECT_FALSE(project->variable("label").lock().isNull()) << "v1.2 names no file";
  EXPECT_FALSE(project->variable("mixed").lock().isNull()) << "steel names no file";
  EXPECT_TRUE(project->variable("img").lock().isNull()) << "a column of files is no variable";

  const auto files = project->record(1).lock().auxFiles();
  ASSERT_EQ(files.size(), 3u);
  EXPECT_EQ(files[0].lock().filePath(), "/data/s/run1.png") << "rebased";
  EXPECT_TRUE(files[0].lock().hasTag("img"));
  EXPECT_EQ(files[2].lock().filePath(), folder.path() + "/images/a.png");
  EXPECT_EQ(project->record(2).lock().auxFiles().size(), 2u) << "an empty field is no file";
}

TEST(TableReader, AFileThatIsNoTableIsRefusedWithItsPlace)
{
  TemporaryFolder folder;
  const struct
  {
    const char* what;
    std::string text;
    const char* message;
  } refused[] = {
    { "a ragged row", "a,b\n1,2\n3\n", "ragged.csv:3:" },
    { "bytes that are not text", std::string("a,b\n1,\xff\xfe\x00\x01\n", 10), "not valid UTF-8" },
    { "an empty file", "", "has no header" },
    { "a header alone", "a,b\n", "ragged.csv:2:1: the table has no runs" },
    { "a header without a name", "a,,b\n1,2,3\n", "the column has no name" },
    { "a path out of the folder", "img\n../../etc/x.png\n", "leads out of the table's folder" },
  };
  for (const auto& c : refused)
  {
    const std::string path = folder.write("ragged.csv", c.text);
    try
    {
      readRunTable(path, {});
      ADD_FAILURE() << c.what << " was read";
    }
    catch (const StudyFormatError& e)
    {
      EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos)
        << c.what << ": " << e.what();
    }
  }
  EXPECT_THROW(readRunTable(folder.filePath("nowhere.csv"), {}), StudyFormatError);
}

TEST(TableReader, ALargeTableReadsAsASmallOneAndItsFaultsKeepTheirPlace)
{
  // Larger than the blocks it is read in (a few megabytes), with quoted fields over two lines
  // and quotes inside: some straddle a block's end.
  TemporaryFolder folder;
  constexpr int rows = 160000;
  const auto note = [](int row)
  { return "run " + std::to_string(row) + " said \"ok\",\nthen stopped"; };
  std::string table = "\xEF\xBB\xBFrun,note,x\n";
  for (int row = 0; row < rows; ++row)
    table += std::to_string(row * 3) + ",\"run " + std::to_string(row) +
             " said \"\"ok\"\",\nthen stopped\"," + std::to_string(row * 0.5) + "\n";
  ASSERT_GT(table.size(), std::size_t(8) << 20);
  const auto project = readRunTable(folder.write("large.csv", table), {});
  ASSERT_EQ(project->numberOfRecords(), std::size_t(rows));
  EXPECT_EQ(project->caseIds()[rows - 1], std::size_t(rows - 1) * 3) << "run is the id column";
  const auto* notes = project->textValues(project->variable("note").lock());
  ASSERT_NE(notes, nullptr);
  int wrong = 0;
  for (int row = 0; row < rows; ++row)
    wrong += (*notes)[std::size_t(row)] != note(row);
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ((*project->numericValues(project->variable("x").lock()))[rows - 1], (rows - 1) * 0.5);

  // A column that turns to text near the end is read again from the start, across the blocks.
  std::string late = table;
  late.replace(late.rfind(",") + 1, std::string::npos, "late\n");
  const auto turned = readRunTable(folder.write("late.csv", late), {});
  const auto* xs = turned->textValues(turned->variable("x").lock());
  ASSERT_NE(xs, nullptr);
  EXPECT_EQ(xs->front(), "0.000000") << "as written";
  EXPECT_EQ(xs->back(), "late");

  // Each record takes two lines: the faults of the last one are on lines 2 * rows and after.
  const struct
  {
    const char* what;
    std::string tail;
    std::string place;
  } faults[] = {
    { "a ragged last row", "1,2\n", "bad.csv:" + std::to_string(2 * rows + 2) + ":" },
    { "bytes that are not text",
      "1,\"\xff\",2\n",
      "bad.csv:" + std::to_string(2 * rows + 2) + ":" },
    { "a quote never closed", "1,\"open,2\n", "bad.csv:" + std::to_string(2 * rows + 2) + ":3" },
  };
  for (const auto& fault : faults)
  {
    try
    {
      readRunTable(folder.write("bad.csv", table + fault.tail), {});
      ADD_FAILURE() << fault.what << " was read";
    }
    catch (const StudyFormatError& e)
    {
      EXPECT_NE(std::string(e.what()).find(fault.place), std::string::npos)
        << fault.what << ": " << e.what();
    }
  }
}
