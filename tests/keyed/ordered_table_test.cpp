// The ordered table by itself: order, and balance through all shapes of insertion and removal. What both tables have in
// common stands in keyed_table_test.cpp.
#include "collections/keyed/ordered_table.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "tests/keyed/table_support.h"

namespace vorn::tests {
namespace {

using Table = collections::OrderedTable;

using OrderedTableTest = TableTest<Ordered>;

TEST_F(OrderedTableTest, NewTable_IsEmptyAndHasNoMemory) {
  EXPECT_EQ(table().count(), 0U);
  EXPECT_EQ(table().first(), nullptr);
  EXPECT_EQ(table().pool().firstBlock(), nullptr);
  EXPECT_EQ(table().find(integerCollectionKey(1)).node, nullptr);
}

TEST_F(OrderedTableTest, Insert_AscendingDescendingAndMixed_StaysSortedAndBalanced) {
  for (const int shape : {0, 1, 2}) {
    table().clear();
    for (std::int64_t i = 0; i < 300; ++i) {
      put(shape == 0 ? i : shape == 1 ? 299 - i : (i * 101) % 300);
      expectWhole();
    }
    std::vector<std::int64_t> expected(300);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(keys(), expected);
  }
}

TEST_F(OrderedTableTest, NegativeAndExtremeIntegers_AreOrderedByValue) {
  constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  for (const std::int64_t key : {kMax, std::int64_t{0}, kMin, std::int64_t{-1}, std::int64_t{1}}) put(key);
  EXPECT_EQ(keys(), (std::vector<std::int64_t>{kMin, -1, 0, 1, kMax}));
}

// Every way to empty a small tree: each order of removal meets other cases of rebalancing.
TEST_F(OrderedTableTest, Remove_EveryOrderOfSevenKeys_StaysWhole) {
  const int size = onStressHeap() ? 5 : 7;
  std::vector<std::int64_t> order(static_cast<std::size_t>(size));
  std::iota(order.begin(), order.end(), 0);
  do {
    for (std::int64_t key = 0; key < size; ++key) put(key);
    std::vector<std::int64_t> left = keys();
    for (const std::int64_t key : order) {
      ASSERT_TRUE(remove(key));
      std::erase(left, key);
      ASSERT_EQ(keys(), left);
      expectWhole();
    }
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_EQ(table().root(), nullptr);
}

TEST_F(OrderedTableTest, Remove_FreeNodesAreReusedBeforeNewBlocks) {
  for (std::int64_t key = 0; key < 50; ++key) put(key);
  const auto* const last = table().pool().lastBlock();
  const std::uint32_t used = last->used;
  for (std::int64_t key = 0; key < 50; ++key) EXPECT_TRUE(remove(key));
  expectWhole();
  for (std::int64_t key = 0; key < 50; ++key) put(-key);
  EXPECT_EQ(table().pool().lastBlock(), last);
  EXPECT_EQ(last->used, used);
}

TEST_F(OrderedTableTest, Clear_DropsTheNodes) {
  for (std::int64_t key = 0; key < 50; ++key) put(key);
  table().clear();
  EXPECT_EQ(table().count(), 0U);
  EXPECT_EQ(keys(), std::vector<std::int64_t>{});
  EXPECT_EQ(table().pool().firstBlock(), nullptr);
}

}  // namespace
}  // namespace vorn::tests
