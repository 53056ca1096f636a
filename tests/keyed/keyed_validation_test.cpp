// The checks of whole records find what is broken: each test breaks one thing and mends it again.
#include "collections/keyed/keyed_validation.h"

#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "tests/keyed/table_support.h"

namespace vorn::tests {
namespace {

using collections::validateMapData;
using collections::validateSetData;
using HashTable = collections::HashTable<NativeMapEntry>;
using HashNode = HashTable::Node;
using Link = collections::TreeLinks::Link;

class KeyedValidation : public RuntimeTest {};

TEST_F(KeyedValidation, SynchronisedWithoutMutex) {
  const Handle map = object("HashMapSync");
  const Handle set = object("HashSetSync");
  pthread_mutex_t* const mapMutex = std::exchange(getMapData(map)->mutex, nullptr);
  pthread_mutex_t* const setMutex = std::exchange(getSetData(set)->mutex, nullptr);
  EXPECT_EQ(validateMapData(*getMapData(map)), "a synchronised map has no mutex");
  EXPECT_EQ(validateSetData(*getSetData(set)), "a synchronised set has no mutex");
  getMapData(map)->mutex = mapMutex;
  getSetData(set)->mutex = setMutex;
}

TEST_F(KeyedValidation, StorageThatIsNotUsed) {
  const Handle map = countingMap("Map", 3);
  getMapData(map)->hashed = false;
  EXPECT_EQ(validateMapData(*getMapData(map)), "a sorted map has hash storage");
  const Handle sorted = countingMap("SortedMap", 3);
  getMapData(sorted)->hashed = true;
  EXPECT_EQ(validateMapData(*getMapData(sorted)), "a hash map has ordered storage");
}

TEST_F(KeyedValidation, ElementInAnotherBucket) {
  const Handle map = countingMap("Map", 50);
  HashNode* const node = getMapData(map)->hash.findPlain(integerCollectionKey(3));
  const std::uint32_t hash = std::exchange(node->key.hash, node->key.hash ^ 0x80000000U);
  EXPECT_EQ(validateMapData(*getMapData(map)), "an element is in another bucket than its hash says");
  node->key.hash = hash ^ 2;
  EXPECT_EQ(validateMapData(*getMapData(map)), "an element's tag does not fit its hash");
  node->key.hash = hash;
  EXPECT_MAP_AT_REST(map);
}

TEST_F(KeyedValidation, ElementMarkedVacant) {
  const Handle map = countingMap("Map", 5);
  HashNode* const node = getMapData(map)->hash.findPlain(integerCollectionKey(3));
  const auto tag = std::exchange(node->key.tag, HashTable::kVacant);
  EXPECT_EQ(validateMapData(*getMapData(map)), "a vacant place holds something");
  node->key.tag = tag;
}

TEST_F(KeyedValidation, VacantPlaceThatKeepsAHandle) {
  const Handle map = countingMap("Map", 5);
  HashNode* const node = getMapData(map)->hash.findPlain(integerCollectionKey(3));
  vorn_collections_Map_remove(map, number(3));
  node->entry.value = map;
  EXPECT_EQ(validateMapData(*getMapData(map)), "a vacant place holds something");
  node->entry.value = nullptr;
  EXPECT_MAP_AT_REST(map);
}

TEST_F(KeyedValidation, EndsThatAreVacant) {
  const Handle map = countingMap("Map", 5);
  HashNode& first = getMapData(map)->hash.at(0);
  const HashNode copy = first;
  first = {};
  first.key.tag = HashTable::kVacant;
  EXPECT_EQ(validateMapData(*getMapData(map)), "an end of the places is vacant");
  first = copy;
  EXPECT_MAP_AT_REST(map);
}

// Adds elements with crowded keys to a table.
void addCrowded(HashTable& table, std::int64_t first, std::int64_t end) {
  for (std::int64_t value = first; value < end; value += 5) {
    auto place = table.find(crowdedKey(value));
    table.makeRoom(place, crowdedKey(value));
    table.insert(place, crowdedKey(value), {nullptr, nullptr});
  }
}

TEST_F(KeyedValidation, SlotsOfABucket) {
  const CollectedRecord<MapData> map;
  addCrowded(map->hash, 4, 19);
  addCrowded(map->hash, 0, 95);
  ASSERT_EQ(validateMapData(*map), "");
  collections::BucketLine& line = *map->hash.lines().firstLine(crowdedKey(4).hash);
  ASSERT_EQ(line.used, 3U);
  const std::uint32_t place = std::exchange(line.places[0], line.places[1]);
  EXPECT_NE(validateMapData(*map), "");
  line.places[0] = 99;
  EXPECT_EQ(validateMapData(*map), "a bucket has a place without an element");
  line.places[0] = place;
  line.places[3] = 1;
  EXPECT_EQ(validateMapData(*map), "a free slot holds something");
  line.places[3] = 0;
  const collections::BucketLine whole = line;
  line.used = 2;
  line.tags[2] = 0;
  line.places[2] = 0;
  EXPECT_EQ(validateMapData(*map), "an element is in no bucket");
  line = whole;
  EXPECT_EQ(validateMapData(*map), "");
}

TEST_F(KeyedValidation, TagsOfASmallTable) {
  const Handle set = countingSet("HashSet", 3);
  auto& tags = const_cast<collections::PlaceTags&>(getSetData(set)->table.lines().tags()).tags;
  for (const int place : {0, 2, 3, 15}) {
    tags[place] ^= 2;
    EXPECT_EQ(validateSetData(*getSetData(set)), "a place's tag does not fit what it holds") << place;
    tags[place] ^= 2;
    EXPECT_SET_AT_REST(set);
  }
  const std::uint8_t tag = std::exchange(tags[1], std::uint8_t{0});
  EXPECT_EQ(validateSetData(*getSetData(set)), "a place's tag does not fit what it holds");
  tags[1] = tag;
}

TEST_F(KeyedValidation, HashKeyTwice) {
  const Handle map = countingMap("Map", 1);
  auto& table = getMapData(map)->hash;
  auto place = table.find(integerCollectionKey(1));
  table.makeRoom(place, integerCollectionKey(0));
  table.insert(place, integerCollectionKey(0), {nullptr, nullptr});
  EXPECT_EQ(validateMapData(*getMapData(map)), "two elements have the same key");
}

TEST_F(KeyedValidation, FurtherLinesOfABucket) {
  const CollectedRecord<MapData> map;
  auto& table = map->hash;
  addCrowded(table, 0, 95);
  EXPECT_EQ(validateMapData(*map), "");
  auto& line = const_cast<collections::BucketLine&>(*table.lines().firstLine(crowdedKey(0).hash));
  ASSERT_NE(line.next, 0U);
  const std::uint32_t next = std::exchange(line.next, 0);
  EXPECT_EQ(validateMapData(*map), "a line is lost");
  line.next = next;
  auto& further = const_cast<collections::BucketLine&>(table.lines().furtherLine(next));
  const std::uint32_t after = std::exchange(further.next, next);
  EXPECT_EQ(validateMapData(*map), "a line is in two buckets, or twice in one");
  further.next = after;
  EXPECT_EQ(validateMapData(*map), "");
}

Link& linkAt(const MapData& data, std::uint32_t place) { return const_cast<Link&>(data.ordered.tree().at(place)); }

TEST_F(KeyedValidation, FreePlaceOfATreeThatKeepsAHandle) {
  const Handle map = countingMap("SortedMap", 5);
  const MapData& data = *getMapData(map);
  auto* const node = data.ordered.findInteger(3);
  vorn_collections_Map_remove(map, number(3));
  node->entry.value = map;
  EXPECT_EQ(validateMapData(data), "a vacant place holds something");
  node->entry.value = nullptr;
  node->key.tag = NativeCollectionKey::Tag::Null;
  EXPECT_EQ(validateMapData(data), "a free place holds an element, or a node has none");
  node->key.tag = collections::OrderedTable::kVacant;
  EXPECT_MAP_AT_REST(map);
}

TEST_F(KeyedValidation, FreePlaceThatIsLinked) {
  const Handle map = countingMap("SortedMap", 5);
  const MapData& data = *getMapData(map);
  vorn_collections_Map_remove(map, number(3));
  Link& freed = linkAt(data, data.ordered.tree().firstFree());
  freed.children[1] = 1;
  EXPECT_EQ(validateMapData(data), "a free place is linked");
  freed.children[1] = 0;
  freed.next = data.ordered.tree().root();
  EXPECT_EQ(validateMapData(data), "a free place is in the tree, free twice, or was never given out");
  freed.next = 0;
  EXPECT_MAP_AT_REST(map);
}

TEST_F(KeyedValidation, TreeColoursParentsAndOrder) {
  const Handle map = countingMap("SortedMap", 7);
  const MapData& data = *getMapData(map);
  Link& root = linkAt(data, data.ordered.tree().root());
  root.parentAndColour |= 1;
  EXPECT_EQ(validateMapData(data), "the root has a parent or is red");
  root.parentAndColour = 0;

  Link& child = linkAt(data, root.children[0]);
  const std::uint32_t parent = std::exchange(child.parentAndColour, child.parentAndColour & 1);
  EXPECT_EQ(validateMapData(data), "a node's child names another parent");
  child.parentAndColour = parent ^ 1;
  EXPECT_NE(validateMapData(data), "") << "one black node more or less on one side";
  child.parentAndColour = parent;

  auto& rootKey = data.ordered.at(data.ordered.tree().root()).key;
  auto& childKey = data.ordered.at(root.children[0]).key;
  std::swap(rootKey, childKey);
  EXPECT_EQ(validateMapData(data), "a node's number is not its key's order word");
  std::swap(root.order, child.order);
  EXPECT_EQ(validateMapData(data), "keys do not ascend");
  std::swap(rootKey, childKey);
  std::swap(root.order, child.order);

  const std::uint32_t cut = std::exchange(root.children[1], 0);
  EXPECT_NE(validateMapData(data), "");
  root.children[1] = root.children[0];
  EXPECT_NE(validateMapData(data), "") << "a node twice";
  root.children[1] = cut;
  EXPECT_MAP_AT_REST(map);
}

TEST_F(KeyedValidation, NextNodesOfATree) {
  const Handle map = countingMap("SortedMap", 7);
  const MapData& data = *getMapData(map);
  const auto& tree = data.ordered.tree();
  for (std::uint32_t place = tree.first(); place != 0; place = tree.at(place).next) {
    Link& link = linkAt(data, place);
    const bool last = link.next == 0;
    const std::uint32_t next = std::exchange(link.next, last ? tree.first() : 0);
    EXPECT_EQ(validateMapData(data),
              last ? "the last node has a next one" : "a node is not the next one of that before it");
    link.next = next;
  }
  EXPECT_MAP_AT_REST(map);
}

TEST_F(KeyedValidation, MissingChildThatIsOne) {
  const Handle map = countingMap("SortedMap", 3);
  const MapData& data = *getMapData(map);
  Link& none = linkAt(data, 0);
  for (std::uint32_t* const field : {&none.children[0], &none.children[1], &none.parentAndColour}) {
    *field = 1;
    EXPECT_EQ(validateMapData(data), "the missing child is no black node without children");
    *field = 0;
  }
  EXPECT_MAP_AT_REST(map);
}

TEST_F(KeyedValidation, KeyOfAnotherSort) {
  const Handle map = countingMap("SortedMap", 3);
  const MapData& data = *getMapData(map);
  auto& key = data.ordered.findInteger(2)->key;
  key.tag = NativeCollectionKey::Tag::Unsigned;
  Link& link = linkAt(data, data.ordered.find(integerCollectionKey(2)).place);
  link.order = 0;
  EXPECT_EQ(validateMapData(data), "a key is of another sort than all are");
  link.order = 2;
  key.tag = NativeCollectionKey::Tag::Integer;
  EXPECT_MAP_AT_REST(map);
}

// Keys made of other values compare by content, through the searches that allow for user code.
TEST_F(RuntimeTest, SequencesAsKeys_AreOneKeyByContent) {
  for (const char* type : kMapTypes) {
    SCOPED_TRACE(type);
    const auto tuple = [](std::int64_t first, const char* second) {
      Handle result = object("Tuple<Int,String>");
      Vorn_setField_ptr(result, "_0", number(first));
      Vorn_setField_ptr(result, "_1", string(second));
      Vorn_setField_i64(result, "size", 2);
      return result;
    };
    const Handle map = object(type);
    for (int i = 0; i < 20; ++i) vorn_collections_Map_put(map, tuple(i, "a"), number(i));
    EXPECT_EQ(vorn_collections_Map_size(map), 20);
    for (int i = 0; i < 20; ++i) {
      void* const value = vorn_collections_Map__get(map, tuple(i, "a"));
      ASSERT_NE(value, nullptr);
      EXPECT_EQ(valueOf(value), i);
      EXPECT_FALSE(vorn_collections_Map_operator_in(map, tuple(i, "b")));
    }
    EXPECT_TRUE(vorn_collections_Map_remove(map, tuple(7, "a")));
    EXPECT_EQ(vorn_collections_Map_size(map), 19);
    EXPECT_MAP_AT_REST(map);
  }
}

}  // namespace
}  // namespace vorn::tests
