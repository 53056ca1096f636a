#include "runtime/threads/fast_random.h"

#include <atomic>

#include "collections/core/port/text.h"
#include "runtime/threads/thread_state.h"

namespace vorn::runtime {

namespace {
constexpr std::uint64_t kDefaultSeed = 0x766F726E2D727400ULL;
std::atomic<std::uint64_t> streamSeed{kDefaultSeed};
std::atomic<std::uint64_t> streamsHandedOut{0};
}  // namespace

void seedRandomStreams(std::uint64_t seed) {
  streamSeed.store(seed == 0 ? kDefaultSeed : seed, std::memory_order_relaxed);
  streamsHandedOut.store(0, std::memory_order_relaxed);
}

// Streams start at mixed, hence unrelated, places of the generator's one cycle of 2^64 states.
std::uint64_t nextRandomStream() {
  const std::uint64_t number = streamsHandedOut.fetch_add(1, std::memory_order_relaxed);
  return mixRandomBits(streamSeed.load(std::memory_order_relaxed) + mixRandomBits(number));
}

}  // namespace vorn::runtime

// Each thread draws from a stream of its own, so that nothing is shared and a single-threaded run is reproducible from
// the seed.
std::uint64_t nextFastRandomU64() { return vorn::runtime::nextRandom(vorn::runtime::attachedThread().randomState); }
