// A mutex that shows whether a native locks a record.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

namespace vorn::tests {

// Whether anybody holds the mutex, this thread included. A thread of its own asks: the mutexes of collections are
// recursive, so that whoever holds one would always get it. Nobody holds a null one.
bool isLocked(pthread_mutex_t* mutex);

// The same for a record; false for one that is not synchronised.
template <class Record>
bool isRecordLocked(const Record& record) {
  return record.synchronized && isLocked(record.mutex);
}

// Gives a record an error-checking mutex that this thread holds, for a scope: another lock call by this thread fails
// with EDEADLK.
template <class Record>
class HeldRecordMutex {
 public:
  explicit HeldRecordMutex(Record& record) : record_(record), original_(record.mutex) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
    pthread_mutex_lock(&mutex_);
    record_.mutex = &mutex_;
  }
  ~HeldRecordMutex() {
    record_.mutex = original_;
    EXPECT_EQ(pthread_mutex_unlock(&mutex_), 0) << "somebody else unlocked the mutex";
    pthread_mutex_destroy(&mutex_);
  }
  HeldRecordMutex(const HeldRecordMutex&) = delete;
  HeldRecordMutex& operator=(const HeldRecordMutex&) = delete;

 private:
  Record& record_;
  pthread_mutex_t* original_;
  pthread_mutex_t mutex_;
};

}  // namespace vorn::tests
