// Laws of sorts.
#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>

#include <limits>

#include "collections/core/port/objects.h"
#include "collections/core/port/pending_errors.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

// A scattered permutation of 0 to count - 1 for a count that 7919, a prime, does not divide.
long long scattered(long long i, long long count) { return i * 7919 % count; }

std::string sortedText(void* list) {
  vorn_collections_ArrayList_sort(list);
  return textOf(vorn_collections_ArrayList_toString(list));
}

int reversedCompare(void* self, void* other, bool*) { return self == other ? 0 : (self > other ? -1 : 1); }
int raisingCompare(void*, void*, bool*) {
  Vorn_raise("ValueException", "no order");
  return 0;
}

}  // namespace

Checks sortLaws() {
  return {
      {"sorts", "put numbers in ascending order, in every class and storage",
       [] {
         constexpr long long kCount = 500;
         for (const char* name : {"ArrayList<Int>", "ArrayList<Double>", "ArrayList<Object>", "ArrayListSync",
                                  "LinkedList", "LinkedListSync"}) {
           void* const list = object(name);
           for (long long i = 0; i < kCount; ++i) vorn_collections_ArrayList_add(list, integer(scattered(i, kCount)));
           vorn_collections_ArrayList_sort(list);
           for (long long i = 0; i < kCount; ++i) {
             expect(std::string("an element of ") + name,
                    Vorn_getField_i64(vorn_collections_ArrayList_operator_index(list, i), "_value"), i);
           }
         }
       }},
      {"sorts", "put numbers of all types in one order, NaN last",
       [] {
         expect("mixed numbers",
                sortedText(listOf("ArrayList<Object>",
                                  {box("Double", std::numeric_limits<double>::quiet_NaN()), box("ULong", -1),
                                   box("Double", 2.5), integer(3), box("Byte", 2), box("Double", -1e300)})),
                "[-1e+300, 2, 2.5, 3, 18446744073709551615, NaN]");
       }},
      {"sorts", "put Strings in the order of their bytes",
       [] {
         expect("Strings",
                sortedText(listOf("ArrayList<String>",
                                  {string("pear"), string("Fig"), string("apple"), string("app"), string("\xC3\xA9")})),
                "[\"Fig\", \"app\", \"apple\", \"pear\", \"\xC3\xA9\"]");
       }},
      {"sorts", "put bare texts before objects, and null before them",
       [] {
         expect("texts", sortedText(listOf("ArrayList", {string("a"), bare("c"), nullptr, bare("b")})),
                R"([null, "b", "c", "a"])");
       }},
      {"sorts", "put lists and tuples in the order of their elements",
       [] {
         const auto list = [](std::initializer_list<void*> elements) { return listOf("ArrayList", elements); };
         expect("lists",
                sortedText(list({list({integer(2)}), list({integer(1), integer(9)}), list({}), list({integer(1)})})),
                "[[], [1], [1, 9], [2]]");
       }},
      {"sorts", "of an immutable list give a new one",
       [] {
         void* const list = immutableListOf({integer(2), integer(1)});
         expect("the new list",
                textOf(vorn_collections_ImmutableList_toString(held(vorn_collections_ImmutableList_sortNew(list)))),
                "i:[1, 2]");
         expect("the old list", textOf(vorn_collections_ImmutableList_toString(list)), "i:[2, 1]");
       }},
      {"sorts", "ask the order of a user class, and stop at its error",
       [] {
         adapter().defineClass({.name = "conformance.Reversed", .compare = reversedCompare});
         void* const list = listOf("ArrayList", {object("conformance.Reversed"), object("conformance.Reversed"),
                                                 object("conformance.Reversed")});
         vorn_collections_ArrayList_sort(list);
         for (long long i = 0; i < 2; ++i) {
           expectTrue("the elements are in the order of the hook",
                      vorn_collections_ArrayList_operator_index(list, i) >
                          vorn_collections_ArrayList_operator_index(list, i + 1));
         }
         adapter().defineClass({.name = "conformance.Unordered", .compare = raisingCompare});
         vorn_collections_ArrayList_sort(
             listOf("ArrayList", {object("conformance.Unordered"), object("conformance.Unordered")}));
         expectTrue("the error of the hook is pending", !adapter().takeErrors().empty());
       },
       Needs::Hooks},
  };
}

}  // namespace vorn::conformance
