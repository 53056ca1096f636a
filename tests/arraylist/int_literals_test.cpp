// Literals of raw integers, and the empty ones with an element type.
#include <climits>
#include <cstdint>
#include <utility>

#include "collections/arraylist/creation.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/literal_cases.h"

namespace vorn::tests {
namespace {

using Kind = ListData::PrimitiveKind;

template <std::size_t kCount>
Handle variableIntLiteral(long long first) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return vorn_collections_ArrayList_intLiteral(static_cast<long long>(kCount),
                                                 (first + static_cast<long long>(I))...);
  }
  (std::make_index_sequence<kCount>{});
}

// ---- Integer literals -----------------------------------------------------------------------------------------------

void expectInts(void* list, const std::vector<long long>& values) {
  expectUnboxed(list, "Int", values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(vorn_collections_ArrayList_getInt(list, static_cast<long long>(i)), values[i]) << i;
  }
}

TEST_F(Literals, IntLiteral0_IsAnEmptyUnboxedListOfInt) {
  const Handle plain = vorn_collections_ArrayList_intLiteral0();
  expectClass(plain, false);
  expectInts(plain, {});
  const Handle synchronised = vorn_collections_ArrayListSync_intLiteral0();
  expectClass(synchronised, true);
  expectInts(synchronised, {});
  vorn_collections_ArrayList_addInt(synchronised, 5);
  expectInts(synchronised, {5});
  vorn_collections_ArrayList_add(plain, string("x"));
  EXPECT_RAISED(listTypeError("Int", "vorn.String"));
}

TEST_F(Literals, IntLiterals_OfFixedCount_KeepTheOrder) {
  const Handle one = vorn_collections_ArrayList_intLiteral1(-7);
  expectClass(one, false);
  expectInts(one, {-7});
  const Handle five = vorn_collections_ArrayList_intLiteral5(1, -2, 3, INT_MIN, INT_MAX);
  expectClass(five, false);
  expectInts(five, {1, -2, 3, INT_MIN, INT_MAX});
  const Handle ten = vorn_collections_ArrayList_intLiteral10(10, 9, 8, 7, 6, 5, 4, 3, 2, 1);
  expectClass(ten, false);
  expectInts(ten, {10, 9, 8, 7, 6, 5, 4, 3, 2, 1});
  const Handle twenty =
      vorn_collections_ArrayList_intLiteral20(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20);
  expectClass(twenty, false);
  expectInts(twenty, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20});
}

template <std::size_t kCount>
void expectVariableInts(std::uint64_t capacity) {
  SCOPED_TRACE(kCount);
  const Handle made = variableIntLiteral<kCount>(-3);
  expectClass(made, false);
  std::vector<long long> expected;
  for (std::size_t i = 0; i < kCount; ++i) expected.push_back(static_cast<long long>(i) - 3);
  expectInts(made, expected);
  EXPECT_EQ(getListData(made)->primitive.capacity, capacity);
}

TEST_F(Literals, IntLiteral_OfAnyCount_KeepsTheOrder) {
  expectVariableInts<0>(32);
  expectVariableInts<1>(32);
  expectVariableInts<10>(32);
  expectVariableInts<32>(32);
  expectVariableInts<33>(64);
  expectVariableInts<64>(64);
  expectVariableInts<65>(128);
  expectVariableInts<200>(256);
}

TEST_F(Literals, IntLiteral_NegativeCount_IsEmpty) {
  const Handle made = vorn_collections_ArrayList_intLiteral(-1LL);
  expectInts(made, {});
  const Handle ignoring = vorn_collections_ArrayList_intLiteral(LLONG_MIN, 1LL, 2LL);
  expectInts(ignoring, {});
}

TEST_F(Literals, IntLiterals_KeepTheLow32Bits) {
  constexpr long long kBeyond = 0x1'0000'0005LL;
  const Handle one = vorn_collections_ArrayList_intLiteral1(kBeyond);
  expectInts(one, {5});
  const Handle five =
      vorn_collections_ArrayList_intLiteral5(0x8000'0000LL, 0xFFFF'FFFFLL, LLONG_MIN, LLONG_MAX, -0x8000'0001LL);
  expectInts(five, {INT_MIN, -1, 0, -1, INT_MAX});
  const Handle ten = vorn_collections_ArrayList_intLiteral10(kBeyond, 0, 0, 0, 0, 0, 0, 0, 0, kBeyond + 1);
  expectInts(ten, {5, 0, 0, 0, 0, 0, 0, 0, 0, 6});
  const Handle twenty = vorn_collections_ArrayList_intLiteral20(kBeyond, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                                                0, 0, kBeyond + 1);
  expectInts(twenty, {5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 6});
  const Handle variable = vorn_collections_ArrayList_intLiteral(2LL, kBeyond, 0x8000'0000LL);
  expectInts(variable, {5, INT_MIN});
  const long long values[] = {kBeyond, -1};
  const Handle direct = createArrayListLiteralFromIntValues(values, 2);
  expectInts(direct, {5, -1});
}

// ---- Empty lists with an element type -------------------------------------------------------------------------------

Handle emptyOf(const char* type, bool synchronised) {
  return synchronised ? vorn_collections_ArrayListSync_primitiveLiteral0(type)
                      : vorn_collections_ArrayList_primitiveLiteral0(type);
}

TEST_F(Literals, PrimitiveLiteral0_PrimitiveType_IsUnboxed) {
  for (const std::string& type : primitiveNames()) {
    for (const bool synchronised : {false, true}) {
      for (const std::string& name : {type, "vorn." + type}) {
        SCOPED_TRACE(name);
        const Handle made = emptyOf(name.c_str(), synchronised);
        expectClass(made, synchronised);
        expectUnboxed(made, type, 0);
        vorn_collections_ArrayList_add(made, box(type, 1));
        expectUnboxed(made, type, 1);
        EXPECT_EQ(elementsOf(made), (Elements{describe(box(type, 1))}));
        vorn_collections_ArrayList_add(made, string("x"));
        EXPECT_RAISED(listTypeError(type, "vorn.String"));
      }
    }
  }
}

TEST_F(Literals, PrimitiveLiteral0_OtherType_IsDeclaredInObjectStorage) {
  for (const bool synchronised : {false, true}) {
    for (const char* name : {"String", "vorn.String"}) {
      const Handle made = emptyOf(name, synchronised);
      expectClass(made, synchronised);
      EXPECT_EQ(storageOf(made), "objects");
      EXPECT_EQ(declaredTypeOf(made), "String");
      EXPECT_EQ(vorn_collections_ArrayList_size(made), 0);
      EXPECT_AT_REST(made);
      vorn_collections_ArrayList_add(made, string("x"));
      vorn_collections_ArrayList_add(made, integer("Int", 1));
      EXPECT_RAISED(listTypeError("String", "vorn.Int"));
      EXPECT_EQ(elementsOf(made), (Elements{"String x"}));
    }
    const Handle lowerCase = emptyOf("int", synchronised);
    EXPECT_EQ(storageOf(lowerCase), "objects");
    EXPECT_EQ(declaredTypeOf(lowerCase), "int");
  }
}

TEST_F(Literals, PrimitiveLiteral0_NullName_DeclaresNothing) {
  for (const bool synchronised : {false, true}) {
    const Handle made = emptyOf(nullptr, synchronised);
    expectClass(made, synchronised);
    expectHolds(made, {});
    vorn_collections_ArrayList_add(made, string("x"));
    vorn_collections_ArrayList_add(made, integer("Int", 1));
    EXPECT_EQ(elementsOf(made), (Elements{"String x", "Int 1"}));
  }
}

}  // namespace
}  // namespace vorn::tests
