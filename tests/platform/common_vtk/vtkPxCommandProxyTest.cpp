#include "common_vtk/vtkPxCommandProxy.h"

#include <gtest/gtest.h>
#include <vtkCommand.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>

TEST(vtkPxCommandProxy, ForwardsTheObservedEventsToItsFunction)
{
  vtkNew<vtkDoubleArray> object;
  int modified = 0;
  auto proxy = vtkPxCommandProxy::New([&] { ++modified; });
  const unsigned long tag = object->AddObserver(vtkCommand::ModifiedEvent, proxy, 0.0);
  object->Modified();
  object->InvokeEvent(vtkCommand::SelectionChangedEvent);
  EXPECT_EQ(modified, 1) << "only the observed event reaches the function";
  object->RemoveObserver(tag);
  object->Modified();
  EXPECT_EQ(modified, 1);

  auto empty = vtkSmartPointer<vtkPxCommandProxy>::New();
  object->AddObserver(vtkCommand::ModifiedEvent, empty, 0.0);
  object->Modified(); // a proxy without a function ignores events
  EXPECT_EQ(modified, 1);
}
