#include "tests/support/held_mutex.h"

#include <mutex>
#include <semaphore>
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
    const std::lock_guard lock(oneCaller_);
    mutex_ = mutex;
    asked_.release();
    answered_.acquire();
    return locked_;
  }

 private:
  Prober() {
    std::thread([this] { answer(); }).detach();
  }

  void answer() {
    while (true) {
      asked_.acquire();
      locked_ = pthread_mutex_trylock(mutex_) != 0;
      if (!locked_) pthread_mutex_unlock(mutex_);
      answered_.release();
    }
  }

  std::mutex oneCaller_;
  std::binary_semaphore asked_{0};
  std::binary_semaphore answered_{0};
  pthread_mutex_t* mutex_ = nullptr;
  bool locked_ = false;
};

}  // namespace

bool isLocked(pthread_mutex_t* mutex) { return mutex != nullptr && Prober::instance().isLocked(mutex); }

}  // namespace vorn::tests
