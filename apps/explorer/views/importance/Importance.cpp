#include "views/importance/Importance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace explorer
{

namespace
{

constexpr std::size_t tenQuantiles = 10;

// A double's bits as an unsigned key that sorts as the double does.
std::uint64_t sortKey(double value)
{
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits >> 63) != 0 ? ~bits : bits | (std::uint64_t{ 1 } << 63);
}

// Each listed row's rank among them, ties taking their mean rank (from 1), in `ranks`; the rows
// come in the order of their values.
template<typename ValueOf>
void rankInOrder(const std::vector<std::uint32_t>& ordered,
                 const std::vector<char>& complete,
                 ValueOf valueOf,
                 std::vector<float>& ranks,
                 std::vector<std::uint32_t>& kept)
{
  kept.clear();
  for (std::uint32_t row : ordered)
    if (complete[row])
      kept.push_back(row);
  for (std::size_t first = 0; first < kept.size();)
  {
    std::size_t last = first + 1;
    while (last < kept.size() && valueOf(kept[last]) == valueOf(kept[first]))
      ++last;
    const double mean = (static_cast<double>(first + 1) + static_cast<double>(last)) / 2;
    for (std::size_t i = first; i < last; ++i)
      ranks[kept[i]] = static_cast<float>(mean);
    first = last;
  }
}

// Ranks are whole or half numbers up to the number of cases: exact as floats, which halves the
// memory two columns of ranks take.
double pearson(const std::vector<std::uint32_t>& rows,
               const std::vector<float>& a,
               const std::vector<float>& b)
{
  const auto n = static_cast<double>(rows.size());
  double meanA = 0;
  double meanB = 0;
  for (std::uint32_t row : rows)
  {
    meanA += a[row];
    meanB += b[row];
  }
  meanA /= n;
  meanB /= n;
  double ab = 0;
  double aa = 0;
  double bb = 0;
  for (std::uint32_t row : rows)
  {
    const double da = a[row] - meanA;
    const double db = b[row] - meanB;
    ab += da * db;
    aa += da * da;
    bb += db * db;
  }
  return aa > 0 && bb > 0 ? ab / std::sqrt(aa * bb) : std::numeric_limits<double>::quiet_NaN();
}

// The share of the output's variance between groups (each row's group in `group`).
double correlationRatio(const std::vector<std::uint32_t>& rows,
                        const double* output,
                        const std::vector<int>& group,
                        std::size_t groups)
{
  std::vector<double> sum(groups, 0.0);
  std::vector<double> count(groups, 0.0);
  double total = 0;
  for (std::uint32_t row : rows)
  {
    const auto g = static_cast<std::size_t>(group[row]);
    sum[g] += output[row];
    count[g] += 1;
    total += output[row];
  }
  const double mean = total / static_cast<double>(rows.size());
  double all = 0;
  for (std::uint32_t row : rows)
    all += (output[row] - mean) * (output[row] - mean);
  double between = 0;
  for (std::size_t g = 0; g < groups; ++g)
    if (count[g] > 0)
    {
      const double d = sum[g] / count[g] - mean;
      between += count[g] * d * d;
    }
  return all > 0 ? std::clamp(between / all, 0.0, 1.0) : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

std::vector<std::uint32_t> orderOf(const double* values, std::size_t rows)
{
  OrderScratch scratch;
  std::vector<std::uint32_t> order;
  orderOf(values, rows, scratch, order);
  return order;
}

void orderOf(const double* values,
             std::size_t rows,
             OrderScratch& scratch,
             std::vector<std::uint32_t>& order)
{
  // Sorted by the upper 32 bits of each value's sort key, row in the lower (two passes of a
  // radix sort of 16 bits), then put right where values share those bits: the order is nearly
  // right, so an insertion sort by the values themselves costs little.
  std::vector<std::uint64_t>& keys = scratch.keys;
  std::vector<std::uint64_t>& sorted = scratch.sorted;
  keys.clear();
  keys.reserve(rows);
  for (std::size_t row = 0; row < rows; ++row)
    if (!std::isnan(values[row]))
      keys.push_back((sortKey(values[row]) & 0xffffffff00000000ULL) | row);
  sorted.resize(keys.size());
  std::vector<std::size_t>& start = scratch.start;
  start.assign(65537, 0);
  for (const int shift : { 32, 48 })
  {
    std::fill(start.begin(), start.end(), 0);
    for (std::uint64_t key : keys)
      ++start[((key >> shift) & 0xffff) + 1];
    if (std::any_of(start.begin(), start.end(), [&](std::size_t n) { return n == keys.size(); }))
      continue;
    for (std::size_t d = 1; d < start.size(); ++d)
      start[d] += start[d - 1];
    for (std::uint64_t key : keys)
      sorted[start[(key >> shift) & 0xffff]++] = key;
    keys.swap(sorted);
  }
  order.resize(keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i)
  {
    const auto row = static_cast<std::uint32_t>(keys[i] & 0xffffffffULL);
    std::size_t at = i;
    // Equal values keep their rows' order: only a smaller value moves ahead.
    for (; at > 0 && values[row] < values[order[at - 1]]; --at)
      order[at] = order[at - 1];
    order[at] = row;
  }
}

std::vector<InputImportance> importanceOf(const double* output,
                                          std::size_t rowCount,
                                          const std::vector<InputColumn>& inputs,
                                          const std::vector<std::uint32_t>* rows)
{
  std::vector<char> considered(rowCount, rows ? 0 : 1);
  if (rows)
    for (std::uint32_t row : *rows)
      if (row < rowCount)
        considered[row] = 1;
  OrderScratch scratch;
  std::vector<std::uint32_t> outputOrder;
  orderOf(output, rowCount, scratch, outputOrder);
  std::vector<std::uint32_t> inputOrder;

  // Reused from input to input: fresh memory is what costs most at a million cases.
  std::vector<char> complete(rowCount);
  std::vector<float> outputRanks(rowCount);
  std::vector<float> inputRanks(rowCount);
  std::vector<int> group(rowCount);
  std::vector<std::uint32_t> kept;
  std::vector<std::uint32_t> inputKept;
  kept.reserve(rowCount);
  inputKept.reserve(rowCount);

  std::vector<InputImportance> result;
  for (const InputColumn& input : inputs)
  {
    InputImportance importance;
    importance.name = input.name;
    for (std::size_t row = 0; row < rowCount; ++row)
      complete[row] =
        static_cast<char>(considered[row] && !std::isnan(output[row]) &&
                          (input.numbers ? !std::isnan(input.numbers[row])
                                         : input.categories && input.categories[row] >= 0));
    rankInOrder(
      outputOrder,
      complete,
      [output](std::uint32_t row) { return output[row]; },
      outputRanks,
      kept);
    importance.cases = kept.size();
    if (kept.size() < 3)
    {
      result.push_back(importance);
      continue;
    }

    std::size_t groups = 0;
    if (input.categories)
    {
      for (std::uint32_t row : kept)
      {
        group[row] = input.categories[row];
        groups = std::max(groups, static_cast<std::size_t>(input.categories[row]) + 1);
      }
    }
    else
    {
      const double* x = input.numbers;
      orderOf(x, rowCount, scratch, inputOrder);
      rankInOrder(
        inputOrder, complete, [x](std::uint32_t row) { return x[row]; }, inputRanks, inputKept);
      importance.rankCorrelation = pearson(kept, inputRanks, outputRanks);
      // Few values are groups of their own; more are cut into ten quantiles, a value's cases
      // all in the quantile where its first one falls.
      std::size_t distinct = 0;
      for (std::size_t i = 0; i < inputKept.size() && distinct <= tenQuantiles; ++i)
        if (i == 0 || x[inputKept[i]] != x[inputKept[i - 1]])
          ++distinct;
      const bool few = distinct <= tenQuantiles;
      std::size_t value = 0;
      for (std::size_t i = 0; i < inputKept.size(); ++i)
      {
        const std::uint32_t row = inputKept[i];
        if (i > 0 && x[row] == x[inputKept[i - 1]])
        {
          group[row] = group[inputKept[i - 1]];
          continue;
        }
        group[row] =
          few ? static_cast<int>(value++) : static_cast<int>(i * tenQuantiles / inputKept.size());
      }
      groups = few ? distinct : tenQuantiles;
    }
    importance.correlationRatio = correlationRatio(kept, output, group, groups);
    result.push_back(importance);
  }
  std::stable_sort(result.begin(),
                   result.end(),
                   [](const InputImportance& a, const InputImportance& b)
                   {
                     if (std::isnan(b.correlationRatio))
                       return !std::isnan(a.correlationRatio);
                     return a.correlationRatio > b.correlationRatio;
                   });
  return result;
}

} // namespace explorer
