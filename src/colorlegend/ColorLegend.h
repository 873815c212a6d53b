#pragma once

#include "analyzer_common/SuspendableInterface.h"
#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "properties/ValueRange.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <boost/shared_ptr.hpp>
#include <vtkSmartPointer.h>

#include <cstdint>
#include <memory>

class DataPipelineManagerInterface;
class SerializerInterface;
class vtkLookupTable;
class vtkRenderWindowInteractor;
class vtkScalarBarWidget;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// The start, step and count of a colour scale whose steps fall on nice numbers: the scale runs
/// from start to start + count * step.
struct NiceLabelRange
{
  double start = 0.0;
  double step = 1.0;
  int count = 1;
};

/// The nice label range for the values from a to b with about N labels: the largest divisor of
/// b - a from N down whose nice step (1, 2, 5 or 10 times a power of ten) gives at most N steps,
/// then the candidate (that step or the next smaller nice one) whose step count is closer to N,
/// with the last step reaching b. The span b - a must be finite.
QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT NiceLabelRange computeNiceLabelRange(double a,
                                                                           double b,
                                                                           int N);

/// The colour legend of a view whose points are coloured by a variable: a scalar bar (drawn with
/// nice labels) over the view's lookup table, with four undoable settings: whether it is shown,
/// whether its range follows the colour variable (Auto) or a range of the user's (Custom), that
/// range, and the number of labels (3 to 40).
///
/// The lookup table's range is always widened to whole nice steps, so each label falls on a
/// multiple of the step. The title is the colour variable's name. A new colour variable resets
/// the range type to Auto, the range to the variable's and the label count to 15, except while
/// an undo or redo restores an older variable. The legend is drawn only while the view is
/// visible and "Show Color Legend" is on. Its settings are saved by serializer() as the element
/// "ColorLegend"; restore the colour variable before it.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ColorLegend : public SuspendableInterface
{
public:
  enum RangeType : std::int32_t
  {
    Custom = 0,
    Auto = 1
  };

  static const bool DEFAULT_SHOW;
  static const short NUMLABELS_MIN;
  static const short NUMLABELS_MAX;
  static const short DEFAULT_NUMLABELS;
  static const RangeType DEFAULT_RANGETYPE;
  static const double DEFAULT_WIDTH;
  static const double DEFAULT_HEIGHT;
  static const double DEFAULT_ORIGIN[2];

  using VariableProperty = plexa::PropertyAbstract<WeakPtr<Variable, unsigned long long>>;

  /// `viewVisible` tells whether the owning view is shown. The widget gets the interactor; the
  /// pipeline's changes recompute the legend.
  ColorLegend(boost::shared_ptr<const VariableProperty> colorVariable,
              boost::shared_ptr<const plexa::PropertyAbstract<bool>> viewVisible,
              const DataPipelineManagerInterface& pipeline,
              vtkSmartPointer<vtkLookupTable> lookupTable,
              vtkRenderWindowInteractor& interactor,
              vtkSmartPointer<vtkScalarBarWidget> widget);
  ~ColorLegend() override;
  ColorLegend(const ColorLegend&) = delete;
  ColorLegend& operator=(const ColorLegend&) = delete;

  /// "Show Color Legend".
  virtual boost::shared_ptr<plexa::PropertyAbstract<bool>> show() const;
  /// "Color Legend Range Type".
  virtual boost::shared_ptr<plexa::PropertyAbstract<RangeType>> rangeType() const;
  /// "Color Legend Range"; a minimum above the maximum is refused.
  virtual boost::shared_ptr<plexa::PropertyAbstract<ValueRange_s<double>>> range() const;
  /// "Number of Labels", 3 to 40.
  virtual boost::shared_ptr<plexa::PropertyAbstract<short>> numLabels() const;
  /// True exactly while the legend is drawn.
  boost::shared_ptr<const plexa::PropertyAbstract<bool>> visible() const;
  /// The "ColorLegend" serializer of the four settings.
  virtual boost::shared_ptr<SerializerInterface> serializer() const;

  /// While suspended, setting changes do not update the scalar bar; resume() does not catch up.
  void suspend() override;
  void resume() override;

private:
  void initializeProperties();
  void initializeRangeAndNumLabelsProperties();
  void connectToProperties();
  void initializeColorLegendStyles();
  void updateColorLegend();
  std::pair<double, double> colorVariableRange() const;
  std::pair<double, double> colorRange() const;

  struct Impl;
  std::unique_ptr<Impl> d;
};
