// A user class whose hooks a test supplies: "test.Hooked" with the fields "key" (integer) and "next" (handle), and a
// class like it without hooks, "test.Plain", and one that has a hash hook as well, "test.Hashed".
#pragma once

#include <functional>
#include <string>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

// What the hooks run. What the functions capture must be rooted elsewhere.
struct HookFunctions {
  std::function<bool(void* self, void* other)> equals;
  std::function<int(void* self, void* other, bool* comparable)> compare;
  std::function<void*(void* self)> toString;
  std::function<std::uint64_t(void* self)> hash;
};
inline HookFunctions hookFunctions;

inline std::int64_t keyOf(void* handle) {
  std::int64_t key = -1;
  vorn_field_get_integer(handle, "key", &key);
  return key;
}

inline void* nextOf(void* handle) {
  void* next = nullptr;
  vorn_field_get_handle(handle, "next", &next);
  return next;
}

namespace hooked_objects {

inline bool equals(void* self, void* other, void*) {
  if (hookFunctions.equals) return hookFunctions.equals(self, other);
  return vorn_is_instance(other, vorn_type_name(self)) != 0 && keyOf(self) == keyOf(other);
}

inline int compare(void* self, void* other, bool* comparable, void*) {
  if (hookFunctions.compare) return hookFunctions.compare(self, other, comparable);
  *comparable = vorn_is_instance(other, vorn_type_name(self)) != 0;
  const std::int64_t left = keyOf(self);
  const std::int64_t right = keyOf(other);
  return left < right ? -1 : (left > right ? 1 : 0);
}

inline void* toString(void* self, void*) {
  return hookFunctions.toString ? hookFunctions.toString(self)
                                : vorn_string_new(("hooked " + std::to_string(keyOf(self))).c_str(), SIZE_MAX);
}

inline std::uint64_t hash(void* self, void*) {
  return hookFunctions.hash ? hookFunctions.hash(self) : static_cast<std::uint64_t>(keyOf(self));
}

inline Handle make(const char* name, bool withHooks, std::int64_t key, bool withHash = false) {
  const vorn_field_definition fields[] = {{"key", VORN_FIELD_INTEGER}, {"next", VORN_FIELD_HANDLE}};
  vorn_class_definition definition = {};
  definition.struct_size = sizeof(definition);
  definition.name = name;
  definition.fields = fields;
  definition.field_count = 2;
  if (withHooks) {
    definition.equals = equals;
    definition.compare = compare;
    definition.to_string = toString;
  }
  if (withHash) definition.hash = hash;
  vorn_class_define(&definition);  // refused when it is defined already
  Handle result = object(name);
  EXPECT_EQ(vorn_field_set_integer(result, "key", key), 1);
  return result;
}

}  // namespace hooked_objects

inline Handle hooked(std::int64_t key) { return hooked_objects::make("test.Hooked", true, key); }
inline Handle hashed(std::int64_t key) { return hooked_objects::make("test.Hashed", true, key, true); }
inline Handle plain(std::int64_t key) { return hooked_objects::make("test.Plain", false, key); }

// Fixture whose tests start and end with the default hooks.
class HookedObjectsTest : public RuntimeTest {
 protected:
  void TearDown() override {
    hookFunctions = {};
    RuntimeTest::TearDown();
  }
};

}  // namespace vorn::tests
