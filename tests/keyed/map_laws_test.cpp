// What holds for every class of map.
#include <algorithm>
#include <limits>
#include <map>
#include <new>
#include <stdexcept>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "collections/keyed/map_lookup.h"
#include "tests/keyed/table_support.h"
#include "tests/support/error_texts.h"

namespace vorn::tests {
namespace {

constexpr const char* kNullKey = error_texts::kMapKeyIsNull;
constexpr const char* kNotFound = error_texts::kKeyNotFound;

class MapLaws : public MapTest {};
INSTANTIATE_MAP_TESTS(MapLaws);

TEST_P(MapLaws, NewMap_IsEmpty) {
  const Handle map = object(type());
  EXPECT_EQ(vorn_collections_Map_size(map), 0);
  EXPECT_EQ(sizeField(map), 0);
  EXPECT_EQ(keyTypeOf(map), "");
  EXPECT_EQ(valueTypeOf(map), "");
  EXPECT_EQ(getMapData(map)->hashed, !sorted());
  EXPECT_EQ(getMapData(map)->synchronized, synchronised());
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, NullMap_EveryNativeIsNeutral) {
  const Handle key = number(1);
  void* slot = key;
  vorn_collections_Map_put(nullptr, key, key);
  vorn_collections_Map_put(nullptr, nullptr, key);
  vorn_collections_Map__set(nullptr, key, key);
  vorn_collections_Map_operator_index_eq(nullptr, key, key);
  EXPECT_EQ(vorn_collections_Map__get(nullptr, key), nullptr);
  EXPECT_EQ(vorn_collections_Map_operator_index(nullptr, key), nullptr);
  EXPECT_FALSE(vorn_collections_Map_tryGet(nullptr, key, &slot));
  EXPECT_EQ(slot, nullptr);
  EXPECT_FALSE(vorn_collections_Map_operator_in(nullptr, key));
  EXPECT_FALSE(vorn_collections_Map_remove(nullptr, key));
  EXPECT_FALSE(vorn_collections_Map_containsValue(nullptr, key));
  EXPECT_EQ(vorn_collections_Map_keys(nullptr), nullptr);
  EXPECT_EQ(vorn_collections_Map_values(nullptr), nullptr);
  EXPECT_EQ(vorn_collections_Map_items(nullptr), nullptr);
  vorn_collections_Map_clear(nullptr);
  vorn_collections_Map_reserve(nullptr, 10);
  EXPECT_EQ(vorn_collections_Map_size(nullptr), 0);
  slot = key;
  EXPECT_FALSE(tryMapLookupObjectValue(nullptr, key, &slot));
  EXPECT_EQ(slot, nullptr);
  slot = key;
  EXPECT_FALSE(tryMapLookupValue(nullptr, "a", &slot));
  EXPECT_EQ(slot, nullptr);
  slot = key;
  EXPECT_FALSE(tryMapLookupStorageValue(nullptr, integerCollectionKey(1), &slot));
  EXPECT_EQ(slot, nullptr);
  EXPECT_NOTHING_RAISED();
}

TEST_P(MapLaws, NullKey_PutRaisesAndLeavesTheMap) {
  const Handle map = countingMap(type(), 3);
  const MapState before(map);
  for (const auto put : {vorn_collections_Map_put, vorn_collections_Map__set, vorn_collections_Map_operator_index_eq}) {
    put(map, nullptr, number(1));
    EXPECT_RAISED(kNullKey);
  }
  EXPECT_EQ(MapState(map), before);
}

TEST_P(MapLaws, NullKey_ReadersAreNeutral) {
  const Handle map = countingMap(type(), 3);
  const MapState before(map);
  void* slot = map;
  EXPECT_EQ(vorn_collections_Map__get(map, nullptr), nullptr);
  EXPECT_EQ(vorn_collections_Map_operator_index(map, nullptr), nullptr);
  EXPECT_FALSE(vorn_collections_Map_tryGet(map, nullptr, &slot));
  EXPECT_EQ(slot, nullptr);
  slot = map;
  EXPECT_FALSE(tryMapLookupObjectValue(map, nullptr, &slot));
  EXPECT_EQ(slot, nullptr);
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, nullptr));
  EXPECT_FALSE(vorn_collections_Map_remove(map, nullptr));
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(MapState(map), before);
}

TEST_P(MapLaws, Put_ThreeNamesDoTheSame) {
  const Handle map = object(type());
  const Handle values[] = {string("a"), string("b"), string("c")};
  vorn_collections_Map_put(map, number(1), values[0]);
  vorn_collections_Map__set(map, number(2), values[1]);
  vorn_collections_Map_operator_index_eq(map, number(3), values[2]);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(vorn_collections_Map__get(map, number(i + 1)), values[i].get());
  EXPECT_EQ(sizeField(map), 3);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, Put_ExistingKey_ReplacesValueAndKeyHandleInPlace) {
  const Handle map = countingMap(type(), 3);
  const Handle key = integer("Long", 1);
  const Handle value = string("new");
  std::vector<Entry> expected = entriesOf(map);
  const auto at = std::find_if(expected.begin(), expected.end(), [](const Entry& e) { return valueOf(e.key) == 1; });
  *at = {key, value};
  vorn_collections_Map_put(map, key, value);
  EXPECT_EQ(entriesOf(map), expected);
  EXPECT_EQ(vorn_collections_Map_size(map), 3);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, Put_KeysEqualByValue_AreOneKey) {
  const Handle map = object(type());
  const Handle equals[][3] = {
      {integer("Int", 1), integer("Long", 1), floating("Double", 1.0)},
      {string("text"), text("text"), string("text")},
      {string("a text beyond sixteen bytes"), text("a text beyond sixteen bytes"),
       string("a text beyond sixteen bytes")},
      {floating("Double", -0.0), integer("Byte", 0), floating("Float", 0.0)},
      {integer("ULong", -1), floating("Double", 0x1.fp63), integer("ULong", -1)},
      {integer("Char", 65), integer("Char", 65), integer("Char", 65)},
      {userKey(4), userKey(4), userKey(4)},
  };
  long long size = 0;
  for (const auto& same : equals) {
    ++size;
    const Handle first = string("first");
    vorn_collections_Map_put(map, same[0], first);
    EXPECT_EQ(vorn_collections_Map_size(map), size);
    EXPECT_EQ(vorn_collections_Map__get(map, same[0]), first.get());
    if (size == 5) continue;  // 2^64 - 1 is not the double beside it
    for (const Handle& key : same) {
      EXPECT_TRUE(vorn_collections_Map_operator_in(map, key));
      EXPECT_EQ(vorn_collections_Map__get(map, key), first.get());
    }
    vorn_collections_Map_put(map, same[1], nullptr);
    EXPECT_EQ(vorn_collections_Map_size(map), size);
    vorn_collections_Map_put(map, same[2], first);
    EXPECT_EQ(vorn_collections_Map_size(map), size);
  }
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, Put_UnsignedAboveTheSignedRange_IsNotTheNegativeWithItsBits) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, integer("ULong", -1), string("large"));
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, integer("Long", -1)));
  EXPECT_TRUE(vorn_collections_Map_operator_in(map, integer("ULong", -1)));
  vorn_collections_Map_put(map, integer("Long", -1), string("negative"));
  EXPECT_EQ(vorn_collections_Map_size(map), 2);
  vorn_collections_Map_put(map, integer("ULong", 5), string("small"));
  EXPECT_TRUE(vorn_collections_Map_operator_in(map, integer("Byte", 5)));
}

TEST_P(MapLaws, Put_CharactersAndBooleansAreNotNumbers) {
  const Handle map = object(type());
  for (const Handle& key : {integer("Int", 1), integer("Char", 1), integer("CodeUnit", 1), boolean(true)}) {
    vorn_collections_Map_put(map, key, key);
  }
  EXPECT_EQ(vorn_collections_Map_size(map), 4);
  EXPECT_MAP_AT_REST(map);
}

// The record keeps the first key while the entry holds the last handle: the text of the first must live on.
TEST_P(MapLaws, Put_ReplacedLongTextKey_StaysFindableAfterCollections) {
  const Handle map = object(type());
  const std::string words = "a text that is longer than sixteen bytes";
  {
    const Handle first = string(words);
    vorn_collections_Map_put(map, first, number(1));
  }
  vorn_collections_Map_put(map, string(words), number(2));
  vorn_heap_collect();
  for (int i = 0; i < 50; ++i) string("garbage that fills memory again and again");
  EXPECT_EQ(vorn_collections_Map_size(map), 1);
  EXPECT_EQ(valueOf(vorn_collections_Map__get(map, string(words))), 2);
}

TEST_P(MapLaws, AbsentKey_Readers) {
  const Handle map = countingMap(type(), 3);
  const MapState before(map);
  const Handle key = number(9);
  void* slot = map;
  EXPECT_EQ(vorn_collections_Map__get(map, key), nullptr);
  EXPECT_FALSE(vorn_collections_Map_tryGet(map, key, &slot));
  EXPECT_EQ(slot, nullptr);
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, key));
  EXPECT_FALSE(vorn_collections_Map_remove(map, key));
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(vorn_collections_Map_operator_index(map, key), nullptr);
  EXPECT_RAISED(kNotFound);
  EXPECT_EQ(MapState(map), before);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, EmptyMap_Readers) {
  const Handle map = object(type());
  void* slot = map;
  EXPECT_EQ(vorn_collections_Map__get(map, number(1)), nullptr);
  EXPECT_FALSE(vorn_collections_Map_tryGet(map, number(1), &slot));
  EXPECT_EQ(slot, nullptr);
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, number(1)));
  EXPECT_FALSE(vorn_collections_Map_remove(map, number(1)));
  EXPECT_FALSE(vorn_collections_Map_containsValue(map, nullptr));
  EXPECT_EQ(vorn_collections_Map_operator_index(map, number(1)), nullptr);
  EXPECT_RAISED(kNotFound);
}

TEST_P(MapLaws, NullValue_IsTellableByTryGetAndIn) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, number(1), nullptr);
  void* slot = map;
  EXPECT_EQ(vorn_collections_Map__get(map, number(1)), nullptr);
  EXPECT_EQ(vorn_collections_Map_operator_index(map, number(1)), nullptr);
  EXPECT_NOTHING_RAISED();
  EXPECT_TRUE(vorn_collections_Map_tryGet(map, number(1), &slot));
  EXPECT_EQ(slot, nullptr);
  EXPECT_TRUE(vorn_collections_Map_operator_in(map, number(1)));
  EXPECT_TRUE(vorn_collections_Map_containsValue(map, nullptr));
  EXPECT_EQ(valueTypeOf(map), "Object");
}

TEST_P(MapLaws, PresentKey_EveryReaderGivesTheStoredHandle) {
  const Handle map = object(type());
  const Handle value = string("v");
  vorn_collections_Map_put(map, text("key"), value);
  void* slot = nullptr;
  EXPECT_EQ(vorn_collections_Map__get(map, string("key")), value.get());
  EXPECT_EQ(vorn_collections_Map_operator_index(map, string("key")), value.get());
  EXPECT_TRUE(vorn_collections_Map_tryGet(map, string("key"), &slot));
  EXPECT_EQ(slot, value.get());
  slot = nullptr;
  EXPECT_TRUE(tryMapLookupObjectValue(map, text("key"), &slot));
  EXPECT_EQ(slot, value.get());
  slot = nullptr;
  EXPECT_TRUE(tryMapLookupValue(map, "key", &slot));
  EXPECT_EQ(slot, value.get());
  EXPECT_FALSE(tryMapLookupValue(map, "ke", &slot));
  EXPECT_EQ(slot, nullptr);
}

TEST_P(MapLaws, Remove_TakesTheEntryAndItsSize) {
  const Handle map = countingMap(type(), 20);
  for (int i = 0; i < 20; i += 2) EXPECT_TRUE(vorn_collections_Map_remove(map, integer("Long", i)));
  EXPECT_EQ(vorn_collections_Map_size(map), 10);
  EXPECT_EQ(sizeField(map), 10);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(vorn_collections_Map_operator_in(map, number(i)), i % 2 == 1);
  EXPECT_FALSE(vorn_collections_Map_remove(map, number(0)));
  EXPECT_EQ(keyTypeOf(map), "Int") << "removal forgets no types";
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, Clear_EmptiesAndForgetsTypes) {
  const Handle map = countingMap(type(), 20);
  vorn_collections_Map_put(map, string("k"), string("v"));
  EXPECT_EQ(keyTypeOf(map), "Object");
  vorn_collections_Map_clear(map);
  EXPECT_EQ(vorn_collections_Map_size(map), 0);
  EXPECT_EQ(sizeField(map), 0);
  EXPECT_EQ(keyTypeOf(map), "");
  EXPECT_EQ(valueTypeOf(map), "");
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, number(1)));
  EXPECT_MAP_AT_REST(map);
  vorn_collections_Map_put(map, string("k"), string("v"));
  EXPECT_EQ(keyTypeOf(map), "String");
  EXPECT_EQ(valueTypeOf(map), "String");
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, Reserve_ChangesNothingThatShows) {
  const Handle map = countingMap(type(), 30);
  const MapState before(map);
  for (const long long count : {0LL, -1LL, std::numeric_limits<long long>::min(), 1LL, 500LL, 30LL}) {
    vorn_collections_Map_reserve(map, count);
    EXPECT_EQ(MapState(map), before);
    EXPECT_MAP_AT_REST(map);
  }
}

TEST_P(MapLaws, Values_OfCharactersLackWhatIsNoScalar_AndRaiseForIt) {
  const Handle map = object(type());
  int key = 0;
  for (const int value : {0x61, 0xD800, 0x62}) vorn_collections_Map_put(map, number(key++), integer("Char", value));
  const Handle values = vorn_collections_Map_values(map);
  EXPECT_EQ(takeErrors().size(), 1U);
  EXPECT_EQ(vorn_collections_ArrayList_size(values), 2);
  EXPECT_EQ(vorn_collections_Map_size(map), 3);
}

TEST_P(MapLaws, Reserve_OnlyPositiveCountsOfHashMapsMakeBuckets) {
  const Handle map = object(type());
  vorn_collections_Map_reserve(map, 0);
  vorn_collections_Map_reserve(map, -5);
  EXPECT_EQ(getMapData(map)->hash.bucketCount(), 0U);
  vorn_collections_Map_reserve(map, 1000);
  EXPECT_EQ(getMapData(map)->hash.bucketCount(), sorted() ? 0U : 197U);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, Reserve_ImpossibleCount_ThrowsForHashMapsAndUnlocks) {
  const Handle map = countingMap(type(), 3);
  const MapState before(map);
  const long long huge = std::numeric_limits<long long>::max();
  if (sorted()) {
    vorn_collections_Map_reserve(map, huge);
  } else {
    EXPECT_THROW(vorn_collections_Map_reserve(map, huge), std::length_error);
  }
  EXPECT_EQ(MapState(map), before);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, ContainsValue_ByElementEquality) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, number(1), integer("Int", 5));
  vorn_collections_Map_put(map, number(2), text("word"));
  vorn_collections_Map_put(map, number(3), userKey(7));
  EXPECT_TRUE(vorn_collections_Map_containsValue(map, integer("Long", 5)));
  EXPECT_TRUE(vorn_collections_Map_containsValue(map, floating("Double", 5.0)));
  EXPECT_TRUE(vorn_collections_Map_containsValue(map, string("word")));
  EXPECT_TRUE(vorn_collections_Map_containsValue(map, userKey(7)));
  EXPECT_FALSE(vorn_collections_Map_containsValue(map, userKey(8)));
  EXPECT_FALSE(vorn_collections_Map_containsValue(map, number(1))) << "that is a key";
  EXPECT_FALSE(vorn_collections_Map_containsValue(map, nullptr));
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, ContainsValue_StopsAtTheFirstEqualInStorageOrder) {
  const Handle map = object(type());
  for (int i = 0; i < 10; ++i) vorn_collections_Map_put(map, number(i), userKey(i));
  std::vector<std::int64_t> expected;
  for (const Entry& entry : entriesOf(map)) expected.push_back(idOf(entry.value));
  expected.resize(4);
  std::vector<std::int64_t> asked;
  const std::int64_t wanted = expected.back();
  userHooks.equals = [&](void* self, void*) {
    asked.push_back(idOf(self));
    return idOf(self) == wanted;
  };
  EXPECT_TRUE(vorn_collections_Map_containsValue(map, userKey(99)));
  EXPECT_EQ(asked, expected) << "the stored value is the left operand";
}

TEST_P(MapLaws, ListsOfTheWholeMap_AgreeOnTheOrder) {
  const Handle map = object(type());
  for (int i = 0; i < 40; ++i) vorn_collections_Map_put(map, string("key " + std::to_string(i * 37 % 40)), userKey(i));
  const std::vector<Entry> entries = entriesOf(map);
  const std::vector<Handle> keys = listed(vorn_collections_Map_keys(map));
  const std::vector<Handle> values = listed(vorn_collections_Map_values(map));
  const std::vector<Handle> items = listed(vorn_collections_Map_items(map));
  ASSERT_EQ(keys.size(), 40U);
  ASSERT_EQ(values.size(), 40U);
  ASSERT_EQ(items.size(), 40U);
  for (std::size_t i = 0; i < 40; ++i) {
    EXPECT_EQ(keys[i].get(), entries[i].key);
    EXPECT_EQ(values[i].get(), entries[i].value);
    EXPECT_EQ(Vorn_getField_ptr(items[i], "_0"), entries[i].key);
    EXPECT_EQ(Vorn_getField_ptr(items[i], "_1"), entries[i].value);
    EXPECT_EQ(sizeField(items[i]), 2);
  }
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, Keys_OfASortedMapAscend) {
  const Handle map = object(type());
  for (int i = 0; i < 100; ++i) vorn_collections_Map_put(map, number((i * 37) % 100 - 50), nullptr);
  std::vector<long long> keys = listedIntegers(vorn_collections_Map_keys(map));
  if (!sorted()) std::sort(keys.begin(), keys.end());
  for (int i = 0; i < 100; ++i) EXPECT_EQ(keys[static_cast<std::size_t>(i)], i - 50);
}

TEST_P(MapLaws, Keys_OfASortedMapOrderMixedKinds) {
  const Handle map = object(type());
  const Handle keys[] = {floating("Double", -1.5),
                         number(0),
                         floating("Float", 0.5),
                         integer("ULong", -1),
                         text("a"),
                         string("a long text of many bytes"),
                         string("b")};
  for (const int i : {3, 6, 0, 5, 2, 4, 1}) vorn_collections_Map_put(map, keys[i], nullptr);
  EXPECT_EQ(vorn_collections_Map_size(map), 7);
  if (!sorted()) return;
  const std::vector<Entry> entries = entriesOf(map);
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(entries[i].key, keys[i].get()) << i;
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapLaws, Results_AreImmutableLists) {
  const Handle map = countingMap(type(), 2);
  for (const Handle& list : {Handle(vorn_collections_Map_keys(map)), Handle(vorn_collections_Map_values(map)),
                             Handle(vorn_collections_Map_items(map))}) {
    EXPECT_TRUE(isImmutableListLike(vorn_type_name(list)));
  }
}

TEST_P(MapLaws, Equality_IsDeepEqualsAndItsNegation) {
  const Handle left = countingMap(type(), 5);
  const Handle right = countingMap(type(), 5);
  EXPECT_TRUE(vorn_collections_Map_operator_eq(left, right));
  EXPECT_FALSE(vorn_collections_Map_operator_ne(left, right));
  vorn_collections_Map_put(right, number(0), string("other"));
  EXPECT_FALSE(vorn_collections_Map_operator_eq(left, right));
  EXPECT_TRUE(vorn_collections_Map_operator_ne(left, right));
  EXPECT_FALSE(vorn_collections_Map_operator_eq(left, nullptr));
  EXPECT_FALSE(vorn_collections_Map_operator_eq(nullptr, left));
  EXPECT_TRUE(vorn_collections_Map_operator_ne(nullptr, left));
  EXPECT_TRUE(vorn_collections_Map_operator_eq(nullptr, nullptr));
  EXPECT_FALSE(vorn_collections_Map_operator_ne(nullptr, nullptr));
  EXPECT_MAP_AT_REST(left);
  EXPECT_MAP_AT_REST(right);
}

TEST_P(MapLaws, ErrorPendingBefore_KeyedNativesAreNeutral) {
  const Handle map = countingMap(type(), 3);
  const MapState before(map);
  const Handle key = number(1);
  void* slot = map;
  vorn_raise("Earlier", "error");
  vorn_collections_Map_put(map, key, string("v"));
  EXPECT_EQ(vorn_collections_Map__get(map, key), nullptr);
  EXPECT_FALSE(vorn_collections_Map_tryGet(map, key, &slot));
  EXPECT_EQ(slot, nullptr);
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, key));
  EXPECT_FALSE(vorn_collections_Map_remove(map, key));
  EXPECT_RAISED("Earlier: error");
  EXPECT_EQ(MapState(map), before);
}

TEST_P(MapLaws, ErrorPendingBefore_IndexRaisesOnTop) {
  const Handle map = countingMap(type(), 3);
  vorn_raise("Earlier", "error");
  EXPECT_EQ(vorn_collections_Map_operator_index(map, number(1)), nullptr);
  EXPECT_EQ(takeErrors(), (std::vector<std::string>{"Earlier: error", kNotFound}));
}

TEST_P(MapLaws, ErrorPendingBefore_NullKeyOfPutRaisesOnTop) {
  const Handle map = countingMap(type(), 3);
  vorn_raise("Earlier", "error");
  vorn_collections_Map_put(map, nullptr, nullptr);
  EXPECT_EQ(takeErrors(), (std::vector<std::string>{"Earlier: error", kNullKey}));
}

TEST_P(MapLaws, ErrorPendingBefore_OthersWorkAsEver) {
  const Handle map = countingMap(type(), 3);
  vorn_raise("Earlier", "error");
  EXPECT_TRUE(vorn_collections_Map_containsValue(map, number(101)));
  EXPECT_EQ(vorn_collections_Map_size(map), 3);
  EXPECT_EQ(vorn_collections_ArrayList_size(vorn_collections_Map_keys(map)), 3);
  vorn_collections_Map_clear(map);
  EXPECT_EQ(vorn_collections_Map_size(map), 0);
  EXPECT_RAISED("Earlier: error");
}

TEST_P(MapLaws, RandomOperations_AgreeWithAModel) {
  const int steps = onStressHeap() ? 150 : 10000;
  const Handle map = object(type());
  std::map<std::int64_t, std::int64_t> model;
  Randoms random(7);
  for (int step = 0; step < steps; ++step) {
    const auto key = static_cast<std::int64_t>(random.below(300));
    // The same key as a number and, above 200, as a text.
    const Handle handle = key > 200       ? string("text " + std::to_string(key))
                          : step % 2 == 0 ? integer("Int", key)
                                          : floating("Double", static_cast<double>(key));
    switch (random.below(8)) {
      case 0:
      case 1:
      case 2:
        EXPECT_EQ(vorn_collections_Map_remove(map, handle), model.erase(key) == 1);
        break;
      case 3: {
        void* const value = vorn_collections_Map__get(map, handle);
        ASSERT_EQ(value != nullptr, model.contains(key));
        if (value != nullptr) {
          EXPECT_EQ(valueOf(value), model[key]);
        }
        break;
      }
      default:
        vorn_collections_Map_put(map, handle, number(step));
        model[key] = step;
    }
    ASSERT_EQ(vorn_collections_Map_size(map), static_cast<long long>(model.size()));
    if (step % 50 == 0) {
      EXPECT_MAP_AT_REST(map);
    }
  }
  EXPECT_MAP_AT_REST(map);
}

}  // namespace
}  // namespace vorn::tests
