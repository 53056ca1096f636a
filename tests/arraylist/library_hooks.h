// Looking in on the library: the test program is linked so that its calls of some operations come here first. All of it
// is this thread's own.
#pragma once

#include <pthread.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace vorn::tests {

// Makes new objects and lists come out null.
extern thread_local bool noObjects;

// Called after each mutex that is unlocked.
extern thread_local std::function<void(pthread_mutex_t*)>* afterUnlock;

// The links that were followed to find nodes of linked lists by their index.
extern thread_local std::uint64_t linkedSteps;

// How often sets and tuples were read by position.
extern thread_local std::uint64_t setReads;
extern thread_local std::uint64_t tupleReads;

// How often a text was asked for, or two were compared.
extern thread_local std::uint64_t textQuestions;

// Called with each position of a tuple before it is read.
extern thread_local std::function<void(long long)>* beforeTupleRead;

// Root slots in the order of their registration: the handle that each one held then, and whether it is still
// registered. Recorded while the pointer is set.
struct RootSlot {
  void** slot;
  void* handle;
  bool registered;
};
extern thread_local std::vector<RootSlot>* rootSlots;

// The words of each range at the moment when it was registered as a root. Recorded while the pointer is set.
extern thread_local std::vector<std::vector<void*>>* rootRanges;

}  // namespace vorn::tests
