#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <vtkChartXY.h>
#include <vtkSmartPointer.h>

#include <utility>
#include <vector>

class vtkChartLegend;
class vtkContext2D;

/// The XY chart of the 2-D views: a vtkChartXY with any number of legends and click selection.
///
/// Legends are laid out side by side from the top-right corner leftwards, B pixels apart and B
/// pixels from the edges, where B is the chart's hidden-axis border. A legend the user drags
/// stays where it was put and gives up its slot; a legend whose size changes keeps its top-right
/// corner; every legend is kept inside the viewport (its top at least B above the bottom). The
/// built-in legend (GetLegend()) is the first legend. Layout is suspended while saved settings
/// are read back (Serializer::isInMiddleOfDeserialization), so restored positions survive.
///
/// A mouse release that hardly moved (less than half a pixel in either direction) is turned into
/// a 10 by 10 pixel box around the press point, so that one click selects the points under it.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ChartXY : public vtkChartXY
{
public:
  /// What the chart knows of one legend.
  struct LegendAndItsDimensions
  {
    vtkSmartPointer<vtkChartLegend> legend;
    /// Width and height in pixels at the end of the last layout pass.
    std::pair<float, float> dimensions{ 0.0f, 0.0f };
    /// False until the legend's first layout pass while visible.
    bool isPositioned = false;
    /// True while the legend sits in the slot the automatic layout gave it.
    bool isAutoPlaced = false;
    /// The right edge of that slot, in pixels.
    float rightEdge = 0.0f;
  };

  /// Both coordinates of a legend that nobody has placed yet.
  static constexpr float unplacedLegendCoordinate = -1984.0f;

  static ChartXY* New();
  vtkTypeMacro(ChartXY, vtkChartXY);
  void PrintSelf(ostream& os, vtkIndent indent) override;

  /// Registers a further legend and adds it as a child item, so that it is painted and gets
  /// mouse events.
  void addLegend(const vtkSmartPointer<vtkChartLegend>& legend);
  /// The registered legends, the built-in one first.
  const std::vector<LegendAndItsDimensions>& legends() const { return this->Legends; }

  bool Paint(vtkContext2D* painter) override;
  /// Marks every legend modified, then updates the chart.
  void Update() override;

protected:
  ChartXY();
  ~ChartXY() override;

  /// The legend layout. The rectangle is ignored: the layout works from the chart's own size.
  void SetLegendPosition(const vtkRectf& rect) override;

private:
  ChartXY(const ChartXY&) = delete;
  void operator=(const ChartXY&) = delete;

  bool MouseButtonReleaseEvent(const vtkContextMouseEvent& mouse) override;

  void registerLegend(const vtkSmartPointer<vtkChartLegend>& legend);
  void ensureLegendIsWithinChartViewport(vtkChartLegend& legend, const vtkRectf& rect);
  void anchorTopRightCornerWhenLegendIsResized(vtkChartLegend& legend,
                                               const std::pair<float, float>& oldDimensions,
                                               vtkRectf& rect);
  // The misspelling is the name the operation is known by.
  float findNextAvaialableLegendRightEdge();
  void detectIfLegendWasMoved(LegendAndItsDimensions& entry);

  std::vector<LegendAndItsDimensions> Legends;
  vtkContext2D* Painter = nullptr;
};
