// sort, sortI64Fast and sortF64Fast of unboxed and boxed lists of every storage, and sortNew.
#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "collections/core/port/values.h"
#include "tests/arraylist/library_hooks.h"
#include "tests/arraylist/sort_cases.h"
#include "tests/support/heap_statistics.h"

namespace vorn::tests {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using SortNative = void (*)(void*);
constexpr SortNative kSorts[] = {vorn_collections_ArrayList_sort, vorn_collections_ArrayList_sortI64Fast,
                                 vorn_collections_ArrayList_sortF64Fast};

// ---- Unboxed storage ------------------------------------------------------------------------------------------------

struct IntegerKind {
  const char* name;
  std::vector<long long> ascending;
};

const IntegerKind kIntegerKinds[] = {
    {"SByte", {-128, -2, -1, 0, 1, 126, 127}},
    {"Byte", {0, 1, 127, 128, 254, 255}},
    {"Short", {-32768, -129, -1, 0, 1, 255, 32767}},
    {"UShort", {0, 1, 255, 256, 32767, 32768, 65535}},
    {"CodeUnit", {0, 65, 0xD800, 0xFFFF}},
    {"Int", {INT_MIN, -65536, -1, 0, 1, 65536, INT_MAX}},
    {"UInt", {0, 1, 0x7FFFFFFF, 0x80000000LL, 0xFFFFFFFFLL}},
    {"Char", {0, 65, 0xD7FF, 0xE000, 0x10FFFF}},
    {"Long", {LLONG_MIN, -1 - (1LL << 32), -1, 0, 1, 1LL << 32, LLONG_MAX}},
    {"ULong", {0, 1, LLONG_MAX, LLONG_MIN, -1}},
};

TEST_F(Sort, EveryIntegerKind_InItsOwnOrderWithItsExtremes) {
  for (const IntegerKind& kind : kIntegerKinds) {
    for (const bool synchronised : {false, true}) {
      for (const SortNative sort : kSorts) {
        SCOPED_TRACE(kind.name);
        std::vector<long long> order = kind.ascending;
        std::sort(order.begin(), order.end());
        int permutations = 0;
        do {
          const Handle target = rawList(className(false, synchronised, kind.name), kind.name, order);
          sort(target);
          ASSERT_EQ(integersOf(target), kind.ascending);
          ASSERT_EQ(storageOf(target), kind.name);
          EXPECT_AT_REST(target);
        } while (++permutations < 25 && std::next_permutation(order.begin(), order.end()));
        std::reverse(order.begin(), order.end());
        const Handle target = rawList(className(false, synchronised, kind.name), kind.name, order);
        sort(target);
        EXPECT_EQ(integersOf(target), kind.ascending);
      }
    }
  }
}

TEST_F(Sort, ULong_PutsTwoToThe63After1) {
  const Handle target = rawList("ArrayList<ULong>", "ULong", {LLONG_MIN, 1});
  vorn_collections_ArrayList_sort(target);
  EXPECT_EQ(integersOf(target), (std::vector<long long>{1, LLONG_MIN}));
}

TEST_F(Sort, Booleans_FalseFirst) {
  for (const SortNative sort : kSorts) {
    const Handle target = list("ArrayList<Boolean>", {boolean(true), boolean(false), boolean(true), boolean(false)});
    sort(target);
    EXPECT_EQ(elementsOf(target), (Elements{"Boolean 0", "Boolean 0", "Boolean 1", "Boolean 1"}));
    EXPECT_EQ(storageOf(target), "Boolean");
  }
}

TEST_F(Sort, FloatingKinds_AscendWithNaNLast) {
  for (const char* kind : {"Float", "Double"}) {
    for (const bool synchronised : {false, true}) {
      for (const SortNative sort : kSorts) {
        SCOPED_TRACE(kind);
        const std::string type = className(false, synchronised, kind);
        const Handle target = rawDoubles(type, kind, {kNaN, 1.0, -kInfinity, kNaN, kInfinity, -2.5, 0.5});
        sort(target);
        const std::vector<double> sorted = doublesOf(target);
        ASSERT_EQ(sorted.size(), 7U);
        EXPECT_EQ(std::vector<double>(sorted.begin(), sorted.begin() + 5),
                  (std::vector<double>{-kInfinity, -2.5, 0.5, 1.0, kInfinity}));
        EXPECT_TRUE(std::isnan(sorted[5]) && std::isnan(sorted[6]));
        EXPECT_EQ(storageOf(target), kind);
        EXPECT_AT_REST(target);
      }
    }
  }
  const Handle target = rawDoubles("ArrayList<Double>", "Double", {kNaN, 1.0, -kInfinity});
  vorn_collections_ArrayList_sort(target);
  EXPECT_EQ(elementsOf(target), (Elements{"Double -inf", "Double 1", "Double nan"}));
}

TEST_F(Sort, NegativeNaN_IsLastToo) {
  const Handle target = rawDoubles("ArrayList<Double>", "Double", {std::copysign(kNaN, -1.0), 2.0, 1.0});
  vorn_collections_ArrayList_sort(target);
  const std::vector<double> sorted = doublesOf(target);
  EXPECT_EQ(sorted[0], 1.0);
  EXPECT_EQ(sorted[1], 2.0);
  EXPECT_TRUE(std::isnan(sorted[2]));
}

TEST_F(Sort, BothZeros_AreKeptBetweenTheirNeighbours) {
  const Handle target = rawDoubles("ArrayList<Double>", "Double", {1.0, 0.0, -0.0, -1.0, 0.0, -0.0});
  vorn_collections_ArrayList_sort(target);
  const std::vector<double> sorted = doublesOf(target);
  EXPECT_EQ(sorted, (std::vector<double>{-1.0, 0.0, 0.0, 0.0, 0.0, 1.0}));
  EXPECT_EQ(std::count_if(sorted.begin(), sorted.end(), [](double value) { return std::signbit(value); }), 3);
}

TEST_F(Sort, ManyUnboxedElements_AreASortedPermutation) {
  // Appending stays outside boxes, so that these are affordable on every heap.
  for (const int count : {2, 3, 31, 32, 33, 100, 257, 1000}) {
    for (const long long modulus : {3LL, 100LL, 1LL << 30}) {
      std::vector<long long> values = scrambled(count, modulus);
      const Handle longs = rawList("ArrayList<Long>", "Long", values);
      const Handle bytes = rawList("ArrayList<Byte>", "Byte", scrambled(count, 256));
      std::vector<long long> byteValues = scrambled(count, 256);
      const Handle doubles = rawDoubles("ArrayList<Double>", "Double", {values.begin(), values.end()});
      vorn_collections_ArrayList_sort(longs);
      vorn_collections_ArrayList_sort(bytes);
      vorn_collections_ArrayList_sort(doubles);
      std::sort(values.begin(), values.end());
      std::sort(byteValues.begin(), byteValues.end());
      EXPECT_EQ(integersOf(longs), values);
      EXPECT_EQ(integersOf(bytes), byteValues);
      EXPECT_EQ(doublesOf(doubles), std::vector<double>(values.begin(), values.end()));
    }
  }
}

TEST_F(Sort, ShortListsAndNull_StayAsTheyAre) {
  for (const SortNative sort : kSorts) {
    sort(nullptr);
    for (const bool linked : {false, true}) {
      for (const bool synchronised : {false, true}) {
        for (const char* element : {"Int", ""}) {
          const Handle empty = object(className(linked, synchronised, element));
          const Snapshot emptyBefore(empty);
          sort(empty);
          EXPECT_UNTOUCHED(empty, emptyBefore);
          const Handle single = intList(className(linked, synchronised, element), {1});
          const Snapshot singleBefore(single);
          sort(single);
          EXPECT_UNTOUCHED(single, singleBefore);
          const Handle hole = list(className(linked, synchronised), {nullptr});
          const Snapshot holeBefore(hole);
          sort(hole);
          EXPECT_UNTOUCHED(hole, holeBefore);
        }
      }
    }
  }
  EXPECT_NOTHING_RAISED();
}

// ---- Boxed storage --------------------------------------------------------------------------------------------------

TEST_F(Sort, MixedNumbers_ByValueKeepingTheVeryBoxes) {
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      for (const SortNative sort : kSorts) {
        const Handle three = integer("Int", 3);
        const Handle half = floating("Double", 0.5);
        const Handle two = floating("Float", 2.0);
        const Handle nan = floating("Double", kNaN);
        const Handle big = integer("Long", LLONG_MAX);
        const Handle low = floating("Double", -kInfinity);
        const Handle target = list(className(linked, synchronised) + "<Object>", {three, nan, big, half, low, two});
        sort(target);
        EXPECT_EQ(handlesOf(target), (std::vector<const void*>{low, half, two, three, big, nan}));
        EXPECT_AT_REST(target);
      }
    }
  }
}

TEST_F(Sort, BoxedLongsAndDoubles_CompareWithoutRounding) {
  const Handle wide = integer("Long", (1LL << 53) + 1);
  const Handle round = floating("Double", 0x1p53);
  const Handle target = list("ArrayList<Object>", {wide, round});
  vorn_collections_ArrayList_sort(target);
  EXPECT_EQ(handlesOf(target), (std::vector<const void*>{round, wide}));
}

TEST_F(Sort, UpTo32EqualNumbers_KeepTheirOrder) {
  for (const int count : {2, 3, 16, 31, 32}) {
    const Handle target = object("ArrayList");
    for (int i = 0; i < count; ++i) {
      vorn_collections_ArrayList_add(target, i % 3 == 0   ? floating("Double", 5.0)
                                             : i % 3 == 1 ? integer("Long", 5)
                                                          : integer("Int", 5));
    }
    const Snapshot before(target);
    vorn_collections_ArrayList_sort(target);
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(Sort, UpTo32Numbers_KeepTheOrderOfEquals) {
  const Handle target = object("ArrayList");
  const std::vector<long long> values = scrambled(32, 4);
  for (std::size_t i = 0; i < values.size(); ++i) {
    vorn_collections_ArrayList_add(target, box(i % 2 == 0 ? "Int" : "Double", values[i]));
  }
  const std::vector<const void*> before = handlesOf(target);
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < values.size(); ++i) order.push_back(i);
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
  std::vector<const void*> expected;
  for (const std::size_t i : order) expected.push_back(before[i]);
  vorn_collections_ArrayList_sort(target);
  EXPECT_EQ(handlesOf(target), expected);
  EXPECT_VALID_LIST(target);
}

TEST_F(Sort, UpTo32Numbers_AreSortedWithoutAllocation) {
  const Handle target = object("ArrayList");
  for (const long long value : scrambled(32, 10)) {
    vorn_collections_ArrayList_add(target, box(value % 2 == 0 ? "Int" : "Double", value));
  }
  vorn_heap_fail_allocation(0);
  vorn_collections_ArrayList_sort(target);
  EXPECT_EQ(vorn_heap_failure_happened(), 0);
  vorn_heap_fail_allocation(-1);
  const std::vector<double> sorted = doublesOf(target);
  EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end()));
}

TEST_F(Sort, ManyStrings_MakeNoRoomForNumbers) {
  const Handle sorted = object("ArrayList");
  for (int i = 0; i < 100; ++i) vorn_collections_ArrayList_add(sorted, string(std::to_string(1099 - i)));
  EXPECT_EQ(allocationsOf([&] { vorn_collections_ArrayList_sort(sorted); }), 1U) << "a copy of the handles";
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(std::string(vorn_string_text(vorn_collections_ArrayList_operator_index(sorted, i))),
              std::to_string(1000 + i));
  }
}

// Meanwhile some stand in the keys alone, which the collector of another thread must see.
TEST_F(Sort, Strings_AreRootedWhileTheyAreWrittenBack) {
  for (const int count : {20, 100}) {
    const Handle target = object("ArrayList");
    for (int i = 0; i < count; ++i) vorn_collections_ArrayList_add(target, string(std::to_string(1099 - i)));
    const std::vector<const void*> handles = handlesOf(target);
    std::vector<std::vector<void*>> ranges;
    rootRanges = &ranges;
    vorn_collections_ArrayList_sort(target);
    rootRanges = nullptr;
    EXPECT_TRUE(std::any_of(ranges.begin(), ranges.end(), [&](const std::vector<void*>& range) {
      return std::all_of(handles.begin(), handles.end(), [&](const void* handle) {
        return std::find(range.begin(), range.end(), handle) != range.end();
      });
    })) << count;
  }
}

TEST_F(Sort, MoreThan32Numbers_AreASortedPermutation) {
  for (const int count : {33, 34, onStressHeap() ? 48 : 2000}) {
    const Handle target = object("ArrayListSync");
    for (const long long value : scrambled(count, 50)) {
      vorn_collections_ArrayList_add(target, box(value % 2 == 0 ? "Int" : "Double", value));
    }
    std::vector<const void*> before = handlesOf(target);
    vorn_collections_ArrayList_sort(target);
    const std::vector<double> sorted = doublesOf(target);
    EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end()));
    std::vector<const void*> after = handlesOf(target);
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, before);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Sort, Strings_ByBytes) {
  const Elements sorted = {"", "Z", "a", "ab", "b", "z", "\xC3\xA9"};
  for (const bool linked : {false, true}) {
    for (const bool bare : {false, true}) {
      for (const SortNative sort : kSorts) {
        SCOPED_TRACE(bare ? "bare texts" : "strings");
        const Handle target = object(className(linked, false));
        for (const char* word : {"b", "\xC3\xA9", "z", "", "ab", "Z", "a"}) {
          vorn_collections_ArrayList_add(target, bare ? text(word) : string(word));
        }
        sort(target);
        Elements expected;
        for (const std::string& word : sorted) expected.push_back((bare ? "text " : "String ") + word);
        EXPECT_EQ(elementsOf(target), expected);
        EXPECT_AT_REST(target);
      }
    }
  }
}

// Texts that differ in, at the end of, or behind the first sixteen bytes, above 0x7F, or by a NUL alone.
TEST_F(Sort, StringsWithCommonBeginnings_ByBytesAndThenLength) {
  std::vector<std::string> words;
  for (const std::size_t common : {0, 1, 7, 8, 9, 15, 16, 17, 30}) {
    const std::string start(common, 'm');
    for (const char* end : {"", "a", "z", "\xFF", "az", "\x80y"}) words.push_back(start + end);
    words.push_back(start + std::string(1, '\0'));
    words.push_back(start + std::string("\0b", 2));
  }
  for (const bool linked : {false, true}) {
    for (const SortNative sort : kSorts) {
      for (const std::size_t count : {words.size(), std::size_t{20}}) {
        std::vector<std::string> expected(words.end() - static_cast<std::ptrdiff_t>(count), words.end());
        Handle target = object(className(linked, false, "String"));
        for (const std::string& word : expected) vorn_collections_ArrayList_add(target, string(word));
        std::sort(expected.begin(), expected.end());
        sort(target);
        for (std::size_t i = 0; i < count; ++i) {
          void* const element = vorn_collections_ArrayList_operator_index(target, static_cast<long long>(i));
          EXPECT_EQ(stringTextFromPtr(element), expected[i]) << i;
        }
        EXPECT_AT_REST(target);
      }
    }
  }
}

TEST_F(Sort, NullFirst_ThenBareTexts_ThenObjects) {
  for (const bool linked : {false, true}) {
    const Handle target =
        list(className(linked, false), {string("a"), text("z"), nullptr, string("A"), text("b"), nullptr});
    vorn_collections_ArrayList_sort(target);
    EXPECT_EQ(elementsOf(target), (Elements{"null", "null", "text b", "text z", "String A", "String a"}));
    const Handle numbers = list(className(linked, false), {integer("Int", 2), nullptr, integer("Int", 1), text("t")});
    vorn_collections_ArrayList_sort(numbers);
    EXPECT_EQ(elementsOf(numbers), (Elements{"null", "text t", "Int 1", "Int 2"}));
  }
}

TEST_F(Sort, FastFormOnTheOtherFamily_SortsAllTheSame) {
  const Handle ints = rawList("ArrayListSync<Int>", "Int", {3, 1, 2});
  vorn_collections_ArrayList_sortF64Fast(ints);
  EXPECT_EQ(integersOf(ints), (std::vector<long long>{1, 2, 3}));
  EXPECT_AT_REST(ints);
  const Handle floats = rawDoubles("ArrayListSync<Float>", "Float", {3.5, 1.5, 2.5});
  vorn_collections_ArrayList_sortI64Fast(floats);
  EXPECT_EQ(doublesOf(floats), (std::vector<double>{1.5, 2.5, 3.5}));
  EXPECT_AT_REST(floats);
}

// ---- sortNew --------------------------------------------------------------------------------------------------------

TEST_F(Sort, SortNew_IsASortedCopyOfTheReceiversClass) {
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      for (const std::string& name : primitiveNames()) {
        SCOPED_TRACE(className(linked, synchronised, name));
        const Handle target = paletteList(linked, synchronised, name);
        const Snapshot before(target);
        const Handle copy = vorn_collections_ArrayList_sortNew(target);
        ASSERT_NE(copy.get(), nullptr);
        EXPECT_NE(copy.get(), target.get());
        EXPECT_STREQ(vorn_type_name(copy), vorn_type_name(target));
        EXPECT_EQ(declaredTypeOf(copy), declaredTypeOf(target));
        EXPECT_EQ(storageOf(copy), storageOf(target));
        EXPECT_EQ(vorn_collections_ArrayList_size(copy), vorn_collections_ArrayList_size(target));
        if (!linked || (name != "Char" && name != "CodeUnit" && name != "Boolean")) {
          const std::vector<double> sorted = doublesOf(copy);
          EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end()));
        }
        EXPECT_UNTOUCHED(target, before);
        EXPECT_AT_REST(copy);
      }
    }
  }
}

TEST_F(Sort, SortNew_OfObjects_SharesTheHandles) {
  for (const bool linked : {false, true}) {
    const Handle b = string("b");
    const Handle a = string("a");
    const Handle target = list(className(linked, true), {b, nullptr, a});
    const Snapshot before(target);
    const Handle copy = vorn_collections_ArrayList_sortNew(target);
    EXPECT_EQ(handlesOf(copy), (std::vector<const void*>{nullptr, a, b}));
    EXPECT_STREQ(vorn_type_name(copy), vorn_type_name(target));
    EXPECT_UNTOUCHED(target, before);
    EXPECT_AT_REST(copy);
    const Handle empty = vorn_collections_ArrayList_sortNew(object(className(linked, true)));
    EXPECT_EQ(vorn_collections_ArrayList_size(empty), 0);
  }
}

TEST_F(Sort, SortNew_OfMixedNumbers_OrdersByValue) {
  const Handle target = list("ArrayList", {floating("Double", 2.5), integer("Int", 3), integer("Long", -1)});
  const Handle copy = vorn_collections_ArrayList_sortNew(target);
  EXPECT_EQ(elementsOf(copy), (Elements{"Long -1", "Double 2.5", "Int 3"}));
}

TEST_F(Sort, SortNew_OfNull_IsNull) {
  EXPECT_EQ(vorn_collections_ArrayList_sortNew(nullptr), nullptr);
  EXPECT_NOTHING_RAISED();
}

}  // namespace
}  // namespace vorn::tests
