#include "tests/nets/faults.h"

#include <vorn/runtime.h>

#include <cstdlib>
#include <new>

#include "tests/support/figures.h"

namespace {

// How many allocations by operator new succeed on this thread before one fails; negative when none is to.
thread_local constinit std::int64_t newsLeft = -1;
thread_local constinit bool newFailed = false;

void* newBlock(std::size_t size, std::size_t alignment) {
  if (newsLeft >= 0 && newsLeft-- == 0) {
    newFailed = true;
    return nullptr;
  }
  if (size == 0) size = 1;
  return alignment <= alignof(std::max_align_t)
             ? std::malloc(size)
             : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void* newBlockOrThrow(std::size_t size, std::size_t alignment) {
  void* const block = newBlock(size, alignment);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

// Those that are not here call these.
void* operator new(std::size_t size) { return newBlockOrThrow(size, 1); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return newBlockOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return newBlock(size, 1); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return newBlock(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }

namespace vorn::tests::nets {

namespace {

struct Fault {
  bool armed = false;
  Memory memory = Memory::Collected;
  std::int64_t after = 0;
  bool happened = false;
};
Fault fault;

}  // namespace

void failAllocation(Memory memory, std::int64_t after) { fault = {true, memory, after, false}; }

bool allocationFailed() { return fault.happened; }

ArmedFaults::ArmedFaults() {
  ++figures().operations;
  if (!fault.armed) return;
  if (fault.memory == Memory::Collected) {
    vorn_heap_fail_allocation(fault.after);
  } else {
    newFailed = false;
    newsLeft = fault.after;
  }
}

ArmedFaults::~ArmedFaults() {
  if (!fault.armed) return;
  fault.armed = false;
  if (fault.memory == Memory::Collected) {
    fault.happened = vorn_heap_failure_happened() != 0;
    vorn_heap_fail_allocation(-1);
  } else {
    fault.happened = newFailed;
    newsLeft = -1;
  }
  if (fault.happened) ++figures().faults;
}

}  // namespace vorn::tests::nets
