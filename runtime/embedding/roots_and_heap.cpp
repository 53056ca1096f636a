// Roots, collections, statistics and allocation failures, as an embedding program or a test sees them.
#include <vorn/runtime.h>

#include "runtime/heap/heap.h"
#include "runtime/heap/heap_control.h"

using namespace vorn::runtime;

void vorn_root_add(void** slot) {
  [&]() noexcept { addGlobalRoot(slot); }();
}

void vorn_root_remove(void** slot) { removeGlobalRoot(slot); }

void vorn_local_root_add(void** slot) {
  [&]() noexcept { attachedThread().roots.push(slot, sizeof(void*)); }();
}

void vorn_local_root_remove(void** slot) { attachedThread().roots.remove(slot, sizeof(void*)); }

void vorn_heap_collect(void) {
  attachedThread();
  startedHeap().collect();
}

void vorn_heap_get_statistics(vorn_heap_statistics* statistics) {
  if (statistics == nullptr) return;
  const HeapUsage usage = startedHeap().usage();
  *statistics = {usage.bytesLive, 0, 0, usage.collections};
  // States keep the counts of the threads that used them and ended, so all states are summed, not only attached ones.
  for (const ThreadState* state = firstThreadState(); state != nullptr; state = state->next) {
    statistics->allocations += state->allocations.load(std::memory_order_relaxed);
    statistics->bytes_allocated += state->bytesAllocated.load(std::memory_order_relaxed);
  }
}

void vorn_heap_fail_allocation(int64_t after) { armAllocationFailure(after); }

int vorn_heap_failure_happened(void) {
  const ThreadState* thread = currentThread;
  return thread != nullptr && thread->failureHappened ? 1 : 0;
}
