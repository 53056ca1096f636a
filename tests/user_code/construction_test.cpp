// Constructors and copies that find no memory, and the roots they hold meanwhile. The test program is linked so that
// the library's calls of two runtime operations come here first.
#include <functional>
#include <string_view>

#include "tests/support/allocation_failure.h"
#include "tests/support/before.h"
#include "tests/support/filled_collections.h"

namespace vorn::tests {
namespace {
bool noMoreObjects = false;
std::function<void()>* beforeBox = nullptr;
}  // namespace
}  // namespace vorn::tests

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __real_Vorn_allocObject(const char* className);
void* __real__Z19boxIntegerLikeLocal15RuntimeTypeNamex(RuntimeTypeName type, long long value);

void* __wrap_Vorn_allocObject(const char* className) {
  return vorn::tests::noMoreObjects ? nullptr : __real_Vorn_allocObject(className);
}
void* __wrap__Z19boxIntegerLikeLocal15RuntimeTypeNamex(RuntimeTypeName type, long long value) {
  if (vorn::tests::beforeBox != nullptr) (*vorn::tests::beforeBox)();
  return __real__Z19boxIntegerLikeLocal15RuntimeTypeNamex(type, value);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace vorn::tests {
namespace {

// ---- Tuples ---------------------------------------------------------------------------------------------------------

class TupleConstruction : public RuntimeTest {
 protected:
  // Lists in every storage, plain and synchronised.
  static std::vector<Handle> sources() {
    std::vector<Handle> result;
    for (const char* type : {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"}) {
      const Handle empty = object(type);
      const Handle integers = object(type);
      const Handle doubles = object(type);
      const Handle boxed = object(type);
      for (int i = 0; i < 40; ++i) {
        vorn_collections_ArrayList_addInt(integers, i);
        vorn_collections_ArrayList_addPrimitiveDouble(doubles, i + 0.5, "Double");
        vorn_collections_ArrayList_add(boxed, i % 2 == 0 ? string("even") : integer("Int", i));
      }
      result.insert(result.end(), {empty, integers, doubles, boxed});
    }
    return result;
  }
};

TEST_F(TupleConstruction, RootsAreGoneOnEveryPath_FailingAllocationsIncluded) {
  for (const Handle& source : sources()) {
    SCOPED_TRACE(std::string(vorn_type_name(source)) + " " + join(elementsOfList(source)));
    const Handle tuple = object("Tuple");
    const std::size_t roots = rootCount();
    const int failures = sweepAllocationFailures([&] { vorn_collections_Tuple_ctor(tuple, source); },
                                                 [&] {
                                                   EXPECT_EQ(rootCount(), roots);
                                                   EXPECT_EQ(vorn_collections_Tuple_size(tuple), 0);
                                                 });
    EXPECT_EQ(failures > 0, vorn_collections_ArrayList_size(source) > 0);
    EXPECT_EQ(rootCount(), roots);
    EXPECT_EQ(contentsOf(classNamed("Tuple"), tuple), elementsOfList(source));
    EXPECT_VALID_LIST(source);
  }
}

TEST_F(TupleConstruction, RootsAreGoneWhereTheSourceIsRefused) {
  const Handle tuple = object("Tuple");
  const Handle map = object("Map");
  const std::size_t roots = rootCount();
  for (void* source : {static_cast<void*>(nullptr), map.get(), tuple.get()}) {
    vorn_collections_Tuple_ctor(tuple, source);
    EXPECT_RAISED("TypeError: argument 1 of Tuple must be a packed variadic list");
    EXPECT_EQ(rootCount(), roots);
  }
  vorn_collections_Tuple_ctor(nullptr, object("ArrayList"));
  EXPECT_EQ(rootCount(), roots);
}

TEST_F(TupleConstruction, RawValuesAreRootedWhileTheyAreBoxed) {
  const Handle source = object("ArrayListSync");
  for (int i = 0; i < 5; ++i) vorn_collections_ArrayList_addInt(source, i);
  const Handle tuple = object("Tuple");
  const std::size_t roots = rootCount();
  int boxes = 0;
  {
    const Before look(beforeBox, [&] {
      ++boxes;
      EXPECT_GT(rootCount(), roots) << "the copy of the raw values";
      EXPECT_FALSE(isLocked(getListData(source)->mutex)) << "boxed without the list's lock";
      // Nothing but the roots keeps the copy alive when the list is emptied and filled with others.
      vorn_collections_ArrayList_clear(source);
      for (int i = 0; i < 5; ++i) vorn_collections_ArrayList_addInt(source, 70 + i);
      vorn_heap_collect();
    });
    vorn_collections_Tuple_ctor(tuple, source);
  }
  EXPECT_EQ(boxes, 5);
  EXPECT_EQ(rootCount(), roots);
  EXPECT_EQ(contentsOf(classNamed("Tuple"), tuple), (Texts{"0", "1", "2", "3", "4"}));
}

// ---- Sorted copies --------------------------------------------------------------------------------------------------

class SortedCopies : public RuntimeTest {
 protected:
  // Runs the call while no object can be had.
  template <class Call>
  static void* withoutObjects(Call call) {
    const std::size_t roots = rootCount();
    noMoreObjects = true;
    void* const result = call();
    noMoreObjects = false;
    EXPECT_EQ(rootCount(), roots);
    return result;
  }
};

TEST_F(SortedCopies, ImmutableList_NoObjectToBeHad_IsANullResult) {
  const Handle boxed = object("ImmutableList");
  fill(classNamed("ImmutableList"), Shape::Direct, boxed, {3, 1, 2});
  const Handle integers = list("ArrayList<Int>", {integer("Int", 3), integer("Int", 1)});
  const Handle unboxed = object("ImmutableList");
  vorn_collections_ImmutableList_ctor(unboxed, integers);
  for (const Handle& source : {boxed, unboxed, object("ImmutableList")}) {
    const Texts before = elementsOfList(source);
    const Hostility counting;
    const ScopedHostility scope(counting);
    EXPECT_EQ(withoutObjects([&] { return vorn_collections_ImmutableList_sortNew(source); }), nullptr);
    EXPECT_EQ(ScopedHostility::calls(), 0) << "nothing is sorted for nobody";
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(elementsOfList(source), before);
    EXPECT_VALID_LIST(source);
  }
}

TEST_F(SortedCopies, Array_NoObjectToBeHad_IsANullResult) {
  for (const char* type : {"Array", "ArraySync", "Array<Int>", "ArraySync<Double>"}) {
    const Handle array = object(type);
    vorn_collections_Array_ctor(array, 3);
    const Texts before = elementsOfArray(array);
    EXPECT_EQ(withoutObjects([&] { return vorn_collections_Array_sortNew(array); }), nullptr);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(elementsOfArray(array), before);
    EXPECT_FALSE(getArrayData(array)->synchronized && isLocked(getArrayData(array)->mutex));
  }
}

}  // namespace
}  // namespace vorn::tests
