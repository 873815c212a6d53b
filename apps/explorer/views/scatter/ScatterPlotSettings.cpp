#include "views/scatter/ScatterPlotSettings.h"

#include "PropertyEditors.h"

#include "StudyDefaults.h"

#include "charts/AxisDetailsCharts.h"
#include "charts/AxisDetailsInterface.h"
#include "charts/ChartXY.h"
#include "properties/BoundedValueValidator.h"
#include "properties/ColorVariableProperty.h"
#include "properties/Property.h"
#include "properties/PropertyAbstract.h"
#include "properties/SpatialVariableProperty2D.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/GenericSerializer.h"

#include <QCheckBox>
#include <QDomElement>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>
#include <vtkAxis.h>
#include <vtkPlotPoints.h>

#include <stdexcept>

namespace explorer
{

GridSpacingSerializer::GridSpacingSerializer(const std::string& name, AxisDetailsInterface& axis)
  : Serializer(name)
  , axis(axis)
{
}

void GridSpacingSerializer::serializeSelf(QDomElement& element) const
{
  if (axis.useCustomGridSpacing()->value())
    element.appendChild(
      element.ownerDocument().createTextNode(numberText(axis.gridSpacing()->value())));
}

void GridSpacingSerializer::deserializeSelf(QDomElement& element) const
{
  const QString text = element.text().trimmed();
  if (text.isEmpty())
  {
    axis.useCustomGridSpacing()->setValue(false);
    return;
  }
  double spacing = 0;
  if (!parseNumber(text, spacing))
    throw boost::bad_lexical_cast();
  axis.useCustomGridSpacing()->setValue(true);
  axis.gridSpacing()->setValue(spacing);
}

LegendPlacementSerializer::LegendPlacementSerializer(std::function<bool(double*)> get,
                                                     std::function<void(const double*)> set)
  : Serializer("ColorLegendPlacement")
  , get(std::move(get))
  , set(std::move(set))
{
}

void LegendPlacementSerializer::serializeSelf(QDomElement& element) const
{
  double placement[4];
  if (!get(placement))
  {
    element.setAttribute("auto", 1);
    return;
  }
  const char* names[] = { "x", "y", "width", "height" };
  for (int i = 0; i < 4; ++i)
    element.setAttribute(names[i], numberText(placement[i]));
}

void LegendPlacementSerializer::deserializeSelf(QDomElement& element) const
{
  if (element.attribute("auto") == "1")
  {
    set(nullptr);
    return;
  }
  double placement[4];
  const char* names[] = { "x", "y", "width", "height" };
  for (int i = 0; i < 4; ++i)
  {
    const QString text = element.attribute(names[i]);
    if (!parseNumber(text, placement[i]) || placement[i] < 0 || placement[i] > 1)
      throw std::invalid_argument("'" + text.toStdString() + "' is not a fraction of the view (" +
                                  names[i] + ")");
  }
  set(placement);
}

struct ScatterPlotSettings::Impl
{
  boost::shared_ptr<SpatialVariableProperty2D> xTarget;
  boost::shared_ptr<SpatialVariableProperty2D> yTarget;
  boost::shared_ptr<ColorVariableProperty<vtkPlotPoints>> colourTarget;
  boost::shared_ptr<VariableProxy> x;
  boost::shared_ptr<VariableProxy> y;
  boost::shared_ptr<VariableProxy> colour;
  boost::shared_ptr<plexa::UndoablePropertyProxy<Drawing>> drawing =
    boost::make_shared<plexa::UndoablePropertyProxy<Drawing>>(
      "Points",
      boost::make_shared<plexa::Property<Drawing>>(Drawing::Automatic));
  boost::shared_ptr<plexa::UndoablePropertyProxy<double>> pointOpacity =
    boost::make_shared<plexa::UndoablePropertyProxy<double>>(
      "Point Opacity",
      boost::make_shared<plexa::Property<double>>(
        1.0,
        boost::make_shared<plexa::BoundedValueValidator<double>>(
          0.05,
          plexa::BoundedValueValidator<double>::Inclusive,
          1.0,
          plexa::BoundedValueValidator<double>::Inclusive)));
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> logX =
    boost::make_shared<plexa::UndoablePropertyProxy<bool>>(
      "Logarithmic X",
      boost::make_shared<plexa::Property<bool>>(false));
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> logY =
    boost::make_shared<plexa::UndoablePropertyProxy<bool>>(
      "Logarithmic Y",
      boost::make_shared<plexa::Property<bool>>(false));
  std::unique_ptr<AxisDetailsCharts> xAxis;
  std::unique_ptr<AxisDetailsCharts> yAxis;
};

ScatterPlotSettings::ScatterPlotSettings(ChartXY& chart,
                                         vtkSmartPointer<vtkPlotPoints> points,
                                         const Project& project)
  : d(std::make_unique<Impl>())
{
  d->xTarget = boost::make_shared<SpatialVariableProperty2D>(chart.GetAxis(vtkAxis::BOTTOM), 0);
  d->yTarget = boost::make_shared<SpatialVariableProperty2D>(chart.GetAxis(vtkAxis::LEFT), 1);
  d->colourTarget = boost::make_shared<ColorVariableProperty<vtkPlotPoints>>(std::move(points));
  const defaults::ScatterChoice first = defaults::scatter(project);
  d->xTarget->setValue(first.x);
  d->yTarget->setValue(first.y);
  d->colourTarget->setValue(first.colour);
  d->x = boost::make_shared<VariableProxy>("X Variable", d->xTarget);
  d->y = boost::make_shared<VariableProxy>("Y Variable", d->yTarget);
  d->colour = boost::make_shared<VariableProxy>("Color Variable", d->colourTarget);
  d->xAxis = std::make_unique<AxisDetailsCharts>("X", *d->x, chart.GetAxis(vtkAxis::BOTTOM));
  d->yAxis = std::make_unique<AxisDetailsCharts>("Y", *d->y, chart.GetAxis(vtkAxis::LEFT));
}

ScatterPlotSettings::~ScatterPlotSettings() = default;

boost::shared_ptr<ScatterPlotSettings::VariableProxy> ScatterPlotSettings::x() const
{
  return d->x;
}

boost::shared_ptr<ScatterPlotSettings::VariableProxy> ScatterPlotSettings::y() const
{
  return d->y;
}

boost::shared_ptr<ScatterPlotSettings::VariableProxy> ScatterPlotSettings::colour() const
{
  return d->colour;
}

boost::shared_ptr<plexa::PropertyAbstract<Drawing>> ScatterPlotSettings::drawing() const
{
  return d->drawing;
}

boost::shared_ptr<plexa::PropertyAbstract<double>> ScatterPlotSettings::pointOpacity() const
{
  return d->pointOpacity;
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> ScatterPlotSettings::logX() const
{
  return d->logX;
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> ScatterPlotSettings::logY() const
{
  return d->logY;
}

AxisDetailsCharts& ScatterPlotSettings::xAxis() const
{
  return *d->xAxis;
}

AxisDetailsCharts& ScatterPlotSettings::yAxis() const
{
  return *d->yAxis;
}

std::vector<const plexa::PropertyItemInterface*> ScatterPlotSettings::axisSettings() const
{
  std::vector<const plexa::PropertyItemInterface*> settings;
  for (const AxisDetailsCharts* axis : { d->xAxis.get(), d->yAxis.get() })
    settings.insert(settings.end(),
                    { axis->min().get(),
                      axis->max().get(),
                      axis->useCustomGridSpacing().get(),
                      axis->gridSpacing().get() });
  return settings;
}

std::vector<std::pair<std::string, boost::shared_ptr<ScatterPlotSettings::VariableProxy>>>
ScatterPlotSettings::savedVariables() const
{
  return { { "XVariable", d->x }, { "YVariable", d->y }, { "ColorVariable", d->colour } };
}

std::vector<std::pair<boost::shared_ptr<SerializerInterface>, std::string>>
ScatterPlotSettings::savedSettings() const
{
  std::vector<std::pair<boost::shared_ptr<SerializerInterface>, std::string>> saved = {
    { drawing::serializer("Points", d->drawing), "automatic, marks or density" },
    { boost::make_shared<GenericSerializer<double>>("PointOpacity", d->pointOpacity),
      "a number from 0.05 to 1" },
    // Before the ranges, which a logarithmic axis holds as powers of ten.
    { boost::make_shared<GenericSerializer<bool>>("LogX", d->logX), "0 or 1" },
    { boost::make_shared<GenericSerializer<bool>>("LogY", d->logY), "0 or 1" },
  };
  // The range first: a custom grid spacing is checked against it.
  for (const auto& [prefix, axis] :
       { std::make_pair("X", d->xAxis.get()), std::make_pair("Y", d->yAxis.get()) })
  {
    const std::string name = prefix;
    saved.emplace_back(boost::make_shared<GenericSerializer<double>>(name + "Min", axis->min()),
                       "a number");
    saved.emplace_back(boost::make_shared<GenericSerializer<double>>(name + "Max", axis->max()),
                       "a number");
    saved.emplace_back(boost::make_shared<GridSpacingSerializer>(name + "GridSpacing", *axis),
                       "a number");
  }
  return saved;
}

QWidget* ScatterPlotSettings::editor(PropertyEditors& editors) const
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  form->addRow("X", editors.variableChooser(d->x, true, "(case order)"));
  form->addRow("Y", editors.variableChooser(d->y, true, {}));
  form->addRow("Colour", editors.variableChooser(d->colour, true, "(none)"));
  form->addRow(
    "Points",
    editors.enumChooser<Drawing>(d->drawing,
                                 { { "Automatic (density above 25,000)", Drawing::Automatic },
                                   { "Markers", Drawing::Marks },
                                   { "Density", Drawing::Density } }));
  form->addRow("Point opacity", editors.numberEditor(d->pointOpacity));
  form->addRow(editors.checkBox("Logarithmic X", d->logX));
  form->addRow(editors.checkBox("Logarithmic Y", d->logY));
  form->addRow(editors.axisEditor("X axis", *d->xAxis));
  form->addRow(editors.axisEditor("Y axis", *d->yAxis));
  auto* powers =
    new QLabel("The range of a logarithmic axis is in powers of ten: 0 to 3 shows 1 to 1000.");
  powers->setWordWrap(true);
  form->addRow(powers);
  return box;
}

} // namespace explorer
