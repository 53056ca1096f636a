// Nodes of an ordered table, taken from the collected heap many at a time.
//
// The heap keeps a block alive by its start alone, so a pointer to a node keeps nothing: the pool holds the chain of
// blocks, and every node lives as long as the pool does.
//
// A million nodes take 3,927 blocks. The standard library's containers allocate each node by itself: a million blocks,
// and as many for the collector to mark.
//
// Invariants, checked by keyed_validation.h:
//   - nodes below a block's `used` have been given out at least once; all blocks but the last are used up;
//   - a node given back is zero but for its tag, kFreeNode, and its link in the chain of free nodes, so that it keeps
//     no object alive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "collections/core/port/collection_key.h"
#include "collections/core/port/gc_allocator.h"

namespace vorn::collections {

// The tag of a free node's key. No key that the runtime makes has it.
inline constexpr auto kFreeNode = static_cast<NativeCollectionKey::Tag>(0xFF);

// Node has a `key`, and a `poolLink` that nobody else uses while the node is free.
template <class Node>
class NodePool {
 public:
  struct Block {
    Block* next;
    std::uint32_t capacity;
    std::uint32_t used;
  };

  // Nodes as long as a cache line get a header as long, since large blocks start at a page.
  static constexpr std::size_t kHeaderBytes = sizeof(Node) % 64 == 0 ? 64 : sizeof(Block);
  static constexpr std::size_t kFirstBlockBytes = 256;
  static constexpr std::size_t kLargestBlockBytes = 16384;
  static_assert(std::is_trivially_copyable_v<Node> && sizeof(Block) == 16);

  static Node* nodesOf(Block* block) {
    return reinterpret_cast<Node*>(reinterpret_cast<unsigned char*>(block) + kHeaderBytes);
  }
  static const Node* nodesOf(const Block* block) {
    return reinterpret_cast<const Node*>(reinterpret_cast<const unsigned char*>(block) + kHeaderBytes);
  }

  // Makes the next take() possible. Allocates; throws std::bad_alloc with nothing changed.
  void makeRoom() {
    if (free_ == nullptr && (last_ == nullptr || last_->used == last_->capacity)) addBlock();
  }

  // A node after makeRoom(), with undefined contents.
  Node* take() {
    if (free_ == nullptr) return nodesOf(last_) + last_->used++;
    Node* const node = free_;
    free_ = node->poolLink();
    return node;
  }

  void giveBack(Node* node) {
    std::memset(static_cast<void*>(node), 0, sizeof(Node));
    node->key.tag = kFreeNode;
    node->poolLink() = free_;
    free_ = node;
  }

  // Leaves all blocks to the collector.
  void clear() { first_ = last_ = nullptr, free_ = nullptr; }

  [[nodiscard]] const Block* firstBlock() const { return first_; }
  [[nodiscard]] const Block* lastBlock() const { return last_; }
  [[nodiscard]] Node* firstFree() const { return free_; }

 private:
  [[gnu::noinline]] void addBlock() {
    std::size_t bytes = kFirstBlockBytes;
    while (last_ != nullptr && bytes < kLargestBlockBytes && capacityOf(bytes) <= last_->capacity) bytes *= 2;
    auto* const block = reinterpret_cast<Block*>(VornGcAllocator<unsigned char>().allocate(bytes));
    *block = Block{nullptr, capacityOf(bytes), 0};
    (last_ == nullptr ? first_ : last_->next) = block;
    last_ = block;
  }

  // The sizes are those the collected heap has without waste.
  static constexpr std::uint32_t capacityOf(std::size_t bytes) {
    return static_cast<std::uint32_t>((bytes - kHeaderBytes) / sizeof(Node));
  }

  Block* first_ = nullptr;
  Block* last_ = nullptr;
  Node* free_ = nullptr;
};

}  // namespace vorn::collections
