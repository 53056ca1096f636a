// Memory whose ends are watched.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

namespace vorn::tests {

// Memory between two unmapped pages: a read or write past either end of it ends the test program.
class GuardedMemory {
 public:
  explicit GuardedMemory(std::uint64_t bytes) : page_(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))) {
    bytes_ = (bytes + page_ - 1) / page_ * page_;
    if (bytes_ == 0) bytes_ = page_;
    void* mapped = mmap(nullptr, bytes_ + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) std::abort();
    mapped_ = static_cast<unsigned char*>(mapped);
    if (mprotect(mapped_ + page_, bytes_, PROT_READ | PROT_WRITE) != 0) std::abort();
  }
  ~GuardedMemory() { munmap(mapped_, bytes_ + 2 * page_); }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  unsigned char* first() const { return mapped_ + page_; }
  unsigned char* end() const { return first() + bytes_; }
  // Where a range of that many bytes starts that touches the lower or the upper unmapped page.
  unsigned char* place(std::uint64_t bytes, bool upper) const { return upper ? end() - bytes : first(); }

 private:
  std::uint64_t page_;
  std::uint64_t bytes_ = 0;
  unsigned char* mapped_ = nullptr;
};

}  // namespace vorn::tests
