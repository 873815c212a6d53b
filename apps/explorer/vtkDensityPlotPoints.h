#pragma once

#include <vtkNew.h>
#include <vtkPlotPoints.h>
#include <vtkSmartPointer.h>

class vtkImageData;

namespace explorer
{

/// A points plot that, when told to, paints its points as a density image instead of one marker
/// each: the points are binned on a grid of 2 x 2 pixels of the plot area, and each bin that
/// holds points is drawn in the mean colour of its points (when they are coloured by a
/// variable) or in the plot's colour, more opaque the more points it holds. Binning costs one
/// pass over the points and is kept until the points, their colours or the axes change; drawing
/// costs the plot area, not the points.
///
/// Everything else (bounds, selection, picking, tool tips) is the points plot's own, so the two
/// modes select and pick the same cases. Selected points are not painted in density mode: the
/// view draws them on top.
class vtkDensityPlotPoints : public vtkPlotPoints
{
public:
  static vtkDensityPlotPoints* New();
  vtkTypeMacro(vtkDensityPlotPoints, vtkPlotPoints);
  void PrintSelf(ostream& os, vtkIndent indent) override;

  /// Density instead of markers; off by default.
  vtkSetMacro(DrawDensity, bool);
  vtkGetMacro(DrawDensity, bool);

  /// The opacity of the markers, 1 by default: below it, crowded markers show how many lie on
  /// each other. The density mode shows that by itself and ignores it.
  vtkSetClampMacro(PointOpacity, double, 0.0, 1.0);
  vtkGetMacro(PointOpacity, double);

  bool Paint(vtkContext2D* painter) override;

  /// The hovered point's case (column 0 of the input) and its values, named by the axes:
  /// "case 1003\nangle 45, range 37.76".
  vtkStdString GetTooltipLabel(const vtkVector2d& plotPos,
                               vtkIdType seriesIndex,
                               vtkIdType segmentIndex) override;

protected:
  vtkDensityPlotPoints();
  ~vtkDensityPlotPoints() override;

private:
  vtkDensityPlotPoints(const vtkDensityPlotPoints&) = delete;
  void operator=(const vtkDensityPlotPoints&) = delete;

  // Gives the markers' colours (or the pen, without colours) the point opacity.
  void ApplyPointOpacity();

  bool DrawDensity = false;
  double PointOpacity = 1.0;
  // The colours the opacity was written into, and the alpha written.
  vtkMTimeType OpacityColorsTime = 0;
  unsigned char OpacityAlpha = 255;
  vtkNew<vtkImageData> Density;
  // What the image was made from; a change of any of them bins the points again.
  vtkMTimeType BinnedPointsTime = 0;
  vtkMTimeType BinnedColorsTime = 0;
  double BinnedArea[4] = { 0, 0, 0, 0 };
  int BinnedSize[2] = { 0, 0 };
  unsigned char BinnedColor[4] = { 0, 0, 0, 0 };
};

} // namespace explorer
