// The doubly linked storage of linked lists.
#pragma once

#include <cstdint>

// A circular list of handles around a sentinel that lives in the record. Nodes come many at a time, in blocks of the
// scanned heap, and an unhooked one is used again. The heap keeps a block alive by its start alone, so a pointer to a
// node keeps nothing: the record holds the chain of blocks.
//
// Invariants, checked by validateListData (list_validation.h):
//   - sentinel.next is the first node and sentinel.previous the last (both the sentinel itself when empty); `count` nodes
//     lie between;
//   - every node given out by a block of the chain hangs in the list or in the chain of free nodes, and then holds no
//     handle. Blocks but the newest have given out all nodes, and only the newest starts a chain of free ones;
//   - a list that removals emptied keeps one block at most;
//   - `changes` differs after every change of the node structure, so that a walk that ran user code can tell whether its
//     node still stands where it stood.
//
// A std::list takes the same 24 bytes an element, and a block of its own for each: a million for a million, where this
// takes 1,475. And it builds a range in a list of its own and hooks it in at the end: while the last of 1,000 nodes is
// allocated, 999 hang from the native's frame alone, where the collector need not look. And without `changes` a search
// that runs user code finds each position anew: 250,000 steps for 1,000 elements instead of 999.
struct LinkedHandles {
  struct Links {
    Links* next;
    Links* previous;
  };
  struct Node : Links {
    void* handle;
  };
  // The head of a block; its nodes follow.
  struct Block {
    Block* older;
    Node* free;  // of the newest block, the nodes that were unhooked, chained by `next`
    std::uint32_t capacity;
    std::uint32_t used;

    [[nodiscard]] Node* nodes() { return reinterpret_cast<Node*>(this + 1); }
    [[nodiscard]] const Node* nodes() const { return reinterpret_cast<const Node*>(this + 1); }
  };

  Links sentinel{&sentinel, &sentinel};
  std::uint64_t count = 0;
  std::uint64_t changes = 0;
  Block* newest = nullptr;

  LinkedHandles() = default;
  LinkedHandles(const LinkedHandles&) = delete;
  LinkedHandles& operator=(const LinkedHandles&) = delete;

  // Empties the list at once and leaves its blocks to the collector: count 0, the sentinel linked to itself.
  void reset() {
    sentinel.next = sentinel.previous = &sentinel;
    count = 0;
    newest = nullptr;
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

  // The same where a node is to be had without allocating; else false, with nothing changed.
  bool pushBackInPlace(void* handle) {
    Node* const node = takeFrom(newest);
    if (node == nullptr) return false;
    hook(*node, &sentinel, handle);
    return true;
  }

  // The node at `index`, or the sentinel for count; walks forward when index is at most count / 2.
  Links* insertionPoint(std::uint64_t index);

  // Takes a node out. It is free: nothing may follow its links any more.
  void unhook(Links* links) {
    auto* const node = static_cast<Node*>(links);
    node->previous->next = node->next;
    node->next->previous = node->previous;
    *node = Node{{newest->free, nullptr}, nullptr};
    newest->free = node;
    --count;
    ++changes;
    if (count == 0) newest->older = nullptr, newest->free = nullptr, newest->used = 0;
  }

 private:
  // A node without contents; null when there is no block or its nodes are all in use.
  static Node* takeFrom(Block* block) {
    if (block == nullptr) return nullptr;
    if (Node* const node = block->free; node != nullptr) {
      block->free = static_cast<Node*>(node->next);
      return node;
    }
    return block->used != block->capacity ? block->nodes() + block->used++ : nullptr;
  }

  void hook(Node& node, Links* position, void* handle) {
    node = Node{{position, position->previous}, handle};
    position->previous->next = &node;
    position->previous = &node;
    ++count;
    ++changes;
  }

  void addBlock();
};
