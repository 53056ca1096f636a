// Loops over lent elements, as docs/inline.md shows them, and that no elements are lent which a loop must not touch.
#include "tests/inline/inline_cases.h"

namespace vorn::tests {
namespace {

class Loops : public RuntimeTest {};

// The recipe: lent elements for as long as they last, single ones for the rest, whatever `body` does to the list.
long long sumOf(void* list, const std::function<void(long long index)>& body) {
  long long sum = 0;
  long long i = 0;
  vorn_span span;
  while (vorn_inline_ArrayList_span(list, VORN_INT, &span) && i < span.size) {
    const auto* const elements = static_cast<const std::int32_t*>(span.data);
    const bool calls = body != nullptr;
    do {
      sum += elements[i];
      if (calls) body(i);
      ++i;
    } while (!calls && i < span.size);
  }
  for (; i < vorn_inline_ArrayList_size(list); ++i) {
    sum += vorn_inline_ArrayList_getInt(list, i, VORN_INT);
    if (body != nullptr) body(i);
  }
  return sum;
}

Handle intsUpTo(const std::string& type, long long count) {
  Handle list = object(type);
  for (long long i = 1; i <= count; ++i) vorn_collections_ArrayList_add(list, integer("Int", i));
  return list;
}

TEST_F(Loops, Recipe_AnyListOfInts_SeesAllElements) {
  for (const char* const type : {"ArrayList<Int>", "ArrayList", "ArrayListSync<Int>", "LinkedList", "LinkedListSync"}) {
    for (const long long count : {0, 1, 32, 33, 1000}) {
      const Handle list = intsUpTo(type, count);
      EXPECT_EQ(sumOf(list, nullptr), count * (count + 1) / 2) << type;
    }
  }
  EXPECT_EQ(sumOf(nullptr, nullptr), 0);
}

TEST_F(Loops, Recipe_ListGrowsMeanwhile_SeesNewElements) {
  const Handle list = intsUpTo("ArrayList<Int>", 30);
  const long long sum = sumOf(list, [&](long long i) {
    if (i < 20) vorn_collections_ArrayList_addInt(list, 1);
  });
  EXPECT_EQ(sum, 30 * 31 / 2 + 20);
}

TEST_F(Loops, Recipe_ListTurnsToBoxesMeanwhile_GoesOnWithThem) {
  const Handle list = intsUpTo("ArrayList", 30);
  const Handle none = integer("Long", 5);
  const long long sum = sumOf(list, [&](long long i) {
    if (i == 10) vorn_collections_ArrayList_add(list, none);
  });
  EXPECT_EQ(sum, 30 * 31 / 2 + 5);
}

TEST_F(Loops, Recipe_ListIsClearedMeanwhile_Ends) {
  const Handle list = intsUpTo("ArrayList<Int>", 30);
  const long long sum = sumOf(list, [&](long long i) {
    if (i == 4) vorn_collections_ArrayList_clear(list);
  });
  EXPECT_EQ(sum, 15);
}

TEST_F(Loops, Span_WritesOfTheType_AreElements) {
  const Handle list = intsUpTo("ArrayList<Int>", 40);
  vorn_span span;
  ASSERT_TRUE(vorn_inline_ArrayList_span(list, VORN_INT, &span));
  ASSERT_EQ(span.size, 40);
  for (long long i = 0; i < span.size; ++i) static_cast<std::int32_t*>(span.data)[i] = static_cast<std::int32_t>(-i);
  for (long long i = 0; i < 40; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(list, i), -i);
  EXPECT_VALID_LIST(list);
}

// Of every list and array exactly the spans of its own type are lent.
TEST_F(Loops, Spans_AnyListAndType_AreLentForItsOwnAlone) {
  std::vector<std::string> elements = primitiveNames();
  elements.emplace_back("app.Item");
  for (const std::string& element : elements) {
    for (const bool synchronised : {false, true}) {
      const Handle list = paletteList(false, synchronised, element);
      const Handle linked = paletteList(true, synchronised, element);
      const Handle array = object((synchronised ? "ArraySync<" : "Array<") + element + ">");
      vorn_collections_Array_ctor(array, 3);
      const bool handles = element == "app.Item";
      vorn_span span{&span, 77};
      EXPECT_EQ(vorn_inline_ArrayList_span(list, VORN_HANDLES, &span), handles && !synchronised) << element;
      EXPECT_EQ(vorn_inline_Array_span(array, VORN_HANDLES, &span), handles && !synchronised) << element;
      for (const vorn_element_type type : kTypes) {
        const bool own = !synchronised && element == nameOf(type);
        EXPECT_EQ(vorn_inline_ArrayList_span(list, type, &span), own) << element << " as " << nameOf(type);
        EXPECT_EQ(span.size, own ? vorn_collections_ArrayList_size(list) : 0);
        EXPECT_EQ(span.data != nullptr, own);
        EXPECT_FALSE(vorn_inline_ArrayList_span(linked, type, &span));
        EXPECT_EQ(vorn_inline_Array_span(array, type, &span), own) << element << " as " << nameOf(type);
        EXPECT_EQ(span.size, own ? 3 : 0);
      }
    }
  }
}

TEST_F(Loops, Span_ListThatDeclaresAnotherTypeThanItKeeps_IsNotLent) {
  vorn_span span;
  EXPECT_FALSE(vorn_inline_ArrayList_span(rawList("ArrayList<Byte>", "Int", {300}), VORN_INT, &span));
  EXPECT_FALSE(vorn_inline_ArrayList_span(rawList("ArrayList", "Foo", {300}), VORN_LONG, &span));
}

TEST_F(Loops, Span_OtherHandles_AreNotLent) {
  vorn_span span{&span, 1};
  const Handle map = object("Map");
  for (void* const handle :
       {static_cast<void*>(nullptr), map.get(), text("ArrayList").get(), integer("Int", 1).get()}) {
    EXPECT_FALSE(vorn_inline_ArrayList_span(handle, VORN_INT, &span));
    EXPECT_FALSE(vorn_inline_Array_span(handle, VORN_INT, &span));
    EXPECT_EQ(span.size, 0);
  }
}

}  // namespace
}  // namespace vorn::tests
