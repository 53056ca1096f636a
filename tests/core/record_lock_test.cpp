#include "collections/core/record_lock.h"

#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>
#include <type_traits>

#include "tests/core/core_test_support.h"
#include "tests/support/held_mutex.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

// A mutex that reports misuse instead of hanging.
class CheckedMutex {
 public:
  CheckedMutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
  }
  ~CheckedMutex() { pthread_mutex_destroy(&mutex_); }
  CheckedMutex(const CheckedMutex&) = delete;
  CheckedMutex& operator=(const CheckedMutex&) = delete;

  [[nodiscard]] pthread_mutex_t* get() { return &mutex_; }

  // Whether somebody holds it.
  [[nodiscard]] bool isLocked() {
    const int error = pthread_mutex_trylock(&mutex_);
    if (error == 0) pthread_mutex_unlock(&mutex_);
    return error != 0;
  }

 private:
  pthread_mutex_t mutex_;
};

class RecordLockTest : public RuntimeTest {
 protected:
  CheckedMutex mutex_;
  ListData data_;
};

TEST_F(RecordLockTest, UnsynchronisedRecordIsNotLocked) {
  data_.mutex = mutex_.get();
  {
    const ListDataLock lock(data_);
    EXPECT_FALSE(mutex_.isLocked());
  }
  EXPECT_FALSE(mutex_.isLocked());
}

TEST_F(RecordLockTest, UnsynchronisedRecordNeedsNoMutex) { EXPECT_NO_THROW(const ListDataLock lock(data_)); }

TEST_F(RecordLockTest, UnsynchronisedRecordLeavesAHeldMutexHeld) {
  data_.mutex = mutex_.get();
  ASSERT_EQ(pthread_mutex_lock(mutex_.get()), 0);
  { EXPECT_NO_THROW(const ListDataLock lock(data_)); }
  EXPECT_TRUE(mutex_.isLocked());
  EXPECT_EQ(pthread_mutex_unlock(mutex_.get()), 0);
}

TEST_F(RecordLockTest, SynchronisedRecordIsLockedForTheScope) {
  data_.synchronized = true;
  data_.mutex = mutex_.get();
  EXPECT_FALSE(mutex_.isLocked());
  {
    const ListDataLock lock(data_);
    EXPECT_TRUE(mutex_.isLocked());
  }
  EXPECT_FALSE(mutex_.isLocked());
}

TEST_F(RecordLockTest, EveryScopeLocksAgain) {
  data_.synchronized = true;
  data_.mutex = mutex_.get();
  for (int i = 0; i < 3; ++i) {
    const ListDataLock lock(data_);
    EXPECT_TRUE(mutex_.isLocked());
  }
  EXPECT_FALSE(mutex_.isLocked());
}

TEST_F(RecordLockTest, AnExceptionUnwindingThroughTheScopeReleasesTheMutex) {
  data_.synchronized = true;
  data_.mutex = mutex_.get();
  EXPECT_THROW(
      {
        const ListDataLock lock(data_);
        EXPECT_TRUE(mutex_.isLocked());
        throw std::runtime_error("through the lock");
      },
      std::runtime_error);
  EXPECT_FALSE(mutex_.isLocked());
}

TEST_F(RecordLockTest, TheMutexTakenIsTheOneReleased) {
  CheckedMutex other;
  data_.synchronized = true;
  data_.mutex = mutex_.get();
  {
    const ListDataLock lock(data_);
    data_.mutex = other.get();
    data_.synchronized = false;
  }
  EXPECT_FALSE(mutex_.isLocked());
  EXPECT_FALSE(other.isLocked());
}

TEST_F(RecordLockTest, AFailingLockIsASystemErrorWithItsNumber) {
  data_.synchronized = true;
  data_.mutex = mutex_.get();
  ASSERT_EQ(pthread_mutex_lock(mutex_.get()), 0);
  try {
    const ListDataLock lock(data_);
    ADD_FAILURE() << "a mutex that this thread holds was locked again";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), EDEADLK);
    EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
  }
  EXPECT_TRUE(mutex_.isLocked()) << "a lock that failed must not unlock";
  EXPECT_EQ(pthread_mutex_unlock(mutex_.get()), 0);
  EXPECT_NOTHING_RAISED();
}

TEST_F(RecordLockTest, ASynchronisedRecordWithoutMutexEndsTheProcess) {
  data_.synchronized = true;
  data_.mutex = nullptr;
  EXPECT_EXIT(const ListDataLock lock(data_), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(RecordLockTest, TheProcessEndsThroughTerminate) {
  data_.synchronized = true;
  data_.mutex = nullptr;
  EXPECT_EXIT(
      {
        std::set_terminate([] { std::_Exit(77); });
        try {
          const ListDataLock lock(data_);
        } catch (...) {
          std::_Exit(78);
        }
      },
      ::testing::ExitedWithCode(77), "");
}

TEST_F(RecordLockTest, LocksAreNeitherCopiedNorMoved) {
  static_assert(!std::is_copy_constructible_v<ListDataLock> && !std::is_copy_assignable_v<ListDataLock>);
  static_assert(!std::is_move_constructible_v<ListDataLock> && !std::is_move_assignable_v<ListDataLock>);
}

TEST_F(RecordLockTest, RealSynchronisedListsLockTheirOwnMutex) {
  for (const char* name : {"ArrayListSync", "LinkedListSync"}) {
    Handle list = object(name);
    ASSERT_NE(record(list).mutex, nullptr);
    {
      const ListDataLock lock(record(list));
      EXPECT_TRUE(isRecordLocked(record(list)));
    }
    EXPECT_FALSE(isRecordLocked(record(list)));
  }
}

TEST_F(RecordLockTest, TwoThreadsExcludeEachOther) {
  data_.synchronized = true;
  data_.mutex = mutex_.get();
  long long counter = 0;  // unprotected but for the lock
  runTogether(2, [&](int) {
    for (int i = 0; i < 20000; ++i) {
      const ListDataLock lock(data_);
      counter = counter + 1;
    }
  });
  EXPECT_EQ(counter, 40000);
}

struct OtherRecord {
  bool synchronized = false;
  pthread_mutex_t* mutex = nullptr;
};

TEST_F(RecordLockTest, AnyRecordWithTheTwoFieldsCanBeLocked) {
  OtherRecord other{true, mutex_.get()};
  {
    const collections::RecordLock<OtherRecord> lock(other);
    EXPECT_TRUE(mutex_.isLocked());
  }
  EXPECT_FALSE(mutex_.isLocked());
  other = {};
  EXPECT_NO_THROW(const collections::RecordLock<OtherRecord> lock(other));
}

}  // namespace
}  // namespace vorn::tests
