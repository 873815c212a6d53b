// The scatter plot's model: the rows it plots, what it says it leaves out, and its axes' ranges
// and ticks.

#include "views/scatter/ScatterPlotModel.h"
#include "CaseKeys.h"
#include "views/scatter/vtkCaseKeysFilter.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/Property.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>

#include <algorithm>
#include <cmath>
#include <limits>

using explorer::ScatterPlotModel;

namespace
{

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

using VariableProperty = plexa::Property<WeakPtr<Variable>>;

struct Plotted
{
  Plotted();
  explicit Plotted(std::shared_ptr<const Project> study)
    : project(std::move(study))
  {
    plot();
  }

  void plot()
  {
    pipeline = std::make_shared<DataPipelineManager>(project);
    model = std::make_unique<ScatterPlotModel>(
      *pipeline, project, std::make_shared<explorer::CaseKeys>(*project), x, y, colour);
  }

  std::shared_ptr<const Project> project;
  std::shared_ptr<DataPipelineManager> pipeline;
  boost::shared_ptr<VariableProperty> x = boost::make_shared<VariableProperty>();
  boost::shared_ptr<VariableProperty> y = boost::make_shared<VariableProperty>();
  boost::shared_ptr<VariableProperty> colour = boost::make_shared<VariableProperty>();
  std::unique_ptr<ScatterPlotModel> model;
};

Plotted::Plotted()
{
  ProjectBuilder builder;
  builder.setCaseIds({ 7, 4294967296ULL, 18446744073709551615ULL, 12, 13 });
  builder.addNumericVariable("a", { 1, 2, 3, missing, 5 });
  builder.addNumericVariable("b", { 10, 20, missing, 40, 50 });
  builder.addNumericVariable("c", { 0.5, missing, 0.7, missing, 0.9 });
  builder.addNumericVariable("sweep", { 1, 1, 2, 2, 3 }, Variable::Discrete);
  builder.addNumericVariable("steps", { 0, 10, 0, 10, 0 }, Variable::Discrete);
  builder.addNumericVariable("signed", { -1, 0, 2, 3, missing });
  project = builder.build();
  plot();
}

} // namespace

TEST(ScatterPlotModel, PlotsTheCasesWithXAndYAndSaysWhatItLeavesOut)
{
  Plotted plot;
  EXPECT_EQ(plot.model->update(), nullptr) << "no Y, nothing to plot";
  EXPECT_NE(plot.model->leftOutNote().find("Nothing to plot"), std::string::npos);

  plot.x->setValue(plot.project->variable("a"));
  plot.y->setValue(plot.project->variable("b"));
  plot.colour->setValue(plot.project->variable("c"));
  vtkTable* table = plot.model->update();
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->GetNumberOfRows(), 3) << "cases 7, 2^32 and 13 have a and b";
  EXPECT_EQ(plot.model->leftOutNote(), "2 of 5 cases have no value of a or b and are not shown.");
  EXPECT_EQ(plot.model->withoutColour(), 1u) << "case 2^32 is drawn grey";
  plot.colour->setValue(plot.project->variable("a"));
  table = plot.model->update();
  EXPECT_EQ(plot.model->withoutColour(), 0u) << "another colour column is counted";
  auto* colours = vtkDoubleArray::SafeDownCast(table->GetColumnByName("a"));
  ASSERT_NE(colours, nullptr);
  colours->SetValue(0, missing);
  colours->Modified();
  EXPECT_EQ(plot.model->withoutColour(), 1u) << "a changed column is counted again";
  plot.colour->setValue(plot.project->variable("c"));
  table = plot.model->update();
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(plot.model->rowOfCase(4294967296ULL), 1);
  EXPECT_EQ(plot.model->rowOfCase(18446744073709551615ULL), -1) << "it has no b";
  EXPECT_EQ(plot.model->rowsOfCases({ 7, 12, 13, 4294967296ULL, 18446744073709551615ULL }),
            (std::vector<int>{ 0, 1, 2 }))
    << "the rows of the plotted cases, in row order";
  unsigned long long id = 0;
  ASSERT_TRUE(plot.model->caseOfKey(table->GetValue(2, 0).ToLongLong(), id));
  EXPECT_EQ(id, 13u) << "column 0 holds keys that name the cases";

  // Without X the case order is plotted: all four cases with b.
  plot.x->setValue({});
  table = plot.model->update();
  EXPECT_EQ(plot.model->xColumn(), ScatterPlotModel::caseOrder);
  ASSERT_EQ(table->GetNumberOfRows(), 4);
  EXPECT_EQ(table->GetValueByName(3, ScatterPlotModel::caseOrder).ToDouble(), 5.0);
  EXPECT_EQ(plot.model->leftOutNote(), "1 of 5 cases have no value of b and are not shown.");
  EXPECT_EQ(plot.model->rowsOfCases({ 12, 13 }), (std::vector<int>{ 2, 3 }))
    << "the rows of the new table";

  // Rows of a selection, copied with the named columns only.
  auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
  rows->InsertNextValue(2);
  rows->InsertNextValue(0);
  const auto selected = ScatterPlotModel::rowsOf(*table, *rows, { "b", "nothing", "b" });
  ASSERT_EQ(selected->GetNumberOfColumns(), 1);
  EXPECT_EQ(selected->GetValue(0, 0).ToDouble(), 40);
  EXPECT_EQ(selected->GetValue(1, 0).ToDouble(), 10);
}

TEST(ScatterPlotModel, AxesShowEveryPointWholeOnRoundNumbers)
{
  // The range holds the values and the margin, and passes them by less than a hundredth.
  const struct
  {
    double min, max, markerShare, halfGap, margin;
  } cases[] = {
    { 0, 100, 0, 0, 4 },    // 4% each side
    { 0, 100, 0.1, 0, 10 }, // at least a marker
    { 1, 3, 0, 0.5, 0.5 },  // half a sweep's step
    { -7, -2, 0, 0, 0.2 },  { 1e6, 1e6 + 3, 0, 0, 0.12 },
  };
  for (const auto& c : cases)
  {
    double from = 0;
    double to = 0;
    ASSERT_TRUE(ScatterPlotModel::axisRange(c.min, c.max, c.markerShare, c.halfGap, from, to));
    const double slack = (c.max - c.min) / 100 + 1e-9;
    EXPECT_LE(from, c.min - c.margin + 1e-9) << c.min << " to " << c.max;
    EXPECT_GT(from, c.min - c.margin - slack) << c.min << " to " << c.max;
    EXPECT_GE(to, c.max + c.margin - 1e-9) << c.min << " to " << c.max;
    EXPECT_LT(to, c.max + c.margin + slack) << c.min << " to " << c.max;
  }
  // A single value is centred, a tenth of it on round numbers either side (1 around 0).
  for (const double value : { 255.0, 0.0, -0.3, 4.0e9 })
  {
    double from = 0;
    double to = 0;
    ASSERT_TRUE(ScatterPlotModel::axisRange(value, value, 0.01, 0, from, to));
    EXPECT_NEAR((from + to) / 2, value, 1e-9 * std::max(1.0, std::abs(value))) << value;
    EXPECT_GT(to - from, 0) << value;
    EXPECT_LE(to - from, value == 0 ? 2.0 : std::abs(value) * 0.4) << value;
  }
  double from = 7;
  double to = 7;
  EXPECT_FALSE(ScatterPlotModel::axisRange(missing, 1, 0, 0, from, to));
  EXPECT_FALSE(ScatterPlotModel::axisRange(2, 1, 0, 0, from, to));
  EXPECT_EQ(from, 7) << "left alone";

  Plotted plot;
  for (int time = 0; time < 2; ++time) // counted, then kept: each variable its own
  {
    EXPECT_DOUBLE_EQ(plot.model->halfGap(plot.project->variable("sweep").lock()), 0.5);
    EXPECT_DOUBLE_EQ(plot.model->halfGap(plot.project->variable("steps").lock()), 5);
    EXPECT_EQ(plot.model->halfGap(plot.project->variable("a").lock()), 0) << "continuous";
  }
}

TEST(ScatterPlotModel, ACustomGridSpacingTicksEveryMultipleInsideTheRange)
{
  using Ticks = std::vector<double>;
  EXPECT_EQ(ScatterPlotModel::customTicks(198, 242, 50), Ticks{ 200 });
  EXPECT_EQ(ScatterPlotModel::customTicks(242, 198, 50), Ticks{ 200 }) << "a reversed axis";
  EXPECT_EQ(ScatterPlotModel::customTicks(-130, -20, 50), (Ticks{ -100, -50 }));
  EXPECT_EQ(ScatterPlotModel::customTicks(0.15, 0.65, 0.1), (Ticks{ 0.2, 0.3, 0.4, 0.5, 0.6 }));
  const Ticks around = ScatterPlotModel::customTicks(-5, 60, 50);
  ASSERT_EQ(around, (Ticks{ 0, 50 }));
  EXPECT_FALSE(std::signbit(around.front())) << "no tick reads -0";
  EXPECT_TRUE(ScatterPlotModel::customTicks(0, 1, 0).empty());
  EXPECT_TRUE(ScatterPlotModel::customTicks(0, 1, -1).empty());
  EXPECT_TRUE(ScatterPlotModel::customTicks(0, 1e9, 1).empty()) << "over 10,000 ticks";
  EXPECT_TRUE(ScatterPlotModel::customTicks(missing, 1, 0.1).empty());
}

TEST(ScatterPlotModel, LogarithmicAxesLeaveOutAndCountCasesAtOrBelowZero)
{
  Plotted plot;
  plot.x->setValue(plot.project->variable("signed"));
  plot.y->setValue(plot.project->variable("a"));
  plot.model->setLogAxes(false, true);
  ASSERT_NE(plot.model->update(), nullptr);
  EXPECT_EQ(plot.model->table()->GetNumberOfRows(), 3) << "a linear X places -1 and 0";
  EXPECT_EQ(plot.model->leftOutNote(),
            "2 of 5 cases have no value of signed or a and are not shown.");

  plot.model->setLogAxes(true, true);
  vtkTable* table = plot.model->update();
  ASSERT_EQ(table->GetNumberOfRows(), 1)
    << "of cases 7 (-1), 2^32 (0) and 18446744073709551615 (2)";
  unsigned long long id = 0;
  ASSERT_TRUE(plot.model->caseOfKey(table->GetValue(0, 0).ToLongLong(), id));
  EXPECT_EQ(id, 18446744073709551615ULL);
  EXPECT_EQ(plot.model->rowOfCase(7), -1);
  EXPECT_EQ(plot.model->leftOutNote(),
            "2 of 5 cases have no value of signed or a and are not shown.\n"
            "2 of 5 cases are at or below zero on a logarithmic axis and are not shown.");
}

TEST(ScatterPlotModel, TheRowsOfCasesAreFoundWhateverTheShapeOfTheIdsAndTheSelection)
{
  using Ids = std::vector<unsigned long long>;
  const std::size_t size = 1000;
  const std::pair<const char*, unsigned long long (*)(std::size_t)> shapes[] = {
    { "sequential", [](std::size_t i) { return 1000ULL + i; } },
    { "sorted with gaps", [](std::size_t i) { return 3ULL * i + (1ULL << 40); } },
    { "unsorted", [](std::size_t i) { return (i * 7919 % 1000) * 2ULL + 1; } },
  };
  for (const auto& [shape, idOf] : shapes)
  {
    ProjectBuilder builder;
    Ids ids;
    std::vector<double> a;
    for (std::size_t i = 0; i < size; ++i)
    {
      ids.push_back(idOf(i));
      a.push_back(i % 10 == 3 ? missing : double(i));
    }
    builder.setCaseIds(ids);
    builder.addNumericVariable("a", a);
    Plotted plot(builder.build());
    plot.x->setValue(plot.project->variable("a"));
    plot.y->setValue(plot.project->variable("a"));
    vtkTable* table = plot.model->update();
    ASSERT_NE(table, nullptr);

    std::sort(ids.begin(), ids.end());
    const Ids few = { ids[3], ids[size / 2], ids[size / 2] + 1, ids.back() };
    Ids many;
    for (std::size_t i = 0; i < size; i += 2)
      many.push_back(ids[i]);
    for (const Ids* selection : std::initializer_list<const Ids*>{ &few, &many })
    {
      std::vector<int> expected;
      for (vtkIdType row = 0; row < table->GetNumberOfRows(); ++row)
      {
        unsigned long long id = 0;
        ASSERT_TRUE(plot.model->caseOfKey(table->GetValue(row, 0).ToLongLong(), id));
        if (std::binary_search(selection->begin(), selection->end(), id))
          expected.push_back(static_cast<int>(row));
      }
      EXPECT_EQ(plot.model->rowsOfCases(*selection), expected) << shape << " " << selection->size();
    }
  }
}

TEST(ScatterPlotModel, TheKeysOfTheRowsAreMadeAgainOnlyWhenTheRowsChange)
{
  // Cases 30, 10 and 20 of a study of 10, 20, 30 and 40: keys 2, 0, 1.
  const auto keys =
    std::make_shared<explorer::CaseKeys>(std::vector<unsigned long long>{ 10, 20, 30, 40 });
  const auto tableOf = [](const std::vector<unsigned long long>& caseIds)
  {
    auto table = vtkSmartPointer<vtkTable>::New();
    auto ids = vtkSmartPointer<vtkTypeUInt64Array>::New();
    ids->SetName("case_id");
    auto speed = vtkSmartPointer<vtkDoubleArray>::New();
    speed->SetName("speed");
    for (unsigned long long id : caseIds)
    {
      ids->InsertNextValue(id);
      speed->InsertNextValue(static_cast<double>(id) / 10);
    }
    table->AddColumn(ids);
    table->AddColumn(speed);
    return table;
  };
  auto filter = vtkSmartPointer<explorer::vtkCaseKeysFilter>::New();
  filter->SetKeys(keys);
  const auto keysOut = [&]
  {
    filter->Update();
    auto* column = vtkIntArray::SafeDownCast(filter->GetOutput()->GetColumn(0));
    std::vector<int> values;
    for (vtkIdType row = 0; column && row < column->GetNumberOfValues(); ++row)
      values.push_back(column->GetValue(row));
    return std::make_pair(static_cast<vtkAbstractArray*>(column), values);
  };
  vtkSmartPointer<vtkTable> input = tableOf({ 30, 10, 20 });
  filter->SetInputData(input);
  filter->SetColumns({ "speed" });
  const auto [first, firstKeys] = keysOut();
  EXPECT_EQ(firstKeys, (std::vector<int>{ 2, 0, 1 }));
  EXPECT_EQ(filter->GetOutput()->GetNumberOfColumns(), 2);

  filter->SetColumns({ "speed", explorer::vtkCaseKeysFilter::caseOrderColumnName });
  const auto [again, againKeys] = keysOut();
  EXPECT_EQ(again, first) << "other columns shown, the same rows: the same keys passed on";
  EXPECT_EQ(filter->GetOutput()->GetValueByName(0, "case order").ToDouble(), 3.0);

  // The same id column changed in place, then a new table of other rows.
  vtkTypeUInt64Array::SafeDownCast(input->GetColumnByName("case_id"))->SetValue(0, 40);
  input->GetColumnByName("case_id")->Modified();
  input->Modified();
  EXPECT_EQ(keysOut().second, (std::vector<int>{ 3, 0, 1 })) << "an id changed in place";
  EXPECT_EQ(filter->GetOutput()->GetValueByName(0, "case order").ToDouble(), 4.0)
    << "the order follows the new keys";
  filter->SetInputData(tableOf({ 20, 40 }));
  EXPECT_EQ(keysOut().second, (std::vector<int>{ 1, 3 })) << "other rows";
}
