// What the conformance program asks of this runtime beyond the port.
#include "conformance/adapter.h"

#include <thread>

#include "minimal_runtime.h"

vorn::conformance::Adapter vorn::conformance::adapterOfRuntime() {
  Adapter adapter;
  adapter.name = "minimal runtime";
  adapter.start = [] {};
  adapter.takeErrors = minimal::takeErrors;
  adapter.defineClass = [](const ClassDefinition& definition) { minimal::defineClass(definition.name); };
  adapter.startThread = [](std::function<void()> work) {
    return [thread = std::make_shared<std::thread>(std::move(work))] { thread->join(); };
  };
  return adapter;
}
