// The red-black tree of an ordered table, without its keys: how its places hang together.
//
// A red-black tree with parent links (Guibas and Sedgewick, "A dichromatic framework for balanced trees", 1978; Cormen,
// Leiserson, Rivest and Stein, "Introduction to Algorithms", chapter 13). The nodes are elements of one array in
// pointer-free memory and know each other by their numbers, from one on. Each has a number by which searches go, whose
// meaning is its user's, and the next one in ascending order, so that a walk needs no way up and down.
//
// Invariants, checked by validateOrderedTable (keyed_validation.h):
//   - the root is black, a red node's children are black, and every way from the root to a missing child passes the
//     same number of black nodes;
//   - each child names its parent. Every place given out hangs below the root or is free; a free one is zero but for
//     its link in the chain of free ones;
//   - number 0 stands for a missing child: black and without children. Its next one is the first node, and from there
//     the next ones lead through all nodes below the root, from left to right, to number 0.
//
// A search passes 24 bytes a node, where the nodes of a std::map with the same keys have 72, and the collector does not
// look through the array. It grows as a vector does, since a directory of chunks would cost every step a load more.
#pragma once

#include <bit>
#include <cstdint>

namespace vorn::collections {

class TreeLinks {
 public:
  enum Side : unsigned { Left = 0, Right = 1 };

  struct Link {
    std::int64_t order;
    std::uint32_t children[2];
    std::uint32_t parentAndColour;  // the lowest bit is set in a red node
    std::uint32_t next;             // of a free place, the next free one

    [[nodiscard]] std::uint32_t parent() const { return parentAndColour >> 1; }
    [[nodiscard]] bool red() const { return (parentAndColour & 1) != 0; }
  };
  static_assert(sizeof(Link) == 24, "more than two nodes in a cache line");

  // Numbers have a bit less than a word, where the colour is.
  static constexpr std::uint32_t kMostPlaces = 0x7FFFFFFF;

  TreeLinks() = default;
  TreeLinks(const TreeLinks&) = delete;
  TreeLinks& operator=(const TreeLinks&) = delete;

  // The topmost node, and the one with the smallest key; 0 in an empty tree.
  [[nodiscard]] std::uint32_t root() const { return root_; }
  [[nodiscard]] std::uint32_t first() const { return links_ != nullptr ? links_[0].next : 0; }

  // The nodes by number, until the next makeRoom(); null before the first.
  [[nodiscard]] const Link* links() const { return links_; }
  [[nodiscard]] const Link& at(std::uint32_t place) const { return links_[place]; }

  // Makes the next add() possible. Allocates; throws std::bad_alloc or std::length_error with nothing changed.
  void makeRoom() {
    if (free_ == 0 && used_ + 1 >= capacity()) grow();
  }

  // The place that the next add() will give out.
  [[nodiscard]] std::uint32_t nextPlace() const { return free_ != 0 ? free_ : used_ + 1; }

  // Where a node can be added: to a side of `parent` that has no child, after the node `before` in ascending order, which a
  // search passes last of those that it leaves to the right. 0 stands for no node.
  struct Gap {
    std::uint32_t parent = 0;
    std::uint32_t before = 0;
    Side side = Left;
  };

  // Adds a new node there. Gives its number. After makeRoom(); does not allocate.
  std::uint32_t add(const Gap& gap, std::int64_t order);

  // Takes a node out; its place is free. Does not allocate.
  void remove(std::uint32_t place);

  // Leaves the memory to the collector.
  void clear() {
    links_ = nullptr;
    root_ = free_ = used_ = 0;
  }

  // For checks. Places up to used() have been given out; the array has one more than it has room for, number 0.
  [[nodiscard]] std::uint32_t used() const { return used_; }
  [[nodiscard]] std::uint32_t firstFree() const { return free_; }
  [[nodiscard]] std::uint64_t capacity() const { return links_ != nullptr ? std::uint64_t{1} << capacityBits_ : 0; }

 private:
  [[gnu::noinline]] void grow();
  [[nodiscard]] bool isRed(std::uint32_t place) const { return links_[place].red(); }
  [[nodiscard]] Side sideOf(std::uint32_t place) const;
  [[nodiscard]] std::uint32_t outermost(std::uint32_t place, Side side) const;
  [[nodiscard]] std::uint32_t before(std::uint32_t place) const;
  void makeRed(std::uint32_t place) { links_[place].parentAndColour |= 1; }
  void makeBlack(std::uint32_t place) { links_[place].parentAndColour &= ~std::uint32_t{1}; }
  void setParent(std::uint32_t place, std::uint32_t parent);
  void replaceChild(std::uint32_t parent, std::uint32_t child, std::uint32_t replacement);
  void rotate(std::uint32_t place, Side side);
  void rebalanceAfterAdd(std::uint32_t place);
  void rebalanceAfterRemove(std::uint32_t parent, Side side);
  void giveBack(std::uint32_t place);

  Link* links_ = nullptr;
  std::uint32_t root_ = 0;
  std::uint32_t free_ = 0;
  std::uint32_t used_ = 0;
  std::uint8_t capacityBits_ = 0;  // of the links, where there are any
};

}  // namespace vorn::collections
