// The cases table's model without its widget: the shown cases in the study's order or sorted by
// a column, and the shown rows of selected cases.

#include "views/table/CasesModel.h"

#include "VariableRoles.h"

#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"
#include "serialize/SerializerInterface.h"

#include <QDomDocument>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <stdexcept>

using explorer::CasesModel;
using explorer::VariableRoles;

TEST(CasesModel, SortsByAnyColumnAndFindsTheRowsOfCases)
{
  ProjectBuilder builder;
  builder.setCaseIds({ 5, 18446744073709551615ULL, 3, 9 });
  builder.addNumericVariable("x", { 2, std::numeric_limits<double>::quiet_NaN(), -1, 2 });
  builder.addTextVariable("name", { "beta", "alpha", "gamma", "alpha" });
  builder.setRole("x", Variable::Input);
  const auto project = builder.build();
  DataPipelineManager pipeline(project);
  CasesModel model(pipeline, std::make_shared<VariableRoles>(project));
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
    std::vector<unsigned long long> ranged{ 42 };
    model.addCasesOfRows(1, 2, ranged);
    EXPECT_EQ(ranged, (std::vector<unsigned long long>{ 42, sort.order[1], sort.order[2] }))
      << "a range of rows after what was there, column " << sort.column;
    std::vector<unsigned long long> all;
    model.addCasesOfRows(-3, 10, all);
    EXPECT_EQ(all, sort.order) << "rows beyond the table are none, column " << sort.column;
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

TEST(CasesModel, TheUserSaysWhatAVariableIsAndTheHeaderFollows)
{
  ProjectBuilder builder;
  builder.setCaseIds({ 1, 2 });
  builder.addNumericVariable("x", { 1, 2 });
  builder.addNumericVariable("y", { 3, 4 });
  builder.setRole("x", Variable::Input);
  const auto project = builder.build();
  DataPipelineManager pipeline(project);
  const auto roles = std::make_shared<VariableRoles>(project);
  CasesModel model(pipeline, roles);
  int headerChanges = 0;
  QObject::connect(&model, &QAbstractItemModel::headerDataChanged, [&] { ++headerChanges; });
  const auto header = [&](int column)
  { return model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString().toStdString(); };
  EXPECT_EQ(model.variableOf(0), "") << "the case id column has no role";
  EXPECT_EQ(model.variableOf(2), "y");

  UndoStack().clear();
  roles->setRole("y", Variable::Output);
  EXPECT_GT(headerChanges, 0) << "the header is drawn again";
  roles->setRole("x", Variable::Unknown);
  EXPECT_EQ(header(1), "x") << "the user overrides the study";
  EXPECT_EQ(header(2), "out: y");
  UndoStack().undo();
  EXPECT_EQ(header(1), "in: x") << "each is an undo step";
  EXPECT_EQ(roles->role("y"), Variable::Output);
  EXPECT_THROW(roles->setRole("z", Variable::Input), std::invalid_argument);

  // Saved with the settings and read back; a malformed element is refused.
  QDomDocument document;
  QDomElement saved = roles->serializer()->serialize(document);
  VariableRoles again(project);
  again.serializer()->deserialize(saved);
  EXPECT_EQ(again.role("y"), Variable::Output);
  EXPECT_EQ(again.role("x"), Variable::Input) << "as the study said";
  for (const char* bad : { R"(<VariableRoles><Variable name="z" role="input"/></VariableRoles>)",
                           R"(<VariableRoles><Variable name="x" role="result"/></VariableRoles>)" })
  {
    QDomDocument malformed;
    malformed.setContent(QString(bad));
    QDomElement element = malformed.documentElement();
    EXPECT_THROW(again.serializer()->deserialize(element), std::invalid_argument) << bad;
  }
  EXPECT_EQ(again.role("y"), Variable::Output) << "a refused element changes nothing";
}
