// Memory exhaustion at every allocation of every allocating native: std::bad_alloc, the list as it was, unlocked.
#include <new>
#include <tuple>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"
#include "tests/support/allocation_failure.h"

namespace vorn::tests {
namespace {

struct FailureCase {
  std::string name;
  std::string type;
  // What the list holds: this many Ints appended raw, then this many texts.
  int integers;
  int texts;
  void (*operation)(void* target, void* value);
  // The value passed: "Int", "Long" or "String" box, or "" for null.
  std::string value;
  // How many allocations a successful call makes at most; at least one unless 0.
  int allocations;
};

std::ostream& operator<<(std::ostream& out, const FailureCase& failure) { return out << failure.name; }

void add(void* target, void* value) { vorn_collections_ArrayList_add(target, value); }
void addAtStart(void* target, void* value) { vorn_collections_ArrayList_addAt(target, 0, value); }
void addInTheMiddle(void* target, void* value) { vorn_collections_ArrayList_addAt(target, 2, value); }
void addInt(void* target, void*) { vorn_collections_ArrayList_addInt(target, 5); }
void addIntToData(void* target, void*) { vorn_collections_ArrayList_addIntToData(getListData(target), 5); }
void addLong(void* target, void*) { vorn_collections_ArrayList_addPrimitiveI64(target, 5, "Long"); }
void addDouble(void* target, void*) { vorn_collections_ArrayList_addPrimitiveDouble(target, 5.5, nullptr); }
void addFlag(void* target, void*) { vorn_collections_ArrayList_addPrimitiveBool(target, true); }
void read(void* target, void*) { vorn_collections_ArrayList_operator_index(target, 0); }
void replace(void* target, void* value) { vorn_collections_ArrayList_operator_index_eq(target, 1, value); }
void count(void* target, void* value) { vorn_collections_ArrayList_count(target, value); }
void contains(void* target, void* value) { vorn_collections_ArrayList_operator_in(target, value); }
void removeValue(void* target, void* value) { vorn_collections_ArrayList_remove(target, value); }
void removeAt(void* target, void*) { vorn_collections_ArrayList_removeAt(target, 1); }
void appendByWrite(void* target, void* value) {
  vorn_collections_ArrayList_operator_index_eq(target, vorn_collections_ArrayList_size(target), value);
}

std::vector<FailureCase> failureCases() {
  return {
      // Unboxed storage: a block when it is full.
      {"Add_Unboxed_Room", "ArrayList<Int>", 3, 0, add, "Int", 0},
      {"Add_Unboxed_Grows", "ArrayList<Int>", 32, 0, add, "Int", 1},
      {"AddAt_Unboxed_Grows", "ArrayList<Int>", 32, 0, addAtStart, "Int", 1},
      {"AddInt_Unboxed_Grows", "ArrayList<Int>", 32, 0, addInt, "", 1},
      {"AddIntToData_Unboxed_Grows", "ArrayList", 32, 0, addIntToData, "", 1},
      {"Write_Unboxed_Grows", "ArrayList<Int>", 32, 0, appendByWrite, "Int", 1},
      {"Read_Unboxed", "ArrayList<Int>", 3, 0, read, "", 1},
      {"Replace_Unboxed", "ArrayList<Int>", 3, 0, replace, "Int", 0},
      {"RemoveAt_Unboxed", "ArrayList<Int>", 3, 0, removeAt, "", 0},
      // Materialisation: a box for each element, a block for more than four, and what the operation itself needs.
      {"Add_Materialises", "ArrayList", 3, 0, add, "String", 3},
      {"Add_MaterialisesAndGrows", "ArrayList", 4, 0, add, "String", 5},
      {"Add_MaterialisesIntoABlock", "ArrayList", 6, 0, add, "Long", 7},
      {"Add_MaterialisesIntoAFullBlock", "ArrayList", 8, 0, add, "String", 10},
      {"AddAt_Materialises", "ArrayList", 3, 0, addAtStart, "String", 3},
      {"AddAt_MaterialisesAndGrows", "ArrayList", 4, 0, addInTheMiddle, "", 5},
      {"AddIntToData_MaterialisesAndBoxes", "ArrayList<Long>", 3, 0, addIntToData, "", 4},
      {"AddLong_MaterialisesAndBoxes", "ArrayList", 3, 0, addLong, "", 4},
      {"AddLong_MaterialisesBoxesAndGrows", "ArrayList", 4, 0, addLong, "", 6},
      {"AddDouble_MaterialisesAndBoxes", "ArrayList<Int>", 3, 0, addDouble, "", 4},
      {"AddFlag_Materialises", "ArrayList<Int>", 3, 0, addFlag, "", 3},
      {"Replace_Materialises", "ArrayList", 6, 0, replace, "String", 7},
      {"Write_MaterialisesAndGrows", "ArrayList", 4, 0, appendByWrite, "String", 5},
      {"Count_Materialises", "ArrayList<Int>", 6, 0, count, "String", 7},
      {"Contains_Materialises", "ArrayList<Int>", 6, 0, contains, "Long", 7},
      {"Remove_Materialises", "ArrayList<Int>", 6, 0, removeValue, "Long", 7},
      {"Remove_MaterialisesForNull", "ArrayList<Int>", 2, 0, removeValue, "", 2},
      // Object storage.
      {"Add_Objects_Room", "ArrayList", 0, 3, add, "String", 0},
      {"Add_Objects_Grows", "ArrayList", 0, 4, add, "String", 1},
      {"AddAt_Objects_Grows", "ArrayList", 0, 4, addInTheMiddle, "String", 1},
      {"AddInt_Objects_BoxesAndGrows", "ArrayList", 0, 4, addInt, "", 2},
      {"Write_Objects_Grows", "ArrayList", 0, 8, appendByWrite, "", 1},
      // Linked storage: a node, and a box for raw values.
      {"Add_Linked", "LinkedList", 2, 1, add, "String", 1},
      {"AddAt_Linked_Start", "LinkedList", 3, 0, addAtStart, "Int", 1},
      {"AddAt_Linked_Middle", "LinkedList", 3, 0, addInTheMiddle, "", 1},
      {"AddInt_Linked", "LinkedList<Int>", 3, 0, addInt, "", 2},
      {"AddDouble_Linked", "LinkedList", 3, 0, addDouble, "", 2},
      {"AddFlag_Linked", "LinkedList", 3, 0, addFlag, "", 1},
      {"Write_Linked", "LinkedList", 3, 0, appendByWrite, "String", 1},
      {"Replace_Linked", "LinkedList", 3, 0, replace, "String", 0},
      {"Add_Linked_Empty", "LinkedList", 0, 0, add, "String", 1},
  };
}

class AllocationFailure : public RuntimeTest, public ::testing::WithParamInterface<std::tuple<FailureCase, bool>> {};

std::string synchronised(std::string type) { return type.insert(type.find("List") + 4, "Sync"); }

TEST_P(AllocationFailure, EveryAllocationOfTheCall) {
  const FailureCase& failure = std::get<0>(GetParam());
  const Handle target = object(std::get<1>(GetParam()) ? synchronised(failure.type) : failure.type);
  for (int i = 0; i < failure.integers; ++i) vorn_collections_ArrayList_addInt(target, i);
  for (int i = 0; i < failure.texts; ++i) vorn_collections_ArrayList_add(target, string("text"));
  const Handle value = failure.value.empty()       ? Handle(nullptr)
                       : failure.value == "String" ? string("value")
                                                   : integer(failure.value.c_str(), 1);
  const Snapshot before(target);
  const Elements elements = elementsOf(target);
  const int failures = sweepAllocationFailures([&] { failure.operation(target, value); },
                                               [&] {
                                                 EXPECT_UNTOUCHED(target, before);
                                                 EXPECT_EQ(elementsOf(target), elements);
                                               });
  EXPECT_LE(failures, failure.allocations);
  EXPECT_EQ(failures == 0, failure.allocations == 0);
  EXPECT_AT_REST(target);
}

INSTANTIATE_TEST_SUITE_P(Natives, AllocationFailure,
                         ::testing::Combine(::testing::ValuesIn(failureCases()), ::testing::Bool()),
                         [](const auto& param) {
                           return std::get<0>(param.param).name + (std::get<1>(param.param) ? "_Sync" : "");
                         });

}  // namespace
}  // namespace vorn::tests
