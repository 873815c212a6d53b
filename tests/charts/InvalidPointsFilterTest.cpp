#include "charts/InvalidPointsFilter.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "properties/Property.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <vtkBitArray.h>
#include <vtkCharArray.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace
{

using VariableProperty = plexa::Property<WeakPtr<Variable>>;
const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double inf = std::numeric_limits<double>::infinity();

// The variables the filter may be asked about; only their names matter to it.
std::shared_ptr<const Project> variables()
{
  ProjectBuilder builder;
  builder.setCaseIds({ 1 });
  for (const char* name : { "x", "y", "z", "count", "ratio", "absent" })
    builder.addNumericVariable(name, { 0 });
  for (int i = 0; i < 9; ++i)
    builder.addNumericVariable("x" + std::to_string(i), { 0 });
  return builder.build();
}

template<typename ArrayT, typename T>
vtkSmartPointer<ArrayT> column(const char* name, std::initializer_list<T> values)
{
  auto array = vtkSmartPointer<ArrayT>::New();
  array->SetName(name);
  for (const T& v : values)
    array->InsertNextValue(v);
  return array;
}

// Four rows of every column kind.
vtkSmartPointer<vtkTable> fourRows(std::initializer_list<double> x, std::initializer_list<double> y)
{
  auto table = vtkSmartPointer<vtkTable>::New();
  table->AddColumn(column<vtkIntArray>("case_id", { 10, 11, 12, 13 }));
  table->AddColumn(column<vtkDoubleArray>("x", x));
  table->AddColumn(column<vtkDoubleArray>("y", y));
  table->AddColumn(column<vtkStringArray, std::string>("label", { "a", "b", "c", "d" }));
  table->AddColumn(column<vtkCharArray, char>("grade", { 'p', 'q', 'r', 's' }));
  table->AddColumn(column<vtkBitArray, int>("failed", { 0, 1, 0, 1 }));
  table->AddColumn(column<vtkIntArray>("count", { 5, 6, 7, 8 }));
  table->AddColumn(column<vtkFloatArray, float>("ratio", { 0.5f, 1.5f, 2.5f, 3.5f }));
  return table;
}

class InvalidPoints : public ::testing::Test
{
protected:
  InvalidPoints()
    : project(variables())
  {
  }

  boost::shared_ptr<VariableProperty> property(const char* name)
  {
    return boost::make_shared<VariableProperty>(project->variable(name));
  }

  vtkTable* run(InvalidPointsFilter& filter, vtkTable* input)
  {
    filter.SetInputData(input);
    filter.Update();
    return filter.GetOutput();
  }

  std::shared_ptr<const Project> project;
};

std::vector<int> caseIds(vtkTable* table)
{
  std::vector<int> ids;
  auto* column = vtkIntArray::SafeDownCast(table->GetColumnByName("case_id"));
  for (vtkIdType row = 0; column && row < table->GetNumberOfRows(); ++row)
    ids.push_back(column->GetValue(row));
  return ids;
}

} // namespace

TEST_F(InvalidPoints, DropsRowsWithNaNInTheChosenDoubleColumnsAndKeepsInfinities)
{
  auto filter = InvalidPointsFilter::New({ property("x"), property("y") });
  vtkTable* output = run(*filter, fourRows({ 1, notANumber, 3, 4 }, { 4, 5, inf, -notANumber }));
  ASSERT_EQ(caseIds(output), (std::vector<int>{ 10, 12 }));
  EXPECT_EQ(output->GetNumberOfColumns(), 8);
  EXPECT_EQ(vtkDoubleArray::SafeDownCast(output->GetColumnByName("y"))->GetValue(1), inf);
  EXPECT_EQ(vtkStringArray::SafeDownCast(output->GetColumnByName("label"))->GetValue(1), "c");
  EXPECT_EQ(vtkCharArray::SafeDownCast(output->GetColumnByName("grade"))->GetValue(1), 'r');
  EXPECT_EQ(vtkBitArray::SafeDownCast(output->GetColumnByName("failed"))->GetValue(0), 0);
  EXPECT_EQ(vtkIntArray::SafeDownCast(output->GetColumnByName("count"))->GetValue(1), 7);
  vtkAbstractArray* ratio = output->GetColumnByName("ratio");
  ASSERT_NE(ratio, nullptr) << "a float column stays in the output...";
  EXPECT_EQ(ratio->GetNumberOfTuples(), 2) << "...with the output's rows, but is not filled";
}

TEST_F(InvalidPoints, WhenNoRowIsDroppedTheNumbersAreTheInputsOwnAndOtherTypesStillUncopied)
{
  auto filter = InvalidPointsFilter::New({ property("x"), property("y") });
  auto table = fourRows({ 1, 2, inf, 4 }, { 4, 5, 6, 7 });
  auto pairs = column<vtkDoubleArray, double>("pairs", { 1, 2, 3, 4, 5, 6, 7, 8 });
  pairs->SetNumberOfComponents(2);
  table->AddColumn(pairs);
  vtkTable* output = run(*filter, table);
  ASSERT_EQ(caseIds(output), (std::vector<int>{ 10, 11, 12, 13 }));
  ASSERT_EQ(output->GetNumberOfColumns(), 9);
  for (const char* name : { "case_id", "x", "y", "grade", "count" })
  {
    EXPECT_EQ(output->GetColumnByName(name), table->GetColumnByName(name))
      << name << " is the input's column, not a copy";
  }
  EXPECT_EQ(vtkStringArray::SafeDownCast(output->GetColumnByName("label"))->GetValue(3), "d");
  EXPECT_EQ(vtkBitArray::SafeDownCast(output->GetColumnByName("failed"))->GetValue(3), 1);
  for (const char* name : { "ratio", "pairs" })
  {
    vtkAbstractArray* uncopied = output->GetColumnByName(name);
    ASSERT_NE(uncopied, nullptr) << name;
    EXPECT_EQ(uncopied->GetNumberOfTuples(), 4) << name << " has the rows...";
    EXPECT_NE(uncopied->GetVoidPointer(0), table->GetColumnByName(name)->GetVoidPointer(0))
      << "...but not the input's values";
  }

  // A column longer than the table's rows gets the rows only, here as when rows are dropped.
  auto uneven = fourRows({ 1, 2, 3, 4 }, { 1, 2, 3, 4 });
  vtkIntArray::SafeDownCast(uneven->GetColumnByName("count"))->InsertNextValue(9);
  output = run(*filter, uneven);
  EXPECT_EQ(output->GetColumnByName("count")->GetNumberOfTuples(), 4);
  EXPECT_EQ(vtkIntArray::SafeDownCast(output->GetColumnByName("count"))->GetValue(3), 8);
}

TEST_F(InvalidPoints, TheMaskColumnMarksRowsInvalidAndIsCopiedToo)
{
  auto filter = InvalidPointsFilter::New({ property("x") });
  auto table = fourRows({ 1, 2, 3, 4 }, { 1, 2, 3, 4 });
  table->AddColumn(column<vtkCharArray, char>("ValidPointsMask", { 1, 0, 7, 0 }));
  vtkTable* output = run(*filter, table);
  EXPECT_EQ(caseIds(output), (std::vector<int>{ 10, 12 }));
  auto* mask = vtkCharArray::SafeDownCast(output->GetColumnByName("ValidPointsMask"));
  ASSERT_NE(mask, nullptr);
  EXPECT_EQ(mask->GetValue(1), 7);

  auto notChars = fourRows({ 1, 2, 3, 4 }, { 1, 2, 3, 4 });
  notChars->AddColumn(column<vtkIntArray>("ValidPointsMask", { 0, 0, 0, 0 }));
  EXPECT_EQ(caseIds(run(*filter, notChars)).size(), 4u) << "a mask that is not chars is ignored";
}

TEST_F(InvalidPoints, WhatCannotBeCheckedPassesThrough)
{
  const auto table = fourRows({ notANumber, 2, 3, 4 }, { 1, 2, 3, 4 });
  for (const auto& [what, chosen] : std::vector<
         std::pair<const char*,
                   std::vector<boost::shared_ptr<const InvalidPointsFilter::VariableProperty>>>>{
         { "an int variable, never NaN", { property("count") } },
         { "a column the table lacks", { property("absent") } },
         { "no variable", { boost::make_shared<VariableProperty>() } } })
  {
    auto filter = InvalidPointsFilter::New(chosen);
    EXPECT_EQ(run(*filter, table)->GetNumberOfRows(), 4) << what;
  }

  auto filter = InvalidPointsFilter::New({ property("x") });
  auto empty = vtkSmartPointer<vtkTable>::New();
  empty->AddColumn(column<vtkDoubleArray, double>("x", {}));
  empty->AddColumn(column<vtkStringArray, std::string>("label", {}));
  vtkTable* output = run(*filter, empty);
  EXPECT_EQ(output->GetNumberOfRows(), 0);
  EXPECT_STREQ(output->GetColumn(1)->GetName(), "label") << "an empty table keeps its columns";
}

TEST_F(InvalidPoints, ChoosingAnotherVariableReExecutesOnTheNextUpdate)
{
  auto chosen = property("x");
  auto filter = InvalidPointsFilter::New({ chosen });
  auto table = fourRows({ notANumber, 2, 3, 4 }, { 1, notANumber, notANumber, 4 });
  EXPECT_EQ(caseIds(run(*filter, table)), (std::vector<int>{ 11, 12, 13 }));
  chosen->setValue(project->variable("y"));
  filter->Update();
  EXPECT_EQ(caseIds(filter->GetOutput()), (std::vector<int>{ 10, 13 }));
}

TEST_F(InvalidPoints, NumbersCopiedUnderTheSameRowsAreSharedUntilTheirColumnChanges)
{
  // A plot of y against x, then against z: the same rows dropped (y's NaN), y copied once.
  auto chosen = property("x");
  auto filter = InvalidPointsFilter::New({ chosen, property("y") });
  auto table = vtkSmartPointer<vtkTable>::New();
  table->AddColumn(column<vtkIntArray>("case_id", { 10, 11, 12, 13 }));
  table->AddColumn(column<vtkDoubleArray, double>("x", { 1, 2, 3, 4 }));
  table->AddColumn(column<vtkDoubleArray, double>("z", { 40, 30, 20, 10 }));
  auto y = column<vtkDoubleArray, double>("y", { 1, notANumber, 3, 4 });
  table->AddColumn(y);
  const auto values = [&](const char* name)
  {
    auto* numbers = vtkDoubleArray::SafeDownCast(filter->GetOutput()->GetColumnByName(name));
    std::vector<double> result;
    for (vtkIdType row = 0; numbers && row < numbers->GetNumberOfValues(); ++row)
      result.push_back(numbers->GetValue(row));
    return result;
  };
  const auto at = [&](const char* name) { return filter->GetOutput()->GetColumnByName(name); };
  run(*filter, table);
  const vtkAbstractArray* yCopied = at("y");
  const vtkMTimeType yCopiedTime = at("y")->GetMTime();
  const vtkAbstractArray* idsCopied = at("case_id");

  chosen->setValue(project->variable("z"));
  filter->Update();
  EXPECT_EQ(caseIds(filter->GetOutput()), (std::vector<int>{ 10, 12, 13 }));
  EXPECT_EQ(values("z"), (std::vector<double>{ 40, 20, 10 })) << "z copied";
  EXPECT_EQ(values("y"), (std::vector<double>{ 1, 3, 4 }));
  EXPECT_EQ(at("y"), yCopied) << "y's copy passed on, the same rows dropped";
  EXPECT_EQ(at("y")->GetMTime(), yCopiedTime) << "and unmodified";
  EXPECT_EQ(at("case_id"), idsCopied);

  // y changed in place, then other rows dropped: copied again.
  y->SetValue(2, 33);
  y->Modified();
  table->Modified();
  filter->Update();
  EXPECT_EQ(values("y"), (std::vector<double>{ 1, 33, 4 })) << "a changed column";
  EXPECT_EQ(at("case_id"), idsCopied) << "the unchanged ids stay shared";
  vtkDoubleArray::SafeDownCast(table->GetColumnByName("z"))->SetValue(0, notANumber);
  table->GetColumnByName("z")->Modified();
  table->Modified();
  filter->Update();
  EXPECT_EQ(caseIds(filter->GetOutput()), (std::vector<int>{ 12, 13 }));
  EXPECT_EQ(values("y"), (std::vector<double>{ 33, 4 })) << "other rows kept";
}

TEST_F(InvalidPoints, EachOfManyXsChosenInTurnDropsItsOwnRowsFirstAndLastIncluded)
{
  // Eight columns of 1,000 rows, each with NaN in about twenty rows of its own (its first or its
  // last row among them), chosen as X twice round, more than the filter remembers scans of; and
  // one with NaN in every other row, more than it remembers the rows of.
  constexpr int rows = 1000;
  auto table = vtkSmartPointer<vtkTable>::New();
  auto ids = vtkSmartPointer<vtkIntArray>::New();
  ids->SetName("case_id");
  auto y = vtkSmartPointer<vtkDoubleArray>::New();
  y->SetName("y");
  for (int row = 0; row < rows; ++row)
  {
    ids->InsertNextValue(row);
    y->InsertNextValue(row == 500 ? notANumber : row);
  }
  table->AddColumn(ids);
  table->AddColumn(y);
  const auto isNaNIn = [](int x, int row)
  {
    if (x == 8)
      return row % 2 == 1;
    return row % (50 + x) == 1 || (x % 2 ? row == 0 : row == rows - 1);
  };
  for (int x = 0; x < 9; ++x)
  {
    auto values = vtkSmartPointer<vtkDoubleArray>::New();
    values->SetName(("x" + std::to_string(x)).c_str());
    for (int row = 0; row < rows; ++row)
      values->InsertNextValue(isNaNIn(x, row) ? notANumber : -row);
    table->AddColumn(values);
  }
  auto chosen = property("x0");
  auto filter = InvalidPointsFilter::New({ chosen, property("y") });
  filter->SetInputData(table);
  for (int turn = 0; turn < 18; ++turn)
  {
    const int x = turn % 9;
    const std::string name = "x" + std::to_string(x);
    chosen->setValue(project->variable(name));
    filter->Update();
    std::vector<int> expected;
    for (int row = 0; row < rows; ++row)
      if (row != 500 && !isNaNIn(x, row))
        expected.push_back(row);
    ASSERT_EQ(caseIds(filter->GetOutput()), expected) << name;
    auto* kept = vtkDoubleArray::SafeDownCast(filter->GetOutput()->GetColumnByName(name.c_str()));
    auto* keptY = vtkDoubleArray::SafeDownCast(filter->GetOutput()->GetColumnByName("y"));
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
      ASSERT_EQ(kept->GetValue(static_cast<vtkIdType>(i)), -expected[i]) << name << " row " << i;
      ASSERT_EQ(keptY->GetValue(static_cast<vtkIdType>(i)), expected[i]) << name << " row " << i;
    }
  }
}

TEST_F(InvalidPoints, ARelevanceDependentVariableCountsOnlyWhileRelevant)
{
  auto colour = property("y");
  auto coloured = boost::make_shared<plexa::Property<bool>>(false);
  auto relevant =
    boost::make_shared<InvalidPointsFilter::RelevanceDependentVariableProperty>(colour, coloured);
  EXPECT_TRUE(relevant->value().lock().isNull());
  int changes = 0;
  boost::signals2::scoped_connection connection =
    relevant->connectSignalValueChanged([&](const WeakPtr<Variable>&) { ++changes; });

  auto filter = InvalidPointsFilter::New({ property("x"), relevant });
  auto table = fourRows({ 1, 2, 3, 4 }, { 1, notANumber, 3, 4 });
  EXPECT_EQ(caseIds(run(*filter, table)).size(), 4u);
  coloured->setValue(true);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(relevant->value(), project->variable("y"));
  filter->Update();
  EXPECT_EQ(caseIds(filter->GetOutput()), (std::vector<int>{ 10, 12, 13 }));

  relevant->setValue(project->variable("x")); // read-only: nothing happens
  EXPECT_EQ(relevant->value(), project->variable("y"));
}
