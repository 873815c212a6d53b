#pragma once

#include "common_vtk/vtkPxCommandProxy.h"
#include "properties/PropertyAbstract.h"

#include <vtkCommand.h>
#include <vtkObject.h>
#include <vtkSmartPointer.h>

#include <limits>

/// A property whose value lives in a VTK object, kept in step both ways: setting the property
/// writes the object (storeValueInVTK), and any other modification of the object is reported as
/// a change of the property, without validation (vtkObjectModified).
///
/// The property remembers the value it last stored or saw (cachedValue) and compares new values
/// with it rather than reading the object again, so setting the remembered value does nothing
/// even if the object was changed behind its back without a modified event.
template<typename T>
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT VTKPropertyAbstract : public plexa::PropertyAbstract<T>
{
public:
  VTKPropertyAbstract(vtkSmartPointer<vtkObject> object,
                      boost::shared_ptr<plexa::ValidatorInterface<T>> validator)
    : plexa::PropertyAbstract<T>(std::move(validator))
    , object(std::move(object))
  {
    observe();
  }

  explicit VTKPropertyAbstract(vtkSmartPointer<vtkObject> object)
    : object(std::move(object))
  {
    observe();
  }

  ~VTKPropertyAbstract() override { object->RemoveObserver(modifiedObserver); }

  /// A modification of the object from outside: a value other than the remembered one becomes
  /// the property's value and is signalled. NaN differs from everything, itself included.
  void vtkObjectModified()
  {
    const T current = this->value();
    if (current != cachedValue)
    {
      cachedValue = current;
      this->emitValueChangedSignal(current);
    }
  }

protected:
  /// Remembers what the object holds now, without signalling; for subclasses to call once their
  /// construction is complete (the object cannot be read before).
  void rememberObjectValue() { cachedValue = this->value(); }

  vtkSmartPointer<vtkObject> object;

private:
  void observe()
  {
    modifiedObserver = vtkPxCommandProxy::New([this] { vtkObjectModified(); });
    object->AddObserver(vtkCommand::ModifiedEvent, modifiedObserver, 0.0);
  }

  /// The object's own modified events caused by the write are not seen.
  void storeValue(const T& value) override
  {
    object->RemoveObserver(modifiedObserver);
    storeValueInVTK(value);
    object->AddObserver(vtkCommand::ModifiedEvent, modifiedObserver, 0.0);
    cachedValue = value;
  }

  bool isEqual(const T& value) const override { return value == cachedValue; }

  /// Writes the value into the VTK object.
  virtual void storeValueInVTK(const T& value) = 0;

  vtkSmartPointer<vtkPxCommandProxy> modifiedObserver;
  // Until a subclass remembers the object's value, nothing compares equal to it.
  T cachedValue = std::numeric_limits<T>::quiet_NaN();
};
