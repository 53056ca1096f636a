#include "tests/support/threads.h"

#include <gtest/gtest.h>
#include <vorn/runtime.h>

#include <latch>
#include <memory>
#include <utility>
#include <vector>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

Beside::Beside(std::function<void()> work)
    : thread_([this, work = std::move(work)] {
        try {
          work();
        } catch (...) {
          thrown_ = std::current_exception();
        }
      }) {}

Beside::~Beside() {
  if (thread_.joinable()) thread_.join();
  EXPECT_EQ(thrown_, nullptr) << "a thread has ended with an exception";
}

void Beside::join() {
  thread_.join();
  if (const std::exception_ptr thrown = std::exchange(thrown_, nullptr)) std::rethrow_exception(thrown);
}

void runTogether(int count, const std::function<void(int number)>& work) {
  std::latch start(count);
  std::vector<std::unique_ptr<Beside>> threads;
  for (int number = 0; number < count; ++number) {
    threads.push_back(std::make_unique<Beside>([&work, &start, number] {
      vorn_thread_attach();
      start.arrive_and_wait();
      work(number);
      EXPECT_NOTHING_RAISED() << "on thread " << number;
    }));
  }
  std::exception_ptr first;
  for (const std::unique_ptr<Beside>& thread : threads) {
    try {
      thread->join();
    } catch (...) {
      if (first == nullptr) first = std::current_exception();
    }
  }
  if (first != nullptr) std::rethrow_exception(first);
}

void runTogether(std::initializer_list<std::function<void()>> works) {
  runTogether(static_cast<int>(works.size()), [&](int number) { works.begin()[number](); });
}

void onAnotherThread(const std::function<void()>& work) { Beside(work).join(); }

}  // namespace vorn::tests
