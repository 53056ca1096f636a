// The functions of malloc for the whole process, each of which counts and calls glibc's own.
#include <vorn/runtime.h>

#include <atomic>
#include <cerrno>
#include <cstddef>

#include "bench/report/allocations.h"

extern "C" {
void* __libc_malloc(std::size_t size);                           // NOLINT(bugprone-reserved-identifier): glibc's
void* __libc_calloc(std::size_t count, std::size_t size);        // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* block, std::size_t size);             // NOLINT(bugprone-reserved-identifier)
void* __libc_memalign(std::size_t alignment, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
}

namespace vorn::bench::report {

namespace {

std::atomic<std::int64_t> blocks;
std::atomic<std::int64_t> bytes;

void count(std::size_t size) {
  blocks.fetch_add(1, std::memory_order_relaxed);
  bytes.fetch_add(static_cast<std::int64_t>(size), std::memory_order_relaxed);
}

}  // namespace

const bool kCountsAllocations = true;

Allocations allocationsSoFar() {
  vorn_heap_statistics heap;
  vorn_heap_get_statistics(&heap);
  return {blocks + static_cast<std::int64_t>(heap.allocations),
          bytes + static_cast<std::int64_t>(heap.bytes_allocated)};
}

}  // namespace vorn::bench::report

using vorn::bench::report::count;

extern "C" {

void* malloc(std::size_t size) {
  count(size);
  return __libc_malloc(size);
}

void* calloc(std::size_t number, std::size_t size) {
  count(number * size);
  return __libc_calloc(number, size);
}

void* realloc(void* block, std::size_t size) {
  count(size);
  return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  count(size);
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  count(size);
  *block = __libc_memalign(alignment, size);
  return *block != nullptr ? 0 : ENOMEM;
}
}
