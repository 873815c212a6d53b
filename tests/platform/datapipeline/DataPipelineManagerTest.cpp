#include "datapipeline/DataPipelineManager.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/FilterRangeFinder.h"
#include "datapipeline/RangeFilter.h"
#include "datapipeline/ValueSetFilter.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <vtkAbstractArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>
#include <vtkTypeUInt64Array.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace
{

std::shared_ptr<const Project> study()
{
  ProjectBuilder builder;
  builder.setCaseIds({ 10, 11, 12, 13, 14, 18446744073709551615ULL });
  builder.addNumericVariable("angle", { 15, 30, 45, 60, 75, 30 });
  builder.addNumericVariable("range", { 1.0, 2.5, std::nan(""), 4.0, 5.0, 2.0 });
  builder.addTextVariable("material", { "steel", "wood", "steel", "wood", "steel", "lead" });
  return builder.build();
}

std::vector<unsigned long long> outputCaseIds(const DataPipelineManager& pipeline)
{
  auto output = pipeline.output();
  output->Update();
  vtkTable* table = output->GetOutput();
  auto* ids = vtkTypeUInt64Array::SafeDownCast(table->GetColumn(0));
  std::vector<unsigned long long> result;
  for (vtkIdType row = 0; ids && row < ids->GetNumberOfValues(); ++row)
    result.push_back(ids->GetValue(row));
  return result;
}

} // namespace

TEST(DataPipelineManager, OutputDropsExactlyTheRowsOutsideTheFiltersInEffect)
{
  const auto project = study();
  DataPipelineManager pipeline(project);
  const auto angle = project->variable("angle");
  const auto range = project->variable("range");
  const auto material = project->variable("material");
  int changes = 0;
  auto connection = pipeline.connectSignalPipelineChanged([&] { ++changes; });

  const struct
  {
    const char* step;
    std::function<void()> act;
    std::vector<unsigned long long> expected;
  } steps[] = {
    { "angle in [30, 60], ends included",
      [&] { pipeline.setRangeFilter(angle, 30, 60); },
      { 11, 12, 13, 18446744073709551615ULL } },
    { "and range in [0, 3]; NaN never passes",
      [&] { pipeline.setRangeFilter(range, 0, 3); },
      { 11, 18446744073709551615ULL } },
    { "the angle filter switched off",
      [&] { pipeline.setFilterEnabled(angle, false); },
      { 10, 11, 18446744073709551615ULL } },
    { "and the range filter widened",
      [&] { pipeline.setRangeFilter(range, 0, 10); },
      { 10, 11, 13, 14, 18446744073709551615ULL } },
    { "a value set on a text variable",
      [&]
      {
        pipeline.setFilter(boost::make_shared<ValueSetFilter>(
          material, std::set<Variant>{ Variant("steel"), Variant("lead") }));
      },
      { 10, 14, 18446744073709551615ULL } },
    { "setting the angle range switches its filter on again",
      [&] { pipeline.setRangeFilter(angle, 30, 60); },
      { 18446744073709551615ULL } },
    { "removing every filter",
      [&]
      {
        pipeline.removeFilter(angle);
        pipeline.removeFilter(range);
        pipeline.removeFilter(material);
      },
      { 10, 11, 12, 13, 14, 18446744073709551615ULL } },
  };
  // Each case's values stay with it: the study's rows by case id.
  const auto valuesOf = [](vtkTable* table, unsigned long long id)
  {
    auto* ids = vtkTypeUInt64Array::SafeDownCast(table->GetColumn(0));
    std::string values;
    for (vtkIdType row = 0; ids && row < ids->GetNumberOfValues(); ++row)
      if (ids->GetValue(row) == id)
        for (const char* name : { "angle", "range", "material" })
          values += table->GetColumnByName(name)->GetVariantValue(row).ToString() + " ";
    return values;
  };
  auto everyCase = pipeline.output();
  everyCase->Update();
  auto unfiltered = vtkSmartPointer<vtkTable>::New();
  unfiltered->DeepCopy(everyCase->GetOutput());
  int expectedChanges = 0;
  for (const auto& step : steps)
  {
    step.act();
    EXPECT_GT(changes, expectedChanges) << step.step << " must signal a change";
    expectedChanges = changes;
    EXPECT_EQ(outputCaseIds(pipeline), step.expected) << step.step;
    for (unsigned long long id : step.expected)
      EXPECT_EQ(valuesOf(pipeline.output()->GetOutput(), id), valuesOf(unfiltered, id))
        << step.step << ", case " << id;
  }
}

TEST(DataPipelineManager, FiltersReportTheirKindRangeAndWhetherTheyAreInEffect)
{
  const auto project = study();
  DataPipelineManager pipeline(project);
  const auto angle = project->variable("angle");
  EXPECT_EQ(pipeline.filter(angle), nullptr);

  auto filter = pipeline.setRangeFilter(angle, 20, 40);
  EXPECT_EQ(getFilterType(*filter), FilterFactoryInterface::Range);
  EXPECT_EQ(FilterRangeFinder(*filter).range(), std::make_pair(20.0, 40.0));
  EXPECT_EQ(pipeline.filter(angle), filter);
  ASSERT_EQ(pipeline.activeFilters().size(), 1u);

  int changes = 0;
  auto connection = pipeline.connectSignalPipelineChanged([&] { ++changes; });
  filter->setRange(25, 40); // a change made on the filter itself reaches the pipeline
  EXPECT_EQ(changes, 1);
  filter->setRange(25, 40);
  EXPECT_EQ(changes, 1) << "an unchanged range signals nothing";
  pipeline.setFilterEnabled(angle, false);
  EXPECT_TRUE(pipeline.activeFilters().empty());
  EXPECT_FALSE(pipeline.isFilterEnabled(angle));
  EXPECT_EQ(pipeline.filters().size(), 1u) << "a switched-off filter keeps its condition";

  const ValueSetFilter set(angle, { Variant(45.0), Variant(15), Variant("x") });
  EXPECT_EQ(getFilterType(set), FilterFactoryInterface::ValueSet);
  EXPECT_EQ(FilterRangeFinder(set).range(), std::make_pair(15.0, 45.0));
  const ValueSetFilter texts(angle, { Variant("x") });
  EXPECT_TRUE(std::isnan(FilterRangeFinder(texts).range().first));
}

TEST(DataPipelineManager, ANewProjectReplacesTheCasesAndDropsTheFilters)
{
  const auto first = study();
  DataPipelineManager pipeline(first);
  pipeline.setRangeFilter(first->variable("angle"), 0, 20);
  EXPECT_EQ(outputCaseIds(pipeline), (std::vector<unsigned long long>{ 10 }));

  ProjectBuilder builder;
  builder.setCaseIds({ 1, 2 });
  builder.addNumericVariable("angle", { 1, 2 });
  pipeline.setProject(builder.build());
  EXPECT_TRUE(pipeline.filters().empty());
  EXPECT_EQ(outputCaseIds(pipeline), (std::vector<unsigned long long>{ 1, 2 }));
}

TEST(DataPipelineManager, OutputsKeptAfterThePipelineReadTheProjectsValuesAndKeepItAlive)
{
  std::shared_ptr<const Project> project = study();
  const std::weak_ptr<const Project> watched = project;
  auto pipeline = std::make_unique<DataPipelineManager>(project);
  pipeline->output()->Update();
  vtkSmartPointer<vtkTable> kept = pipeline->output()->GetOutput();
  auto* angle = vtkDoubleArray::SafeDownCast(kept->GetColumnByName("angle"));
  ASSERT_NE(angle, nullptr);
  EXPECT_EQ(angle->GetPointer(0), project->numericValues(project->variable("angle").lock())->data())
    << "the project's values, not a copy";
  auto* caseIds = vtkTypeUInt64Array::SafeDownCast(kept->GetColumnByName("case_id"));
  ASSERT_NE(caseIds, nullptr);
  EXPECT_EQ(caseIds->GetPointer(0), project->caseIds().data()) << "the ids too";
  auto copy = vtkSmartPointer<vtkTable>::New();
  copy->ShallowCopy(kept);
  auto grown = vtkSmartPointer<vtkDoubleArray>::New();
  grown->ShallowCopy(angle);
  grown->InsertNextValue(90); // grown into a buffer of its own; the project is untouched
  EXPECT_EQ(project->numericValues(project->variable("angle").lock())->size(), 6u);

  pipeline.reset();
  project.reset();
  kept = nullptr;
  ASSERT_FALSE(watched.expired()) << "the shallow copy's columns still show the project";
  auto* shown = vtkDoubleArray::SafeDownCast(copy->GetColumnByName("range"));
  ASSERT_NE(shown, nullptr);
  EXPECT_EQ(shown->GetValue(3), 4.0);
  EXPECT_EQ(grown->GetValue(6), 90.0);
  EXPECT_EQ(grown->GetValue(5), 30.0);
  auto idsOnly = vtkSmartPointer<vtkTable>::New();
  idsOnly->AddColumn(copy->GetColumnByName("case_id"));

  copy = nullptr;
  ASSERT_FALSE(watched.expired()) << "the ids alone still show the project";
  EXPECT_EQ(idsOnly->GetValueByName(5, "case_id").ToTypeUInt64(), 18446744073709551615ULL);
  idsOnly = nullptr;
  EXPECT_TRUE(watched.expired()) << "let go with the last array showing it";
}

// A million cases of eight variables are filtered by several threads, each gathering its share
// of the columns: every column of the output holds the kept cases' own values.
TEST(DataPipelineManager, ManyCasesAreFilteredColumnByColumnAsFewAre)
{
  constexpr std::size_t cases = 1'000'000;
  ProjectBuilder builder;
  std::vector<unsigned long long> ids(cases);
  for (std::size_t i = 0; i < cases; ++i)
    ids[i] = 3 * i + 7;
  builder.setCaseIds(ids);
  constexpr int variables = 8;
  for (int v = 0; v < variables; ++v)
  {
    std::vector<double> values(cases);
    for (std::size_t i = 0; i < cases; ++i)
      values[i] = static_cast<double>(i % 1000) + 1000.0 * v;
    builder.addNumericVariable("v" + std::to_string(v), std::move(values));
  }
  const auto project = builder.build();
  DataPipelineManager pipeline(project);
  pipeline.setRangeFilter(project->variable("v0"), 100, 599); // half of the cases
  auto output = pipeline.output();
  output->Update();
  vtkTable* table = output->GetOutput();
  ASSERT_EQ(table->GetNumberOfRows(), vtkIdType(cases / 2));
  auto* kept = vtkTypeUInt64Array::SafeDownCast(table->GetColumn(0));
  ASSERT_NE(kept, nullptr);
  std::size_t wrong = 0;
  for (int v = 0; v < variables; ++v)
  {
    auto* values =
      vtkDoubleArray::SafeDownCast(table->GetColumnByName(("v" + std::to_string(v)).c_str()));
    ASSERT_NE(values, nullptr);
    for (vtkIdType row = 0; row < table->GetNumberOfRows(); ++row)
    {
      const std::size_t i = (kept->GetValue(row) - 7) / 3;
      wrong += values->GetValue(row) != static_cast<double>(i % 1000) + 1000.0 * v ? 1 : 0;
    }
  }
  EXPECT_EQ(wrong, 0U);
  EXPECT_EQ(kept->GetValue(0), 7U + 3 * 100);
  EXPECT_EQ(kept->GetValue(table->GetNumberOfRows() - 1), 7U + 3 * (cases - 401));
}
