#include "runtime/heap/heap_limit.h"

#include <fcntl.h>
#define GC_THREADS
#define GC_NO_THREAD_REDIRECTS
#include <gc/gc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace vorn::runtime {

namespace {

// A header takes some 330 bytes, a twelfth of a page. The heap has one for each page when all of its blocks are small.
constexpr std::size_t kHeadersShare = 12;
constexpr std::size_t kLeastForHeaders = std::size_t{1} << 20;

constexpr std::size_t kEndless = std::numeric_limits<std::size_t>::max();

bool heapIsLimited = false;  // under the library's lock
GC_on_heap_resize_proc resizeBefore = nullptr;

// What the process has mapped, and what of it is its own to write, in bytes.
struct Mapped {
  std::size_t all = 0;
  std::size_t writable = 0;
};

// Called with the library's lock held: allocates nothing. False where the system does not tell.
bool readMapped(Mapped& mapped) noexcept {
  char text[256];
  const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  const ssize_t count = read(file, text, sizeof(text));
  close(file);
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  constexpr int kAll = 0;
  constexpr int kWritable = 5;
  const char* at = text;
  const char* const end = text + std::max<ssize_t>(count, 0);
  for (int field = 0; field <= kWritable; ++field) {
    std::size_t pages = 0;
    const auto [rest, error] = std::from_chars(at, end, pages);
    if (error != std::errc()) return false;
    if (field == kAll) mapped.all = pages * page;
    if (field == kWritable) mapped.writable = pages * page;
    at = std::min(rest + 1, end);
  }
  return true;
}

std::size_t leftOf(int resource, std::size_t used) noexcept {
  rlimit limit{};
  if (getrlimit(resource, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return kEndless;
  return limit.rlim_cur > used ? limit.rlim_cur - used : 0;
}

// How much more memory the process may take.
std::size_t roomOfProcess() noexcept {
  if (leftOf(RLIMIT_AS, 0) == kEndless && leftOf(RLIMIT_DATA, 0) == kEndless) return kEndless;
  Mapped mapped;
  if (!readMapped(mapped)) return kEndless;
  return std::min(leftOf(RLIMIT_AS, mapped.all), leftOf(RLIMIT_DATA, mapped.writable));
}

// With the library's lock held. Pages that were given back to the system count as the heap's, as they do for the library.
void limitHeap() noexcept {
  GC_prof_stats_s statistics{};
  GC_get_prof_stats_unsafe(&statistics, sizeof(statistics));
  const std::size_t bytes = statistics.heapsize_full;
  const std::size_t room = roomOfProcess();
  if (room == kEndless) {
    if (heapIsLimited) GC_set_max_heap_size(0);
    heapIsLimited = false;
    return;
  }
  const std::size_t forHeaders = kLeastForHeaders + (bytes + room) / kHeadersShare;
  GC_set_max_heap_size(bytes + (room > forHeaders ? room - forHeaders : 0));
  heapIsLimited = true;
}

// The library calls this with its lock held, whenever the heap has another size.
void noticeGrowth(GC_word bytes) {
  limitHeap();
  if (resizeBefore != nullptr) resizeBefore(bytes);
}

}  // namespace

void keepHeapBelowLimit() noexcept {
  resizeBefore = GC_get_on_heap_resize();
  GC_set_on_heap_resize(noticeGrowth);
  lookAtLimitAgain();
}

void lookAtLimitAgain() noexcept {
  GC_call_with_alloc_lock(
      [](void*) -> void* {
        limitHeap();
        return nullptr;
      },
      nullptr);
}

}  // namespace vorn::runtime
