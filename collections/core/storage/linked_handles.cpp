#include "collections/core/storage/linked_handles.h"

#include <algorithm>
#include <cstddef>
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

void LinkedHandles::addBlock() {
  // The sizes are those that the collected heap has without waste; a list of a few elements takes little.
  constexpr std::size_t kSmallestBytes = 96;
  constexpr std::size_t kLargestBytes = 16384;
  std::size_t bytes = kSmallestBytes;
  if (newest != nullptr) bytes = std::min(2 * (sizeof(Block) + newest->capacity * sizeof(Node)), kLargestBytes);
  void* const block = Vorn_gcAlloc(bytes);
  if (block == nullptr) throw std::bad_alloc();
  newest = new (block) Block{newest, nullptr, static_cast<std::uint32_t>((bytes - sizeof(Block)) / sizeof(Node)), 0};
}

void LinkedHandles::insertBefore(Links* position, void* handle) {
  Node* node = takeFrom(newest);
  if (node == nullptr) {
    addBlock();
    node = takeFrom(newest);
  }
  hook(*node, position, handle);
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
