#include "tests/support/held_mutex.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace vorn::tests {

namespace {

// A thread that tries mutexes for others: whether the calling thread holds a recursive one is not seen from there. One
// for the whole process, since some tests ask hundreds of times. Never destroyed, as its thread never ends.
class Prober {
 public:
  static Prober& instance() {
    static auto* const prober = new Prober;
    return *prober;
  }

  bool isLocked(pthread_mutex_t* mutex) {
    const std::lock_guard caller(oneCaller_);
    std::unique_lock lock(mutex_);
    asked_ = mutex;
    changed_.notify_all();
    changed_.wait(lock, [this] { return asked_ == nullptr; });
    return locked_;
  }

 private:
  Prober() {
    std::thread([this] { answer(); }).detach();
  }

  void answer() {
    std::unique_lock lock(mutex_);
    while (true) {
      changed_.wait(lock, [this] { return asked_ != nullptr; });
      locked_ = pthread_mutex_trylock(asked_) != 0;
      if (!locked_) pthread_mutex_unlock(asked_);
      asked_ = nullptr;
      changed_.notify_all();
    }
  }

  std::mutex oneCaller_;
  std::mutex mutex_;
  std::condition_variable changed_;
  pthread_mutex_t* asked_ = nullptr;  // null once it is answered
  bool locked_ = false;
};

}  // namespace

bool isLocked(pthread_mutex_t* mutex) { return mutex != nullptr && Prober::instance().isLocked(mutex); }

}  // namespace vorn::tests
