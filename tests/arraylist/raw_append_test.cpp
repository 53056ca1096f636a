// The appends of unboxed values: addInt, addPrimitiveI64, addPrimitiveDouble, addPrimitiveBool and addIntToData.
#include <limits>

#include "collections/core/elements/element_types.h"
#include "tests/arraylist/bulk_cases.h"

namespace vorn::tests {
namespace {

class RawAppend : public RuntimeTest {};

void addInt(void* target, long long value) { vorn_collections_ArrayList_addInt(target, value); }
void addI64(void* target, long long value, const char* type) {
  vorn_collections_ArrayList_addPrimitiveI64(target, value, type);
}
void addDouble(void* target, double value, const char* type) {
  vorn_collections_ArrayList_addPrimitiveDouble(target, value, type);
}

// ---- addInt ---------------------------------------------------------------------------------------------------------

TEST_F(RawAppend, AddInt_TakesTheDeclaredTypeWhereItFits) {
  for (const char* name : {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong", "Float", "Double"}) {
    const Handle target = object(std::string("ArrayList<") + name + ">");
    addInt(target, 5);
    addInt(target, 6);
    EXPECT_EQ(storageOf(target), name);
    EXPECT_EQ(elementsOf(target), (Elements{describe(box(name, 5)), describe(box(name, 6))}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(RawAppend, AddInt_UntypedList_AdoptsInt) {
  const Handle target = object("ArrayList");
  addInt(target, 5);
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 5"}));
}

TEST_F(RawAppend, AddInt_ListOfObject_AdoptsIntUntilAnObjectComes) {
  const Handle target = object("ArrayList<Object>");
  addInt(target, 5);
  EXPECT_EQ(storageOf(target), "Int");
  vorn_collections_ArrayList_add(target, string("x"));
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 5", "String x"}));
}

TEST_F(RawAppend, AddInt_TooLargeForAByteListWithElements_MaterialisesWithoutAnError) {
  const Handle target = list("ArrayList<Byte>", {integer("Byte", 1), integer("Byte", 2)});
  addInt(target, 300);
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(declaredTypeOf(target), "Byte");
  EXPECT_EQ(elementsOf(target), (Elements{"Byte 1", "Byte 2", "Int 300"}));
  EXPECT_AT_REST(target);
}

TEST_F(RawAppend, AddInt_TooLargeForAnEmptyByteList_AdoptsInt) {
  const Handle target = object("ArrayList<Byte>");
  addInt(target, 300);
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(kindOf(target), ListData::PrimitiveKind::Int);
  EXPECT_EQ(declaredTypeOf(target), "Byte");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 300"}));
  // What fits the declared type is a Byte again, which this storage does not keep.
  addInt(target, 5);
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 300", "Byte 5"}));
  EXPECT_AT_REST(target);
}

TEST_F(RawAppend, AddInt_OutsideIntsRange_KeepsTheLowBits) {
  for (const char* type : {"ArrayList", "ArrayList<Int>"}) {
    const Handle target = object(type);
    addInt(target, 3000000000LL);
    addInt(target, LLONG_MIN);
    EXPECT_EQ(storageOf(target), "Int");
    EXPECT_EQ(elementsOf(target), (Elements{"Int -1294967296", "Int 0"}));
  }
  const Handle longs = object("ArrayList<Long>");
  addInt(longs, 3000000000LL);
  EXPECT_EQ(elementsOf(longs), (Elements{"Long 3000000000"}));
}

TEST_F(RawAppend, AddInt_TypesThatTakeNoInteger_GetTheirOwnInt) {
  for (const char* name : {"Boolean", "Char", "CodeUnit", "String", "app.Item"}) {
    const Handle target = object(std::string("ArrayList<") + name + ">");
    addInt(target, 1);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(storageOf(target), "Int");
    EXPECT_EQ(elementsOf(target), (Elements{"Int 1"}));
  }
  const Handle flags = list("ArrayList<Boolean>", {boolean(true)});
  addInt(flags, 1);
  EXPECT_EQ(storageOf(flags), "objects");
  EXPECT_EQ(elementsOf(flags), (Elements{"Boolean 1", "Int 1"}));
}

TEST_F(RawAppend, AddInt_BoxedStorage_AppendsABoxOfTheDeclaredType) {
  const Handle untyped = list("ArrayList", {string("x")});
  addInt(untyped, 5);
  EXPECT_EQ(elementsOf(untyped), (Elements{"String x", "Int 5"}));
  const Handle longs = list("ArrayList<Long>", {integer("Long", 1)});
  EXPECT_EQ(vorn_collections_ArrayList_count(longs, nullptr), 0);
  addInt(longs, 5);
  EXPECT_EQ(storageOf(longs), "objects");
  EXPECT_EQ(elementsOf(longs), (Elements{"Long 1", "Long 5"}));
}

TEST_F(RawAppend, LinkedLists_GetBoxes) {
  const Handle untyped = object("LinkedList");
  addInt(untyped, 1);
  addI64(untyped, 2, "Short");
  addDouble(untyped, 2.5, nullptr);
  addDouble(untyped, 3.5, "Float");
  vorn_collections_ArrayList_addPrimitiveBool(untyped, true);
  vorn_collections_ArrayList_addIntToData(getListData(untyped), 6);
  EXPECT_EQ(storageOf(untyped), "linked");
  EXPECT_EQ(elementsOf(untyped), (Elements{"Int 1", "Short 2", "Double 2.5", "Float 3.5", "Boolean 1", "Int 6"}));
  const Handle bytes = object("LinkedListSync<Byte>");
  addInt(bytes, 5);
  addInt(bytes, 300);
  EXPECT_EQ(elementsOf(bytes), (Elements{"Byte 5", "Int 300"}));
  EXPECT_EQ(kindOf(bytes), ListData::PrimitiveKind::None);
  EXPECT_AT_REST(bytes);
}

// ---- addPrimitiveI64 ------------------------------------------------------------------------------------------------

TEST_F(RawAppend, AddPrimitiveI64_UntypedList_AdoptsTheNamedType) {
  for (const std::string& name : primitiveNames()) {
    for (const std::string& prefix : {std::string(), std::string("vorn.")}) {
      SCOPED_TRACE(prefix + name);
      const Handle target = object("ArrayList");
      addI64(target, 1, (prefix + name).c_str());
      EXPECT_EQ(storageOf(target), name);
      EXPECT_EQ(kindOf(target), primitiveKindForType(name));
      EXPECT_EQ(elementsOf(target), (Elements{describe(box(name, 1))}));
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(RawAppend, AddPrimitiveI64_NullName_IsInt) {
  const Handle target = object("ArrayList");
  addI64(target, 5, nullptr);
  EXPECT_EQ(storageOf(target), "Int");
}

TEST_F(RawAppend, AddPrimitiveI64_NameWithoutAKind_KeepsSixtyFourBitsUnderThatName) {
  for (const auto& [name, kept] : {std::pair("String", "String"),
                                   {"vorn.String", "String"},
                                   {"Nothing", "Nothing"},
                                   {"int", "int"},
                                   {"", "Object"}}) {
    SCOPED_TRACE(name);
    const Handle target = object("ArrayList");
    addI64(target, 5, name);
    addI64(target, 1LL << 40, name);
    EXPECT_EQ(kindOf(target), ListData::PrimitiveKind::Long);
    EXPECT_EQ(storageOf(target), kept);
    EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 1), 1LL << 40);
    EXPECT_EQ(elementsOf(target), (Elements{"Int 5", "Long 1099511627776"}));  // no integer type bears the name
    // The name differs from Long's, so that a Long is foreign to this storage.
    EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, integer("Long", 5), 0), -1);
    EXPECT_EQ(storageOf(target), kept);
    addI64(target, 6, "Long");
    EXPECT_EQ(storageOf(target), "objects");
    EXPECT_EQ(elementsOf(target), (Elements{"Int 5", "Long 1099511627776", "Long 6"}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(RawAppend, AddPrimitiveI64_TakesTheDeclaredTypeWhereItFits) {
  const Handle longs = object("ArrayList<Long>");
  addI64(longs, 7, "Byte");
  addI64(longs, 8, nullptr);
  addI64(longs, 9, "vorn.Long");
  EXPECT_EQ(storageOf(longs), "Long");
  EXPECT_EQ(elementsOf(longs), (Elements{"Long 7", "Long 8", "Long 9"}));
  const Handle doubles = object("ArrayList<Double>");
  addI64(doubles, 7, "Int");
  addI64(doubles, 1, "Boolean");
  EXPECT_EQ(elementsOf(doubles), (Elements{"Double 7", "Double 1"}));
}

TEST_F(RawAppend, AddPrimitiveI64_KindOfAnotherFamily_FollowsItsOwnKind) {
  const Handle ints = list("ArrayList<Int>", {integer("Int", 1)});
  addI64(ints, 1, "Boolean");
  EXPECT_EQ(elementsOf(ints), (Elements{"Int 1", "Boolean 1"}));
  EXPECT_EQ(storageOf(ints), "objects");
  const Handle shorts = list("ArrayList<UShort>", {integer("UShort", 1)});
  addI64(shorts, 65, "CodeUnit");
  EXPECT_EQ(elementsOf(shorts), (Elements{"UShort 1", "CodeUnit 65"}));
  const Handle units = object("ArrayList<CodeUnit>");
  addI64(units, 65, "UShort");
  EXPECT_EQ(storageOf(units), "UShort");
  EXPECT_NOTHING_RAISED();
}

TEST_F(RawAppend, AddPrimitiveI64_NarrowKindsKeepLowBits) {
  const struct {
    const char* name;
    long long value;
    long long kept;
  } cases[] = {{"SByte", 200, -56},
               {"Byte", 300, 44},
               {"Byte", -1, 255},
               {"Short", 40000, -25536},
               {"UShort", 65536, 0},
               {"UShort", -1, 65535},
               {"Int", 1LL << 31, INT_MIN},
               {"UInt", -1, 4294967295LL},
               {"UInt", 1LL << 32, 0},
               {"Long", LLONG_MIN, LLONG_MIN},
               {"ULong", LLONG_MIN, LLONG_MIN},
               {"Boolean", -7, 1},
               {"Boolean", 0, 0}};
  for (const auto& [name, value, kept] : cases) {
    SCOPED_TRACE(name);
    for (const std::string& type : {std::string("ArrayList"), std::string("ArrayList<") + name + ">"}) {
      const Handle target = object(type);
      addI64(target, value, name);
      EXPECT_NOTHING_RAISED();
      EXPECT_EQ(storageOf(target), name);
      EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 0), kept);
    }
  }
}

TEST_F(RawAppend, AddPrimitiveI64_FloatingNames_StoreTheDouble) {
  const Handle target = object("ArrayList");
  addI64(target, 3, "Double");
  addI64(target, -4, "Double");
  EXPECT_EQ(storageOf(target), "Double");
  EXPECT_EQ(elementsOf(target), (Elements{"Double 3", "Double -4"}));
}

// ---- Character ranges -----------------------------------------------------------------------------------------------

struct CharacterCase {
  const char* name;
  const char* error;
  std::vector<long long> good;
  std::vector<long long> bad;
};

std::vector<CharacterCase> characterCases() {
  return {{"Char",
           kCharError,
           {0, 0xD7FF, 0xE000, 0xFFFF, 0x10000, 0x10FFFF},
           {0xD800, 0xDBFF, 0xDFFF, 0x110000, -1, 1LL << 32, LLONG_MIN, LLONG_MAX}},
          {"CodeUnit",
           kCodeUnitError,
           {0, 0xD800, 0xDFFF, 0xFFFF},
           {0x10000, 1LL << 16 | 1LL << 40, -1, LLONG_MIN, LLONG_MAX}}};
}

TEST_F(RawAppend, CharacterOutOfRange_IsRefusedAndLeavesTheListUnchanged) {
  for (const CharacterCase& characters : characterCases()) {
    const std::string declared = std::string("<") + characters.name + ">";
    for (const long long bad : characters.bad) {
      SCOPED_TRACE(std::string(characters.name) + " " + std::to_string(bad));
      const Handle one = integer(characters.name, 65);
      for (const Handle& target : {list("ArrayList" + declared, {one}), list("ArrayListSync" + declared, {one, one}),
                                   list("ArrayList", {one})}) {
        const Snapshot before(target);
        addI64(target, bad, characters.name);
        EXPECT_RAISED(characters.error);
        EXPECT_UNTOUCHED(target, before);
      }
    }
  }
}

TEST_F(RawAppend, CharacterOutOfRange_LeavesEvenTheKindOfAnEmptyListAsItWas) {
  for (const CharacterCase& characters : characterCases()) {
    for (const std::string& type :
         {std::string("ArrayList"), std::string("ArrayListSync"), std::string("ArrayList<") + characters.name + ">",
          std::string("ArrayList<String>")}) {
      const Handle target = object(type);
      const Snapshot before(target);
      addI64(target, characters.bad.front(), characters.name);
      EXPECT_RAISED(characters.error);
      EXPECT_UNTOUCHED(target, before);
      EXPECT_EQ(kindOf(target), ListData::PrimitiveKind::None);
      EXPECT_EQ(getListData(target)->primitiveType.name, nullptr);
      vorn_collections_ArrayList_addInt(target, 1);
      EXPECT_EQ(storageOf(target), "Int");
    }
  }
}

TEST_F(RawAppend, CharactersInRange_AreKeptUnderTheirOwnName) {
  for (const CharacterCase& characters : characterCases()) {
    for (const std::string& type : {std::string("ArrayList"), std::string("ArrayList<") + characters.name + ">"}) {
      const Handle target = object(type);
      Elements expected;
      for (const long long good : characters.good) {
        addI64(target, good, characters.name);
        expected.push_back(std::string(characters.name) + " " + std::to_string(good));
      }
      EXPECT_NOTHING_RAISED();
      EXPECT_EQ(storageOf(target), characters.name);
      EXPECT_EQ(elementsOf(target), expected);
    }
  }
}

TEST_F(RawAppend, CharacterChecksFollowTheStorageNotTheValue) {
  // Boxed and linked storage take what the box can hold; storage of another name turns into boxed storage.
  for (const CharacterCase& characters : characterCases()) {
    const std::string bad = std::string(characters.name) + " " + std::to_string(characters.bad.front());
    const Handle linked = object("LinkedList");
    addI64(linked, characters.bad.front(), characters.name);
    EXPECT_EQ(elementsOf(linked), (Elements{bad}));
    const Handle boxed = list("ArrayList", {string("x")});
    addI64(boxed, characters.bad.front(), characters.name);
    EXPECT_EQ(elementsOf(boxed), (Elements{"String x", bad}));
    const Handle ints = list("ArrayList", {integer("Int", 1)});
    addI64(ints, characters.bad.front(), characters.name);
    EXPECT_EQ(elementsOf(ints), (Elements{"Int 1", bad}));
    EXPECT_NOTHING_RAISED();
    // UInt and UShort share the widths but not the checks.
    const Handle plain = object("ArrayList");
    addI64(plain, 0xD800, "UInt");
    EXPECT_EQ(elementsOf(plain), (Elements{"UInt 55296"}));
    EXPECT_NOTHING_RAISED();
  }
}

// ---- addPrimitiveDouble ---------------------------------------------------------------------------------------------

TEST_F(RawAppend, AddPrimitiveDouble_UntypedList_AdoptsTheNamedType) {
  for (const auto& [name, kept] :
       {std::pair("Double", "Double"), {"vorn.Double", "Double"}, {"Float", "Float"}, {"vorn.Float", "Float"}}) {
    const Handle target = object("ArrayList");
    addDouble(target, 1.25, name);
    EXPECT_EQ(storageOf(target), kept);
    EXPECT_EQ(elementsOf(target), (Elements{std::string(kept) + " 1.25"}));
  }
  const Handle unnamed = object("ArrayList");
  addDouble(unnamed, 1.25, nullptr);
  EXPECT_EQ(storageOf(unnamed), "Double");
}

TEST_F(RawAppend, AddPrimitiveDouble_NameWithoutAKind_IsDoubleUnderThatName) {
  const Handle target = object("ArrayList");
  addDouble(target, 1.25, "Nothing");
  EXPECT_EQ(kindOf(target), ListData::PrimitiveKind::Double);
  EXPECT_EQ(storageOf(target), "Nothing");
  EXPECT_EQ(elementsOf(target), (Elements{"Double 1.25"}));
  EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, floating("Double", 1.25), 0), -1);
}

TEST_F(RawAppend, AddPrimitiveDouble_IntegerName_Truncates) {
  const Handle target = object("ArrayList");
  addDouble(target, 3.99, "Int");
  addDouble(target, -3.99, "Int");
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 3", "Int -3"}));
}

TEST_F(RawAppend, AddPrimitiveDouble_IntoFloatingTypes_Converts) {
  const Handle floats = object("ArrayList<Float>");
  addDouble(floats, 0.1, nullptr);
  addDouble(floats, 1e300, "Double");
  EXPECT_EQ(storageOf(floats), "Float");
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(floats, 0), static_cast<double>(0.1F));
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(floats, 1), std::numeric_limits<double>::infinity());
  const Handle doubles = object("ArrayList<Double>");
  addDouble(doubles, 0.1, "Float");
  EXPECT_EQ(storageOf(doubles), "Double");
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(doubles, 0), 0.1);
}

TEST_F(RawAppend, AddPrimitiveDouble_IntoAnIntegerList_FollowsItsOwnKind) {
  const Handle empty = object("ArrayList<Int>");
  addDouble(empty, 3.5, nullptr);
  EXPECT_EQ(storageOf(empty), "Double");
  const Handle ints = list("ArrayList<Int>", {integer("Int", 1)});
  addDouble(ints, 3.0, nullptr);
  EXPECT_EQ(storageOf(ints), "objects");
  EXPECT_EQ(elementsOf(ints), (Elements{"Int 1", "Double 3"}));
  EXPECT_NOTHING_RAISED();
}

// ---- addPrimitiveBool and addIntToData ------------------------------------------------------------------------------

// A name under its module is the same type, and takes the long way round.
TEST_F(RawAppend, ShortAndFullNames_AreOneType) {
  std::vector<std::string> declared = primitiveNames();
  declared.insert(declared.end(), {"", "Object", "String"});
  for (const std::string& type : declared) {
    for (const std::string& kept : primitiveNames()) {
      for (const std::string& name : primitiveNames()) {
        if (onStressHeap() && name != kept) continue;
        const std::string fullName = "vorn." + name;
        const Handle one = rawList(className(false, false, type), kept.c_str(), {66});
        const Handle other = rawList(className(false, false, type), kept.c_str(), {66});
        for (const long long value : {5LL, 300LL, 70000LL, -1LL, 0xD800LL, 1LL << 40}) {
          addI64(one, value, name.c_str());
          const Elements errors = takeErrors();
          addI64(other, value, fullName.c_str());
          EXPECT_EQ(errors, takeErrors());
          addDouble(one, static_cast<double>(value) + 0.5, name.c_str());
          const Elements floatingErrors = takeErrors();
          addDouble(other, static_cast<double>(value) + 0.5, fullName.c_str());
          EXPECT_EQ(floatingErrors, takeErrors());
        }
        ASSERT_EQ(elementsOf(one), elementsOf(other)) << type << " keeping " << kept << " given " << name;
        ASSERT_EQ(storageOf(one), storageOf(other));
        EXPECT_EQ(kindOf(one), kindOf(other));
      }
    }
  }
}

// As after a change of kind that nobody prepared.
TEST_F(RawAppend, RecordOfAnotherWidthThanItsKinds_GetsThatWidthFirst) {
  for (const std::string& type : primitiveNames()) {
    SCOPED_TRACE(type);
    const Handle integers = rawList("ArrayList", type.c_str(), {1});
    const Handle floatings = rawList("ArrayList", type.c_str(), {1});
    for (const Handle& target : {integers, floatings}) {
      SmallPrimitiveBuffer& buffer = getListData(target)->primitive;
      buffer.resetToInline(buffer.elementSize == 2 ? 8 : 2);
    }
    addI64(integers, 1, type.c_str());
    addDouble(floatings, 1, type.c_str());
    for (const Handle& target : {integers, floatings}) {
      EXPECT_EQ(elementsOf(target), Elements{describe(box(type, 1))});
      EXPECT_EQ(storageOf(target), type);
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(RawAppend, AddPrimitiveBool_IgnoresTheDeclaredType) {
  for (const char* type : {"ArrayList", "ArrayList<Boolean>", "ArrayList<Int>", "ArrayList<Double>"}) {
    const Handle target = object(type);
    vorn_collections_ArrayList_addPrimitiveBool(target, true);
    vorn_collections_ArrayList_addPrimitiveBool(target, false);
    EXPECT_EQ(storageOf(target), "Boolean");
    EXPECT_EQ(elementsOf(target), (Elements{"Boolean 1", "Boolean 0"}));
    EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 0), 1);
    EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 1), 0.0);
  }
  const Handle doubles = list("ArrayList<Double>", {floating("Double", 0.5)});
  vorn_collections_ArrayList_addPrimitiveBool(doubles, true);
  EXPECT_EQ(storageOf(doubles), "objects");
  EXPECT_EQ(elementsOf(doubles), (Elements{"Double 0.5", "Boolean 1"}));
}

TEST_F(RawAppend, AddIntToData_IgnoresTheDeclaredType) {
  const Handle ints = list("ArrayList<Int>", {integer("Int", 1)});
  vorn_collections_ArrayList_addIntToData(getListData(ints), 2);
  EXPECT_EQ(storageOf(ints), "Int");
  EXPECT_EQ(elementsOf(ints), (Elements{"Int 1", "Int 2"}));
  const Handle empty = object("ArrayList<Byte>");
  vorn_collections_ArrayList_addIntToData(getListData(empty), 2);
  EXPECT_EQ(storageOf(empty), "Int");
  const Handle longs = list("ArrayListSync<Long>", {integer("Long", 1)});
  vorn_collections_ArrayList_addIntToData(getListData(longs), 2);
  EXPECT_EQ(storageOf(longs), "objects");
  EXPECT_EQ(elementsOf(longs), (Elements{"Long 1", "Int 2"}));
  EXPECT_AT_REST(longs);
}

}  // namespace
}  // namespace vorn::tests
