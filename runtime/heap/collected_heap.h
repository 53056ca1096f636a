// The collected heap: the Boehm-Demers-Weiser collector, libgc. The default.
#pragma once

#include <cstddef>

#include "runtime/heap/heap_backend.h"

namespace vorn::runtime {

// How much memory the collector may take to save time.
struct CollectorTuning {
  std::size_t roomBytes;      // had at the start, and allocated at least between two collections
  unsigned freeSpaceDivisor;  // room is made for about 1 in this number of what is alive
  std::size_t recentBlocks;   // of each thread that stay alive
  bool hugePages;             // under a large heap
};

// Initialises the collector library. Call once.
HeapBackend* makeCollectedHeap(const CollectorTuning& tuning);

}  // namespace vorn::runtime
