#include "collections/keyed/keyed_validation.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <unordered_set>
#include <vector>

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

// What is wrong with the memory for elements.
template <class Node>
std::string validateChunks(const EntryChunks<Node>& chunks) {
  const std::uint64_t capacity = chunks.capacity();
  if ((chunks.directory() == nullptr) != (capacity == 0))
    return "the number of places does not fit the memory for them";
  if (chunks.isOneChunk() != (chunks.firstChunk() != nullptr)) return "the first chunk is kept in two places or none";
  if (capacity == 0) return "";
  if (chunks.isOneChunk()) return capacity > chunks.chunkSize() ? "a chunk is too large" : "";
  if (capacity % chunks.chunkSize() != 0) return "a chunk among many is not whole";
  const std::uint64_t count = capacity / chunks.chunkSize();
  for (std::uint64_t i = 0; i < count; ++i) {
    if (chunks.directory()[i] == nullptr) return "a chunk is missing";
  }
  for (std::uint64_t i = count; i < std::bit_ceil(count); ++i) {
    if (chunks.directory()[i] != nullptr) return "the directory has a chunk too many";
  }
  return "";
}

// Whether a vacant place is zero but for its mark.
template <class Node>
bool isWipedPlace(const Node& node) {
  Node copy;
  std::memcpy(static_cast<void*>(&copy), &node, sizeof(Node));
  copy.key.tag = {};
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&copy);
  return std::all_of(bytes, bytes + sizeof(Node), [](unsigned char byte) { return byte == 0; });
}

template <class Entry>
std::string validatePlaces(const HashTable<Entry>& table) {
  using Table = HashTable<Entry>;
  if (table.places() > table.chunks().capacity()) return "more places are given out than there are";
  if (table.hasManyGaps()) return "more than half of the places are vacant";
  // A single chunk is only exchanged for a smaller one when there is memory for that.
  if (table.hasMuchUnused() && !table.chunks().isOneChunk()) return "more memory is kept than the elements need";
  if (table.count() == 0) return table.places() == 0 && table.firstPlace() == 0 ? "" : "an empty table has places";
  std::uint64_t present = 0;
  for (std::uint32_t place = 0; place < table.places(); ++place) {
    const auto& node = table.at(place);
    const bool vacant = node.key.tag == Table::kVacant;
    if (vacant && !isWipedPlace(node)) return "a vacant place holds something";
    if (!vacant && place < table.firstPlace()) return "an element stands before the first one";
    if (vacant && (place == table.firstPlace() || place == table.places() - 1)) return "an end of the places is vacant";
    present += vacant ? 0 : 1;
  }
  return present == table.count() ? "" : "the element count is not the number of elements";
}

// Checks the buckets and marks the places and further lines that it finds in them.
template <class Entry>
class BucketCheck {
 public:
  explicit BucketCheck(const HashTable<Entry>& table)
      : table_(table),
        lines_(table.lines()),
        placeSeen_(table.places(), false),
        lineSeen_(std::size_t{lines_.furtherUsed()} + 1, false) {}

  std::string run() {
    if (lines_.bucketCount() == 0) return checkTags();
    for (std::uint64_t bucket = 0; bucket < lines_.bucketCount(); ++bucket) {
      if (std::string fault = checkBucket(bucket); !fault.empty()) return fault;
    }
    for (std::uint32_t line = lines_.freeLine(); line != 0; line = lines_.furtherLine(line).next) {
      if (!markLine(line)) return "a free line is in a bucket, twice among the free ones, or was never used";
      if (lines_.furtherLine(line).used != 0) return "a free line has elements";
    }
    if (!std::all_of(lineSeen_.begin() + 1, lineSeen_.end(), [](bool seen) { return seen; })) return "a line is lost";
    return places_ == table_.count() ? "" : "an element is in no bucket";
  }

 private:
  std::string checkTags() {
    if (table_.places() > PlaceTags::kPlaces) return "a table without buckets has too many places";
    std::vector<std::uint32_t> places;
    for (std::uint32_t place = 0; place < PlaceTags::kPlaces; ++place) {
      const bool holdsElement = place < table_.places() && table_.at(place).key.tag != HashTable<Entry>::kVacant;
      const std::uint8_t tag = holdsElement ? PlaceTags::tagOf(table_.at(place).key.hash) : std::uint8_t{0};
      if (lines_.tags().tags[place] != tag) return "a place's tag does not fit what it holds";
      if (holdsElement) places.push_back(place);
    }
    return hasSameKeyTwice(places) ? "two elements have the same key" : "";
  }

  std::string checkBucket(std::uint64_t bucket) {
    const BucketLine* line = &lines_.lines()[bucket];
    std::vector<std::uint32_t> places;
    for (bool mayHaveRoom = line->next == 0; line != nullptr; line = lines_.nextLine(line)) {
      if (std::string fault = checkLine(*line, bucket, places); !fault.empty()) return fault;
      const bool isFirst = line == &lines_.lines()[bucket];
      if (line->used < BucketLine::kSlots && !mayHaveRoom) return "a line is not full that must be";
      if (line->used == 0 && !isFirst) return "a bucket has an empty line";
      if (line->next != 0 && !markLine(line->next)) return "a line is in two buckets, or twice in one";
      mayHaveRoom = isFirst;
    }
    places_ += places.size();
    return hasSameKeyTwice(places) ? "two elements have the same key" : "";
  }

  std::string checkLine(const BucketLine& line, std::uint64_t bucket, std::vector<std::uint32_t>& places) {
    if (line.used > BucketLine::kSlots) return "a line has more slots than there are";
    for (std::uint32_t slot = 0; slot < BucketLine::kSlots; ++slot) {
      const std::uint32_t place = line.places[slot];
      if (slot >= line.used) {
        if (place != 0 || line.tags[slot] != 0) return "a free slot holds something";
        continue;
      }
      if (place >= table_.places() || table_.at(place).key.tag == HashTable<Entry>::kVacant) {
        return "a bucket has a place without an element";
      }
      if (placeSeen_[place]) return "an element is in the buckets twice";
      placeSeen_[place] = true;
      const std::uint32_t hash = table_.at(place).key.hash;
      if (lines_.bucketOf(hash) != bucket) return "an element is in another bucket than its hash says";
      if (line.tags[slot] != BucketLine::tagOf(hash)) return "an element's tag does not fit its hash";
      places.push_back(place);
    }
    return "";
  }

  bool markLine(std::uint32_t line) {
    if (line >= lineSeen_.size() || lineSeen_[line]) return false;
    lineSeen_[line] = true;
    return true;
  }

  // Where no user code has to tell.
  bool hasSameKeyTwice(const std::vector<std::uint32_t>& places) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      const NativeCollectionKey& key = table_.at(places[i]).key;
      if (key.comparesByUserCode()) continue;
      for (std::size_t j = i + 1; j < places.size(); ++j) {
        if (NativeCollectionKeyEqual()(key, table_.at(places[j]).key)) return true;
      }
    }
    return false;
  }

  const HashTable<Entry>& table_;
  const BucketLines& lines_;
  std::vector<bool> placeSeen_;
  std::vector<bool> lineSeen_;
  std::uint64_t places_ = 0;
};

template <class Entry>
std::string validateHashTable(const HashTable<Entry>& table) {
  using Table = HashTable<Entry>;
  if (std::string fault = validateChunks(table.chunks()); !fault.empty()) return fault;
  if (std::string fault = validatePlaces(table); !fault.empty()) return fault;
  const std::uint64_t buckets = table.bucketCount();
  if ((table.lines().lines() != nullptr) != (buckets != 0)) return "the bucket count does not fit the buckets";
  if (table.count() > Table::elementLimit(buckets)) return "the load factor exceeds its maximum";
  if (buckets != 0 && Table::bucketCountFor(Table::elementLimit(buckets)) != buckets) {
    return "the bucket count is not one of the sequence";
  }
  return BucketCheck<Entry>(table).run();
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
  if (!map.hashed && (map.hash.count() != 0 || map.hash.bucketCount() != 0 || map.hash.chunks().capacity() != 0)) {
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
