// Pending language errors.
#pragma once

#include <atomic>
#include <cstdint>

#pragma GCC visibility push(default)

extern "C" {

// Records a pending language error of that class with that message on the current thread and returns. Nothing is
// thrown; the native then unwinds its own state and returns its neutral result. Copies both texts.
void Vorn_raise(const char* exceptionClass, const char* message);

// Nonzero while an error raised on this thread has not been handled.
int Vorn_hasPendingError();

// How many errors this thread has raised so far, handled ones included. It only grows, so that code which ran user code
// can tell a new error from one that was pending before.
unsigned long long Vorn_raisedErrorCount();

// How many threads have a pending error: lets hasPendingError, below, answer no without a call.
extern std::atomic<std::uint32_t> Vorn_threadsWithPendingErrors;

}  // extern "C"

// Whether any thread may have a pending error; false when this one certainly has none. A thread's own raise is always
// seen: it counts its thread before it returns.
inline bool mayHavePendingError() { return Vorn_threadsWithPendingErrors.load(std::memory_order_relaxed) != 0; }

// The same as Vorn_hasPendingError.
inline bool hasPendingError() { return mayHavePendingError() && Vorn_hasPendingError() != 0; }

#pragma GCC visibility pop
