#include "charts/vtkDensityPlotPoints.h"

#include <vtkAxis.h>
#include <vtkContext2D.h>
#include <vtkContextMapper2D.h>
#include <vtkFloatArray.h>
#include <vtkIdTypeArray.h>
#include <vtkImageData.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkScalarsToColors.h>
#include <vtkTable.h>
#include <vtkUnsignedCharArray.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>
#include <vector>

vtkStandardNewMacro(vtkDensityPlotPoints);

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
  change();
  if (current)
    this->BuildTime.Modified();
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

// Adds the points to the bins of `totals`.
template<typename Sum, int Width>
void addPoints(const PointsToBin& in, std::vector<BinTotals<Sum, Width>>& totals)
{
  const double* area = in.area;
  const int* size = in.size;
  const double toBinX = size[0] / (area[1] - area[0]);
  const double toBinY = size[1] / (area[3] - area[2]);
  // The plot keeps its points as floats: read them in place rather than one virtual call each.
  auto* floats = vtkFloatArray::SafeDownCast(in.points.GetData());
  const float* xy = floats ? floats->GetPointer(0) : nullptr;
  const vtkIdType components = floats ? floats->GetNumberOfComponents() : 0;
  const vtkIdType pointCount = in.points.GetNumberOfPoints();
  for (vtkIdType k = 0; k < in.count; ++k)
  {
    const vtkIdType i = in.rows ? in.rows[k] : k;
    if (i < 0 || i >= pointCount)
      continue;
    double p[3] = { 0, 0, 0 };
    if (xy)
    {
      p[0] = xy[components * i];
      p[1] = xy[components * i + 1];
    }
    else
      in.points.GetPoint(i, p);
    const double bx = (p[0] - area[0]) * toBinX;
    const double by = (p[1] - area[2]) * toBinY;
    // Points outside the axes' range, and non-finite ones, fall outside every bin. Within it a
    // conversion to an integer floors (std::floor would be a call per coordinate), and an int
    // is converted faster than an unsigned 64-bit size.
    if (!(bx >= 0 && bx < size[0] && by >= 0 && by < size[1]))
      continue;
    const auto column = static_cast<std::size_t>(static_cast<int>(bx));
    const auto row = static_cast<std::size_t>(static_cast<int>(by));
    Sum* bin = totals[row * static_cast<std::size_t>(size[0]) + column].values;
    ++bin[0];
    if constexpr (Width == 4)
    {
      const unsigned char* colour = in.rgba + i * in.stride;
      bin[1] += colour[0];
      bin[2] += colour[1];
      bin[3] += colour[2];
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
  Sum most = 1;
  for (const auto& bin : totals)
    most = std::max(most, bin.count());
  image.SetDimensions(size[0], size[1], 1);
  image.AllocateScalars(VTK_UNSIGNED_CHAR, 4);
  auto* pixels = static_cast<unsigned char*>(image.GetScalarPointer());
  for (std::size_t b = 0; b < totals.size(); ++b)
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
  std::vector<BinTotals<Sum, Width>> totals(static_cast<std::size_t>(in.size[0]) *
                                            static_cast<std::size_t>(in.size[1]));
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
