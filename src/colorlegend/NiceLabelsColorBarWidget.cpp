#include "colorlegend/NiceLabelsColorBarWidget.h"

#include "colorlegend/NiceLabelsColorLegendActor.h"

#include <vtkObjectFactory.h>
#include <vtkSmartPointer.h>

vtkStandardNewMacro(NiceLabelsColorBarWidget);

NiceLabelsColorBarWidget::NiceLabelsColorBarWidget()
{
  auto actor = vtkSmartPointer<NiceLabelsColorLegendActor>::New();
  actor->SetVerticalTitleSeparation(3);
  this->SetScalarBarActor(actor);
}

NiceLabelsColorBarWidget::~NiceLabelsColorBarWidget() = default;

void NiceLabelsColorBarWidget::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
}
