#include "collections/core/storage/small_buffers.h"

#include <new>
#include <stdexcept>
#include <type_traits>

#include "collections/core/port/roots.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using collections::RootedRange;

// A buffer whose block stays alive although only the test's frame holds it.
template <class Buffer>
struct Rooted {
  Buffer buffer;
  RootedRange root{&buffer, sizeof(buffer)};

  Buffer* operator->() { return &buffer; }
};

class SmallBuffers : public RuntimeTest {};

void fill(SmallPrimitiveBuffer& buffer, std::uint64_t count) {
  buffer.reserve(count);
  for (std::uint64_t i = 0; i < count * buffer.elementSize; ++i) buffer.data[i] = static_cast<unsigned char>(i * 7 + 1);
  buffer.size = count;
}

void expectFilled(const SmallPrimitiveBuffer& buffer, std::uint64_t count) {
  ASSERT_EQ(buffer.size, count);
  for (std::uint64_t i = 0; i < count * buffer.elementSize; ++i) {
    ASSERT_EQ(buffer.data[i], static_cast<unsigned char>(i * 7 + 1)) << "byte " << i;
  }
}

// Expects reserve(n) to throw out of memory or length error and to change nothing.
template <class Buffer>
void expectReserveRefused(Buffer& buffer, std::uint64_t n) {
  const auto data = buffer.data;
  const std::uint64_t size = buffer.size;
  const std::uint64_t capacity = buffer.capacity;
  bool refused = false;
  try {
    buffer.reserve(n);
  } catch (const std::bad_alloc&) {
    refused = true;
  } catch (const std::length_error&) {
    refused = true;
  }
  EXPECT_TRUE(refused) << n;
  EXPECT_EQ(buffer.data, data);
  EXPECT_EQ(buffer.size, size);
  EXPECT_EQ(buffer.capacity, capacity);
}

TEST_F(SmallBuffers, PrimitiveBuffer_StartsEmptyAndInline) {
  const SmallPrimitiveBuffer buffer;
  EXPECT_EQ(buffer.data, buffer.inlineBytes);
  EXPECT_EQ(buffer.size, 0u);
  EXPECT_EQ(buffer.capacity * buffer.elementSize, 128u);
  static_assert(sizeof(buffer.inlineBytes) == 128);
}

TEST_F(SmallBuffers, PrimitiveBuffer_ResetToInlineGivesTheInlineCapacityOfTheWidth) {
  Rooted<SmallPrimitiveBuffer> buffer;
  for (const std::uint64_t width : {8, 4, 2, 1}) {
    fill(buffer.buffer, 200);
    EXPECT_NE(buffer->data, buffer->inlineBytes);
    buffer->resetToInline(width);
    EXPECT_EQ(buffer->data, buffer->inlineBytes);
    EXPECT_EQ(buffer->size, 0u);
    EXPECT_EQ(buffer->capacity, 128 / width);
    EXPECT_EQ(buffer->elementSize, width);
  }
}

TEST_F(SmallBuffers, PrimitiveBuffer_ReserveWithinCapacityChangesNothing) {
  for (const std::uint64_t width : {1, 2, 4, 8}) {
    Rooted<SmallPrimitiveBuffer> buffer;
    buffer->resetToInline(width);
    fill(buffer.buffer, 128 / width);
    for (const std::uint64_t n : {std::uint64_t{0}, std::uint64_t{1}, 128 / width}) {
      buffer->reserve(n);
      EXPECT_EQ(buffer->data, buffer->inlineBytes);
      EXPECT_EQ(buffer->capacity, 128 / width);
    }
    expectFilled(buffer.buffer, 128 / width);
  }
}

TEST_F(SmallBuffers, PrimitiveBuffer_ReserveDoublesFromTheInlineCapacityAndKeepsTheElements) {
  for (const std::uint64_t width : {1, 2, 4, 8}) {
    const std::uint64_t inlineCapacity = 128 / width;
    Rooted<SmallPrimitiveBuffer> buffer;
    buffer->resetToInline(width);
    fill(buffer.buffer, inlineCapacity);
    buffer->reserve(inlineCapacity + 1);
    EXPECT_EQ(buffer->capacity, inlineCapacity * 2);
    EXPECT_NE(buffer->data, buffer->inlineBytes);
    EXPECT_EQ(buffer->elementSize, width);
    expectFilled(buffer.buffer, inlineCapacity);
    unsigned char* const block = buffer->data;
    buffer->reserve(inlineCapacity * 2);
    EXPECT_EQ(buffer->data, block);
    buffer->reserve(inlineCapacity * 4 + 1);
    EXPECT_EQ(buffer->capacity, inlineCapacity * 8);
    expectFilled(buffer.buffer, inlineCapacity);
  }
}

TEST_F(SmallBuffers, PrimitiveBuffer_CapacityZeroGrowsFromOne) {
  const std::pair<std::uint64_t, std::uint64_t> steps[] = {{1, 1}, {2, 2}, {3, 4}, {5, 8}, {9, 16}};
  for (const auto& [wanted, expected] : steps) {
    Rooted<SmallPrimitiveBuffer> buffer;
    buffer->resetToInline(4);
    buffer->capacity = 0;
    buffer->reserve(wanted);
    EXPECT_EQ(buffer->capacity, expected);
  }
}

TEST_F(SmallBuffers, PrimitiveBuffer_OnlyTheSizeElementsNeedSurviveGrowth) {
  Rooted<SmallPrimitiveBuffer> buffer;
  buffer->resetToInline(2);
  fill(buffer.buffer, 3);
  buffer->reserve(1000);
  EXPECT_EQ(buffer->capacity, 1024u);
  expectFilled(buffer.buffer, 3);
}

TEST_F(SmallBuffers, PrimitiveBuffer_SizesThatCannotBeHeldAreRefusedAndChangeNothing) {
  for (const std::uint64_t width : {1, 2, 4, 8}) {
    Rooted<SmallPrimitiveBuffer> buffer;
    buffer->resetToInline(width);
    fill(buffer.buffer, 5);
    expectReserveRefused(buffer.buffer, std::numeric_limits<std::uint64_t>::max());
    expectReserveRefused(buffer.buffer, (std::uint64_t{1} << 63) + 1);
    expectReserveRefused(buffer.buffer, std::uint64_t{1} << 63);
    expectReserveRefused(buffer.buffer, (std::uint64_t{1} << 63) / width);
    expectFilled(buffer.buffer, 5);
    fill(buffer.buffer, 300);
    expectReserveRefused(buffer.buffer, std::numeric_limits<std::uint64_t>::max() - 1);
    expectFilled(buffer.buffer, 300);
  }
}

TEST_F(SmallBuffers, PrimitiveBuffer_ByteCountsThatWrapAreRefused) {
  Rooted<SmallPrimitiveBuffer> buffer;
  buffer->resetToInline(8);
  fill(buffer.buffer, 16);
  expectReserveRefused(buffer.buffer, std::uint64_t{1} << 61);
  expectReserveRefused(buffer.buffer, (std::uint64_t{1} << 61) + 2);
  expectReserveRefused(buffer.buffer, std::uint64_t{1} << 62);
  expectFilled(buffer.buffer, 16);
}

TEST_F(SmallBuffers, PrimitiveBuffer_FailedAllocationChangesNothing) {
  for (const std::uint64_t count : {128, 256}) {
    Rooted<SmallPrimitiveBuffer> buffer;
    fill(buffer.buffer, count);
    unsigned char* const data = buffer->data;
    vorn_heap_fail_allocation(0);
    EXPECT_THROW(buffer->reserve(count + 1), std::bad_alloc);
    EXPECT_NE(vorn_heap_failure_happened(), 0);
    EXPECT_EQ(buffer->data, data);
    EXPECT_EQ(buffer->capacity, count);
    expectFilled(buffer.buffer, count);
    buffer->reserve(count + 1);
    EXPECT_EQ(buffer->capacity, count * 2);
    expectFilled(buffer.buffer, count);
  }
}

TEST_F(SmallBuffers, PrimitiveBuffer_BlocksAreNotScannedForHandles) {
  vorn_heap_statistics before;
  vorn_heap_statistics after;
  vorn_heap_get_statistics(&before);
  vorn_heap_collect();
  vorn_heap_get_statistics(&after);
  if (after.collections == before.collections) GTEST_SKIP() << "this heap never collects";

  const std::uint64_t count = onStressHeap() ? 64 : 512;
  constexpr std::size_t kTextBytes = 2000;
  Rooted<SmallPrimitiveBuffer> buffer;
  buffer->resetToInline(8);
  buffer->reserve(count);
  vorn_heap_get_statistics(&before);
  for (std::uint64_t i = 0; i < count; ++i) {
    void* made = vorn_text_new(std::string(kTextBytes, 'x').c_str());
    std::memcpy(buffer->data + i * 8, &made, sizeof(made));
    buffer->size = i + 1;
  }
  vorn_heap_collect();
  vorn_heap_get_statistics(&after);
  EXPECT_LT(after.bytes_live, before.bytes_live + count * kTextBytes / 2) << "raw numbers kept texts alive";
}

TEST_F(SmallBuffers, BuffersAreNeitherCopiedNorMoved) {
  static_assert(!std::is_copy_constructible_v<SmallPrimitiveBuffer> &&
                !std::is_copy_assignable_v<SmallPrimitiveBuffer>);
  static_assert(!std::is_move_constructible_v<SmallObjectVector> && !std::is_move_assignable_v<SmallObjectVector>);
  static_assert(!std::is_copy_constructible_v<ListData> && !std::is_move_constructible_v<ListData>);
}

using ObjectVector = Rooted<SmallObjectVector>;

void pushIntegers(SmallObjectVector& vector, int count) {
  for (int i = 0; i < count; ++i) vector.pushBack(integer("Int", i));
}

std::vector<std::int64_t> integersIn(const SmallObjectVector& vector) {
  std::vector<std::int64_t> result;
  for (std::uint64_t i = 0; i < vector.size; ++i) {
    std::int64_t value = -1;
    EXPECT_NE(vorn_unbox_integer(vector.data[i], &value), 0) << "slot " << i;
    result.push_back(value);
  }
  return result;
}

void expectSlackNull(const SmallObjectVector& vector) {
  for (std::uint64_t i = vector.size; i < vector.capacity; ++i) EXPECT_EQ(vector.data[i], nullptr) << "slot " << i;
}

TEST_F(SmallBuffers, ObjectVector_StartsEmptyWithFourInlineSlots) {
  const SmallObjectVector vector;
  EXPECT_EQ(vector.data, vector.inlineSlots);
  EXPECT_EQ(vector.size, 0u);
  EXPECT_EQ(vector.capacity, 4u);
  expectSlackNull(vector);
}

TEST_F(SmallBuffers, ObjectVector_GrowsByDoublingAndKeepsItsHandles) {
  ObjectVector vector;
  pushIntegers(vector.buffer, 4);
  EXPECT_EQ(vector->data, vector->inlineSlots);
  pushIntegers(vector.buffer, 1);
  EXPECT_NE(vector->data, vector->inlineSlots);
  EXPECT_EQ(vector->capacity, 8u);
  expectSlackNull(vector.buffer);
  EXPECT_EQ(integersIn(vector.buffer), (std::vector<std::int64_t>{0, 1, 2, 3, 0}));
  vector->reserve(8);
  EXPECT_EQ(vector->capacity, 8u);
  vector->reserve(33);
  EXPECT_EQ(vector->capacity, 64u);
  expectSlackNull(vector.buffer);
  EXPECT_EQ(integersIn(vector.buffer), (std::vector<std::int64_t>{0, 1, 2, 3, 0}));
}

TEST_F(SmallBuffers, ObjectVector_CapacityZeroGrowsFromFour) {
  const std::pair<std::uint64_t, std::uint64_t> steps[] = {{1, 4}, {4, 4}, {5, 8}, {17, 32}};
  for (const auto& [wanted, expected] : steps) {
    ObjectVector vector;
    vector->capacity = 0;
    vector->reserve(wanted);
    EXPECT_EQ(vector->capacity, expected);
    expectSlackNull(vector.buffer);
  }
}

TEST_F(SmallBuffers, ObjectVector_ReserveWithinCapacityChangesNothing) {
  ObjectVector vector;
  pushIntegers(vector.buffer, 3);
  for (const std::uint64_t n : {0, 1, 4}) vector->reserve(n);
  EXPECT_EQ(vector->data, vector->inlineSlots);
  EXPECT_EQ(vector->capacity, 4u);
}

TEST_F(SmallBuffers, ObjectVector_BlocksAreScannedForHandles) {
  ObjectVector vector;
  const int count = onStressHeap() ? 40 : 400;
  for (int i = 0; i < count; ++i) vector->pushBack(integer("Int", i));
  vorn_heap_collect();
  for (int i = 0; i < count; ++i) integer("Long", -1);
  std::vector<std::int64_t> expected;
  for (int i = 0; i < count; ++i) expected.push_back(i);
  EXPECT_EQ(integersIn(vector.buffer), expected);
}

TEST_F(SmallBuffers, ObjectVector_InsertAtMovesTheRestUp) {
  ObjectVector vector;
  vector->insertAt(0, integer("Int", 30));
  vector->insertAt(0, integer("Int", 10));
  vector->insertAt(1, integer("Int", 20));
  vector->insertAt(3, integer("Int", 40));
  EXPECT_EQ(vector->capacity, 4u);
  vector->insertAt(2, integer("Int", 25));
  EXPECT_EQ(vector->capacity, 8u);
  EXPECT_EQ(integersIn(vector.buffer), (std::vector<std::int64_t>{10, 20, 25, 30, 40}));
  expectSlackNull(vector.buffer);
}

TEST_F(SmallBuffers, ObjectVector_EraseAtMovesTheRestDownAndNullsTheVacatedSlot) {
  ObjectVector vector;
  pushIntegers(vector.buffer, 6);
  vector->eraseAt(2);
  EXPECT_EQ(integersIn(vector.buffer), (std::vector<std::int64_t>{0, 1, 3, 4, 5}));
  expectSlackNull(vector.buffer);
  vector->eraseAt(4);
  vector->eraseAt(0);
  EXPECT_EQ(integersIn(vector.buffer), (std::vector<std::int64_t>{1, 3, 4}));
  expectSlackNull(vector.buffer);
}

TEST_F(SmallBuffers, ObjectVector_EraseAtOrPastTheEndIsIgnored) {
  ObjectVector vector;
  vector->eraseAt(0);
  EXPECT_EQ(vector->size, 0u);
  pushIntegers(vector.buffer, 3);
  for (const std::uint64_t index : {std::uint64_t{3}, std::uint64_t{4}, std::numeric_limits<std::uint64_t>::max()}) {
    vector->eraseAt(index);
    EXPECT_EQ(integersIn(vector.buffer), (std::vector<std::int64_t>{0, 1, 2})) << index;
  }
}

TEST_F(SmallBuffers, ObjectVector_ClearNullsTheUsedSlotsAndKeepsTheCapacity) {
  ObjectVector vector;
  pushIntegers(vector.buffer, 9);
  void** const block = vector->data;
  vector->clear();
  EXPECT_EQ(vector->size, 0u);
  EXPECT_EQ(vector->capacity, 16u);
  EXPECT_EQ(vector->data, block);
  expectSlackNull(vector.buffer);
}

TEST_F(SmallBuffers, ObjectVector_SizesThatCannotBeHeldAreRefusedAndChangeNothing) {
  for (const int count : {3, 5}) {
    ObjectVector vector;
    pushIntegers(vector.buffer, count);
    const std::vector<std::int64_t> before = integersIn(vector.buffer);
    for (const int shift : {60, 61, 62, 63}) expectReserveRefused(vector.buffer, std::uint64_t{1} << shift);
    expectReserveRefused(vector.buffer, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(integersIn(vector.buffer), before);
    expectSlackNull(vector.buffer);
  }
}

TEST_F(SmallBuffers, ObjectVector_FailedAllocationChangesNothing) {
  ObjectVector vector;
  pushIntegers(vector.buffer, 4);
  Handle extra = integer("Int", 99);
  const auto expectUnchanged = [&] {
    EXPECT_NE(vorn_heap_failure_happened(), 0);
    EXPECT_EQ(vector->data, vector->inlineSlots);
    EXPECT_EQ(vector->capacity, 4u);
    EXPECT_EQ(integersIn(vector.buffer), (std::vector<std::int64_t>{0, 1, 2, 3}));
  };
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(vector->reserve(5), std::bad_alloc);
  expectUnchanged();
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(vector->pushBack(extra), std::bad_alloc);
  expectUnchanged();
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(vector->insertAt(1, extra), std::bad_alloc);
  expectUnchanged();
}

TEST_F(SmallBuffers, Mirrors_StartEmptyWithTheirInlineCapacity) {
  const SmallMirror<long long, 16> integers;
  EXPECT_EQ(integers.data, integers.inlineValues);
  EXPECT_EQ(integers.size, 0u);
  EXPECT_EQ(integers.capacity, 16u);
  const SmallMirror<double, 8> floats;
  EXPECT_EQ(floats.data, floats.inlineValues);
  EXPECT_EQ(floats.size, 0u);
  EXPECT_EQ(floats.capacity, 8u);
}

TEST_F(SmallBuffers, Objects_GrowthLeavesNoHandleInTheInlineSlots) {
  Rooted<SmallObjectVector> vector;
  const Handle word = string("word");
  for (int i = 0; i < 4; ++i) vector->pushBack(word);
  EXPECT_EQ(vector->inlineSlots[3], word.get());
  vector->pushBack(word);
  for (const void* slot : vector->inlineSlots) EXPECT_EQ(slot, nullptr);
  for (std::uint64_t i = 0; i < 5; ++i) EXPECT_EQ(vector->data[i], word.get());
}

TEST_F(SmallBuffers, Objects_AssignReplacesAllAndNullsTheRest) {
  Rooted<SmallObjectVector> vector;
  const Handle one = string("one");
  const Handle two = string("two");
  for (int i = 0; i < 7; ++i) vector->pushBack(one);
  void* const two_[] = {two.get(), two.get()};
  vector->assign(two_, 2);
  EXPECT_EQ(vector->size, 2U);
  EXPECT_EQ(vector->data[1], two.get());
  for (std::uint64_t i = 2; i < vector->capacity; ++i) EXPECT_EQ(vector->data[i], nullptr);
  vector->assign(nullptr, 0);
  EXPECT_EQ(vector->size, 0U);
  EXPECT_EQ(vector->data[0], nullptr);
}

}  // namespace
}  // namespace vorn::tests
