// A hit in an image cache client holding ten thousand entries, against a lookup in an unlocked
// std::unordered_map of the same names.

#include "BenchSupport.h"
#include "images/ImageCache.h"

#include <QImage>

#include <string>
#include <unordered_map>
#include <vector>

namespace
{

std::vector<std::string> names()
{
  std::vector<std::string> result;
  const long long count = bench::size(10000, 100);
  for (long long i = 0; i < count; ++i)
    result.push_back("/studies/sample/images/" + std::to_string(1000 + i) + "_trajectory.png");
  return result;
}

void CacheHit_Library(benchmark::State& state)
{
  const auto files = names();
  ImageCache cache;
  auto client = cache.imageLoader();
  // The files do not exist: each entry holds a null image, which is cached like any other.
  for (const auto& file : files)
    client->image(file);
  std::size_t i = 0;
  for (auto _ : state)
  {
    benchmark::DoNotOptimize(client->image(files[i]));
    i = (i + 1) % files.size();
  }
}

void CacheHit_UnlockedMap(benchmark::State& state)
{
  const auto files = names();
  std::unordered_map<std::string, std::shared_ptr<QImage>> map;
  for (const auto& file : files)
    map.emplace(file, std::make_shared<QImage>());
  std::size_t i = 0;
  for (auto _ : state)
  {
    std::shared_ptr<QImage> image = map.find(files[i])->second;
    benchmark::DoNotOptimize(image);
    i = (i + 1) % files.size();
  }
}

} // namespace

BENCHMARK(CacheHit_Library);
BENCHMARK(CacheHit_UnlockedMap);

QUEN_BENCH_MAIN()
