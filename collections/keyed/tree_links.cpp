#include "collections/keyed/tree_links.h"

#include <cassert>
#include <cstring>
#include <new>
#include <stdexcept>

#include "collections/core/port/memory.h"

namespace vorn::collections {

namespace {

using Side = TreeLinks::Side;

Side opposite(Side side) { return side == TreeLinks::Left ? TreeLinks::Right : TreeLinks::Left; }

}  // namespace

// Which child of its parent a node is; of no meaning for the root.
Side TreeLinks::sideOf(std::uint32_t place) const {
  return links_[links_[place].parent()].children[Right] == place ? Right : Left;
}

std::uint32_t TreeLinks::outermost(std::uint32_t place, Side side) const {
  while (links_[place].children[side] != 0) place = links_[place].children[side];
  return place;
}

// The node before this one in ascending order, or 0.
std::uint32_t TreeLinks::before(std::uint32_t place) const {
  if (place == links_[0].next) return 0;
  if (links_[place].children[Left] != 0) return outermost(links_[place].children[Left], Right);
  while (sideOf(place) == Left) place = links_[place].parent();
  return links_[place].parent();
}

// Number 0 stays as it is, whatever is missing.
void TreeLinks::setParent(std::uint32_t place, std::uint32_t parent) {
  if (place != 0) links_[place].parentAndColour = parent << 1 | (links_[place].parentAndColour & 1);
}

void TreeLinks::replaceChild(std::uint32_t parent, std::uint32_t child, std::uint32_t replacement) {
  if (parent == 0) {
    root_ = replacement;
  } else {
    links_[parent].children[links_[parent].children[Right] == child ? Right : Left] = replacement;
  }
}

// Moves a node down to the given side; its child on the other side takes its place.
void TreeLinks::rotate(std::uint32_t place, Side side) {
  const Side other = opposite(side);
  const std::uint32_t parent = links_[place].parent();
  const std::uint32_t riser = links_[place].children[other];
  const std::uint32_t moved = links_[riser].children[side];
  links_[place].children[other] = moved;
  setParent(moved, place);
  links_[riser].children[side] = place;
  replaceChild(parent, place, riser);
  setParent(riser, parent);
  setParent(place, riser);
}

void TreeLinks::grow() {
  // Fourfold at first, so that a table of a thousand elements has taken six blocks.
  constexpr int kFirstBits = 2;
  constexpr int kFewBits = 8;
  if (used_ == kMostPlaces) throw std::length_error("a tree's number of places");
  const int bits = links_ == nullptr ? kFirstBits : capacityBits_ + (capacityBits_ < kFewBits ? 2 : 1);
  auto* const larger = static_cast<Link*>(Vorn_gcAllocAtomic(sizeof(Link) << bits));
  if (larger == nullptr) throw std::bad_alloc();
  if (links_ == nullptr) {
    larger[0] = {};
  } else {
    std::memcpy(larger, links_, (std::size_t{used_} + 1) * sizeof(Link));
  }
  links_ = larger;
  capacityBits_ = static_cast<std::uint8_t>(bits);
}

std::uint32_t TreeLinks::add(const Gap& gap, std::int64_t order) {
  const std::uint32_t place = nextPlace();
  if (free_ != 0) {
    free_ = links_[place].next;
  } else {
    ++used_;
  }
  links_[place] = {order, {0, 0}, gap.parent << 1 | 1, links_[gap.before].next};
  links_[gap.before].next = place;
  if (gap.parent == 0) {
    root_ = place;
  } else {
    links_[gap.parent].children[gap.side] = place;
  }
  rebalanceAfterAdd(place);
  return place;
}

// A red node may have a red parent: recolours upwards, and ends with at most two rotations.
void TreeLinks::rebalanceAfterAdd(std::uint32_t place) {
  for (std::uint32_t parent = links_[place].parent(); isRed(parent); parent = links_[place].parent()) {
    const std::uint32_t grandparent = links_[parent].parent();  // there is one, since the root is black
    const Side side = sideOf(parent);
    const std::uint32_t uncle = links_[grandparent].children[opposite(side)];
    if (isRed(uncle)) {
      makeBlack(parent);
      makeBlack(uncle);
      makeRed(grandparent);
      place = grandparent;
      continue;
    }
    if (sideOf(place) != side) {
      rotate(parent, side);
      parent = place;
    }
    makeBlack(parent);
    makeRed(grandparent);
    rotate(grandparent, opposite(side));
    break;
  }
  makeBlack(root_);
}

void TreeLinks::giveBack(std::uint32_t place) {
  links_[place] = {};
  links_[place].next = free_;
  free_ = place;
}

void TreeLinks::remove(std::uint32_t place) {
  const Link node = links_[place];
  links_[before(place)].next = node.next;
  std::uint32_t parent = node.parent();
  Side side = sideOf(place);
  std::uint32_t child = node.children[node.children[Left] == 0 ? Right : Left];
  bool lostRed = node.red();
  if (node.children[Left] == 0 || node.children[Right] == 0) {
    replaceChild(parent, place, child);
    setParent(child, parent);
  } else {
    // The next node takes this one's place and colour; what the tree loses is the place where it stood.
    const std::uint32_t heir = node.next;
    child = links_[heir].children[Right];
    lostRed = isRed(heir);
    replaceChild(parent, place, heir);
    parent = links_[heir].parent();
    side = Left;
    if (parent == place) {
      parent = heir;
      side = Right;
    } else {
      links_[parent].children[Left] = child;
      setParent(child, parent);
      links_[heir].children[Right] = node.children[Right];
      setParent(node.children[Right], heir);
    }
    links_[heir].children[Left] = node.children[Left];
    setParent(node.children[Left], heir);
    links_[heir].parentAndColour = node.parentAndColour;
  }
  giveBack(place);
  if (lostRed) return;
  if (isRed(child)) {
    makeBlack(child);
  } else {
    rebalanceAfterRemove(parent, side);
  }
}

// The ways through the given child of `parent` have one black node too few.
void TreeLinks::rebalanceAfterRemove(std::uint32_t parent, Side side) {
  while (parent != 0) {
    const Side other = opposite(side);
    std::uint32_t sibling = links_[parent].children[other];
    assert(sibling != 0 && "its ways are longer");
    if (isRed(sibling)) {
      makeBlack(sibling);
      makeRed(parent);
      rotate(parent, side);
      sibling = links_[parent].children[other];
    }
    if (!isRed(links_[sibling].children[Left]) && !isRed(links_[sibling].children[Right])) {
      makeRed(sibling);
      if (isRed(parent)) return makeBlack(parent);
      side = sideOf(parent);
      parent = links_[parent].parent();
      continue;
    }
    if (!isRed(links_[sibling].children[other])) {
      makeBlack(links_[sibling].children[side]);
      makeRed(sibling);
      rotate(sibling, other);
      sibling = links_[parent].children[other];
    }
    if (isRed(parent)) makeRed(sibling);
    makeBlack(parent);
    makeBlack(links_[sibling].children[other]);
    rotate(parent, side);
    return;
  }
}

}  // namespace vorn::collections
