#include "analyzer_common/SelectionModel.h"

#include <gtest/gtest.h>

#include <vector>

TEST(SelectionModel, SignalsTheNewSetOnlyWhenTheSelectionChanges)
{
  SelectionModel model;
  std::vector<SelectionModel::Selection> heard;
  auto connection = model.connectSignalSelectionChanged([&](const SelectionModel::Selection& s)
                                                        { heard.push_back(s); });

  const SelectionModel::Selection ids = { 3, 1ULL << 31, 1ULL << 32, 18446744073709551615ULL };
  model.setSelection(ids);
  model.setSelection(ids);
  model.setSelection({});
  model.setSelection({});

  ASSERT_EQ(heard.size(), 2u);
  EXPECT_EQ(heard[0], ids);
  EXPECT_TRUE(heard[1].empty());
  EXPECT_TRUE(model.getSelections().empty());
}
