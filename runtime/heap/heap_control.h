// Starting and stopping the heap, and what the embedding API asks of it.
#pragma once

#include <vorn/runtime.h>

#include <cstdint>

#include "runtime/heap/heap_backend.h"

namespace vorn::runtime {

// More room at the start than any machine gives would only overflow.
inline constexpr unsigned kMostRoomMegabytes = 262'144;

// The options that null stands for: the collected heap.
[[nodiscard]] vorn_runtime_options defaultOptions();

// Starts the heap that the options name, and restarts a stopped one with the new options. False for options that make
// no sense, for a heap of another kind than the one that was started before, when the heap cannot be made, or beside a
// collections library of another version, which is told on stderr.
bool startHeap(const vorn_runtime_options& options);

// Ends collecting until the heap is started again.
void stopHeap();

// The heap; started with the defaults when nobody has started one. A stopped heap stays stopped.
HeapBackend& startedHeap();

// Arms or disarms the allocation failure of the calling thread; see vorn_heap_fail_allocation.
void armAllocationFailure(std::int64_t after);

}  // namespace vorn::runtime
