#pragma once

// Which inputs drive an output: for each input, how the output follows its order (Spearman's
// rank correlation) and how much of the output's variance its groups explain (the correlation
// ratio). Arithmetic only: no study, no widget.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace explorer
{

/// An input's column over the cases: numbers (NaN missing), or the category index of a text
/// value (-1 missing).
struct InputColumn
{
  std::string name;
  const double* numbers = nullptr;
  const int* categories = nullptr;
};

/// What one input says of the output, over the cases that have both values.
struct InputImportance
{
  std::string name;
  /// Spearman's rank correlation, from -1 to 1 (ties take their mean rank); NaN for a text input,
  /// a constant, or fewer than three cases.
  double rankCorrelation = std::numeric_limits<double>::quiet_NaN();
  /// The share of the output's variance between the input's groups, from 0 to 1: a text input's
  /// categories, a number's values when it takes at most ten, else ten quantiles of it. NaN
  /// without variance or with fewer than three cases.
  double correlationRatio = std::numeric_limits<double>::quiet_NaN();
  std::size_t cases = 0;
};

/// Rows in the order of their values, ascending, leaving out missing ones (NaN). Equal values
/// keep their rows' order. Near linear in the rows (a radix sort of the values' upper bits).
std::vector<std::uint32_t> orderOf(const double* values, std::size_t rows);

/// What orderOf works in, kept from one call to the next: at a million cases, fresh memory costs
/// more than the sort.
struct OrderScratch
{
  // Between the two passes of the sort: each row and the upper 16 bits of its key.
  std::vector<std::uint32_t> rows;
  std::vector<std::uint16_t> upper;
  std::vector<std::size_t> start;
};
void orderOf(const double* values,
             std::size_t rows,
             OrderScratch& scratch,
             std::vector<std::uint32_t>& order);

/// The importance of each input for the output over the rows listed in `rows` (all rows when
/// null), sorted by correlation ratio, highest first (NaN last).
std::vector<InputImportance> importanceOf(const double* output,
                                          std::size_t rowCount,
                                          const std::vector<InputColumn>& inputs,
                                          const std::vector<std::uint32_t>* rows = nullptr);

} // namespace explorer
