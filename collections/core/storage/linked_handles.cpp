#include "collections/core/storage/linked_handles.h"

#include <new>
#include <utility>

#include "collections/core/port/memory.h"

LinkedHandles::Node* LinkedHandles::nodeAt(std::uint64_t index) {
  Links* at = nullptr;
  if (index < count / 2) {
    at = sentinel.next;
    for (std::uint64_t i = 0; i < index; ++i) at = at->next;
  } else {
    at = &sentinel;
    for (std::uint64_t i = index; i < count; ++i) at = at->previous;
  }
  return static_cast<Node*>(at);
}

void LinkedHandles::insertBefore(Links* position, void* handle) {
  void* block = Vorn_gcAlloc(sizeof(Node));
  if (block == nullptr) throw std::bad_alloc();
  auto* node = new (block) Node{{position, position->previous}, handle};
  position->previous->next = node;
  position->previous = node;
  ++count;
  ++changes;
}

LinkedHandles::Links* LinkedHandles::insertionPoint(std::uint64_t index) {
  Links* at = nullptr;
  if (index <= count / 2) {
    at = sentinel.next;
    for (std::uint64_t i = 0; i < index; ++i) at = at->next;
  } else {
    at = &sentinel;
    for (std::uint64_t i = index; i < count; ++i) at = at->previous;
  }
  return at;
}

void LinkedHandles::insertAt(std::uint64_t index, void* handle) { insertBefore(insertionPoint(index), handle); }

void LinkedHandles::insertAllAt(std::uint64_t index, void* const* handles, std::uint64_t n) {
  // Every node is hooked in at once, so that the collector sees it; when memory runs out, they are taken back.
  Links* const at = insertionPoint(index);
  std::uint64_t linked = 0;
  try {
    for (; linked < n; ++linked) insertBefore(at, handles[linked]);
  } catch (...) {
    for (; linked > 0; --linked) unhook(at->previous);
    throw;
  }
}

void LinkedHandles::reverse() {
  Links* at = &sentinel;
  do {
    std::swap(at->next, at->previous);
    at = at->previous;
  } while (at != &sentinel);
  ++changes;
}
