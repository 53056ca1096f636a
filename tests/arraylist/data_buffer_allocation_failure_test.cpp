// The data-buffer protocol when memory runs out: the list is as it was, and no half-made list is given.
#include <climits>
#include <new>

#include "tests/arraylist/data_buffer_cases.h"

namespace vorn::tests {
namespace {

class DataBufferAllocationFailure : public RuntimeTest {};

// Fails each allocation of an operation on an existing list in turn. Gives the number of failures before it succeeded.
template <class Operation>
int sweepListFailures(void* target, const Operation& operation) {
  const Snapshot before(target);
  const int failures = sweepAllocationFailures([&] { operation(); }, [&] { EXPECT_UNTOUCHED(target, before); });
  EXPECT_AT_REST(target);
  return failures;
}

TEST_F(DataBufferAllocationFailure, CommitIntDataSize_MemoryExhaustion_LeavesTheListUnchanged) {
  for (const char* type : {"Int", "Byte", "Long", "UInt"}) {
    for (const bool synchronised : {false, true}) {
      SCOPED_TRACE(type);
      const Handle target = list(className(false, synchronised, type), {box(type, 1), box(type, 5)});
      vorn_collections_ArrayList_i64DataPtr(target);
      // The mirror holds 16, the buffer 32: both must grow.
      EXPECT_GE(sweepListFailures(target, [&] { vorn_collections_ArrayList_commitIntDataSize(target, 50); }), 2);
      EXPECT_EQ(storageOf(target), "Int");
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 50);
      EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 0), 1);
      EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 1), 5);
    }
  }
}

TEST_F(DataBufferAllocationFailure, OtherCommits_MemoryExhaustion_LeaveTheListUnchanged) {
  for (const Commit& commit : commits()) {
    SCOPED_TRACE(commit.name);
    const std::string type = commit.integers ? "Long" : "Double";
    const Handle target = list("ArrayListSync<" + type + ">", {box(type, 1), box(type, 5)});
    EXPECT_GE(sweepListFailures(target, [&] { commit.call(target, 50); }), 1);
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 50);
  }
}

TEST_F(DataBufferAllocationFailure, Prepare_MemoryExhaustion_LeavesTheListUnchanged) {
  for (const char* type : {"ArrayListSync", "ArrayList<Long>", "LinkedListSync"}) {
    const auto sweep = [type](const auto& prepare) {
      const Handle target = list(type, {integer("Long", 1), integer("Long", 2)});
      EXPECT_GE(sweepListFailures(target, [&] { prepare(target.get()); }), 1) << type;
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 0);
    };
    sweep([](void* target) { vorn_collections_ArrayList_prepareIntData(target, 50); });
    sweep([](void* target) { vorn_collections_ArrayList_preparePrimitiveI64Data(target, 50, "Byte"); });
    sweep([](void* target) { vorn_collections_ArrayList_prepareDoubleData(target, 50, "Float"); });
  }
}

TEST_F(DataBufferAllocationFailure, Prepare_ImpossibleSize_ThrowsWithTheListUnchanged) {
  for (const char* type : {"ArrayListSync", "LinkedListSync"}) {
    const Handle target = list(type, {integer("Int", 1), string("x")});
    const Snapshot before(target);
    EXPECT_ANY_THROW(vorn_collections_ArrayList_prepareIntData(target, LLONG_MAX));
    EXPECT_ANY_THROW(vorn_collections_ArrayList_preparePrimitiveI64Data(target, LLONG_MAX, "Byte"));
    EXPECT_ANY_THROW(vorn_collections_ArrayList_prepareDoubleData(target, LLONG_MAX, "Float"));
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(DataBufferAllocationFailure, DataPtr_MemoryExhaustion_LeavesTheListUnchanged) {
  const Handle integers = object("ArrayListSync");
  const Handle doubles = object("ArrayListSync");
  for (int i = 0; i < 20; ++i) {
    vorn_collections_ArrayList_addInt(integers, i);
    vorn_collections_ArrayList_addPrimitiveDouble(doubles, i, "Float");
  }
  EXPECT_EQ(sweepListFailures(integers, [&] { vorn_collections_ArrayList_i64DataPtr(integers); }), 1);
  EXPECT_EQ(sweepListFailures(doubles, [&] { vorn_collections_ArrayList_f64DataPtr(doubles); }), 1);
  EXPECT_EQ(sweepListFailures(integers, [&] { vorn_collections_ArrayList_primitiveDataPtr(integers); }), 0);
}

// Fails each allocation of a creation native in turn: no list at all, as null or as std::bad_alloc.
template <class Creation>
void sweepCreationFailures(const Creation& create, int leastFailures) {
  for (int failures = 0; failures < 50; ++failures) {
    SCOPED_TRACE("failing allocation " + std::to_string(failures));
    void* out = &out;
    const void* data = nullptr;
    bool thrown = false;
    vorn_heap_fail_allocation(failures);
    try {
      data = create(&out);
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    const bool happened = vorn_heap_failure_happened() != 0;
    vorn_heap_fail_allocation(-1);
    EXPECT_NOTHING_RAISED();
    const Handle made = out;
    EXPECT_EQ(thrown || data == nullptr, happened);
    if (!happened) {
      EXPECT_GE(failures, leastFailures);
      ASSERT_NE(made.get(), nullptr);
      EXPECT_AT_REST(made);
      return;
    }
    EXPECT_EQ(made.get(), nullptr);
  }
  ADD_FAILURE() << "the creation never succeeded";
}

TEST_F(DataBufferAllocationFailure, NewData_MemoryExhaustion_GivesNoList) {
  for (const char* type : {"Int", "Double", "Boolean"}) {
    sweepCreationFailures([&](void** out) { return vorn_collections_ArrayList_newPrimitiveData(3, type, out); }, 1);
    sweepCreationFailures([&](void** out) { return vorn_collections_ArrayList_newPrimitiveData(200, type, out); }, 2);
    sweepCreationFailures([&](void** out) { return vorn_collections_ArrayListSync_newPrimitiveData(200, type, out); },
                          2);
    sweepCreationFailures([&](void** out) { return vorn_collections_ArrayList_newPrimitiveI64Data(200, type, out); },
                          2);
    sweepCreationFailures([&](void** out) { return vorn_collections_ArrayList_newDoubleData(200, type, out); }, 2);
  }
}

}  // namespace
}  // namespace vorn::tests
