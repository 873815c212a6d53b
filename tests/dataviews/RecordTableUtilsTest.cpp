#include "dataviews/RecordTableUtils.h"

#include <gtest/gtest.h>
#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>
#include <vtkVariant.h>

#include <random>

namespace
{

template<typename Array, typename Value>
vtkSmartPointer<vtkTable> tableOf(std::initializer_list<Value> ids)
{
  auto column = vtkSmartPointer<Array>::New();
  column->SetName("case_id");
  for (const auto& id : ids)
    column->InsertNextValue(id);
  auto table = vtkSmartPointer<vtkTable>::New();
  table->AddColumn(column);
  return table;
}

} // namespace

TEST(RecordTableUtils, ReadsIdsAsSignExtendedIntsWhateverTheColumnType)
{
  auto ints = tableOf<vtkIntArray>({ 7, -1, 2147483647 });
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*ints, 0), 7u);
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*ints, 1), 18446744073709551615ULL);
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*ints, 2), 2147483647u);

  auto wide = tableOf<vtkTypeUInt64Array>({ 4294967301ULL, 2147483648ULL });
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*wide, 0), 5u) << "ids past 32 bits do not survive";
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*wide, 1), 18446744071562067968ULL);

  auto doubles = tableOf<vtkDoubleArray>({ 3.7, -2.5 });
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*doubles, 0), 3u);
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*doubles, 1), 18446744073709551614ULL);

  auto texts = tableOf<vtkStringArray>({ std::string("42") });
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*texts, 0), 42u);

  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*ints, 3), 0u) << "a row outside the table";
  vtkNew<vtkTable> empty;
  EXPECT_EQ(RecordTableUtils::caseIDAtRow(*empty, 0), 0u);
  EXPECT_TRUE(RecordTableUtils::caseIDs(*empty).empty());
  EXPECT_EQ(RecordTableUtils::caseIDs(*tableOf<vtkIntArray>({ 3, 1, 3 })),
            (std::set<unsigned long long>{ 1, 3 }));
}
