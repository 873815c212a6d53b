#include "colorlegend/NiceLabelsColorLegendActor.h"

#include <vtkCoordinate.h>
#include <vtkObjectFactory.h>
#include <vtkScalarBarActorInternal.h>
#include <vtkScalarsToColors.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <cmath>
#include <cstdio>

vtkStandardNewMacro(NiceLabelsColorLegendActor);

NiceLabelsColorLegendActor::NiceLabelsColorLegendActor() = default;

NiceLabelsColorLegendActor::~NiceLabelsColorLegendActor() = default;

void NiceLabelsColorLegendActor::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
}

double NiceLabelsColorLegendActor::labelValue(int i, int n, double min, double max, bool logScale)
{
  const double fraction = n > 1 ? static_cast<double>(i) / (n - 1) : 0.5;
  double value = 0.0;
  if (logScale)
  {
    const double low = std::log10(min);
    value = std::pow(10.0, low + fraction * (std::log10(max) - low));
  }
  else
  {
    value = min + fraction * (max - min);
  }
  // A label that should read zero must not show an arithmetic residue in exponent form. The
  // interval is the linear one, also on a log table.
  const double interval = n > 1 ? (max - min) / (n - 1) : 0.0;
  if (std::fabs(value) < 1e-5 && interval > 0 && std::fabs(value) / interval < 1e-5)
  {
    value = 0.0;
  }
  return value;
}

// The layout is vtkScalarBarActor's own (VTK 9.1) with the label values, the zero snapping and
// the vertical padding rule of this class.
void NiceLabelsColorLegendActor::LayoutTicks()
{
  if (this->LookupTable->GetIndexedLookup())
  {
    this->NumberOfLabelsBuilt = 0;
    return;
  }

  const double* range = this->LookupTable->GetRange();
  const bool isLogTable = this->LookupTable->UsingLogScale() != 0;
  const int n = this->NumberOfLabels;
  this->P->TextActors.resize(n);
  this->P->TextActorAnchors.resize(n);

  for (int i = 0; i < n; ++i)
  {
    this->P->TextActors[i].TakeReference(vtkTextActor::New());
    this->P->TextActorAnchors[i] = n > 1 ? static_cast<double>(i) / (n - 1) : 0.5;
    const double value = labelValue(i, n, range[0], range[1], isLogTable);
    char text[512];
    std::snprintf(text, 511, this->LabelFormat, value);
    this->P->TextActors[i]->SetInput(text);
    this->P->TextActors[i]->GetTextProperty()->ShallowCopy(this->LabelTextProperty);
    this->P->TextActors[i]->SetProperty(this->GetProperty());
    this->P->TextActors[i]->GetPositionCoordinate()->SetReferenceCoordinate(
      this->PositionCoordinate);
  }

  if (n > 0)
  {
    int labelSize[2] = { 0, 0 };
    int targetWidth = 0;
    int targetHeight = 0;
    this->P->TickBox.Posn = this->P->ScalarBarBox.Posn;
    if (this->Orientation == VTK_ORIENT_VERTICAL)
    {
      // Few labels get more room around them; many labels need all the height there is.
      const int pad = n <= 17 ? this->TextPad + 2 : this->TextPad;
      this->P->TickBox.Size[0] = this->P->Frame.Size[0] - this->P->ScalarBarBox.Size[0] - pad * 3;
      this->P->TickBox.Size[1] = this->P->Frame.Size[1] - this->P->TitleBox.Size[1] - 3 * pad -
                                 this->VerticalTitleSeparation;
      if (this->DrawNanAnnotation)
      {
        this->P->TickBox.Size[1] = static_cast<int>(this->P->TickBox.Size[1] -
                                                    (this->P->NanBox.Size[1] + this->P->SwatchPad));
      }
      if (this->DrawBelowRangeSwatch)
      {
        this->P->TickBox.Size[1] = static_cast<int>(
          this->P->TickBox.Size[1] - (this->P->BelowRangeSwatchBox.Size[1] + this->P->SwatchPad));
      }
      if (this->DrawAboveRangeSwatch)
      {
        this->P->TickBox.Size[1] = static_cast<int>(
          this->P->TickBox.Size[1] - (this->P->AboveRangeSwatchBox.Size[1] + this->P->SwatchPad));
      }
      if (this->TextPosition == vtkScalarBarActor::PrecedeScalarBar)
      {
        this->P->TickBox.Posn[0] = pad;
      }
      else
      {
        this->P->TickBox.Posn[0] += this->P->ScalarBarBox.Size[0] + 2 * pad;
      }
      targetWidth = this->P->TickBox.Size[0];
      targetHeight = static_cast<int>((this->P->TickBox.Size[1] - pad * (n - 1)) / n);
    }
    else
    {
      this->P->TickBox.Size[1] = this->P->ScalarBarBox.Size[1];
      this->P->TickBox.Size[0] = this->P->Frame.Size[0] - this->P->ScalarBarBox.Size[0] -
                                 4 * this->TextPad - this->P->TitleBox.Size[0];
      if (this->TextPosition == vtkScalarBarActor::PrecedeScalarBar)
      {
        this->P->TickBox.Posn[1] =
          this->P->TitleBox.Size[0] + 2 * this->TextPad + this->P->TitleBox.Posn[1];
      }
      else
      {
        this->P->TickBox.Posn[1] += this->P->ScalarBarBox.Size[0];
      }
      targetWidth = static_cast<int>((this->P->TickBox.Size[1] - this->TextPad * (n - 1)) / n);
      targetHeight = this->P->TickBox.Size[0];
    }

    if (!this->UnconstrainedFontSize)
    {
      vtkTextActor::SetMultipleConstrainedFontSize(this->P->Viewport,
                                                   targetWidth,
                                                   targetHeight,
                                                   this->P->TextActors.PointerArray(),
                                                   n,
                                                   labelSize);
    }

    // The first and last labels are centred on the ends of the bar.
    // VTK keeps boxes in whole pixels: the sum is truncated, as the compound assignment did.
    this->P->ScalarBarBox.Posn[this->P->TL[1]] =
      static_cast<int>(this->P->ScalarBarBox.Posn[this->P->TL[1]] + labelSize[this->P->TL[1]] / 2.);
    this->P->ScalarBarBox.Size[1] -= labelSize[this->P->TL[1]];
    this->P->TickBox.Posn[this->P->TL[1]] =
      static_cast<int>(this->P->TickBox.Posn[this->P->TL[1]] + (labelSize[this->P->TL[1]] / 2.));
    this->P->TickBox.Size[1] -= labelSize[this->P->TL[1]];

    if (this->Orientation == VTK_ORIENT_HORIZONTAL)
    {
      this->P->ScalarBarBox.Posn[0] =
        static_cast<int>(this->P->ScalarBarBox.Posn[0] + this->P->BelowRangeSwatchSize);
      this->P->TickBox.Posn[0] =
        static_cast<int>(this->P->TickBox.Posn[0] + this->P->BelowRangeSwatchSize);
      this->P->TickBox.Posn[1] += this->TextPad * (this->TextPosition == PrecedeScalarBar ? -1 : 1);
      this->P->TickBox.Size[1] -= this->TextPad;
    }
  }
  this->NumberOfLabelsBuilt = n;
}
