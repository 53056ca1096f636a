// What every fuzzer needs: a running runtime, rooted handles, and an end that shows what differed.
#pragma once

#include <vorn/runtime.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace vorn::fuzz {

// Starts the runtime, once, on the heap that VORN_TEST_HEAP describes.
inline void startRuntime() {
  static const bool started = [] {
    const char* heap = std::getenv("VORN_TEST_HEAP");
    vorn_runtime_options options;
    return vorn_runtime_parse_options(heap != nullptr ? heap : "heap=collected", &options) != 0 &&
           vorn_runtime_start(&options) != 0;
  }();
  if (!started) std::abort();
}

// A handle that stays alive while this object does. It stays where it is.
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

 private:
  void* handle_;
};

// Ends the process when the two texts differ.
inline void requireSame(const char* what, std::string_view actual, std::string_view expected) {
  if (actual == expected) return;
  std::fprintf(stderr, "%s differs\n  is:       %.*s\n  expected: %.*s\n", what, static_cast<int>(actual.size()),
               actual.data(), static_cast<int>(expected.size()), expected.data());
  std::abort();
}

}  // namespace vorn::fuzz
