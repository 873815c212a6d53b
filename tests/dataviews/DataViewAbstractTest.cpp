#include "dataviews/DataViewAbstract.h"
#include "analyzer_common/SelectionModel.h"
#include "properties/PropertyAbstract.h"
#include "serialize/Serializer.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

namespace
{

// The smallest concrete view: the case under the mouse is whatever the test says.
class ClickableView : public DataViewAbstract
{
public:
  ClickableView(const std::string& name, boost::shared_ptr<SelectionModelInterface> selection)
    : DataViewAbstract(std::make_unique<Serializer>(name), std::move(selection))
  {
  }
  ClickableView(ClickableView& other)
    : DataViewInterface(other)
    , DataViewAbstract(other)
  {
  }
  ClickableView& operator=(ClickableView& other)
  {
    DataViewAbstract::operator=(other);
    caseUnderMouse = other.caseUnderMouse;
    return *this;
  }

  void suspend() override {}
  void resume() override {}
  void refresh() override {}
  using DataViewAbstract::mouseMode;

  std::optional<unsigned long long> caseUnderMouse;

protected:
  bool caseIDAtPoint(unsigned long long& caseID) override
  {
    if (!caseUnderMouse)
      return false;
    caseID = *caseUnderMouse;
    return true;
  }
};

// A view that keeps the default: no case is ever under the mouse.
class PlainView : public DataViewAbstract
{
public:
  explicit PlainView(boost::shared_ptr<SelectionModelInterface> selection)
    : DataViewAbstract(std::make_unique<Serializer>("Plain"), std::move(selection))
  {
  }
  void suspend() override {}
  void resume() override {}
  void refresh() override {}
};

} // namespace

TEST(DataViewAbstract, AClickSelectsTheCaseUnderTheMouseAsTheMasterSelectionExpects)
{
  auto master = boost::make_shared<SelectionModel>();
  ClickableView view("ScatterPlot2D", master);
  int changes = 0;
  boost::signals2::scoped_connection connection = master->connectSignalSelectionChanged(
    [&](const SelectionModelInterface::Selection&) { ++changes; });

  const struct
  {
    const char* click;
    SelectionModelInterface::Selection before;
    std::optional<unsigned long long> caseUnderMouse;
    SelectionModelInterface::Selection after;
    bool signals;
  } cases[] = {
    { "on a case replaces the selection", { 1, 2 }, 7, { 7 }, true },
    { "on a selected case among others keeps them all", { 1, 7, 9 }, 7, { 1, 7, 9 }, false },
    { "on the only selected case changes nothing", { 7 }, 7, { 7 }, false },
    { "on empty space clears the selection", { 1, 7 }, std::nullopt, {}, true },
    { "on empty space with nothing selected changes nothing", {}, std::nullopt, {}, false },
    { "on a case with a 64-bit id",
      {},
      18446744073709551615ULL,
      { 18446744073709551615ULL },
      true },
  };
  for (const auto& c : cases)
  {
    master->setSelection(c.before);
    view.caseUnderMouse = c.caseUnderMouse;
    changes = 0;
    view.adjustSelectionForMouseClickAtPoint();
    EXPECT_EQ(master->getSelections(), c.after) << "a click " << c.click;
    EXPECT_EQ(changes, c.signals ? 1 : 0) << "a click " << c.click;
  }

  PlainView plain(master);
  master->setSelection({ 4 });
  plain.adjustSelectionForMouseClickAtPoint();
  EXPECT_TRUE(master->getSelections().empty()) << "without a case under the mouse a click clears";
}

TEST(DataViewAbstract, CopyingMovesTheSerializerAndSharesSelectionAndMouseMode)
{
  auto master = boost::make_shared<SelectionModel>();
  ClickableView source("ImageMatrix", master);
  SerializerInterface* serializer = &source.serializer();
  EXPECT_EQ(source.domName(), "ImageMatrix");

  ClickableView copy(source);
  EXPECT_EQ(&copy.serializer(), serializer) << "the copy owns the very same serializer";
  EXPECT_EQ(copy.domName(), "ImageMatrix");
  EXPECT_THROW(source.serializer(), std::logic_error);
  EXPECT_THROW(source.domName(), std::logic_error);

  EXPECT_EQ(copy.mouseMode(), source.mouseMode());
  source.mouseMode()->setValue(DataViewInterface::Zoom);
  EXPECT_EQ(copy.mouseMode()->value(), DataViewInterface::Zoom);

  copy.caseUnderMouse = 3;
  copy.adjustSelectionForMouseClickAtPoint();
  EXPECT_EQ(master->getSelections(), SelectionModelInterface::Selection{ 3 });

  ClickableView other("Other", boost::make_shared<SelectionModel>());
  other = copy;
  EXPECT_EQ(other.domName(), "ImageMatrix");
  EXPECT_THROW(copy.serializer(), std::logic_error);
  EXPECT_EQ(other.mouseMode()->value(), DataViewInterface::Zoom);
  other.caseUnderMouse = 5;
  other.adjustSelectionForMouseClickAtPoint();
  EXPECT_EQ(master->getSelections(), SelectionModelInterface::Selection{ 5 })
    << "the assigned view shares the master selection";
}
