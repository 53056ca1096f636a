#include "collections/keyed/keyed_validation.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"

namespace vorn::collections {

namespace {

// What is wrong with the memory for elements.
template <class Node>
std::string validateChunks(const EntryChunks<Node>& chunks) {
  const std::uint64_t capacity = chunks.capacity();
  if ((chunks.directory() == nullptr) != (capacity == 0))
    return "the number of places does not fit the memory for them";
  if (chunks.isOneChunk() != (chunks.firstChunk() != nullptr)) return "the first chunk is kept in two places or none";
  if (capacity == 0) return "";
  if (chunks.isOneChunk()) return capacity > EntryChunks<Node>::kChunk ? "a chunk is too large" : "";
  if (capacity % EntryChunks<Node>::kChunk != 0) return "a chunk among many is not whole";
  const std::uint64_t count = capacity / EntryChunks<Node>::kChunk;
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

// Checks the shape of a tree, and marks the places that it finds in it.
class TreeCheck {
 public:
  explicit TreeCheck(const TreeLinks& tree) : tree_(tree), seen_(std::size_t{tree.used()} + 1, false) {}

  std::string run() {
    if (tree_.links() == nullptr)
      return tree_.used() == 0 && tree_.root() == 0 ? "" : "a tree without memory has places";
    if (tree_.used() >= tree_.capacity()) return "more places are given out than there are";
    const TreeLinks::Link& none = tree_.at(0);
    if (none.children[0] != 0 || none.children[1] != 0 || none.parentAndColour != 0) {
      return "the missing child is no black node without children";
    }
    if (tree_.root() != 0 && (tree_.root() > tree_.used() || tree_.at(tree_.root()).parentAndColour != 0)) {
      return "the root has a parent or is red";
    }
    int blackHeight = 0;
    last_ = 0;
    if (std::string fault = checkSubtree(tree_.root(), blackHeight); !fault.empty()) return fault;
    if (tree_.at(last_).next != 0) return "the last node has a next one";
    return checkFree();
  }

  [[nodiscard]] std::uint64_t nodes() const { return nodes_; }
  [[nodiscard]] bool isFree(std::uint32_t place) const { return free_[place]; }

 private:
  // Gives the black height below a place.
  std::string checkSubtree(std::uint32_t place, int& blackHeight) {
    blackHeight = 1;
    if (place == 0) return {};
    if (place > tree_.used() || seen_[place]) return "the tree has a node that was never given out, or has it twice";
    seen_[place] = true;
    ++nodes_;
    const TreeLinks::Link& node = tree_.at(place);
    for (const std::uint32_t child : node.children) {
      if (child > tree_.used()) return "the tree has a node that was never given out, or has it twice";
      if (child != 0 && tree_.at(child).parent() != place) return "a node's child names another parent";
      if (child != 0 && node.red() && tree_.at(child).red()) return "a red node has a red child";
    }
    int heights[2] = {};
    if (std::string fault = checkSubtree(node.children[0], heights[0]); !fault.empty()) return fault;
    if (tree_.at(last_).next != place) return "a node is not the next one of that before it";
    last_ = place;
    if (std::string fault = checkSubtree(node.children[1], heights[1]); !fault.empty()) return fault;
    if (heights[0] != heights[1]) return "the black heights of a node's children differ";
    blackHeight = heights[0] + (node.red() ? 0 : 1);
    return {};
  }

  std::string checkFree() {
    free_.assign(seen_.size(), false);
    for (std::uint32_t place = tree_.firstFree(); place != 0; place = tree_.at(place).next) {
      if (place > tree_.used() || seen_[place])
        return "a free place is in the tree, free twice, or was never given out";
      seen_[place] = free_[place] = true;
      const TreeLinks::Link& link = tree_.at(place);
      if (link.order != 0 || link.children[0] != 0 || link.children[1] != 0 || link.parentAndColour != 0) {
        return "a free place is linked";
      }
    }
    if (!std::all_of(seen_.begin() + 1, seen_.end(), [](bool seen) { return seen; })) return "a place is lost";
    return {};
  }

  const TreeLinks& tree_;
  std::vector<bool> seen_;
  std::vector<bool> free_;
  std::uint64_t nodes_ = 0;
  std::uint32_t last_ = 0;
};

std::string validateOrderedTable(const OrderedTable& table) {
  const TreeLinks& tree = table.tree();
  if (std::string fault = validateChunks(table.chunks()); !fault.empty()) return fault;
  if (tree.used() > table.chunks().capacity()) return "more places are given out than there are";
  TreeCheck shape(tree);
  if (std::string fault = shape.run(); !fault.empty()) return fault;
  if (shape.nodes() != table.count()) return "the element count is not the number of nodes";
  for (std::uint32_t place = 1; place <= tree.used(); ++place) {
    const bool vacant = table.at(place).key.tag == OrderedTable::kVacant;
    if (vacant != shape.isFree(place)) return "a free place holds an element, or a node has none";
    if (vacant && !isWipedPlace(table.at(place))) return "a vacant place holds something";
  }
  // Only user code could order what compares by user code.
  const OrderedTable::Node* before = nullptr;
  for (std::uint32_t place = tree.first(); place != 0; place = tree.at(place).next) {
    const NativeCollectionKey& key = table.at(place).key;
    if (tree.at(place).order != orderWordOf(key)) return "a node's number is not its key's order word";
    if (table.sort() != KeySort::Mixed && table.sort() != sortOfKey(key))
      return "a key is of another sort than all are";
    const bool byUserCode = before != nullptr && before->key.tag == key.tag && key.comparesByUserCode();
    if (before != nullptr && !byUserCode && orderOfKeys(before->key, key) >= 0) return "keys do not ascend";
    before = &table.at(place);
  }
  return {};
}

}  // namespace

std::string validateMapData(const MapData& map) {
  if (map.synchronized && map.mutex == nullptr) return "a synchronised map has no mutex";
  if (map.hashed &&
      (map.ordered.count() != 0 || map.ordered.tree().links() != nullptr || map.ordered.chunks().capacity() != 0)) {
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
