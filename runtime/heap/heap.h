// The heap as the rest of the runtime sees it: scanned and atomic blocks, and roots of the whole process.
//
// Every function here starts the runtime with the default options when nobody has started it, and attaches the calling
// thread when it is not attached. Any allocation may collect.
#pragma once

#include <cstddef>

namespace vorn::runtime {

// A zeroed, 16-byte aligned block that the collector scans for handles. Throws std::bad_alloc on exhaustion.
[[nodiscard]] void* allocateScanned(std::size_t bytes);

// A 16-byte aligned block that the collector never scans; its contents are undefined. Throws std::bad_alloc on
// exhaustion.
[[nodiscard]] void* allocateAtomic(std::size_t bytes);

// The same for memory of a collection, which is no handle to anybody, with a null result on exhaustion.
[[nodiscard]] void* tryAllocateScanned(std::size_t bytes) noexcept;
[[nodiscard]] void* tryAllocateAtomic(std::size_t bytes) noexcept;

// Makes the handle in *slot a root of the whole process until it is removed, by any thread. A slot that is a root
// already stays one, and removing a slot that is none does nothing. Neither starts the runtime, so that static objects
// may add their slots before main has chosen a heap.
void addGlobalRoot(void** slot);
void removeGlobalRoot(void** slot);

}  // namespace vorn::runtime
