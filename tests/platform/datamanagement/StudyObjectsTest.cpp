#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datamanagement/Record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

std::shared_ptr<const Project> smallProject()
{
  ProjectBuilder builder;
  builder.setFolder("/studies/demo");
  builder.setCaseIds({ 7, 3, 11 });
  builder.addNumericVariable("speed", { 10.0, std::nan(""), 30.0 });
  builder.addTextVariable("material", { "steel", "wood", "steel" });
  builder.addAuxFile(7, "images/7_traj.png", { "plot:trajectory", "final", "final" });
  builder.addAuxFile(7, "images/7_speed.png", { "plot:speed" });
  builder.addAuxFile(3, "images/3_traj.png", { "plot:trajectory" });
  return builder.build();
}

} // namespace

TEST(StudyObjects, VariablesKnowTheirNatureAndFiniteRange)
{
  const auto project = smallProject();
  const Variable speed = project->variable("speed").lock();
  EXPECT_EQ(speed.name(), "speed");
  EXPECT_EQ(speed.range(), std::make_pair(10.0, 30.0));
  EXPECT_EQ(project->variable("material").lock().nature(), Variable::Text);
  EXPECT_EQ(project->variable("material").lock().range(), std::make_pair(0.0, 0.0));
  ASSERT_EQ(project->variables().size(), 2u);
  EXPECT_EQ(project->variables()[1].lock().name(), "material");
  EXPECT_TRUE(project->variable("Speed").lock().isNull()) << "names are case-sensitive";

  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(ProjectBuilder::natureOfNumbers({ 1, 2, 1, 2, 1, 2 }), Variable::Discrete);
  EXPECT_EQ(ProjectBuilder::natureOfNumbers({ 1, 2, 3, 4 }), Variable::Continuous);
  EXPECT_EQ(ProjectBuilder::natureOfNumbers({ inf, -inf, std::nan("") }), Variable::Continuous);
}

TEST(WeakPtr, ComparesByIdAndLocksToAnEmptyHandleOnceTheProjectIsGone)
{
  auto project = smallProject();
  const WeakPtr<Variable> speed = project->variable("speed");
  const WeakPtr<Variable> again = project->variable("speed");
  const WeakPtr<Variable> material = project->variable("material");
  EXPECT_EQ(speed, again);
  EXPECT_NE(speed, material);
  EXPECT_NE(speed.id(), 0u);
  EXPECT_EQ(std::set<WeakPtr<Variable>>({ speed, again, material }).size(), 2u);

  const auto other = smallProject();
  EXPECT_NE(other->variable("speed"), speed) << "handles of two projects never compare equal";

  project.reset();
  EXPECT_TRUE(speed.expired());
  const Variable gone = speed.lock();
  EXPECT_TRUE(gone.isNull());
  EXPECT_EQ(gone.name(), "");
  EXPECT_EQ(gone.range(), std::make_pair(0.0, 0.0));
  EXPECT_EQ(speed, again) << "the id outlives the object";

  const WeakPtr<Variable> none;
  EXPECT_EQ(none.id(), 0u);
  EXPECT_TRUE(none.lock().isNull());
}

TEST(ProjectBuilder, RejectsInconsistentStudies)
{
  const struct
  {
    const char* expected;
    void (*fill)(ProjectBuilder&);
  } cases[] = {
    { "duplicate case id 4",
      [](ProjectBuilder& b) {
        b.setCaseIds({ 4, 4 });
      } },
    { "duplicate variable name \"x\"",
      [](ProjectBuilder& b)
      {
        b.setCaseIds({ 1 });
        b.addNumericVariable("x", { 1 });
        b.addTextVariable("x", { "a" });
      } },
    { "has 2 values for 1 cases",
      [](ProjectBuilder& b)
      {
        b.setCaseIds({ 1 });
        b.addNumericVariable("x", { 1, 2 });
      } },
    { "has no name",
      [](ProjectBuilder& b)
      {
        b.setCaseIds({ 1 });
        b.addNumericVariable("", { 1 });
      } },
    { "names unknown case id 9",
      [](ProjectBuilder& b)
      {
        b.setCaseIds({ 1 });
        b.addAuxFile(9, "a.png", {});
      } },
  };
  for (const auto& c : cases)
  {
    ProjectBuilder builder;
    c.fill(builder);
    try
    {
      builder.build();
      ADD_FAILURE() << "accepted a study that should fail with: " << c.expected;
    }
    catch (const std::invalid_argument& e)
    {
      EXPECT_NE(std::string(e.what()).find(c.expected), std::string::npos) << e.what();
    }
  }
}

TEST(StudyObjects, CasesAndTheirFilesAreFoundWhateverTheOrderOfTheIds)
{
  using Ids = std::vector<unsigned long long>;
  for (const Ids& ids : { Ids{ 1, 2, 3 }, Ids{ 3, 1, 2 }, Ids{ 0, 1ull << 63, ~0ull } })
  {
    ProjectBuilder builder;
    builder.setFolder("/s");
    builder.setCaseIds(ids);
    // Files given out of case order and interleaved, as a table's columns give them.
    builder.addAuxFile(ids[1], "b.png", { "x" });
    builder.addAuxFile(ids[0], "a.png", { "x" });
    builder.addAuxFile(ids[1], "c.png", { "y" });
    builder.addAuxFile(ids[1], "d.png", { "x" });
    const auto project = builder.build();
    const auto paths = [&](unsigned long long id)
    {
      std::vector<std::string> result;
      for (const auto& file : project->record(id).lock().auxFiles())
        result.push_back(file.lock().filePath() + " " + file.lock().tags().at(0));
      return result;
    };
    EXPECT_EQ(paths(ids[1]), (std::vector<std::string>{ "/s/b.png x", "/s/c.png y", "/s/d.png x" }))
      << ids[0] << "," << ids[1] << "," << ids[2];
    EXPECT_EQ(paths(ids[0]), (std::vector<std::string>{ "/s/a.png x" }));
    EXPECT_TRUE(paths(ids[2]).empty());
    EXPECT_EQ(project->record(ids[2]).lock().caseId(), ids[2]);
    EXPECT_TRUE(project->record(12345).lock().isNull());
    EXPECT_EQ(project->tags(), (std::vector<std::string>{ "x", "y" }));
  }
}

TEST(StudyObjects, EveryObjectHasItsOwnIdAndACopyWithOtherColumnsKeepsTheCasesAndFiles)
{
  ProjectBuilder builder;
  builder.setFolder("/s");
  builder.setCaseIds({ 5, 3, 9 });
  builder.addNumericVariable("x", { 1, 2, 3 });
  builder.addTextVariable("t", { "a", "b", "c" });
  builder.addAuxFile(9, "nine.png", { "x" });
  builder.addAuxFile(5, "five.png", { "x" });
  const auto project = builder.build();
  // The original's records are made before the copy; the copy's must be its own.
  ASSERT_EQ(project->recordAt(2).lock().caseId(), 9u);
  const auto copy = ProjectBuilder::withColumns(*project, { "t" }, { { "y", { 7, 8, 9 } } });

  std::set<unsigned long long> ids;
  std::size_t objects = 0;
  for (const auto* study : { project.get(), copy.get() })
  {
    const auto add = [&](unsigned long long id)
    {
      EXPECT_NE(id, 0u);
      ids.insert(id);
      ++objects;
    };
    for (const auto& record : study->records())
      add(record.id());
    for (const auto& variable : study->variables())
      add(variable.id());
    add(study->caseIdVariable().id());
    for (const auto& file : study->auxFiles())
      add(file.id());
  }
  EXPECT_EQ(ids.size(), objects) << "records, variables and files of both studies, all apart";

  const auto casesOf = [](const Project& study, const char* variable)
  {
    std::vector<std::string> cases;
    for (std::size_t row = 0; row < study.numberOfRecords(); ++row)
    {
      const Record record = study.recordAt(row).lock();
      std::string files;
      for (const auto& file : record.auxFiles())
        files += " " + file.lock().relativePath();
      cases.push_back(std::to_string(record.caseId()) + " " +
                      record.data(study.variable(variable)).toString() + files + " " +
                      std::to_string(study.record(record.caseId()).lock().id() == record.id()));
    }
    return cases;
  };
  EXPECT_EQ(casesOf(*project, "t"),
            (std::vector<std::string>{ "5 a five.png 1", "3 b 1", "9 c nine.png 1" }));
  EXPECT_EQ(casesOf(*copy, "y"),
            (std::vector<std::string>{ "5 7 five.png 1", "3 8 1", "9 9 nine.png 1" }));
  EXPECT_EQ(copy->auxFiles().at(0).lock().record().lock().caseId(), 9u);
}

TEST(StudyObjects, RowsOfAscendingIdsAndRecordsOfRows)
{
  using Ids = std::vector<unsigned long long>;
  Ids everyThird;
  for (unsigned long long id = 3; id <= 3000; id += 3)
    everyThird.push_back(id);
  Ids reversed(everyThird.rbegin(), everyThird.rend());
  Ids extremes{ 0, 5, 1ull << 63, ~0ull - 1, ~0ull };

  Ids dense; // every id from below the first to past the last, found or not
  for (unsigned long long id = 0; id <= 3010; ++id)
    dense.push_back(id);
  Ids sparse{ 2, 3, 4, 300, 301, 1500, 2997, 3000, 3003, 1ull << 40 };
  Ids wide{ 0, 1, 5, 6, 1ull << 63, ~0ull };

  for (const Ids& study : { everyThird, reversed, extremes })
  {
    ProjectBuilder builder;
    builder.setCaseIds(study);
    const auto project = builder.build();
    for (const Ids& asked : { dense, sparse, wide, Ids{} })
    {
      const std::vector<std::size_t> rows = project->rowsOf(asked);
      ASSERT_EQ(rows.size(), asked.size());
      for (std::size_t i = 0; i < asked.size(); ++i)
      {
        const auto at = std::find(study.begin(), study.end(), asked[i]);
        const std::size_t expected =
          at == study.end() ? Project::npos : static_cast<std::size_t>(at - study.begin());
        ASSERT_EQ(rows[i], expected) << "id " << asked[i] << " in a study of " << study.size();
      }
    }
    for (std::size_t row = 0; row < study.size(); ++row)
      ASSERT_EQ(project->recordAt(row).lock().caseId(), study[row]);
    EXPECT_TRUE(project->recordAt(study.size()).lock().isNull());
  }
}

TEST(StudyObjects, AFilesPathIsItsFolderJoinedWithItsRelativePath)
{
  const struct
  {
    const char* folder;
    const char* relative;
    const char* expected;
  } cases[] = {
    { "/s", "a/b.png", "/s/a/b.png" },
    { "/s/", "a.png", "/s/a.png" },
    { "/", "a.png", "/a.png" },
    { "", "a.png", "a.png" },
    { ".", "a.png", "a.png" },
    { "/s/../t", "a.png", "/t/a.png" },
    { "s/./t", "x/../a.png", "s/t/a.png" },
    { "/s", "/elsewhere/a.png", "/elsewhere/a.png" },
    { "/s", "https://host/a.png", "https://host/a.png" },
  };
  for (const auto& c : cases)
  {
    ProjectBuilder builder;
    builder.setFolder(c.folder);
    builder.setCaseIds({ 1 });
    builder.addAuxFile(1, c.relative, {});
    const auto project = builder.build();
    const AuxFile file = project->auxFiles().at(0).lock();
    EXPECT_EQ(file.filePath(), c.expected) << c.folder << " + " << c.relative;
    EXPECT_EQ(file.relativePath(), c.relative);
  }
}
