// The threads that other tests are made of: a fault on one of them must not go unseen.
#include <gtest/gtest-spi.h>

#include <atomic>
#include <stdexcept>

#include "tests/support/runtime_test.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

using TestThreads = RuntimeTest;

TEST_F(TestThreads, RunTogether_RunsEachNumberOnceAtTheSameTime) {
  std::atomic<int> seen = 0;
  std::atomic<int> sum = 0;
  runTogether(4, [&](int number) {
    sum += 1 << (4 * number);
    ++seen;
    while (seen < 4) std::this_thread::yield();
  });
  EXPECT_EQ(sum, 0x1111);
}

TEST_F(TestThreads, RunTogether_ThrowsAgainWhenAllHaveEnded) {
  std::atomic<int> ended = 0;
  const auto work = [&](int number) {
    ++ended;
    if (number == 1) throw std::domain_error("on the thread");
  };
  EXPECT_THROW(runTogether(3, work), std::domain_error);
  EXPECT_EQ(ended, 3);
}

TEST_F(TestThreads, RunTogether_AnErrorLeftPendingFailsTheTest) {
  EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(runTogether(1, [](int) { vorn_raise("Exception", "left"); }), "left");
}

TEST_F(TestThreads, OnAnotherThread_ThrowsAgain) {
  EXPECT_THROW(onAnotherThread([] { throw std::domain_error("on the thread"); }), std::domain_error);
}

TEST_F(TestThreads, Beside_AnExceptionThatNobodyJoinsFailsTheTest) {
  EXPECT_NONFATAL_FAILURE({ const Beside thread([] { throw std::domain_error("on the thread"); }); },
                          "ended with an exception");
}

}  // namespace
}  // namespace vorn::tests
