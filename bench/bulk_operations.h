// The operations on whole lists that are measured, and who implements them.
#pragma once

#include "bench/measurement.h"

namespace vorn::bench {

// The natives, called through the shared libraries.
namespace natives {
void sumInt(benchmark::State& state, std::int64_t elements);
void sumLong(benchmark::State& state, std::int64_t elements);
void sumDouble(benchmark::State& state, std::int64_t elements);
void reverse(benchmark::State& state, std::int64_t elements);
void slice(benchmark::State& state, std::int64_t elements);
void sliceEverySecond(benchmark::State& state, std::int64_t elements);
void concat(benchmark::State& state, std::int64_t elements);
void repeat(benchmark::State& state, std::int64_t elements);
void addAll(benchmark::State& state, std::int64_t elements);
void addAllWidening(benchmark::State& state, std::int64_t elements);
void addAllSynchronised(benchmark::State& state, std::int64_t elements);
void addAllBoxed(benchmark::State& state, std::int64_t elements);
void addAllLinked(benchmark::State& state, std::int64_t elements);
void addAllOfSet(benchmark::State& state, std::int64_t elements);
void sliceAssignInts(benchmark::State& state, std::int64_t elements);
void sliceAssignLinked(benchmark::State& state, std::int64_t elements);
void shuffle(benchmark::State& state, std::int64_t elements);
void commitInts(benchmark::State& state, std::int64_t elements);
void commitChars(benchmark::State& state, std::int64_t elements);
void i64DataPtr(benchmark::State& state, std::int64_t elements);
void writeThroughPointer(benchmark::State& state, std::int64_t elements);
}  // namespace natives

// std::vector.
namespace standard {
void sumInt(benchmark::State& state, std::int64_t elements);
void sumLong(benchmark::State& state, std::int64_t elements);
void sumDouble(benchmark::State& state, std::int64_t elements);
void reverse(benchmark::State& state, std::int64_t elements);
void slice(benchmark::State& state, std::int64_t elements);
void sliceEverySecond(benchmark::State& state, std::int64_t elements);
void concat(benchmark::State& state, std::int64_t elements);
void addAll(benchmark::State& state, std::int64_t elements);
void shuffle(benchmark::State& state, std::int64_t elements);
void narrow(benchmark::State& state, std::int64_t elements);
void widen(benchmark::State& state, std::int64_t elements);
void writeThroughPointer(benchmark::State& state, std::int64_t elements);
}  // namespace standard

// GArray. Sums, reversal and slices are the user's loops.
namespace glib {
void sumInt(benchmark::State& state, std::int64_t elements);
void slice(benchmark::State& state, std::int64_t elements);
void concat(benchmark::State& state, std::int64_t elements);
void addAll(benchmark::State& state, std::int64_t elements);
}  // namespace glib

}  // namespace vorn::bench
