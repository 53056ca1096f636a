// Deeply nested values on a thread whose stack is small: what compares, hashes, orders, copies or keeps alive them needs
// no stack a level, and what shows them ends in an exception.
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "collections/core/port/comparison.h"
#include "collections/core/port/text.h"
#include "tests/support/sequences.h"
#include "tests/support/small_stack.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

struct Nesting {
  const char* name;
  // A collection with this one element.
  Handle (*around)(const Handle& inner);
};

Handle inArray(const Handle& inner) {
  const Handle array = object("Array");
  vorn_collections_Array_ctor(array, 1);
  vorn_collections_Array_operator_index_eq(array, 0, inner);
  return array;
}

Handle inMap(const char* type, const Handle& inner) {
  const Handle map = object(type);
  static const Handle key = integer("Int", 1);
  vorn_collections_Map_put(map, key, inner);
  return map;
}

const Nesting kNestings[] = {
    {"ArrayList", [](const Handle& inner) { return list("ArrayList", {inner}); }},
    {"LinkedListSync", [](const Handle& inner) { return list("LinkedListSync", {inner}); }},
    {"ImmutableList", [](const Handle& inner) { return boxedImmutable({inner}); }},
    {"Tuple", [](const Handle& inner) { return tupleOf({inner}); }},
    {"Array", inArray},
    {"Map", [](const Handle& inner) { return inMap("Map", inner); }},
    {"SortedMap", [](const Handle& inner) { return inMap("SortedMap", inner); }},
    {"HashSet",
     [](const Handle& inner) {
       const Handle set = object("HashSet");
       vorn_collections_HashSet_add(set, inner);
       return set;
     }},
    // Any two of them in turn.
    {"TupleAndList", [](const Handle& inner) { return list("ArrayList", {tupleOf({inner})}); }},
};

class SmallStack : public RuntimeTest, public ::testing::WithParamInterface<Nesting> {
 protected:
  [[nodiscard]] static int depth() { return onStressHeap() ? 150 : 8'000; }

  [[nodiscard]] static Handle deep(const Handle& innermost) {
    Handle value = innermost;
    for (int i = 0; i < depth(); ++i) value = GetParam().around(value);
    return value;
  }
};

INSTANTIATE_TEST_SUITE_P(Nestings, SmallStack, ::testing::ValuesIn(kNestings),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_P(SmallStack, DeepValues_AreComparedToTheEnd) {
  const Handle one = deep(string("a"));
  const Handle same = deep(string("a"));
  const Handle other = deep(string("b"));
  onSmallStack([&] {
    // Sets hold what is mutable by identity.
    const bool byContent = std::string_view(GetParam().name) != "HashSet";
    EXPECT_EQ(vorn_equals(one, same) != 0, byContent);
    EXPECT_EQ(vorn_equals(one, other), 0);
    EXPECT_EQ(vorn_equals(one, one), 1);
    EXPECT_NOTHING_RAISED();
  });
}

TEST_P(SmallStack, DeepValues_AreSearchedForSortedAndUsedAsKeys) {
  const Handle one = deep(string("a"));
  const Handle same = deep(string("a"));
  const Handle target = list("ArrayList", {same, one});
  const Handle array = object("Array");
  vorn_collections_Array_ctor(array, 2);
  vorn_collections_Array_operator_index_eq(array, 0, one);
  vorn_collections_Array_operator_index_eq(array, 1, same);
  const Handle maps[] = {object("Map"), object("SortedMap")};
  const Handle set = object("HashSet");
  onSmallStack([&] {
    EXPECT_GE(vorn_collections_ArrayList_count(target, one), 1);
    EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(target, one, -1), 1);
    EXPECT_GE(vorn_collections_Array_count(array, same), 1);
    vorn_collections_ArrayList_sort(target);
    vorn_collections_Array_sort(array);
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 2);
    for (const Handle& map : maps) {
      vorn_collections_Map_put(map, one, same);
      EXPECT_EQ(vorn_collections_Map__get(map, one), same.get());
      EXPECT_TRUE(vorn_collections_Map_containsValue(map, same));
      EXPECT_TRUE(vorn_collections_Map_remove(map, one));
    }
    vorn_collections_HashSet_add(set, one);
    EXPECT_TRUE(vorn_collections_HashSet_operator_in(set, one));
    EXPECT_NOTHING_RAISED();
  });
}

TEST_P(SmallStack, DeepValues_SurviveACollection) {
  if (testOptions().heap == VORN_HEAP_PLAIN) return;
  const Handle value = deep(string("a"));
  onSmallStack([&] { vorn_heap_collect(); });
  EXPECT_EQ(vorn_equals(value, value), 1);
}

TEST_P(SmallStack, DeepValues_AreShownByAnExceptionAndNotACrash) {
  if (onStressHeap()) return;  // so deep is nothing there
  const Handle value = deep(string("a"));
  const Handle target = list("ArrayListSync", {value});
  onSmallStack([&] {
    EXPECT_THROW(vorn_collections_ArrayList_toString(target), std::runtime_error);
    EXPECT_THROW(vorn_collections_ArrayList_join(target, ","), std::runtime_error);
    EXPECT_THROW(Vorn_objectToString(value), std::runtime_error);
  });
  EXPECT_VALID_LIST(target);
}

// What an object shows of its fields is not what is in them.
TEST(SmallStackOfObjects, ChainsOfObjects_AreShownComparedAndKeptAlive) {
  Handle chain = plain(0);
  const int depth = onStressHeap() ? 150 : 8'000;
  for (int i = 0; i < depth; ++i) {
    const Handle next = plain(i);
    vorn_field_set_handle(next, "next", chain);
    chain = next;
  }
  onSmallStack([&] {
    vorn_heap_collect();
    EXPECT_NE(Vorn_objectToString(chain), nullptr);
    EXPECT_EQ(vorn_equals(chain, nextOf(chain)), 0);
  });
}

TEST(SmallStackOfNames, NamesThatNestDeeply_MakeNoObjectOrOne) {
  std::string name = "ArrayList";
  for (int i = 0; i < 20'000; ++i) name += "<ArrayList";
  name += std::string(20'000, '>');
  onSmallStack([&] {
    const Handle made = object(name);
    const Handle value = list("ArrayList", {integer("Int", 1)});
    if (made.get() != nullptr) vorn_collections_ArrayList_add(made, value);
    takeErrors();
    EXPECT_EQ(vorn_is_instance(value, name.c_str()), 0);
  });
}

}  // namespace
}  // namespace vorn::tests
