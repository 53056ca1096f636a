// type_names.h: names as text, interning, families.
#include "collections/core/port/type_names.h"

#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>

#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

constexpr const char* kClasses[] = {
    "ArrayList", "ArrayListSync", "LinkedList",  "LinkedListSync", "ImmutableList", "Array",   "ArraySync",
    "Tuple",     "Map",           "HashMapSync", "SortedMap",      "SortedMapSync", "HashSet", "HashSetSync",
    "String",    "Int",           "Object"};

// The predicate holds for the given classes and for no other, by whatever name.
void expectFamily(bool (*predicate)(std::string_view), const std::vector<std::string>& family) {
  for (const std::string name : kClasses) {
    const bool expected = std::find(family.begin(), family.end(), name) != family.end();
    expect(name, predicate(name), expected);
    expect(name + "<Int>", predicate(name + "<Int>"), expected);
    expect("vorn.collections." + name, predicate("vorn.collections." + name), expected);
    expect("vorn.collections." + name + "<vorn.Int>", predicate("vorn.collections." + name + "<vorn.Int>"), expected);
    expect("app." + name, predicate("app." + name), false);
  }
  expect("the empty name", predicate(""), false);
}

void expectShort(std::string_view (*shorten)(std::string_view)) {
  expect("Int", shorten("Int"), "Int");
  expect("vorn.Int", shorten("vorn.Int"), "Int");
  expect("app.geometry.Point", shorten("app.geometry.Point"), "Point");
  expect("vorn.collections.Map<vorn.String, Int>", shorten("vorn.collections.Map<vorn.String, Int>"),
         "Map<vorn.String, Int>");
  expect("the empty name", shorten(""), "");
  const std::string_view name = "vorn.collections.ArrayList";
  expectTrue("it ends where the name ends", shorten(name).data() + shorten(name).size() == name.data() + name.size());
}

bool split(std::string_view name, std::vector<std::string>& arguments) {
  return compiler::ClassLoader::resolveConcreteGenericArgs(name, arguments);
}

constexpr const char* kFamily = "holds for its classes, short, full or generic, and for no other";

}  // namespace

Checks typeNameChecks() {
  return {
      {"shortTypeName", "gives the end of the name, without the module and with the arguments",
       [] { expectShort(shortTypeName); }},
      {"shortTypeNameLocal", "gives the end of the name, without the module and with the arguments",
       [] { expectShort(shortTypeNameLocal); }},
      {"internRuntimeTypeName", "gives equal names one pointer, which keeps the text",
       [] {
         std::string name = "app.conformance.Name";
         const RuntimeTypeName first = internRuntimeTypeName(name);
         const std::string expected = name;
         name.assign(name.size(), 'x');
         expect("the text", first.get(), expected);
         expectTrue("an equal name is the same pointer", internRuntimeTypeName(expected) == first);
         expectTrue("another name is another pointer", !(internRuntimeTypeName("app.conformance.Other") == first));
         expectTrue("the empty name is null", internRuntimeTypeName("").name == nullptr);
       }},
      {"internRuntimeTypeName", "finds standard names with standardTypeName, and gives no other name a primitive type",
       [] {
         for (const char* name : {"Int", "Boolean", "Char", "Double", "Object"}) {
           expectTrue(name, internRuntimeTypeName(name).name == collections::standardTypeName(name));
         }
         expectTrue("vorn.Int has no primitive type",
                    internRuntimeTypeName("vorn.Int").primitiveType() == collections::PrimitiveType::None);
       }},
      {"internRuntimeTypeName", "refers to the short form of a name that has a module",
       [] {
         expectTrue("vorn.Int", internRuntimeTypeName("vorn.Int").shortForm() == internRuntimeTypeName("Int"));
         expectTrue("app.Point", internRuntimeTypeName("app.Point").shortForm() == internRuntimeTypeName("Point"));
         expectTrue("Point refers to none", internRuntimeTypeName("Point").name->normalized == nullptr);
         expectTrue("a module without a name is an Object",
                    internRuntimeTypeName("app.").shortForm() == internRuntimeTypeName("Object"));
       }},
      {"runtimeCollectionBaseName", "gives the short class name without arguments",
       [] {
         expect("vorn.collections.LinkedList<Int>", runtimeCollectionBaseName("vorn.collections.LinkedList<Int>"),
                "LinkedList");
         expect("Map<app.A, app.B>", runtimeCollectionBaseName("Map<app.A, app.B>"), "Map");
         expect("HashSet", runtimeCollectionBaseName("HashSet"), "HashSet");
       }},
      {"isArrayListLike", kFamily,
       [] {
         expectFamily(isArrayListLike, {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"});
       }},
      {"isSyncArrayListLike", kFamily,
       [] {
         expectFamily(isSyncArrayListLike, {"ArrayListSync", "LinkedListSync"});
       }},
      {"isLinkedListLike", kFamily,
       [] {
         expectFamily(isLinkedListLike, {"LinkedList", "LinkedListSync"});
       }},
      {"isImmutableListLike", kFamily, [] { expectFamily(isImmutableListLike, {"ImmutableList"}); }},
      {"isIListLike", kFamily,
       [] {
         expectFamily(isIListLike, {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync", "ImmutableList"});
       }},
      {"isArrayLike", kFamily,
       [] {
         expectFamily(isArrayLike, {"Array", "ArraySync"});
       }},
      {"isSyncArrayLike", kFamily, [] { expectFamily(isSyncArrayLike, {"ArraySync"}); }},
      {"isTupleLike", kFamily, [] { expectFamily(isTupleLike, {"Tuple"}); }},
      {"isMapLike", kFamily,
       [] {
         expectFamily(isMapLike, {"Map", "HashMapSync", "SortedMap", "SortedMapSync"});
       }},
      {"isHashSetLike", kFamily,
       [] {
         expectFamily(isHashSetLike, {"HashSet", "HashSetSync"});
       }},
      {"isSyncHashSetLike", kFamily, [] { expectFamily(isSyncHashSetLike, {"HashSetSync"}); }},
      {"isFloatingNumberShortType", "holds for Float and Double alone",
       [] {
         expect("Float", isFloatingNumberShortType("Float"), true);
         expect("Double", isFloatingNumberShortType("Double"), true);
         expect("Int", isFloatingNumberShortType("Int"), false);
         expect("the empty name", isFloatingNumberShortType(""), false);
       }},
      {"resolveConcreteGenericArgs", "splits the outermost arguments, and gives false when there are none",
       [] {
         std::vector<std::string> arguments;
         expectTrue("Array<Int>", split("vorn.collections.Array<Int>", arguments));
         expect("the arguments of Array<Int>", arguments, std::vector<std::string>{"Int"});
         expectTrue("Map<String, Map<Int,Array<app.A>>>", split("Map<String, Map<Int,Array<app.A>>>", arguments));
         expect("the arguments of a nested name", arguments,
                std::vector<std::string>{"String", "Map<Int,Array<app.A>>"});
         expect("Array", split("Array", arguments), false);
       }},
  };
}

}  // namespace vorn::conformance
