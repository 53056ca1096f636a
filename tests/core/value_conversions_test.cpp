// From language values to raw values and back.
#include <cmath>

#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/store_forms.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"
#include "tests/core/user_classes.h"

namespace vorn::tests {
namespace {

class ValueConversions : public RuntimeTest {};

// ---- Reading and boxing ---------------------------------------------------------------------------------------------

TEST_F(ValueConversions, ReadItem_IntegerBoxesGiveTheirRegisteredValue) {
  for (const char* name : {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong"}) {
    for (const long long value : {0LL, 1LL, -1LL, 300LL, kMaxLong, kMinLong}) {
      EXPECT_EQ(readListItemI64(integer(name, value)), value) << name;
    }
  }
}

TEST_F(ValueConversions, ReadItem_OtherBoxesGiveTheirValueField) {
  EXPECT_EQ(readListItemI64(integer("Char", 0x1F600)), 0x1F600);
  EXPECT_EQ(readListItemI64(integer("CodeUnit", 0xD800)), 0xD800);
  EXPECT_EQ(readListItemI64(boolean(true)), 1);
  EXPECT_EQ(readListItemI64(boolean(false)), 0);
  for (const double value : {0.0, 2.0, 3.5, -7.25}) {
    for (const char* name : {"Float", "Double"}) {
      Handle box = floating(name, value);
      EXPECT_EQ(readListItemI64(box), Vorn_getField_i64(box, "_value")) << name << ' ' << value;
    }
  }
}

TEST_F(ValueConversions, ReadItem_UserObjectsGiveTheirValueField) {
  EXPECT_EQ(readListItemI64(holder(-42)), -42);
  definePlainClasses();
  EXPECT_EQ(readListItemI64(object("coretest.Animal")), 0) << "a missing field reads as zero";
}

TEST_F(ValueConversions, Box_EveryKindUnderItsName) {
  for (const NamedKind& row : kNamedKinds) {
    Handle box = boxPrimitiveListValue(row.kind(), named(row.name), 1, 1.0);
    const std::string expected = std::string("vorn.") + row.name + (row.is("Boolean") ? " true" : " 1");
    EXPECT_EQ(describeValue(box), expected);
  }
}

TEST_F(ValueConversions, Box_FloatingKindsUseTheDoubleAndOthersTheInteger) {
  EXPECT_EQ(describeValue(Handle(boxPrimitiveListValue(Kind::Double, named("Double"), 9, 2.5))), "vorn.Double 2.5");
  EXPECT_EQ(describeValue(Handle(boxPrimitiveListValue(Kind::Float, named("Float"), 9, 2.5))), "vorn.Float 2.5");
  EXPECT_EQ(describeValue(Handle(boxPrimitiveListValue(Kind::Long, named("Long"), 9, 2.5))), "vorn.Long 9");
}

TEST_F(ValueConversions, Box_EmptyNameGivesIntOrDouble) {
  for (const int kind : {1, 2, 3, 4, 5, 6, 7, 8}) {
    EXPECT_EQ(describeValue(Handle(boxPrimitiveListValue(kindNumbered(kind), named(""), 7, 0.5))), "vorn.Int 7")
        << kind;
  }
  EXPECT_EQ(describeValue(Handle(boxPrimitiveListValue(Kind::Float, named(""), 7, 0.5))), "vorn.Double 0.5");
  EXPECT_EQ(describeValue(Handle(boxPrimitiveListValue(Kind::Double, named(""), 7, 0.5))), "vorn.Double 0.5");
  EXPECT_EQ(describeValue(Handle(boxPrimitiveListValue(Kind::None, named(""), 7, 0.5))), "vorn.Int 7");
}

TEST_F(ValueConversions, Box_BooleansAreTheSharedBoxesWhateverTheName) {
  for (const char* name : {"Boolean", "", "Flag"}) {
    EXPECT_EQ(boxPrimitiveListValue(Kind::Boolean, named(name), -3, 0.0), vorn_box_boolean(true));
    EXPECT_EQ(boxPrimitiveListValue(Kind::Boolean, named(name), 0, 1.0), vorn_box_boolean(false));
  }
}

TEST_F(ValueConversions, Box_NameNeedNotBeTerminated) {
  const std::string_view longer = "UShortcut";
  EXPECT_EQ(describeValue(Handle(boxPrimitiveListValue(Kind::UShort, named(longer.substr(0, 6)), 7, 7.0))),
            "vorn.UShort 7");
}

TEST_F(ValueConversions, Box_EveryCallGivesANewBoxExceptForBooleans) {
  Handle first = boxPrimitiveListValue(Kind::Int, named("Int"), 7, 7.0);
  Handle second = boxPrimitiveListValue(Kind::Int, named("Int"), 7, 7.0);
  EXPECT_NE(first.get(), second.get());
}

TEST_F(ValueConversions, Box_FailedAllocationThrows) {
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(boxPrimitiveListValue(Kind::Int, named("Int"), 1, 1.0), std::bad_alloc);
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(boxPrimitiveListValue(Kind::Double, named("Double"), 1, 1.0), std::bad_alloc);
}

// ---- From a handle to a raw value -----------------------------------------------------------------------------------

void expectUnboxed(void* handle, const char* name, long long integerValue, double floatingValue) {
  BulkPrimitiveListValue out;
  ASSERT_TRUE(objectToPrimitiveListValue(handle, out)) << name;
  EXPECT_EQ(out.typeName, name);
  EXPECT_EQ(out.kind, namedKind(name).kind());
  EXPECT_EQ(out.integer, integerValue) << name;
  if (std::isnan(floatingValue)) {
    EXPECT_TRUE(std::isnan(out.floating)) << name;
  } else {
    EXPECT_EQ(out.floating, floatingValue) << name;
  }
}

TEST_F(ValueConversions, Unbox_IntegerBoxesGiveIntegerAndItsDouble) {
  for (const NamedKind& row : kNamedKinds) {
    if (!row.isInteger()) continue;
    for (const long long value : {0LL, 1LL, -1LL, 300LL, 1LL << 60, kMaxLong, kMinLong}) {
      Handle box = integer(row.name, value);
      expectUnboxed(box, row.name, value, static_cast<double>(value));
    }
  }
}

TEST_F(ValueConversions, Unbox_FloatingBoxesGiveTheDoubleAndItsTruncation) {
  for (const char* name : {"Float", "Double"}) {
    expectUnboxed(floating(name, 2.75), name, 2, 2.75);
    expectUnboxed(floating(name, -2.75), name, -2, -2.75);
    expectUnboxed(floating(name, kInfinity), name, kMinLong, kInfinity);
    expectUnboxed(floating(name, kNaN), name, kMinLong, kNaN);
    expectUnboxed(floating(name, 9223372036854775808.0), name, kMinLong, 9223372036854775808.0);
  }
  expectUnboxed(floating("Double", 0.1), "Double", 0, 0.1);
}

TEST_F(ValueConversions, Unbox_BooleansGiveOneOrZeroTwice) {
  expectUnboxed(boolean(true), "Boolean", 1, 1.0);
  expectUnboxed(boolean(false), "Boolean", 0, 0.0);
}

Handle instanceWithValue(const char* className, vorn_field_type kind) {
  const vorn_field_definition fields[] = {{"_value", kind}};
  vorn_class_definition definition{};
  definition.name = className;
  definition.fields = fields;
  definition.field_count = 1;
  defineClass(definition);
  return object(className);
}

TEST_F(ValueConversions, Unbox_ObjectsOfUserClassesNamedAsATypeCountAsIt) {
  Handle integers = instanceWithValue("units.Short", VORN_FIELD_INTEGER);
  vorn_field_set_integer(integers, "_value", -7);
  expectUnboxed(integers, "Short", -7, -7.0);
  Handle floats = instanceWithValue("units.Double", VORN_FIELD_FLOATING);
  vorn_field_set_floating(floats, "_value", 2.5);
  expectUnboxed(floats, "Double", 2, 2.5);
  Handle truths = instanceWithValue("units.Boolean", VORN_FIELD_INTEGER);
  expectUnboxed(truths, "Boolean", 0, 0.0);
  vorn_field_set_integer(truths, "_value", 1);
  expectUnboxed(truths, "Boolean", 1, 1.0);
}

TEST_F(ValueConversions, Unbox_FailsForEverythingElse) {
  definePlainClasses();
  const Handle values[] = {Handle(),
                           text("5"),
                           text(""),
                           string("5"),
                           string(""),
                           object("ArrayList"),
                           list("ArrayList", {integer("Int", 1)}),
                           object("LinkedList"),
                           object("coretest.Animal"),
                           holder(5)};
  for (const Handle& value : values) {
    BulkPrimitiveListValue out;
    EXPECT_FALSE(objectToPrimitiveListValue(value, out)) << describeValue(value);
  }
}

TEST_F(ValueConversions, Unbox_FailsForConstantText) {
  static const char constantText[] = "Int";
  BulkPrimitiveListValue out;
  EXPECT_FALSE(objectToPrimitiveListValue(const_cast<char*>(constantText), out));
}

// ---- To the declared element type -----------------------------------------------------------------------------------

TEST_F(ValueConversions, RawToDeclared_ConvertsOrRefusesByTheTable) {
  for (const NamedKind& declared : kNamedKinds) {
    Handle target = object("ArrayList");
    record(target).elementType = internRuntimeTypeName(declared.name);
    for (const NamedKind& value : kNamedKinds) {
      for (const long long x : {1LL, 200LL, -1LL, 70000LL, 5000000000LL}) {
        const BulkPrimitiveListValue raw{value.kind(), named(value.name), x, static_cast<double>(x)};
        long long integerValue = 0;
        double floatingValue = 0;
        const bool expected = convertPrimitiveListValueToDeclared(declared.kind(), named(declared.name), raw,
                                                                  integerValue, floatingValue);
        BulkPrimitiveListValue out;
        ASSERT_EQ(rawPrimitiveValueToDeclared(record(target), raw, out), expected)
            << value.name << ' ' << x << " to " << declared.name;
        if (!expected) continue;
        EXPECT_EQ(out.kind, declared.kind());
        EXPECT_EQ(out.typeName, declared.name);
        EXPECT_EQ(out.integer, integerValue);
        EXPECT_EQ(out.floating, floatingValue);
      }
    }
  }
}

TEST_F(ValueConversions, RawToDeclared_NormalisesTheDeclaredName) {
  Handle target = object("ArrayList");
  record(target).elementType = internRuntimeTypeName("vorn.Byte");
  BulkPrimitiveListValue out;
  EXPECT_TRUE(rawPrimitiveValueToDeclared(record(target), rawInteger("Int", 200), out));
  EXPECT_EQ(out.typeName, "Byte");
  EXPECT_EQ(out.kind, Kind::Byte);
  EXPECT_FALSE(rawPrimitiveValueToDeclared(record(target), rawInteger("Int", 256), out));
}

TEST_F(ValueConversions, ToDeclared_FailsWithoutAPrimitiveDeclaredType) {
  for (const char* declared : {"", "Object", "String", "coretest.Animal", "ArrayList<Int>"}) {
    Handle target = object("ArrayList");
    record(target).elementType = internRuntimeTypeName(declared);
    BulkPrimitiveListValue out;
    EXPECT_FALSE(rawPrimitiveValueToDeclared(record(target), rawInteger("Int", 1), out)) << declared;
    EXPECT_FALSE(listValueToDeclaredPrimitiveValue(record(target), integer("Int", 1), out)) << declared;
  }
}

TEST_F(ValueConversions, ToDeclared_GoesByTheDeclaredAndNotByTheStoredType) {
  Handle target = primitiveList("Long", {1});
  BulkPrimitiveListValue out;
  EXPECT_FALSE(rawPrimitiveValueToDeclared(record(target), rawInteger("Int", 1), out));
  record(target).elementType = internRuntimeTypeName("Double");
  EXPECT_TRUE(rawPrimitiveValueToDeclared(record(target), rawInteger("Int", 1), out));
  EXPECT_EQ(out.kind, Kind::Double);
}

TEST_F(ValueConversions, HandleToDeclared_ConvertsBoxes) {
  Handle target = object("ArrayList");
  BulkPrimitiveListValue out;
  record(target).elementType = internRuntimeTypeName("Double");
  ASSERT_TRUE(listValueToDeclaredPrimitiveValue(record(target), integer("Int", 3), out));
  EXPECT_EQ(out.kind, Kind::Double);
  EXPECT_EQ(out.typeName, "Double");
  EXPECT_EQ(out.integer, 3);
  EXPECT_EQ(out.floating, 3.0);
  record(target).elementType = internRuntimeTypeName("Byte");
  ASSERT_TRUE(listValueToDeclaredPrimitiveValue(record(target), integer("Int", 255), out));
  EXPECT_EQ(out.kind, Kind::Byte);
  EXPECT_EQ(out.integer, 255);
  EXPECT_FALSE(listValueToDeclaredPrimitiveValue(record(target), integer("Int", 256), out));
  EXPECT_FALSE(listValueToDeclaredPrimitiveValue(record(target), integer("Byte", 256), out));
  EXPECT_FALSE(listValueToDeclaredPrimitiveValue(record(target), floating("Double", 3.0), out));
  record(target).elementType = internRuntimeTypeName("Char");
  EXPECT_TRUE(listValueToDeclaredPrimitiveValue(record(target), integer("Char", 65), out));
  EXPECT_EQ(out.typeName, "Char");
  EXPECT_FALSE(listValueToDeclaredPrimitiveValue(record(target), integer("Char", 0xD800), out));
  EXPECT_FALSE(listValueToDeclaredPrimitiveValue(record(target), integer("UInt", 65), out));
  EXPECT_NOTHING_RAISED();
}

TEST_F(ValueConversions, HandleToDeclared_RefusesWhatIsNoPrimitiveValue) {
  definePlainClasses();
  Handle target = object("ArrayList");
  record(target).elementType = internRuntimeTypeName("Int");
  BulkPrimitiveListValue out;
  for (const Handle& value : {Handle(), text("1"), string("1"), object("coretest.Animal"), object("ArrayList")}) {
    EXPECT_FALSE(listValueToDeclaredPrimitiveValue(record(target), value, out)) << describeValue(value);
  }
  EXPECT_NOTHING_RAISED();
}

}  // namespace
}  // namespace vorn::tests
