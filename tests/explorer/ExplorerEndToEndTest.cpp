#include "support/TemporaryFolder.h"

#include <QDomDocument>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

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

// The element texts and attributes of saved settings, as "Path/To/Element" -> text, and
// "Path/To/Element@attribute" -> value; repeated elements get their position.
std::map<std::string, std::string> flatten(const std::string& path)
{
  QFile file(QString::fromStdString(path));
  file.open(QIODevice::ReadOnly);
  QDomDocument document;
  document.setContent(&file);
  std::map<std::string, std::string> values;
  std::function<void(const QDomElement&, const std::string&)> walk =
    [&](const QDomElement& e, const std::string& at)
  {
    const QDomNamedNodeMap attributes = e.attributes();
    for (int i = 0; i < attributes.count(); ++i)
      values[at + "@" + attributes.item(i).nodeName().toStdString()] =
        attributes.item(i).nodeValue().toStdString();
    if (e.firstChildElement().isNull())
      values[at] = e.text().toStdString();
    int index = 0;
    for (QDomElement child = e.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
      walk(child, at + "/" + child.tagName().toStdString() + "[" + std::to_string(index++) + "]");
  };
  walk(document.documentElement(), document.documentElement().tagName().toStdString());
  return values;
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
  EXPECT_EQ(line(run.out, "table"), "2 selected rows");
  const std::string cells = line(run.out, "images");
  EXPECT_TRUE(cells == "2 selected cells" || cells == "1 selected cells") << cells;
  for (const char* name : { "window.png", "scatter.png", "table.png", "images.png" })
  {
    EXPECT_GT(greyDeviation(shots + "/" + name), 5.0) << name << " looks blank";
  }
  const std::string shown = line(run.out, "shown");
  EXPECT_EQ(shown, "48 cases");
  EXPECT_EQ(csvRows(output.filePath("shots/cases.csv")), 48 + 1) << "one row per shown case";
  EXPECT_EQ(csvRows(output.filePath("shots/cases-6digits.csv")), 48 + 1);
}

TEST_F(Explorer, SavedSettingsLoadBackToTheSameState)
{
  const std::string settings = output.write("settings.xml", R"(<?xml version="1.0"?>
<ExplorerSettings version="1">
  <ScatterPlot2D>
    <XVariable>speed</XVariable>
    <YVariable>apex_height</YVariable>
    <ColorVariable>angle</ColorVariable>
    <ColorLegend><Show>1</Show><NumLabels>7</NumLabels><RangeType>Custom</RangeType><Range Min="10" Max="70"/></ColorLegend>
  </ScatterPlot2D>
  <ImageMatrix>
    <DimensionRowsBy>Tag</DimensionRowsBy>
    <ColumnVariable>angle</ColumnVariable>
    <ShowLabels>1</ShowLabels>
    <Zoom>20</Zoom>
  </ImageMatrix>
  <Filters><Filter variable="angle" min="20" max="50" enabled="1"/></Filters>
</ExplorerSettings>
)");
  const QString first = QString::fromStdString(output.filePath("first"));
  const ExplorerRun run = explorer({ QString::fromStdString(study->path()),
                                     "--settings",
                                     QString::fromStdString(settings),
                                     "--screenshots",
                                     first });
  ASSERT_EQ(run.exitCode, 0) << run.err;
  auto saved = flatten(output.filePath("first/settings.xml"));
  EXPECT_EQ(saved["ExplorerSettings/ScatterPlot2D[0]/XVariable[0]"], "speed");
  EXPECT_EQ(saved["ExplorerSettings/ScatterPlot2D[0]/YVariable[1]"], "apex_height");
  EXPECT_EQ(saved["ExplorerSettings/ScatterPlot2D[0]/ColorLegend[3]/NumLabels[1]"], "7");
  EXPECT_EQ(saved["ExplorerSettings/ScatterPlot2D[0]/ColorLegend[3]/Range[3]@Max"], "70");
  EXPECT_EQ(saved["ExplorerSettings/ImageMatrix[2]/DimensionRowsBy[1]"], "Tag");
  EXPECT_EQ(saved["ExplorerSettings/ImageMatrix[2]/Zoom[11]"], "20");
  EXPECT_EQ(saved["ExplorerSettings/Filters[3]/Filter[0]@min"], "20");
  // The angles sweep 15, 25, ..., 65: the filter keeps 25, 35 and 45, three in six.
  EXPECT_EQ(line(run.out, "shown"), "24 cases");
  EXPECT_EQ(csvRows(output.filePath("first/cases.csv")), 24 + 1);

  const QString second = QString::fromStdString(output.filePath("second"));
  const ExplorerRun again =
    explorer({ QString::fromStdString(study->path()),
               "--settings",
               QString::fromStdString(output.filePath("first/settings.xml")),
               "--screenshots",
               second });
  ASSERT_EQ(again.exitCode, 0) << again.err;
  EXPECT_EQ(flatten(output.filePath("second/settings.xml")), saved)
    << "settings saved after loading saved settings are the same";
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
      "the study folder does not exist" },
    { "malformed settings",
      { QString::fromStdString(study->path()),
        "--settings",
        QString::fromStdString(output.write("bad.xml", "<ExplorerSettings><ScatterPlot2D>")),
        "--screenshots",
        shots },
      3,
      "not well-formed" },
    { "settings naming an unknown variable",
      { QString::fromStdString(study->path()),
        "--settings",
        QString::fromStdString(output.write("unknown.xml",
                                            "<ExplorerSettings><ScatterPlot2D><XVariable>mass2</"
                                            "XVariable></ScatterPlot2D></ExplorerSettings>")),
        "--screenshots",
        shots },
      3,
      "\"mass2\"" },
    { "a refused setting",
      { QString::fromStdString(study->path()),
        "--settings",
        QString::fromStdString(output.write(
          "refused.xml",
          "<ExplorerSettings><ScatterPlot2D><ColorLegend><NumLabels>99</NumLabels></ColorLegend>"
          "</ScatterPlot2D></ExplorerSettings>")),
        "--screenshots",
        shots },
      3,
      "nothing was changed" },
    { "bad case ids",
      { QString::fromStdString(study->path()), "--select", "12,x", "--screenshots", shots },
      4,
      "--select takes case ids" },
    { "an unwritable output folder",
      { QString::fromStdString(study->path()),
        "--screenshots",
        QString::fromStdString(output.write("a-file", "")) + "/inside" },
      5,
      "cannot create the folder" },
  };
  for (const auto& c : cases)
  {
    const ExplorerRun run = explorer(c.arguments);
    EXPECT_EQ(run.exitCode, c.exitCode) << c.what << ": " << run.err;
    EXPECT_NE(run.err.find(c.message), std::string::npos) << c.what << ": " << run.err;
  }
}
