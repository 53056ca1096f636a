// The scoped lock of a collection record.
#pragma once

#include <pthread.h>

#include <exception>
#include <system_error>

namespace vorn::collections {

// Locks a record's mutex for a scope when the record is synchronised; otherwise costs one predictable branch. Record is
// anything with `synchronized` and `mutex`. A synchronised record without a mutex ends the process; a failing lock call
// is thrown as std::system_error with its error number.
template <class Record>
class RecordLock {
 public:
  explicit RecordLock(const Record& record) : mutex_(record.synchronized ? acquire(record.mutex) : nullptr) {}
  ~RecordLock() {
    if (mutex_ != nullptr) [[unlikely]]
      pthread_mutex_unlock(mutex_);
  }
  RecordLock(const RecordLock&) = delete;
  RecordLock& operator=(const RecordLock&) = delete;

 private:
  static pthread_mutex_t* acquire(pthread_mutex_t* mutex) {
    if (mutex == nullptr) std::terminate();
    if (const int error = pthread_mutex_lock(mutex); error != 0) throwError(error);
    return mutex;
  }

  // A call, so that the text of an exception takes no room in the frames of natives, nor the stack protector's check of
  // it their time.
  [[noreturn, gnu::cold, gnu::noinline]] static void throwError(int error) {
    throw std::system_error(error, std::generic_category());
  }

  pthread_mutex_t* mutex_;
};

}  // namespace vorn::collections
