// Looking in on a function that a test binary wraps at link time.
#pragma once

#include <functional>
#include <utility>

namespace vorn::tests {

// Runs code before each call of a function for a scope.
class Before {
 public:
  Before(std::function<void()>*& place, std::function<void()> action) : action_(std::move(action)), place_(place) {
    place_ = &action_;
  }
  ~Before() { place_ = nullptr; }
  Before(const Before&) = delete;
  Before& operator=(const Before&) = delete;

 private:
  std::function<void()> action_;
  std::function<void()>*& place_;
};

}  // namespace vorn::tests
