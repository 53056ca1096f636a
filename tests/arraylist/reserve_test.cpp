// Reserving room: capacities, the turn of an empty declared list to unboxed storage, and what must not change.
#include <cerrno>
#include <climits>
#include <new>
#include <system_error>
#include <utility>

#include "collections/core/elements/element_types.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"
#include "tests/support/lists.h"

namespace vorn::tests {
namespace {

using Kind = ListData::PrimitiveKind;

void reserve(void* list, long long n) { vorn_collections_ArrayList_reserve(list, n); }

std::uint64_t inlineCapacityOf(const std::string& type) {
  if (type == "SByte" || type == "Byte" || type == "Boolean") return 128;
  if (type == "Short" || type == "UShort" || type == "CodeUnit") return 64;
  return type == "Long" || type == "ULong" || type == "Double" ? 16 : 32;
}

// One list of every kind of storage, with and without elements.
std::vector<Handle> assortedLists(bool synchronised) {
  const Handle one = integer("Int", 1);
  const Handle word = string("x");
  return {list(className(false, synchronised, "Int"), {one, one}),
          list(className(false, synchronised, "Int")),
          list(className(false, synchronised)),
          list(className(false, synchronised), {one, word, nullptr}),
          list(className(false, synchronised, "app.Item"), {item(1)}),
          list(className(true, synchronised), {one, word}),
          list(className(true, synchronised, "Int"), {one}),
          list(className(true, synchronised, "Double"))};
}

struct Capacities {
  explicit Capacities(void* list)
      : primitive(getListData(list)->primitive.capacity), objects(getListData(list)->objects.capacity) {}
  bool operator==(const Capacities&) const = default;

  std::uint64_t primitive;
  std::uint64_t objects;
};

class Reserve : public RuntimeTest {};

TEST_F(Reserve, NullList_DoesNothing) {
  for (const long long n : {LLONG_MIN, -1LL, 0LL, 1LL, LLONG_MAX}) reserve(nullptr, n);
}

TEST_F(Reserve, CountBelowOne_DoesNothing) {
  for (const bool synchronised : {false, true}) {
    for (const Handle& target : assortedLists(synchronised)) {
      for (const long long n : {0LL, -1LL, LLONG_MIN}) {
        const Snapshot before(target);
        const Capacities capacities(target);
        reserve(target, n);
        EXPECT_UNTOUCHED(target, before);
        EXPECT_TRUE(Capacities(target) == capacities);
      }
    }
  }
}

TEST_F(Reserve, LinkedList_IsLeftAlone) {
  const Handle one = integer("Int", 1);
  item(1);  // defines the class
  for (const bool synchronised : {false, true}) {
    for (const char* type : {"", "Int", "app.Item"}) {
      const Handle target = object(className(true, synchronised, type));
      for (int round = 0; round < 2; ++round) {
        for (const long long n : {1LL, 100LL, LLONG_MAX}) {
          const Snapshot before(target);
          const Capacities capacities(target);
          reserve(target, n);
          EXPECT_UNTOUCHED(target, before);
          EXPECT_TRUE(Capacities(target) == capacities);
          EXPECT_EQ(storageOf(target), "linked");
        }
        vorn_collections_ArrayList_add(target, std::string(type) == "app.Item" ? item(1) : one);
      }
    }
  }
}

TEST_F(Reserve, UnboxedList_DoublesUntilItFitsAndKeepsTheElements) {
  for (const std::string& type : primitiveNames()) {
    for (const bool synchronised : {false, true}) {
      SCOPED_TRACE(type);
      const Handle target = list(className(false, synchronised, type), {box(type, 1), box(type, 0)});
      const std::uint64_t inlined = inlineCapacityOf(type);
      const Snapshot before(target);
      const std::vector<std::pair<std::uint64_t, std::uint64_t>> steps = {{1, inlined},
                                                                          {inlined, inlined},
                                                                          {inlined + 1, 2 * inlined},
                                                                          {2 * inlined, 2 * inlined},
                                                                          {3, 2 * inlined},
                                                                          {8 * inlined - 1, 8 * inlined}};
      for (const auto& [n, capacity] : steps) {
        reserve(target, static_cast<long long>(n));
        EXPECT_EQ(getListData(target)->primitive.capacity, capacity) << n;
        EXPECT_UNTOUCHED(target, before);
      }
      EXPECT_EQ(elementsOf(target), (Elements{describe(box(type, 1)), describe(box(type, 0))}));
    }
  }
}

TEST_F(Reserve, UnboxedList_AppendsUpToTheRoomWithoutMovingTheBuffer) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 0)});
  reserve(target, 50);
  const unsigned char* const data = getListData(target)->primitive.data;
  for (int i = 1; i < 64; ++i) vorn_collections_ArrayList_addInt(target, i);
  EXPECT_EQ(getListData(target)->primitive.data, data);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(target, i), i);
}

TEST_F(Reserve, EmptyDeclaredList_TurnsToUnboxedStorage) {
  for (const std::string& type : primitiveNames()) {
    for (const bool synchronised : {false, true}) {
      for (const bool many : {false, true}) {
        SCOPED_TRACE(type);
        const Handle target = object(className(false, synchronised, type));
        ASSERT_EQ(storageOf(target), "objects");
        const std::uint64_t inlined = inlineCapacityOf(type);
        reserve(target, many ? static_cast<long long>(inlined) + 1 : 1);
        EXPECT_EQ(storageOf(target), type);
        EXPECT_EQ(kindOf(target), primitiveKindForType(type));
        EXPECT_EQ(declaredTypeOf(target), type);
        EXPECT_EQ(vorn_collections_ArrayList_size(target), 0);
        EXPECT_EQ(getListData(target)->primitive.capacity, many ? 2 * inlined : inlined);
        EXPECT_EQ(getListData(target)->objects.capacity, 4U);
        EXPECT_AT_REST(target);
        vorn_collections_ArrayList_add(target, box(type, 1));
        EXPECT_EQ(elementsOf(target), (Elements{describe(box(type, 1))}));
        EXPECT_EQ(storageOf(target), type);
      }
    }
  }
}

TEST_F(Reserve, ClearedDeclaredList_TurnsToUnboxedStorageAgain) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 1)});
  vorn_collections_ArrayList_addPrimitiveI64(target, 1LL << 40, "Long");
  ASSERT_EQ(storageOf(target), "objects");
  vorn_collections_ArrayList_clear(target);
  ASSERT_EQ(storageOf(target), "objects");
  reserve(target, 3);
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_AT_REST(target);
}

TEST_F(Reserve, BoxedListDeclaredPrimitive_StaysBoxedWhileItHoldsElements) {
  const Handle target = list("ArrayListSync<Int>", {integer("Int", 1)});
  vorn_collections_ArrayList_addPrimitiveI64(target, 1LL << 40, "Long");
  ASSERT_EQ(storageOf(target), "objects");
  const Snapshot before(target);
  reserve(target, 9);
  EXPECT_EQ(getListData(target)->objects.capacity, 16U);
  EXPECT_UNTOUCHED(target, before);
}

TEST_F(Reserve, ObjectStorage_DoublesFromFourAndKeepsTheHandles) {
  for (const char* type : {"", "Object", "String", "app.Item"}) {
    for (const bool synchronised : {false, true}) {
      for (const bool filled : {false, true}) {
        SCOPED_TRACE(type);
        item(1);  // defines the class
        const Handle target = object(className(false, synchronised, type));
        if (filled) {
          vorn_collections_ArrayList_add(target, std::string(type) == "app.Item" ? item(7) : string("x"));
          vorn_collections_ArrayList_add(target, nullptr);
        }
        const Snapshot before(target);
        const std::vector<std::pair<long long, std::uint64_t>> steps = {{1, 4}, {4, 4},  {5, 8},  {8, 8},
                                                                        {2, 8}, {9, 16}, {60, 64}};
        for (const auto& [n, capacity] : steps) {
          reserve(target, n);
          EXPECT_EQ(getListData(target)->objects.capacity, capacity) << n;
          EXPECT_EQ(kindOf(target), Kind::None);
          EXPECT_UNTOUCHED(target, before);
        }
      }
    }
  }
}

TEST_F(Reserve, ObjectStorage_AppendsUpToTheRoomWithoutMovingTheSlots) {
  const Handle word = string("x");
  const Handle target = list("ArrayList", {word});
  reserve(target, 10);
  void** const data = getListData(target)->objects.data;
  for (int i = 1; i < 16; ++i) vorn_collections_ArrayList_add(target, word);
  EXPECT_EQ(getListData(target)->objects.data, data);
  EXPECT_EQ(elementsOf(target), Elements(16, "String x"));
  EXPECT_AT_REST(target);
}

TEST_F(Reserve, UntypedEmptyList_StillAdoptsTheFirstKind) {
  const Handle target = object("ArrayList");
  reserve(target, 10);
  EXPECT_EQ(storageOf(target), "objects");
  vorn_collections_ArrayList_add(target, floating("Double", 0.5));
  EXPECT_EQ(storageOf(target), "Double");
  EXPECT_EQ(elementsOf(target), (Elements{"Double 0.5"}));
  EXPECT_AT_REST(target);
}

TEST_F(Reserve, ImpossibleCount_ThrowsWithTheListUnchanged) {
  for (const bool synchronised : {false, true}) {
    for (const Handle& target : assortedLists(synchronised)) {
      if (getListData(target)->linked) continue;  // see LinkedList_IsLeftAlone
      for (const long long n : {LLONG_MAX, LLONG_MAX / 2 + 2}) {
        const Snapshot before(target);
        const Capacities capacities(target);
        EXPECT_ANY_THROW(reserve(target, n));
        EXPECT_UNTOUCHED(target, before);
        EXPECT_TRUE(Capacities(target).objects == capacities.objects);
      }
    }
  }
}

TEST_F(Reserve, MemoryExhaustion_LeavesTheListUnchanged) {
  for (const bool synchronised : {false, true}) {
    for (const Handle& target : assortedLists(synchronised)) {
      if (getListData(target)->linked) continue;
      const Snapshot before(target);
      SCOPED_TRACE(storageOf(target) + " declared " + declaredTypeOf(target));
      int failures = 0;
      for (; failures < 10; ++failures) {
        bool thrown = false;
        vorn_heap_fail_allocation(failures);
        try {
          reserve(target, 200);
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
        const bool happened = vorn_heap_failure_happened() != 0;
        vorn_heap_fail_allocation(-1);
        EXPECT_EQ(thrown, happened);
        if (!thrown) break;
        EXPECT_UNTOUCHED(target, before);
      }
      EXPECT_EQ(failures, 1);
      EXPECT_AT_REST(target);
      const ListData& record = *getListData(target);
      EXPECT_EQ(record.primitiveKind != Kind::None ? record.primitive.capacity : record.objects.capacity, 256U);
    }
  }
}

TEST_F(Reserve, FailingMutex_IsASystemErrorAndLeavesTheListUnchanged) {
  for (const Handle& target : assortedLists(true)) {
    if (getListData(target)->linked) continue;  // needs no lock to do nothing
    const Snapshot before(target);
    {
      const HeldMutex held(target);
      try {
        reserve(target, 200);
        ADD_FAILURE() << "did not lock";
      } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EDEADLK);
      }
    }
    EXPECT_UNTOUCHED(target, before);
    reserve(target, 200);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Reserve, UnsynchronisedList_NeverTouchesItsMutex) {
  for (const Handle& target : assortedLists(false)) {
    const HeldMutex held(target);
    EXPECT_NO_THROW(reserve(target, 200));
  }
}

}  // namespace
}  // namespace vorn::tests
