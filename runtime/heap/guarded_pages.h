// A range of addresses, reserved once, whose pages are inaccessible but where they are opened.
//
// Where the kernel has guard markers (Linux 6.13) a page is opened and closed in the page table alone, in stretches that
// are made accessible underneath when their first page is opened, and inaccessible again when their last one is closed,
// for limits of a process's memory count what is accessible. Elsewhere each opened range is a mapping of its own, and
// the kernel bounds the number of mappings of a process.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorn::runtime {

// Of the kernel's pages: 4 KB on x86-64, 4, 16 or 64 KB on aarch64.
std::size_t systemPageBytes();

// Fresh memory, zeroed when it is first read; null when the system has none.
void* mapReserved(std::size_t bytes, int protection);

enum class PageGuards { Best, Mappings };

class GuardedPages {
 public:
  // Reserves up to `most` bytes, at least `least`. False when the system has fewer. A page here is the kernel's, or a
  // power of two of them.
  bool reserve(std::size_t most, std::size_t least, PageGuards guards, std::size_t pageBytes = systemPageBytes());

  [[nodiscard]] std::uintptr_t base() const { return base_; }
  [[nodiscard]] std::size_t bytes() const { return reserved_; }
  [[nodiscard]] std::size_t pageBytes() const { return std::size_t{1} << pageBits_; }
  // The number of the page that begins or lies that far behind the base.
  [[nodiscard]] std::size_t pageAt(std::size_t offset) const { return offset >> pageBits_; }

  // Whether the number of ranges that can be open at a time is bounded.
  [[nodiscard]] bool bounded() const { return !hasMarkers_; }

  // Makes whole pages accessible, each time at higher addresses than before. False when the kernel refuses.
  bool open(std::uintptr_t pages, std::size_t bytes);

  // Gives the memory of an opened range back and makes it inaccessible. False when the kernel refuses.
  bool close(std::uintptr_t pages, std::size_t bytes);

 private:
  bool prepareUntil(std::uintptr_t end);
  void retireUnlessOpen(std::size_t stretch);
  template <class Visit>
  void forEachStretch(std::uintptr_t pages, std::size_t bytes, Visit visit);

  std::uintptr_t base_ = 0;
  std::size_t reserved_ = 0;
  unsigned pageBits_ = 0;
  bool hasMarkers_ = false;
  // With markers:
  std::uintptr_t prepared_ = 0;      // the end of the stretches that have been made accessible
  std::uintptr_t opened_ = 0;        // the end of the pages that have been opened
  std::uint32_t* openIn_ = nullptr;  // how many pages of each stretch are open
};

}  // namespace vorn::runtime
