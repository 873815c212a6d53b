#include "charts/ChartXY.h"

#include "serialize/Serializer.h"

#include <vtkChartLegend.h>
#include <vtkContext2D.h>
#include <vtkContextMouseEvent.h>
#include <vtkObjectFactory.h>
#include <vtkVector.h>

#include <cmath>

namespace
{

constexpr float clickThreshold = 0.5f;
constexpr float clickBoxHalfSize = 5.0f;
constexpr float clickBoxSide = 10.0f;

} // namespace

vtkStandardNewMacro(ChartXY);

ChartXY::ChartXY()
{
  // The base chart paints its own legend already; it is registered, not added as a child.
  this->registerLegend(this->GetLegend());
}

ChartXY::~ChartXY() = default;

void ChartXY::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "Legends: " << this->Legends.size() << "\n";
}

void ChartXY::addLegend(const vtkSmartPointer<vtkChartLegend>& legend)
{
  this->registerLegend(legend);
  this->AddItem(legend);
}

void ChartXY::registerLegend(const vtkSmartPointer<vtkChartLegend>& legend)
{
  legend->SetHorizontalAlignment(vtkChartLegend::CUSTOM);
  legend->SetVerticalAlignment(vtkChartLegend::CUSTOM);
  legend->SetPoint(unplacedLegendCoordinate, unplacedLegendCoordinate);
  LegendAndItsDimensions entry;
  entry.legend = legend;
  this->Legends.push_back(entry);
}

bool ChartXY::Paint(vtkContext2D* painter)
{
  this->Painter = painter;
  return this->Superclass::Paint(painter);
}

void ChartXY::Update()
{
  for (auto& entry : this->Legends)
  {
    entry.legend->Modified();
  }
  this->Superclass::Update();
}

void ChartXY::SetLegendPosition(const vtkRectf&)
{
  // Positions being restored from saved settings must not be overwritten.
  if (Serializer::isInMiddleOfDeserialization)
  {
    return;
  }
  const vtkRectf size = this->GetSize();
  const auto border = static_cast<float>(this->GetHiddenAxisBorder());
  for (auto& entry : this->Legends)
  {
    vtkChartLegend& legend = *entry.legend;
    if (!legend.GetVisible())
    {
      continue;
    }
    vtkRectf rect = legend.GetBoundingRect(this->Painter);
    if (!entry.isPositioned)
    {
      entry.isPositioned = true;
      const float* point = legend.GetPoint();
      if (point[0] == unplacedLegendCoordinate && point[1] == unplacedLegendCoordinate)
      {
        const float edge = this->findNextAvaialableLegendRightEdge();
        entry.rightEdge = edge;
        // B above the top on purpose: the clamp of the next pass brings the top down to
        // height - B.
        legend.SetPoint(edge - rect.GetWidth(), size.GetHeight() - rect.GetHeight() + border);
        entry.isAutoPlaced = true;
      }
    }
    else
    {
      this->anchorTopRightCornerWhenLegendIsResized(legend, entry.dimensions, rect);
      this->ensureLegendIsWithinChartViewport(legend, rect);
      this->detectIfLegendWasMoved(entry);
    }
    entry.dimensions = { rect.GetWidth(), rect.GetHeight() };
  }
}

float ChartXY::findNextAvaialableLegendRightEdge()
{
  float edge = this->GetSize().GetWidth();
  for (const auto& entry : this->Legends)
  {
    if (!entry.isAutoPlaced)
    {
      continue;
    }
    const float candidate =
      entry.rightEdge - entry.legend->GetBoundingRect(this->Painter).GetWidth();
    if (candidate < edge)
    {
      edge = candidate;
    }
  }
  return edge - static_cast<float>(this->GetHiddenAxisBorder());
}

void ChartXY::anchorTopRightCornerWhenLegendIsResized(vtkChartLegend& legend,
                                                      const std::pair<float, float>& oldDimensions,
                                                      vtkRectf& rect)
{
  if (rect.GetWidth() == oldDimensions.first && rect.GetHeight() == oldDimensions.second)
  {
    return;
  }
  const float* point = legend.GetPoint();
  legend.SetPoint(point[0] + oldDimensions.first - rect.GetWidth(),
                  point[1] + oldDimensions.second - rect.GetHeight());
  rect.SetX(legend.GetPoint()[0]);
  rect.SetY(legend.GetPoint()[1]);
}

void ChartXY::ensureLegendIsWithinChartViewport(vtkChartLegend& legend, const vtkRectf& rect)
{
  const vtkRectf size = this->GetSize();
  const auto border = static_cast<float>(this->GetHiddenAxisBorder());
  vtkVector2f point(rect.GetX(), rect.GetY());
  // Each test looks at the rectangle, not at the point an earlier test moved: when a legend is
  // wider than the room, the right-edge rule wins. Vertically only the top is kept B above the
  // bottom, so a legend may hang below the viewport.
  if (border > rect.GetX())
  {
    point.SetX(border);
  }
  if (rect.GetX() + rect.GetWidth() > size.GetWidth() - border)
  {
    point.SetX(size.GetWidth() - rect.GetWidth() - border);
  }
  if (border > rect.GetY() + rect.GetHeight())
  {
    point.SetY(border - rect.GetHeight());
  }
  if (rect.GetY() + rect.GetHeight() > size.GetHeight() - border)
  {
    point.SetY(size.GetHeight() - border - rect.GetHeight());
  }
  legend.SetPoint(point);
}

void ChartXY::detectIfLegendWasMoved(LegendAndItsDimensions& entry)
{
  const vtkRectf rect = entry.legend->GetBoundingRect(this->Painter);
  // Exact comparison: any horizontal move, by the user or by the clamp, frees the legend for
  // good. A NaN compares unequal and frees it too.
  if (entry.isAutoPlaced && rect.GetWidth() + entry.legend->GetPoint()[0] != entry.rightEdge)
  {
    entry.isAutoPlaced = false;
  }
}

bool ChartXY::MouseButtonReleaseEvent(const vtkContextMouseEvent& mouse)
{
  vtkContextMouseEvent event = mouse;
  if (std::fabs(this->MouseBox.GetWidth()) < clickThreshold ||
      std::fabs(this->MouseBox.GetHeight()) < clickThreshold)
  {
    const float x = this->MouseBox.GetX();
    const float y = this->MouseBox.GetY();
    this->MouseBox.Set(x - clickBoxHalfSize, y + clickBoxHalfSize, clickBoxSide, -clickBoxSide);
    event.SetPos(vtkVector2f(x + clickBoxHalfSize, y - clickBoxHalfSize));
  }
  return this->Superclass::MouseButtonReleaseEvent(event);
}
