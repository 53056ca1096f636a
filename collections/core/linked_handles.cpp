#include "collections/core/linked_handles.h"

#include <new>

#include "collections/core/runtime_interface.h"

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

void LinkedHandles::insertAt(std::uint64_t index, void* handle) {
  Links* at = nullptr;
  if (index <= count / 2) {
    at = sentinel.next;
    for (std::uint64_t i = 0; i < index; ++i) at = at->next;
  } else {
    at = &sentinel;
    for (std::uint64_t i = index; i < count; ++i) at = at->previous;
  }
  insertBefore(at, handle);
}
