// Reading boxed elements by position while user code may change the list between two reads.
#pragma once

#include <algorithm>
#include <cstdint>

#include "collections/core/storage/list_data.h"

namespace vorn::collections {

// Remembers the linked node of the last position and goes on from there when that is nearer than either end, so that
// visiting positions of a linked list in order costs no more steps than there are nodes between the first and the last;
// a change of the node structure in between makes it find the position anew.
class ObjectCursor {
 public:
  explicit ObjectCursor(ListData& list) : list_(list) {}

  // The handle at `index`, which must be below objectCount() at the time of the call.
  void* at(std::uint64_t index) { return list_.linked ? nodeAt(index)->handle : list_.objects.data[index]; }

  // Replaces the handle at `index`.
  void replace(std::uint64_t index, void* handle) {
    if (list_.linked) {
      nodeAt(index)->handle = handle;
    } else {
      list_.objects.data[index] = handle;
    }
  }

 private:
  LinkedHandles::Node* nodeAt(std::uint64_t index) {
    LinkedHandles& nodes = list_.linkedObjects;
    const std::uint64_t distance = index > index_ ? index - index_ : index_ - index;
    const std::uint64_t fromEnd = std::min(index, nodes.count - index);
    if (node_ == nullptr || changes_ != nodes.changes || distance > fromEnd) {
      node_ = nodes.nodeAt(index);
    } else {
      LinkedHandles::Links* at = node_;
      for (; index_ < index; ++index_) at = at->next;
      for (; index_ > index; --index_) at = at->previous;
      node_ = static_cast<LinkedHandles::Node*>(at);
    }
    index_ = index;
    changes_ = nodes.changes;
    return node_;
  }

  ListData& list_;
  // Not rooted: while `changes_` still holds, the node hangs in the list, and otherwise it is not followed.
  LinkedHandles::Node* node_ = nullptr;
  std::uint64_t index_ = 0;
  std::uint64_t changes_ = 0;
};

}  // namespace vorn::collections
