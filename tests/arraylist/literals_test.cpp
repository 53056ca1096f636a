// List literals of boxed values, and all literals when memory runs out.
#include <climits>
#include <cmath>
#include <deque>
#include <new>
#include <utility>

#include "collections/arraylist/creation.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/literal_cases.h"

namespace vorn::tests {
namespace {

using Kind = ListData::PrimitiveKind;

// Calls the variable-argument literals with exactly as many arguments as there are values.
template <class... Arguments>
void* literalOf(bool synchronised, Arguments... arguments) {
  const auto count = static_cast<long long>(sizeof...(arguments));
  return synchronised ? vorn_collections_ArrayListSync_literal(count, arguments...)
                      : vorn_collections_ArrayList_literal(count, arguments...);
}

template <std::size_t kCount>
Handle variableLiteral(bool synchronised, const Values& values) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) { return literalOf(synchronised, values[I].get()...); }
  (std::make_index_sequence<kCount>{});
}

// The same values through the form with a fixed count where there is one, through the variable-argument forms, and
// through the function behind them.
std::vector<Handle> everyLiteralOf(const Values& values) {
  std::vector<Handle> made;
  const auto at = [&values](std::size_t i) { return values[i].get(); };
  switch (values.size()) {
    case 1:
      made.emplace_back(vorn_collections_ArrayList_literal1(at(0)));
      made.push_back(variableLiteral<1>(false, values));
      made.push_back(variableLiteral<1>(true, values));
      break;
    case 2:
      made.push_back(variableLiteral<2>(false, values));
      made.push_back(variableLiteral<2>(true, values));
      break;
    case 5:
      made.emplace_back(vorn_collections_ArrayList_literal5(at(0), at(1), at(2), at(3), at(4)));
      made.push_back(variableLiteral<5>(false, values));
      made.push_back(variableLiteral<5>(true, values));
      break;
    case 10:
      made.emplace_back(
          vorn_collections_ArrayList_literal10(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8), at(9)));
      made.push_back(variableLiteral<10>(false, values));
      made.push_back(variableLiteral<10>(true, values));
      break;
    case 64:
      made.push_back(variableLiteral<64>(false, values));
      made.push_back(variableLiteral<64>(true, values));
      break;
    case 65:
      made.push_back(variableLiteral<65>(false, values));
      made.push_back(variableLiteral<65>(true, values));
      break;
    case 200:
      made.push_back(variableLiteral<200>(false, values));
      made.push_back(variableLiteral<200>(true, values));
      break;
    default:
      ADD_FAILURE() << "no literal of " << values.size() << " values";
  }
  std::vector<void*> handles;
  for (const Handle& value : values) handles.push_back(value);
  for (const bool synchronised : {false, true}) {
    made.emplace_back(createArrayListLiteralFromValues(synchronised, handles.data(), handles.size()));
  }
  return made;
}

constexpr std::size_t kFixedCounts[] = {1, 2, 5, 10, 64, 65, 200};

void expectEveryLiteralHolds(const Values& values) {
  for (const Handle& made : everyLiteralOf(values)) expectHolds(made, values);
}

// ---- Boxed literals -------------------------------------------------------------------------------------------------

TEST_F(Literals, Empty_IsAnUntypedListInObjectStorage) {
  const std::vector<std::pair<Handle, bool>> made = {{vorn_collections_ArrayList_literal0(), false},
                                                     {vorn_collections_ArrayListSync_literal0(), true},
                                                     {vorn_collections_ArrayList_literal(0LL), false},
                                                     {vorn_collections_ArrayListSync_literal(0LL), true},
                                                     {vorn_collections_ArrayList_literal(-1LL), false},
                                                     {vorn_collections_ArrayListSync_literal(LLONG_MIN), true},
                                                     {createArrayListLiteralFromValues(false, nullptr, 0), false},
                                                     {createArrayListLiteralFromValues(true, nullptr, 0), true}};
  for (const auto& [target, synchronised] : made) {
    expectClass(target, synchronised);
    expectHolds(target, {});
    vorn_collections_ArrayList_add(target, string("x"));
    vorn_collections_ArrayList_add(target, integer("Int", 1));
    EXPECT_EQ(elementsOf(target), (Elements{"String x", "Int 1"}));
  }
}

TEST_F(Literals, NegativeCount_IgnoresTheArguments) {
  const Handle one = integer("Int", 1);
  const Handle plain = vorn_collections_ArrayList_literal(-2LL, one.get(), one.get());
  expectHolds(plain, {});
  const Handle synchronised = vorn_collections_ArrayListSync_literal(-2LL, one.get(), one.get());
  expectHolds(synchronised, {});
}

TEST_F(Literals, Classes_ArePlainAndSynchronised) {
  const Handle one = integer("Int", 1);
  void* const h = one;
  const Handle first = vorn_collections_ArrayList_literal1(h);
  expectClass(first, false);
  const Handle fifth = vorn_collections_ArrayList_literal5(h, h, h, h, h);
  expectClass(fifth, false);
  const Handle tenth = vorn_collections_ArrayList_literal10(h, h, h, h, h, h, h, h, h, h);
  expectClass(tenth, false);
  const Handle plain = vorn_collections_ArrayList_literal(1LL, h);
  expectClass(plain, false);
  const Handle synchronised = vorn_collections_ArrayListSync_literal(1LL, h);
  expectClass(synchronised, true);
}

TEST_F(Literals, ValuesOfOnePrimitiveType_AreUnboxedInOrder) {
  for (const std::string& type : primitiveNames()) {
    const Palette palette = paletteOf(type);
    for (const std::size_t count : {1, 2, 5, 10}) {
      SCOPED_TRACE(type + " " + std::to_string(count));
      Values values;
      Elements expected;
      for (std::size_t i = 0; i < count; ++i) {
        values.push_back(palette[i % palette.size()].value);
        expected.push_back(describe(values.back()));
      }
      for (const Handle& made : everyLiteralOf(values)) {
        expectUnboxed(made, type, count);
        EXPECT_EQ(elementsOf(made), expected);
      }
    }
  }
}

TEST_F(Literals, ManyValues_AreUnboxedInOrder) {
  for (const std::size_t count : {64, 65, 200}) {
    Values values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(integer("Int", static_cast<long long>(i) - 7));
    for (const Handle& made : everyLiteralOf(values)) {
      expectUnboxed(made, "Int", count);
      for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(vorn_collections_ArrayList_getInt(made, static_cast<long long>(i)), static_cast<long long>(i) - 7);
      }
      EXPECT_EQ(getListData(made)->primitive.capacity, count == 200 ? 256U : count == 65 ? 128U : 64U);
    }
  }
}

TEST_F(Literals, ManyFloatingValues_AreUnboxedInOrder) {
  for (const std::size_t count : {64, 65, 200}) {
    Values values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(floating("Double", static_cast<double>(i) + 0.25));
    for (const Handle& made : everyLiteralOf(values)) {
      expectUnboxed(made, "Double", count);
      for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(vorn_collections_ArrayList_getDouble(made, static_cast<long long>(i)), static_cast<double>(i) + 0.25);
      }
    }
  }
}

TEST_F(Literals, ManyObjects_AreKeptAsHandlesInOrder) {
  for (const std::size_t count : kFixedCounts) {
    Values values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(string(std::to_string(i)));
    expectEveryLiteralHolds(values);
  }
}

TEST_F(Literals, ObjectCapacity_DoublesFromFour) {
  const std::vector<std::pair<std::size_t, std::uint64_t>> cases = {{1, 4},   {2, 4},    {5, 8},    {10, 16},
                                                                    {64, 64}, {65, 128}, {200, 256}};
  const Handle word = string("x");
  for (const auto& [count, capacity] : cases) {
    for (const Handle& made : everyLiteralOf(Values(count, word))) {
      EXPECT_EQ(getListData(made)->objects.capacity, capacity) << count;
    }
  }
}

TEST_F(Literals, ValuesOfTwoKinds_AreKeptAsHandles) {
  expectEveryLiteralHolds({integer("Int", 1), floating("Double", 2.5)});
  expectEveryLiteralHolds({floating("Double", 2.5), integer("Int", 1)});
  expectEveryLiteralHolds({integer("Int", 1), integer("Long", 2)});
  expectEveryLiteralHolds({floating("Float", 1.0), floating("Double", 2.0)});
  expectEveryLiteralHolds({boolean(true), integer("Int", 1)});
  expectEveryLiteralHolds({integer("SByte", 1), integer("Byte", 1)});
}

TEST_F(Literals, ValuesOfOneKindUnderTwoNames_AreKeptAsHandles) {
  expectEveryLiteralHolds({integer("Char", 'a'), integer("UInt", 'a')});
  expectEveryLiteralHolds({integer("UInt", 'a'), integer("Char", 'a')});
  expectEveryLiteralHolds({integer("UShort", 1), integer("CodeUnit", 1)});
  expectEveryLiteralHolds({integer("CodeUnit", 1), integer("UShort", 1)});
}

TEST_F(Literals, OneValueThatIsNotPrimitive_KeepsAllAsHandles) {
  const Handle one = integer("Int", 1);
  const Handle half = floating("Double", 0.5);
  for (const Handle& other :
       {Handle(nullptr), string("x"), text("y"), item(1), list("ArrayList", {one}), object("ImmutableList")}) {
    SCOPED_TRACE(describe(other));
    for (const std::size_t position : {0, 2, 4}) {
      Values integers(5, one);
      integers[position] = other;
      expectEveryLiteralHolds(integers);
      Values doubles(5, half);
      doubles[position] = other;
      expectEveryLiteralHolds(doubles);
    }
    expectEveryLiteralHolds(Values(1, other));
  }
}

TEST_F(Literals, LateMismatch_KeepsAllAsHandles) {
  for (const std::size_t count : {64, 65, 200}) {
    Values values(count, integer("Int", 3));
    values.back() = integer("Long", 3);
    expectEveryLiteralHolds(values);
  }
}

TEST_F(Literals, ObjectLiterals_TakeEverythingLater) {
  const Handle target = variableLiteral<2>(false, {integer("Int", 1), floating("Double", 2.5)});
  vorn_collections_ArrayList_add(target, string("x"));
  vorn_collections_ArrayList_add(target, nullptr);
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Double 2.5", "String x", "null"}));
}

TEST_F(Literals, UnboxedLiterals_RefuseWhatTheirTypeRefuses) {
  const Handle target = variableLiteral<2>(true, {integer("Int", 1), integer("Int", 2)});
  vorn_collections_ArrayList_add(target, string("x"));
  EXPECT_RAISED(listTypeError("Int", "vorn.String"));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2"}));
}

TEST_F(Literals, BoxesWiderThanTheirType_KeepTheLowBits) {
  for (const Handle& made : everyLiteralOf({integer("Byte", 300), integer("Byte", -1)})) {
    expectUnboxed(made, "Byte", 2);
    EXPECT_EQ(elementsOf(made), (Elements{"Byte 44", "Byte 255"}));
  }
}

TEST_F(Literals, FloatValues_AreKeptAtTheirWidth) {
  for (const Handle& made : everyLiteralOf({floating("Float", 0.1), floating("Float", -0.0)})) {
    expectUnboxed(made, "Float", 2);
    EXPECT_EQ(vorn_collections_ArrayList_getDouble(made, 0), static_cast<double>(0.1F));
    EXPECT_TRUE(std::signbit(vorn_collections_ArrayList_getDouble(made, 1)));
  }
}

TEST_F(Literals, CharacterOutOfRange_IsRefused) {
  const auto expectRefused = [](const char* type, long long value, const char* error) {
    const Handle made = vorn_collections_ArrayList_literal(2LL, integer(type, 'a').get(), integer(type, value).get());
    EXPECT_RAISED(error);
    if (made.get() != nullptr) {
      EXPECT_EQ(vorn_collections_ArrayList_size(made), 0);
      EXPECT_AT_REST(made);
    }
  };
  expectRefused("Char", 0xD800, kCharError);
  expectRefused("Char", 0x110000, kCharError);
  expectRefused("CodeUnit", 0x10000, kCodeUnitError);
}

// The literal itself keeps its values alive: the caller's roots are gone when it allocates the list.
TEST_F(Literals, ValuesWithoutARoot_Survive) {
  for (const bool synchronised : {false, true}) {
    void* raw[10] = {};
    {
      Values roots;
      for (int i = 0; i < 10; ++i) roots.push_back(string("value " + std::to_string(i)));
      for (int i = 0; i < 10; ++i) raw[i] = roots[static_cast<std::size_t>(i)];
    }
    const Handle made = createArrayListLiteralFromValues(synchronised, raw, 10);
    vorn_heap_collect();
    for (int i = 0; i < 10; ++i) {
      const Handle element = vorn_collections_ArrayList_operator_index(made, i);
      EXPECT_EQ(describe(element), "String value " + std::to_string(i));
    }
  }
  const Handle first = vorn_collections_ArrayList_literal1(vorn_string_new("first", 5));
  EXPECT_EQ(elementsOf(first), (Elements{"String first"}));
  const Handle variable = vorn_collections_ArrayList_literal(1LL, vorn_string_new("second", 6));
  EXPECT_EQ(elementsOf(variable), (Elements{"String second"}));
  const Handle synchronised = vorn_collections_ArrayListSync_literal(1LL, vorn_box_integer("Long", 1LL << 40));
  EXPECT_EQ(elementsOf(synchronised), (Elements{"Long 1099511627776"}));
}

// ---- Memory exhaustion ----------------------------------------------------------------------------------------------

// Fails each allocation of a literal in turn: null or std::bad_alloc, and a whole list once none fails.
template <class Create>
void sweepFailures(const Create& create, int leastFailures, const std::vector<std::string>& expected) {
  for (int failures = 0; failures < 50; ++failures) {
    SCOPED_TRACE("failing allocation " + std::to_string(failures));
    bool thrown = false;
    Handle made;
    vorn_heap_fail_allocation(failures);
    try {
      made = create();
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    const bool happened = vorn_heap_failure_happened() != 0;
    vorn_heap_fail_allocation(-1);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(thrown || made.get() == nullptr, happened);
    if (!happened) {
      EXPECT_GE(failures, leastFailures);
      ASSERT_NE(made.get(), nullptr);
      EXPECT_AT_REST(made);
      EXPECT_EQ(elementsOf(made), expected);
      return;
    }
  }
  ADD_FAILURE() << "the literal never succeeded";
}

TEST_F(Literals, MemoryExhaustion_GivesNoList) {
  const Handle one = integer("Int", 1);
  const Handle word = string("x");
  sweepFailures([] { return vorn_collections_ArrayList_literal0(); }, 1, {});
  sweepFailures([] { return vorn_collections_ArrayListSync_literal0(); }, 1, {});
  sweepFailures([] { return vorn_collections_ArrayListSync_intLiteral0(); }, 1, {});
  sweepFailures([] { return vorn_collections_ArrayListSync_primitiveLiteral0("Double"); }, 1, {});
  sweepFailures([] { return vorn_collections_ArrayList_intLiteral1(5); }, 1, {"Int 5"});
  sweepFailures([&] { return vorn_collections_ArrayList_literal1(one); }, 1, {"Int 1"});
  sweepFailures([&] { return vorn_collections_ArrayListSync_literal(1LL, word.get()); }, 1, {"String x"});
  sweepFailures([&] { return vorn_collections_ArrayList_literal5(word, one, word, one, nullptr); }, 2,
                {"String x", "Int 1", "String x", "Int 1", "null"});
  std::vector<void*> integers(40, one.get());
  std::vector<void*> words(70, word.get());
  const std::vector<long long> raw(40, 1);
  for (const bool synchronised : {false, true}) {
    sweepFailures([&] { return createArrayListLiteralFromValues(synchronised, integers.data(), integers.size()); }, 2,
                  Elements(40, "Int 1"));
    sweepFailures([&] { return createArrayListLiteralFromValues(synchronised, words.data(), words.size()); }, 2,
                  Elements(70, "String x"));
  }
  sweepFailures([&] { return createArrayListLiteralFromIntValues(raw.data(), raw.size()); }, 2, Elements(40, "Int 1"));
}

}  // namespace
}  // namespace vorn::tests
