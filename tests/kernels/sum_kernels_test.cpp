// Sums of packed elements against additions one by one, on every vector path.
#include "collections/core/kernels/sum_kernels.h"

#include <bit>
#include <cmath>
#include <limits>

#include "tests/kernels/kernel_test_support.h"

namespace vorn::tests {
namespace {

using collections::sumFloating;
using collections::sumIntegers;

constexpr std::uint64_t kLargeSize = 1'000'003;

class SumKernels : public OnEveryPath {};
VORN_ON_EVERY_PATH(SumKernels);

constexpr PrimitiveKind kSummedKinds[] = {PrimitiveKind::SByte,  PrimitiveKind::Byte,  PrimitiveKind::Short,
                                          PrimitiveKind::UShort, PrimitiveKind::Int,   PrimitiveKind::UInt,
                                          PrimitiveKind::Long,   PrimitiveKind::ULong, PrimitiveKind::Boolean};

long long expectedSum(PrimitiveKind kind, const unsigned char* data, std::uint64_t n) {
  std::uint64_t total = 0;
  for (std::uint64_t i = 0; i < n; ++i) total += integerAt(kind, data, i);
  return static_cast<long long>(total);
}

// Writes the element's low bytes into n places.
void fillWith(std::uint64_t bits, PrimitiveKind kind, unsigned char* data, std::uint64_t n) {
  for (std::uint64_t i = 0; i < n; ++i) std::memcpy(data + i * widthOf(kind), &bits, widthOf(kind));
}

TEST_P(SumKernels, EverySizeBesideUnmappedMemory) {
  const GuardedMemory memory(300 * 8);
  Random random(1);
  for (const PrimitiveKind kind : kSummedKinds) {
    for (std::uint64_t n = 0; n <= 300; ++n) {
      for (const bool upper : {false, true}) {
        unsigned char* data = memory.place(n * widthOf(kind), upper);
        random.fill(data, n * widthOf(kind));
        ASSERT_EQ(sumIntegers(kind, data, n), expectedSum(kind, data, n)) << int(kind) << " size " << n;
      }
    }
  }
}

TEST_P(SumKernels, EveryAlignmentAmongOtherBytes) {
  std::vector<unsigned char> bytes(32 + 300 * 8 + 64);
  Random random(2);
  random.fill(bytes.data(), bytes.size());
  for (const PrimitiveKind kind : kSummedKinds) {
    for (std::uint64_t offset = 0; offset < 32; ++offset) {
      for (std::uint64_t n = 0; n <= 300; n += n < 70 ? 1 : 23) {
        const unsigned char* data = bytes.data() + offset;
        ASSERT_EQ(sumIntegers(kind, data, n), expectedSum(kind, data, n)) << int(kind) << " at " << offset;
      }
    }
  }
}

TEST_P(SumKernels, NoDataAtAll) {
  for (const PrimitiveKind kind : kSummedKinds) EXPECT_EQ(sumIntegers(kind, nullptr, 0), 0);
}

// Every lane at its limit: the narrow sums inside the kernels must be widened in time.
TEST_P(SumKernels, ExtremesInEveryPlace) {
  std::vector<unsigned char> bytes(5'000'011 * 2);
  for (const PrimitiveKind kind : kSummedKinds) {
    const std::uint64_t width = widthOf(kind);
    const std::uint64_t top = std::uint64_t{1} << (8 * width - 1);
    for (const std::uint64_t bits : {std::uint64_t{0}, top, top - 1, ~std::uint64_t{0}}) {
      for (const std::uint64_t n :
           {std::uint64_t{1}, std::uint64_t{33}, std::uint64_t{300}, kLargeSize, std::uint64_t{5'000'011}}) {
        if (n * width > bytes.size()) continue;
        fillWith(bits, kind, bytes.data(), n);
        const std::uint64_t one = integerAt(kind, bytes.data(), 0);
        ASSERT_EQ(sumIntegers(kind, bytes.data(), n), static_cast<long long>(one * n))
            << int(kind) << " bits " << bits << " size " << n;
      }
    }
  }
}

TEST_P(SumKernels, LargeRandomSizes) {
  std::vector<unsigned char> bytes(kLargeSize * 8 + 1);
  Random random(3);
  random.fill(bytes.data(), bytes.size());
  for (const PrimitiveKind kind : kSummedKinds) {
    EXPECT_EQ(sumIntegers(kind, bytes.data(), kLargeSize), expectedSum(kind, bytes.data(), kLargeSize)) << int(kind);
    EXPECT_EQ(sumIntegers(kind, bytes.data() + 1, kLargeSize), expectedSum(kind, bytes.data() + 1, kLargeSize));
  }
}

TEST_P(SumKernels, LongWrapsAround) {
  for (std::uint64_t n = 2; n <= 70; ++n) {
    std::vector<std::int64_t> elements(n, 0);
    elements[0] = std::numeric_limits<std::int64_t>::max();
    elements[n - 1] = 1;
    const auto* data = reinterpret_cast<const unsigned char*>(elements.data());
    EXPECT_EQ(sumIntegers(PrimitiveKind::Long, data, n), std::numeric_limits<long long>::min());
    elements[0] = std::numeric_limits<std::int64_t>::min();
    elements[n - 1] = -1;
    EXPECT_EQ(sumIntegers(PrimitiveKind::Long, data, n), std::numeric_limits<long long>::max());
  }
}

TEST_P(SumKernels, AnyNonZeroByteCountsOnceAsTrue) {
  std::vector<unsigned char> bytes(1000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i);
  EXPECT_EQ(sumIntegers(PrimitiveKind::Boolean, bytes.data(), 256), 255);
  EXPECT_EQ(sumIntegers(PrimitiveKind::Boolean, bytes.data(), 1000), 996);
}

TEST_P(SumKernels, OtherKindsGiveZero) {
  const unsigned char bytes[64] = {1, 1, 1};
  for (const PrimitiveKind kind : {PrimitiveKind::None, PrimitiveKind::Float, PrimitiveKind::Double}) {
    EXPECT_EQ(sumIntegers(kind, bytes, 4), 0);
  }
  for (const PrimitiveKind kind : kSummedKinds) EXPECT_EQ(sumFloating(kind, bytes, 4), 0.0);
  EXPECT_EQ(sumIntegers(static_cast<PrimitiveKind>(200), bytes, 4), 0);
}

TEST(FloatingSums, AddInIndexOrderFromZero) {
  Random random(4);
  for (const PrimitiveKind kind : {PrimitiveKind::Float, PrimitiveKind::Double}) {
    for (std::uint64_t n = 0; n <= 300; ++n) {
      const GuardedMemory memory(300 * 8);
      unsigned char* data = memory.place(n * widthOf(kind), true);
      // Of very different sizes and both signs, so that another order rounds otherwise.
      for (std::uint64_t i = 0; i < n; ++i) {
        const double value = std::ldexp(static_cast<double>(random.next()), static_cast<int>(random.below(80)) - 100) *
                             (random.below(2) == 0 ? 1 : -1);
        const auto single = static_cast<float>(value);
        std::memcpy(data + i * widthOf(kind), kind == PrimitiveKind::Float ? static_cast<const void*>(&single) : &value,
                    widthOf(kind));
      }
      volatile double total = 0.0;
      for (std::uint64_t i = 0; i < n; ++i) total = total + floatingAt(kind, data, i);
      const double expected = total;
      ASSERT_EQ(std::bit_cast<std::uint64_t>(sumFloating(kind, data, n)), std::bit_cast<std::uint64_t>(expected));
    }
  }
}

TEST(FloatingSums, OrderDecidesTheRounding) {
  // From the left the ones are lost in the large number; in pairs or lanes they would add up.
  const std::vector<double> elements = {1e16, 1, 1, 1, 1, 1, 1, 1, -1e16};
  EXPECT_EQ(sumFloating(PrimitiveKind::Double, reinterpret_cast<const unsigned char*>(elements.data()), 9), 0.0);
  // Added as singles these would stay at 2^24.
  std::vector<float> singles(9, 1.0F);
  singles[0] = 16777216.0F;
  EXPECT_EQ(sumFloating(PrimitiveKind::Float, reinterpret_cast<const unsigned char*>(singles.data()), 9), 16777224.0);
}

TEST(FloatingSums, SpecialValues) {
  const auto sum = [](const std::vector<double>& elements) {
    return sumFloating(PrimitiveKind::Double, reinterpret_cast<const unsigned char*>(elements.data()), elements.size());
  };
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(std::signbit(sum({-0.0, -0.0})));
  EXPECT_FALSE(std::signbit(sum({})));
  EXPECT_EQ(sum({infinity, 1.0}), infinity);
  EXPECT_TRUE(std::isnan(sum({infinity, -infinity})));
  EXPECT_TRUE(std::isnan(sum({1.0, std::numeric_limits<double>::quiet_NaN(), 1.0})));
}

}  // namespace
}  // namespace vorn::tests
