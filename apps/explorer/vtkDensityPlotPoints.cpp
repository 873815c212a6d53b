#include "vtkDensityPlotPoints.h"

#include <vtkAxis.h>
#include <vtkContext2D.h>
#include <vtkFloatArray.h>
#include <vtkImageData.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkTable.h>
#include <vtkUnsignedCharArray.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <vector>

namespace explorer
{

vtkStandardNewMacro(vtkDensityPlotPoints);

vtkDensityPlotPoints::vtkDensityPlotPoints() = default;

vtkDensityPlotPoints::~vtkDensityPlotPoints() = default;

void vtkDensityPlotPoints::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "DrawDensity: " << this->DrawDensity << "\n";
  os << indent << "PointOpacity: " << this->PointOpacity << "\n";
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
  const double area[4] = {
    (this->XAxis->GetMinimum() + shiftScale.GetX()) * shiftScale.GetWidth(),
    (this->XAxis->GetMaximum() + shiftScale.GetX()) * shiftScale.GetWidth(),
    (this->YAxis->GetMinimum() + shiftScale.GetY()) * shiftScale.GetHeight(),
    (this->YAxis->GetMaximum() + shiftScale.GetY()) * shiftScale.GetHeight(),
  };
  const float pixelsX = std::abs(this->XAxis->GetPoint2()[0] - this->XAxis->GetPoint1()[0]);
  const float pixelsY = std::abs(this->YAxis->GetPoint2()[1] - this->YAxis->GetPoint1()[1]);
  constexpr int binPixels = 2;
  const int size[2] = { std::max(1, static_cast<int>(pixelsX) / binPixels),
                        std::max(1, static_cast<int>(pixelsY) / binPixels) };
  if (!(area[1] > area[0]) || !(area[3] > area[2]))
  {
    return false;
  }

  unsigned char plain[4];
  this->GetColor(plain);
  const bool colored = this->ScalarVisibility && this->Colors &&
                       this->Colors->GetNumberOfTuples() == this->Points->GetNumberOfPoints();
  const vtkMTimeType colorsTime = colored ? this->Colors->GetMTime() : 0;
  const bool same =
    this->BinnedPointsTime == this->Points->GetMTime() && this->BinnedColorsTime == colorsTime &&
    std::equal(area, area + 4, this->BinnedArea) && std::equal(size, size + 2, this->BinnedSize) &&
    std::equal(plain, plain + 4, this->BinnedColor);
  if (!same)
  {
    const std::size_t bins = static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]);
    std::vector<unsigned> counts(bins, 0);
    std::vector<double> sums(colored ? bins * 3 : 0, 0.0);
    const vtkIdType n = this->Points->GetNumberOfPoints();
    const double toBinX = size[0] / (area[1] - area[0]);
    const double toBinY = size[1] / (area[3] - area[2]);
    const auto binOf = [&](double x, double y, std::size_t& bin)
    {
      const double bx = std::floor((x - area[0]) * toBinX);
      const double by = std::floor((y - area[2]) * toBinY);
      // Points outside the axes' range, and non-finite ones, fall outside every bin.
      if (!(bx >= 0 && bx < size[0] && by >= 0 && by < size[1]))
        return false;
      bin = static_cast<std::size_t>(by) * static_cast<std::size_t>(size[0]) +
            static_cast<std::size_t>(bx);
      return true;
    };
    // The plot keeps its points as floats: read them in place rather than one virtual call each.
    auto* floats = vtkFloatArray::SafeDownCast(this->Points->GetData());
    const float* xy = floats ? floats->GetPointer(0) : nullptr;
    const vtkIdType components = floats ? floats->GetNumberOfComponents() : 0;
    const unsigned char* rgba = colored ? this->Colors->GetPointer(0) : nullptr;
    const int stride = colored ? this->Colors->GetNumberOfComponents() : 0;
    for (vtkIdType i = 0; i < n; ++i)
    {
      double p[3] = { 0, 0, 0 };
      if (xy)
      {
        p[0] = xy[components * i];
        p[1] = xy[components * i + 1];
      }
      else
        this->Points->GetPoint(i, p);
      std::size_t bin = 0;
      if (!binOf(p[0], p[1], bin))
        continue;
      ++counts[bin];
      if (rgba)
      {
        const unsigned char* colour = rgba + i * stride;
        for (std::size_t c = 0; c < 3; ++c)
          sums[bin * 3 + c] += colour[c];
      }
    }
    const unsigned most = std::max(1u, *std::max_element(counts.begin(), counts.end()));
    this->Density->SetDimensions(size[0], size[1], 1);
    this->Density->AllocateScalars(VTK_UNSIGNED_CHAR, 4);
    auto* pixels = static_cast<unsigned char*>(this->Density->GetScalarPointer());
    for (std::size_t bin = 0; bin < bins; ++bin)
    {
      unsigned char* pixel = pixels + bin * 4;
      const unsigned count = counts[bin];
      if (count == 0)
      {
        std::fill(pixel, pixel + 4, 0);
        continue;
      }
      for (std::size_t c = 0; c < 3; ++c)
        pixel[c] =
          colored ? static_cast<unsigned char>(std::lround(sums[bin * 3 + c] / count)) : plain[c];
      // A lone point stays visible; the densest bin is opaque.
      const double weight = std::log1p(count) / std::log1p(most);
      pixel[3] = static_cast<unsigned char>(96 + 159 * weight);
    }
    this->Density->Modified();
    this->BinnedPointsTime = this->Points->GetMTime();
    this->BinnedColorsTime = colorsTime;
    std::copy(area, area + 4, this->BinnedArea);
    std::copy(size, size + 2, this->BinnedSize);
    std::copy(plain, plain + 4, this->BinnedColor);
  }
  painter->DrawImage(vtkRectf(static_cast<float>(area[0]),
                              static_cast<float>(area[2]),
                              static_cast<float>(area[1] - area[0]),
                              static_cast<float>(area[3] - area[2])),
                     this->Density);
  return true;
}

vtkStdString vtkDensityPlotPoints::GetTooltipLabel(const vtkVector2d& plotPos,
                                                   vtkIdType seriesIndex,
                                                   vtkIdType segmentIndex)
{
  vtkTable* table = this->GetInput();
  if (!table || table->GetNumberOfColumns() == 0 || seriesIndex < 0 ||
      seriesIndex >= table->GetNumberOfRows())
  {
    return this->Superclass::GetTooltipLabel(plotPos, seriesIndex, segmentIndex);
  }
  // Case ids travel as doubles in the plotted table; exact up to 2^53.
  const auto id = static_cast<unsigned long long>(table->GetValue(seriesIndex, 0).ToDouble());
  std::ostringstream label;
  label << "case " << id << "\n"
        << (this->XAxis ? this->XAxis->GetTitle() : std::string("x")) << " "
        << vtkVariant(plotPos.GetX()).ToString() << ", "
        << (this->YAxis ? this->YAxis->GetTitle() : std::string("y")) << " "
        << vtkVariant(plotPos.GetY()).ToString();
  return label.str();
}

} // namespace explorer
