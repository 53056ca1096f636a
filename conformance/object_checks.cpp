// objects.h: making objects, their fields and their types.
#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>

#include <limits>

#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "collections/core/storage/list_data.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

constexpr const char* kModule = "vorn.collections.";

template <std::size_t kCount>
void expectNames(const char* const (&classes)[kCount]) {
  for (const char* name : classes) {
    const std::string fullName = std::string(kModule) + name;
    expect("the type of an object made by its short name", Vorn_objectTypeName(object(name)), fullName);
    expect("the type of an object made by its full name", Vorn_objectTypeName(object(fullName.c_str())), fullName);
  }
}

void expectInstance(void* handle, const char* name, bool expected) {
  const std::string type = Vorn_objectTypeName(handle);
  expect("whether " + type + " is an instance of " + name, Vorn_isInstanceOf(handle, name), expected);
}

}  // namespace

Checks objectChecks() {
  return {
      {"Vorn_allocArrayListObjectFast", "gives an empty ArrayList and its record",
       [] {
         for (const bool elementsAreHandles : {false, true}) {
           ListData* data = nullptr;
           void* const list = Vorn_allocArrayListObjectFast(false, &data, elementsAreHandles);
           expect("the type", Vorn_objectTypeName(list), "vorn.collections.ArrayList");
           expectTrue("the record is that of the list", data == getListData(list));
           expect("the size", vorn_collections_ArrayList_size(list), 0LL);
           expect("'synchronized'", data->synchronized, false);
           expectTrue("no element type is declared", data->elementType.empty());
         }
       }},
      {"Vorn_allocArrayListObjectFast", "gives an ArrayListSync with a mutex when the flag is set",
       [] {
         ListData* data = nullptr;
         void* const list = Vorn_allocArrayListObjectFast(true, &data, true);
         expect("the type", Vorn_objectTypeName(list), "vorn.collections.ArrayListSync");
         expectTrue("the record is that of the list", data == getListData(list));
         expect("'synchronized'", data->synchronized, true);
         expectTrue("it has a mutex", data->mutex != nullptr);
       }},
      {"Vorn_allocObject", "makes every collection by its short and its full name",
       [] {
         expectNames(kListClasses);
         expectNames(kArrayClasses);
         expectNames(kMapClasses);
         expectNames(kSetClasses);
         constexpr const char* kImmutable[] = {"ImmutableList", "Tuple"};
         expectNames(kImmutable);
       }},
      {"Vorn_allocObject", "makes generic classes, whose list declares its type argument without its module",
       [] {
         const auto declared = [](const char* name) { return getListData(object(name))->elementType.get(); };
         expect("the element type of ArrayList<Int>", declared("ArrayList<Int>"), "Int");
         expect("the element type of LinkedListSync<app.Point>", declared("LinkedListSync<app.Point>"), "Point");
         expect("the element type of ImmutableList<String>", declared("ImmutableList<String>"), "String");
         expect("the element type of ArrayList", declared("ArrayList"), "");
         expect("the type of Tuple<String,Int>", Vorn_objectTypeName(object("Tuple<String,Int>")),
                "vorn.collections.Tuple<String,Int>");
         expect("the type of SortedMap<String,Int>", Vorn_objectTypeName(object("SortedMap<String,Int>")),
                "vorn.collections.SortedMap<String,Int>");
         expect("the type of Array<Int>", Vorn_objectTypeName(object("Array<Int>")), "vorn.collections.Array<Int>");
       }},
      {"Vorn_allocObject", "makes instances of user classes by short and full name",
       [] {
         adapter().defineClass({"conformance.Point"});
         expect("by full name", Vorn_objectTypeName(object("conformance.Point")), "conformance.Point");
         expect("by short name", Vorn_objectTypeName(object("Point")), "conformance.Point");
       }},
      {"Vorn_allocObject", "gives null for a class that there is not",
       [] {
         expect("an object of no class", static_cast<const void*>(Vorn_allocObject("conformance.Nowhere")),
                static_cast<const void*>(nullptr));
       }},
      {"Vorn_getField_i64", "reads the value of a box, converting a floating one, and 0 for a missing field",
       [] {
         expect("Long", Vorn_getField_i64(box("Long", std::numeric_limits<long long>::min()), "_value"),
                std::numeric_limits<long long>::min());
         expect("Char", Vorn_getField_i64(box("Char", 65), "_value"), 65LL);
         expect("Boolean", Vorn_getField_i64(Vorn_boxBool(true), "_value"), 1LL);
         expect("Double -2.75", Vorn_getField_i64(box("Double", -2.75), "_value"), -2LL);
         expect("a field that is missing", Vorn_getField_i64(integer(5), "_other"), 0LL);
         expect("the size of a new tuple", Vorn_getField_i64(object("Tuple"), "size"), 0LL);
         expect("the size of a new map", Vorn_getField_i64(object("Map"), "size"), 0LL);
         expect("the size of a new set", Vorn_getField_i64(object("HashSet"), "size"), 0LL);
       }},
      {"Vorn_getField_double", "reads the value of a box, converting an integer, and 0 for a missing field",
       [] {
         expect("Double", Vorn_getField_double(box("Double", -2.75), "_value"), -2.75);
         expect("Float", Vorn_getField_double(box("Float", 0.5), "_value"), 0.5);
         expect("Int", Vorn_getField_double(integer(-3), "_value"), -3.0);
         expect("a field that is missing", Vorn_getField_double(box("Double", 1.5), "_other"), 0.0);
       }},
      {"Vorn_getField_i1", "reads the value of a Boolean, and false for a missing field",
       [] {
         expect("true", Vorn_getField_i1(Vorn_boxBool(true), "_value"), true);
         expect("false", Vorn_getField_i1(Vorn_boxBool(false), "_value"), false);
         expect("a field that is missing", Vorn_getField_i1(Vorn_boxBool(true), "_other"), false);
       }},
      {"Vorn_getField_ptr", "reads the items of a tuple, and null for one that was never written",
       [] {
         void* const item = string("item");
         void* const tuple = tupleOf({item, nullptr, integer(1)});
         expectTrue("_0 is what was written", Vorn_getField_ptr(tuple, "_0") == item);
         expectTrue("_1 is null", Vorn_getField_ptr(tuple, "_1") == nullptr);
         expectTrue("_3 is null", Vorn_getField_ptr(tuple, "_3") == nullptr);
         expectTrue("an item of no tuple is null", Vorn_getField_ptr(integer(1), "_0") == nullptr);
       }},
      {"Vorn_setField_i64", "writes the size of a tuple, and ignores a field that is missing",
       [] {
         void* const tuple = object("Tuple");
         Vorn_setField_i64(tuple, "size", 3);
         Vorn_setField_i64(tuple, "_other", 4);
         expect("the size", Vorn_getField_i64(tuple, "size"), 3LL);
       }},
      {"Vorn_setField_ptr", "writes an item of a tuple, and makes room for any number of them",
       [] {
         void* const tuple = object("Tuple");
         void* const items[] = {string("first"), string("forty"), string("seven")};
         Vorn_setField_ptr(tuple, "_0", items[0]);
         Vorn_setField_ptr(tuple, "_40", items[1]);
         Vorn_setField_ptr(tuple, "_7", items[2]);
         expectTrue("_0 is what was written", Vorn_getField_ptr(tuple, "_0") == items[0]);
         expectTrue("_40 is what was written", Vorn_getField_ptr(tuple, "_40") == items[1]);
         expectTrue("_7 is what was written", Vorn_getField_ptr(tuple, "_7") == items[2]);
         expect("the size, which items do not change", Vorn_getField_i64(tuple, "size"), 0LL);
       }},
      {"Vorn_objectTypeName", "gives the full name of a type",
       [] {
         for (const char* name : kIntegerTypes)
           expect(name, Vorn_objectTypeName(box(name, 1)), std::string("vorn.") + name);
         expect("Double", Vorn_objectTypeName(box("Double", 1.0)), "vorn.Double");
         expect("Float", Vorn_objectTypeName(box("Float", 1.0)), "vorn.Float");
         expect("Boolean", Vorn_objectTypeName(Vorn_boxBool(true)), "vorn.Boolean");
         expect("Char", Vorn_objectTypeName(box("Char", 65)), "vorn.Char");
         expect("CodeUnit", Vorn_objectTypeName(box("CodeUnit", 65)), "vorn.CodeUnit");
         expect("String", Vorn_objectTypeName(string("text")), "vorn.String");
       }},
      {"Vorn_objectTypeName", "gives vorn.String for a bare text, and null for null",
       [] {
         expect("a bare text", Vorn_objectTypeName(bare("text")), "vorn.String");
         expectTrue("null has none", Vorn_objectTypeName(nullptr) == nullptr);
       }},
      {"Vorn_objectTypeName", "gives one text for all objects of a class",
       [] {
         expectTrue("two boxes", Vorn_objectTypeName(integer(1)) == Vorn_objectTypeName(integer(2)));
         void* const lists[] = {object("ArrayList<Int>"), object("ArrayList<Int>")};
         expectTrue("two lists", Vorn_objectTypeName(lists[0]) == Vorn_objectTypeName(lists[1]));
       }},
      {"Vorn_isInstanceOf", "knows an object's class by short and full name, and what its class is derived from",
       [] {
         adapter().defineClass({"conformance.Point"});
         adapter().defineClass({"conformance.Circle"});
         void* const point = object("conformance.Point");
         expectInstance(point, "Point", true);
         expectInstance(point, "conformance.Point", true);
         expectInstance(point, "Circle", false);
         expectInstance(integer(1), "Int", true);
         expectInstance(integer(1), "vorn.Int", true);
         expectInstance(integer(1), "Long", false);
         expectInstance(bare("text"), "String", true);
         expectInstance(object("ArrayList<Int>"), "ArrayList", true);
         expectInstance(object("ArrayList<Int>"), "ArrayList<Int>", true);
         expectInstance(object("ArrayList<Int>"), "ArrayList<Long>", false);
         for (void* anything : {point, integer(1), bare("text"), object("Map")})
           expectInstance(anything, "Object", true);
         expect("whether null is an instance of Object", Vorn_isInstanceOf(nullptr, "Object"), false);
       }},
      {"findObjectField", "describes the value of a box, and is null for a missing field",
       [] {
         const auto kindOf = [](void* handle) {
           const ObjectField* const field = findObjectField(getObject(handle), "_value");
           return field != nullptr ? static_cast<int>(field->kind) : 0;
         };
         expect("the kind of Int's value", kindOf(integer(1)), static_cast<int>(ObjectField::Kind::Integer));
         expect("the kind of Double's value", kindOf(box("Double", 1.0)),
                static_cast<int>(ObjectField::Kind::Floating));
         expect("the kind of Boolean's value", kindOf(Vorn_boxBool(true)),
                static_cast<int>(ObjectField::Kind::Boolean));
         expect("the kind of a String's value", kindOf(string("text")), 0);
         expectTrue("a missing field", findObjectField(getObject(integer(1)), "_other") == nullptr);
       }},
  };
}

}  // namespace vorn::conformance
