// Which values a list's declared element type accepts, and that a refusal changes nothing.
#include <functional>

#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

bool isFloatingName(const std::string& name) { return name == "Float" || name == "Double"; }
bool isCharacterName(const std::string& name) { return name == "Char" || name == "CodeUnit"; }

// The rule for a value that lies in every range: integers widen into integer and floating types, Booleans into floating
// types, and characters, code units and Booleans otherwise only match themselves.
bool accepts(const std::string& declared, const std::string& value) {
  if (declared == value) return true;
  if (isCharacterName(declared) || isCharacterName(value) || declared == "Boolean") return false;
  if (isFloatingName(declared)) return true;
  return !isFloatingName(value) && value != "Boolean";
}

// The four list classes.
class ElementTypes : public RuntimeTest, public ::testing::WithParamInterface<std::pair<bool, bool>> {
 protected:
  [[nodiscard]] static bool linked() { return GetParam().first; }
  [[nodiscard]] static Handle makeList(const std::string& element) {
    return object(className(GetParam().first, GetParam().second, element));
  }

  // Appending and inserting, both refused by the list.
  static void expectRefusedAsNew(void* target, void* value, const std::string& error) {
    const Snapshot before(target);
    const long long size = vorn_collections_ArrayList_size(target);
    vorn_collections_ArrayList_add(target, value);
    EXPECT_RAISED(error);
    EXPECT_UNTOUCHED(target, before);
    vorn_collections_ArrayList_operator_index_eq(target, size, value);
    EXPECT_RAISED(error);
    EXPECT_UNTOUCHED(target, before);
    for (const long long index : {0LL, size / 2, size}) {
      vorn_collections_ArrayList_addAt(target, index, value);
      EXPECT_RAISED(error);
      EXPECT_UNTOUCHED(target, before);
    }
  }

  // The same, and replacing as well.
  static void expectRefused(void* target, void* value, const std::string& error) {
    expectRefusedAsNew(target, value, error);
    const Snapshot before(target);
    const long long size = vorn_collections_ArrayList_size(target);
    for (long long index = -size; index < size; ++index) {
      vorn_collections_ArrayList_operator_index_eq(target, index, value);
      EXPECT_RAISED(error);
      EXPECT_UNTOUCHED(target, before);
    }
  }
};

TEST_P(ElementTypes, PrimitiveTypesAcceptByTheConversionRules) {
  for (const std::string& declared : primitiveNames()) {
    for (const std::string& valueType : primitiveNames()) {
      SCOPED_TRACE(valueType + " into " + declared);
      const Handle value = box(valueType, 1);
      for (const bool empty : {true, false}) {
        const Handle target = makeList(declared);
        if (!empty) vorn_collections_ArrayList_add(target, box(declared, 1));
        if (!accepts(declared, valueType)) {
          expectRefused(target, value, listTypeError(declared, "vorn." + valueType));
          continue;
        }
        vorn_collections_ArrayList_add(target, value);
        vorn_collections_ArrayList_addAt(target, 0, value);
        vorn_collections_ArrayList_operator_index_eq(target, 0, value);
        EXPECT_NOTHING_RAISED();
        // Unboxed, the value takes the declared type; linked, the handle stays as given.
        EXPECT_EQ(storageOf(target), linked() ? "linked" : declared);
        EXPECT_EQ(elementsOf(target).front(), describe(linked() ? value : box(declared, 1)));
        EXPECT_EQ(elementsOf(target).back(), describe(linked() ? value : box(declared, 1)));
        EXPECT_EQ(vorn_collections_ArrayList_size(target), empty ? 2 : 3);
        EXPECT_AT_REST(target);
      }
    }
  }
}

TEST_P(ElementTypes, PrimitiveTypesRefuseNullTextAndObjects) {
  const Handle values[] = {nullptr, text("1"), string("1"), item(1), object("ArrayList<Int>")};
  const char* names[] = {"null", "vorn.String", "vorn.String", vorn_type_name(values[3]), vorn_type_name(values[4])};
  for (const std::string& declared : primitiveNames()) {
    SCOPED_TRACE(declared);
    for (const bool empty : {true, false}) {
      const Handle target = makeList(declared);
      if (!empty) vorn_collections_ArrayList_add(target, box(declared, 1));
      for (std::size_t i = 0; i < std::size(values); ++i) {
        expectRefused(target, values[i], listTypeError(declared, names[i]));
      }
    }
  }
}

struct Range {
  const char* declared;
  const char* valueType;
  std::vector<long long> accepted;
  std::vector<long long> refused;
};

TEST_P(ElementTypes, IntegerTypesAcceptTheirRange) {
  const Range ranges[] = {
      {"SByte", "Int", {-128, 127}, {-129, 128, 255}},
      {"Byte", "Int", {0, 255}, {-1, 256, 300}},
      {"Short", "Int", {-32768, 32767}, {-32769, 32768}},
      {"UShort", "Int", {0, 65535}, {-1, 65536}},
      {"Int", "Long", {-2147483648LL, 2147483647}, {-2147483649LL, 2147483648LL, LLONG_MAX, LLONG_MIN}},
      {"UInt", "Long", {0, 4294967295LL}, {-1, 4294967296LL}},
      {"Long", "ULong", {LLONG_MIN, -1, LLONG_MAX}, {}},
      {"ULong", "Long", {0, LLONG_MAX}, {-1, LLONG_MIN}},
      {"ULong", "ULong", {0, LLONG_MAX}, {-1, LLONG_MIN}},
      {"Byte", "Byte", {0, 255}, {-1, 300}},
      {"Char", "Char", {0, 0xD7FF, 0xE000, 0x10FFFF}, {0xD800, 0xDFFF, 0x110000, -1, 1LL << 32}},
      {"CodeUnit", "CodeUnit", {0, 0xD800, 0xFFFF}, {0x10000, -1, 1LL << 32}},
  };
  for (const Range& range : ranges) {
    SCOPED_TRACE(std::string(range.valueType) + " into " + range.declared);
    const Handle target = makeList(range.declared);
    for (const long long value : range.accepted) {
      vorn_collections_ArrayList_add(target, integer(range.valueType, value));
      EXPECT_NOTHING_RAISED();
      EXPECT_EQ(vorn_collections_ArrayList_getInt(target, -1), value);
    }
    EXPECT_EQ(storageOf(target), linked() ? "linked" : range.declared);
    for (const long long value : range.refused) {
      SCOPED_TRACE(value);
      // Replacing in unboxed storage asks the storage first, and that knows no range for a box of its own type.
      const auto expectation =
          linked() || std::string(range.declared) != range.valueType ? expectRefused : expectRefusedAsNew;
      const std::string error = listTypeError(range.declared, std::string("vorn.") + range.valueType);
      expectation(target, integer(range.valueType, value), error);
      expectation(makeList(range.declared), integer(range.valueType, value), error);
    }
  }
}

TEST_P(ElementTypes, ClassTypesAcceptNullAndInstances) {
  const Handle target = makeList("app.Item");
  vorn_collections_ArrayList_add(target, item(1));
  vorn_collections_ArrayList_add(target, nullptr);
  vorn_collections_ArrayList_addAt(target, 0, nullptr);
  vorn_collections_ArrayList_operator_index_eq(target, 1, item(2));
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(elementsOf(target), (Elements{"null", "Item 2", "null"}));
  expectRefused(target, integer("Int", 1), listTypeError("Item", "vorn.Int"));
  expectRefused(target, text("1"), listTypeError("Item", "vorn.String"));
  expectRefused(target, string("1"), listTypeError("Item", "vorn.String"));
}

TEST_P(ElementTypes, StringAcceptsObjectsAndBareTexts) {
  const Handle target = makeList("String");
  vorn_collections_ArrayList_add(target, string("a"));
  vorn_collections_ArrayList_add(target, text("b"));
  vorn_collections_ArrayList_add(target, nullptr);
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(elementsOf(target), (Elements{"String a", "text b", "null"}));
  expectRefused(target, integer("Int", 1), listTypeError("String", "vorn.Int"));
  expectRefused(target, item(1), listTypeError("String", vorn_type_name(item(1))));
}

TEST_P(ElementTypes, UntypedAndObjectListsAcceptEverything) {
  for (const char* element : {"", "Object"}) {
    const Handle target = makeList(element);
    const Handle values[] = {nullptr, integer("Int", 1), text("t"), string("s"), item(1), boolean(true)};
    for (const Handle& value : values) {
      vorn_collections_ArrayList_add(target, value);
      vorn_collections_ArrayList_addAt(target, 0, value);
    }
    for (long long i = 0; i < 12; ++i) vorn_collections_ArrayList_operator_index_eq(target, i, nullptr);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(elementsOf(target), Elements(12, "null"));
  }
}

TEST_P(ElementTypes, RefusalsOnBoxedStorageOfATypedList) {
  // Turned into boxed storage by a search for null; the declared type still guards it.
  const Handle target = makeList("Int");
  vorn_collections_ArrayList_add(target, integer("Int", 1));
  EXPECT_EQ(vorn_collections_ArrayList_count(target, nullptr), 0);
  EXPECT_EQ(storageOf(target), linked() ? "linked" : "objects");
  EXPECT_EQ(declaredTypeOf(target), "Int");
  expectRefused(target, floating("Double", 3.0), listTypeError("Int", "vorn.Double"));
  expectRefused(target, nullptr, listTypeError("Int", "null"));
  expectRefused(target, integer("Long", 1LL << 31), listTypeError("Int", "vorn.Long"));
  vorn_collections_ArrayList_add(target, integer("Byte", 2));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Byte 2"}));  // a boxed element stays as given
}

INSTANTIATE_TEST_SUITE_P(Classes, ElementTypes,
                         ::testing::Values(std::pair(false, false), std::pair(false, true), std::pair(true, false),
                                           std::pair(true, true)),
                         [](const auto& param) { return className(param.param.first, param.param.second); });

}  // namespace
}  // namespace vorn::tests
