// Tells whether user code raised while it was watched.
#pragma once

#include "collections/core/port/pending_errors.h"

namespace vorn::collections {

// An error that was pending already when the watch began does not count, and neither does one that has been handled
// since. Costs no call as long as no thread has a pending error.
class PendingErrorWatch {
 public:
  [[nodiscard]] bool raised() const {
    return hasPendingError() && (!pendingBefore_ || Vorn_raisedErrorCount() != raisedBefore_);
  }

 private:
  bool pendingBefore_ = hasPendingError();
  // Only needed, and only asked for, when an older error could hide a new one.
  unsigned long long raisedBefore_ = pendingBefore_ ? Vorn_raisedErrorCount() : 0;
};

}  // namespace vorn::collections
