#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

class ImageFileLoaderInterface;
class QProgressBar;
class QThread;

namespace explorer
{

/// Decodes a study's images in the background, showing its progress, so that the image views
/// find them ready. Decoded images stay in memory while the loader's client holds them: a study
/// of many images is preloaded only up to a budget, the rest load when shown.
class ImagePreloader
{
public:
  static constexpr long long budget = 512LL * 1024 * 1024;

  ~ImagePreloader();

  /// Stops what runs, then decodes these files through `loader` (whose client keeps them),
  /// counting in `progress`.
  void start(std::vector<std::string> paths,
             std::shared_ptr<ImageFileLoaderInterface> loader,
             QProgressBar& progress);
  /// Stops, and waits for the files being decoded.
  void stop();

private:
  QThread* thread = nullptr;
  std::shared_ptr<std::atomic<bool>> stopping;
  std::shared_ptr<ImageFileLoaderInterface> held;
};

} // namespace explorer
