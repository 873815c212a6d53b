#pragma once

#include <cstddef>

class QLabel;
class QProgressBar;
class QStatusBar;

namespace explorer
{

/// The counts in the window's status bar: files not found, cases shown, cases selected; and a
/// progress bar for work in the background.
class WindowStatus
{
public:
  explicit WindowStatus(QStatusBar& bar);

  QProgressBar& progress() const { return *progressBar; }
  /// "4 of 288 cases selected".
  void showSelected(std::size_t selected, std::size_t cases);
  /// "288 cases shown", or "432 of 3,000 cases shown" when filters leave some out.
  void showShown(std::size_t shown, std::size_t cases);
  /// "12 of 40 files not found (12 are URLs): File > Locate Files..."; nothing when all are.
  void showMissingFiles(std::size_t missing, std::size_t urls, std::size_t files);

private:
  QLabel* selected = nullptr;
  QLabel* shown = nullptr;
  QLabel* missingFiles = nullptr;
  QProgressBar* progressBar = nullptr;
};

} // namespace explorer
