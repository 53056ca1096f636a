// Exhausted memory as the embedding API answers it.
#pragma once

#include <new>

namespace vorn::runtime {

// What make() gives, or null when there is no memory.
template <class Make>
inline void* madeOrNull(Make make) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace vorn::runtime
