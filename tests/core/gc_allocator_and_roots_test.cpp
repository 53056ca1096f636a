#include <list>
#include <new>
#include <type_traits>

#include "collections/core/port/gc_allocator.h"
#include "collections/core/port/roots.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using collections::HandleVector;
using collections::RootedHandle;
using collections::RootedRange;

class GcAllocatorAndRoots : public RuntimeTest {};

// Overwrites what a wrongly freed block left behind: collects, then allocates boxes of another value.
void disturbTheHeap(int allocations = 20) {
  vorn_heap_collect();
  for (int i = 0; i < allocations; ++i) vorn_box_long(0x5A5A5A5A);
  vorn_heap_collect();
}

std::int64_t valueOf(void* handle) {
  std::int64_t value = -1;
  EXPECT_NE(vorn_unbox_integer(handle, &value), 0);
  return value;
}

// ---- VornGcAllocator ------------------------------------------------------------------------------------------------

TEST_F(GcAllocatorAndRoots, Allocator_CountsWhoseBytesOverflowAreRefused) {
  VornGcAllocator<void*> allocator;
  constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
  for (const std::size_t count : {kMost, kMost / sizeof(void*) + 1, kMost / 2 + 1}) {
    EXPECT_THROW((void)allocator.allocate(count), std::bad_alloc) << count;
  }
  struct Large {
    char bytes[4096];
  };
  EXPECT_THROW((void)VornGcAllocator<Large>().allocate(kMost / 4096 + 1), std::bad_alloc);
}

TEST_F(GcAllocatorAndRoots, Allocator_NullFromTheCollectorIsOutOfMemory) {
  VornGcAllocator<void*> allocator;
  vorn_heap_fail_allocation(0);
  EXPECT_THROW((void)allocator.allocate(3), std::bad_alloc);
  EXPECT_NE(vorn_heap_failure_happened(), 0);
}

TEST_F(GcAllocatorAndRoots, Allocator_BlockHoldsTheElements) {
  VornGcAllocator<long long> allocator;
  long long* block = allocator.allocate(100);
  RootedHandle root(block);
  for (int i = 0; i < 100; ++i) block[i] = i * i;
  disturbTheHeap();
  for (int i = 0; i < 100; ++i) EXPECT_EQ(block[i], i * i);
}

TEST_F(GcAllocatorAndRoots, Allocator_BlockIsScannedForHandles) {
  VornGcAllocator<void*> allocator;
  RootedHandle root(allocator.allocate(10));
  void** block = static_cast<void**>(root.get());
  std::fill(block, block + 10, nullptr);
  for (int i = 0; i < 10; ++i) block[i] = vorn_box_int(i);
  disturbTheHeap();
  for (int i = 0; i < 10; ++i) EXPECT_EQ(valueOf(block[i]), i);
}

TEST_F(GcAllocatorAndRoots, Allocator_DeallocationDoesNothing) {
  VornGcAllocator<long long> allocator;
  long long* block = allocator.allocate(4);
  RootedHandle root(block);
  for (int i = 0; i < 4; ++i) block[i] = 100 + i;
  allocator.deallocate(block, 4);
  allocator.deallocate(nullptr, 0);
  disturbTheHeap();
  for (int i = 0; i < 4; ++i) EXPECT_EQ(block[i], 100 + i);
}

TEST_F(GcAllocatorAndRoots, Allocator_AllAreEqualAndRebind) {
  const VornGcAllocator<void*> handles;
  const VornGcAllocator<int> integers(handles);
  EXPECT_TRUE(handles == integers);
  EXPECT_FALSE(handles != integers);
  static_assert(std::is_same_v<std::allocator_traits<VornGcAllocator<int>>::rebind_alloc<long>, VornGcAllocator<long>>);
}

TEST_F(GcAllocatorAndRoots, Allocator_ServesNodeContainers) {
  std::list<int, VornGcAllocator<int>> values;
  const RootedRange root(&values, sizeof(values));
  for (int i = 0; i < 20; ++i) values.push_back(i);
  disturbTheHeap();
  int expected = 0;
  for (const int value : values) EXPECT_EQ(value, expected++);
  EXPECT_EQ(expected, 20);
}

// ---- Roots ----------------------------------------------------------------------------------------------------------

TEST_F(GcAllocatorAndRoots, RootedHandle_KeepsItsHandle) {
  RootedHandle root(vorn_box_int(42));
  disturbTheHeap();
  EXPECT_EQ(valueOf(root.get()), 42);
}

TEST_F(GcAllocatorAndRoots, RootedHandle_StartsNullAndKeepsWhatIsAssigned) {
  RootedHandle root;
  EXPECT_EQ(root.get(), nullptr);
  for (int i = 0; i < 3; ++i) {
    root = vorn_box_int(i);
    disturbTheHeap();
    EXPECT_EQ(valueOf(root.get()), i);
  }
  root = nullptr;
  EXPECT_EQ(root.get(), nullptr);
}

TEST_F(GcAllocatorAndRoots, RootedHandle_NestAndAreReleasedByScope) {
  RootedHandle outer(vorn_box_int(1));
  for (int round = 0; round < 3; ++round) {
    RootedHandle middle(vorn_box_int(2));
    {
      RootedHandle inner(vorn_box_int(3));
      disturbTheHeap();
      EXPECT_EQ(valueOf(inner.get()), 3);
    }
    disturbTheHeap();
    EXPECT_EQ(valueOf(middle.get()), 2);
  }
  disturbTheHeap();
  EXPECT_EQ(valueOf(outer.get()), 1);
}

TEST_F(GcAllocatorAndRoots, RootedHandle_IsReleasedWhenAnExceptionUnwinds) {
  RootedHandle outer(vorn_box_int(1));
  for (int i = 0; i < 3; ++i) {
    try {
      RootedHandle inner(vorn_box_int(2));
      throw 1;
    } catch (int) {
    }
  }
  disturbTheHeap();
  EXPECT_EQ(valueOf(outer.get()), 1);
}

TEST_F(GcAllocatorAndRoots, RootedRange_KeepsEverySlot) {
  void* slots[5] = {};
  const RootedRange root(slots, sizeof(slots));
  for (int i = 0; i < 5; ++i) slots[i] = vorn_box_int(i);
  disturbTheHeap();
  for (int i = 0; i < 5; ++i) EXPECT_EQ(valueOf(slots[i]), i);
}

TEST_F(GcAllocatorAndRoots, RootedRange_MayBeEmpty) {
  const RootedRange nothing(nullptr, 0);
  void* slot = nullptr;
  const RootedRange alsoNothing(&slot, 0);
  RootedHandle root(vorn_box_int(6));
  disturbTheHeap();
  EXPECT_EQ(valueOf(root.get()), 6);
}

TEST_F(GcAllocatorAndRoots, RootedRange_TheSameRangeMayBeRootedTwice) {
  void* slots[2] = {};
  const RootedRange outer(slots, sizeof(slots));
  slots[0] = vorn_box_int(10);
  {
    const RootedRange inner(slots, sizeof(slots));
    slots[1] = vorn_box_int(11);
    disturbTheHeap();
  }
  disturbTheHeap();
  EXPECT_EQ(valueOf(slots[0]), 10);
  EXPECT_EQ(valueOf(slots[1]), 11);
}

TEST_F(GcAllocatorAndRoots, RootedRange_HoldsMixedHandles) {
  void* slots[4] = {};
  const RootedRange root(slots, sizeof(slots));
  slots[0] = vorn_text_new("a bare text");
  slots[1] = vorn_string_new("an object", SIZE_MAX);
  slots[3] = vorn_object_new("ArrayList");
  vorn_collections_ArrayList_add(slots[3], slots[1]);
  disturbTheHeap();
  EXPECT_STREQ(static_cast<const char*>(slots[0]), "a bare text");
  EXPECT_STREQ(vorn_string_text(slots[1]), "an object");
  EXPECT_EQ(vorn_collections_ArrayList_size(slots[3]), 1);
}

TEST_F(GcAllocatorAndRoots, RootsOfAScopeAreReleased) {
  vorn_heap_statistics before;
  vorn_heap_statistics after;
  vorn_heap_get_statistics(&before);
  vorn_heap_collect();
  vorn_heap_get_statistics(&after);
  if (after.collections == before.collections) GTEST_SKIP() << "this heap never collects";
  const int count = onStressHeap() ? 40 : 400;
  constexpr std::size_t kTextBytes = 4000;
  vorn_heap_get_statistics(&before);
  for (int i = 0; i < count; ++i) {
    RootedHandle root(vorn_text_new(std::string(kTextBytes, 'x').c_str()));
    EXPECT_NE(root.get(), nullptr);
  }
  vorn_heap_collect();
  vorn_heap_get_statistics(&after);
  EXPECT_LT(after.bytes_live, before.bytes_live + static_cast<std::size_t>(count) * kTextBytes / 2);
}

TEST_F(GcAllocatorAndRoots, HandleVector_KeepsEveryHandleThroughItsGrowth) {
  const int count = onStressHeap() ? 300 : 5000;
  HandleVector values;
  for (int i = 0; i < count; ++i) {
    RootedHandle box(vorn_box_int(i));
    values->push_back(box.get());
  }
  disturbTheHeap();
  ASSERT_EQ(values->size(), static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) EXPECT_EQ(valueOf((*values)[static_cast<std::size_t>(i)]), i);
}

TEST_F(GcAllocatorAndRoots, HandleVector_FailedGrowthKeepsItsContents) {
  HandleVector values;
  RootedHandle box(vorn_box_int(5));
  values->reserve(4);
  while (values->size() < values->capacity()) values->push_back(box.get());
  const std::size_t size = values->size();
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(values->push_back(box.get()), std::bad_alloc);
  EXPECT_EQ(values->size(), size);
  disturbTheHeap();
  for (void* handle : *values) EXPECT_EQ(valueOf(handle), 5);
}

TEST_F(GcAllocatorAndRoots, HandleVector_SeveralLiveAtOnce) {
  HandleVector first;
  HandleVector second;
  for (int i = 0; i < 40; ++i) {
    RootedHandle box(vorn_box_int(i));
    (i % 2 == 0 ? first : second)->push_back(box.get());
    HandleVector passing;
    passing->push_back(box.get());
  }
  disturbTheHeap();
  for (std::size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(valueOf((*first)[i]), static_cast<std::int64_t>(2 * i));
    EXPECT_EQ(valueOf((*second)[i]), static_cast<std::int64_t>(2 * i + 1));
  }
}

TEST_F(GcAllocatorAndRoots, RootsAreNeitherCopiedNorMoved) {
  static_assert(!std::is_copy_constructible_v<RootedHandle> && !std::is_move_constructible_v<RootedHandle>);
  static_assert(!std::is_copy_constructible_v<RootedRange> && !std::is_move_constructible_v<RootedRange>);
  static_assert(!std::is_copy_constructible_v<HandleVector> && !std::is_move_constructible_v<HandleVector>);
}

}  // namespace
}  // namespace vorn::tests
