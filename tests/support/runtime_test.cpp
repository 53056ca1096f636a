#include "tests/support/runtime_test.h"

#include <cstdlib>

#include "runtime/heap/sanitizers.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

vorn_runtime_options testOptions() {
  const char* text = std::getenv("VORN_TEST_HEAP");
  vorn_runtime_options options;
  EXPECT_EQ(vorn_runtime_parse_options(text != nullptr ? text : "", &options), 1);
  return options;
}

bool onStressHeap() {
  static const bool stress = testOptions().heap == VORN_HEAP_STRESS;
  return stress;
}

bool underTool() {
#if defined(VORN_ASAN) || defined(VORN_TSAN)
  return true;
#else
  static const bool named = std::getenv("VORN_TEST_TOOL") != nullptr;
  return named;
#endif
}

Handle integer(const char* type, std::int64_t value) { return vorn_box_integer(type, value); }
Handle floating(const char* type, double value) { return vorn_box_floating(type, value); }
Handle boolean(bool value) { return vorn_box_boolean(value); }
Handle string(const std::string& value) { return vorn_string_new(value.data(), value.size()); }
Handle text(const std::string& value) { return vorn_text_new(value.c_str()); }
Handle object(const std::string& typeName) { return vorn_object_new(typeName.c_str()); }

Handle list(const std::string& typeName, std::initializer_list<Handle> elements) {
  Handle result = object(typeName);
  for (const Handle& element : elements) vorn_collections_ArrayList_add(result, element);
  return result;
}

std::vector<std::string> takeErrors() {
  std::vector<std::string> errors;
  for (std::size_t i = 0; i < vorn_error_count(); ++i) {
    errors.push_back(std::string(vorn_error_class(i)) + ": " + vorn_error_message(i));
  }
  vorn_errors_clear();
  return errors;
}

std::string listTypeError(const std::string& declared, const std::string& valueType) {
  return "TypeError: ArrayList<" + declared + "> cannot accept " + valueType;
}

void RuntimeTest::TearDown() {
  vorn_heap_fail_allocation(-1);
  userHooks = {};
  clearHookCalls();
  EXPECT_NOTHING_RAISED();
}

}  // namespace vorn::tests
