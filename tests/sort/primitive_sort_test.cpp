// Every path of the primitive sort against a reference: order, nothing lost, nothing touched outside the range.
#include "collections/core/kernels/sort/primitive_sort.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "tests/sort/primitive_sort_support.h"
#include "tests/support/guarded_memory.h"

namespace vorn::tests {
namespace {

template <class Element>
class PrimitiveSort : public ::testing::Test {};
TYPED_TEST_SUITE(PrimitiveSort, AllElements);

TYPED_TEST(PrimitiveSort, EverySizeAndPattern_OrdersAsTheReference) {
  for (std::size_t count = 0; count <= 600; ++count) {
    for (const auto& input : inputsOf<TypeParam>(count)) {
      expectSortedOnEveryPath(input);
      if (this->HasFatalFailure()) return;
    }
  }
}

// Around the sizes at which blocks, unrolled loops and samples change.
TYPED_TEST(PrimitiveSort, LargerSizes_OrderAsTheReference) {
  for (std::size_t count : {1'023U, 1'024U, 1'025U, 2'047U, 2'049U, 4'095U, 4'096U, 10'001U, 32'768U, 70'001U}) {
    for (const auto& input : inputsOf<TypeParam>(count)) {
      expectSortedOnEveryPath(input);
      if (this->HasFatalFailure()) return;
    }
  }
}

TYPED_TEST(PrimitiveSort, AMillion_OrdersAsTheReference) {
  std::mt19937_64 random(4);
  Input<TypeParam> input{"random", std::vector<TypeParam>(1'000'003)};
  for (auto& element : input.elements) element = anyElement<TypeParam>(random);
  expectSortedOnEveryPath(input);
}

TYPED_TEST(PrimitiveSort, EveryAlignmentOfTheFirstElement) {
  std::mt19937_64 random(5);
  for (std::size_t shift = 0; shift < 64 / sizeof(TypeParam); ++shift) {
    std::vector<TypeParam> elements(shift + 2'000);
    for (auto& element : elements) element = anyElement<TypeParam>(random);
    for (const VectorPath path : sortingPaths()) {
      auto sorted = elements;
      sortOn(path, sorted.data() + shift, 2'000);
      auto expected = elements;
      std::sort(expected.begin() + static_cast<std::ptrdiff_t>(shift), expected.end());
      ASSERT_EQ(sorted, expected) << collections::vectorPathName(path) << ", " << shift;
    }
  }
}

// Sorted and reversed ranges are walked by loops of their own, whose vectors could pass the ends as well.
TYPED_TEST(PrimitiveSort, NothingBesideTheRange_IsRead) {
  const GuardedMemory memory(600 * sizeof(TypeParam));
  for (std::size_t count = 1; count <= 600; count += count < 300 ? 1 : 7) {
    const std::size_t bytes = count * sizeof(TypeParam);
    for (const auto& input : inputsOf<TypeParam>(count)) {
      if (input.name != "random" && input.name != "sorted" && input.name != "reversed") continue;
      for (const VectorPath path : sortingPaths()) {
        for (const bool upper : {false, true}) {
          auto* const elements = reinterpret_cast<TypeParam*>(memory.place(bytes, upper));
          std::memcpy(elements, input.elements.data(), bytes);
          sortOn(path, elements, count);
          ASSERT_TRUE(std::is_sorted(elements, elements + count)) << input.name << ", " << count;
        }
      }
    }
  }
}

TYPED_TEST(PrimitiveSort, TheChosenPath_SortsToo) {
  for (const auto& input : inputsOf<TypeParam>(3'000)) {
    auto sorted = input.elements;
    collections::sortPrimitive(sorted.data(), sorted.size());
    const auto numbers = numbersInOrder(input.elements);
    ASSERT_TRUE(std::equal(numbers.begin(), numbers.end(), sorted.begin())) << input.name;
    ASSERT_EQ(sortedBits(sorted), sortedBits(input.elements)) << input.name;
  }
}

TEST(PrimitiveSort, UnsignedElements_CompareAsUnsigned) {
  std::vector<std::uint64_t> elements = {std::uint64_t{1} << 63U, 1};
  collections::sortPrimitive(elements.data(), elements.size());
  EXPECT_EQ(elements, (std::vector<std::uint64_t>{1, std::uint64_t{1} << 63U}));
}

TEST(PrimitiveSort, NaN_ComesLast) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const VectorPath path : sortingPaths()) {
    std::vector<double> elements = {std::numeric_limits<double>::quiet_NaN(), 1.0, -kInfinity};
    sortOn(path, elements.data(), elements.size());
    EXPECT_EQ(elements[0], -kInfinity);
    EXPECT_EQ(elements[1], 1.0);
    EXPECT_TRUE(std::isnan(elements[2]));
  }
}

}  // namespace
}  // namespace vorn::tests
