// Reversals of packed elements against a copy made one element at a time, on every vector path.
#include "collections/core/kernels/reverse_kernels.h"

#include "tests/kernels/kernel_test_support.h"

namespace vorn::tests {
namespace {

using collections::reverseElements;

constexpr std::uint64_t kWidths[] = {1, 2, 4, 8};

class ReverseKernels : public OnEveryPath {};
VORN_ON_EVERY_PATH(ReverseKernels);

std::vector<unsigned char> reversedCopy(const unsigned char* data, std::uint64_t n, std::uint64_t width) {
  std::vector<unsigned char> reversed;
  for (std::uint64_t i = n; i > 0; --i) {
    reversed.insert(reversed.end(), data + (i - 1) * width, data + i * width);
  }
  return reversed;
}

TEST_P(ReverseKernels, EverySizeBesideUnmappedMemory) {
  const GuardedMemory memory(300 * 8);
  Random random(1);
  for (const std::uint64_t width : kWidths) {
    for (std::uint64_t n = 0; n <= 300; ++n) {
      for (const bool upper : {false, true}) {
        unsigned char* data = memory.place(n * width, upper);
        random.fill(data, n * width);
        const std::vector<unsigned char> expected = reversedCopy(data, n, width);
        reverseElements(data, n, width);
        ASSERT_EQ(std::vector<unsigned char>(data, data + n * width), expected) << width << " wide, size " << n;
      }
    }
  }
}

TEST_P(ReverseKernels, EveryAlignmentAndSizeLeavesItsNeighboursAlone) {
  Random random(2);
  for (const std::uint64_t width : kWidths) {
    for (std::uint64_t offset = 0; offset < 32; ++offset) {
      for (std::uint64_t n = 0; n <= 300; n += n < 40 ? 1 : 13) {
        std::vector<unsigned char> bytes(64 + offset + n * width + 64);
        random.fill(bytes.data(), bytes.size());
        unsigned char* data = bytes.data() + 64 + offset;
        std::vector<unsigned char> expected(bytes.data(), data);
        const std::vector<unsigned char> reversed = reversedCopy(data, n, width);
        expected.insert(expected.end(), reversed.begin(), reversed.end());
        expected.insert(expected.end(), data + n * width, bytes.data() + bytes.size());
        reverseElements(data, n, width);
        ASSERT_EQ(bytes, expected) << width << " wide at " << offset << ", size " << n;
      }
    }
  }
}

// Both ends at every distance from an aligned address, with the fewest vectors that the long-range loop takes on.
TEST_P(ReverseKernels, EveryPairOfEndAlignments) {
  Random random(3);
  alignas(64) unsigned char bytes[1200];
  for (const std::uint64_t width : kWidths) {
    for (std::uint64_t start = 0; start < 32; ++start) {
      for (std::uint64_t length = 200; length < 800; length += width) {
        const std::uint64_t n = length / width;
        random.fill(bytes, 64);
        for (std::uint64_t i = 64; i < sizeof bytes; ++i) bytes[i] = static_cast<unsigned char>(bytes[i - 64] + 1);
        unsigned char* data = bytes + 32 + start;
        const std::vector<unsigned char> expected = reversedCopy(data, n, width);
        const unsigned char before = data[-1];
        const unsigned char after = data[n * width];
        reverseElements(data, n, width);
        ASSERT_EQ(std::memcmp(data, expected.data(), n * width), 0) << width << " wide at " << start << ", size " << n;
        ASSERT_EQ(data[-1], before);
        ASSERT_EQ(data[n * width], after);
      }
    }
  }
}

TEST_P(ReverseKernels, LargeSizesAndBackAgain) {
  constexpr std::uint64_t kLarge = 1'000'003;
  Random random(4);
  std::vector<unsigned char> bytes(kLarge * 8 + 1);
  random.fill(bytes.data(), bytes.size());
  const std::vector<unsigned char> original = bytes;
  for (const std::uint64_t width : kWidths) {
    for (const std::uint64_t offset : {0, 1}) {
      unsigned char* data = bytes.data() + offset;
      const std::vector<unsigned char> expected = reversedCopy(data, kLarge, width);
      reverseElements(data, kLarge, width);
      ASSERT_EQ(std::memcmp(data, expected.data(), expected.size()), 0) << width;
      reverseElements(data, kLarge, width);
      ASSERT_TRUE(bytes == original) << width;
    }
  }
}

TEST_P(ReverseKernels, OtherWidthsAndNoDataDoNothing) {
  std::vector<unsigned char> bytes(200);
  Random(5).fill(bytes.data(), bytes.size());
  const std::vector<unsigned char> original = bytes;
  for (const std::uint64_t width : {0, 3, 5, 6, 7, 9, 16, 32}) reverseElements(bytes.data(), 5, width);
  EXPECT_EQ(bytes, original);
  for (const std::uint64_t width : kWidths) reverseElements(nullptr, 0, width);
}

}  // namespace
}  // namespace vorn::tests
