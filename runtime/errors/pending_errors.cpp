#include "runtime/errors/pending_errors.h"

#include "collections/core/port/pending_errors.h"
#include "runtime/threads/thread_state.h"

namespace vorn::runtime {

void raiseError(const char* className, const char* message) {
  ThreadState& thread = attachedThread();
  PendingErrors& errors = thread.errors;
  errors.push_back({className != nullptr ? className : "", message != nullptr ? message : ""});
  ++thread.errorsRaised;
  if (errors.size() == 1) Vorn_threadsWithPendingErrors.fetch_add(1, std::memory_order_relaxed);
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
  if (hasPendingErrors()) clearPendingErrorsOf(currentThread->errors);
}

void truncatePendingErrors(std::size_t count) noexcept {
  if (count == 0) return clearPendingErrors();
  PendingErrors* const errors = count < pendingErrorCount() ? &currentThread->errors : nullptr;
  if (errors == nullptr) return;
  // What is still pending would make a watch believe that something has been raised.
  currentThread->errorsRaised -= errors->size() - count;
  errors->erase(errors->begin() + static_cast<std::ptrdiff_t>(count), errors->end());
}

void clearPendingErrorsOf(PendingErrors& errors) noexcept {
  if (errors.empty()) return;
  errors.clear();
  Vorn_threadsWithPendingErrors.fetch_sub(1, std::memory_order_relaxed);
}

}  // namespace vorn::runtime

constinit std::atomic<std::uint32_t> Vorn_threadsWithPendingErrors = 0;

void Vorn_raise(const char* exceptionClass, const char* message) { vorn::runtime::raiseError(exceptionClass, message); }

int Vorn_hasPendingError() { return vorn::runtime::hasPendingErrors() ? 1 : 0; }

unsigned long long Vorn_raisedErrorCount() {
  const vorn::runtime::ThreadState* thread = vorn::runtime::currentThread;
  return thread != nullptr ? thread->errorsRaised : 0;
}
