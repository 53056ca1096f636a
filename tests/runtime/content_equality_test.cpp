// Equality and order of tuples, maps and sets by what they contain.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include <atomic>
#include <cmath>
#include <new>
#include <utility>

#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "collections/keyed/map_data.h"
#include "tests/runtime/comparisons.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"
#include "tests/support/sequences.h"
#include "tests/support/threads.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using ContentEquality = RuntimeTest;

using Entries = std::vector<std::pair<Handle, Handle>>;

Handle mapOf(const char* type, const Entries& entries) {
  Handle map = object(type);
  for (const auto& [key, value] : entries) vorn_collections_Map_put(map, key, value);
  return map;
}

Handle setOf(const char* type, const std::vector<Handle>& elements) {
  Handle set = object(type);
  for (const Handle& element : elements) vorn_collections_HashSet_add(set, element);
  return set;
}

constexpr const char* kMaps[] = {"Map", "HashMapSync", "SortedMap", "SortedMapSync", "Map<String,Int>"};
constexpr const char* kSets[] = {"HashSet", "HashSetSync", "HashSet<Int>"};

// ---- Tuples ---------------------------------------------------------------------------------------------------------

TEST_F(ContentEquality, Tuples_ElementByElement) {
  EXPECT_TRUE(equals(tupleOf({}), tupleOf({})));
  EXPECT_TRUE(equals(tupleOf({integer("Int", 1), nullptr, string("a")}),
                     tupleOf({floating("Double", 1), nullptr, text("a")}, "Tuple<Double,Object,String>")));
  EXPECT_FALSE(equals(tupleOf({integer("Int", 1)}), tupleOf({integer("Int", 2)})));
  EXPECT_FALSE(equals(tupleOf({integer("Int", 1)}), tupleOf({integer("Int", 1), nullptr})));
  EXPECT_FALSE(equals(tupleOf({floating("Double", std::nan(""))}), tupleOf({floating("Double", std::nan(""))})));
  EXPECT_TRUE(
      equals(tupleOf({list("ArrayList", {integer("Int", 1)})}), tupleOf({list("LinkedList", {integer("Int", 1)})})));
  EXPECT_TRUE(equals(tupleOf({hooked(1)}), tupleOf({hooked(1)})));
}

TEST_F(ContentEquality, Families_AreNeverEqual) {
  const Handle empties[] = {tupleOf({}),       object("ArrayList"), object("ImmutableList"),
                            object("HashSet"), object("Map"),       plain(1)};
  for (const Handle& left : empties) {
    for (const Handle& right : empties) EXPECT_EQ(equals(left, right), &left == &right);
  }
}

TEST_F(ContentEquality, Tuples_DeepAndEndlessOnesAreComparedToAnEnd) {
  const int levels = onStressHeap() ? 200 : 100'000;
  EXPECT_TRUE(equals(deepTuple(levels, string("a")), deepTuple(levels, text("a"))));
  EXPECT_FALSE(equals(deepTuple(levels, string("a")), deepTuple(levels, text("b"))));
  const Handle one = tupleOf({nullptr});
  const Handle other = tupleOf({nullptr});
  vorn_field_set_handle(one, "_0", one);
  vorn_field_set_handle(other, "_0", other);
  EXPECT_TRUE(equals(one, other));
  EXPECT_FALSE(equals(one, tupleOf({tupleOf({nullptr})})));
}

TEST_F(ContentEquality, Tuples_ASizeBeyondTheItemsIsNoDanger) {
  const Handle one = tupleOf({integer("Int", 1)}, "Tuple<Int>");
  const Handle other = tupleOf({integer("Int", 1)}, "Tuple<Int>");
  vorn_field_set_integer(one, "size", std::int64_t{1} << 60);
  EXPECT_TRUE(equals(one, other));
  vorn_field_set_integer(one, "size", -1);
  EXPECT_FALSE(equals(one, other));
}

// ---- The order of tuples --------------------------------------------------------------------------------------------

TEST_F(ContentEquality, Order_OfTuplesIsLexicographic) {
  EXPECT_EQ(orderOf(tupleOf({}), tupleOf({})), "=");
  EXPECT_EQ(orderOf(tupleOf({integer("Int", 1)}), tupleOf({integer("Int", 1), nullptr})), "<");
  EXPECT_EQ(orderOf(tupleOf({integer("Int", 2)}), tupleOf({integer("Int", 1), integer("Int", 9)})), ">");
  EXPECT_EQ(orderOf(tupleOf({string("a"), integer("Int", 1)}), tupleOf({text("a"), floating("Double", 1.5)})), "<");
  EXPECT_EQ(orderOf(tupleOf({tupleOf({integer("Int", 1)})}), tupleOf({tupleOf({integer("Int", 0)})})), ">");
  EXPECT_EQ(orderOf(tupleOf({plain(1)}), tupleOf({plain(1)})), "~");
}

TEST_F(ContentEquality, Order_BetweenFamiliesIsNone) {
  EXPECT_EQ(orderOf(tupleOf({}), object("ArrayList")), "!");
  EXPECT_EQ(orderOf(tupleOf({}), object("ImmutableList")), "!");
  EXPECT_EQ(orderOf(object("Map"), object("Map")), "?");
  EXPECT_EQ(orderOf(object("HashSet"), object("HashSet")), "?");
}

TEST_F(ContentEquality, Order_ListsOfTuplesSort) {
  const Handle tuples = list("ArrayList", {tupleOf({integer("Int", 2), string("a")}), tupleOf({integer("Int", 1)}),
                                           tupleOf({integer("Int", 1), string("z")})});
  vorn_collections_ArrayList_sort(tuples);
  EXPECT_EQ(orderOf(vorn_collections_ArrayList_operator_index(tuples, 0),
                    vorn_collections_ArrayList_operator_index(tuples, 1)),
            "<");
  EXPECT_EQ(vorn_collections_Tuple_size(vorn_collections_ArrayList_operator_index(tuples, 1)), 2);
}

// ---- Maps -----------------------------------------------------------------------------------------------------------

TEST_F(ContentEquality, Maps_SameEntriesWhateverTheirOrderAndClass) {
  const Entries entries = {{string("a"), integer("Int", 1)}, {string("b"), nullptr}, {integer("Int", 3), string("c")}};
  const Entries shuffled = {
      {floating("Double", 3), text("c")}, {text("b"), nullptr}, {text("a"), floating("Float", 1)}};
  for (const char* left : kMaps) {
    for (const char* right : kMaps) {
      EXPECT_TRUE(equals(mapOf(left, {}), mapOf(right, {}))) << left << " " << right;
      EXPECT_TRUE(equals(mapOf(left, entries), mapOf(right, shuffled))) << left << " " << right;
      EXPECT_FALSE(equals(mapOf(left, entries), mapOf(right, {}))) << left << " " << right;
    }
  }
}

TEST_F(ContentEquality, Maps_OneDifferenceDecides) {
  for (const char* type : kMaps) {
    const Handle map = mapOf(type, {{string("a"), integer("Int", 1)}, {string("b"), integer("Int", 2)}});
    const Handle otherValue = mapOf(type, {{string("a"), integer("Int", 1)}, {string("b"), integer("Int", 3)}});
    const Handle otherKey = mapOf(type, {{string("a"), integer("Int", 1)}, {string("c"), integer("Int", 2)}});
    const Handle swapped = mapOf(type, {{string("a"), integer("Int", 2)}, {string("b"), integer("Int", 1)}});
    const Handle nullValue = mapOf(type, {{string("a"), integer("Int", 1)}, {string("b"), nullptr}});
    for (const Handle& other : {otherValue, otherKey, swapped, nullValue}) EXPECT_FALSE(equals(map, other)) << type;
    EXPECT_TRUE(equals(map, map)) << type;
  }
}

TEST_F(ContentEquality, Maps_KeysByKeyEqualityValuesByValueEquality) {
  const Handle nan = floating("Double", std::nan(""));
  const Handle otherNan = floating("Double", std::nan(""));
  EXPECT_TRUE(equals(mapOf("Map", {{nan, nullptr}}), mapOf("SortedMap", {{otherNan, nullptr}})));
  EXPECT_FALSE(equals(mapOf("Map", {{string("a"), nan}}), mapOf("Map", {{string("a"), otherNan}})));
  const Handle inner = list("ArrayList", {integer("Int", 1)});
  const Handle sameInner = list("ArrayList", {integer("Int", 1)});
  EXPECT_FALSE(equals(mapOf("Map", {{inner, nullptr}}), mapOf("Map", {{sameInner, nullptr}})));
  EXPECT_TRUE(equals(mapOf("Map", {{string("a"), inner}}), mapOf("Map", {{string("a"), sameInner}})));
  EXPECT_TRUE(equals(mapOf("Map", {{tupleOf({integer("Int", 1)}), inner}}),
                     mapOf("Map", {{tupleOf({integer("Long", 1)}), inner}})));
  EXPECT_TRUE(equals(mapOf("Map", {{userKey(1), hooked(2)}}), mapOf("SortedMap", {{userKey(1), hooked(2)}})));
}

TEST_F(ContentEquality, Maps_Large) {
  const int count = onStressHeap() ? 40 : 3000;
  for (const char* left : {"Map", "SortedMap"}) {
    const Handle one = object(left);
    const Handle other = object("Map");
    for (int i = 0; i < count; ++i) vorn_collections_Map_put(one, integer("Int", i), integer("Int", i * i));
    for (int i = count - 1; i >= 0; --i) vorn_collections_Map_put(other, integer("Long", i), integer("Long", i * i));
    EXPECT_TRUE(equals(one, other)) << left;
    vorn_collections_Map_put(other, integer("Long", count / 2), integer("Long", -1));
    EXPECT_FALSE(equals(one, other)) << left;
  }
}

TEST_F(ContentEquality, Maps_ThatContainThemselvesAndDeepOnes) {
  const auto endless = [](const char* type) {
    Handle map = object(type);
    vorn_collections_Map_put(map, string("self"), map);
    return map;
  };
  EXPECT_TRUE(equals(endless("Map"), endless("SortedMap")));
  EXPECT_FALSE(equals(endless("Map"), mapOf("Map", {{string("self"), object("Map")}})));
  const auto deep = [](const char* innermost) {
    Handle map = string(innermost);
    for (int i = onStressHeap() ? 100 : 20'000; i > 0; --i) map = mapOf("Map", {{string("in"), map}});
    return map;
  };
  EXPECT_TRUE(equals(deep("a"), deep("a")));
  EXPECT_FALSE(equals(deep("a"), deep("b")));
  EXPECT_TRUE(equals(tupleOf({mapOf("Map", {{string("a"), tupleOf({})}})}),
                     tupleOf({mapOf("Map", {{string("a"), tupleOf({})}})})));
}

// ---- Sets -----------------------------------------------------------------------------------------------------------

TEST_F(ContentEquality, Sets_SameElementsWhateverTheirOrderAndClass) {
  for (const char* left : kSets) {
    for (const char* right : kSets) {
      EXPECT_TRUE(equals(setOf(left, {}), setOf(right, {}))) << left << " " << right;
      EXPECT_TRUE(equals(setOf(left, {integer("Int", 1), nullptr, string("a")}),
                         setOf(right, {text("a"), floating("Double", 1), nullptr})))
          << left << " " << right;
      EXPECT_FALSE(equals(setOf(left, {integer("Int", 1)}), setOf(right, {integer("Int", 2)}))) << left << " " << right;
      EXPECT_FALSE(equals(setOf(left, {integer("Int", 1)}), setOf(right, {integer("Int", 1), nullptr})))
          << left << " " << right;
    }
  }
}

TEST_F(ContentEquality, Sets_ElementsAsKeys) {
  EXPECT_TRUE(equals(setOf("HashSet", {floating("Double", std::nan(""))}),
                     setOf("HashSet", {floating("Double", std::nan(""))})));
  EXPECT_TRUE(equals(setOf("HashSet", {userKey(1), userKey(2)}), setOf("HashSet", {userKey(2), userKey(1)})));
  EXPECT_FALSE(equals(setOf("HashSet", {object("ArrayList")}), setOf("HashSet", {object("ArrayList")})));
  const Handle self = object("HashSet");
  vorn_collections_HashSet_add(self, self);
  EXPECT_TRUE(equals(self, self));
  EXPECT_TRUE(equals(self, setOf("HashSet", {self})));
}

TEST_F(ContentEquality, Sets_LongTextsSurviveCollections) {
  const auto longTexts = [] {
    Handle set = object("HashSet");
    for (char c = 'a'; c <= 'z'; ++c) vorn_collections_HashSet_add(set, string(std::string(40, c)));
    return set;
  };
  EXPECT_TRUE(equals(longTexts(), longTexts()));
}

// ---- User code and locks --------------------------------------------------------------------------------------------

TEST_F(ContentEquality, Hooks_ThatRaiseMakeUnequal) {
  const Handle left = setOf("HashSet", {userKey(1)});
  const Handle right = setOf("HashSet", {userKey(1)});
  const Handle leftMap = mapOf("Map", {{string("a"), hooked(1)}});
  const Handle rightMap = mapOf("Map", {{string("a"), hooked(1)}});
  userHooks.equals = [](void*, void*) {
    vorn_raise("Exception", "no equality");
    return true;
  };
  EXPECT_EQ(Vorn_deepEquals(left, right), 0);
  EXPECT_RAISED("Exception: no equality");
  EXPECT_EQ(Vorn_deepEquals(leftMap, rightMap), 0);
  EXPECT_RAISED("Exception: no equality");
}

TEST_F(ContentEquality, Hooks_OfErrorsPendingBeforeDoNotMatter) {
  const Handle left = setOf("HashSet", {userKey(1)});
  const Handle right = setOf("HashSet", {userKey(1)});
  vorn_raise("Exception", "before");
  EXPECT_EQ(Vorn_deepEquals(left, right), 1);
  EXPECT_RAISED("Exception: before");
}

TEST_F(ContentEquality, Hooks_MayChangeTheCollectionsAndFindThemUnlocked) {
  const Handle left = mapOf("HashMapSync", {{userKey(1), userKey(1)}, {userKey(2), userKey(2)}});
  const Handle right = mapOf("SortedMapSync", {{userKey(1), userKey(1)}, {userKey(2), userKey(2)}});
  userHooks.equals = [&](void* self, void* other) {
    EXPECT_FALSE(isRecordLocked(*getMapData(left)));
    EXPECT_FALSE(isRecordLocked(*getMapData(right)));
    vorn_collections_Map_clear(left);
    vorn_collections_Map_clear(right);
    vorn_heap_collect();
    return idOf(self) == idOf(other);
  };
  EXPECT_EQ(Vorn_deepEquals(left, right), 1);
}

TEST_F(ContentEquality, Hooks_ThatSayYesToEverythingLetNoKeyServeTwice) {
  // The map orders by the ordering hook, which tells 1 from 2; its keys have one hash, as there is no hash hook.
  const Handle left = mapOf("SortedMap", {{hooked(1), nullptr}, {hooked(2), nullptr}});
  const Handle right = mapOf("SortedMap", {{hooked(3), nullptr}, {hooked(4), nullptr}});
  int questions = 0;
  userHooks.equals = [&](void*, void*) {
    ++questions;
    return true;
  };
  EXPECT_EQ(Vorn_deepEquals(left, right), 1);
  EXPECT_EQ(questions, 2);
}

TEST_F(ContentEquality, OppositeDirections_DoNotDeadlock) {
  const Handle left = mapOf("HashMapSync", {{string("a"), integer("Int", 1)}});
  const Handle right = mapOf("SortedMapSync", {{string("a"), integer("Int", 1)}});
  const int times = onStressHeap() ? 20 : 2000;
  std::atomic<int> equal = 0;
  const auto compare = [&](void* one, void* other) {
    for (int i = 0; i < times; ++i) equal += Vorn_deepEquals(one, other);
  };
  runTogether({[&] { compare(left, right); }, [&] { compare(right, left); }});
  EXPECT_EQ(equal, 2 * times);
}

TEST_F(ContentEquality, WithoutMemory_TheComparisonThrowsAndNothingStaysLocked) {
  const Handle left = mapOf("HashMapSync", {{string("a"), tupleOf({string("b")})}});
  const Handle right = mapOf("SortedMapSync", {{string("a"), tupleOf({string("b")})}});
  int failures = 0;
  for (;; ++failures) {
    ASSERT_LT(failures, 50);
    vorn_heap_fail_allocation(failures);
    bool thrown = false;
    try {
      EXPECT_EQ(Vorn_deepEquals(left, right), 1);
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    const bool happened = vorn_heap_failure_happened() != 0;
    vorn_heap_fail_allocation(-1);
    EXPECT_EQ(thrown, happened);
    for (void* map : {left.get(), right.get()}) {
      ASSERT_FALSE(isRecordLocked(*getMapData(map)));
    }
    if (!thrown) break;
  }
  EXPECT_GT(failures, 0);
}

}  // namespace
}  // namespace vorn::tests
