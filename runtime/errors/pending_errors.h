// The language errors that are pending on a thread, oldest first. No error holds a handle, and every text is a copy.
#pragma once

#include <cstddef>
#include <deque>
#include <string>

namespace vorn::runtime {

struct PendingError {
  std::string className;
  std::string message;
};

// A deque, so that the texts handed out stay where they are while further errors are raised.
using PendingErrors = std::deque<PendingError>;

// Records an error on the calling thread; a null text counts as empty.
void raiseError(const char* className, const char* message);

// Whether an error raised on the calling thread has not been cleared. Attaches nothing and costs a few instructions.
[[nodiscard]] bool hasPendingErrors() noexcept;

[[nodiscard]] std::size_t pendingErrorCount() noexcept;

// The error at that index, 0 being the oldest, or null. Valid until the errors are cleared.
[[nodiscard]] const PendingError* pendingErrorAt(std::size_t index) noexcept;

void clearPendingErrors() noexcept;

// Keeps the oldest `count` errors and takes the others back: they were not raised for those either who watch for it.
void truncatePendingErrors(std::size_t count) noexcept;

// The same for a thread that ends: its errors stop counting.
void clearPendingErrorsOf(PendingErrors& errors) noexcept;

}  // namespace vorn::runtime
