// Fixed arrays as sources of whole-list operations.
#include <vorn/collections/array.h>

#include <system_error>

#include "collections/array/array_data.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"
#include "tests/support/held_mutex.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

using ArraySources = RuntimeTest;

Handle arrayWith(const std::string& type, const std::vector<Handle>& values) {
  const Handle array = object(type);
  vorn_collections_Array_ctor(array, static_cast<long long>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    vorn_collections_Array_operator_index_eq(array, static_cast<long long>(i), values[i]);
  }
  return array;
}
Handle ints(const std::string& type, const std::vector<long long>& values) {
  std::vector<Handle> boxes;
  for (const long long value : values) boxes.push_back(integer("Int", value));
  return arrayWith(type, boxes);
}

TEST_F(ArraySources, AddAll_EveryElementType) {
  for (const bool synchronised : {false, true}) {
    for (const std::string& element : primitiveNames()) {
      SCOPED_TRACE(element);
      const Handle source = arrayWith(std::string(synchronised ? "ArraySync<" : "Array<") + element + ">",
                                      {box(element, 1), box(element, 0)});
      for (const char* type : {"ArrayList", "LinkedListSync"}) {
        const Handle target = object(type);
        vorn_collections_ArrayList_addAll(target, source);
        EXPECT_EQ(elementsOf(target), (Elements{element + " 1", element + " 0"}));
        EXPECT_EQ(storageOf(target), std::string(type) == "ArrayList" ? element : "linked");
        EXPECT_VALID_LIST(target);
      }
    }
  }
}

TEST_F(ArraySources, AddAll_Handles) {
  const Handle target = intList("ArrayList", {7});
  vorn_collections_ArrayList_addAll(target, arrayWith("Array", {string("a"), nullptr, integer("Long", 2)}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 7", "String a", "null", "Long 2"}));
  vorn_collections_ArrayList_addAll(target, object("Array"));
  EXPECT_EQ(vorn_collections_ArrayList_size(target), 4);
  EXPECT_VALID_LIST(target);
}

TEST_F(ArraySources, AddAll_TheListConvertsAndRefuses) {
  const Handle doubles = object("ArrayList<Double>");
  vorn_collections_ArrayList_addAll(doubles, ints("Array<Int>", {1, 2}));
  EXPECT_EQ(elementsOf(doubles), (Elements{"Double 1", "Double 2"}));
  EXPECT_EQ(storageOf(doubles), "Double");
  const Handle target = intList("ArrayList<Int>", {7});
  vorn_collections_ArrayList_addAll(target, arrayWith("ArraySync<Double>", {floating("Double", 1.5)}));
  EXPECT_RAISED(listTypeError("Int", "vorn.Double"));
  EXPECT_EQ(elementsOf(target), Elements{"Int 7"});
}

TEST_F(ArraySources, AddAllAt_KeepsTheOrder) {
  const Handle target = intList("ArrayList<Int>", {1, 5});
  vorn_collections_ArrayList_addAllAt(target, 1, ints("ArraySync<Int>", {2, 3, 4}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2", "Int 3", "Int 4", "Int 5"}));
  vorn_collections_ArrayList_addAllAt(target, 99, ints("Array<Int>", {}));
  EXPECT_NOTHING_RAISED();
  vorn_collections_ArrayList_addAllAt(target, 99, ints("Array<Int>", {1}));
  EXPECT_RAISED(kIndexError);
}

TEST_F(ArraySources, SliceAssign_SameCountAndOtherCount) {
  const Handle target = intList("ArrayList<Int>", {1, 2, 3, 4});
  sliceAssign(target, 1, 3, 1, ints("Array<Int>", {20, 30}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 20", "Int 30", "Int 4"}));
  EXPECT_EQ(storageOf(target), "Int");
  sliceAssign(target, kOmitted, kOmitted, 2, ints("ArraySync<Int>", {-1, -3}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int -1", "Int 20", "Int -3", "Int 4"}));
  sliceAssign(target, 1, 3, 1, ints("Array<Byte>", {9}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int -1", "Byte 9", "Int 4"}));
  EXPECT_EQ(storageOf(target), "objects");
  sliceAssign(target, kOmitted, kOmitted, 2, ints("Array<Int>", {1}));
  EXPECT_RAISED(kExtendedError);
}

TEST_F(ArraySources, TheSourceIsLockedWhileItIsRead) {
  const Handle target = intList("ArrayList", {7});
  for (const Handle& source : {ints("ArraySync<Int>", {1, 2}), arrayWith("ArraySync", {string("a")})}) {
    const HeldRecordMutex<ArrayData> held(*getArrayData(source));
    EXPECT_THROW(vorn_collections_ArrayList_addAll(target, source), std::system_error);
    EXPECT_THROW(vorn_collections_ArrayList_addAllAt(target, 0, source), std::system_error);
    EXPECT_THROW(sliceAssign(target, 0, 1, 1, source), std::system_error);
    EXPECT_EQ(elementsOf(target), Elements{"Int 7"});
  }
}

TEST_F(ArraySources, TheSourceIsUnlockedAfterwards) {
  const Handle source = ints("ArraySync<Int>", {1, 2});
  const Handle target = object("ArrayListSync");
  vorn_collections_ArrayList_addAll(target, source);
  sliceAssign(target, 0, 2, 1, source);
  EXPECT_AT_REST(target);
  EXPECT_FALSE(isRecordLocked(*getArrayData(source)));
}

TEST_F(ArraySources, AllocationFailures_LeaveTheListUnchanged) {
  const Handle source = ints("Array<Int>", {1, 2, 3});
  const Handle target = list("ArrayListSync", {string("a"), nullptr});
  EXPECT_GE(sweepFailuresOnList(target, [&] { vorn_collections_ArrayList_addAll(target, source); }), 3);
  EXPECT_EQ(vorn_collections_ArrayList_size(target), 5);
}

}  // namespace
}  // namespace vorn::tests
