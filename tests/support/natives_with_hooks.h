// Every native that can run user code, by kind of collection, with what is documented of each.
#pragma once

#include <vorn/collections/array_list.h>

#include <ostream>
#include <string>
#include <vector>

#include "tests/support/filled_collections.h"

namespace vorn::tests {

// A collection, an equal one, and values that are equal to an element of it but are not that object.
struct Scene {
  Scene(const CollectionClass& collectionClass, Shape elementShape, const std::vector<int>& elementIds)
      : type(collectionClass),
        shape(elementShape),
        ids(elementIds),
        collection(object(type.name)),
        twin(object(type.name)),
        wanted(element(shape, 5)),
        wantedAgain(element(shape, 5)),
        wantedValue(element(shape, valueId(5))) {
    refill();
    fill(type, shape, twin, ids);
  }
  void refill() const { fill(type, shape, collection, ids); }
  [[nodiscard]] Texts contents() const { return contentsOf(type, collection); }

  const CollectionClass& type;
  Shape shape;
  std::vector<int> ids;
  Handle collection;
  Handle twin;
  Handle wanted;
  Handle wantedAgain;
  Handle wantedValue;
};

enum class Effect {
  Reads,
  Sorts,  // the collection itself, or a copy
  Adds,   // afterwards the wanted value is in it
  Removes
};

// What an error does that a hook raises.
enum class OnError {
  EndsIt,  // with the neutral result and the collection as it was
  GoesOn
};

struct Native {
  const char* name;
  unsigned hooks;  // the hooks that it runs, and may be left to run under its lock
  Effect effect;
  OnError onError;
  const char* neutral;  // where errors end it
  bool locksDuringHooks;
  std::string (*call)(const Scene& scene);
  // Whether an error that is pending once a key has been made counts, be it new or old.
  bool makesKey = false;
};

inline std::string say(bool value) { return value ? "true" : "false"; }
inline std::string say(long long value) { return std::to_string(value); }
inline std::string say(void* handle) { return describeById(Handle(handle)); }

constexpr unsigned kEquality = bit(Hook::Equality);
constexpr unsigned kOrder = bit(Hook::Order);
constexpr unsigned kHash = bit(Hook::Hash);
constexpr unsigned kText = bit(Hook::Text);

// ---- Sequences ------------------------------------------------------------------------------------------------------

inline std::string equalsTwin(const Scene& scene) { return say(vorn_equals(scene.collection, scene.twin) != 0); }

inline std::vector<Native> listNatives(unsigned sortHooks) {
  return {
      {"count", kEquality, Effect::Reads, OnError::EndsIt, "0", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_count(s.collection, s.wanted)); }},
      {"operator_in", kEquality, Effect::Reads, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_operator_in(s.collection, s.wanted)); }},
      {"indexOf", kEquality, Effect::Reads, OnError::EndsIt, "-1", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_indexOf(s.collection, s.wanted, 0)); }},
      {"lastIndexOf", kEquality, Effect::Reads, OnError::EndsIt, "-1", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_lastIndexOf(s.collection, s.wanted, -1)); }},
      {"equality", kEquality, Effect::Reads, OnError::EndsIt, "false", false, equalsTwin},
      {"join", kText, Effect::Reads, OnError::GoesOn, "", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_join(s.collection, "-")); }},
      {"toString", kText, Effect::Reads, OnError::GoesOn, "", false,
       [](const Scene& s) { return say(vorn_collections_ArrayList_toString(s.collection)); }},
      {"remove", kEquality, Effect::Removes, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_remove(s.collection, s.wanted)); }},
      {"sort", sortHooks, Effect::Sorts, OnError::EndsIt, "", true,
       [](const Scene& s) { return vorn_collections_ArrayList_sort(s.collection), std::string(); }},
      {"sortI64Fast", sortHooks, Effect::Sorts, OnError::EndsIt, "", true,
       [](const Scene& s) { return vorn_collections_ArrayList_sortI64Fast(s.collection), std::string(); }},
      {"sortF64Fast", sortHooks, Effect::Sorts, OnError::EndsIt, "", true,
       [](const Scene& s) { return vorn_collections_ArrayList_sortF64Fast(s.collection), std::string(); }},
      {"sortNew", sortHooks, Effect::Sorts, OnError::GoesOn, "", false,
       [](const Scene& s) {
         const Handle sorted = vorn_collections_ArrayList_sortNew(s.collection);
         return sorted.get() != nullptr ? join(elementsOfList(sorted)) : "null";
       }},
  };
}

inline std::vector<Native> immutableNatives(unsigned sortHooks) {
  return {
      {"indexOf", kEquality, Effect::Reads, OnError::EndsIt, "-1", true,
       [](const Scene& s) { return say(vorn_collections_ImmutableList_indexOf(s.collection, s.wanted, 0)); }},
      {"lastIndexOf", kEquality, Effect::Reads, OnError::EndsIt, "-1", true,
       [](const Scene& s) { return say(vorn_collections_ImmutableList_lastIndexOf(s.collection, s.wanted, -1)); }},
      {"count", kEquality, Effect::Reads, OnError::EndsIt, "0", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_count(s.collection, s.wanted)); }},
      {"operator_in", kEquality, Effect::Reads, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_operator_in(s.collection, s.wanted)); }},
      {"equality", kEquality, Effect::Reads, OnError::EndsIt, "false", false, equalsTwin},
      {"join", kText, Effect::Reads, OnError::GoesOn, "", true,
       [](const Scene& s) { return say(vorn_collections_ArrayList_join(s.collection, "-")); }},
      {"toString", kText, Effect::Reads, OnError::GoesOn, "", false,
       [](const Scene& s) { return say(vorn_collections_ImmutableList_toString(s.collection)); }},
      {"sortNew", sortHooks, Effect::Sorts, OnError::GoesOn, "", false,
       [](const Scene& s) {
         const Handle sorted = vorn_collections_ImmutableList_sortNew(s.collection);
         return sorted.get() != nullptr ? join(elementsOfList(sorted)) : "null";
       }},
  };
}

inline std::vector<Native> tupleNatives() {
  return {
      {"equality", kEquality, Effect::Reads, OnError::EndsIt, "false", false, equalsTwin},
      {"toString", kText, Effect::Reads, OnError::GoesOn, "", false,
       [](const Scene& s) { return say(vorn_collections_Tuple_toString(s.collection)); }},
  };
}

inline std::vector<Native> arrayNatives(unsigned sortHooks) {
  return {
      {"count", kEquality, Effect::Reads, OnError::EndsIt, "0", true,
       [](const Scene& s) { return say(vorn_collections_Array_count(s.collection, s.wanted)); }},
      {"operator_in", kEquality, Effect::Reads, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_Array_operator_in(s.collection, s.wanted)); }},
      {"indexOf", kEquality, Effect::Reads, OnError::EndsIt, "-1", true,
       [](const Scene& s) { return say(vorn_collections_Array_indexOf(s.collection, s.wanted, 0)); }},
      {"lastIndexOf", kEquality, Effect::Reads, OnError::EndsIt, "-1", true,
       [](const Scene& s) { return say(vorn_collections_Array_lastIndexOf(s.collection, s.wanted, -1)); }},
      {"operator_eq", kEquality, Effect::Reads, OnError::EndsIt, "false", false,
       [](const Scene& s) { return say(vorn_collections_Array_operator_eq(s.collection, s.twin)); }},
      {"operator_ne", kEquality, Effect::Reads, OnError::EndsIt, "true", false,
       [](const Scene& s) { return say(vorn_collections_Array_operator_ne(s.collection, s.twin)); }},
      {"join", kText, Effect::Reads, OnError::GoesOn, "", true,
       [](const Scene& s) { return say(vorn_collections_Array_join(s.collection, "-")); }},
      {"toString", kText, Effect::Reads, OnError::GoesOn, "", true,
       [](const Scene& s) { return say(vorn_collections_Array_toString(s.collection)); }},
      {"sort", sortHooks, Effect::Sorts, OnError::GoesOn, "", true,
       [](const Scene& s) { return vorn_collections_Array_sort(s.collection), std::string(); }},
      {"sortNew", sortHooks, Effect::Sorts, OnError::GoesOn, "", false,
       [](const Scene& s) {
         const Handle sorted = vorn_collections_Array_sortNew(s.collection);
         return sorted.get() != nullptr ? join(elementsOfArray(sorted)) : "null";
       }},
  };
}

// ---- Maps and sets --------------------------------------------------------------------------------------------------

inline std::vector<Native> mapNatives(unsigned keyHooks) {
  return {
      {"put", keyHooks, Effect::Adds, OnError::EndsIt, "", true,
       [](const Scene& s) { return vorn_collections_Map_put(s.collection, s.wanted, s.wantedValue), std::string(); },
       true},
      {"_set", keyHooks, Effect::Adds, OnError::EndsIt, "", true,
       [](const Scene& s) { return vorn_collections_Map__set(s.collection, s.wanted, s.wantedValue), std::string(); },
       true},
      {"operator_index_eq", keyHooks, Effect::Adds, OnError::EndsIt, "", true,
       [](const Scene& s) {
         return vorn_collections_Map_operator_index_eq(s.collection, s.wanted, s.wantedValue), std::string();
       },
       true},
      {"_get", keyHooks, Effect::Reads, OnError::EndsIt, "null", true,
       [](const Scene& s) { return say(vorn_collections_Map__get(s.collection, s.wanted)); }, true},
      {"operator_index", keyHooks, Effect::Reads, OnError::EndsIt, "null", true,
       [](const Scene& s) { return say(vorn_collections_Map_operator_index(s.collection, s.wanted)); }, true},
      {"tryGet", keyHooks, Effect::Reads, OnError::EndsIt, "false null", true,
       [](const Scene& s) {
         void* value = s.twin;
         const bool found = vorn_collections_Map_tryGet(s.collection, s.wanted, &value);
         return say(found) + " " + say(value);
       },
       true},
      {"operator_in", keyHooks, Effect::Reads, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_Map_operator_in(s.collection, s.wanted)); }, true},
      {"remove", keyHooks, Effect::Removes, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_Map_remove(s.collection, s.wanted)); }, true},
      {"containsValue", kEquality, Effect::Reads, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_Map_containsValue(s.collection, s.wantedValue)); }},
      {"operator_eq", kEquality, Effect::Reads, OnError::EndsIt, "false", false,
       [](const Scene& s) { return say(vorn_collections_Map_operator_eq(s.collection, s.twin)); }},
      {"operator_ne", kEquality, Effect::Reads, OnError::EndsIt, "true", false,
       [](const Scene& s) { return say(vorn_collections_Map_operator_ne(s.collection, s.twin)); }},
      {"toString", kText, Effect::Reads, OnError::GoesOn, "", false,
       [](const Scene& s) { return say(vorn_collections_Map_toString(s.collection)); }},
  };
}

inline std::vector<Native> setNatives() {
  constexpr unsigned kKey = kEquality | kHash;
  return {
      {"add", kKey, Effect::Adds, OnError::EndsIt, "", true,
       [](const Scene& s) { return vorn_collections_HashSet_add(s.collection, s.wanted), std::string(); }, true},
      {"remove", kKey, Effect::Removes, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_HashSet_remove(s.collection, s.wanted)); }, true},
      {"operator_in", kKey, Effect::Reads, OnError::EndsIt, "false", true,
       [](const Scene& s) { return say(vorn_collections_HashSet_operator_in(s.collection, s.wanted)); }, true},
      {"count", kKey, Effect::Reads, OnError::EndsIt, "0", true,
       [](const Scene& s) { return say(vorn_collections_HashSet_count(s.collection, s.wanted)); }, true},
      {"equality", kEquality, Effect::Reads, OnError::EndsIt, "false", false, equalsTwin},
      {"toString", kText, Effect::Reads, OnError::GoesOn, "", true,
       [](const Scene& s) { return say(vorn_collections_HashSet_toString(s.collection)); }},
  };
}

// What the natives of a class are; elements by their contents are sorted by order and equality.
inline std::vector<Native> nativesOf(const CollectionClass& type, Shape shape) {
  const unsigned sortHooks = shape == Shape::Direct ? kOrder : kOrder | kEquality;
  switch (type.family) {
    case Family::List:
      return listNatives(sortHooks);
    case Family::Immutable:
      return immutableNatives(sortHooks);
    case Family::Array:
      return arrayNatives(sortHooks);
    case Family::Map:
      return mapNatives(type.sorted() ? kOrder : kEquality | kHash);
    case Family::Set:
      return setNatives();
    case Family::Tuple:
      break;
  }
  return tupleNatives();
}

}  // namespace vorn::tests
