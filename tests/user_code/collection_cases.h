// The classes of collections whose elements are hostile objects: how to fill one, read it without user code, and tell
// what is wrong with it.
#pragma once

#include <pthread.h>
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "collections/array/array_data.h"
#include "collections/array/array_validation.h"
#include "collections/display/display_guard.h"
#include "collections/keyed/keyed_validation.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "runtime/heap/global_roots.h"
#include "runtime/threads/thread_state.h"
#include "tests/support/sequences.h"
#include "tests/user_code/hostile_objects.h"

namespace vorn::tests {

enum class Kind { List, Immutable, Array, Map, Set, Tuple };

struct CollectionClass {
  const char* name;
  Kind kind;
  bool synchronised;

  [[nodiscard]] bool sorted() const { return std::string(name).starts_with("Sorted"); }
};

inline constexpr CollectionClass kClasses[] = {
    {"ArrayList", Kind::List, false},          {"ArrayListSync", Kind::List, true},
    {"LinkedList", Kind::List, false},         {"LinkedListSync", Kind::List, true},
    {"ImmutableList", Kind::Immutable, false}, {"Array", Kind::Array, false},
    {"ArraySync", Kind::Array, true},          {"Map", Kind::Map, false},
    {"HashMapSync", Kind::Map, true},          {"SortedMap", Kind::Map, false},
    {"SortedMapSync", Kind::Map, true},        {"HashSet", Kind::Set, false},
    {"HashSetSync", Kind::Set, true},          {"Tuple", Kind::Tuple, false}};

inline const CollectionClass& classNamed(std::string_view name) {
  return *std::find_if(std::begin(kClasses), std::end(kClasses), [&](const auto& type) { return type.name == name; });
}

// ---- Filling --------------------------------------------------------------------------------------------------------

// Hooks are reached directly, or through an element that is compared, hashed and shown by its contents.
enum class Shape { Direct, InTuple };

inline Handle element(Shape shape, std::int64_t id) {
  const Handle direct = hostile(id);
  return shape == Shape::Direct ? direct : tupleOf({direct});
}

// The value in a map of the key with that id.
inline std::int64_t valueId(std::int64_t id) { return 100 + id; }

// Gives a collection, new or used, elements with these ids and no others. Only the collection keeps them alive.
inline void fill(const CollectionClass& type, Shape shape, void* collection, const std::vector<int>& ids) {
  if (type.kind == Kind::Map) {
    vorn_collections_Map_clear(collection);
    for (const int id : ids) {
      vorn_collections_Map_put(collection, element(shape, id), element(shape, valueId(id)));
    }
    return;
  }
  if (type.kind == Kind::Set) {
    vorn_collections_HashSet_clear(collection);
    for (const int id : ids) vorn_collections_HashSet_add(collection, element(shape, id));
    return;
  }
  const Handle source = object("LinkedList");
  for (const int id : ids) vorn_collections_ArrayList_add(source, element(shape, id));
  if (type.kind == Kind::List) {
    vorn_collections_ArrayList_clear(collection);
    vorn_collections_ArrayList_addAll(collection, source);
  } else if (type.kind == Kind::Immutable) {
    vorn_collections_ImmutableList_ctor(collection, source);
  } else if (type.kind == Kind::Tuple) {
    vorn_collections_Tuple_ctor(collection, source);
  } else {
    vorn_collections_Array_copyCtor(collection, source);
  }
}

// ---- Reading without user code --------------------------------------------------------------------------------------

using Texts = std::vector<std::string>;

inline std::string join(const Texts& texts) {
  std::string all;
  for (const std::string& text : texts) all += (all.empty() ? "" : " ") + text;
  return all;
}

// "#5", "(#5)", "7", a text, "null".
inline std::string describe(void* handle) {
  std::int64_t whole = 0;
  double real = 0.0;
  if (handle == nullptr) return "null";
  if (const char* text = vorn_string_text(handle)) return text;
  if (vorn_unbox_integer(handle, &whole) != 0) return std::to_string(whole);
  if (vorn_unbox_floating(handle, &real) != 0) return std::to_string(real);
  if (hostile_objects::isHostile(handle)) return "#" + std::to_string(hostile_objects::idOf(handle));
  if (vorn_is_instance(handle, "Tuple") == 0) return vorn_type_name(handle);
  Texts items;
  for (long long i = 0; i < vorn_collections_Tuple_size(handle); ++i) {
    items.push_back(describe(vorn_collections_Tuple_operator_index(handle, i)));
  }
  return "(" + join(items) + ")";
}

template <class Size, class At>
Texts describeAll(void* sequence, Size size, At at) {
  Texts texts;
  for (long long i = 0; i < size(sequence); ++i) {
    const Handle item = at(sequence, i);
    texts.push_back(describe(item));
  }
  return texts;
}
inline Texts elementsOfList(void* list) {
  return describeAll(list, vorn_collections_ArrayList_size, vorn_collections_ArrayList_operator_index);
}
inline Texts elementsOfArray(void* array) {
  return describeAll(array, vorn_collections_Array_size, vorn_collections_Array_operator_index);
}

// The elements in storage order; those of a map as "#5:#105".
inline Texts contentsOf(const CollectionClass& type, void* collection) {
  Texts texts;
  switch (type.kind) {
    case Kind::List:
    case Kind::Immutable:
      return elementsOfList(collection);
    case Kind::Array:
      return elementsOfArray(collection);
    case Kind::Tuple:
      return describeAll(collection, vorn_collections_Tuple_size, vorn_collections_Tuple_operator_index);
    case Kind::Map:
      getMapData(collection)->forEach([&](const NativeCollectionKey&, const NativeMapEntry& entry) {
        texts.push_back(describe(entry.key) + ":" + describe(entry.value));
      });
      break;
    case Kind::Set:
      getSetData(collection)->forEach([&](const NativeCollectionKey&, void* item) { texts.push_back(describe(item)); });
      break;
  }
  return texts;
}

// ---- Locks ----------------------------------------------------------------------------------------------------------

// The mutex of a synchronised collection, else null.
inline pthread_mutex_t* mutexOf(const CollectionClass& type, void* collection) {
  if (!type.synchronised) return nullptr;
  switch (type.kind) {
    case Kind::Array:
      return getArrayData(collection)->mutex;
    case Kind::Map:
      return getMapData(collection)->mutex;
    case Kind::Set:
      return getSetData(collection)->mutex;
    default:
      return getListData(collection)->mutex;
  }
}

// Whether anybody holds the mutex. Asked by another thread, because a recursive mutex lets its holder in.
inline bool isHeld(pthread_mutex_t* mutex) {
  if (mutex == nullptr) return false;
  bool held = true;
  std::thread([&] {
    held = pthread_mutex_trylock(mutex) != 0;
    if (!held) pthread_mutex_unlock(mutex);
  }).join();
  return held;
}

inline bool isRecursive(pthread_mutex_t* mutex) {
  EXPECT_EQ(pthread_mutex_trylock(mutex), 0);
  const bool recursive = pthread_mutex_trylock(mutex) == 0;
  if (recursive) pthread_mutex_unlock(mutex);
  pthread_mutex_unlock(mutex);
  return recursive;
}

// ---- Faults ---------------------------------------------------------------------------------------------------------

// How many root slots and ranges are registered for this thread and for the process.
inline std::size_t rootCount() {
  std::size_t count = runtime::attachedThread().roots.size();
  runtime::GlobalRoots::instance().forEach([&](void**) { ++count; });
  return count;
}

inline std::string faultOfSize(void* collection, std::size_t count) {
  std::int64_t size = -1;
  vorn_field_get_integer(collection, "size", &size);
  return size == static_cast<std::int64_t>(count) ? "" : "the size field is not the number of elements";
}

// What is wrong with the record, its lock or the marks of displays, else nothing.
inline std::string faultOf(const CollectionClass& type, void* collection) {
  if (isHeld(mutexOf(type, collection))) return "the collection is locked";
  if (!gCollectionDisplayStack.empty()) return "a display has left its mark behind";
  std::string fault;
  switch (type.kind) {
    case Kind::List:
    case Kind::Immutable:
      return collections::validateListData(*getListData(collection));
    case Kind::Array:
      return collections::validateArrayData(*getArrayData(collection));
    case Kind::Map:
      fault = faultOfSize(collection, getMapData(collection)->count());
      return fault.empty() ? collections::validateMapData(*getMapData(collection)) : fault;
    case Kind::Set:
      fault = faultOfSize(collection, getSetData(collection)->count());
      return fault.empty() ? collections::validateSetData(*getSetData(collection)) : fault;
    case Kind::Tuple:
      break;
  }
  return fault;
}

}  // namespace vorn::tests
