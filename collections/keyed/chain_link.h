// A bucket of a hash table: where its chain starts, and what the chain cannot hold.
#pragma once

#include <cstdint>

namespace vorn::collections {

// User addresses have 47 bits here, which leaves sixteen for a filter after Bloom ("Space/time trade-offs in hash
// coding with allowable errors", 1970): one bit per class of hashes. A search for an absent key, which every insertion
// begins with, mostly ends in the bucket and touches no node, and nodes are what misses the caches.
//
// The collector does not see this as a pointer. It need not: the pool keeps the nodes.
template <class Node>
class ChainLink {
 public:
  ChainLink() = default;

  // The link to a whole chain.
  explicit ChainLink(Node* chain) : bits_(reinterpret_cast<std::uintptr_t>(chain)) {
    for (const Node* node = chain; node != nullptr; node = node->next) bits_ |= filterBit(node->key.hash);
  }

  // The first node of the chain, or null.
  [[nodiscard]] Node* first() const { return reinterpret_cast<Node*>(bits_ & kAddress); }

  // Whether the chain may hold a key with this hash; false for an empty one.
  [[nodiscard]] bool mayHold(std::uint32_t hash) const { return (bits_ & filterBit(hash)) != 0; }

  // The link to a chain that starts with one node more, whose `next` is this chain.
  [[nodiscard]] ChainLink prepended(Node* node) const {
    ChainLink link;
    link.bits_ = reinterpret_cast<std::uintptr_t>(node) | (bits_ & ~kAddress) | filterBit(node->key.hash);
    return link;
  }

  friend bool operator==(ChainLink left, ChainLink right) { return left.bits_ == right.bits_; }

 private:
  static_assert(sizeof(std::uintptr_t) == 8, "addresses leave sixteen bits");
  static constexpr std::uintptr_t kAddress = (std::uintptr_t{1} << 48) - 1;

  // The bucket comes from the high bits of the hash, the filter from the low ones.
  static std::uintptr_t filterBit(std::uint32_t hash) { return std::uintptr_t{1} << (48 + (hash & 15)); }

  std::uintptr_t bits_ = 0;
};

}  // namespace vorn::collections
