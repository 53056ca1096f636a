#include "runtime/heap/small_blocks.h"

#define GC_THREADS
#define GC_NO_THREAD_REDIRECTS
#include <gc/gc.h>
#include <gc/gc_inline.h>

#include <algorithm>

#include "runtime/heap/huge_pages.h"

namespace vorn::runtime {

// The library stores the list before a collection can run, so that no moment shows blocks that are in no list.
bool SmallBlocks::refill(BlockKind kind, std::size_t bytes) noexcept {
  void*& list = listOf(kind, bytes);
  const std::size_t size = std::max(granulesFor(bytes), std::size_t{1}) * kGranule;
  GC_generic_malloc_many(size, kind == BlockKind::Scanned ? GC_I_NORMAL : GC_I_PTRFREE, &list);
  if (list == nullptr) return false;
  putOnHugePages(list, 1);
  return true;
}

void SmallBlocks::drop() noexcept {
  for (auto& lists : lists_) {
    for (void*& list : lists) std::atomic_ref(list).store(nullptr, std::memory_order_relaxed);
  }
}

}  // namespace vorn::runtime
