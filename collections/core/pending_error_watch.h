// Tells whether user code raised while it was watched.
#pragma once

#include "collections/core/runtime_interface.h"

namespace vorn::collections {

// An error that was pending already when the watch began does not count.
class PendingErrorWatch {
 public:
  [[nodiscard]] bool raised() const { return !pendingBefore_ && hasPendingError(); }

 private:
  bool pendingBefore_ = hasPendingError();
};

}  // namespace vorn::collections
