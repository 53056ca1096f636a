// Runs the tests of one binary on the heap that VORN_TEST_HEAP describes (see vorn_runtime_parse_options).
#include <gtest/gtest.h>
#include <vorn/runtime.hpp>

#include <cstdio>
#include <cstdlib>

#include "tests/support/figures.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  // This style starts the program anew, which an emulated one cannot do: there the environment asks for the other.
  if (std::getenv("GTEST_DEATH_TEST_STYLE") == nullptr) ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  const char* heap = std::getenv("VORN_TEST_HEAP");
  const vorn::RuntimeScope runtime(heap);
  if (!runtime.running()) {
    std::fprintf(stderr, "cannot start the runtime with VORN_TEST_HEAP=%s\n", heap != nullptr ? heap : "(unset)");
    return 1;
  }
  vorn::tests::countTests();
  const int status = RUN_ALL_TESTS();
  vorn::tests::writeFigures();
  return status;
}
