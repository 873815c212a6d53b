#include "export/FullPrecisionCSVExporter.h"
#include "export/CSVTestReader.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <vtkBitArray.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTypeInt64Array.h>

#include <charconv>
#include <cmath>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <limits>
#include <random>
#include <sys/resource.h>

using testsupport::readFile;
using testsupport::TemporaryFolder;

namespace
{

double parseDouble(const std::string& field)
{
  if (field.empty())
    return std::numeric_limits<double>::quiet_NaN();
  double value = 0;
  const auto result = std::from_chars(field.data(), field.data() + field.size(), value);
  EXPECT_EQ(result.ec, std::errc()) << field;
  EXPECT_EQ(result.ptr, field.data() + field.size()) << field;
  return value;
}

bool sameBits(double a, double b)
{
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// Limits the size of files this process may write, so that a write fails part-way.
class FileSizeLimit
{
public:
  explicit FileSizeLimit(rlim_t bytes)
  {
    getrlimit(RLIMIT_FSIZE, &saved);
    previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit()
  {
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
  }

private:
  rlimit saved{};
  void (*previousHandler)(int) = nullptr;
};

} // namespace

TEST(FullPrecisionCSVExporter, EveryDoubleReadsBackBitForBit)
{
  std::vector<double> values = { 558.765989623179,
                                 0.1,
                                 1e308,
                                 -1e308,
                                 -0.0,
                                 0.0,
                                 std::numeric_limits<double>::denorm_min(),
                                 -std::numeric_limits<double>::denorm_min(),
                                 std::numeric_limits<double>::min() / 3,
                                 std::numeric_limits<double>::max(),
                                 std::numeric_limits<double>::lowest(),
                                 std::numeric_limits<double>::epsilon(),
                                 std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity() };
  std::mt19937_64 random(20261121);
  while (values.size() < 20000)
  {
    const std::uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isnan(value))
      values.push_back(value);
  }
  vtkNew<vtkDoubleArray> column;
  column->SetName("x");
  for (double v : values)
    column->InsertNextValue(v);
  column->InsertNextValue(std::numeric_limits<double>::quiet_NaN());
  vtkNew<vtkTable> table;
  table->AddColumn(column);

  TemporaryFolder folder;
  const std::string path = folder.filePath("values.csv");
  FullPrecisionCSVExporter().writeCSVFile(*table, path);
  const auto rows = readCSV(readFile(path));
  ASSERT_EQ(rows.size(), values.size() + 2);
  EXPECT_EQ(rows[0], std::vector<std::string>{ "x" });
  for (std::size_t i = 0; i < values.size(); ++i)
  {
    ASSERT_EQ(rows[i + 1].size(), 1u);
    ASSERT_TRUE(sameBits(parseDouble(rows[i + 1][0]), values[i]))
      << "row " << i << ": " << rows[i + 1][0];
  }
  EXPECT_EQ(rows.back(), std::vector<std::string>{ "" }) << "NaN is an empty field";
  EXPECT_EQ(FullPrecisionCSVExporter::formatDouble(558.765989623179), "558.765989623179");
}

TEST(FullPrecisionCSVExporter, WritesIntegersBitsFloatsAndTextsAsTheyAre)
{
  vtkNew<vtkTypeInt64Array> ids;
  ids->SetName("case_id");
  vtkNew<vtkIntArray> counts;
  counts->SetName("count, total");
  vtkNew<vtkFloatArray> ratio;
  ratio->SetName("ratio");
  vtkNew<vtkBitArray> failed;
  failed->SetName("failed");
  vtkNew<vtkStringArray> notes;
  notes->SetName("note");
  vtkNew<vtkDoubleArray> point;
  point->SetName("point");
  point->SetNumberOfComponents(2);

  const std::string texts[] = { "plain", "a, b", "say \"hi\"", "two\nlines", "" };
  for (int i = 0; i < 5; ++i)
  {
    ids->InsertNextValue(9007199254740993LL + i);
    counts->InsertNextValue(-i);
    ratio->InsertNextValue(0.1f * static_cast<float>(i));
    failed->InsertNextValue(i % 2);
    notes->InsertNextValue(texts[i]);
    point->InsertNextTuple2(i, 0.5 * i);
  }
  vtkNew<vtkTable> table;
  for (vtkAbstractArray* column :
       std::initializer_list<vtkAbstractArray*>{ ids, counts, ratio, failed, notes, point })
    table->AddColumn(column);

  TemporaryFolder folder;
  const std::string path = folder.filePath("mixed.csv");
  FullPrecisionCSVExporter().writeCSVFile(*table, path);
  const std::string text = readFile(path);
  EXPECT_EQ(text.substr(0, text.find('\n')),
            "case_id,\"count, total\",ratio,failed,note,point:0,point:1");
  const auto rows = readCSV(text);
  ASSERT_EQ(rows.size(), 6u);
  for (int i = 0; i < 5; ++i)
  {
    const auto& row = rows[static_cast<std::size_t>(i) + 1];
    ASSERT_EQ(row.size(), 7u);
    EXPECT_EQ(row[0], std::to_string(9007199254740993LL + i)) << "integers in full";
    EXPECT_EQ(row[1], std::to_string(-i));
    float readBack = 0;
    std::from_chars(row[2].data(), row[2].data() + row[2].size(), readBack);
    EXPECT_EQ(readBack, 0.1f * static_cast<float>(i)) << row[2];
    EXPECT_EQ(row[3], i % 2 ? "1" : "0");
    EXPECT_EQ(row[4], texts[i]);
    EXPECT_EQ(row[6], FullPrecisionCSVExporter::formatDouble(0.5 * i));
  }
  EXPECT_EQ(FullPrecisionCSVExporter::quoteText("say \"hi\""), "\"say \"\"hi\"\"\"");
}

TEST(FullPrecisionCSVExporter, AFailedWriteLeavesTheExistingFileUntouched)
{
  vtkNew<vtkDoubleArray> column;
  column->SetName("x");
  for (int i = 0; i < 200000; ++i)
    column->InsertNextValue(i * 1.000000001);
  vtkNew<vtkTable> table;
  table->AddColumn(column);

  TemporaryFolder folder;
  const std::string good = "x\n1\n2\n";
  const std::string path = folder.write("results.csv", good);
  {
    FileSizeLimit limit(64 * 1024);
    EXPECT_THROW(FullPrecisionCSVExporter().writeCSVFile(*table, path), CSVExportError);
  }
  EXPECT_EQ(readFile(path), good);
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
  {
    (void)entry;
    ++files;
  }
  EXPECT_EQ(files, 1u) << "no temporary file is left behind";

  try
  {
    FullPrecisionCSVExporter().writeCSVFile(*table, folder.filePath("missing/results.csv"));
    ADD_FAILURE() << "wrote into a missing folder";
  }
  catch (const CSVExportError& e)
  {
    EXPECT_NE(std::string(e.what()).find("missing/results.csv"), std::string::npos) << e.what();
  }

  FullPrecisionCSVExporter().writeCSVFile(*table, path);
  EXPECT_EQ(readCSV(readFile(path)).size(), 200001u) << "without the limit it replaces the file";
}
