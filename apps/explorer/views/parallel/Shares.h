#pragma once

// Work over millions of lines cut into shares, one thread each.

#include <algorithm>
#include <cstddef>
#include <thread>
#include <vector>

namespace explorer
{

/// How many shares `total` items are cut into: one below 2^18 items (a thread would cost more
/// than it saves), else one per core up to four. `threads` above zero says how many.
inline std::size_t sharesOf(std::size_t total, std::size_t threads = 0)
{
  constexpr std::size_t itemsPerThreadAtLeast = std::size_t(1) << 18;
  constexpr std::size_t threadsAtMost = 4;
  if (threads > 0)
    return threads;
  if (total < itemsPerThreadAtLeast)
    return 1;
  return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, threadsAtMost);
}

/// The first item of a share, `total` items being cut into `shares` (the end of the last share
/// for `share` == `shares`).
inline std::size_t shareStart(std::size_t total, std::size_t shares, std::size_t share)
{
  return total * share / shares;
}

/// Runs work(share) for every share, the first on the calling thread, and returns when all are
/// done.
template<typename Work>
void eachShare(std::size_t shares, const Work& work)
{
  std::vector<std::thread> helpers;
  for (std::size_t share = 1; share < shares; ++share)
    helpers.emplace_back([&work, share] { work(share); });
  work(0);
  for (std::thread& helper : helpers)
    helper.join();
}

} // namespace explorer
