#include "runtime/heap/guarded_pages.h"

#include <sys/mman.h>
#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <bit>

namespace vorn::runtime {

namespace {

constexpr std::size_t kStretch = std::size_t{1} << 20;

// Of <linux/mman.h>, which the C library's headers of older systems do not have.
constexpr int kInstallGuards = 102;
constexpr int kRemoveGuards = 103;

void* pointerTo(std::uintptr_t pages) { return reinterpret_cast<void*>(pages); }

// An emulator may pass over advice that it does not know and call that a success. So a page is guarded for a trial, and a
// system call that writes to it has to find out.
bool kernelHasMarkers(std::size_t pageBytes) {
  void* const page = mapReserved(pageBytes, PROT_READ | PROT_WRITE);
  if (page == nullptr) return false;
  const bool guarded =
      madvise(page, pageBytes, kInstallGuards) == 0 && syscall(SYS_getrandom, page, 1, GRND_NONBLOCK) < 0;
  munmap(page, pageBytes);
  return guarded;
}

}  // namespace

void* mapReserved(std::size_t bytes, int protection) {
  void* const memory = mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  return memory == MAP_FAILED ? nullptr : memory;
}

std::size_t systemPageBytes() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

bool GuardedPages::reserve(std::size_t most, std::size_t least, PageGuards guards, std::size_t pageBytes) {
  pageBits_ = static_cast<unsigned>(std::countr_zero(pageBytes));
  void* addresses = nullptr;
  for (reserved_ = most; reserved_ >= least; reserved_ /= 2) {
    addresses = mapReserved(reserved_, PROT_NONE);
    if (addresses != nullptr) break;
  }
  if (addresses == nullptr) return false;
  base_ = prepared_ = opened_ = reinterpret_cast<std::uintptr_t>(addresses);
  hasMarkers_ = guards == PageGuards::Best && kernelHasMarkers(pageBytes);
  if (!hasMarkers_) return true;
  openIn_ = static_cast<std::uint32_t*>(
      mapReserved((reserved_ / kStretch + 1) * sizeof(std::uint32_t), PROT_READ | PROT_WRITE));
  return openIn_ != nullptr;
}

// Markers come before access: no page is ever accessible that is not opened.
bool GuardedPages::prepareUntil(std::uintptr_t end) {
  if (end <= prepared_) return true;
  const std::size_t bytes =
      std::min((end - prepared_ + kStretch - 1) / kStretch * kStretch, base_ + reserved_ - prepared_);
  if (madvise(pointerTo(prepared_), bytes, kInstallGuards) != 0 ||
      mprotect(pointerTo(prepared_), bytes, PROT_READ | PROT_WRITE) != 0) {
    return false;
  }
  prepared_ += bytes;
  return true;
}

// Calls visit(stretch, pages) for each stretch that a range has pages of.
template <class Visit>
void GuardedPages::forEachStretch(std::uintptr_t pages, std::size_t bytes, Visit visit) {
  const std::uintptr_t end = pages + bytes;
  for (std::uintptr_t at = pages; at < end;) {
    const std::size_t stretch = (at - base_) / kStretch;
    const std::uintptr_t next = std::min(end, base_ + (stretch + 1) * kStretch);
    visit(stretch, static_cast<std::uint32_t>(pageAt(next - at)));
    at = next;
  }
}

// No page of a stretch is opened any more once one behind it has been.
void GuardedPages::retireUnlessOpen(std::size_t stretch) {
  const std::uintptr_t start = base_ + stretch * kStretch;
  if (openIn_[stretch] != 0 || opened_ < start + kStretch) return;
  // When the kernel refuses, the markers keep the pages inaccessible.
  (void)mmap(pointerTo(start), kStretch, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0);
}

bool GuardedPages::open(std::uintptr_t pages, std::size_t bytes) {
  if (!hasMarkers_) return mprotect(pointerTo(pages), bytes, PROT_READ | PROT_WRITE) == 0;
  if (!prepareUntil(pages + bytes) || madvise(pointerTo(pages), bytes, kRemoveGuards) != 0) return false;
  forEachStretch(pages, bytes, [this](std::size_t stretch, std::uint32_t count) { openIn_[stretch] += count; });
  const std::size_t left = (opened_ - base_) / kStretch;
  opened_ = pages + bytes;
  for (std::size_t stretch = left; stretch < (opened_ - base_) / kStretch; ++stretch) retireUnlessOpen(stretch);
  return true;
}

// Without markers, mapping the pages anew, instead of only protecting them, gives their memory back and lets the kernel
// merge them with their neighbours into one mapping.
bool GuardedPages::close(std::uintptr_t pages, std::size_t bytes) {
  if (!hasMarkers_) {
    return mmap(pointerTo(pages), bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0) !=
           MAP_FAILED;
  }
  if (madvise(pointerTo(pages), bytes, kInstallGuards) != 0) return false;
  forEachStretch(pages, bytes, [this](std::size_t stretch, std::uint32_t count) {
    openIn_[stretch] -= count;
    retireUnlessOpen(stretch);
  });
  return true;
}

}  // namespace vorn::runtime
