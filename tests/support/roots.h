// How many roots there are, to be the same before and after a native.
#pragma once

#include <cstddef>

namespace vorn::tests {

// How many root slots and ranges are registered for this thread and for the process.
std::size_t rootCount();

}  // namespace vorn::tests
