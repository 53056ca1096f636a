// What element access allocates: exactly the boxes it returns and the blocks its storage grows by, and nothing from
// malloc.
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>

#include <cstdlib>
#include <memory>

#include "collections/arraylist/creation.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"
#include "tests/support/sequences.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VORN_TEST_COUNTS_MALLOC 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define VORN_TEST_COUNTS_MALLOC 0
#endif
#endif
#if !defined(__GLIBC__)
#define VORN_TEST_COUNTS_MALLOC 0
#endif
#ifndef VORN_TEST_COUNTS_MALLOC
#define VORN_TEST_COUNTS_MALLOC 1
#endif

namespace {
thread_local constinit std::uint64_t mallocCalls = 0;
}

#if VORN_TEST_COUNTS_MALLOC
// These take the place of the C library's functions in the whole test binary. Sanitizers bring their own.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

__attribute__((visibility("default"))) void* malloc(std::size_t size) noexcept {
  ++mallocCalls;
  return __libc_malloc(size);
}
__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) noexcept {
  ++mallocCalls;
  return __libc_calloc(count, size);
}
__attribute__((visibility("default"))) void* realloc(void* block, std::size_t size) noexcept {
  ++mallocCalls;
  return __libc_realloc(block, size);
}
}
#endif

namespace vorn::tests {
namespace {

struct Cost {
  std::uint64_t collected;
  std::uint64_t collectedBytes;
  std::uint64_t malloced;
};

// What an operation allocates on this thread.
template <class Operation>
Cost costOf(Operation operation) {
  vorn_heap_statistics before;
  vorn_heap_statistics after;
  vorn_heap_get_statistics(&before);
  const std::uint64_t mallocsBefore = mallocCalls;
  operation();
  const std::uint64_t mallocs = mallocCalls - mallocsBefore;
  vorn_heap_get_statistics(&after);
  return {after.allocations - before.allocations, after.bytes_allocated - before.bytes_allocated, mallocs};
}

// Whether the heap itself takes its blocks from malloc.
bool onPlainHeap() {
  const char* heap = std::getenv("VORN_TEST_HEAP");
  return heap != nullptr && std::string(heap) == "heap=plain";
}

// Checks what an operation took from the collector, and that it took nothing from malloc beside that. The malloc
// counter reads 0 where it cannot count; MallocCounter_Counts says so.
void expectCost(const Cost& cost, std::uint64_t collected) {
  EXPECT_EQ(cost.collected, collected);
  EXPECT_LE(cost.malloced, onPlainHeap() ? collected : 0);
}

#define EXPECT_COST(operation, collectorAllocations)       \
  do {                                                     \
    SCOPED_TRACE(#operation);                              \
    const Cost operationCost = costOf([&] { operation; }); \
    expectCost(operationCost, collectorAllocations);       \
  } while (false)

class Allocation : public RuntimeTest {};

TEST_F(Allocation, MallocCounter_Counts) {
#if VORN_TEST_COUNTS_MALLOC
  const Cost cost = costOf([] {
    auto block = std::make_unique<std::string>(1000, 'x');
    EXPECT_EQ(block->size(), 1000U);
    void* volatile plain = std::malloc(10);
    std::free(plain);
  });
  EXPECT_GE(cost.malloced, 3U);
#else
  GTEST_SKIP() << "malloc cannot be counted under a sanitizer, which brings its own; the tests of this file then check "
                  "the collector's allocations only";
#endif
}

TEST_F(Allocation, CollectorCounter_Counts) {
  EXPECT_EQ(costOf([] { const Handle box = integer("Int", 1); }).collected, 1U);
}

TEST_F(Allocation, UnboxedStorage_ChangesAllocateNothing) {
  for (const char* type : {"ArrayList<Int>", "ArrayListSync<Int>", "ArrayList"}) {
    SCOPED_TRACE(type);
    const Handle one = integer("Int", 1);
    const Handle two = integer("Int", 2);
    const Handle target = list(type, {one, two});
    void* const raw = target;
    void* const value = two;
    EXPECT_COST(vorn_collections_ArrayList_add(raw, value), 0);
    EXPECT_COST(vorn_collections_ArrayList_addInt(raw, 3), 0);
    EXPECT_COST(vorn_collections_ArrayList_addPrimitiveI64(raw, 3, "Int"), 0);
    EXPECT_COST(vorn_collections_ArrayList_addPrimitiveI64(raw, 3, "vorn.Int"), 0);
    EXPECT_COST(vorn_collections_ArrayList_addPrimitiveI64(raw, 3, nullptr), 0);
    EXPECT_COST(vorn_collections_ArrayList_addIntToData(getListData(raw), 3), 0);
    EXPECT_COST(vorn_collections_ArrayList_addAt(raw, 0, value), 0);
    EXPECT_COST(vorn_collections_ArrayList_operator_index_eq(raw, 0, value), 0);
    EXPECT_COST(vorn_collections_ArrayList_operator_index_eq(raw, -1, value), 0);
    EXPECT_COST(vorn_collections_ArrayList_removeAt(raw, 0), 0);
    EXPECT_COST(EXPECT_TRUE(vorn_collections_ArrayList_remove(raw, value)), 0);
    EXPECT_COST(vorn_collections_ArrayList_clear(raw), 0);
    EXPECT_COST(vorn_collections_ArrayList_add(raw, value), 0);
    EXPECT_EQ(storageOf(target), "Int");
  }
}

TEST_F(Allocation, UnboxedStorage_ReadsAllocateOnlyTheReturnedBox) {
  const Handle one = integer("Int", 1);
  const Handle target = list("ArrayListSync<Int>", {one, one, one});
  const Handle flags = list("ArrayList<Boolean>", {boolean(true)});
  void* const raw = target;
  void* const value = one;
  void* const rawFlags = flags;
  EXPECT_COST(vorn_collections_ArrayList_getInt(raw, 1), 0);
  EXPECT_COST(vorn_collections_ArrayList_getIntFast(raw, 1), 0);
  EXPECT_COST(vorn_collections_ArrayList_getIntFromData(getListData(raw), -1), 0);
  EXPECT_COST(vorn_collections_ArrayList_getDouble(raw, 1), 0);
  EXPECT_COST(vorn_collections_ArrayList_size(raw), 0);
  EXPECT_COST(vorn_collections_ArrayList_sizeFast(raw), 0);
  EXPECT_COST(vorn_collections_ArrayList_indexOf(raw, value, 0), 0);
  EXPECT_COST(vorn_collections_ArrayList_lastIndexOf(raw, value, -1), 0);
  EXPECT_COST(vorn_collections_ArrayList_count(raw, value), 0);
  EXPECT_COST(vorn_collections_ArrayList_operator_in(raw, value), 0);
  EXPECT_EQ(costOf([&] { vorn_collections_ArrayList_operator_index(raw, 0); }).collected, 1U);
  EXPECT_EQ(costOf([&] { vorn_collections_ArrayList_operator_index(rawFlags, 0); }).collected, 0U);
}

TEST_F(Allocation, IndexSearchOfAForeignValue_AllocatesNothing) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 1)});
  const Handle word = string("x");
  void* const raw = target;
  EXPECT_COST(vorn_collections_ArrayList_indexOf(raw, word, 0), 0);
  EXPECT_COST(vorn_collections_ArrayList_lastIndexOf(raw, word, -1), 0);
  EXPECT_COST(vorn_collections_ArrayList_indexOf(raw, nullptr, 0), 0);
}

TEST_F(Allocation, BoxedStorage_SearchesOfNumbersAndTextsAllocateNothing) {
  for (const char* type : {"ArrayList", "LinkedList"}) {
    const Handle target = list(type, {string("a"), integer("Int", 1), floating("Double", 1.5), text("b")});
    const Handle wanted[] = {integer("Long", 1), text("b"), string("c")};
    void* const raw = target;
    for (void* value : {wanted[0].get(), wanted[1].get(), wanted[2].get()}) {
      EXPECT_COST(vorn_collections_ArrayList_indexOf(raw, value, 0), 0);
      EXPECT_COST(vorn_collections_ArrayList_count(raw, value), 0);
      EXPECT_COST(vorn_collections_ArrayList_operator_in(raw, value), 0);
    }
    EXPECT_COST(vorn_collections_ArrayList_operator_index(raw, 0), 0);
    EXPECT_COST(vorn_collections_ArrayList_getInt(raw, 1), 0);
    EXPECT_COST(vorn_collections_ArrayList_getDouble(raw, 2), 0);
    EXPECT_COST(vorn_collections_ArrayList_operator_index_eq(raw, 0, nullptr), 0);
    EXPECT_COST(vorn_collections_ArrayList_removeAt(raw, 0), 0);
    EXPECT_COST(vorn_collections_ArrayList_clear(raw), 0);
  }
}

TEST_F(Allocation, BoxedAppends_AllocateBlocksAndNodesOnly) {
  const Handle word = string("x");
  const Handle target = object("ArrayList");
  void* const raw = target;
  void* const value = word;
  for (int size = 1; size <= 20; ++size) {
    const bool grows = size == 5 || size == 9 || size == 17;
    EXPECT_COST(vorn_collections_ArrayList_add(raw, value), grows ? 1 : 0);
  }
  const Handle linked = object("LinkedList");
  void* const rawLinked = linked;
  for (int size = 1; size <= 20; ++size) {
    const bool grows = size == 1 || size == 4 || size == 11;
    EXPECT_COST(vorn_collections_ArrayList_add(rawLinked, value), grows ? 1 : 0);
  }
  EXPECT_COST(vorn_collections_ArrayList_addAt(rawLinked, 0, value), 0);
  EXPECT_COST(vorn_collections_ArrayList_addInt(rawLinked, 1), 1);
  EXPECT_COST(vorn_collections_ArrayList_removeAt(rawLinked, 7), 0);
  EXPECT_COST(vorn_collections_ArrayList_addAt(rawLinked, 9, value), 0);
}

TEST_F(Allocation, Materialisation_AllocatesOneBoxPerElementAndTheBlock) {
  const Handle target = object("ArrayList<Int>");
  for (int i = 0; i < 10; ++i) vorn_collections_ArrayList_addInt(target, i);
  void* const raw = target;
  EXPECT_COST(vorn_collections_ArrayList_operator_in(raw, nullptr), 11);
  const Handle few = object("ArrayList<Int>");
  for (int i = 0; i < 4; ++i) vorn_collections_ArrayList_addInt(few, i);
  void* const rawFew = few;
  EXPECT_COST(vorn_collections_ArrayList_operator_in(rawFew, nullptr), 4);
}

TEST_F(Allocation, UnboxedList_TakesItsCapacityAndNothingPerElement) {
  const long long count = onStressHeap() ? 3000 : 1000000;
  const Handle target = object("ArrayList<Int>");
  const Handle value = integer("Int", 7);
  void* const raw = target;
  void* const rawValue = value;
  const Cost cost = costOf([&] {
    for (long long i = 0; i < count; ++i) {
      if (i % 2 == 0) {
        vorn_collections_ArrayList_add(raw, rawValue);
      } else {
        vorn_collections_ArrayList_addInt(raw, i);
      }
    }
  });
  std::uint64_t capacity = 32;
  std::uint64_t doublings = 0;
  std::uint64_t blockBytes = 0;
  while (capacity < static_cast<std::uint64_t>(count)) {
    capacity *= 2;
    ++doublings;
    blockBytes += capacity * 4;
  }
  expectCost(cost, doublings);
  // Heaps may round a block up, by a page and a little for large ones.
  EXPECT_GE(cost.collectedBytes, blockBytes);
  EXPECT_LE(cost.collectedBytes, blockBytes + doublings * 8192);
  vorn_list_storage_info info;
  ASSERT_NE(vorn_list_get_storage(target, &info), 0);
  EXPECT_EQ(info.size, static_cast<std::uint64_t>(count));
  EXPECT_EQ(info.capacity, capacity);
  EXPECT_EQ(info.bytes_per_element, 4U);
  EXPECT_AT_REST(target);
}

// ---- Room for what is known to come -----------------------------------------------------------------------------------

constexpr int kFew = 300;
constexpr int kMany = 3000;

Handle listOf(const std::string& type, int count, const Handle& element) {
  Handle made = object(type);
  for (int i = 0; i < count; ++i) vorn_collections_ArrayList_add(made, element);
  return made;
}

// `made` prepares a number of elements and gives the work, which must take as many blocks for many elements as for few.
template <class Made>
void expectRoomIsMadeOnce(const char* what, Made made) {
  SCOPED_TRACE(what);
  made(kFew)();
  const auto ofFew = made(kFew);
  const auto ofMany = made(kMany);
  const Cost few = costOf(ofFew);
  const Cost many = costOf(ofMany);
  EXPECT_EQ(few.collected, many.collected);
  EXPECT_EQ(few.malloced, many.malloced);
  EXPECT_LE(few.collected, 4U);
}

TEST_F(Allocation, CopiesOfHandles_MakeRoomOnce) {
  const Handle word = string("x");
  for (const char* type : {"ArrayList", "LinkedList", "LinkedListSync"}) {
    expectRoomIsMadeOnce(type, [&](int count) {
      return [source = listOf(type, count, word), target = object("ArrayList")] {
        vorn_collections_ArrayList_addAll(target, source);
      };
    });
  }
  expectRoomIsMadeOnce("addAll of a set", [&](int count) {
    const Handle set = object("HashSet");
    for (int i = 0; i < count; ++i) vorn_collections_HashSet_add(set, integer("Int", i));
    return [set, target = listOf("ArrayList", 1, word)] { vorn_collections_ArrayList_addAll(target, set); };
  });
  expectRoomIsMadeOnce("addAll of a tuple", [&](int count) {
    return [tuple = tupleOf(std::vector<Handle>(static_cast<std::size_t>(count), word)), target = object("ArrayList")] {
      vorn_collections_ArrayList_addAll(target, tuple);
    };
  });
  expectRoomIsMadeOnce("slice", [&](int count) {
    return [source = listOf("ArrayList", count, word)] { slice(source, kOmitted, kOmitted); };
  });
  expectRoomIsMadeOnce("concat", [&](int count) {
    return [source = listOf("ArrayList", count, word), none = object("ArrayList")] {
      vorn_collections_ArrayList_concat(none, source);
    };
  });
  expectRoomIsMadeOnce("literal", [&](int count) {
    return [values = std::vector<void*>(static_cast<std::size_t>(count))]() mutable {
      createArrayListLiteralFromValues(false, values.data(), values.size());
    };
  });
}

TEST_F(Allocation, BoxesAddedToUnboxedStorage_AreGatheredInOneBlock) {
  expectRoomIsMadeOnce("addAll", [&](int count) {
    return [source = listOf("LinkedList", count, integer("Int", 7)), target = object("ArrayList<Int>")] {
      vorn_collections_ArrayList_addAll(target, source);
    };
  });
}

TEST_F(Allocation, Texts_MakeRoomOnce) {
  expectRoomIsMadeOnce("join of unboxed elements", [&](int count) {
    return
        [source = listOf("ArrayList<Int>", count, integer("Int", 7))] { vorn_collections_ArrayList_join(source, ","); };
  });
  expectRoomIsMadeOnce("text of characters", [&](int count) {
    const Handle array = object("Array<Char>");
    vorn_collections_Array_ctor(array, count);
    for (int i = 0; i < count; ++i) vorn_collections_Array_setInt(array, i, 'x');
    return [array] { Vorn_stringFromCharArray(array); };
  });
}

TEST_F(Allocation, ChangesOfStorage_MakeRoomForWhatFollows) {
  const Handle word = string("x");
  const Handle numbers = intList("ArrayList", {1, 2, 3, 4, 5});
  const Handle words = listOf("ArrayList", 6, word);
  EXPECT_EQ(costOf([&] { vorn_collections_ArrayList_concat(numbers, words); }).collected, 8U)
      << "the list, five boxes, their block and the gathered handles";

  const Handle target = intList("ArrayList", {1, 2, 3});
  const Handle mixed = list("LinkedList", {integer("Int", 7), word, word});
  EXPECT_EQ(costOf([&] { sliceAssign(target, kOmitted, kOmitted, 1, mixed); }).collected, 6U)
      << "the gathered handles twice, a box of the first, three of the elements";
  EXPECT_EQ(elementsOf(target), (Elements{"Int 7", "String x", "String x"}));

  const Handle range = listOf("ArrayList", 2, word);
  const Handle two = listOf("LinkedList", 2, word);
  EXPECT_EQ(costOf([&] { sliceAssign(range, 0, 1, 1, two); }).collected, 2U)
      << "the gathered handles and the new list's";
}

TEST_F(Allocation, Refusals_AllocateNothingInTheCollector) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 1)});
  const Handle word = string("x");
  EXPECT_EQ(costOf([&] { vorn_collections_ArrayList_operator_index_eq(target, 5, word); }).collected, 0U);
  EXPECT_RAISED(kIndexError);
  EXPECT_EQ(costOf([&] { vorn_collections_ArrayList_operator_index_eq(target, 0, word); }).collected, 0U);
  EXPECT_RAISED(listTypeError("Int", "vorn.String"));
}

}  // namespace
}  // namespace vorn::tests
