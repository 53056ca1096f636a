#include "runtime/heap/huge_pages.h"

#include <gc/gc.h>
#include <sys/mman.h>

#include <atomic>
#include <cstdint>

namespace vorn::runtime {

namespace {

constexpr unsigned kHugePageBits = 21;
constexpr std::size_t kHugePage = std::size_t{1} << kHugePageBits;

// Below that, pages of which only a part is used would make a small program large. What has been so large once counts as
// large from then on.
constexpr std::size_t kLargeHeap = std::size_t{32} << 20;

// One bit for each 2 MB of the address space: whether the system was asked. Of these 16 MB only those pages exist that
// are touched, one for each 64 GB that the heap spans. They are mapped, because the collector would search a static array
// for handles. Null until they are wanted and the heap is large, so that a small heap costs its blocks one test.
constexpr unsigned kAddressBits = 48;
using Word = std::atomic<std::uint64_t>;
constexpr std::size_t kTableBytes = (std::size_t{1} << (kAddressBits - kHugePageBits - 6)) * sizeof(Word);
constinit std::atomic<Word*> askedPages{nullptr};
constinit Word* reservedPages = nullptr;
GC_on_heap_resize_proc previousResize = nullptr;

// Linux 6.1; older headers and systems do not know it.
constexpr int kCollapse = 25;

// The advice holds for what has not been touched yet. The collector's library has touched the beginning of most
// stretches before anybody learns of them, so these are put together from what is there. Either may fail: then small
// pages stay.
[[gnu::noinline]] void ask(std::size_t stretch, Word& word, std::uint64_t bit) noexcept {
  if ((word.fetch_or(bit, std::memory_order_relaxed) & bit) != 0) return;
  void* const start = reinterpret_cast<void*>(stretch << kHugePageBits);
  if (madvise(start, kHugePage, MADV_HUGEPAGE) == 0) madvise(start, kHugePage, kCollapse);
}

// The collector's library calls this with its lock held.
void noticeHeapSize(GC_word bytes) {
  if (bytes >= kLargeHeap) askedPages.store(reservedPages, std::memory_order_release);
  if (previousResize != nullptr) previousResize(bytes);
}

}  // namespace

void wantHugePages() noexcept {
  void* const table =
      mmap(nullptr, kTableBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (table == MAP_FAILED) return;
  reservedPages = static_cast<Word*>(table);
  previousResize = GC_get_on_heap_resize();
  GC_set_on_heap_resize(noticeHeapSize);
  if (GC_get_heap_size() >= kLargeHeap) askedPages.store(reservedPages, std::memory_order_release);
}

void putOnHugePages(const void* block, std::size_t bytes) noexcept {
  Word* const words = askedPages.load(std::memory_order_acquire);
  const auto first = reinterpret_cast<std::uintptr_t>(block);
  const std::size_t last = (first + bytes - 1) >> kHugePageBits;
  if (words == nullptr || last >> (kAddressBits - kHugePageBits) != 0) return;
  for (std::size_t stretch = first >> kHugePageBits; stretch <= last; ++stretch) {
    Word& word = words[stretch / 64];
    const std::uint64_t bit = std::uint64_t{1} << (stretch % 64);
    if ((word.load(std::memory_order_relaxed) & bit) == 0) [[unlikely]]
      ask(stretch, word, bit);
  }
}

}  // namespace vorn::runtime
