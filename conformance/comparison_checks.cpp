// comparison.h: numbers, equality and order.
#include "collections/core/port/comparison.h"

#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>

#include <array>
#include <limits>

#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr long long kMinimum = std::numeric_limits<long long>::min();

NativeNumericValue numberOf(void* handle) {
  NativeNumericValue number{};
  expectTrue("a box of a number is a number", tryReadNativeNumericValue(handle, number));
  return number;
}

// Numbers in ascending order, of which no two are equal though some round to one double, and boxes of two equal ones.
std::vector<void*> ascendingNumbers() {
  return {box("Double", -std::numeric_limits<double>::infinity()),
          box("Long", kMinimum),
          integer(-1),
          box("Double", -0.5),
          integer(0),
          box("Double", 0.25),
          box("Byte", 200),
          box("Long", 9'007'199'254'740'992LL),
          box("Long", 9'007'199'254'740'993LL),
          box("Double", 9'007'199'254'740'994.0),
          box("Long", std::numeric_limits<long long>::max()),
          box("ULong", kMinimum),  // 2^63
          box("ULong", -1),        // 2^64 - 1
          box("Double", 0x1p64)};
}

void expectEqual(const char* what, void* left, void* right, bool expected) {
  expect(what, Vorn_deepEquals(left, right) != 0, expected);
  expect(std::string(what) + ", the other way round", Vorn_deepEquals(right, left) != 0, expected);
}

// What Vorn_collectionObjectsLess says, in words.
std::string orderOf(void* left, void* right) {
  bool less = false;
  if (!Vorn_collectionObjectsLess(left, right, less)) return "cannot tell";
  return less ? "less" : "not less";
}

std::string equalityOf(void* left, void* right) {
  bool equal = false;
  if (!Vorn_collectionObjectsEqual(left, right, equal)) return "cannot tell";
  return equal ? "equal" : "not equal";
}

void* mapOf(const char* className, void* key, void* value) {
  void* const map = object(className);
  vorn_collections_Map_put(map, key, value);
  return map;
}

void expectLess(const char* what, void* left, void* right) {
  expect(what, orderOf(left, right), "less");
  expect(std::string(what) + ", the other way round", orderOf(right, left), "not less");
}

bool sameAddressees(void*, void*) { return true; }

}  // namespace

Checks comparisonChecks() {
  return {
      {"tryReadNativeNumericValue", "reads the eight integer types, ULong as unsigned, and the floating ones",
       [] {
         using Kind = NativeNumericValue::Kind;
         for (const char* type : kIntegerTypes) {
           const NativeNumericValue number = numberOf(box(type, -5));
           const Kind kind = std::string_view(type) == "ULong" ? Kind::Unsigned : Kind::Signed;
           expect(std::string("the kind of ") + type, static_cast<int>(number.kind), static_cast<int>(kind));
           expect(std::string("the bits of ") + type, static_cast<long long>(number.payload), -5LL);
         }
         for (const char* type : {"Float", "Double"}) {
           expect(std::string("the kind of ") + type, static_cast<int>(numberOf(box(type, 0.5)).kind),
                  static_cast<int>(Kind::Floating));
         }
       }},
      {"tryReadNativeNumericValue", "takes characters, Booleans, texts and null for no numbers",
       [] {
         NativeNumericValue number{};
         for (void* other : {box("Char", 65), box("CodeUnit", 65), Vorn_boxBool(true), string("1"), bare("1"),
                             static_cast<void*>(nullptr)}) {
           expect("a value that is no number", tryReadNativeNumericValue(other, number), false);
         }
       }},
      {"compareNativeNumericValues", "is 0 for equal numbers of any types and for no others, without rounding",
       [] {
         const std::vector<void*> numbers = ascendingNumbers();
         for (std::size_t i = 0; i < numbers.size(); ++i) {
           for (std::size_t j = 0; j < numbers.size(); ++j) {
             expect("number " + std::to_string(i) + " and number " + std::to_string(j) + " of ascending ones are equal",
                    compareNativeNumericValues(numberOf(numbers[i]), numberOf(numbers[j])) == 0, i == j);
           }
         }
         expectTrue("1 and 1.0 are equal",
                    compareNativeNumericValues(numberOf(integer(1)), numberOf(box("Double", 1.0))) == 0);
         expectTrue("the two zeros are equal",
                    compareNativeNumericValues(numberOf(box("Double", -0.0)), numberOf(integer(0))) == 0);
       }},
      {"compareNativeNumericValues", "finds a NaN equal to nothing",
       [] {
         const NativeNumericValue nan = numberOf(box("Double", kNan));
         expectTrue("a NaN and itself differ", compareNativeNumericValues(nan, nan) != 0);
         expectTrue("a NaN and 1 differ", compareNativeNumericValues(nan, numberOf(integer(1))) != 0);
         expectTrue("1 and a NaN differ", compareNativeNumericValues(numberOf(integer(1)), nan) != 0);
       }},
      {"compareNativeNumericValuesForSort", "orders numbers of all types by value, without rounding",
       [] {
         const std::vector<void*> numbers = ascendingNumbers();
         for (std::size_t i = 0; i < numbers.size(); ++i) {
           for (std::size_t j = 0; j < numbers.size(); ++j) {
             expect(
                 "the order of number " + std::to_string(i) + " and number " + std::to_string(j) + " of ascending ones",
                 signOf(compareNativeNumericValuesForSort(numberOf(numbers[i]), numberOf(numbers[j]))),
                 static_cast<int>(i > j) - static_cast<int>(i < j));
           }
         }
         expect("the two zeros",
                compareNativeNumericValuesForSort(numberOf(box("Double", -0.0)), numberOf(box("Double", 0.0))), 0);
       }},
      {"compareNativeNumericValuesForSort", "puts NaNs last, equal to each other",
       [] {
         const NativeNumericValue nan = numberOf(box("Double", kNan));
         const NativeNumericValue infinity = numberOf(box("Double", std::numeric_limits<double>::infinity()));
         expect("two NaNs", compareNativeNumericValuesForSort(nan, nan), 0);
         expect("a NaN and infinity", signOf(compareNativeNumericValuesForSort(nan, infinity)), 1);
         expect("infinity and a NaN", signOf(compareNativeNumericValuesForSort(infinity, nan)), -1);
       }},
      {"Vorn_deepEquals", "compares numbers by value, texts by bytes, characters and Booleans within their type",
       [] {
         expectEqual("1 and 1.0", integer(1), box("Double", 1.0), true);
         expectEqual("1 and 2", integer(1), integer(2), false);
         expectEqual("two NaNs", box("Double", kNan), box("Double", kNan), false);
         expectEqual("a String and a bare text", string("text"), bare("text"), true);
         expectEqual("texts that differ", string("text"), string("texts"), false);
         expectEqual("two Chars", box("Char", 65), box("Char", 65), true);
         expectEqual("a Char and a number", box("Char", 65), integer(65), false);
         expectEqual("a Char and a CodeUnit", box("Char", 65), box("CodeUnit", 65), false);
         expectEqual("true and 1", Vorn_boxBool(true), integer(1), false);
         expectEqual("null and null", nullptr, nullptr, true);
         expectEqual("null and 0", nullptr, integer(0), false);
       }},
      {"Vorn_deepEquals", "compares lists, arrays and tuples of one family by their elements, however they store them",
       [] {
         void* const unboxed = listOf("ArrayList<Int>", {integer(1), integer(2)});
         expectEqual("an unboxed and a linked list", unboxed, listOf("LinkedList", {integer(1), box("Long", 2)}), true);
         expectEqual("lists of different length", unboxed, listOf("ArrayList", {integer(1)}), false);
         expectEqual("lists in another order", unboxed, listOf("ArrayList", {integer(2), integer(1)}), false);
         expectEqual("a list and an immutable list", unboxed, immutableListOf({integer(1), integer(2)}), false);
         expectEqual("a list and a tuple", unboxed, tupleOf({integer(1), integer(2)}), false);
         expectEqual("two tuples", tupleOf({integer(1), string("a")}), tupleOf({integer(1), string("a")}), true);
         expectEqual("two arrays", arrayOf("Array<Int>", {integer(1)}), arrayOf("ArraySync<Object>", {integer(1)}),
                     true);
         expectEqual("nested lists", listOf("ArrayList", {unboxed, nullptr}),
                     listOf("ArrayList", {listOf("ArrayList", {integer(1), integer(2)}), nullptr}), true);
       }},
      {"Vorn_deepEquals", "compares maps by entries and sets by elements",
       [] {
         void* const map = mapOf("Map", string("key"), integer(1));
         expectEqual("a hash map and a sorted one", map, mapOf("SortedMap", string("key"), integer(1)), true);
         expectEqual("maps with different values", map, mapOf("Map", string("key"), integer(2)), false);
         expectEqual("maps with different keys", map, mapOf("Map", string("other"), integer(1)), false);
         expectEqual("sets in another order", setOf({integer(1), integer(2)}), setOf({integer(2), integer(1)}), true);
         expectEqual("sets that differ", setOf({integer(1), integer(2)}), setOf({integer(1), integer(3)}), false);
         expectEqual("a set and its part", setOf({integer(1), integer(2)}), setOf({integer(1)}), false);
       }},
      {"Vorn_deepEquals", "ends for collections that hold themselves",
       [] {
         void* const first = listOf("ArrayList", {});
         void* const second = listOf("ArrayList", {});
         for (void* list : {first, second}) {
           for (int i = 0; i < 3; ++i) vorn_collections_ArrayList_add(list, list);
         }
         expectEqual("two lists that hold themselves", first, second, true);
       }},
      {"Vorn_deepEquals", "asks the equality of a user class",
       [] {
         adapter().defineClass({.name = "conformance.Equal", .equals = sameAddressees});
         adapter().defineClass({"conformance.Plain"});
         expectEqual("two instances that are equal", object("conformance.Equal"), object("conformance.Equal"), true);
         expectEqual("two instances without a hook", object("conformance.Plain"), object("conformance.Plain"), false);
         expectEqual("lists of instances", listOf("ArrayList", {object("conformance.Equal")}),
                     listOf("ArrayList", {object("conformance.Equal")}), true);
       },
       Needs::Hooks},
      {"Vorn_collectionObjectsEqual",
       "compares lists, arrays and tuples of one family, and cannot tell of boxes and instances",
       [] {
         expect("equal lists",
                equalityOf(listOf("ArrayList", {integer(1)}), listOf("LinkedList", {box("Double", 1.0)})), "equal");
         expect("lists that differ", equalityOf(listOf("ArrayList", {integer(1)}), listOf("ArrayList", {integer(2)})),
                "not equal");
         expect("equal tuples", equalityOf(tupleOf({integer(1)}), tupleOf({integer(1)})), "equal");
         adapter().defineClass({"conformance.Plain"});
         expect("two instances", equalityOf(object("conformance.Plain"), object("conformance.Plain")), "cannot tell");
       }},
      {"Vorn_collectionObjectsLess",
       "orders lists, arrays and tuples element by element, null first, and cannot tell of boxes and instances",
       [] {
         const auto list = [](std::initializer_list<void*> elements) { return listOf("ArrayList", elements); };
         expectLess("[1, 2] and [1, 3]", list({integer(1), integer(2)}), list({integer(1), integer(3)}));
         expectLess("[1] and [1, 2]", list({integer(1)}), list({integer(1), integer(2)}));
         expectLess("[null] and [1]", list({nullptr}), list({integer(1)}));
         expectLess("['a'] and ['b']", list({string("a")}), list({bare("b")}));
         expectLess("[[1]] and [[2]]", list({list({integer(1)})}), list({list({integer(2)})}));
         expectLess("(1, 2) and (2, 1)", tupleOf({integer(1), integer(2)}), tupleOf({integer(2), integer(1)}));
         expect("equal lists", orderOf(list({integer(1)}), list({integer(1)})), "not less");
         adapter().defineClass({"conformance.Plain"});
         expect("two instances", orderOf(object("conformance.Plain"), object("conformance.Plain")), "cannot tell");
       }},
      {"compareStringObjects", "orders Strings by their bytes",
       [] {
         constexpr std::array<const char*, 6> kAscending = {"", "B", "a", "aa", "b", "\xC3\xA9"};
         for (std::size_t i = 0; i < kAscending.size(); ++i) {
           for (std::size_t j = 0; j < kAscending.size(); ++j) {
             expect(shown(kAscending[i]) + " and " + shown(kAscending[j]),
                    signOf(compareStringObjects(string(kAscending[i]), string(kAscending[j]))),
                    static_cast<int>(i > j) - static_cast<int>(i < j));
           }
         }
       }},
  };
}

}  // namespace vorn::conformance
