// Pending errors, as an embedding program sees them.
#include "runtime/errors/pending_errors.h"

#include <vorn/runtime.h>

// Callers in C have no way to catch an exception, so that running out of memory for an error's text ends the process.
void vorn_raise(const char* exception_class, const char* message) {
  [&]() noexcept { vorn::runtime::raiseError(exception_class, message); }();
}

size_t vorn_error_count(void) { return vorn::runtime::pendingErrorCount(); }

const char* vorn_error_class(size_t index) {
  const vorn::runtime::PendingError* error = vorn::runtime::pendingErrorAt(index);
  return error != nullptr ? error->className.c_str() : nullptr;
}

const char* vorn_error_message(size_t index) {
  const vorn::runtime::PendingError* error = vorn::runtime::pendingErrorAt(index);
  return error != nullptr ? error->message.c_str() : nullptr;
}

void vorn_errors_clear(void) { vorn::runtime::clearPendingErrors(); }

void vorn_errors_truncate(size_t count) { vorn::runtime::truncatePendingErrors(count); }
