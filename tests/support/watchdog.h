// Ends tests that would wait forever.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace vorn::tests {

// Ends the process when the scope lasts longer than five minutes: a deadlock cannot be reported otherwise.
class Watchdog {
 public:
  Watchdog() : thread_([this] { watch(); }) {}
  ~Watchdog() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      done_ = true;
    }
    changed_.notify_one();
    thread_.join();
  }
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

 private:
  void watch() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (changed_.wait_for(lock, std::chrono::minutes(5), [this] { return done_; })) return;
    std::fputs("two collections wait for each other\n", stderr);
    std::abort();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  bool done_ = false;
  std::thread thread_;  // last, so that it starts when the rest exists
};

}  // namespace vorn::tests
