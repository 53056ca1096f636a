// What every call of a user class's hook has in common.
#pragma once

#include <vorn/runtime.h>

#include <cstddef>

namespace vorn::runtime {

// Tells whether a hook raised. Errors that were pending before it was called do not count, and one more may be raised
// on top of them, so that their number is compared.
class HookErrors {
 public:
  [[nodiscard]] bool raised() const { return vorn_error_count() > before_; }

 private:
  std::size_t before_ = vorn_error_count();
};

}  // namespace vorn::runtime
