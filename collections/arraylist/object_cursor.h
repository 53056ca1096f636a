// Reading boxed elements by position while user code may change the list between two reads.
#pragma once

#include <cstdint>

#include "collections/core/list_data.h"

namespace vorn::collections {

// Remembers the linked node of the last position, so that walking a linked list in either direction costs one step an
// element; a change of the node structure in between makes it find the position anew.
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
    if (node_ == nullptr || changes_ != nodes.changes || index + 1 < index_ || index > index_ + 1) {
      node_ = nodes.nodeAt(index);
    } else if (index > index_) {
      node_ = static_cast<LinkedHandles::Node*>(node_->next);
    } else if (index < index_) {
      node_ = static_cast<LinkedHandles::Node*>(node_->previous);
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
