// Laws of lists, immutable lists and tuples.
#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/tuple.h>

#include <algorithm>
#include <functional>
#include <numeric>

#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

using Values = std::vector<long long>;

const char* const kOutOfBounds = "IndexException: Index out of bounds";

// Every class of lists, untyped, of every integer type, and of objects.
void forEachList(const std::function<void(const std::string& name)>& law) {
  for (const char* name : kListClasses) {
    law(name);
    law(std::string(name) + "<Object>");
    for (const char* type : kIntegerTypes) law(std::string(name) + "<" + type + ">");
  }
}

void expectContents(const std::string& name, void* list, const Values& expected) {
  held(list);
  expect("the size of " + name, vorn_collections_ArrayList_size(list), static_cast<long long>(expected.size()));
  expect("the unlocked size of " + name, vorn_collections_ArrayList_sizeFast(list),
         static_cast<long long>(expected.size()));
  for (std::size_t i = 0; i < expected.size(); ++i) {
    expect("element " + std::to_string(i) + " of " + name,
           vorn_collections_ArrayList_getInt(list, static_cast<long long>(i)), expected[i]);
    const long long fromEnd = static_cast<long long>(i) - static_cast<long long>(expected.size());
    long long boxed = -1;
    expectTrue("an element of " + name + " boxes as an integer",
               extractArrayElementInteger(vorn_collections_ArrayList_operator_index(list, fromEnd), boxed));
    expect("the box of element " + std::to_string(i) + " of " + name, boxed, expected[i]);
  }
}

void* filled(const std::string& name, const Values& values) {
  void* const list = object(name.c_str());
  for (const long long value : values) vorn_collections_ArrayList_add(list, integer(value));
  return list;
}

Values numbersTo(long long end) {
  Values values(static_cast<std::size_t>(end));
  std::iota(values.begin(), values.end(), 0LL);
  return values;
}

}  // namespace

Checks listLaws() {
  return {
      {"lists", "keep what is added, in order, in every storage",
       [] {
         forEachList(
             [](const std::string& name) { expectContents(name, filled(name, numbersTo(100)), numbersTo(100)); });
       }},
      {"lists", "insert, replace and remove at an index, counted from either end",
       [] {
         forEachList([](const std::string& name) {
           void* const list = filled(name, {1, 2, 3});
           vorn_collections_ArrayList_addAt(list, 0, integer(10));
           vorn_collections_ArrayList_addAt(list, 4, integer(40));
           vorn_collections_ArrayList_operator_index_eq(list, -2, integer(33));
           vorn_collections_ArrayList_removeAt(list, 1);
           expectContents(name, list, {10, 2, 33, 40});
           vorn_collections_ArrayList_clear(list);
           expectContents(name, list, {});
         });
       }},
      {"lists", "raise for an index out of bounds and stay as they were",
       [] {
         forEachList([](const std::string& name) {
           void* const list = filled(name, {1, 2});
           vorn_collections_ArrayList_getInt(list, 2);
           expectRaised(name, kOutOfBounds);
           vorn_collections_ArrayList_removeAt(list, -3);
           expectRaised(name, kOutOfBounds);
           vorn_collections_ArrayList_addAt(list, -1, integer(1));
           expectRaised(name, kOutOfBounds);
           expectContents(name, list, {1, 2});
         });
       }},
      {"lists", "search by value, over types of numbers",
       [] {
         forEachList([](const std::string& name) {
           void* const list = filled(name, {5, 6, 5});
           expect("count in " + name, vorn_collections_ArrayList_count(list, box("Double", 5.0)), 2LL);
           expect("indexOf in " + name, vorn_collections_ArrayList_indexOf(list, box("Long", 6), 0), 1LL);
           expect("lastIndexOf in " + name, vorn_collections_ArrayList_lastIndexOf(list, integer(5), 2), 2LL);
           expect("in " + name, vorn_collections_ArrayList_operator_in(list, string("5")), false);
           expect("remove from " + name, vorn_collections_ArrayList_remove(list, integer(5)), true);
           expectContents(name, list, {6, 5});
         });
       }},
      {"lists", "slice, repeat, concatenate, reverse and take in other lists",
       [] {
         forEachList([](const std::string& name) {
           void* const list = filled(name, {0, 1, 2, 3, 4});
           void* const given = Vorn_boxBool(true);
           expectContents("a slice of " + name, vorn_collections_ArrayList_slice(list, 3, 0, -2, given, given), {3, 1});
           expectContents("twice " + name, vorn_collections_ArrayList_repeat(filled(name, {1, 2}), 2), {1, 2, 1, 2});
           expectContents("a concatenation of " + name,
                          vorn_collections_ArrayList_concat(filled(name, {1}), filled(name, {2})), {1, 2});
           expectContents("the reverse of " + name, vorn_collections_ArrayList_reverseNew(list), {4, 3, 2, 1, 0});
           vorn_collections_ArrayList_addAll(list, list);
           expectContents(name + " with itself", list, {0, 1, 2, 3, 4, 0, 1, 2, 3, 4});
         });
       }},
      {"lists", "of unboxed elements take another type's value as an object",
       [] {
         void* const list = filled("ArrayList", {1, 2});
         vorn_collections_ArrayList_add(list, string("three"));
         expect("the size", vorn_collections_ArrayList_size(list), 3LL);
         expect("the first element", vorn_collections_ArrayList_getInt(list, 0), 1LL);
         expect("the last element", textOf(vorn_collections_ArrayList_operator_index(list, 2)), "three");
       }},
      {"lists", "refuse what their declared type does not take, and name both",
       [] {
         void* const bytes = filled("ArrayList<Byte>", {255});
         vorn_collections_ArrayList_add(bytes, integer(256));
         expectRaised("a Byte list", "TypeError: ArrayList<Byte> cannot accept vorn.Int");
         vorn_collections_ArrayList_add(bytes, nullptr);
         expectRaised("a Byte list", "TypeError: ArrayList<Byte> cannot accept null");
         expectContents("a Byte list", bytes, {255});
         adapter().defineClass({"conformance.Point"});
         void* const points = object("ArrayList<conformance.Point>");
         vorn_collections_ArrayList_add(points, object("conformance.Point"));
         vorn_collections_ArrayList_add(points, nullptr);
         vorn_collections_ArrayList_add(points, string("text"));
         expectRaised("a list of points", "TypeError: ArrayList<Point> cannot accept vorn.String");
         expect("the size of a list of points", vorn_collections_ArrayList_size(points), 2LL);
       }},
      {"lists", "keep characters, Booleans and floating numbers what they are",
       [] {
         void* const chars = listOf("ArrayList<Char>", {box("Char", 0x1F600)});
         expectTrue("the box of a Char", Vorn_objectTypeName(vorn_collections_ArrayList_operator_index(chars, 0)) ==
                                             std::string("vorn.Char"));
         vorn_collections_ArrayList_add(chars, integer(65));
         expectRaised("a Char list", "TypeError: ArrayList<Char> cannot accept vorn.Int");
         void* const truths = listOf("ArrayList<Boolean>", {Vorn_boxBool(true)});
         expectTrue("the box of a Boolean", vorn_collections_ArrayList_operator_index(truths, 0) == Vorn_boxBool(true));
         void* const floats = listOf("ArrayList<Float>", {box("Double", 0.1)});
         expect("a Float", vorn_collections_ArrayList_getDouble(floats, 0), static_cast<double>(0.1F));
       }},
      {"lists", "are permuted by a shuffle",
       [] {
         for (const char* name : kListClasses) {
           void* const list = filled(name, numbersTo(64));
           vorn_collections_ArrayList_shuffle(list);
           Values values = numbersTo(64);
           for (long long& value : values) value = vorn_collections_ArrayList_getInt(list, value);
           expectTrue(std::string(name) + " is in another order", values != numbersTo(64));
           std::sort(values.begin(), values.end());
           expectTrue(std::string(name) + " has the same elements", values == numbersTo(64));
         }
       }},
      {"lists", "do nothing without a list but raise where the language does",
       [] {
         expect("the size of null", vorn_collections_ArrayList_size(nullptr), 0LL);
         vorn_collections_ArrayList_add(nullptr, integer(1));
         expectRaised("adding to null", "NullException: Cannot call ArrayList.add() on null");
       }},
      {"immutable lists", "are filled once, and raise when they are written to",
       [] {
         void* const list = immutableListOf({integer(1), string("b")});
         expect("the size", vorn_collections_ImmutableList_size(list), 2LL);
         expect("an element", textOf(vorn_collections_ImmutableList_operator_index(list, 1)), "b");
         expect("a search", vorn_collections_ImmutableList_indexOf(list, bare("b"), 0), 1LL);
         vorn_collections_ImmutableList_operator_index_eq(list, 0, integer(2));
         expectRaised("writing", "ReadOnlyException: ImmutableList is read-only");
       }},
      {"tuples", "are filled from a list, and raise when they are written to",
       [] {
         void* const tuple = object("Tuple");
         vorn_collections_Tuple_ctor(
             tuple, listOf("ArrayList<Int>", {integer(4), integer(5), integer(6), integer(7), integer(8)}));
         expect("the size", vorn_collections_Tuple_size(tuple), 5LL);
         expect("an item", Vorn_getField_i64(vorn_collections_Tuple_operator_index(tuple, -1), "_value"), 8LL);
         vorn_collections_Tuple_operator_index_eq(tuple, 0, integer(1));
         expectRaised("writing", "ReadOnlyException: Tuple is read-only");
       }},
  };
}

}  // namespace vorn::conformance
