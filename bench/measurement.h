// What the measured functions of all libraries share.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

#include "bench/keep.h"

namespace vorn::bench {

// Counts `elements` per iteration, as a rate and as nanoseconds for one.
inline void countElements(benchmark::State& state, std::int64_t elements) {
  state.SetItemsProcessed(state.iterations() * elements);
  state.counters["ns_per_element"] =
      benchmark::Counter(static_cast<double>(elements) * 1e-9,
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Collections consumed by one iteration of a benchmark that has to prepare them with the clock stopped: enough of them
// that stopping the clock, about a microsecond, does not show.
inline constexpr std::int64_t preparedCollections(std::int64_t elements) {
  return elements >= 64000 ? 1 : 64000 / elements;
}

// A measured function: builds or reads `elements` elements per iteration.
using Measured = void (*)(benchmark::State& state, std::int64_t elements);

// One row of a comparison: the same work by the natives, the C++ standard library and GLib.
struct Operation {
  const char* name;
  Measured vorn;
  Measured standard;
  Measured glib;
};

// The element at `index` of every collection of numbers that is read; searches look for `kAbsent`.
inline std::int32_t elementAt(std::int64_t index) { return static_cast<std::int32_t>(index * 7 % 1000003); }
inline constexpr std::int32_t kAbsent = -1;

}  // namespace vorn::bench
