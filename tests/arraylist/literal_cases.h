// What the tests of the literals share.
#pragma once

#include <deque>
#include <string>
#include <utility>

#include "collections/core/elements/element_types.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {

using Values = std::deque<Handle>;

inline std::string shortTypeNameOf(void* list) {
  const std::string full = vorn_type_name(list);
  return full.substr(full.rfind('.') + 1);
}

inline void expectClass(void* list, bool synchronised) {
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(getListData(list)->synchronized, synchronised);
  EXPECT_FALSE(getListData(list)->linked);
  EXPECT_EQ(shortTypeNameOf(list), synchronised ? "ArrayListSync" : "ArrayList");
}

// An unboxed list of the type, declared with it.
inline void expectUnboxed(void* list, const std::string& type, std::size_t size) {
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(storageOf(list), type);
  EXPECT_EQ(declaredTypeOf(list), type);
  EXPECT_EQ(kindOf(list), primitiveKindForType(type));
  EXPECT_EQ(vorn_collections_ArrayList_size(list), static_cast<long long>(size));
  EXPECT_AT_REST(list);
}

// An untyped list that holds these very handles.
inline void expectHolds(void* list, const Values& values) {
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(storageOf(list), "objects");
  EXPECT_EQ(declaredTypeOf(list), "");
  const ListData& record = *getListData(list);
  ASSERT_EQ(record.objects.size, values.size());
  for (std::size_t i = 0; i < values.size(); ++i) EXPECT_EQ(record.objects.data[i], values[i].get()) << i;
  EXPECT_AT_REST(list);
}

class Literals : public RuntimeTest {};

}  // namespace vorn::tests
