#pragma once

// Random use of the explorer in a real window: clicks and drags where a user's pointer goes, edits
// in the settings panel, tabs, undo and redo, settings saved and loaded, Fit to Data, zoom and
// derived variables, drawn from a seed so that a run can be replayed.

#include <cstddef>
#include <map>
#include <ostream>
#include <string>

namespace explorer
{
class ExplorerWindow;
}

namespace soak
{

/// Writes a study of `runs` runs into `folder` (a sample study without images of its own) whose
/// cases carry two images each, drawn from a few hundred files shared between the runs.
void writeStudy(const std::string& folder, int runs);

struct Report
{
  int steps = 0;
  /// How many times each kind of action ran.
  std::map<std::string, int> actions;
  /// Resident memory after the first 1,000 steps (the first tenth of a run under 2,000) and at
  /// the end, both measured with the window brought back to what it showed after those steps
  /// (settings, tabs, selection).
  std::size_t residentAfterWarmUp = 0;
  std::size_t residentAtEnd = 0;
  /// The bytes of the blocks the program holds from its allocator, at the same two moments.
  std::size_t heapAfterWarmUp = 0;
  std::size_t heapAtEnd = 0;
  /// Steps on the undo stack at the end, derived variables the study held at most, and selection
  /// changes: what the actions did.
  int undoSteps = 0;
  std::size_t mostDerivedVariables = 0;
  int selectionChanges = 0;
  /// Whether undoing every step gave the settings the window started with; if not, the first
  /// line that differs.
  bool undoneToStart = false;
  std::string firstDifference;
};

/// Runs `steps` random actions seeded by `seed` over the window (which shows a study), then
/// undoes every step. `scratch` is a folder for saved settings; `log`, when given, hears each
/// action before it runs (the last line names the action that failed, if one does).
Report run(explorer::ExplorerWindow& window,
           int steps,
           unsigned seed,
           const std::string& scratch,
           std::ostream* log = nullptr);

/// The resident memory of this process, in bytes.
std::size_t residentMemory();

/// The bytes of the blocks this process holds from its allocator (ASan's when built with it).
std::size_t heapInUse();

} // namespace soak
