// Whether a raw value may be kept unboxed, and what appending one does to each state of a list.
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/elements/store_forms.h"
#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"
#include "tests/support/error_texts.h"

namespace vorn::tests {
namespace {

using Descriptions = std::vector<std::string>;
using Integers = std::vector<long long>;

class AppendPrimitiveValue : public RuntimeTest {};

// ---- primitiveStorageCompatible -------------------------------------------------------------------------------------

TEST_F(AppendPrimitiveValue, Compatible_NeverForLinkedLists) {
  for (const char* declared : {"", "Int", "Object"}) {
    Handle list = object("LinkedList");
    record(list).elementType = internRuntimeTypeName(declared);
    EXPECT_FALSE(primitiveStorageCompatible(record(list), Kind::Int, named("Int"))) << declared;
    record(list).objectPushBack(nullptr);
    EXPECT_FALSE(primitiveStorageCompatible(record(list), Kind::Int, named("Int"))) << declared;
  }
}

TEST_F(AppendPrimitiveValue, Compatible_PrimitiveStorageNeedsTheSameKindAndName) {
  for (const NamedKind& kept : kNamedKinds) {
    for (const std::initializer_list<long long>& elements : {std::initializer_list<long long>{}, {1, 0}}) {
      Handle list = primitiveList(kept.name, elements);
      for (const NamedKind& value : kNamedKinds) {
        EXPECT_EQ(primitiveStorageCompatible(record(list), value.kind(), named(value.name)), kept.is(value.name))
            << value.name << " into " << kept.name;
      }
      EXPECT_FALSE(primitiveStorageCompatible(record(list), kept.kind(), named("")));
      EXPECT_FALSE(primitiveStorageCompatible(record(list), kept.kind(), named(std::string("vorn.") + kept.name)));
      EXPECT_FALSE(primitiveStorageCompatible(record(list), Kind::None, named(kept.name)));
    }
  }
}

TEST_F(AppendPrimitiveValue, Compatible_PrimitiveStorageDoesNotLookAtTheDeclaredType) {
  Handle list = primitiveList("Int", {1});
  record(list).elementType = internRuntimeTypeName("Long");
  EXPECT_TRUE(primitiveStorageCompatible(record(list), Kind::Int, named("Int")));
  EXPECT_FALSE(primitiveStorageCompatible(record(list), Kind::Long, named("Long")));
}

TEST_F(AppendPrimitiveValue, Compatible_NeverForObjectStorageWithElements) {
  for (const char* declared : {"", "Int"}) {
    Handle list = object("ArrayList");
    record(list).elementType = internRuntimeTypeName(declared);
    record(list).objectPushBack(nullptr);
    EXPECT_FALSE(primitiveStorageCompatible(record(list), Kind::Int, named("Int"))) << declared;
  }
}

TEST_F(AppendPrimitiveValue, Compatible_EmptyListTakesItsDeclaredKindAndNameOnly) {
  for (const NamedKind& declared : kNamedKinds) {
    for (const char* prefix : {"", "vorn."}) {
      Handle list = object("ArrayList");
      record(list).elementType = internRuntimeTypeName(std::string(prefix) + declared.name);
      for (const NamedKind& value : kNamedKinds) {
        EXPECT_EQ(primitiveStorageCompatible(record(list), value.kind(), named(value.name)), declared.is(value.name))
            << value.name << " into " << prefix << declared.name;
      }
      EXPECT_FALSE(primitiveStorageCompatible(record(list), declared.kind(), named("")));
    }
  }
}

TEST_F(AppendPrimitiveValue, Compatible_EmptyUntypedListTakesAnything) {
  Handle list = object("ArrayList");
  for (const NamedKind& value : kNamedKinds) {
    EXPECT_TRUE(primitiveStorageCompatible(record(list), value.kind(), named(value.name))) << value.name;
  }
}

TEST_F(AppendPrimitiveValue, Compatible_EmptyListOfAnotherDeclaredTypeTakesNothing) {
  for (const char* declared : {"Object", "String", "coretest.Animal"}) {
    Handle list = object("ArrayList");
    record(list).elementType = internRuntimeTypeName(declared);
    EXPECT_FALSE(primitiveStorageCompatible(record(list), Kind::Int, named("Int"))) << declared;
  }
}

TEST_F(AppendPrimitiveValue, Compatible_ListEmptiedByRemovalsTakesAgain) {
  Handle list = object("ArrayList");
  record(list).objectPushBack(nullptr);
  record(list).objectErase(0);
  EXPECT_TRUE(primitiveStorageCompatible(record(list), Kind::Int, named("Int")));
}

// ---- appendPrimitiveValue -------------------------------------------------------------------------------------------

TEST_F(AppendPrimitiveValue, LinkedListGetsABox) {
  Handle list = object("LinkedList");
  appendPrimitiveValue(record(list), rawInteger("Int", 4));
  appendPrimitiveValue(record(list), {Kind::Double, named("Double"), 0, 2.5});
  appendPrimitiveValue(record(list), rawInteger("Char", 65));
  EXPECT_EQ(describeObjects(record(list)), (Descriptions{"vorn.Int 4", "vorn.Double 2.5", "vorn.Char 65"}));
  EXPECT_EQ(record(list).primitiveKind, Kind::None);
  EXPECT_VALID_LIST(list);
}

TEST_F(AppendPrimitiveValue, EmptyListAdoptsEveryKindAndItsInternedName) {
  for (const NamedKind& row : kNamedKinds) {
    Handle list = object("ArrayList");
    appendPrimitiveValue(record(list), rawInteger(row.name, 1));
    EXPECT_EQ(record(list).primitiveKind, row.kind());
    EXPECT_EQ(record(list).primitiveType.name, internRuntimeTypeName(row.name).name);
    EXPECT_EQ(record(list).elementType.name, nullptr);
    EXPECT_EQ(record(list).primitive.elementSize, row.width);
    EXPECT_EQ(integersOf(record(list)), Integers{1});
    EXPECT_VALID_LIST(list);
  }
}

TEST_F(AppendPrimitiveValue, EmptyListAdoptsAnEmptyNameAsNull) {
  Handle list = object("ArrayList");
  appendPrimitiveValue(record(list), {Kind::Short, named(""), -9, -9.0});
  EXPECT_EQ(record(list).primitiveKind, Kind::Short);
  EXPECT_EQ(record(list).primitiveType.name, nullptr);
  EXPECT_EQ(integersOf(record(list)), Integers{-9});
  appendPrimitiveValue(record(list), {Kind::Short, named(""), 8, 8.0});
  EXPECT_EQ(integersOf(record(list)), (Integers{-9, 8}));
}

TEST_F(AppendPrimitiveValue, EmptyListAdoptsWhateverItsDeclaredType) {
  Handle list = object("ArrayList");
  record(list).elementType = internRuntimeTypeName("Object");
  appendPrimitiveValue(record(list), rawInteger("Int", 4));
  EXPECT_EQ(record(list).primitiveKind, Kind::Int);
  EXPECT_EQ(record(list).elementType.get(), "Object");
  EXPECT_EQ(integersOf(record(list)), Integers{4});
}

TEST_F(AppendPrimitiveValue, AdoptedNameNeedNotBeTerminated) {
  const std::string_view longer = "UShortcut";
  Handle list = object("ArrayList");
  appendPrimitiveValue(record(list), {Kind::UShort, named(longer.substr(0, 6)), 3, 3.0});
  EXPECT_EQ(record(list).primitiveType.get(), "UShort");
}

TEST_F(AppendPrimitiveValue, AdoptionAfterAnotherWidthStartsWithAnEmptyBuffer) {
  Handle list = primitiveList("Long", {1, 2, 3});
  clearListStorage(record(list));
  appendPrimitiveValue(record(list), rawInteger("Byte", 7));
  EXPECT_EQ(record(list).primitive.elementSize, 1u);
  EXPECT_EQ(integersOf(record(list)), Integers{7});
  EXPECT_VALID_LIST(list);
}

TEST_F(AppendPrimitiveValue, RefusedCharacterLeavesEvenTheKindUnchanged) {
  Handle list = object("ArrayList");
  const RecordSnapshot before(record(list));
  appendPrimitiveValue(record(list), rawInteger("Char", 0xD800));
  EXPECT_RAISED(error_texts::kCharNotScalar);
  EXPECT_EQ(RecordSnapshot(record(list)), before);
  appendPrimitiveValue(record(list), rawInteger("CodeUnit", 65536));
  EXPECT_RAISED(error_texts::kCodeUnitOutOfRange);
  EXPECT_EQ(RecordSnapshot(record(list)), before);
  EXPECT_VALID_LIST(list);
  appendPrimitiveValue(record(list), rawInteger("Int", 3));
  EXPECT_EQ(record(list).primitiveKind, Kind::Int);
}

TEST_F(AppendPrimitiveValue, RefusedCharacterLeavesAListOfItsKindUnchanged) {
  Handle characters = primitiveList("Char", {65});
  appendPrimitiveValue(record(characters), rawInteger("Char", 0x110000));
  EXPECT_RAISED(error_texts::kCharNotScalar);
  EXPECT_EQ(integersOf(record(characters)), Integers{65});
  Handle units = primitiveList("CodeUnit", {65});
  appendPrimitiveValue(record(units), rawInteger("CodeUnit", -1));
  EXPECT_RAISED(error_texts::kCodeUnitOutOfRange);
  EXPECT_EQ(integersOf(record(units)), Integers{65});
}

TEST_F(AppendPrimitiveValue, ObjectStorageWithElementsGetsABox) {
  Handle list = object("ArrayList");
  record(list).objectPushBack(nullptr);
  appendPrimitiveValue(record(list), rawInteger("Int", 4));
  appendPrimitiveValue(record(list), rawInteger("Boolean", 1));
  EXPECT_EQ(describeObjects(record(list)), (Descriptions{"null", "vorn.Int 4", "vorn.Boolean true"}));
  EXPECT_EQ(record(list).primitiveKind, Kind::None);
  EXPECT_VALID_LIST(list);
}

TEST_F(AppendPrimitiveValue, SameKindAndNameStaysUnboxed) {
  for (const NamedKind& row : kNamedKinds) {
    Handle list = primitiveList(row.name, {1, 0});
    appendPrimitiveValue(record(list), rawInteger(row.name, 1));
    EXPECT_EQ(integersOf(record(list)), (Integers{1, 0, 1})) << row.name;
    EXPECT_EQ(record(list).objects.size, 0u);
    EXPECT_VALID_LIST(list);
  }
}

TEST_F(AppendPrimitiveValue, AnotherKindOrNameMaterialises) {
  for (const NamedKind& kept : kNamedKinds) {
    for (const NamedKind& value : kNamedKinds) {
      if (kept.is(value.name)) continue;
      Handle list = primitiveList(kept.name, {1});
      appendPrimitiveValue(record(list), rawInteger(value.name, 1));
      const auto described = [](const NamedKind& row) {
        return std::string("vorn.") + row.name + (row.is("Boolean") ? " true" : " 1");
      };
      EXPECT_EQ(describeObjects(record(list)), (Descriptions{described(kept), described(value)}));
      EXPECT_EQ(record(list).primitiveKind, Kind::None);
      EXPECT_EQ(record(list).primitiveType.name, nullptr);
      EXPECT_VALID_LIST(list);
    }
  }
}

TEST_F(AppendPrimitiveValue, UntypedListTakesAnIntAndIsMaterialisedByALong) {
  Handle list = object("ArrayList");
  appendPrimitiveValue(record(list), rawInteger("Int", 1));
  EXPECT_EQ(record(list).primitiveKind, Kind::Int);
  EXPECT_EQ(record(list).primitiveType.get(), "Int");
  appendPrimitiveValue(record(list), rawInteger("Long", 2));
  EXPECT_EQ(describeObjects(record(list)), (Descriptions{"vorn.Int 1", "vorn.Long 2"}));
}

TEST_F(AppendPrimitiveValue, EmptyPrimitiveStorageOfAnotherKindIsLeftToo) {
  Handle list = primitiveList("Int");
  appendPrimitiveValue(record(list), rawInteger("Long", 2));
  EXPECT_EQ(record(list).primitiveKind, Kind::None);
  EXPECT_EQ(describeObjects(record(list)), Descriptions{"vorn.Long 2"});
  EXPECT_VALID_LIST(list);
}

// Every element of a list as a box, whichever storage it is in.
Descriptions elementsOf(const ListData& list) {
  if (list.primitiveKind == Kind::None) return describeObjects(list);
  Descriptions result;
  for (std::uint64_t i = 0; i < list.primitive.size; ++i) {
    Handle box = boxPrimitiveListValue(list.primitiveKind, list.primitiveType, primitiveListReadI64(list, i),
                                       primitiveListReadF64(list, i));
    result.push_back(describeValue(box));
  }
  return result;
}

TEST_F(AppendPrimitiveValue, FailedAllocationsAppendNothing) {
  for (const char* className : {"ArrayList", "LinkedList"}) {
    for (const bool primitive : {false, true}) {
      if (primitive && std::string(className) == "LinkedList") continue;
      for (const int elements : {0, 4, 16}) {
        Handle list;
        Descriptions before;
        const int failures = sweepAllocationFailures(
            [&] {
              list = object(className);
              if (primitive) makePrimitive(record(list), "Long");
              for (int i = 0; i < elements; ++i) {
                if (primitive) {
                  primitiveListAppend(record(list), i, i);
                } else {
                  record(list).objectPushBack(integer("Int", i));
                }
              }
              before = elementsOf(record(list));
            },
            [&] { appendPrimitiveValue(record(list), rawInteger("Int", 50)); },
            [&] {
              EXPECT_EQ(elementsOf(record(list)), before);
              EXPECT_VALID_LIST(list);
            });
        before.push_back("vorn.Int 50");
        EXPECT_EQ(elementsOf(record(list)), before);
        EXPECT_VALID_LIST(list);
        EXPECT_GE(failures, elements != 0 ? 1 : 0);
      }
    }
  }
}

}  // namespace
}  // namespace vorn::tests
