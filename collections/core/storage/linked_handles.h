// The doubly linked storage of linked lists.
#pragma once

#include <cstdint>

// A circular list of handles around a sentinel that lives in the record. Nodes come from the scanned heap and are
// abandoned when unhooked; an abandoned node keeps its links, but nothing may follow them.
//
// Invariants: sentinel.next is the first node and sentinel.previous the last (both the sentinel itself when empty);
// `count` nodes lie between; `changes` differs after every change of the node structure, so that a walk that ran user
// code can tell whether its node still stands where it stood.
//
// A std::list takes the same 24 bytes an element. But it builds a range in a list of its own and hooks it in at the
// end: while the last of 1,000 nodes is allocated, 999 hang from the native's frame alone, where the collector need not
// look. And without `changes` a search that runs user code finds each position anew: 250,000 steps for 1,000 elements
// instead of 999.
struct LinkedHandles {
  struct Links {
    Links* next;
    Links* previous;
  };
  struct Node : Links {
    void* handle;
  };

  Links sentinel{&sentinel, &sentinel};
  std::uint64_t count = 0;
  std::uint64_t changes = 0;

  LinkedHandles() = default;
  LinkedHandles(const LinkedHandles&) = delete;
  LinkedHandles& operator=(const LinkedHandles&) = delete;

  // Empties the list at once: count 0, the sentinel linked to itself.
  void reset() {
    sentinel.next = sentinel.previous = &sentinel;
    count = 0;
    ++changes;
  }

  // The node at `index` (below count), found from the nearer end: forward from the first node when index is below
  // count / 2, otherwise backward from the sentinel.
  [[nodiscard]] Node* nodeAt(std::uint64_t index);

  // Inserts a handle before `position` (a node or the sentinel). Throws std::bad_alloc, with nothing changed, when the
  // node cannot be had. Allocates; the caller keeps `handle` alive meanwhile.
  void insertBefore(Links* position, void* handle);

  // Inserts a handle before the node at `index` (at most count), walking forward when index is at most count / 2.
  void insertAt(std::uint64_t index, void* handle);

  // Inserts `n` handles, in order, before the node at `index` (at most count). Throws std::bad_alloc with nothing
  // changed.
  void insertAllAt(std::uint64_t index, void* const* handles, std::uint64_t n);

  // Turns the order of the nodes around.
  void reverse();

  void pushBack(void* handle) { insertBefore(&sentinel, handle); }

  // The node at `index`, or the sentinel for count; walks forward when index is at most count / 2.
  Links* insertionPoint(std::uint64_t index);

  void unhook(Links* node) {
    node->previous->next = node->next;
    node->next->previous = node->previous;
    --count;
    ++changes;
  }
};
