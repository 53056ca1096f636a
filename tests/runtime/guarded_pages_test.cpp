// Pages that are inaccessible but where they are opened, and the stress heap's blocks on them: with the kernel's guard
// markers, where it has them, and with a mapping for each range, as on every kernel; in pages of the size that this
// kernel has, and of the largest that there is.
#include "runtime/heap/guarded_pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "runtime/heap/stress_blocks.h"

namespace vorn::tests {
namespace {

using runtime::GuardedPages;
using runtime::PageGuards;

constexpr std::size_t kLargestPage = std::size_t{64} << 10;

struct Pages {
  PageGuards guards;
  std::size_t bytes;
};

volatile unsigned char* byteAt(std::uintptr_t address) { return reinterpret_cast<volatile unsigned char*>(address); }

class GuardedPagesTest : public testing::TestWithParam<Pages> {
 protected:
  // Larger than what markers are laid over at a time, so that ranges reach past it.
  static constexpr std::size_t kReserved = std::size_t{8} << 20;

  void SetUp() override { ASSERT_TRUE(pages_.reserve(kReserved, kReserved, GetParam().guards, kPageBytes)); }

  [[nodiscard]] std::uintptr_t page(std::size_t index) const { return pages_.base() + index * kPageBytes; }

  static void expectInaccessible(std::uintptr_t address) {
    EXPECT_DEATH({ std::_Exit(*byteAt(address) & 0); }, "");
    EXPECT_DEATH(
        {
          *byteAt(address) = 1;
          std::_Exit(0);
        },
        "");
  }

  const std::size_t kPageBytes = GetParam().bytes;
  GuardedPages pages_;
};

TEST_P(GuardedPagesTest, OnlyOpenedPages_AreAccessible) {
  ASSERT_TRUE(pages_.open(page(1), kPageBytes));
  *byteAt(page(1)) = 1;
  *byteAt(page(2) - 1) = 2;
  EXPECT_EQ(*byteAt(page(1)) + *byteAt(page(2) - 1), 3);
  expectInaccessible(page(0));
  expectInaccessible(page(2));
  expectInaccessible(page(50));
  expectInaccessible(pages_.base() + kReserved - 1);
}

TEST_P(GuardedPagesTest, OpenedPages_AreZeroed) {
  ASSERT_TRUE(pages_.open(page(0), 3 * kPageBytes));
  for (std::uintptr_t at = page(0); at < page(3); at += 512) ASSERT_EQ(*byteAt(at), 0);
}

TEST_P(GuardedPagesTest, ClosedPages_AreInaccessibleAndTheirNeighboursAreNot) {
  ASSERT_TRUE(pages_.open(page(0), kPageBytes));
  ASSERT_TRUE(pages_.open(page(1), 2 * kPageBytes));
  ASSERT_TRUE(pages_.open(page(3), kPageBytes));
  for (std::size_t i = 0; i < 4; ++i) *byteAt(page(i)) = 7;
  ASSERT_TRUE(pages_.close(page(1), 2 * kPageBytes));
  expectInaccessible(page(1));
  expectInaccessible(page(2));
  EXPECT_EQ(*byteAt(page(0)) + *byteAt(page(3)), 14);
}

TEST_P(GuardedPagesTest, RangeUpToTheLastReservedPage_CanBeOpened) {
  ASSERT_TRUE(pages_.open(page(1), kReserved - kPageBytes));
  *byteAt(pages_.base() + kReserved - 1) = 1;
  expectInaccessible(page(0));
}

// Bytes of a range of addresses that the kernel counts as writable.
std::uintptr_t writableBytes(std::uintptr_t start, std::uintptr_t end) {
  std::ifstream maps("/proc/self/maps");
  std::uintptr_t sum = 0;
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t first = 0;
    std::uintptr_t last = 0;
    char writes = 0;
    if (std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR " %*c%c", &first, &last, &writes) != 3) continue;
    if (writes == 'w' && first < end && last > start) sum += std::min(last, end) - std::max(first, start);
  }
  return sum;
}

TEST_P(GuardedPagesTest, WhatIsClosed_DoesNotCountAgainstALimitOfMemory) {
  const std::size_t pages = kReserved / kPageBytes;
  for (std::size_t i = 0; i + 3 < pages; i += 3) {
    ASSERT_TRUE(pages_.open(page(i), 2 * kPageBytes));
    *byteAt(page(i)) = 1;
    if (i >= 30) {
      ASSERT_TRUE(pages_.close(page(i - 30), 2 * kPageBytes));
    }
  }
  EXPECT_LE(writableBytes(page(0), page(pages)), (std::size_t{2} << 20) + 30 * kPageBytes);
  expectInaccessible(page(0));
}

// As when everything that a stretch of addresses had dies before the next one is begun.
TEST_P(GuardedPagesTest, WhatIsClosedAtOnce_DoesNotCountEither) {
  const std::size_t pages = kReserved / kPageBytes;
  for (std::size_t i = 0; i + 1 < pages; ++i) {
    ASSERT_TRUE(pages_.open(page(i), kPageBytes));
    ASSERT_TRUE(pages_.close(page(i), kPageBytes));
  }
  EXPECT_LE(writableBytes(page(0), page(pages)), std::size_t{2} << 20);
}

TEST_P(GuardedPagesTest, ManySingleRanges_CanBeOpenAtOnceUnlessBounded) {
  if (pages_.bounded()) GTEST_SKIP() << "only as many as the kernel grants mappings";
  GuardedPages many;
  constexpr std::size_t kRanges = 70'000;
  ASSERT_TRUE(many.reserve(2 * kRanges * kPageBytes, 2 * kRanges * kPageBytes, GetParam().guards, kPageBytes));
  for (std::size_t i = 0; i < kRanges; ++i) {
    ASSERT_TRUE(many.open(many.base() + 2 * i * kPageBytes, kPageBytes)) << "after " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Guards, GuardedPagesTest,
                         testing::Values(Pages{PageGuards::Best, runtime::systemPageBytes()},
                                         Pages{PageGuards::Best, kLargestPage},
                                         Pages{PageGuards::Mappings, runtime::systemPageBytes()},
                                         Pages{PageGuards::Mappings, kLargestPage}),
                         [](const auto& pages) {
                           return std::string(pages.param.guards == PageGuards::Best ? "Best" : "Mappings") +
                                  std::to_string(pages.param.bytes);
                         });

// Beyond the end of a block lies a page of this kernel, however large, and no other block's.
TEST(StressBlocksOnLargestPages, Blocks_AreFoundByAnyAddressInThemAndByNoOther) {
  runtime::StressBlocks blocks;
  ASSERT_TRUE(blocks.reserve(PageGuards::Best, kLargestPage));
  std::uintptr_t ends[100];
  for (std::size_t i = 0; i < std::size(ends); ++i) {
    const std::size_t bytes = 16 + 1024 * i;
    auto* const block = static_cast<unsigned char*>(blocks.allocate(bytes, runtime::BlockKind::Scanned));
    ASSERT_NE(block, nullptr);
    const auto start = reinterpret_cast<std::uintptr_t>(block);
    ends[i] = start + bytes;
    const auto slot = blocks.blockAt(start);
    ASSERT_NE(slot, 0U);
    EXPECT_EQ(blocks.blockContaining(ends[i] - 1), slot);
    EXPECT_EQ(blocks.blockContaining(ends[i]), 0U);
    EXPECT_EQ(blocks.blockContaining(start - 1), 0U);
    block[0] = block[bytes - 1] = 1;
    blocks[slot].marked = i % 2 == 0;
  }
  blocks.freeUnmarked();
  for (std::size_t i = 0; i < std::size(ends); ++i) {
    EXPECT_EQ(blocks.blockContaining(ends[i] - 1) != 0, i % 2 == 0) << i;
  }
}

// Past the number of ranges that can be open, freed blocks stay readable but are filled.
TEST(StressBlocksOnMappings, BlocksBeyondTheGuardedOnes_AreFilledWhenFreed) {
  runtime::StressBlocks blocks;
  ASSERT_TRUE(blocks.reserve(PageGuards::Mappings));
  void* last = nullptr;
  for (int i = 0; i < 21'000; ++i) {
    last = blocks.allocate(32, runtime::BlockKind::Scanned);
    ASSERT_NE(last, nullptr);
    ASSERT_EQ(*static_cast<std::uint64_t*>(last), 0u);
  }
  EXPECT_EQ(blocks.bytesLive(), 21'000u * 32);
  blocks.freeUnmarked();
  EXPECT_EQ(blocks.bytesLive(), 0u);
  const auto freed = reinterpret_cast<std::uintptr_t>(last);
#if defined(__SANITIZE_ADDRESS__)
  EXPECT_DEATH((void)*byteAt(freed), "use-after-poison");
#else
  EXPECT_EQ(*byteAt(freed), runtime::kFreedByte);
  EXPECT_EQ(*byteAt(freed + 31), runtime::kFreedByte);
#endif
}

}  // namespace
}  // namespace vorn::tests
