// Natives whose result, or a part of it, cannot be had: a runtime may answer null instead of throwing. And the order of
// the "size" field and the unlocking. The test program is linked so that the library's calls come here first.

#include <pthread.h>

#include "collections/core/port/objects.h"
#include "tests/keyed/keyed_cases.h"
#include "tests/support/before.h"

namespace vorn::tests {
namespace {
int objectsBeforeNull = -1;  // negative when all can be had
bool listsAreNull = false;
std::function<void()>* onUnlock = nullptr;
}  // namespace
}  // namespace vorn::tests

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" {
void* __real_Vorn_allocObject(const char* className);
void* __real_vorn_collections_ArrayList_literal0();
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);

void* __wrap_Vorn_allocObject(const char* className) {
  if (vorn::tests::objectsBeforeNull == 0) return nullptr;
  if (vorn::tests::objectsBeforeNull > 0) --vorn::tests::objectsBeforeNull;
  return __real_Vorn_allocObject(className);
}
void* __wrap_vorn_collections_ArrayList_literal0() {
  return vorn::tests::listsAreNull ? nullptr : __real_vorn_collections_ArrayList_literal0();
}
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  if (vorn::tests::onUnlock != nullptr) (*vorn::tests::onUnlock)();
  return __real_pthread_mutex_unlock(mutex);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace vorn::tests {
namespace {

class NullObjects : public RuntimeTest {
 protected:
  void TearDown() override {
    objectsBeforeNull = -1;
    listsAreNull = false;
    RuntimeTest::TearDown();
  }
};

TEST_F(NullObjects, MapListings_AreNullAndLeaveTheMapUnlocked) {
  for (const char* type : kMapTypes) {
    SCOPED_TRACE(type);
    const Handle map = countingMap(type, 3);
    const MapState before(map);
    for (const auto listing : {vorn_collections_Map_keys, vorn_collections_Map_values, vorn_collections_Map_items}) {
      objectsBeforeNull = 0;
      EXPECT_EQ(listing(map), nullptr);
      objectsBeforeNull = -1;
      EXPECT_EQ(MapState(map), before);
      EXPECT_MAP_AT_REST(map);
    }
  }
}

TEST_F(NullObjects, MapItems_AreNullWhenAnyTupleIs) {
  const Handle map = countingMap("Map", 3);
  for (int objects = 1; objects <= 3; ++objects) {
    objectsBeforeNull = objects;
    EXPECT_EQ(vorn_collections_Map_items(map), nullptr) << objects;
  }
  objectsBeforeNull = 4;
  EXPECT_NE(vorn_collections_Map_items(map), nullptr);
}

TEST_F(NullObjects, SetItems_AreNullAndLeaveTheSetUnlocked) {
  for (const char* type : kSetTypes) {
    const Handle set = countingSet(type, 3);
    listsAreNull = true;
    EXPECT_EQ(vorn_collections_HashSet_items(set), nullptr);
    EXPECT_EQ(vorn_collections_HashSet_items(nullptr), nullptr);
    listsAreNull = false;
    EXPECT_SET_AT_REST(set);
  }
}

TEST_F(NullObjects, SizeField_IsWrittenBeforeTheUnlock) {
  void* collection = nullptr;
  long long sizeAtUnlock = -1;
  const Before watch(onUnlock, [&] {
    if (collection != nullptr) sizeAtUnlock = Vorn_getField_i64(collection, "size");
  });
  const auto expectSizeAtUnlock = [&](void* of, long long expected, const std::function<void()>& call) {
    sizeAtUnlock = -1;
    collection = of;
    call();
    collection = nullptr;
    EXPECT_EQ(sizeAtUnlock, expected);
  };
  const Handle key = number(1);
  const Handle further = number(7);
  for (const char* type : {"HashMapSync", "SortedMapSync"}) {
    SCOPED_TRACE(type);
    const Handle map = countingMap(type, 3);
    expectSizeAtUnlock(map, 3, [&] { vorn_collections_Map_put(map, key, key); });
    expectSizeAtUnlock(map, 4, [&] { vorn_collections_Map__set(map, further, key); });
    expectSizeAtUnlock(map, 3, [&] { vorn_collections_Map_remove(map, key); });
    expectSizeAtUnlock(map, 0, [&] { vorn_collections_Map_clear(map); });
  }
  const Handle set = countingSet("HashSetSync", 3);
  expectSizeAtUnlock(set, 4, [&] { vorn_collections_HashSet_add(set, further); });
  expectSizeAtUnlock(set, 3, [&] { vorn_collections_HashSet_remove(set, key); });
  expectSizeAtUnlock(set, 0, [&] { vorn_collections_HashSet_clear(set); });
}

}  // namespace
}  // namespace vorn::tests
