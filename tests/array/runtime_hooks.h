// Looking in on the library: the test program is linked so that its calls of some operations come here first.
#pragma once

#include <pthread.h>

#include <cstdint>
#include <functional>
#include <string_view>

namespace vorn::tests {

// Called with the operation's name before each runtime operation that raises, boxes, or makes an object or a String.
extern std::function<void(std::string_view)>* onRuntimeCall;

// What Vorn_codeUnitToString gives of units beyond 16 bits, of which this runtime has no text; null otherwise.
extern const char* textOfWideUnits;

// Makes Vorn_allocObject give null.
extern bool noObjects;

// Called after each mutex that this thread unlocks.
extern thread_local std::function<void(pthread_mutex_t*)>* afterUnlock;

// The links that this thread followed to find nodes of linked lists by their index.
extern thread_local std::uint64_t linkedSteps;

}  // namespace vorn::tests
