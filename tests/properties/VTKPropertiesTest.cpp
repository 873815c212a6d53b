#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "properties/ColorVariableProperty.h"
#include "properties/SpatialVariableProperty2D.h"
#include "properties/VTKChartsMouseModeProperty.h"
#include "properties/VTKPropertyAbstract.h"

#include <gtest/gtest.h>
#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkContextMapper2D.h>
#include <vtkContextMouseEvent.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <vector>

namespace
{

// A VTK object holding one number, which can also be changed without a modified event.
class NumberHolder : public vtkObject
{
public:
  static NumberHolder* New();
  vtkTypeMacro(NumberHolder, vtkObject);
  void Set(double v)
  {
    this->Number = v;
    this->Modified();
  }
  void SetWithoutEvent(double v) { this->Number = v; }
  double Number = 0;
  int Writes = 0;
};
vtkStandardNewMacro(NumberHolder);

class NumberProperty : public VTKPropertyAbstract<double>
{
public:
  explicit NumberProperty(vtkSmartPointer<NumberHolder> holder)
    : VTKPropertyAbstract<double>(holder)
    , holder(std::move(holder))
  {
    rememberObjectValue();
  }

private:
  double retrieveValue() const override { return holder->Number; }
  void storeValueInVTK(const double& v) override
  {
    ++holder->Writes;
    holder->Set(v);
  }
  vtkSmartPointer<NumberHolder> holder;
};

std::shared_ptr<const Project> study()
{
  ProjectBuilder builder;
  builder.setCaseIds({ 1, 2, 3 });
  builder.addNumericVariable("angle", { 10, 20, 30 });
  builder.addNumericVariable("range", { 5, 6, 7 });
  return builder.build();
}

vtkSmartPointer<vtkTable> studyTable()
{
  auto table = vtkSmartPointer<vtkTable>::New();
  for (const char* name : { "angle", "range" })
  {
    auto column = vtkSmartPointer<vtkDoubleArray>::New();
    column->SetName(name);
    column->InsertNextValue(1);
    table->AddColumn(column);
  }
  return table;
}

std::string inputArrayName(vtkPlot& plot, int index)
{
  vtkAbstractArray* array = plot.GetData()->GetInputAbstractArrayToProcess(index, plot.GetInput());
  return array && array->GetName() ? array->GetName() : "";
}

} // namespace

TEST(VTKPropertyAbstract, FollowsTheObjectAndSignalsEachChangeOnce)
{
  vtkNew<NumberHolder> holder;
  holder->Number = 3;
  NumberProperty property(holder.Get());
  std::vector<double> heard;
  boost::signals2::scoped_connection connection =
    property.connectSignalValueChanged([&](const double& v) { heard.push_back(v); });

  holder->Set(5); // changed on the VTK side
  EXPECT_EQ(heard, std::vector<double>{ 5 });
  holder->Modified(); // a modification that leaves the value
  EXPECT_EQ(heard, std::vector<double>{ 5 });

  property.setValue(8);
  EXPECT_EQ(holder->Number, 8);
  EXPECT_EQ(heard, (std::vector<double>{ 5, 8 })) << "not a second time through the observer";

  holder->SetWithoutEvent(1);
  property.setValue(8); // equal to the remembered value: nothing is written
  EXPECT_EQ(holder->Number, 1);
  EXPECT_EQ(holder->Writes, 1);
}

TEST(VTKChartsMouseModeProperty, BindsTheButtonsOfEachModeAndIgnoresOtherValues)
{
  vtkNew<vtkChartXY> chart;
  VTKChartsMouseModeProperty mode(chart.Get());
  const int left = vtkContextMouseEvent::LEFT_BUTTON;
  const int middle = vtkContextMouseEvent::MIDDLE_BUTTON;
  const int none = -1; // not NO_BUTTON, which is what a move without a button carries
  EXPECT_EQ(mode.value(), DataViewMouseMode::Pan) << "a chart starts in Pan";

  const struct
  {
    DataViewMouseMode::MouseMode mode;
    int select, pan, zoom;
  } cases[] = {
    { DataViewMouseMode::Pan, none, left, middle },
    { DataViewMouseMode::Select, left, middle, none },
    { DataViewMouseMode::Zoom, none, middle, left },
    { static_cast<DataViewMouseMode::MouseMode>(7), none, middle, left }, // left as it was
  };
  for (const auto& c : cases)
  {
    mode.setValue(c.mode);
    EXPECT_EQ(mode.value(), c.mode);
    EXPECT_EQ(chart->GetActionToButton(vtkChart::SELECT), c.select) << c.mode;
    EXPECT_EQ(chart->GetActionToButton(vtkChart::PAN), c.pan) << c.mode;
    EXPECT_EQ(chart->GetActionToButton(vtkChart::ZOOM), c.zoom) << c.mode;
  }
}

TEST(SpatialVariableProperty2D, DrivesThePlotsInputArrayAndTheAxisTitle)
{
  const auto project = study();
  vtkNew<vtkAxis> axis;
  SpatialVariableProperty2D y(axis.Get(), 1);
  vtkNew<vtkPlotPoints> early;
  early->SetInputData(studyTable(), "angle", "angle");
  y.addPlot(early.Get());

  y.setValue(project->variable("range"));
  EXPECT_EQ(inputArrayName(*early, 1), "range");
  EXPECT_EQ(inputArrayName(*early, 0), "angle") << "the x column is not this property's";
  EXPECT_EQ(axis->GetTitle(), "range");

  vtkNew<vtkPlotPoints> late;
  late->SetInputData(studyTable(), "angle", "angle");
  y.addPlot(late.Get());
  EXPECT_EQ(inputArrayName(*late, 1), "range") << "a plot added later gets the variable at once";

  y.clearPlots();
  y.setValue(project->variable("angle"));
  EXPECT_EQ(inputArrayName(*late, 1), "range") << "cleared plots are no longer driven";
  EXPECT_EQ(axis->GetTitle(), "angle");
}

TEST(ColorVariableProperty, SelectsTheVariablesColumnAsColourArray)
{
  const auto project = study();
  vtkNew<vtkPlotPoints> plot;
  plot->SetInputData(studyTable(), "angle", "range");
  ColorVariableProperty<vtkPlotPoints> color(plot.Get());
  color.setValue(project->variable("range"));
  EXPECT_EQ(plot->GetColorArrayName(), "range");
  EXPECT_TRUE(plot->GetScalarVisibility());
  color.setValue(WeakPtr<Variable>());
  EXPECT_FALSE(plot->GetScalarVisibility());
}
