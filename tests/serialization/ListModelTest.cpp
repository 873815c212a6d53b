#include "serialization/StringListModel.h"

#include <gtest/gtest.h>

#include <stdexcept>

TEST(StandardListModel, EntriesPairDisplayAndDataStringsAndFindSearchesTheData)
{
  StandardListModel<std::string> model;
  int modelChanges = 0;
  boost::signals2::scoped_connection connection =
    model.connectSignalModelChanged([&] { ++modelChanges; });
  EXPECT_EQ(model.find("x"), std::make_pair(false, 0ULL));

  model.push_back("Launch angle", "angle");
  model.push_back("Speed", "speed");
  model.push_back("Angle again", "angle");
  EXPECT_EQ(modelChanges, 3);
  EXPECT_EQ(model.size(), 3u);
  EXPECT_EQ(model.data(1), "speed");
  EXPECT_EQ(model.displayString(1), "Speed");
  EXPECT_EQ(model.find("angle"), std::make_pair(true, 0ULL)) << "the first equal entry";
  EXPECT_EQ(model.find("Speed"), std::make_pair(false, 0ULL)) << "display strings are not searched";

  model.setDisplayName(1, "Initial speed");
  EXPECT_EQ(model.displayString(1), "Initial speed");
  EXPECT_EQ(modelChanges, 3) << "renaming an entry tells nobody";

  model.clear();
  EXPECT_EQ(model.size(), 0u);
  EXPECT_EQ(modelChanges, 4);
}

TEST(StandardListModel, IndexesPastTheEndThrowOutOfRange)
{
  StringListModel model({ "a" });
  for (auto read :
       { &ListModelInterface<std::string>::data, &ListModelInterface<std::string>::displayString })
  {
    try
    {
      (model.*read)(model.size());
      ADD_FAILURE() << "no exception";
    }
    catch (const std::out_of_range& e)
    {
      EXPECT_STREQ(e.what(), "invalid vector subscript");
    }
  }
  EXPECT_THROW(model.setDisplayName(5, "x"), std::out_of_range);
}
