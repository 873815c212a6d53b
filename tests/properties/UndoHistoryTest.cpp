#include "analyzer_common/UndoStack.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "properties/ValueRangeValidator.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <random>
#include <tuple>

TEST(UndoHistory, ThousandsOfRandomEditsUndoBackToTheFirstState)
{
  UndoStack stack;
  stack.clear();
  using Bounded = plexa::BoundedValueValidator<short>;
  auto count = boost::make_shared<plexa::UndoablePropertyProxy<short>>(
    "Number of Labels",
    boost::make_shared<plexa::Property<short>>(
      short(15),
      boost::make_shared<Bounded>(short(3), Bounded::Inclusive, short(40), Bounded::Inclusive)));
  auto range = boost::make_shared<plexa::UndoablePropertyProxy<ValueRange_s<double>>>(
    "Range",
    boost::make_shared<plexa::Property<ValueRange_s<double>>>(
      ValueRange_s<double>{ 0, 1 }, boost::make_shared<plexa::ValueRangeValidator<double>>()));
  auto zoom = boost::make_shared<plexa::UndoablePropertyProxy<unsigned long long>>(
    "Zoom", boost::make_shared<plexa::Property<unsigned long long>>(25ULL));
  zoom->setMergeId(stack.nextUndoID());
  auto show = boost::make_shared<plexa::UndoablePropertyProxy<bool>>(
    "Show", boost::make_shared<plexa::Property<bool>>(false));
  const auto state = [&]
  {
    return std::make_tuple(
      count->value(), range->value().min, range->value().max, zoom->value(), show->value());
  };
  const auto first = state();

  std::mt19937 random(2026);
  int refused = 0;
  for (int step = 0; step < 5000; ++step)
  {
    switch (random() % 7)
    {
      case 0:
        try
        {
          count->setValue(static_cast<short>(static_cast<int>(random() % 60) - 10));
        }
        catch (const plexa::InvalidPropertyValueException&)
        {
          ++refused;
        }
        break;
      case 1:
        try
        {
          range->setValue(
            { static_cast<double>(random() % 20), static_cast<double>(random() % 20) });
        }
        catch (const plexa::InvalidPropertyValueException&)
        {
          ++refused;
        }
        break;
      case 2:
        zoom->setValue(random() % 200);
        break;
      case 3:
        show->setValue(!show->value());
        break;
      case 4:
      case 5:
        stack.undo();
        break;
      default:
        stack.redo();
        break;
    }
  }
  EXPECT_GT(refused, 0) << "the sequence tries refused values too";
  while (stack.canUndo())
    stack.undo();
  EXPECT_EQ(state(), first);
  stack.clear();
}
