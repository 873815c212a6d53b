// One drawing policy for the views that draw marks or a density, saved by name; and the kinds
// of view as visitors tell them apart.

#include "views/DrawingPolicy.h"
#include "views/ViewKinds.h"

#include "properties/Property.h"
#include "serialize/SerializerInterface.h"

#include <QDomDocument>
#include <QDomElement>
#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

using explorer::Drawing;

TEST(DrawingPolicy, DensityAboveEachViewsThresholdAndSavedByName)
{
  namespace drawing = explorer::drawing;
  EXPECT_FALSE(drawing::asDensity(Drawing::Automatic, 25000, drawing::pointsAsDensityAbove));
  EXPECT_TRUE(drawing::asDensity(Drawing::Automatic, 25001, drawing::pointsAsDensityAbove));
  EXPECT_TRUE(drawing::asDensity(Drawing::Density, 3, drawing::pointsAsDensityAbove));
  EXPECT_FALSE(drawing::asDensity(Drawing::Marks, 1000000, drawing::linesAsDensityAbove));

  auto setting = boost::make_shared<plexa::Property<Drawing>>(Drawing::Density);
  const auto saved = drawing::serializer("Points", setting);
  QDomDocument document;
  EXPECT_EQ(saved->serialize(document).text(), "density");
  const struct
  {
    const char* text;
    Drawing read;
  } texts[] = { { "marks", Drawing::Marks },
                { "automatic", Drawing::Automatic },
                { "2", Drawing::Density }, // as earlier settings files wrote it
                { " 1 ", Drawing::Marks } };
  for (const auto& text : texts)
  {
    QDomDocument read;
    read.setContent(QString("<Points>%1</Points>").arg(text.text));
    QDomElement element = read.documentElement();
    saved->deserialize(element);
    EXPECT_EQ(setting->value(), text.read) << text.text;
  }
  for (const char* refused : { "3", "many", "" })
  {
    QDomDocument read;
    read.setContent(QString("<Points>%1</Points>").arg(refused));
    QDomElement element = read.documentElement();
    EXPECT_THROW(saved->deserialize(element), std::exception) << refused;
    EXPECT_EQ(setting->value(), Drawing::Marks) << "a refused value changes nothing";
  }
}

namespace
{

struct Parallel : explorer::ParallelCoordinatesInterface
{
  void suspend() override {}
  void resume() override {}
  SerializerInterface& serializer() override { throw std::logic_error("unused"); }
  std::string domName() const override { return {}; }
  void adjustSelectionForMouseClickAtPoint() override {}
  void refresh() override {}
  boost::shared_ptr<plexa::PropertyAbstract<MouseMode>> mouseMode() const override { return {}; }
};

struct Counting : explorer::ExplorerViewVisitor
{
  using ExplorerViewVisitor::visit;
  void visit(boost::shared_ptr<explorer::ParallelCoordinatesInterface>) override { ++parallel; }
  void visitAnyViewType() override { ++others; }
  int parallel = 0;
  int others = 0;
};

struct Library : DataViewVisitorAbstract
{
  void visitAnyViewType() override { ++seen; }
  int seen = 0;
};

} // namespace

TEST(ViewKinds, ParallelCoordinatesAnswerTheExplorersVisitorsOnly)
{
  const auto view = boost::make_shared<Parallel>();
  Counting counting;
  explorer::visitKind(counting, boost::shared_ptr<explorer::ParallelCoordinatesInterface>(view));
  EXPECT_EQ(counting.parallel, 1);
  Library library;
  explorer::visitKind(library, boost::shared_ptr<explorer::ParallelCoordinatesInterface>(view));
  EXPECT_EQ(library.seen, 0) << "the library's visitor names eight kinds, and not this one";
  explorer::visitKind(counting, boost::shared_ptr<LinePlotInterface>());
  EXPECT_EQ(counting.others, 1) << "the line plot goes through the library's overload";
}
