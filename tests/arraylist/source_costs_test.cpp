// What reading other collections and slicing linked lists costs, counted in links, reads and blocks, and what is read
// when the source changes meanwhile.
#include <vorn/collections/hash_set.h>

#include <algorithm>

#include "collections/arraylist/snapshots.h"
#include "collections/keyed/set_data.h"
#include "tests/arraylist/bulk_cases.h"
#include "tests/arraylist/library_hooks.h"
#include "tests/support/heap_statistics.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class SourceCosts : public RuntimeTest {};

// Enough elements that a cost of their square stands out.
long long many() { return onStressHeap() ? 60 : 500; }

std::vector<long long> countingUp(long long count) {
  std::vector<long long> values;
  for (long long i = 0; i < count; ++i) values.push_back(i);
  return values;
}

Elements intsUpTo(long long count) {
  Elements elements;
  for (long long i = 0; i < count; ++i) elements.push_back("Int " + std::to_string(i));
  return elements;
}

// The links that were followed beyond a walk from neighbour to neighbour.
std::uint64_t stepsOf(const std::function<void()>& work) {
  const std::uint64_t before = linkedSteps;
  work();
  return linkedSteps - before;
}

TEST_F(SourceCosts, StepsAreCounted) {
  const Handle target = intList("LinkedList", countingUp(10));
  EXPECT_EQ(stepsOf([&] { vorn_collections_ArrayList_getInt(target, 3); }), 3U);
  EXPECT_EQ(stepsOf([&] { vorn_collections_ArrayList_getInt(target, 8); }), 2U);
}

// ---- Linked lists ---------------------------------------------------------------------------------------------------

TEST_F(SourceCosts, LinkedSources_AreWalkedOnce) {
  for (const char* type : {"LinkedList", "LinkedListSync<Int>"}) {
    const Handle source = intList(type, countingUp(many()));
    const Handle target = object("ArrayList");
    EXPECT_EQ(stepsOf([&] { vorn_collections_ArrayList_addAll(target, source); }), 0U);
    EXPECT_EQ(stepsOf([&] { vorn_collections_ArrayList_addAllAt(target, many(), source); }), 0U);
    EXPECT_EQ(stepsOf([&] { sliceAssign(target, 0, many(), 1, source); }), 0U);
    EXPECT_EQ(stepsOf([&] { sliceAssign(target, many(), kOmitted, 1, object("LinkedList")); }), 0U);
    EXPECT_EQ(elementsOf(target), intsUpTo(many()));
  }
}

TEST_F(SourceCosts, LinkedReceivers_AreWalkedOnce) {
  const Handle forward = intList("ArrayList<Int>", countingUp(many()));
  const auto bound = static_cast<std::uint64_t>(many());
  for (const long long step : {1LL, -1LL}) {
    const Handle target = intList("LinkedList<Int>", std::vector<long long>(static_cast<std::size_t>(many()), 7));
    EXPECT_LE(stepsOf([&] { sliceAssign(target, kOmitted, kOmitted, step, forward); }), bound);
    EXPECT_EQ(elementsOf(slice(target, kOmitted, kOmitted, step)), intsUpTo(many()));
  }
  const Handle target = intList("LinkedList<Int>", std::vector<long long>(static_cast<std::size_t>(3 * many()), 7));
  for (const long long step : {3LL, -3LL}) {
    EXPECT_LE(stepsOf([&] { sliceAssign(target, kOmitted, kOmitted, step, forward); }), bound);
    Handle part;
    EXPECT_LE(stepsOf([&] { part = slice(target, kOmitted, kOmitted, step); }), bound);
    EXPECT_EQ(elementsOf(part), intsUpTo(many()));
  }
}

TEST_F(SourceCosts, ShortSliceOfALongLinkedList_MakesOneNode) {
  const Handle target = intList("LinkedList<Int>", countingUp(many()));
  EXPECT_EQ(allocationsOf([&] { slice(target, 0, 1); }), 2U) << "the list and its node";
  EXPECT_EQ(allocationsOf([&] { slice(target, -1, kOmitted); }), 2U);
}

// ---- Sets and tuples ------------------------------------------------------------------------------------------------

TEST_F(SourceCosts, Sets_AreNeverReadByPosition) {
  for (const char* type : {"HashSet", "HashSetSync"}) {
    const Handle set = object(type);
    for (const long long value : countingUp(many())) vorn_collections_HashSet_add(set, integer("Int", value));
    const Handle target = object("ArrayList");
    const std::uint64_t before = setReads;
    vorn_collections_ArrayList_addAll(target, set);
    vorn_collections_ArrayList_addAllAt(target, 0, set);
    EXPECT_EQ(setReads, before);
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 2 * many());
    vorn_collections_HashSet_operator_index(set, 0);
    EXPECT_EQ(setReads, before + 1) << "reads are counted";
  }
}

TEST_F(SourceCosts, Tuples_AreReadOnce) {
  const Handle tuple = tupleOf(std::vector<Handle>(50, integer("Int", 1)));
  const Handle target = object("ArrayList");
  const std::uint64_t before = tupleReads;
  vorn_collections_ArrayList_addAll(target, tuple);
  EXPECT_EQ(tupleReads - before, 50U);
}

TEST_F(SourceCosts, ItemThatRaises_EndsItAndChangesNothing) {
  const Handle tuple = tupleOf({integer("Int", 1), integer("Int", 2), integer("Int", 3)});
  std::function<void(long long)> shorten = [&](long long index) {
    if (index == 1) vorn_field_set_integer(tuple, "size", 1);
  };
  for (const char* type : {"ArrayList<Int>", "ArrayListSync", "LinkedList"}) {
    for (int native = 0; native < 3; ++native) {
      const Handle target = intList(type, {7, 8, 9});
      const Snapshot before(target);
      vorn_field_set_integer(tuple, "size", 3);
      beforeTupleRead = &shorten;
      if (native == 0) vorn_collections_ArrayList_addAll(target, tuple);
      if (native == 1) vorn_collections_ArrayList_addAllAt(target, 0, tuple);
      if (native == 2) sliceAssign(target, kOmitted, kOmitted, 1, tuple);
      beforeTupleRead = nullptr;
      EXPECT_RAISED(kIndexError);
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

// ---- Unboxed elements -----------------------------------------------------------------------------------------------

TEST_F(SourceCosts, AddAllOfUnboxedElements_TakesOneBlock) {
  struct Case {
    const char* target;
    const char* source;
    const char* element;
  };
  for (const Case& example : {Case{"ArrayList<Int>", "ArrayList<Int>", "Int"},
                              {"ArrayListSync<Int>", "ArrayListSync<Int>", "Int"},
                              {"ArrayList<Long>", "ArrayList<Int>", "Int"},
                              {"ArrayList<Double>", "ArrayListSync<Byte>", "Byte"},
                              {"ArrayList<ULong>", "ArrayList<ULong>", "ULong"},
                              {"ArrayList<Char>", "ArrayListSync<Char>", "Char"},
                              {"ArrayList", "ArrayList", "CodeUnit"},
                              {"ArrayList<Object>", "ArrayList", "Boolean"}}) {
    const Handle source = rawList(example.source, example.element, std::vector<long long>(200, 66));
    const Handle target = object(example.target);
    const bool adopts = storageOf(target) == "objects" && declaredTypeOf(target) == "Object";
    // An untyped list adopts the kind; one of objects is given boxes.
    if (!adopts) {
      EXPECT_EQ(allocationsOf([&] { vorn_collections_ArrayList_addAll(target, source); }), 1U) << example.target;
      EXPECT_NE(storageOf(target), "objects");
    } else {
      EXPECT_EQ(allocationsOf([&] { vorn_collections_ArrayList_addAll(target, source); }), 2U) << "shared boxes";
    }
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 200);
  }
}

TEST_F(SourceCosts, SliceAssignOfUnboxedElements_TakesNothing) {
  for (const char* type : {"ArrayList<Int>", "ArrayListSync<Int>"}) {
    const Handle target = rawList(type, "Int", std::vector<long long>(200, 1));
    for (const char* element : {"Int", "Byte", "Long"}) {
      const Handle source = rawList("ArrayListSync", element, std::vector<long long>(100, 66));
      EXPECT_EQ(allocationsOf([&] { sliceAssign(target, kOmitted, kOmitted, 2, source); }), 0U);
    }
    EXPECT_EQ(allocationsOf([&] { sliceAssign(target, kOmitted, kOmitted, -1, target); }), 0U);
    EXPECT_EQ(storageOf(target), "Int");
  }
}

// ---- Sources that change --------------------------------------------------------------------------------------------

TEST_F(SourceCosts, SourceThatShrinksMeanwhile_IsTakenAsItWas) {
  for (const char* type : {"ArrayListSync", "LinkedListSync", "ArrayListSync<Int>", "HashSetSync"}) {
    for (int native = 0; native < 3; ++native) {
      const bool set = std::string(type) == "HashSetSync";
      if (set && native == 2) continue;
      const Handle source = set ? object(type) : intList(type, {4, 5, 6});
      for (const int value : {4, 5, 6}) {
        if (set) vorn_collections_HashSet_add(source, integer("Int", value));
      }
      const pthread_mutex_t* const mutex = set ? getSetData(source)->mutex : getListData(source)->mutex;
      int unlocks = 0;
      std::function<void(pthread_mutex_t*)> shrink = [&](pthread_mutex_t* unlocked) {
        if (unlocked != mutex || ++unlocks != 1) return;
        set ? vorn_collections_HashSet_clear(source) : vorn_collections_ArrayList_clear(source);
      };
      const Handle target = intList("ArrayList<Int>", {1, 2, 3});
      afterUnlock = &shrink;
      if (native == 0) vorn_collections_ArrayList_addAll(target, source);
      if (native == 1) vorn_collections_ArrayList_addAllAt(target, 3, source);
      if (native == 2) sliceAssign(target, kOmitted, kOmitted, 1, source);
      afterUnlock = nullptr;
      EXPECT_NOTHING_RAISED();
      EXPECT_GE(unlocks, 1);
      EXPECT_EQ(elementsOf(target), native == 2 ? (Elements{"Int 4", "Int 5", "Int 6"})
                                                : (Elements{"Int 1", "Int 2", "Int 3", "Int 4", "Int 5", "Int 6"}));
    }
  }
}

// ---- Snapshots ------------------------------------------------------------------------------------------------------

// Whether the list was rooted at some time, and nothing is rooted any more.
::testing::AssertionResult rootedAndReleased(const std::vector<RootSlot>& slots, const void* list) {
  bool rooted = false;
  for (const RootSlot& slot : slots) {
    if (slot.registered) return ::testing::AssertionFailure() << "a root slot is still registered";
    rooted = rooted || slot.handle == list;
  }
  return rooted ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << "the list was not rooted";
}

TEST_F(SourceCosts, Snapshot_RootsTheListAndReleasesItOnEveryWayOut) {
  for (const char* type : {"ArrayListSync<Int>", "ArrayListSync", "LinkedListSync"}) {
    const Handle source = object(type);
    for (int i = 0; i < 40; ++i) vorn_collections_ArrayList_addInt(source, i);
    if (type == std::string("ArrayListSync")) vorn_collections_ArrayList_add(source, nullptr);
    std::vector<RootSlot> slots;
    {
      ListStorageSnapshot snapshot;
      bool rootedToTheEnd = false;
      std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* mutex) {
        if (mutex != getListData(source)->mutex) return;
        rootedToTheEnd = std::any_of(slots.begin(), slots.end(), [&](const RootSlot& slot) {
          return slot.registered && slot.handle == source.get();
        });
      };
      afterUnlock = &hook;
      rootSlots = &slots;
      snapshotListStorage(source, snapshot);
      rootSlots = nullptr;
      afterUnlock = nullptr;
      EXPECT_TRUE(rootedToTheEnd) << type;
      EXPECT_EQ(snapshot.size(), getListData(source)->logicalSize());
    }
    EXPECT_TRUE(rootedAndReleased(slots, source)) << type;

    if (kindOf(source) != ListData::PrimitiveKind::None) continue;
    slots.clear();
    ListStorageSnapshot snapshot;
    vorn_heap_fail_allocation(0);
    rootSlots = &slots;
    EXPECT_THROW(snapshotListStorage(source, snapshot), std::bad_alloc);
    rootSlots = nullptr;
    vorn_heap_fail_allocation(-1);
    EXPECT_TRUE(rootedAndReleased(slots, source)) << type;
    EXPECT_AT_REST(source);
  }
  ListStorageSnapshot none;
  snapshotListStorage(nullptr, none);
  EXPECT_EQ(none.size(), 0U);
}

// ---- No objects -----------------------------------------------------------------------------------------------------

TEST_F(SourceCosts, WithoutAResultObject_NativesGiveNull) {
  for (const char* type : {"ArrayListSync<Int>", "ArrayList<Object>", "LinkedListSync"}) {
    const Handle target = intList(type, {3, 1, 2});
    const Snapshot before(target);
    noObjects = true;
    EXPECT_EQ(slice(target, 0, 2).get(), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_concat(target, target), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_concat(nullptr, target), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_repeat(target, 2), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_reverseNew(target), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_sortNew(target), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_literal0(), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_literal1(target), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_intLiteral1(1), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_primitiveLiteral0("Int"), nullptr);
    void* mirrored = target;
    EXPECT_EQ(vorn_collections_ArrayList_newPrimitiveI64Data(3, "Int", &mirrored), nullptr);
    EXPECT_EQ(mirrored, nullptr);
    noObjects = false;
    EXPECT_NOTHING_RAISED();
    EXPECT_UNTOUCHED(target, before);
  }
}

}  // namespace
}  // namespace vorn::tests
