// Natives that read or write single slots, the size, and the raw pointers.
#include <cmath>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_names.h"
#include "tests/array/array_cases.h"

namespace vorn::tests {
namespace {

class ArrayElements : public RuntimeTest {};

constexpr long long kBadIndexes[] = {3, 4, -4, -5, LLONG_MAX, LLONG_MIN, LLONG_MIN + 1};  // of three elements

// ---- Size and raw access --------------------------------------------------------------------------------------------

TEST_F(ArrayElements, Size_IsTheNumberOfSlots) {
  for (const long long size : {0, 1, 5, 300}) {
    forEachArray(size, [&](const Handle& array, const std::string&, bool) {
      EXPECT_EQ(vorn_collections_Array_size(array), size);
      EXPECT_EQ(arrayLogicalSize(recordOf(array)), static_cast<std::uint64_t>(size));
    });
  }
  EXPECT_EQ(vorn_collections_Array_size(nullptr), 0);
}

TEST_F(ArrayElements, RawSizeAndRawDataPtr_RefuseSynchronisedArrays) {
  forEachArray(3, [](const Handle& array, const std::string& element, bool synchronised) {
    EXPECT_EQ(vorn_collections_Array_rawSize(array), synchronised ? 0 : 3);
    void* const unboxed = synchronised || element == "Object" ? nullptr : recordOf(array).primitive.data;
    EXPECT_EQ(vorn_collections_Array_rawDataPtr(array), unboxed);
  });
}

TEST_F(ArrayElements, RawSizeAndRawDataPtr_RefuseWhatIsNoArray) {
  for (const Handle& value : {Handle(nullptr), text("plain"), string("text"), integer("Int", 1), list("ArrayList<Int>"),
                              object("Map"), object("HashSet"), item(1)}) {
    EXPECT_EQ(vorn_collections_Array_rawSize(value), 0);
    EXPECT_EQ(vorn_collections_Array_rawDataPtr(value), nullptr);
  }
  EXPECT_NOTHING_RAISED();
}

TEST_F(ArrayElements, RawSizeAndRawDataPtr_RefuseAnObjectWithoutARecord) {
  const Handle array = newArray("Array<Int>", 3);
  void* const record = getObject(array)->nativeRecord;
  getObject(array)->nativeRecord = nullptr;
  EXPECT_EQ(vorn_collections_Array_rawSize(array), 0);
  EXPECT_EQ(vorn_collections_Array_rawDataPtr(array), nullptr);
  getObject(array)->nativeRecord = record;
  EXPECT_EQ(vorn_collections_Array_rawSize(array), 3);
}

TEST_F(ArrayElements, TypedDataPtr_AnswerForTheirKindOnlySynchronisedOrNot) {
  forEachArray(3, [](const Handle& array, const std::string& element, bool) {
    void* const slots = recordOf(array).primitive.data;
    EXPECT_EQ(static_cast<void*>(vorn_collections_Array_i64DataPtr(array)), element == "Long" ? slots : nullptr);
    EXPECT_EQ(static_cast<void*>(vorn_collections_Array_f64DataPtr(array)), element == "Double" ? slots : nullptr);
  });
  EXPECT_EQ(vorn_collections_Array_i64DataPtr(nullptr), nullptr);
  EXPECT_EQ(vorn_collections_Array_f64DataPtr(nullptr), nullptr);
}

TEST_F(ArrayElements, DataPtr_WritesAreElements) {
  const Handle longs = newArray("Array<Long>", 40);
  long long* const slots = vorn_collections_Array_i64DataPtr(longs);
  for (long long i = 0; i < vorn_collections_Array_rawSize(longs); ++i) slots[i] = i * i;
  EXPECT_EQ(vorn_collections_Array_getInt(longs, -1), 39 * 39);
  const Handle doubles = newArray("ArraySync<Double>", 2);
  vorn_collections_Array_f64DataPtr(doubles)[1] = 2.5;
  EXPECT_EQ(doublesOf(doubles), (Doubles{0.0, 2.5}));
  EXPECT_ARRAY_AT_REST(longs);
}

// ---- Indexes --------------------------------------------------------------------------------------------------------

TEST_F(ArrayElements, Index_NegativeCountsFromTheEnd) {
  forEachArray(3, [](const Handle& array, const std::string& element, bool) {
    for (long long i = 0; i < 3; ++i) {
      const Handle forward = vorn_collections_Array_operator_index(array, i);
      const Handle backward = vorn_collections_Array_operator_index(array, i - 3);
      EXPECT_EQ(describe(forward), describe(backward));
      EXPECT_EQ(describe(forward), describe(sample(element, element == "Boolean" ? (i + 1) % 2 : i + 1)));
      if (element == "Object") continue;
      EXPECT_EQ(vorn_collections_Array_getInt(array, i), vorn_collections_Array_getInt(array, i - 3));
      EXPECT_EQ(vorn_collections_Array_getDouble(array, i), vorn_collections_Array_getDouble(array, i - 3));
    }
  });
}

TEST_F(ArrayElements, Index_OutOfRangeRaisesAndTouchesNothing) {
  forEachArray(3, [](const Handle& array, const std::string& element, bool) {
    const Handle value = sample(element, 1);
    const ArrayState before(array);
    for (const long long index : kBadIndexes) {
      SCOPED_TRACE(index);
      EXPECT_EQ(vorn_collections_Array_getInt(array, index), 0);
      EXPECT_RAISED(kIndexError);
      EXPECT_EQ(vorn_collections_Array_getDouble(array, index), 0.0);
      EXPECT_RAISED(kIndexError);
      EXPECT_EQ(vorn_collections_Array_operator_index(array, index), nullptr);
      EXPECT_RAISED(kIndexError);
      vorn_collections_Array_setInt(array, index, -1);  // before the test of the character
      EXPECT_RAISED(kIndexError);
      vorn_collections_Array_setDouble(array, index, 1.0);
      EXPECT_RAISED(kIndexError);
      vorn_collections_Array_setBool(array, index, true);
      EXPECT_RAISED(kIndexError);
      vorn_collections_Array_operator_index_eq(array, index, value);
      EXPECT_RAISED(kIndexError);
      EXPECT_ARRAY_UNTOUCHED(array, before);
    }
  });
}

TEST_F(ArrayElements, Index_OfAnEmptyArrayIsAlwaysOutOfRange) {
  forEachArray(0, [](const Handle& array, const std::string&, bool) {
    for (const long long index : {0LL, -1LL, 1LL, LLONG_MAX, LLONG_MIN}) {
      EXPECT_EQ(vorn_collections_Array_getInt(array, index), 0);
      EXPECT_RAISED(kIndexError);
      EXPECT_EQ(vorn_collections_Array_operator_index(array, index), nullptr);
      EXPECT_RAISED(kIndexError);
      vorn_collections_Array_setInt(array, index, 1);
      EXPECT_RAISED(kIndexError);
    }
    EXPECT_ARRAY_AT_REST(array);
  });
}

TEST_F(ArrayElements, Null_IsNeutral) {
  EXPECT_EQ(vorn_collections_Array_getInt(nullptr, 0), 0);
  EXPECT_EQ(vorn_collections_Array_getDouble(nullptr, 0), 0.0);
  EXPECT_EQ(vorn_collections_Array_operator_index(nullptr, 0), nullptr);
  vorn_collections_Array_setInt(nullptr, 0, 1);
  vorn_collections_Array_setDouble(nullptr, 0, 1.0);
  vorn_collections_Array_setBool(nullptr, 0, true);
  vorn_collections_Array_operator_index_eq(nullptr, 0, nullptr);
  EXPECT_NOTHING_RAISED();
}

// ---- Typed reads ----------------------------------------------------------------------------------------------------

TEST_F(ArrayElements, GetIntAndGetDouble_EveryUnboxedKind) {
  forEachArray(3, [](const Handle& array, const std::string& element, bool) {
    if (element == "Object") return;
    const bool boolean = element == "Boolean";
    EXPECT_EQ(integersOf(array), (boolean ? Integers{1, 0, 1} : Integers{1, 2, 3}));
    EXPECT_EQ(doublesOf(array), (boolean ? Doubles{1, 0, 1} : Doubles{1, 2, 3}));
  });
}

TEST_F(ArrayElements, GetInt_Extremes) {
  EXPECT_EQ(integersOf(intArray("Array<Int>", {INT32_MIN, INT32_MAX})), (Integers{INT32_MIN, INT32_MAX}));
  EXPECT_EQ(integersOf(intArray("Array<Long>", {kLowest, kHighest})), (Integers{kLowest, kHighest}));
  EXPECT_EQ(integersOf(intArray("Array<ULong>", {-1, kLowest})), (Integers{-1, kLowest}));
  EXPECT_EQ(doublesOf(intArray("Array<ULong>", {-1})), Doubles{-1.0}) << "the double of the integer reading";
  EXPECT_EQ(integersOf(intArray("Array<UInt>", {-1})), Integers{4294967295});
  EXPECT_EQ(integersOf(doubleArray("Array<Double>", {2.9, -2.9, std::nan(""), HUGE_VAL, 1e19, -1e19})),
            (Integers{2, -2, kLowest, kLowest, kLowest, kLowest}));
}

TEST_F(ArrayElements, GetInt_OfHandles_IsTheValueOfTheBoxWithoutATypeTest) {
  for (const bool synchronised : {false, true}) {
    const Handle array = arrayOf(arrayType("", synchronised),
                                 {integer("Int", 5), integer("ULong", -1), integer("Char", 65), boolean(true),
                                  floating("Double", -2.9), string("text"), text("plain"), item(3)});
    EXPECT_EQ(integersOf(array), (Integers{5, -1, 65, 1, -2, 0, 0, 0}));
    EXPECT_NOTHING_RAISED();
  }
}

TEST_F(ArrayElements, GetInt_NullHandleRaises) {
  for (const bool synchronised : {false, true}) {
    const Handle array = newArray(arrayType("String", synchronised), 2);
    EXPECT_EQ(vorn_collections_Array_getInt(array, -1), 0);
    EXPECT_RAISED(kIntegerItemError);
    EXPECT_EQ(vorn_collections_Array_getDouble(array, 0), 0.0);
    EXPECT_RAISED(kFloatingArrayItemError);
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayElements, GetDouble_OfHandles_FloatingOnesAsTheyAreOthersAsIntegers) {
  const Handle array =
      arrayOf("Array", {floating("Double", 0.1), floating("Float", 0.5), integer("Int", 5), integer("ULong", -1),
                        boolean(true), integer("Char", 65), string("text"), text("plain")});
  EXPECT_EQ(doublesOf(array), (Doubles{0.1, 0.5, 5, -1, 1, 65, 0, 0}));
  EXPECT_NOTHING_RAISED();
}

// ---- Typed writes ---------------------------------------------------------------------------------------------------

TEST_F(ArrayElements, SetInt_EveryUnboxedKindConverts) {
  for (const bool synchronised : {false, true}) {
    const auto stored = [&](const char* element, long long value) {
      const Handle array = newArray(arrayType(element, synchronised), 2);
      vorn_collections_Array_setInt(array, -1, value);
      EXPECT_NOTHING_RAISED();
      EXPECT_ARRAY_AT_REST(array);
      EXPECT_EQ(vorn_collections_Array_getInt(array, 0), 0);
      return itemsOf(array)[1];
    };
    EXPECT_EQ(stored("SByte", 200), "SByte -56");
    EXPECT_EQ(stored("Byte", 300), "Byte 44");
    EXPECT_EQ(stored("Short", 32768), "Short -32768");
    EXPECT_EQ(stored("UShort", -1), "UShort 65535");
    EXPECT_EQ(stored("Int", 1LL << 32 | 7), "Int 7");
    EXPECT_EQ(stored("UInt", -1), "UInt 4294967295");
    EXPECT_EQ(stored("Long", kLowest), "Long -9223372036854775808");
    EXPECT_EQ(stored("ULong", -1), "ULong -1");
    EXPECT_EQ(stored("Float", 3), "Float 3");
    EXPECT_EQ(stored("Double", 1LL << 60), "Double " + describeNumber(0x1p60));
    EXPECT_EQ(stored("Boolean", 256), "Boolean 1");
    EXPECT_EQ(stored("Boolean", 0), "Boolean 0");
    EXPECT_EQ(stored("Char", 65), "Char 65");
    EXPECT_EQ(stored("CodeUnit", 0xD800), "CodeUnit 55296");
  }
}

TEST_F(ArrayElements, SetInt_CharactersAreValidated) {
  for (const bool synchronised : {false, true}) {
    const Handle characters = intArray(arrayType("Char", synchronised), {65});
    for (const long long value : {0xD800LL, 0xDFFFLL, 0x110000LL, -1LL, 1LL << 32 | 65}) {
      vorn_collections_Array_setInt(characters, 0, value);
      EXPECT_RAISED(kCharError);
      EXPECT_EQ(itemsOf(characters), Elements{"Char 65"});
      EXPECT_ARRAY_AT_REST(characters);
    }
    vorn_collections_Array_setInt(characters, 0, 0x10FFFF);
    EXPECT_EQ(itemsOf(characters), Elements{"Char 1114111"});
    const Handle units = intArray(arrayType("CodeUnit", synchronised), {65});
    for (const long long value : {0x10000LL, -1LL, 1LL << 32 | 65}) {
      vorn_collections_Array_setInt(units, 0, value);
      EXPECT_RAISED(kCodeUnitError);
      EXPECT_EQ(itemsOf(units), Elements{"CodeUnit 65"});
      EXPECT_ARRAY_AT_REST(units);
    }
    vorn_collections_Array_setInt(units, 0, 0xFFFF);
    EXPECT_EQ(itemsOf(units), Elements{"CodeUnit 65535"});
  }
}

TEST_F(ArrayElements, SetInt_ErrorAlreadyPending_StopsCharactersOnly) {
  for (const char* element : {"Char", "CodeUnit"}) {
    const Handle array = newArray(arrayType(element), 1);
    vorn_raise("Exception", "before");
    vorn_collections_Array_setInt(array, 0, 65);
    EXPECT_RAISED("Exception: before");
    EXPECT_EQ(vorn_collections_Array_getInt(array, 0), 0);
  }
  for (const char* element : {"Int", "UInt", "UShort", "Double", "Boolean", "Object"}) {
    const Handle array = newArray(arrayType(element), 1);
    vorn_raise("Exception", "before");
    vorn_collections_Array_setInt(array, 0, 1);
    EXPECT_RAISED("Exception: before");
    EXPECT_EQ(vorn_collections_Array_getInt(array, 0), 1) << element;
  }
}

// The raw writes of the other types do not validate characters.
TEST_F(ArrayElements, SetDoubleAndSetBool_DoNotValidateCharacters) {
  const Handle characters = newArray("Array<Char>", 2);
  vorn_collections_Array_setDouble(characters, 0, 0xD800);
  vorn_collections_Array_setBool(characters, 1, true);
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(integersOf(characters), (Integers{0xD800, 1}));
}

TEST_F(ArrayElements, SetDouble_EveryUnboxedKindConverts) {
  for (const bool synchronised : {false, true}) {
    const auto stored = [&](const char* element, double value) {
      const Handle array = newArray(arrayType(element, synchronised), 1);
      vorn_collections_Array_setDouble(array, 0, value);
      EXPECT_NOTHING_RAISED();
      EXPECT_ARRAY_AT_REST(array);
      return itemsOf(array)[0];
    };
    EXPECT_EQ(stored("Int", 2.7), "Int 2");
    EXPECT_EQ(stored("Int", -2.7), "Int -2");
    EXPECT_EQ(stored("Byte", 300.9), "Byte 44");
    EXPECT_EQ(stored("Long", std::nan("")), "Long -9223372036854775808");
    EXPECT_EQ(stored("Int", HUGE_VAL), "Int 0") << "the low bits of the minimum";
    EXPECT_EQ(stored("ULong", 1e19), "ULong -9223372036854775808");
    EXPECT_EQ(stored("Double", 2.7), "Double 2.7000000000000002");
    EXPECT_EQ(stored("Float", 2.5), "Float 2.5");
    EXPECT_EQ(stored("Boolean", 0.9), "Boolean 0") << "by the truncated form";
    EXPECT_EQ(stored("Boolean", 1.5), "Boolean 1");
  }
}

TEST_F(ArrayElements, SetBool_EveryUnboxedKindGetsOneOrZero) {
  forEachArray(1, [](const Handle& array, const std::string& element, bool) {
    if (element == "Object") return;
    for (const bool value : {true, false}) {
      vorn_collections_Array_setBool(array, 0, value);
      EXPECT_NOTHING_RAISED();
      EXPECT_EQ(itemsOf(array), Elements{element + (value ? " 1" : " 0")});
    }
  });
}

TEST_F(ArrayElements, RawWrites_IntoHandlesBoxUnderTheElementType) {
  for (const char* element : {"Object", "String"}) {
    const Handle array = newArray(arrayType(element), 5);
    vorn_collections_Array_setInt(array, 0, 5);
    vorn_collections_Array_setInt(array, 1, 1LL << 40);
    vorn_collections_Array_setDouble(array, 2, 2.5);
    vorn_collections_Array_setBool(array, 3, true);
    EXPECT_EQ(itemsOf(array), (Elements{"Int 5", "Long 1099511627776", "Double 2.5", "Boolean 1", "null"}));
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayElements, RawWrites_IntoHandlesWithoutAnElementType) {
  const Handle array = object("Array");  // its constructor has not run
  resizeArrayStorage(recordOf(array), 2);
  EXPECT_EQ(recordOf(array).elementType.get(), "");
  vorn_collections_Array_setInt(array, 0, 5);
  EXPECT_RAISED(kArrayElementError);  // an Int box is no instance of ""
  vorn_collections_Array_setDouble(array, 0, 5);
  EXPECT_RAISED(kArrayElementError);
  EXPECT_EQ(itemsOf(array), Elements(2, "null"));
}

TEST_F(ArrayElements, RawWrites_IntoAUserClassAreRefused) {
  item(1);
  for (const bool synchronised : {false, true}) {
    const Handle kept = item(4);
    const Handle array = arrayOf(arrayType("app.Item", synchronised), {kept});
    const ArrayState before(array);
    vorn_collections_Array_setInt(array, 0, 5);
    EXPECT_RAISED(kArrayElementError);
    vorn_collections_Array_setDouble(array, 0, 5);
    EXPECT_RAISED(kArrayElementError);
    vorn_collections_Array_setBool(array, 0, true);
    EXPECT_RAISED(kArrayElementError);
    vorn_collections_Array_operator_index_eq(array, 0, Handle(string("x")));
    EXPECT_RAISED(kArrayElementError);
    EXPECT_ARRAY_UNTOUCHED(array, before);
  }
}

// A class whose short name is Char, of handles: the value is validated and then stored without a test.
TEST_F(ArrayElements, SetInt_HandlesNamedCharAreValidatedToo) {
  const Handle array = newArray("Array", 1);
  recordOf(array).elementType = internRuntimeTypeName("arraytest.Char");
  vorn_collections_Array_setInt(array, 0, 0xD800);
  EXPECT_RAISED(kCharError);
  EXPECT_EQ(itemsOf(array), Elements{"null"});
  vorn_collections_Array_setInt(array, 0, 65);
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(vorn_collections_Array_getInt(array, 0), 65);
}

// ---- Object reads and writes ----------------------------------------------------------------------------------------

TEST_F(ArrayElements, OperatorIndexEq_RefusedValuesRaiseAndTouchNothing) {
  forEachArray(2, [](const Handle& array, const std::string& element, bool) {
    if (element == "Object") return;
    const ArrayState before(array);
    for (const Handle& value : {string("x"), text("x"), list("ArrayList"), Handle(nullptr)}) {
      vorn_collections_Array_operator_index_eq(array, 0, value);
      EXPECT_RAISED(kArrayElementError);
      EXPECT_ARRAY_UNTOUCHED(array, before);
    }
  });
}

TEST_F(ArrayElements, OperatorIndex_UnboxedSlotsGiveNewBoxes) {
  const Handle array = intArray("Array<Int>", {100000});
  const Handle first = vorn_collections_Array_operator_index(array, 0);
  const Handle second = vorn_collections_Array_operator_index(array, 0);
  EXPECT_NE(first.get(), second.get());
  EXPECT_EQ(describe(first), "Int 100000");
}

TEST_F(ArrayElements, OperatorIndex_HandlesAreThemselves) {
  const Handle value = item(1);
  const Handle array = arrayOf("ArraySync", {value, nullptr});
  EXPECT_EQ(vorn_collections_Array_operator_index(array, 0), value.get());
  EXPECT_EQ(vorn_collections_Array_operator_index(array, 1), nullptr);
  EXPECT_NOTHING_RAISED();
}

// ---- Equality -------------------------------------------------------------------------------------------------------

TEST_F(ArrayElements, OperatorEqAndNe_AreStructuralAndAcceptNull) {
  const Handle left = intArray("Array<Int>", {1, 2});
  const Handle same = intArray("ArraySync<Long>", {1, 2});
  const Handle other = intArray("Array<Int>", {1, 3});
  EXPECT_TRUE(vorn_collections_Array_operator_eq(left, same));
  EXPECT_FALSE(vorn_collections_Array_operator_ne(left, same));
  EXPECT_FALSE(vorn_collections_Array_operator_eq(left, other));
  EXPECT_TRUE(vorn_collections_Array_operator_ne(left, other));
  EXPECT_TRUE(vorn_collections_Array_operator_eq(nullptr, nullptr));
  EXPECT_FALSE(vorn_collections_Array_operator_ne(nullptr, nullptr));
  EXPECT_FALSE(vorn_collections_Array_operator_eq(nullptr, left));
  EXPECT_TRUE(vorn_collections_Array_operator_ne(left, nullptr));
}

}  // namespace
}  // namespace vorn::tests
