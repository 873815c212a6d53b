#include "views/scatter/LegendPlace.h"

#include <vtkChart.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkScalarBarWidget.h>
#include <vtkTextActor.h>

#include <algorithm>

namespace explorer
{

LegendPlace::LegendPlace(vtkSmartPointer<vtkChart> chart,
                         vtkSmartPointer<vtkScalarBarWidget> legend,
                         vtkSmartPointer<vtkTextActor> note)
  : chart(std::move(chart))
  , legend(std::move(legend))
  , note(std::move(note))
{
}

void LegendPlace::layOut(const int size[2], bool shown) const
{
  if (size[0] <= 0 || size[1] <= 0)
    return;
  const float width = shown && !placedByUser ? margin : 0.0f;
  const vtkRectf area(
    0, 0, std::max(1.0f, static_cast<float>(size[0]) - width), static_cast<float>(size[1]));
  if (chart->GetSize() != area)
    chart->SetSize(area);
  auto* representation = vtkScalarBarRepresentation::SafeDownCast(legend->GetRepresentation());
  if (!representation)
    return;
  if (placedByUser)
  {
    note->SetPosition(corners[0] * size[0], std::max(0.0, corners[1] * size[1] - 34));
    representation->SetPosition(corners[0], corners[1]);
    representation->SetPosition2(corners[2], corners[3]);
    return;
  }
  const auto w = static_cast<double>(size[0]);
  const auto h = static_cast<double>(size[1]);
  note->SetPosition(w - margin + 8, 6);
  representation->SetPosition((w - margin + 8) / w, 50.0 / h);
  representation->SetPosition2((margin - 16) / w, std::max(0.1, 1.0 - 80.0 / h));
}

void LegendPlace::moved()
{
  auto* representation = vtkScalarBarRepresentation::SafeDownCast(legend->GetRepresentation());
  if (!representation)
    return;
  placedByUser = true;
  std::copy(representation->GetPosition(), representation->GetPosition() + 2, corners);
  std::copy(representation->GetPosition2(), representation->GetPosition2() + 2, corners + 2);
}

bool LegendPlace::placement(double placement[4]) const
{
  std::copy(corners, corners + 4, placement);
  return placedByUser;
}

void LegendPlace::place(const double* placement)
{
  placedByUser = placement != nullptr;
  if (placement)
    std::copy(placement, placement + 4, corners);
}

} // namespace explorer
