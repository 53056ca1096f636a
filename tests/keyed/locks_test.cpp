// Which natives lock, when they hold the lock and when they do not. The test program is linked so that the library's
// calls of vorn_collections_ArrayList_add and Vorn_raise come here first.
#include <cerrno>
#include <functional>
#include <system_error>

#include "collections/core/port/object_layout.h"
#include "collections/keyed/map_lookup.h"
#include "collections/keyed/map_snapshot.h"
#include "tests/keyed/keyed_cases.h"
#include "tests/support/before.h"
#include "tests/support/held_mutex.h"

namespace vorn::tests {
namespace {
std::function<void()>* onListAdd = nullptr;
std::function<void()>* onRaise = nullptr;
}  // namespace
}  // namespace vorn::tests

extern "C" {
void __real_vorn_collections_ArrayList_add(void* list, void* value);      // NOLINT(bugprone-reserved-identifier)
void __real_Vorn_raise(const char* exceptionClass, const char* message);  // NOLINT(bugprone-reserved-identifier)

void __wrap_vorn_collections_ArrayList_add(void* list, void* value) {  // NOLINT(bugprone-reserved-identifier)
  if (vorn::tests::onListAdd != nullptr) (*vorn::tests::onListAdd)();
  __real_vorn_collections_ArrayList_add(list, value);
}
void __wrap_Vorn_raise(const char* exceptionClass, const char* message) {  // NOLINT(bugprone-reserved-identifier)
  if (vorn::tests::onRaise != nullptr) (*vorn::tests::onRaise)();
  __real_Vorn_raise(exceptionClass, message);
}
}

namespace vorn::tests {
namespace {

struct NamedCall {
  const char* name;
  std::function<void(void* target, void* value)> call;
};

// Every native of maps that locks.
const std::vector<NamedCall>& mapCalls() {
  static void* slot;
  static const std::vector<NamedCall> calls = {
      {"put", [](void* map, void* key) { vorn_collections_Map_put(map, key, key); }},
      {"_set", [](void* map, void* key) { vorn_collections_Map__set(map, key, key); }},
      {"operator_index_eq", [](void* map, void* key) { vorn_collections_Map_operator_index_eq(map, key, key); }},
      {"_get", [](void* map, void* key) { vorn_collections_Map__get(map, key); }},
      {"operator_index", [](void* map, void* key) { vorn_collections_Map_operator_index(map, key); }},
      {"tryGet", [](void* map, void* key) { vorn_collections_Map_tryGet(map, key, &slot); }},
      {"operator_in", [](void* map, void* key) { vorn_collections_Map_operator_in(map, key); }},
      {"remove", [](void* map, void* key) { vorn_collections_Map_remove(map, key); }},
      {"containsValue", [](void* map, void* key) { vorn_collections_Map_containsValue(map, key); }},
      {"keys", [](void* map, void*) { vorn_collections_Map_keys(map); }},
      {"values", [](void* map, void*) { vorn_collections_Map_values(map); }},
      {"items", [](void* map, void*) { vorn_collections_Map_items(map); }},
      {"clear", [](void* map, void*) { vorn_collections_Map_clear(map); }},
      {"size", [](void* map, void*) { vorn_collections_Map_size(map); }},
      {"tryMapLookupStorageValue",
       [](void* map, void*) { tryMapLookupStorageValue(map, integerCollectionKey(1), &slot); }},
      {"tryMapLookupObjectValue", [](void* map, void* key) { tryMapLookupObjectValue(map, key, &slot); }},
      {"tryMapLookupValue", [](void* map, void*) { tryMapLookupValue(map, "text", &slot); }},
      {"snapshotMapEntries", [](void* map, void*) { snapshotMapEntries(*getMapData(map)); }},
  };
  return calls;
}

const std::vector<NamedCall>& setCalls() {
  static const std::vector<NamedCall> calls = {
      {"add", [](void* set, void* value) { vorn_collections_HashSet_add(set, value); }},
      {"remove", [](void* set, void* value) { vorn_collections_HashSet_remove(set, value); }},
      {"operator_in", [](void* set, void* value) { vorn_collections_HashSet_operator_in(set, value); }},
      {"count", [](void* set, void* value) { vorn_collections_HashSet_count(set, value); }},
      {"operator_index", [](void* set, void*) { vorn_collections_HashSet_operator_index(set, 0); }},
      {"items", [](void* set, void*) { vorn_collections_HashSet_items(set); }},
      {"clear", [](void* set, void*) { vorn_collections_HashSet_clear(set); }},
      {"reserve", [](void* set, void*) { vorn_collections_HashSet_reserve(set, 1000); }},
      {"size", [](void* set, void*) { vorn_collections_HashSet_size(set); }},
  };
  return calls;
}

class Locks : public RuntimeTest {};

template <class Record>
void expectDeadlock(const NamedCall& call, void* target, void* value, Record& record) {
  SCOPED_TRACE(call.name);
  const HeldRecordMutex<Record> held(record);
  try {
    call.call(target, value);
    ADD_FAILURE() << "did not lock";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), EDEADLK);
  }
}

TEST_F(Locks, SynchronisedMap_EveryNativeLocksAndPassesTheSystemErrorOn) {
  for (const char* type : {"HashMapSync", "SortedMapSync"}) {
    SCOPED_TRACE(type);
    const Handle map = countingMap(type, 3);
    const MapState before(map);
    for (const NamedCall& call : mapCalls()) expectDeadlock(call, map, number(1), *getMapData(map));
    EXPECT_EQ(MapState(map), before);
    EXPECT_MAP_AT_REST(map);
  }
  const Handle map = countingMap("HashMapSync", 3);
  expectDeadlock({"reserve", [](void* target, void*) { vorn_collections_Map_reserve(target, 100); }}, map, nullptr,
                 *getMapData(map));
}

TEST_F(Locks, SynchronisedSet_EveryNativeLocksAndPassesTheSystemErrorOn) {
  const Handle set = countingSet("HashSetSync", 3);
  const std::vector<void*> before = elementsOfSet(set);
  for (const NamedCall& call : setCalls()) expectDeadlock(call, set, number(1), *getSetData(set));
  EXPECT_EQ(elementsOfSet(set), before);
  EXPECT_SET_AT_REST(set);
}

TEST_F(Locks, EveryNativeUnlocks) {
  for (const char* type : {"HashMapSync", "SortedMapSync"}) {
    const Handle map = countingMap(type, 3);
    for (const NamedCall& call : mapCalls()) {
      call.call(map, number(1));
      takeErrors();
      EXPECT_EQ(faultOfMap(map), "") << call.name;
    }
  }
  const Handle set = countingSet("HashSetSync", 3);
  for (const NamedCall& call : setCalls()) {
    call.call(set, number(1));
    takeErrors();
    EXPECT_EQ(faultOfSet(set), "") << call.name;
  }
}

TEST_F(Locks, PlainRecords_IgnoreTheirMutex) {
  for (const char* type : {"Map", "SortedMap"}) {
    const Handle map = countingMap(type, 3);
    const HeldRecordMutex held(*getMapData(map));
    for (const NamedCall& call : mapCalls()) EXPECT_NO_THROW(call.call(map, number(1))) << call.name;
    takeErrors();
  }
  const Handle set = countingSet("HashSet", 3);
  const HeldRecordMutex held(*getSetData(set));
  for (const NamedCall& call : setCalls()) EXPECT_NO_THROW(call.call(set, number(1))) << call.name;
  takeErrors();
}

TEST_F(Locks, KeysAreMadeBeforeTheLock_AndComparedUnderIt) {
  for (const char* type : {"HashMapSync", "SortedMapSync"}) {
    SCOPED_TRACE(type);
    const Handle map = object(type);
    vorn_collections_Map_put(map, userKey(1), userKey(1));
    const MapData& data = *getMapData(map);
    int hashes = 0;
    int comparisons = 0;
    userHooks.hash = [&](void*) {
      ++hashes;
      EXPECT_FALSE(isRecordLocked(data));
      return std::uint64_t{1};
    };
    userHooks.equals = [&](void*, void*) {
      ++comparisons;
      EXPECT_TRUE(isRecordLocked(data));
      return false;
    };
    userHooks.compare = [&](void*, void*, bool*) {
      ++comparisons;
      EXPECT_TRUE(isRecordLocked(data));
      return 1;
    };
    vorn_collections_Map_put(map, userKey(2), nullptr);
    vorn_collections_Map__get(map, userKey(3));
    vorn_collections_Map_remove(map, userKey(4));
    EXPECT_EQ(hashes, data.hashed ? 3 : 0);
    EXPECT_GE(comparisons, 3);
    comparisons = 0;
    vorn_collections_Map_containsValue(map, userKey(5));
    EXPECT_EQ(comparisons, 1) << "element equality runs under the lock";
    userHooks = {};
    EXPECT_MAP_AT_REST(map);
  }
}

TEST_F(Locks, MapListings_FillTheirResultWithoutTheLock) {
  for (const char* type : {"HashMapSync", "SortedMapSync"}) {
    for (const auto listing : {vorn_collections_Map_keys, vorn_collections_Map_values, vorn_collections_Map_items}) {
      SCOPED_TRACE(type);
      const Handle map = countingMap(type, 3);
      const Handle key = number(50);
      int additions = 0;
      Handle list;
      {
        const Before before(onListAdd, [&] {
          ++additions;
          ASSERT_FALSE(isRecordLocked(*getMapData(map)));
          vorn_collections_Map_put(map, key, key);
          EXPECT_TRUE(vorn_collections_Map_remove(map, number(0)) == (additions == 1));
        });
        list = listing(map);
      }
      EXPECT_EQ(additions, 1) << "the first decides how all are kept";
      EXPECT_EQ(vorn_collections_ArrayList_size(list), 3) << "the snapshot was complete before";
      EXPECT_EQ(vorn_collections_Map_size(map), 3);
      EXPECT_MAP_AT_REST(map);
    }
  }
}

TEST_F(Locks, SetItems_FillTheirResultUnderTheLock) {
  const Handle set = countingSet("HashSetSync", 3);
  int additions = 0;
  {
    const Before before(onListAdd, [&] {
      ++additions;
      EXPECT_TRUE(isRecordLocked(*getSetData(set)));
    });
    vorn_collections_HashSet_items(set);
  }
  EXPECT_EQ(additions, 1) << "the first decides how all are kept";
  EXPECT_SET_AT_REST(set);
}

TEST_F(Locks, ErrorsAreRaisedUnlocked) {
  const Handle set = countingSet("HashSetSync", 3);
  const Handle map = countingMap("HashMapSync", 3);
  int raised = 0;
  {
    const Before before(onRaise, [&] {
      ++raised;
      EXPECT_FALSE(isRecordLocked(*getSetData(set)));
      EXPECT_FALSE(isRecordLocked(*getMapData(map)));
    });
    vorn_collections_HashSet_operator_index(set, 3);
    vorn_collections_Map_operator_index(map, number(9));
    vorn_collections_Map_put(map, nullptr, nullptr);
  }
  EXPECT_EQ(raised, 3);
  EXPECT_EQ(takeErrors().size(), 3U);
}

}  // namespace
}  // namespace vorn::tests
