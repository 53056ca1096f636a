// Calls for programs that C++ exceptions cannot pass through.
#include <vorn/runtime.h>

#include <algorithm>
#include <exception>
#include <limits>
#include <new>
#include <stdexcept>

#include "runtime/embedding/call_shapes.h"
#include "runtime/errors/pending_errors.h"
#include "runtime/threads/thread_state.h"

using namespace vorn::runtime;

namespace {

constexpr const char* kMemoryException = "MemoryException";
constexpr const char* kNativeException = "NativeException";

// The exception that is being handled, as an error of the language.
void raiseCaught() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    raiseError(kMemoryException, "there is not enough memory");
  } catch (const std::length_error&) {
    raiseError(kMemoryException, "the size is beyond what memory can hold");
  } catch (const std::exception& exception) {
    raiseError(kNativeException, exception.what());
  } catch (...) {
    raiseError(kNativeException, "an exception of an unknown type");
  }
}

}  // namespace

int vorn_call(const char* shape, vorn_function function, const vorn_word* arguments, vorn_word* result) {
  const CallAs call = callAs(shape);
  if (call == nullptr) return -1;

  const ThreadState& thread = attachedThread();
  const std::uint64_t raisedBefore = thread.errorsRaised;
  try {
    call(function, arguments, result);
  } catch (...) {
    // A thread that exits or is cancelled unwinds its stack as well, by nothing that C++ threw, and nobody may stop it.
    if (std::current_exception() == nullptr) throw;
    if (result != nullptr) result->integer = 0;
    raiseCaught();
  }
  const std::uint64_t raised = std::min<std::uint64_t>(thread.errorsRaised - raisedBefore, thread.errors.size());
  return static_cast<int>(std::min<std::uint64_t>(raised, std::numeric_limits<int>::max()));
}
