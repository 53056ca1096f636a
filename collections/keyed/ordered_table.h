// The balanced ordered table of sorted maps.
//
// Elements stand in places (entry_chunks.h) that a red-black tree puts in order (tree_links.h): place n of the tree is
// element n - 1. What searches look at stands in the tree alone, a word of each key; an element is looked at once it is
// found, or where the words do not decide.
//
// Invariants, checked by validateOrderedTable (keyed_validation.h):
//   - `count` nodes hang in the tree, and keys ascend from left to right, as far as user code orders them consistently;
//   - a node's number is its key's order word, and while there are elements, `sort` is the sort of all their keys, or
//     Mixed, or keys of other sorts have been removed;
//   - places that are free or were never given out hold no element: they are zero but for their tag, kVacant, where
//     they were given out, so that they keep no object alive;
//   - `changes` differs after every change of the tree, or of the memory for elements.
// The hashes of keys are not looked at, so that keys may come without. A table lives in a record inside its object's
// block, which it points into, starts empty without allocating, and is never destroyed.
//
// A std::map takes 72 bytes and a block of its own for each element, a million blocks for a million, where this takes
// 65 bytes and 2,020 blocks. And it cannot start a search again when a key's ordering hook changes the tree under it.
//
// Nothing in this file locks. What is defined here may be used by the runtime; the rest only by this library.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "collections/core/port/collection_key.h"
#include "collections/keyed/entry_chunks.h"
#include "collections/keyed/map_entry.h"
#include "collections/keyed/order_words.h"
#include "collections/keyed/tree_links.h"

namespace vorn::collections {

// The order of keys as compareNativeCollectionKeys gives it, with the common pairs decided here.
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
  using Side = TreeLinks::Side;
  using Link = TreeLinks::Link;

  // The tag of a place that has no element. No key that the runtime makes has it.
  static constexpr auto kVacant = static_cast<NativeCollectionKey::Tag>(0xFF);

  struct Node {
    NativeCollectionKey key;
    NativeMapEntry entry;
  };
  using Chunks = EntryChunks<Node>;

  OrderedTable() = default;
  OrderedTable(const OrderedTable&) = delete;
  OrderedTable& operator=(const OrderedTable&) = delete;

  [[nodiscard]] std::uint64_t count() const { return count_; }
  [[nodiscard]] std::uint64_t changes() const { return changes_; }
  // The same where it stands, for compiled code that walks over the elements.
  [[nodiscard]] const std::uint64_t& changesCounter() const { return changes_; }

  // Calls visit(key, entry) for every element in ascending order. It must not change the table.
  template <class Visit>
  void forEach(Visit visit) const {
    for (std::uint32_t place = tree_.first(); place != 0; place = tree_.at(place).next) {
      const Node& node = at(place);
      visit(node.key, node.entry);
    }
  }

  // Walks the nodes in ascending order.
  class Cursor {
   public:
    explicit Cursor(const OrderedTable& table) : table_(&table), next_(table.tree_.first()) {}

    // The next node, or null after the last. The table must not have changed since the cursor was made.
    Node* next() {
      if (next_ == 0) return nullptr;
      Node& node = table_->at(next_);
      next_ = table_->tree_.at(next_).next;
      return &node;
    }

   private:
    const OrderedTable* table_;
    std::uint32_t next_;
  };

  // A cursor before the first node.
  [[nodiscard]] Cursor walk() const { return Cursor(*this); }

  // Where a key is, or where it would hang: `node` is null when it is absent, and then a new node goes to the gap.
  // `failed` tells that user code raised an error during the search.
  struct Place {
    Node* node = nullptr;
    std::uint32_t place = 0;  // of the node
    TreeLinks::Gap gap = {};
    bool failed = false;

    // Goes on from the node at a place to one of its sides.
    void descend(std::uint32_t from, bool toTheRight) {
      gap = {from, toTheRight ? from : gap.before, toTheRight ? TreeLinks::Right : TreeLinks::Left};
    }
  };

  // The place of a key that compares without user code. Does not allocate.
  [[nodiscard]] Place findPlain(const NativeCollectionKey& key) const {
    if (sort_ == KeySort::Integer && key.tag == NativeCollectionKey::Tag::Integer)
      return locateInteger(static_cast<std::int64_t>(key.words[0]));
    return locateByOrder(key);
  }

  // The node of the key of a number that a signed 64-bit integer holds, without the key; or null.
  [[nodiscard]] Node* findInteger(std::int64_t value) const {
    if (sort_ != KeySort::Integer) [[unlikely]]
      return locateByOrder(integerCollectionKey(value)).node;
    return locateInteger(value).node;
  }

  // The place of a key. For a key that compares by user code, that code may change this very table: the search then
  // starts again, and after kMaxRestarts times looks for the very same key by identity, so that it ends. The result
  // holds for the table as it is on return.
  [[nodiscard]] Place find(const NativeCollectionKey& key) const {
    if (!key.comparesByUserCode()) return findPlain(key);
    return findByUserCode(key);
  }

  // Makes the next insert() possible, whatever its key. Allocates; throws std::bad_alloc or std::length_error with the
  // elements unchanged.
  void makeRoom(const Place& /*absent*/, const NativeCollectionKey& /*key*/) {
    tree_.makeRoom();
    if (tree_.nextPlace() > chunks_.capacity()) [[unlikely]]
      makePlace();
  }

  // Adds a new element at the place that find() gave, after makeRoom(). Neither allocates nor runs user code.
  void insert(const Place& place, const NativeCollectionKey& key, const NativeMapEntry& entry);

  // Removes the element that find() found. Neither allocates nor runs user code.
  void remove(const Place& found);

  // Empties the table and leaves its memory to the collector.
  void clear();

  // For checks and tests.
  [[nodiscard]] const TreeLinks& tree() const { return tree_; }
  [[nodiscard]] const Chunks& chunks() const { return chunks_; }
  [[nodiscard]] KeySort sort() const { return sort_; }
  [[nodiscard]] Node& at(std::uint32_t place) const { return chunks_.at(place - 1); }

 private:
  // The gap where a number would hang; or, if it is in the table, one whose parent is its place. No branch depends on the
  // side that the way takes: half of them would be mispredicted, and searches that follow each other could not overlap.
  // With a branch they took up to twice as long. Compilers make one of two choices, hence the arithmetic.
  [[nodiscard]] TreeLinks::Gap lastTowards(std::int64_t wanted) const {
    static_assert(std::endian::native == std::endian::little);
    const Link* const links = tree_.links();
    std::uint32_t place = tree_.root();
    std::uint32_t before = 0;
    if (place == 0) [[unlikely]]
      return {};
    while (true) {
      const Link& link = links[place];
      std::uint64_t children;
      std::memcpy(&children, link.children, sizeof(children));
      const auto left = static_cast<std::uint32_t>(children);
      const auto right = static_cast<std::uint32_t>(children >> 32);
      const bool toTheRight = wanted > link.order;
      const std::uint32_t next = toTheRight ? right : left;
      before ^= (before ^ place) & (0U - static_cast<std::uint32_t>(toTheRight));
      if (next == 0 || link.order == wanted) return {place, before, toTheRight ? TreeLinks::Right : TreeLinks::Left};
      place = next;
    }
  }

  [[nodiscard]] Place locateInteger(std::int64_t wanted) const {
    const TreeLinks::Gap gap = lastTowards(wanted);
    if (gap.parent != 0 && tree_.at(gap.parent).order == wanted) return {&at(gap.parent), gap.parent};
    return {nullptr, 0, gap};
  }

  [[nodiscard]] Place locateText(const NativeCollectionKey& key) const;
  [[nodiscard]] Place locateByOrder(const NativeCollectionKey& key) const;
  [[nodiscard]] Place findByUserCode(const NativeCollectionKey& key) const;
  [[nodiscard]] Place findIdentical(const NativeCollectionKey& key) const;
  void makePlace();

  TreeLinks tree_;
  Chunks chunks_;
  std::uint64_t changes_ = 0;
  std::uint32_t count_ = 0;
  KeySort sort_ = KeySort::Integer;  // of no meaning in an empty table
};

}  // namespace vorn::collections
