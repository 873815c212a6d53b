#include "views/importance/Importance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iterator>

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

// Visits each kept row with its rank among the kept rows, ties taking their mean rank (from 1);
// `order` has the rows in the order of their values, kept or not (rows of one value stand
// together, whichever are kept). Returns how many rows were kept.
template<typename ValueOf, typename Kept, typename Visit>
std::size_t forEachRank(const std::vector<std::uint32_t>& order,
                        ValueOf valueOf,
                        Kept kept,
                        Visit visit)
{
  std::size_t ranked = 0;
  for (std::size_t first = 0; first < order.size();)
  {
    std::size_t last = first + 1;
    while (last < order.size() && valueOf(order[last]) == valueOf(order[first]))
      ++last;
    std::size_t tied = 0;
    for (std::size_t i = first; i < last; ++i)
      tied += kept(order[i]) ? 1 : 0;
    const double mean = (static_cast<double>(ranked + 1) + static_cast<double>(ranked + tied)) / 2;
    for (std::size_t i = first; i < last; ++i)
      if (kept(order[i]))
        visit(order[i], mean);
    ranked += tied;
    first = last;
  }
  return ranked;
}

// The correlation of the input's ranks with the output's over the input's kept rows, in the
// input's order. Each row's input rank is known as its ties are walked, so none is kept; ranks
// of n rows have the mean (n + 1) / 2 whatever the ties.
template<typename ValueOf>
double rankCorrelation(const std::vector<std::uint32_t>& inputKept,
                       ValueOf inputValueOf,
                       const std::vector<float>& outputRanks)
{
  const double mean = (static_cast<double>(inputKept.size()) + 1) / 2;
  double ab = 0;
  double aa = 0;
  double bb = 0;
  forEachRank(
    inputKept,
    inputValueOf,
    [](std::uint32_t) { return true; },
    [&](std::uint32_t row, double rank)
    {
      const double da = rank - mean;
      const double db = outputRanks[row] - mean;
      ab += da * db;
      aa += da * da;
      bb += db * db;
    });
  return aa > 0 && bb > 0 ? ab / std::sqrt(aa * bb) : std::numeric_limits<double>::quiet_NaN();
}

// The output's sum and count of kept rows in each group, its rows' groups told one row at a time
// (no list of every row's group is kept).
struct GroupSums
{
  explicit GroupSums(std::size_t groups)
    : sum(groups, 0.0)
    , count(groups, 0.0)
  {
  }
  void add(std::size_t group, double value)
  {
    if (group >= sum.size())
    {
      sum.resize(group + 1, 0.0);
      count.resize(group + 1, 0.0);
    }
    sum[group] += value;
    count[group] += 1;
  }
  std::vector<double> sum;
  std::vector<double> count;
};

// The share of the output's variance between groups.
double correlationRatio(const std::vector<char>& kept,
                        std::size_t rows,
                        const double* output,
                        const GroupSums& groups)
{
  double total = 0;
  for (double s : groups.sum)
    total += s;
  const double mean = total / static_cast<double>(rows);
  double all = 0;
  for (std::size_t row = 0; row < kept.size(); ++row)
    if (kept[row])
      all += (output[row] - mean) * (output[row] - mean);
  const std::vector<double>& sum = groups.sum;
  const std::vector<double>& count = groups.count;
  double between = 0;
  for (std::size_t g = 0; g < sum.size(); ++g)
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
  // Sorted by the upper 32 bits of each value's sort key (two passes of a radix sort of 16 bits,
  // the first reading the values, the second writing rows), then put right where values share
  // those bits: the order is nearly right, so an insertion sort by the values themselves costs
  // little. In between, each row and its key's upper 16 bits: ten million of them are 60 MB.
  std::vector<std::uint32_t>& between = scratch.rows;
  std::vector<std::uint16_t>& upper = scratch.upper;
  std::vector<std::size_t>& start = scratch.start;
  const auto keyOf = [values](std::size_t row) { return sortKey(values[row]); };
  const auto digit = [](std::uint64_t key, int shift)
  { return static_cast<std::uint16_t>((key >> shift) & 0xffff); };
  // Counts each digit's keys into start[digit + 1], then turns counts into starts; false when
  // every key has the same digit, and the pass would leave the order as it is.
  const auto starts = [&start](std::size_t total)
  {
    if (std::any_of(start.begin(), start.end(), [&](std::size_t n) { return n == total; }))
      return false;
    for (std::size_t d = 1; d < start.size(); ++d)
      start[d] += start[d - 1];
    return true;
  };

  std::size_t present = 0;
  start.assign(65537, 0);
  for (std::size_t row = 0; row < rows; ++row)
    if (!std::isnan(values[row]))
    {
      ++start[digit(keyOf(row), 32) + 1];
      ++present;
    }
  between.resize(present);
  upper.resize(present);
  const bool byLower = starts(present);
  std::size_t next = 0;
  for (std::size_t row = 0; row < rows; ++row)
    if (!std::isnan(values[row]))
    {
      const std::uint64_t key = keyOf(row);
      const std::size_t at = byLower ? start[digit(key, 32)]++ : next++;
      between[at] = static_cast<std::uint32_t>(row);
      upper[at] = digit(key, 48);
    }

  std::fill(start.begin(), start.end(), 0);
  for (std::uint16_t d : upper)
    ++start[d + 1];
  const bool byUpper = starts(present);
  order.resize(present);
  next = 0;
  for (std::size_t i = 0; i < present; ++i)
    order[byUpper ? start[upper[i]]++ : next++] = between[i];

  for (std::size_t i = 1; i < order.size(); ++i)
  {
    const std::uint32_t row = order[i];
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
  // The rows listed; without a list, every row (and no list of them).
  std::vector<char> listed(rows ? rowCount : 0, 0);
  if (rows)
    for (std::uint32_t row : *rows)
      if (row < rowCount)
        listed[row] = 1;
  const auto considered = [&](std::size_t row) { return !rows || listed[row]; };
  // Each order is kept at its largest from the start: an input with more values than the one
  // before would otherwise move its keys and rows to a larger block while both are held, a
  // moment at which ten million cases hold 120 MB more.
  OrderScratch scratch;
  scratch.rows.reserve(rowCount);
  scratch.upper.reserve(rowCount);
  std::vector<std::uint32_t> outputOrder;
  orderOf(output, rowCount, scratch, outputOrder);
  std::vector<std::uint32_t> inputOrder;
  inputOrder.reserve(rowCount);

  // Reused from input to input: fresh memory is what costs most at a million cases. The rows
  // that count for an input are flagged, not listed, and its groups are summed as they are found:
  // two lists of every row fewer (80 MB at ten million cases).
  std::vector<char> complete(rowCount);
  // Ranks are whole or half numbers up to the number of cases: floats halve their memory.
  std::vector<float> outputRanks(rowCount);
  const auto isComplete = [&complete](std::uint32_t row) { return complete[row] != 0; };

  std::vector<InputImportance> result;
  for (const InputColumn& input : inputs)
  {
    InputImportance importance;
    importance.name = input.name;
    for (std::size_t row = 0; row < rowCount; ++row)
      complete[row] =
        static_cast<char>(considered(row) && !std::isnan(output[row]) &&
                          (input.numbers ? !std::isnan(input.numbers[row])
                                         : input.categories && input.categories[row] >= 0));
    const std::size_t count = forEachRank(
      outputOrder,
      [output](std::uint32_t row) { return output[row]; },
      isComplete,
      [&outputRanks](std::uint32_t row, double rank)
      { outputRanks[row] = static_cast<float>(rank); });
    importance.cases = count;
    if (count < 3)
    {
      result.push_back(importance);
      continue;
    }

    GroupSums groups(tenQuantiles);
    if (input.categories)
    {
      for (std::size_t row = 0; row < rowCount; ++row)
        if (complete[row])
          groups.add(static_cast<std::size_t>(input.categories[row]), output[row]);
    }
    else
    {
      const double* x = input.numbers;
      orderOf(x, rowCount, scratch, inputOrder);
      // The input's order is this input's alone: its complete rows are kept in place.
      std::vector<std::uint32_t>& inputKept = inputOrder;
      inputKept.erase(std::remove_if(inputKept.begin(),
                                     inputKept.end(),
                                     [&](std::uint32_t row) { return !isComplete(row); }),
                      inputKept.end());
      importance.rankCorrelation = rankCorrelation(
        inputKept, [x](std::uint32_t row) { return x[row]; }, outputRanks);
      // Few values are groups of their own; more are cut into ten quantiles, a value's cases
      // all in the quantile where its first one falls.
      std::size_t distinct = 0;
      for (std::size_t i = 0; i < inputKept.size() && distinct <= tenQuantiles; ++i)
        if (i == 0 || x[inputKept[i]] != x[inputKept[i - 1]])
          ++distinct;
      const bool few = distinct <= tenQuantiles;
      std::size_t value = 0;
      std::size_t group = 0;
      for (std::size_t i = 0; i < inputKept.size(); ++i)
      {
        const std::uint32_t row = inputKept[i];
        if (i == 0 || x[row] != x[inputKept[i - 1]])
          group = few ? value++ : i * tenQuantiles / inputKept.size();
        groups.add(group, output[row]);
      }
    }
    importance.correlationRatio = correlationRatio(complete, count, output, groups);
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
