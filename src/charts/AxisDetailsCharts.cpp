#include "charts/AxisDetailsCharts.h"

#include "analyzer_common/NiceNumber.h"
#include "analyzer_common/UndoStack.h"
#include "charts/AxisRangePropertyAbstract.h"
#include "common/ScopedGuards.h"
#include "properties/UndoablePropertyProxy.h"
#include "signals/SignalConnectionCollection.h"

#include <boost/format.hpp>
#include <boost/make_shared.hpp>
#include <vtkAxis.h>
#include <vtkDoubleArray.h>

#include <cmath>
#include <utility>

// ---------------------------------------------------------------------------------------------
// AxisDetailsInterface

AxisDetailsInterface::AxisDetailsInterface() = default;

AxisDetailsInterface::~AxisDetailsInterface() = default;

boost::signals2::connection AxisDetailsInterface::connectSignalAxisDetailsChanged(
  const AxisDetailsChangedSignal::slot_type& slot) const
{
  auto connection = signalAxisDetailsChanged.connect(slot);
  signalAxisDetailsChangedConnected();
  return connection;
}

void AxisDetailsInterface::emitSignalAxisDetailsChanged() const
{
  signalAxisDetailsChanged();
}

void AxisDetailsInterface::signalAxisDetailsChangedConnected() const {}

// ---------------------------------------------------------------------------------------------
// AxisRangePropertyAbstract

namespace
{

// One flag for all range properties: moving the other end stores into the other property,
// whose own store would come back here. A guard that sets it also gives its old value back.
bool adjustingOtherEnd = false;

} // namespace

AxisRangePropertyAbstract::AxisRangePropertyAbstract(vtkSmartPointer<vtkObject> object,
                                                     RangeType type,
                                                     const AxisDetailsInterface& axisDetails)
  : VTKPropertyAbstract<double>(std::move(object))
  , type(type)
  , axisDetails(axisDetails)
{
}

AxisRangePropertyAbstract::~AxisRangePropertyAbstract() = default;

void AxisRangePropertyAbstract::storeValueInVTK(const double& value)
{
  adjustOtherEndOfAxisRange(value);
  writeValueIntoVTK(value);
}

void AxisRangePropertyAbstract::adjustOtherEndOfAxisRange(const double& v) const
{
  if (adjustingOtherEnd)
  {
    return;
  }
  const ScopedValue<bool> adjusting(adjustingOtherEnd, true);
  const auto minProperty = axisDetails.min();
  const auto maxProperty = axisDetails.max();
  const double min = minProperty->value();
  const double max = maxProperty->value();
  if (type == Min)
  {
    if (v >= max)
    {
      maxProperty->setValue(v + (max - min));
    }
  }
  else if (min >= v)
  {
    minProperty->setValue(v - (max - min));
  }
}

// ---------------------------------------------------------------------------------------------
// The properties of one vtkAxis

namespace
{

class AxisRangeProperty : public AxisRangePropertyAbstract
{
public:
  AxisRangeProperty(vtkSmartPointer<vtkAxis> axis,
                    RangeType type,
                    const AxisDetailsInterface& axisDetails)
    : AxisRangePropertyAbstract(axis, type, axisDetails)
    , axis(std::move(axis))
  {
    rememberObjectValue();
  }

private:
  void writeValueIntoVTK(const double& value) override
  {
    if (rangeType() == Min)
      axis->SetMinimum(value);
    else if (rangeType() == Max)
      axis->SetMaximum(value);
  }

  double retrieveValue() const override
  {
    if (rangeType() == Min)
      return axis->GetMinimum();
    if (rangeType() == Max)
      return axis->GetMaximum();
    return -1.0;
  }

  vtkSmartPointer<vtkAxis> axis;
};

// Whether the axis uses custom tick positions. The flag is kept here, not read from the axis.
class UseCustomGridSpacingProperty : public plexa::PropertyAbstract<bool>
{
public:
  explicit UseCustomGridSpacingProperty(vtkSmartPointer<vtkAxis> axis)
    : axis(std::move(axis))
  {
  }

protected:
  void storeValue(const bool& custom) override
  {
    if (custom)
    {
      axis->SetBehavior(vtkAxis::CUSTOM);
    }
    else
    {
      axis->SetBehavior(vtkAxis::FIXED);
      // VTK 9.1 keeps drawing custom tick positions once given, whatever the behaviour; they
      // are dropped so that the automatic ticks come back.
      axis->SetCustomTickPositions(nullptr, nullptr);
      axis->RecalculateTickSpacing();
    }
    held = custom;
  }

private:
  bool retrieveValue() const override { return held; }

  vtkSmartPointer<vtkAxis> axis;
  bool held = false;
};

class GridSpacingValidator : public plexa::ValidatorInterface<double>
{
public:
  GridSpacingValidator(vtkSmartPointer<vtkAxis> axis,
                       boost::shared_ptr<const UseCustomGridSpacingProperty> custom)
    : axis(std::move(axis))
    , custom(std::move(custom))
  {
  }

  plexa::ValidationResult validate(const double& spacing) const override
  {
    plexa::ValidationResult result;
    if (!custom->value())
    {
      return result;
    }
    const double range = axis->GetMaximum() - axis->GetMinimum();
    double lo = range / 50;
    double hi = range * 10;
    if (lo > hi)
    {
      std::swap(lo, hi);
    }
    if (spacing < lo || spacing > hi)
    {
      result.setErrorString(
        (boost::format("Invalid grid spacing. Allowed value is between %1% and %2%.") % lo % hi)
          .str());
    }
    return result;
  }

private:
  vtkSmartPointer<vtkAxis> axis;
  boost::shared_ptr<const UseCustomGridSpacingProperty> custom;
};

class GridSpacingProperty : public VTKPropertyAbstract<double>
{
public:
  GridSpacingProperty(vtkSmartPointer<vtkAxis> axis,
                      boost::shared_ptr<const UseCustomGridSpacingProperty> custom)
    : VTKPropertyAbstract<double>(axis, boost::make_shared<GridSpacingValidator>(axis, custom))
    , axis(std::move(axis))
    , custom(std::move(custom))
  {
    rememberObjectValue();
  }

  /// Lays the custom ticks out again whenever the range changes.
  void followRange(const plexa::PropertyAbstract<double>& min,
                   const plexa::PropertyAbstract<double>& max)
  {
    const auto restore = [this](const double&) { storeValueInVTK(spacing); };
    connections.add(min.connectSignalValueChanged(restore));
    connections.add(max.connectSignalValueChanged(restore));
  }

private:
  double retrieveValue() const override
  {
    if (custom->value())
    {
      return spacing;
    }
    vtkDoubleArray* ticks = axis->GetTickPositions();
    const double step =
      ticks && ticks->GetNumberOfTuples() > 1 ? ticks->GetValue(1) - ticks->GetValue(0) : 0.0;
    spacing = makeNiceNumber(step);
    return spacing;
  }

  void storeValueInVTK(const double& value) override
  {
    if (!custom->value())
    {
      return;
    }
    spacing = value;
    const double minimum = axis->GetMinimum();
    const double quotient = (axis->GetMaximum() - minimum) / value;
    const double first = std::trunc(minimum / value) * value;
    // A spacing that no longer fits the range (before the range check switches custom spacing
    // off) or a zero or NaN one would ask for unbounded or undefined tick counts; such a
    // layout is skipped.
    if (!std::isfinite(quotient) || !std::isfinite(first) || std::fabs(quotient) > maxTicks)
    {
      return;
    }
    const auto count = static_cast<int>(quotient);
    auto positions = vtkSmartPointer<vtkDoubleArray>::New();
    positions->InsertNextValue(first);
    for (int i = 1; i <= count; ++i)
    {
      positions->InsertNextValue(first + i * value);
    }
    axis->SetCustomTickPositions(positions, nullptr);
  }

  static constexpr double maxTicks = 10000.0;

  vtkSmartPointer<vtkAxis> axis;
  boost::shared_ptr<const UseCustomGridSpacingProperty> custom;
  mutable double spacing = 0.0;
  SignalConnectionCollection connections;
};

} // namespace

// ---------------------------------------------------------------------------------------------
// AxisDetailsCharts

struct AxisDetailsCharts::Impl
{
  boost::shared_ptr<UseCustomGridSpacingProperty> customTarget;
  boost::shared_ptr<GridSpacingProperty> spacingTarget;
  boost::shared_ptr<plexa::UndoablePropertyProxy<double>> min;
  boost::shared_ptr<plexa::UndoablePropertyProxy<double>> max;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> useCustomGridSpacing;
  boost::shared_ptr<plexa::UndoablePropertyProxy<double>> gridSpacing;
  SignalConnectionCollection connections;

  /// Switches custom spacing off, unrecorded, unless history is being replayed.
  void switchCustomSpacingOff()
  {
    if (!UndoStack().recordingIsSuspended())
    {
      customTarget->setValue(false);
    }
  }

  void switchOffIfSpacingInvalid()
  {
    if (customTarget->value() &&
        !spacingTarget->validator()->validate(gridSpacing->value()).isValid())
    {
      switchCustomSpacingOff();
    }
  }
};

AxisDetailsCharts::AxisDetailsCharts(
  const std::string& axisName,
  const plexa::PropertyAbstract<WeakPtr<Variable, unsigned long long>>& variableProperty,
  vtkSmartPointer<vtkAxis> axis)
  : d(std::make_unique<Impl>())
{
  using plexa::UndoablePropertyProxy;
  d->min = boost::make_shared<UndoablePropertyProxy<double>>(
    axisName + " Min", boost::make_shared<AxisRangeProperty>(axis, AxisRangeProperty::Min, *this));
  d->max = boost::make_shared<UndoablePropertyProxy<double>>(
    axisName + " Max", boost::make_shared<AxisRangeProperty>(axis, AxisRangeProperty::Max, *this));
  d->customTarget = boost::make_shared<UseCustomGridSpacingProperty>(axis);
  d->useCustomGridSpacing = boost::make_shared<UndoablePropertyProxy<bool>>(
    axisName + " Grid Spacing Type", d->customTarget);
  d->spacingTarget = boost::make_shared<GridSpacingProperty>(axis, d->customTarget);
  // Connected before the checks below, so that the ticks follow a range change before the new
  // range is checked against the spacing.
  d->spacingTarget->followRange(*d->min, *d->max);
  d->gridSpacing =
    boost::make_shared<UndoablePropertyProxy<double>>(axisName + " Grid Spacing", d->spacingTarget);

  const auto changed = [this] { emitSignalAxisDetailsChanged(); };
  d->connections.add(d->min->connectSignalValueChanged([changed](const double&) { changed(); }));
  d->connections.add(d->max->connectSignalValueChanged([changed](const double&) { changed(); }));
  d->connections.add(
    d->useCustomGridSpacing->connectSignalValueChanged([changed](const bool&) { changed(); }));
  d->connections.add(
    d->gridSpacing->connectSignalValueChanged([changed](const double&) { changed(); }));

  Impl* impl = d.get();
  d->connections.add(d->min->connectSignalValueChanged([impl](const double&)
                                                       { impl->switchOffIfSpacingInvalid(); }));
  d->connections.add(d->max->connectSignalValueChanged([impl](const double&)
                                                       { impl->switchOffIfSpacingInvalid(); }));
  d->connections.add(variableProperty.connectSignalValueChanged(
    [impl](const WeakPtr<Variable, unsigned long long>&) { impl->switchCustomSpacingOff(); }));

  d->customTarget->setValue(false);
}

AxisDetailsCharts::~AxisDetailsCharts()
{
  // The connections go first: the properties they point at are released right after.
  d->connections.clear();
}

boost::shared_ptr<plexa::PropertyAbstract<double>> AxisDetailsCharts::min() const
{
  return d->min;
}

boost::shared_ptr<plexa::PropertyAbstract<double>> AxisDetailsCharts::max() const
{
  return d->max;
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> AxisDetailsCharts::useCustomGridSpacing() const
{
  return d->useCustomGridSpacing;
}

boost::shared_ptr<plexa::PropertyAbstract<double>> AxisDetailsCharts::gridSpacing() const
{
  return d->gridSpacing;
}

boost::shared_ptr<plexa::PropertyAbstract<double>> AxisDetailsCharts::boundsMin() const
{
  return {};
}

boost::shared_ptr<plexa::PropertyAbstract<double>> AxisDetailsCharts::boundsMax() const
{
  return {};
}
