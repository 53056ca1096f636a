// Runs the tests of one binary on the heap that VORN_TEST_HEAP describes (see vorn_runtime_parse_options).
#include <gtest/gtest.h>
#include <vorn/runtime.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/runtime_test.h"

namespace {
bool stressHeap = false;
}

bool vorn::tests::onStressHeap() { return stressHeap; }

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  const char* heap = std::getenv("VORN_TEST_HEAP");
  vorn_runtime_options options;
  if (vorn_runtime_parse_options(heap != nullptr ? heap : "heap=collected", &options) == 0 ||
      vorn_runtime_start(&options) == 0) {
    std::fprintf(stderr, "cannot start the runtime with VORN_TEST_HEAP=%s\n", heap != nullptr ? heap : "(unset)");
    return 1;
  }
  stressHeap = options.heap == VORN_HEAP_STRESS;
  return RUN_ALL_TESTS();
}
