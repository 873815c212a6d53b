#include "properties/Property.h"
#include "properties/BoundedValueValidator.h"
#include "properties/ValueRangeValidator.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace
{

// Keeps its value like Property, but counts the stores and clamps what it stores to 100, as a
// property whose storage adjusts values would.
class ClampingProperty : public plexa::PropertyAbstract<int>
{
public:
  int stores = 0;

protected:
  void storeValue(const int& value) override
  {
    ++stores;
    held = value > 100 ? 100 : value;
  }

private:
  int retrieveValue() const override { return held; }
  int held = 0;
};

} // namespace

TEST(Property, StoresAndSignalsOnlyANewValueAndSignalsTheValueReadBack)
{
  ClampingProperty property;
  std::vector<int> seen;
  boost::signals2::scoped_connection connection =
    property.connectSignalValueChanged([&seen](const int& v) { seen.push_back(v); });
  property.setValue(5);
  property.setValue(5);
  static_cast<plexa::PropertyAbstract<int>&>(property) = 5;
  EXPECT_EQ(property.stores, 1) << "the current value is neither stored again nor signalled";
  property.setValue(250);
  EXPECT_EQ(property.value(), 100);
  EXPECT_EQ(seen, (std::vector<int>{ 5, 100 })) << "the value read back, not the argument 250";
}

TEST(Property, InvalidValuesAreRefusedWithTheValidatorsMessageAndChangeNothing)
{
  auto validator = boost::make_shared<plexa::BoundedValueValidator<short>>(
    short(3),
    plexa::BoundedValueValidator<short>::Inclusive,
    short(40),
    plexa::BoundedValueValidator<short>::Inclusive);
  plexa::Property<short> labels(15, validator);
  int signals = 0;
  boost::signals2::scoped_connection connection =
    labels.connectSignalValueChanged([&](const short&) { ++signals; });
  try
  {
    labels.setValue(2);
    FAIL() << "2 was accepted";
  }
  catch (const plexa::InvalidPropertyValueException& e)
  {
    EXPECT_STREQ(e.what(),
                 "The value must be greater than or equal to 3 and less than or equal to 40");
  }
  EXPECT_THROW(labels = short(41), plexa::InvalidPropertyValueException);
  EXPECT_EQ(labels.value(), 15);
  EXPECT_EQ(signals, 0);
  EXPECT_EQ(labels.validator(), validator);

  EXPECT_THROW(plexa::Property<short>(2, validator), plexa::InvalidPropertyValueException)
    << "an invalid initial value makes the constructor throw";
  EXPECT_THROW((plexa::Property<ValueRange_s<double>>(
                 { 2.0, 1.0 }, boost::make_shared<plexa::ValueRangeValidator<double>>())),
               plexa::InvalidPropertyValueException);
}

TEST(Property, CopyAssignmentCopiesTheValueOnlyAndSignalsOnlyOnADifference)
{
  auto validator = boost::make_shared<plexa::ValueRangeValidator<double>>();
  plexa::Property<ValueRange_s<double>> target({ 0.0, 1.0 }, validator);
  plexa::Property<ValueRange_s<double>> same({ 0.0, 1.0 });
  plexa::Property<ValueRange_s<double>> other({ 2.0, 3.0 });
  int signals = 0;
  boost::signals2::scoped_connection connection =
    target.connectSignalValueChanged([&](const ValueRange_s<double>&) { ++signals; });
  target = same;
  EXPECT_EQ(signals, 0);
  target = other;
  EXPECT_EQ(signals, 1);
  EXPECT_EQ(target.value(), (ValueRange_s<double>{ 2.0, 3.0 }));
  EXPECT_EQ(target.validator(), validator) << "the target keeps its validator";
}

TEST(Property, ListenerExceptionsLeaveSetValueAfterTheValueIsStored)
{
  plexa::Property<int> property(0);
  boost::signals2::scoped_connection connection = property.connectSignalValueChanged(
    [](const int&) { throw std::runtime_error("listener failed"); });
  EXPECT_THROW(property.setValue(7), std::runtime_error);
  EXPECT_EQ(property.value(), 7);
}
