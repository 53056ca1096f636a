// Blocks of characters against a look at one after the other.
#include "collections/core/kernels/ascii_block.h"

#include <algorithm>

#include "tests/kernels/kernel_test_support.h"

namespace vorn::tests {
namespace {

using collections::copyAscii;
using collections::kAsciiBlock;

// What is no ASCII, and what only its low bytes would make ASCII.
template <class Unit>
std::vector<Unit> others() {
  std::vector<Unit> result = {0,      0x80,   0x81,   0xFF,   0x100,  0x141, 0x7FFF,
                              0x8000, 0x8041, 0xD800, 0xFF41, 0xFF80, 0xFFFF};
  if constexpr (sizeof(Unit) == 4) {
    result.insert(result.end(), {0x10000U, 0x10041U, 0x7FFF0041U, 0x7FFFFFFFU, 0x80000000U, 0x80000041U, 0xFFFFFFFFU});
  }
  return result;
}

template <class Unit>
void expectBlocks() {
  constexpr std::uint64_t kEnd = kAsciiBlock;
  const GuardedMemory memory(kEnd * sizeof(Unit));
  unsigned char* const block = memory.place(kEnd * sizeof(Unit), true);
  for (const Unit other : others<Unit>()) {
    for (std::uint64_t at = 0; at <= kEnd; ++at) {
      // A second one behind the first makes no difference; behind the block nothing may be read.
      for (const std::uint64_t second : {at, at + 1, kEnd - 1}) {
        Unit units[kEnd];
        for (std::uint64_t i = 0; i < kEnd; ++i) units[i] = static_cast<Unit>(i % 2 == 0 ? 1 + i : 0x7F - i);
        if (at < kEnd) units[at] = other;
        if (at < kEnd && second < kEnd) units[std::max(at, second)] = other;
        std::memcpy(block, units, sizeof(units));
        char bytes[kEnd + 1] = {};
        bytes[kEnd] = '!';
        ASSERT_EQ(copyAscii<Unit>(block, bytes), at) << other;
        for (std::uint64_t i = 0; i < at; ++i) ASSERT_EQ(bytes[i], static_cast<char>(units[i])) << i;
        ASSERT_EQ(bytes[kEnd], '!');
      }
    }
  }
}

TEST(AsciiBlock, EndsAtTheFirstOtherUnit) {
  expectBlocks<std::uint16_t>();
  expectBlocks<std::uint32_t>();
}

}  // namespace
}  // namespace vorn::tests
