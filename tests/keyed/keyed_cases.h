// What the tests of maps and sets share: the kinds they run over, and checks of whole objects.
#pragma once

#include <pthread.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include <string>
#include <vector>

#include "collections/core/port/object_layout.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/collections.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

inline constexpr const char* kMapTypes[] = {"Map", "HashMapSync", "SortedMap", "SortedMapSync"};
inline constexpr const char* kSetTypes[] = {"HashSet", "HashSetSync"};

#define EXPECT_MAP_AT_REST(map) EXPECT_EQ(::vorn::tests::faultOfMap(map), "")
#define EXPECT_SET_AT_REST(set) EXPECT_EQ(::vorn::tests::faultOfSet(set), "")

// The entries in storage order, read from the record itself.
struct Entry {
  void* key;
  void* value;
  friend bool operator==(const Entry&, const Entry&) = default;
};
inline std::vector<Entry> entriesOf(void* map) {
  std::vector<Entry> entries;
  getMapData(map)->forEach([&](const NativeCollectionKey&, const NativeMapEntry& entry) {
    entries.push_back({entry.key, entry.value});
  });
  return entries;
}
inline std::vector<void*> elementsOfSet(void* set) {
  std::vector<void*> elements;
  getSetData(set)->forEach([&](const NativeCollectionKey&, void* element) { elements.push_back(element); });
  return elements;
}

// Everything a caller can tell apart in a map or set: compare it before and after what must change nothing.
struct MapState {
  explicit MapState(void* map)
      : keyType(getMapData(map)->keyType.get()),
        valueType(getMapData(map)->valueType.get()),
        size(sizeField(map)),
        entries(entriesOf(map)) {}
  std::string keyType;
  std::string valueType;
  long long size;
  std::vector<Entry> entries;
  friend bool operator==(const MapState&, const MapState&) = default;
};

inline std::string keyTypeOf(void* map) { return std::string(getMapData(map)->keyType.get()); }
inline std::string valueTypeOf(void* map) { return std::string(getMapData(map)->valueType.get()); }

// The elements of a list that a native returned, as handles; numbers come as new boxes.
inline std::vector<Handle> listed(void* list) {
  std::vector<Handle> handles;
  const Handle keep(list);
  for (long long i = 0; i < vorn_collections_ArrayList_size(list); ++i) {
    handles.emplace_back(vorn_collections_ArrayList_operator_index(list, i));
  }
  return handles;
}
inline std::vector<long long> listedIntegers(void* list) {
  std::vector<long long> values;
  const Handle keep(list);
  for (long long i = 0; i < vorn_collections_ArrayList_size(list); ++i) {
    values.push_back(vorn_collections_ArrayList_getInt(list, i));
  }
  return values;
}

inline Handle number(std::int64_t value) { return integer("Int", value); }
inline std::int64_t valueOf(void* box) {
  std::int64_t value = -1;
  EXPECT_NE(vorn_unbox_integer(box, &value), 0);
  return value;
}

// A map of the named class with the entries 0 -> 100, 1 -> 101, ...
inline Handle countingMap(const std::string& type, int count) {
  Handle map = object(type);
  for (int i = 0; i < count; ++i) vorn_collections_Map_put(map, number(i), number(100 + i));
  return map;
}
inline Handle countingSet(const std::string& type, int count) {
  Handle set = object(type);
  for (int i = 0; i < count; ++i) vorn_collections_HashSet_add(set, number(i));
  return set;
}

// Runs a test over every class of maps or of sets.
class MapTest : public RuntimeTest, public ::testing::WithParamInterface<const char*> {
 protected:
  static std::string type() { return GetParam(); }
  static bool sorted() { return type().starts_with("Sorted"); }
  static bool synchronised() { return type().ends_with("Sync"); }
};
class SetTest : public RuntimeTest, public ::testing::WithParamInterface<const char*> {
 protected:
  static std::string type() { return GetParam(); }
  static bool synchronised() { return type().ends_with("Sync"); }
};
#define INSTANTIATE_MAP_TESTS(suite)                                                    \
  INSTANTIATE_TEST_SUITE_P(Kinds, suite, ::testing::ValuesIn(::vorn::tests::kMapTypes), \
                           [](const auto& param) { return std::string(param.param); })
#define INSTANTIATE_SET_TESTS(suite)                                                    \
  INSTANTIATE_TEST_SUITE_P(Kinds, suite, ::testing::ValuesIn(::vorn::tests::kSetTypes), \
                           [](const auto& param) { return std::string(param.param); })

}  // namespace vorn::tests
