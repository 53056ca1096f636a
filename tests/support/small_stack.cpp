#include "tests/support/small_stack.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>

namespace vorn::tests {

namespace {

// ThreadSanitizer keeps some 200 KB of its own on each thread's stack.
#ifdef __SANITIZE_THREAD__
constexpr std::size_t kSmallStack = std::size_t{1} << 20;
#else
constexpr std::size_t kSmallStack = std::size_t{256} << 10;
#endif

}  // namespace

void onSmallStack(const std::function<void()>& function) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
  const auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&function)), 0);
  pthread_attr_destroy(&attributes);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

}  // namespace vorn::tests
