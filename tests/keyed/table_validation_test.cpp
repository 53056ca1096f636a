// The checks of whole records see each broken invariant of the memory behind a table, down to the fields that nothing but
// the table itself can reach.
#include "collections/keyed/keyed_validation.h"
#include "tests/keyed/table_support.h"

namespace vorn::tests {
namespace {

using collections::validateMapData;
using HashTable = collections::HashTable<NativeMapEntry>;
using OrderedTable = collections::OrderedTable;
using collections::BucketLine;

class TableValidation : public RuntimeTest {};

// A private field, by its distance from the beginning of what holds it.
template <class Field>
Field& fieldOf(const void* holder, std::size_t offset) {
  return *reinterpret_cast<Field*>(const_cast<char*>(static_cast<const char*>(holder)) + offset);
}

template <class Chunks>
void*& directoryOf(const Chunks& chunks) {
  return fieldOf<void*>(&chunks, 0);
}
template <class Chunks>
void*& firstChunkOf(const Chunks& chunks) {
  return fieldOf<void*>(&chunks, 8);
}
template <class Chunks>
std::uint32_t& capacityOf(const Chunks& chunks) {
  return fieldOf<std::uint32_t>(&chunks, 16);
}

std::uint64_t& countOf(const HashTable& table) { return fieldOf<std::uint64_t>(&table.chunks(), 24); }
std::uint32_t& firstOf(const HashTable& table) { return fieldOf<std::uint32_t>(&table.chunks(), 40); }
std::uint32_t& placesOf(const HashTable& table) { return fieldOf<std::uint32_t>(&table.chunks(), 44); }
std::uint32_t& countOf(const OrderedTable& table) { return fieldOf<std::uint32_t>(&table.chunks(), 32); }

const BucketLine*& linesOf(const HashTable& table) { return fieldOf<const BucketLine*>(&table.lines(), 0); }
std::uint32_t& bucketCountOf(const HashTable& table) {
  return fieldOf<std::uint32_t>(&table.lines().tags(), sizeof(collections::PlaceTags));
}
std::uint32_t& freeLineOf(const HashTable& table) {
  return fieldOf<std::uint32_t>(&table.lines().tags(), sizeof(collections::PlaceTags) + 4);
}

std::uint32_t& rootOf(const OrderedTable& table) { return fieldOf<std::uint32_t>(&table.tree(), 8); }
std::uint32_t& freeOf(const OrderedTable& table) { return fieldOf<std::uint32_t>(&table.tree(), 12); }
std::uint32_t& usedOf(const OrderedTable& table) { return fieldOf<std::uint32_t>(&table.tree(), 16); }

// Sets a field for a moment and expects the check to say so then, and nothing before and after.
template <class Field>
void expectBroken(const MapData& data, Field& field, std::type_identity_t<Field> broken, const char* message) {
  ASSERT_EQ(validateMapData(data), "");
  const Field sound = std::exchange(field, broken);
  EXPECT_EQ(validateMapData(data), message);
  field = sound;
  EXPECT_EQ(validateMapData(data), "");
}

const MapData& dataOf(const Handle& map) { return *getMapData(map); }

// ---- The memory for elements ----------------------------------------------------------------------------------------

TEST_F(TableValidation, MemoryOfASmallTable) {
  const Handle map = countingMap("Map", 5);
  const auto& chunks = dataOf(map).hash.chunks();
  const char* const misfit = "the number of places does not fit the memory for them";
  expectBroken(dataOf(map), capacityOf(chunks), 0, misfit);
  expectBroken(dataOf(map), directoryOf(chunks), nullptr, misfit);
  expectBroken(dataOf(map), firstChunkOf(chunks), nullptr, "the first chunk is kept in two places or none");
  expectBroken(dataOf(map), capacityOf(chunks), HashTable::Chunks::kChunk + 1, "a chunk is too large");
}

TEST_F(TableValidation, MemoryOfALargeTable) {
  const Handle map = countingMap("Map", 1200);
  const auto& chunks = dataOf(map).hash.chunks();
  ASSERT_EQ(chunks.capacity(), 3 * 512U);
  void** const directory = static_cast<void**>(directoryOf(chunks));
  expectBroken(dataOf(map), firstChunkOf(chunks), directory[0], "the first chunk is kept in two places or none");
  expectBroken(dataOf(map), capacityOf(chunks), 3 * 512 - 1, "a chunk among many is not whole");
  for (const int chunk : {0, 1, 2}) expectBroken(dataOf(map), directory[chunk], nullptr, "a chunk is missing");
  expectBroken(dataOf(map), directory[3], directory[0], "the directory has a chunk too many");
}

// ---- Places ---------------------------------------------------------------------------------------------------------

TEST_F(TableValidation, PlacesThatThereAreNot) {
  const Handle map = countingMap("Map", 5);
  const HashTable& table = dataOf(map).hash;
  expectBroken(dataOf(map), placesOf(table), static_cast<std::uint32_t>(table.chunks().capacity()) + 1,
               "more places are given out than there are");
}

TEST_F(TableValidation, PlacesWithoutElements) {
  const Handle map = countingMap("Map", 100);
  const HashTable& table = dataOf(map).hash;
  expectBroken(dataOf(map), countOf(table), 49, "more than half of the places are vacant");
  expectBroken(dataOf(map), countOf(table), 50, "the element count is not the number of elements");
  expectBroken(dataOf(map), countOf(table), 99, "the element count is not the number of elements");
}

TEST_F(TableValidation, MemoryThatIsNotNeeded) {
  const Handle map = countingMap("Map", 600);
  const HashTable& table = dataOf(map).hash;
  const std::uint64_t count = std::exchange(countOf(table), 255);
  placesOf(table) = 255;
  EXPECT_EQ(validateMapData(dataOf(map)), "more memory is kept than the elements need");
  placesOf(table) = 600;
  countOf(table) = count;
  EXPECT_MAP_AT_REST(map);
}

TEST_F(TableValidation, EmptyTableWithPlaces) {
  const Handle map = countingMap("Map", 3);
  expectBroken(dataOf(map), countOf(dataOf(map).hash), 0, "an empty table has places");
  const Handle empty = object("Map");
  expectBroken(dataOf(empty), firstOf(dataOf(empty).hash), 1, "an empty table has places");
}

TEST_F(TableValidation, ElementBeforeTheFirst) {
  const Handle map = countingMap("Map", 5);
  expectBroken(dataOf(map), firstOf(dataOf(map).hash), 1, "an element stands before the first one");
}

TEST_F(TableValidation, MorePlacesThanTags) {
  const Handle map = countingMap("Map", 16);
  HashTable& table = getMapData(map)->hash;
  ASSERT_EQ(table.bucketCount(), 0U);
  ASSERT_GT(table.chunks().capacity(), 16U);
  const HashTable::Node node = table.at(3);
  table.at(16) = node;
  std::memset(static_cast<void*>(&table.at(3)), 0, sizeof(node));
  table.at(3).key.tag = HashTable::kVacant;
  placesOf(table) = 17;
  EXPECT_EQ(validateMapData(dataOf(map)), "a table without buckets has too many places");
  placesOf(table) = 16;
  table.at(3) = node;
  std::memset(static_cast<void*>(&table.at(16)), 0, sizeof(node));
  EXPECT_MAP_AT_REST(map);
}

// ---- Buckets --------------------------------------------------------------------------------------------------------

TEST_F(TableValidation, BucketCounts) {
  const Handle map = countingMap("Map", 50);
  const HashTable& table = dataOf(map).hash;
  ASSERT_EQ(table.bucketCount(), 11U);
  expectBroken(dataOf(map), linesOf(table), nullptr, "the bucket count does not fit the buckets");
  expectBroken(dataOf(map), bucketCountOf(table), 0, "the bucket count does not fit the buckets");
  expectBroken(dataOf(map), bucketCountOf(table), 8, "the load factor exceeds its maximum");
  expectBroken(dataOf(map), bucketCountOf(table), 10, "the bucket count is not one of the sequence");
}

// A table one of whose buckets has three lines: a full one, one with three elements, a full one.
class CrowdedTable : public RuntimeTest {
 protected:
  void SetUp() override {
    for (std::int64_t value = 0; value < 95; value += 5) add(value);
    first_ = const_cast<BucketLine*>(table().lines().firstLine(crowdedKey(0).hash));
    ASSERT_NE(first_->next, 0U);
    second_ = &table().lines().furtherLine(first_->next);
    ASSERT_NE(second_->next, 0U);
    third_ = &table().lines().furtherLine(second_->next);
    ASSERT_EQ(second_->used, 3U);
  }

  [[nodiscard]] HashTable& table() const { return map_->hash; }
  void add(std::int64_t value) const {
    auto place = table().find(crowdedKey(value));
    table().makeRoom(place, crowdedKey(value));
    table().insert(place, crowdedKey(value), {nullptr, nullptr});
  }
  // Expects the message for a line without its slots from `kept` on.
  void expectBrokenWithout(BucketLine& line, std::uint32_t kept, const char* message) const {
    const BucketLine whole = line;
    for (std::uint32_t slot = kept; slot < BucketLine::kSlots; ++slot) line.tags[slot] = 0, line.places[slot] = 0;
    line.used = kept;
    EXPECT_EQ(validateMapData(*map_), message);
    line = whole;
    EXPECT_EQ(validateMapData(*map_), "");
  }

  CollectedRecord<MapData> map_;
  BucketLine* first_ = nullptr;
  BucketLine* second_ = nullptr;
  BucketLine* third_ = nullptr;
};

TEST_F(CrowdedTable, LinesThatAreTooFullOrTooEmpty) {
  expectBroken(*map_, first_->used, BucketLine::kSlots + 1, "a line has more slots than there are");
  expectBrokenWithout(*first_, 7, "a line is not full that must be");
  expectBrokenWithout(*third_, 7, "a line is not full that must be");
  expectBrokenWithout(*second_, 0, "a bucket has an empty line");
  expectBrokenWithout(*second_, 2, "an element is in no bucket");
}

TEST_F(CrowdedTable, ElementTwice) {
  expectBroken(*map_, second_->places[1], second_->places[0], "an element is in the buckets twice");
}

TEST_F(CrowdedTable, PlacesWithoutElements) {
  expectBroken(*map_, second_->places[1], table().places(), "a bucket has a place without an element");
}

TEST_F(CrowdedTable, FreeSlotsThatHoldSomething) {
  expectBroken(*map_, second_->places[3], 1, "a free slot holds something");
  expectBroken(*map_, second_->tags[7], 1, "a free slot holds something");
}

TEST_F(CrowdedTable, FreeLines) {
  for (const std::int64_t value : {90, 85, 80, 75}) table().remove(table().find(crowdedKey(value)));
  const std::uint32_t free = table().lines().freeLine();
  ASSERT_NE(free, 0U);
  expectBroken(*map_, table().lines().furtherLine(free).used, 1, "a free line has elements");
  expectBroken(*map_, freeLineOf(table()), 0, "a line is lost");
  const char* const misplaced = "a free line is in a bucket, twice among the free ones, or was never used";
  expectBroken(*map_, freeLineOf(table()), first_->next, misplaced);
  expectBroken(*map_, table().lines().furtherLine(free).next, free, misplaced);
  expectBroken(*map_, freeLineOf(table()), table().lines().furtherUsed() + 1, misplaced);
}

// ---- Trees ----------------------------------------------------------------------------------------------------------

using Link = collections::TreeLinks::Link;

Link& linkAt(const MapData& data, std::uint32_t place) { return const_cast<Link&>(data.ordered.tree().at(place)); }

// The first place whose node satisfies the condition.
template <class Condition>
std::uint32_t findPlace(const MapData& data, Condition condition) {
  for (std::uint32_t place = 1; place <= data.ordered.tree().used(); ++place) {
    if (condition(linkAt(data, place))) return place;
  }
  return 0;
}

bool isLeaf(const Link& link) { return link.children[0] == 0 && link.children[1] == 0; }

TEST_F(TableValidation, EmptyTreeWithPlaces) {
  const Handle map = object("SortedMap");
  expectBroken(dataOf(map), usedOf(dataOf(map).ordered), 1, "more places are given out than there are");
  expectBroken(dataOf(map), rootOf(dataOf(map).ordered), 1, "a tree without memory has places");
}

TEST_F(TableValidation, PlacesOfATree) {
  const Handle map = countingMap("SortedMap", 7);
  const OrderedTable& table = dataOf(map).ordered;
  const char* const tooMany = "more places are given out than there are";
  expectBroken(dataOf(map), usedOf(table), static_cast<std::uint32_t>(table.tree().capacity()), tooMany);
  expectBroken(dataOf(map), capacityOf(table.chunks()), 6, tooMany);
  expectBroken(dataOf(map), countOf(table), 6, "the element count is not the number of nodes");
  expectBroken(dataOf(map), countOf(table), 8, "the element count is not the number of nodes");
}

TEST_F(TableValidation, NodesThatWereNeverGivenOut) {
  const Handle map = countingMap("SortedMap", 7);
  const OrderedTable& table = dataOf(map).ordered;
  expectBroken(dataOf(map), rootOf(table), table.tree().used() + 1, "the root has a parent or is red");
  expectBroken(dataOf(map), linkAt(dataOf(map), table.tree().root()).children[0], table.tree().used() + 1,
               "the tree has a node that was never given out, or has it twice");
}

TEST_F(TableValidation, ColoursOfATree) {
  const Handle map = countingMap("SortedMap", 100);
  const MapData& data = dataOf(map);
  const std::uint32_t leaf = findPlace(data, [](const Link& link) { return isLeaf(link) && link.red(); });
  ASSERT_NE(leaf, 0U);
  expectBroken(data, linkAt(data, leaf).parentAndColour, linkAt(data, leaf).parentAndColour & ~1U,
               "the black heights of a node's children differ");
  Link& parent = linkAt(data, linkAt(data, leaf).parent());
  expectBroken(data, parent.parentAndColour, parent.parentAndColour | 1, "a red node has a red child");
}

TEST_F(TableValidation, FreePlacesOfATree) {
  const Handle map = countingMap("SortedMap", 9);
  const MapData& data = dataOf(map);
  vorn_collections_Map_remove(map, number(3));
  vorn_collections_Map_remove(map, number(5));
  const std::uint32_t free = freeOf(data.ordered);
  expectBroken(data, freeOf(data.ordered), 0, "a place is lost");
  Link& link = linkAt(data, free);
  expectBroken(data, link.order, 1, "a free place is linked");
  expectBroken(data, link.children[0], 1, "a free place is linked");
  expectBroken(data, link.children[1], 1, "a free place is linked");
  expectBroken(data, link.parentAndColour, 2, "a free place is linked");
  const char* const misplaced = "a free place is in the tree, free twice, or was never given out";
  expectBroken(data, link.next, free, misplaced);
  expectBroken(data, freeOf(data.ordered), data.ordered.tree().root(), misplaced);
  expectBroken(data, freeOf(data.ordered), data.ordered.tree().used() + 1, misplaced);
}

}  // namespace
}  // namespace vorn::tests
