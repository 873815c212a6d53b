#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <vtkNew.h>
#include <vtkPlotPoints.h>
#include <vtkSmartPointer.h>

#include <functional>
#include <memory>
#include <vector>

class vtkDataArray;
class vtkImageData;
class vtkTable;

/// A points plot that, when told to, paints its points as a density image instead of one marker
/// each: the points are binned on a grid of 2 x 2 pixels of the plot area, and each bin that
/// holds points is drawn in the mean colour of its points (when they are coloured by a
/// variable) or in the plot's colour, more opaque the more points it holds. Binning costs one
/// pass over the points and is kept until the points, their colours or the axes change; drawing
/// costs the plot area, not the points.
///
/// Everything else (bounds, selection, picking, tool tips) is the points plot's own, so the two
/// modes select and pick the same cases. In density mode the selected points are painted, when
/// asked, as a second density over the first in one colour; otherwise the view draws them.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT vtkDensityPlotPoints : public vtkPlotPoints
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

  /// In density mode, the selected points as a density of their own in `SelectionDensityColor`
  /// over the others; off by default. Turning it on or off keeps the points' cache, as a new
  /// selection does.
  void SetDrawSelectionDensity(bool draw);
  vtkGetMacro(DrawSelectionDensity, bool);
  vtkSetVector4Macro(SelectionDensityColor, unsigned char);

  bool Paint(vtkContext2D* painter) override;

  /// The points plot's update, except when the input became another table of plain columns of
  /// numbers (a host that makes a table of the columns it shows at each update) and no property
  /// of the plot changed (a new selection aside): then only the coordinates whose column changed
  /// are copied, each scanned in the same pass, and the colours are mapped again only if their
  /// column changed. The result is the points plot's own, value for value.
  void Update() override;

  /// The points plot's bounds, kept until what they come from changes (the input's X and Y
  /// columns, the points left out as bad, the logarithmic axes): the chart asks for them on every
  /// draw and the view again to fit an axis, each time a pass over every point.
  void GetBounds(double bounds[4]) override;

  /// A new selection keeps the points' cache: the points did not change, and rebuilding the
  /// cache would also drop the sorted points a rubber band searches (a million points sorted
  /// again on each selection).
  void SetSelection(vtkIdTypeArray* selection) override;

  /// The points within the rectangle, found by one pass over them: vtkPlotPoints sorts every
  /// point again for each rectangle.
  bool SelectPoints(const vtkVector2f& min, const vtkVector2f& max) override;

  /// Column 0 of the input holds case ids, or with this function keys that it turns into case
  /// ids (false for a key without a case), for tool tips.
  using CaseIdOfKey = std::function<bool(long long key, unsigned long long& caseId)>;
  void SetCaseIdOfKey(CaseIdOfKey caseIdOfKey);

  /// The hovered point's case and its values, named by the axes: "case 1003\nangle 45, range
  /// 37.76". Points on the very same spot are counted, as a click there selects them all:
  /// "3 cases here: 12, 15, 40\nangle 45, range 37.76".
  vtkStdString GetTooltipLabel(const vtkVector2d& plotPos,
                               vtkIdType seriesIndex,
                               vtkIdType segmentIndex) override;

protected:
  vtkDensityPlotPoints();
  ~vtkDensityPlotPoints() override;

private:
  vtkDensityPlotPoints(const vtkDensityPlotPoints&) = delete;
  void operator=(const vtkDensityPlotPoints&) = delete;

  // Whether the points' cache is as current as vtkPlotPoints::Update() wants it; and a change that
  // does not touch the points, made without making the cache stale.
  bool CacheCurrent();
  template<typename Change>
  void KeepingCache(Change change);
  // Whether the plot was modified since the cache was built only by such changes (a new selection
  // while the input changed, say); and its modification time after the last of them.
  bool PropertiesKept();
  vtkMTimeType CacheKeepingTime = 0;

  // What the points' cache was built from, and scans of the columns it copied.
  struct CacheSources;
  std::unique_ptr<CacheSources> Sources;
  // After the points plot's own update: notes what its cache was built from, if it was built.
  void NoteCacheSources(vtkMTimeType builtBefore);
  // Brings the cache up to date from another table as described at Update; false, changing
  // nothing, when the points plot's own update is needed.
  bool RefreshInPlace();
  // Keeps in the cache what the scans of the X and Y columns found: the bad points, and the
  // bounds when there are none.
  void CacheScans(const std::vector<vtkIdType>& notFiniteX,
                  const std::vector<vtkIdType>& notFiniteY,
                  const double rangeX[2],
                  const double rangeY[2]);
  // The column the points are coloured by; null when they are not.
  vtkDataArray* ColourColumn(vtkTable& table) const;

  // Gives the markers' colours (or the pen, without colours) the point opacity.
  void ApplyPointOpacity();

  // Where a density image lies and how many bins it has.
  struct Grid
  {
    double area[4]; // x from, x to, y from, y to, in the plot's coordinates
    int size[2];
  };

  // Bins the points (the `count` rows listed in `rows`, or all of them when `rows` is null) into
  // `image`, each bin in the mean colour of its points when `colored`, else in `plain`.
  void Bin(const Grid& grid,
           const vtkIdType* rows,
           vtkIdType count,
           bool colored,
           const unsigned char plain[4],
           vtkImageData* image) const;

  CaseIdOfKey CaseOfKey;
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

  bool DrawSelectionDensity = false;
  unsigned char SelectionDensityColor[4] = { 20, 20, 20, 255 };
  vtkNew<vtkImageData> SelectedDensity;
  // What the selection's image was made from, besides the grid.
  vtkMTimeType BinnedSelectionTime = 0;
  vtkMTimeType BinnedSelectionPointsTime = 0;
  double BinnedSelectionArea[4] = { 0, 0, 0, 0 };
  int BinnedSelectionSize[2] = { 0, 0 };

  // What the kept bounds were computed from. Modification times count up across every VTK object,
  // so an array made anew at the address of an old one still differs.
  struct BoundsSource
  {
    const void* arrays[3] = { nullptr, nullptr, nullptr }; // x, y, bad points
    vtkMTimeType times[3] = { 0, 0, 0 };
    bool logX = false;
    bool logY = false;
    bool indexForX = false;
    bool operator==(const BoundsSource& other) const;
  };
  BoundsSource BoundsSourceNow() const;
  bool HasBounds = false;
  BoundsSource BoundsFrom;
  double Bounds[4] = { 0, 0, 0, 0 };
};
