// Pending errors: a list for each thread.
#include "collections/core/port/pending_errors.h"
#include "minimal_runtime.h"

// Nobody counts threads here: with one that may have an error, the library always asks.
std::atomic<std::uint32_t> Vorn_threadsWithPendingErrors = 1;

static thread_local std::vector<std::string> pending;
static thread_local unsigned long long raised = 0;

std::vector<std::string> minimal::takeErrors() { return std::exchange(pending, {}); }

void Vorn_raise(const char* exceptionClass, const char* message) {
  pending.push_back(std::string(exceptionClass) + ": " + message);
  ++raised;
}
int Vorn_hasPendingError() { return pending.empty() ? 0 : 1; }
unsigned long long Vorn_raisedErrorCount() { return raised; }
