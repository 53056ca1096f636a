// primitiveListAssignFrom…: raw values over unboxed and linked lists, and none at all.
#include "collections/core/elements/primitive_elements.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using Kind = ListData::PrimitiveKind;

class PrimitiveAssign : public RuntimeTest {};

TEST_F(PrimitiveAssign, NoValueArray_GivesZeros) {
  for (const std::uint64_t count : {0, 3, 50}) {
    const Handle target = list("ArrayList", {integer("Int", 7), string("x")});
    ListData& data = *getListData(target);
    EXPECT_TRUE(primitiveListAssignFromI64Values(data, Kind::Int, named("Int"), nullptr, count));
    EXPECT_EQ(data.primitiveKind, Kind::Int);
    EXPECT_EQ(data.elementType.get(), "Int");
    EXPECT_EQ(data.primitive.size, count);
    for (std::uint64_t i = 0; i < count; ++i) EXPECT_EQ(primitiveListReadI64(data, i), 0) << i;
    EXPECT_VALID_LIST(target);
    EXPECT_TRUE(primitiveListAssignFromF64Values(data, Kind::Double, named("Double"), nullptr, count));
    EXPECT_EQ(data.primitiveKind, Kind::Double);
    EXPECT_EQ(data.primitive.size, count);
    for (std::uint64_t i = 0; i < count; ++i) EXPECT_EQ(primitiveListReadF64(data, i), 0.0) << i;
    EXPECT_VALID_LIST(target);
  }
}

// Memory that held other elements must not show through.
TEST_F(PrimitiveAssign, NoValueArray_OverOtherElements_GivesZeros) {
  const Handle target = object("ArrayList<Int>");
  ListData& data = *getListData(target);
  const long long values[] = {5, 6, 7};
  EXPECT_TRUE(primitiveListAssignFromI64Values(data, Kind::Int, named("Int"), values, 3));
  EXPECT_TRUE(primitiveListAssignFromI64Values(data, Kind::Int, named("Int"), nullptr, 3));
  for (std::uint64_t i = 0; i < 3; ++i) EXPECT_EQ(primitiveListReadI64(data, i), 0) << i;
}

// What is zero in Char storage is a character too, so that nothing is checked.
TEST_F(PrimitiveAssign, NoValueArray_OfCharacters_GivesZeros) {
  const Handle target = object("ArrayList");
  EXPECT_TRUE(primitiveListAssignFromI64Values(*getListData(target), Kind::UInt, named("Char"), nullptr, 2));
  EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 1), 0);
}

// The type and value of the element that operator_index gives.
std::string describeElement(void* list, long long index) {
  const Handle element = vorn_collections_ArrayList_operator_index(list, index);
  std::int64_t whole = 0;
  double real = 0.0;
  if (vorn_unbox_integer(element, &whole) != 0)
    return std::string(vorn_type_name(element)) + " " + std::to_string(whole);
  if (vorn_unbox_floating(element, &real) != 0)
    return std::string(vorn_type_name(element)) + " " + std::to_string(real);
  return "neither";
}

TEST_F(PrimitiveAssign, LinkedLists_GetBoxes) {
  for (const char* type : {"LinkedList", "LinkedListSync<String>"}) {
    const Handle target = list(type, {string("x")});
    ListData& data = *getListData(target);
    const long long integers[] = {5, -6};
    EXPECT_TRUE(primitiveListAssignFromI64Values(data, Kind::Short, named("Short"), integers, 2));
    EXPECT_EQ(data.primitiveKind, Kind::None);
    EXPECT_EQ(data.linkedObjects.count, 2U);
    EXPECT_EQ(data.elementType.get(), "Short");
    EXPECT_EQ(describeElement(target, 0), "vorn.Short 5");
    EXPECT_EQ(describeElement(target, 1), "vorn.Short -6");
    const double doubles[] = {0.5, 2, 3};
    EXPECT_TRUE(primitiveListAssignFromF64Values(data, Kind::Double, named("Double"), doubles, 3));
    EXPECT_EQ(data.linkedObjects.count, 3U);
    EXPECT_EQ(describeElement(target, 0), "vorn.Double 0.500000");
    EXPECT_TRUE(primitiveListAssignFromI64Values(data, Kind::Int, named("Int"), nullptr, 2));
    EXPECT_EQ(data.linkedObjects.count, 2U);
    EXPECT_EQ(describeElement(target, 1), "vorn.Int 0");
    EXPECT_VALID_LIST(target);
  }
}

TEST_F(PrimitiveAssign, CharacterOutOfRange_RaisesOnceAndChangesNothing) {
  const long long scalars[] = {65, 0xDFFF, 0x110000};
  const long long units[] = {65, 0x10000, -1};
  const double fractions[] = {65.5, 1e30};
  for (const char* type : {"ArrayList<Int>", "LinkedList"}) {
    const Handle target = list(type, {integer("Int", 7)});
    ListData& data = *getListData(target);
    EXPECT_FALSE(primitiveListAssignFromI64Values(data, Kind::UInt, named("Char"), scalars, 3));
    EXPECT_RAISED("ValueException: Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)");
    EXPECT_FALSE(primitiveListAssignFromI64Values(data, Kind::UShort, named("CodeUnit"), units, 3));
    EXPECT_RAISED("TypeError: CodeUnit code unit out of range (0..0xFFFF)");
    EXPECT_FALSE(primitiveListAssignFromF64Values(data, Kind::Double, named("Char"), fractions, 2));
    EXPECT_RAISED("ValueException: Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)");
    EXPECT_EQ(describeElement(target, 0), "vorn.Int 7");
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 1);
    EXPECT_TRUE(primitiveListAssignFromI64Values(data, Kind::UInt, named("UInt"), scalars, 3));
  }
}

}  // namespace
}  // namespace vorn::tests
