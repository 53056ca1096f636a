// A mutex that shows whether a native locks.
#pragma once

#include <pthread.h>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

// Gives a list an error-checking mutex that this thread holds, for a scope: another lock call by this thread fails with
// EDEADLK.
class HeldMutex {
 public:
  explicit HeldMutex(void* list) : data_(*getListData(list)), original_(data_.mutex) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
    pthread_mutex_lock(&mutex_);
    data_.mutex = &mutex_;
  }
  ~HeldMutex() {
    data_.mutex = original_;
    EXPECT_EQ(pthread_mutex_unlock(&mutex_), 0) << "somebody else unlocked the mutex";
    pthread_mutex_destroy(&mutex_);
  }
  HeldMutex(const HeldMutex&) = delete;
  HeldMutex& operator=(const HeldMutex&) = delete;

 private:
  ListData& data_;
  pthread_mutex_t* original_;
  pthread_mutex_t mutex_;
};

}  // namespace vorn::tests
