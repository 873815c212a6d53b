#include "property/InvalidPropertyValueException.h"
#include "property/PropertyItemInterface.h"
#include "property/ValidationResult.h"

#include <gtest/gtest.h>

namespace
{

// A property item whose hook counts connections, to see the hook run on every connect.
class CountingItem : public plexa::PropertyItemInterface
{
public:
  void fire() const { emitSignalPropertyChanged(); }
  bool hasListeners() const { return signalPropertyChangedHasListeners(); }
  mutable int hookRuns = 0;

private:
  void signalPropertyChangedConnected() const override { ++hookRuns; }
};

} // namespace

TEST(ValidationResult, StartsValidAndAnErrorMakesItInvalid)
{
  plexa::ValidationResult result;
  EXPECT_TRUE(result.isValid());
  EXPECT_EQ(result.errorString(), "");
  result.setErrorString("Minimum cannot be greater than maximum.");
  EXPECT_FALSE(result.isValid());
  EXPECT_EQ(result.errorString(), "Minimum cannot be greater than maximum.");
}

TEST(InvalidPropertyValueException, CarriesTheMessageAndIsAnExceptionBase)
{
  try
  {
    throw plexa::InvalidPropertyValueException("The value must be greater than 0");
  }
  catch (const plexa::ExceptionBase& e)
  {
    EXPECT_STREQ(e.what(), "The value must be greater than 0");
    return;
  }
  FAIL() << "not caught as plexa::ExceptionBase";
}

TEST(PropertyItemInterface, HookRunsOnEveryConnectAndListenersAreCounted)
{
  CountingItem item;
  EXPECT_FALSE(item.hasListeners());
  int calls = 0;
  auto first = item.connectSignalPropertyChanged([&] { ++calls; });
  auto second = item.connectSignalPropertyChanged([&] { calls += 10; });
  EXPECT_EQ(item.hookRuns, 2);
  EXPECT_TRUE(item.hasListeners());
  item.fire();
  EXPECT_EQ(calls, 11);
  first.disconnect();
  second.disconnect();
  EXPECT_FALSE(item.hasListeners());
}
