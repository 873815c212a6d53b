#include "common_vtk/vtkArrayOver.h"

#include <mutex>
#include <unordered_map>

namespace
{

// The owners of the buffers VTK arrays read in place, one entry per array made, each let go
// when VTK frees that buffer. VTK takes a plain function to free a buffer; this is where the
// function finds whom to let go. Never destroyed: a buffer may be freed by a static object's
// destructor at exit.
struct KeptOwners
{
  std::mutex mutex;
  std::unordered_multimap<const void*, std::shared_ptr<const void>> owners;
};

KeptOwners& keptOwners()
{
  static auto* kept = new KeptOwners();
  return *kept;
}

} // namespace

namespace vtkArrayOverDetail
{

void keepUntilFreed(const void* values, std::shared_ptr<const void> owner)
{
  KeptOwners& kept = keptOwners();
  const std::lock_guard<std::mutex> lock(kept.mutex);
  kept.owners.emplace(values, std::move(owner));
}

void releaseKept(void* values)
{
  std::shared_ptr<const void> released; // let go after the lock
  KeptOwners& kept = keptOwners();
  const std::lock_guard<std::mutex> lock(kept.mutex);
  const auto found = kept.owners.find(values);
  if (found != kept.owners.end())
  {
    released = std::move(found->second);
    kept.owners.erase(found);
  }
}

} // namespace vtkArrayOverDetail
