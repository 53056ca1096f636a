// The collected heap: the Boehm-Demers-Weiser collector, libgc. The default.
#pragma once

#include "runtime/heap/heap_backend.h"

namespace vorn::runtime {

// Initialises the collector library. Call once.
HeapBackend* makeCollectedHeap();

}  // namespace vorn::runtime
