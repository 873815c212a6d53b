#include "support/TemporaryFolder.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <cmath>

using testsupport::TemporaryFolder;

namespace
{

struct ExplorerRun
{
  int exitCode = -1;
  std::string out;
  std::string err;
};

ExplorerRun explorer(const QStringList& arguments)
{
  QProcess process;
#if defined(__SANITIZE_ADDRESS__)
  // Mesa unloads its driver when the program's last GL context closes, and LeakSanitizer then
  // reports the driver's own allocations as leaks of an unknown module. Preloaded, the driver
  // stays mapped to the end and its memory stays reachable.
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("LD_PRELOAD", "/usr/lib/x86_64-linux-gnu/dri/swrast_dri.so");
  environment.insert("ASAN_OPTIONS",
                     environment.value("ASAN_OPTIONS") + ":verify_asan_link_order=0");
  process.setProcessEnvironment(environment);
#endif
  process.start(EXPLORER_PATH, arguments);
  process.waitForFinished(120000);
  return { process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
           process.readAllStandardOutput().toStdString(),
           process.readAllStandardError().toStdString() };
}

// The value of a "key: value" line of the summary.
std::string line(const std::string& text, const std::string& key)
{
  const QRegularExpression pattern("^" + QRegularExpression::escape(QString::fromStdString(key)) +
                                     ": (.*)$",
                                   QRegularExpression::MultilineOption);
  const auto match = pattern.match(QString::fromStdString(text));
  return match.hasMatch() ? match.captured(1).toStdString() : "";
}

// The spread of the grey levels of a picture: zero for a blank one.
double greyDeviation(const QString& path)
{
  const QImage image(path);
  if (image.isNull())
    return 0;
  double sum = 0;
  double squares = 0;
  const int count = image.width() * image.height();
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
    {
      const double grey = qGray(image.pixel(x, y));
      sum += grey;
      squares += grey * grey;
    }
  const double mean = sum / count;
  return std::sqrt(std::max(0.0, squares / count - mean * mean));
}

int csvRows(const std::string& path)
{
  const std::string text = testsupport::readFile(path);
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

class Explorer : public ::testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    study = new TemporaryFolder;
    const ExplorerRun generated =
      explorer({ "--generate-sample", QString::fromStdString(study->path()), "--runs", "48" });
    ASSERT_EQ(generated.exitCode, 0) << generated.err;
  }
  static void TearDownTestSuite()
  {
    delete study;
    study = nullptr;
  }

  static TemporaryFolder* study;
  TemporaryFolder output;
};

TemporaryFolder* Explorer::study = nullptr;

} // namespace

TEST_F(Explorer, RendersEveryViewWithTheSelectionShownEverywhere)
{
  const QString shots = QString::fromStdString(output.filePath("shots"));
  const ExplorerRun run = explorer(
    { QString::fromStdString(study->path()), "--select", "1003,1008", "--screenshots", shots });
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(line(run.out, "selection"), "2 cases (1003,1008)");
  EXPECT_EQ(line(run.out, "scatter"), "2 highlighted points");
  for (const char* name : { "window.png",
                            "scatter.png",
                            "table.png",
                            "images.png",
                            "parallel.png",
                            "scatter3d.png",
                            "selected-cases.png",
                            "selected-image.png",
                            "image-difference.png" })
  {
    EXPECT_GT(greyDeviation(shots + "/" + name), 5.0) << name << " looks blank";
  }
  const std::string shown = line(run.out, "shown");
  EXPECT_EQ(shown, "48 cases");
  EXPECT_EQ(csvRows(output.filePath("shots/cases.csv")), 48 + 1) << "one row per shown case";
  EXPECT_EQ(csvRows(output.filePath("shots/cases-6digits.csv")), 48 + 1);
}

TEST_F(Explorer, BadInputGetsAClearMessageAndANonZeroExit)
{
  const QString shots = QString::fromStdString(output.filePath("shots"));
  const struct
  {
    const char* what;
    QStringList arguments;
    int exitCode;
    const char* message;
  } cases[] = {
    { "a missing study",
      { QString::fromStdString(output.filePath("nowhere")), "--screenshots", shots },
      2,
      "does not exist; the explorer opens a study folder holding cases.csv" },
    { "a file that is no study",
      { QString::fromStdString(output.write("notes.odt", "hello")), "--screenshots", shots },
      2,
      "is a file the explorer does not read" },
    { "a table with a header only",
      { QString::fromStdString(output.write("notes.txt", "hello\n")), "--screenshots", shots },
      2,
      "the table has no runs" },
    { "a folder without data",
      { QString::fromStdString(output.filePath("empty-folder")), "--screenshots", shots },
      2,
      "holding data.csv" },
    { "malformed settings",
      { QString::fromStdString(study->path()),
        "--settings",
        QString::fromStdString(output.write("bad.xml", "<ExplorerSettings><ScatterPlot2D>")),
        "--screenshots",
        shots },
      3,
      "not well-formed" },
    { "case ids the study does not have",
      { QString::fromStdString(study->path()), "--select", "1003,99999", "--screenshots", shots },
      4,
      "does not have: 99999" },
    { "a derived variable that cannot be computed",
      { QString::fromStdString(study->path()), "--derive", "r=range ^", "--screenshots", shots },
      6,
      "r: a value is expected after '^' (column 7)" },
    { "a derived variable without a name",
      { QString::fromStdString(study->path()), "--derive", "=range", "--screenshots", shots },
      6,
      "--derive takes NAME=EXPRESSION" },
    { "an unwritable output folder",
      { QString::fromStdString(study->path()),
        "--screenshots",
        QString::fromStdString(output.write("a-file", "")) + "/inside" },
      5,
      "cannot create the folder" },
  };
  QDir().mkpath(QString::fromStdString(output.filePath("empty-folder")));
  for (const auto& c : cases)
  {
    const ExplorerRun run = explorer(c.arguments);
    EXPECT_EQ(run.exitCode, c.exitCode) << c.what << ": " << run.err;
    EXPECT_NE(run.err.find(c.message), std::string::npos) << c.what << ": " << run.err;
  }
}

TEST(ExplorerProgram, HelpNeedsNoDisplay)
{
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove("DISPLAY");
  environment.remove("QT_QPA_PLATFORM");
  process.setProcessEnvironment(environment);
  process.start(EXPLORER_PATH, { "--help" });
  ASSERT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
  const QByteArray help = process.readAllStandardOutput();
  EXPECT_TRUE(help.contains("--generate-sample"));
  EXPECT_TRUE(help.contains("Cinema database")) << "the formats it opens are named";
}

TEST_F(Explorer, TheScreenshotsShowTheSavedAxisRangesAndExportsKeepTheFilesPaths)
{
  // Saved ranges are what the pictures show, not a fit made once the window is drawn.
  const std::string settings =
    output.write("ranges.xml",
                 "<ExplorerSettings><ScatterPlot2D><XMin>20</XMin><XMax>40</XMax><YMin>-5</YMin>"
                 "<YMax>333</YMax></ScatterPlot2D></ExplorerSettings>");
  const QString shots = QString::fromStdString(output.filePath("shots"));
  ExplorerRun run = explorer({ QString::fromStdString(study->path()),
                               "--settings",
                               QString::fromStdString(settings),
                               "--screenshots",
                               shots });
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const std::string saved = testsupport::readFile(output.filePath("shots/settings.xml"));
  for (const char* element : { "<XMin>20</XMin>", "<XMax>40</XMax>", "<YMax>333</YMax>" })
    EXPECT_NE(saved.find(element), std::string::npos) << element << " in\n" << saved;

  // A derived variable is exported with full precision and saved with its expression.
  run = explorer({ QString::fromStdString(study->path()),
                   "--derive",
                   "per speed=range / speed^2",
                   "--screenshots",
                   shots });
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const std::string savedDerived = testsupport::readFile(output.filePath("shots/settings.xml"));
  for (const char* attribute : { R"(name="per speed")", R"(expression="range / speed^2")" })
    EXPECT_NE(savedDerived.find(attribute), std::string::npos) << attribute;
  const QStringList rows =
    QString::fromStdString(testsupport::readFile(output.filePath("shots/cases.csv"))).split('\n');
  const QStringList header = rows.value(0).split(',');
  const int range = header.indexOf("range");
  const int speed = header.indexOf("speed");
  const int perSpeed = header.indexOf("per speed");
  ASSERT_GE(perSpeed, 0) << rows.value(0).toStdString();
  int checked = 0;
  for (int row = 1; row < rows.size(); ++row)
  {
    const QStringList values = rows[row].split(',');
    if (values.size() <= perSpeed || values[range].isEmpty())
      continue;
    const double expected = values[range].toDouble() / std::pow(values[speed].toDouble(), 2);
    EXPECT_EQ(values[perSpeed].toDouble(), expected) << rows[row].toStdString();
    ++checked;
  }
  EXPECT_GT(checked, 0);

  // A Cinema database exported keeps its FILE columns as paths.
  TemporaryFolder db;
  db.write("data.csv",
           "phi,theta,FILE\n0,0,images/a.png\n0,45,images/b.png\n90,0,\n90,45,images/d.png\n");
  run = explorer({ QString::fromStdString(db.path()), "--screenshots", shots });
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const std::string exported = testsupport::readFile(output.filePath("shots/cases.csv"));
  EXPECT_NE(exported.find("FILE"), std::string::npos) << exported;
  EXPECT_NE(exported.find("images/d.png"), std::string::npos) << exported;
}
