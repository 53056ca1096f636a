// Construction: the element type, sizes, constructing anew; copies of every source.
#include "collections/array/construction.h"

#include <cmath>

#include "tests/array/array_cases.h"
#include "tests/support/error_texts.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class ArrayConstruction : public RuntimeTest {};

constexpr const char* kCopyNullError = error_texts::kArrayCopyOfNull;
constexpr const char* kCopySourceError = error_texts::kArrayCopySource;

// ---- The element type -----------------------------------------------------------------------------------------------

TEST_F(ArrayConstruction, ElementTypeName_IsTheFirstTypeArgument) {
  using collections::arrayElementTypeName;
  EXPECT_EQ(arrayElementTypeName("Array<Int>"), "Int");
  EXPECT_EQ(arrayElementTypeName("vorn.collections.Array<vorn.Double>"), "vorn.Double");
  EXPECT_EQ(arrayElementTypeName("ArraySync<String>"), "String");
  EXPECT_EQ(arrayElementTypeName("Array<Map<String, Int>>"), "Map<String, Int>");
  EXPECT_EQ(arrayElementTypeName("Array<Array<Array<Int>>>"), "Array<Array<Int>>");
  EXPECT_EQ(arrayElementTypeName("Array<Int,Double>"), "Int");
}

TEST_F(ArrayConstruction, ElementTypeName_WithoutTypeArgumentsIsObject) {
  using collections::arrayElementTypeName;
  for (const char* name : {"Array", "", "Int", "Array>", "Array<", "Array>Int<", "Array<>", "Array< \t\n>", "><"}) {
    EXPECT_EQ(arrayElementTypeName(name), "Object") << name;
  }
}

TEST_F(ArrayConstruction, ElementTypeName_BlanksAtTheEndsAreDropped) {
  using collections::arrayElementTypeName;
  EXPECT_EQ(arrayElementTypeName("Array< Int >"), "Int");
  EXPECT_EQ(arrayElementTypeName("Array<\t\n\v\f\r Int>"), "Int");
  EXPECT_EQ(arrayElementTypeName("Array<Int  >"), "Int");
  EXPECT_EQ(arrayElementTypeName("Array< Map<String, Int> >"), "Map<String, Int>");
}

// Names that are no generic class name: what stands between the first "<" and the last ">".
TEST_F(ArrayConstruction, ElementTypeName_OfAMalformedNameIsTheTextBetweenTheBrackets) {
  using collections::arrayElementTypeName;
  EXPECT_EQ(arrayElementTypeName("Array<Int>>"), "Int>");
  EXPECT_EQ(arrayElementTypeName("Array<<Int>"), "<Int");
  EXPECT_EQ(arrayElementTypeName("Array< Int >x"), "Int");
}

TEST_F(ArrayConstruction, Ctor_TakesItsElementTypeFromItsClass) {
  const struct {
    const char* type;
    const char* element;
    SlotKind kind;
  } cases[] = {{"Array", "Object", SlotKind::Object},
               {"ArraySync", "Object", SlotKind::Object},
               {"vorn.collections.Array", "Object", SlotKind::Object},
               {"Array<Int>", "Int", SlotKind::Int32},
               {"vorn.collections.ArraySync<vorn.Double>", "Double", SlotKind::Float64},
               {"Array<String>", "String", SlotKind::Object},
               {"Array<Array<Int>>", "Array<Int>", SlotKind::Object},
               {"Array<Map<String, Int>>", "Map<String, Int>", SlotKind::Object}};
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.type);
    const Handle array = newArray(entry.type, 2);
    EXPECT_EQ(recordOf(array).elementType.get(), entry.element);
    EXPECT_EQ(recordOf(array).slotKind, entry.kind);
    EXPECT_EQ(vorn_collections_Array_size(array), 2);
    EXPECT_ARRAY_AT_REST(array);
  }
}

// ---- Sizes ----------------------------------------------------------------------------------------------------------

TEST_F(ArrayConstruction, Ctor_EveryKind_StartsWithZeros) {
  for (const SlotCase& slots : kSlotCases) {
    for (const bool synchronised : {false, true}) {
      const Handle array = newArray(arrayType(slots.element, synchronised), 3);
      const std::string zero = slots.kind == SlotKind::Object ? "null" : std::string(slots.element) + " 0";
      EXPECT_EQ(itemsOf(array), Elements(3, zero));
      EXPECT_EQ(recordOf(array).synchronized, synchronised);
      EXPECT_EQ(sizeField(array), 0) << "only a copy from an array sets the field";
      EXPECT_ARRAY_AT_REST(array);
    }
  }
}

TEST_F(ArrayConstruction, Ctor_SizeZeroIsValid) {
  for (const char* type : {"Array<Int>", "ArraySync<Int>", "Array"}) {
    const Handle array = newArray(type, 0);
    EXPECT_EQ(vorn_collections_Array_size(array), 0);
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayConstruction, Ctor_NegativeSizeRaisesAndTouchesNothing) {
  for (const char* type : {"Array<Int>", "ArraySync<Int>", "Array"}) {
    for (const long long size : {-1LL, kLowest}) {
      const Handle fresh = object(type);
      const ArrayState untouched(fresh);
      vorn_collections_Array_ctor(fresh, size);
      EXPECT_RAISED(kArraySizeError);
      EXPECT_ARRAY_UNTOUCHED(fresh, untouched);
      EXPECT_EQ(recordOf(fresh).elementType.get(), "");
      const Handle array = newArray(type, 3);
      const ArrayState before(array);
      vorn_collections_Array_ctor(array, size);
      EXPECT_RAISED(kArraySizeError);
      EXPECT_ARRAY_UNTOUCHED(array, before);
    }
  }
}

TEST_F(ArrayConstruction, Ctor_ASizeThatCannotBeHadThrowsAndTouchesNothing) {
  for (const char* type : {"Array<Int>", "ArraySync<Byte>", "Array"}) {
    const Handle array = newArray(type, 3);
    const ArrayState before(array);
    EXPECT_THROW(vorn_collections_Array_ctor(array, kHighest), std::bad_alloc);
    EXPECT_ARRAY_UNTOUCHED(array, before);
  }
}

TEST_F(ArrayConstruction, Ctor_Null_RaisesNothing) {
  vorn_collections_Array_ctor(nullptr, 3);
  vorn_collections_Array_ctor(nullptr, -3);
  EXPECT_NOTHING_RAISED();
}

TEST_F(ArrayConstruction, Ctor_Again_DiscardsTheElements) {
  forEachArray(40, [](const Handle& array, const std::string& element, bool) {
    for (const long long size : {3, 0, 90}) {
      vorn_collections_Array_ctor(array, size);
      const std::string zero = element == "Object" ? "null" : element + " 0";
      EXPECT_EQ(itemsOf(array), Elements(static_cast<std::size_t>(size), zero));
      EXPECT_ARRAY_AT_REST(array);
    }
  });
}

TEST_F(ArrayConstruction, Ctor_AfterACopyOfAnotherType_GivesTheArrayItsOwnTypeAgain) {
  const Handle array = newArray("Array<Int>", 2);
  vorn_collections_Array_copyCtor(array, doubleArray("Array<Double>", {1.5}));
  EXPECT_EQ(recordOf(array).slotKind, SlotKind::Float64);
  vorn_collections_Array_ctor(array, 1);
  EXPECT_EQ(recordOf(array).elementType.get(), "Int");
  EXPECT_EQ(itemsOf(array), Elements{"Int 0"});
}

// ---- Copies of arrays -----------------------------------------------------------------------------------------------

TEST_F(ArrayConstruction, CopyCtor_OfAnArray_TakesOverItsTypeAndSetsTheSizeField) {
  for (const char* target : {"Array<Int>", "ArraySync<Int>", "Array", "Array<app.Item>"}) {
    item(1);
    forEachArray(5, [&](const Handle& source, const std::string& element, bool) {
      const Handle array = object(target);
      const bool synchronised = recordOf(array).synchronized;
      const ArrayState sourceBefore(source);
      vorn_collections_Array_copyCtor(array, source);
      EXPECT_EQ(itemsOf(array), itemsOf(source));
      EXPECT_EQ(recordOf(array).elementType.get(), element);
      EXPECT_EQ(recordOf(array).slotKind, recordOf(source).slotKind);
      EXPECT_EQ(recordOf(array).synchronized, synchronised);
      EXPECT_EQ(sizeField(array), 5);
      EXPECT_ARRAY_AT_REST(array);
      EXPECT_ARRAY_UNTOUCHED(source, sourceBefore);
    });
  }
}

TEST_F(ArrayConstruction, CopyCtor_DoublesIntoAnIntArray_GivesDoubles) {
  const Handle array = newArray("Array<Int>", 7);
  vorn_collections_Array_copyCtor(array, doubleArray("Array<Double>", {1.5, -2.5}));
  EXPECT_EQ(itemsOf(array), (Elements{"Double 1.5", "Double -2.5"}));
  EXPECT_EQ(sizeField(array), 2);
  EXPECT_STREQ(vorn_type_name(array), "vorn.collections.Array<Int>");
}

TEST_F(ArrayConstruction, CopyCtor_OfAnEmptyArray) {
  const Handle array = newArray("Array<Int>", 7);
  vorn_collections_Array_copyCtor(array, newArray("ArraySync<Double>", 0));
  EXPECT_EQ(vorn_collections_Array_size(array), 0);
  EXPECT_EQ(sizeField(array), 0);
  EXPECT_EQ(recordOf(array).elementType.get(), "Double");
  EXPECT_ARRAY_AT_REST(array);
}

TEST_F(ArrayConstruction, CopyCtor_OfItself_ChangesNothing) {
  forEachArray(5, [](const Handle& array, const std::string&, bool) {
    const ArrayState before(array);
    vorn_collections_Array_copyCtor(array, array);
    EXPECT_NOTHING_RAISED();
    EXPECT_ARRAY_UNTOUCHED(array, before);
  });
}

// ---- Copies of other collections ------------------------------------------------------------------------------------

std::vector<Handle> intSources() {
  std::vector<Handle> sources;
  for (const char* type : {"ArrayList<Int>", "ArrayListSync", "LinkedList", "LinkedListSync<Int>"}) {
    sources.push_back(intList(type, {3, 1, 2}));
  }
  sources.push_back(unboxedImmutable("Int", {3, 1, 2}));
  sources.push_back(boxedImmutable({integer("Int", 3), integer("Int", 1), integer("Int", 2)}));
  sources.push_back(tupleOf({integer("Int", 3), integer("Int", 1), integer("Int", 2)}));
  return sources;
}

TEST_F(ArrayConstruction, CopyCtor_OfListsAndTuples_ConvertsToTheArraysOwnType) {
  for (const Handle& source : intSources()) {
    SCOPED_TRACE(vorn_type_name(source));
    for (const bool synchronised : {false, true}) {
      const Handle integers = object(arrayType("Int", synchronised));
      vorn_collections_Array_copyCtor(integers, source);
      EXPECT_EQ(itemsOf(integers), (Elements{"Int 3", "Int 1", "Int 2"}));
      EXPECT_EQ(sizeField(integers), 0) << "the field is left alone";
      EXPECT_ARRAY_AT_REST(integers);
      const Handle doubles = newArray(arrayType("Double", synchronised), 9);
      vorn_collections_Array_copyCtor(doubles, source);
      EXPECT_EQ(itemsOf(doubles), (Elements{"Double 3", "Double 1", "Double 2"}));
      const Handle objects = object(arrayType("", synchronised));
      vorn_collections_Array_copyCtor(objects, source);
      EXPECT_EQ(itemsOf(objects), (Elements{"Int 3", "Int 1", "Int 2"}));
      EXPECT_ARRAY_AT_REST(objects);
    }
  }
}

TEST_F(ArrayConstruction, CopyCtor_EveryRefusedElementRaisesOnceAndTheOthersFollow) {
  const Handle words = list("ArrayList", {string("a"), string("b"), string("c")});
  const Handle array = object("Array<Int>");
  vorn_collections_Array_copyCtor(array, words);
  EXPECT_EQ(takeErrors(), Elements(3, kArrayElementError));
  EXPECT_EQ(itemsOf(array), Elements(3, "Int 0"));
  const Handle mixed = tupleOf({integer("Int", 1), string("b"), nullptr, integer("Int", 4)});
  for (const bool synchronised : {false, true}) {
    const Handle target = newArray(arrayType("Int", synchronised), 1);
    vorn_collections_Array_copyCtor(target, mixed);
    EXPECT_EQ(takeErrors(), Elements(2, kArrayElementError));
    EXPECT_EQ(itemsOf(target), (Elements{"Int 1", "Int 0", "Int 0", "Int 4"}));
    EXPECT_ARRAY_AT_REST(target);
  }
}

TEST_F(ArrayConstruction, CopyCtor_OfEmptySources) {
  for (const Handle& source : {list("ArrayList<Double>"), object("LinkedList"), object("ImmutableList"), tupleOf({})}) {
    const Handle array = newArray("Array<Int>", 4);
    vorn_collections_Array_copyCtor(array, source);
    EXPECT_EQ(vorn_collections_Array_size(array), 0);
    EXPECT_EQ(recordOf(array).elementType.get(), "Int");
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayConstruction, CopyCtor_OfATupleTakesItsSizeField) {
  const Handle tuple = tupleOf({integer("Int", 1), integer("Int", 2)});
  vorn_field_set_integer(tuple, "size", 1);
  const Handle array = newArray("Array<Int>", 4);
  vorn_collections_Array_copyCtor(array, tuple);
  EXPECT_EQ(itemsOf(array), Elements{"Int 1"});
  vorn_field_set_integer(tuple, "size", -1);
  const ArrayState before(array);
  vorn_collections_Array_copyCtor(array, tuple);
  EXPECT_RAISED(kArraySizeError);
  EXPECT_ARRAY_UNTOUCHED(array, before);
}

TEST_F(ArrayConstruction, CopyCtor_NullSourceRaises) {
  for (const char* type : {"Array<Int>", "ArraySync"}) {
    const Handle array = newArray(type, 2);
    const ArrayState before(array);
    vorn_collections_Array_copyCtor(array, nullptr);
    EXPECT_RAISED(kCopyNullError);
    EXPECT_ARRAY_UNTOUCHED(array, before);
  }
}

TEST_F(ArrayConstruction, CopyCtor_NullTargetRaisesNothing) {
  vorn_collections_Array_copyCtor(nullptr, nullptr);
  vorn_collections_Array_copyCtor(nullptr, Handle(string("x")));
  EXPECT_NOTHING_RAISED();
}

TEST_F(ArrayConstruction, CopyCtor_ForeignSourceRaises) {
  for (const Handle& source : {object("HashSet"), object("Map"), object("SortedMap"), string("text"), text("plain"),
                               integer("Int", 3), item(1)}) {
    const Handle array = newArray("Array<Int>", 2);
    const ArrayState before(array);
    vorn_collections_Array_copyCtor(array, source);
    EXPECT_RAISED(kCopySourceError);
    EXPECT_ARRAY_UNTOUCHED(array, before);
  }
}

}  // namespace
}  // namespace vorn::tests
