// Running an operation while its allocations fail one after the other.
#pragma once

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <type_traits>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

// Runs the operation with its first, second, ... allocation failing until it succeeds. Each failure must leave it as
// std::bad_alloc, or as a null result where it has one, without a language error; check() runs after each. Returns how
// many allocations failed.
template <class Operation, class Check>
int sweepAllocationFailures(Operation operation, Check check) {
  constexpr int kMost = 500;
  for (int failing = 0; failing < kMost; ++failing) {
    SCOPED_TRACE("failing allocation " + std::to_string(failing));
    bool failed = false;
    vorn_heap_fail_allocation(failing);
    try {
      if constexpr (std::is_void_v<decltype(operation())>) {
        operation();
      } else {
        failed = static_cast<void*>(operation()) == nullptr;
      }
    } catch (const std::bad_alloc&) {
      failed = true;
    }
    const bool happened = vorn_heap_failure_happened() != 0;
    vorn_heap_fail_allocation(-1);
    EXPECT_EQ(failed, happened);
    EXPECT_NOTHING_RAISED();
    if (!failed) return failing;
    check();
    if (::testing::Test::HasFailure()) return failing;
  }
  ADD_FAILURE() << "the operation never succeeds";
  return kMost;
}

}  // namespace vorn::tests
