#include "charts/ConstraintsRegionPlot.h"

#include "datapipeline/DataPipelineManagerInterface.h"
#include "datapipeline/FilterInterface.h"
#include "datapipeline/FilterRangeFinder.h"
#include "properties/PropertyAbstract.h"
#include "signals/SignalConnectionCollection.h"

#include <vtkAxis.h>
#include <vtkBrush.h>
#include <vtkContext2D.h>
#include <vtkPen.h>
#include <vtkRect.h>

#include <algorithm>
#include <limits>

struct ConstraintsRegionPlot::Impl
{
  Impl(const DataPipelineManagerInterface& pipeline,
       boost::shared_ptr<const VariableProperty> xVariable,
       boost::shared_ptr<const VariableProperty> yVariable,
       vtkSmartPointer<vtkPlot> referencePlot)
    : pipeline(pipeline)
    , xVariable(std::move(xVariable))
    , yVariable(std::move(yVariable))
    , referencePlot(std::move(referencePlot))
  {
  }

  // A range filter on the variable that is in effect sets the constraint; otherwise there is
  // none, and the last range is kept.
  void readConstraint(const VariableProperty& variable,
                      bool& hasConstraint,
                      std::pair<double, double>& range) const
  {
    const boost::shared_ptr<FilterInterface> filter = pipeline.filter(variable.value());
    const auto active = pipeline.activeFilters();
    if (filter && getFilterType(*filter) == FilterFactoryInterface::Range &&
        std::find(active.begin(), active.end(), filter) != active.end())
    {
      hasConstraint = true;
      range = FilterRangeFinder(*filter).range();
    }
    else
    {
      hasConstraint = false;
    }
  }

  void updateConstraints()
  {
    readConstraint(*xVariable, hasXConstraint, xRange);
    readConstraint(*yVariable, hasYConstraint, yRange);
  }

  const DataPipelineManagerInterface& pipeline;
  boost::shared_ptr<const VariableProperty> xVariable;
  boost::shared_ptr<const VariableProperty> yVariable;
  vtkSmartPointer<vtkPlot> referencePlot;
  SignalConnectionCollection connections;
  std::pair<double, double> xRange{ 0.0, 0.0 };
  std::pair<double, double> yRange{ 0.0, 0.0 };
  bool hasXConstraint = false;
  bool hasYConstraint = false;
};

vtkSmartPointer<ConstraintsRegionPlot> ConstraintsRegionPlot::New(
  const DataPipelineManagerInterface& pipeline,
  const boost::shared_ptr<const VariableProperty>& xVariable,
  const boost::shared_ptr<const VariableProperty>& yVariable,
  vtkSmartPointer<vtkPlot> referencePlot)
{
  auto plot = vtkSmartPointer<ConstraintsRegionPlot>::Take(
    new ConstraintsRegionPlot(pipeline, xVariable, yVariable, std::move(referencePlot)));
  plot->InitializeObjectBase();
  return plot;
}

ConstraintsRegionPlot::ConstraintsRegionPlot(
  const DataPipelineManagerInterface& pipeline,
  const boost::shared_ptr<const VariableProperty>& xVariable,
  const boost::shared_ptr<const VariableProperty>& yVariable,
  vtkSmartPointer<vtkPlot> referencePlot)
  : d(std::make_unique<Impl>(pipeline, xVariable, yVariable, std::move(referencePlot)))
{
  Impl* impl = d.get();
  const auto update = [impl](const WeakPtr<Variable, unsigned long long>&)
  { impl->updateConstraints(); };
  d->connections.add(d->xVariable->connectSignalValueChanged(update));
  d->connections.add(d->yVariable->connectSignalValueChanged(update));
  d->connections.add(pipeline.connectSignalPipelineChanged([impl] { impl->updateConstraints(); }));
  d->updateConstraints();
}

vtkObjectBase* ConstraintsRegionPlot::NewInstanceInternal() const
{
  auto* plot = new ConstraintsRegionPlot(d->pipeline, d->xVariable, d->yVariable, d->referencePlot);
  plot->InitializeObjectBase();
  return plot;
}

ConstraintsRegionPlot::~ConstraintsRegionPlot()
{
  d->connections.clear();
}

void ConstraintsRegionPlot::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "XConstraint: " << d->hasXConstraint << " [" << d->xRange.first << ", "
     << d->xRange.second << "]\n";
  os << indent << "YConstraint: " << d->hasYConstraint << " [" << d->yRange.first << ", "
     << d->yRange.second << "]\n";
}

void ConstraintsRegionPlot::GetBounds(double bounds[4])
{
  const double max = std::numeric_limits<double>::max();
  bounds[0] = max;
  bounds[1] = -max;
  bounds[2] = max;
  bounds[3] = -max;
}

bool ConstraintsRegionPlot::Paint(vtkContext2D* painter)
{
  double xAxis[2] = { 0.0, 0.0 };
  double yAxis[2] = { 0.0, 0.0 };
  if (vtkAxis* axis = this->GetXAxis())
    axis->GetRange(xAxis);
  if (vtkAxis* axis = this->GetYAxis())
    axis->GetRange(yAxis);
  const double axMin = xAxis[0];
  const double axMax = xAxis[1];
  const double ayMin = yAxis[0];
  const double ayMax = yAxis[1];

  this->Pen->SetLineType(vtkPen::NO_PEN);
  painter->ApplyPen(this->Pen);
  this->Brush->SetColor(247, 232, 222, 255);
  painter->ApplyBrush(this->Brush);

  const vtkRectd shiftScale =
    d->referencePlot ? d->referencePlot->GetShiftScale() : vtkRectd(0.0, 0.0, 1.0, 1.0);
  const auto drawRect = [&](double x, double y, double width, double height)
  {
    painter->DrawRect(static_cast<float>((x + shiftScale.GetX()) * shiftScale.GetWidth()),
                      static_cast<float>((y + shiftScale.GetY()) * shiftScale.GetHeight()),
                      static_cast<float>(width * shiftScale.GetWidth()),
                      static_cast<float>(height * shiftScale.GetHeight()));
  };

  // Each band spans the whole visible range of the other axis; where an x and a y band meet the
  // corner is painted twice, which an opaque colour does not show.
  if (d->hasXConstraint && d->xRange.first - axMin > 0)
    drawRect(axMin, ayMin, d->xRange.first - axMin, ayMax - ayMin);
  if (d->hasXConstraint && axMax - d->xRange.second > 0)
    drawRect(d->xRange.second, ayMin, axMax - d->xRange.second, ayMax - ayMin);
  if (d->hasYConstraint && d->yRange.first - ayMin > 0)
    drawRect(axMin, ayMin, axMax - axMin, d->yRange.first - ayMin);
  if (d->hasYConstraint && ayMax - d->yRange.second > 0)
    drawRect(axMin, d->yRange.second, axMax - axMin, ayMax - d->yRange.second);

  return vtkAbstractContextItem::Paint(painter);
}
