// User classes of the core's tests, which differ in their bases and fields.
#pragma once

#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

// coretest.Animal; coretest.Dog and coretest.Puppy below it; coretest.Plant beside it.
inline void definePlainClasses() {
  vorn_class_definition definition{};
  definition.name = "coretest.Animal";
  defineClass(definition);
  definition.name = "coretest.Dog";
  definition.base_name = "coretest.Animal";
  defineClass(definition);
  definition.name = "coretest.Puppy";
  definition.base_name = "coretest.Dog";
  defineClass(definition);
  definition.name = "coretest.Plant";
  definition.base_name = nullptr;
  defineClass(definition);
}

// coretest.Holder, with an integer field "_value" as boxes have it.
inline void defineHolderClass() {
  const vorn_field_definition fields[] = {{"_value", VORN_FIELD_INTEGER}};
  vorn_class_definition definition{};
  definition.name = "coretest.Holder";
  definition.fields = fields;
  definition.field_count = 1;
  defineClass(definition);
}

inline Handle holder(std::int64_t value) {
  defineHolderClass();
  Handle result = object("coretest.Holder");
  EXPECT_EQ(vorn_field_set_integer(result, "_value", value), 1);
  return result;
}

}  // namespace vorn::tests
