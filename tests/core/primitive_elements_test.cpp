// Reading and storing single elements of primitive storage.
#include "collections/core/elements/primitive_elements.h"

#include <cmath>

#include "collections/core/elements/storage_transitions.h"
#include "collections/core/number_rules.h"
#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"
#include "tests/support/error_texts.h"

namespace vorn::tests {
namespace {

using Integers = std::vector<long long>;

class PrimitiveElements : public RuntimeTest {};

// The three stores, so that what they share is tested on each.
enum class Store { Write, Append, Insert };
constexpr Store kStores[] = {Store::Write, Store::Append, Store::Insert};

// Stores into a list that already holds one element: over it, behind it, or before it.
void store(Store how, ListData& list, long long integer, double floating) {
  switch (how) {
    case Store::Write:
      return primitiveListWrite(list, 0, integer, floating);
    case Store::Append:
      return primitiveListAppend(list, integer, floating);
    case Store::Insert:
      return primitiveListInsertAt(list, 0, integer, floating);
  }
}

std::uint64_t storedAt(Store how) { return how == Store::Append ? 1 : 0; }

// What an integer kind keeps of a value, written out without the library's types: low bits, then sign or zero.
long long kept(const NamedKind& row, long long value) {
  switch (row.value) {
    case 1:
      return ((value & 0xFF) ^ 0x80) - 0x80;
    case 2:
      return value & 0xFF;
    case 3:
      return ((value & 0xFFFF) ^ 0x8000) - 0x8000;
    case 4:
      return value & 0xFFFF;
    case 5:
      return ((value & 0xFFFFFFFF) ^ 0x80000000LL) - 0x80000000LL;
    case 6:
      return value & 0xFFFFFFFF;
    default:
      return value;
  }
}

constexpr long long kInteresting[] = {
    0,     1,          -1,          127,         128,        -128,       -129,     255,        256,      300,
    32767, 32768,      -32768,      -32769,      65535,      65536,      70000,    2147483647, 0xD7FF,   0xE000,
    -2,    2147483648, -2147483648, -2147483649, 4294967295, 4294967296, 0x10FFFF, kMaxLong,   kMinLong, kMinLong + 1};

// Whether the checks of the character names let a value through.
bool refused(const NamedKind& row, long long value) {
  const auto bits = static_cast<unsigned long long>(value);
  if (row.is("CodeUnit")) return bits > 0xFFFF;
  if (row.is("Char")) return bits > 0x10FFFF || (bits >= 0xD800 && bits <= 0xDFFF);
  return false;
}

TEST_F(PrimitiveElements, IntegerKindsKeepTheLowBitsOfEveryStore) {
  for (const NamedKind& row : kNamedKinds) {
    if (!row.isInteger()) continue;
    for (const Store how : kStores) {
      for (const long long value : kInteresting) {
        if (refused(row, value)) continue;
        Handle list = primitiveList(row.name, {1});
        store(how, record(list), value, 0.5);
        EXPECT_EQ(primitiveListReadI64(record(list), storedAt(how)), kept(row, value)) << row.name << ' ' << value;
        EXPECT_EQ(primitiveListReadF64(record(list), storedAt(how)), static_cast<double>(kept(row, value)))
            << row.name << ' ' << value;
      }
    }
  }
}

TEST_F(PrimitiveElements, NarrowingExamples) {
  Handle bytes = primitiveList("Byte", {300});
  EXPECT_EQ(primitiveListReadI64(record(bytes), 0), 44);
  Handle unsignedInts = primitiveList("UInt", {-1});
  EXPECT_EQ(primitiveListReadI64(record(unsignedInts), 0), 4294967295LL);
  Handle shorts = primitiveList("Short", {65535});
  EXPECT_EQ(primitiveListReadI64(record(shorts), 0), -1);
}

TEST_F(PrimitiveElements, ElementsLieInNativeByteOrderAtTheirWidth) {
  Handle bytes = primitiveList("SByte", {-2, 5});
  EXPECT_EQ(elementAt<std::int8_t>(record(bytes), 0), -2);
  EXPECT_EQ(elementAt<std::int8_t>(record(bytes), 1), 5);
  Handle shorts = primitiveList("UShort", {1, 65534});
  EXPECT_EQ(elementAt<std::uint16_t>(record(shorts), 1), 65534);
  Handle ints = primitiveList("Int", {1, -70000});
  EXPECT_EQ(elementAt<std::int32_t>(record(ints), 1), -70000);
  Handle characters = primitiveList("Char", {1, 0x1F600});
  EXPECT_EQ(elementAt<std::uint32_t>(record(characters), 1), 0x1F600u);
  Handle longs = primitiveList("Long", {1, kMinLong});
  EXPECT_EQ(elementAt<std::int64_t>(record(longs), 1), kMinLong);
  Handle floats = primitiveList("Float", {1, 3});
  EXPECT_EQ(elementAt<float>(record(floats), 1), 3.0F);
  Handle doubles = primitiveList("Double", {1, 3});
  EXPECT_EQ(elementAt<double>(record(doubles), 1), 3.0);
  Handle booleans = primitiveList("Boolean", {0, 5});
  EXPECT_EQ(elementAt<std::uint8_t>(record(booleans), 1), 1);
}

TEST_F(PrimitiveElements, ULongAboveTheSignedRangeReadsAsStored) {
  Handle list = primitiveList("ULong");
  primitiveListAppend(record(list), kMinLong, 0);  // the bits of 2^63
  primitiveListAppend(record(list), -1, 0);
  EXPECT_EQ(elementAt<std::uint64_t>(record(list), 0), std::uint64_t{1} << 63);
  EXPECT_EQ(primitiveListReadI64(record(list), 0), kMinLong);
  EXPECT_EQ(primitiveListReadI64(record(list), 1), -1);
  EXPECT_EQ(primitiveListReadF64(record(list), 0), -9223372036854775808.0);
  EXPECT_EQ(primitiveListReadF64(record(list), 1), -1.0);
}

TEST_F(PrimitiveElements, DoubleStoresTheDoubleAndIgnoresTheInteger) {
  for (const Store how : kStores) {
    for (const double value : {0.0, 1.5, -1e300, 5e-324, kInfinity, -kInfinity, 0.1}) {
      Handle list = primitiveList("Double", {1});
      store(how, record(list), 77, value);
      EXPECT_EQ(primitiveListReadF64(record(list), storedAt(how)), value);
      EXPECT_EQ(elementAt<double>(record(list), storedAt(how)), value);
    }
  }
}

TEST_F(PrimitiveElements, FloatNarrowsToSingleAndWidensOnReading) {
  for (const Store how : kStores) {
    for (const double value : {0.0, 1.5, 0.1, -3.4e38, 1e-45, 16777217.0, kInfinity, 1e300}) {
      Handle list = primitiveList("Float", {1});
      store(how, record(list), 77, value);
      EXPECT_EQ(primitiveListReadF64(record(list), storedAt(how)), static_cast<double>(static_cast<float>(value)));
      EXPECT_EQ(elementAt<float>(record(list), storedAt(how)), static_cast<float>(value));
    }
  }
}

TEST_F(PrimitiveElements, SpecialDoublesSurvive) {
  for (const char* name : {"Float", "Double"}) {
    Handle list = primitiveList(name);
    primitiveListAppend(record(list), 0, kNaN);
    primitiveListAppend(record(list), 0, -0.0);
    EXPECT_TRUE(std::isnan(primitiveListReadF64(record(list), 0)));
    EXPECT_TRUE(std::signbit(primitiveListReadF64(record(list), 1)));
    EXPECT_EQ(primitiveListReadI64(record(list), 1), 0);
  }
}

TEST_F(PrimitiveElements, IntegerReadingOfFloatingKindsTruncatesTowardZero) {
  const std::pair<double, long long> rows[] = {{1.5, 1},   {-1.5, -1}, {0.99, 0},
                                               {-0.99, 0}, {2.0, 2},   {1048577.5, 1048577}};
  for (const char* name : {"Float", "Double"}) {
    Handle list = primitiveList(name);
    for (const auto& [value, expected] : rows) {
      clearListStorage(record(list));
      makePrimitive(record(list), name);
      primitiveListAppend(record(list), 0, value);
      EXPECT_EQ(primitiveListReadI64(record(list), 0), expected) << name << ' ' << value;
    }
  }
}

TEST_F(PrimitiveElements, IntegerReadingOutsideTheSignedRangeIsTheMinimum) {
  for (const char* name : {"Float", "Double"}) {
    Handle list = primitiveList(name);
    for (const double value :
         {9223372036854775808.0, 1e30, -1e30, kInfinity, -kInfinity, kNaN, -9223372036854775808.0}) {
      primitiveListAppend(record(list), 0, value);
      EXPECT_EQ(primitiveListReadI64(record(list), record(list).primitive.size - 1), kMinLong) << name << ' ' << value;
    }
  }
}

TEST_F(PrimitiveElements, TruncationAtTheEdgesOfTheSignedRange) {
  using collections::truncateToI64;
  EXPECT_EQ(truncateToI64(9223372036854774784.0), 9223372036854774784LL);
  EXPECT_EQ(truncateToI64(-9223372036854774784.0), -9223372036854774784LL);
  EXPECT_EQ(truncateToI64(9223372036854775808.0), kMinLong);
  EXPECT_EQ(truncateToI64(-9223372036854775808.0), kMinLong);
  EXPECT_EQ(truncateToI64(-9223372036854777856.0), kMinLong);
  EXPECT_EQ(truncateToI64(kNaN), kMinLong);
  EXPECT_EQ(truncateToI64(-kNaN), kMinLong);
  EXPECT_EQ(truncateToI64(kInfinity), kMinLong);
  EXPECT_EQ(truncateToI64(-kInfinity), kMinLong);
  EXPECT_EQ(truncateToI64(-0.0), 0);
  EXPECT_EQ(truncateToI64(5e-324), 0);
  EXPECT_EQ(truncateToI64(2251799813685249.5), 2251799813685249LL);
  EXPECT_EQ(truncateToI64(-2251799813685249.5), -2251799813685249LL);
}

TEST_F(PrimitiveElements, BooleanStoresOneOrZero) {
  for (const Store how : kStores) {
    for (const long long value : {0LL, 1LL, 2LL, 256LL, -1LL, kMinLong}) {
      Handle list = primitiveList("Boolean", {0});
      store(how, record(list), value, 0.0);
      EXPECT_EQ(elementAt<std::uint8_t>(record(list), storedAt(how)), value != 0 ? 1 : 0) << value;
      EXPECT_EQ(primitiveListReadI64(record(list), storedAt(how)), value != 0 ? 1 : 0);
      EXPECT_EQ(primitiveListReadF64(record(list), storedAt(how)), value != 0 ? 1.0 : 0.0);
    }
  }
}

TEST_F(PrimitiveElements, AnyNonZeroByteReadsAsTrue) {
  Handle list = primitiveList("Boolean", {1});
  for (const int byte : {1, 2, 128, 255}) {
    record(list).primitive.data[0] = static_cast<unsigned char>(byte);
    EXPECT_EQ(primitiveListReadI64(record(list), 0), 1);
    EXPECT_EQ(primitiveListReadF64(record(list), 0), 1.0);
  }
}

TEST_F(PrimitiveElements, ReadingWithoutAKnownKindGivesZero) {
  Handle list = primitiveList("Byte", {9});
  for (const int kind : {0, 12, 255}) {
    record(list).primitiveKind = kindNumbered(kind);
    EXPECT_EQ(primitiveListReadI64(record(list), 0), 0) << kind;
    EXPECT_EQ(primitiveListReadF64(record(list), 0), 0.0) << kind;
  }
  record(list).primitiveKind = Kind::Byte;
}

TEST_F(PrimitiveElements, CodeUnitsOutOfRangeAreRefusedAndNothingIsStored) {
  for (const Store how : kStores) {
    Handle list = primitiveList("CodeUnit", {65});
    const RecordSnapshot before(record(list));
    for (const long long value : {65536LL, 4294967295LL, -1LL, kMinLong, kMaxLong}) {
      store(how, record(list), value, static_cast<double>(value));
      EXPECT_RAISED(error_texts::kCodeUnitOutOfRange);
      EXPECT_EQ(RecordSnapshot(record(list)), before) << value;
    }
    for (const long long value : {0LL, 0xD7FFLL, 0xD800LL, 0xDFFFLL, 0xFFFFLL}) {
      store(how, record(list), value, 0);
      EXPECT_NOTHING_RAISED();
      EXPECT_EQ(primitiveListReadI64(record(list), how == Store::Append ? record(list).primitive.size - 1 : 0), value);
    }
  }
}

TEST_F(PrimitiveElements, CharsThatAreNoScalarAreRefusedAndNothingIsStored) {
  for (const Store how : kStores) {
    Handle list = primitiveList("Char", {65});
    const RecordSnapshot before(record(list));
    for (const long long value :
         {0xD800LL, 0xDABCLL, 0xDFFFLL, 0x110000LL, 4294967296LL + 65, -1LL, kMinLong, kMaxLong}) {
      store(how, record(list), value, static_cast<double>(value));
      EXPECT_RAISED(error_texts::kCharNotScalar);
      EXPECT_EQ(RecordSnapshot(record(list)), before) << value;
    }
    for (const long long value : {0LL, 0xD7FFLL, 0xE000LL, 0xFFFFLL, 0x10000LL, 0x10FFFFLL}) {
      store(how, record(list), value, 0);
      EXPECT_NOTHING_RAISED();
      EXPECT_EQ(primitiveListReadI64(record(list), how == Store::Append ? record(list).primitive.size - 1 : 0), value);
    }
  }
}

TEST_F(PrimitiveElements, RangeChecksGoByTheNameAndNotByTheKind) {
  for (const char* name : {"UShort", "UInt"}) {
    Handle list = primitiveList(name, {0});
    primitiveListAppend(record(list), 0xD800, 0);
    primitiveListAppend(record(list), 0x110000, 0);
    primitiveListAppend(record(list), -1, 0);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(record(list).primitive.size, 4u);
  }
}

TEST_F(PrimitiveElements, RangeChecksGoByTheNameEvenOverAnotherKind) {
  Handle list = primitiveList("Long", {0});
  record(list).primitiveType = internRuntimeTypeName("CodeUnit");
  primitiveListAppend(record(list), 65536, 0);
  EXPECT_RAISED(error_texts::kCodeUnitOutOfRange);
  record(list).primitiveType = internRuntimeTypeName("Char");
  primitiveListWrite(record(list), 0, 0xD800, 0);
  EXPECT_RAISED(error_texts::kCharNotScalar);
  EXPECT_EQ(integersOf(record(list)), Integers{0});
}

TEST_F(PrimitiveElements, CharacterRangeCheckAnswersWhetherTheValueMayBeKept) {
  using collections::checkCharacterRangeOrRaise;
  EXPECT_TRUE(checkCharacterRangeOrRaise(named("CodeUnit"), 65535));
  EXPECT_TRUE(checkCharacterRangeOrRaise(named("Char"), 0x10FFFF));
  EXPECT_TRUE(checkCharacterRangeOrRaise(named("Int"), kMinLong));
  EXPECT_TRUE(checkCharacterRangeOrRaise(named(""), -1));
  EXPECT_NOTHING_RAISED();
  EXPECT_FALSE(checkCharacterRangeOrRaise(named("CodeUnit"), 65536));
  EXPECT_RAISED(error_texts::kCodeUnitOutOfRange);
  EXPECT_FALSE(checkCharacterRangeOrRaise(named("Char"), 0xDFFF));
  EXPECT_RAISED(error_texts::kCharNotScalar);
}

TEST_F(PrimitiveElements, AppendGrowsByDoublingAndKeepsEveryElement) {
  Handle list = primitiveList("Int");
  for (int i = 0; i < 33; ++i) primitiveListAppend(record(list), i * 3 - 40, 0);
  EXPECT_EQ(record(list).primitive.capacity, 64u);
  for (int i = 33; i < 200; ++i) primitiveListAppend(record(list), i * 3 - 40, 0);
  EXPECT_EQ(record(list).primitive.capacity, 256u);
  for (int i = 0; i < 200; ++i) EXPECT_EQ(elementAt<std::int32_t>(record(list), i), i * 3 - 40);
  EXPECT_VALID_LIST(list);
}

TEST_F(PrimitiveElements, WriteOverwritesOnlyItsElement) {
  for (const NamedKind& row : kNamedKinds) {
    Handle list = primitiveList(row.name, {1, 1, 1});
    primitiveListWrite(record(list), 1, 0, 0.0);
    EXPECT_EQ(integersOf(record(list)), (Integers{1, 0, 1})) << row.name;
  }
}

TEST_F(PrimitiveElements, InsertAtEveryPositionMovesTheRestUp) {
  for (const NamedKind& row : kNamedKinds) {
    for (std::uint64_t at = 0; at <= 4; ++at) {
      Handle list = primitiveList(row.name, {1, 1, 1, 1});
      primitiveListInsertAt(record(list), at, 0, 0.0);
      Integers expected = {1, 1, 1, 1};
      expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(at), 0);
      EXPECT_EQ(integersOf(record(list)), expected) << row.name << " at " << at;
      EXPECT_VALID_LIST(list);
    }
  }
}

TEST_F(PrimitiveElements, InsertIntoAFullBufferGrowsIt) {
  for (const NamedKind& row : kNamedKinds) {
    Handle list = primitiveList(row.name);
    for (std::uint64_t i = 0; i < row.inlineCapacity; ++i) primitiveListAppend(record(list), 1, 1.0);
    primitiveListInsertAt(record(list), 2, 0, 0.0);
    EXPECT_EQ(record(list).primitive.capacity, row.inlineCapacity * 2);
    Integers expected(row.inlineCapacity + 1, 1);
    expected[2] = 0;
    EXPECT_EQ(integersOf(record(list)), expected) << row.name;
  }
}

TEST_F(PrimitiveElements, InsertAboveTheSizeChangesNothing) {
  Handle list = primitiveList("Int", {1, 2});
  const RecordSnapshot before(record(list));
  for (const std::uint64_t index : {std::uint64_t{3}, std::uint64_t{100}, ~std::uint64_t{0}}) {
    primitiveListInsertAt(record(list), index, 9, 9.0);
    EXPECT_EQ(RecordSnapshot(record(list)), before) << index;
  }
  EXPECT_NOTHING_RAISED();
}

TEST_F(PrimitiveElements, InsertAboveTheSizeStillChecksTheValueFirst) {
  Handle units = primitiveList("CodeUnit", {1});
  primitiveListInsertAt(record(units), 5, 65536, 65536.0);
  EXPECT_RAISED(error_texts::kCodeUnitOutOfRange);
  Handle characters = primitiveList("Char", {1});
  primitiveListInsertAt(record(characters), 5, 0xD800, 55296.0);
  EXPECT_RAISED(error_texts::kCharNotScalar);
  EXPECT_EQ(record(units).primitive.size + record(characters).primitive.size, 2u);
}

TEST_F(PrimitiveElements, EraseAtEveryPositionMovesTheRestDown) {
  for (const NamedKind& row : kNamedKinds) {
    for (std::uint64_t at = 0; at < 4; ++at) {
      Handle list = primitiveList(row.name, {1, 1, 1, 1});
      primitiveListWrite(record(list), at, 0, 0.0);
      primitiveListEraseAt(record(list), at);
      EXPECT_EQ(integersOf(record(list)), (Integers{1, 1, 1})) << row.name << " at " << at;
      EXPECT_VALID_LIST(list);
    }
  }
  Handle list = primitiveList("Long", {10, 20, 30});
  primitiveListEraseAt(record(list), 1);
  EXPECT_EQ(integersOf(record(list)), (Integers{10, 30}));
}

TEST_F(PrimitiveElements, EraseAtOrPastTheSizeChangesNothing) {
  Handle list = primitiveList("Short", {1, 2});
  const RecordSnapshot before(record(list));
  for (const std::uint64_t index : {std::uint64_t{2}, std::uint64_t{3}, ~std::uint64_t{0}}) {
    primitiveListEraseAt(record(list), index);
    EXPECT_EQ(RecordSnapshot(record(list)), before) << index;
  }
  Handle empty = primitiveList("Short");
  primitiveListEraseAt(record(empty), 0);
  EXPECT_EQ(record(empty).primitive.size, 0u);
}

TEST_F(PrimitiveElements, ReverseAtEveryWidth) {
  for (const char* name :
       {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong", "Float", "Double", "Char"}) {
    for (const int count : {0, 1, 2, 3, 8, 19, 100}) {
      Handle list = primitiveList(name);
      Integers expected;
      for (int i = 0; i < count; ++i) {
        primitiveListAppend(record(list), i, i);
        expected.insert(expected.begin(), i);
      }
      primitiveListReverse(record(list));
      EXPECT_EQ(integersOf(record(list)), expected) << name << ' ' << count;
      EXPECT_VALID_LIST(list);
    }
  }
  Handle booleans = primitiveList("Boolean", {1, 0, 0, 1, 1, 0});
  primitiveListReverse(record(booleans));
  EXPECT_EQ(integersOf(record(booleans)), (Integers{0, 1, 1, 0, 0, 1}));
}

// A record whose element width disagrees with its kind, as after a change of kind that nobody prepared.
Handle listOfWrongWidth() {
  Handle list = primitiveList("Byte", {1, 2, 3, 4, 5, 6, 7, 8});
  record(list).primitiveKind = Kind::Int;
  record(list).primitiveType = internRuntimeTypeName("Int");
  return list;
}

TEST_F(PrimitiveElements, AppendToAWrongWidthResetsTheBufferFirst) {
  Handle list = listOfWrongWidth();
  primitiveListAppend(record(list), -5, -5.0);
  EXPECT_EQ(record(list).primitive.elementSize, 4u);
  EXPECT_EQ(record(list).primitive.capacity, 32u);
  EXPECT_EQ(integersOf(record(list)), Integers{-5});
  EXPECT_VALID_LIST(list);
}

TEST_F(PrimitiveElements, InsertIntoAWrongWidthResetsTheBufferFirst) {
  Handle list = listOfWrongWidth();
  primitiveListInsertAt(record(list), 0, -5, -5.0);
  EXPECT_EQ(record(list).primitive.elementSize, 4u);
  EXPECT_EQ(integersOf(record(list)), Integers{-5});
  EXPECT_VALID_LIST(list);
}

TEST_F(PrimitiveElements, WriteToAWrongWidthResetsTheBufferAndStoresInside) {
  Handle list = listOfWrongWidth();
  primitiveListWrite(record(list), 2, -5, -5.0);
  EXPECT_EQ(record(list).primitive.elementSize, 4u);
  EXPECT_EQ(record(list).primitive.size, 0u);
  EXPECT_EQ(record(list).primitive.data, record(list).primitive.inlineBytes);
  EXPECT_EQ(elementAt<std::int32_t>(record(list), 2), -5);
  EXPECT_VALID_LIST(list);
}

TEST_F(PrimitiveElements, EraseFromAWrongWidthOnlyResetsTheBuffer) {
  for (const std::uint64_t index : {0, 3, 100}) {
    Handle list = listOfWrongWidth();
    primitiveListEraseAt(record(list), index);
    EXPECT_EQ(record(list).primitive.elementSize, 4u);
    EXPECT_EQ(record(list).primitive.capacity, 32u);
    EXPECT_EQ(record(list).primitive.size, 0u);
    EXPECT_VALID_LIST(list);
  }
}

TEST_F(PrimitiveElements, RefusedCharacterDoesNotResetAWrongWidth) {
  Handle list = listOfWrongWidth();
  record(list).primitiveKind = Kind::UInt;
  record(list).primitiveType = internRuntimeTypeName("Char");
  primitiveListAppend(record(list), 0xD800, 0);
  EXPECT_RAISED(error_texts::kCharNotScalar);
  EXPECT_EQ(record(list).primitive.elementSize, 1u);
  EXPECT_EQ(record(list).primitive.size, 8u);
  clearListStorage(record(list));
}

TEST_F(PrimitiveElements, FailedGrowthChangesNothing) {
  for (const Store how : {Store::Append, Store::Insert}) {
    for (const NamedKind& row : kNamedKinds) {
      Handle list = primitiveList(row.name);
      for (std::uint64_t i = 0; i < row.inlineCapacity; ++i) primitiveListAppend(record(list), 1, 1.0);
      const RecordSnapshot before(record(list));
      vorn_heap_fail_allocation(0);
      EXPECT_THROW(store(how, record(list), 0, 0.0), std::bad_alloc) << row.name;
      EXPECT_NE(vorn_heap_failure_happened(), 0);
      EXPECT_EQ(RecordSnapshot(record(list)), before) << row.name;
      EXPECT_VALID_LIST(list);
    }
  }
}

}  // namespace
}  // namespace vorn::tests
