// The fourteen classes of collections, their locks, and what may be wrong with an object of them.
#pragma once

#include <pthread.h>

#include <string>
#include <string_view>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

enum class Family { List, Immutable, Tuple, Set, Map, Array };

struct CollectionClass {
  const char* name;
  Family family;
  bool synchronised;

  [[nodiscard]] bool sorted() const { return std::string_view(name).starts_with("Sorted"); }
};

inline constexpr CollectionClass kCollectionClasses[] = {{"ArrayList", Family::List, false},
                                                         {"ArrayListSync", Family::List, true},
                                                         {"LinkedList", Family::List, false},
                                                         {"LinkedListSync", Family::List, true},
                                                         {"ImmutableList", Family::Immutable, false},
                                                         {"Tuple", Family::Tuple, false},
                                                         {"HashSet", Family::Set, false},
                                                         {"HashSetSync", Family::Set, true},
                                                         {"Map", Family::Map, false},
                                                         {"HashMapSync", Family::Map, true},
                                                         {"SortedMap", Family::Map, false},
                                                         {"SortedMapSync", Family::Map, true},
                                                         {"Array", Family::Array, false},
                                                         {"ArraySync", Family::Array, true}};

constexpr const CollectionClass& classNamed(std::string_view name) {
  const CollectionClass* found = kCollectionClasses;
  while (found->name != name) ++found;
  return *found;
}

// ---- Locks ----------------------------------------------------------------------------------------------------------

// Where the record has its mutex; null for tuples.
pthread_mutex_t** mutexOf(Family family, void* collection);

// Whether anybody holds the lock of a synchronised collection.
bool isLocked(const CollectionClass& type, void* collection);

// ---- Faults ---------------------------------------------------------------------------------------------------------

// The "size" field of an object that has one.
long long sizeField(void* handle);

// What is wrong with the record or its lock, or nothing. For maps and sets also whether the "size" field tells the
// number of entries.
std::string faultOfArray(void* array);
std::string faultOfMap(void* map);
std::string faultOfSet(void* set);

// The same for any collection, and whether a display has left its mark.
std::string faultOf(const CollectionClass& type, void* collection);

}  // namespace vorn::tests
