#include "collections/display/display_guard.h"

#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

thread_local std::unordered_set<const void*> gCollectionDisplayStack;

namespace {

// What one level of nesting may use besides its own frames: hooks of user classes, allocation, a collection.
constexpr std::size_t kReserve = std::size_t{128} << 10;

// The part of the thread's stack that displays may use. A thread that runs on a stack of its own making is not limited.
struct StackBounds {
  std::uintptr_t lowest = 0;

  StackBounds() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
    void* start = nullptr;
    std::size_t size = 0;
    if (pthread_attr_getstack(&attributes, &start, &size) == 0) {
      // A small stack leaves a quarter of itself.
      lowest = reinterpret_cast<std::uintptr_t>(start) + (size / 4 < kReserve ? size / 4 : kReserve);
    }
    pthread_attr_destroy(&attributes);
  }
};

bool isStackUsedUp() {
  static thread_local const StackBounds bounds;
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  return here < bounds.lowest && here + kReserve >= bounds.lowest;
}

}  // namespace

CollectionDisplayGuard::CollectionDisplayGuard(const void* collection) : collection_(collection) {
  if (isStackUsedUp()) throw std::runtime_error("collections are nested too deeply to display");
  active_ = gCollectionDisplayStack.insert(collection).second;
}
