#include "analyzer_common/AxisVariableProvider.h"
#include "analyzer_common/NiceNumber.h"
#include "analyzer_common/VariantDisplayText.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(variantDisplayText, ShowsValuesAsAUserReadsThem)
{
  const struct
  {
    Variant value;
    const char* text;
  } cases[] = {
    { Variant(0.1), "0.1" },
    { Variant(1.0 / 3.0), "0.333333" },
    { Variant(15000000.0), "1.5e+07" },
    { Variant(45.0), "45" },
    { Variant(std::nan("")), "NaN" },
    { Variant(123456789ULL), "123456789" },
    { Variant("steel"), "steel" },
    { Variant(), "" },
  };
  for (const auto& c : cases)
  {
    EXPECT_EQ(variantDisplayText(c.value), c.text);
  }
}

TEST(AxisVariableProvider, HandsOutVariablesOfANatureOneAfterTheOther)
{
  ProjectBuilder builder;
  builder.setCaseIds({ 1, 2, 3, 4 });
  builder.addNumericVariable("angle", { 1, 2, 1, 2 });
  builder.addNumericVariable("range", { 1, 2, 3, 4 });
  builder.addNumericVariable("mass", { 5, 5, 6, 6 });
  builder.addTextVariable("label", { "a", "b", "c", "d" });
  const auto project = builder.build();

  AxisVariableProvider provider(project->variables());
  EXPECT_EQ(provider.next(Variable::Discrete).lock().name(), "angle");
  EXPECT_EQ(provider.next(Variable::Continuous).lock().name(), "range");
  EXPECT_EQ(provider.next(Variable::Discrete).lock().name(), "mass");
  EXPECT_TRUE(provider.next(Variable::Discrete).lock().isNull());
  EXPECT_EQ(provider.next(Variable::Text).lock().name(), "label");
}
