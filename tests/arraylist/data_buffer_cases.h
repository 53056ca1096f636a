// What the tests of the data-buffer protocol share.
#pragma once

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/error_texts.h"

namespace vorn::tests {

using Kind = ListData::PrimitiveKind;

// The eight integer types with their letters, and Boolean: what travels as 64-bit integers.
inline std::vector<std::string> integerNames(bool withBoolean) {
  std::vector<std::string> names;
  for (const std::string& name : primitiveNames()) {
    if (!isFloatingName(name) && (withBoolean || name != "Boolean")) names.push_back(name);
  }
  return names;
}

// Writes small numbers 1, 0, 1, 0, ... (1 is valid in every kind) at the kind's own width.
inline void writeRaw(void* data, Kind kind, long long n) {
  vorn::collections::visitKind(kind, [&](auto tag) {
    using Element = typename decltype(tag)::Element;
    for (long long i = 0; i < n; ++i) {
      const Element value = static_cast<Element>((i + 1) % 2);
      std::memcpy(static_cast<unsigned char*>(data) + static_cast<std::size_t>(i) * sizeof(Element), &value,
                  sizeof(Element));
    }
  });
}

inline Elements alternating(const std::string& type, long long n) {
  Elements elements;
  for (long long i = 0; i < n; ++i) elements.push_back(describe(box(type, (i + 1) % 2)));
  return elements;
}

inline void expectTyped(void* list, const std::string& name, Kind kind, long long size) {
  EXPECT_EQ(storageOf(list), name);
  EXPECT_EQ(declaredTypeOf(list), name);
  EXPECT_EQ(kindOf(list), kind);
  EXPECT_EQ(vorn_collections_ArrayList_size(list), size);
  EXPECT_AT_REST(list);
}

inline void expectMirrorsEmpty(void* list) {
  EXPECT_EQ(getListData(list)->i64Mirror.size, 0U);
  EXPECT_EQ(getListData(list)->f64Mirror.size, 0U);
}

inline bool wholeNameIs(const char* typeName, const std::string& name) {
  const std::string full = typeName;
  return full.substr(full.rfind('.') + 1) == name;
}

inline constexpr const char* kIntStorageError = error_texts::kIntStorageExpected;
inline constexpr const char* kIntegerStorageError = error_texts::kIntegerStorageExpected;
inline constexpr const char* kFloatingStorageError = error_texts::kFloatingStorageExpected;
inline constexpr const char* kPrimitiveStorageError = error_texts::kPrimitiveStorageExpected;

// A commit native, the kinds of storage that it takes, and what it raises for any other.
struct Commit {
  const char* name;
  void (*call)(void* list, long long n);
  bool fast;
  bool integers;
  bool booleans;
  bool floats;
  const char* error;
};

inline std::ostream& operator<<(std::ostream& out, const Commit& commit) { return out << commit.name; }

inline const std::vector<Commit>& commits() {
  static const std::vector<Commit> all = {
      {"commitIntDataSize", vorn_collections_ArrayList_commitIntDataSize, false, true, false, false, kIntStorageError},
      {"commitPrimitiveI64DataSize", vorn_collections_ArrayList_commitPrimitiveI64DataSize, false, true, true, false,
       kIntegerStorageError},
      {"commitPrimitiveI64DataSizeFast", vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast, true, true, true,
       false, kIntegerStorageError},
      {"commitDoubleDataSize", vorn_collections_ArrayList_commitDoubleDataSize, false, false, false, true,
       kFloatingStorageError},
      {"commitDoubleDataSizeFast", vorn_collections_ArrayList_commitDoubleDataSizeFast, true, false, false, true,
       kFloatingStorageError},
      {"commitPrimitiveDataSize", vorn_collections_ArrayList_commitPrimitiveDataSize, false, true, true, true,
       kPrimitiveStorageError},
      {"commitPrimitiveDataSizeFast", vorn_collections_ArrayList_commitPrimitiveDataSizeFast, true, true, true, true,
       kPrimitiveStorageError},
  };
  return all;
}

inline bool takes(const Commit& commit, const std::string& type) {
  if (type == "Boolean") return commit.booleans;
  return isFloatingName(type) ? commit.floats : commit.integers;
}

class DataBuffers : public RuntimeTest {};

}  // namespace vorn::tests
