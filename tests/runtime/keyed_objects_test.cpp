// Map and set objects as the runtime makes them.
#include <pthread.h>

#include <new>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {
namespace {

using KeyedObjects = RuntimeTest;

struct MapCase {
  const char* name;
  bool hashed;
  bool synchronised;
};

constexpr MapCase kMaps[] = {
    {"Map", true, false}, {"HashMapSync", true, true}, {"SortedMap", false, false}, {"SortedMapSync", false, true}};

TEST_F(KeyedObjects, Maps_StartEmptyAsTheirClassSays) {
  for (const MapCase& map : kMaps) {
    for (const std::string& name : {std::string(map.name), "vorn.collections." + std::string(map.name),
                                    std::string(map.name) + "<String, Int>"}) {
      const Handle handle = object(name);
      ASSERT_NE(handle.get(), nullptr) << name;
      const MapData& data = *getMapData(handle);
      EXPECT_EQ(data.hashed, map.hashed) << name;
      EXPECT_EQ(data.synchronized, map.synchronised) << name;
      EXPECT_EQ(data.mutex != nullptr, map.synchronised) << name;
      EXPECT_EQ(data.count(), 0U) << name;
      EXPECT_EQ(data.keyType.name, nullptr) << name;
      EXPECT_EQ(Vorn_getField_i64(handle, "size"), 0) << name;
    }
  }
}

TEST_F(KeyedObjects, Sets_StartEmptyAsTheirClassSays) {
  for (const char* name : {"HashSet", "vorn.collections.HashSet<Int>", "HashSetSync", "HashSetSync<Foo>"}) {
    const bool synchronised = std::string(name).find("Sync") != std::string::npos;
    const Handle handle = object(name);
    ASSERT_NE(handle.get(), nullptr) << name;
    const SetData& data = *getSetData(handle);
    EXPECT_EQ(data.synchronized, synchronised) << name;
    EXPECT_EQ(data.mutex != nullptr, synchronised) << name;
    EXPECT_EQ(data.count(), 0U) << name;
    EXPECT_EQ(Vorn_getField_i64(handle, "size"), 0) << name;
  }
}

TEST_F(KeyedObjects, Size_IsAWritableField) {
  for (const char* name : {"Map", "SortedMapSync", "HashSet", "HashSetSync", "Tuple"}) {
    const Handle handle = object(name);
    Vorn_setField_i64(handle, "size", 5);
    EXPECT_EQ(Vorn_getField_i64(handle, "size"), 5) << name;
    std::int64_t size = 0;
    EXPECT_EQ(vorn_field_get_integer(handle, "size", &size), 1) << name;
    EXPECT_EQ(size, 5) << name;
  }
}

TEST_F(KeyedObjects, Mutexes_AreTheObjectsOwnAndFree) {
  for (const char* name : {"HashMapSync", "SortedMapSync"}) {
    const Handle one = object(name);
    const Handle other = object(name);
    EXPECT_NE(getMapData(one)->mutex, getMapData(other)->mutex) << name;
    EXPECT_FALSE(isRecordLocked(*getMapData(one))) << name;
  }
}

TEST_F(KeyedObjects, WithoutMemory_ThereIsNone) {
  for (const char* name : {"Map", "SortedMapSync", "HashSet", "HashSetSync", "Tuple", "Tuple<Int,Int>"}) {
    vorn_heap_fail_allocation(0);
    EXPECT_THROW(Vorn_allocObject(name), std::bad_alloc) << name;
    vorn_heap_fail_allocation(0);
    EXPECT_EQ(vorn_object_new(name), nullptr) << name;
  }
}

TEST_F(KeyedObjects, WrongNumbersOfTypeArguments_AreNoClass) {
  for (const char* name : {"Map<Int>", "SortedMap<Int,Int,Int>", "HashSet<Int,Int>"}) {
    EXPECT_EQ(object(name).get(), nullptr) << name;
  }
}

TEST_F(KeyedObjects, HandlesOfAnotherFamily_EndTheProcess) {
  const Handle set = object("HashSet");
  EXPECT_DEATH(getMapData(set), "a map was expected, but the handle is vorn\\.collections\\.HashSet");
  const Handle map = object("Map");
  EXPECT_DEATH(getSetData(map), "a set was expected, but the handle is vorn\\.collections\\.Map");
}

}  // namespace
}  // namespace vorn::tests
