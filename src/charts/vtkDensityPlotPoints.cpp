#include "charts/vtkDensityPlotPoints.h"

#include <vtkAxis.h>
#include <vtkContext2D.h>
#include <vtkContextMapper2D.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkIdTypeArray.h>
#include <vtkImageData.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkScalarsToColors.h>
#include <vtkTable.h>
#include <vtkUnsignedCharArray.h>
#include <vtkWeakPointer.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <sstream>
#include <vector>

vtkStandardNewMacro(vtkDensityPlotPoints);

namespace
{

// A column as it was when something was made from it, or none. A column made anew at the
// address of an old one differs in time: modification times count up across every VTK object.
struct SeenColumn
{
  vtkWeakPointer<vtkDataArray> column;
  vtkMTimeType time = 0;

  SeenColumn() = default;
  explicit SeenColumn(vtkDataArray* seen)
    : column(seen)
    , time(seen ? seen->GetMTime() : 0)
  {
  }
  bool is(vtkDataArray* now) const { return column == now && (!now || time == now->GetMTime()); }
};

// A column of coordinates as it was scanned: its rows that are not finite, and its range.
struct CoordinateScan
{
  SeenColumn of;
  std::vector<vtkIdType> notFinite;
  double range[2] = { 0, 0 };
};

// Scans `column` and, when `xy` is given, copies it into component `component` of the points as
// the points plot does: shifted, scaled, then made a float. Four ranges are kept side by side so
// that no comparison waits for the one before (which of two equal values is kept does not
// matter), and the rows that are not finite, rare, are listed by a second pass only if there are
// any.
CoordinateScan scanCoordinate(vtkDoubleArray& column,
                              float* xy,
                              int component,
                              double shift,
                              double scale)
{
  CoordinateScan scan;
  scan.of = SeenColumn(&column);
  const double* values = column.GetPointer(0);
  const vtkIdType count = column.GetNumberOfTuples();
  constexpr double most = std::numeric_limits<double>::max();
  constexpr vtkIdType lanes = 4;
  double low[lanes] = { most, most, most, most };
  double high[lanes] = { -most, -most, -most, -most };
  bool finite = true;
  const auto take = [&](vtkIdType i, vtkIdType lane)
  {
    const double value = values[i];
    if (xy)
      xy[2 * i + component] = static_cast<float>((value + shift) * scale);
    low[lane] = value < low[lane] ? value : low[lane];
    high[lane] = value > high[lane] ? value : high[lane];
    finite &= std::abs(value) <= most;
  };
  vtkIdType i = 0;
  for (; i + lanes <= count; i += lanes)
    for (vtkIdType lane = 0; lane < lanes; ++lane)
      take(i + lane, lane);
  for (; i < count; ++i)
    take(i, 0);
  scan.range[0] = *std::min_element(low, low + lanes);
  scan.range[1] = *std::max_element(high, high + lanes);
  for (i = 0; !finite && i < count; ++i)
    if (!(std::abs(values[i]) <= most))
      scan.notFinite.push_back(i);
  return scan;
}

} // namespace

struct vtkDensityPlotPoints::CacheSources
{
  // The table, its X and Y columns and its colour column (none when not coloured) the cache was
  // made from.
  bool noted = false;
  vtkWeakPointer<vtkTable> table;
  SeenColumn columns[2];
  SeenColumn colours;
  // The latest scan of an X column and of a Y column.
  CoordinateScan scans[2];

  void note(vtkTable* input, vtkDataArray* const now[2], vtkDataArray* colourColumn)
  {
    noted = true;
    table = input;
    for (int c = 0; c < 2; ++c)
      columns[c] = SeenColumn(now[c]);
    colours = SeenColumn(colourColumn);
  }
};

vtkDensityPlotPoints::vtkDensityPlotPoints() = default;

vtkDensityPlotPoints::~vtkDensityPlotPoints() = default;

void vtkDensityPlotPoints::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "DrawDensity: " << this->DrawDensity << "\n";
  os << indent << "PointOpacity: " << this->PointOpacity << "\n";
  os << indent << "DrawSelectionDensity: " << this->DrawSelectionDensity << "\n";
}

bool vtkDensityPlotPoints::BoundsSource::operator==(const BoundsSource& other) const
{
  return std::equal(arrays, arrays + 3, other.arrays) &&
         std::equal(times, times + 3, other.times) && logX == other.logX && logY == other.logY &&
         indexForX == other.indexForX;
}

vtkDensityPlotPoints::BoundsSource vtkDensityPlotPoints::BoundsSourceNow() const
{
  BoundsSource source;
  vtkTable* table = this->Data->GetInput();
  vtkAbstractArray* columns[3] = {
    table && !this->UseIndexForXSeries ? this->Data->GetInputArrayToProcess(0, table) : nullptr,
    table ? this->Data->GetInputArrayToProcess(1, table) : nullptr,
    this->BadPoints,
  };
  for (int i = 0; i < 3; ++i)
  {
    source.arrays[i] = columns[i];
    source.times[i] = columns[i] ? columns[i]->GetMTime() : 0;
  }
  source.logX = this->LogX;
  source.logY = this->LogY;
  source.indexForX = this->UseIndexForXSeries;
  return source;
}

void vtkDensityPlotPoints::GetBounds(double bounds[4])
{
  if (!this->Points)
  {
    this->Superclass::GetBounds(bounds);
    return;
  }
  const BoundsSource source = this->BoundsSourceNow();
  if (!this->HasBounds || !(source == this->BoundsFrom))
  {
    this->Superclass::GetBounds(this->Bounds);
    this->HasBounds = true;
    this->BoundsFrom = source;
  }
  std::copy(this->Bounds, this->Bounds + 4, bounds);
}

vtkDataArray* vtkDensityPlotPoints::ColourColumn(vtkTable& table) const
{
  return this->ScalarVisibility && !this->ColorArrayName.empty()
           ? vtkDataArray::SafeDownCast(table.GetColumnByName(this->ColorArrayName.c_str()))
           : nullptr;
}

void vtkDensityPlotPoints::Update()
{
  if (this->RefreshInPlace())
    return;
  const vtkMTimeType builtBefore = this->BuildTime.GetMTime();
  this->Superclass::Update();
  this->NoteCacheSources(builtBefore);
}

void vtkDensityPlotPoints::NoteCacheSources(vtkMTimeType builtBefore)
{
  if (this->BuildTime.GetMTime() == builtBefore)
    return;
  if (!this->Sources)
    this->Sources = std::make_unique<CacheSources>();
  vtkTable* table = this->Data->GetInput();
  vtkDataArray* columns[2] = { nullptr, nullptr };
  for (int c = 0; table && c < 2; ++c)
    columns[c] = this->Data->GetInputArrayToProcess(c, table);
  this->Sources->noted = false;
  if (table && columns[0] && columns[1])
    this->Sources->note(table, columns, this->ColourColumn(*table));
}

bool vtkDensityPlotPoints::RefreshInPlace()
{
  // Another table (a host may make one of the columns it shows at each update), and nothing else
  // the points plot's update watches changed: its properties, the lookup table, the axes'
  // logarithmic scales. The table the cache was made from is read again as the points plot reads
  // it: modified, its values may have been written without its columns knowing.
  CacheSources* sources = this->Sources.get();
  vtkTable* table = this->Data->GetInput();
  if (!sources || !sources->noted || !this->Visible || !table || !this->Points ||
      table == sources->table)
    return false;
  const vtkMTimeType built = this->BuildTime.GetMTime();
  if (!this->PropertiesKept() || (this->LookupTable && this->LookupTable->GetMTime() > built))
    return false;
  // What is not simply copied here: an index for X, logarithms, a mask of valid points, and the
  // points sorted for searches (which only the points plot itself can let go).
  if (this->UseIndexForXSeries || this->LogX || this->LogY ||
      (this->XAxis && this->XAxis->GetLogScale()) || (this->YAxis && this->YAxis->GetLogScale()) ||
      this->ValidPointMask || this->Sorted ||
      (!this->ValidPointMaskName.empty() &&
       table->GetColumnByName(this->ValidPointMaskName.c_str())))
    return false;
  auto* xy = vtkFloatArray::SafeDownCast(this->Points->GetData());
  if (!xy || xy->GetNumberOfComponents() != 2)
    return false;
  vtkDoubleArray* columns[2] = { nullptr, nullptr };
  bool changed[2] = { false, false };
  for (int c = 0; c < 2; ++c)
  {
    columns[c] = vtkDoubleArray::SafeDownCast(this->Data->GetInputArrayToProcess(c, table));
    if (!columns[c] || columns[c]->GetNumberOfComponents() != 1)
      return false;
    changed[c] = !sources->columns[c].is(columns[c]);
  }
  const vtkIdType count = columns[0]->GetNumberOfTuples();
  if (columns[1]->GetNumberOfTuples() != count)
    return false;
  // The colours are kept with their column, or mapped again as the points plot maps them (the
  // points plot itself makes a lookup table where there is none, or lets colours go).
  vtkDataArray* colours = this->ColourColumn(*table);
  const bool coloursKept = sources->colours.is(colours);
  if (!coloursKept && (!colours || !this->LookupTable || colours->GetNumberOfTuples() != count))
    return false;

  if (count != this->Points->GetNumberOfPoints())
    this->Points->SetNumberOfPoints(count);
  if (changed[0] || changed[1])
  {
    const vtkRectd shiftScale = this->GetShiftScale();
    const double shifts[2] = { shiftScale.GetX(), shiftScale.GetY() };
    const double scales[2] = { shiftScale.GetWidth(), shiftScale.GetHeight() };
    float* points = xy->GetPointer(0);
    for (int c = 0; c < 2; ++c)
      if (changed[c])
        sources->scans[c] = scanCoordinate(*columns[c], points, c, shifts[c], scales[c]);
      else if (!sources->scans[c].of.is(columns[c]))
        sources->scans[c] = scanCoordinate(*columns[c], nullptr, c, 0, 1);
    this->CacheScans(sources->scans[0].notFinite,
                     sources->scans[1].notFinite,
                     sources->scans[0].range,
                     sources->scans[1].range);
  }
  if (!coloursKept)
  {
    if (this->Colors)
      this->Colors->UnRegister(this);
    this->Colors = this->LookupTable->MapScalars(colours, VTK_COLOR_MODE_MAP_SCALARS, -1);
    // MapScalars hands over a reference of its own.
    this->Colors->Register(this);
    this->Colors->Delete();
  }
  vtkDataArray* noted[2] = { columns[0], columns[1] };
  sources->note(table, noted, colours);
  this->BuildTime.Modified();
  return true;
}

void vtkDensityPlotPoints::CacheScans(const std::vector<vtkIdType>& notFiniteX,
                                      const std::vector<vtkIdType>& notFiniteY,
                                      const double rangeX[2],
                                      const double rangeY[2])
{
  // A point is bad when either coordinate is not finite, as the points plot finds them.
  std::vector<vtkIdType> bad;
  std::set_union(notFiniteX.begin(),
                 notFiniteX.end(),
                 notFiniteY.begin(),
                 notFiniteY.end(),
                 std::back_inserter(bad));
  if (bad.empty() && this->BadPoints)
  {
    this->BadPoints->Delete();
    this->BadPoints = nullptr;
  }
  else if (!bad.empty())
  {
    if (!this->BadPoints)
      this->BadPoints = vtkIdTypeArray::New();
    this->BadPoints->SetNumberOfValues(static_cast<vtkIdType>(bad.size()));
    std::copy(bad.begin(), bad.end(), this->BadPoints->GetPointer(0));
    this->BadPoints->Modified();
  }
  this->Points->Modified();
  // Without bad points the bounds are the columns' ranges, as the points plot computes them;
  // with some, it leaves them out, and the next GetBounds asks it.
  if (bad.empty())
  {
    const double bounds[4] = { rangeX[0], rangeX[1], rangeY[0], rangeY[1] };
    std::copy(bounds, bounds + 4, this->UnscaledInputBounds);
    std::copy(bounds, bounds + 4, this->Bounds);
    this->HasBounds = true;
    this->BoundsFrom = this->BoundsSourceNow();
  }
}

void vtkDensityPlotPoints::ApplyPointOpacity()
{
  const auto alpha = static_cast<unsigned char>(std::lround(this->PointOpacity * 255));
  this->Pen->SetOpacity(alpha);
  vtkUnsignedCharArray* colors = this->Colors;
  if (!colors || colors->GetNumberOfComponents() != 4 ||
      (colors->GetMTime() == this->OpacityColorsTime && alpha == this->OpacityAlpha))
  {
    return;
  }
  unsigned char* rgba = colors->GetPointer(0);
  for (vtkIdType i = 0; i < colors->GetNumberOfTuples(); ++i)
    rgba[4 * i + 3] = alpha;
  colors->Modified();
  this->OpacityColorsTime = colors->GetMTime();
  this->OpacityAlpha = alpha;
}

bool vtkDensityPlotPoints::CacheCurrent()
{
  // The cache is current when nothing vtkPlotPoints::Update() watches changed since it was built.
  vtkTable* table = this->Data->GetInput();
  return table && this->GetMTime() <= this->BuildTime &&
         this->Data->GetMTime() <= this->BuildTime && table->GetMTime() <= this->BuildTime &&
         (!this->LookupTable || this->LookupTable->GetMTime() <= this->BuildTime);
}

template<typename Change>
void vtkDensityPlotPoints::KeepingCache(Change change)
{
  const bool current = this->CacheCurrent();
  const bool propertiesKept = this->PropertiesKept();
  change();
  if (current)
    this->BuildTime.Modified();
  else if (propertiesKept)
    this->CacheKeepingTime = this->GetMTime();
}

bool vtkDensityPlotPoints::PropertiesKept()
{
  return this->GetMTime() <= this->BuildTime || this->GetMTime() == this->CacheKeepingTime;
}

void vtkDensityPlotPoints::SetSelection(vtkIdTypeArray* selection)
{
  this->KeepingCache([&] { this->Superclass::SetSelection(selection); });
}

void vtkDensityPlotPoints::SetDrawSelectionDensity(bool draw)
{
  if (draw == this->DrawSelectionDensity)
    return;
  this->KeepingCache(
    [&]
    {
      this->DrawSelectionDensity = draw;
      this->Modified();
    });
}

bool vtkDensityPlotPoints::SelectPoints(const vtkVector2f& min, const vtkVector2f& max)
{
  auto* floats = this->Points ? vtkFloatArray::SafeDownCast(this->Points->GetData()) : nullptr;
  if (!floats || floats->GetNumberOfComponents() != 2)
    return this->Superclass::SelectPoints(min, max);
  if (!this->Selection)
    this->Selection = vtkIdTypeArray::New();
  this->Selection->SetNumberOfTuples(0);
  // Points that are not numbers fail every comparison, infinite ones fall outside.
  const vtkIdType count = this->Points->GetNumberOfPoints();
  const float* xy = floats->GetPointer(0);
  for (vtkIdType point = 0; point < count; ++point)
  {
    const float x = xy[2 * point];
    const float y = xy[2 * point + 1];
    if (x >= min.GetX() && x <= max.GetX() && y >= min.GetY() && y <= max.GetY())
      this->Selection->InsertNextValue(point);
  }
  this->Selection->Modified();
  return this->Selection->GetNumberOfTuples() > 0;
}

bool vtkDensityPlotPoints::Paint(vtkContext2D* painter)
{
  if (!this->DrawDensity)
  {
    this->ApplyPointOpacity();
    return this->Superclass::Paint(painter);
  }
  if (!this->Visible || !this->Points || this->Points->GetNumberOfPoints() == 0 || !this->XAxis ||
      !this->YAxis)
  {
    return false;
  }

  // The visible area in the plot's (shifted and scaled) coordinates, and its size in pixels.
  const vtkRectd shiftScale = this->GetShiftScale();
  Grid grid{ { (this->XAxis->GetMinimum() + shiftScale.GetX()) * shiftScale.GetWidth(),
               (this->XAxis->GetMaximum() + shiftScale.GetX()) * shiftScale.GetWidth(),
               (this->YAxis->GetMinimum() + shiftScale.GetY()) * shiftScale.GetHeight(),
               (this->YAxis->GetMaximum() + shiftScale.GetY()) * shiftScale.GetHeight() },
             { 1, 1 } };
  const float pixelsX = std::abs(this->XAxis->GetPoint2()[0] - this->XAxis->GetPoint1()[0]);
  const float pixelsY = std::abs(this->YAxis->GetPoint2()[1] - this->YAxis->GetPoint1()[1]);
  constexpr int binPixels = 2;
  grid.size[0] = std::max(1, static_cast<int>(pixelsX) / binPixels);
  grid.size[1] = std::max(1, static_cast<int>(pixelsY) / binPixels);
  const double* area = grid.area;
  if (!(area[1] > area[0]) || !(area[3] > area[2]))
  {
    return false;
  }
  const auto sameGrid = [&](const double binnedArea[4], const int binnedSize[2])
  {
    return std::equal(area, area + 4, binnedArea) &&
           std::equal(grid.size, grid.size + 2, binnedSize);
  };
  const vtkRectf where(static_cast<float>(area[0]),
                       static_cast<float>(area[2]),
                       static_cast<float>(area[1] - area[0]),
                       static_cast<float>(area[3] - area[2]));

  unsigned char plain[4];
  this->GetColor(plain);
  const bool colored = this->ScalarVisibility && this->Colors &&
                       this->Colors->GetNumberOfTuples() == this->Points->GetNumberOfPoints();
  const vtkMTimeType colorsTime = colored ? this->Colors->GetMTime() : 0;
  if (this->BinnedPointsTime != this->Points->GetMTime() || this->BinnedColorsTime != colorsTime ||
      !sameGrid(this->BinnedArea, this->BinnedSize) ||
      !std::equal(plain, plain + 4, this->BinnedColor))
  {
    this->Bin(grid, nullptr, this->Points->GetNumberOfPoints(), colored, plain, this->Density);
    this->BinnedPointsTime = this->Points->GetMTime();
    this->BinnedColorsTime = colorsTime;
    std::copy(area, area + 4, this->BinnedArea);
    std::copy(grid.size, grid.size + 2, this->BinnedSize);
    std::copy(plain, plain + 4, this->BinnedColor);
  }
  painter->DrawImage(where, this->Density);

  vtkIdTypeArray* selection = this->Selection;
  if (!this->DrawSelectionDensity || !selection || selection->GetNumberOfTuples() == 0)
  {
    return true;
  }
  if (this->BinnedSelectionTime != selection->GetMTime() ||
      this->BinnedSelectionPointsTime != this->Points->GetMTime() ||
      !sameGrid(this->BinnedSelectionArea, this->BinnedSelectionSize))
  {
    this->Bin(grid,
              selection->GetPointer(0),
              selection->GetNumberOfTuples(),
              false,
              this->SelectionDensityColor,
              this->SelectedDensity);
    this->BinnedSelectionTime = selection->GetMTime();
    this->BinnedSelectionPointsTime = this->Points->GetMTime();
    std::copy(area, area + 4, this->BinnedSelectionArea);
    std::copy(grid.size, grid.size + 2, this->BinnedSelectionSize);
  }
  painter->DrawImage(where, this->SelectedDensity);
  return true;
}

namespace
{

// The points each bin received, followed by the sums of their red, green and blue when the points
// are coloured: one place in memory per point, where separate arrays would be two or more.
template<typename Sum, int Width>
struct BinTotals
{
  Sum values[Width] = {};
  Sum count() const { return values[0]; }
};

// The points to bin and where: the `count` rows listed in `rows` (all of them when `rows` is null),
// coloured by `rgba` (`stride` bytes a point) or not at all when it is null, on a grid of `size`
// bins over `area`.
struct PointsToBin
{
  const double* area;
  const int* size;
  vtkPoints2D& points;
  const vtkIdType* rows;
  vtkIdType count;
  const unsigned char* rgba;
  int stride;
};

// Adds the points to the bins of `totals`, whose last place, past the grid, takes the points
// outside it. A block of points is placed first, then added: placing is arithmetic without a
// branch, in floats as the points are kept, and adding is a run of increments that asks for the
// bins a few points ahead (they lie anywhere in a grid larger than the processor's nearer caches).
template<typename Sum, int Width>
void addPoints(const PointsToBin& in, std::vector<BinTotals<Sum, Width>>& totals)
{
  // The points plot keeps its points as floats, read here in place.
  auto* floats = vtkFloatArray::SafeDownCast(in.points.GetData());
  const vtkIdType pointCount = in.points.GetNumberOfPoints();
  if (!floats || floats->GetNumberOfComponents() != 2 || pointCount == 0)
    return;
  const float* xy = floats->GetPointer(0);
  const vtkIdType* rows = in.rows;
  const unsigned char* rgba = in.rgba;
  const vtkIdType stride = in.stride;
  const auto outside = static_cast<std::uint32_t>(totals.size() - 1);
  const auto fromX = static_cast<float>(in.area[0]);
  const auto fromY = static_cast<float>(in.area[2]);
  const auto toBinX = static_cast<float>(in.size[0] / (in.area[1] - in.area[0]));
  const auto toBinY = static_cast<float>(in.size[1] / (in.area[3] - in.area[2]));
  const int columns = in.size[0];
  const auto width = static_cast<float>(columns);
  const auto height = static_cast<float>(in.size[1]);
  const int lastColumn = columns - 1;
  const int lastRow = in.size[1] - 1;
  // Points outside the axes' range, and non-finite ones, fall outside every bin; a point on the
  // far edge of an axis is in its last bin.
  const auto place = [=](vtkIdType i)
  {
    const float bx = (xy[2 * i] - fromX) * toBinX;
    const float by = (xy[2 * i + 1] - fromY) * toBinY;
    // Bitwise ands, not logical ones: no branch, so that the compiler places points side by side.
    const bool inside = (bx >= 0) & (bx <= width) & (by >= 0) & (by <= height);
    const int column = std::min(static_cast<int>(inside ? bx : 0.0f), lastColumn);
    const int row = std::min(static_cast<int>(inside ? by : 0.0f), lastRow);
    return inside ? static_cast<std::uint32_t>(row * columns + column) : outside;
  };
  // A row listed that is not a point: outside, coloured as the first point.
  const auto point = [=](vtkIdType k)
  {
    const vtkIdType i = rows ? rows[k] : k;
    return i >= 0 && i < pointCount ? i : -1;
  };
  constexpr vtkIdType block = 1024;
  constexpr vtkIdType ahead = 32;
  std::uint32_t bins[block];
  for (vtkIdType start = 0; start < in.count; start += block)
  {
    const vtkIdType n = std::min(block, in.count - start);
    if (rows)
      for (vtkIdType k = 0; k < n; ++k)
      {
        const vtkIdType i = point(start + k);
        bins[k] = i >= 0 ? place(i) : outside;
      }
    else
      for (vtkIdType k = 0; k < n; ++k)
        bins[k] = place(start + k);
    for (vtkIdType k = 0; k < n; ++k)
    {
      if (k + ahead < n)
        __builtin_prefetch(totals[bins[k + ahead]].values, 1);
      Sum* bin = totals[bins[k]].values;
      ++bin[0];
      if constexpr (Width == 4)
      {
        const unsigned char* colour = rgba + std::max<vtkIdType>(point(start + k), 0) * stride;
        bin[1] += colour[0];
        bin[2] += colour[1];
        bin[3] += colour[2];
      }
    }
  }
}

// Writes the bins into `image`: each in the mean colour of its points (or `plain` without
// colours), a lone point visible and the densest bin opaque.
template<typename Sum, int Width>
void paintBins(const std::vector<BinTotals<Sum, Width>>& totals,
               const int size[2],
               const unsigned char plain[4],
               vtkImageData& image)
{
  const std::size_t bins = static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]);
  Sum most = 1;
  for (std::size_t b = 0; b < bins; ++b)
    most = std::max(most, totals[b].count());
  image.SetDimensions(size[0], size[1], 1);
  image.AllocateScalars(VTK_UNSIGNED_CHAR, 4);
  auto* pixels = static_cast<unsigned char*>(image.GetScalarPointer());
  for (std::size_t b = 0; b < bins; ++b)
  {
    unsigned char* pixel = pixels + b * 4;
    const auto n = static_cast<std::uint64_t>(totals[b].count());
    if (n == 0)
    {
      std::fill(pixel, pixel + 4, 0);
      continue;
    }
    // The mean colour, rounded to the nearest integer.
    for (std::size_t c = 0; c < 3; ++c)
      pixel[c] = Width == 4
                   ? static_cast<unsigned char>(
                       (2 * static_cast<std::uint64_t>(totals[b].values[c + 1]) + n) / (2 * n))
                   : plain[c];
    const double weight = std::log1p(double(n)) / std::log1p(double(most));
    pixel[3] = static_cast<unsigned char>(96 + 159 * weight);
  }
  image.Modified();
}

template<typename Sum, int Width>
void binInto(const PointsToBin& in, const unsigned char plain[4], vtkImageData& image)
{
  // The grid's bins, and one for the points outside it.
  std::vector<BinTotals<Sum, Width>> totals(
    static_cast<std::size_t>(in.size[0]) * static_cast<std::size_t>(in.size[1]) + 1);
  addPoints(in, totals);
  paintBins(totals, in.size, plain, image);
}

} // namespace

void vtkDensityPlotPoints::Bin(const Grid& grid,
                               const vtkIdType* rows,
                               vtkIdType count,
                               bool colored,
                               const unsigned char plain[4],
                               vtkImageData* image) const
{
  const PointsToBin in{ grid.area,
                        grid.size,
                        *this->Points,
                        rows,
                        count,
                        colored ? this->Colors->GetPointer(0) : nullptr,
                        colored ? this->Colors->GetNumberOfComponents() : 0 };
  // Sums of 32 bits hold the colours of up to 16,843,009 points exactly, in half the room.
  const bool narrow = count <= vtkIdType(std::numeric_limits<std::uint32_t>::max() / 255);
  if (narrow)
    colored ? binInto<std::uint32_t, 4>(in, plain, *image)
            : binInto<std::uint32_t, 1>(in, plain, *image);
  else
    colored ? binInto<std::uint64_t, 4>(in, plain, *image)
            : binInto<std::uint64_t, 1>(in, plain, *image);
}

void vtkDensityPlotPoints::SetCaseIdOfKey(CaseIdOfKey caseIdOfKey)
{
  this->CaseOfKey = std::move(caseIdOfKey);
}

vtkStdString vtkDensityPlotPoints::GetTooltipLabel(const vtkVector2d& plotPos,
                                                   vtkIdType seriesIndex,
                                                   vtkIdType segmentIndex)
{
  vtkTable* table = this->GetInput();
  if (!table || table->GetNumberOfColumns() == 0 || seriesIndex < 0 ||
      seriesIndex >= table->GetNumberOfRows() || !this->Points ||
      seriesIndex >= this->Points->GetNumberOfPoints())
  {
    return this->Superclass::GetTooltipLabel(plotPos, seriesIndex, segmentIndex);
  }
  const auto caseOf = [&](vtkIdType row)
  {
    unsigned long long id = 0;
    if (this->CaseOfKey)
    {
      if (!this->CaseOfKey(table->GetValue(row, 0).ToLongLong(), id))
        return std::string("?");
    }
    else
      id = static_cast<unsigned long long>(table->GetValue(row, 0).ToDouble());
    return std::to_string(id);
  };
  // The other points on the hovered point's spot: a click there takes them all.
  double at[3];
  this->Points->GetPoint(seriesIndex, at);
  constexpr std::size_t listed = 5;
  std::vector<vtkIdType> here;
  double p[3];
  for (vtkIdType i = 0; i < this->Points->GetNumberOfPoints(); ++i)
  {
    this->Points->GetPoint(i, p);
    if (p[0] == at[0] && p[1] == at[1])
      here.push_back(i);
  }
  std::ostringstream label;
  if (here.size() <= 1)
    label << "case " << caseOf(seriesIndex);
  else
  {
    label << here.size() << " cases here: ";
    for (std::size_t i = 0; i < std::min(here.size(), listed); ++i)
      label << (i > 0 ? ", " : "") << caseOf(here[i]);
    if (here.size() > listed)
      label << ", ...";
  }
  label << "\n"
        << (this->XAxis ? this->XAxis->GetTitle() : std::string("x")) << " "
        << vtkVariant(plotPos.GetX()).ToString() << ", "
        << (this->YAxis ? this->YAxis->GetTitle() : std::string("y")) << " "
        << vtkVariant(plotPos.GetY()).ToString();
  return label.str();
}
