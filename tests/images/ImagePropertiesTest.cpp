#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "images/ImageMatrixViewProperties.h"
#include "properties/PropertyAbstract.h"
#include "support/SmallStudy.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

class ImageProperties : public ::testing::Test
{
protected:
  void SetUp() override
  {
    Project::setProject(study.project);
    UndoStack().clear();
  }
  void TearDown() override
  {
    Project::setProject(nullptr);
    UndoStack().clear();
  }

  testsupport::SmallStudy study;
  UndoStack stack;
};

} // namespace

TEST(zoomLevelToImageSize, SevenAndAHalfPixelsPerLevelTruncated)
{
  const struct
  {
    unsigned long long level;
    int side;
  } cases[] = {
    { 0, 50 },
    { 1, 57 },
    { 10, 125 },
    { 25, 237 },
    { 50, 425 },
    { 100, 800 },
    { 200, 1550 },
    { std::numeric_limits<unsigned long long>::max(), std::numeric_limits<int>::max() }
  };
  for (const auto& c : cases)
  {
    EXPECT_EQ(zoomLevelToImageSize(c.level), QSize(c.side, c.side)) << c.level;
  }
}

TEST_F(ImageProperties, AllTagsToShowFollowsTheGroupsAndTheTags)
{
  ImageViewProperties properties;
  properties.tagsToShow()->setValue({ "final", "plot:speed" });
  EXPECT_EQ(properties.allTagsToShow()->value(),
            (std::vector<std::string>{ "plot:speed", "plot:trajectory", "final" }));
  properties.tagGroupsToShow()->setValue({});
  EXPECT_EQ(properties.allTagsToShow()->value(),
            (std::vector<std::string>{ "final", "plot:speed" }));
  properties.tagGroupsToShow()->setValue(
    { study.project->tagGroup("plot"), study.project->tagGroup("plot") });
  EXPECT_EQ(properties.tagGroupsToShow()->value().size(), 1u) << "a group is kept once";

  properties.suspend();
  properties.tagsToShow()->setValue({});
  EXPECT_EQ(properties.allTagsToShow()->value().size(), 3u) << "frozen while suspended";
  properties.resume();
  properties.tagsToShow()->setValue({ "final" });
  EXPECT_EQ(properties.allTagsToShow()->value(),
            (std::vector<std::string>{ "plot:speed", "plot:trajectory", "final" }));
}

TEST_F(ImageProperties, TheMatrixStartsOnTheDiscreteVariablesWithoutPages)
{
  ImageMatrixViewProperties properties;
  EXPECT_EQ(properties.columnVar()->value(), study.project->variable("angle"));
  EXPECT_EQ(properties.rowVar()->value(), study.project->variable("speed"));
  EXPECT_TRUE(properties.pageVar()->value().lock().isNull()) << "only two discrete variables";
  EXPECT_EQ(properties.dimensionRowsBy()->value(), ImageMatrixViewProperties::ByVariable);
  EXPECT_EQ(properties.dimensionColumnsBy()->value(), ImageMatrixViewProperties::ByVariable);
  EXPECT_EQ(properties.dimensionPagesBy()->value(), ImageMatrixViewProperties::NoPages);
  EXPECT_TRUE(properties.pageValue()->value().isEmpty());

  int heard = 0;
  boost::signals2::scoped_connection connection =
    properties.dimensionRowsBy()->connectSignalValueChanged(
      [&](const ImageMatrixViewProperties::RowColumnDimensionBy& mode)
      { heard += mode == ImageMatrixViewProperties::ByVariable ? 1 : 0; });
  properties.dimensionRowsBy()->setValue(ImageMatrixViewProperties::ByTag);
  ASSERT_EQ(stack.count(), 1);
  EXPECT_EQ(stack.text(0), "Change Dimension Rows By");
  stack.undo();
  EXPECT_EQ(properties.dimensionRowsBy()->value(), ImageMatrixViewProperties::ByVariable);
  EXPECT_GE(heard, 1) << "listeners hear the restored mode";
}
