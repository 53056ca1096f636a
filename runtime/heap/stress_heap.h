// The stress heap: a mark-and-sweep collector for tests that collects whenever it can, keeps nothing alive that is not
// rooted, and makes every freed block a trap.
#pragma once

#include "runtime/heap/heap_backend.h"

namespace vorn::runtime {

// Call once. Null when the system has no address space for it.
HeapBackend* makeStressHeap();

// Sets how the stress heap collects from now on.
void setStressSchedule(const StressSchedule& schedule);

}  // namespace vorn::runtime
