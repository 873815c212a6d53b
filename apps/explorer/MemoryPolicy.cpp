#include "MemoryPolicy.h"

#include <malloc.h>

namespace explorer
{

void keepLargeBlocksInHeap()
{
  constexpr int gigabyte = 1 << 30;
  mallopt(M_MMAP_THRESHOLD, gigabyte);
  mallopt(M_TRIM_THRESHOLD, gigabyte);
}

} // namespace explorer
