// The balanced ordered tree of sorted maps.
//
// A red-black tree with parent pointers (Guibas and Sedgewick, "A dichromatic framework for balanced trees", 1978;
// Cormen, Leiserson, Rivest and Stein, "Introduction to Algorithms", chapter 13), where a missing child is a null
// pointer and black.
//
// Invariants, checked by validateOrderedTable (keyed_validation.h):
//   - the root is black, a red node's children are black, and every way from the root to a missing child passes the
//     same number of black nodes;
//   - each child names its parent; `count` nodes hang below the root, all of the pool, and no other node is in use;
//   - keys ascend from left to right, as far as user code orders them consistently;
//   - `changes` differs after every change of the tree.
// The hashes of keys are not looked at, so that keys may come without. A table lives in a record inside its object's
// block, starts empty without allocating, and is never destroyed.
//
// A std::map takes 72 bytes and a block of its own for each element, a million blocks for a million, where this takes
// 64 bytes and 3,927 blocks. And it cannot start a search again when a key's ordering hook changes the tree under it.
//
// Nothing in this file locks. What is defined here may be used by the runtime; the rest only by this library.
#pragma once

#include <cstddef>
#include <cstdint>

#include "collections/core/port/collection_key.h"
#include "collections/keyed/map_entry.h"
#include "collections/keyed/node_pool.h"

namespace vorn::collections {

// The order of keys as compareNativeCollectionKeys gives it. The common pairs are decided here, since a search meets
// one pair per level.
inline int orderOfKeys(const NativeCollectionKey& left, const NativeCollectionKey& right) {
  using Tag = NativeCollectionKey::Tag;
  if (left.tag == Tag::Integer && right.tag == Tag::Integer) {
    const auto a = static_cast<std::int64_t>(left.words[0]);
    const auto b = static_cast<std::int64_t>(right.words[0]);
    if (a == b) return 0;
    return a > b ? 1 : -1;
  }
  return compareNativeCollectionKeys(left, right);
}

class OrderedTable {
 public:
  enum Side : unsigned { Left = 0, Right = 1 };

  struct Node {
    std::uintptr_t parentAndColour;  // the lowest bit is set in a red node
    Node* children[2];
    NativeCollectionKey key;
    NativeMapEntry entry;

    Node*& poolLink() { return children[Left]; }
    [[nodiscard]] Node* parent() const { return reinterpret_cast<Node*>(parentAndColour & ~std::uintptr_t{1}); }
    [[nodiscard]] bool red() const { return (parentAndColour & 1) != 0; }
  };
  static_assert(sizeof(Node) == 64, "a node is one cache line");

  OrderedTable() = default;
  OrderedTable(const OrderedTable&) = delete;
  OrderedTable& operator=(const OrderedTable&) = delete;

  [[nodiscard]] std::uint64_t count() const { return count_; }
  [[nodiscard]] std::uint64_t changes() const { return changes_; }

  // The node with the smallest key, or null.
  [[nodiscard]] Node* first() const { return root_ != nullptr ? outermost(root_, Left) : nullptr; }

  // The node after this one in ascending order, or null.
  [[nodiscard]] static Node* next(const Node* node) {
    if (node->children[Right] != nullptr) return outermost(node->children[Right], Left);
    Node* parent = node->parent();
    while (parent != nullptr && parent->children[Right] == node) {
      node = parent;
      parent = node->parent();
    }
    return parent;
  }

  // Calls visit(key, entry) for every element in ascending order. It must not change the table.
  template <class Visit>
  void forEach(Visit visit) const {
    for (const Node* node = first(); node != nullptr; node = next(node)) visit(node->key, node->entry);
  }

  // Walks the nodes in ascending order.
  class Cursor {
   public:
    explicit Cursor(Node* first) : next_(first) {}

    // The next node, or null after the last. The table must not have changed since the cursor was made.
    Node* next() {
      Node* const node = next_;
      if (node != nullptr) next_ = OrderedTable::next(node);
      return node;
    }

   private:
    Node* next_;
  };

  // A cursor before the first node.
  [[nodiscard]] Cursor walk() const { return Cursor(first()); }

  // Where a key is, or where it would hang: `node` is null when it is absent, and then a new node goes to `side` of
  // `parent` (null for the root). `failed` tells that user code raised an error during the search.
  struct Place {
    Node* node = nullptr;
    Node* parent = nullptr;
    Side side = Left;
    bool failed = false;
  };

  // The place of a key that compares without user code. Does not allocate.
  [[nodiscard]] Place findPlain(const NativeCollectionKey& key) const {
    if (key.tag == NativeCollectionKey::Tag::Integer) return findInteger(key);
    Node* parent = nullptr;
    Side side = Left;
    for (Node* node = root_; node != nullptr; node = node->children[side]) {
      const int order = orderOfKeys(key, node->key);
      if (order == 0) return {node, nullptr, Left, false};
      parent = node;
      side = order > 0 ? Right : Left;
    }
    return {nullptr, parent, side, false};
  }

  // The place of a key. For a key that compares by user code, that code may change this very table: the search then
  // starts again, and after kMaxRestarts times looks for the very same key by identity, so that it ends. The result
  // holds for the table as it is on return.
  [[nodiscard]] Place find(const NativeCollectionKey& key) const {
    if (!key.comparesByUserCode()) return findPlain(key);
    return findByUserCode(key);
  }

  // Makes the next insert() possible, whatever its key. Allocates; throws std::bad_alloc with the elements unchanged.
  void makeRoom(const Place& /*absent*/, const NativeCollectionKey& /*key*/) { pool_.makeRoom(); }

  // Links a new element at the place that find() gave, after makeRoom(). Neither allocates nor runs user code.
  void insert(const Place& place, const NativeCollectionKey& key, const NativeMapEntry& entry);

  // Removes the element that find() found. Neither allocates nor runs user code.
  void remove(const Place& found);

  // Empties the table and leaves the nodes to the collector.
  void clear() {
    pool_.clear();
    root_ = nullptr;
    count_ = 0;
    ++changes_;
  }

  [[nodiscard]] const Node* root() const { return root_; }
  [[nodiscard]] const NodePool<Node>& pool() const { return pool_; }

 private:
  // The same for an integer, which maps have most often and almost always among integers. No branch depends on which
  // side a level takes: half of them would be mispredicted, and searches that follow each other could not overlap. With
  // a branch, a million entries took up to twice as long.
  [[nodiscard]] Place findInteger(const NativeCollectionKey& key) const {
    const auto wanted = static_cast<std::int64_t>(key.words[0]);
    Node* parent = nullptr;
    unsigned side = Left;
    for (Node* node = root_; node != nullptr; node = node->children[side]) {
      if (node->key.tag != NativeCollectionKey::Tag::Integer) [[unlikely]] {
        const int order = orderOfKeys(key, node->key);
        if (order == 0) return {node, nullptr, Left, false};
        side = order > 0 ? Right : Left;
      } else {
        const auto number = static_cast<std::int64_t>(node->key.words[0]);
        if (number == wanted) [[unlikely]]
          return {node, nullptr, Left, false};
        side = static_cast<unsigned>(wanted > number);
      }
      parent = node;
    }
    return {nullptr, parent, static_cast<Side>(side), false};
  }

  [[nodiscard]] static Node* outermost(Node* node, Side side) {
    while (node->children[side] != nullptr) node = node->children[side];
    return node;
  }

  [[nodiscard]] Place findByUserCode(const NativeCollectionKey& key) const;
  [[nodiscard]] Place findIdentical(const NativeCollectionKey& key) const;
  void replaceChild(Node* parent, const Node* child, Node* replacement);
  void rotate(Node* node, Side side);
  void rebalanceAfterInsert(Node* node);
  void rebalanceAfterRemove(Node* parent, Side side);

  Node* root_ = nullptr;
  std::uint64_t count_ = 0;
  std::uint64_t changes_ = 0;
  NodePool<Node> pool_;
};

}  // namespace vorn::collections
