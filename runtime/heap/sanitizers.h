// Which sanitizers this build runs under, and the calls and attributes that the heaps owe them.
#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VORN_ASAN 1
#endif
#if __has_feature(thread_sanitizer)
#define VORN_TSAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define VORN_ASAN 1
#endif
#if defined(__SANITIZE_THREAD__)
#define VORN_TSAN 1
#endif

#ifdef VORN_ASAN
#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
#endif

// For functions that read words of which they know nothing: stacks of other threads, slack, redzones.
#define VORN_READS_FOREIGN_WORDS __attribute__((no_sanitize("address", "thread", "undefined"), noinline))

namespace vorn::runtime {

#ifdef VORN_TSAN
inline constexpr bool kThreadSanitizer = true;
#else
inline constexpr bool kThreadSanitizer = false;
#endif

inline void poisonMemory([[maybe_unused]] const void* start, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef VORN_ASAN
  ASAN_POISON_MEMORY_REGION(start, bytes);
#endif
}

inline void unpoisonMemory([[maybe_unused]] const void* start, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef VORN_ASAN
  ASAN_UNPOISON_MEMORY_REGION(start, bytes);
#endif
}

// While one of these lives, what its thread allocates is no leak: blocks of the plain heap are never freed.
class LeaksOnPurpose {
 public:
#ifdef VORN_ASAN
  LeaksOnPurpose() { __lsan_disable(); }
  ~LeaksOnPurpose() { __lsan_enable(); }
#else
  // Not defaulted: an object of a trivial class would count as an unused variable.
  LeaksOnPurpose() {}   // NOLINT(modernize-use-equals-default)
  ~LeaksOnPurpose() {}  // NOLINT(modernize-use-equals-default)
#endif
  LeaksOnPurpose(const LeaksOnPurpose&) = delete;
  LeaksOnPurpose& operator=(const LeaksOnPurpose&) = delete;
};

}  // namespace vorn::runtime
