// Laws of displays and joins: they are part of the language's visible output.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

std::string displayed(void* (*toString)(void*), void* collection) { return textOf(toString(collection)); }

void* mapOfOneEntry(const char* className) {
  void* const map = object(className);
  vorn_collections_Map_put(map, string("a"), integer(1));
  return map;
}

}  // namespace

Checks displayLaws() {
  return {
      {"displays", "begin with the tag of the class and end with its bracket",
       [] {
         const auto listed = [](const char* name) {
           return displayed(vorn_collections_ArrayList_toString, listOf(name, {integer(1), nullptr, bare("b")}));
         };
         expect("ArrayList", listed("ArrayList"), R"([1, null, "b"])");
         expect("ArrayListSync", listed("ArrayListSync"), R"(s:[1, null, "b"])");
         expect("LinkedList", listed("LinkedList"), R"(l:[1, null, "b"])");
         expect("LinkedListSync", listed("LinkedListSync"), R"(ls:[1, null, "b"])");
         expect("ImmutableList", displayed(vorn_collections_ImmutableList_toString, immutableListOf({integer(1)})),
                "i:[1]");
         expect("Array", displayed(vorn_collections_Array_toString, arrayOf("Array<Int>", {integer(1)})), "f:[1]");
         expect("ArraySync", displayed(vorn_collections_Array_toString, arrayOf("ArraySync<Object>", {integer(1)})),
                "fs:[1]");
         expect("Tuple", displayed(vorn_collections_Tuple_toString, tupleOf({integer(1), string("b")})), R"((1, "b"))");
         expect("HashSet", displayed(vorn_collections_HashSet_toString, setOf({integer(1)})), "{1}");
       }},
      {"displays", "of maps show their entries",
       [] {
         const auto shownMap = [](const char* name) {
           return displayed(vorn_collections_Map_toString, mapOfOneEntry(name));
         };
         for (const char* name : kMapClasses) {
           const std::string text = shownMap(name);
           expectTrue(text + " has the key in quotes and the value", text.find(R"("a": 1})") != std::string::npos);
         }
       }},
      {"displays", "show values as the language writes them",
       [] {
         expect("values",
                displayed(vorn_collections_ArrayList_toString,
                          listOf("ArrayList", {box("Double", 2.0), box("ULong", -1), Vorn_boxBool(false),
                                               box("Char", 65), string("say \"a\"\n")})),
                R"([2.0, 18446744073709551615, false, A, "say \"a\"\n"])");
         expect("unboxed numbers",
                displayed(vorn_collections_ArrayList_toString,
                          listOf("ArrayList<Double>", {box("Double", 0.1), integer(3)})),
                "[0.1, 3.0]");
         expect("nested collections",
                displayed(vorn_collections_ArrayList_toString,
                          listOf("ArrayList", {listOf("LinkedList", {integer(1)}), tupleOf({})})),
                "[l:[1], ()]");
       }},
      {"displays", "end for a collection that holds itself",
       [] {
         for (const char* name : kListClasses) {
           void* const list = listOf(name, {integer(1)});
           vorn_collections_ArrayList_add(list, list);
           expectTrue(std::string(name) + " shows a marker",
                      displayed(vorn_collections_ArrayList_toString, list).find("...") != std::string::npos);
         }
       }},
      {"joins", "put the separator between the texts of the elements",
       [] {
         expect("a list",
                textOf(vorn_collections_ArrayList_join(listOf("ArrayList", {integer(1), string("b"), nullptr}), ", ")),
                "1, b, null");
         expect("an array", textOf(vorn_collections_Array_join(arrayOf("Array<Int>", {integer(1), integer(2)}), "-")),
                "1-2");
       }},
  };
}

}  // namespace vorn::conformance
