#include "tests/support/roots.h"

#include "runtime/heap/global_roots.h"
#include "runtime/threads/thread_state.h"

namespace vorn::tests {

std::size_t rootCount() {
  std::size_t count = runtime::attachedThread().roots.size();
  runtime::GlobalRoots::instance().forEach([&](void**) { ++count; });
  return count;
}

}  // namespace vorn::tests
