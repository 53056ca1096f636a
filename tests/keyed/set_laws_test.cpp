// What holds for both classes of set.
#include <algorithm>
#include <limits>
#include <stdexcept>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_names.h"
#include "tests/keyed/table_support.h"
#include "tests/support/error_texts.h"

namespace vorn::tests {
namespace {

constexpr const char* kIndexError = error_texts::kIndexOutOfBounds;

class SetLaws : public SetTest {};
INSTANTIATE_SET_TESTS(SetLaws);

TEST_P(SetLaws, NewSet_IsEmpty) {
  const Handle set = object(type());
  EXPECT_EQ(vorn_collections_HashSet_size(set), 0);
  EXPECT_EQ(sizeField(set), 0);
  EXPECT_EQ(getSetData(set)->synchronized, synchronised());
  EXPECT_FALSE(vorn_collections_HashSet_operator_in(set, nullptr));
  EXPECT_FALSE(vorn_collections_HashSet_remove(set, number(1)));
  EXPECT_EQ(vorn_collections_HashSet_count(set, number(1)), 0);
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, NullSet_EveryNativeIsNeutral) {
  const Handle value = number(1);
  vorn_collections_HashSet_add(nullptr, value);
  EXPECT_FALSE(vorn_collections_HashSet_remove(nullptr, value));
  EXPECT_FALSE(vorn_collections_HashSet_operator_in(nullptr, value));
  EXPECT_EQ(vorn_collections_HashSet_count(nullptr, value), 0);
  EXPECT_EQ(vorn_collections_HashSet_operator_index(nullptr, 0), nullptr);
  vorn_collections_HashSet_clear(nullptr);
  vorn_collections_HashSet_reserve(nullptr, 10);
  EXPECT_EQ(vorn_collections_HashSet_size(nullptr), 0);
  EXPECT_NOTHING_RAISED();
}

TEST_P(SetLaws, NullSet_ItemsAreAnEmptyArrayList) {
  const Handle items = vorn_collections_HashSet_items(nullptr);
  ASSERT_NE(items.get(), nullptr);
  EXPECT_EQ(shortTypeName(vorn_type_name(items)), "ArrayList");
  EXPECT_EQ(vorn_collections_ArrayList_size(items), 0);
}

TEST_P(SetLaws, Add_MakesMembers) {
  const Handle set = countingSet(type(), 50);
  EXPECT_EQ(vorn_collections_HashSet_size(set), 50);
  EXPECT_EQ(sizeField(set), 50);
  for (int i = -10; i < 60; ++i) {
    const bool member = i >= 0 && i < 50;
    EXPECT_EQ(vorn_collections_HashSet_operator_in(set, integer("Long", i)), member);
    EXPECT_EQ(vorn_collections_HashSet_count(set, floating("Double", i)), member ? 1 : 0);
  }
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, Add_EqualValue_ReplacesTheHandleInPlace) {
  const Handle set = countingSet(type(), 5);
  std::vector<void*> expected = elementsOfSet(set);
  const Handle again = floating("Double", 3.0);
  *std::find_if(expected.begin(), expected.end(), [](void* element) { return valueOf(element) == 3; }) = again;
  vorn_collections_HashSet_add(set, again);
  EXPECT_EQ(elementsOfSet(set), expected);
  EXPECT_EQ(vorn_collections_HashSet_size(set), 5);
  bool indexed = false;
  for (long long i = 0; i < 5; ++i) indexed = indexed || vorn_collections_HashSet_operator_index(set, i) == again.get();
  EXPECT_TRUE(indexed);
  bool listedAgain = false;
  for (const Handle& element : listed(vorn_collections_HashSet_items(set))) {
    listedAgain = listedAgain || element.get() == again.get();
  }
  EXPECT_TRUE(listedAgain);
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, NullElement_IsAMemberLikeAnyOther) {
  const Handle set = countingSet(type(), 3);
  EXPECT_FALSE(vorn_collections_HashSet_operator_in(set, nullptr));
  vorn_collections_HashSet_add(set, nullptr);
  vorn_collections_HashSet_add(set, nullptr);
  EXPECT_EQ(vorn_collections_HashSet_size(set), 4);
  EXPECT_TRUE(vorn_collections_HashSet_operator_in(set, nullptr));
  EXPECT_EQ(vorn_collections_HashSet_count(set, nullptr), 1);
  EXPECT_EQ(vorn_collections_HashSet_operator_index(set, 3), nullptr);
  EXPECT_EQ(listed(vorn_collections_HashSet_items(set)).size(), 4U);
  EXPECT_NOTHING_RAISED();
  EXPECT_SET_AT_REST(set);
  EXPECT_TRUE(vorn_collections_HashSet_remove(set, nullptr));
  EXPECT_FALSE(vorn_collections_HashSet_remove(set, nullptr));
  EXPECT_EQ(sizeField(set), 3);
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, Remove_TakesMembersOnly) {
  const Handle set = countingSet(type(), 20);
  for (int i = 0; i < 20; i += 2) EXPECT_TRUE(vorn_collections_HashSet_remove(set, number(i)));
  for (int i = 0; i < 20; i += 2) EXPECT_FALSE(vorn_collections_HashSet_remove(set, number(i)));
  EXPECT_EQ(vorn_collections_HashSet_size(set), 10);
  EXPECT_EQ(sizeField(set), 10);
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, Index_WalksInIterationOrder) {
  const Handle set = countingSet(type(), 30);
  for (int i = 0; i < 30; i += 7) vorn_collections_HashSet_remove(set, number(i));
  const std::vector<void*> elements = elementsOfSet(set);
  const auto size = static_cast<long long>(elements.size());
  for (long long i = 0; i < size; ++i) {
    EXPECT_EQ(vorn_collections_HashSet_operator_index(set, i), elements[static_cast<std::size_t>(i)]);
    EXPECT_EQ(vorn_collections_HashSet_operator_index(set, i - size), elements[static_cast<std::size_t>(i)]);
  }
  EXPECT_EQ(vorn_collections_HashSet_operator_index(set, -1), elements.back());
  EXPECT_NOTHING_RAISED();
}

TEST_P(SetLaws, Index_OutsideTheSet_RaisesUnlocked) {
  constexpr long long kMin = std::numeric_limits<long long>::min();
  constexpr long long kMax = std::numeric_limits<long long>::max();
  const Handle set = countingSet(type(), 3);
  for (const long long index : {3LL, 4LL, -4LL, -5LL, kMin, kMax}) {
    EXPECT_EQ(vorn_collections_HashSet_operator_index(set, index), nullptr);
    EXPECT_RAISED(kIndexError);
    EXPECT_SET_AT_REST(set);
  }
  const Handle empty = object(type());
  for (const long long index : {0LL, -1LL, kMin}) {
    EXPECT_EQ(vorn_collections_HashSet_operator_index(empty, index), nullptr);
    EXPECT_RAISED(kIndexError);
  }
}

TEST_P(SetLaws, Items_AreAnArrayListInIterationOrder) {
  const Handle set = object(type());
  for (int i = 0; i < 20; ++i) vorn_collections_HashSet_add(set, string("element " + std::to_string(i)));
  const Handle items = vorn_collections_HashSet_items(set);
  EXPECT_EQ(shortTypeName(vorn_type_name(items)), "ArrayList");
  const std::vector<void*> elements = elementsOfSet(set);
  const std::vector<Handle> handles = listed(items);
  ASSERT_EQ(handles.size(), elements.size());
  for (std::size_t i = 0; i < elements.size(); ++i) EXPECT_EQ(handles[i].get(), elements[i]);
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, Items_OfIntegersAreTheirValues) {
  const Handle set = countingSet(type(), 10);
  std::vector<long long> values = listedIntegers(vorn_collections_HashSet_items(set));
  std::sort(values.begin(), values.end());
  EXPECT_EQ(values, (std::vector<long long>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
  const Handle empty = object(type());
  EXPECT_EQ(vorn_collections_ArrayList_size(vorn_collections_HashSet_items(empty)), 0);
}

TEST_P(SetLaws, OperatorIndex_AfterRemovals_CountsWhatIsLeft) {
  const Handle set = countingSet(type(), 60);
  for (const int gone : {0, 1, 5, 20, 21, 22, 23, 40, 58, 59}) vorn_collections_HashSet_remove(set, number(gone));
  const std::vector<void*> left = elementsOfSet(set);
  ASSERT_EQ(left.size(), 50U);
  for (long long i = 0; i < 50; ++i) {
    EXPECT_EQ(vorn_collections_HashSet_operator_index(set, i), left[static_cast<std::size_t>(i)]);
    EXPECT_EQ(vorn_collections_HashSet_operator_index(set, i - 50), left[static_cast<std::size_t>(i)]);
  }
  EXPECT_EQ(vorn_collections_HashSet_operator_index(set, 50), nullptr);
  EXPECT_RAISED("IndexException: Index out of bounds");
  EXPECT_EQ(vorn_collections_HashSet_operator_index(set, -51), nullptr);
  EXPECT_RAISED("IndexException: Index out of bounds");
}

TEST_P(SetLaws, Drain_FromEitherEnd_GivesTheOrderOfInsertionOrItsReverse) {
  const int count = onStressHeap() ? 100 : 2000;
  for (const int end : {0, -1}) {
    const Handle set = countingSet(type(), count);
    for (int i = 0; i < count; ++i) {
      void* const element = vorn_collections_HashSet_operator_index(set, end);
      ASSERT_EQ(valueOf(element), end == 0 ? i : count - 1 - i);
      ASSERT_TRUE(vorn_collections_HashSet_remove(set, element));
    }
    EXPECT_SET_AT_REST(set);
  }
}

TEST_P(SetLaws, Items_OfCharactersLackWhatIsNoScalar_AndRaiseForIt) {
  const Handle set = object(type());
  for (const int value : {0x61, 0xD800, 0x62}) vorn_collections_HashSet_add(set, integer("Char", value));
  const Handle items = vorn_collections_HashSet_items(set);
  EXPECT_EQ(takeErrors().size(), 1U);
  EXPECT_EQ(vorn_collections_ArrayList_size(items), 2);
  EXPECT_EQ(vorn_collections_HashSet_size(set), 3);
}

TEST_P(SetLaws, Clear_Empties) {
  const Handle set = countingSet(type(), 20);
  vorn_collections_HashSet_clear(set);
  EXPECT_EQ(vorn_collections_HashSet_size(set), 0);
  EXPECT_EQ(sizeField(set), 0);
  EXPECT_FALSE(vorn_collections_HashSet_operator_in(set, number(1)));
  EXPECT_SET_AT_REST(set);
  vorn_collections_HashSet_add(set, number(1));
  EXPECT_EQ(sizeField(set), 1);
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, Reserve_MakesBucketsForPositiveCountsOnly) {
  const Handle set = countingSet(type(), 20);
  const std::vector<void*> before = elementsOfSet(set);
  const std::uint64_t buckets = getSetData(set)->table.bucketCount();
  for (const long long count : {0LL, -1LL, std::numeric_limits<long long>::min()}) {
    vorn_collections_HashSet_reserve(set, count);
    EXPECT_EQ(getSetData(set)->table.bucketCount(), buckets);
  }
  vorn_collections_HashSet_reserve(set, 1000);
  EXPECT_EQ(getSetData(set)->table.bucketCount(), 197U);
  EXPECT_EQ(elementsOfSet(set), before);
  EXPECT_THROW(vorn_collections_HashSet_reserve(set, std::numeric_limits<long long>::max()), std::length_error);
  EXPECT_EQ(elementsOfSet(set), before);
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, SetMayHoldItself) {
  const Handle set = object(type());
  vorn_collections_HashSet_add(set, set);
  EXPECT_TRUE(vorn_collections_HashSet_operator_in(set, set));
  EXPECT_EQ(vorn_collections_HashSet_operator_index(set, 0), set.get());
  EXPECT_TRUE(vorn_collections_HashSet_remove(set, set));
  EXPECT_SET_AT_REST(set);
}

TEST_P(SetLaws, ErrorPendingBefore_KeyedNativesAreNeutral) {
  const Handle set = countingSet(type(), 3);
  const std::vector<void*> before = elementsOfSet(set);
  vorn_raise("Earlier", "error");
  vorn_collections_HashSet_add(set, string("new"));
  vorn_collections_HashSet_add(set, number(1));
  EXPECT_FALSE(vorn_collections_HashSet_remove(set, number(1)));
  EXPECT_FALSE(vorn_collections_HashSet_operator_in(set, number(1)));
  EXPECT_EQ(vorn_collections_HashSet_count(set, number(1)), 0);
  EXPECT_RAISED("Earlier: error");
  EXPECT_EQ(elementsOfSet(set), before);
  EXPECT_EQ(sizeField(set), 3);
}

TEST_P(SetLaws, RandomOperations_AgreeWithAModel) {
  const int steps = onStressHeap() ? 150 : 10000;
  const Handle set = object(type());
  std::vector<std::uint64_t> model;  // in the order of insertion
  Randoms random(11);
  for (int step = 0; step < steps; ++step) {
    const std::uint64_t value = random.below(200);
    const Handle handle = value == 0 ? Handle(nullptr) : number(static_cast<std::int64_t>(value));
    const auto present = std::find(model.begin(), model.end(), value);
    // Mostly growing, then mostly shrinking, so that places are compacted.
    if (random.below(5) < (step % 1000 < 500 ? 1U : 4U)) {
      EXPECT_EQ(vorn_collections_HashSet_remove(set, handle), present != model.end());
      if (present != model.end()) model.erase(present);
    } else {
      vorn_collections_HashSet_add(set, handle);
      if (present == model.end()) model.push_back(value);
    }
    ASSERT_EQ(vorn_collections_HashSet_size(set), static_cast<long long>(model.size()));
    if (model.empty()) continue;
    const std::uint64_t position = random.below(model.size());
    void* const element = vorn_collections_HashSet_operator_index(set, static_cast<long long>(position));
    ASSERT_EQ(element == nullptr ? 0 : static_cast<std::uint64_t>(valueOf(element)), model[position]) << step;
  }
  std::vector<std::uint64_t> elements;
  for (void* element : elementsOfSet(set)) {
    elements.push_back(element == nullptr ? 0 : static_cast<std::uint64_t>(valueOf(element)));
  }
  EXPECT_EQ(elements, model);
  EXPECT_SET_AT_REST(set);
}

}  // namespace
}  // namespace vorn::tests
