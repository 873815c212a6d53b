#pragma once

#include "common_vtk/quen_common_vtk_export.h"

#include <vtkCommand.h>
#include <vtkSmartPointer.h>

#include <functional>

/// A VTK observer that forwards every event it receives to a function, so that objects which are
/// not VTK classes can observe VTK objects:
///   object->AddObserver(vtkCommand::ModifiedEvent, vtkPxCommandProxy::New([this] { ... }));
class QUEN_COMMON_VTK_EXPORT vtkPxCommandProxy : public vtkCommand
{
public:
  using Callback = std::function<void()>;

  vtkTypeMacro(vtkPxCommandProxy, vtkCommand);
  static vtkPxCommandProxy* New();
  /// A proxy calling `callback` on every event.
  static vtkSmartPointer<vtkPxCommandProxy> New(Callback callback);

  void SetCallback(Callback callback);
  void Execute(vtkObject* caller, unsigned long eventId, void* callData) override;

protected:
  vtkPxCommandProxy();
  ~vtkPxCommandProxy() override;

private:
  vtkPxCommandProxy(const vtkPxCommandProxy&) = delete;
  void operator=(const vtkPxCommandProxy&) = delete;

  Callback callback;
};
