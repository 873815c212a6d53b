// A study gaining, changing and losing derived variables: values computed in order, the study's
// own columns, roles and files kept, and definitions refused with the variable named.

#include "derived/DerivedVariables.h"
#include "derived/Expression.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace explorer;

namespace
{

std::shared_ptr<const Project> smallStudy()
{
  ProjectBuilder builder;
  builder.setFolder("/studies/small");
  builder.setCaseIds({ 7, 3, 4000000000ULL });
  builder.addNumericVariable("range", { 100, 50, std::nan("") });
  builder.addNumericVariable("speed", { 10, 5, 2 });
  builder.addTextVariable("material", { "steel", "wood", "steel" });
  builder.setRole("speed", Variable::Input);
  builder.addAuxFile(3, "images/3.png", { "plot:range" });
  return builder.build();
}

std::vector<double> valuesOf(const Project& study, const std::string& name)
{
  const auto* values = study.numericValues(study.variable(name).lock());
  return values ? *values : std::vector<double>{};
}

std::vector<std::string> namesOf(const Project& study)
{
  std::vector<std::string> names;
  for (const auto& variable : study.variables())
    names.push_back(variable.lock().name());
  return names;
}

std::string refusalOf(const Project& study,
                      const DerivedVariables& present,
                      const DerivedVariables& wanted)
{
  try
  {
    withDerivedVariables(study, present, wanted);
  }
  catch (const ExpressionError& e)
  {
    return e.what();
  }
  return "(accepted)";
}

} // namespace

TEST(DerivedVariables, AreComputedInOrderAndKeepTheStudy)
{
  const auto study = smallStudy();
  const DerivedVariables derived{ { "per speed", "range / speed" },
                                  { "twice", "`per speed` * 2 + if(material_free, 1, 0)" } };
  // The second refers to a name no variable has: nothing is made.
  EXPECT_EQ(refusalOf(*study, {}, derived),
            "twice: there is no variable named \"material_free\" (put names with spaces or "
            "symbols in backquotes) (column 22)");

  const DerivedVariables good{ { "per speed", "range / speed" }, { "twice", "`per speed` * 2" } };
  const auto grown = withDerivedVariables(*study, {}, good);
  EXPECT_EQ(namesOf(*grown),
            (std::vector<std::string>{ "range", "speed", "material", "per speed", "twice" }));
  const auto twice = valuesOf(*grown, "twice");
  ASSERT_EQ(twice.size(), 3U);
  EXPECT_EQ(twice[0], 20.0);
  EXPECT_EQ(twice[1], 20.0);
  EXPECT_TRUE(std::isnan(twice[2]));
  // Two equal values of two: a derived variable's nature is decided as a column's is when read.
  EXPECT_EQ(grown->variable("twice").lock().nature(), Variable::Discrete);
  EXPECT_EQ(grown->variable("twice").lock().range(), std::make_pair(20.0, 20.0));
  // Everything else is the study's as it was.
  EXPECT_EQ(grown->caseIds(), study->caseIds());
  EXPECT_EQ(grown->folder(), "/studies/small");
  EXPECT_EQ(grown->variable("speed").lock().role(), Variable::Input);
  EXPECT_EQ(*grown->textValues(grown->variable("material").lock()),
            *study->textValues(study->variable("material").lock()));
  ASSERT_EQ(grown->auxFiles().size(), 1U);
  EXPECT_EQ(grown->auxFiles()[0].lock().filePath(), "/studies/small/images/3.png");
  EXPECT_EQ(grown->record(3).lock().auxFiles().size(), 1U);
  EXPECT_EQ(grown->tags(), study->tags());
  EXPECT_FALSE(grown->variable("range") == study->variable("range")) << "a new study has new ids";
  EXPECT_EQ(namesOf(*study), (std::vector<std::string>{ "range", "speed", "material" }));

  // Changed: the one before changes, the one after follows.
  const DerivedVariables changed{ { "per speed", "range / speed ^ 2" },
                                  { "twice", "`per speed` * 2" } };
  const auto edited = withDerivedVariables(*grown, good, changed);
  EXPECT_EQ(valuesOf(*edited, "twice")[1], 4.0);
  EXPECT_EQ(namesOf(*edited), namesOf(*grown));

  // Removed: the study is back to its own variables.
  const auto shrunk = withDerivedVariables(*edited, changed, {});
  EXPECT_EQ(namesOf(*shrunk), namesOf(*study));
  EXPECT_EQ(valuesOf(*shrunk, "range")[1], 50.0);
}

TEST(DerivedVariables, RefuseDefinitionsWithTheVariableNamed)
{
  const auto study = smallStudy();
  const DerivedVariables present{ { "ratio", "range / speed" } };
  const auto shown = withDerivedVariables(*study, {}, present);
  const std::vector<std::pair<DerivedVariables, std::string>> table{
    { { { "speed", "range" } }, "speed: the study has a variable of that name already" },
    { { { "case_id", "range" } }, "case_id: the study has a variable of that name already" },
    { { { "m", "material" } },
      "m: \"material\" holds text, and only numbers can be computed with (column 1)" },
    { { { "", "range" } }, "a derived variable needs a name" },
    { { { " r", "range" } }, " r: a name may not begin or end with a space" },
    { { { "r", "range ^" } }, "r: a value is expected after '^' (column 7)" },
    { { { "a", "1" }, { "a", "2" } }, "a: the study has a variable of that name already" },
    // A derived variable being removed cannot be used by one that stays.
    { { { "twice", "ratio * 2" } },
      "twice: there is no variable named \"ratio\" (put names with spaces or symbols in "
      "backquotes) (column 1)" },
    // Nor one defined after it.
    { { { "twice", "r2 * 2" }, { "r2", "range" } },
      "twice: there is no variable named \"r2\" (put names with spaces or symbols in backquotes) "
      "(column 1)" },
  };
  for (const auto& [wanted, message] : table)
    EXPECT_EQ(refusalOf(*shown, present, wanted), message);
  // Keeping it, the same name is no clash.
  EXPECT_EQ(refusalOf(*shown, present, { { "ratio", "range" } }), "(accepted)");
}

TEST(DerivedVariables, AreReadFromNameEqualsExpression)
{
  EXPECT_EQ(derivedVariableOf("ratio=range / speed"),
            (DerivedVariable{ "ratio", "range / speed" }));
  EXPECT_EQ(derivedVariableOf(" same = a == b"), (DerivedVariable{ "same", " a == b" }));
  EXPECT_EQ(derivedVariableOf("in:x [m]=1"), (DerivedVariable{ "in:x [m]", "1" }));
  for (const std::string bad : { "ratio", "=1", "  = 1" })
    EXPECT_THROW(derivedVariableOf(bad), ExpressionError) << bad;
}
