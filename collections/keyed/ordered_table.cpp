#include "collections/keyed/ordered_table.h"

#include <cassert>

#include "collections/core/pending_error_watch.h"
#include "collections/keyed/key_words.h"
#include "collections/keyed/user_compared_key.h"

namespace vorn::collections {

namespace {

using Node = OrderedTable::Node;
using Side = OrderedTable::Side;

constexpr std::uintptr_t kRed = 1;

Side opposite(Side side) { return side == OrderedTable::Left ? OrderedTable::Right : OrderedTable::Left; }

// Which child of its parent a node is; of no meaning for the root.
Side sideOf(const Node* node) {
  const Node* const parent = node->parent();
  return parent != nullptr && parent->children[OrderedTable::Right] == node ? OrderedTable::Right : OrderedTable::Left;
}

bool isRed(const Node* node) { return node != nullptr && node->red(); }

void makeRed(Node* node) { node->parentAndColour |= kRed; }
void makeBlack(Node* node) { node->parentAndColour &= ~kRed; }

void setParent(Node* node, const Node* parent) {
  node->parentAndColour = reinterpret_cast<std::uintptr_t>(parent) | (node->parentAndColour & kRed);
}

// The order of keys without user code, for the search of last resort.
int orderByIdentity(const NativeCollectionKey& left, const NativeCollectionKey& right) {
  if (left.tag != right.tag || !left.comparesByUserCode()) return orderOfKeys(left, right);
  return (left.words[0] > right.words[0]) - (left.words[0] < right.words[0]);
}

}  // namespace

void OrderedTable::replaceChild(Node* parent, const Node* child, Node* replacement) {
  if (parent == nullptr) {
    root_ = replacement;
  } else {
    parent->children[parent->children[Right] == child ? Right : Left] = replacement;
  }
}

// Moves a node down to the given side; its child on the other side takes its place.
void OrderedTable::rotate(Node* node, Side side) {
  const Side other = opposite(side);
  Node* const parent = node->parent();
  Node* const riser = node->children[other];
  Node* const moved = riser->children[side];
  node->children[other] = moved;
  if (moved != nullptr) setParent(moved, node);
  riser->children[side] = node;
  replaceChild(parent, node, riser);
  setParent(riser, parent);
  setParent(node, riser);
}

void OrderedTable::insert(const Place& place, const NativeCollectionKey& key, const NativeMapEntry& entry) {
  Node* const node = pool_.take();
  node->parentAndColour = reinterpret_cast<std::uintptr_t>(place.parent) | kRed;
  node->children[Left] = node->children[Right] = nullptr;
  KeyWords(key).storeTo(node->key);
  node->entry = entry;
  (place.parent == nullptr ? root_ : place.parent->children[place.side]) = node;
  ++count_;
  ++changes_;
  rebalanceAfterInsert(node);
}

// A red node may have a red parent: recolours upwards, and ends with at most two rotations.
void OrderedTable::rebalanceAfterInsert(Node* node) {
  for (Node* parent = node->parent(); isRed(parent); parent = node->parent()) {
    Node* const grandparent = parent->parent();  // there is one, since the root is black
    const Side side = sideOf(parent);
    Node* const uncle = grandparent->children[opposite(side)];
    if (isRed(uncle)) {
      makeBlack(parent);
      makeBlack(uncle);
      makeRed(grandparent);
      node = grandparent;
      continue;
    }
    if (sideOf(node) != side) {
      rotate(parent, side);
      parent = node;
    }
    makeBlack(parent);
    makeRed(grandparent);
    rotate(grandparent, opposite(side));
    break;
  }
  makeBlack(root_);
}

void OrderedTable::remove(const Place& found) {
  Node* const node = found.node;
  Node* parent = node->parent();
  Side side = sideOf(node);
  Node* child = node->children[node->children[Left] == nullptr ? Right : Left];
  bool lostRed = node->red();
  if (node->children[Left] == nullptr || node->children[Right] == nullptr) {
    replaceChild(parent, node, child);
    if (child != nullptr) setParent(child, parent);
  } else {
    // The next node takes this one's place and colour; what the tree loses is the place where it stood.
    Node* const heir = outermost(node->children[Right], Left);
    child = heir->children[Right];
    lostRed = heir->red();
    replaceChild(parent, node, heir);
    parent = heir->parent();
    side = Left;
    if (parent == node) {
      parent = heir;
      side = Right;
    } else {
      parent->children[Left] = child;
      if (child != nullptr) setParent(child, parent);
      heir->children[Right] = node->children[Right];
      setParent(heir->children[Right], heir);
    }
    heir->children[Left] = node->children[Left];
    setParent(heir->children[Left], heir);
    heir->parentAndColour = node->parentAndColour;
  }
  pool_.giveBack(node);
  --count_;
  ++changes_;
  if (lostRed) return;
  if (isRed(child)) {
    makeBlack(child);
  } else {
    rebalanceAfterRemove(parent, side);
  }
}

// The ways through the given child of `parent` have one black node too few.
void OrderedTable::rebalanceAfterRemove(Node* parent, Side side) {
  while (parent != nullptr) {
    const Side other = opposite(side);
    Node* sibling = parent->children[other];
    assert(sibling != nullptr && "its ways are longer");
    if (sibling->red()) {
      makeBlack(sibling);
      makeRed(parent);
      rotate(parent, side);
      sibling = parent->children[other];
    }
    if (!isRed(sibling->children[Left]) && !isRed(sibling->children[Right])) {
      makeRed(sibling);
      if (parent->red()) return makeBlack(parent);
      side = sideOf(parent);
      parent = parent->parent();
      continue;
    }
    if (!isRed(sibling->children[other])) {
      makeBlack(sibling->children[side]);
      makeRed(sibling);
      rotate(sibling, other);
      sibling = parent->children[other];
    }
    if (parent->red()) makeRed(sibling);
    makeBlack(parent);
    makeBlack(sibling->children[other]);
    rotate(parent, side);
    return;
  }
}

auto OrderedTable::findByUserCode(const NativeCollectionKey& key) const -> Place {
  const PendingErrorWatch watch;
  UserComparedKey compared;
  for (int restarts = 0; restarts <= kMaxRestarts; ++restarts) {
    const std::uint64_t changesBefore = changes_;
    Place place;
    for (Node* node = root_; node != nullptr; node = node->children[place.side]) {
      const int order = orderOfKeys(key, compared.copy(node->key));
      if (watch.raised()) return {nullptr, nullptr, Left, true};
      if (changes_ != changesBefore) break;
      if (order == 0) return {node, nullptr, Left, false};
      place.parent = node;
      place.side = order > 0 ? Right : Left;
    }
    if (changes_ == changesBefore) return place;
  }
  return findIdentical(key);
}

auto OrderedTable::findIdentical(const NativeCollectionKey& key) const -> Place {
  // The tree is not ordered by identity, so that a descent alone could miss the key.
  Cursor cursor = walk();
  while (Node* const node = cursor.next()) {
    if (identicalKeys(node->key, key)) return {node, nullptr, Left, false};
  }
  Place place;
  for (Node* node = root_; node != nullptr; node = node->children[place.side]) {
    place.parent = node;
    place.side = orderByIdentity(key, node->key) > 0 ? Right : Left;
  }
  return place;
}

}  // namespace vorn::collections
