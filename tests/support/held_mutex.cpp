#include "tests/support/held_mutex.h"

#include "tests/support/threads.h"

namespace vorn::tests {

bool isLocked(pthread_mutex_t* mutex) {
  if (mutex == nullptr) return false;
  bool locked = true;
  onAnotherThread([&] {
    locked = pthread_mutex_trylock(mutex) != 0;
    if (!locked) pthread_mutex_unlock(mutex);
  });
  return locked;
}

}  // namespace vorn::tests
