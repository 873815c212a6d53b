#pragma once

// Sorting shared by the tables of the explorer: a row order computed from keys read once per
// row, and column headers that set the sorting settings.

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

class QHeaderView;

namespace plexa
{
template<typename T>
class PropertyAbstract;
template<typename T>
class UndoablePropertyProxy;
}

namespace explorer
{

/// Orders rows (indices into `keys`) by number, NaN last in either direction; ties keep their
/// order.
void sortByNumbers(std::vector<std::size_t>& order,
                   const std::vector<double>& keys,
                   bool descending);
/// Orders rows (indices into `keys`) by text; ties keep their order.
void sortByTexts(std::vector<std::size_t>& order,
                 const std::vector<std::string>& keys,
                 bool descending);

/// A table's sorting settings, undoable: the column ("Sort Column", from -1 for no sorting to
/// the last of `columns`), starting at `first`, and the direction ("Sort Descending").
struct SortSettings
{
  SortSettings(int columns, short first);

  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> column;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> descending;
};

/// A click on a column header sorts by that column, the next click on it the other way round.
/// Both go through the settings, so that they are undone and saved like any other.
void sortOnHeaderClicks(QHeaderView& header,
                        boost::shared_ptr<plexa::PropertyAbstract<short>> column,
                        boost::shared_ptr<plexa::PropertyAbstract<bool>> descending);

} // namespace explorer
