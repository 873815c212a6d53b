// Parallel coordinates without their widget: where each shown case lies on each axis, the
// colours of the lines, the selection, and which line passes under the mouse.

#include "views/parallel/ParallelCoordinatesModel.h"
#include "views/ColourScale.h"
#include "views/parallel/LineDensity.h"
#include "views/parallel/ParallelCoordinatesPainter.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"

#include <QPoint>
#include <gtest/gtest.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <cmath>
#include <limits>

using explorer::ParallelCoordinatesModel;
using explorer::ParallelLayout;

namespace
{

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

struct Lines
{
  std::shared_ptr<const Project> project;
  DataPipelineManager* pipeline = nullptr;
  std::unique_ptr<DataPipelineManager> owner;
  ParallelCoordinatesModel model;

  Lines()
  {
    ProjectBuilder builder;
    builder.setCaseIds({ 10, 20, 30, 40 });
    builder.addNumericVariable("speed", { 0, 5, 10, missing });
    builder.addTextVariable("material", { "wood", "steel", "lead", "steel" });
    builder.addNumericVariable("same", { 3, 3, 3, 3 });
    builder.addNumericVariable("heat", { 100, 200, missing, 300 });
    project = builder.build();
    owner = std::make_unique<DataPipelineManager>(project);
    pipeline = owner.get();
  }

  void read(const std::vector<std::string>& axes, const std::string& colour)
  {
    std::vector<WeakPtr<Variable>> variables;
    variables.reserve(axes.size());
    for (const auto& name : axes)
      variables.push_back(project->variable(name));
    pipeline->output()->Update();
    model.reload(*pipeline->output()->GetOutput(), *project, variables, project->variable(colour));
  }
};

// `count` lines over `axisCount` axes and their colours, no place set yet.
struct LinesToDraw
{
  LinesToDraw(std::size_t count, std::size_t axisCount)
    : axes(axisCount)
  {
    colour.assign(count);
    for (auto& axis : axes)
      axis.position.assign(count);
  }

  std::vector<explorer::ParallelAxis> axes;
  explorer::Places colour;
};

} // namespace

TEST(ParallelCoordinatesModel, PlacesEachCaseOnEachAxis)
{
  Lines lines;
  lines.read({ "speed", "material", "same", "unknown" }, "heat");
  const auto& axes = lines.model.axes();
  ASSERT_EQ(axes.size(), 3u) << "a variable the study lacks is no axis";
  ASSERT_EQ(axes[0].position.size(), 4u);
  EXPECT_FLOAT_EQ(axes[0].position[0], 0.0f);
  EXPECT_FLOAT_EQ(axes[0].position[1], 0.5f);
  EXPECT_FLOAT_EQ(axes[0].position[2], 1.0f);
  EXPECT_TRUE(std::isnan(axes[0].position[3])) << "a missing value sits in the band below";
  // Texts: the study's categories, sorted (lead, steel, wood), spread from bottom to top.
  EXPECT_TRUE(axes[1].text);
  EXPECT_EQ(axes[1].categories, (std::vector<std::string>{ "lead", "steel", "wood" }));
  EXPECT_FLOAT_EQ(axes[1].position[0], 1.0f);
  EXPECT_FLOAT_EQ(axes[1].position[1], 0.5f);
  EXPECT_FLOAT_EQ(axes[1].position[2], 0.0f);
  EXPECT_FLOAT_EQ(axes[2].position[0], 0.5f) << "a constant in the middle";
  // Colours: 100 to 300 over the scale; NaN without a value.
  EXPECT_FLOAT_EQ(lines.model.colour()[1], 0.5f);
  EXPECT_TRUE(std::isnan(lines.model.colour()[2]));
  EXPECT_FLOAT_EQ(lines.model.positionOf(0, 2.5), 0.25f);
  EXPECT_FLOAT_EQ(lines.model.positionOf(1, 2), 1.0f) << "the third category";

  // A filter: the shown cases change, a category keeps its place.
  lines.pipeline->setRangeFilter(lines.project->variable("speed"), 4, 20);
  lines.read({ "speed", "material" }, "");
  const explorer::CaseIds& ids = lines.model.caseIds();
  ASSERT_EQ(std::vector<unsigned long long>(ids.begin(), ids.end()),
            (std::vector<unsigned long long>{ 20, 30 }));
  EXPECT_FLOAT_EQ(lines.model.axes()[1].position[1], 0.0f) << "lead stays at the bottom";
  lines.model.select({ 30, 10 });
  EXPECT_EQ(lines.model.selectedRows(), std::vector<int>{ 1 }) << "case 10 is filtered out";
}

TEST(ParallelCoordinatesModel, AClickFindsTheNearestLineAndTheDensityShowsEveryLine)
{
  Lines lines;
  lines.read({ "speed", "heat" }, "");
  const ParallelLayout at(QSize(400, 300), 2);
  // Half way between the axes, line 1 runs from speed 0.5 to heat 0.5.
  const QPoint middle(static_cast<int>((at.x(0) + at.x(1)) / 2), static_cast<int>(at.y(0.5f)));
  EXPECT_EQ(explorer::ParallelCoordinatesPainter::rowAt(lines.model, at, middle), 1);
  EXPECT_EQ(explorer::ParallelCoordinatesPainter::rowAt(lines.model, at, middle + QPoint(0, 30)),
            -1)
    << "nothing within 5 pixels";

  const QImage density =
    explorer::lineDensity(lines.model.axes(), nullptr, nullptr, at, qRgb(200, 0, 0));
  ASSERT_EQ(density.size(), QSize(400, 300));
  int drawn = 0;
  for (int y = 0; y < density.height(); ++y)
    drawn += qAlpha(density.pixel(middle.x(), y)) > 0 ? 1 : 0;
  EXPECT_GE(drawn, 3) << "each line crosses the middle column";
  const QRgb line = qUnpremultiply(density.pixel(middle));
  EXPECT_NEAR(qRed(line), 200, 2) << "plain lines in the plain colour";
  EXPECT_EQ(qBlue(line), 0);
}

TEST(ParallelCoordinatesModel, ALogarithmicAxisPutsValuesAtOrBelowZeroWithTheMissingOnes)
{
  Lines lines;
  std::vector<WeakPtr<Variable>> axes{ lines.project->variable("speed"),
                                       lines.project->variable("heat") };
  lines.pipeline->output()->Update();
  lines.model.reload(*lines.pipeline->output()->GetOutput(), *lines.project, axes, {}, axes);
  const auto& speed = lines.model.axes()[0];
  EXPECT_TRUE(speed.log);
  EXPECT_EQ(speed.notPositive, 1u) << "speed 0";
  EXPECT_EQ(speed.min, 5) << "the range of the values above zero";
  EXPECT_EQ(speed.max, 10);
  EXPECT_TRUE(std::isnan(speed.position[0]));
  EXPECT_FLOAT_EQ(speed.position[1], 0.f);
  EXPECT_FLOAT_EQ(speed.position[2], 1.f);

  // 100, 200, 300 on a logarithmic axis: 200 above the middle of the distance, not at it.
  const auto& heat = lines.model.axes()[1];
  EXPECT_EQ(heat.notPositive, 0u);
  EXPECT_NEAR(heat.position[1], std::log10(2.0) / std::log10(3.0), 1e-4) << "kept to 1/16384";
  for (double value : { 100.0, 150.0, 299.0 })
    EXPECT_NEAR(heat.valueAt(heat.place(value)), value, 1e-3) << "a brush reads back its values";
}

TEST(ParallelCoordinatesModel, PlacesAreKeptToASixteenThousandthAndBeyondTheAxisAtItsEnds)
{
  const float inf = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float top = 3.f - 2.f / 16384; // the highest place kept
  const struct
  {
    float place;
    float kept;
    float within;
  } cases[] = {
    { 0.f, 0.f, 0.f },
    { 1.f, 1.f, 0.f },
    { 0.5f, 0.5f, 0.f },
    { 0.25f, 0.25f, 0.f },
    { 1.f / 3, 1.f / 3, 3.1e-5f },
    { 0.99999f, 1.f, 3.1e-5f },
    { -0.75f, -0.75f, 0.f },
    { 2.5f, 2.5f, 0.f },
    { 5.f, top, 0.f },
    { inf, top, 0.f },
    { -inf, -1.f, 0.f },
    { -2.f, -1.f, 0.f },
  };
  explorer::Places places;
  places.assign(std::size(cases) + 1);
  for (std::size_t i = 0; i < std::size(cases); ++i)
    places.set(i, cases[i].place);
  places.set(std::size(cases), nan);
  ASSERT_EQ(places.size(), std::size(cases) + 1);
  for (std::size_t i = 0; i < std::size(cases); ++i)
    EXPECT_NEAR(places[i], cases[i].kept, cases[i].within) << cases[i].place;
  EXPECT_TRUE(std::isnan(places[std::size(cases)])) << "no place stays none";
  places.assign(2);
  EXPECT_TRUE(std::isnan(places[0]) && std::isnan(places[1])) << "assigned places are none";
}

TEST(ParallelCoordinatesModel, ADensityIsColouredByTheMeanOfItsColouredLines)
{
  // Lines along one height over two axes, coloured as each row says (NaN: no colour).
  struct Row
  {
    std::vector<float> colours;
    QRgb expected;
  };
  const QRgb plain = qRgb(1, 2, 3);
  const auto& scale = explorer::colourScale();
  const Row rows[] = {
    { { 0.f, 1.f }, scale[127] },
    { { 0.25f, NAN, 0.25f, 0.25f }, scale[63] },
    { { NAN, NAN }, plain },
    { { 1.f, 1.f, 1.f }, scale[255] },
  };
  const ParallelLayout at(QSize(300, 200), 2);
  for (const Row& row : rows)
  {
    const std::size_t count = row.colours.size();
    LinesToDraw lines(count, 2);
    auto& [axes, colour] = lines;
    for (std::size_t i = 0; i < count; ++i)
    {
      axes[0].position.set(i, 0.5f);
      axes[1].position.set(i, 0.5f);
      colour.set(i, row.colours[i]);
    }
    const QImage density = explorer::lineDensity(axes, &colour, nullptr, at, plain);
    const QPoint middle(static_cast<int>((at.x(0) + at.x(1)) / 2), static_cast<int>(at.y(0.5f)));
    const QRgb drawn = qUnpremultiply(density.pixel(middle));
    ASSERT_GT(qAlpha(drawn), 0) << row.colours.front();
    EXPECT_NEAR(qRed(drawn), qRed(row.expected), 1) << row.colours.front();
    EXPECT_NEAR(qGreen(drawn), qGreen(row.expected), 1) << row.colours.front();
    EXPECT_NEAR(qBlue(drawn), qBlue(row.expected), 1) << row.colours.front();
  }
}

TEST(ParallelCoordinatesModel, LinesBinnedByThreadsMakeTheDensityOfOneThread)
{
  // Many coloured lines over three axes, some missing, shared by one to three threads; all
  // lines, then every third.
  const std::size_t count = 50000;
  LinesToDraw lines(count, 3);
  auto& [axes, colour] = lines;
  for (std::size_t i = 0; i < count; ++i)
  {
    for (std::size_t a = 0; a < axes.size(); ++a)
      axes[a].position.set(
        i, i % 41 == a ? NAN : static_cast<float>((i * (a + 3) * 7919) % 1000) / 999);
    colour.set(i, i % 5 == 0 ? NAN : static_cast<float>(i % 100) / 99);
  }
  std::vector<int> everyThird;
  for (std::size_t i = 0; i < count; i += 3)
    everyThird.push_back(static_cast<int>(i));
  const ParallelLayout at(QSize(300, 200), 3);
  const std::vector<int>* const subsets[] = { nullptr, &everyThird };
  for (const std::vector<int>* rows : subsets)
  {
    const QImage one = explorer::lineDensity(axes, &colour, rows, at, qRgb(0, 0, 0), 1);
    std::size_t drawn = 0;
    for (int y = 0; y < one.height(); ++y)
      for (int x = 0; x < one.width(); ++x)
        drawn += qAlpha(one.pixel(x, y)) > 0 ? 1 : 0;
    EXPECT_GT(drawn, 10000u) << "the lines fill much of the picture";
    for (std::size_t threads : { 2, 3 })
    {
      const QImage shared = explorer::lineDensity(axes, &colour, rows, at, qRgb(0, 0, 0), threads);
      int worst = 0;
      for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
        {
          const QRgb a = one.pixel(x, y);
          const QRgb b = shared.pixel(x, y);
          for (int d : { qRed(a) - qRed(b),
                         qGreen(a) - qGreen(b),
                         qBlue(a) - qBlue(b),
                         qAlpha(a) - qAlpha(b) })
            worst = std::max(worst, std::abs(d));
        }
      // Counts and colours are summed in integers: the same sums in any order.
      EXPECT_EQ(worst, 0) << threads << " threads, " << (rows ? "a third" : "all");
    }
  }
}

TEST(ParallelCoordinatesModel, ManyRowsArePlacedByThreadsAsOneThreadPlacesThem)
{
  // Enough rows for several threads (2^18 places of colour): a linear axis, a logarithmic one
  // with values at or below zero, a text axis; some values missing. Coloured by the linear one.
  const std::size_t count = 300000;
  std::vector<unsigned long long> ids(count);
  std::vector<double> linear(count);
  std::vector<double> logarithmic(count);
  std::vector<std::string> texts(count);
  std::size_t notPositive = 0;
  for (std::size_t i = 0; i < count; ++i)
  {
    ids[i] = i + 1;
    linear[i] = i % 37 == 0 ? missing : static_cast<double>((i * 7919) % 1000) - 250;
    logarithmic[i] = static_cast<double>((i * 104729) % 2000) - 100;
    notPositive += logarithmic[i] <= 0 ? 1 : 0;
    texts[i] = i % 53 == 0 ? "" : "t" + std::to_string(i % 7);
  }
  ProjectBuilder builder;
  builder.setCaseIds(ids);
  builder.addNumericVariable("linear", linear);
  builder.addNumericVariable("logarithmic", logarithmic);
  builder.addTextVariable("text", texts);
  const auto project = builder.build();
  DataPipelineManager pipeline(project);
  pipeline.output()->Update();
  const std::vector<WeakPtr<Variable>> axes{ project->variable("linear"),
                                             project->variable("logarithmic"),
                                             project->variable("text") };
  ParallelCoordinatesModel model;
  model.reload(*pipeline.output()->GetOutput(), *project, axes, axes[0], { axes[1] });
  ASSERT_EQ(model.axes().size(), 3u);
  EXPECT_EQ(model.axes()[1].notPositive, notPositive) << "counted over every thread's rows";

  // One thread's places: each value of case i placed alone, then kept as every place is.
  const auto expected = [&](std::size_t a, std::size_t i)
  {
    const auto& categories = model.axes()[a].categories;
    const double value =
      a == 0   ? linear[i]
      : a == 1 ? (logarithmic[i] <= 0 ? missing : logarithmic[i])
               : static_cast<double>(std::find(categories.begin(), categories.end(), texts[i]) -
                                     categories.begin());
    explorer::Places one;
    one.assign(1);
    one.set(0, model.positionOf(a, value));
    return one[0];
  };
  // The shown rows' places compared with their cases' own, on every axis.
  const auto differing = [&]
  {
    std::size_t differ = 0;
    const explorer::CaseIds& shown = model.caseIds();
    for (std::size_t a = 0; a < axes.size(); ++a)
      for (std::size_t row = 0; row < shown.size(); ++row)
      {
        const float got = model.axes()[a].position[row];
        const float want = expected(a, static_cast<std::size_t>(shown[row] - 1));
        if (!(got == want || (std::isnan(got) && std::isnan(want))))
          ++differ;
      }
    // Colours: -250 to 749 over the scale.
    for (std::size_t row = 0; row < shown.size(); ++row)
    {
      const double value = linear[static_cast<std::size_t>(shown[row] - 1)];
      explorer::Places one;
      one.assign(1);
      one.set(0, static_cast<float>((value + 250) / 999));
      const float got = model.colour()[row];
      if (!(got == one[0] || (std::isnan(got) && std::isnan(value))))
        ++differ;
    }
    return differ;
  };
  EXPECT_EQ(differing(), 0u);

  // Filtered, then not: the shown cases keep their places, and the logarithmic axis counts
  // only the shown cases at or below zero.
  pipeline.setRangeFilter(axes[0], 0, 400);
  pipeline.output()->Update();
  model.reload(*pipeline.output()->GetOutput(), *project, axes, axes[0], { axes[1] });
  const explorer::CaseIds& shown = model.caseIds();
  ASSERT_GT(shown.size(), 1000u);
  ASSERT_LT(shown.size(), count / 2);
  std::size_t shownNotPositive = 0;
  for (unsigned long long id : shown)
    shownNotPositive += logarithmic[id - 1] <= 0 ? 1 : 0;
  EXPECT_EQ(model.axes()[1].notPositive, shownNotPositive);
  EXPECT_EQ(differing(), 0u) << "filtered";
  pipeline.setFilterEnabled(axes[0], false);
  pipeline.output()->Update();
  model.reload(*pipeline.output()->GetOutput(), *project, axes, axes[0], { axes[1] });
  ASSERT_EQ(model.caseIds().size(), count);
  EXPECT_EQ(differing(), 0u) << "every case shown again";
}
