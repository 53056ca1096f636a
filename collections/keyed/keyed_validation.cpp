#include "collections/keyed/keyed_validation.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"

namespace vorn::collections {

namespace {

// The addresses of nodes, in memory that is not collected: for comparing, not for following.
template <class Node>
using NodeSet = std::unordered_set<const Node*>;

// Whether a free node is zero but for its mark and its link.
template <class Node>
bool isWiped(const Node& node) {
  Node copy;
  std::memcpy(static_cast<void*>(&copy), &node, sizeof(Node));
  copy.poolLink() = nullptr;
  copy.key.tag = {};
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&copy);
  return std::all_of(bytes, bytes + sizeof(Node), [](unsigned char byte) { return byte == 0; });
}

// Checks the pool and collects its nodes in use.
template <class Node>
std::string validatePool(const NodePool<Node>& pool, NodeSet<Node>& inUse) {
  using Pool = NodePool<Node>;
  if ((pool.firstBlock() == nullptr) != (pool.lastBlock() == nullptr)) return "the chain of blocks has only one end";
  NodeSet<Node> free;
  const typename Pool::Block* last = nullptr;
  for (const auto* block = pool.firstBlock(); block != nullptr; block = block->next) {
    if (block->capacity == 0 || block->used > block->capacity) return "a block has used more nodes than it has";
    if (block != pool.lastBlock() && block->used != block->capacity) return "a block before the last is not used up";
    for (std::uint32_t i = 0; i < block->used; ++i) {
      const Node* const node = Pool::nodesOf(block) + i;
      if (node->key.tag != kFreeNode) {
        inUse.insert(node);
        continue;
      }
      free.insert(node);
      if (!isWiped(*node)) return "a free node holds something";
    }
    last = block;
  }
  if (last != pool.lastBlock()) return "the last block is not the end of the chain";
  for (Node* node = pool.firstFree(); node != nullptr; node = node->poolLink()) {
    if (free.erase(node) == 0) return "the chain of free nodes has a node that is not free, or has it twice";
  }
  return free.empty() ? "" : "a free node is not in the chain of free nodes";
}

// Whether two nodes of a chain have the same key, where no user code has to tell.
template <class Node>
bool hasSameKeyTwice(const Node* chain) {
  for (; chain != nullptr; chain = chain->next) {
    if (chain->key.comparesByUserCode()) continue;
    for (const Node* later = chain->next; later != nullptr; later = later->next) {
      if (NativeCollectionKeyEqual()(chain->key, later->key)) return true;
    }
  }
  return false;
}

template <class Entry>
std::string validateHashTable(const HashTable<Entry>& table) {
  using Node = typename HashTable<Entry>::Node;
  NodeSet<Node> inUse;
  if (std::string fault = validatePool(table.pool(), inUse); !fault.empty()) return fault;
  if (inUse.size() != table.count()) return "the element count is not the number of nodes in use";
  if (table.hasBuckets() != (table.bucketCount() != 0)) return "the bucket count does not fit the bucket array";
  if (table.count() > table.bucketCount()) return "the load factor exceeds its maximum";
  if (table.hasBuckets() && HashTable<Entry>::bucketCountFor(table.bucketCount()) != table.bucketCount()) {
    return "the bucket count is not one of the sequence";
  }
  for (std::uint64_t i = 0; i < table.bucketCount(); ++i) {
    for (const Node* node = table.bucket(i).first(); node != nullptr; node = node->next) {
      if (inUse.erase(node) == 0) return "a chain has a node that is not in use, or has it twice";
      if (table.bucketOf(node->key.hash) != i) return "a node hangs in another bucket than its hash says";
    }
    // Only now is the chain known to end.
    Node* const chain = table.bucket(i).first();
    if (hasSameKeyTwice<Node>(chain)) return "two nodes have the same key";
    if (table.bucket(i) != ChainLink<Node>(chain)) return "a bucket's filter does not fit its chain";
  }
  return inUse.empty() ? "" : "a node in use hangs in no bucket";
}

// Checks the tree below a node and gives its black height.
std::string validateSubtree(const OrderedTable::Node* node, NodeSet<OrderedTable::Node>& inUse, int& blackHeight) {
  if (node == nullptr) {
    blackHeight = 1;
    return {};
  }
  if (inUse.erase(node) == 0) return "the tree has a node that is not in use, or has it twice";
  int heights[2] = {};
  for (const auto side : {OrderedTable::Left, OrderedTable::Right}) {
    const OrderedTable::Node* const child = node->children[side];
    if (child != nullptr && child->parent() != node) return "a node's child names another parent";
    if (child != nullptr && node->red() && child->red()) return "a red node has a red child";
    if (std::string fault = validateSubtree(child, inUse, heights[side]); !fault.empty()) return fault;
  }
  if (heights[0] != heights[1]) return "the black heights of a node's children differ";
  blackHeight = heights[0] + (node->red() ? 0 : 1);
  return {};
}

std::string validateOrderedTable(const OrderedTable& table) {
  NodeSet<OrderedTable::Node> inUse;
  if (std::string fault = validatePool(table.pool(), inUse); !fault.empty()) return fault;
  if (inUse.size() != table.count()) return "the node count is not the number of nodes in use";
  const OrderedTable::Node* const root = table.root();
  if (root != nullptr && (root->parent() != nullptr || root->red())) return "the root has a parent or is red";
  int blackHeight = 0;
  if (std::string fault = validateSubtree(root, inUse, blackHeight); !fault.empty()) return fault;
  if (!inUse.empty()) return "a node in use is not in the tree";
  // Only user code could order what compares by user code.
  const OrderedTable::Node* before = nullptr;
  for (const auto* node = table.first(); node != nullptr; node = OrderedTable::next(node)) {
    const bool byUserCode = before != nullptr && before->key.tag == node->key.tag && node->key.comparesByUserCode();
    if (before != nullptr && !byUserCode && orderOfKeys(before->key, node->key) >= 0) return "keys do not ascend";
    before = node;
  }
  return {};
}

}  // namespace

std::string validateMapData(const MapData& map) {
  if (map.synchronized && map.mutex == nullptr) return "a synchronised map has no mutex";
  if (map.hashed && (map.ordered.count() != 0 || map.ordered.pool().firstBlock() != nullptr)) {
    return "a hash map has ordered storage";
  }
  if (!map.hashed && (map.hash.count() != 0 || map.hash.hasBuckets() || map.hash.pool().firstBlock() != nullptr)) {
    return "a sorted map has hash storage";
  }
  if (std::string fault = validateHashTable(map.hash); !fault.empty()) return fault;
  return validateOrderedTable(map.ordered);
}

std::string validateSetData(const SetData& set) {
  if (set.synchronized && set.mutex == nullptr) return "a synchronised set has no mutex";
  return validateHashTable(set.table);
}

}  // namespace vorn::collections
