// What the natives expect of a table of keys, over both tables.
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "collections/keyed/table_concept.h"
#include "tests/keyed/table_support.h"

namespace vorn::tests {
namespace {

template <class Choice>
class KeyedTableTest : public TableTest<Choice> {
 protected:
  // Keys and values as a walk gives them.
  [[nodiscard]] std::vector<std::pair<std::int64_t, std::int64_t>> walked() const {
    std::vector<std::pair<std::int64_t, std::int64_t>> result;
    auto cursor = this->table().walk();
    while (const auto* const node = cursor.next()) {
      result.emplace_back(static_cast<std::int64_t>(node->key.words[0]), valueOf(node->entry.value));
    }
    return result;
  }
};
using BothTables = ::testing::Types<Hashed, Ordered>;
TYPED_TEST_SUITE(KeyedTableTest, BothTables);

TYPED_TEST(KeyedTableTest, Insert_FindsEveryKeyAndNoOther) {
  for (std::int64_t key = 0; key < 500; ++key) this->put((key * 7) % 500 * 3, key);
  EXPECT_EQ(this->table().count(), 500U);
  for (std::int64_t key = -3; key < 1503; ++key) {
    const auto place = this->table().find(integerCollectionKey(key));
    const bool present = key >= 0 && key < 1500 && key % 3 == 0;
    ASSERT_EQ(place.node != nullptr, present) << key;
    EXPECT_FALSE(place.failed);
  }
}

TYPED_TEST(KeyedTableTest, Replace_ChangesTheEntryAlone) {
  for (std::int64_t key = 0; key < 20; ++key) this->put(key, key);
  const auto before = this->walked();
  this->put(7, 700);
  auto expected = before;
  for (auto& [key, value] : expected) value = key == 7 ? 700 : value;
  EXPECT_EQ(this->walked(), expected);
  EXPECT_EQ(this->table().count(), 20U);
}

TYPED_TEST(KeyedTableTest, ForEach_VisitsWhatAWalkDoes) {
  for (std::int64_t key = 0; key < 100; ++key) this->put((key * 37) % 101, key);
  for (std::int64_t key = 0; key < 100; key += 3) this->remove(key);
  std::vector<std::pair<std::int64_t, std::int64_t>> visited;
  this->table().forEach([&](const NativeCollectionKey& key, const NativeMapEntry& entry) {
    visited.emplace_back(static_cast<std::int64_t>(key.words[0]), valueOf(entry.value));
  });
  EXPECT_EQ(visited, this->walked());
  EXPECT_EQ(visited.size(), this->table().count());
}

TYPED_TEST(KeyedTableTest, Changes_DifferAfterEveryStructuralChangeOnly) {
  this->put(1, 1);
  std::uint64_t before = this->table().changes();
  const auto changed = [&] { return std::exchange(before, this->table().changes()) != this->table().changes(); };
  this->put(1, 2);
  EXPECT_FALSE(changed()) << "replacing";
  this->put(2, 2);
  EXPECT_TRUE(changed()) << "inserting";
  EXPECT_TRUE(this->remove(2));
  EXPECT_TRUE(changed()) << "removing";
  this->table().clear();
  EXPECT_TRUE(changed()) << "clearing";
  EXPECT_EQ(this->table().count(), 0U);
  EXPECT_EQ(this->table().find(integerCollectionKey(1)).node, nullptr);
}

TYPED_TEST(KeyedTableTest, FailedAllocation_LeavesTheElements) {
  for (std::int64_t key = 0; key < 200; ++key) {
    sweepAllocationFailures(
        [&] {
          auto place = this->table().find(integerCollectionKey(key));
          this->table().makeRoom(place, integerCollectionKey(key));
        },
        [&] {
          this->expectWhole();
          EXPECT_EQ(this->table().count(), static_cast<std::uint64_t>(key));
        });
    this->put(key, key);
  }
  EXPECT_EQ(this->table().count(), 200U);
}

TYPED_TEST(KeyedTableTest, RandomOperations_AgreeWithAModel) {
  const int steps = onStressHeap() ? 400 : 20000;
  std::map<std::int64_t, std::int64_t> model;
  Randoms random(41);
  for (int step = 0; step < steps; ++step) {
    const auto key = static_cast<std::int64_t>(random.below(500)) - 250;
    // Phases of growth and of decline.
    if (random.below(10) < (step % 2000 < 1000 ? 3U : 7U)) {
      EXPECT_EQ(this->remove(key), model.erase(key) == 1);
    } else {
      this->put(key, step);
      model[key] = step;
    }
    if (step % 61 == 0) this->expectWhole();
    if (step % 7001 == 7000) {
      this->table().clear();
      model.clear();
    }
  }
  auto elements = this->walked();
  if (TypeParam::hashed) std::sort(elements.begin(), elements.end());
  EXPECT_EQ(elements, (std::vector<std::pair<std::int64_t, std::int64_t>>(model.begin(), model.end())));
}

}  // namespace
}  // namespace vorn::tests
