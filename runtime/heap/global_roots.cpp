#include "runtime/heap/global_roots.h"

#include <new>

namespace vorn::runtime {

namespace {

alignas(GlobalRoots) unsigned char storage[sizeof(GlobalRoots)];

}  // namespace

// Where debuggers find the table, zeros before its first use, of a library without a symbol table (tools/gdb).
extern "C" {
[[gnu::visibility("default")]] extern const unsigned char* const vorn_debugger_roots;
const unsigned char* const vorn_debugger_roots = storage;
}

GlobalRoots& GlobalRoots::instance() {
  static auto* const roots = new (storage) GlobalRoots;
  return *roots;
}

void GlobalRoots::add(void** slot) {
  if (slot == nullptr) return;
  const std::lock_guard lock(mutex_);
  if (places_.contains(slot)) return;
  reserveOne();
  // From here on nothing can fail but the map's node, which comes first.
  const std::size_t count = count_.load(std::memory_order_relaxed);
  const std::size_t place = holes_.empty() ? count : holes_.back();
  places_.emplace(slot, place);
  if (!holes_.empty()) holes_.pop_back();
  slots_.load(std::memory_order_relaxed)[place].store(slot, std::memory_order_release);
  if (place == count) count_.store(count + 1, std::memory_order_release);
}

void GlobalRoots::remove(void** slot) {
  const std::lock_guard lock(mutex_);
  const auto found = places_.find(slot);
  if (found == places_.end()) return;
  slots_.load(std::memory_order_relaxed)[found->second].store(nullptr, std::memory_order_release);
  if (found->second + 1 == count_.load(std::memory_order_relaxed)) {
    count_.store(found->second, std::memory_order_release);
  } else {
    holes_.push_back(found->second);
  }
  places_.erase(found);
}

// Makes room for one more slot, and for as many holes as there are slots, so that remove() cannot fail.
void GlobalRoots::reserveOne() {
  const std::size_t count = count_.load(std::memory_order_relaxed);
  if (!holes_.empty() || count < capacity_) return;
  const std::size_t capacity = capacity_ == 0 ? 256 : capacity_ * 2;
  holes_.reserve(capacity);
  auto* grown = new std::atomic<void**>[capacity] {};
  std::atomic<void**>* current = slots_.load(std::memory_order_relaxed);
  for (std::size_t i = 0; i < count; ++i) {
    grown[i].store(current[i].load(std::memory_order_relaxed), std::memory_order_relaxed);
  }
  slots_.store(grown, std::memory_order_release);
  capacity_ = capacity;
  delete[] current;
}

}  // namespace vorn::runtime
