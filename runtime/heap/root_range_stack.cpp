#include "runtime/heap/root_range_stack.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace vorn::runtime {

namespace {
constexpr std::size_t kFirstCapacity = 64;
}

// Registering a root has no way to fail, so that running out of memory here ends the process. The old array can be
// freed at once: collectors look only while this thread is stopped, and by then the new one is published.
void RootRangeStack::grow() noexcept {
  const std::size_t capacity = capacity_ == 0 ? kFirstCapacity : capacity_ * 2;
  Entry* grown = new (std::nothrow) Entry[capacity];
  if (grown == nullptr) {
    std::fputs("vorn: no memory for the roots of a thread\n", stderr);
    std::abort();
  }
  Entry* current = entries_.load(std::memory_order_relaxed);
  const std::size_t count = count_.load(std::memory_order_relaxed);
  for (std::size_t i = 0; i < count; ++i) {
    grown[i].start.store(current[i].start.load(std::memory_order_relaxed), std::memory_order_relaxed);
    grown[i].bytes.store(current[i].bytes.load(std::memory_order_relaxed), std::memory_order_relaxed);
  }
  entries_.store(grown, std::memory_order_release);
  capacity_ = capacity;
  delete[] current;
}

// Moves the younger ranges down one place. Each entry is emptied before its start changes, so that no instant shows one
// range's start with another's length; the range that is being moved still stands in its old place.
void RootRangeStack::removeBelowTop(const void* start, std::size_t bytes) noexcept {
  Entry* entries = entries_.load(std::memory_order_relaxed);
  const std::size_t count = count_.load(std::memory_order_relaxed);
  for (std::size_t i = count; i-- > 0;) {
    if (entries[i].start.load(std::memory_order_relaxed) != start ||
        entries[i].bytes.load(std::memory_order_relaxed) != bytes)
      continue;
    for (std::size_t j = i; j + 1 < count; ++j) {
      entries[j].bytes.store(0, std::memory_order_release);
      std::atomic_signal_fence(std::memory_order_seq_cst);
      entries[j].start.store(entries[j + 1].start.load(std::memory_order_relaxed), std::memory_order_release);
      std::atomic_signal_fence(std::memory_order_seq_cst);
      entries[j].bytes.store(entries[j + 1].bytes.load(std::memory_order_relaxed), std::memory_order_release);
      std::atomic_signal_fence(std::memory_order_seq_cst);
    }
    count_.store(count - 1, std::memory_order_release);
    return;
  }
}

}  // namespace vorn::runtime
