// Writes after each test which planted faults it came by and how long it took: a line of the test's name, milliseconds
// and numbers, appended to the file that VORN_PLANTED_TRACE names.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/mutants/planted.h"

namespace {

using vorn::planted::reached;

class ReachedListener : public testing::EmptyTestEventListener {
 public:
  explicit ReachedListener(const char* path) : file_(std::fopen(path, "a")) {}

 private:
  void OnTestStart(const testing::TestInfo& /*test*/) override { std::memset(reached, 0, sizeof reached); }

  void OnTestEnd(const testing::TestInfo& test) override {
    std::fprintf(file_, "%s.%s %lld", test.test_suite_name(), test.name(),
                 static_cast<long long>(test.result()->elapsed_time()));
    for (int number = 1; number < vorn::planted::kMostFaults; ++number) {
      if (reached[number] != 0) std::fprintf(file_, " %d", number);
    }
    std::fputc('\n', file_);
    std::fflush(file_);
  }

  std::FILE* file_;
};

[[maybe_unused]] const bool listening = [] {
  const char* path = std::getenv("VORN_PLANTED_TRACE");
  if (path != nullptr) testing::UnitTest::GetInstance()->listeners().Append(new ReachedListener(path));
  return path != nullptr;
}();

}  // namespace
