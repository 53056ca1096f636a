// Pages of 2 MB under a large collected heap. A search in a table of many megabytes touches other pages every time, and
// the processor keeps track of far fewer small pages than such a table has.
#pragma once

#include <cstddef>

namespace vorn::runtime {

// From now on they are asked for. Call once.
void wantHugePages() noexcept;

// Asks the system, once for each stretch of 2 MB, to have the block on such pages, when the heap is large. Nothing
// changes but speed and what a stretch takes of which only a part is used. From any thread.
void putOnHugePages(const void* block, std::size_t bytes) noexcept;

}  // namespace vorn::runtime
