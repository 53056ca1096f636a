// A user class with an ordering that a test can replace: "app.Ranked" with the integer field "id".
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/arraylist/user_item.h"

namespace vorn::tests {

using Ordering = std::function<int(void* self, void* other)>;
inline Ordering* activeOrdering = nullptr;

inline int compareRanked(void* self, void* other, bool* comparable, void*) {
  *comparable = true;
  if (activeOrdering != nullptr) return (*activeOrdering)(self, other);
  return idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
}

inline bool rankedEqual(void* self, void* other, void*) { return idOf(self) == idOf(other); }

inline Handle ranked(std::int64_t id) {
  static const bool defined = [] {
    const vorn_field_definition fields[] = {{"id", VORN_FIELD_INTEGER}};
    vorn_class_definition definition = {};
    definition.struct_size = sizeof(definition);
    definition.name = "app.Ranked";
    definition.fields = fields;
    definition.field_count = 1;
    definition.equals = rankedEqual;
    definition.compare = compareRanked;
    return vorn_class_define(&definition) != 0;
  }();
  EXPECT_TRUE(defined);
  Handle result = object("app.Ranked");
  EXPECT_NE(vorn_field_set_integer(result, "id", id), 0);
  return result;
}

inline Handle rankedList(const std::string& type, const std::vector<long long>& ids) {
  Handle result = object(type);
  for (const long long id : ids) vorn_collections_ArrayList_add(result, ranked(id));
  return result;
}

class ScopedOrdering {
 public:
  explicit ScopedOrdering(Ordering ordering) : ordering_(std::move(ordering)) { activeOrdering = &ordering_; }
  ~ScopedOrdering() { activeOrdering = nullptr; }
  ScopedOrdering(const ScopedOrdering&) = delete;
  ScopedOrdering& operator=(const ScopedOrdering&) = delete;

 private:
  Ordering ordering_;
};

}  // namespace vorn::tests
