// Laws of fixed arrays.
#include <vorn/collections/array.h>

#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

void* arrayOfSize(const std::string& name, long long size) {
  void* const array = object(name.c_str());
  vorn_collections_Array_ctor(array, size);
  return array;
}

}  // namespace

Checks arrayLaws() {
  return {
      {"arrays", "have as many slots of their element type as asked for, all zero",
       [] {
         for (const char* name : kArrayClasses) {
           for (const char* type : kIntegerTypes) {
             void* const array = arrayOfSize(std::string(name) + "<" + type + ">", 40);
             expect("the size", vorn_collections_Array_size(array), 40LL);
             for (long long i = 0; i < 40; ++i) vorn_collections_Array_setInt(array, i, i + 60);
             for (long long i = 0; i < 40; ++i) expect("a slot", vorn_collections_Array_getInt(array, i), i + 60);
             expect("the box of a slot", Vorn_objectTypeName(vorn_collections_Array_operator_index(array, 1)),
                    std::string("vorn.") + type);
           }
           expectTrue("a slot of objects is null", vorn_collections_Array_operator_index(
                                                       arrayOfSize(std::string(name) + "<String>", 3), 2) == nullptr);
         }
       }},
      {"arrays", "raise for negative sizes, wrong indexes and values of another type",
       [] {
         arrayOfSize("Array<Int>", -1);
         expectRaised("a negative size", "ValueException: Array size cannot be negative");
         void* const array = arrayOfSize("Array<Int>", 2);
         vorn_collections_Array_getInt(array, 2);
         expectRaised("a wrong index", "IndexException: Index out of bounds");
         vorn_collections_Array_operator_index_eq(array, 0, string("text"));
         expectRaised("a text among integers", "TypeError: Invalid array element type");
       }},
      {"arrays", "sort, reverse, slice, concatenate and compare by contents",
       [] {
         for (const char* name : {"Array<Int>", "ArraySync<Int>", "Array<Object>"}) {
           void* const array = arrayOf(name, {integer(3), integer(1), integer(2)});
           expect("sorted", textOf(vorn_collections_Array_toString(held(vorn_collections_Array_sortNew(array)))),
                  std::string_view(name).find("Sync") != std::string_view::npos ? "fs:[1, 2, 3]" : "f:[1, 2, 3]");
           vorn_collections_Array_reverse(array);
           expectTrue("reversed",
                      vorn_collections_Array_operator_eq(array, arrayOf(name, {integer(2), integer(1), integer(3)})));
           void* const both = held(vorn_collections_Array_concat(array, listOf("ArrayList", {integer(9)})));
           expectTrue("concatenated", vorn_collections_Array_operator_eq(
                                          both, arrayOf(name, {integer(2), integer(1), integer(3), integer(9)})));
           void* const given = Vorn_boxBool(true);
           void* const part = held(vorn_collections_Array_slice(both, 1, 3, 1, given, given));
           expectTrue("a slice", vorn_collections_Array_operator_eq(part, arrayOf(name, {integer(1), integer(3)})));
           expect("the sum", vorn_collections_Array_sumI64Fast(both), 15LL);
         }
       }},
      {"arrays", "become texts when they hold characters",
       [] {
         void* const chars = arrayOfSize("Array<Char>", 2);
         vorn_collections_Array_setInt(chars, 0, 'h');
         vorn_collections_Array_setInt(chars, 1, 0x20AC);
         expect("a text of Chars", textOf(Vorn_stringFromCharArray(chars)), "h\xE2\x82\xAC");
         void* const units = arrayOfSize("Array<CodeUnit>", 2);
         vorn_collections_Array_setInt(units, 0, 0xD83D);
         vorn_collections_Array_setInt(units, 1, 0xDE00);
         expect("a text of CodeUnits", textOf(Vorn_stringFromCodeUnitArray(units)), "\xF0\x9F\x98\x80");
         vorn_collections_Array_setInt(chars, 0, 0xD800);
         expectRaised("a surrogate among Chars",
                      "ValueException: Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)");
       }},
      {"arrays", "are copied from lists, sets and tuples",
       [] {
         void* const array = object("Array<Object>");
         vorn_collections_Array_copyCtor(array, tupleOf({integer(1), string("b")}));
         expect("a copy of a tuple", textOf(vorn_collections_Array_toString(array)), R"(f:[1, "b"])");
         vorn_collections_Array_copyCtor(object("Array<Int>"), integer(1));
         expectRaised("a copy of a number", "TypeError: Array copy constructor expects an ordered collection");
       }},
  };
}

}  // namespace vorn::conformance
