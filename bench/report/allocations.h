// How many blocks the process has taken so far, from the runtime's heap and from malloc. Counting slows malloc down, so
// it is a program of its own that does, with the same rows: report_memory beside report_bench.
#pragma once

#include <cstdint>

namespace vorn::bench::report {

struct Allocations {
  std::int64_t blocks;
  std::int64_t bytes;
};

extern const bool kCountsAllocations;
Allocations allocationsSoFar();

}  // namespace vorn::bench::report
