// Memory exhaustion at every allocation of the whole-list operations: std::bad_alloc, the lists as they were, unlocked.
#include "tests/arraylist/bulk_cases.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class BulkAllocationFailure : public RuntimeTest {};

// Lists of every storage, long enough to leave the inline capacities.
std::vector<Handle> longLists() {
  std::vector<Handle> lists;
  const Handle word = string("word");
  for (const char* type : {"ArrayList<Int>", "ArrayListSync<Int>", "ArrayList", "LinkedList<Int>", "LinkedListSync"}) {
    const bool boxed = std::string(type) == "ArrayList";
    const Handle target = object(type);
    for (int i = 0; i < (boxed ? 6 : 33); ++i) vorn_collections_ArrayList_addInt(target, 40 - i);
    if (boxed) vorn_collections_ArrayList_add(target, word);
    lists.push_back(target);
  }
  return lists;
}

// Sweeps the operation over a list of each storage. Most of them allocate; unboxed elements may fit as they are.
template <class Operation>
void sweepEveryStorage(Operation operation, int leastFailures = 1) {
  for (const Handle& target : longLists()) {
    SCOPED_TRACE(vorn_type_name(target));
    const int failures = sweepFailuresOnList(target, [&] { return operation(target); });
    EXPECT_GE(failures, leastFailures);
    EXPECT_AT_REST(target);
  }
}

TEST_F(BulkAllocationFailure, AddAll) {
  const Handle source = intList("ArrayList", {1, 2, 3});
  const Snapshot sourceBefore(source);
  sweepEveryStorage([&](void* target) { vorn_collections_ArrayList_addAll(target, source); }, 0);
  sweepEveryStorage([&](void* target) { vorn_collections_ArrayList_addAllAt(target, 2, source); }, 0);
  sweepEveryStorage([&](void* target) { vorn_collections_ArrayList_addAll(target, target); });
  EXPECT_UNTOUCHED(source, sourceBefore);
}

TEST_F(BulkAllocationFailure, AddAllThatMaterialises) {
  const Handle words = list("ArrayList", {string("a"), integer("Int", 1), nullptr});
  for (const int count : {0, 3, 8, 33}) {
    for (const bool synchronised : {false, true}) {
      const Handle target = object(className(false, synchronised));
      for (int i = 0; i < count; ++i) vorn_collections_ArrayList_addInt(target, i);
      sweepFailuresOnList(target, [&] { vorn_collections_ArrayList_addAllAt(target, count / 2, words); });
      EXPECT_EQ(vorn_collections_ArrayList_size(target), count + 3);
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(BulkAllocationFailure, AddAllThatAdoptsAKind) {
  const Handle source = rawList("ArrayList", "Long", std::vector<long long>(40, 1));
  const Handle target = object("ArrayList");
  EXPECT_GT(sweepFailuresOnList(target, [&] { vorn_collections_ArrayList_addAll(target, source); }), 0);
  EXPECT_EQ(storageOf(target), "Long");
  EXPECT_AT_REST(target);
}

TEST_F(BulkAllocationFailure, Concat) {
  const Handle words = list("LinkedListSync", {string("a"), integer("Int", 1), nullptr});
  const Snapshot wordsBefore(words);
  sweepEveryStorage([&](void* target) { return vorn_collections_ArrayList_concat(target, target); });
  sweepEveryStorage([&](void* target) { return vorn_collections_ArrayList_concat(target, words); });
  sweepEveryStorage([&](void* target) { return vorn_collections_ArrayList_concat(words, target); });
  EXPECT_UNTOUCHED(words, wordsBefore);
}

TEST_F(BulkAllocationFailure, Repeat) {
  sweepEveryStorage([](void* target) { return vorn_collections_ArrayList_repeat(target, 2); });
  sweepEveryStorage([](void* target) { return vorn_collections_ArrayList_repeat(target, 0); });
}

TEST_F(BulkAllocationFailure, Slice) {
  sweepEveryStorage([](void* target) { return slice(target, kOmitted, kOmitted); });
  sweepEveryStorage([](void* target) { return slice(target, kOmitted, kOmitted, -2); });
}

TEST_F(BulkAllocationFailure, SliceAssignOfTheSameCount) {
  const Handle unboxed = intList("ArrayList", {1, 2, 3});
  const Handle boxed = list("LinkedList", {integer("Int", 1), integer("Int", 2), integer("Int", 3)});
  sweepEveryStorage([&](void* target) { sliceAssign(target, 1, 4, 1, unboxed); }, 0);
  sweepEveryStorage([&](void* target) { sliceAssign(target, 1, 4, 1, boxed); });
}

TEST_F(BulkAllocationFailure, SliceAssignOfTheSameCountThatMaterialises) {
  const Handle words = list("ArrayList", {string("a"), string("b")});
  const Handle target = rawList("ArrayListSync", "Int", {1, 2, 3, 4, 5, 6});
  EXPECT_GT(sweepFailuresOnList(target, [&] { sliceAssign(target, 0, 2, 1, words); }), 0);
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_AT_REST(target);
}

// The first values would fit the unboxed storage: none of them may be there when there is no memory for what follows.
TEST_F(BulkAllocationFailure, SliceAssignThatMaterialisesLate) {
  const Handle sources[] = {
      list("ArrayList", {integer("Int", 91), integer("Int", 92), string("a"), integer("Int", 93)}),
      list("LinkedListSync", {integer("Int", 91), integer("Int", 92), nullptr, integer("Long", 93)}),
      tupleOf({integer("Int", 91), integer("Int", 92), string("a"), string("b")})};
  for (const Handle& source : sources) {
    for (const long long step : {1LL, -1LL, 2LL}) {
      const Handle target = object("ArrayListSync");
      for (int i = 0; i < (step == 2 ? 8 : 4); ++i) vorn_collections_ArrayList_addInt(target, i);
      EXPECT_GT(sweepFailuresOnList(target, [&] { sliceAssign(target, kOmitted, kOmitted, step, source); }), 5);
      EXPECT_EQ(elementsOf(slice(target, kOmitted, kOmitted, step)).front(), "Int 91");
      EXPECT_EQ(storageOf(target), "objects");
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(BulkAllocationFailure, SliceAssignOfUnboxedValuesToBoxedLists) {
  const Handle source = rawList("ArrayList", "Short", {1, 2, 3});
  for (const char* type : {"ArrayList", "LinkedListSync"}) {
    const Handle target = list(type, {string("a"), nullptr, string("c")});
    EXPECT_EQ(sweepFailuresOnList(target, [&] { sliceAssign(target, kOmitted, kOmitted, 1, source); }), 4);
    EXPECT_EQ(elementsOf(target), (Elements{"Short 1", "Short 2", "Short 3"}));
  }
  const Handle target = rawList("ArrayList", "Int", {1, 2, 3});
  EXPECT_GT(sweepFailuresOnList(target, [&] { sliceAssign(target, kOmitted, kOmitted, 1, source); }), 6);
  EXPECT_EQ(elementsOf(target), (Elements{"Short 1", "Short 2", "Short 3"}));
}

// Refusing takes a box, which must be there before the accepted values are assigned.
TEST_F(BulkAllocationFailure, SliceAssignThatIsRefused) {
  const Handle source = rawList("ArrayList", "Long", {91, 1LL << 40, 92});
  const Handle target = rawList("ArrayListSync<Int>", "Int", {1, 2, 3});
  const Snapshot before(target);
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(sliceAssign(target, kOmitted, kOmitted, 1, source), std::bad_alloc);
  vorn_heap_fail_allocation(-1);
  EXPECT_NOTHING_RAISED();
  EXPECT_UNTOUCHED(target, before);
  sliceAssign(target, kOmitted, kOmitted, 1, source);
  EXPECT_RAISED(listTypeError("Int", "vorn.Long"));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 91", "Int 2", "Int 3"}));
}

TEST_F(BulkAllocationFailure, SliceAssignOfAnotherCount) {
  const Handle source = list("ArrayList", {string("a"), integer("Int", 1), nullptr});
  sweepEveryStorage([&](void* target) { sliceAssign(target, 1, 2, 1, source); });
  const Handle target = intList("ArrayListSync<Int>", {1, 2, 3});
  sweepFailuresOnList(target, [&] { sliceAssign(target, 0, 1, 1, target); });
  EXPECT_EQ(storageOf(target), "objects");
}

TEST_F(BulkAllocationFailure, SortOfObjects) {
  for (const bool linked : {false, true}) {
    for (const bool numbers : {false, true}) {
      for (const int count : {8, 33, 40}) {
        const Handle target = object(className(linked, true));
        for (int i = 0; i < count; ++i) {
          vorn_collections_ArrayList_add(
              target, numbers ? box(i % 2 == 0 ? "Int" : "Long", 100 - i) : string(std::to_string(100 - i)));
        }
        sweepFailuresOnList(target, [&] { vorn_collections_ArrayList_sort(target); });
        EXPECT_EQ(vorn_collections_ArrayList_size(target), count);
        EXPECT_AT_REST(target);
      }
    }
  }
}

TEST_F(BulkAllocationFailure, ReverseNewAndSortNew) {
  sweepEveryStorage([](void* target) { return vorn_collections_ArrayList_reverseNew(target); });
  sweepEveryStorage([](void* target) { return vorn_collections_ArrayList_sortNew(target); });
}

TEST_F(BulkAllocationFailure, ShuffleAndReverseInPlace) {
  for (const Handle& target : longLists()) {
    sweepFailuresOnList(target, [&] { vorn_collections_ArrayList_shuffle(target); });
    sweepFailuresOnList(target, [&] { vorn_collections_ArrayList_reverse(target); });
    EXPECT_AT_REST(target);
  }
}

}  // namespace
}  // namespace vorn::tests
