// What the tests of immutable lists and tuples share.
#pragma once

#include <pthread.h>

#include <new>

#include "collections/core/port/object_layout.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/error_texts.h"
#include "tests/support/lists.h"
#include "tests/support/sequences.h"

namespace vorn::tests {

inline constexpr const char* kIndexError = error_texts::kIndexOutOfBounds;
inline constexpr const char* kImmutableSourceError = error_texts::kImmutableListSource;
inline constexpr const char* kImmutableReadOnlyError = error_texts::kImmutableListReadOnly;
inline constexpr const char* kTupleSourceError = error_texts::kTupleSource;
inline constexpr const char* kTupleReadOnlyError = error_texts::kTupleReadOnly;

// The items of a tuple as `operator_index` gives them.
inline Elements itemsOf(void* tuple) {
  Elements items;
  for (long long i = 0, size = vorn_collections_Tuple_size(tuple); i < size; ++i) {
    items.push_back(describe(vorn_collections_Tuple_operator_index(tuple, i)));
  }
  return items;
}

// An immutable list built from a source.
inline Handle immutableFrom(void* source) {
  Handle result = object("ImmutableList");
  vorn_collections_ImmutableList_ctor(result, source);
  return result;
}

// Makes a list synchronised that its class leaves without a lock, for a scope: with a plain mutex of its own.
class LentMutex {
 public:
  explicit LentMutex(void* list) : data_(*getListData(list)) {
    data_.mutex = &mutex_;
    data_.synchronized = true;
  }
  ~LentMutex() {
    EXPECT_EQ(pthread_mutex_trylock(&mutex_), 0) << "the lock is still held";
    pthread_mutex_unlock(&mutex_);
    data_.synchronized = false;
    data_.mutex = nullptr;
  }
  LentMutex(const LentMutex&) = delete;
  LentMutex& operator=(const LentMutex&) = delete;

  [[nodiscard]] bool isHeld() {
    if (pthread_mutex_trylock(&mutex_) != 0) return true;
    pthread_mutex_unlock(&mutex_);
    return false;
  }

 private:
  ListData& data_;
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
};

}  // namespace vorn::tests
