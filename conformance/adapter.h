// What the conformance program asks of a runtime beyond the port. The team of the runtime writes one function,
// adapterOfRuntime, and links it with the program.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vorn::conformance {

// A user class without fields, such as "app.Point". Hooks are null where the class brings none.
struct ClassDefinition {
  std::string name;
  bool (*equals)(void* self, void* other) = nullptr;
  // Negative, zero or positive; *comparable is true when it is called.
  int (*compare)(void* self, void* other, bool* comparable) = nullptr;
  std::uint64_t (*hash)(void* self) = nullptr;
  // A handle of a text, or null.
  void* (*toString)(void* self) = nullptr;
};

struct Adapter {
  // The runtime's name, for the report.
  const char* name = "";

  // Starts the runtime. Each check runs in a process of its own and calls this first.
  std::function<void()> start;

  // The errors that are pending on this thread as "Class: message", oldest first. They are handled then: no longer
  // pending.
  std::function<std::vector<std::string>()> takeErrors;

  // Defines a class; Vorn_allocObject makes its instances. Hooks are given only when `hasHooks` says so.
  std::function<void(const ClassDefinition&)> defineClass;
  bool hasHooks = false;

  // Runs a full collection. Empty when nothing is ever collected: checks of roots are skipped then.
  std::function<void()> collect;

  // Runs the work on a new thread that may use the runtime, and returns a function that waits for its end. Empty when the
  // runtime knows one thread only: checks of threads are skipped then.
  std::function<std::function<void()>(std::function<void()> work)> startThread;
};

// Called once in each check's process. It may not need a running runtime.
Adapter adapterOfRuntime();

}  // namespace vorn::conformance
