#pragma once

#include "properties/AllowAnyValueValidator.h"
#include "property/InvalidPropertyValueException.h"
#include "property/PropertyItemInterface.h"
#include "property/ValidatorInterface.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>

#include <memory>

namespace plexa
{

/// An observable, validated setting of type T. Where the value lives is up to the subclass
/// (storeValue / retrieveValue): in a member (Property), in a VTK object, behind another
/// property (UndoablePropertyProxy).
///
/// setValue() is the only way a value changes: it validates (an invalid value throws
/// InvalidPropertyValueException with the validator's message and changes nothing), does
/// nothing when the value equals the current one, stores, then signals the value read back
/// after storing, so that a subclass whose storage adjusts the value reports what it holds.
/// Every typed change also fires the untyped signalPropertyChanged of PropertyItemInterface,
/// when that signal has listeners.
template<typename T>
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT PropertyAbstract : public PropertyItemInterface
{
public:
  using ValueType = T;
  using ValueChangedSignal = boost::signals2::signal<void(const T&)>;
  using Validator = ValidatorInterface<T>;

  /// A property accepting every value.
  PropertyAbstract()
    : PropertyAbstract(boost::make_shared<AllowAnyValueValidator<T>>())
  {
  }

  explicit PropertyAbstract(boost::shared_ptr<const Validator> validator)
    : propertyValidator(std::move(validator))
    , signalValueChanged(std::make_unique<ValueChangedSignal>())
  {
    if (!propertyValidator)
    {
      propertyValidator = boost::make_shared<AllowAnyValueValidator<T>>();
    }
    signalValueChanged->connect([this](const T&) { callBaseClassSignalIfThereAreListeners(); });
  }

  ~PropertyAbstract() override = default;

  void setValue(const T& value)
  {
    validate(value);
    if (isEqual(value))
    {
      return;
    }
    storeValue(value);
    emitValueChangedSignal(retrieveValue());
  }

  T value() const { return retrieveValue(); }
  operator T() const { return retrieveValue(); }
  void operator=(const T& value) { setValue(value); }

  /// Copies the value only; the validator and the listeners of this property stay.
  PropertyAbstract& operator=(const PropertyAbstract& other)
  {
    setValue(other.retrieveValue());
    return *this;
  }

  boost::shared_ptr<const Validator> validator() const { return propertyValidator; }

  /// Fires signalPropertyChanged, but only when it has listeners.
  void callBaseClassSignalIfThereAreListeners() const
  {
    if (signalPropertyChangedHasListeners())
    {
      emitSignalPropertyChanged();
    }
  }

  /// Connects a listener to signalValueChanged, which carries the new value.
  boost::signals2::connection connectSignalValueChanged(
    const typename ValueChangedSignal::slot_type& slot) const
  {
    auto connection = signalValueChanged->connect(slot);
    signalValueChangedConnected();
    return connection;
  }

protected:
  /// Writes the value to wherever it lives.
  virtual void storeValue(const T& value) = 0;
  /// True when the value equals the current one (the type's ==).
  virtual bool isEqual(const T& value) const { return value == retrieveValue(); }
  /// Throws InvalidPropertyValueException with the validator's message when it refuses.
  virtual void validate(const T& value) const
  {
    const ValidationResult result = propertyValidator->validate(value);
    if (!result.isValid())
    {
      throw InvalidPropertyValueException(result.errorString());
    }
  }
  /// Fires signalValueChanged with the value.
  virtual void emitValueChangedSignal(const T& value) const { (*signalValueChanged)(value); }

private:
  /// Runs each time a listener connects to signalValueChanged; does nothing here.
  virtual void signalValueChangedConnected() const {}
  /// Reads the current value.
  virtual T retrieveValue() const = 0;

  boost::shared_ptr<const Validator> propertyValidator;
  std::unique_ptr<ValueChangedSignal> signalValueChanged;
};

} // namespace plexa
