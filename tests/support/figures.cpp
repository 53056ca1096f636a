#include "tests/support/figures.h"

#include <gtest/gtest.h>
#include <vorn/runtime.h>

#include <cstdio>
#include <cstdlib>

namespace vorn::tests {

Figures& figures() {
  static Figures all;
  return all;
}

namespace {

class Counter : public ::testing::EmptyTestEventListener {
  void OnTestStart(const ::testing::TestInfo&) override { before_ = figures().operations; }
  void OnTestEnd(const ::testing::TestInfo& test) override {
    if (figures().operations == before_ && !test.result()->Skipped()) ++figures().operations;
  }

  std::uint64_t before_ = 0;
};

}  // namespace

// The framework owns the listener.
void countTests() { ::testing::UnitTest::GetInstance()->listeners().Append(new Counter); }

void writeFigures() {
  const char* const path = std::getenv("VORN_TEST_FIGURES");
  if (path == nullptr || *path == '\0') return;
  vorn_heap_statistics heap;
  vorn_heap_get_statistics(&heap);
  const auto number = [](std::uint64_t value) { return static_cast<unsigned long long>(value); };
  std::FILE* const file = std::fopen(path, "a");
  if (file == nullptr) {
    std::perror(path);
    std::exit(1);
  }
  // One short line is written at once, so that programs which run beside each other do not mix theirs.
  std::fprintf(file, "%llu %llu %llu %d\n", number(figures().operations), number(figures().faults),
               number(heap.collections), ::testing::UnitTest::GetInstance()->failed_test_count());
  std::fclose(file);
}

}  // namespace vorn::tests
