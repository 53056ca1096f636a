// Slots and language values: boxing a slot, storing a value with its type test, comparing the two.
#include <cmath>

#include "collections/core/port/type_names.h"
#include "tests/array/array_cases.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class ArraySlotValues : public RuntimeTest {};

bool assign(void* array, void* value) { return assignArraySlotValue(recordOf(array), 0, value); }
bool equalsSlot(void* array, void* value) { return arraySlotEqualsObject(recordOf(array), 0, value); }

// What an array of the element type makes of a value assigned to a slot that held the sample 1: the element then, or
// "refused", after checking that a refusal leaves the slot alone.
std::string assigned(const char* element, void* value) {
  const Handle keep(value);
  const Handle array = sampleArray(element, false, 1);
  const ArrayState before(array);
  if (!assign(array, value)) {
    EXPECT_ARRAY_UNTOUCHED(array, before);
    return "refused";
  }
  EXPECT_ARRAY_AT_REST(array);
  return itemsOf(array)[0];
}

// ---- Boxing ---------------------------------------------------------------------------------------------------------

TEST_F(ArraySlotValues, ToObject_BoxesUnderTheElementType) {
  for (const SlotCase& slots : kSlotCases) {
    if (slots.kind == SlotKind::Object) continue;
    const Handle array = sampleArray(slots.element, false, 2);
    const Handle first = arraySlotToObject(recordOf(array), 0);
    EXPECT_EQ(describe(first), std::string(slots.element) + " 1");
  }
}

TEST_F(ArraySlotValues, ToObject_OutOfRangeIsNull) {
  for (const SlotCase& slots : kSlotCases) {
    SCOPED_TRACE(slots.element);
    for (const long long size : {0, 3}) {
      const Handle array = sampleArray(slots.element, false, size);
      const ArrayData& data = recordOf(array);
      EXPECT_EQ(arraySlotToObject(data, static_cast<std::uint64_t>(size)), nullptr);
      EXPECT_EQ(arraySlotToObject(data, 100), nullptr);
      EXPECT_EQ(arraySlotToObject(data, ~std::uint64_t{0}), nullptr);
    }
  }
}

TEST_F(ArraySlotValues, ToObject_HandlesAsTheyAre) {
  const Handle value = integer("Int", 5);
  const Handle array = arrayOf("Array", {value, nullptr});
  EXPECT_EQ(arraySlotToObject(recordOf(array), 0), value.get());
  EXPECT_EQ(arraySlotToObject(recordOf(array), 1), nullptr);
}

TEST_F(ArraySlotValues, ToObject_WithoutAnElementType_IsIntOrDouble) {
  const Handle integers = sampleArray("Short", false, 1);
  recordOf(integers).elementType = {};
  EXPECT_EQ(itemsOf(integers), Elements{"Int 1"});
  const Handle floats = sampleArray("Float", false, 1);
  recordOf(floats).elementType = {};
  EXPECT_EQ(itemsOf(floats), Elements{"Double 1"});
  const Handle booleans = sampleArray("Boolean", false, 1);
  recordOf(booleans).elementType = {};
  EXPECT_EQ(itemsOf(booleans), Elements{"Boolean 1"});
}

TEST_F(ArraySlotValues, ToObject_FullElementTypeNamesAreShortened) {
  const Handle array = doubleArray("Array<vorn.Double>", {2.5});
  EXPECT_EQ(recordOf(array).slotKind, SlotKind::Float64);
  EXPECT_EQ(itemsOf(array), Elements{"Double 2.5"});
  const Handle characters = intArray("Array<vorn.Char>", {65});
  EXPECT_EQ(itemsOf(characters), Elements{"Char 65"});
}

TEST_F(ArraySlotValues, ToObject_BooleanBytesBesidesOneAreTrue) {
  const Handle array = newArray("Array<Boolean>", 1);
  recordOf(array).primitive.data[0] = 0x80;
  EXPECT_EQ(itemsOf(array), Elements{"Boolean 1"});
}

// ---- Storing: unboxed -----------------------------------------------------------------------------------------------

TEST_F(ArraySlotValues, Assign_IntegerSlotsTakeTheEightIntegerTypes) {
  const char* const integers[] = {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong"};
  for (const char* element : integers) {
    for (const char* type : integers) EXPECT_EQ(assigned(element, integer(type, 7)), std::string(element) + " 7");
    for (const Handle& value :
         {floating("Float", 7), floating("Double", 7), boolean(true), integer("Char", 7), integer("CodeUnit", 7),
          string("7"), text("7"), list("ArrayList"), item(7), Handle(nullptr)}) {
      EXPECT_EQ(assigned(element, value), "refused") << element << " " << describe(value);
    }
  }
}

TEST_F(ArraySlotValues, Assign_IntegerSlotsTruncateWithoutAnError) {
  EXPECT_EQ(assigned("Byte", integer("Int", 300)), "Byte 44");
  EXPECT_EQ(assigned("SByte", integer("Long", 128)), "SByte -128");
  EXPECT_EQ(assigned("UInt", integer("Int", -1)), "UInt 4294967295");
  EXPECT_EQ(assigned("Int", integer("ULong", -1)), "Int -1");
  EXPECT_EQ(assigned("ULong", integer("Long", kLowest)), "ULong -9223372036854775808");
}

TEST_F(ArraySlotValues, Assign_FloatingSlotsTakeEveryNumber) {
  for (const char* type : {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong"}) {
    EXPECT_EQ(assigned("Double", integer(type, 7)), "Double 7");
    EXPECT_EQ(assigned("Float", integer(type, 7)), "Float 7");
  }
  EXPECT_EQ(assigned("Double", floating("Float", 0.5)), "Double 0.5");
  EXPECT_EQ(assigned("Double", floating("Double", 0.1)), "Double 0.10000000000000001");
  EXPECT_EQ(assigned("Float", floating("Double", 0.5)), "Float 0.5");
  EXPECT_EQ(assigned("Double", integer("ULong", -1)), "Double 1.8446744073709552e+19");
  EXPECT_EQ(assigned("Double", floating("Double", std::nan(""))), "Double nan");
  for (const Handle& value :
       {boolean(true), integer("Char", 7), integer("CodeUnit", 7), string("7"), text("7"), item(7), Handle(nullptr)}) {
    EXPECT_EQ(assigned("Double", value), "refused") << describe(value);
    EXPECT_EQ(assigned("Float", value), "refused") << describe(value);
  }
}

TEST_F(ArraySlotValues, Assign_BooleanSlotsTakeBooleansOnly) {
  EXPECT_EQ(assigned("Boolean", boolean(false)), "Boolean 0");
  EXPECT_EQ(assigned("Boolean", boolean(true)), "Boolean 1");
  for (const Handle& value :
       {integer("Int", 0), integer("Char", 0), floating("Double", 0), string("false"), text("0"), Handle(nullptr)}) {
    EXPECT_EQ(assigned("Boolean", value), "refused") << describe(value);
  }
}

TEST_F(ArraySlotValues, Assign_CharSlotsTakeScalarsOfTypeCharOnly) {
  for (const long long scalar : {0LL, 0xD7FFLL, 0xE000LL, 0x10FFFFLL}) {
    EXPECT_EQ(assigned("Char", integer("Char", scalar)), "Char " + std::to_string(scalar));
  }
  for (const long long value : {0xD800LL, 0xDBFFLL, 0xDC00LL, 0xDFFFLL, 0x110000LL, -1LL, 1LL << 32, 1LL << 40 | 65}) {
    EXPECT_EQ(assigned("Char", integer("Char", value)), "refused") << value;
  }
  for (const Handle& value : {integer("Int", 65), integer("UInt", 65), integer("CodeUnit", 65), boolean(true),
                              floating("Double", 65), string("A"), text("A"), Handle(nullptr)}) {
    EXPECT_EQ(assigned("Char", value), "refused") << describe(value);
  }
}

TEST_F(ArraySlotValues, Assign_CodeUnitSlotsTakeSixteenBitsOfTypeCodeUnitOnly) {
  for (const long long unit : {0LL, 0xD800LL, 0xFFFFLL}) {
    EXPECT_EQ(assigned("CodeUnit", integer("CodeUnit", unit)), "CodeUnit " + std::to_string(unit));
  }
  for (const long long value : {0x10000LL, -1LL, 1LL << 32 | 65, kLowest}) {
    EXPECT_EQ(assigned("CodeUnit", integer("CodeUnit", value)), "refused") << value;
  }
  for (const Handle& value : {integer("Int", 65), integer("UShort", 65), integer("Char", 65), boolean(true),
                              string("A"), text("A"), Handle(nullptr)}) {
    EXPECT_EQ(assigned("CodeUnit", value), "refused") << describe(value);
  }
}

// A user class of another module with the short name Char is a Char by its short type name: "the exact type" is told by
// that name alone.
TEST_F(ArraySlotValues, Assign_TheTypeOfACharacterIsItsShortName) {
  const vorn_field_definition fields[] = {{"_value", VORN_FIELD_INTEGER}};
  vorn_class_definition definition = {};
  definition.name = "arraytest.Char";
  definition.fields = fields;
  definition.field_count = 1;
  defineClass(definition);
  const Handle letter = object("arraytest.Char");
  vorn_field_set_integer(letter, "_value", 0x41);
  EXPECT_EQ(assigned("Char", letter), "Char 65");
  EXPECT_EQ(assigned("CodeUnit", letter), "refused");
  vorn_field_set_integer(letter, "_value", 0xD800);
  EXPECT_EQ(assigned("Char", letter), "refused");
}

// ---- Storing: handles -----------------------------------------------------------------------------------------------

TEST_F(ArraySlotValues, Assign_ObjectsTakeNullAlways) {
  for (const char* element : {"Object", "String", "app.Item", "ArrayList<Int>", "Map<String, Int>"}) {
    item(1);
    const Handle array = newArray(arrayType(element), 1);
    EXPECT_EQ(recordOf(array).slotKind, SlotKind::Object) << element;
    recordOf(array).objects.data[0] = vorn_box_boolean(true);
    EXPECT_TRUE(assign(array, nullptr)) << element;
    EXPECT_EQ(recordOf(array).objects.data[0], nullptr);
  }
}

TEST_F(ArraySlotValues, Assign_LenientElementTypesTestNothing) {
  for (const char* element : {"Object", "String", "vorn.String", "vorn.Object"}) {
    const Handle array = newArray(arrayType(element), 1);
    for (const Handle& value : {integer("Int", 1), text("plain"), string("text"), list("ArrayList"), item(1)}) {
      EXPECT_TRUE(assign(array, value)) << element << " " << describe(value);
      EXPECT_EQ(recordOf(array).objects.data[0], value.get());
    }
  }
}

TEST_F(ArraySlotValues, Assign_ArraysOfHandlesNamedCharOrCodeUnitTestNothing) {
  for (const char* element : {"arraytest.Char", "arraytest.CodeUnit"}) {
    const Handle array = newArray("Array", 1);
    recordOf(array).elementType = internRuntimeTypeName(element);
    EXPECT_TRUE(assign(array, Handle(text("plain")))) << element;
  }
}

TEST_F(ArraySlotValues, Assign_AUserClassTakesItsInstancesOnly) {
  item(0);  // defines the base
  vorn_class_definition definition = {};
  definition.name = "arraytest.Derived";
  definition.base_name = "app.Item";
  defineClass(definition);
  const Handle array = newArray("Array<app.Item>", 1);
  EXPECT_TRUE(assign(array, item(1)));
  const Handle derived = object("arraytest.Derived");
  EXPECT_TRUE(assign(array, derived));
  for (const Handle& value : {text("plain"), string("text"), integer("Int", 1), boolean(true), list("ArrayList"),
                              tupleOf({}), newArray("Array<app.Item>", 0)}) {
    EXPECT_FALSE(assign(array, value)) << describe(value);
    EXPECT_EQ(recordOf(array).objects.data[0], derived.get());
  }
  const Handle narrow = newArray("Array<arraytest.Derived>", 1);
  EXPECT_FALSE(assign(narrow, item(1)));
  EXPECT_TRUE(assign(narrow, derived));
}

TEST_F(ArraySlotValues, Assign_AnUnknownClassTakesNullOnly) {
  const Handle array = newArray("Array", 1);
  recordOf(array).elementType = internRuntimeTypeName("arraytest.Nobody");
  EXPECT_TRUE(assign(array, nullptr));
  EXPECT_FALSE(assign(array, item(1)));
  EXPECT_FALSE(assign(array, text("plain")));
}

TEST_F(ArraySlotValues, Assign_NestedGenerics) {
  const Handle rows = newArray("Array<Array<Int>>", 2);
  EXPECT_EQ(recordOf(rows).elementType.get(), "Array<Int>");
  const Handle row = intArray("Array<Int>", {1, 2});
  EXPECT_TRUE(assign(rows, row));
  EXPECT_FALSE(assign(rows, newArray("Array<Double>", 1)));
  EXPECT_FALSE(assign(rows, list("ArrayList<Int>")));
  EXPECT_EQ(recordOf(rows).objects.data[0], row.get());
}

// ---- Equality -------------------------------------------------------------------------------------------------------

TEST_F(ArraySlotValues, Equals_NullIsNeverAnUnboxedSlot) {
  for (const SlotCase& slots : kSlotCases) {
    const Handle array = newArray(arrayType(slots.element), 1);
    EXPECT_EQ(equalsSlot(array, nullptr), slots.kind == SlotKind::Object) << slots.element;
  }
}

TEST_F(ArraySlotValues, Equals_OutOfRangeIsFalse) {
  for (const SlotCase& slots : kSlotCases) {
    const Handle array = sampleArray(slots.element, false, 2);
    const Handle zero = slots.kind == SlotKind::Object ? Handle(nullptr) : sample(slots.element, 0);
    for (const std::uint64_t index : {std::uint64_t{2}, std::uint64_t{40}, ~std::uint64_t{0}}) {
      EXPECT_FALSE(arraySlotEqualsObject(recordOf(array), index, zero)) << slots.element;
    }
  }
}

TEST_F(ArraySlotValues, Equals_TheSampleOfEveryKindAndNoOther) {
  for (const SlotCase& slots : kSlotCases) {
    const Handle array = sampleArray(slots.element, false, 1);
    EXPECT_TRUE(equalsSlot(array, sample(slots.element, 1))) << slots.element;
    EXPECT_FALSE(equalsSlot(array, sample(slots.element, 0))) << slots.element;
  }
}

TEST_F(ArraySlotValues, Equals_IntegerSlotsMeetIntegersByValue) {
  const Handle bytes = intArray("Array<Byte>", {44});
  EXPECT_TRUE(equalsSlot(bytes, integer("Long", 44)));
  EXPECT_FALSE(equalsSlot(bytes, integer("Int", 300))) << "the value is not truncated to the slot";
  EXPECT_FALSE(equalsSlot(bytes, floating("Double", 44)));
  EXPECT_FALSE(equalsSlot(bytes, boolean(true)));
  EXPECT_FALSE(equalsSlot(bytes, integer("Char", 44)));
  const Handle wide = intArray("Array<ULong>", {-1});
  EXPECT_TRUE(equalsSlot(wide, integer("ULong", -1)));
  EXPECT_TRUE(equalsSlot(wide, integer("Int", -1))) << "the slot reads as the same 64 bits";
}

TEST_F(ArraySlotValues, Equals_FloatingSlotsMeetNumbers) {
  const Handle doubles = doubleArray("Array<Double>", {2.0});
  EXPECT_TRUE(equalsSlot(doubles, integer("Int", 2)));
  EXPECT_TRUE(equalsSlot(doubles, floating("Float", 2)));
  EXPECT_FALSE(equalsSlot(doubles, boolean(true)));
  EXPECT_FALSE(equalsSlot(doubles, string("2.0")));
  const Handle floats = doubleArray("Array<Float>", {0.1});
  EXPECT_FALSE(equalsSlot(floats, floating("Double", 0.1))) << "the slot holds a rounded value";
  EXPECT_TRUE(equalsSlot(floats, floating("Double", static_cast<double>(0.1F))));
  for (const char* type : {"Array<Double>", "Array<Float>"}) {
    EXPECT_FALSE(equalsSlot(doubleArray(type, {std::nan("")}), floating("Double", std::nan(""))));
    EXPECT_TRUE(equalsSlot(doubleArray(type, {-0.0}), floating("Double", 0.0)));
  }
}

TEST_F(ArraySlotValues, Equals_CharactersMeetTheirOwnTypeOnly) {
  const Handle characters = intArray("Array<Char>", {65});
  EXPECT_TRUE(equalsSlot(characters, integer("Char", 65)));
  EXPECT_FALSE(equalsSlot(characters, integer("Int", 65)));
  EXPECT_FALSE(equalsSlot(characters, integer("CodeUnit", 65)));
  const Handle units = intArray("Array<CodeUnit>", {65});
  EXPECT_TRUE(equalsSlot(units, integer("CodeUnit", 65)));
  EXPECT_FALSE(equalsSlot(units, integer("Char", 65)));
  EXPECT_FALSE(equalsSlot(units, integer("UShort", 65)));
  // A slot with a surrogate, written raw, is equal to no Char: the value is no scalar.
  const Handle raw = newArray("Array<Char>", 1);
  arrayWrite(recordOf(raw), 0, 0xD800, 0.0);
  EXPECT_FALSE(equalsSlot(raw, integer("Char", 0xD800)));
}

TEST_F(ArraySlotValues, Equals_HandlesByElementEquality) {
  const Handle array = arrayOf("Array", {string("a")});
  EXPECT_TRUE(equalsSlot(array, text("a")));
  EXPECT_FALSE(equalsSlot(array, text("b")));
  EXPECT_FALSE(equalsSlot(array, nullptr));
  EXPECT_TRUE(equalsSlot(arrayOf("Array", {integer("Int", 2)}), floating("Double", 2)));
  const Handle nan = floating("Double", std::nan(""));
  EXPECT_TRUE(equalsSlot(arrayOf("Array", {nan}), nan)) << "the same handle";
}

TEST_F(ArraySlotValues, Equals_TheValueIsTheLeftOperand) {
  const Handle stored = item(1);
  const Handle value = item(2);
  const Handle array = arrayOf("Array", {stored});
  const ScopedEquality equality([&](void* self, void* other) {
    EXPECT_EQ(self, value.get());
    EXPECT_EQ(other, stored.get());
    return true;
  });
  EXPECT_TRUE(equalsSlot(array, value));
}

}  // namespace
}  // namespace vorn::tests
