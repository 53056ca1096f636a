#include "tests/support/heap_statistics.h"

namespace vorn::tests {

vorn_heap_statistics statistics() {
  vorn_heap_statistics result;
  vorn_heap_get_statistics(&result);
  return result;
}

std::uint64_t liveBytes() {
  vorn_heap_collect();
  return statistics().bytes_live;
}

std::uint64_t allocationsOf(const std::function<void()>& work) {
  const std::uint64_t before = statistics().allocations;
  work();
  return statistics().allocations - before;
}

}  // namespace vorn::tests
