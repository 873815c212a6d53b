// The cases table's model without its widget: the shown cases in the study's order or sorted by
// a column, and the shown rows of selected cases.

#include "views/table/CasesModel.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"

#include <gtest/gtest.h>

#include <limits>

using explorer::CasesModel;

TEST(CasesModel, SortsByAnyColumnAndFindsTheRowsOfCases)
{
  ProjectBuilder builder;
  builder.setCaseIds({ 5, 18446744073709551615ULL, 3, 9 });
  builder.addNumericVariable("x", { 2, std::numeric_limits<double>::quiet_NaN(), -1, 2 });
  builder.addTextVariable("name", { "beta", "alpha", "gamma", "alpha" });
  builder.setRole("x", Variable::Input);
  const auto project = builder.build();
  DataPipelineManager pipeline(project);
  CasesModel model(pipeline, *project);
  ASSERT_EQ(model.rowCount(), 4);
  ASSERT_EQ(model.columnCount(), 3);
  EXPECT_EQ(model.headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), "case_id");
  EXPECT_EQ(model.headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), "in: x")
    << "the role the study gives a variable";
  EXPECT_EQ(model.headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(), "name");
  EXPECT_EQ(model.index(1, 0).data().toString(), "18446744073709551615") << "the whole id";
  EXPECT_EQ(model.index(1, 1).data().toString(), "") << "NaN shows as nothing";
  EXPECT_TRUE(model.sortedCases().empty()) << "the study's order";

  const auto shown = [&]
  {
    std::vector<unsigned long long> ids;
    for (int row = 0; row < model.rowCount(); ++row)
      ids.push_back(model.caseOfRow(row));
    return ids;
  };
  const struct
  {
    int column;
    bool descending;
    std::vector<unsigned long long> order;
  } sorts[] = {
    { 1, false, { 3, 5, 9, 18446744073709551615ULL } },  // NaN last, ties in study order
    { 1, true, { 5, 9, 3, 18446744073709551615ULL } },   // NaN last either way
    { 2, false, { 18446744073709551615ULL, 9, 5, 3 } },  // texts
    { 0, true, { 18446744073709551615ULL, 9, 5, 3 } },   // case ids as numbers
    { -1, false, { 5, 18446744073709551615ULL, 3, 9 } }, // back to the study's order
  };
  for (const auto& sort : sorts)
  {
    model.sortBy(sort.column, sort.descending);
    EXPECT_EQ(shown(), sort.order) << "column " << sort.column;
    if (sort.column >= 0)
    {
      EXPECT_EQ(model.sortedCases(), sort.order) << "column " << sort.column;
    }
  }
  model.sortBy(2, false);
  EXPECT_EQ(model.rowsOf({ 3, 9, 42 }), (std::vector<int>{ 3, 1 }))
    << "the shown rows of the cases, in case id order";
  EXPECT_EQ(model.largestCaseId(), 18446744073709551615ULL);
}
