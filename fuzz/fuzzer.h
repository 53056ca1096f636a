// What every fuzzer needs: a running runtime, and an end that shows what differed.
#pragma once

#include <vorn/runtime.hpp>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace vorn::fuzz {

// Starts the runtime, once and for the rest of the process, on the heap that VORN_TEST_HEAP describes.
inline void startRuntime() {
  static const RuntimeScope runtime(std::getenv("VORN_TEST_HEAP"));
  if (!runtime.running()) std::abort();
}

// Ends the process when the two texts differ.
inline void requireSame(const char* what, std::string_view actual, std::string_view expected) {
  if (actual == expected) return;
  std::fprintf(stderr, "%s differs\n  is:       %.*s\n  expected: %.*s\n", what, static_cast<int>(actual.size()),
               actual.data(), static_cast<int>(expected.size()), expected.data());
  std::abort();
}

}  // namespace vorn::fuzz
