// Searches of packed elements against comparisons one by one, on every vector path.
#include "collections/core/kernels/search_kernels.h"

#include <bit>
#include <cmath>
#include <limits>

#include "tests/kernels/kernel_test_support.h"

namespace vorn::tests {
namespace {

using collections::countElements;
using collections::findFirstElement;
using collections::findLastElement;
using collections::kNotFound;

class SearchKernels : public OnEveryPath {};
VORN_ON_EVERY_PATH(SearchKernels);

// The raw pair of a value; the half that does not count for the kind holds something else on purpose.
struct Needle {
  long long integer;
  double floating;
};

Needle integerNeedle(long long value) { return {value, 77.0}; }
Needle floatingNeedle(double value) { return {77, value}; }

bool matches(PrimitiveKind kind, const unsigned char* data, std::uint64_t i, const Needle& needle) {
  if (isFloating(kind)) return floatingAt(kind, data, i) == needle.floating;
  return integerAt(kind, data, i) == static_cast<std::uint64_t>(needle.integer);
}

// The needle that the element itself is.
Needle needleAt(PrimitiveKind kind, const unsigned char* data, std::uint64_t i) {
  if (isFloating(kind)) return floatingNeedle(floatingAt(kind, data, i));
  return integerNeedle(static_cast<long long>(integerAt(kind, data, i)));
}

// Compares all three searches, the forward one from `from`, with their definitions.
::testing::AssertionResult searchesAgree(PrimitiveKind kind, const unsigned char* data, std::uint64_t from,
                                         std::uint64_t n, const Needle& needle) {
  std::uint64_t first = kNotFound;
  std::uint64_t last = kNotFound;
  std::uint64_t count = 0;
  for (std::uint64_t i = 0; i < n; ++i) {
    if (!matches(kind, data, i, needle)) continue;
    if (i >= from && first == kNotFound) first = i;
    last = i;
    ++count;
  }
  const std::uint64_t foundFirst = findFirstElement(kind, data, from, n, needle.integer, needle.floating);
  const std::uint64_t foundLast = findLastElement(kind, data, n, needle.integer, needle.floating);
  const std::uint64_t counted = countElements(kind, data, n, needle.integer, needle.floating);
  if (foundFirst == first && foundLast == last && counted == count) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "kind " << int(kind) << ", size " << n << ", from " << from << ": first "
                                       << foundFirst << " for " << first << ", last " << foundLast << " for " << last
                                       << ", count " << counted << " for " << count;
}

// A needle of the kind, and an element that differs from it in one bit only.
struct Pair {
  std::uint64_t needleBits;
  std::uint64_t otherBits;
};

Pair nearPair(PrimitiveKind kind, Random& random) {
  if (kind == PrimitiveKind::Boolean) return {1 + random.below(255), 0};
  // Positive and of middling exponent for the floating kinds.
  if (kind == PrimitiveKind::Float) {
    const std::uint64_t bits = 0x40000000 | random.below(0x400000);
    return {bits, bits ^ std::uint64_t{1} << random.below(32)};
  }
  if (kind == PrimitiveKind::Double) {
    const std::uint64_t bits = 0x4000000000000000 | random.below(std::uint64_t{1} << 51);
    return {bits, bits ^ std::uint64_t{1} << random.below(64)};
  }
  const std::uint64_t bits = random.next();
  return {bits, bits ^ std::uint64_t{1} << random.below(8 * widthOf(kind))};
}

void put(PrimitiveKind kind, unsigned char* data, std::uint64_t i, std::uint64_t bits) {
  std::memcpy(data + i * widthOf(kind), &bits, widthOf(kind));
}

TEST_P(SearchKernels, NeedleInEachPlaceOfEachSizeBesideUnmappedMemory) {
  const GuardedMemory memory(300 * 8);
  Random random(1);
  for (const PrimitiveKind kind : kAllKinds) {
    for (std::uint64_t n = 0; n <= 300; n += n < 140 ? 1 : 5) {
      const Pair pair = nearPair(kind, random);
      unsigned char* data = memory.place(n * widthOf(kind), n % 2 == 0);
      unsigned char held[8];
      std::memcpy(held, &pair.needleBits, sizeof held);
      const Needle needle = needleAt(kind, held, 0);
      for (std::uint64_t i = 0; i < n; ++i) put(kind, data, i, pair.otherBits);
      ASSERT_TRUE(searchesAgree(kind, data, 0, n, needle)) << "absent";
      for (std::uint64_t i = 0; i < n; ++i) {
        put(kind, data, i, pair.needleBits);
        ASSERT_EQ(findFirstElement(kind, data, 0, n, needle.integer, needle.floating), i) << int(kind) << " of " << n;
        ASSERT_EQ(findLastElement(kind, data, n, needle.integer, needle.floating), i) << int(kind) << " of " << n;
        ASSERT_EQ(countElements(kind, data, n, needle.integer, needle.floating), 1U) << int(kind) << " of " << n;
        put(kind, data, i, pair.otherBits);
      }
    }
  }
}

// Elements before `from`, at or after `end` and around the range match, and must not be found.
TEST_P(SearchKernels, NothingOutsideTheRangeIsFound) {
  std::vector<unsigned char> bytes(32 + 400 * 8);
  Random random(2);
  for (const PrimitiveKind kind : kAllKinds) {
    for (std::uint64_t offset = 0; offset < 32; ++offset) {
      unsigned char* data = bytes.data() + offset;
      const Pair pair = nearPair(kind, random);
      for (std::uint64_t i = 0; i < 400 - 32; ++i) put(kind, data, i, pair.needleBits);
      const std::uint64_t from = random.below(40);
      const std::uint64_t size = from + random.below(300);
      for (std::uint64_t i = from; i < size; ++i) put(kind, data, i, pair.otherBits);
      const Needle needle = needleAt(kind, data, from > 0 ? 0 : size);
      ASSERT_EQ(findFirstElement(kind, data, from, size, needle.integer, needle.floating), kNotFound);
      const unsigned char* inner = data + from * widthOf(kind);
      ASSERT_EQ(findLastElement(kind, inner, size - from, needle.integer, needle.floating), kNotFound);
      ASSERT_EQ(countElements(kind, inner, size - from, needle.integer, needle.floating), 0U);
    }
  }
}

TEST_P(SearchKernels, EveryStartOfTheForwardSearch) {
  Random random(3);
  for (const PrimitiveKind kind : kAllKinds) {
    const GuardedMemory memory(300 * 8);
    unsigned char* data = memory.place(300 * widthOf(kind), true);
    const Pair pair = nearPair(kind, random);
    for (std::uint64_t i = 0; i < 300; ++i) put(kind, data, i, i % 37 == 5 ? pair.needleBits : pair.otherBits);
    const Needle needle = needleAt(kind, data, 5);
    for (std::uint64_t from = 0; from <= 300; ++from) {
      ASSERT_TRUE(searchesAgree(kind, data, from, 300, needle));
    }
    EXPECT_EQ(findFirstElement(kind, data, 301, 300, needle.integer, needle.floating), kNotFound);
    EXPECT_EQ(findFirstElement(kind, data, kNotFound, 300, needle.integer, needle.floating), kNotFound);
  }
}

TEST_P(SearchKernels, RandomElementsSizesAlignmentsAndStarts) {
  std::vector<unsigned char> bytes(32 + 2100 * 8);
  Random random(4);
  for (int round = 0; round < 3000; ++round) {
    const PrimitiveKind kind = kAllKinds[random.below(std::size(kAllKinds))];
    unsigned char* data = bytes.data() + random.below(32);
    const std::uint64_t n = random.below(random.below(4) == 0 ? 2100 : 300);
    const std::uint64_t spread = 1 + random.below(400);
    for (std::uint64_t i = 0; i < n; ++i) {
      std::uint64_t bits = random.below(spread) - spread / 2;
      if (kind == PrimitiveKind::Float) {
        bits = std::bit_cast<std::uint32_t>(static_cast<float>(static_cast<std::int64_t>(bits)) / 4);
      } else if (kind == PrimitiveKind::Double) {
        bits = std::bit_cast<std::uint64_t>(static_cast<double>(static_cast<std::int64_t>(bits)) / 4);
      }
      put(kind, data, i, bits);
    }
    const Needle needle = n == 0 ? integerNeedle(0) : needleAt(kind, data, random.below(n));
    ASSERT_TRUE(searchesAgree(kind, data, n == 0 ? 0 : random.below(n), n, needle));
  }
}

TEST_P(SearchKernels, CountsManyMatchesInEveryLane) {
  std::vector<unsigned char> bytes(1'000'003 * 8);
  Random random(5);
  for (const PrimitiveKind kind : kAllKinds) {
    const Pair pair = nearPair(kind, random);
    for (std::uint64_t i = 0; i < 1'000'003; ++i) put(kind, bytes.data(), i, pair.needleBits);
    const Needle needle = needleAt(kind, bytes.data(), 0);
    for (const std::uint64_t n : {300, 1000, 8'191, 8'192, 20'000, 1'000'003}) {
      ASSERT_EQ(countElements(kind, bytes.data(), n, needle.integer, needle.floating), n) << int(kind);
      ASSERT_EQ(findFirstElement(kind, bytes.data(), n / 2, n, needle.integer, needle.floating), n / 2);
      ASSERT_EQ(findLastElement(kind, bytes.data(), n, needle.integer, needle.floating), n - 1);
    }
  }
}

TEST_P(SearchKernels, LargeSizesWithOneMatch) {
  std::vector<unsigned char> bytes(1'000'003 * 8);
  Random random(6);
  for (const PrimitiveKind kind : kAllKinds) {
    const Pair pair = nearPair(kind, random);
    for (std::uint64_t i = 0; i < 1'000'003; ++i) put(kind, bytes.data(), i, pair.otherBits);
    for (const std::uint64_t place : {0, 1, 500'000, 999'999, 1'000'002}) {
      put(kind, bytes.data(), place, pair.needleBits);
      const Needle needle = needleAt(kind, bytes.data(), place);
      ASSERT_TRUE(searchesAgree(kind, bytes.data(), 0, 1'000'003, needle));
      put(kind, bytes.data(), place, pair.otherBits);
    }
  }
}

TEST_P(SearchKernels, NeedlesBeyondTheWidthNeverMatch) {
  // Every element has the low bits of every needle below.
  std::vector<unsigned char> ones(100 * 8, 0xFF);
  const std::vector<unsigned char> zeros(100 * 8, 0);
  const auto count = [](PrimitiveKind kind, const std::vector<unsigned char>& bytes, long long needle) {
    return countElements(kind, bytes.data(), 100, needle, 0.0);
  };
  EXPECT_EQ(count(PrimitiveKind::SByte, ones, -1), 100U);
  EXPECT_EQ(count(PrimitiveKind::SByte, ones, 255), 0U);
  EXPECT_EQ(count(PrimitiveKind::Byte, ones, 255), 100U);
  EXPECT_EQ(count(PrimitiveKind::Byte, ones, -1), 0U);
  EXPECT_EQ(count(PrimitiveKind::Short, ones, -1), 100U);
  EXPECT_EQ(count(PrimitiveKind::Short, ones, 0xFFFF), 0U);
  EXPECT_EQ(count(PrimitiveKind::UShort, ones, 0xFFFF), 100U);
  EXPECT_EQ(count(PrimitiveKind::UShort, ones, -1), 0U);
  EXPECT_EQ(count(PrimitiveKind::Int, ones, -1), 100U);
  EXPECT_EQ(count(PrimitiveKind::Int, ones, 0xFFFFFFFF), 0U);
  EXPECT_EQ(count(PrimitiveKind::UInt, ones, 0xFFFFFFFF), 100U);
  EXPECT_EQ(count(PrimitiveKind::UInt, ones, -1), 0U);
  EXPECT_EQ(count(PrimitiveKind::Long, ones, -1), 100U);
  EXPECT_EQ(count(PrimitiveKind::ULong, ones, -1), 100U);
  for (const PrimitiveKind kind : kIntegerKinds) {
    EXPECT_EQ(count(kind, zeros, 0), 100U);
    if (widthOf(kind) == 8) continue;
    const long long beyond = 1LL << (8 * widthOf(kind));
    EXPECT_EQ(count(kind, zeros, beyond), 0U);
    EXPECT_EQ(count(kind, zeros, -beyond), 0U);
    EXPECT_EQ(findFirstElement(kind, zeros.data(), 0, 100, beyond, 0.0), kNotFound);
    EXPECT_EQ(findLastElement(kind, zeros.data(), 100, beyond, 0.0), kNotFound);
  }
}

TEST_P(SearchKernels, ExtremeIntegersAreFound) {
  for (const PrimitiveKind kind : kIntegerKinds) {
    for (std::uint64_t n = 1; n <= 70; ++n) {
      std::vector<unsigned char> bytes(n * 8, 0);
      const std::uint64_t top = std::uint64_t{1} << (8 * widthOf(kind) - 1);
      for (const std::uint64_t bits : {top, top - 1}) {
        put(kind, bytes.data(), n - 1, bits);
        ASSERT_TRUE(searchesAgree(kind, bytes.data(), 0, n, needleAt(kind, bytes.data(), n - 1)));
      }
    }
  }
}

TEST_P(SearchKernels, BooleanNeedlesAreZeroAndOneForAnyNonZeroByte) {
  for (std::uint64_t n = 1; n <= 300; ++n) {
    std::vector<unsigned char> bytes(n);
    Random(n).fill(bytes.data(), n);
    bytes[n / 2] = 0;
    ASSERT_TRUE(searchesAgree(PrimitiveKind::Boolean, bytes.data(), 0, n, integerNeedle(0)));
    ASSERT_TRUE(searchesAgree(PrimitiveKind::Boolean, bytes.data(), 0, n, integerNeedle(1)));
    bytes[n - 1] = 2;
    ASSERT_EQ(countElements(PrimitiveKind::Boolean, bytes.data(), n, 2, 0.0), 0U);
    ASSERT_EQ(findFirstElement(PrimitiveKind::Boolean, bytes.data(), 0, n, 2, 0.0), kNotFound);
    ASSERT_EQ(findLastElement(PrimitiveKind::Boolean, bytes.data(), n, -1, 0.0), kNotFound);
  }
}

TEST_P(SearchKernels, FloatingEqualityIsThatOfNumbers) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double smallest = std::numeric_limits<float>::denorm_min();
  const double values[] = {0.0, -0.0, nan, -nan, infinity, -infinity, 1.0, -1.0, 1.5, smallest, -smallest};
  Random random(7);
  for (std::uint64_t n = 1; n <= 300; ++n) {
    std::vector<float> singles(n);
    std::vector<double> doubles(n);
    for (std::uint64_t i = 0; i < n; ++i) {
      doubles[i] = values[random.below(std::size(values))];
      singles[i] = static_cast<float>(doubles[i]);
    }
    const auto* singleBytes = reinterpret_cast<const unsigned char*>(singles.data());
    const auto* doubleBytes = reinterpret_cast<const unsigned char*>(doubles.data());
    for (const double value : values) {
      ASSERT_TRUE(searchesAgree(PrimitiveKind::Float, singleBytes, 0, n, floatingNeedle(value))) << value;
      ASSERT_TRUE(searchesAgree(PrimitiveKind::Double, doubleBytes, 0, n, floatingNeedle(value))) << value;
    }
  }
}

TEST_P(SearchKernels, ZerosMatchEachOtherAndNanNothing) {
  const std::vector<double> zeros(100, -0.0);
  const std::vector<float> singleZeros(100, 0.0F);
  const std::vector<double> nans(100, std::numeric_limits<double>::quiet_NaN());
  const auto* zeroBytes = reinterpret_cast<const unsigned char*>(zeros.data());
  const auto* singleZeroBytes = reinterpret_cast<const unsigned char*>(singleZeros.data());
  const auto* nanBytes = reinterpret_cast<const unsigned char*>(nans.data());
  EXPECT_EQ(countElements(PrimitiveKind::Double, zeroBytes, 100, 0, 0.0), 100U);
  EXPECT_EQ(countElements(PrimitiveKind::Float, singleZeroBytes, 100, 0, -0.0), 100U);
  EXPECT_EQ(countElements(PrimitiveKind::Double, nanBytes, 100, 0, nans[0]), 0U);
  EXPECT_EQ(findFirstElement(PrimitiveKind::Double, nanBytes, 0, 100, 0, nans[0]), kNotFound);
  EXPECT_EQ(findLastElement(PrimitiveKind::Double, nanBytes, 100, 0, nans[0]), kNotFound);
}

TEST_P(SearchKernels, DoublesThatNoSingleEqualsAreNotFoundAmongSingles) {
  const std::vector<float> tenths(100, 0.1F);
  const auto* bytes = reinterpret_cast<const unsigned char*>(tenths.data());
  EXPECT_EQ(countElements(PrimitiveKind::Float, bytes, 100, 0, 0.1), 0U);
  EXPECT_EQ(countElements(PrimitiveKind::Float, bytes, 100, 0, static_cast<double>(0.1F)), 100U);
  const std::vector<float> infinities(100, std::numeric_limits<float>::infinity());
  const auto* infinityBytes = reinterpret_cast<const unsigned char*>(infinities.data());
  EXPECT_EQ(countElements(PrimitiveKind::Float, infinityBytes, 100, 0, 1e300), 0U);
  const std::vector<float> zeros(100, 0.0F);
  EXPECT_EQ(countElements(PrimitiveKind::Float, reinterpret_cast<const unsigned char*>(zeros.data()), 100, 0, 1e-300),
            0U);
}

TEST_P(SearchKernels, NothingIsFoundInNoDataOrUnderNoKind) {
  for (const PrimitiveKind kind : kAllKinds) {
    EXPECT_EQ(findFirstElement(kind, nullptr, 0, 0, 0, 0.0), kNotFound);
    EXPECT_EQ(findLastElement(kind, nullptr, 0, 0, 0.0), kNotFound);
    EXPECT_EQ(countElements(kind, nullptr, 0, 0, 0.0), 0U);
  }
  const unsigned char zeros[64] = {};
  for (const PrimitiveKind kind : {PrimitiveKind::None, static_cast<PrimitiveKind>(12)}) {
    EXPECT_EQ(findFirstElement(kind, zeros, 0, 64, 0, 0.0), kNotFound);
    EXPECT_EQ(findLastElement(kind, zeros, 64, 0, 0.0), kNotFound);
    EXPECT_EQ(countElements(kind, zeros, 64, 0, 0.0), 0U);
  }
}

}  // namespace
}  // namespace vorn::tests
