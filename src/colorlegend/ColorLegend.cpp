#include "colorlegend/ColorLegend.h"

#include "analyzer_common/UndoStack.h"
#include "colorlegend/ColorLegendSerializer.h"
#include "datapipeline/DataPipelineManagerInterface.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "properties/ValueRangeValidator.h"
#include "signals/SignalConnectionCollection.h"

#include <boost/make_shared.hpp>
#include <vtkLookupTable.h>
#include <vtkProperty2D.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkScalarBarWidget.h>
#include <vtkTextProperty.h>

#include <climits>
#include <cmath>

template class plexa::PropertyAbstract<ColorLegend::RangeType>;
template class plexa::Property<ColorLegend::RangeType>;
template class plexa::UndoablePropertyProxy<ColorLegend::RangeType>;

const bool ColorLegend::DEFAULT_SHOW = false;
const short ColorLegend::NUMLABELS_MIN = 3;
const short ColorLegend::NUMLABELS_MAX = 40;
const short ColorLegend::DEFAULT_NUMLABELS = 15;
const ColorLegend::RangeType ColorLegend::DEFAULT_RANGETYPE = ColorLegend::Auto;
const double ColorLegend::DEFAULT_WIDTH = 0.1;
const double ColorLegend::DEFAULT_HEIGHT = 0.5;
const double ColorLegend::DEFAULT_ORIGIN[2] = { 0.89, 0.49 };

// ---------------------------------------------------------------------------------------------
// The nice label range

namespace
{

// A step count as an int, truncated toward zero; counts that do not fit are pushed out of the
// accepted 0..400 by the caller's checks rather than converted with undefined behaviour.
int truncatedCount(double value)
{
  if (std::isnan(value))
    return -1;
  if (value >= static_cast<double>(INT_MAX))
    return INT_MAX;
  if (value <= static_cast<double>(INT_MIN))
    return INT_MIN;
  return static_cast<int>(value);
}

// Rounds the start down to a whole number of steps, unless the quotient is huge.
double startOf(double a, double step)
{
  const double q = a / step;
  double start = std::fabs(q) <= 1e7 ? std::floor(q) * step : a;
  // A start that should be zero must not carry an arithmetic residue.
  if (std::fabs(start) < 1e-5 && step > 0 && std::fabs(start) / step < 1e-5)
  {
    start = 0.0;
  }
  return start;
}

} // namespace

NiceLabelRange computeNiceLabelRange(double a, double b, int N)
{
  // The scaling below never ends on an infinite span, and a NaN has no nice range: such ranges
  // get the neutral one.
  if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(b - a))
  {
    return {};
  }
  double major = 1.0;
  double minor = 0.5;
  for (int n = N;; --n)
  {
    double d = (b - a) / n;
    if (d <= 0)
    {
      major = 1.0;
      minor = 0.5;
    }
    else
    {
      double p = 1.0;
      while (d < 1.0)
      {
        d *= 10;
        p /= 10;
      }
      while (d > 10.0)
      {
        d /= 10;
        p *= 10;
      }
      if (d < 1.5)
      {
        major = 1 * p;
        minor = 0.5 * p;
      }
      else if (d <= 3.0)
      {
        major = 2 * p;
        minor = 1 * p;
      }
      else if (d <= 7.0)
      {
        major = 5 * p;
        minor = 2 * p;
      }
      else
      {
        major = 10 * p;
        minor = 5 * p;
      }
    }
    if (n <= 1 || N >= (b - a) / major)
    {
      break;
    }
  }

  NiceLabelRange result;
  result.step = major;
  result.start = startOf(a, major);
  const double altStart = startOf(a, minor);
  result.count = truncatedCount((b - result.start) / major);
  const int altCount = truncatedCount((b - altStart) / minor);
  // The minor step wins only when strictly closer to the requested count.
  if (altCount <= 400 && std::fabs(static_cast<double>(altCount) - N) <
                           std::fabs(static_cast<double>(result.count) - N))
  {
    result.start = altStart;
    result.step = minor;
    result.count = altCount;
  }
  if (result.count < 0 || result.count > 400)
  {
    result.count = 0;
  }
  if (b > result.start + result.count * result.step)
  {
    result.count += 1;
  }
  return result;
}

// ---------------------------------------------------------------------------------------------
// The updaters

namespace
{

/// Keeps the scalar bar's title equal to the colour variable's name. A variable that no longer
/// resolves leaves the title as it was.
class ColorLegendTitleUpdater
{
public:
  ColorLegendTitleUpdater(vtkSmartPointer<vtkScalarBarActor> actor,
                          const ColorLegend::VariableProperty& colorVariable)
    : actor(std::move(actor))
  {
    connections.add(colorVariable.connectSignalValueChanged(
      [this](const WeakPtr<Variable, unsigned long long>& v) { apply(v); }));
    apply(colorVariable.value());
  }

private:
  void apply(const WeakPtr<Variable, unsigned long long>& handle)
  {
    const Variable variable = handle.lock();
    if (variable)
    {
      actor->SetTitle(variable.name().c_str());
    }
  }

  vtkSmartPointer<vtkScalarBarActor> actor;
  SignalConnectionCollection connections;
};

/// Draws the legend exactly while the view is visible and the legend is to be shown.
class ColorLegendVisibilityUpdater
{
public:
  ColorLegendVisibilityUpdater(boost::shared_ptr<const plexa::PropertyAbstract<bool>> viewVisible,
                               boost::shared_ptr<const plexa::PropertyAbstract<bool>> show,
                               vtkSmartPointer<vtkScalarBarWidget> widget,
                               vtkRenderWindowInteractor& interactor)
    : visible(boost::make_shared<plexa::Property<bool>>(false))
    , viewVisible(std::move(viewVisible))
    , show(std::move(show))
    , widget(std::move(widget))
  {
    this->widget->SetInteractor(&interactor);
    connections.add(this->viewVisible->connectSignalValueChanged([this](const bool&) { apply(); }));
    connections.add(this->show->connectSignalValueChanged([this](const bool&) { apply(); }));
    apply();
  }

  boost::shared_ptr<plexa::Property<bool>> visible;

private:
  void apply()
  {
    const bool enabled = viewVisible->value() && show->value();
    widget->SetEnabled(enabled ? 1 : 0);
    visible->setValue(enabled);
  }

  boost::shared_ptr<const plexa::PropertyAbstract<bool>> viewVisible;
  boost::shared_ptr<const plexa::PropertyAbstract<bool>> show;
  vtkSmartPointer<vtkScalarBarWidget> widget;
  SignalConnectionCollection connections;
};

} // namespace

// ---------------------------------------------------------------------------------------------
// ColorLegend

struct ColorLegend::Impl
{
  boost::shared_ptr<const VariableProperty> colorVariable;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> show;
  boost::shared_ptr<plexa::UndoablePropertyProxy<RangeType>> rangeType;
  boost::shared_ptr<plexa::UndoablePropertyProxy<ValueRange_s<double>>> range;
  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> numLabels;
  vtkSmartPointer<vtkLookupTable> lookupTable;
  vtkSmartPointer<vtkScalarBarWidget> widget;
  std::unique_ptr<ColorLegendTitleUpdater> titleUpdater;
  std::unique_ptr<ColorLegendVisibilityUpdater> visibilityUpdater;
  boost::shared_ptr<SerializerInterface> serializer;
  SignalConnectionCollection connections;
};

ColorLegend::ColorLegend(boost::shared_ptr<const VariableProperty> colorVariable,
                         boost::shared_ptr<const plexa::PropertyAbstract<bool>> viewVisible,
                         const DataPipelineManagerInterface& pipeline,
                         vtkSmartPointer<vtkLookupTable> lookupTable,
                         vtkRenderWindowInteractor& interactor,
                         vtkSmartPointer<vtkScalarBarWidget> widget)
  : d(std::make_unique<Impl>())
{
  using plexa::Property;
  using plexa::UndoablePropertyProxy;
  d->colorVariable = std::move(colorVariable);
  d->show = boost::make_shared<UndoablePropertyProxy<bool>>(
    "Show Color Legend", boost::make_shared<Property<bool>>(false));
  d->rangeType = boost::make_shared<UndoablePropertyProxy<RangeType>>(
    "Color Legend Range Type", boost::make_shared<Property<RangeType>>(Auto));
  const auto [min, max] = colorVariableRange();
  d->range = boost::make_shared<UndoablePropertyProxy<ValueRange_s<double>>>(
    "Color Legend Range",
    boost::make_shared<Property<ValueRange_s<double>>>(
      ValueRange_s<double>{ min, max }, boost::make_shared<plexa::ValueRangeValidator<double>>()));
  using Bounded = plexa::BoundedValueValidator<short>;
  d->numLabels = boost::make_shared<UndoablePropertyProxy<short>>(
    "Number of Labels",
    boost::make_shared<Property<short>>(
      DEFAULT_NUMLABELS,
      boost::make_shared<Bounded>(
        NUMLABELS_MIN, Bounded::Inclusive, NUMLABELS_MAX, Bounded::Inclusive)));
  d->lookupTable = lookupTable;
  d->widget = widget;

  d->titleUpdater =
    std::make_unique<ColorLegendTitleUpdater>(d->widget->GetScalarBarActor(), *d->colorVariable);
  d->visibilityUpdater = std::make_unique<ColorLegendVisibilityUpdater>(
    std::move(viewVisible), d->show, d->widget, interactor);
  d->serializer =
    boost::make_shared<ColorLegendSerializer>(d->range, d->rangeType, d->numLabels, d->show);

  UndoStack::SuspendUndoRecording notRecorded;
  initializeProperties();
  initializeColorLegendStyles();
  connectToProperties();
  updateColorLegend();
  d->connections.add(pipeline.connectSignalPipelineChanged([this] { updateColorLegend(); }));
}

ColorLegend::~ColorLegend()
{
  d->connections.clear();
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> ColorLegend::show() const
{
  return d->show;
}

boost::shared_ptr<plexa::PropertyAbstract<ColorLegend::RangeType>> ColorLegend::rangeType() const
{
  return d->rangeType;
}

boost::shared_ptr<plexa::PropertyAbstract<ValueRange_s<double>>> ColorLegend::range() const
{
  return d->range;
}

boost::shared_ptr<plexa::PropertyAbstract<short>> ColorLegend::numLabels() const
{
  return d->numLabels;
}

boost::shared_ptr<const plexa::PropertyAbstract<bool>> ColorLegend::visible() const
{
  return d->visibilityUpdater->visible;
}

boost::shared_ptr<SerializerInterface> ColorLegend::serializer() const
{
  return d->serializer;
}

void ColorLegend::suspend()
{
  d->connections.block();
}

void ColorLegend::resume()
{
  d->connections.unblock();
}

void ColorLegend::initializeProperties()
{
  d->show->setValue(DEFAULT_SHOW);
  initializeRangeAndNumLabelsProperties();
}

void ColorLegend::initializeRangeAndNumLabelsProperties()
{
  // Values restored by an undo or redo must survive.
  if (UndoStack().undoOrRedoInProgress())
  {
    return;
  }
  // The three sets would each redraw the legend; it is redrawn once afterwards.
  suspend();
  d->rangeType->setValue(DEFAULT_RANGETYPE);
  const auto [min, max] = colorVariableRange();
  d->range->setValue(ValueRange_s<double>{ min, max });
  d->numLabels->setValue(DEFAULT_NUMLABELS);
  resume();
}

void ColorLegend::connectToProperties()
{
  d->connections.add(
    d->colorVariable->connectSignalValueChanged([this](const WeakPtr<Variable, unsigned long long>&)
                                                { initializeRangeAndNumLabelsProperties(); }));
  d->connections.add(d->colorVariable->connectSignalValueChanged(
    [this](const WeakPtr<Variable, unsigned long long>&) { updateColorLegend(); }));
  d->connections.add(
    d->rangeType->connectSignalValueChanged([this](const RangeType&) { updateColorLegend(); }));
  d->connections.add(d->range->connectSignalValueChanged([this](const ValueRange_s<double>&)
                                                         { updateColorLegend(); }));
  d->connections.add(
    d->numLabels->connectSignalValueChanged([this](const short&) { updateColorLegend(); }));
}

void ColorLegend::initializeColorLegendStyles()
{
  vtkScalarBarActor* actor = d->widget->GetScalarBarActor();
  actor->SetLookupTable(d->lookupTable);
  for (vtkTextProperty* text : { actor->GetTitleTextProperty(), actor->GetLabelTextProperty() })
  {
    text->SetColor(0.0, 0.0, 0.0);
    text->ShadowOff();
    text->SetItalic(0);
  }
  actor->GetLabelTextProperty()->SetJustificationToLeft();
  actor->SetLabelFormat("%G");
  if (auto* representation =
        vtkScalarBarRepresentation::SafeDownCast(d->widget->GetRepresentation()))
  {
    representation->SetPosition(DEFAULT_ORIGIN[0], DEFAULT_ORIGIN[1]);
    representation->SetPosition2(DEFAULT_WIDTH, DEFAULT_HEIGHT);
    representation->GetBorderProperty()->SetColor(0.0, 0.0, 0.0);
  }
}

void ColorLegend::updateColorLegend()
{
  const auto [min, max] = colorRange();
  NiceLabelRange nice;
  // Only a NaN minimum is guarded here; computeNiceLabelRange copes with the rest.
  if (!std::isnan(min))
  {
    nice = computeNiceLabelRange(min, max, d->numLabels->value());
  }
  d->widget->GetScalarBarActor()->SetNumberOfLabels(nice.count + 1);
  d->widget->Render();
  d->lookupTable->SetRange(nice.start, nice.start + static_cast<double>(nice.count) * nice.step);
}

std::pair<double, double> ColorLegend::colorVariableRange() const
{
  const Variable variable = d->colorVariable->value().lock();
  return variable ? variable.range() : std::pair<double, double>(0.0, 0.0);
}

std::pair<double, double> ColorLegend::colorRange() const
{
  if (d->rangeType->value() == Auto)
  {
    return colorVariableRange();
  }
  const ValueRange_s<double> custom = d->range->value();
  return { custom.min, custom.max };
}
