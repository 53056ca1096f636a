// What the tests of displays share: the fourteen kinds of collections with the texts that each shows, and ways to make
// one of them, fill it and display it.
#pragma once

#include <pthread.h>
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <string>
#include <vector>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "collections/display/display_guard.h"
#include "collections/display/value_display.h"
#include "tests/support/collections.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"
#include "tests/support/sequences.h"

namespace vorn::tests {

// One kind of collection, and the type that an instance is made of. `emptyOpening` is the opening of one without
// elements.
struct Kind : CollectionClass {
  const char* type;
  const char* nullText;
  const char* cycle;
  const char* emptyOpening;
  const char* opening;
  const char* closing;
  void* (*toString)(void* collection);
};

inline constexpr Kind kKinds[] = {
    {classNamed("ArrayList"), "ArrayList", "[]", "[...]", "[", "[", "]", vorn_collections_ArrayList_toString},
    {classNamed("ArrayListSync"), "ArrayListSync", "[]", "[...]", "[", "s:[", "]", vorn_collections_ArrayList_toString},
    {classNamed("LinkedList"), "LinkedList", "[]", "[...]", "l:[", "l:[", "]", vorn_collections_ArrayList_toString},
    {classNamed("LinkedListSync"), "LinkedListSync", "[]", "[...]", "ls:[", "ls:[", "]",
     vorn_collections_ArrayList_toString},
    {classNamed("ImmutableList"), "ImmutableList", "i:[]", "i:[...]", "i:[", "i:[", "]",
     vorn_collections_ImmutableList_toString},
    {classNamed("Tuple"), "Tuple", "()", "(...)", "(", "(", ")", vorn_collections_Tuple_toString},
    {classNamed("HashSet"), "HashSet", "{}", "{...}", "{", "{", "}", vorn_collections_HashSet_toString},
    {classNamed("HashSetSync"), "HashSetSync", "{}", "{...}", "s:{", "s:{", "}", vorn_collections_HashSet_toString},
    {classNamed("Map"), "Map", "{}", "{...}", "{", "{", "}", vorn_collections_Map_toString},
    {classNamed("HashMapSync"), "HashMapSync", "{}", "s:{...}", "s:{", "s:{", "}", vorn_collections_Map_toString},
    {classNamed("SortedMap"), "SortedMap", "{}", "t:{...}", "t:{", "t:{", "}", vorn_collections_Map_toString},
    {classNamed("SortedMapSync"), "SortedMapSync", "{}", "ts:{...}", "ts:{", "ts:{", "}",
     vorn_collections_Map_toString},
    {classNamed("Array"), "Array<Object>", "f:[]", "f:[...]", "f:[", "f:[", "]", vorn_collections_Array_toString},
    {classNamed("ArraySync"), "ArraySync<Object>", "f:[]", "f:[...]", "fs:[", "fs:[", "]",
     vorn_collections_Array_toString},
};

// An empty collection that `count` elements can be put into, one after the other.
inline Handle collectionFor(const Kind& kind, std::size_t count) {
  if (kind.family == Family::Tuple) return tupleOf(std::vector<Handle>(count));
  Handle result = object(kind.type);
  if (kind.family == Family::Array) vorn_collections_Array_ctor(result, static_cast<long long>(count));
  return result;
}

// Puts an element at a position; maps take it as the value of the Int key `at`. Immutable lists and tuples are written
// behind the language's back, or they could not contain themselves.
inline void put(const Kind& kind, void* collection, std::size_t at, void* element) {
  const Handle keep(element);
  switch (kind.family) {
    case Family::List:
      return vorn_collections_ArrayList_add(collection, element);
    case Family::Immutable:
      return getListData(collection)->objectPushBack(element);
    case Family::Tuple:
      EXPECT_EQ(vorn_field_set_handle(collection, ("_" + std::to_string(at)).c_str(), element), 1);
      return;
    case Family::Set:
      return vorn_collections_HashSet_add(collection, element);
    case Family::Map:
      return vorn_collections_Map_put(collection, integer("Int", static_cast<std::int64_t>(at)), element);
    case Family::Array:
      return vorn_collections_Array_operator_index_eq(collection, static_cast<long long>(at), element);
  }
}

inline Handle filled(const Kind& kind, const std::vector<Handle>& elements) {
  Handle result = collectionFor(kind, elements.size());
  for (std::size_t i = 0; i < elements.size(); ++i) put(kind, result, i, elements[i]);
  return result;
}

// What a collection shows that was filled with elements of the given texts.
inline std::string shown(const Kind& kind, const std::vector<std::string>& elements) {
  std::string text = elements.empty() ? kind.emptyOpening : kind.opening;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (i != 0) text += ", ";
    if (kind.family == Family::Map) text += std::to_string(i) + ": ";
    text += elements[i];
  }
  if (kind.family == Family::Tuple && elements.size() == 1) text += ",";
  return text + kind.closing;
}

// The text of a String that a native made.
inline std::string textOf(void* string) {
  EXPECT_NE(string, nullptr);
  EXPECT_EQ(std::string(Vorn_objectTypeName(string)), "vorn.String");
  return stringValueFromPtr(string);
}

inline std::string display(const Kind& kind, void* collection) { return textOf(kind.toString(collection)); }

// Runs a test over all kinds of collections, and over all pairs of them.
class KindTest : public RuntimeTest, public ::testing::WithParamInterface<Kind> {
 protected:
  void TearDown() override {
    EXPECT_TRUE(gCollectionDisplayStack.empty()) << "a display has left its mark behind";
    RuntimeTest::TearDown();
  }
  static const Kind& kind() { return GetParam(); }
};
#define INSTANTIATE_KIND_TESTS(suite)                                                \
  INSTANTIATE_TEST_SUITE_P(Kinds, suite, ::testing::ValuesIn(::vorn::tests::kKinds), \
                           [](const auto& param) { return std::string(param.param.name); })

}  // namespace vorn::tests
