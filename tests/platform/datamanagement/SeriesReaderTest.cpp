// A run's own series: small tables of numbers, read whole, refused with their place.

#include "datamanagement/SeriesReader.h"

#include "datamanagement/StudyFormatError.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>

using testsupport::TemporaryFolder;

TEST(SeriesReader, ReadsColumnsOfNumbersByName)
{
  TemporaryFolder folder;
  const SeriesTable table = readSeriesTable(
    folder.write("run.csv", "\xEF\xBB\xBFtime,\"x [m]\",speed\n0,0,10\n0.5,4.5,NaN\n1,,8e-1\n\n"));
  EXPECT_EQ(table.names, (std::vector<std::string>{ "time", "x [m]", "speed" }));
  ASSERT_EQ(table.rows(), 3u);
  ASSERT_NE(table.column("x [m]"), nullptr);
  EXPECT_EQ(table.column("time")->at(1), 0.5);
  EXPECT_TRUE(std::isnan(table.column("x [m]")->at(2))) << "an empty field is NaN";
  EXPECT_TRUE(std::isnan(table.column("speed")->at(1)));
  EXPECT_EQ(table.column("speed")->at(2), 0.8);
  EXPECT_EQ(table.column("missing"), nullptr);

  const SeriesTable tabs = readSeriesTable(folder.write("run.tsv", "t\ty\n1\t2\n"));
  EXPECT_EQ(tabs.column("y")->front(), 2.0);
}

TEST(SeriesReader, RefusesWithThePlace)
{
  TemporaryFolder folder;
  const struct
  {
    const char* text;
    const char* message; // after the file's path
  } refused[] = {
    { "t,y\n1,2\n2,fast\n", ":3:3: \"fast\" in column \"y\" is not a number" },
    { "t,y\n1,2\n2\n", ":3:1: expected 2 fields, found 1" },
    { "t,y\n1,2,3\n", ":2:5: expected 2 fields, found 3" },
    { "t,y\n", ":1:0: the table has a header but no rows" },
    { "", ": the table is empty" },
    { "t,y\n1,\xff\n", ":2:3: the text is not valid UTF-8" },
  };
  for (const auto& table : refused)
  {
    const std::string path = folder.write("bad.csv", table.text);
    try
    {
      readSeriesTable(path);
      ADD_FAILURE() << "read: " << table.text;
    }
    catch (const StudyFormatError& error)
    {
      EXPECT_EQ(std::string(error.what()), path + table.message);
    }
  }
  EXPECT_THROW(readSeriesTable(folder.path() + "/none.csv"), StudyFormatError);
}
