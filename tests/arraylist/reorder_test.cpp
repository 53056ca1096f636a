// reverse, reverseNew and shuffle.
#include <algorithm>
#include <array>
#include <map>
#include <numeric>

#include "runtime/threads/fast_random.h"
#include "runtime/threads/thread_state.h"
#include "tests/arraylist/bulk_cases.h"

namespace vorn::tests {
namespace {

class Reverse : public RuntimeTest {};
class Shuffle : public RuntimeTest {};

TEST_F(Reverse, EveryStorage_InPlaceAndBack) {
  forEachList([](void* target) {
    const Snapshot before(target);
    const std::string storage = storageOf(target);
    Elements expected = elementsOf(target);
    std::reverse(expected.begin(), expected.end());
    vorn_collections_ArrayList_reverse(target);
    EXPECT_EQ(elementsOf(target), expected);
    EXPECT_EQ(storageOf(target), storage);
    EXPECT_AT_REST(target);
    vorn_collections_ArrayList_reverse(target);
    EXPECT_UNTOUCHED(target, before);
  });
}

TEST_F(Reverse, EveryLength) {
  for (const bool linked : {false, true}) {
    for (const char* element : {"Byte", "Short", "Int", "Long"}) {
      for (int count = 0; count <= (onStressHeap() ? 9 : 70); ++count) {
        const Handle target = object(className(linked, false, element));
        for (int i = 0; i < count; ++i) vorn_collections_ArrayList_addPrimitiveI64(target, i, element);
        vorn_collections_ArrayList_reverse(target);
        for (int i = 0; i < count; ++i) ASSERT_EQ(vorn_collections_ArrayList_getInt(target, i), count - 1 - i);
        EXPECT_VALID_LIST(target);
      }
    }
  }
}

TEST_F(Reverse, LinkedList_IsWalkableFromBothEnds) {
  const Handle target = intList("LinkedList", {1, 2, 3, 4, 5, 6});
  vorn_collections_ArrayList_reverse(target);
  vorn_collections_ArrayList_removeAt(target, -1);
  vorn_collections_ArrayList_addAt(target, 5, integer("Int", 9));
  vorn_collections_ArrayList_addAt(target, 0, integer("Int", 7));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 7", "Int 6", "Int 5", "Int 4", "Int 3", "Int 2", "Int 9"}));
  EXPECT_VALID_LIST(target);
}

TEST_F(Reverse, Null_DoesNothing) {
  vorn_collections_ArrayList_reverse(nullptr);
  EXPECT_EQ(vorn_collections_ArrayList_reverseNew(nullptr), nullptr);
  EXPECT_NOTHING_RAISED();
}

TEST_F(Reverse, ReverseNew_IsAReversedCopyOfTheReceiversClass) {
  forEachList([](void* target) {
    const Snapshot before(target);
    Elements expected = elementsOf(target);
    std::reverse(expected.begin(), expected.end());
    const Handle copy = vorn_collections_ArrayList_reverseNew(target);
    ASSERT_NE(copy.get(), nullptr);
    EXPECT_NE(copy.get(), target);
    EXPECT_EQ(elementsOf(copy), expected);
    EXPECT_STREQ(vorn_type_name(copy), vorn_type_name(target));
    EXPECT_EQ(storageOf(copy), storageOf(target));
    EXPECT_EQ(declaredTypeOf(copy), declaredTypeOf(target));
    EXPECT_UNTOUCHED(target, before);
    EXPECT_AT_REST(copy);
  });
  for (const bool linked : {false, true}) {
    const Handle copy = vorn_collections_ArrayList_reverseNew(object(className(linked, true)));
    EXPECT_EQ(vorn_collections_ArrayList_size(copy), 0);
  }
}

TEST_F(Reverse, ReverseNew_OfObjects_SharesTheHandles) {
  for (const bool linked : {false, true}) {
    const Handle a = string("a");
    const Handle b = item(1);
    const Handle target = list(className(linked, true), {a, nullptr, b});
    const Handle copy = vorn_collections_ArrayList_reverseNew(target);
    EXPECT_EQ(handlesOf(copy), (std::vector<const void*>{b, nullptr, a}));
  }
}

TEST_F(Shuffle, EveryStorage_GivesAPermutationInTheSameStorage) {
  forEachList([](void* target) {
    const std::string storage = storageOf(target);
    Elements before = elementsOf(target);
    std::vector<const void*> handlesBefore = handlesOf(target);
    for (int round = 0; round < 5; ++round) {
      vorn_collections_ArrayList_shuffle(target);
      EXPECT_AT_REST(target);
    }
    Elements after = elementsOf(target);
    std::vector<const void*> handlesAfter = handlesOf(target);
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    std::sort(handlesBefore.begin(), handlesBefore.end());
    std::sort(handlesAfter.begin(), handlesAfter.end());
    EXPECT_EQ(after, before);
    EXPECT_EQ(handlesAfter, handlesBefore);
    EXPECT_EQ(storageOf(target), storage);
  });
}

TEST_F(Shuffle, ShortListsAndNull_StayAsTheyAre) {
  vorn_collections_ArrayList_shuffle(nullptr);
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      for (const char* element : {"Int", ""}) {
        for (const int count : {0, 1}) {
          const Handle target = object(className(linked, synchronised, element));
          for (int i = 0; i < count; ++i) vorn_collections_ArrayList_addInt(target, 7);
          const Snapshot before(target);
          vorn_collections_ArrayList_shuffle(target);
          EXPECT_UNTOUCHED(target, before);
        }
      }
    }
  }
  EXPECT_NOTHING_RAISED();
}

// The order that shuffling 0, 1, 2, ... must give when this thread's generator stands at `state`, which is left where
// it must stand afterwards.
std::vector<long long> shuffledByHand(std::uint64_t& state, std::size_t size) {
  std::vector<long long> values(size);
  std::iota(values.begin(), values.end(), 0);
  for (std::size_t i = size - 1; i > 0; --i) {
    const std::uint64_t bound = i + 1;
    const auto rejected = static_cast<std::uint64_t>((static_cast<unsigned __int128>(1) << 64) % bound);
    std::uint64_t draw = runtime::nextRandom(state);
    while (draw < rejected) draw = runtime::nextRandom(state);
    std::swap(values[i], values[draw % bound]);
  }
  return values;
}

// The generator counts up by a fixed step, so that where it stands afterwards tells how often it was drawn from.
TEST_F(Shuffle, FixedGenerator_GivesThePermutationAndDrawsAsOftenAsNeeded) {
  std::uint64_t& generator = runtime::attachedThread().randomState;
  for (const char* type :
       {"ArrayList<Byte>", "ArrayList<Int>", "ArrayList<Double>", "ArrayList<Object>", "LinkedList"}) {
    for (const std::size_t size : {2U, 3U, 7U, 50U}) {
      const Handle target = object(type);
      for (std::size_t i = 0; i < size; ++i) {
        vorn_collections_ArrayList_add(target, integer("Int", static_cast<std::int64_t>(i)));
      }
      generator = 0x1234567 * size;
      std::uint64_t expectedState = generator;
      const std::vector<long long> expected = shuffledByHand(expectedState, size);
      const std::uint64_t before = generator;
      vorn_collections_ArrayList_shuffle(target);
      EXPECT_EQ(generator, expectedState);
      EXPECT_EQ(generator, before + (size - 1) * runtime::kRandomStep) << "no draw was rejected";
      for (std::size_t i = 0; i < size; ++i) {
        EXPECT_EQ(vorn_collections_ArrayList_getInt(target, static_cast<long long>(i)), expected[i])
            << type << " " << i;
      }
    }
  }
}

// The mixing of the generator maps 0 to 0, the one draw that a bound of 3 rejects.
TEST_F(Shuffle, DrawBelowTheThreshold_IsRejected) {
  std::uint64_t& generator = runtime::attachedThread().randomState;
  const Handle target = intList("ArrayList<Int>", {0, 1, 2});
  generator = 0 - runtime::kRandomStep;
  std::uint64_t expectedState = generator;
  const std::vector<long long> expected = shuffledByHand(expectedState, 3);
  vorn_collections_ArrayList_shuffle(target);
  EXPECT_EQ(generator, expectedState);
  EXPECT_EQ(generator, 2 * runtime::kRandomStep) << "two draws that count and one that does not";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(target, i), expected[i]);
}

// The same draw is below every bound, but a bound that divides 2^64 rejects none.
TEST_F(Shuffle, DrawBelowTheBoundButNotBelowTheThreshold_Counts) {
  std::uint64_t& generator = runtime::attachedThread().randomState;
  const Handle target = intList("ArrayList<Int>", {0, 1, 2, 3});
  generator = 0 - runtime::kRandomStep;
  std::uint64_t expectedState = generator;
  const std::vector<long long> expected = shuffledByHand(expectedState, 4);
  vorn_collections_ArrayList_shuffle(target);
  EXPECT_EQ(generator, expectedState);
  EXPECT_EQ(generator, 2 * runtime::kRandomStep) << "three draws, and the first is 0";
  for (int i = 0; i < 4; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(target, i), expected[i]);
}

// The order after one shuffle is counted relative to the order before it: absolute orders of a list that is shuffled
// over and over even out under a biased shuffle as well.
double chiSquareOverAllOrders(void* target, int rounds) {
  std::map<std::array<int, 4>, int> counts;
  const auto read = [&] {
    std::array<long long, 4> values;
    for (int i = 0; i < 4; ++i) values[static_cast<std::size_t>(i)] = vorn_collections_ArrayList_getInt(target, i);
    return values;
  };
  std::array<long long, 4> before = read();
  for (int round = 0; round < rounds; ++round) {
    vorn_collections_ArrayList_shuffle(target);
    const std::array<long long, 4> after = read();
    std::array<int, 4> order;
    for (std::size_t i = 0; i < 4; ++i) {
      order[i] = static_cast<int>(std::find(before.begin(), before.end(), after[i]) - before.begin());
    }
    ++counts[order];
    before = after;
  }
  EXPECT_EQ(counts.size(), 24U);
  const double expected = rounds / 24.0;
  double sum = (24.0 - static_cast<double>(counts.size())) * expected;
  for (const auto& [order, count] : counts) sum += (count - expected) * (count - expected) / expected;
  return sum;
}

TEST_F(Shuffle, EveryOrderOf4Elements_IsEquallyLikely) {
  // 23 degrees of freedom: a fair shuffle exceeds 60 less than once in 25,000 runs.
  for (const char* type : {"ArrayList<Byte>", "ArrayList<Int>", "ArrayList<Long>"}) {
    SCOPED_TRACE(type);
    const std::string name(type);
    const std::string element = name.substr(10, name.size() - 11);
    const Handle target = rawList(type, element.c_str(), {0, 1, 2, 3});
    EXPECT_LT(chiSquareOverAllOrders(target, 24000), 60.0);
  }
  const Handle boxed = list("ArrayList", {integer("Int", 0), integer("Long", 1), integer("Int", 2), integer("Int", 3)});
  EXPECT_LT(chiSquareOverAllOrders(boxed, 24000), 60.0);
  const Handle linked = intList("LinkedList", {0, 1, 2, 3});
  EXPECT_LT(chiSquareOverAllOrders(linked, onStressHeap() ? 960 : 24000), 60.0);
}

}  // namespace
}  // namespace vorn::tests
