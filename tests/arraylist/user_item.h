// A user class whose equality a test can replace: "app.Item" with the integer field "id".
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

// What the class's equality hook runs; by default two items are equal when their ids are.
using Equality = std::function<bool(void* self, void* other)>;
inline Equality* activeEquality = nullptr;

inline long long idOf(void* handle) {
  std::int64_t id = -1;
  vorn_field_get_integer(handle, "id", &id);
  return id;
}

inline bool itemsEqual(void* self, void* other, void*) {
  if (activeEquality != nullptr && *activeEquality) return (*activeEquality)(self, other);
  return vorn_is_instance(other, "app.Item") != 0 && idOf(self) == idOf(other);
}

// A new item. The class is defined on first use.
inline Handle item(std::int64_t id) {
  static const bool defined = [] {
    const vorn_field_definition fields[] = {{"id", VORN_FIELD_INTEGER}};
    vorn_class_definition definition = {};
    definition.struct_size = sizeof(definition);
    definition.name = "app.Item";
    definition.fields = fields;
    definition.field_count = 1;
    definition.equals = itemsEqual;
    return vorn_class_define(&definition) != 0;
  }();
  EXPECT_TRUE(defined);
  Handle result = object("app.Item");
  EXPECT_NE(vorn_field_set_integer(result, "id", id), 0);
  return result;
}

// Replaces the equality of items for a scope. What it captures must be rooted elsewhere.
class ScopedEquality {
 public:
  explicit ScopedEquality(Equality equality) : equality_(std::move(equality)), previous_(activeEquality) {
    activeEquality = &equality_;
  }
  ~ScopedEquality() { activeEquality = previous_; }
  ScopedEquality(const ScopedEquality&) = delete;
  ScopedEquality& operator=(const ScopedEquality&) = delete;

 private:
  Equality equality_;
  Equality* previous_;
};

}  // namespace vorn::tests
