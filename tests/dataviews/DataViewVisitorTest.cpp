#include "dataviews/DataViewVisitorAbstract.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

class LinePlotOnlyVisitor : public DataViewVisitorAbstract
{
public:
  using DataViewVisitorAbstract::visit;
  void visit(boost::shared_ptr<LinePlotInterface>) override { handled.push_back("line plot"); }

  std::vector<std::string> handled;
  int unhandled = 0;

protected:
  void visitAnyViewType() override { ++unhandled; }
};

} // namespace

TEST(DataViewVisitorAbstract, KindsNotHandledFallThroughToVisitAnyViewType)
{
  LinePlotOnlyVisitor visitor;
  DataViewVisitorInterface& dispatcher = visitor;
  dispatcher.visit(boost::shared_ptr<TableViewInterface>());
  dispatcher.visit(boost::shared_ptr<SelectedImageViewInterface>());
  dispatcher.visit(boost::shared_ptr<SelectedCasesViewInterface>());
  dispatcher.visit(boost::shared_ptr<ScatterPlot3DInterface>());
  dispatcher.visit(boost::shared_ptr<ScatterPlot2DInterface>());
  dispatcher.visit(boost::shared_ptr<LinePlotInterface>());
  dispatcher.visit(boost::shared_ptr<ImageMatrixViewInterface>());
  dispatcher.visit(boost::shared_ptr<ImageDiffViewInterface>());
  EXPECT_EQ(visitor.unhandled, 7);
  EXPECT_EQ(visitor.handled, std::vector<std::string>{ "line plot" });
}
