// Collections whose elements are hostile objects: how to fill one and read it without user code.
#pragma once

#include <pthread.h>
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <cstddef>
#include <string>
#include <vector>

#include "collections/array/array_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/support/collections.h"
#include "tests/support/held_mutex.h"
#include "tests/support/roots.h"
#include "tests/support/sequences.h"
#include "tests/user_code/hostile_objects.h"

namespace vorn::tests {

// ---- Filling --------------------------------------------------------------------------------------------------------

// Hooks are reached directly, or through an element that is compared, hashed and shown by its contents.
enum class Shape { Direct, InTuple };

inline Handle element(Shape shape, std::int64_t id) {
  const Handle direct = userKey(id);
  return shape == Shape::Direct ? direct : tupleOf({direct});
}

// The value in a map of the key with that id.
inline std::int64_t valueId(std::int64_t id) { return 100 + id; }

// Gives a collection, new or used, elements with these ids and no others. Only the collection keeps them alive.
inline void fill(const CollectionClass& type, Shape shape, void* collection, const std::vector<int>& ids) {
  if (type.family == Family::Map) {
    vorn_collections_Map_clear(collection);
    for (const int id : ids) {
      vorn_collections_Map_put(collection, element(shape, id), element(shape, valueId(id)));
    }
    return;
  }
  if (type.family == Family::Set) {
    vorn_collections_HashSet_clear(collection);
    for (const int id : ids) vorn_collections_HashSet_add(collection, element(shape, id));
    return;
  }
  const Handle source = object("LinkedList");
  for (const int id : ids) vorn_collections_ArrayList_add(source, element(shape, id));
  if (type.family == Family::List) {
    vorn_collections_ArrayList_clear(collection);
    vorn_collections_ArrayList_addAll(collection, source);
  } else if (type.family == Family::Immutable) {
    vorn_collections_ImmutableList_ctor(collection, source);
  } else if (type.family == Family::Tuple) {
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
inline std::string describeById(void* handle) {
  std::int64_t whole = 0;
  double real = 0.0;
  if (handle == nullptr) return "null";
  if (const char* text = vorn_string_text(handle)) return text;
  if (vorn_unbox_integer(handle, &whole) != 0) return std::to_string(whole);
  if (vorn_unbox_floating(handle, &real) != 0) return std::to_string(real);
  if (isHostile(handle)) return "#" + std::to_string(idOf(handle));
  if (vorn_is_instance(handle, "Tuple") == 0) return vorn_type_name(handle);
  Texts items;
  for (long long i = 0; i < vorn_collections_Tuple_size(handle); ++i) {
    items.push_back(describeById(vorn_collections_Tuple_operator_index(handle, i)));
  }
  return "(" + join(items) + ")";
}

template <class Size, class At>
Texts describeAll(void* sequence, Size size, At at) {
  Texts texts;
  for (long long i = 0; i < size(sequence); ++i) {
    const Handle item = at(sequence, i);
    texts.push_back(describeById(item));
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
  switch (type.family) {
    case Family::List:
    case Family::Immutable:
      return elementsOfList(collection);
    case Family::Array:
      return elementsOfArray(collection);
    case Family::Tuple:
      return describeAll(collection, vorn_collections_Tuple_size, vorn_collections_Tuple_operator_index);
    case Family::Map:
      getMapData(collection)->forEach([&](const NativeCollectionKey&, const NativeMapEntry& entry) {
        texts.push_back(describeById(entry.key) + ":" + describeById(entry.value));
      });
      break;
    case Family::Set:
      getSetData(collection)->forEach([&](const NativeCollectionKey&, void* item) {
        texts.push_back(describeById(item));
      });
      break;
  }
  return texts;
}

// ---- Locks ----------------------------------------------------------------------------------------------------------

inline bool isRecursive(pthread_mutex_t* mutex) {
  EXPECT_EQ(pthread_mutex_trylock(mutex), 0);
  const bool recursive = pthread_mutex_trylock(mutex) == 0;
  if (recursive) pthread_mutex_unlock(mutex);
  pthread_mutex_unlock(mutex);
  return recursive;
}

}  // namespace vorn::tests
