// What the list tests share: readable elements, whole-record snapshots, palettes of element values, and a table of the
// natives.
#pragma once

#include <pthread.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/user_item.h"
#include "tests/support/error_texts.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {

inline constexpr const char* kIndexError = error_texts::kIndexOutOfBounds;
inline constexpr const char* kIntItemError = error_texts::kExpectedIntItem;
inline constexpr const char* kFloatingItemError = error_texts::kExpectedFloatingItem;
inline constexpr const char* kCodeUnitError = error_texts::kCodeUnitOutOfRange;
inline constexpr const char* kCharError = error_texts::kCharNotScalar;
inline constexpr const char* kAddOnNullError = error_texts::kAddOnNull;

// The thirteen type names that select a primitive kind.
inline const std::vector<std::string>& primitiveNames() {
  static const std::vector<std::string> names = {"SByte", "Byte", "Short", "UShort", "CodeUnit", "Int",    "UInt",
                                                 "Char",  "Long", "ULong", "Float",  "Double",   "Boolean"};
  return names;
}

// A list class by its two flags and its element type ("" for an untyped list).
inline std::string className(bool linked, bool synchronised, const std::string& element = "") {
  const std::string name = std::string(linked ? "LinkedList" : "ArrayList") + (synchronised ? "Sync" : "");
  return element.empty() ? name : name + "<" + element + ">";
}

// A box of any primitive type that holds a small whole number; Boolean is true unless the number is 0.
inline Handle box(const std::string& type, long long value) {
  if (type == "Float" || type == "Double") return floating(type.c_str(), static_cast<double>(value));
  if (type == "Boolean") return boolean(value != 0);
  return integer(type.c_str(), value);
}

// ---- Readable elements ----------------------------------------------------------------------------------------------

inline std::string describeNumber(double value) {
  char digits[40];
  std::snprintf(digits, sizeof(digits), "%.17g", value);
  return digits;
}

// Type and value of a handle, such as "Int 5", "Double 0.5", "Boolean 1", "String abc", "text abc", "Item 3" or "null".
inline std::string describe(void* handle) {
  if (handle == nullptr) return "null";
  if (vorn_is_object(handle) == 0) return std::string("text ") + static_cast<const char*>(handle);
  const std::string fullName = vorn_type_name(handle);
  const std::string type = fullName.substr(fullName.rfind('.') + 1);
  std::int64_t whole = 0;
  double real = 0.0;
  if (vorn_unbox_integer(handle, &whole) != 0) return type + " " + std::to_string(whole);
  if (vorn_unbox_floating(handle, &real) != 0) return type + " " + describeNumber(real);
  if (vorn_field_get_integer(handle, "id", &whole) != 0) return type + " " + std::to_string(whole);
  const char* characters = vorn_string_text(handle);
  return characters != nullptr ? type + " " + characters : type;
}

// The elements of a list as `operator_index` gives them.
inline std::vector<std::string> elementsOf(void* list) {
  std::vector<std::string> elements;
  for (long long i = 0, size = vorn_collections_ArrayList_size(list); i < size; ++i) {
    const Handle element = vorn_collections_ArrayList_operator_index(list, i);
    elements.push_back(describe(element));
  }
  return elements;
}

using Elements = std::vector<std::string>;

// ---- Storage --------------------------------------------------------------------------------------------------------

// The live storage in words: "Int", "Char", ... for unboxed elements kept under that name and its kind, "objects" or
// "linked".
inline std::string storageOf(void* list) {
  const ListData& data = *getListData(list);
  vorn_list_storage_info info;
  if (vorn_list_get_storage(list, &info) == 0) return "not a list";
  const bool unboxed = data.primitiveKind != ListData::PrimitiveKind::None;
  if (info.storage != (unboxed ? VORN_LIST_PRIMITIVE : data.linked ? VORN_LIST_LINKED : VORN_LIST_OBJECTS)) {
    return "the embedding API and the record disagree";
  }
  if (!unboxed) return data.linked ? "linked" : "objects";
  if (data.primitiveType.get() != info.primitive_type) return "the embedding API and the record disagree on the name";
  return info.primitive_type;
}

inline ListData::PrimitiveKind kindOf(void* list) { return getListData(list)->primitiveKind; }
inline std::string declaredTypeOf(void* list) { return std::string(getListData(list)->elementType.get()); }

// Everything a native that refuses must leave alone. Handles are kept for comparison only.
struct Snapshot {
  explicit Snapshot(void* list) {
    const ListData& data = *getListData(list);
    kind = static_cast<int>(data.primitiveKind);
    flags = (data.linked ? 1 : 0) + (data.synchronized ? 2 : 0);
    elementType = data.elementType.get();
    primitiveType = data.primitiveType.get();
    size = data.logicalSize();
    if (kind != 0) bytes.assign(data.primitive.data, data.primitive.data + size * data.primitive.elementSize);
    for (std::uint64_t i = 0; !data.linked && i < data.objects.size; ++i) handles.push_back(data.objects.data[i]);
    for (const LinkedHandles::Links* node = data.linkedObjects.sentinel.next; node != &data.linkedObjects.sentinel;
         node = node->next) {
      handles.push_back(static_cast<const LinkedHandles::Node*>(node)->handle);
    }
  }

  bool operator==(const Snapshot&) const = default;

  friend std::ostream& operator<<(std::ostream& out, const Snapshot& snapshot) {
    out << "kind " << snapshot.kind << " under \"" << snapshot.primitiveType << "\", declared \""
        << snapshot.elementType << "\", flags " << snapshot.flags << ", size " << snapshot.size << ", bytes";
    for (const unsigned char byte : snapshot.bytes) out << ' ' << static_cast<int>(byte);
    out << ", handles";
    for (const void* handle : snapshot.handles) out << ' ' << handle;
    return out;
  }

  int kind = 0;
  int flags = 0;
  std::string elementType;
  std::string primitiveType;
  std::uint64_t size = 0;
  std::vector<unsigned char> bytes;
  std::vector<const void*> handles;
};

// Whether nobody holds the list's lock. True for an unsynchronised list.
inline bool isUnlocked(void* list) { return !isRecordLocked(*getListData(list)); }

// The list is whole and nobody holds its lock.
#define EXPECT_AT_REST(list)                      \
  do {                                            \
    EXPECT_VALID_LIST(list);                      \
    EXPECT_TRUE(::vorn::tests::isUnlocked(list)); \
  } while (false)

// The list is as it was, whole, and nobody holds its lock.
#define EXPECT_UNTOUCHED(list, snapshot)                  \
  do {                                                    \
    EXPECT_EQ(::vorn::tests::Snapshot(list), (snapshot)); \
    EXPECT_AT_REST(list);                                 \
  } while (false)

// ---- Palettes -------------------------------------------------------------------------------------------------------

// A value that a list may hold, with what the two unboxed reads make of it.
struct PaletteEntry {
  Handle value;
  long long asInteger;
  double asDouble;
};
using Palette = std::vector<PaletteEntry>;

// Pairwise unequal values of one element type: a primitive name, "app.Item", or "" for a mixture. The ends of each
// range are among them. Only the mixture holds null, as its last value.
inline Palette paletteOf(const std::string& element) {
  Palette palette;
  const auto add = [&palette](const Handle& value, long long asInteger, double asDouble) {
    palette.push_back({value, asInteger, asDouble});
  };
  const auto addIntegers = [&](std::initializer_list<long long> values) {
    for (const long long value : values) add(box(element, value), value, static_cast<double>(value));
  };
  if (element.empty()) {
    add(integer("Int", 7), 7, 7.0);
    add(string("seven"), 0, 0.0);
    add(floating("Double", 2.75), 2, 2.75);
    add(text("eight"), 0, 0.0);
    add(integer("Long", 1LL << 40), 1LL << 40, 1099511627776.0);
    add(item(1), 0, 0.0);
    add(integer("Char", 'q'), 'q', 113.0);
    add(nullptr, 0, 0.0);
  } else if (element == "app.Item") {
    for (int id = 1; id <= 5; ++id) add(item(id), 0, 0.0);
  } else if (element == "SByte") {
    addIntegers({0, 1, -1, 127, -128});
  } else if (element == "Byte") {
    addIntegers({0, 1, 127, 128, 255});
  } else if (element == "Short") {
    addIntegers({0, 1, -1, 32767, -32768});
  } else if (element == "UShort" || element == "CodeUnit") {
    addIntegers({0, 65, 0xD800, 32768, 65535});
  } else if (element == "Int") {
    addIntegers({0, 1, -1, INT_MAX, INT_MIN});
  } else if (element == "UInt") {
    addIntegers({0, 1, 0x7FFFFFFF, 0x80000000LL, 0xFFFFFFFFLL});
  } else if (element == "Char") {
    addIntegers({0, 65, 0xD7FF, 0xE000, 0x10FFFF});
  } else if (element == "Long") {
    addIntegers({0, 1, -1, LLONG_MAX, LLONG_MIN});
  } else if (element == "ULong") {
    addIntegers({0, 1, 0xFFFFFFFFLL, 0x100000000LL, LLONG_MAX});
  } else if (element == "Float" || element == "Double") {
    for (const double value : {0.0, 1.5, -2.75, 16777216.0}) {
      add(floating(element.c_str(), value), static_cast<long long>(value), value);
    }
    add(floating(element.c_str(), 0x1p100), LLONG_MIN, 0x1p100);
  } else if (element == "Boolean") {
    addIntegers({0, 1});
  }
  return palette;
}

// ---- Natives --------------------------------------------------------------------------------------------------------

// One native, called with a plain choice of arguments: index 0 and the given value. `locks` tells whether it locks a
// synchronised list.
struct NativeCase {
  const char* name;
  bool locks;
  void (*call)(void* list, void* value);
};

inline std::ostream& operator<<(std::ostream& out, const NativeCase& native) { return out << native.name; }

// All natives of element access and mutation.
inline const std::vector<NativeCase>& natives() {
  static const std::vector<NativeCase> cases = {
      {"add", true, [](void* list, void* value) { vorn_collections_ArrayList_add(list, value); }},
      {"addInt", true, [](void* list, void*) { vorn_collections_ArrayList_addInt(list, 5); }},
      {"addPrimitiveI64", true, [](void* list, void*) { vorn_collections_ArrayList_addPrimitiveI64(list, 5, "Int"); }},
      {"addPrimitiveDouble", true,
       [](void* list, void*) { vorn_collections_ArrayList_addPrimitiveDouble(list, 5.5, "Double"); }},
      {"addPrimitiveBool", true, [](void* list, void*) { vorn_collections_ArrayList_addPrimitiveBool(list, true); }},
      {"addIntToData", true,
       [](void* list, void*) {
         vorn_collections_ArrayList_addIntToData(list != nullptr ? getListData(list) : nullptr, 5);
       }},
      {"addAt", true, [](void* list, void* value) { vorn_collections_ArrayList_addAt(list, 0, value); }},
      {"operator_index", true, [](void* list, void*) { vorn_collections_ArrayList_operator_index(list, 0); }},
      {"operator_index_eq", true,
       [](void* list, void* value) { vorn_collections_ArrayList_operator_index_eq(list, 0, value); }},
      {"getInt", true, [](void* list, void*) { vorn_collections_ArrayList_getInt(list, 0); }},
      {"getIntFast", true, [](void* list, void*) { vorn_collections_ArrayList_getIntFast(list, 0); }},
      {"getIntFromData", true,
       [](void* list, void*) {
         vorn_collections_ArrayList_getIntFromData(list != nullptr ? getListData(list) : nullptr, 0);
       }},
      {"getDouble", true, [](void* list, void*) { vorn_collections_ArrayList_getDouble(list, 0); }},
      {"removeAt", true, [](void* list, void*) { vorn_collections_ArrayList_removeAt(list, 0); }},
      {"remove", true, [](void* list, void* value) { vorn_collections_ArrayList_remove(list, value); }},
      {"clear", true, [](void* list, void*) { vorn_collections_ArrayList_clear(list); }},
      {"size", true, [](void* list, void*) { vorn_collections_ArrayList_size(list); }},
      {"sizeFast", false, [](void* list, void*) { vorn_collections_ArrayList_sizeFast(list); }},
      {"count", true, [](void* list, void* value) { vorn_collections_ArrayList_count(list, value); }},
      {"operator_in", true, [](void* list, void* value) { vorn_collections_ArrayList_operator_in(list, value); }},
      {"indexOf", true, [](void* list, void* value) { vorn_collections_ArrayList_indexOf(list, value, 0); }},
      {"lastIndexOf", true, [](void* list, void* value) { vorn_collections_ArrayList_lastIndexOf(list, value, -1); }},
  };
  return cases;
}

}  // namespace vorn::tests
