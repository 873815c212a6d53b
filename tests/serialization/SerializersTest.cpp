#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "properties/Property.h"
#include "serialization/TagGroupsToShowSerializer.h"
#include "serialization/TagsToShowSerializer.h"
#include "serialization/VariableInfoSerializer.h"
#include "serialization/VariableListSerializer.h"

#include <QDomDocument>
#include <boost/make_shared.hpp>
#include <boost/tokenizer.hpp>
#include <gtest/gtest.h>

namespace
{

std::shared_ptr<const Project> study()
{
  ProjectBuilder builder;
  builder.setCaseIds({ 1 });
  builder.addNumericVariable("angle", { 1 });
  builder.addNumericVariable("speed", { 2 });
  builder.addNumericVariable("Angle", { 3 });
  builder.addAuxFile(1, "a.png", { "plot:trajectory", "view:top" });
  return builder.build();
}

QString written(SerializerInterface& serializer)
{
  QDomDocument document;
  document.appendChild(serializer.serialize(document));
  return document.toString(-1);
}

void read(SerializerInterface& serializer, const QString& xml)
{
  QDomDocument document;
  ASSERT_TRUE(document.setContent(xml)) << xml.toStdString();
  QDomElement element = document.documentElement();
  serializer.deserialize(element);
}

} // namespace

TEST(VariableInfoSerializer, SavesTheNameAndResolvesItAmongTheCandidates)
{
  const auto project = study();
  auto property =
    boost::make_shared<plexa::Property<WeakPtr<Variable>>>(project->variable("speed"));
  VariableInfoSerializer serializer("XVariable", property, project->variables());
  EXPECT_EQ(written(serializer), "<XVariable>speed</XVariable>");

  read(serializer, "<XVariable>angle</XVariable>");
  EXPECT_EQ(property->value(), project->variable("angle"));
  read(serializer, "<XVariable>Angle</XVariable>");
  EXPECT_EQ(property->value(), project->variable("Angle")) << "names compare case-sensitively";
  for (const char* unknown : { "<XVariable>mass</XVariable>", "<XVariable/>" })
  {
    read(serializer, unknown);
    EXPECT_EQ(property->value(), project->variable("Angle")) << unknown;
  }
  property->setValue(WeakPtr<Variable>());
  EXPECT_EQ(written(serializer), "<XVariable/>");
}

TEST(VariableListSerializer, SavesChildrenInOrderAndKeepsOnlyKnownNames)
{
  const auto project = study();
  auto property = boost::make_shared<plexa::Property<std::vector<WeakPtr<Variable>>>>(
    std::vector<WeakPtr<Variable>>{ project->variable("speed"), project->variable("angle") });
  VariableListSerializer serializer("VariablesInLabel", property, project->variables());
  const QString xml = written(serializer);
  EXPECT_EQ(xml,
            "<VariablesInLabel><Variable name=\"speed\"/><Variable name=\"angle\"/>"
            "</VariablesInLabel>");

  VariableListSerializer onlySpeed("VariablesInLabel", property, { project->variable("speed") });
  read(onlySpeed, xml);
  EXPECT_EQ(property->value(), std::vector<WeakPtr<Variable>>{ project->variable("speed") });

  read(serializer,
       "<VariablesInLabel><Variable name=\"angle\"/><Other name=\"speed\"/>"
       "<Variable/><Variable name=\"angle\"/><Variable name=\"x\"/></VariablesInLabel>");
  EXPECT_EQ(
    property->value(),
    (std::vector<WeakPtr<Variable>>{ project->variable("angle"), project->variable("angle") }));
  read(serializer, "<VariablesInLabel/>");
  EXPECT_TRUE(property->value().empty()) << "an empty list is set too";
}

// Writing and escaping are the vector serializer's; here only the name and the known tags.
TEST(TagsToShowSerializer, KeepsOnlyKnownTags)
{
  auto tags = boost::make_shared<plexa::Property<std::vector<std::string>>>();
  TagsToShowSerializer onlyA(tags, { "a" });
  EXPECT_EQ(onlyA.name(), "TagsToShow");
  read(onlyA, "<TagsToShow>a,b</TagsToShow>");
  EXPECT_EQ(tags->value(), std::vector<std::string>{ "a" });
}

TEST(TagGroupsToShowSerializer, SavesGroupNamesAndResolvesThemInTheCurrentProject)
{
  const auto project = study();
  Project::setProject(project);
  auto groups = boost::make_shared<plexa::Property<std::vector<WeakPtr<TagGroup>>>>(
    std::vector<WeakPtr<TagGroup>>{ project->tagGroup("view"), project->tagGroup("plot") });
  TagGroupsToShowSerializer serializer(groups);
  EXPECT_EQ(serializer.name(), "TagGroupsToShow");
  EXPECT_EQ(written(serializer), "<TagGroupsToShow>view,plot</TagGroupsToShow>");

  read(serializer, "<TagGroupsToShow>plot,nothing,view,plot</TagGroupsToShow>");
  EXPECT_EQ(groups->value(),
            (std::vector<WeakPtr<TagGroup>>{
              project->tagGroup("plot"), project->tagGroup("view"), project->tagGroup("plot") }))
    << "every field is read; names without a group are dropped";
  Project::setProject(nullptr);
  read(serializer, "<TagGroupsToShow>plot</TagGroupsToShow>");
  EXPECT_TRUE(groups->value().empty()) << "resolved in the current project, which has none";
}
