// What a thread is displaying right now: cycles are found by it, and nesting beyond the stack.
#pragma once

#include <unordered_set>

// The collections whose display is running on this thread. The handles are compared, never followed: whoever runs the
// display keeps them alive.
extern thread_local std::unordered_set<const void*> gCollectionDisplayStack;

// Marks a collection as being displayed for a scope. Throws std::bad_alloc, and std::runtime_error "collections are
// nested too deeply to display" before the thread's stack ends: deeper nesting ends in an exception, never in a crash.
class CollectionDisplayGuard {
 public:
  explicit CollectionDisplayGuard(const void* collection);
  ~CollectionDisplayGuard() {
    if (active_) gCollectionDisplayStack.erase(collection_);
  }
  CollectionDisplayGuard(const CollectionDisplayGuard&) = delete;
  CollectionDisplayGuard& operator=(const CollectionDisplayGuard&) = delete;

  // Whether the collection's display is running on this thread already.
  static bool isDisplaying(const void* collection) {
    return !gCollectionDisplayStack.empty() && gCollectionDisplayStack.contains(collection);
  }

 private:
  const void* collection_;
  bool active_ = false;
};
