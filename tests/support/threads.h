// Threads of tests: several at once, one by itself, or one beside the test.
#pragma once

#include <exception>
#include <functional>
#include <initializer_list>
#include <thread>

namespace vorn::tests {

// Runs work(0) ... work(count - 1), each on a thread of its own, and returns when all have ended. The threads are
// attached to the runtime; none begins before all are there. One that ends with a pending error fails the test. An
// exception is thrown again here, the first one where there are several.
void runTogether(int count, const std::function<void(int number)>& work);

// The same with different work for each.
void runTogether(std::initializer_list<std::function<void()>> works);

// Runs the work on a new thread, which is attached to nothing yet, and waits for its end. An exception is thrown again
// here; errors that the thread leaves pending end with it.
void onAnotherThread(const std::function<void()>& work);

// A new thread that runs beside the test, and is waited for by join() or at the end of the scope. An exception is thrown
// again by join(); without that it fails the test.
class Beside {
 public:
  explicit Beside(std::function<void()> work);
  ~Beside();
  Beside(const Beside&) = delete;
  Beside& operator=(const Beside&) = delete;

  void join();

 private:
  std::exception_ptr thrown_;
  std::thread thread_;  // last, so that it starts when the rest exists
};

}  // namespace vorn::tests
