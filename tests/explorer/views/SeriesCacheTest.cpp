// The runs' series files, read in the background: each file's table or the reason it has none,
// the view told as they come in, and the memory budget kept.

#include "views/line/SeriesCache.h"

#include "datamanagement/SeriesReader.h"
#include "support/TemporaryFolder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QObject>
#include <gtest/gtest.h>

using explorer::SeriesCache;
using testsupport::TemporaryFolder;

namespace
{

void waitFor(SeriesCache& cache)
{
  QElapsedTimer timer;
  timer.start();
  while ((cache.pending() > 0) && timer.elapsed() < 10000)
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  QCoreApplication::processEvents();
}

} // namespace

TEST(SeriesCache, KeepsEachFilesTableOrTheReasonItHasNone)
{
  TemporaryFolder folder;
  const std::string good = folder.write("good.csv", "t,y\n0,1\n1,2\n");
  const struct
  {
    std::string path;
    std::string reason; // a part of the message
  } bad[] = {
    { folder.path() + "/gone.csv", "missing file: " },
    { folder.write("text.csv", "t,y\n0,1\n1,fast\n"),
      "text.csv:3:3: \"fast\" in column \"y\" is not a number" },
    { folder.write("ragged.csv", "t,y\n0,1\n1\n"), "ragged.csv:3:1: expected 2 fields, found 1" },
    { folder.write("empty.csv", "t,y\n"), "empty.csv:1:0: the table has a header but no rows" },
  };
  std::vector<std::string> paths{ good };
  for (const auto& file : bad)
    paths.push_back(file.path);

  SeriesCache cache;
  QObject view;
  int told = 0;
  EXPECT_EQ(cache.find(good), nullptr) << "nothing is read before it is asked for";
  cache.request(paths, &view, [&told] { ++told; });
  waitFor(cache);
  EXPECT_GE(told, 1) << "the view hears that tables came in";

  const SeriesCache::Entry* entry = cache.find(good);
  ASSERT_NE(entry, nullptr);
  ASSERT_TRUE(entry->table);
  EXPECT_EQ(entry->table->column("y")->back(), 2.0);
  for (const auto& file : bad)
  {
    entry = cache.find(file.path);
    ASSERT_NE(entry, nullptr) << file.path;
    EXPECT_FALSE(entry->table);
    EXPECT_NE(entry->error.find(file.reason), std::string::npos) << entry->error;
  }
}

TEST(SeriesCache, KeepsWithinItsBudgetDroppingWhatTheLatestRequestDidNotAskFor)
{
  TemporaryFolder folder;
  std::string rows = "t,y\n";
  for (int i = 0; i < 1000; ++i)
    rows += std::to_string(i) + "," + std::to_string(i * i) + "\n";
  std::vector<std::string> paths;
  for (int i = 0; i < 6; ++i)
    paths.push_back(folder.write("run" + std::to_string(i) + ".csv", rows));

  // Room for about three tables of 1,000 rows of two numbers (16 KB each, and their vectors).
  SeriesCache cache(3 * 17000);
  QObject view;
  cache.request({ paths[0], paths[1], paths[2] }, &view, {});
  waitFor(cache);
  EXPECT_TRUE(cache.find(paths[2])->table);
  EXPECT_LE(cache.bytes(), 3u * 17000);

  // A new request: the old tables make room for the new ones.
  cache.request({ paths[3], paths[4] }, &view, {});
  waitFor(cache);
  EXPECT_TRUE(cache.find(paths[3])->table);
  EXPECT_TRUE(cache.find(paths[4])->table);
  EXPECT_LE(cache.bytes(), 3u * 17000);
  EXPECT_EQ(cache.find(paths[0]), nullptr) << "the least recently asked for went first";

  // More than fits at once: what does not fit says so instead of being dropped silently.
  cache.request(paths, &view, {});
  waitFor(cache);
  std::size_t refused = 0;
  for (const auto& path : paths)
  {
    const auto* entry = cache.find(path);
    ASSERT_NE(entry, nullptr);
    if (!entry->table)
    {
      ++refused;
      EXPECT_NE(entry->error.find("memory budget"), std::string::npos) << entry->error;
    }
  }
  EXPECT_EQ(refused, 3u);
  EXPECT_LE(cache.bytes(), 3u * 17000 + 1000);
}
