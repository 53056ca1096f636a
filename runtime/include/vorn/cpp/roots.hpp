// Keeping handles alive between the calls of one function.
#ifndef VORN_CPP_ROOTS_HPP
#define VORN_CPP_ROOTS_HPP

#include <vorn/runtime.hpp>

#include <array>
#include <cstddef>
#include <new>

namespace vorn::detail {

// What a function marked "allocates" gave; its null means that there was no memory.
inline void* made(void* handle) {
  if (handle == nullptr) [[unlikely]]
    throw std::bad_alloc();
  return handle;
}

// Handles that stay alive as long as this object does. It is a local variable: the thread that made it destroys it.
template <std::size_t Count>
class local_roots {
 public:
  local_roots() noexcept {
    for (void*& slot : slots_) vorn_local_root_add(&slot);
  }
  ~local_roots() {
    for (std::size_t i = Count; i > 0; --i) vorn_local_root_remove(&slots_[i - 1]);
  }
  local_roots(const local_roots&) = delete;
  local_roots& operator=(const local_roots&) = delete;

  [[nodiscard]] void*& operator[](std::size_t index) noexcept { return slots_[index]; }
  [[nodiscard]] void* const* data() const noexcept { return slots_.data(); }

 private:
  std::array<void*, Count> slots_{};
};

// One of them.
class local_root {
 public:
  explicit local_root(void* handle) noexcept : handle_(handle) { vorn_local_root_add(&handle_); }
  ~local_root() { vorn_local_root_remove(&handle_); }
  local_root(const local_root&) = delete;
  local_root& operator=(const local_root&) = delete;

  [[nodiscard]] void* get() const noexcept { return handle_; }
  [[nodiscard]] void** out() noexcept { return &handle_; }

 private:
  void* handle_;
};

}  // namespace vorn::detail

#endif
