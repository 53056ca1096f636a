// `operator_index_eq`: what replacing an element does to the storage.
#include <tuple>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class Replace : public RuntimeTest {};

void set(void* target, long long index, void* value) {
  vorn_collections_ArrayList_operator_index_eq(target, index, value);
}

TEST_F(Replace, ConvertibleValue_StaysUnboxed) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 1), integer("Int", 2), integer("Int", 3)});
  set(target, 0, integer("Byte", 10));
  set(target, -1, integer("Long", 30));
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 10", "Int 2", "Int 30"}));
  const Handle floats = list("ArrayList<Float>", {floating("Float", 1.0)});
  set(floats, 0, floating("Double", 0.1));
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(floats, 0), static_cast<double>(0.1F));
  EXPECT_AT_REST(target);
}

TEST_F(Replace, SameTypeOnUntypedList_StaysUnboxed) {
  for (const std::string& name : primitiveNames()) {
    const Handle target = list("ArrayList", {box(name, 1), box(name, 1)});
    set(target, 1, box(name, 0));
    EXPECT_EQ(storageOf(target), name);
    EXPECT_EQ(elementsOf(target), (Elements{describe(box(name, 1)), describe(box(name, 0))}));
  }
}

TEST_F(Replace, ForeignValueOnUntypedList_MaterialisesAndReplaces) {
  const Handle values[] = {integer("Long", 5), string("x"), text("y"), nullptr, item(1)};
  for (const Handle& value : values) {
    SCOPED_TRACE(describe(value));
    const Handle target = list("ArrayListSync", {integer("Int", 1), integer("Int", 2), integer("Int", 3)});
    set(target, 1, value);
    EXPECT_EQ(storageOf(target), "objects");
    EXPECT_EQ(elementsOf(target), (Elements{"Int 1", describe(value), "Int 3"}));
    EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 1), value.get());
    EXPECT_AT_REST(target);
  }
}

TEST_F(Replace, StorageOfAnotherKindThanDeclared_FollowsTheStorageFirst) {
  // A raw append has given a list of Byte unboxed Ints. A box of the stored type is written without a look at the
  // declared type; one of the declared type makes the list boxed.
  const Handle target = object("ArrayList<Byte>");
  vorn_collections_ArrayList_addInt(target, 300);
  vorn_collections_ArrayList_addIntToData(getListData(target), 400);
  ASSERT_EQ(storageOf(target), "Int");
  set(target, 0, integer("Int", 500));
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(elementsOf(target), (Elements{"Int 500", "Int 400"}));
  EXPECT_EQ(storageOf(target), "Int");
  const Snapshot before(target);
  set(target, 0, integer("Long", 500));
  EXPECT_RAISED(listTypeError("Byte", "vorn.Long"));
  EXPECT_UNTOUCHED(target, before);
  set(target, 0, integer("Byte", 5));
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Byte 5", "Int 400"}));
}

TEST_F(Replace, BoxedAndLinkedStorage_KeepTheHandle) {
  for (const char* type : {"ArrayList<Double>", "LinkedList<Double>"}) {
    const Handle target = list(type, {floating("Double", 1.5), floating("Double", 2.5)});
    EXPECT_EQ(vorn_collections_ArrayList_count(target, nullptr), 0);
    const Handle value = integer("Int", 3);
    set(target, 1, value);
    EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 1), value.get());
    EXPECT_EQ(elementsOf(target), (Elements{"Double 1.5", "Int 3"}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(Replace, AtTheSize_AppendsByTheRulesOfAdd) {
  const Handle untyped = object("ArrayList");
  set(untyped, 0, integer("Short", 1));
  EXPECT_EQ(storageOf(untyped), "Short");
  set(untyped, 1, string("x"));
  EXPECT_EQ(storageOf(untyped), "objects");
  EXPECT_EQ(elementsOf(untyped), (Elements{"Short 1", "String x"}));
  const Handle longs = object("ArrayList<Long>");
  set(longs, 0, integer("Byte", 1));
  EXPECT_EQ(elementsOf(longs), (Elements{"Long 1"}));
  const Handle linked = object("LinkedListSync");
  set(linked, 0, string("x"));
  set(linked, 1, nullptr);
  EXPECT_EQ(elementsOf(linked), (Elements{"String x", "null"}));
  EXPECT_AT_REST(linked);
}

TEST_F(Replace, CharacterBoxOutOfRange_IsRefusedAndLeavesTheListUnchanged) {
  for (const auto& [name, bad, error] : {std::tuple("Char", 0xD800LL, kCharError),
                                         {"Char", -1LL, kCharError},
                                         {"CodeUnit", 0x10000LL, kCodeUnitError}}) {
    const Handle target = list("ArrayListSync", {integer(name, 65), integer(name, 66)});
    const Snapshot before(target);
    for (const long long index : {0LL, -1LL, 2LL}) {
      set(target, index, integer(name, bad));
      EXPECT_RAISED(error);
      EXPECT_UNTOUCHED(target, before);
    }
    // A declared list refuses by its type before its storage is asked.
    const Handle typed = list(std::string("ArrayList<") + name + ">", {integer(name, 65)});
    const Snapshot typedBefore(typed);
    set(typed, 1, integer(name, bad));
    EXPECT_RAISED(listTypeError(name, std::string("vorn.") + name));
    EXPECT_UNTOUCHED(typed, typedBefore);
  }
}

TEST_F(Replace, CharacterBoxOutOfRangeInsideADeclaredList_IsRefusedByTheStorage) {
  // Replacing looks at the storage before the declared type, appending the other way round.
  for (const auto& [name, bad, error] :
       {std::tuple("Char", 0xD800LL, kCharError), {"CodeUnit", 0x10000LL, kCodeUnitError}}) {
    const Handle target = list(std::string("ArrayList<") + name + ">", {integer(name, 65)});
    const Snapshot before(target);
    set(target, 0, integer(name, bad));
    EXPECT_RAISED(error);
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(Replace, BoxBeyondItsTypesRange_KeepsLowBitsWhereTheStorageTakesIt) {
  // The declared type refuses Byte 300, but the storage's own rule is asked first and keeps the low bits.
  const Handle target = list("ArrayList<Byte>", {integer("Byte", 1)});
  set(target, 0, integer("Byte", 300));
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(elementsOf(target), (Elements{"Byte 44"}));
}

TEST_F(Replace, RefusedValue_DoesNotEvenMaterialise) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 1)});
  const Snapshot before(target);
  for (const Handle& value : {string("x"), floating("Double", 1.0), Handle(nullptr)}) {
    set(target, 0, value);
    EXPECT_RAISED(listTypeError("Int", value.get() == nullptr ? "null" : vorn_type_name(value)));
    EXPECT_UNTOUCHED(target, before);
  }
}

}  // namespace
}  // namespace vorn::tests
