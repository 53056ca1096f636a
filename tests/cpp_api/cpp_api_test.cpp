#include "tests/cpp_api/cpp_api_test.h"

#include <cstdlib>
#include <stdexcept>

namespace vorn::tests {
namespace {

void act() {
  if (hookAction == Hook::Raises) vorn_raise("app.Boom", "from a hook");
  if (hookAction == Hook::Throws) {
    vorn_raise("app.Boom", "raised before it was thrown");
    throw std::logic_error("out of a hook");
  }
}

std::int64_t idOf(void* self) {
  std::int64_t id = -1;
  vorn_field_get_integer(self, "id", &id);
  return id;
}

bool thingsEqual(void* self, void* other, void*) {
  act();
  return vorn_is_instance(other, "app.Thing") != 0 && idOf(self) == idOf(other);
}
int compareThings(void* self, void* other, bool* comparable, void*) {
  act();
  *comparable = vorn_is_instance(other, "app.Thing") != 0;
  return idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
}
std::uint64_t hashThing(void* self, void*) {
  act();
  return static_cast<std::uint64_t>(idOf(self));
}
void* textOfThing(void* self, void*) {
  act();
  const std::string text = "thing " + std::to_string(idOf(self));
  return vorn_string_new(text.data(), text.size());
}

bool defineThings() {
  const vorn_field_definition field{"id", VORN_FIELD_INTEGER};
  vorn_class_definition definition{};
  definition.struct_size = sizeof(definition);
  definition.name = "app.Thing";
  definition.fields = &field;
  definition.field_count = 1;
  definition.equals = thingsEqual;
  definition.compare = compareThings;
  definition.hash = hashThing;
  definition.to_string = textOfThing;
  return vorn_class_define(&definition) != 0;
}

}  // namespace

value thing(std::int64_t id) {
  static const bool defined = defineThings();
  EXPECT_TRUE(defined);
  value made = value::from_handle(vorn_object_new("app.Thing"));
  EXPECT_EQ(vorn_field_set_integer(made.handle(), "id", id), 1);
  return made;
}

std::vector<std::string> takeErrors() {
  std::vector<std::string> errors;
  for (std::size_t i = 0; i < vorn_error_count(); ++i) {
    errors.push_back(std::string(vorn_error_class(i)) + ": " + vorn_error_message(i));
  }
  vorn_errors_clear();
  return errors;
}

bool onStressHeap() {
  static const bool stress = [] {
    const char* const text = std::getenv("VORN_TEST_HEAP");
    vorn_runtime_options options;
    return vorn_runtime_parse_options(text != nullptr ? text : "", &options) != 0 && options.heap == VORN_HEAP_STRESS;
  }();
  return stress;
}

void CppApi::TearDown() {
  vorn_heap_fail_allocation(-1);
  hookAction = Hook::Honest;
  EXPECT_EQ(takeErrors(), std::vector<std::string>{});
}

}  // namespace vorn::tests
