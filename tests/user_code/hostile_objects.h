// A user class whose hooks a test makes hostile: "app.Hostile" with the integer field "id".
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

enum class Hook : unsigned { Equality, Order, Hash, Text };

constexpr unsigned bit(Hook hook) { return 1U << static_cast<unsigned>(hook); }

// What the hooks do. What the functions capture must be rooted elsewhere.
struct Hostility {
  // Runs first in every call of a hook. `other` is null for Hash and Text.
  std::function<void(Hook hook, void* self, void* other)> during;
  // Each replaces the honest answer, which it is given: equal ids are equal, ids are ordered, one hash for all.
  std::function<bool(bool honest)> equality;
  std::function<int(int honest, bool* comparable)> order;
  std::function<std::uint64_t()> hash;
  std::function<void*()> text;
};

namespace hostile_objects {

inline const Hostility* active = nullptr;
// Hooks that are called while a hook runs answer honestly, or user code that uses a collection would never end.
inline bool inside = false;
inline int calls[4] = {};

class Inside {
 public:
  Inside() { inside = true; }
  ~Inside() { inside = false; }
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;
};

inline bool isHostile(void* handle) { return vorn_is_instance(handle, "app.Hostile") != 0; }

inline std::int64_t idOf(void* handle) {
  std::int64_t id = -1;
  if (handle != nullptr) vorn_field_get_integer(handle, "id", &id);
  return id;
}

// Whether the call is one to be hostile in; what comes first has then run. Both objects must outlive that, also where
// the collection held them alone and has been emptied.
inline bool enter(Hook hook, void* self, void* other) {
  if (inside || active == nullptr) return false;
  ++calls[static_cast<unsigned>(hook)];
  const Inside scope;
  const std::int64_t selfId = idOf(self);
  const std::int64_t otherId = idOf(other);
  if (active->during) active->during(hook, self, other);
  EXPECT_EQ(idOf(self), selfId) << "the object died in its own hook";
  EXPECT_EQ(idOf(other), otherId) << "the other object died in the hook";
  return true;
}

inline bool equals(void* self, void* other, void*) {
  const bool honest = isHostile(other) && idOf(self) == idOf(other);
  return enter(Hook::Equality, self, other) && active->equality ? active->equality(honest) : honest;
}

inline int compare(void* self, void* other, bool* comparable, void*) {
  const std::int64_t left = idOf(self);
  const std::int64_t right = idOf(other);
  const int honest = left < right ? -1 : left > right ? 1 : 0;
  *comparable = isHostile(other);
  return enter(Hook::Order, self, other) && active->order ? active->order(honest, comparable) : honest;
}

inline std::uint64_t hash(void* self, void*) {
  return enter(Hook::Hash, self, nullptr) && active->hash ? active->hash() : 1;
}

inline void* toString(void* self, void*) {
  const std::string honest = "#" + std::to_string(idOf(self));
  if (enter(Hook::Text, self, nullptr) && active->text) return active->text();
  return vorn_string_new(honest.data(), honest.size());
}

}  // namespace hostile_objects

// A new object. The class is defined on first use.
inline Handle hostile(std::int64_t id) {
  static const bool defined = [] {
    const vorn_field_definition fields[] = {{"id", VORN_FIELD_INTEGER}};
    vorn_class_definition definition = {};
    definition.struct_size = sizeof(definition);
    definition.name = "app.Hostile";
    definition.fields = fields;
    definition.field_count = 1;
    definition.equals = hostile_objects::equals;
    definition.compare = hostile_objects::compare;
    definition.hash = hostile_objects::hash;
    definition.to_string = hostile_objects::toString;
    return vorn_class_define(&definition) != 0;
  }();
  EXPECT_TRUE(defined);
  Handle result = object("app.Hostile");
  EXPECT_NE(vorn_field_set_integer(result, "id", id), 0);
  return result;
}

// Makes the hooks hostile for a scope and counts their calls; those that hooks themselves cause do not count.
class ScopedHostility {
 public:
  explicit ScopedHostility(const Hostility& hostility) {
    hostile_objects::active = &hostility;
    for (int& calls : hostile_objects::calls) calls = 0;
  }
  ~ScopedHostility() { hostile_objects::active = nullptr; }
  ScopedHostility(const ScopedHostility&) = delete;
  ScopedHostility& operator=(const ScopedHostility&) = delete;

  static int calls(Hook hook) { return hostile_objects::calls[static_cast<unsigned>(hook)]; }
  static int calls() { return calls(Hook::Equality) + calls(Hook::Order) + calls(Hook::Hash) + calls(Hook::Text); }
};

}  // namespace vorn::tests
