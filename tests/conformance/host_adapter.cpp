// What the conformance program asks of the host runtime beyond the port. VORN_TEST_HEAP chooses its heap.
#include <vorn/runtime.hpp>

#include <cstdlib>
#include <deque>
#include <memory>
#include <stdexcept>
#include <thread>

#include "conformance/adapter.h"

namespace {

using vorn::conformance::ClassDefinition;

vorn_runtime_options chosenOptions() {
  vorn_runtime_options options;
  const char* const text = std::getenv("VORN_TEST_HEAP");
  if (vorn_runtime_parse_options(text != nullptr ? text : "", &options) == 0) {
    throw std::invalid_argument("VORN_TEST_HEAP holds no options of the runtime");
  }
  return options;
}

const ClassDefinition& definitionOf(void* context) { return *static_cast<const ClassDefinition*>(context); }

void defineClass(const ClassDefinition& given) {
  static std::deque<ClassDefinition> definitions;  // which hooks refer to
  const ClassDefinition& kept = definitions.emplace_back(given);
  vorn_class_definition definition{};
  definition.struct_size = sizeof(definition);
  definition.name = kept.name.c_str();
  definition.context = const_cast<ClassDefinition*>(&kept);
  if (kept.equals != nullptr) {
    definition.equals = [](void* self, void* other, void* context) {
      return definitionOf(context).equals(self, other);
    };
  }
  if (kept.compare != nullptr) {
    definition.compare = [](void* self, void* other, bool* comparable, void* context) {
      *comparable = true;
      return definitionOf(context).compare(self, other, comparable);
    };
  }
  if (kept.hash != nullptr) {
    definition.hash = [](void* self, void* context) { return definitionOf(context).hash(self); };
  }
  if (kept.toString != nullptr) {
    definition.to_string = [](void* self, void* context) { return definitionOf(context).toString(self); };
  }
  if (vorn_class_define(&definition) == 0) throw std::invalid_argument("the class " + kept.name + " is refused");
}

std::vector<std::string> takeErrors() {
  std::vector<std::string> errors;
  for (std::size_t i = 0; i < vorn_error_count(); ++i) {
    errors.push_back(std::string(vorn_error_class(i)) + ": " + vorn_error_message(i));
  }
  vorn_errors_clear();
  return errors;
}

}  // namespace

vorn::conformance::Adapter vorn::conformance::adapterOfRuntime() {
  Adapter adapter;
  adapter.name = "host runtime";
  adapter.start = [] {
    const vorn_runtime_options options = chosenOptions();
    if (vorn_runtime_start(&options) == 0) throw std::runtime_error("the runtime does not start");
  };
  adapter.takeErrors = takeErrors;
  adapter.defineClass = defineClass;
  adapter.hasHooks = true;
  if (chosenOptions().heap != VORN_HEAP_PLAIN) adapter.collect = vorn_heap_collect;
  adapter.startThread = [](std::function<void()> work) {
    return [thread = std::make_shared<std::thread>([work = std::move(work)] {
              vorn_thread_attach();
              work();
            })] { thread->join(); };
  };
  return adapter;
}
