#include "runtime/errors/pending_errors.h"

#include "collections/core/runtime_interface.h"
#include "runtime/threads/thread_state.h"

namespace vorn::runtime {

void raiseError(const char* className, const char* message) {
  attachedThread().errors.push_back({className != nullptr ? className : "", message != nullptr ? message : ""});
}

// Reading and clearing leave a thread that never entered the runtime alone: it has no errors.
bool hasPendingErrors() noexcept {
  const ThreadState* thread = currentThread;
  return thread != nullptr && !thread->errors.empty();
}

std::size_t pendingErrorCount() noexcept {
  const ThreadState* thread = currentThread;
  return thread != nullptr ? thread->errors.size() : 0;
}

const PendingError* pendingErrorAt(std::size_t index) noexcept {
  return index < pendingErrorCount() ? &currentThread->errors[index] : nullptr;
}

void clearPendingErrors() noexcept {
  if (hasPendingErrors()) currentThread->errors.clear();
}

}  // namespace vorn::runtime

void Vorn_raise(const char* exceptionClass, const char* message) { vorn::runtime::raiseError(exceptionClass, message); }

int Vorn_hasPendingError() { return vorn::runtime::hasPendingErrors() ? 1 : 0; }
