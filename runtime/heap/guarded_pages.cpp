#include "runtime/heap/guarded_pages.h"

#include <sys/mman.h>

#include <algorithm>

namespace vorn::runtime {

namespace {

constexpr std::size_t kPreparedAtOnce = std::size_t{1} << 20;

// Of <linux/mman.h>, which the C library's headers of older systems do not have.
constexpr int kInstallGuards = 102;
constexpr int kRemoveGuards = 103;

void* pointerTo(std::uintptr_t pages) { return reinterpret_cast<void*>(pages); }

}  // namespace

void* mapReserved(std::size_t bytes, int protection) {
  void* const memory = mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  return memory == MAP_FAILED ? nullptr : memory;
}

bool GuardedPages::reserve(std::size_t most, std::size_t least, PageGuards guards) {
  void* addresses = nullptr;
  for (reserved_ = most; reserved_ >= least; reserved_ /= 2) {
    addresses = mapReserved(reserved_, PROT_NONE);
    if (addresses != nullptr) break;
  }
  if (addresses == nullptr) return false;
  base_ = prepared_ = reinterpret_cast<std::uintptr_t>(addresses);
  hasMarkers_ = guards == PageGuards::Best && madvise(addresses, kPageBytes, kInstallGuards) == 0;
  return true;
}

// Markers come before access: no page is ever accessible that is not opened.
bool GuardedPages::prepareUntil(std::uintptr_t end) {
  if (end <= prepared_) return true;
  const std::size_t bytes = std::min((end - prepared_ + kPreparedAtOnce - 1) / kPreparedAtOnce * kPreparedAtOnce,
                                     base_ + reserved_ - prepared_);
  if (madvise(pointerTo(prepared_), bytes, kInstallGuards) != 0 ||
      mprotect(pointerTo(prepared_), bytes, PROT_READ | PROT_WRITE) != 0) {
    return false;
  }
  prepared_ += bytes;
  return true;
}

bool GuardedPages::open(std::uintptr_t pages, std::size_t bytes) {
  if (!hasMarkers_) return mprotect(pointerTo(pages), bytes, PROT_READ | PROT_WRITE) == 0;
  return prepareUntil(pages + bytes) && madvise(pointerTo(pages), bytes, kRemoveGuards) == 0;
}

// Without markers, mapping the pages anew, instead of only protecting them, gives their memory back and lets the kernel
// merge them with their neighbours into one mapping.
bool GuardedPages::close(std::uintptr_t pages, std::size_t bytes) const {
  if (hasMarkers_) return madvise(pointerTo(pages), bytes, kInstallGuards) == 0;
  return mmap(pointerTo(pages), bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0) !=
         MAP_FAILED;
}

}  // namespace vorn::runtime
