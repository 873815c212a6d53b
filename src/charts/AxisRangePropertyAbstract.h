#pragma once

#include "properties/VTKPropertyAbstract.h"

class AxisDetailsInterface;

/// One end of an axis range, bound to a VTK object. Minimum and maximum never cross: a new end
/// at or beyond the other end first moves the other end along by the current span, through the
/// other end's property (validated, signalled, undoable like any change).
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT AxisRangePropertyAbstract
  : public VTKPropertyAbstract<double>
{
public:
  enum RangeType : int
  {
    Min = 0,
    Max = 1
  };

  AxisRangePropertyAbstract(vtkSmartPointer<vtkObject> object,
                            RangeType type,
                            const AxisDetailsInterface& axisDetails);
  ~AxisRangePropertyAbstract() override;

  RangeType rangeType() const { return type; }

protected:
  /// Moves the other end when v would reach or cross it (equal counts as crossing), keeping the
  /// span. Guarded against re-entry across all instances: the other end's own store would call
  /// back here.
  void adjustOtherEndOfAxisRange(const double& v) const;

private:
  void storeValueInVTK(const double& value) override;
  /// Writes the value into the object.
  virtual void writeValueIntoVTK(const double& value) = 0;

  RangeType type;
  const AxisDetailsInterface& axisDetails;
};
