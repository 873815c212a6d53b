// What a fresh view shows of studies of every shape: varying variables, different ones per role,
// inputs across and outputs up, never a constant.

#include "StudyDefaults.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace
{

// The values of a text column.
struct Texts
{
  std::vector<std::string> values;
};

struct Column
{
  Column(std::string name, std::vector<double> values)
    : name(std::move(name))
    , values(std::move(values))
  {
  }
  Column(std::string name, Texts texts)
    : name(std::move(name))
    , texts(std::move(texts.values))
  {
  }

  std::string name;
  std::vector<double> values; // empty for a text column
  std::vector<std::string> texts;
};

// A study of `cases` cases; a numeric column shorter than that repeats its values.
std::shared_ptr<const Project> study(std::size_t cases, const std::vector<Column>& columns)
{
  ProjectBuilder builder;
  std::vector<unsigned long long> ids(cases);
  for (std::size_t i = 0; i < cases; ++i)
    ids[i] = i + 1;
  builder.setCaseIds(ids);
  for (const Column& column : columns)
  {
    if (!column.texts.empty())
    {
      std::vector<std::string> texts(cases);
      for (std::size_t i = 0; i < cases; ++i)
        texts[i] = column.texts[i % column.texts.size()];
      builder.addTextVariable(column.name, texts);
      continue;
    }
    std::vector<double> values(cases);
    for (std::size_t i = 0; i < cases; ++i)
      values[i] = column.values[i % column.values.size()];
    builder.addNumericVariable(column.name, values);
  }
  return builder.build();
}

// Many distinct values: a continuous output.
std::vector<double> spread(double scale)
{
  std::vector<double> values;
  for (int i = 0; i < 97; ++i)
    values.push_back(scale * std::sin(i * 1.7 + scale));
  return values;
}

std::string nameOf(const WeakPtr<Variable>& variable)
{
  return variable.lock().isNull() ? "-" : variable.lock().name();
}

} // namespace

TEST(StudyDefaults, TheScatterPlotShowsThreeVaryingVariablesWhateverTheShape)
{
  const struct
  {
    const char* shape;
    std::shared_ptr<const Project> project;
    const char* x;
    const char* y;
    const char* colour;
  } shapes[] = {
    { "a design study: swept inputs, outputs",
      study(200,
            { { "speed", { 10, 20 } },
              { "range", spread(3) },
              { "angle", { 15, 30, 45, 60 } },
              { "height", spread(5) } }),
      "speed",
      "range",
      "height" },
    { "all continuous (a Latin hypercube)",
      study(200, { { "x1", spread(1) }, { "x2", spread(2) }, { "x3", spread(3) } }),
      "x1",
      "x2",
      "x3" },
    { "all discrete (a sweep without outputs)",
      study(60, { { "a", { 1, 2, 3 } }, { "b", { 10, 10, 20, 20, 30 } }, { "c", { 0.1, 0.2 } } }),
      "a",
      "b",
      "c" },
    { "constants beside two varying variables",
      study(80,
            { { "always255", { 255.0 } },
              { "zero", { 0.0 } },
              { "p", spread(1) },
              { "q", spread(2) } }),
      "p",
      "q",
      "-" },
    { "one variable: against the case order",
      study(50, { { "only", spread(3) } }),
      "-",
      "only",
      "-" },
    { "texts only", study(30, { { "material", Texts{ { "steel", "wood" } } } }), "-", "-", "-" },
    { "nothing varies", study(10, { { "a", { 1.0 } }, { "b", { 2.0 } } }), "-", "-", "-" },
  };
  for (const auto& shape : shapes)
  {
    const auto choice = explorer::defaults::scatter(*shape.project);
    EXPECT_EQ(nameOf(choice.x), shape.x) << shape.shape;
    EXPECT_EQ(nameOf(choice.y), shape.y) << shape.shape;
    EXPECT_EQ(nameOf(choice.colour), shape.colour) << shape.shape;
  }
}

TEST(StudyDefaults, TheImageMatrixIsNeverLaidOutByAConstant)
{
  const auto sweep = study(
    60, { { "fixed", { 7.0 } }, { "a", { 1, 2, 3 } }, { "b", { 10, 20 } }, { "out", spread(2) } });
  const auto fixed = sweep->variable("fixed");
  const auto a = sweep->variable("a");
  auto choice = explorer::defaults::matrix(*sweep, fixed, fixed);
  EXPECT_EQ(nameOf(choice.column), "a") << "a constant gives way to a varying input";
  EXPECT_EQ(nameOf(choice.row), "b");
  choice = explorer::defaults::matrix(*sweep, sweep->variable("b"), a);
  EXPECT_EQ(nameOf(choice.column), "b") << "a varying choice is kept";
  EXPECT_EQ(nameOf(choice.row), "a");

  const auto small = study(50, { { "only", spread(3) } });
  choice = explorer::defaults::matrix(*small, {}, {});
  EXPECT_EQ(nameOf(choice.column), "only") << "a study of one varying variable is laid out by it";
  EXPECT_EQ(nameOf(choice.row), "-");

  const auto large = study(explorer::defaults::matrixCasesAlongAnOutput + 1,
                           { { "x1", spread(1) }, { "x2", spread(2) } });
  choice = explorer::defaults::matrix(*large, {}, {});
  EXPECT_EQ(nameOf(choice.column), "-") << "no column per case of a large study";
  EXPECT_EQ(nameOf(choice.row), "-");
}

TEST(StudyDefaults, ThePlotsOfSeveralAxesTakeVaryingVariablesFirst)
{
  const auto mixed = study(100,
                           { { "fixed", { 7.0 } },
                             { "material", Texts{ { "steel", "wood", "lead" } } },
                             { "out", spread(2) },
                             { "a", { 1, 2, 3, 4 } },
                             { "same", Texts{ { "x" } } } });
  std::vector<std::string> axes;
  for (const auto& variable : explorer::defaults::parallelAxes(*mixed, 8))
    axes.push_back(nameOf(variable));
  EXPECT_EQ(axes, (std::vector<std::string>{ "a", "out", "material" }))
    << "inputs, outputs, texts; constants left out";
  EXPECT_EQ(explorer::defaults::parallelAxes(*mixed, 2).size(), 2u);

  const auto cube = explorer::defaults::scatter3D(*mixed);
  EXPECT_EQ(nameOf(cube[0]), "a");
  EXPECT_EQ(nameOf(cube[1]), "out");
  EXPECT_EQ(nameOf(cube[2]), "a") << "with two varying numbers the third axis repeats one";
  EXPECT_EQ(nameOf(cube[3]), "-") << "the colour does not repeat";
}
