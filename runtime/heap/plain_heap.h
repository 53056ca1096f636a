// The plain heap: malloc'ed blocks that are never freed. For ThreadSanitizer, valgrind and AddressSanitizer, which
// understand malloc and no collector.
#pragma once

#include "runtime/heap/heap_backend.h"

namespace vorn::runtime {

HeapBackend* makePlainHeap();

}  // namespace vorn::runtime
