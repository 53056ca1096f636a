// The ordered table by itself: order, and balance through all shapes of insertion and removal. What both tables have in
// common stands in keyed_table_test.cpp.
#include "collections/keyed/ordered_table.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "collections/core/port/keys.h"
#include "tests/keyed/table_support.h"

namespace vorn::tests {
namespace {

using Table = collections::OrderedTable;

using OrderedTableTest = TableTest<Ordered>;

TEST_F(OrderedTableTest, NewTable_IsEmptyAndHasNoMemory) {
  EXPECT_EQ(table().count(), 0U);
  EXPECT_EQ(table().tree().links(), nullptr);
  EXPECT_EQ(table().chunks().capacity(), 0U);
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
  EXPECT_EQ(table().tree().root(), 0U);
  EXPECT_EQ(table().tree().first(), 0U);
}

TEST_F(OrderedTableTest, Remove_FreePlacesAreReusedBeforeNewOnes) {
  for (std::int64_t key = 0; key < 50; ++key) put(key);
  const std::uint32_t used = table().tree().used();
  const std::uint64_t capacity = table().chunks().capacity();
  for (std::int64_t key = 0; key < 50; ++key) EXPECT_TRUE(remove(key));
  expectWhole();
  for (std::int64_t key = 0; key < 50; ++key) put(-key);
  EXPECT_EQ(table().tree().used(), used);
  EXPECT_EQ(table().chunks().capacity(), capacity);
}

TEST_F(OrderedTableTest, Clear_DropsTheNodes) {
  for (std::int64_t key = 0; key < 50; ++key) put(key);
  table().clear();
  EXPECT_EQ(table().count(), 0U);
  EXPECT_EQ(keys(), std::vector<std::int64_t>{});
  EXPECT_EQ(table().tree().links(), nullptr);
  EXPECT_EQ(table().chunks().capacity(), 0U);
}

// The extreme numbers are those that the words of an empty or a free place could be taken for.
TEST_F(OrderedTableTest, Find_ExtremeIntegers_OnlyWhenPresent) {
  constexpr std::int64_t kExtremes[] = {std::numeric_limits<std::int64_t>::min(), -1, 0, 1,
                                        std::numeric_limits<std::int64_t>::max()};
  const auto expectFound = [&](std::int64_t key, bool present) {
    EXPECT_EQ(table().findInteger(key) != nullptr, present) << key;
    EXPECT_EQ(table().find(integerCollectionKey(key)).node, table().findInteger(key)) << key;
  };
  for (const std::int64_t key : kExtremes) expectFound(key, false);
  put(17);
  for (const std::int64_t key : kExtremes) {
    expectFound(key, false);
    put(key);
    expectFound(key, true);
  }
  for (const std::int64_t key : kExtremes) {
    remove(key);
    expectFound(key, false);
  }
}

// ---- The sorts of keys -----------------------------------------------------------------------------------------------

// Texts as they stand in the table. Borrowed by its keys, so that they must outlive them.
class TextsInOrder : public OrderedTableTest {
 protected:
  void putText(std::string_view text) { put(makeNativeStringCollectionKey(text), nullptr); }
  [[nodiscard]] bool has(std::string_view text) const {
    return table().find(makeNativeStringCollectionKey(text)).node != nullptr;
  }
  [[nodiscard]] std::vector<std::string> texts() const {
    std::vector<std::string> result;
    table().forEach([&](const NativeCollectionKey& key, const NativeMapEntry&) { result.emplace_back(key.text()); });
    return result;
  }
};

// Around the eight bytes that the order word has and the sixteen that a key has, with bytes that a signed comparison
// would put elsewhere and zeros that look like an end.
const std::vector<std::string>& hardTexts() {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> result;
    for (const std::size_t length : {0, 1, 7, 8, 9, 15, 16, 17, 40}) {
      const std::string stem(length, 'a');
      for (const char* end : {"", "b", "\x7f", "\x80", "\xff"}) result.push_back(stem + end);
      result.push_back(stem + std::string(1, '\0'));
      result.push_back(stem + std::string(2, '\0') + "a");
    }
    std::sort(result.begin(), result.end());
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
  }();
  return texts;
}

TEST_F(TextsInOrder, HardTexts_AreFoundAndAscendByBytes) {
  const std::vector<std::string>& texts = hardTexts();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string& text = texts[i * 37 % texts.size()];
    EXPECT_FALSE(has(text)) << text;
    putText(text);
    EXPECT_TRUE(has(text)) << text;
  }
  EXPECT_EQ(table().sort(), collections::KeySort::Text);
  EXPECT_EQ(this->texts(), texts);
  EXPECT_FALSE(has("aaaaaaaaa?"));
}

TEST_F(TextsInOrder, AmongNumbers_AreFoundAndStandAfterThem) {
  const std::vector<std::string>& texts = hardTexts();
  for (std::int64_t i = 0; i < static_cast<std::int64_t>(texts.size()); ++i) {
    putText(texts[static_cast<std::size_t>(i)]);
    put(i);
    expectWhole();
  }
  EXPECT_EQ(table().sort(), collections::KeySort::Mixed);
  for (std::int64_t i = 0; i < static_cast<std::int64_t>(texts.size()); ++i) {
    EXPECT_TRUE(has(texts[static_cast<std::size_t>(i)]));
    EXPECT_NE(table().findInteger(i), nullptr);
    EXPECT_EQ(table().find(integerCollectionKey(i)).node, table().findInteger(i));
    EXPECT_EQ(table().findInteger(-1 - i), nullptr);
  }
}

TEST_F(TextsInOrder, ANumberInATableOfTexts_IsAbsent) {
  putText("text");
  // The number that stands for the text in the tree.
  const std::int64_t word = collections::orderWordOf(makeNativeStringCollectionKey("text"));
  for (const std::int64_t number : {word, std::int64_t{0}}) {
    EXPECT_EQ(table().findInteger(number), nullptr);
    EXPECT_EQ(table().find(integerCollectionKey(number)).node, nullptr);
  }
}

TEST_F(TextsInOrder, EmptiedTable_TakesTheSortOfItsNextKey) {
  put(1);
  putText("text");
  ASSERT_EQ(table().sort(), collections::KeySort::Mixed);
  remove(1);
  remove(makeNativeStringCollectionKey("text"));
  putText("text");
  EXPECT_EQ(table().sort(), collections::KeySort::Text);
  table().clear();
  put(1);
  EXPECT_EQ(table().sort(), collections::KeySort::Integer);
}

}  // namespace
}  // namespace vorn::tests
