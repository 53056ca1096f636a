// The gate of every list store: what a declared element type accepts, and what the refusal says.
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/store_forms.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"
#include "tests/core/user_classes.h"

namespace vorn::tests {
namespace {

class DeclaredTypeGate : public RuntimeTest {};

Handle listOf(const char* declared, const char* className = "ArrayList") {
  Handle result = object(className);
  record(result).elementType = internRuntimeTypeName(declared);
  return result;
}

void expectAccepted(const Handle& list, const Handle& value) {
  const RecordSnapshot before(record(list));
  EXPECT_TRUE(ensureListValueMatchesDeclaredElementType(record(list), value)) << describeValue(value);
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(RecordSnapshot(record(list)), before);
}

void expectRefused(const Handle& list, const Handle& value, const std::string& declared, const std::string& valueType) {
  const RecordSnapshot before(record(list));
  EXPECT_FALSE(ensureListValueMatchesDeclaredElementType(record(list), value)) << describeValue(value);
  EXPECT_RAISED(listTypeError(declared, valueType));
  EXPECT_EQ(RecordSnapshot(record(list)), before);
}

TEST_F(DeclaredTypeGate, UntypedAndObjectListsAcceptEverything) {
  definePlainClasses();
  for (const char* declared : {"", "Object", "vorn.Object"}) {
    Handle target = listOf(declared);
    for (const Handle& value :
         {Handle(), text("a"), string("a"), integer("Int", 1), floating("Double", 1.5), boolean(true),
          integer("Char", 0xD800), object("ArrayList"), object("coretest.Animal")}) {
      expectAccepted(target, value);
    }
  }
}

TEST_F(DeclaredTypeGate, PrimitiveTypesAcceptWhatConverts) {
  for (const NamedKind& declared : kNamedKinds) {
    Handle target = listOf(declared.name);
    for (const NamedKind& value : kNamedKinds) {
      for (const long long x : {0LL, 1LL, 200LL, -1LL, 70000LL, 3000000000LL, 5000000000LL}) {
        if (value.is("Boolean") && x > 1) continue;
        Handle box;
        if (value.is("Boolean")) {
          box = boolean(x != 0);
        } else if (value.isFloating()) {
          box = floating(value.name, static_cast<double>(x));
        } else {
          box = integer(value.name, x);
        }
        const long long raw = value.is("Boolean") ? (x != 0 ? 1 : 0) : x;
        long long integerValue = 0;
        double floatingValue = 0;
        const bool converts = convertPrimitiveListValueToDeclared(
            declared.kind(), named(declared.name), rawInteger(value.name, raw), integerValue, floatingValue);
        if (converts) {
          expectAccepted(target, box);
        } else {
          expectRefused(target, box, declared.name, std::string("vorn.") + value.name);
        }
      }
    }
  }
}

TEST_F(DeclaredTypeGate, ListOfByte) {
  Handle target = listOf("Byte");
  expectAccepted(target, integer("Int", 255));
  expectRefused(target, integer("Int", 256), "Byte", "vorn.Int");
  expectRefused(target, integer("Long", -1), "Byte", "vorn.Long");
}

TEST_F(DeclaredTypeGate, ListsOfDoubleAndInt) {
  expectAccepted(listOf("Double"), integer("Int", 3));
  expectRefused(listOf("Int"), floating("Double", 3.0), "Int", "vorn.Double");
}

TEST_F(DeclaredTypeGate, ListsOfCharactersAndBooleans) {
  expectRefused(listOf("Char"), integer("Int", 65), "Char", "vorn.Int");
  expectRefused(listOf("Char"), integer("CodeUnit", 65), "Char", "vorn.CodeUnit");
  expectRefused(listOf("Char"), integer("Char", 0xD800), "Char", "vorn.Char");
  expectAccepted(listOf("Char"), integer("Char", 65));
  expectRefused(listOf("CodeUnit"), integer("UShort", 65), "CodeUnit", "vorn.UShort");
  expectAccepted(listOf("CodeUnit"), integer("CodeUnit", 0xD800));
  expectRefused(listOf("Boolean"), integer("Int", 1), "Boolean", "vorn.Int");
  expectAccepted(listOf("Boolean"), boolean(false));
}

TEST_F(DeclaredTypeGate, PrimitiveTypesRefuseNull) {
  for (const NamedKind& declared : kNamedKinds) expectRefused(listOf(declared.name), Handle(), declared.name, "null");
}

TEST_F(DeclaredTypeGate, PrimitiveTypesRefuseTextsAndObjects) {
  definePlainClasses();
  expectRefused(listOf("Int"), string("5"), "Int", "vorn.String");
  expectRefused(listOf("Int"), text("5"), "Int", "vorn.String");
  Handle animal = object("coretest.Animal");
  expectRefused(listOf("Int"), animal, "Int", Vorn_objectTypeName(animal));
  Handle other = object("ArrayList");
  expectRefused(listOf("Double"), other, "Double", Vorn_objectTypeName(other));
}

TEST_F(DeclaredTypeGate, DeclaredNameIsNormalised) {
  expectAccepted(listOf("vorn.Int"), integer("Short", 5));
  expectRefused(listOf("vorn.Int"), boolean(true), "Int", "vorn.Boolean");
  definePlainClasses();
  expectRefused(listOf("coretest.Animal"), integer("Int", 1), "Animal", "vorn.Int");
}

TEST_F(DeclaredTypeGate, ClassTypesAcceptNullInstancesAndDerivedInstances) {
  definePlainClasses();
  for (const char* declared : {"coretest.Animal", "Animal"}) {
    Handle target = listOf(declared);
    expectAccepted(target, Handle());
    expectAccepted(target, object("coretest.Animal"));
    expectAccepted(target, object("coretest.Dog"));
    expectAccepted(target, object("coretest.Puppy"));
    Handle plant = object("coretest.Plant");
    expectRefused(target, plant, "Animal", Vorn_objectTypeName(plant));
  }
  Handle dogs = listOf("Dog");
  expectAccepted(dogs, object("coretest.Puppy"));
  Handle animal = object("coretest.Animal");
  expectRefused(dogs, animal, "Dog", Vorn_objectTypeName(animal));
}

// A type remembers the class that it saw last, which lets no other one in and keeps none out.
TEST_F(DeclaredTypeGate, ClassTypes_DecideAlikeWhateverWasSeenBefore) {
  definePlainClasses();
  const Handle animals = listOf("Animal");
  const Handle dogs = listOf("Dog");
  const Handle plant = object("coretest.Plant");
  const Handle animal = object("coretest.Animal");
  for (const char* seen : {"coretest.Animal", "coretest.Dog", "coretest.Puppy"}) {
    for (int twice = 0; twice < 2; ++twice) expectAccepted(animals, object(seen));
    expectRefused(animals, plant, "Animal", Vorn_objectTypeName(plant));
    expectRefused(animals, string("a"), "Animal", "vorn.String");
    expectAccepted(dogs, object("coretest.Puppy"));
    expectRefused(dogs, animal, "Dog", Vorn_objectTypeName(animal));
    for (const char* other : {"coretest.Dog", "coretest.Animal", "coretest.Puppy"})
      expectAccepted(animals, object(other));
  }
}

// The same through the stores, which take the class that was seen last without asking for its name.
TEST_F(DeclaredTypeGate, StoresOfTheClassThatWasSeenLast_AddAndRefuse) {
  definePlainClasses();
  for (const char* type : {"ArrayList<Dog>", "LinkedList<Dog>", "ArrayListSync<Dog>"}) {
    const Handle target = object(type);
    const Handle animal = object("coretest.Animal");
    for (int i = 0; i < 3; ++i) {
      vorn_collections_ArrayList_add(target, object(i == 1 ? "coretest.Puppy" : "coretest.Dog"));
      EXPECT_NOTHING_RAISED();
      vorn_collections_ArrayList_add(target, animal);
      EXPECT_RAISED(listTypeError("Dog", Vorn_objectTypeName(animal)));
    }
    vorn_collections_ArrayList_add(target, nullptr);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 4) << type;
  }
}

TEST_F(DeclaredTypeGate, ClassTypesRefuseBoxesTextsAndCollections) {
  definePlainClasses();
  Handle target = listOf("Animal");
  expectRefused(target, integer("Int", 1), "Animal", "vorn.Int");
  expectRefused(target, floating("Float", 1), "Animal", "vorn.Float");
  expectRefused(target, boolean(true), "Animal", "vorn.Boolean");
  expectRefused(target, string("Animal"), "Animal", "vorn.String");
  expectRefused(target, text("Animal"), "Animal", "vorn.String");
  Handle other = object("LinkedList");
  expectRefused(target, other, "Animal", Vorn_objectTypeName(other));
}

TEST_F(DeclaredTypeGate, ListsOfStringTakeObjectsBareTextsAndNull) {
  Handle target = listOf("String");
  expectAccepted(target, string("a"));
  expectAccepted(target, text("a"));
  expectAccepted(target, Handle());
  expectRefused(target, integer("Char", 65), "String", "vorn.Char");
}

TEST_F(DeclaredTypeGate, UnknownClassesAcceptOnlyNull) {
  definePlainClasses();
  Handle target = listOf("NoSuchClass");
  expectAccepted(target, Handle());
  Handle animal = object("coretest.Animal");
  expectRefused(target, animal, "NoSuchClass", Vorn_objectTypeName(animal));
}

TEST_F(DeclaredTypeGate, MessageSaysArrayListForEveryListClass) {
  for (const char* className : {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"}) {
    expectRefused(listOf("Int", className), Handle(), "Int", "null");
    expectRefused(listOf("Int", className), boolean(true), "Int", "vorn.Boolean");
    expectAccepted(listOf("Int", className), integer("Int", 1));
  }
}

TEST_F(DeclaredTypeGate, DeclaredTypeOfAGenericClassNameIsEnforced) {
  Handle target = object("ArrayList<Byte>");
  EXPECT_EQ(record(target).elementType.get(), "Byte");
  expectRefused(target, integer("Int", 256), "Byte", "vorn.Int");
  expectAccepted(target, integer("Int", 255));
}

TEST_F(DeclaredTypeGate, UndecidedStorageDoesNotMatter) {
  Handle target = primitiveList("Int", {1});
  expectAccepted(target, string("an untyped list accepts it whatever it holds"));
  record(target).elementType = internRuntimeTypeName("Long");
  expectAccepted(target, integer("Long", 5000000000));
  expectRefused(target, string("a"), "Long", "vorn.String");
}

}  // namespace
}  // namespace vorn::tests
