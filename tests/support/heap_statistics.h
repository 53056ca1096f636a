// What the heap says of itself.
#pragma once

#include <vorn/runtime.h>

#include <cstdint>
#include <functional>

namespace vorn::tests {

vorn_heap_statistics statistics();

// Bytes in use after a collection. Only the stress heap frees at once whatever no root reaches.
std::uint64_t liveBytes();

// How many blocks are allocated while the work runs.
std::uint64_t allocationsOf(const std::function<void()>& work);

}  // namespace vorn::tests
