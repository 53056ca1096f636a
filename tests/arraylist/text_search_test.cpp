// Searches for texts, which take Strings by a way of their own: they find what the equality of elements finds, in every
// list, array and map, and ask nobody about a String.
#include <vorn/collections/array.h>
#include <vorn/collections/map.h>

#include "collections/core/equality/element_order.h"
#include "tests/arraylist/library_hooks.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class TextSearch : public RuntimeTest {};

// An instance that is a String by its class's name alone: only its hook knows its text.
Handle userString(std::int64_t id) {
  const vorn_field_definition fields[] = {{"id", VORN_FIELD_INTEGER}};
  vorn_class_definition definition{};
  definition.name = "search.String";
  definition.fields = fields;
  definition.field_count = 1;
  definition.to_string = [](void* self, void*) -> void* {
    return vorn_text_new(std::string(static_cast<std::size_t>(idOf(self)), 'x').c_str());
  };
  defineClass(definition);
  Handle result = object("search.String");
  EXPECT_EQ(vorn_field_set_integer(result, "id", id), 1);
  return result;
}

// Texts that end before, at and behind the sixteen bytes that are compared at once, that differ in one byte there or only
// behind it, that hold a NUL, and what is no String.
std::vector<Handle> specimens() {
  std::vector<Handle> result;
  for (const std::size_t length : {0, 1, 7, 8, 9, 14, 15, 16, 17, 40}) {
    const std::string same(length, 'x');
    result.push_back(string(same));
    result.push_back(string(same + std::string("\0tail", 5)));
    if (length == 0) continue;
    std::string other = same;
    other.back() = 'y';
    result.push_back(string(other));
    result.push_back(string("y" + same.substr(1)));
  }
  for (const char* bare : {"", "xxxxxxx", "xxxxxxxxxxxxxxxxx"}) result.push_back(text(bare));
  result.insert(result.end(), {Handle(), integer("Int", 1), integer("Char", 'x'), floating("Double", 1.5), item(1),
                               userString(7), userString(17), list("ArrayList", {string("x")})});
  return result;
}

struct Expected {
  long long count = 0;
  long long first = -1;
  long long second = -1;
  long long last = -1;
};

Expected expectedOf(void* needle, const std::vector<Handle>& elements) {
  Expected expected;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (!listValuesEqual(needle, elements[i])) continue;
    const auto at = static_cast<long long>(i);
    if (++expected.count == 1) expected.first = at;
    if (expected.count == 2) expected.second = at;
    expected.last = at;
  }
  return expected;
}

TEST_F(TextSearch, EveryNeedleAndElement_AreFoundAsTheEqualityFindsThem) {
  const std::vector<Handle> elements = specimens();
  const std::vector<Handle> needles = specimens();  // equal ones, and other handles
  const Handle array = object("Array<Object>");
  vorn_collections_Array_ctor(array, static_cast<long long>(elements.size()));
  const Handle map = object("Map");
  for (std::size_t i = 0; i < elements.size(); ++i) {
    vorn_collections_Array_operator_index_eq(array, static_cast<long long>(i), elements[i]);
  }
  for (const char* type : {"ArrayList", "LinkedList", "ArrayListSync<Object>"}) {
    Handle target = list(type);
    vorn_collections_ArrayList_add(target, string("another"));
    for (const Handle& element : elements) vorn_collections_ArrayList_add(target, element);
    vorn_collections_ArrayList_removeAt(target, 0);
    for (const Handle& needle : needles) {
      SCOPED_TRACE(std::string(type) + ", " + describe(needle));
      const Expected expected = expectedOf(needle, elements);
      EXPECT_EQ(vorn_collections_ArrayList_count(target, needle), expected.count);
      EXPECT_EQ(vorn_collections_ArrayList_operator_in(target, needle), expected.count != 0);
      EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, needle, 0), expected.first);
      EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, needle, expected.first + 1),
                expected.count > 1    ? expected.second
                : expected.count == 1 ? -1
                                      : expected.first);
      EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(target, needle, -1), expected.last);
      EXPECT_EQ(vorn_collections_Array_count(array, needle), expected.count);
      EXPECT_EQ(vorn_collections_Array_operator_in(array, needle), expected.count != 0);
      EXPECT_EQ(vorn_collections_Array_indexOf(array, needle, 0), expected.first);
      EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, needle, -1), expected.last);
    }
    EXPECT_AT_REST(target);
    EXPECT_NOTHING_RAISED();
  }
  for (const Handle& element : elements) {
    vorn_collections_Map_put(map, string("key"), element);
    for (const Handle& needle : needles) {
      EXPECT_EQ(vorn_collections_Map_containsValue(map, needle), listValuesEqual(element, needle))
          << describe(element) << " and " << describe(needle);
    }
  }
}

TEST_F(TextSearch, Remove_TakesTheFirstEqualOne) {
  const std::vector<Handle> elements = specimens();
  for (const Handle& needle : {string("xxxxxxxxxxxxxxxx"), string("x"), text(""), string("none")}) {
    const Expected expected = expectedOf(needle, elements);
    Handle target = list("ArrayList<Object>");
    for (const Handle& element : elements) vorn_collections_ArrayList_add(target, element);
    EXPECT_EQ(vorn_collections_ArrayList_remove(target, needle), expected.count != 0);
    std::vector<Handle> left = elements;
    if (expected.count != 0) left.erase(left.begin() + expected.first);
    ASSERT_EQ(vorn_collections_ArrayList_size(target), static_cast<long long>(left.size()));
    for (std::size_t i = 0; i < left.size(); ++i) {
      EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, static_cast<long long>(i)), left[i].get());
    }
  }
}

// An element of a class that is named String is asked, between Strings that are not.
TEST_F(TextSearch, UserString_IsAskedOncePerSearch) {
  const Handle target = list("ArrayList", {string("a"), userString(3), string("b")});
  const Handle needle = string("xxx");
  EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, needle, 0), 1);
  EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(target, needle, -1), 1);
  EXPECT_EQ(vorn_collections_ArrayList_count(target, needle), 1);
}

// The hook of the only element that is asked takes the list, or the array, away under the search.
TEST_F(TextSearch, UserStringThatEmptiesWhatIsSearched_EndsTheSearch) {
  static void* victim = nullptr;
  const vorn_field_definition fields[] = {{"id", VORN_FIELD_INTEGER}};
  vorn_class_definition definition{};
  definition.name = "emptying.String";
  definition.fields = fields;
  definition.field_count = 1;
  definition.to_string = [](void*, void*) -> void* {
    if (vorn_is_instance(victim, "ArrayList") != 0) {
      vorn_collections_ArrayList_clear(victim);
      vorn_collections_ArrayList_addInt(victim, 1);
    } else {
      vorn_collections_Array_ctor(victim, 0);
    }
    return vorn_text_new("other");
  };
  defineClass(definition);
  const Handle needle = string("c");
  for (const bool backwards : {false, true}) {
    const Handle target = list("ArrayList", {string("a"), object("emptying.String"), string("b")});
    victim = target;
    EXPECT_EQ(backwards ? vorn_collections_ArrayList_lastIndexOf(target, needle, -1)
                        : vorn_collections_ArrayList_indexOf(target, needle, 0),
              -1);
    EXPECT_EQ(elementsOf(target), (Elements{"Int 1"}));
    const Handle array = object("Array<Object>");
    vorn_collections_Array_ctor(array, 3);
    vorn_collections_Array_operator_index_eq(array, 1, object("emptying.String"));
    victim = array;
    EXPECT_EQ(backwards ? vorn_collections_Array_lastIndexOf(array, needle, -1)
                        : vorn_collections_Array_indexOf(array, needle, 0),
              -1);
    EXPECT_EQ(vorn_collections_Array_size(array), 0);
  }
  victim = nullptr;
}

TEST_F(TextSearch, StringsAndNulls_AreComparedWithoutACall) {
  Handle target = list("ArrayList<String>");
  const Handle array = object("Array<String>");
  vorn_collections_Array_ctor(array, 100);
  const Handle nulls = object("Array<String>");
  vorn_collections_Array_ctor(nulls, 100);
  const Handle map = object("Map");
  for (int i = 0; i < 100; ++i) {
    const Handle element = string("element " + std::to_string(i));
    vorn_collections_ArrayList_add(target, element);
    vorn_collections_Array_operator_index_eq(array, i, element);
    vorn_collections_Map_put(map, element, element);
  }
  for (const Handle& needle : {string("absent"), string("an element whose name is long"), text("absent")}) {
    textQuestions = 0;
    std::vector<RootSlot> roots;
    rootSlots = &roots;
    EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, needle, 0), -1);
    EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(target, needle, -1), -1);
    EXPECT_EQ(vorn_collections_ArrayList_count(target, needle), 0);
    EXPECT_FALSE(vorn_collections_ArrayList_operator_in(target, needle));
    EXPECT_FALSE(vorn_collections_ArrayList_remove(target, needle));
    for (const Handle& slots : {array, nulls}) {
      EXPECT_EQ(vorn_collections_Array_indexOf(slots, needle, 0), -1);
      EXPECT_EQ(vorn_collections_Array_lastIndexOf(slots, needle, -1), -1);
      EXPECT_EQ(vorn_collections_Array_count(slots, needle), 0);
    }
    EXPECT_FALSE(vorn_collections_Map_containsValue(map, needle));
    rootSlots = nullptr;
    EXPECT_EQ(textQuestions, 0U) << describe(needle);
    EXPECT_LE(roots.size(), 9U) << describe(needle);
  }
}

}  // namespace
}  // namespace vorn::tests
