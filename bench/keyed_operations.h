// The operations on maps and sets that are measured, and who implements them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/program.h"

namespace vorn::bench {

// What stays in the caches, and what does not.
inline constexpr std::int64_t kSmall = 1'000;
inline constexpr std::int64_t kLarge = 1'000'000;

// The keys of maps. Each library keeps them in boxes of its own.
using Int = std::int64_t;
using Text = std::string;

// Keys are looked up in another order than they were put in.
inline constexpr std::uint64_t kPutOrder = 1;
inline constexpr std::uint64_t kGetOrder = 2;

// The numbers 0 ... n - 1 in an order without pattern, the same for every library (Fisher and Yates). Orders are kept:
// repetitions ask for the same ones again.
const std::vector<std::uint32_t>& shuffledOrder(std::int64_t elements, std::uint64_t seed);

// The key of a number; the absent ones are other keys.
Int intKey(std::uint32_t number, bool absent);
// Of 8 to 12 bytes.
Text textKey(std::uint32_t number, bool absent);

// The size up to which a map is grown, a row for each decade: as many as take less than 6 GB, where the machine has
// them to spare.
std::int64_t largestGrowth();

// Appends the whole table of operations as one library does them.
namespace natives {
void addKeyed(Benchmarks& benchmarks);
// What no size and no keys may make disproportionate: each operation beside the one it must not leave far behind.
void addProportions(Benchmarks& benchmarks);
// Prints what a hashed map of so many entries takes from the collected heap.
void printMapMemory(std::int64_t elements);
}  // namespace natives
// std::unordered_map and std::map.
namespace standard {
void addKeyed(Benchmarks& benchmarks);
}
// GHashTable and GTree.
namespace glib {
void addKeyed(Benchmarks& benchmarks);
}
// absl::flat_hash_map and absl::btree_map.
namespace abseil {
void addKeyed(Benchmarks& benchmarks);
}

}  // namespace vorn::bench
