// The comparison sort under comparators that follow no order: it stays in bounds, ends, and loses nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "collections/core/kernels/sort/introsort.h"

namespace vorn::tests {
namespace {

using collections::insertionSort;
using collections::introsort;

using Items = std::vector<int>;
using Answer = std::function<bool(int, int)>;

constexpr int kGuard = -1;

// A block of exactly this many items, so that AddressSanitizer sees one step outside it, between two guards of its own.
struct GuardedItems {
  explicit GuardedItems(std::size_t count, unsigned seed = 1) : size(count), block(new int[count + 2]) {
    std::iota(items(), items() + size, 0);
    std::shuffle(items(), items() + size, std::mt19937(seed));
    block[0] = block[size + 1] = kGuard;
  }
  [[nodiscard]] int* items() const { return block.get() + 1; }

  void expectPermutation(const char* what) const {
    ASSERT_EQ(block[0], kGuard) << what << ", " << size;
    ASSERT_EQ(block[size + 1], kGuard) << what << ", " << size;
    Items sorted(items(), items() + size);
    std::sort(sorted.begin(), sorted.end());
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(sorted[i], static_cast<int>(i)) << what << ", " << size;
  }

  std::size_t size;
  std::unique_ptr<int[]> block;
};

std::vector<std::size_t> sizes() {
  std::vector<std::size_t> all(300);
  std::iota(all.begin(), all.end(), std::size_t{0});
  all.insert(all.end(), {500, 1'000, 1'023, 4'096, 10'000});
  return all;
}

// Sorts with both forms, checks that the comparator sees only elements of the range, counts its calls.
void sortHostile(const char* what, std::size_t size, const std::function<Answer()>& make) {
  const double allowed = 30 + 5.0 * static_cast<double>(size) * std::log2(static_cast<double>(size) + 2);
  for (const bool shortForm : {false, true}) {
    if (shortForm && size > 64) continue;
    GuardedItems items(size);
    const Answer answer = make();
    std::uint64_t calls = 0;
    const auto less = [&](const int& a, const int& b) {
      ++calls;
      for (const int* operand : {&a, &b}) {
        EXPECT_GE(operand, items.items());
        EXPECT_LT(operand, items.items() + size);
      }
      return answer(a, b);
    };
    if (shortForm) {
      insertionSort(items.items(), size, less);
    } else {
      introsort(items.items(), size, less);
    }
    items.expectPermutation(what);
    EXPECT_LE(static_cast<double>(calls), allowed) << what << ", " << size;
  }
}

TEST(HostileComparators, AlwaysTrue) {
  for (std::size_t size : sizes()) {
    sortHostile("always true", size, [] { return [](int, int) { return true; }; });
  }
}

TEST(HostileComparators, AlwaysFalse) {
  for (std::size_t size : sizes()) {
    sortHostile("always false", size, [] { return [](int, int) { return false; }; });
  }
}

TEST(HostileComparators, Random) {
  for (std::size_t size : sizes()) {
    for (unsigned percent : {1U, 10U, 50U, 90U, 99U}) {
      sortHostile("random", size, [=] {
        return
            [percent, random = std::make_shared<std::mt19937>(size)](int, int) { return (*random)() % 100 < percent; };
      });
    }
  }
}

TEST(HostileComparators, LessOrEqualInsteadOfLess) {
  for (std::size_t size : sizes()) {
    sortHostile("less or equal", size, [] { return [](int a, int b) { return a / 4 <= b / 4; }; });
  }
}

TEST(HostileComparators, CyclicOrder) {
  for (std::size_t size : sizes()) {
    sortHostile("rock, paper, scissors", size, [] { return [](int a, int b) { return (a + 1) % 3 == b % 3; }; });
  }
}

TEST(HostileComparators, OrderThatTurnsRound) {
  for (std::size_t size : sizes()) {
    sortHostile("turns round", size, [] {
      return
          [calls = std::make_shared<unsigned>(0)](int a, int b) { return (++*calls / 100) % 2 == 0 ? a < b : b < a; };
    });
  }
}

// An error raised in user code makes every later comparison answer "equivalent".
TEST(HostileComparators, GivesUpAfterSomeCalls) {
  for (std::size_t size : sizes()) {
    for (unsigned limit : {1U, 7U, 50U, 1'000U}) {
      sortHostile("gives up", size, [=] {
        return [limit, calls = std::make_shared<unsigned>(0)](int a, int b) { return ++*calls < limit && a < b; };
      });
    }
  }
}

// NaN answers as a sort's `less` gets them from an ordering that puts NaN after whatever it meets.
TEST(HostileComparators, NotANumberAmongNumbers) {
  for (std::size_t size : sizes()) {
    sortHostile("NaN", size, [] { return [](int a, int b) { return a % 5 != 0 && b % 5 != 0 && a < b; }; });
  }
}

TEST(HostileComparators, ThrowAtEveryCall_LeavesAPermutation) {
  struct Refused {};
  for (std::size_t size : {2U, 3U, 10U, 24U, 25U, 60U, 200U}) {
    bool finished = false;
    for (std::uint64_t limit = 0; !finished; ++limit) {
      for (const bool shortForm : {false, true}) {
        GuardedItems items(size, 11);
        std::uint64_t calls = 0;
        const auto less = [&](int a, int b) {
          if (calls++ == limit) throw Refused{};
          return a < b;
        };
        try {
          if (shortForm) {
            insertionSort(items.items(), size, less);
          } else {
            introsort(items.items(), size, less);
            finished = true;
          }
        } catch (const Refused&) {
        }
        items.expectPermutation("throwing");
      }
    }
  }
}

// What an exact collector relies on: at every call, all elements stand in the range.
TEST(HostileComparators, EveryElementIsInTheRangeWhileTheComparatorRuns) {
  for (unsigned kind = 0; kind < 3; ++kind) {
    for (std::size_t size : {2U, 5U, 24U, 40U, 150U, 300U}) {
      for (const bool shortForm : {false, true}) {
        GuardedItems items(size, kind + 1);
        std::mt19937 random(3);
        const auto less = [&](int a, int b) {
          std::vector<bool> seen(size);
          for (std::size_t i = 0; i < size; ++i) seen[static_cast<std::size_t>(items.items()[i])] = true;
          EXPECT_EQ(std::count(seen.begin(), seen.end(), true), static_cast<std::ptrdiff_t>(size));
          return kind == 0 ? a < b : kind == 1 ? a / 9 < b / 9 : random() % 2 == 0;
        };
        if (shortForm) {
          insertionSort(items.items(), size, less);
        } else {
          introsort(items.items(), size, less);
        }
      }
    }
  }
}

}  // namespace
}  // namespace vorn::tests
