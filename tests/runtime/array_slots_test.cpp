// What the runtime answers fixed arrays: slot kinds of type names, unboxing for slots, characters; array objects.
#include <vorn/collections/array.h>

#include <cmath>

#include "collections/array/array_data.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "tests/support/error_texts.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

using ArraySlots = RuntimeTest;

// ---- Slot kinds -----------------------------------------------------------------------------------------------------

TEST_F(ArraySlots, Kind_OfEveryPrimitiveTypeShortAndFull) {
  const std::pair<const char*, ArraySlotKind> kinds[] = {
      {"SByte", ArraySlotKind::Int8},    {"Byte", ArraySlotKind::UInt8},      {"Short", ArraySlotKind::Int16},
      {"UShort", ArraySlotKind::UInt16}, {"CodeUnit", ArraySlotKind::UInt16}, {"Int", ArraySlotKind::Int32},
      {"UInt", ArraySlotKind::UInt32},   {"Char", ArraySlotKind::UInt32},     {"Long", ArraySlotKind::Int64},
      {"ULong", ArraySlotKind::UInt64},  {"Float", ArraySlotKind::Float32},   {"Double", ArraySlotKind::Float64},
      {"Boolean", ArraySlotKind::Bool}};
  for (const auto& [name, kind] : kinds) {
    EXPECT_EQ(slotKindForArrayElementType(name), kind) << name;
    EXPECT_EQ(slotKindForArrayElementType(std::string("vorn.") + name), kind) << name;
  }
}

TEST_F(ArraySlots, Kind_OfEveryOtherNameIsObject) {
  for (const char* name : {"Object", "String", "vorn.String", "", "int", "Integer", "Ints", " Int", "Int ", "app.Int",
                           "vorn.vorn.Int", "Array<Int>", "Map<String, Int>", "vorn.", "Boolea", "Charx", "None"}) {
    EXPECT_EQ(slotKindForArrayElementType(name), ArraySlotKind::Object) << name;
  }
}

TEST_F(ArraySlots, Size_IsTheWidthOfTheKind) {
  const std::size_t widths[] = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 1};
  for (std::uint8_t kind = 0; kind < 11; ++kind) {
    EXPECT_EQ(arraySlotKindSize(static_cast<ArraySlotKind>(kind)), widths[kind]) << int{kind};
    EXPECT_EQ(arraySlotKindIsFloating(static_cast<ArraySlotKind>(kind)), kind == 8 || kind == 9) << int{kind};
  }
  EXPECT_EQ(arraySlotKindSize(ArraySlotKind::Object), 0U);
  EXPECT_FALSE(arraySlotKindIsFloating(ArraySlotKind::Object));
}

// ---- Unboxing -------------------------------------------------------------------------------------------------------

constexpr const char* kIntegerTypes[] = {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong"};

TEST_F(ArraySlots, Integer_OfTheEightTypesAndNoOthers) {
  for (const char* type : kIntegerTypes) {
    long long value = 0;
    EXPECT_TRUE(extractArrayElementInteger(integer(type, -5), value)) << type;
    EXPECT_EQ(value, -5) << "all 64 bits of the box";
  }
  for (const Handle& other :
       {Handle(nullptr), integer("Char", 65), integer("CodeUnit", 65), boolean(true), floating("Double", 3),
        floating("Float", 3), string("3"), text("3"), list("ArrayList"), tupleOf({})}) {
    long long value = 77;
    EXPECT_FALSE(extractArrayElementInteger(other, value));
    EXPECT_EQ(value, 77) << "nothing is stored";
  }
}

TEST_F(ArraySlots, Double_OfEveryNumber) {
  for (const char* type : kIntegerTypes) {
    double value = 0;
    EXPECT_TRUE(extractArrayElementDouble(integer(type, 5), value)) << type;
    EXPECT_EQ(value, 5.0);
  }
  double value = 0;
  EXPECT_TRUE(extractArrayElementDouble(integer("ULong", -1), value));
  EXPECT_EQ(value, 0x1p64);
  EXPECT_TRUE(extractArrayElementDouble(integer("Long", -1), value));
  EXPECT_EQ(value, -1.0);
  EXPECT_TRUE(extractArrayElementDouble(floating("Float", 0.5), value));
  EXPECT_EQ(value, 0.5);
  EXPECT_TRUE(extractArrayElementDouble(floating("Double", std::nan("")), value));
  EXPECT_TRUE(std::isnan(value));
  for (const Handle& other : {Handle(nullptr), integer("Char", 65), integer("CodeUnit", 65), boolean(true), string("3"),
                              text("3"), list("ArrayList")}) {
    double kept = 77;
    EXPECT_FALSE(extractArrayElementDouble(other, kept));
    EXPECT_EQ(kept, 77);
  }
}

TEST_F(ArraySlots, Bool_OfBooleansOnly) {
  for (const bool truth : {false, true}) {
    bool value = !truth;
    EXPECT_TRUE(extractArrayElementBool(boolean(truth), value));
    EXPECT_EQ(value, truth);
  }
  for (const Handle& other : {Handle(nullptr), integer("Int", 1), integer("Char", 1), floating("Double", 1),
                              string("true"), text("true"), list("ArrayList")}) {
    for (const bool before : {false, true}) {
      bool value = before;
      EXPECT_FALSE(extractArrayElementBool(other, value));
      EXPECT_EQ(value, before);
    }
  }
}

// ---- Characters -----------------------------------------------------------------------------------------------------

TEST_F(ArraySlots, IntToChar_GivesScalarsBackAndRefusesTheRest) {
  for (const long long scalar : {0LL, 0x41LL, 0xD7FFLL, 0xE000LL, 0xFFFFLL, 0x10FFFFLL}) {
    EXPECT_EQ(Vorn_intToChar(scalar), scalar);
    EXPECT_NOTHING_RAISED();
  }
  for (const long long value : {0xD800LL, 0xDFFFLL, 0x110000LL, -1LL, 1LL << 32, 1LL << 32 | 0x41,
                                static_cast<long long>(INT64_MIN), static_cast<long long>(INT64_MAX)}) {
    EXPECT_EQ(Vorn_intToChar(value), 0);
    EXPECT_RAISED(error_texts::kCharNotScalar);
  }
}

TEST_F(ArraySlots, IntToCodeUnit_GivesSixteenBitsBackAndRefusesTheRest) {
  for (const long long unit : {0LL, 0xD800LL, 0xFFFFLL}) {
    EXPECT_EQ(Vorn_intToCodeUnit(unit), unit);
    EXPECT_NOTHING_RAISED();
  }
  for (const long long value : {0x10000LL, -1LL, 1LL << 32 | 0x41, static_cast<long long>(INT64_MIN)}) {
    EXPECT_EQ(Vorn_intToCodeUnit(value), 0);
    EXPECT_RAISED(error_texts::kCodeUnitOutOfRange);
  }
}

TEST_F(ArraySlots, CodeUnitToString_EveryUnitThatIsNoSurrogate) {
  for (long long unit = 1; unit <= 0xFFFF; ++unit) {
    if (unit >= 0xD800 && unit <= 0xDFFF) continue;
    const char* text = Vorn_codeUnitToString(unit);
    ASSERT_NE(text, nullptr);
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    // Read back by the rules of UTF-8.
    long long read = -1;
    const std::size_t length = std::string(text).size();
    if (length == 1) read = bytes[0];
    if (length == 2) read = (bytes[0] & 0x1F) << 6 | (bytes[1] & 0x3F);
    if (length == 3) read = (bytes[0] & 0x0F) << 12 | (bytes[1] & 0x3F) << 6 | (bytes[2] & 0x3F);
    ASSERT_EQ(read, unit);
    ASSERT_EQ(length, unit < 0x80 ? 1U : unit < 0x800 ? 2U : 3U);
    ASSERT_EQ(Vorn_codeUnitToString(unit), text) << "lives as long as the process";
  }
  EXPECT_STREQ(Vorn_codeUnitToString(0), "");
  for (const long long value : {0x10000LL, -1LL, 1LL << 32 | 0x41}) EXPECT_EQ(Vorn_codeUnitToString(value), nullptr);
  EXPECT_NOTHING_RAISED();
}

// ---- Array objects --------------------------------------------------------------------------------------------------

TEST_F(ArraySlots, NewArrayObjects_HaveAnEmptyRecordAndASizeField) {
  for (const char* name : {"Array", "ArraySync", "Array<Int>", "vorn.collections.ArraySync<vorn.Double>"}) {
    SCOPED_TRACE(name);
    const Handle array = object(name);
    ASSERT_NE(array.get(), nullptr);
    const ArrayData& data = *getArrayData(array);
    const bool synchronised = std::string(name).find("Sync") != std::string::npos;
    EXPECT_EQ(data.synchronized, synchronised);
    EXPECT_EQ(data.mutex != nullptr, synchronised);
    EXPECT_EQ(data.slotKind, ArraySlotKind::Object);
    EXPECT_EQ(data.elementType.get(), "");
    EXPECT_EQ(arrayLogicalSize(data), 0U);
    EXPECT_EQ(Vorn_getField_i64(array, "size"), 0);
    Vorn_setField_i64(array, "size", 5);
    EXPECT_EQ(Vorn_getField_i64(array, "size"), 5);
    EXPECT_EQ(arrayLogicalSize(data), 0U) << "the field is the language's, the record does not follow";
    EXPECT_TRUE(isArrayLike(Vorn_objectTypeName(array)));
    EXPECT_EQ(isSyncArrayLike(Vorn_objectTypeName(array)), synchronised);
  }
  EXPECT_EQ(object("Array<Int,Int>").get(), nullptr);
}

TEST_F(ArraySlots, Families_TellArraysFromLists) {
  for (const char* name : {"ArrayList", "ArrayListSync<Int>", "LinkedList", "app.Array", "Arrays", "Tuple", ""}) {
    EXPECT_FALSE(isArrayLike(name)) << name;
    EXPECT_FALSE(isSyncArrayLike(name)) << name;
  }
  EXPECT_TRUE(Vorn_isInstanceOf(object("Array<Int>"), "Array"));
  EXPECT_TRUE(Vorn_isInstanceOf(object("Array<Int>"), "vorn.collections.Array<vorn.Int>"));
  EXPECT_FALSE(Vorn_isInstanceOf(object("Array<Int>"), "Array<Double>"));
}

}  // namespace
}  // namespace vorn::tests
