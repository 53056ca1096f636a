// A handle that stays alive while this object does.
#pragma once

#include <vorn/runtime.h>

namespace text_statistics {

// One registered slot. The collector may run inside every call that allocates, so a handle that is used again after
// such a call lives in one of these. Registering costs more than assigning: loops reuse a slot made outside.
class Rooted {
 public:
  explicit Rooted(void* handle = nullptr) : handle_(handle) { vorn_root_add(&handle_); }
  ~Rooted() { vorn_root_remove(&handle_); }
  Rooted(const Rooted&) = delete;
  Rooted& operator=(const Rooted&) = delete;

  Rooted& operator=(void* handle) {
    handle_ = handle;
    return *this;
  }

  [[nodiscard]] void* get() const { return handle_; }
  operator void*() const { return handle_; }  // NOLINT(google-explicit-constructor): natives take the raw handle

 private:
  void* handle_;
};

}  // namespace text_statistics
