#include "common_vtk/vtkPxCommandProxy.h"

#include <vtkObjectFactory.h>

vtkStandardNewMacro(vtkPxCommandProxy);

vtkSmartPointer<vtkPxCommandProxy> vtkPxCommandProxy::New(Callback callback)
{
  auto proxy = vtkSmartPointer<vtkPxCommandProxy>::Take(New());
  proxy->SetCallback(std::move(callback));
  return proxy;
}

vtkPxCommandProxy::vtkPxCommandProxy() = default;

vtkPxCommandProxy::~vtkPxCommandProxy() = default;

void vtkPxCommandProxy::SetCallback(Callback newCallback)
{
  this->callback = std::move(newCallback);
}

void vtkPxCommandProxy::Execute(vtkObject*, unsigned long, void*)
{
  if (this->callback)
  {
    this->callback();
  }
}
