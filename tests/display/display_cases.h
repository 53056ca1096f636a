// What the tests of displays share: the fourteen kinds of collections with the texts that each shows, and ways to make
// one of them, fill it, display it and look at its lock.
#pragma once

#include <pthread.h>
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <string>
#include <vector>

#include "collections/array/array_data.h"
#include "collections/array/array_validation.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "collections/display/display_guard.h"
#include "collections/display/value_display.h"
#include "collections/keyed/keyed_validation.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"
#include "tests/support/sequences.h"

namespace vorn::tests {

enum class Family { List, Immutable, Tuple, Set, Map, Array };

// One kind of collection. `emptyOpening` is the opening of one without elements.
struct Kind {
  const char* name;
  const char* type;
  Family family;
  bool synchronised;
  const char* nullText;
  const char* cycle;
  const char* emptyOpening;
  const char* opening;
  const char* closing;
  void* (*toString)(void* collection);
};

inline constexpr Kind kKinds[] = {
    {"ArrayList", "ArrayList", Family::List, false, "[]", "[...]", "[", "[", "]", vorn_collections_ArrayList_toString},
    {"ArrayListSync", "ArrayListSync", Family::List, true, "[]", "[...]", "[", "s:[", "]",
     vorn_collections_ArrayList_toString},
    {"LinkedList", "LinkedList", Family::List, false, "[]", "[...]", "l:[", "l:[", "]",
     vorn_collections_ArrayList_toString},
    {"LinkedListSync", "LinkedListSync", Family::List, true, "[]", "[...]", "ls:[", "ls:[", "]",
     vorn_collections_ArrayList_toString},
    {"ImmutableList", "ImmutableList", Family::Immutable, false, "i:[]", "i:[...]", "i:[", "i:[", "]",
     vorn_collections_ImmutableList_toString},
    {"Tuple", "Tuple", Family::Tuple, false, "()", "(...)", "(", "(", ")", vorn_collections_Tuple_toString},
    {"HashSet", "HashSet", Family::Set, false, "{}", "{...}", "{", "{", "}", vorn_collections_HashSet_toString},
    {"HashSetSync", "HashSetSync", Family::Set, true, "{}", "{...}", "s:{", "s:{", "}",
     vorn_collections_HashSet_toString},
    {"Map", "Map", Family::Map, false, "{}", "{...}", "{", "{", "}", vorn_collections_Map_toString},
    {"HashMapSync", "HashMapSync", Family::Map, true, "{}", "s:{...}", "s:{", "s:{", "}",
     vorn_collections_Map_toString},
    {"SortedMap", "SortedMap", Family::Map, false, "{}", "t:{...}", "t:{", "t:{", "}", vorn_collections_Map_toString},
    {"SortedMapSync", "SortedMapSync", Family::Map, true, "{}", "ts:{...}", "ts:{", "ts:{", "}",
     vorn_collections_Map_toString},
    {"Array", "Array<Object>", Family::Array, false, "f:[]", "f:[...]", "f:[", "f:[", "]",
     vorn_collections_Array_toString},
    {"ArraySync", "ArraySync<Object>", Family::Array, true, "f:[]", "f:[...]", "fs:[", "fs:[", "]",
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

inline pthread_mutex_t** mutexOf(const Kind& kind, void* collection) {
  switch (kind.family) {
    case Family::List:
    case Family::Immutable:
      return &getListData(collection)->mutex;
    case Family::Set:
      return &getSetData(collection)->mutex;
    case Family::Map:
      return &getMapData(collection)->mutex;
    case Family::Array:
      return &getArrayData(collection)->mutex;
    case Family::Tuple:
      break;
  }
  return nullptr;
}

// Whether anybody holds the lock of a synchronised collection.
inline bool isLocked(const Kind& kind, void* collection) {
  if (!kind.synchronised) return false;
  return isLocked(*mutexOf(kind, collection));
}

// What is wrong with the collection's record, its lock or the marks of running displays, or the empty string.
inline std::string faultOf(const Kind& kind, void* collection) {
  if (isLocked(kind, collection)) return "the collection is locked";
  if (!gCollectionDisplayStack.empty()) return "a display has left its mark behind";
  switch (kind.family) {
    case Family::List:
    case Family::Immutable:
      return collections::validateListData(*getListData(collection));
    case Family::Set:
      return collections::validateSetData(*getSetData(collection));
    case Family::Map:
      return collections::validateMapData(*getMapData(collection));
    case Family::Array:
      return collections::validateArrayData(*getArrayData(collection));
    case Family::Tuple:
      break;
  }
  return {};
}

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
