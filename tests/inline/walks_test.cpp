// Walks over collections beside listings and loops over indexes: what they give, in which order, and what they do when
// the collection changes between two steps.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>

#include <random>

#include "tests/inline/inline_cases.h"
#include "tests/support/collections.h"
#include "tests/support/error_texts.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

class Walks : public RuntimeTest {};

// Around the numbers of elements with which tables and walks do something else: no buckets, slots used up, a chunk full.
constexpr long long kSizes[] = {0, 1, 2, 16, 17, 31, 32, 33, 64, 511, 512, 513, 1200};

using Handles = std::vector<void*>;

struct Walked {
  Handles keys;
  Handles values;
};

Walked walkedMap(void* map) {
  Walked result;
  vorn_walk walk;
  EXPECT_TRUE(vorn_inline_Map_walk(map, &walk));
  while (vorn_inline_Map_next(&walk)) {
    result.keys.push_back(walk.key);
    result.values.push_back(walk.value);
  }
  EXPECT_FALSE(vorn_inline_Map_next(&walk)) << "a walk that has ended goes on";
  EXPECT_EQ(walk.key, nullptr);
  return result;
}

Handles walkedSet(void* set) {
  Handles result;
  vorn_walk walk;
  EXPECT_TRUE(vorn_inline_HashSet_walk(set, &walk));
  while (vorn_inline_HashSet_next(&walk)) {
    result.push_back(walk.key);
    EXPECT_EQ(walk.value, walk.key);
  }
  EXPECT_FALSE(vorn_inline_HashSet_next(&walk)) << "a walk that has ended goes on";
  return result;
}

// Texts are listed as the handles that they are.
Handle keyNumber(long long i) { return string("k" + std::to_string(i * 7 % 10'000)); }

Handles listedBy(void* (*native)(void*), void* collection) {
  const Handle list = native(collection);
  Handles result;
  for (long long i = 0; i < vorn_collections_ArrayList_size(list); ++i) {
    result.push_back(vorn_collections_ArrayList_operator_index(list, i));
  }
  return result;
}

Handle mapOf(const char* type, long long size) {
  Handle map = object(type);
  for (long long i = 0; i < size; ++i) vorn_collections_Map_put(map, keyNumber(i), string("v" + std::to_string(i)));
  return map;
}
Handle setOf(long long size) {
  Handle set = object("HashSet");
  for (long long i = 0; i < size; ++i) vorn_collections_HashSet_add(set, keyNumber(i));
  return set;
}
Handle listOf(const char* type, long long size) {
  Handle list = object(type);
  for (long long i = 0; i < size; ++i) vorn_collections_ArrayList_add(list, keyNumber(i));
  return list;
}

TEST_F(Walks, MapsOfAnySize_GiveWhatKeysAndValuesList) {
  for (const char* const type : {"Map", "SortedMap"}) {
    for (const long long size : kSizes) {
      SCOPED_TRACE(std::string(type) + " " + std::to_string(size));
      const Handle map = mapOf(type, size);
      const Walked walked = walkedMap(map);
      EXPECT_EQ(walked.keys.size(), static_cast<std::size_t>(size));
      EXPECT_EQ(walked.keys, listedBy(vorn_collections_Map_keys, map));
      EXPECT_EQ(walked.values, listedBy(vorn_collections_Map_values, map));
    }
  }
}

TEST_F(Walks, TablesWithGaps_GiveWhatIsLeft) {
  for (const long long size : kSizes) {
    for (const long long step : {2, 3, 50}) {
      SCOPED_TRACE(std::to_string(size) + " without every " + std::to_string(step));
      const Handle map = mapOf("Map", size);
      const Handle sorted = mapOf("SortedMap", size);
      const Handle set = setOf(size);
      for (long long i = 0; i < size; i += step) {
        vorn_collections_Map_remove(map, keyNumber(i));
        vorn_collections_Map_remove(sorted, keyNumber(i));
        vorn_collections_HashSet_remove(set, keyNumber(i));
      }
      EXPECT_EQ(walkedMap(map).keys, listedBy(vorn_collections_Map_keys, map));
      EXPECT_EQ(walkedMap(sorted).values, listedBy(vorn_collections_Map_values, sorted));
      EXPECT_EQ(walkedSet(set), listedBy(vorn_collections_HashSet_items, set));
    }
  }
}

TEST_F(Walks, SetsOfAnySize_GiveWhatItemsLists) {
  for (const long long size : kSizes) {
    const Handle set = setOf(size);
    const Handles walked = walkedSet(set);
    EXPECT_EQ(walked.size(), static_cast<std::size_t>(size));
    EXPECT_EQ(walked, listedBy(vorn_collections_HashSet_items, set));
  }
}

TEST_F(Walks, NullElements_AreGiven) {
  const Handle set = object("HashSet");
  vorn_collections_HashSet_add(set, nullptr);
  EXPECT_EQ(walkedSet(set), Handles{nullptr});
  const Handle map = object("Map");
  const Handle key = string("k");
  vorn_collections_Map_put(map, key, nullptr);
  EXPECT_EQ(walkedMap(map).values, Handles{nullptr});
}

// An element as a walk gives it and as its index does: the same handle, or equal boxes.
TEST_F(Walks, ListsOfAnyClassAndElement_GiveWhatIndexesRead) {
  std::vector<std::string> elements = primitiveNames();
  elements.insert(elements.end(), {"app.Item", ""});
  for (const std::string& element : elements) {
    for (const bool linked : {false, true}) {
      const Handle list = paletteList(linked, false, element);
      const Handle immutable = object("ImmutableList");
      vorn_collections_ImmutableList_ctor(immutable, list);
      for (void* const receiver : {list.get(), immutable.get()}) {
        SCOPED_TRACE(element + (linked ? " linked" : "") + (receiver == immutable ? " immutable" : ""));
        vorn_walk walk;
        ASSERT_TRUE(vorn_inline_ArrayList_walk(receiver, &walk));
        long long index = 0;
        while (vorn_inline_ArrayList_next(&walk)) {
          const Handle given = walk.key;
          EXPECT_EQ(walk.value, given.get());
          const Handle read = vorn_collections_ArrayList_operator_index(receiver, index++);
          EXPECT_EQ(describe(given), describe(read));
        }
        EXPECT_EQ(index, vorn_collections_ArrayList_size(receiver));
        EXPECT_FALSE(vorn_inline_ArrayList_next(&walk));
      }
    }
  }
}

TEST_F(Walks, ListsOfHandlesOfAnySize_GiveThem) {
  for (const char* const type : {"ArrayList", "LinkedList"}) {
    for (const long long size : kSizes) {
      const Handle list = listOf(type, size);
      vorn_walk walk;
      ASSERT_TRUE(vorn_inline_ArrayList_walk(list, &walk));
      for (long long i = 0; i < size; ++i) {
        ASSERT_TRUE(vorn_inline_ArrayList_next(&walk)) << type << ' ' << i;
        ASSERT_EQ(walk.key, vorn_collections_ArrayList_operator_index(list, i)) << type << ' ' << i;
      }
      EXPECT_FALSE(vorn_inline_ArrayList_next(&walk));
    }
  }
}

TEST_F(Walks, OtherReceivers_GiveNothing) {
  const Handle values[] = {nullptr,
                           text("Map"),
                           integer("Int", 1),
                           mapOf("HashMapSync", 3),
                           mapOf("SortedMapSync", 3),
                           object("HashSetSync"),
                           listOf("ArrayListSync", 3),
                           listOf("LinkedListSync", 3),
                           object("Array")};
  for (const Handle& value : values) {
    vorn_walk walk;
    EXPECT_FALSE(vorn_inline_Map_walk(value, &walk));
    EXPECT_FALSE(vorn_inline_Map_next(&walk));
    EXPECT_FALSE(vorn_inline_HashSet_walk(value, &walk));
    EXPECT_FALSE(vorn_inline_HashSet_next(&walk));
    EXPECT_FALSE(vorn_inline_ArrayList_walk(value, &walk));
    EXPECT_FALSE(vorn_inline_ArrayList_next(&walk));
  }
  vorn_walk walk;
  EXPECT_FALSE(vorn_inline_Map_walk(setOf(2), &walk));
  EXPECT_FALSE(vorn_inline_HashSet_walk(mapOf("Map", 2), &walk));
  EXPECT_FALSE(vorn_inline_ArrayList_walk(mapOf("Map", 2), &walk));
  EXPECT_NOTHING_RAISED();
}

std::uint64_t allocations() {
  vorn_heap_statistics statistics;
  vorn_heap_get_statistics(&statistics);
  return statistics.allocations;
}

TEST_F(Walks, OverHandles_AllocateNothing) {
  const Handle map = mapOf("Map", 100);
  const Handle sorted = mapOf("SortedMap", 100);
  const Handle set = setOf(100);
  const Handle linked = listOf("LinkedList", 100);
  const std::uint64_t before = allocations();
  vorn_walk walk;
  long long steps = 0;
  for (void* const each : {map.get(), sorted.get()}) {
    vorn_inline_Map_walk(each, &walk);
    while (vorn_inline_Map_next(&walk)) ++steps;
  }
  vorn_inline_HashSet_walk(set, &walk);
  while (vorn_inline_HashSet_next(&walk)) ++steps;
  vorn_inline_ArrayList_walk(linked, &walk);
  while (vorn_inline_ArrayList_next(&walk)) ++steps;
  EXPECT_EQ(steps, 400);
  EXPECT_EQ(allocations(), before);
}

// ---- Changes of maps and sets ---------------------------------------------------------------------------------------

// Does something after so many steps of a walk over a map and over a set, and tells how many steps there were in all.
struct Steps {
  int ofMap = 0;
  int ofSet = 0;
  std::vector<std::string> errors;
};
Steps stepsWith(const char* type, int after, const std::function<void(void* map, void* set)>& change) {
  Steps steps;
  const Handle map = mapOf(type, 100);
  const Handle set = setOf(100);
  vorn_walk overMap;
  vorn_walk overSet;
  vorn_inline_Map_walk(map, &overMap);
  vorn_inline_HashSet_walk(set, &overSet);
  for (; steps.ofMap < after; ++steps.ofMap) EXPECT_TRUE(vorn_inline_Map_next(&overMap));
  for (; steps.ofSet < after; ++steps.ofSet) EXPECT_TRUE(vorn_inline_HashSet_next(&overSet));
  change(map, set);
  while (vorn_inline_Map_next(&overMap)) ++steps.ofMap;
  while (vorn_inline_HashSet_next(&overSet)) ++steps.ofSet;
  steps.errors = takeErrors();
  return steps;
}

TEST_F(Walks, KeysChange_TheNextStepRaisesOnceAndEnds) {
  const std::vector<std::function<void(void*, void*)>> changes = {
      [](void* map, void* set) {
        vorn_collections_Map_put(map, string("new"), nullptr);
        vorn_collections_HashSet_add(set, string("new"));
      },
      [](void* map, void* set) {
        vorn_collections_Map_remove(map, keyNumber(70));
        vorn_collections_HashSet_remove(set, keyNumber(70));
      },
      [](void* map, void* set) {
        vorn_collections_Map_clear(map);
        vorn_collections_HashSet_clear(set);
        vorn_heap_collect();
      },
      // So many that what is left moves together and memory goes back.
      [](void* map, void* set) {
        for (long long i = 0; i < 95; ++i) {
          vorn_collections_Map_remove(map, keyNumber(i));
          vorn_collections_HashSet_remove(set, keyNumber(i));
        }
        vorn_heap_collect();
      },
      // So many that tables grow.
      [](void* map, void* set) {
        for (long long i = 100; i < 700; ++i) {
          vorn_collections_Map_put(map, keyNumber(i), nullptr);
          vorn_collections_HashSet_add(set, keyNumber(i));
        }
        vorn_heap_collect();
      }};
  for (const char* const type : {"Map", "SortedMap"}) {
    for (std::size_t i = 0; i < changes.size(); ++i) {
      for (const int after : {0, 1, 31, 32, 33, 64, 100}) {
        SCOPED_TRACE(std::string(type) + " change " + std::to_string(i) + " after " + std::to_string(after));
        const Steps steps = stepsWith(type, after, changes[i]);
        EXPECT_EQ(steps.ofMap, after);
        EXPECT_EQ(steps.ofSet, after);
        EXPECT_EQ(steps.errors, std::vector<std::string>(2, error_texts::kKeysChangedDuringWalk));
      }
    }
  }
}

TEST_F(Walks, ReserveMeanwhile_Raises) {
  const Handle map = mapOf("Map", 10);
  vorn_walk walk;
  vorn_inline_Map_walk(map, &walk);
  vorn_inline_Map_next(&walk);
  vorn_collections_Map_reserve(map, 1000);
  EXPECT_FALSE(vorn_inline_Map_next(&walk));
  EXPECT_RAISED(error_texts::kKeysChangedDuringWalk);
}

TEST_F(Walks, KeysStay_TheWalkGoesOnWithWhatIsThere) {
  for (const char* const type : {"Map", "SortedMap"}) {
    const Steps steps = stepsWith(type, 3, [](void* map, void* set) {
      EXPECT_FALSE(vorn_collections_Map_remove(map, string("absent")));
      EXPECT_FALSE(vorn_collections_HashSet_remove(set, string("absent")));
      vorn_collections_HashSet_add(set, keyNumber(50));
      vorn_collections_Map_put(map, keyNumber(50), string("replaced"));
      vorn_heap_collect();
    });
    EXPECT_EQ(steps.ofMap, 100);
    EXPECT_EQ(steps.ofSet, 100);
    EXPECT_EQ(steps.errors, std::vector<std::string>{});
  }
}

TEST_F(Walks, ReplacedKeysAndValues_AreGivenAsTheyThenAre) {
  for (const char* const type : {"Map", "SortedMap"}) {
    const Handle map = mapOf(type, 20);
    vorn_walk walk;
    vorn_inline_Map_walk(map, &walk);
    ASSERT_TRUE(vorn_inline_Map_next(&walk));
    for (long long i = 0; i < 20; ++i) vorn_collections_Map_put(map, keyNumber(i), string("new " + std::to_string(i)));
    vorn_heap_collect();
    int steps = 1;
    for (; vorn_inline_Map_next(&walk); ++steps) {
      EXPECT_TRUE(describe(walk.value).starts_with("String new ")) << type;
      EXPECT_EQ(vorn_collections_Map__get(map, walk.key), walk.value);
    }
    EXPECT_EQ(steps, 20);
  }
}

// User code runs neither at the beginning nor in a step.
TEST_F(Walks, KeysOfUserClasses_AreNotAsked) {
  for (const char* const type : {"Map", "SortedMap"}) {
    const Handle map = object(type);
    for (int i = 0; i < 40; ++i) vorn_collections_Map_put(map, userKey(i), nullptr);
    clearHookCalls();
    EXPECT_EQ(walkedMap(map).keys.size(), 40U);
    EXPECT_EQ(hookCalls(Hook::Equality) + hookCalls(Hook::Order) + hookCalls(Hook::Hash), 0);
  }
}

// ---- Changes of lists -----------------------------------------------------------------------------------------------

using ListChange = std::function<void(void* list, std::mt19937& random)>;

const std::vector<ListChange>& listChanges() {
  static const std::vector<ListChange> all = {
      [](void* list, std::mt19937&) { vorn_collections_ArrayList_add(list, string("added")); },
      [](void* list, std::mt19937&) { vorn_collections_ArrayList_addAt(list, 0, string("in front")); },
      [](void* list, std::mt19937& random) {
        const long long size = vorn_collections_ArrayList_size(list);
        if (size != 0) vorn_collections_ArrayList_removeAt(list, static_cast<long long>(random() % 1000) % size);
      },
      [](void* list, std::mt19937&) { vorn_collections_ArrayList_reverse(list); },
      [](void* list, std::mt19937&) { vorn_collections_ArrayList_reserve(list, 500); },
      [](void* list, std::mt19937& random) {
        const long long size = vorn_collections_ArrayList_size(list);
        if (size == 0) return;
        vorn_collections_ArrayList_operator_index_eq(list, static_cast<long long>(random() % 1000) % size,
                                                     string("replaced"));
      },
      // Into unboxed storage and back, where the list is not linked.
      [](void* list, std::mt19937& random) {
        vorn_collections_ArrayList_clear(list);
        const bool numbers = random() % 2 == 0;
        for (int i = 0; i < 40; ++i) {
          vorn_collections_ArrayList_add(list, numbers ? integer("Int", i) : string(std::to_string(i)));
        }
      },
      [](void* list, std::mt19937&) {
        vorn_collections_ArrayList_clear(list);
        vorn_heap_collect();
      },
      [](void*, std::mt19937&) { vorn_heap_collect(); },
      [](void* list, std::mt19937&) {
        for (int i = 0; i < 50; ++i) vorn_collections_ArrayList_add(list, string("more"));
      }};
  return all;
}

// A walk is a loop over indexes, whatever happens to the list: random changes between random steps.
TEST_F(Walks, ListsChange_TheWalkGoesOnAtItsNextIndex) {
  for (const char* const type : {"ArrayList", "LinkedList"}) {
    for (unsigned seed = 0; seed < (onStressHeap() ? 40 : 200); ++seed) {
      SCOPED_TRACE(std::string(type) + " seed " + std::to_string(seed));
      std::mt19937 random(seed);
      const Handle list = listOf(type, static_cast<long long>(random() % 150));
      vorn_walk walk;
      ASSERT_TRUE(vorn_inline_ArrayList_walk(list, &walk));
      long long index = 0;
      bool ended = false;
      while (!ended && index < 400) {
        const long long size = vorn_collections_ArrayList_size(list);
        ended = !vorn_inline_ArrayList_next(&walk);
        ASSERT_EQ(ended, index >= size) << index;
        if (ended) break;
        const Handle given = walk.key;
        const Handle expected = vorn_collections_ArrayList_operator_index(list, index++);
        ASSERT_EQ(describe(given), describe(expected)) << index;
        // A few steps without a change, so that slots are used up as well as left.
        if (random() % 8 == 0) listChanges()[random() % listChanges().size()](list, random);
      }
      for (int i = 0; ended && i < 3; ++i) {
        vorn_collections_ArrayList_add(list, string("after the end"));
        ASSERT_FALSE(vorn_inline_ArrayList_next(&walk));
      }
    }
  }
  EXPECT_NOTHING_RAISED();
}

TEST_F(Walks, UnboxedList_OutOfMemory_ThrowsAndGoesOnThere) {
  const Handle list = object("ArrayList<Int>");
  for (long long i = 1; i <= 3; ++i) vorn_collections_ArrayList_addInt(list, i);
  vorn_walk walk;
  ASSERT_TRUE(vorn_inline_ArrayList_walk(list, &walk));
  ASSERT_TRUE(vorn_inline_ArrayList_next(&walk));
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(vorn_inline_ArrayList_next(&walk), std::bad_alloc);
  vorn_heap_fail_allocation(-1);
  ASSERT_TRUE(vorn_inline_ArrayList_next(&walk));
  EXPECT_EQ(describe(walk.key), "Int 2");
}

}  // namespace
}  // namespace vorn::tests
