// A thread with little stack, for what must not need more the deeper values are nested.
#pragma once

#include <functional>

namespace vorn::tests {

// Runs the function on a new thread with a stack of 256 KB (more under ThreadSanitizer, which needs some itself) and
// waits for its end.
void onSmallStack(const std::function<void()>& function);

}  // namespace vorn::tests
