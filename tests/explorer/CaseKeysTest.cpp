// Case keys: the dense keys the explorer's plots carry instead of 64-bit case ids, and the
// selection and case order built on them.

#include "CaseKeys.h"
#include "CaseOrder.h"
#include "CaseRowIndex.h"
#include "MasterSelection.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>

#include <algorithm>
#include <limits>

using explorer::CaseKeys;
using Set = std::set<unsigned long long>;

namespace
{

constexpr unsigned long long top = std::numeric_limits<unsigned long long>::max();

} // namespace

TEST(CaseKeys, TranslateEveryIdOfAnyShapeBothWays)
{
  const struct
  {
    const char* shape;
    std::vector<unsigned long long> ids;
  } studies[] = {
    { "sequential from 1000", { 1000, 1001, 1002, 1003 } },
    { "sorted with gaps", { 5, 17, 2147483647, 2147483648, 4294967296, top } },
    { "unsorted, at the ends of the range", { top, 0, 9223372036854775808ULL, 4000000000, 5 } },
    { "one case", { 42 } },
  };
  for (const auto& study : studies)
  {
    const CaseKeys keys(study.ids);
    ASSERT_EQ(keys.size(), study.ids.size()) << study.shape;
    for (std::size_t position = 0; position < study.ids.size(); ++position)
    {
      unsigned long long key = 99;
      unsigned long long id = 99;
      ASSERT_TRUE(keys.keyOf(study.ids[position], key)) << study.shape;
      EXPECT_EQ(key, position) << study.shape << ": the key is the place in the study";
      ASSERT_TRUE(keys.caseIdOf(key, id)) << study.shape;
      EXPECT_EQ(id, study.ids[position]) << study.shape;
    }
    // The keys of ascending ids, those the study lacks left out, before, among and after its own.
    std::vector<unsigned long long> asked = { 3, 4 };
    std::vector<unsigned long long> expected;
    for (std::size_t position = 0; position < study.ids.size(); ++position)
      if (position % 2 == 0)
      {
        asked.push_back(study.ids[position]);
        expected.push_back(position);
      }
    std::sort(asked.begin(), asked.end());
    std::sort(expected.begin(), expected.end());
    if (std::find(study.ids.begin(), study.ids.end(), top) == study.ids.end())
      asked.push_back(top);
    EXPECT_EQ(keys.keysOf(asked), expected) << study.shape;
    // A column of ids in any order, one at a time and all at once: ids the study lacks keep
    // their place in the column.
    std::vector<unsigned long long> column = { 3,       study.ids.back(),  study.ids.back() + 1,
                                               top - 1, study.ids.front(), 0 };
    if (study.ids.size() > 2)
      column.push_back(study.ids[2]);
    std::vector<int> each(column.size(), -1);
    keys.keysOfEach(column.data(), column.size(), each.data());
    for (std::size_t i = 0; i < column.size(); ++i)
    {
      const auto found = std::find(study.ids.begin(), study.ids.end(), column[i]);
      const auto key = found == study.ids.end() ? i : std::size_t(found - study.ids.begin());
      EXPECT_EQ(each[i], int(key)) << study.shape << ", id " << column[i];
    }
    unsigned long long unused = 7;
    EXPECT_FALSE(keys.keyOf(3, unused)) << study.shape << ": an id the study lacks";
    EXPECT_FALSE(keys.caseIdOf(study.ids.size(), unused)) << study.shape << ": a key too far";
    EXPECT_EQ(unused, 7u) << study.shape << ": a refusal leaves the answer alone";
  }
}

TEST(CaseOrder, SelectedCasesFollowTheTablesOrder)
{
  const std::vector<unsigned long long> ids = { 10, 20, 30, 40, 50 };
  explorer::CaseOrder order(std::make_shared<CaseKeys>(ids));
  int changes = 0;
  const auto connection = order.connectChanged([&] { ++changes; });
  const std::vector<unsigned long long> selected = { 20, 40, 50, 77 };
  EXPECT_EQ(order.sorted(selected), (std::vector<unsigned long long>{ 20, 40, 50, 77 }))
    << "the study's order; an unknown id last";
  // A table sorted and filtered: 40 and 10 shown, in that order; the others follow in the
  // study's order.
  order.setOrder({ 40, 10 });
  EXPECT_EQ(order.sorted(selected), (std::vector<unsigned long long>{ 40, 20, 50, 77 }));
  order.setOrder({});
  EXPECT_EQ(order.sorted(selected), (std::vector<unsigned long long>{ 20, 40, 50, 77 }));
  EXPECT_EQ(changes, 2);
  connection.disconnect();
}

// Rows of selected cases for rows in any order, by search for a few cases and by one walk for
// many: both ways must give the same rows.
TEST(CaseRowIndex, FindsTheRowsOfSelectedCasesInAnyRowOrder)
{
  const struct
  {
    std::vector<unsigned long long> rowIds;
    std::vector<unsigned long long> selected;
    std::vector<int> rows;
  } cases[] = {
    { { 10, 20, 30, 40 }, { 20, 40, 99 }, { 1, 3 } },
    { { 40, 10, 30, 20 }, { 20, 40, 99 }, { 3, 0 } },
    { { 5, top, 5, 0 }, { 0, 5, top }, { 3, 0, 2, 1 } },
    { { 30, 10, 20 }, { 10 }, { 1 } },
    { { 7, 8 }, {}, {} },
    { {}, { 1 }, {} },
  };
  for (const auto& c : cases)
  {
    explorer::CaseRowIndex index;
    index.assign(explorer::CaseIds(c.rowIds));
    EXPECT_EQ(index.rowsOf(c.selected), c.rows) << c.rowIds.size();
    const explorer::CaseIds& kept = index.caseIds();
    EXPECT_EQ(std::vector<unsigned long long>(kept.begin(), kept.end()), c.rowIds)
      << "kept in row order";
    EXPECT_EQ(index.largest(),
              c.rowIds.empty() ? 0 : *std::max_element(c.rowIds.begin(), c.rowIds.end()));
  }
  // A few cases among many rows are searched for, many are walked to: the same answers.
  std::vector<unsigned long long> ids;
  for (unsigned long long i = 0; i < 1000; ++i)
    ids.push_back((i * 7919) % 1000 * 3);
  explorer::CaseRowIndex index;
  index.assign(explorer::CaseIds(ids));
  const std::vector<unsigned long long> few = { 0, 3, 4, 2997 };
  std::vector<unsigned long long> many;
  for (unsigned long long id = 0; id < 3000; id += 2)
    many.push_back(id);
  const std::vector<unsigned long long>* selections[] = { &few, &many };
  for (const auto* selected : selections)
  {
    std::vector<int> expected;
    for (unsigned long long id : *selected)
      for (std::size_t row = 0; row < ids.size(); ++row)
        if (ids[row] == id)
          expected.push_back(static_cast<int>(row));
    EXPECT_EQ(index.rowsOf(*selected), expected) << selected->size();
  }
}

TEST(CaseIds, ReadInPlaceFromAnUnsignedColumnOutlivingItsTableCopiedFromOthers)
{
  using Ids = std::vector<unsigned long long>;
  const auto idsOf = [](const explorer::CaseIds& ids) { return Ids(ids.begin(), ids.end()); };
  const unsigned long long top = std::numeric_limits<unsigned long long>::max();
  const auto tableOf = [](std::initializer_list<vtkSmartPointer<vtkAbstractArray>> columns)
  {
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const auto& column : columns)
      table->AddColumn(column);
    return table;
  };
  const auto named = [](auto array, const char* name, std::initializer_list<double> values)
  {
    array->SetName(name);
    for (double value : values)
      array->InsertNextTuple1(value);
    return vtkSmartPointer<vtkAbstractArray>(array);
  };

  auto unsignedIds = vtkSmartPointer<vtkTypeUInt64Array>::New();
  unsignedIds->SetName("case_id");
  for (unsigned long long id : { 5ULL, top, 7ULL })
    unsignedIds->InsertNextValue(id);
  auto table = tableOf({ unsignedIds });
  const explorer::CaseIds inPlace(*table);
  table = nullptr;
  EXPECT_EQ(inPlace.begin(), unsignedIds->GetPointer(0)) << "the column's own values";
  unsignedIds = nullptr;
  EXPECT_EQ(idsOf(inPlace), (Ids{ 5, top, 7 })) << "kept alive by the ids";
  // The copy is what is tested.
  const explorer::CaseIds shared = inPlace; // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(shared.begin(), inPlace.begin()) << "copies share";

  ProjectBuilder builder;
  builder.setCaseIds({ 4, top });
  std::shared_ptr<const Project> study = builder.build();
  const std::weak_ptr<const Project> watched = study;
  const explorer::CaseIds ofStudy(*study);
  EXPECT_EQ(ofStudy.begin(), study->caseIds().data()) << "the study's own ids";
  study.reset();
  ASSERT_FALSE(watched.expired()) << "kept by its ids";
  EXPECT_EQ(idsOf(ofStudy), (Ids{ 4, top }));

  const struct
  {
    const char* what;
    vtkSmartPointer<vtkTable> table;
    Ids expected;
  } copied[] = {
    { "ints",
      tableOf({ named(vtkSmartPointer<vtkIntArray>::New(), "case_id", { 3, 4, 5 }) }),
      { 3, 4, 5 } },
    { "no case_id: row numbers",
      tableOf({ named(vtkSmartPointer<vtkDoubleArray>::New(), "x", { 9, 9, 9 }) }),
      { 0, 1, 2 } },
    { "an empty table", vtkSmartPointer<vtkTable>::New(), {} },
  };
  for (const auto& c : copied)
  {
    const explorer::CaseIds ids(*c.table);
    EXPECT_EQ(idsOf(ids), c.expected) << c.what;
    EXPECT_EQ(ids.size(), c.expected.size()) << c.what;
  }
}
