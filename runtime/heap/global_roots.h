// The root slots of the whole process (vorn_root_add).
#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace vorn::runtime {

// Slots sit in an array with holes, so that adding and removing one is a single store that a collector sees or does
// not. Threads change the table under its mutex; a collector reads it without, while every other thread is stopped at
// an arbitrary instruction, perhaps holding that mutex.
class GlobalRoots {
 public:
  // The one table. Never destroyed: static objects may remove their slots after main.
  static GlobalRoots& instance();

  GlobalRoots() = default;
  ~GlobalRoots() { delete[] slots_.load(std::memory_order_relaxed); }
  GlobalRoots(const GlobalRoots&) = delete;
  GlobalRoots& operator=(const GlobalRoots&) = delete;

  // Adding a slot twice, or removing one that is not there, changes nothing. Adding throws std::bad_alloc.
  void add(void** slot);
  void remove(void** slot);

  // Calls visit(slot) for each root slot. For collectors.
  template <class Visitor>
  void forEach(Visitor&& visit) const {
    const std::size_t count = count_.load(std::memory_order_acquire);
    const std::atomic<void**>* slots = slots_.load(std::memory_order_acquire);
    for (std::size_t i = 0; i < count; ++i) {
      if (void** slot = slots[i].load(std::memory_order_acquire)) visit(slot);
    }
  }

 private:
  void reserveOne();

  std::mutex mutex_;
  std::unordered_map<void**, std::size_t> places_;
  std::vector<std::size_t> holes_;
  std::size_t capacity_ = 0;
  std::atomic<std::atomic<void**>*> slots_{nullptr};
  std::atomic<std::size_t> count_{0};
};

}  // namespace vorn::runtime
