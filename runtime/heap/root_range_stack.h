// The root ranges of one thread, in the order of registration.
//
// Only the owning thread changes the stack, and without a lock: a pair of push and pop is to cost a nanosecond. A
// collector reads it while the owner is stopped at an arbitrary instruction, so every change is a sequence of stores
// after each of which the stack is complete: an entry is written before the count covers it, and a grown array is
// filled before it is published.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace vorn::runtime {

class RootRangeStack {
 public:
  RootRangeStack() = default;
  ~RootRangeStack() { delete[] entries_.load(std::memory_order_relaxed); }
  RootRangeStack(const RootRangeStack&) = delete;
  RootRangeStack& operator=(const RootRangeStack&) = delete;

  void push(void* start, std::size_t bytes) noexcept {
    const std::size_t count = count_.load(std::memory_order_relaxed);
    if (count == capacity_) [[unlikely]]
      grow();
    Entry& entry = entries_.load(std::memory_order_relaxed)[count];
    entry.start.store(start, std::memory_order_relaxed);
    entry.bytes.store(bytes, std::memory_order_relaxed);
    count_.store(count + 1, std::memory_order_release);
  }

  // Removes the youngest range with that start and length; nothing when there is none.
  void remove(const void* start, std::size_t bytes) noexcept {
    const std::size_t count = count_.load(std::memory_order_relaxed);
    if (count != 0) [[likely]] {
      const Entry& youngest = entries_.load(std::memory_order_relaxed)[count - 1];
      if (youngest.start.load(std::memory_order_relaxed) == start &&
          youngest.bytes.load(std::memory_order_relaxed) == bytes) [[likely]] {
        count_.store(count - 1, std::memory_order_release);
        return;
      }
    }
    removeBelowTop(start, bytes);
  }

  void clear() noexcept { count_.store(0, std::memory_order_release); }

  [[nodiscard]] std::size_t size() const noexcept { return count_.load(std::memory_order_relaxed); }

  // Calls visit(first word, end) for each range, cut to whole aligned words. For collectors: the owner is stopped, or
  // is the caller.
  template <class Visitor>
  void forEach(Visitor&& visit) const {
    const std::size_t count = count_.load(std::memory_order_acquire);
    const Entry* entries = entries_.load(std::memory_order_acquire);
    for (std::size_t i = 0; i < count; ++i) {
      const auto start = reinterpret_cast<std::uintptr_t>(entries[i].start.load(std::memory_order_relaxed));
      const std::uintptr_t end = start + entries[i].bytes.load(std::memory_order_relaxed);
      const std::uintptr_t first = (start + kWordMask) & ~kWordMask;
      const std::uintptr_t last = end & ~kWordMask;
      if (first < last) visit(reinterpret_cast<void**>(first), reinterpret_cast<void**>(last));
    }
  }

 private:
  struct Entry {
    std::atomic<void*> start;
    std::atomic<std::size_t> bytes;
  };
  static constexpr std::uintptr_t kWordMask = sizeof(void*) - 1;

  void grow() noexcept;
  void removeBelowTop(const void* start, std::size_t bytes) noexcept;

  std::atomic<Entry*> entries_{nullptr};
  std::atomic<std::size_t> count_{0};
  std::size_t capacity_ = 0;
};

}  // namespace vorn::runtime
