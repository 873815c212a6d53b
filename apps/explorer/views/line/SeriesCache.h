#pragma once

#include <QPointer>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QObject;
struct SeriesTable;

namespace explorer
{

/// The series files of a study's runs, read in the background and kept within a memory budget.
/// A file read is kept with its table, or with the reason it could not be read, so that a view
/// names it; the window never waits for a file.
///
/// When the budget is spent, the tables not asked for by the latest request go first, least
/// recently asked for first; a table that still does not fit is not kept, and says so.
class SeriesCache
{
public:
  static constexpr std::size_t defaultBudget = std::size_t{ 512 } * 1024 * 1024;

  struct Entry
  {
    std::shared_ptr<const SeriesTable> table;
    /// Why the file has no table ("missing file", "run.csv:3:2: ... is not a number").
    std::string error;
  };

  explicit SeriesCache(std::size_t budget = defaultBudget);
  ~SeriesCache();
  SeriesCache(const SeriesCache&) = delete;
  SeriesCache& operator=(const SeriesCache&) = delete;

  /// The entry of a file, or null while it is not read.
  const Entry* find(const std::string& path);
  /// Reads the files of `paths` that are not kept, in the background, replacing what an earlier
  /// request left unread. `ready` is called on the thread of `context` as tables come in (at most
  /// every 50 ms, and once all are in), not after `context` is gone.
  void request(const std::vector<std::string>& paths,
               QObject* context,
               std::function<void()> ready);
  /// The files asked for and not read yet.
  std::size_t pending() const;
  /// The bytes the kept tables take.
  std::size_t bytes() const;

private:
  struct Impl;
  std::shared_ptr<Impl> d;
};

} // namespace explorer
